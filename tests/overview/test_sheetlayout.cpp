// SPDX-License-Identifier: GPL-3.0-or-later
// Header lines, runs, shortening, hit-testing, scroll ranges and the popup
// rules of the overview sheet.
#include "engine/overview/sheetlayout.h"

#include "surveys.h"
#include "engine/document/pooledindex.h"

#include <gtest/gtest.h>

using namespace kel;
using kel::test::sheetSurvey;

namespace {

test::SheetQuestion question(const QString &code, qint32 block, qint32 subBlock = -1)
{
    return {code, block, subBlock, -1, {{QStringLiteral("a")}, {QStringLiteral("b")}}};
}

std::vector<qint32> columnsOf(const Document &doc) { return doc.overviewColumns; }

} // namespace

TEST(SheetLayout, HeaderLineCountFollowsBlockFields)
{
    struct Case {
        const char *name;
        std::vector<std::pair<qint32, qint32>> blocks; // (block, subBlock) per column
        int expected;
    };
    const Case cases[] = {
        {"no blocks", {{-1, -1}, {-1, -1}}, 1},
        {"one block somewhere", {{-1, -1}, {0, -1}}, 2},
        {"sub-block only", {{-1, 0}, {-1, -1}}, 2},
        {"block and sub-block", {{0, -1}, {-1, 1}}, 3},
        {"both on one column", {{1, 0}}, 3},
    };
    for (const Case &c : cases) {
        std::vector<test::SheetQuestion> qs;
        for (auto [b, s] : c.blocks)
            qs.push_back(question(QStringLiteral("Q"), b, s));
        const Document doc = sheetSurvey(qs, {{"B0", "Block zero"}, {"B1", "Block one"}}, {});
        EXPECT_EQ(headerLineCount(doc, columnsOf(doc)), c.expected) << c.name;
    }
}

TEST(SheetLayout, RunsGroupAlternateAndNameTheLastRun)
{
    // Columns: B0 B0 - - B1 B0 B0
    const Document doc = sheetSurvey(
        {question("a", 0), question("b", 0), question("c", -1), question("d", -1), question("e", 1),
         question("f", 0), question("g", 0)},
        {{"C0", "Name zero"}, {"C1", "Name one"}}, {});
    const auto runs = headerRuns(doc, columnsOf(doc), false);
    ASSERT_EQ(runs.size(), 4u);
    struct Expected {
        int first, count;
        qint32 block;
        int slot;
        bool last;
        const char *text;
    };
    const Expected expected[] = {
        {0, 2, 0, 0, false, "C0"},
        {2, 2, -1, 1, false, ""}, // a run without a block still advances the alternation
        {4, 1, 1, 0, false, "C1"},
        {5, 2, 0, 1, true, "Name zero"}, // same block as the first run, but the last: its name
    };
    for (std::size_t i = 0; i < runs.size(); ++i)
        EXPECT_TRUE(runs[i].firstColumn == expected[i].first && runs[i].columnCount == expected[i].count
                    && runs[i].block == expected[i].block && runs[i].colourSlot == expected[i].slot
                    && runs[i].isLast == expected[i].last && runs[i].text == QString::fromLatin1(expected[i].text))
            << "run " << i;
}

TEST(SheetLayout, GroupLineEdgesSkipTheLeftBorderAndDuplicates)
{
    const Document doc = sheetSurvey(
        {question("a", 0, 0), question("b", 0, 1), question("c", 1, 1), question("d", 1, -1)},
        {{"C0", "N0"}, {"C1", "N1"}}, {});
    const auto blocks = headerRuns(doc, columnsOf(doc), false);   // edges 0, 32
    const auto subBlocks = headerRuns(doc, columnsOf(doc), true); // edges 0, 16, 48
    EXPECT_EQ(groupLineEdges(blocks, subBlocks, 16, 1, 4), (std::vector<int>{16, 32, 48}));
    // Scale 2: an edge needs x - 2 >= 1.
    EXPECT_EQ(groupLineEdges(blocks, subBlocks, 32, 2, 4), (std::vector<int>{32, 64, 96}));
    EXPECT_EQ(groupLineEdges(blocks, {}, 16, 1, 4), (std::vector<int>{32}));
}

TEST(SheetLayout, ShorteningStopsAtTwoCharacters)
{
    const auto tenPerChar = [](const QString &s) { return int(s.size()) * 10; };
    struct Case {
        const char *text;
        int maxWidth;
        const char *expected;
    };
    const Case cases[] = {
        {"Leadership", 100, "Leadership"}, // fits exactly
        {"Leadership", 99, "Leadershi"},
        {"Leadership", 5, "Le"}, // never below two
        {"X", 0, "X"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(shortenToWidth(QString::fromLatin1(c.text), c.maxWidth, tenPerChar), QString::fromLatin1(c.expected))
            << c.text << " in " << c.maxWidth;
}

TEST(SheetLayout, RowShownInCellUnderEachOrder)
{
    const std::vector<qint32> rows = {10, 11, 12, 13};
    // Original or shuffled: the list position.
    EXPECT_EQ(rowShownInCell(rows, {}, 5, 2), 12);
    EXPECT_EQ(rowShownInCell(rows, {}, 5, 4), -1);
    EXPECT_EQ(rowShownInCell(rows, {}, 5, -1), -1);
    // Random per column: rotated by the question's offset.
    const std::vector<qint32> offsets = {0, 3, 1};
    EXPECT_EQ(rowShownInCell(rows, offsets, 0, 1), 11);
    EXPECT_EQ(rowShownInCell(rows, offsets, 1, 0), 13);
    EXPECT_EQ(rowShownInCell(rows, offsets, 1, 1), 10);
    EXPECT_EQ(rowShownInCell(rows, offsets, 2, 3), 10);
    // Damaged offsets stay inside the list.
    EXPECT_EQ(rowShownInCell(rows, {-5}, 0, 0), 13);
    EXPECT_EQ(rowShownInCell(rows, {1001}, 0, 0), 11);
    EXPECT_EQ(rowShownInCell(rows, offsets, 9, 2), 12); // no offset for the question
}

namespace {

SheetGeometry geometry(int columns, int headerLines, int answerLines)
{
    SheetGeometry g;
    g.columns = columns;
    g.headerLines = headerLines;
    g.answerLines = answerLines;
    g.rowCount = answerLines;
    return g;
}

} // namespace

TEST(SheetLayout, HitTestAtCellBorders)
{
    const SheetGeometry g = geometry(3, 2, 4);
    const std::vector<qint32> columns = {7, 8, 9};
    const std::vector<qint32> rows = {40, 41, 42, 43};
    struct Case {
        double x, y;
        int scrollColumn, scrollLine;
        SheetPlace place;
        int column, line;
        qint32 row;
    };
    // The picture starts at (1, 1); 16-pixel cells; lines -2 (block), -1 (codes), 0.. answers.
    const Case cases[] = {
        {1, 1, 0, 0, SheetPlace::BlockLine, 0, -2, -2},
        {17, 17, 0, 0, SheetPlace::CodeLine, 1, -1, -1},
        {48, 32, 0, 0, SheetPlace::CodeLine, 2, -1, -1},
        {1, 33, 0, 0, SheetPlace::AnswerCell, 0, 0, 40},
        {48, 96, 0, 0, SheetPlace::AnswerCell, 2, 3, 43},
        {49, 40, 0, 0, SheetPlace::Outside, -1, 0, -1},  // right of the last column
        {10, 97, 0, 0, SheetPlace::Outside, -1, 0, -1},  // below the last line
        {0, 40, 0, 0, SheetPlace::Outside, -1, 0, -1},   // on the margin
        {16.4, 33, 0, 0, SheetPlace::AnswerCell, 0, 0, 40}, // rounded first
        {16.6, 33, 0, 0, SheetPlace::AnswerCell, 1, 0, 40},
        // Scrolled: the body moves, the header stays.
        {1, 33, 1, 2, SheetPlace::AnswerCell, 1, 2, 42},
        {1, 20, 1, 2, SheetPlace::CodeLine, 1, -1, -1},
        {1, 65, 0, 2, SheetPlace::Outside, -1, 0, -1},
        {33, 33, 1, 0, SheetPlace::Outside, -1, 0, -1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "x " << c.x << " y " << c.y << " scroll " << c.scrollColumn << ","
                                        << c.scrollLine);
        const SheetHit hit = hitTestSheet(c.x, c.y, g, c.scrollColumn, c.scrollLine, columns, rows, {});
        EXPECT_EQ(hit.place, c.place);
        if (c.place != SheetPlace::Outside) {
            EXPECT_TRUE(hit.column == c.column && hit.line == c.line && hit.row == c.row
                        && hit.question == columns[std::size_t(c.column)]);
        }
    }
    // Not a number: outside, not undefined behaviour.
    EXPECT_EQ(hitTestSheet(std::nan(""), 40, g, 0, 0, columns, rows, {}).place, SheetPlace::Outside);
    EXPECT_EQ(hitTestSheet(1e300, 40, g, 0, 0, columns, rows, {}).place, SheetPlace::Outside);
}

TEST(SheetLayout, ScrollBarsCountInCells)
{
    // 10 columns, 1 header + 20 lines: 160 x 336 pixels.
    SheetGeometry g = geometry(10, 1, 20);
    SheetScrollLayout l = layoutSheetScrollBars(g, 100, 100, 10, 10);
    EXPECT_TRUE(l.horizontal.visible && l.vertical.visible);
    EXPECT_EQ(l.availableWidth, 90);
    EXPECT_EQ(l.horizontal.maximum, 5); // ceil(70 / 16)
    EXPECT_EQ(l.vertical.maximum, 16);  // ceil(246 / 16)
    EXPECT_EQ(l.horizontal.pageStep, 5);
    EXPECT_EQ(l.vertical.pageStep, 4); // body lines under the frozen header

    // The vertical bar takes the room that the width needed.
    l = layoutSheetScrollBars(geometry(6, 1, 20), 100, 100, 10, 10); // 96 wide
    EXPECT_TRUE(l.vertical.visible && l.horizontal.visible);
    EXPECT_EQ(l.horizontal.maximum, 1);
    // ... and the other way round.
    g = geometry(20, 1, 4); // 320 x 80
    EXPECT_FALSE(layoutSheetScrollBars(g, 100, 90, 10, 10).vertical.visible);
    l = layoutSheetScrollBars(g, 100, 89, 10, 10);
    EXPECT_TRUE(l.vertical.visible); // 89 - 10 < 80
    EXPECT_EQ(l.vertical.pageStep, 3);

    // A tiny window still pages by one cell.
    l = layoutSheetScrollBars(geometry(10, 3, 20), 20, 20, 10, 10);
    EXPECT_EQ(l.vertical.pageStep, 1);
    EXPECT_EQ(l.horizontal.pageStep, 1);
}

TEST(SheetLayout, PopupItemsByPlace)
{
    struct Case {
        const char *name;
        SheetPlace place;
        PopupContext context;
        bool rows, columns, copyRow, bar1;
        int blockGraphs;    // bits 0..3 = items 1..4
        int questionGraphs; // bits 0..2 = items 1..3
        bool bar2;
    };
    const Case cases[] = {
        {"answer, plain", SheetPlace::AnswerCell, {false, false, false, 3, 0, false}, false, false, true, true, 0, 3, true},
        {"answer, row comments", SheetPlace::AnswerCell, {false, true, false, 0, 0, false}, true, false, true, true, 0, 0, false},
        {"answer, cell comments", SheetPlace::AnswerCell, {false, false, true, 4, 0, false}, true, true, true, true, 0, 4, true},
        {"answer, random per column", SheetPlace::AnswerCell, {true, true, false, 0, 0, false}, false, false, false, false, 0, 0, false},
        {"answer, random per column, cell comments", SheetPlace::AnswerCell, {true, true, true, 0, 0, true}, false, true, false, true, 0, 0, true},
        {"code line", SheetPlace::CodeLine, {false, true, false, 7, 0, false}, false, false, false, false, 0, 7, true},
        {"code line, cell comments", SheetPlace::CodeLine, {false, false, true, 0, 0, false}, false, true, false, true, 0, 0, false},
        {"block line 0x103", SheetPlace::BlockLine, {false, true, true, 7, 0x103, false}, false, false, false, false, 0b1011, 0, true},
        {"block line, no flags, total graph", SheetPlace::BlockLine, {false, false, false, 7, 0, true}, false, false, false, false, 0, 0, true},
        {"outside", SheetPlace::Outside, {false, true, true, 7, 7, true}, false, false, false, false, 0, 0, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const PopupItems items = popupItemsFor(c.place, c.context);
        EXPECT_EQ(items.showRowsComments, c.rows);
        EXPECT_EQ(items.showColumnsComments, c.columns);
        EXPECT_EQ(items.copyThisRowsAnswers, c.copyRow);
        EXPECT_EQ(items.bar1, c.bar1);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(items.showBlockGraph[i], bool(c.blockGraphs & (1 << i))) << "block graph " << i + 1;
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(items.showQuestionGraph[i], bool(c.questionGraphs & (1 << i))) << "question graph " << i + 1;
        EXPECT_EQ(items.bar2, c.bar2);
    }
}

TEST(SheetLayout, PopupEnablingLooksAtTheComments)
{
    Document doc = sheetSurvey({question("a", -1), question("b", -1)}, {}, {{0, 0}, {1, 1}, {0, 1}});
    const std::vector<qint32> rows = {0, 1, 2};
    const std::vector<qint32> columns = {0, 1};
    EXPECT_FALSE(popupEnablingFor(doc, rows, columns, false, 1, 0).showRowsComments);

    doc.properties.hasRowComments = true;
    doc.rowComments = {{-1, -1}, {3, -1}}; // row 2 has no record at all
    EXPECT_TRUE(popupEnablingFor(doc, rows, columns, false, 1, 0).showRowsComments);
    EXPECT_FALSE(popupEnablingFor(doc, rows, columns, false, 2, 0).showRowsComments);
    EXPECT_FALSE(popupEnablingFor(doc, rows, columns, true, 1, 0).showRowsComments);

    doc.hasCellComments = true;
    doc.cellComments.assign(6, -1);
    doc.cellComments[1 * 3 + 2] = 4; // row 2, question 1
    EXPECT_TRUE(popupEnablingFor(doc, rows, columns, false, 2, 0).showRowsComments);
    EXPECT_FALSE(popupEnablingFor(doc, rows, {0}, false, 2, 0).showRowsComments);
    EXPECT_TRUE(popupEnablingFor(doc, rows, columns, false, 0, 1).showColumnsComments);
    EXPECT_FALSE(popupEnablingFor(doc, {0, 1}, columns, false, 0, 1).showColumnsComments); // row 2 not in the list
    EXPECT_FALSE(popupEnablingFor(doc, rows, columns, false, 99, 99).showRowsComments);
}

TEST(SheetLayout, TotalIndexCountsOnlyTotalIndexColumns)
{
    Document doc = sheetSurvey(
        {{"a", -1, -1, -1, {{"x", -1, 0}, {"y", -1, 10}}}, {"b", -1, -1, -1, {{"x", -1, 0}, {"y", -1, 10}}}}, {},
        {{1, 0}, {1, 0}, {0, 0}});
    EXPECT_EQ(sheetTotalIndex(doc, doc.overviewColumns, kel::allRows(doc)), 0.0); // no points scale
    doc.properties.pointsScale = 10;
    EXPECT_DOUBLE_EQ(sheetTotalIndex(doc, doc.overviewColumns, kel::allRows(doc)), 20.0 / 6 / 10);
    doc.questions[1].inTotalIndex = false;
    EXPECT_DOUBLE_EQ(sheetTotalIndex(doc, doc.overviewColumns, kel::allRows(doc)), 20.0 / 3 / 10);
    EXPECT_DOUBLE_EQ(sheetTotalIndex(doc, doc.overviewColumns, {0, 1, 99, -4}), 1.0); // rows outside are left out
}
