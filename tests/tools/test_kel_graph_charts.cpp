// SPDX-License-Identifier: GPL-3.0-or-later
// The chart kinds of `kel graph`, run through the real tool: the JSON names
// of the contract, refusals and command lines that make no sense.
#include "chartsurvey.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "kelprocess.h"

#include <gtest/gtest.h>

namespace {

using namespace kel::test;

class KelGraphCharts : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        // Unit counts for privacy: a selection leaving 1-2 respondents of a
        // unit may not be split by it.
        SurveyBuilder b = chartSurvey();
        b.header().minimumGraphSelection = 3;
        KelFile file = b.build();
        for (qint32 a = 0; a < 3; ++a)
            file.alternatives[std::size_t(a)].countsForPrivacy = FileTrue;
        path = dir.filePath(QStringLiteral("charts.kel"));
        ASSERT_TRUE(file.writeFile(path));
    }

    QJsonObject graph(const QStringList &args)
    {
        const KelRun run = runKel(kelArgs("graph", path) + args);
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        return QJsonDocument::fromJson(run.out).object();
    }

    QTemporaryDir dir;
    QString path;
};

TEST_F(KelGraphCharts, PrintsTheChartDescriptionByTheContractsNames)
{
    const QJsonObject chart = graph(words("block-index --block 0 --main --questions --lines 3 --explain"));
    EXPECT_EQ(chart.keys(), words("caption categoryAxisTitle chartType dataLabels horizontal indexLines legendPosition "
                                  "selectionCaption series threeD title valueAxis valueAxisTitle verticalLabels"));
    EXPECT_EQ(chart[QStringLiteral("title")].toString(), QStringLiteral("Work and it's question indexes"));
    // Maximum points 100 over a scale of 10: 0 to 10 in five steps.
    const QJsonObject axis = chart[QStringLiteral("valueAxis")].toObject();
    EXPECT_EQ(axis[QStringLiteral("max")].toDouble(), 10);
    EXPECT_EQ(axis[QStringLiteral("ticks")].toInt(), 5);
    const QJsonArray points = chart[QStringLiteral("series")].toArray()[0].toObject()[QStringLiteral("points")].toArray();
    ASSERT_EQ(points.size(), 3);
    EXPECT_EQ(points[1].toObject()[QStringLiteral("dataLabel")].toString(), QStringLiteral("5.0"));
    // Everyone is selected: the total line and the selection line coincide.
    const QJsonArray lines = chart[QStringLiteral("indexLines")].toArray();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[1].toObject()[QStringLiteral("text")].toString(), QStringLiteral("Total index (5.0)"));
}

TEST_F(KelGraphCharts, SelectionsAndLocalesReachTheChart)
{
    // North only (Unit option 0), numbers in Swedish format.
    const QJsonObject chart = graph(words("--select 0:0 --locale sv_SE total-index --main"));
    const QJsonObject point =
        chart[QStringLiteral("series")].toArray()[0].toObject()[QStringLiteral("points")].toArray()[0].toObject();
    EXPECT_EQ(point[QStringLiteral("value")].toDouble(), 7.5);
    EXPECT_EQ(point[QStringLiteral("dataLabel")].toString(), QStringLiteral("7,5"));
    EXPECT_EQ(chart[QStringLiteral("selectionCaption")].toString(), QStringLiteral("Unit N [4]"));

    const QJsonObject ranking = graph(words("--short-names ranking --question 7 --unsorted"));
    const QJsonArray bars = ranking[QStringLiteral("series")].toArray()[0].toObject()[QStringLiteral("points")].toArray();
    ASSERT_EQ(bars.size(), 3) << "Date is kept out of ranking graphs";
    EXPECT_EQ(bars[0].toObject()[QStringLiteral("label")].toString(), QStringLiteral("Apple"));
    EXPECT_EQ(ranking[QStringLiteral("title")].toString(), QStringLiteral("Ranking R3"));
}

TEST_F(KelGraphCharts, RefusalsAndNonsenseGetTheirExitStatus)
{
    // Unit counts for privacy: Role A has two respondents in each unit,
    // fewer than the minimum graph selection, so Unit may not split it.
    const KelRun split = runKel(kelArgs("graph", path, "--select 1:0 total-index --main --split 0"));
    EXPECT_EQ(split.exitCode, 7) << split.out.toStdString();
    EXPECT_TRUE(split.out.isEmpty());
    EXPECT_TRUE(split.err.contains("not allowed"));
    EXPECT_EQ(runKel(kelArgs("graph", path, "total-index --main --split 0")).exitCode, 0) << "everyone may be split";

    for (const char *args : {"pie-chart", "ranking --block 9", "total-index", "total-index --blocks --questions",
                             "total-index --main --lines 4", "block-index --main", "distribution --category 1 --group 1",
                             "--wrong ranking"}) {
        const KelRun run = runKel(kelArgs("graph", path, args));
        EXPECT_EQ(run.exitCode, 64) << args;
        EXPECT_TRUE(run.out.isEmpty());
    }
}

TEST(KelGraphSample, SplitTotalIndexAgreesWithTheIndexExport)
{
    // The sample survey's total index by department, once as a chart and
    // once as the exported index table.
    const KelRun chart = runKel(kelArgs("graph", QStringLiteral(KEL_SAMPLE), "total-index --main --split 0"));
    ASSERT_EQ(chart.exitCode, 0) << chart.err.toStdString();
    const KelRun table = runKel(kelArgs("indexes", QStringLiteral(KEL_SAMPLE), "--category 0 --items total"));
    ASSERT_EQ(table.exitCode, 0) << table.err.toStdString();
    const QStringList lines = QString::fromUtf8(table.out).split(QStringLiteral("\r\n"));
    const QJsonArray points = QJsonDocument::fromJson(chart.out)
                                  .object()[QStringLiteral("series")]
                                  .toArray()[0]
                                  .toObject()[QStringLiteral("points")]
                                  .toArray();
    ASSERT_EQ(points.size(), lines.size() - 1) << "one bar per department, under a header line";
    for (qsizetype i = 0; i < points.size(); ++i) {
        const QStringList cells = lines[i + 1].split(QLatin1Char('\t'));
        ASSERT_EQ(cells.size(), 2);
        const QString label = points[i].toObject()[QStringLiteral("label")].toString();
        EXPECT_TRUE(cells[0].endsWith(label.left(label.indexOf(QStringLiteral(" [")))));
        EXPECT_EQ(points[i].toObject()[QStringLiteral("dataLabel")].toString(), cells[1].trimmed());
    }
}

} // namespace
