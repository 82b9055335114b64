// SPDX-License-Identifier: GPL-3.0-or-later
// The `kel graph` contract for the histogram and fraction kinds, run through
// the real tool on a written document and on the bundled sample survey.
#include "kelwriter.h"

#include <QTemporaryDir>

#include "kelprocess.h"

#include <gtest/gtest.h>

namespace {

using namespace kel::writer;
using namespace kel::test;

// 12 respondents: Unit North x6, South x4, West x2 (West counts for privacy,
// so splitting by Unit is refused below 3); Q in block "Work".
class KelGraph : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SurveyBuilder b(12);
        HeaderFields &h = b.header();
        h.pointsScale = 10;
        h.minimumGraphSelection = 3;
        h.minimumSelection = 3;
        h.totalText = b.text(QStringLiteral("Everyone"));
        h.selectionTooSmallText = b.text(QStringLiteral("Too few."));
        h.language = b.text(QStringLiteral("sv"));
        const qint32 block = b.addBlock({.name = QStringLiteral("Work")});
        b.addBlock({.name = QStringLiteral("Empty")});
        b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false},
                      {{.text = QStringLiteral("North"), .shortText = QStringLiteral("N"), .countsForPrivacy = true},
                       {.text = QStringLiteral("South"), .countsForPrivacy = true},
                       {.text = QStringLiteral("West"), .countsForPrivacy = true}});
        b.addQuestion({.heading = QStringLiteral("Role"), .isCategory = true, .inOverview = false},
                      {{.text = QStringLiteral("A"), .shortText = QStringLiteral("a")},
                       {.text = QStringLiteral("B"), .shortText = QStringLiteral("b")}});
        b.addQuestion({.code = QStringLiteral("Q"),
                       .heading = QStringLiteral("Load"),
                       .text = QStringLiteral("Is it?"),
                       .block = block},
                      {{.text = QStringLiteral("low"), .points = 0, .colour = rgb(255, 0, 0)},
                       {.text = QStringLiteral("high"), .points = 20, .colour = rgb(0, 0, 255), .graphAttribute = 1}});
        b.setAnswers(0, {0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2});
        b.setAnswers(1, {0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1});
        b.setAnswers(2, {1, 1, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1});
        path = mDir.filePath(QStringLiteral("g.kel"));
        ASSERT_TRUE(writeBytes(path, b.toBytes()));
    }

    KelRun graph(const char *args) { return runKel(kelArgs("graph", path, args)); }

    QTemporaryDir mDir;
    QString path;
};

// Sorted by points: high first, 7 of 12 -> 583 per mille, 58 %. North only
// differs from the used total, so the block graph compares. Texts drawn in
// the graph follow the document's language (Swedish).
TEST_F(KelGraph, HistogramFractionAndSplitDescriptions)
{
    expectJson(jsonOf(graph("histogram --question 2")),
               {{"caption", "Frågehistogram: Load"},
                {"selectionText", "Everyone [12]"},
                {"bars.0.count", "7"},
                {"bars.0.perMille", "583"},
                {"bars.0.percentText", "58"},
                {"bars.0.colour", "16711680"},
                {"bars.2.count", ""},
                {"groups.0.label", "Q (1.2) Is it?"},
                {"totalText", ""}});
    const QJsonObject block = jsonOf(graph("--select 0:0 fraction --block 0"));
    expectJson(block, {{"caption", "Blockgraf: Work"}, {"groups.0.label", "Q (1.3 / 1.2) Is it?"}});
    EXPECT_TRUE(jsonAt(block, "selectionText").toString().endsWith(QStringLiteral("[6] / Everyone [12]")));
    // Reversed: low (0 points) before high.
    expectJson(jsonOf(graph("--short-names --reversed histogram --question 2 --split 1")),
               {{"title", "Load fördelad på Role"},
                {"groups.0.label", "a (1.3) [6]"},
                {"groups.2.label", ""},
                {"totalText", "Totalt: 1.2"},
                {"legends.0.text", "low"}});
}

TEST_F(KelGraph, RefusalsAndUsage)
{
    // Nothing selected, below the minimum, and West's two respondents shown by
    // a split by Unit: exit 7, message only.
    for (const char *refused : {"--select 0: histogram --question 2", "--select 0:2 histogram --question 2",
                                "fraction --question 2 --split 0"}) {
        const KelRun run = graph(refused);
        EXPECT_EQ(run.exitCode, 7) << refused;
        EXPECT_TRUE(run.out.isEmpty() && !run.err.isEmpty()) << refused;
    }
    for (const char *nonsense : {"", "histogram", "histogram --block 0 --question 2", "histogram --question x",
                                 "histogram --block 0 --split 1", "--select 7:0 histogram --question 2"}) {
        const KelRun run = graph(nonsense);
        EXPECT_EQ(run.exitCode, 64) << nonsense;
        EXPECT_TRUE(run.out.isEmpty());
    }
    // The empty block has nothing to draw.
    const KelRun run = graph("histogram --block 1");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_EQ(run.err.trimmed(), QByteArrayLiteral("The block did not contain any questions!"));
}

TEST(KelGraphSample, SplitGroupsMatchTheSelectionCounts)
{
    // The split graph's group sizes are the counts `kel select` finds.
    const QJsonArray found =
        jsonAt(jsonOf(runKel(kelArgs("select", QStringLiteral(KEL_SAMPLE), "--max-rows 0"))), "found.2").toArray();
    const QJsonArray groups = jsonOf(runKel(
        kelArgs("graph", QStringLiteral(KEL_SAMPLE), "fraction --question 45 --split 2")))[QStringLiteral("groups")]
                                  .toArray();
    ASSERT_EQ(groups.size(), 3);
    for (int g = 0; g < 3; ++g) {
        const QString label = jsonAt(groups[g], "label").toString();
        EXPECT_TRUE(label.endsWith(QStringLiteral("[%1]").arg(found[g + 1].toInt()))) << label.toStdString();
    }
}

} // namespace
