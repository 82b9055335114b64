// SPDX-License-Identifier: GPL-3.0-or-later
// Settings and documents made to hang or exhaust the program: absurd block
// counts and key numbers, a settings file of binary junk, a small document
// that inflates to gigabytes. Each ends quickly with a clear result; the
// cases that used to hang or abort run in a child with a memory ceiling and
// a deadline (limitedchild.h).
#include "kelwriter.h"
#include "limitedchild.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/documentreader.h"
#include "engine/settings/settingsstore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

#include <zlib.h>

#include <gtest/gtest.h>

#include <random>

using namespace kel;
using namespace kel::test;
using namespace kel::writer;

namespace {

const QString DocumentKey = QStringLiteral("Documents/{12345678-ABCD-EF01-0102-030405060708}");

// One document block "Work" (block 0) and two questions in it.
SurveyBuilder surveyBuilder()
{
    SurveyBuilder b(12);
    b.header().pointsScale = 10;
    b.header().guid = {0x78, 0x56, 0x34, 0x12, 0xcd, 0xab, 0x01, 0xef, 1, 2, 3, 4, 5, 6, 7, 8};
    const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    const qint32 load = b.addQuestion({.heading = QStringLiteral("Load"), .block = work},
                                      {{.text = QStringLiteral("bad"), .points = 10},
                                       {.text = QStringLiteral("fair"), .points = 30},
                                       {.text = QStringLiteral("good"), .points = 50}});
    for (qint32 r = 0; r < 12; ++r) {
        b.setAnswer(r, 0, r % 2);
        b.setAnswer(r, load, r % 3);
    }
    return b;
}

std::unique_ptr<Document> surveyDocument()
{
    return readDocumentBytes(surveyBuilder().toBytes()).document;
}

QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A zlib stream of `head` followed by `chunks` x `chunkSize` zero bytes,
// made without ever holding the zeros whole: deflate blocks ended by a full
// flush carry no back references, so one compressed chunk can be repeated.
QByteArray zlibWithZeros(const QByteArray &head, qint64 chunks, qint64 chunkSize)
{
    auto rawDeflate = [](const char *data, qint64 size) {
        z_stream zs{};
        deflateInit2(&zs, Z_BEST_COMPRESSION, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
        QByteArray out(qsizetype(deflateBound(&zs, uLong(size)) + 64), '\0');
        zs.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data));
        zs.avail_in = uInt(size);
        zs.next_out = reinterpret_cast<Bytef *>(out.data());
        zs.avail_out = uInt(out.size());
        deflate(&zs, Z_FULL_FLUSH);
        EXPECT_EQ(zs.avail_in, 0u);
        out.resize(qsizetype(zs.total_out));
        deflateEnd(&zs);
        return out;
    };
    const QByteArray zeros(qsizetype(chunkSize), '\0');
    const QByteArray zeroBlock = rawDeflate(zeros.constData(), chunkSize);
    const uLong zeroAdler = adler32(1, reinterpret_cast<const Bytef *>(zeros.constData()), uInt(chunkSize));

    QByteArray stream("\x78\x01", 2);
    stream += rawDeflate(head.constData(), head.size());
    uLong adler = adler32(1, reinterpret_cast<const Bytef *>(head.constData()), uInt(head.size()));
    for (qint64 i = 0; i < chunks; ++i) {
        stream += zeroBlock;
        adler = adler32_combine(adler, zeroAdler, z_off_t(chunkSize));
    }
    stream += QByteArray("\x03\x00", 2); // an empty final block
    for (int shift : {24, 16, 8, 0})
        stream += char((adler >> shift) & 0xff);
    return stream;
}

// The survey whose payload goes on with `chunks` x `chunkSize` zero bytes
// that nothing refers to: a valid document that announces (and really
// inflates to) a payload of that size.
QByteArray paddedSurvey(qint64 chunks, qint64 chunkSize)
{
    KelFile f = surveyBuilder().build();
    const QByteArray plain = f.payload();
    f.forgery.payloadLength = qint32(plain.size() + chunks * chunkSize);
    const QByteArray stream = zlibWithZeros(plain, chunks, chunkSize);
    f.forgery.patchStored = [stream](QByteArray &stored) { stored = stream; };
    return f.toBytes();
}

qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toLongLong() * sysconf(_SC_PAGESIZE) : -1;
}

class Hostile : public ::testing::Test
{
protected:
    QString iniFile() const { return mDir.filePath(QStringLiteral("user/KEL Viewer.ini")); }
    QString path(const char *name) const { return mDir.filePath(QString::fromUtf8(name)); }

    std::unique_ptr<SettingsStore> openStore() const
    {
        return std::make_unique<SettingsStore>(SettingsLocation{.file = iniFile()});
    }
    void writeRaw(const std::vector<std::pair<const char *, const char *>> &values) const
    {
        QFile::remove(iniFile());
        QDir().mkpath(QFileInfo(iniFile()).absolutePath());
        QSettings s(iniFile(), QSettings::IniFormat);
        for (const auto &[name, value] : values)
            s.setValue(DocumentKey + QLatin1Char('/') + QLatin1String(name), QString::fromUtf8(value));
    }
    void writeIni(const QByteArray &bytes) const
    {
        QDir().mkpath(QFileInfo(iniFile()).absolutePath());
        QFile f(iniFile());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
    }

    QTemporaryDir mDir;
};

} // namespace

TEST_F(Hostile, StoredBlockCountsAndKeyNumbersAreBoundedByTheKeysPresent)
{
    // The document has one block of its own (number 0); user blocks follow.
    struct Case {
        const char *name;
        std::vector<std::pair<const char *, const char *>> values;
        QStringList added;
        QStringList problems;
        qint32 countAfter;
    };
    const std::vector<std::pair<const char *, const char *>> twoBlocks = {
        {"Block 001/Name", "A"}, {"Block 001/Included Data Headers", "1"}, {"Block 001/Include In Copy", "dword:1"},
        {"Block 002/Name", "B"}, {"Block 002/Included Data Headers", "1"}, {"Block 002/Include In Copy", "dword:1"}};
    auto with = [&](std::vector<std::pair<const char *, const char *>> more) {
        more.insert(more.end(), twoBlocks.begin(), twoBlocks.end());
        return more;
    };
    const Case cases[] = {
        {"a count of one past the last key is right", with({{"Block Items", "dword:00000003"}}), {"A", "B"}, {}, 3},
        {"a count of two past the last key is not",
         with({{"Block Items", "dword:00000004"}}),
         {"A", "B"},
         {"\"Block Items\" is 4 but the last block key is Block 002"},
         3},
        {"the largest count",
         with({{"Block Items", "dword:7fffffff"}}),
         {"A", "B"},
         {"\"Block Items\" is 2147483647 but the last block key is Block 002"},
         3},
        {"a key numbered in the hundred millions",
         {{"Block Items", "dword:05f5e100"},
          {"Block 001/Name", "A"},
          {"Block 001/Include In Copy", "dword:1"},
          {"Block 001/Included Data Headers", "1"},
          {"Block 99999999/Name", "Far"},
          {"Block 99999999/Include In Copy", "dword:0"},
          {"Block 99999999/Included Data Headers", "1"}},
         {"A", "Far"},
         {"Block 002 to Block 99999998 are missing"},
         3},
        {"the largest key number and no count",
         {{"Block 999999999/Name", "Far"},
          {"Block 999999999/Include In Copy", "dword:0"},
          {"Block 999999999/Included Data Headers", "1"}},
         {"Far"},
         {"\"Block Items\" is missing or not a count", "Block 001 to Block 999999998 are missing"},
         2},
        {"one missing key is named alone",
         {{"Block Items", "dword:00000003"},
          {"Block 002/Name", "B"},
          {"Block 002/Include In Copy", "dword:0"},
          {"Block 002/Included Data Headers", "1"}},
         {"B"},
         {"Block 001 is missing"},
         2},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        writeRaw(c.values);
        const QString resultFile = path("result.txt");
        QFile::remove(resultFile);
        // Opening runs as the viewer runs it: the store is repaired.
        const int status = runLimited(512 * MiB, 20, [&] {
            std::unique_ptr<Document> doc = surveyDocument();
            BlockCatalogue blocks(*doc);
            const UserBlockRestore restore = restoreUserBlocks(*doc, blocks, *openStore(), true);
            QStringList names;
            for (std::size_t b = 1; b < blocks.blocks.size(); ++b)
                names << blocks.blocks[b].name;
            QFile out(resultFile);
            if (!out.open(QIODevice::WriteOnly))
                return 2;
            out.write((names.join(u'|') + u'\n' + restore.problems.join(u'\n')).toUtf8());
            return 0;
        });
        ASSERT_EQ(status, 0) << "128 + 14: past the deadline; 128 + 6: aborted";
        const QStringList lines = QString::fromUtf8(fileBytes(resultFile)).split(u'\n');
        EXPECT_EQ(lines.first().split(u'|', Qt::SkipEmptyParts), c.added);
        EXPECT_EQ(lines.mid(1).join(u'\n'), c.problems.join(u'\n'));

        auto store = openStore();
        EXPECT_EQ(store->readDword(DocumentKey, QStringLiteral("Block Items")), c.countAfter);
        for (const QString &sub : store->subKeys(DocumentKey))
            EXPECT_LT(sub.mid(6).toLongLong(), c.countAfter) << sub.toStdString() << " is left behind";
        // The repaired store opens without complaint.
        std::unique_ptr<Document> again = surveyDocument();
        BlockCatalogue restored(*again);
        EXPECT_TRUE(restoreUserBlocks(*again, restored, *store, true).problems.isEmpty());
        EXPECT_EQ(qsizetype(restored.blocks.size()) - 1, c.added.size());
    }
}

TEST_F(Hostile, KelReadsHostileSettingsWithinItsLimitsAndLeavesThemAlone)
{
    writeRaw({{"Block Items", "dword:7fffffff"},
              {"Block 99999999/Name", "Far"},
              {"Block 99999999/Include In Copy", "dword:1"},
              {"Block 99999999/Included Data Headers", "1"}});
    const QByteArray before = fileBytes(iniFile());
    const QString doc = path("survey.kel");
    ASSERT_TRUE(writeBytes(doc, surveyBuilder().toBytes()));
    QProcess kel;
    limitProcess(kel, 1024 * MiB, 20);
    kel.start(QStringLiteral(KEL_TOOL),
              {QStringLiteral("indexes"), doc, QStringLiteral("--settings"), iniFile(), QStringLiteral("--total"),
               QStringLiteral("--items"), QStringLiteral("userblocks")});
    ASSERT_TRUE(kel.waitForFinished(60000));
    const QString err = QString::fromUtf8(kel.readAllStandardError());
    EXPECT_EQ(kel.exitStatus(), QProcess::NormalExit) << err.toStdString();
    EXPECT_EQ(kel.exitCode(), 0) << err.toStdString();
    EXPECT_TRUE(err.contains(QStringLiteral("Block 001 to Block 99999998 are missing (left out)")))
        << err.toStdString();
    EXPECT_TRUE(QString::fromUtf8(kel.readAllStandardOutput()).contains(QStringLiteral("Far")));
    EXPECT_EQ(fileBytes(iniFile()), before) << "kel only reads the settings";
}

TEST_F(Hostile, SettingsFilesThatAreNotUnderstoodAreNeverRewritten)
{
    std::mt19937 random(21);
    QByteArray junk(200 * 1024, '\0');
    for (char &c : junk)
        c = char(random() & 0xff);
    QByteArray written;
    {
        // What the store itself writes is understood, of course.
        writeIni(QByteArray());
        auto store = openStore();
        store->writeSettings(UserOptions{});
        store->writeString(QStringLiteral("Odd"), QStringLiteral("Text"), QStringLiteral("line one\nline=two\\"));
        store->flush();
        written = fileBytes(iniFile());
    }
    const struct {
        const char *name;
        QByteArray bytes;
        bool understood;
    } cases[] = {
        {"an empty file", QByteArray(), true},
        {"the store's own file", written, true},
        {"comments, sections, pairs, a continued value",
         "; note\n\n[Settings]\nOverview%20Max%20Rows=dword:0000012c\r\nText=a \\\n  b\n", true},
        {"Swedish letters", "[Settings]\nName=\xc3\xa5\xc3\xa4\xc3\xb6\n", true},
        {"a \"#\" line, which QSettings will not save over", "# note\n[Settings]\nName=a\n", false},
        {"a byte order mark, which QSettings will not save over", "\xef\xbb\xbf[Settings]\nName=a\n", false},
        {"200 KB of binary junk", junk, false},
        {"a NUL byte", QByteArray("[Settings]\nName=a\0b\n", 20), false},
        {"bytes that are not UTF-8", "[Settings]\nName=\xff\xfe\n", false},
        {"a line that is no pair", "[Settings]\nsomething without an equals sign\n", false},
        {"a pair without a name", "[Settings]\n=value\n", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        writeIni(c.bytes);
        {
            auto store = openStore();
            EXPECT_EQ(store->openError(), c.understood ? 0 : 13);
            EXPECT_EQ(store->writeSettings(UserOptions{}), c.understood);
            if (c.understood)
                continue;
            std::unique_ptr<Document> doc = surveyDocument();
            BlockCatalogue blocks(*doc);
            restoreUserBlocks(*doc, blocks, *store, true);
            EXPECT_FALSE(storeUserBlocks(*doc, blocks, *store));
            EXPECT_FALSE(store->writeRecentFiles({QStringLiteral("/tmp/a.kel")}));
            EXPECT_FALSE(store->writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable,
                                                     WindowPlacement{.left = 1, .top = 2, .width = 3, .height = 4}));
        }
        EXPECT_EQ(fileBytes(iniFile()), c.bytes) << "the file is as it was";
    }
}

TEST_F(Hostile, ADocumentThatInflatesToTwoGigabytesIsTooBigUnderAMemoryLimit)
{
    if (Sanitized)
        GTEST_SKIP() << "the sanitizers' shadow memory leaves no room for an address-space limit";
    // 127 x 16 MiB of zeros after the real payload: just under 2 GiB, stored
    // in about 2 MB.
    const QByteArray bytes = paddedSurvey(127, 16 * qint64(MiB));
    ASSERT_LT(bytes.size(), 3 * qsizetype(MiB));
    const QString doc = path("huge.kel");
    ASSERT_TRUE(writeBytes(doc, bytes));

    const int status = runLimited(1024 * MiB, 30, [&] { return int(readDocumentFile(doc).code); });
    EXPECT_EQ(status, int(OpenResult::TooBig)) << "128 + 6: aborted on std::bad_alloc";

    QProcess kel;
    limitProcess(kel, 1024 * MiB, 30);
    kel.start(QStringLiteral(KEL_TOOL), {QStringLiteral("check"), doc});
    ASSERT_TRUE(kel.waitForFinished(60000));
    EXPECT_EQ(kel.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(kel.exitCode(), 6);
    EXPECT_EQ(QString::fromUtf8(kel.readAllStandardOutput()).trimmed(),
              QStringLiteral("This KEL file is to big for this version of KEL Viewer!"));
}

TEST_F(Hostile, PayloadBeyondTheAnswersIsReleasedOnceRead)
{
    if (Sanitized)
        GTEST_SKIP() << "the sanitizers keep freed memory in quarantine";
    const qint64 padding = 256 * qint64(MiB);
    const QByteArray bytes = paddedSurvey(16, padding / 16);
    const qint64 before = residentBytes();
    const ReadResult read = readDocumentBytes(bytes);
    const qint64 after = residentBytes();
    ASSERT_EQ(read.code, OpenResult::Ok) << read.detail.toStdString();
    ASSERT_GT(before, 0);
    EXPECT_LT(after - before, padding / 4) << "the inflated payload stays resident with the answers";
    // The answers survive their buffer.
    const SurveyBuilder b = surveyBuilder();
    for (qint32 r = 0; r < 12; ++r)
        for (qint32 q = 0; q < 2; ++q)
            EXPECT_EQ(read.document->getData(r, q), b.answer(r, q));
}

TEST_F(Hostile, CategoriesTimesAlternativesIsBoundedLikeTheAnswerMatrix)
{
    // Questions sharing one run of alternatives make a big selection from a
    // small file; no respondents, so the answer matrix bounds nothing.
    auto survey = [](qint32 categories, qint32 alternatives, qint32 otherQuestions) {
        SurveyBuilder b(0);
        QList<AlternativeSpec> run;
        for (qint32 i = 0; i < alternatives; ++i)
            run.push_back({.text = QStringLiteral("a")});
        const qint32 first = b.addQuestion({.heading = QStringLiteral("C"), .isCategory = true}, run);
        for (qint32 i = 1; i < categories; ++i)
            b.addQuestionLike({.heading = QStringLiteral("C"), .isCategory = true}, first);
        for (qint32 i = 0; i < otherQuestions; ++i)
            b.addQuestionLike({.heading = QStringLiteral("Q")}, first);
        return b.toBytes();
    };
    const struct {
        const char *name;
        QByteArray bytes;
        OpenResult expected;
    } cases[] = {
        {"1,000 categories of 1,000 alternatives", survey(1000, 1000, 0), OpenResult::Ok},
        {"1,000 categories of 1,001 alternatives", survey(1000, 1001, 0), OpenResult::TooBig},
        {"1,001 categories of 1,000 alternatives", survey(1001, 1000, 0), OpenResult::TooBig},
        {"other questions do not count", survey(1, 20000, 999), OpenResult::Ok},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(readDocumentBytes(c.bytes).code, c.expected);
    }

    // Forty thousand categories of forty thousand alternatives in a few
    // kilobytes: kel refuses the file instead of building the selection.
    const QString doc = path("categories.kel");
    ASSERT_TRUE(writeBytes(doc, survey(40000, 40000, 0)));
    ASSERT_LT(QFileInfo(doc).size(), 64 * 1024);
    QProcess kel;
    limitProcess(kel, 1024 * MiB, 30);
    kel.start(QStringLiteral(KEL_TOOL), {QStringLiteral("select"), doc});
    ASSERT_TRUE(kel.waitForFinished(60000));
    EXPECT_EQ(kel.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(kel.exitCode(), 6);
    EXPECT_EQ(QString::fromUtf8(kel.readAllStandardOutput()).trimmed(),
              QStringLiteral("This KEL file is to big for this version of KEL Viewer!"));
}
