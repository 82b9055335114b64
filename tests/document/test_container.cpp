// SPDX-License-Identifier: GPL-3.0-or-later
// The container checks: every result code, the order in which the checks
// run, and that the payload reaches the parser identically whether stored
// plain or compressed.
#include "readerfixture.h"

#include "engine/document/openresult.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

KelFile sound()
{
    return richSurvey().build();
}

OpenResult codeOf(const QByteArray &bytes, const ReadOptions &options = {})
{
    return readBytes(bytes, options).code;
}

TEST(Container, PlainAndCompressedGiveTheSameDocument)
{
    KelFile plain = sound();
    plain.options.compressed = false;
    KelFile packed = sound();
    packed.options.compressed = true;
    const QByteArray a = plain.toBytes();
    const QByteArray b = packed.toBytes();
    // Different stored bytes, hence different checksums...
    ASSERT_NE(a.right(4), b.right(4));
    const ReadResult ra = readBytes(a);
    const ReadResult rb = readBytes(b);
    ASSERT_EQ(ra.code, OpenResult::Ok) << ra.detail.toStdString();
    ASSERT_EQ(rb.code, OpenResult::Ok) << rb.detail.toStdString();
    // ...but one document.
    EXPECT_EQ(describe(*ra.document).toStdString(), describe(*rb.document).toStdString());
}

TEST(Container, ReservedHeaderBytesAreCoveredByTheChecksum)
{
    KelFile f = sound();
    f.options.headerLength = 48;
    f.options.reservedBytes = QByteArray("reserved for later");
    QByteArray bytes = f.toBytes();
    ASSERT_EQ(codeOf(bytes), OpenResult::Ok);
    bytes[40] = char(bytes[40] ^ 0x01);
    EXPECT_EQ(codeOf(bytes), OpenResult::Damaged);
}

struct ContainerCase {
    const char *name;
    std::function<void(KelFile &)> forge;           // before writing
    std::function<void(QByteArray &)> damage;       // after writing
    OpenResult expected;
};

void PrintTo(const ContainerCase &c, std::ostream *os)
{
    *os << c.name;
}

void noForge(KelFile &) {}
void noDamage(QByteArray &) {}

class ContainerCodes : public ::testing::TestWithParam<ContainerCase>
{
};

TEST_P(ContainerCodes, Code)
{
    const ContainerCase &c = GetParam();
    for (bool compressed : {true, false}) {
        KelFile f = sound();
        f.options.compressed = compressed;
        c.forge(f);
        QByteArray bytes = f.toBytes();
        c.damage(bytes);
        const ReadResult r = readBytes(bytes);
        EXPECT_EQ(r.code, c.expected) << (compressed ? "compressed: " : "plain: ") << r.detail.toStdString();
        EXPECT_EQ(r.document != nullptr, c.expected == OpenResult::Ok);
    }
}

const ContainerCase containerCases[] = {
    {"SwappedMagic",
     [](KelFile &f) {
         f.forgery.magic1 = format::Magic2;
         f.forgery.magic2 = format::Magic1;
     },
     noDamage, OpenResult::NotKel},
    {"SecondMagicWrong", [](KelFile &f) { f.forgery.magic2 = 0x328E4450u; }, noDamage, OpenResult::NotKel},
    {"EmptyFile", noForge, [](QByteArray &b) { b.clear(); }, OpenResult::NotKel},
    {"CompatibleZero", [](KelFile &f) { f.options.compatibleRevision = 0; }, noDamage, OpenResult::TooOld},
    {"CompatibleNegative", [](KelFile &f) { f.options.compatibleRevision = -3; }, noDamage, OpenResult::TooOld},
    {"CompatibleTen", [](KelFile &f) { f.options.compatibleRevision = 10; }, noDamage, OpenResult::TooNew},
    {"CompatibleOneOpens", [](KelFile &f) { f.options.compatibleRevision = 1; }, noDamage, OpenResult::Ok},
    {"FileLengthOneShort", noForge, [](QByteArray &b) { patchI32(b, format::OffFileLength, qint32(b.size() - 1)); },
     OpenResult::Damaged},
    {"FileLengthOneLong", noForge, [](QByteArray &b) { patchI32(b, format::OffFileLength, qint32(b.size() + 1)); },
     OpenResult::Damaged},
    {"HeaderLengthBelow32", [](KelFile &f) { f.forgery.headerLength = 31; }, noDamage, OpenResult::Damaged},
    {"PayloadLengthBelow288", [](KelFile &f) { f.forgery.payloadLength = 287; }, noDamage, OpenResult::Damaged},
    {"ChecksumWrong", [](KelFile &f) { f.forgery.checksum = 0x12345678u; }, noDamage, OpenResult::Damaged},
    {"PayloadByteFlipped", noForge, [](QByteArray &b) { b[b.size() / 2] = char(b[b.size() / 2] ^ 0x40); },
     OpenResult::Damaged},
    {"TruncatedByOne", noForge, [](QByteArray &b) { b.chop(1); }, OpenResult::Damaged},
    {"TruncatedWithLengthFixed", noForge,
     [](QByteArray &b) {
         b.chop(9);
         patchI32(b, format::OffFileLength, qint32(b.size()));
     },
     OpenResult::Damaged},
    {"TruncatedToHeader", noForge,
     [](QByteArray &b) {
         b.truncate(32);
         patchI32(b, format::OffFileLength, 32);
     },
     OpenResult::Damaged},
    {"StoredLengthPastTheFile", [](KelFile &f) { f.forgery.storedLength = 1 << 30; }, noDamage, OpenResult::Damaged},
    {"TrailingBytesCountedOpen", [](KelFile &f) { f.forgery.trailingBytes = QByteArray(100, 'x'); }, noDamage,
     OpenResult::Ok},
    {"TooManyCells",
     [](KelFile &f) {
         f.forgery.rowCount = 1000;
         f.forgery.columnCount = 1001;
     },
     noDamage, OpenResult::TooBig},
    {"CellProductOverflows32Bits",
     [](KelFile &f) {
         f.forgery.rowCount = 0x10000;
         f.forgery.columnCount = 0x10000;
     },
     noDamage, OpenResult::TooBig},
};

INSTANTIATE_TEST_SUITE_P(Cases, ContainerCodes, ::testing::ValuesIn(containerCases),
                         [](const auto &info) { return std::string(info.param.name); });

// Only compressed files can fail to inflate; the checksum is right, since it
// covers the stored bytes as they are.
TEST(Container, InflateFailuresAreDamage)
{
    const struct {
        const char *name;
        std::function<void(KelFile &)> forge;
    } cases[] = {
        {"corrupt stream", [](KelFile &f) { f.forgery.patchStored = [](QByteArray &s) { s[s.size() / 2] = char(~s[s.size() / 2]); }; }},
        {"stream cut short", [](KelFile &f) { f.forgery.patchStored = [](QByteArray &s) { s.chop(s.size() / 3); }; }},
        {"not zlib at all", [](KelFile &f) { f.forgery.patchStored = [](QByteArray &s) { s.fill('z'); }; }},
        {"inflates to more than announced", [](KelFile &f) { f.forgery.payloadLength = qint32(f.payload().size() - 1); }},
    };
    for (const auto &c : cases) {
        KelFile f = sound();
        c.forge(f);
        EXPECT_EQ(codeOf(f.toBytes()), OpenResult::Damaged) << c.name;
    }
}

// zlib reports how much it produced; a payload shorter than announced is
// taken at that length, however much more was announced.
TEST(Container, PayloadShorterThanAnnouncedOpens)
{
    const std::string reference = describe(*readBytes(sound().toBytes()).document).toStdString();
    for (qint32 extra : {1, 100, 1 << 20, 0x7FFFFFFF - 100000}) {
        KelFile f = sound();
        f.forgery.payloadLength = qint32(f.payload().size() + extra);
        const ReadResult r = readBytes(f.toBytes());
        ASSERT_EQ(r.code, OpenResult::Ok) << extra << ": " << r.detail.toStdString();
        EXPECT_EQ(describe(*r.document).toStdString(), reference) << extra;
    }
}

// A payload that fills the announced length exactly is no overrun, also when
// it is larger than the first inflate buffer.
TEST(Container, LargePayloadInflatesExactly)
{
    SurveyBuilder b(50000, 3);
    const qint32 q = b.addQuestion({.code = QStringLiteral("Q")}, {{.text = QStringLiteral("a")}, {.text = QStringLiteral("b")}});
    for (qint32 r = 0; r < 50000; r += 7)
        b.setAnswer(r, q, 1);
    KelFile f = b.build();
    const ReadResult r = readBytes(f.toBytes());
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    EXPECT_EQ(r.document->getData(49994, 0), 1);
    EXPECT_EQ(r.document->getData(49995, 0), 0);
    f.forgery.payloadLength = qint32(f.payload().size() - 1);
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::Damaged);
}

// The checks run in a fixed order: with several faults the first one named
// decides. Faults are removed one by one, each time revealing the next.
TEST(Container, ChecksRunInOrder)
{
    KelFile f = sound();
    f.forgery.magic1 = 0;
    f.options.compatibleRevision = 0;
    f.forgery.fileLength = 5;
    f.forgery.rowCount = 1000;
    f.forgery.columnCount = 1001;
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::NotKel);
    f.forgery.magic1.reset();
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::TooOld);
    f.options.compatibleRevision = 10;
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::TooNew);
    f.options.compatibleRevision.reset();
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::Damaged);
    f.forgery.fileLength.reset();
    f.forgery.checksum = 1;
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::Damaged);
    f.forgery.checksum.reset();
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::TooBig);
    f.forgery.rowCount.reset();
    f.forgery.columnCount.reset();
    EXPECT_EQ(codeOf(f.toBytes()), OpenResult::Ok);
}

// Hand-patching a plain file breaks its checksum until it is repaired.
TEST(Container, PatchedPlainFileOpensOnceRepaired)
{
    KelFile f = sound();
    f.options.compressed = false;
    f.options.headerLength = 40;
    QByteArray bytes = f.toBytes();
    patchI32(bytes, 40 + format::PhPointsScale, 1000);
    EXPECT_EQ(codeOf(bytes), OpenResult::Damaged);
    bytes.append("tail");
    repairContainer(bytes);
    const ReadResult r = readBytes(bytes);
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    EXPECT_EQ(r.document->properties.pointsScale, 1000);
    EXPECT_EQ(r.document->properties.indexDecimals, 3);
}

TEST(Container, MillionCellsOpen)
{
    // 1000 x 1000 u8 cells: one alternative per question, every answer 0.
    SurveyBuilder b(1000, 1);
    const qint32 first = b.addQuestion({.code = QStringLiteral("0")}, {{.text = QStringLiteral("Only")}});
    for (int q = 1; q < 1000; ++q)
        b.addQuestionLike({.code = QString::number(q)}, first);
    const ReadResult r = readBytes(b.toBytes());
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    EXPECT_EQ(r.document->rowCount(), 1000);
    EXPECT_EQ(r.document->columnCount(), 1000);
}

TEST(Container, Win9xFileLimitOnlyWhenAsked)
{
    const ReadOptions win9x{.legacyWin9xLimits = true};
    for (qint64 size : {qint64(10000000), qint64(10000001)}) {
        KelFile f = sound();
        f.options.compressed = false;
        const qint64 bare = f.toBytes().size();
        f.forgery.trailingBytes = QByteArray(qsizetype(size - bare), '\0');
        const QByteArray bytes = f.toBytes();
        ASSERT_EQ(bytes.size(), size);
        EXPECT_EQ(codeOf(bytes), OpenResult::Ok) << size;
        EXPECT_EQ(codeOf(bytes, win9x), size >= 10000001 ? OpenResult::TooBig : OpenResult::Ok) << size;
    }
}

TEST(Container, FilesOnDisk)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString good = dir.filePath(QStringLiteral("good.kel"));
    QString error;
    ASSERT_TRUE(sound().writeFile(good, &error)) << error.toStdString();
    const ReadResult r = readDocumentFile(good);
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    EXPECT_EQ(describe(*r.document).toStdString(), describe(*readBytes(sound().toBytes()).document).toStdString());

    EXPECT_EQ(readDocumentFile(dir.filePath(QStringLiteral("missing.kel"))).code, OpenResult::CannotOpen);
    EXPECT_EQ(readDocumentFile(dir.path()).code, OpenResult::CannotOpen);
    EXPECT_EQ(readDocumentFile(QString()).code, OpenResult::CannotOpen);

    const QString shortFile = dir.filePath(QStringLiteral("short.kel"));
    ASSERT_TRUE(writeBytes(shortFile, QByteArray("KEL")));
    EXPECT_EQ(readDocumentFile(shortFile).code, OpenResult::NotKel);
}

} // namespace
} // namespace kel::test
