// SPDX-License-Identifier: GPL-3.0-or-later
#include "surveys.h"

#include "engine/indexes/blockindex.h"

#include <gtest/gtest.h>

using namespace kel;
using kel::test::EngineSurvey;
using kel::test::runs;

TEST(ColumnIndex, PoolsAnswersOfAllQuestionsForEveryCellWidth)
{
    // q0 answered 4 by 30 rows, q1 answered 2 by 10 rows and the unscored
    // alternative by the other 20.
    for (CellType type : {CellType::U8, CellType::I16, CellType::I32}) {
        SCOPED_TRACE(int(type));
        EngineSurvey b;
        b.addQuestion({.heading = "A", .points = {0, 1, 2, 3, 4, -1}});
        b.addQuestion({.heading = "B", .points = {0, 1, 2, 3, 4, -1}});
        const Document doc = b.build({runs({{4, 30}}), runs({{2, 10}, {5, 20}})}, type);
        const RowList rows = allRows(doc);
        EXPECT_DOUBLE_EQ(calculateColumnsIndex(doc, {0, 1}, rows), 3.5); // not (4 + 2) / 2
        EXPECT_DOUBLE_EQ(calculateColumnsIndex(doc, {1}, rows), 2.0);
        // Only unscored answers: no value.
        EXPECT_EQ(calculateColumnsIndex(doc, {1}, RowList{10, 11, 29}), -1.0);
    }
}

TEST(ColumnIndex, ScaleAndFormatting)
{
    EngineSurvey b;
    b.properties().pointsScale = 100;
    b.properties().maxPoints = 400;
    b.addQuestion({.heading = "A", .points = {350, 355}});
    const Document doc = b.build({{0, 1}});
    EXPECT_DOUBLE_EQ(calculateColumnsIndex(doc, {0}, allRows(doc)), 3.525);
    EXPECT_EQ(formatIndex(3.5, 2, QLocale(QLocale::Swedish, QLocale::Sweden)), QStringLiteral("3,50"));

    QString distribution;
    EXPECT_DOUBLE_EQ(calculateColumnsIndexSpec(doc, {0}, {1, 1, 0}, distribution), (355.0 * 2 + 350) / 3 / 100);
    EXPECT_EQ(distribution, QStringLiteral("Value\tCount\r\n350\t1\r\n355\t2"));
}

namespace {

// q0, q1 in block 0 / sub-block 1; q2 in sub-block 2; q3, q4 in block 3 (q4
// outside the total); user block 4 lists q5 (not in the overview) and q0.
Document blockDocument()
{
    EngineSurvey b;
    const std::vector<qint32> pts{0, 1, 2, 3, 4};
    b.addBlock("Main", true);
    b.addBlock("Sub one", true, 0);
    b.addBlock("Sub two", true, 0);
    b.addBlock("Other", true);
    const qint32 user = b.addBlock("Mine", false, -1, -1.0, false);
    b.addQuestion({.heading = "q0", .points = pts, .block = 0, .subBlock = 1});
    b.addQuestion({.heading = "q1", .points = pts, .block = 0, .subBlock = 1});
    b.addQuestion({.heading = "q2", .points = pts, .block = 0, .subBlock = 2});
    b.addQuestion({.heading = "q3", .points = pts, .block = 3});
    b.addQuestion({.heading = "q4", .points = pts, .inTotal = false, .block = 3});
    b.addQuestion({.heading = "q5", .points = pts, .overview = false});
    b.addBlockItem(user, 5);
    b.addBlockItem(user, 0);
    // Every pooled mean differs from the mean of the members' means.
    return b.build({{4, 4, 4, 4}, {0, 0, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, {4, 4, 4, 0}, {3, 3, 3, 3}});
}

} // namespace

TEST(BlockIndex, MembershipByRuleAndByItems)
{
    const Document doc = blockDocument();
    const BlockCatalogue blocks(doc);
    // Blocks and sub-blocks by the questions' numbers; the user block in item
    // order, the non-overview question included; unknown blocks are empty.
    const std::pair<qint32, QuestionList> cases[] = {{0, {0, 1, 2}}, {1, {0, 1}}, {2, {2}}, {3, {3, 4}},
                                                     {4, {5, 0}},    {5, {}},     {-1, {}}};
    for (const auto &[block, members] : cases)
        EXPECT_EQ(blockMembers(doc, blocks, block), members) << block;
    EXPECT_EQ(totalMembers(doc), (QuestionList{0, 1, 2, 3}));
}

TEST(BlockIndex, IndexesPoolTheirMembers)
{
    const Document doc = blockDocument();
    const BlockCatalogue blocks(doc);
    const RowList rows = allRows(doc);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, blocks, 0, rows), (4 + 0 + 1) / 3.0);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, blocks, 1, rows), 2.0);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, blocks, 3, rows), (2 * 4 + 12) / 8.0);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, blocks, 4, RowList{0, 1}), 3.5);
    EXPECT_EQ(calculateBlockFlexTotalIndex(doc, blocks, 0, {}), -1.0);
    EXPECT_DOUBLE_EQ(calculateBlockTotalIndex(doc, blocks, 2), 1.0);
    EXPECT_DOUBLE_EQ(calculateTotalIndex(doc, rows), (4 + 0 + 1 + 2) / 4.0); // q4 left out
    QString distribution;
    calculateTotalIndexSpec(doc, {0}, distribution);
    EXPECT_EQ(distribution, QStringLiteral("Value\tCount\r\n0\t1\r\n1\t1\r\n2\t1\r\n4\t1"));
}
