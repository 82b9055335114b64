// SPDX-License-Identifier: GPL-3.0-or-later
// What `kel` loads, watched by the dynamic loader itself: the commands that
// count and export load nothing beyond QtCore (and what QtCore needs), zlib
// and the C++ runtime; pictures start the rendering helper, a batch only at
// its first picture; without the helper pictures fail with their own status.
#include "kelprocess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using namespace kel::test;

const QString Sample = QStringLiteral(KEL_SAMPLE);

struct Watched {
    int exitCode = -1;
    QByteArray out;
    QMap<QString, QSet<QString>> loadedByProcess; ///< pid -> file names the loader mapped
};

// Runs kel under LD_DEBUG=files, which makes the loader name every shared
// object it maps (at start and by dlopen) on standard error, per process.
Watched runWatched(const QString &program, const QStringList &args, const QByteArray &input = {})
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LD_DEBUG"), QStringLiteral("files"));
    p.setProcessEnvironment(env);
    p.start(program, args);
    p.write(input), p.closeWriteChannel(), p.waitForFinished(60000);
    Watched w{p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(), {}};
    static const QRegularExpression fileLine(QStringLiteral(R"(^\s*(\d+):\s+file=(\S+)\s+\[)"));
    for (const QString &line : QString::fromLocal8Bit(p.readAllStandardError()).split(u'\n')) {
        const QRegularExpressionMatch m = fileLine.match(line);
        if (m.hasMatch())
            w.loadedByProcess[m.captured(1)].insert(QFileInfo(m.captured(2)).fileName());
    }
    return w;
}

// What QtCore itself needs, by ldd of the library this test is linked
// with: the one allowance beside zlib and the C++ runtime.
QSet<QString> allowedLibraries()
{
    QSet<QString> allowed{QStringLiteral("libQt6Core.so.6"), QStringLiteral("libz.so.1"),
                          QStringLiteral("libstdc++.so.6"),  QStringLiteral("libm.so.6"),
                          QStringLiteral("libgcc_s.so.1"),   QStringLiteral("libc.so.6")};
    QProcess ldd;
    ldd.start(QStringLiteral("ldd"), {QStringLiteral(QTCORE_LIBRARY)});
    ldd.waitForFinished(30000);
    const QStringList lines = QString::fromLocal8Bit(ldd.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_GT(lines.size(), 3) << "ldd does not list QtCore's libraries";
    for (const QString &line : lines)
        allowed.insert(QFileInfo(line.trimmed().section(u' ', 0, 0)).fileName());
    return allowed;
}

TEST(KelLoads, CommandsThatCountAndExportLoadOnlyQtCoreAndZlib)
{
    const QSet<QString> allowed = allowedLibraries();
    ASSERT_FALSE(allowed.contains(QStringLiteral("libQt6Gui.so.6"))) << "the allowance is not QtCore's alone";
    const struct {
        const char *name;
        QStringList args;
        QByteArray input;
    } commands[] = {
        {"check", {QStringLiteral("check"), Sample}, {}},
        {"dump", {QStringLiteral("dump"), Sample}, {}},
        {"select", kelArgs("select", Sample, "--select 0:1 --max-rows 5"), {}},
        {"indexes", kelArgs("indexes", Sample, "--total --items total,blocks"), {}},
        {"graph basic", kelArgs("graph", Sample, "histogram --block 0"), {}},
        {"graph chart", kelArgs("graph", Sample, "distribution --category 0"), {}},
        {"batch",
         {QStringLiteral("batch"), Sample},
         "select\nindexes --total --items total\ngraph ranking --block 0\n"},
    };
    for (const auto &c : commands) {
        SCOPED_TRACE(c.name);
        const Watched w = runWatched(QStringLiteral(KEL_TOOL), c.args, c.input);
        EXPECT_EQ(w.exitCode, 0);
        ASSERT_EQ(w.loadedByProcess.size(), 1) << "one process, no helper";
        const QSet<QString> loaded = w.loadedByProcess.first();
        EXPECT_TRUE(loaded.contains(QStringLiteral("libQt6Core.so.6"))) << "the loader's report was not read";
        for (const QString &file : loaded)
            EXPECT_TRUE(allowed.contains(file)) << file.toStdString();
        for (const QByteArray &answer : w.out.trimmed().split('\n'))
            EXPECT_TRUE(c.input.isEmpty() || answer.contains("\"status\":0")) << answer.data();
    }
}

TEST(KelLoads, PicturesAreDrawnByTheHelperStartedAtTheFirstRenderLine)
{
    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("o.png"));
    const QString html = dir.filePath(QStringLiteral("r.html"));
    const QByteArray lines = "indexes --total --items total\nrender overview -o " + png.toUtf8()
        + "\nselect --max-rows 0\nrender graph fraction --block 0 -o " + dir.filePath(QStringLiteral("f.png")).toUtf8()
        + "\nreport --sections title,indexes -o " + html.toUtf8() + "\n";
    const Watched w = runWatched(QStringLiteral(KEL_TOOL), {QStringLiteral("batch"), Sample}, lines);
    EXPECT_EQ(w.exitCode, 0);
    // kel and one helper for the pictures and the report; kel itself stays
    // on QtCore.
    ASSERT_EQ(w.loadedByProcess.size(), 2);
    int drawing = 0;
    for (const QSet<QString> &loaded : w.loadedByProcess)
        drawing += loaded.contains(QStringLiteral("libQt6Gui.so.6"));
    EXPECT_EQ(drawing, 1);
    const QList<QByteArray> answers = w.out.trimmed().split('\n');
    ASSERT_EQ(answers.size(), 5);
    for (const QByteArray &a : answers)
        EXPECT_EQ(QJsonDocument::fromJson(a).object().value(QStringLiteral("status")).toInt(-1), 0) << a.data();
    EXPECT_TRUE(QFileInfo(png).size() > 0);
    EXPECT_TRUE(QFileInfo(html).size() > 0);

    // `kel render` becomes the helper: one process, which draws.
    for (const QStringList &args : {kelArgs("render", Sample, "overview") << "-o" << png,
                                    kelArgs("report", Sample, "--sections title") << "-o" << html}) {
        SCOPED_TRACE(args.first().toStdString());
        const Watched drawn = runWatched(QStringLiteral(KEL_TOOL), args);
        EXPECT_EQ(drawn.exitCode, 0);
        ASSERT_EQ(drawn.loadedByProcess.size(), 1);
        EXPECT_TRUE(drawn.loadedByProcess.first().contains(QStringLiteral("libQt6Gui.so.6")));
    }
}

TEST(KelLoads, WithoutTheHelperPicturesFailWithTheirOwnStatusAndTheRestWorks)
{
    // A kel with no helper beside it and no libexec folder above it.
    QTemporaryDir dir;
    const QString lonely = dir.filePath(QStringLiteral("bin/kel"));
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("bin")));
    ASSERT_TRUE(QFile::copy(QStringLiteral(KEL_TOOL), lonely));
    const QString png = dir.filePath(QStringLiteral("o.png"));

    const QString html = dir.filePath(QStringLiteral("r.html"));
    QProcess p;
    for (const auto &[args, output] : {std::pair{kelArgs("render", Sample, "overview"), png},
                                       std::pair{kelArgs("report", Sample, "--sections title"), html}}) {
        SCOPED_TRACE(args.first().toStdString());
        p.start(lonely, QStringList(args) << QStringLiteral("-o") << output);
        p.waitForFinished(60000);
        EXPECT_EQ(p.exitCode(), 69);
        EXPECT_TRUE(p.readAllStandardError().contains("kel-render, which is not installed"));
        EXPECT_FALSE(QFileInfo::exists(output));
    }
    // What needs no drawing is judged by kel itself: an option the command
    // would ignore, no file, an output that is the document.
    const QString doc = dir.filePath(QStringLiteral("survey.kel"));
    ASSERT_TRUE(QFile::copy(Sample, doc));
    const struct {
        QStringList args;
        const char *says;
    } unusable[] = {
        {kelArgs("report", Sample, "--order 1 --sections title") << "-o" << html, "is not an option of report"},
        {kelArgs("render", Sample, "overview --reversed") << "-o" << png, "is not an option of render overview"},
        {{QStringLiteral("report")}, "no file given"},
        {kelArgs("render", doc, "overview") << "-o" << doc, "is the document being read"},
        {kelArgs("report", doc, "--sections title") << "-o" << doc, "is the document being read"},
    };
    for (const auto &u : unusable) {
        SCOPED_TRACE(u.args.join(u' ').toStdString());
        p.start(lonely, u.args);
        p.waitForFinished(60000);
        EXPECT_EQ(p.exitCode(), 64);
        EXPECT_TRUE(p.readAllStandardError().contains(u.says));
    }
    EXPECT_FALSE(QFileInfo::exists(html));
    EXPECT_FALSE(QFileInfo::exists(png));

    p.start(lonely, {QStringLiteral("batch"), Sample});
    p.write("indexes --total --items total\nrender overview -o " + png.toUtf8() + "\nrender overview -o " + png.toUtf8()
            + "\nselect --max-rows 0\nreport --sections title -o " + html.toUtf8() + "\n");
    p.closeWriteChannel(), p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0);
    const QList<QByteArray> answers = p.readAllStandardOutput().trimmed().split('\n');
    ASSERT_EQ(answers.size(), 5);
    const int expected[] = {0, 69, 69, 0, 69};
    for (int i = 0; i < 5; ++i) {
        const QJsonObject o = QJsonDocument::fromJson(answers[i]).object();
        EXPECT_EQ(o.value(QStringLiteral("status")).toInt(-1), expected[i]) << answers[i].data();
        EXPECT_EQ(o.contains(QStringLiteral("error")), expected[i] == 69) << answers[i].data();
    }
}

} // namespace
