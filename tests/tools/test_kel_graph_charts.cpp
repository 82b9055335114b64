// SPDX-License-Identifier: GPL-3.0-or-later
// The chart kinds of `kel graph`, run through the real tool: the JSON names
// of the contract, refusals and command lines that make no sense.
#include "chartsurvey.h"

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

    QJsonObject graph(const char *args) { return jsonOf(runKel(kelArgs("graph", path, args))); }

    QTemporaryDir dir;
    QString path;
};

// Maximum points 100 over a scale of 10: an axis of 0 to 10 in five steps.
// Everyone is selected: the total line and the selection line coincide.
TEST_F(KelGraphCharts, PrintsTheChartDescriptionByTheContractsNames)
{
    const QJsonObject chart = graph("block-index --block 0 --main --questions --lines 3 --explain");
    EXPECT_EQ(chart.keys(),
              words("caption categoryAxisTitle chartType dataLabels horizontal indexLines legendPosition "
                    "selectionCaption series threeD title valueAxis valueAxisTitle verticalLabels"));
    expectJson(chart,
               {{"title", "Work and it's question indexes"},
                {"valueAxis.max", "10"},
                {"valueAxis.ticks", "5"},
                {"series.0.points.1.dataLabel", "5.0"},
                {"series.0.points.3", ""},
                {"indexLines.1.text", "Total index (5.0)"},
                {"indexLines.2", ""}});
}

// North only (Unit option 0), numbers in Swedish format; ranking graphs
// leave the date question out.
TEST_F(KelGraphCharts, SelectionsAndLocalesReachTheChart)
{
    expectJson(graph("--select 0:0 --locale sv_SE total-index --main"),
               {{"series.0.points.0.value", "7.5"},
                {"series.0.points.0.dataLabel", "7,5"},
                {"selectionCaption", "Unit N [4]"}});
    expectJson(graph("--short-names ranking --question 7 --unsorted"),
               {{"title", "Ranking R3"}, {"series.0.points.0.label", "Apple"}, {"series.0.points.3", ""}});
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
                             "total-index --main --lines 4", "block-index --main",
                             "distribution --category 1 --group 1", "--wrong ranking"}) {
        const KelRun run = runKel(kelArgs("graph", path, args));
        EXPECT_EQ(run.exitCode, 64) << args;
        EXPECT_TRUE(run.out.isEmpty());
    }
}

// A block whose items list R3, R1, R3 and R2: its graphs show R1, R2, R3
// once each, in question order, whatever order the items were written in.
// The weights come from the survey's description (R1 3, R2 2, R3 1) and the
// histogram's labels from the questions' headings.
TEST(KelGraphBlockOrder, BlockGraphsTakeTheirQuestionsInQuestionOrderOnce)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    SurveyBuilder b = chartSurvey();
    const qint32 listed = b.addBlock({.name = QStringLiteral("Listed"), .memberRule = false});
    for (qint32 q : {R3, R1, R3, R2})
        b.addBlockItem(listed, q);
    const QString path = dir.filePath(QStringLiteral("listed.kel"));
    ASSERT_TRUE(b.build().writeFile(path));
    const QString block = QString::number(listed);
    const auto run = [&](const char *kind) {
        return jsonOf(runKel(
            QStringList{QStringLiteral("graph"), path, QString::fromUtf8(kind), QStringLiteral("--block"), block}));
    };

    EXPECT_EQ(jsonAt(run("ranking"), "valueAxisTitle").toString(),
              QStringLiteral("Points (3 questions weighted 3, 2 and 1)"));
    // Counts of Apple..Date: R1 and R2 4, 4, 0, 0; R3 1, 2, 2, 3.
    const QJsonObject histogram = run("histogram");
    ASSERT_EQ(jsonAt(histogram, "groups").toArray().size(), 3);
    const int counts[3][4] = {{4, 4, 0, 0}, {4, 4, 0, 0}, {1, 2, 2, 3}};
    for (int g = 0; g < 3; ++g)
        for (int a = 0; a < 4; ++a)
            EXPECT_EQ(jsonAt(histogram, QStringLiteral("bars.%1.count").arg(g * 4 + a).toUtf8().constData()).toInt(),
                      counts[g][a])
                << g << ' ' << a;
    EXPECT_EQ(jsonAt(histogram, "legends").toArray().size(), 4) << "one shared answer scale, one run";
}

TEST(KelGraphSample, SplitTotalIndexAgreesWithTheIndexExport)
{
    // The sample survey's total index by department, once as a chart and
    // once as the exported index table.
    const QJsonArray points =
        jsonAt(jsonOf(runKel(kelArgs("graph", QStringLiteral(KEL_SAMPLE), "total-index --main --split 0"))),
               "series.0.points")
            .toArray();
    const KelRun table = runKel(kelArgs("indexes", QStringLiteral(KEL_SAMPLE), "--category 0 --items total"));
    ASSERT_EQ(table.exitCode, 0) << table.err.toStdString();
    const QStringList lines = QString::fromUtf8(table.out).split(QStringLiteral("\r\n"));
    ASSERT_EQ(points.size(), lines.size() - 1) << "one bar per department, under a header line";
    for (qsizetype i = 0; i < points.size(); ++i) {
        const QStringList cells = lines[i + 1].split(QLatin1Char('\t'));
        ASSERT_EQ(cells.size(), 2);
        const QString label = jsonAt(points[i], "label").toString();
        EXPECT_TRUE(cells[0].endsWith(label.left(label.indexOf(QStringLiteral(" [")))));
        EXPECT_EQ(jsonAt(points[i], "dataLabel").toString(), cells[1].trimmed());
    }
}

} // namespace
