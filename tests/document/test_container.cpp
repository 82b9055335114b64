// SPDX-License-Identifier: GPL-3.0-or-later
// The container checks: every result code, the order in which the checks
// run, and that the payload reaches the parser identically whether stored
// plain or compressed.
#include "readerfixture.h"

#include "engine/document/openresult.h"

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

std::string reference()
{
    return describe(*readBytes(sound().toBytes()).document).toStdString();
}

struct ContainerCase {
    const char *name;
    std::function<void(KelFile &)> forge;     // before writing
    std::function<void(QByteArray &)> damage; // after writing
    OpenResult expected;
};

class ContainerCodes : public ::testing::TestWithParam<ContainerCase>
{
};

TEST_P(ContainerCodes, Code)
{
    const ContainerCase &c = GetParam();
    for (bool compressed : {true, false}) {
        KelFile f = sound();
        f.options.compressed = compressed;
        if (c.forge)
            c.forge(f);
        QByteArray bytes = f.toBytes();
        if (c.damage)
            c.damage(bytes);
        const ReadResult r = readBytes(bytes);
        EXPECT_EQ(r.code, c.expected) << (compressed ? "compressed: " : "plain: ") << r.detail.toStdString();
        EXPECT_EQ(r.document != nullptr, c.expected == OpenResult::Ok);
    }
}

const ContainerCase containerCases[] = {
    {"SwappedMagic",
     [](KelFile &f) { f.forgery.magic1 = format::Magic2, f.forgery.magic2 = format::Magic1; },
     {},
     OpenResult::NotKel},
    {"SecondMagicWrong", [](KelFile &f) { f.forgery.magic2 = 0x328E4450u; }, {}, OpenResult::NotKel},
    {"EmptyFile", {}, [](QByteArray &b) { b.clear(); }, OpenResult::NotKel},
    {"CompatibleZero", [](KelFile &f) { f.options.compatibleRevision = 0; }, {}, OpenResult::TooOld},
    {"CompatibleNegative", [](KelFile &f) { f.options.compatibleRevision = -3; }, {}, OpenResult::TooOld},
    {"CompatibleTen", [](KelFile &f) { f.options.compatibleRevision = 10; }, {}, OpenResult::TooNew},
    {"CompatibleOneOpens", [](KelFile &f) { f.options.compatibleRevision = 1; }, {}, OpenResult::Ok},
    {"FileLengthOneShort",
     {},
     [](QByteArray &b) { patchI32(b, format::OffFileLength, qint32(b.size() - 1)); },
     OpenResult::Damaged},
    {"FileLengthOneLong",
     {},
     [](QByteArray &b) { patchI32(b, format::OffFileLength, qint32(b.size() + 1)); },
     OpenResult::Damaged},
    {"HeaderLengthBelow32", [](KelFile &f) { f.forgery.headerLength = 31; }, {}, OpenResult::Damaged},
    {"PayloadLengthBelow288", [](KelFile &f) { f.forgery.payloadLength = 287; }, {}, OpenResult::Damaged},
    {"ChecksumWrong", [](KelFile &f) { f.forgery.checksum = 0x12345678u; }, {}, OpenResult::Damaged},
    {"ReservedHeaderByteFlipped", [](KelFile &f) { f.options.headerLength = 48; },
     [](QByteArray &b) { b[40] = char(b[40] ^ 0x01); }, OpenResult::Damaged},
    {"PayloadByteFlipped",
     {},
     [](QByteArray &b) { b[b.size() / 2] = char(b[b.size() / 2] ^ 0x40); },
     OpenResult::Damaged},
    {"TruncatedByOne", {}, [](QByteArray &b) { b.chop(1); }, OpenResult::Damaged},
    {"TruncatedWithLengthFixed",
     {},
     [](QByteArray &b) { b.chop(9), patchI32(b, format::OffFileLength, qint32(b.size())); },
     OpenResult::Damaged},
    {"TruncatedToHeader",
     {},
     [](QByteArray &b) { b.truncate(32), patchI32(b, format::OffFileLength, 32); },
     OpenResult::Damaged},
    {"StoredLengthPastTheFile", [](KelFile &f) { f.forgery.storedLength = 1 << 30; }, {}, OpenResult::Damaged},
    {"TrailingBytesCountedOpen",
     [](KelFile &f) { f.forgery.trailingBytes = QByteArray(100, 'x'); },
     {},
     OpenResult::Ok},
    {"TooManyCells",
     [](KelFile &f) { f.forgery.rowCount = 1000, f.forgery.columnCount = 1001; },
     {},
     OpenResult::TooBig},
    {"CellProductOverflows32Bits",
     [](KelFile &f) { f.forgery.rowCount = f.forgery.columnCount = 0x10000; },
     {},
     OpenResult::TooBig},
};

INSTANTIATE_TEST_SUITE_P(Cases, ContainerCodes, ::testing::ValuesIn(containerCases),
                         [](const auto &info) { return std::string(info.param.name); });

// Only compressed files can fail to inflate; the checksum is right, since it
// covers the stored bytes as they are. A payload shorter than announced is
// taken at the length zlib produced, however much more was announced.
TEST(Container, InflateFailuresAreDamageAndShortPayloadsOpen)
{
    const std::function<void(QByteArray &)> patches[] = {
        [](QByteArray &s) { s[s.size() / 2] = char(~s[s.size() / 2]); },
        [](QByteArray &s) { s.chop(s.size() / 3); },
        [](QByteArray &s) { s.fill('z'); },
    };
    for (const auto &patch : patches) {
        KelFile f = sound();
        f.forgery.patchStored = patch;
        EXPECT_EQ(codeOf(f.toBytes()), OpenResult::Damaged);
    }
    for (qint32 extra : {-1, 1, 1 << 20, 0x7FFFFFFF - 100000}) {
        KelFile f = sound();
        f.forgery.payloadLength = qint32(f.payload().size() + extra);
        const ReadResult r = readBytes(f.toBytes());
        if (extra < 0) { // inflates to more than announced
            EXPECT_EQ(r.code, OpenResult::Damaged);
            continue;
        }
        ASSERT_EQ(r.code, OpenResult::Ok) << extra << ": " << r.detail.toStdString();
        EXPECT_EQ(describe(*r.document).toStdString(), reference()) << extra;
    }
}

// A payload that fills the announced length exactly is no overrun, also when
// it is larger than the first inflate buffer.
TEST(Container, LargePayloadsOpen)
{
    SurveyBuilder b(50000, 3);
    const qint32 q =
        b.addQuestion({.code = QStringLiteral("Q")}, {{.text = QStringLiteral("a")}, {.text = QStringLiteral("b")}});
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

TEST(Container, FilesOnDisk)
{
    QTemporaryDir dir;
    const QString good = dir.filePath(QStringLiteral("good.kel")),
                  shortFile = dir.filePath(QStringLiteral("short.kel"));
    ASSERT_TRUE(sound().writeFile(good));
    const ReadResult r = readDocumentFile(good);
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    EXPECT_EQ(describe(*r.document).toStdString(), reference());
    for (const QString &unopenable : {dir.filePath(QStringLiteral("missing.kel")), dir.path(), QString()})
        EXPECT_EQ(readDocumentFile(unopenable).code, OpenResult::CannotOpen) << unopenable.toStdString();
    ASSERT_TRUE(writeBytes(shortFile, QByteArray("KEL")));
    EXPECT_EQ(readDocumentFile(shortFile).code, OpenResult::NotKel);
}

} // namespace
} // namespace kel::test
