// SPDX-License-Identifier: GPL-3.0-or-later
// The `kel select` and `kel indexes` contract, run through the real tool on
// documents the test writes and on the bundled sample survey.
#include "kelwriter.h"

#include <QSettings>
#include <QTemporaryDir>

#include "kelprocess.h"

#include <gtest/gtest.h>

namespace {

using namespace kel::writer;
using namespace kel::test;

// 12 respondents: Unit North x6, South x4, West x2 (rows in that order);
// Role alternates A, B. "Q" scores 40 for North, 20 for South, 0 for West
// (scale 10, one decimal); "R" scores 10 for everyone.
class SelectIndexesCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mPath = write(QStringLiteral("units.kel"), false);
        // The same survey where West (2 respondents) takes part in the
        // complement check: restricting Unit then blocks Show.
        mGuardedPath = write(QStringLiteral("guarded.kel"), true);
    }

    QString write(const QString &name, bool westComplementCheck)
    {
        SurveyBuilder b(12);
        HeaderFields &h = b.header();
        h.pointsScale = 10, h.minimumSelection = 5;
        h.minimumGraphSelection = h.minimumComplementSelection = 3;
        h.totalText = b.text(QStringLiteral("Everyone"));
        h.selectionTooSmallText = b.text(QStringLiteral("Selection too small."));
        const qint32 block = b.addBlock({.name = QStringLiteral("Block A")});
        b.addQuestion(
            {.heading = QStringLiteral("Unit"),
             .isCategory = true,
             .inOverview = false,
             .inTotalIndex = false,
             .isFlexCategory = true},
            {{.text = QStringLiteral("North"), .countsForPrivacy = true},
             {.text = QStringLiteral("South"), .countsForPrivacy = true},
             {.text = QStringLiteral("West"), .complementCheck = westComplementCheck, .countsForPrivacy = true}});
        b.addQuestion(
            {.heading = QStringLiteral("Role"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
            {{.text = QStringLiteral("A")}, {.text = QStringLiteral("B")}});
        b.addQuestion({.heading = QStringLiteral("Q"), .block = block},
                      {{.text = QStringLiteral("low"), .points = 0},
                       {.text = QStringLiteral("mid"), .points = 20},
                       {.text = QStringLiteral("high"), .points = 40}});
        b.addQuestion({.heading = QStringLiteral("R"), .block = block}, {{.text = QStringLiteral("ok"), .points = 10}});
        for (qint32 r = 0; r < 12; ++r) {
            const qint32 unit = r < 6 ? 0 : r < 10 ? 1 : 2;
            b.setAnswer(r, 0, unit);
            b.setAnswer(r, 1, r % 2);
            b.setAnswer(r, 2, 2 - unit);
        }
        const QString path = mDir.filePath(name);
        EXPECT_TRUE(writeBytes(path, b.toBytes()));
        return path;
    }

    QJsonObject select(const char *args) { return jsonOf(runKel(kelArgs("select", mPath, args))); }

    QTemporaryDir mDir;
    QString mPath;
    QString mGuardedPath;
};

// West (2 respondents) is below the graph minimum: no split by Unit. Q and R
// pooled over rows 0..9: (6*40 + 4*20 + 10*10) / 20 / 10. The flex total of
// South on top of the current selection (Role A) has 2 < graph minimum.
TEST_F(SelectIndexesCli, SelectCountsRowsAndTexts)
{
    expectJson(select("--select 0:0,1"),
               {{"count", "10"},
                {"selectionText", "Unit North, South"},
                {"found.1.0", "5"},
                {"found.1.2", "0"},
                {"splitNotAllowed.0", "true"},
                {"totalIndex", "2.1"},
                {"rows.0", "0"},
                {"rows.9", "9"},
                {"rows.10", ""}});
    // Two respondents: too few for the flex total's figures or its rows.
    expectJson(select("--select 1:0 --flex 1 --flex-current"),
               {{"flexText", "Current selection but Unit South"},
                {"flexRowsShown", "false"},
                {"flexRows.0", ""},
                {"flexTotalIndex", "-1"}});
}

TEST_F(SelectIndexesCli, IndexesTable)
{
    const KelRun r = runKel(kelArgs("indexes", mPath, "--total --category 0 --counts --items total,blocks,questions"));
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(QString::fromUtf8(r.out),
              QStringLiteral("Everyone\tAnswers\tTotal\tBlock A\tQ\tR\r\n"
                             "Total\t12\t1.8\t1.8\t2.7\t1.0\r\n"
                             "Unit: North\t6\t2.5\t2.5\t4.0\t1.0\r\n"
                             "Unit: South\t4\t---\t---\t---\t---\r\n"
                             "Unit: West\t2\t---\t---\t---\t---"));
    EXPECT_EQ(
        runKel(kelArgs("indexes", mPath, "--select 0:0 --category 1 --items questions --columns --locale sv_SE")).out,
        "Unit North\tRole: A\tRole: B\r\nQ\t4,0\t4,0\r\nR\t1,0\t1,0");
}

// What Show refuses prints its refusal and no figure: neither `select`
// (counts, rows, cells) nor `indexes` (the table) may tell a script what
// the viewer hides. Exit status 7 in every case.
TEST_F(SelectIndexesCli, RefusedSelectionsPrintNoFigures)
{
    // The last: 10 respondents, enough by count; only the complement check refuses.
    const std::tuple<QString, const char *, const char *, const char *> cases[] = {
        {mPath, "0:", "none", "There are no answers matching the selection criterias!"},
        {mPath, "0:2", "tooSmall", "Selection too small."},
        {mGuardedPath, "0:0,1", "blocked",
         "The selection cannot be shown: a category leaves too few respondents outside the selection!"}};
    for (const auto &[path, ticks, outcome, message] : cases) {
        SCOPED_TRACE(outcome);
        const KelRun s = runKel(kelArgs("select", path, "--select") << QString::fromLatin1(ticks));
        EXPECT_EQ(s.exitCode, 7);
        const QJsonObject o = QJsonDocument::fromJson(s.out).object();
        EXPECT_EQ(o.keys(), (words("message outcome")));
        EXPECT_EQ(o[QStringLiteral("outcome")].toString(), QString::fromLatin1(outcome));
        EXPECT_EQ(o[QStringLiteral("message")].toString(), QString::fromLatin1(message));
        const KelRun i = runKel(kelArgs("indexes", path, "--total --category 1 --counts --items total --select")
                                << QString::fromLatin1(ticks));
        EXPECT_EQ(i.exitCode, 7);
        EXPECT_TRUE(i.out.isEmpty()) << i.out.toStdString();
        EXPECT_TRUE(i.err.contains(message)) << i.err.toStdString();
    }

    // The guarded survey with Unit left whole (West not restricted) is shown.
    expectJson(jsonOf(runKel(kelArgs("select", mGuardedPath, "--select 1:0"))), {{"count", "6"}});
}

// One process, one read: every line's status, output and error are those of
// the same command run on its own, whatever ran before it.
TEST_F(SelectIndexesCli, BatchAnswersAsTheSeparateCommandsDo)
{
    // The flex total based on the current selection (line 3) is stored in
    // the command's own copy of the document: the next line must not see it.
    // Quoted arguments split as a shell would.
    const QStringList lines = {
        QStringLiteral("select --select 0:0,1 --max-rows 3"),
        QStringLiteral("select --select 1:0 --flex 1 --flex-current"),
        QStringLiteral("select --max-rows 2"),
        QStringLiteral("indexes --select \"0:0\" --category 1 --items 'questions' --columns --locale sv_SE"),
        QStringLiteral("select --select 0:2"),
    };
    QByteArray input;
    for (const QString &line : lines)
        input += line.toUtf8() + '\n';
    input +=
        "\n# comments and blank lines are skipped\nfrobnicate 1\nselect --select '0:0\nselect ''\nselect --order\n";
    const KelRun batch = runKel(kelArgs("batch", mPath), input);
    ASSERT_EQ(batch.exitCode, 0) << batch.err.toStdString();
    QList<QByteArray> answers = batch.out.split('\n');
    ASSERT_EQ(answers.size(), lines.size() + 5); // and the empty rest after the last line

    for (qsizetype k = 0; k < lines.size(); ++k) {
        SCOPED_TRACE(lines[k].toStdString());
        const QJsonObject answer = QJsonDocument::fromJson(answers[k]).object();
        QStringList alone = words(QString(lines[k]).remove(u'\'').remove(u'"').toUtf8().constData());
        alone.insert(1, mPath);
        const KelRun run = runKel(alone);
        EXPECT_EQ(answer[QStringLiteral("command")].toString(), lines[k]);
        EXPECT_EQ(answer[QStringLiteral("status")].toInt(), run.exitCode);
        EXPECT_EQ(answer[QStringLiteral("output")].toString(), QString::fromUtf8(run.out));
        EXPECT_EQ(answer.value(QStringLiteral("error")).toString(QStringLiteral("none")),
                  run.err.isEmpty() ? QStringLiteral("none") : QString::fromUtf8(run.err));
    }
    EXPECT_EQ(
        jsonAt(QJsonDocument::fromJson(answers[2]).object(), "output").toString().count(QStringLiteral("Everyone")), 2)
        << "the flex text of the line before leaked";
    // An unknown command, an open quote, an empty argument, a usage error.
    for (qsizetype k = lines.size(); k < answers.size() - 1; ++k)
        expectJson(QJsonDocument::fromJson(answers[k]).object(), {{"status", "64"}, {"output", ""}});

    // A document that cannot be read: its result code and message, no lines.
    EXPECT_EQ(runKel(kelArgs("batch", mDir.filePath(QStringLiteral("none.kel"))), input).out,
              "Can not open the file!\n");
}

} // namespace

TEST_F(SelectIndexesCli, IndexesTakeTheUserBlocksOfASettingsFile)
{
    const QString ini = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
    {
        QSettings s(ini, QSettings::IniFormat);
        s.beginGroup(QStringLiteral("Documents/{00000000-0000-0000-0000-000000000000}"));
        for (const auto &[key, value] : {std::pair{"Block Items", "dword:00000003"},
                                         {"Block 001/Name", "Mine"},
                                         {"Block 001/Include In Copy", "dword:00000001"},
                                         {"Block 001/Included Data Headers", "3"},
                                         {"Block 002/Name", "Broken"},
                                         {"Block 002/Include In Copy", "dword:00000001"},
                                         {"Block 002/Included Data Headers", "2|40"}})
            s.setValue(QString::fromLatin1(key), QString::fromLatin1(value));
    }
    const QStringList args = kelArgs("indexes", mPath, "--total --items userblocks");

    // R scores 10 for everyone (1.0); Broken keeps Q and drops the member
    // that is no question of this document, with a warning.
    const KelRun with = runKel(args + QStringList{QStringLiteral("--settings"), ini});
    EXPECT_EQ(with.exitCode, 0) << with.err.toStdString();
    const QStringList lines = QString::fromUtf8(with.out).split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].endsWith(QStringLiteral("\tMine\tBroken"))) << lines[0].toStdString();
    EXPECT_EQ(lines[1], QStringLiteral("Total\t1.0\t2.7")); // Q: (6*40 + 4*20) / 12 / 10
    EXPECT_TRUE(with.err.contains("40")) << with.err.toStdString();

    EXPECT_EQ(
        runKel(args + QStringList{QStringLiteral("--settings"), mDir.filePath(QStringLiteral("no.ini"))}).exitCode, 64);
}
