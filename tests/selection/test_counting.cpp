// SPDX-License-Identifier: GPL-3.0-or-later
#include "countingreference.h"
#include "surveys.h"

#include "engine/selection/counting.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmodel.h"

#include <gtest/gtest.h>

#include <random>

using namespace kel;
using kel::test::EngineSurvey;

namespace {

Document randomCategories(std::mt19937 &gen, CellType type, qint32 rows, const std::vector<qint32> &optionCounts)
{
    EngineSurvey b;
    std::vector<std::vector<qint32>> columns;
    for (qint32 k : optionCounts) {
        b.addQuestion({.heading = "c", .points = std::vector<qint32>(std::size_t(k), -1), .category = true});
        std::vector<qint32> column(static_cast<std::size_t>(rows));
        for (qint32 &v : column)
            v = qint32(gen() % quint32(k));
        columns.push_back(column);
    }
    return b.build(columns, type);
}

} // namespace

// The blocked, branch-free counting must agree with the plain pairwise
// reading for every cell width, block boundary and selection shape.
TEST(CountOptions, AgreesWithThePlainReading)
{
    std::mt19937 gen(11);
    // Few options are counted by answer combination, many (the last shape)
    // row by row: both ways are checked.
    const std::vector<std::vector<qint32>> shapes{{3}, {4, 2}, {5, 3, 7}, {2, 2, 2, 9}, {40, 3, 40, 40}};
    for (CellType type : {CellType::U8, CellType::I16, CellType::I32})
        for (const auto &shape : shapes)
            for (qint32 rows : {0, 1, 2047, 2048, 5001}) {
                SCOPED_TRACE(testing::Message() << int(type) << ' ' << shape.size() << ' ' << rows);
                const Document doc = randomCategories(gen, type, rows, shape);
                for (int trial = 0; trial < 4; ++trial) {
                    SelectionMatrix selected = fullSelection(doc);
                    for (qint32 c = 0; c < selected.categoryCount(); ++c)
                        for (qint32 o = 0; o < selected.optionCount(); ++o)
                            selected.set(c, o, gen() % 3 != 0);
                    CountMatrix fast = countMatrixFor(doc);
                    CountMatrix plain = countMatrixFor(doc);
                    const qint32 n = countOptions(doc, selected, fast);
                    ASSERT_EQ(n, test::countOptionsReference(doc, selected, plain));
                    for (qint32 c = 0; c < fast.categoryCount(); ++c)
                        for (qint32 o = 0; o < fast.optionCount(); ++o)
                            ASSERT_EQ(fast.at(c, o), plain.at(c, o)) << c << ',' << o;
                    RowList expected;
                    for (qint32 r = 0; r < doc.rowCount(); ++r) {
                        bool all = true;
                        for (qint32 c = 0; c < qint32(doc.categories.size()); ++c)
                            all = all && selected.at(c, doc.getData(r, doc.categories[std::size_t(c)]));
                        if (all)
                            expected.push_back(r);
                    }
                    ASSERT_EQ(selectedRows(doc, selected), expected);
                }
            }
}

TEST(CountOptions, CountsWhatEachOptionWouldLeave)
{
    EngineSurvey b;
    b.addQuestion({.heading = "Unit", .points = {-1, -1, -1}, .category = true});
    b.addQuestion({.heading = "Age", .points = {-1, -1}, .category = true});
    //            rows: 0  1  2  3  4  5
    const Document doc = b.build({{0, 1, 2, 1, 0, 2}, {0, 0, 1, 1, 1, 0}});
    SelectionMatrix selected = fullSelection(doc);
    selected.set(0, 2, false); // Unit: not option 2
    selected.set(1, 0, false); // Age: only option 1
    CountMatrix found = countMatrixFor(doc);
    found.row(0)[0] = 100;                            // incremented, never cleared
    EXPECT_EQ(countOptions(doc, selected, found), 2); // rows 3 and 4
    // Unit options among rows with Age 1: rows 2 (2), 3 (1), 4 (0); Age
    // options among rows with Unit 0 or 1: rows 0, 1 (0); 3, 4 (1).
    EXPECT_EQ((std::vector<qint32>{found.at(0, 0), found.at(0, 1), found.at(0, 2), found.at(1, 0), found.at(1, 1)}),
              (std::vector<qint32>{101, 1, 1, 2, 2}));
    EXPECT_EQ(selectedRows(doc, selected), (RowList{3, 4}));
}

namespace {

// Unit (category, 4 options with a complement check on 1..3, option 0 = no
// answer when the flag is set), and Role (category and flex category).
Document navigatorDocument(bool firstIsNoAnswer)
{
    EngineSurvey b;
    b.properties().firstAlternativeIsNoAnswer = firstIsNoAnswer;
    b.properties().minimumComplementSelection = 3;
    b.properties().minimumGraphSelection = 2;
    b.addQuestion({.heading = "Unit",
                   .points = {-1, -1, -1, -1},
                   .category = true,
                   .complementCheck = {false, true, true, true}});
    b.addQuestion({.heading = "Role", .points = {-1, -1, -1}, .category = true, .flex = true});
    b.addQuestion({.heading = "Score", .points = {0, 1, 2, 3, 4}});
    //                      unit: no-answer x2, option 1 x2, option 2 x4, option 3 x4
    return b.build({{0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3},
                    {0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2},
                    {4, 4, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4}});
}

} // namespace

TEST(SelectionModel, NoAnswerOptionAlwaysMatches)
{
    const Document doc = navigatorDocument(true);
    SelectionModel model;
    model.setUpDimensions(doc);
    model.setCategoryChecked(0, false);
    model.setOptionChecked(0, 0, false);
    EXPECT_TRUE(model.selected().at(0, 0)); // the hidden option stays ticked
    EXPECT_EQ(model.recount(doc).count, 2); // the two no-answer respondents
    for (qint32 o = 1; o < 4; ++o)
        model.setOptionChecked(0, o, true);
    EXPECT_TRUE(model.isCategoryChecked(0));
    EXPECT_EQ(model.recount(doc).count, 12);

    // Without the flag option 0 is an ordinary option.
    const Document plain = navigatorDocument(false);
    model.setUpDimensions(plain);
    model.setCategoryChecked(0, false);
    EXPECT_EQ(model.recount(plain).count, 0);
    EXPECT_FALSE(model.showEnabled());
}

TEST(SelectionModel, ShadingAndBlocking)
{
    Document doc = navigatorDocument(false);
    SelectionModel model;
    model.setUpDimensions(doc);
    // Role 0 only: Unit option 1 would leave 1 respondent (row 3), below the
    // complement minimum of 3, so Unit is shaded; not restricted, not blocked.
    model.setCategoryChecked(1, false);
    model.setOptionChecked(1, 0, true);
    RecountResult r = model.recount(doc);
    EXPECT_EQ(r.count, 4);
    EXPECT_EQ(r.shaded, (std::vector<bool>{true, false}));
    EXPECT_EQ(r.blocked, (std::vector<bool>{false, false}));
    EXPECT_TRUE(r.showEnabled);
    // Restricting Unit now blocks Show.
    model.setOptionChecked(0, 3, false);
    r = model.recount(doc);
    EXPECT_EQ(r.blocked, (std::vector<bool>{true, false}));
    EXPECT_FALSE(r.showEnabled);
    EXPECT_TRUE(model.showEnabledChanged());
}

TEST(FlexTotal, TextsRowsAndIndexes)
{
    Document doc = navigatorDocument(false);
    doc.properties.minimumGraphSelection = 1;
    doc.questions[2].totalIndex = 0.25;
    const BlockCatalogue blocks(doc);
    FlexTotal flex;
    flex.reset(doc, blocks);
    // Role 0 and 2: rows answering them, named in option order.
    flex.setFlexTotal(doc, blocks, {true, false, true}, false);
    EXPECT_EQ(flex.text(), QStringLiteral("Role s0 & s2"));
    EXPECT_EQ(flex.rows(), (RowList{0, 2, 3, 5, 6, 8, 9, 11}));
    EXPECT_DOUBLE_EQ(flex.questionIndex(2), (4 + 0 + 0 + 1 + 2 + 3 + 3 + 4) / 8.0);
    EXPECT_DOUBLE_EQ(flex.totalIndex(), flex.questionIndex(2));
    EXPECT_EQ(doc.questions[2].totalIndex, 0.25) << "the document keeps its own";
    // Back to every option: the stored total indexes, no recomputation.
    flex.setFlexTotal(doc, blocks, {true, true, true}, true);
    EXPECT_EQ(flex.text(), QStringLiteral("Total"));
    EXPECT_EQ(flex.questionIndex(2), 0.25);

    // Based on the current selection: named at once, rows at the next build.
    flex.setFlexTotal(doc, blocks, {false, true, true}, true);
    EXPECT_EQ(flex.text(), QStringLiteral("Current selection but Role s1 & s2"));
    SelectionMatrix selection = fullSelection(doc);
    selection.set(0, 3, false); // Unit without option 3
    selection.set(1, 1, false); // Role ticks in the selection give way to the flex options
    flex.buildFlexTotalFromSelection(doc, blocks, selection);
    EXPECT_EQ(flex.rows(), (RowList{1, 2, 4, 5, 7}));

    // A flex total below the graph minimum hides every flex-total index.
    doc.properties.minimumGraphSelection = 6;
    flex.buildFlexTotalFromSelection(doc, blocks, selection); // 5 rows
    EXPECT_EQ(flex.totalIndex(), -1.0);
    EXPECT_EQ(flex.questionIndex(2), -1.0);
}
