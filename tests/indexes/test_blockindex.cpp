// SPDX-License-Identifier: GPL-3.0-or-later
#include "surveys.h"

#include "engine/indexes/blockindex.h"

#include <gtest/gtest.h>

using namespace kel;
using kel::test::EngineSurvey;
using kel::test::QuestionRecipe;
using kel::test::runs;

namespace {

// Two questions scored 0..4; q0 answered 4 by 30 rows, q1 answered 2 by 10
// rows (the other 20 rows chose the unscored alternative 5).
Document pooledDocument(CellType type)
{
    EngineSurvey b;
    b.addQuestion({.heading = "A", .points = {0, 1, 2, 3, 4, -1}});
    b.addQuestion({.heading = "B", .points = {0, 1, 2, 3, 4, -1}});
    return b.build({runs({{4, 30}}), runs({{2, 10}, {5, 20}})}, type);
}

} // namespace

TEST(ColumnIndex, PoolsAnswersOfAllQuestionsForEveryCellWidth)
{
    for (CellType type : {CellType::U8, CellType::I16, CellType::I32}) {
        SCOPED_TRACE(int(type));
        const Document doc = pooledDocument(type);
        const RowList rows = allRows(doc);
        EXPECT_DOUBLE_EQ(calculateColumnsIndex(doc, {0, 1}, rows), 3.5); // not (4 + 2) / 2
        EXPECT_DOUBLE_EQ(calculateColumnsIndex(doc, {1}, rows), 2.0);
        // Only the unscored answers: no value.
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
    const double index = calculateColumnsIndex(doc, {0}, allRows(doc));
    EXPECT_DOUBLE_EQ(index, 3.525);
    EXPECT_EQ(doc.properties.indexDecimals, 2);
    EXPECT_EQ(formatIndex(-1.0, 2, QLocale::c()), QStringLiteral("-"));
    EXPECT_EQ(formatIndex(3.5, 2, QLocale(QLocale::Swedish, QLocale::Sweden)), QStringLiteral("3,50"));

    QString distribution;
    EXPECT_DOUBLE_EQ(calculateColumnsIndexSpec(doc, {0}, {1, 1, 0}, distribution), (355.0 * 2 + 350) / 3 / 100);
    EXPECT_EQ(distribution, QStringLiteral("Value\tCount\r\n350\t1\r\n355\t2"));
}

namespace {

// Overview questions q0..q4: q0, q1 in block 0 sub-block 1; q2 in block 0
// sub-block 2; q3 in block 3 (no sub-block), q4 outside the total.
// Block 4 is a user block listing q5, a question not in the overview.

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
    // Four rows; each question's answers chosen so that every pooled mean
    // differs from the mean of the members' means.
    return b.build({{4, 4, 4, 4}, {0, 0, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, {4, 4, 4, 0}, {3, 3, 3, 3}});
}

} // namespace

TEST(BlockIndex, MembershipByRuleAndByItems)
{
    const Document doc = blockDocument();
    const struct {
        qint32 block;
        QuestionList members;
    } cases[] = {
        {0, {0, 1, 2}}, // block by the questions' block numbers
        {1, {0, 1}},    // sub-block by the questions' sub-block numbers
        {2, {2}},
        {3, {3, 4}},
        {4, {5, 0}}, // user block: item order, non-overview question included
        {5, {}},
        {-1, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.block);
        EXPECT_EQ(blockMembers(doc, c.block), c.members);
    }
    EXPECT_EQ(totalMembers(doc), (QuestionList{0, 1, 2, 3}));
}

TEST(BlockIndex, IndexesPoolTheirMembers)
{
    const Document doc = blockDocument();
    const RowList rows = allRows(doc);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, 0, rows), (4 + 0 + 1) / 3.0);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, 1, rows), 2.0);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, 3, rows), (2 * 4 + 12) / 8.0);
    EXPECT_DOUBLE_EQ(calculateBlockIndex(doc, 4, RowList{0, 1}), 3.5);
    EXPECT_EQ(calculateBlockIndex(doc, 9, rows), -1.0);
    EXPECT_EQ(calculateBlockFlexTotalIndex(doc, 0, {}), -1.0);
    EXPECT_DOUBLE_EQ(calculateBlockTotalIndex(doc, 2), 1.0);
    // q4 is left out of the total but keeps its own and its block's index.
    EXPECT_DOUBLE_EQ(calculateTotalIndex(doc, rows), (4 + 0 + 1 + 2) / 4.0);
    EXPECT_DOUBLE_EQ(calculateColumnsIndex(doc, {4}, rows), 3.0);
    QString distribution;
    calculateTotalIndexSpec(doc, {0}, distribution);
    EXPECT_EQ(distribution, QStringLiteral("Value\tCount\r\n0\t1\r\n1\t1\r\n2\t1\r\n4\t1"));
}
