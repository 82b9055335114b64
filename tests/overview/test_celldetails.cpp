// SPDX-License-Identifier: GPL-3.0-or-later
// What the detail window and the pictures' index lines show, as values:
// checked against counts worked out by hand from the survey's answers.
#include "engine/overview/celldetails.h"

#include "surveys.h"

#include <gtest/gtest.h>

using namespace kel;

TEST(CellDetails, AnswerCellHeaderLineAndOutside)
{
    // Mood is Good (full points) for rows 0, 3, 6, ...: its index over a row
    // list is the share of Good answers in it.
    auto doc = test::navigatorSurvey({.pointsScale = 100});
    ASSERT_TRUE(doc);
    const BlockCatalogue blocks(*doc);
    FlexTotal flex;
    flex.reset(*doc, blocks);
    const qint32 mood = doc->overviewColumns.at(0);
    const RowList rows{0, 1, 2, 3}; // two Good of four

    SheetHit cell;
    cell.place = SheetPlace::AnswerCell;
    cell.question = mood;
    cell.row = 3;
    CellDetails d = cellDetails(*doc, blocks, flex, cell, doc->overviewColumns, rows);
    EXPECT_TRUE(d.onQuestion && d.answerText == QStringLiteral("Good"));
    EXPECT_DOUBLE_EQ(d.respondentIndex, 1.0) << "respondent 3 answered Good";
    EXPECT_DOUBLE_EQ(d.questionIndex, 0.5);
    EXPECT_DOUBLE_EQ(d.questionTotalIndex, 7.0 / 20) << "7 Good of 20 over everyone";
    EXPECT_DOUBLE_EQ(d.blockIndex, 0.5);
    EXPECT_EQ(d.subBlockIndex, -1.0);

    SheetHit header = cell;
    header.place = SheetPlace::CodeLine;
    header.row = -1;
    d = cellDetails(*doc, blocks, flex, header, doc->overviewColumns, rows);
    EXPECT_TRUE(d.answerText.isEmpty() && d.respondentIndex == -1.0);
    EXPECT_DOUBLE_EQ(d.questionIndex, 0.5);

    SheetHit beyond = cell;
    beyond.question = 99;
    EXPECT_FALSE(cellDetails(*doc, blocks, flex, beyond, doc->overviewColumns, rows).onQuestion);
    beyond = cell;
    beyond.row = 20; // past the last row: no answer, no respondent
    d = cellDetails(*doc, blocks, flex, beyond, doc->overviewColumns, rows);
    EXPECT_TRUE(d.answerText.isEmpty());
    EXPECT_EQ(d.respondentIndex, -1.0);

    auto noIndexes = test::navigatorSurvey({.pointsScale = 0});
    EXPECT_FALSE(
        cellDetails(*noIndexes, BlockCatalogue(*noIndexes), FlexTotal(), cell, noIndexes->overviewColumns, rows)
            .onQuestion);
}

TEST(CellDetails, IndexLineAndRunsSkipColumnsWithoutValues)
{
    // Three columns: points 0/10, points 0/10, no points at all.
    test::EngineSurvey b;
    b.properties().pointsScale = 10;
    b.addQuestion({.heading = "a", .points = {0, 10}});
    b.addQuestion({.heading = "b", .points = {0, 10}});
    b.addQuestion({.heading = "c", .points = {-1, -1}});
    const Document doc = b.build({{1, 1, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 1}});
    const std::vector<qint32> columns{0, 1, 2};
    const RowList rows{0, 1, 2};

    const std::vector<double> line = columnIndexLine(doc, columns, rows), expected{2.0 / 3, 1.0 / 3, -1.0};
    ASSERT_EQ(line.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(line[i], expected[i], 1e-12) << i;
    // Pooled, not averaged: 3 Good of 6 answers with points.
    EXPECT_DOUBLE_EQ(columnRunIndex(doc, columns, 0, 3, rows), 0.5);
    EXPECT_EQ(columnRunIndex(doc, columns, 2, 1, rows), -1.0);
    EXPECT_EQ(columnRunIndex(doc, columns, 2, 5, rows), -1.0) << "a run past the list stops at its end";
    EXPECT_EQ(columnIndexLine(doc, {0, 7}, rows)[1], -1.0) << "a question the matrix lacks";
}
