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

TEST_F(KelCli, CheckNamesWhatFailedInTheChosenLanguage)
{
    const KelFile good = richSurvey().build();
    KelFile damaged = good;
    damaged.forgery.checksum = 1;
    const KelRun sv = runKel(kelArgs("check", write(damaged.toBytes()), "--lang sv"));
    EXPECT_EQ(sv.exitCode, 5);
    EXPECT_EQ(QString::fromUtf8(sv.out).trimmed(), QStringLiteral("Den här KEL-filen är skadad!"));
    // The detail names what failed and where; success says nothing there.
    KelFile shortAnswers = good;
    shortAnswers.forgery.answersOffset = 1 << 20;
    const KelRun detail = runKel({QStringLiteral("check"), write(shortAnswers.toBytes())});
    EXPECT_EQ(detail.exitCode, 5);
    EXPECT_TRUE(detail.err.contains("answer matrix of 6 x 6 cells at 1048576 ends past the payload"))
        << detail.err.toStdString();
    const KelRun ok = runKel(kelArgs("check", write(good.toBytes())));
    EXPECT_EQ(ok.exitCode, 0);
    EXPECT_TRUE(ok.err.isEmpty()) << ok.err.toStdString();
    const KelRun missing = runKel({QStringLiteral("check"), mDir.filePath(QStringLiteral("nothing.kel"))});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(QString::fromUtf8(missing.out).trimmed(), QStringLiteral("Can not open the file!"));
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
    // Both commands that write a file, each handed to the drawing helper.
    const char *const writers[] = {"render overview", "report --sections title"};
    for (const char *writer : writers) {
        for (const auto &s : spellings) {
            SCOPED_TRACE(std::string(writer) + ": " + s.name);
            const QStringList command = words(writer);
            const KelRun direct = runKel(QStringList{command.first(), doc} + command.mid(1)
                                         + QStringList{QStringLiteral("-o"), s.output});
            EXPECT_EQ(direct.exitCode, 64);
            EXPECT_TRUE(direct.err.contains("is the document being read")) << direct.err.toStdString();
            const KelRun batch =
                runKel(kelArgs("batch", doc), QByteArray(writer) + " -o '" + s.output.toUtf8() + "'\n");
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
    }
    // Any other file is written as before.
    for (const char *writer : writers) {
        SCOPED_TRACE(writer);
        const QStringList command = words(writer);
        const QString other = mDir.filePath(command.first() == QLatin1String("render") ? QStringLiteral("other.png")
                                                                                       : QStringLiteral("other.html"));
        const KelRun run =
            runKel(QStringList{command.first(), doc} + command.mid(1) + QStringList{QStringLiteral("-o"), other});
        EXPECT_FALSE(run.err.contains("is the document being read"));
        EXPECT_EQ(run.exitCode == 0 && QFileInfo(other).size() > 0, bool(KEL_CAN_RENDER)) << run.err.toStdString();
    }
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

namespace {

// Every command that opens a document, as a script runs it.
struct OpeningCommand {
    const char *name;
    const char *rest;   ///< after FILE
    QByteArray input;   ///< for batch
    const char *writes; ///< the extension of "-o OUT" at the end, if it writes a file
};

const OpeningCommand OpeningCommands[] = {
    {"check", "", {}, nullptr},
    {"dump", "", {}, nullptr},
    {"select", "--max-rows 3", {}, nullptr},
    {"indexes", "--total --items total", {}, nullptr},
    {"graph", "histogram --block 0", {}, nullptr},
    {"render", "overview", {}, "png"},
    {"report", "--sections title", {}, "html"},
    {"batch", "", "select\n", nullptr},
};

} // namespace

TEST_F(KelCli, EveryCommandExitsWithTheResultCodeOfItsDocument)
{
    const KelFile good = richSurvey().build();
    auto variant = [&](auto change) {
        KelFile f = good;
        change(f);
        return f.toBytes();
    };
    const std::pair<QByteArray, int> cases[] = {
        {QByteArray(), 1}, // no such file
        {variant([](KelFile &f) { f.forgery.magic1 = 0x328E4451u; }), 2},
        {variant([](KelFile &f) { f.options.compatibleRevision = 0; }), 3},
        {variant([](KelFile &f) { f.options.compatibleRevision = 10; }), 4},
        {variant([](KelFile &f) { f.forgery.checksum = 1; }), 5},
        {variant([](KelFile &f) { f.forgery.rowCount = 1000, f.forgery.columnCount = 1001; }), 6},
    };
    // Each code has its own message, and the reader's detail goes to
    // standard error.
    QSet<QByteArray> messages;
    for (const auto &[bytes, code] : cases) {
        const QString path =
            code == 1 ? mDir.filePath(QStringLiteral("missing.kel")) : write(bytes, QStringLiteral("%1.kel").arg(code));
        const KelRun check = runKel(kelArgs("check", path));
        const QByteArray message = check.out;
        ASSERT_FALSE(message.isEmpty());
        EXPECT_FALSE(check.err.isEmpty()) << code;
        messages.insert(message);
        for (const OpeningCommand &c : OpeningCommands) {
            SCOPED_TRACE(std::to_string(code) + " " + c.name);
            const QString picture =
                mDir.filePath(QStringLiteral("p%1.%2").arg(code).arg(QLatin1String(c.writes ? c.writes : "png")));
            QStringList args = kelArgs(c.name, path, c.rest);
            if (c.writes)
                args << QStringLiteral("-o") << picture;
            const KelRun run = runKel(args, c.input);
            // Without the drawing helper (a build without the drawing layer)
            // the commands that write a file say it is missing, whatever the
            // document.
            if (c.writes && !KEL_CAN_RENDER) {
                EXPECT_EQ(run.exitCode, 69);
            } else {
                EXPECT_EQ(run.exitCode, code);
                EXPECT_EQ(run.out, message); // the result code's message, and nothing else
            }
            EXPECT_FALSE(QFileInfo::exists(picture));
        }
    }
    EXPECT_EQ(messages.size(), 6);
}

TEST_F(KelCli, RefusalsAndNonsenseHaveTheirOwnStatusInEveryCommand)
{
    const QString sample = QStringLiteral(KEL_SAMPLE);
    const QString picture = mDir.filePath(QStringLiteral("refused.png"));
    const QString report = mDir.filePath(QStringLiteral("refused.html"));
    // "Department=" ticks no visible option and nobody has the hidden one:
    // Show refuses. A document without points has no indexes.
    SurveyBuilder noPoints = richSurvey();
    noPoints.header().pointsScale = 0;
    const QString unscored = write(noPoints.build().toBytes(), QStringLiteral("unscored.kel"));
    const struct {
        QStringList args;
        QByteArray input;
        int status;
    } cases[] = {
        {kelArgs("select", sample, "--select Department="), {}, 7},
        {kelArgs("indexes", sample, "--select Department= --total --items total"), {}, 7},
        {kelArgs("indexes", unscored, "--total --items total"), {}, 7},
        {kelArgs("graph", sample, "--select Department= histogram --block 0"), {}, 7},
        {kelArgs("render", sample, "--select Department= overview") << "-o" << picture, {}, 7},
        {kelArgs("report", sample, "--select Department= --sections title") << "-o" << report, {}, 7},
        {{}, {}, 64},
        {words("frobnicate"), {}, 64},
        {words("check"), {}, 64},
        {words("dump"), {}, 64},
        {words("select"), {}, 64},
        {words("batch"), {}, 64},
        {QStringList{QStringLiteral("dump"), sample, sample}, {}, 64},
        {kelArgs("select", sample, "--select 9:0"), {}, 64},
        {kelArgs("indexes", sample, "--items total"), {}, 64},
        {kelArgs("check", sample, "--lang de"), {}, 64},
        {kelArgs("dump", sample, "--lang sv"), {}, 64},
        {kelArgs("select", sample, "--bogus"), {}, 64},
        {kelArgs("indexes", sample, "--total"), {}, 64},
        {kelArgs("graph", sample, "--select Department=Sales"), {}, 64},
        {kelArgs("graph", sample, "pie"), {}, 64},
        {kelArgs("render", sample, "overview"), {}, 64},
        {kelArgs("render", sample, "overview -o picture.tiff"), {}, 64},
        {kelArgs("report", sample, "--sections title"), {}, 64},
        {kelArgs("report", sample, "--sections title -o report.png"), {}, 64},
        {kelArgs("report", sample, "--sections title,nonsense") << "-o" << report, {}, 64},
        {kelArgs("batch", sample, "--bogus"), {}, 64},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        const KelRun run = runKel(c.args, c.input);
        // These command lines pass the option check kel makes itself; the
        // rest is the helper's, and without it they say it is missing.
        const QString command = c.args.value(0);
        const bool drawn = command == QLatin1String("render") || command == QLatin1String("report");
        EXPECT_EQ(run.exitCode, drawn && !KEL_CAN_RENDER ? 69 : c.status);
        EXPECT_FALSE(run.err.isEmpty());
        // Only a refused selection prints its refusal; usage errors print nothing.
        EXPECT_TRUE((command == QLatin1String("select") && c.status == 7) || run.out.isEmpty())
            << run.out.toStdString();
        EXPECT_FALSE(QFileInfo::exists(picture));
        EXPECT_FALSE(QFileInfo::exists(report));
    }
    // In a batch each line carries the status; the batch itself is done.
    const KelRun batch = runKel({QStringLiteral("batch"), sample},
                                "select --select Department=\nindexes --total --items total --select Department=\n"
                                "graph --select Department= histogram --block 0\nindexes --total\nselect --bogus\n"
                                "frobnicate\n");
    EXPECT_EQ(batch.exitCode, 0);
    const QList<QByteArray> replies = batch.out.trimmed().split('\n');
    ASSERT_EQ(replies.size(), 6);
    const int statuses[] = {7, 7, 7, 64, 64, 64};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(QJsonDocument::fromJson(replies[i]).object().value(QStringLiteral("status")).toInt(-1), statuses[i])
            << replies[i].data();
}

namespace {

// A value a parser takes for each placeholder of the table.
QString valueFor(const QString &option)
{
    static const std::pair<const char *, const char *> values[] = {
        {"--select", "0:1"},
        {"--flex", "1"},
        {"--settings", "/nonexistent.ini"},
        {"--lang", "en"},
        {"--order", "1"},
        {"--seed", "3"},
        {"--max-rows", "2"},
        {"--locale", "C"},
        {"--category", "0"},
        {"--items", "total"},
        {"--block", "0"},
        {"--question", "4"},
        {"--split", "4"},
        {"--group", "1"},
        {"--lines", "1"},
        {"--mode", "1"},
        {"--recipe", "/nonexistent.kelreport"},
        {"--by", "0"},
        {"--sections", "title"},
        {"--date", "2026-01-01"},
    };
    for (const auto &[name, value] : values)
        if (option == QLatin1String(name))
            return QString::fromUtf8(value);
    return QString();
}

QStringList optionsOf(const QString &part)
{
    return QString::fromUtf8(runKel(QStringList{QStringLiteral("--options")} + part.split(u' ')).out)
        .split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

// The table that --help, the checks and the completion come from must list
// only options the commands' own parsers read: each is given to its command,
// which may find fault with the value or the document, never with the option.
TEST_F(KelCli, EveryOptionOfTheTableIsReadByItsCommand)
{
    const QString sample = QStringLiteral(KEL_SAMPLE);
    const QString out = mDir.filePath(QStringLiteral("o.png"));
    const QStringList parts =
        QString::fromUtf8(runKel({QStringLiteral("--options")}).out).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(parts.size(), 15);
    int tried = 0;
    for (const QString &part : parts) {
        const QString command = part.section(u' ', 0, 0), keyword = part.section(u' ', 1);
        for (const QString &option : optionsOf(part)) {
            SCOPED_TRACE((part + QLatin1Char(' ') + option).toStdString());
            QStringList given{option};
            if (const QString value = valueFor(option); !value.isEmpty())
                given << value;
            else if (option == QLatin1String("--blocks") && command == QLatin1String("report"))
                given << QStringLiteral("0"); // a switch of graph total-index, a list here
            QStringList args{command, sample};
            if (command == QLatin1String("graph") && keyword.isEmpty())
                args << given << QStringLiteral("histogram") << QStringLiteral("--block") << QStringLiteral("0");
            else if (command == QLatin1String("graph"))
                args << keyword << given;
            else if (part == QLatin1String("render graph"))
                args << QStringLiteral("graph") << given << QStringLiteral("fraction") << QStringLiteral("--block")
                     << QStringLiteral("0") << QStringLiteral("-o") << out;
            else if (part == QLatin1String("render overview"))
                args << QStringLiteral("overview") << given << QStringLiteral("-o") << out;
            else if (command == QLatin1String("report"))
                args << given << QStringLiteral("--sections") << QStringLiteral("title") << QStringLiteral("-o")
                     << mDir.filePath(QStringLiteral("o.html"));
            else
                args << given;
            const KelRun run = runKel(args);
            EXPECT_FALSE(run.err.contains("unexpected argument") || run.err.contains("unknown option")
                         || run.err.contains("is not an option"))
                << run.err.toStdString();
            ++tried;
        }
    }
    EXPECT_GT(tried, 60);
}

TEST_F(KelCli, OptionsACommandWouldIgnoreAreRefused)
{
    const QString sample = QStringLiteral(KEL_SAMPLE);
    const char *const lines[] = {
        "indexes --order 1 --total --items total",
        "indexes --seed 3 --total --items total",
        "indexes --max-rows 2 --total --items total",
        "select --locale sv_SE",
        "select --reversed",
        "graph --order 1 histogram --block 0",
        "graph --max-rows 1 histogram --block 0",
        "graph histogram --block 0 --unsorted",
        "graph histogram --block 0 --select 0:1", // selection options come before KIND
        "graph ranking --block 0 --split 1",
        "graph total-index --block 0",
        "graph block-index --block 0 --blocks",
        "render overview --reversed -o x.png",
        "render graph --mode 1 fraction --block 0 -o x.png",
        "render graph fraction --block 0 --headers-only -o x.png",
        "report --order 1 --sections title -o x.html",
        "report --seed 3 --sections title -o x.html",
        "report --max-rows 2 --sections title -o x.html",
        "report --reversed --sections title -o x.html",
        "report --mode 1 --sections title -o x.html",
    };
    QByteArray batchInput;
    for (const char *line : lines) {
        SCOPED_TRACE(line);
        QStringList args = words(line);
        args.insert(1, sample);
        const KelRun run = runKel(args);
        EXPECT_EQ(run.exitCode, 64);
        EXPECT_TRUE(run.err.contains("is not an option of")) << run.err.toStdString();
        batchInput += QByteArray(line) + '\n';
    }
    // The same lines in a batch, each refused by itself.
    const KelRun batch = runKel({QStringLiteral("batch"), sample}, batchInput);
    const QList<QByteArray> replies = batch.out.trimmed().split('\n');
    ASSERT_EQ(replies.size(), qsizetype(std::size(lines)));
    for (const QByteArray &reply : replies)
        EXPECT_TRUE(reply.contains("\"status\":64") && reply.contains("is not an option of")) << reply.data();
    // The commands that read their own arguments refuse them too.
    for (const char *line : {"check --select 0:1", "dump --lang sv", "batch --select 0:1"}) {
        SCOPED_TRACE(line);
        QStringList args = words(line);
        args.insert(1, sample);
        EXPECT_EQ(runKel(args).exitCode, 64);
    }
}
