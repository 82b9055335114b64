// SPDX-License-Identifier: GPL-3.0-or-later
// Which row a cell shows, hit-testing, scroll ranges and the popup rules of
// the overview sheet.
#include "engine/overview/sheetlayout.h"

#include <gtest/gtest.h>

using namespace kel;

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
        {49, 40, 0, 0, SheetPlace::Outside, -1, 0, -1},     // right of the last column
        {10, 97, 0, 0, SheetPlace::Outside, -1, 0, -1},     // below the last line
        {0, 40, 0, 0, SheetPlace::Outside, -1, 0, -1},      // on the margin
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
    constexpr bool T = true, F = false;
    using P = SheetPlace;
    const Case cases[] = {
        {"answer, plain", P::AnswerCell, {F, F, F, 3, 0, F}, F, F, T, T, 0, 3, T},
        {"answer, row comments", P::AnswerCell, {F, T, F, 0, 0, F}, T, F, T, T, 0, 0, F},
        {"answer, cell comments", P::AnswerCell, {F, F, T, 4, 0, F}, T, T, T, T, 0, 4, T},
        {"answer, random per column", P::AnswerCell, {T, T, F, 0, 0, F}, F, F, F, F, 0, 0, F},
        {"answer, random per column, cell comments", P::AnswerCell, {T, T, T, 0, 0, T}, F, T, F, T, 0, 0, T},
        {"code line", P::CodeLine, {F, T, F, 7, 0, F}, F, F, F, F, 0, 7, T},
        {"code line, cell comments", P::CodeLine, {F, F, T, 0, 0, F}, F, T, F, T, 0, 0, F},
        {"block line 0x103", P::BlockLine, {F, T, T, 7, 0x103, F}, F, F, F, F, 0b1011, 0, T},
        {"block line, no flags, total graph", P::BlockLine, {F, F, F, 7, 0, T}, F, F, F, F, 0, 0, T},
        {"outside", P::Outside, {F, T, T, 7, 7, T}, F, F, F, F, 0, 0, F},
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

TEST(SheetLayout, HeaderTextsAreShortenedToTheLongestStartThatFits)
{
    // Every character is 1 wide, a 'W' 3: widths worked out by hand.
    int calls = 0;
    const auto width = [&calls](const QString &s) {
        ++calls;
        return int(s.size() + 2 * s.count(QLatin1Char('W')));
    };
    const struct {
        const char *text;
        int maxWidth;
        const char *shown;
    } cases[] = {
        {"abcdef", 6, "abcdef"}, // fits exactly
        {"abcdef", 5, "abcde"},  // one too wide
        {"abWdef", 5, "abW"},    // the W takes three
        {"abWdef", 4, "ab"},     // the W no longer fits
        {"abcdef", 0, "ab"},     // never below two characters
        {"ab", 0, "ab"},         {"", 0, ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(shortenToWidth(QString::fromLatin1(c.text), c.maxWidth, width), QString::fromLatin1(c.shown))
            << c.text << " in " << c.maxWidth;

    // A heading of a million characters is measured a few dozen times, not
    // once per character it loses.
    calls = 0;
    const QString heading(1'000'000, QLatin1Char('x'));
    EXPECT_EQ(shortenToWidth(heading, 32, width), heading.left(32));
    EXPECT_LE(calls, 25);
}
