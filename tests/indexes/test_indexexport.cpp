// SPDX-License-Identifier: GPL-3.0-or-later
#include "surveys.h"

#include "engine/indexes/blockindex.h"
#include "engine/indexes/indexexport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace kel;
using kel::test::EngineSurvey;
using kel::test::runs;

namespace {

// Category "Unit" (rows 0..51 North, 52..56 South); block "Block A" over q1, q2.
Document exampleDocument(qint32 minimumGraph = 10)
{
    EngineSurvey b;
    b.properties().pointsScale = 10;
    b.properties().minimumGraphSelection = minimumGraph;
    b.addBlock("Block A", true);
    b.addQuestion({.heading = "Unit", .points = {-1, -1}, .category = true, .overview = false, .inTotal = false});
    b.addQuestion({.heading = "Q one", .points = {10, 20, 30, 40, 50}, .block = 0});
    b.addQuestion({.heading = "Q two", .points = {10, 20, 30, 40, 50}, .block = 0});
    Document doc = b.build({runs({{0, 52}, {1, 5}}), runs({{1, 57}}), runs({{3, 57}})});
    doc.alternatives[0].text = QStringLiteral("North");
    doc.alternatives[1].text = QStringLiteral("South");
    return doc;
}

} // namespace

TEST(IndexExport, BothOrientationsMaskSmallAndBlankEmptyGroups)
{
    // South is empty in the selection: blank cells, though also below the minimum.
    Document doc = exampleDocument(100);
    IndexExportOptions options;
    options.subSelCategories = {0};
    options.showNumberOfAnswers = true;
    options.indexFor[IndexExportOptions::ForTotal] = true;
    options.indexFor[IndexExportOptions::ForQuestions] = true;
    options.showFullQuestionText = true;
    const auto text = [&](bool columns) {
        options.subSelectionsInColumns = columns;
        return exportIndexes(doc, BlockCatalogue(doc), QStringLiteral("Sel"), RowList{0, 1, 2}, options, QLocale::c());
    };
    EXPECT_EQ(text(true),
              QStringLiteral("Sel\tUnit: North\tUnit: South\r\nAnswers\t3\t0\r\nTotal\t---\t\r\n"
                             "Q2. Q one (full)\t---\t\r\nQ3. Q two (full)\t---\t"));
    EXPECT_EQ(text(false),
              QStringLiteral("Sel\tAnswers\tTotal\tQ2. Q one (full)\tQ3. Q two (full)\r\n"
                             "Unit: North\t3\t---\t---\t---\r\nUnit: South\t0\t\t\t"));
    doc.properties.firstAlternativeIsNoAnswer = true; // North forms no group now
    EXPECT_TRUE(text(false).endsWith(QStringLiteral("(full)\r\nUnit: South\t0\t\t\t")));
}

TEST(IndexExport, BlockRunsSubBlocksAndUserBlocks)
{
    EngineSurvey b;
    const std::vector<qint32> pts{1, 2};
    b.addBlock("A", true);                        // 0
    b.addBlock("B", true);                        // 1
    b.addBlock("A1", true, 0);                    // 2: sub-block of A
    b.addBlock("Hidden", true);                   // 3: not in copies
    b.addBlock("NoIndex", true, -1, -1.0);        // 4: no stored index
    b.addBlock("User", false, -1, -1.0, false);   // 5: listed whatever its index
    b.addBlock("UserOff", false, -1, 1.0, false); // 6
    b.addQuestion({.heading = "a1", .points = pts, .block = 0, .subBlock = 2});
    b.addQuestion({.heading = "a2", .points = pts, .block = 0, .subBlock = 2});
    b.addQuestion({.heading = "b1", .points = pts, .block = 1, .totalIndex = -1.0});
    b.addQuestion({.heading = "a3", .points = pts, .block = 0});
    b.addQuestion({.heading = "h", .points = pts, .block = 3});
    b.addQuestion({.heading = "n", .points = pts, .block = 4});
    b.addBlockItem(5, 2);
    Document doc = b.build({{0, 1}, {0, 1}, {1, 1}, {0, 0}, {0, 1}, {1, 1}});
    doc.blocks[2].includeInCopy = true;
    doc.blocks[3].includeInCopy = false;
    doc.blocks[6].includeInCopy = false;

    IndexExportOptions options;
    options.indexFor = {true, true, true, true, true};
    QStringList names;
    for (const IndexItem &item : buildIndexItems(doc, BlockCatalogue(doc), options))
        names << item.name;
    // A is listed once per run of its questions; blocks not for copies or
    // without a stored index are left out, user blocks never.
    EXPECT_EQ(names.join(QLatin1Char('|')), QStringLiteral("Total|A|A1|a1|a2|B|A|a3|h|n|User"));
}

TEST(IndexExport, ValuesMatchTheIndexRoutinesOnRandomDocuments)
{
    std::mt19937 gen(7);
    for (CellType type : {CellType::U8, CellType::I16, CellType::I32}) {
        EngineSurvey b;
        b.properties().minimumGraphSelection = 3;
        b.addBlock("even", true);
        b.addBlock("odd", true);
        b.addBlock("items", false);
        b.addQuestion({.heading = "cat", .points = {-1, -1, -1, -1}, .category = true, .overview = false});
        for (int q = 0; q < 8; ++q)
            b.addQuestion(
                {.heading = QStringLiteral("q%1").arg(q), .points = {-1, 0, 3, 7}, .inTotal = q != 3, .block = q % 2});
        b.addBlockItem(2, 1);
        b.addBlockItem(2, 8);
        std::vector<std::vector<qint32>> columns(9, std::vector<qint32>(200));
        for (auto &column : columns)
            std::generate(column.begin(), column.end(), [&] { return qint32(gen() % 4); });
        const Document doc = b.build(columns, type);

        IndexExportOptions options;
        options.subSelTotal = true;
        options.subSelCategories = {0};
        options.indexFor = {true, true, false, true, false}; // total, blocks, questions
        RowList current;
        for (qint32 r = 0; r < 200; r += 1 + qint32(gen() % 3))
            current.push_back(r);
        const auto subs = buildSubSelections(doc, options, current);
        auto items = buildIndexItems(doc, BlockCatalogue(doc), options);
        items.push_back({IndexItem::Block, 2, QStringLiteral("items")});
        const auto values = calculateIndexValues(doc, BlockCatalogue(doc), subs, items);
        ASSERT_EQ(values.size(), subs.size() * items.size());
        for (std::size_t s = 0; s < subs.size(); ++s)
            for (std::size_t i = 0; i < items.size(); ++i) {
                double expected = items[i].kind == IndexItem::Total ? calculateTotalIndex(doc, subs[s].rows)
                    : items[i].kind == IndexItem::Block
                    ? calculateBlockIndex(doc, BlockCatalogue(doc), items[i].number, subs[s].rows)
                    : calculateColumnsIndex(doc, {items[i].number}, subs[s].rows);
                if (subs[s].rows.empty())
                    expected = NoIndexValue;
                else if (qint32(subs[s].rows.size()) < 3)
                    expected = MaskedIndexValue;
                EXPECT_EQ(values[s * items.size() + i], expected) << s << ' ' << i;
            }
    }
}

TEST(IndexExport, CancelLeavesNothing)
{
    const Document doc = exampleDocument();
    IndexExportOptions options;
    options.subSelTotal = true;
    options.indexFor[IndexExportOptions::ForQuestions] = true;
    qint32 calls = 0;
    const QString text = exportIndexes(doc, BlockCatalogue(doc), QStringLiteral("s"), allRows(doc), options,
                                       QLocale::c(), [&](qint32 done) {
                                           ++calls;
                                           return done < 2;
                                       });
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(calls, 2);
}

// Secondary suppression, worked out by hand: a masked group that is alone
// (or masked groups that together are still too few) could be found as the
// total minus the others, so the smallest shown group goes too.
TEST(IndexExport, MaskedGroupsCannotBeRecoveredFromTheTotal)
{
    struct Case {
        std::vector<qint32> sizes;
        std::vector<bool> masked;
    };
    const Case cases[] = {
        {{40, 38, 4}, {false, true, true}},           // one below: the smallest other joins it
        {{40, 38, 5}, {false, false, false}},         // at the minimum: nothing masked
        {{1, 2, 30, 40}, {true, true, true, false}},  // two together still fewer than 5
        {{1, 4, 30}, {true, true, false}},            // two together make 5
        {{0, 3, 30, 40}, {false, true, true, false}}, // empty groups show nothing and stay
        {{3, 0}, {true, false}},                      // nothing left to mask with
        {{6, 7}, {false, false}},
        {{}, {}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(maskedGroups(c.sizes, 5), c.masked) << ::testing::PrintToString(c.sizes);

    // Through the table: South (5) is below 10, so North (52) is masked
    // beside it while the total stays.
    Document doc = exampleDocument(10);
    IndexExportOptions options;
    options.subSelTotal = true;
    options.subSelCategories = {0};
    options.showNumberOfAnswers = true;
    options.indexFor[IndexExportOptions::ForTotal] = true;
    RowList everyone(57);
    std::iota(everyone.begin(), everyone.end(), 0);
    EXPECT_EQ(exportIndexes(doc, BlockCatalogue(doc), QStringLiteral("Sel"), everyone, options, QLocale::c()),
              QStringLiteral("Sel\tAnswers\tTotal\r\nTotal\t57\t3.0\r\nUnit: North\t52\t---\r\nUnit: South\t5\t---"));
}
