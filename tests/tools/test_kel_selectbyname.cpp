// SPDX-License-Identifier: GPL-3.0-or-later
// Selections by name through the real tool: every option of every category
// of the sample, by name and by number, selects the respondents the answer
// matrix says; every command takes names; unknown names are usage errors
// that list what exists.
#include "kelprocess.h"

#include "engine/document/documentreader.h"

#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using namespace kel::test;

const QString Sample = QStringLiteral(KEL_SAMPLE);

TEST(SelectByName, EveryOptionByNameAndNumberSelectsTheRespondentsTheAnswersSay)
{
    const QJsonObject dump = jsonOf(runKel({QStringLiteral("dump"), Sample}));
    const QJsonArray questions = dump.value(QStringLiteral("questions")).toArray();
    const QJsonArray alternatives = dump.value(QStringLiteral("alternatives")).toArray();
    ASSERT_TRUE(jsonAt(dump, "properties.firstAlternativeIsNoAnswer").toBool());
    // The dump leaves out the answers of questions outside the overview, the
    // categories among them: the counts come from the matrix as read.
    const kel::ReadResult read = kel::readDocumentFile(Sample);
    ASSERT_EQ(read.code, kel::OpenResult::Ok);
    const kel::Document &doc = *read.document;
    ASSERT_EQ(doc.rowCount(), 600);

    // One batch: for each option, its name form and its number form.
    QByteArray lines;
    std::vector<qint64> expected;
    const QJsonArray categories = dump.value(QStringLiteral("categories")).toArray();
    for (qsizetype c = 0; c < categories.size(); ++c) {
        const qint32 question = categories[c].toInt();
        const QJsonObject q = questions[question].toObject();
        const qint32 first = q.value(QStringLiteral("firstAlternative")).toInt();
        for (qint32 o = 1; o < q.value(QStringLiteral("alternativeCount")).toInt(); ++o) {
            // The hidden no-answer alternative (0) stays ticked, as in the navigator.
            qint64 count = 0;
            for (qint32 row = 0; row < doc.rowCount(); ++row) {
                const qint32 a = doc.getData(row, question);
                count += a == 0 || a == o;
            }
            expected.push_back(count);
            const QString text = alternatives[first + o].toObject().value(QStringLiteral("text")).toString();
            const QString label = q.value(QStringLiteral("selectionLabel")).toString();
            lines += QStringLiteral("select --max-rows 0 --select \"%1=%2\"\n").arg(label, text).toUtf8();
            lines += QStringLiteral("select --max-rows 0 --select %1:%2\n").arg(c).arg(o).toUtf8();
        }
    }
    ASSERT_EQ(expected.size(), 6u + 4u + 3u + 4u);
    const KelRun batch = runKel({QStringLiteral("batch"), Sample}, lines);
    ASSERT_EQ(batch.exitCode, 0);
    const QList<QByteArray> replies = batch.out.trimmed().split('\n');
    ASSERT_EQ(replies.size(), qsizetype(2 * expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        for (int form = 0; form < 2; ++form) {
            const QJsonObject reply = QJsonDocument::fromJson(replies[qsizetype(2 * i) + form]).object();
            SCOPED_TRACE(reply.value(QStringLiteral("command")).toString().toStdString());
            ASSERT_EQ(reply.value(QStringLiteral("status")).toInt(-1), 0);
            const QJsonObject out =
                QJsonDocument::fromJson(reply.value(QStringLiteral("output")).toString().toUtf8()).object();
            EXPECT_EQ(out.value(QStringLiteral("count")).toInteger(-1), expected[i]);
        }
    }
}

TEST(SelectByName, EveryCommandTakesNames)
{
    QTemporaryDir dir;
    const QString byName = QStringLiteral("Department=Sales,IT;BG3=woman");
    const QString byNumber = QStringLiteral("0:1,4;2:1");
    const struct {
        const char *command;
        const char *rest;
    } commands[] = {
        {"select", "--seed 3"},
        {"indexes", "--total --items total,blocks"},
        {"graph", "histogram --block 0"},
    };
    for (const auto &c : commands) {
        SCOPED_TRACE(c.command);
        // The selection before the rest: graph's kind ends the common options.
        const KelRun named =
            runKel(kelArgs(c.command, Sample) << QStringLiteral("--select") << byName << words(c.rest));
        const KelRun numbered =
            runKel(kelArgs(c.command, Sample) << QStringLiteral("--select") << byNumber << words(c.rest));
        EXPECT_EQ(named.exitCode, 0) << named.err.toStdString();
        EXPECT_FALSE(named.out.isEmpty());
        EXPECT_EQ(named.out, numbered.out);
    }
    // Pictures: the same bytes from either form (where kel can draw).
    if (!KEL_CAN_RENDER)
        return;
    const QString a = dir.filePath(QStringLiteral("a.svg")), b = dir.filePath(QStringLiteral("b.svg"));
    for (const auto &[selection, file] : {std::pair{byName, a}, std::pair{byNumber, b}})
        EXPECT_EQ(runKel(kelArgs("render", Sample)
                         << QStringLiteral("--select") << selection << words("graph fraction --block 0 -o") << file)
                      .exitCode,
                  0);
    QFile fa(a), fb(b);
    ASSERT_TRUE(fa.open(QIODevice::ReadOnly) && fb.open(QIODevice::ReadOnly));
    EXPECT_EQ(fa.readAll(), fb.readAll());
    // And in a batch, quoted as in a shell.
    const KelRun batch = runKel({QStringLiteral("batch"), Sample},
                                "indexes --total --items total --select 'Department=Sales,IT;BG3=woman'\n"
                                "indexes --total --items total --select \"0:1,4;2:1\"\n");
    const QList<QByteArray> replies = batch.out.trimmed().split('\n');
    ASSERT_EQ(replies.size(), 2);
    EXPECT_EQ(QJsonDocument::fromJson(replies[0]).object().value(QStringLiteral("output")),
              QJsonDocument::fromJson(replies[1]).object().value(QStringLiteral("output")));
    EXPECT_TRUE(replies[0].contains("\"status\":0"));
}

TEST(SelectByName, WhatIsNotFoundIsAUsageErrorListingWhatExists)
{
    const struct {
        const char *spec;
        const char *says;
    } cases[] = {
        {"Dept=Sales",
         "no category 'Dept'; the categories are: 0 Department (BG1), 1 Age group (BG2), 2 Gender (BG3), "
         "3 Years of employment (BG4)"},
        {"4:1", "no category '4'"},
        {"3:1", nullptr}, // the last category
        {"Gender=Girl",
         "category 2 (Gender) has no option 'Girl'; its options are: 1 Woman, 2 Man, 3 Other or prefer "
         "not to say"},
        {"2:4", "category 2 (Gender) has no option '4'"},
        {"2:3", nullptr}, // the last option
        {"2:0", "option 0 of category 2 (Gender) is the hidden no-answer alternative"},
        {"Gender", "'Gender' is not CATEGORY=OPTION"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.spec);
        for (const char *command : {"select", "indexes", "graph", "render", "report"}) {
            SCOPED_TRACE(command);
            const bool drawn = QByteArray(command) == "render" || QByteArray(command) == "report";
            if (drawn && !KEL_CAN_RENDER)
                continue;
            QStringList args = kelArgs(command, Sample) << QStringLiteral("--select") << QString::fromUtf8(c.spec);
            if (QByteArray(command) == "indexes")
                args << QStringLiteral("--total") << QStringLiteral("--items") << QStringLiteral("total");
            else if (QByteArray(command) == "graph")
                args << QStringLiteral("histogram") << QStringLiteral("--block") << QStringLiteral("0");
            else if (QByteArray(command) == "render")
                args << QStringLiteral("overview") << QStringLiteral("-o") << QStringLiteral("/dev/null/x.png");
            else if (QByteArray(command) == "report")
                args << QStringLiteral("--sections") << QStringLiteral("title") << QStringLiteral("-o")
                     << QStringLiteral("/dev/null/x.html");
            const KelRun run = runKel(args);
            if (c.says) {
                EXPECT_EQ(run.exitCode, 64);
                EXPECT_TRUE(run.err.contains(c.says)) << run.err.toStdString();
                EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
            } else {
                EXPECT_NE(run.exitCode, 64) << run.err.toStdString();
            }
        }
    }
}

} // namespace

namespace {

// The decimal separator of the total index line, 0.59 on the sample.
TEST(KelLocale, NumbersFollowTheOptionThenLcAllLcNumericLang)
{
    const struct {
        QStringList environment;
        const char *option; ///< --locale's value, or null
        const char *total;  ///< the line, or null for a usage error
    } cases[] = {
        {{}, nullptr, "Total\t0.59"},
        {{"LANG=sv_SE.UTF-8"}, nullptr, "Total\t0,59"},
        {{"LC_NUMERIC=sv_SE.UTF-8", "LANG=en_US.UTF-8"}, nullptr, "Total\t0,59"},
        {{"LC_NUMERIC=en_US.UTF-8", "LANG=sv_SE.UTF-8"}, nullptr, "Total\t0.59"},
        {{"LC_ALL=sv_SE.UTF-8", "LC_NUMERIC=en_US.UTF-8", "LANG=en_US.UTF-8"}, nullptr, "Total\t0,59"},
        {{"LC_ALL=C", "LANG=sv_SE.UTF-8"}, nullptr, "Total\t0.59"},
        {{"LC_ALL=", "LC_NUMERIC=", "LANG=de_DE@euro"}, nullptr, "Total\t0,59"}, // empty is unset
        {{"LANG=no_such_LOCALE"}, nullptr, "Total\t0.59"},                       // unknown: C
        {{"LANG=sv_SE.UTF-8"}, "C", "Total\t0.59"},
        {{"LC_ALL=C"}, "sv_SE", "Total\t0,59"},
        {{"LC_ALL=C"}, "POSIX", "Total\t0.59"},
        {{}, "bogus", nullptr},
        {{}, "no_such_LOCALE", nullptr}, // not Norwegian, however Qt would read it
        {{}, "sv_XX", nullptr},
        {{}, "xx_SE", nullptr},
        {{}, "sv-SE", "Total\t0,59"},
        {{}, "", nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(
            (c.environment.join(u' ') + QStringLiteral(" --locale ") + QString::fromUtf8(c.option ? c.option : "-"))
                .toStdString());
        QStringList args = kelArgs("indexes", Sample, "--total --items total");
        if (c.option)
            args << QStringLiteral("--locale") << QString::fromUtf8(c.option);
        const KelRun run = runKel(args, {}, c.environment);
        if (!c.total) {
            EXPECT_EQ(run.exitCode, 64);
            EXPECT_TRUE(run.err.contains("--locale: no locale")) << run.err.toStdString();
            continue;
        }
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_EQ(run.out.split('\n').last().trimmed(), QByteArray(c.total));
    }
}

} // namespace
