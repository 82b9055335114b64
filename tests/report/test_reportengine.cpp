// SPDX-License-Identifier: GPL-3.0-or-later
// The report's engine: recipe files, the permission rules, and units that
// go through Show's gates on both sides of the document's minimum.
#include "reportsurvey.h"

#include "engine/report/reportbuilder.h"
#include "texts/reporttexts.h"
#include "texts/selectiontexts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kel::test {
namespace {

ReportWords testWords()
{
    ReportWords w;
    w.tooSmall = QStringLiteral("TOO-SMALL");
    w.noAnswers = QStringLiteral("NO-ANSWERS");
    w.blocked = QStringLiteral("BLOCKED");
    w.refused = QStringLiteral("REFUSED");
    w.picturesForbidden = QStringLiteral("NO-PICTURES");
    w.tablesForbidden = QStringLiteral("NO-TABLES");
    w.commentsForbidden = QStringLiteral("NO-COMMENTS");
    w.splitNotAllowed = QStringLiteral("NO-SPLIT");
    return w;
}

std::vector<ReportUnit> build(const Document &doc, const ReportRecipe &recipe, ReportBase base)
{
    ReportPlanError error;
    const auto plans = planReportUnits(doc, base, recipe, error);
    EXPECT_TRUE(plans) << reportPlanErrorMessage(doc, error, false).toStdString();
    std::vector<ReportUnit> units;
    for (const ReportUnitPlan &plan : plans.value_or(std::vector<ReportUnitPlan>{}))
        units.push_back(buildReportUnit(doc, base, recipe, plan, testWords(), ReportOptions{}));
    return units;
}

std::size_t countKind(const ReportUnit &unit, ReportItem::Kind kind)
{
    return std::size_t(
        std::count_if(unit.items.begin(), unit.items.end(), [kind](const ReportItem &i) { return i.kind == kind; }));
}

QString allText(const ReportUnit &unit)
{
    QString text;
    for (const ReportItem &i : unit.items) {
        text += i.text + QLatin1Char('|') + i.value + QLatin1Char('|');
        for (const QStringList &row : i.table)
            text += row.join(QLatin1Char(';')) + QLatin1Char('|');
    }
    return text;
}

// The label of a table row and its cells.
QStringList tableRow(const ReportUnit &unit, const QString &label)
{
    for (const ReportItem &i : unit.items)
        for (const QStringList &row : i.table)
            if (!row.isEmpty() && row.front() == label)
                return row;
    return {};
}

TEST(ReportRecipe, WrittenAndReadBackUnchanged)
{
    ReportRecipe recipe;
    recipe.units = ReportUnits::ByCategory;
    recipe.category = 2;
    recipe.withinCurrent = true;
    for (const ReportSectionName &s : ReportSectionNames)
        recipe.add(s.section);
    recipe.blocks = {0, 3};
    recipe.split = 4;
    recipe.distributions = {1};
    recipe.date = QStringLiteral("24 November 2026");
    RecipeError error;
    const std::optional<ReportRecipe> back = readReportRecipe(writeReportRecipe(recipe), error);
    ASSERT_TRUE(back) << recipeErrorMessage(error, false).toStdString();
    EXPECT_EQ(back->units, recipe.units);
    EXPECT_EQ(back->category, 2);
    EXPECT_TRUE(back->withinCurrent);
    EXPECT_EQ(back->sections, recipe.sections);
    EXPECT_EQ(back->blocks, recipe.blocks);
    EXPECT_EQ(back->split, 4);
    EXPECT_EQ(back->distributions, recipe.distributions);
    EXPECT_EQ(back->date, recipe.date);

    ReportRecipe list;
    list.units = ReportUnits::List;
    list.selections = {QStringLiteral("0:1,2"), QStringLiteral("0:3;1:0")};
    list.add(ReportSection::TitlePage);
    const std::optional<ReportRecipe> listBack = readReportRecipe(writeReportRecipe(list), error);
    ASSERT_TRUE(listBack) << recipeErrorMessage(error, false).toStdString();
    EXPECT_EQ(listBack->selections, list.selections);
}

// Every problem a recipe can have is worded in both languages, and a line's
// number comes first.
TEST(ReportRecipe, EveryProblemIsWordedInBothLanguages)
{
    const RecipeProblem problems[] = {
        RecipeProblem::UnknownSection,
        RecipeProblem::UnknownSectionHeader,
        RecipeProblem::NotKeyValue,
        RecipeProblem::UnknownKey,
        RecipeProblem::BadValue,
        RecipeProblem::NoReportSection,
        RecipeProblem::ByCategoryNeedsCategory,
        RecipeProblem::ListNeedsSelection,
    };
    for (const RecipeProblem problem : problems) {
        SCOPED_TRACE(int(problem));
        const RecipeError whole{problem, 0, QStringLiteral("wordy"), QStringLiteral("keyed")};
        const QString english = recipeErrorMessage(whole, false);
        const QString swedish = recipeErrorMessage(whole, true);
        EXPECT_FALSE(english.isEmpty());
        EXPECT_NE(english, swedish);
        const RecipeError atLine{problem, 12, whole.word, whole.key};
        EXPECT_EQ(recipeErrorMessage(atLine, false), QStringLiteral("line 12: ") + english);
        EXPECT_EQ(recipeErrorMessage(atLine, true), QStringLiteral("rad 12: ") + swedish);
    }
    EXPECT_EQ(recipeErrorMessage(RecipeError{RecipeProblem::BadValue, 0, QStringLiteral("x"), QStringLiteral("split")},
                                 false),
              QStringLiteral("'x' is not a value for split"));
    EXPECT_TRUE(recipeErrorMessage(RecipeError{}, true).isEmpty());
}

TEST(ReportRecipe, EveryBadLineIsRefusedWithItsNumber)
{
    const struct {
        const char *text;
        const char *line;
    } cases[] = {
        {"[Report]\nsections = title,pictures\n", "line 2"},
        {"[Report]\nunits = everyone\n", "line 2"},
        {"[Report]\n\ncolour = red\n", "line 3"},
        {"[Report]\ncategory = -2\n", "line 2"},
        {"[Report]\nwithin-current = perhaps\n", "line 2"},
        {"[Report]\nblocks = 1,x\n", "line 2"},
        {"[Report]\nsplit = -2\n", "line 2"},
        {"[Other]\n", "line 1"},
        {"[Report]\njust words\n", "line 2"},
        {"sections = title\n", "[Report]"},
        {"[Report]\nunits = by-category\n", "category"},
        {"[Report]\nunits = list\n", "selection"},
    };
    for (const auto &c : cases) {
        RecipeError problem;
        EXPECT_FALSE(readReportRecipe(QString::fromUtf8(c.text), problem)) << c.text;
        const QString error = recipeErrorMessage(problem, false);
        EXPECT_TRUE(error.contains(QLatin1String(c.line))) << c.text << " -> " << error.toStdString();
    }
}

TEST(ReportPermissions, EverySectionFollowsItsOwnPermission)
{
    // What each section shows, read from the permission rules: pictures,
    // tables or data. The title page shows only what Show itself shows.
    enum Needs { Nothing, SavePicture, Copy, CopyData };
    const std::pair<ReportSection, Needs> needs[] = {
        {ReportSection::TitlePage, Nothing},
        {ReportSection::IndexTable, Copy},
        {ReportSection::Overview, SavePicture},
        {ReportSection::BlockHistograms, SavePicture},
        {ReportSection::BlockFractions, SavePicture},
        {ReportSection::TotalIndexGraph, SavePicture},
        {ReportSection::BlockIndexGraphs, SavePicture},
        {ReportSection::DistributionGraphs, SavePicture},
        {ReportSection::RankingGraphs, SavePicture},
        {ReportSection::Comments, CopyData},
    };
    ASSERT_EQ(std::size(needs), std::size(ReportSectionNames));
    for (int bits = 0; bits < 8; ++bits) {
        DocumentProperties p;
        p.allowSavePicture = bits & 1;
        p.allowCopy = bits & 2;
        p.allowCopyData = bits & 4;
        for (const auto &[section, need] : needs) {
            const bool expected = need == Nothing || (need == SavePicture && p.allowSavePicture)
                || (need == Copy && p.allowCopy) || (need == CopyData && p.allowCopyData);
            EXPECT_EQ(reportSectionAllowed(p, section), expected)
                << reportSectionKey(section).toStdString() << " permissions " << bits;
        }
    }
}

TEST(ReportPermissions, AReportIsRefusedOnlyWhenAllItAsksForIsForbidden)
{
    DocumentProperties none;
    DocumentProperties pictures;
    pictures.allowSavePicture = true;
    ReportRecipe graphsAndTable =
        byUnit({ReportSection::TitlePage, ReportSection::BlockFractions, ReportSection::IndexTable});
    EXPECT_TRUE(reportEntirelyForbidden(none, graphsAndTable));
    EXPECT_FALSE(reportEntirelyForbidden(pictures, graphsAndTable));
    EXPECT_FALSE(reportEntirelyForbidden(none, byUnit({ReportSection::TitlePage})));
}

TEST(ReportUnits, EachOptionIsShownFromTheMinimumAndRefusedBelowIt)
{
    const auto doc = unitSurvey();
    Document work = *doc;
    const std::vector<ReportUnit> units = build(*doc,
                                                byUnit({ReportSection::TitlePage, ReportSection::IndexTable,
                                                        ReportSection::BlockFractions, ReportSection::Comments}),
                                                baseOf(work));
    ASSERT_EQ(units.size(), 5u);
    const char *names[] = {"North", "South", "East", "West", "Harbour"};
    for (std::size_t u = 0; u < 5; ++u)
        EXPECT_EQ(units[u].name, QLatin1String(names[u]));
    // East has UnitMinimum - 1 respondents, Harbour exactly UnitMinimum.
    static_assert(UnitMinimum == 5);
    EXPECT_EQ(units[2].refusal, QStringLiteral("TOO-SMALL"));
    EXPECT_TRUE(units[2].items.empty());
    EXPECT_FALSE(units[4].isRefused());
    EXPECT_TRUE(allText(units[4]).contains(QStringLiteral("|5|")));
    EXPECT_EQ(countKind(units[0], ReportItem::Kind::BasicGraph), 1u);
}

TEST(ReportUnits, TheIndexTableHoldsTheUnitBesideTheTotal)
{
    const auto doc = unitSurvey();
    Document work = *doc;
    const std::vector<ReportUnit> units = build(*doc, byUnit({ReportSection::IndexTable}), baseOf(work));
    ASSERT_EQ(units.size(), 5u);
    // Counted by hand: North is rows 0-9, Good on Mood for 0, 3, 6, 9 and
    // on Pay for 0-4; everyone (34 rows) has 12 Good Moods and 9 Good Pays.
    EXPECT_EQ(tableRow(units[0], QStringLiteral("Mood")),
              (QStringList{QStringLiteral("Mood"), QStringLiteral("0.40"), QStringLiteral("0.35")}));
    EXPECT_EQ(tableRow(units[0], QStringLiteral("Pay")),
              (QStringList{QStringLiteral("Pay"), QStringLiteral("0.50"), QStringLiteral("0.26")}));
    // West: rows 22-28, Good Pay on 22 only.
    EXPECT_EQ(tableRow(units[3], QStringLiteral("Pay")),
              (QStringList{QStringLiteral("Pay"), QStringLiteral("0.14"), QStringLiteral("0.26")}));
}

TEST(ReportUnits, WithinTheCurrentSelectionAnOptionLeftOutIsRefused)
{
    const auto doc = unitSurvey();
    Document work = *doc;
    ReportBase base = baseOf(work);
    base.model.setOptionChecked(0, 1, false); // South out of the current selection
    ReportRecipe recipe = byUnit({ReportSection::TitlePage});
    recipe.withinCurrent = true;
    const std::vector<ReportUnit> units = build(*doc, recipe, base);
    ASSERT_EQ(units.size(), 5u);
    EXPECT_FALSE(units[0].isRefused());
    EXPECT_EQ(units[1].refusal, QStringLiteral("NO-ANSWERS"));
}

TEST(ReportUnits, CommentsAreThoseOfTheUnitsRowsOnly)
{
    const auto doc = unitSurvey();
    Document work = *doc;
    const std::vector<ReportUnit> units = build(*doc, byUnit({ReportSection::Comments}), baseOf(work));
    ASSERT_EQ(units.size(), 5u);
    EXPECT_TRUE(allText(units[0]).contains(QStringLiteral("north mood 9")));
    // South has RowsMinimum respondents and shows its rows; West one fewer.
    static_assert(RowsMinimum == 8);
    EXPECT_TRUE(allText(units[1]).contains(QStringLiteral("south mood")));
    EXPECT_FALSE(allText(units[3]).contains(QStringLiteral("west mood")));
    for (const ReportUnit &u : units)
        EXPECT_FALSE(allText(u).contains(QStringLiteral("east secret"))) << u.name.toStdString();
}

TEST(ReportUnits, PermissionsRemoveTheirSectionsAndSayWhy)
{
    const struct {
        UnitSurveyPermissions permissions;
        ReportItem::Kind removed;
        const char *notice;
    } cases[] = {
        {{.copy = true, .savePicture = false, .copyData = true}, ReportItem::Kind::BasicGraph, "NO-PICTURES"},
        {{.copy = false, .savePicture = true, .copyData = true}, ReportItem::Kind::Table, "NO-TABLES"},
        {{.copy = true, .savePicture = true, .copyData = false}, ReportItem::Kind::SubHeading, "NO-COMMENTS"},
    };
    for (const auto &c : cases) {
        const auto doc = unitSurvey(c.permissions);
        Document work = *doc;
        const std::vector<ReportUnit> units =
            build(*doc, byUnit({ReportSection::IndexTable, ReportSection::BlockFractions, ReportSection::Comments}),
                  baseOf(work));
        ASSERT_FALSE(units.empty());
        EXPECT_EQ(countKind(units[0], c.removed), 0u) << c.notice;
        EXPECT_TRUE(allText(units[0]).contains(QLatin1String(c.notice)));
        EXPECT_FALSE(allText(units[0]).contains(QStringLiteral("north mood"))
                     && c.removed == ReportItem::Kind::SubHeading);
    }
}

TEST(ReportUnits, ASplitThatWouldShowASmallGroupIsLeftOutWithItsWords)
{
    const auto doc = unitSurvey();
    Document work = *doc;
    ReportRecipe recipe = byUnit({ReportSection::TotalIndexGraph, ReportSection::BlockIndexGraphs});
    recipe.split = RoleQuestion;
    const std::vector<ReportUnit> units = build(*doc, recipe, baseOf(work));
    ASSERT_EQ(units.size(), 5u);
    // North: Boss and Staff have UnitMinimum each; Harbour's Boss one fewer.
    EXPECT_EQ(countKind(units[0], ReportItem::Kind::Chart), 2u);
    EXPECT_EQ(countKind(units[0], ReportItem::Kind::Notice), 0u);
    EXPECT_EQ(countKind(units[4], ReportItem::Kind::Chart), 0u);
    EXPECT_EQ(countKind(units[4], ReportItem::Kind::Notice), 2u);
    EXPECT_TRUE(allText(units[4]).contains(QStringLiteral("NO-SPLIT")));
    // Whole graphs are not affected by the split's rule.
    recipe.split = -1;
    EXPECT_EQ(countKind(build(*doc, recipe, baseOf(work))[4], ReportItem::Kind::Chart), 2u);

    // A distribution shows each group's size: the same rule holds.
    ReportRecipe distribution = byUnit({ReportSection::DistributionGraphs});
    distribution.distributions = {1};
    const std::vector<ReportUnit> roles = build(*doc, distribution, baseOf(work));
    EXPECT_EQ(countKind(roles[0], ReportItem::Kind::Chart), 1u);
    EXPECT_EQ(countKind(roles[4], ReportItem::Kind::Chart), 0u);
    EXPECT_TRUE(allText(roles[4]).contains(QStringLiteral("Role: NO-SPLIT")));
}

TEST(ReportUnits, AListNamesItsSelections)
{
    const auto doc = unitSurvey();
    Document work = *doc;
    ReportRecipe recipe;
    recipe.units = ReportUnits::List;
    recipe.selections = {QStringLiteral("0:0,4"), QStringLiteral("0:2")};
    recipe.add(ReportSection::TitlePage);
    const std::vector<ReportUnit> units = build(*doc, recipe, baseOf(work));
    ASSERT_EQ(units.size(), 2u);
    EXPECT_TRUE(allText(units[0]).contains(QStringLiteral("|15|"))); // North and Harbour
    EXPECT_EQ(units[1].refusal, QStringLiteral("TOO-SMALL"));

    // By names, as kel's --select takes them: the same units.
    recipe.selections = {QStringLiteral("Unit=north,Harbour"), QStringLiteral("U=East")};
    const std::vector<ReportUnit> named = build(*doc, recipe, baseOf(work));
    ASSERT_EQ(named.size(), 2u);
    EXPECT_TRUE(allText(named[0]).contains(QStringLiteral("|15|")));
    EXPECT_EQ(named[1].refusal, QStringLiteral("TOO-SMALL"));

    // Past the last option (Harbour, 4), an unknown name, an unknown
    // category: each an error that says what exists.
    const struct {
        const char *selection;
        const char *says;
    } wrong[] = {
        {"0:5", "no option '5'"},
        {"Unit=Nowhere", "no option 'Nowhere'"},
        {"Team=North", "no category 'Team'"},
    };
    for (const auto &w : wrong) {
        SCOPED_TRACE(w.selection);
        recipe.selections = {QString::fromUtf8(w.selection)};
        ReportPlanError planError;
        EXPECT_FALSE(planReportUnits(*doc, baseOf(work), recipe, planError));
        const QString error = reportPlanErrorMessage(*doc, planError, false);
        EXPECT_TRUE(error.contains(QString::fromUtf8(w.says))) << error.toStdString();
        EXPECT_TRUE(error.contains(QStringLiteral("Harbour")) || error.contains(QStringLiteral("Role")))
            << error.toStdString();
    }
    recipe.selections = {QStringLiteral("0:4")};
    ReportPlanError error;
    EXPECT_TRUE(planReportUnits(*doc, baseOf(work), recipe, error))
        << reportPlanErrorMessage(*doc, error, false).toStdString();
}

} // namespace
} // namespace kel::test
