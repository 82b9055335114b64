// SPDX-License-Identifier: GPL-3.0-or-later
// The chart generators: values, orders, texts and scales of ranking,
// distribution and index graphs on a small survey read back by the reader.
#include "chartsurvey.h"

#include "engine/graphs/distributiongraph.h"
#include "engine/graphs/indexgraph.h"
#include "engine/graphs/rankinggraph.h"
#include "engine/indexes/blockindex.h"
#include "engine/selection/counting.h"

#include <gtest/gtest.h>

namespace {

using namespace kel;
using namespace kel::test;

QString labels(const ChartSeries &series)
{
    QStringList out;
    for (const ChartPoint &p : series.points)
        out << p.label;
    return out.join(QLatin1Char('|'));
}

std::vector<double> values(const ChartSeries &series)
{
    std::vector<double> out;
    for (const ChartPoint &p : series.points)
        out.push_back(p.value);
    return out;
}

class ChartGenerators : public ::testing::Test
{
protected:
    void SetUp() override
    {
        doc = readChartSurvey();
        ASSERT_TRUE(doc);
        all = allRows(*doc);
        context.rows = &all;
        context.selectionText = QStringLiteral("Everyone");
        context.shortCategoryNames = false;
    }
    // The index graph with the document's own blocks, compared with a flex
    // total of everyone (whose indexes are the document's total indexes).
    ChartDescription indexGraph(const ChartContext &c, const IndexGraphRequest &request) const
    {
        const BlockCatalogue blocks(*doc);
        FlexTotal flex;
        flex.reset(*doc, blocks);
        return generateIndexGraph(*doc, blocks, flex, c, request);
    }

    ChartContext contextFor(const RowList &rows) const
    {
        ChartContext c = context;
        c.rows = &rows;
        return c;
    }

    std::unique_ptr<Document> doc;
    RowList all;
    ChartContext context;
};

TEST(ChartTexts, LongTitlesAndSelectionCaptionsAreCutToEightyCharacters)
{
    EXPECT_EQ(shortenChartTitle(QString(80, QLatin1Char('x'))), QString(80, QLatin1Char('x')));
    // The first 77 characters end in blanks, which go before the dots.
    EXPECT_EQ(shortenChartTitle(QString(74, QLatin1Char('a')) + QStringLiteral("   bcdef")),
              QString(74, QLatin1Char('a')) + QStringLiteral("..."));
    EXPECT_EQ(chartSelectionCaption(QString(100, QLatin1Char('s')), 8, QLocale::c()),
              QString(73, QLatin1Char('s')) + QStringLiteral("... [8]"));
}

TEST(IndexValueAxis, FollowsTheDocumentsMaximumPoints)
{
    // {maximum points, points scale, axis maximum (0: no axis of its own), ticks}
    const struct {
        qint32 maxPoints, scale;
        double max;
        int ticks;
    } cases[] = {{9, 1, 0, 0},   {-1, 10, 0, 0}, {100, 0, 0, 0},   {45, 10, 5, 5}, {100, 100, 1, 5},
                 {30, 10, 3, 6}, {71, 10, 8, 4}, {700, 10, 70, 7}, {95, 10, 10, 0}};
    for (const auto &c : cases) {
        const auto axis = indexValueAxis(c.maxPoints, c.scale);
        ASSERT_EQ(axis.has_value(), c.max > 0) << c.maxPoints;
        EXPECT_TRUE(!axis || (axis->min == 0 && axis->max == c.max && axis->ticks == c.ticks)) << c.maxPoints;
    }
}

TEST_F(ChartGenerators, RankingWeighsEveryAnswerByItsQuestion)
{
    // Respondent 0 chose Banana first, Apple second and Cherry third.
    const RowList first{0};
    RankingGraphRequest request{.questions = {R1, R2, R3}};
    const ChartDescription one = generateRankingGraph(*doc, contextFor(first), request);
    ASSERT_EQ(one.series.size(), 1u);
    EXPECT_EQ(labels(one.series[0]), QStringLiteral("Banana|Apple|Cherry"));
    EXPECT_EQ(values(one.series[0]), (std::vector<double>{3, 2, 1}));
    EXPECT_EQ(one.valueAxisTitle, QStringLiteral("Points (3 questions weighted 3, 2 and 1)"));
    EXPECT_EQ(one.categoryAxisTitle, QStringLiteral("Everyone [1]"));
    // Everyone: Banana 22, Apple 21, Cherry 2; Date (3 points) is never shown.
    EXPECT_EQ(values(generateRankingGraph(*doc, context, request).series[0]), (std::vector<double>{22, 21, 2}));

    // R3 alone over rows 1-4: Apple 1, Banana 2, Cherry 1: Apple stays before Cherry.
    const RowList rows{1, 2, 3, 4};
    request.questions = {R3};
    request.showPoints = false;
    const ChartDescription chart = generateRankingGraph(*doc, contextFor(rows), request);
    EXPECT_EQ(labels(chart.series[0]), QStringLiteral("Banana|Apple|Cherry"));
    EXPECT_TRUE(chart.valueAxisTitle.isEmpty() && chart.series[0].points[0].dataLabel.isEmpty());

    doc->properties.languageCode = QStringLiteral("sv");
    request.questions = {R1, R3};
    request.showPoints = true;
    EXPECT_EQ(generateRankingGraph(*doc, context, request).valueAxisTitle,
              QString::fromUtf8("Poäng (2 frågor viktade 3 och 1)"));
}

TEST_F(ChartGenerators, DistributionPercentagesRoundHalvesToEven)
{
    DistributionGraphRequest request{.mainCategory = 2, .inPercent = true}; // Site: 1, 3 and 4 of 8
    const ChartDescription bars = generateDistributionGraph(*doc, context, fullSelection(*doc), request);
    ASSERT_EQ(bars.series.size(), 1u);
    EXPECT_EQ(values(bars.series[0]), (std::vector<double>{12, 38, 50}));

    request.type = DistributionGraphType::Pie;
    const ChartDescription pie = generateDistributionGraph(*doc, context, fullSelection(*doc), request);
    EXPECT_EQ(labels(pie.series[0]), QStringLiteral("X (12 %)|Y (38 %)|Z (50 %)"));
    request.inPercent = false;
    const ChartDescription counted = generateDistributionGraph(*doc, context, fullSelection(*doc), request);
    EXPECT_EQ(labels(counted.series[0]), QStringLiteral("X [1]|Y [3]|Z [4]"));

    // With the first alternative meaning "no answer" the pie loses a slice.
    doc->properties.firstAlternativeIsNoAnswer = true;
    EXPECT_EQ(generateDistributionGraph(*doc, context, fullSelection(*doc), request).series[0].points.size(), 2u);
}

TEST_F(ChartGenerators, GroupedDistributionShowsOnlySelectedGroupsOverAllRows)
{
    SelectionMatrix selection = fullSelection(*doc);
    selection.set(1, 1, false); // Role B is not part of the selection
    const DistributionGraphRequest request{.mainCategory = 2,
                                           .type = DistributionGraphType::GroupedBar,
                                           .groupByCategory = 1,
                                           .inPercent = true,
                                           .horizontalBars = true,
                                           .verticalLabels = true};
    const ChartDescription chart = generateDistributionGraph(*doc, context, selection, request);
    ASSERT_EQ(chart.series.size(), 1u);
    EXPECT_EQ(chart.series[0].name, QStringLiteral("A"));
    // Role A: X once, Y once, Z twice, of all 8 rows.
    EXPECT_EQ(values(chart.series[0]), (std::vector<double>{12, 12, 25}));
    // Horizontal bars: the titles trade places and labels stay horizontal.
    EXPECT_TRUE(chart.horizontal && !chart.verticalLabels);
    EXPECT_EQ(chart.valueAxisTitle, QStringLiteral("Everyone [8]"));

    // A first alternative meaning "no answer" is never a series.
    doc->properties.firstAlternativeIsNoAnswer = true;
    const ChartDescription noAnswer = generateDistributionGraph(*doc, context, fullSelection(*doc), request);
    ASSERT_EQ(noAnswer.series.size(), 1u);
    EXPECT_EQ(noAnswer.series[0].name, QStringLiteral("B"));
}

TEST_F(ChartGenerators, OneIndexSplitIntoGroupsBecomesOneSeries)
{
    IndexGraphRequest request{.splitQuestion = UnitQ};
    const ChartDescription chart = indexGraph(context, request);
    ASSERT_EQ(chart.series.size(), 1u);
    // West has no respondents and is dropped.
    EXPECT_EQ(labels(chart.series[0]), QStringLiteral("North [4]|South [4]"));
    EXPECT_EQ(values(chart.series[0]), (std::vector<double>{7.5, 2.5}));
    EXPECT_EQ(chart.series[0].points[0].dataLabel, QStringLiteral("7.5"));

    request.includeEmptySplits = true;
    ChartContext shortNames = context;
    shortNames.shortCategoryNames = true;
    const ChartDescription withEmpty = indexGraph(shortNames, request);
    ASSERT_EQ(withEmpty.series[0].points.size(), 3u);
    const ChartPoint &west = withEmpty.series[0].points[2];
    EXPECT_TRUE(west.label == QStringLiteral("W [0]") && west.value == 0 && west.dataLabel.isEmpty());
}

TEST_F(ChartGenerators, SeveralIndexesSplitIntoGroupsAreOneSeriesPerGroup)
{
    IndexGraphRequest request{.block = WorkBlock,
                              .includeSubIndexes = true,
                              .splitQuestion = RoleQ,
                              .horizontalBars = true,
                              .dataLabels = false};
    const ChartDescription chart = indexGraph(context, request);
    ASSERT_EQ(chart.series.size(), 2u);
    EXPECT_EQ(chart.series[0].name, QStringLiteral("A [4]"));
    EXPECT_EQ(labels(chart.series[0]), QStringLiteral("Block index|Q1|Q2"));
    // Role A = rows 0, 2, 4, 6: Q1 100, 100, 0, 0 and Q2 50 each.
    EXPECT_EQ(values(chart.series[0]), (std::vector<double>{5, 5, 5}));
    EXPECT_TRUE(chart.series[0].points[0].dataLabel.isEmpty());

    request.splitQuestion = -1;
    EXPECT_FALSE(indexGraph(context, request).legendPosition) << "one group, no legend";
}

TEST_F(ChartGenerators, IndexLinesComeInBitOrderAtMostTwoHighestFirst)
{
    const RowList north{0, 1, 2, 3};
    IndexGraphRequest request{.block = WorkBlock, .indexLinesShowExplanation = true};
    request.indexLines = TotalIndexForTotal | TotalIndexForSelection | BlockIndexForTotal | BlockIndexForSelection;
    const ChartDescription chart = indexGraph(contextFor(north), request);
    ASSERT_EQ(chart.indexLines.size(), 2u);
    // The total (5.0) and the selection (7.5): the higher one goes first.
    EXPECT_DOUBLE_EQ(chart.indexLines[0].value, 7.5);
    EXPECT_EQ(chart.indexLines[0].text, QStringLiteral("Total index (7.5)"));
    EXPECT_EQ(chart.indexLines[1].text, QStringLiteral("Total index, total (5.0)"));

    // A line without a value is skipped and the next one takes its place.
    doc->properties.totalIndex = -1;
    request.indexLines = TotalIndexForTotal | BlockIndexForTotal | BlockIndexForSelection;
    const ChartDescription skipped = indexGraph(contextFor(north), request);
    ASSERT_EQ(skipped.indexLines.size(), 2u);
    EXPECT_EQ(skipped.indexLines[1].text, QStringLiteral("Block index, total (5.0)"));

    // Block bits mean nothing to a total graph; no explanation, no text.
    const IndexGraphRequest total{.indexLines = BlockIndexForTotal | TotalIndexForSelection};
    const std::vector<ChartIndexLine> lines = indexGraph(contextFor(north), total).indexLines;
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].value == 7.5 && lines[0].text.isEmpty());
}

TEST_F(ChartGenerators, IndexGraphTitlesFollowTheDialogsAndTheLanguage)
{
    EXPECT_EQ(blockIndexGraphTitle(*doc, BlockCatalogue(*doc), WorkBlock, false, true, SiteQ),
              QStringLiteral("Question indexes for Work split by Site"));
    doc->properties.languageCode = QStringLiteral("sv");
    EXPECT_EQ(totalIndexGraphTitle(*doc, true, false, true, UnitQ),
              QString::fromUtf8("Totalindex och alla frågeindex fördelat på Unit"));

    // Every block with an index for the used total is an item; the total
    // graph's question items are the index columns.
    IndexGraphRequest blocks{.includeMainIndex = false, .includeSubIndexes = true};
    EXPECT_EQ(labels(indexGraph(context, blocks).series[0]), QStringLiteral("Work"));
    blocks.useQuestionsInsteadOfBlocks = true;
    EXPECT_EQ(labels(indexGraph(context, blocks).series[0]), QStringLiteral("Q1|Q2"));
}

} // namespace
