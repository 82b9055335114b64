// SPDX-License-Identifier: GPL-3.0-or-later
// The overview's text exports: the whole sheet's answers and one row's
// answers, as they go to the clipboard.
#include "engine/overview/overviewtext.h"
#include "engine/overview/subsheet.h"

#include "picturedocument.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(OverviewDataText, ListsEveryRowWholeUnderEveryRowOrder)
{
    // More rows than the sheet shows by default: the text is not limited.
    const SurveyBuilder builder = pictureSurvey(1000);
    const auto doc = readSurvey(builder);
    ASSERT_TRUE(doc);
    for (qint32 order : {RowOrderOriginal, RowOrderRandom, RowOrderRandomPerColumn}) {
        SCOPED_TRACE(order);
        FlexTotal flex;
        RowRandom random(42);
        const SubSheet sheet = createSubSheet(*doc, SelectionMatrix(1, doc->maxCategoryAlternatives), flex, order,
                                              random);
        ASSERT_EQ(sheet.outcome, SubSheetOutcome::Ok);
        ASSERT_EQ(sheet.rows.size(), 1000u);
        const QString text = overviewDataText(*doc, sheet.rows, doc->overviewColumns);
        EXPECT_FALSE(text.endsWith(QLatin1Char('\n')));
        const QStringList lines = text.split(QStringLiteral("\r\n"));
        ASSERT_EQ(lines.size(), 1000);
        // Line k holds the whole respondent at position k of the list, even
        // where the sheet rotates each column.
        for (int k = 0; k < lines.size(); ++k) {
            QStringList expected;
            for (qint32 q : doc->overviewColumns)
                expected << QString::number(builder.answer(sheet.rows[std::size_t(k)], q) + 1); // labels "1".."3"
            ASSERT_EQ(lines[k], expected.join(QLatin1Char('\t'))) << "line " << k;
        }
        EXPECT_EQ(sheet.randomPerColumn, order == RowOrderRandomPerColumn);
    }
}

TEST(RowAnswersText, BlocksQuestionsAnswersAndComments)
{
    const auto doc = readSurvey(pictureSurvey(4));
    ASSERT_TRUE(doc);
    // The first column has no block: no block line before it.
    EXPECT_EQ(rowAnswersText(*doc, 1, doc->overviewColumns),
              QStringLiteral("A0. I like it here\tNeutral\r\n"
                             "Work\r\n"
                             "A1. My tasks are clear\tDisagree\tFirst line, second line\r\n"
                             "A2. I get feedback\tAgree\r\n"
                             "Pay\r\n"
                             "B1. My pay is fair\tNeutral"));
    // A block coming back after another gets its line again; a row without
    // comments has no comment cells.
    EXPECT_EQ(rowAnswersText(*doc, 0, {2, 4, 3}),
              QStringLiteral("Work\r\nA1. My tasks are clear\tNeutral\r\nPay\r\nB1. My pay is fair\tAgree\r\n"
                             "Work\r\nA2. I get feedback\tDisagree"));
    // Rows outside the matrix give empty cells or nothing.
    EXPECT_EQ(rowAnswersText(*doc, 4, doc->overviewColumns), QString());
    EXPECT_EQ(overviewDataText(*doc, {2, 99, -1}, {1, 3}), QStringLiteral("3\t2\r\n\t\r\n\t"));
}

} // namespace
} // namespace kel::test
