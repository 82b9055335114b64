// SPDX-License-Identifier: GPL-3.0-or-later
// The words for selection errors: every problem is worded in both languages,
// and each wording keeps what the writer of the selection needs to fix it.
#include "texts/selectiontexts.h"

#include <gtest/gtest.h>

using namespace kel;

namespace {

Document oneCategory()
{
    Document doc;
    doc.properties.firstAlternativeIsNoAnswer = true;
    Question q;
    q.code = QStringLiteral("BG1");
    q.selectionLabel = QStringLiteral("Gender");
    q.isCategory = true;
    q.firstAlternative = 0;
    q.alternativeCount = 3;
    for (const char *text : {"No answer", "Woman", "Man"}) {
        Alternative alternative;
        alternative.text = QString::fromUtf8(text);
        doc.alternatives.push_back(alternative);
    }
    doc.categories.push_back(0);
    doc.questions.push_back(q);
    return doc;
}

TEST(SelectionTexts, EveryProblemIsWordedInBothLanguagesWithTheWordAndTheChoices)
{
    const Document doc = oneCategory();
    const QStringList categories{QStringLiteral("0 Gender (BG1)")};
    const QStringList options{QStringLiteral("1 Woman"), QStringLiteral("2 Man")};
    const struct {
        QueryProblem problem;
        qint32 category;
        QStringList choices;
    } cases[] = {
        {QueryProblem::Syntax, -1, {}},
        {QueryProblem::UnknownCategory, -1, categories},
        {QueryProblem::AmbiguousCategory, -1, categories},
        {QueryProblem::UnknownOption, 0, options},
        {QueryProblem::AmbiguousOption, 0, options},
        {QueryProblem::HiddenOption, 0, options},
        {QueryProblem::UnknownOption, -1, options}, // the flex category's list
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(int(c.problem));
        const QueryError e{c.problem, QStringLiteral("Xyz"), c.category, c.choices};
        const QString english = queryErrorMessage(doc, e, false);
        const QString swedish = queryErrorMessage(doc, e, true);
        EXPECT_NE(english, swedish);
        for (const QString &text : {english, swedish}) {
            EXPECT_TRUE(text.contains(QStringLiteral("'Xyz'")) || text.contains(QStringLiteral(" Xyz ")))
                << text.toStdString();
            for (const QString &choice : c.choices)
                EXPECT_TRUE(text.contains(choice)) << text.toStdString();
            if (c.category >= 0) {
                EXPECT_TRUE(text.contains(QStringLiteral("(Gender)"))) << text.toStdString();
            }
        }
    }
    EXPECT_TRUE(queryErrorMessage(doc, QueryError{}, false).isEmpty());
    EXPECT_TRUE(queryErrorMessage(doc, QueryError{}, true).isEmpty());
}

TEST(SelectionTexts, AReportPlanErrorSaysWhichCategoryIsMissingAndHowManyThereAre)
{
    const Document doc = oneCategory();
    ReportPlanError error;
    error.missingCategory = 4;
    EXPECT_EQ(reportPlanErrorMessage(doc, error, false), QStringLiteral("the document has no category 4 (it has 1)"));
    const QString swedish = reportPlanErrorMessage(doc, error, true);
    EXPECT_TRUE(swedish.contains(QStringLiteral("4")) && swedish.contains(QStringLiteral("1")))
        << swedish.toStdString();
    EXPECT_NE(swedish, reportPlanErrorMessage(doc, error, false));

    // A selection's error is worded as the selection's own.
    ReportPlanError selection;
    selection.selection = QueryError{QueryProblem::UnknownCategory, QStringLiteral("Team"), -1, {}};
    EXPECT_EQ(reportPlanErrorMessage(doc, selection, true), queryErrorMessage(doc, selection.selection, true));
    EXPECT_TRUE(reportPlanErrorMessage(doc, ReportPlanError{}, false).isEmpty());
}

} // namespace
