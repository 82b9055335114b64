// SPDX-License-Identifier: GPL-3.0-or-later
// Selections written by name or number: what each word resolves to, and the
// errors that name what was not found and list what exists.
#include "engine/selection/selectionquery.h"

#include <gtest/gtest.h>

using namespace kel;

namespace {

// Two categories and a question between them, the first alternative of
// each meaning "no answer" unless asked otherwise.
Document twoCategories(bool firstIsNoAnswer = true)
{
    Document doc;
    doc.properties.firstAlternativeIsNoAnswer = firstIsNoAnswer;
    auto add = [&](const char *code, const char *label, std::vector<std::pair<const char *, const char *>> alts) {
        Question q;
        q.code = QString::fromUtf8(code);
        q.selectionLabel = QString::fromUtf8(label);
        q.isCategory = *label != 0;
        q.firstAlternative = qint32(doc.alternatives.size());
        q.alternativeCount = qint32(alts.size());
        for (const auto &[text, shortText] : alts)
            doc.alternatives.push_back({.text = QString::fromUtf8(text), .shortText = QString::fromUtf8(shortText)});
        if (q.isCategory)
            doc.categories.push_back(qint32(doc.questions.size()));
        doc.questions.push_back(q);
    };
    add("BG1", "Department", {{"No answer", "NA"}, {"Sales", "S"}, {"IT", "IT"}, {"R&D; labs", "RD"}, {"2", "two"}});
    add("Q1", "", {{"Yes", "Y"}, {"No", "N"}});
    add("BG2", "Gender", {{"No answer", "NA"}, {"Woman", "W"}, {"Man", "M"}});
    return doc;
}

std::vector<std::pair<qint32, std::vector<qint32>>> resolved(const ParsedSelectionQuery &p)
{
    std::vector<std::pair<qint32, std::vector<qint32>>> out;
    for (const QueryCategory &c : p.categories)
        out.emplace_back(c.category, c.options);
    return out;
}

using Parts = std::vector<std::pair<qint32, std::vector<qint32>>>;

TEST(SelectionQuery, NamesAndNumbersResolveToTheSameOptions)
{
    const Document doc = twoCategories();
    const struct {
        const char *spec;
        Parts expected;
    } cases[] = {
        {"0:1,2;1:1", {{0, {1, 2}}, {1, {1}}}},
        {"Department=Sales,IT;Gender=Woman", {{0, {1, 2}}, {1, {1}}}},
        {"  department = sales , it ; bg2=W ", {{0, {1, 2}}, {1, {1}}}}, // case, spaces, code, short text
        {"BG1=S", {{0, {1}}}},
        {"Department=", {{0, {}}}},             // ticks none
        {"Department=R&D\\; labs", {{0, {3}}}}, // an escaped separator inside a name
        {"Department=2", {{0, {2}}}},           // digits are a number, never the text "2"
        {"Department=two", {{0, {4}}}},         // the option whose text is "2", by short text
        {"Gender=Man;;", {{1, {2}}}},           // empty parts are nothing
        {"1:2,Woman", {{1, {2, 1}}}},           // numbers and names mixed
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.spec);
        const ParsedSelectionQuery p = parseSelectionQuery(doc, QString::fromUtf8(c.spec));
        ASSERT_TRUE(p.ok()) << p.error.word.toStdString();
        EXPECT_EQ(resolved(p), c.expected);
    }
}

TEST(SelectionQuery, TheHiddenNoAnswerNumberIsRefusedOnlyWhereItIsHidden)
{
    // Number 0 is the no-answer alternative when the document says so: the
    // first visible option is 1. Without it, 0 is an ordinary option.
    const ParsedSelectionQuery hidden = parseSelectionQuery(twoCategories(true), QStringLiteral("0:0"));
    EXPECT_EQ(hidden.error.problem, QueryProblem::HiddenOption);
    EXPECT_EQ(hidden.error.category, 0);
    EXPECT_TRUE(parseSelectionQuery(twoCategories(true), QStringLiteral("0:1")).ok());
    const ParsedSelectionQuery shown = parseSelectionQuery(twoCategories(false), QStringLiteral("0:0"));
    ASSERT_TRUE(shown.ok());
    EXPECT_EQ(resolved(shown), (Parts{{0, {0}}}));
    // Nor can the hidden alternative be named.
    EXPECT_EQ(parseSelectionQuery(twoCategories(true), QStringLiteral("0=No answer")).error.problem,
              QueryProblem::UnknownOption);
    EXPECT_TRUE(parseSelectionQuery(twoCategories(false), QStringLiteral("0=No answer")).ok());
}

TEST(SelectionQuery, RangesEndAtTheLastCategoryAndOption)
{
    const Document doc = twoCategories();
    // Two categories (0, 1); Department has alternatives 0-4, Gender 0-2.
    EXPECT_TRUE(parseSelectionQuery(doc, QStringLiteral("1:1")).ok());
    EXPECT_EQ(parseSelectionQuery(doc, QStringLiteral("2:1")).error.problem, QueryProblem::UnknownCategory);
    EXPECT_TRUE(parseSelectionQuery(doc, QStringLiteral("0:4")).ok());
    EXPECT_EQ(parseSelectionQuery(doc, QStringLiteral("0:5")).error.problem, QueryProblem::UnknownOption);
    EXPECT_TRUE(parseSelectionQuery(doc, QStringLiteral("1:2")).ok());
    EXPECT_EQ(parseSelectionQuery(doc, QStringLiteral("1:3")).error.problem, QueryProblem::UnknownOption);
    EXPECT_EQ(parseSelectionQuery(doc, QStringLiteral("0:99999999999")).error.problem, QueryProblem::UnknownOption);
}

TEST(SelectionQuery, ErrorsNameTheWordAndListWhatExists)
{
    Document doc = twoCategories();
    doc.alternatives[2].shortText = QStringLiteral("Sales"); // "IT" now shares the short text of "Sales"
    const struct {
        const char *spec;
        QueryProblem problem;
        const char *word;
        qint32 category;
        QStringList choices;
    } cases[] = {
        {"Dept=Sales",
         QueryProblem::UnknownCategory,
         "Dept",
         -1,
         {QStringLiteral("0 Department (BG1)"), QStringLiteral("1 Gender (BG2)")}},
        {"Q1=Yes",
         QueryProblem::UnknownCategory,
         "Q1",
         -1, // a question that is no category
         {QStringLiteral("0 Department (BG1)"), QStringLiteral("1 Gender (BG2)")}},
        {"Gender=Girl",
         QueryProblem::UnknownOption,
         "Girl",
         1,
         {QStringLiteral("1 Woman (W)"), QStringLiteral("2 Man (M)")}},
        {"Department=sales",
         QueryProblem::AmbiguousOption,
         "sales",
         0,
         {QStringLiteral("1 Sales (S)"), QStringLiteral("2 IT (Sales)"), QStringLiteral("3 R&D; labs (RD)"),
          QStringLiteral("4 2 (two)")}},
        {"Gender", QueryProblem::Syntax, "Gender", -1, {}},
        {"Gender=Man\\", QueryProblem::Syntax, "Gender=Man\\", -1, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.spec);
        const QueryError e = parseSelectionQuery(doc, QString::fromUtf8(c.spec)).error;
        EXPECT_EQ(e.problem, c.problem);
        EXPECT_EQ(e.word, QString::fromUtf8(c.word));
        EXPECT_EQ(e.category, c.category);
        EXPECT_EQ(e.choices, c.choices);
    }
    // Two categories of one name: only their numbers tell them apart.
    doc.questions[2].selectionLabel = QStringLiteral("Department");
    EXPECT_EQ(parseSelectionQuery(doc, QStringLiteral("department=1")).error.problem, QueryProblem::AmbiguousCategory);
    EXPECT_TRUE(parseSelectionQuery(doc, QStringLiteral("BG2=1")).ok());
}

TEST(SelectionQuery, FlexListsReadTheirOptionsTheSameWay)
{
    const Document doc = twoCategories();
    const ParsedSelectionQuery p = parseOptionList(doc, 2, QStringLiteral("Man, 1"));
    ASSERT_TRUE(p.ok());
    EXPECT_EQ(p.categories.front().options, (std::vector<qint32>{2, 1}));
    EXPECT_EQ(parseOptionList(doc, 2, QStringLiteral("0")).error.problem, QueryProblem::HiddenOption);
}

} // namespace
