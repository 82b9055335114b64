// SPDX-License-Identifier: GPL-3.0-or-later
#include "surveys.h"

#include "engine/overview/subsheet.h"
#include "texts/messages.h"

#include <gtest/gtest.h>

using namespace kel;
using kel::test::EngineSurvey;

namespace {

// Unit (category, flex category; options North, South, West), Age (category),
// and an overview question scored 0..4.
Document sheetDocument(qint32 rows = 20)
{
    EngineSurvey b;
    b.properties().minimumGraphSelection = 3;
    b.properties().minimumSelection = 5;
    b.addQuestion({.heading = "Unit",
                   .points = {-1, -1, -1},
                   .category = true,
                   .overview = false,
                   .flex = true,
                   .inTotal = false,
                   .countsForPrivacy = {true, true, true}});
    b.addQuestion({.heading = "Age", .points = {-1, -1}, .category = true, .overview = false, .inTotal = false});
    b.addQuestion({.heading = "Score", .points = {0, 1, 2, 3, 4}});
    b.addQuestion({.heading = "Other", .points = {0, 1}});
    std::vector<qint32> unit, age, score, other;
    for (qint32 r = 0; r < rows; ++r) {
        unit.push_back(r < 2 ? 2 : r % 2); // two West respondents
        age.push_back(r % 3 == 0 ? 1 : 0);
        score.push_back(r % 5);
        other.push_back(r % 2);
    }
    Document doc = b.build({unit, age, score, other});
    doc.questions[0].selectionLabel = QStringLiteral("Unit");
    return doc;
}

} // namespace

TEST(SubSheet, RefusalsAndThresholds)
{
    Document doc = sheetDocument();
    FlexTotal flex;
    flex.reset(doc, BlockCatalogue(doc));
    RowRandom random(1);
    SelectionMatrix selection = fullSelection(doc);

    selection.set(0, 0, false);
    selection.set(0, 1, false);
    selection.set(0, 2, false);
    SubSheet sheet = createSubSheet(doc, BlockCatalogue(doc), selection, flex, 0, random);
    EXPECT_EQ(sheet.outcome, Outcome<>(Refusal{RefusalCode::NoAnswers}));
    EXPECT_EQ(showRefusalMessage(doc, sheet.outcome.refusal(), false),
              QStringLiteral("There are no answers matching the selection criterias!"));
    EXPECT_TRUE(sheet.rows.empty());

    selection.set(0, 2, true); // West: 2 respondents, below the graph minimum of 3
    sheet = createSubSheet(doc, BlockCatalogue(doc), selection, flex, 0, random);
    EXPECT_EQ(sheet.outcome, Outcome<>(Refusal{RefusalCode::TooSmall}));
    EXPECT_EQ(showRefusalMessage(doc, sheet.outcome.refusal(), true),
              QStringLiteral("Too few!")); // the document's words
    // West has privacy-counted options below the minimum in the other
    // categories' view: splitting by Unit is not allowed.
    EXPECT_EQ(sheet.steps.splitNotAllowed, (std::vector<bool>{true, false}));

    doc.properties.minimumGraphSelection = 2; // exactly the minimum is shown
    sheet = createSubSheet(doc, BlockCatalogue(doc), selection, flex, 0, random);
    EXPECT_EQ(sheet.outcome, Outcome<>());
    EXPECT_EQ(sheet.rows, (RowList{0, 1}));
    EXPECT_FALSE(sheet.dataRowsAllowed); // 2 < minimum selection 5
    EXPECT_EQ(sheet.displayedLines(300), 0);

    selection.fill(true);
    sheet = createSubSheet(doc, BlockCatalogue(doc), selection, flex, 0, random);
    EXPECT_EQ(sheet.displayedLines(7), 7);
    // The sheet's own total index over all 20 rows, scale 1.
    EXPECT_DOUBLE_EQ(sheet.totalIndex, (4 * 10 + 10) / 40.0); // Score and Other pooled
}

TEST(SubSheet, SelectionTextAndDifferenceFromTheFlexTotal)
{
    Document doc = sheetDocument();
    FlexTotal flex;
    flex.reset(doc, BlockCatalogue(doc));
    SelectionMatrix selection = fullSelection(doc);
    SelectionSteps steps = selectionSteps(doc, selection, flex);
    EXPECT_EQ(steps.selectionText, QStringLiteral("Total"));
    EXPECT_FALSE(steps.differentFromUsedTotal);

    selection.set(0, 1, false);
    selection.set(1, 0, false);
    selection.set(1, 1, false);
    steps = selectionSteps(doc, selection, flex);
    EXPECT_EQ(steps.selectionText, QStringLiteral("Unit s0, s2; Age --"));
    EXPECT_TRUE(steps.differentFromUsedTotal); // Age restricted

    // Unit ticked exactly as the flex options: no difference; Age restricted: a difference.
    flex.setFlexTotal(doc, BlockCatalogue(doc), {true, false, true}, false);
    selection.fill(true);
    selection.set(0, 1, false);
    EXPECT_FALSE(selectionSteps(doc, selection, flex).differentFromUsedTotal);
    selection.set(1, 0, false);
    EXPECT_TRUE(selectionSteps(doc, selection, flex).differentFromUsedTotal);
    selection.fill(true); // unrestricted, but differs from the flex options
    EXPECT_TRUE(selectionSteps(doc, selection, flex).differentFromUsedTotal);

    // The hidden no-answer option is never named.
    doc.properties.firstAlternativeIsNoAnswer = true;
    selection.set(0, 2, false);
    EXPECT_EQ(selectionSteps(doc, selection, flex).selectionText, QStringLiteral("Unit s1"));
}
