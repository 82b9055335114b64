// SPDX-License-Identifier: GPL-3.0-or-later
// `kel` prints nothing the viewer would not show. Every output path of the
// tool runs on the small-unit survey (a unit of 3 among 83; minimums 10
// selection, 5 complement, 5 graph) and its variants, and is held against
// what the viewer permits for the same selection, written down here from
// the rules: no figure, row number or comment of the unit where they hide it.
#include "surveys.h"

#include <QTemporaryDir>

#include "kelprocess.h"

#include <gtest/gtest.h>

namespace {

using namespace kel;
using namespace kel::test;

class KelPrivacy : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mBase = write("base.kel", {});
        mStrict = write("strict.kel", {.minimumSelection = 30});
        mClosed = write("closed.kel", {.minimumSelection = 200});
        mNoData = write("nodata.kel", {.allowCopyData = false});
        mShuffled = write("shuffled.kel", {.rowOrder = 1});
        mHidden = write("hidden.kel", {.minimumGraphSelection = 100});
    }
    QString write(const char *name, const SmallUnitOptions &o)
    {
        const QString path = mDir.filePath(QString::fromLatin1(name));
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly) && f.write(smallUnitSurveyBytes(o)) > 0);
        return path;
    }
    QTemporaryDir mDir;
    QString mBase, mStrict, mClosed, mNoData, mShuffled, mHidden;
};

// The unit's rows are 80, 81 and 82; nothing printed may name one of them
// unless the whole survey's rows are shown.
bool namesUnitRow(const QJsonArray &rows)
{
    for (const QJsonValue &v : rows)
        if (v.toInt() >= 80)
            return true;
    return false;
}

TEST_F(KelPrivacy, SelectPrintsRowsOnlyWhereTheViewerShowsThem)
{
    struct Case {
        const char *label;
        QString *file;
        const char *args;
        int exit; ///< 7: Show refuses
        const char *outcome;
        int rows;     ///< row numbers printed (-1: refused, nothing at all)
        int flexRows; ///< flex row numbers printed
        bool cells;   ///< the sheet's cells printed
    };
    const Case cases[] = {
        {"everyone", &mBase, "", 0, "ok", 83, 83, true},
        {"the unit alone (its category is shaded)", &mBase, "--select 0:2", 7, "blocked", -1, -1, false},
        {"everyone but the unit (complement)", &mBase, "--select 0:0,1", 7, "blocked", -1, -1, false},
        {"flex total without the unit (complement)", &mBase, "--flex 0,1", 7, "blocked", -1, -1, false},
        {"flex total of the unit alone", &mBase, "--flex 2", 0, "ok", 83, 0, true},
        {"20 young, rows shown from 10", &mBase, "--select 1:0", 0, "ok", 20, 83, true},
        {"20 young, rows hidden below 30", &mStrict, "--select 1:0", 0, "ok", 0, 83, false},
        {"the same with a seed", &mStrict, "--select 1:0 --seed 5 --order 1", 0, "ok", 0, 83, false},
        {"flex total leaving out Beta and the unit", &mStrict, "--flex 0 --select 1:1", 7, "blocked", -1, -1, false},
        {"forced random order, seeded", &mShuffled, "--seed 5", 0, "ok", 83, 83, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        const KelRun run = runKel(kelArgs("select", *c.file, c.args));
        ASSERT_EQ(run.exitCode, c.exit) << run.err.toStdString();
        const QJsonObject o = QJsonDocument::fromJson(run.out).object();
        EXPECT_EQ(o[QStringLiteral("outcome")].toString(), QString::fromLatin1(c.outcome));
        if (c.rows < 0) {
            EXPECT_EQ(o.keys(), words("message outcome"));
            continue;
        }
        const QJsonArray rows = o[QStringLiteral("rows")].toArray();
        EXPECT_EQ(rows.size(), c.rows);
        EXPECT_EQ(o[QStringLiteral("rowsShown")].toBool(), c.rows > 0);
        EXPECT_EQ(o[QStringLiteral("flexRows")].toArray().size(), c.flexRows);
        EXPECT_EQ(o[QStringLiteral("flexRowsShown")].toBool(), c.flexRows > 0);
        EXPECT_EQ(o[QStringLiteral("cells")].toArray().isEmpty(), !c.cells);
        if (c.rows < 83) {
            EXPECT_FALSE(namesUnitRow(rows));
        }
        if (c.flexRows < 83) {
            EXPECT_FALSE(namesUnitRow(o[QStringLiteral("flexRows")].toArray()));
        }
        if (c.flexRows == 0 && c.rows > 0) { // a flex total too small for its figures
            EXPECT_EQ(o[QStringLiteral("flexTotalIndex")].toDouble(), -1.0);
        }
    }

    // A forced random order lists the rows without their order: ascending,
    // and the same whatever seed is given.
    const QJsonObject a = jsonOf(runKel(kelArgs("select", mShuffled, "--seed 5")));
    const QJsonObject b = jsonOf(runKel(kelArgs("select", mShuffled, "--seed 6")));
    EXPECT_TRUE(a[QStringLiteral("rowOrderHidden")].toBool());
    EXPECT_EQ(a[QStringLiteral("rows")], b[QStringLiteral("rows")]);
    EXPECT_EQ(jsonAt(a, "rows.82").toInt(), 82);
}

// `dump`: the answers exactly where Copy Overview as Data is allowed for
// everyone (and only the overview's questions), the comments exactly where
// the comments windows are; the structure always, saying what it left out.
TEST_F(KelPrivacy, DumpGivesAnswersAndCommentsOnlyAsTheViewerWould)
{
    struct Case {
        const char *label;
        QString *file;
        bool answers;
        bool comments;
        bool figures; ///< the document's own indexes of everyone
    };
    const Case cases[] = {
        {"everything allowed", &mBase, true, true, true},
        {"the document does not allow copying data", &mNoData, false, true, true},
        {"everyone is below the minimum selection", &mClosed, false, false, true},
        {"everyone is below the minimum graph selection", &mHidden, false, false, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        const KelRun run = runKel(kelArgs("dump", *c.file));
        const QJsonObject o = jsonOf(run);
        EXPECT_EQ(o[QStringLiteral("questions")].toArray().size(), 5); // the structure stays
        EXPECT_EQ(jsonAt(o, "properties.totalIndex").isDouble(), c.figures);
        EXPECT_EQ(jsonAt(o, "questions.3.totalIndex").isDouble(), c.figures);
        const QJsonValue answers = o[QStringLiteral("answers")];
        EXPECT_EQ(answers.isArray(), c.answers);
        EXPECT_EQ(o[QStringLiteral("rowComments")].isArray(), c.comments);
        EXPECT_EQ(o[QStringLiteral("cellComments")].isArray(), c.comments);
        EXPECT_EQ(run.out.contains("Small 80"), c.comments);
        EXPECT_EQ(run.out.contains("Influence 81"), c.comments);
        const QString leftOut = QJsonDocument(o[QStringLiteral("leftOut")].toArray()).toJson();
        EXPECT_EQ(leftOut.contains(QStringLiteral("Copy Overview as Data is not allowed")), !c.answers);
        EXPECT_EQ(leftOut.contains(QStringLiteral("comments windows are not allowed")), !c.comments);
        if (c.answers) {
            // Influence and Workload: the overview's questions, not the categories.
            EXPECT_EQ(o[QStringLiteral("answerColumns")].toArray(), (QJsonArray{3, 4}));
            ASSERT_EQ(answers.toArray().size(), 83);
            EXPECT_EQ(jsonAt(answers, "82").toArray(), (QJsonArray{0, 0})); // Small: Lowest, Low
            EXPECT_EQ(jsonAt(answers, "1").toArray(), (QJsonArray{2, 1}));
        }
    }
}

// Graphs, index tables and splits of the unit: refused where the viewer
// refuses them, with a message and no output.
TEST_F(KelPrivacy, FiguresOfTheUnitAreRefusedWhereTheViewerRefusesThem)
{
    struct Case {
        const char *label;
        const char *command;
        const char *args;
        int exit;
    };
    const Case cases[] = {
        {"graph of the unit alone", "graph", "--select 0:2 histogram --question 3", 7},
        {"graph of everyone but the unit", "graph", "--select 0:0,1 histogram --question 3", 7},
        {"split by the unit's category", "graph", "fraction --question 3 --split 0", 7},
        {"split by a question only the unit answers one way", "graph", "fraction --question 4 --split 3", 7},
        {"split by gender", "graph", "fraction --question 3 --split 2", 0},
        {"indexes of everyone but the unit", "indexes", "--select 0:0,1 --total --items total", 7},
        {"indexes with the flex total leaving out the unit", "indexes", "--flex 0,1 --total --items total", 7},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        const KelRun run = runKel(kelArgs(c.command, mBase, c.args));
        EXPECT_EQ(run.exitCode, c.exit) << run.err.toStdString();
        if (c.exit != 0) {
            EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
            EXPECT_FALSE(run.err.isEmpty());
        }
    }
}

} // namespace
