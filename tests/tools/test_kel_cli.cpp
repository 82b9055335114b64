// SPDX-License-Identifier: GPL-3.0-or-later
// The `kel check` / `kel dump` contract: exit status = result code, the
// message in the chosen language, and a JSON dump that holds every key and
// gives doubles back exactly.
#include "readerfixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <QTemporaryDir>

#include <unistd.h>

#include "kelprocess.h"

#include <gtest/gtest.h>

namespace {

using namespace kel::writer;
using namespace kel::test;

class KelCli : public ::testing::Test
{
protected:
    QString write(const QByteArray &bytes, const QString &name = QStringLiteral("doc.kel"))
    {
        const QString path = mDir.filePath(name);
        EXPECT_TRUE(writeBytes(path, bytes));
        return path;
    }
    QTemporaryDir mDir;
};

TEST_F(KelCli, CheckAndDumpExitWithTheResultCodeAndItsMessage)
{
    const KelFile good = richSurvey().build();
    auto variant = [&](auto change) {
        KelFile f = good;
        change(f);
        return f.toBytes();
    };
    // Each code has its own message, the same from check and dump; the
    // reader's detail goes to standard error.
    const std::pair<QByteArray, int> cases[] = {
        {good.toBytes(), 0},
        {variant([](KelFile &f) { f.forgery.magic1 = 0x328E4451u; }), 2},
        {variant([](KelFile &f) { f.options.compatibleRevision = 0; }), 3},
        {variant([](KelFile &f) { f.options.compatibleRevision = 10; }), 4},
        {variant([](KelFile &f) { f.forgery.checksum = 1; }), 5},
        {variant([](KelFile &f) { f.forgery.rowCount = 1000, f.forgery.columnCount = 1001; }), 6},
    };
    QSet<QByteArray> messages;
    for (const auto &[bytes, code] : cases) {
        SCOPED_TRACE(code);
        const QString path = write(bytes, QStringLiteral("%1.kel").arg(code));
        const KelRun check = runKel(kelArgs("check", path)), dump = runKel(kelArgs("dump", path));
        EXPECT_EQ(check.exitCode, code);
        EXPECT_EQ(dump.exitCode, code);
        EXPECT_EQ(check.err.isEmpty(), code == 0) << check.err.toStdString();
        EXPECT_TRUE(code == 0 || dump.out == check.out);
        messages.insert(check.out);
    }
    EXPECT_EQ(messages.size(), 6);
    const KelRun sv = runKel(kelArgs("check", write(cases[4].first), "--lang sv"));
    EXPECT_EQ(QString::fromUtf8(sv.out).trimmed(), QStringLiteral("Den här KEL-filen är skadad!"));
    // The detail names what failed and where.
    KelFile shortAnswers = good;
    shortAnswers.forgery.answersOffset = 1 << 20;
    const KelRun damaged = runKel({QStringLiteral("check"), write(shortAnswers.toBytes())});
    EXPECT_EQ(damaged.exitCode, 5);
    EXPECT_TRUE(damaged.err.contains("answer matrix of 6 x 6 cells at 1048576 ends past the payload"))
        << damaged.err.toStdString();
    const KelRun missing = runKel({QStringLiteral("check"), mDir.filePath(QStringLiteral("nothing.kel"))});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(QString::fromUtf8(missing.out).trimmed(), QStringLiteral("Can not open the file!"));
}
TEST_F(KelCli, BadCommandLinesAreUsageErrors)
{
    const QString path = write(richSurvey().toBytes());
    const QList<QStringList> nonsense = {{},
                                         words("frobnicate"),
                                         words("check"),
                                         kelArgs("check", path, "--lang de"),
                                         words("dump"),
                                         QStringList{QStringLiteral("dump"), path, path},
                                         words("select"),
                                         kelArgs("select", path, "--select 9:0"),
                                         kelArgs("indexes", path, "--items total"),
                                         words("batch"),
                                         kelArgs("batch", path, "--bogus")};
    for (const QStringList &args : nonsense) {
        SCOPED_TRACE(args.join(QLatin1Char(' ')).toStdString());
        const KelRun r = runKel(args);
        EXPECT_EQ(r.exitCode, 64); // EX_USAGE: never one of the result codes 1-6
        EXPECT_TRUE(r.out.isEmpty());
        EXPECT_FALSE(r.err.isEmpty());
    }
}

TEST_F(KelCli, OutputIsNeverWrittenOverTheDocumentRead)
{
    // A document whose name ends in a picture extension is the one case where
    // `-o` naming it would otherwise be taken as a picture to write.
    const QByteArray bytes = richSurvey().toBytes();
    const QString doc = write(bytes, QStringLiteral("survey.png"));
    QDir dir(mDir.path());
    ASSERT_TRUE(dir.mkdir(QStringLiteral("sub")));
    ASSERT_TRUE(QFile::link(doc, mDir.filePath(QStringLiteral("symlink.png"))));
    ASSERT_EQ(::link(QFile::encodeName(doc).constData(),
                     QFile::encodeName(mDir.filePath(QStringLiteral("hardlink.png"))).constData()),
              0);
    const struct {
        const char *name;
        QString output;
    } spellings[] = {
        {"the same path", doc},
        {"another spelling of the path", mDir.filePath(QStringLiteral("sub/../survey.png"))},
        {"a symbolic link to it", mDir.filePath(QStringLiteral("symlink.png"))},
        {"a hard link to it", mDir.filePath(QStringLiteral("hardlink.png"))},
    };
    for (const auto &s : spellings) {
        SCOPED_TRACE(s.name);
        const KelRun direct = runKel(kelArgs("render", doc, "overview") << QStringLiteral("-o") << s.output);
        EXPECT_EQ(direct.exitCode, 64);
        EXPECT_TRUE(direct.err.contains("is the document being read")) << direct.err.toStdString();
        const KelRun batch = runKel(kelArgs("batch", doc), "render overview -o '" + s.output.toUtf8() + "'\n");
        EXPECT_EQ(batch.exitCode, 0);
        const QJsonObject line = QJsonDocument::fromJson(batch.out).object();
        EXPECT_EQ(line.value(QStringLiteral("status")).toInt(), 64);
        EXPECT_TRUE(
            line.value(QStringLiteral("error")).toString().contains(QStringLiteral("is the document being read")))
            << batch.out.toStdString();
        QFile f(doc);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(f.readAll(), bytes) << "the document is as it was";
    }
    // Any other file is written as before.
    const QString other = mDir.filePath(QStringLiteral("other.png"));
    const KelRun elsewhere = runKel(kelArgs("render", doc, "overview") << QStringLiteral("-o") << other);
    EXPECT_FALSE(elsewhere.err.contains("is the document being read"));
    EXPECT_EQ(elsewhere.exitCode == 0 && QFileInfo(other).size() > 0, bool(KEL_CAN_RENDER))
        << elsewhere.err.toStdString();
}

TEST_F(KelCli, DumpHoldsTheWholeDocument)
{
    SurveyBuilder b = richSurvey();
    b.setComputeIndexes(false);
    KelFile f = b.build();
    // Values that only a shortest round-trip form gives back exactly.
    f.header.created = 0.1 + 0.2;
    f.header.totalIndex = -1.0;
    f.questions[2].totalIndex = 1.0 / 3.0;
    const QString path = write(f.toBytes());
    const kel::ReadResult read = kel::readDocumentFile(path);
    ASSERT_EQ(read.code, kel::OpenResult::Ok);
    const kel::Document &d = *read.document;

    const KelRun r = runKel(kelArgs("dump", path));
    const QJsonObject o = jsonOf(r);

    EXPECT_EQ(o.keys(),
              words("alternatives answerColumns answers blockItems blocks categories cellComments cellType "
                    "columnCount compatibleRevision flexCategory guid leftOut maxCategoryAlternatives "
                    "overviewColumns properties questions revision rowComments rowCount textCount upgradeWarning"));
    EXPECT_EQ(o[QLatin1String("textCount")].toInt(), d.textPool.size());

    EXPECT_EQ(jsonAt(o, "properties").toObject().size(), 35);
    EXPECT_EQ(jsonAt(o, "questions.0").toObject().size(), 16);
    EXPECT_EQ(jsonAt(o, "properties.created").toDouble(), 0.1 + 0.2);
    EXPECT_EQ(jsonAt(o, "questions.2.totalIndex").toDouble(), 1.0 / 3.0);
    EXPECT_NE(r.out.indexOf("\"totalIndex\":-1,"), -1); // -1.0 is written as -1, not -1.0 or -1e0

    // Answers by row, then by overview column, as getData gives them: what
    // Copy Overview as Data copies for everyone. The survey forces a random
    // order on so few respondents, so the rows come shuffled as in the
    // viewer: compared as a whole, not row by row.
    std::vector<qint32> columns;
    for (const QJsonValue &c : o[QLatin1String("answerColumns")].toArray())
        columns.push_back(c.toInt());
    ASSERT_EQ(columns, d.overviewColumns);
    std::vector<std::vector<qint32>> dumped, wanted;
    for (const QJsonValue &row : o[QLatin1String("answers")].toArray()) {
        dumped.emplace_back();
        for (const QJsonValue &v : row.toArray())
            dumped.back().push_back(v.toInt());
    }
    qsizetype expected = 0; // cell comments of the overview's questions
    for (qint32 row = 0; row < d.rowCount(); ++row) {
        wanted.emplace_back();
        for (qint32 c : columns) {
            wanted.back().push_back(d.getData(row, c));
            expected += d.cellComment(row, c) != -1;
        }
    }
    std::sort(dumped.begin(), dumped.end());
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(dumped, wanted);

    // Cell comments: [row, column, text] row-major.
    const QJsonArray cellComments = o[QLatin1String("cellComments")].toArray();
    ASSERT_EQ(cellComments.size(), expected);
    qint64 previous = -1;
    for (const QJsonValue &cell : cellComments) {
        const int row = jsonAt(cell, "0").toInt(), column = jsonAt(cell, "1").toInt();
        EXPECT_GT(qint64(row) * d.columnCount() + column, previous);
        previous = qint64(row) * d.columnCount() + column;
        EXPECT_EQ(jsonAt(cell, "2").toString(), d.text(d.cellComment(row, column)));
    }
}

} // namespace
