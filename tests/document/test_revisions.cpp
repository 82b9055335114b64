// SPDX-License-Identifier: GPL-3.0-or-later
// Files of every revision: the writer puts in only what the revision defines
// (with garbage where it defines nothing), and the reader must come up with
// the revision-9 document except for the documented replacement values.
#include "readerfixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace kel::test {
namespace {

using format::Strides;
using format::stridesForRevision;

struct Reference {
    KelFile file;
    double pooledTotal; // the total index as computed over all rows
};

// The rich survey with stored values that no computation would produce, so
// that a replacement applied too early or too late is visible.
Reference reference()
{
    Reference ref{richSurvey().build(), 0};
    KelFile &f = ref.file;
    ref.pooledTotal = f.header.totalIndex;
    f.header.totalIndex = 0.625;
    f.header.maxPoints = 77;
    f.header.indexFlags = 0x101;
    f.alternatives[1].kept16 = 16;
    f.questions[2].kept20 = 20;
    f.rowComments[1].kept4 = 4;
    f.blocks[0].kept12 = 12;
    f.blocks[0].kept16 = 16;
    f.blocks[0].kept20 = 20;
    return ref;
}

qint32 defaultGraphFlags(const Document &d, double totalIndex)
{
    return 3 | ((d.properties.pointsScale > 0 && totalIndex != -1.0) ? 0x100 : 0);
}

/// What a file of `revision` must read as, given the revision-9 document.
void applyReplacements(Document &d, int revision, double pooledTotal)
{
    d.revision = revision;
    d.compatibleRevision = revision;
    for (Alternative &a : d.alternatives) {
        if (revision < 3) {
            a.graphAttribute = 0;
            a.sortValue = a.points;
        }
        if (revision < 7)
            a.graphColour = a.sheetColour;
    }
    for (Question &q : d.questions) {
        if (revision < 2)
            q.subBlock = -1;
        if (revision < 6)
            q.isFlexCategory = false;
        if (revision < 8) {
            q.graphFlags = defaultGraphFlags(d, q.totalIndex);
            q.rankingWeight = 1;
        }
    }
    if (revision < 6)
        d.flexCategory = -1;
    if (revision < 4) {
        for (RowComment &c : d.rowComments)
            c.kept4 = -1;
        d.cellComments.clear();
        d.hasCellComments = false;
    }
    for (Block &b : d.blocks) {
        if (revision < 2) {
            b.linkedBlock = -1;
            b.includeInCopy = true;
        }
        if (revision < 8)
            b.graphFlags = defaultGraphFlags(d, b.totalIndex);
    }
    DocumentProperties &p = d.properties;
    if (revision < 2) {
        p.indexLineTexts[2] = -1;
        p.sheetColours[2] = p.sheetColours[3] = -1;
    }
    if (revision < 5) {
        p.rowOrder = -1;
        p.minimumComplementSelection = p.minimumSelection;
        p.totalIndex = pooledTotal;
    }
    if (revision < 9) {
        p.indexFlags = p.pointsScale > 0 ? 0x100 : 0;
        p.maxPoints = -1;
        for (const Alternative &a : d.alternatives)
            p.maxPoints = std::max(p.maxPoints, a.points);
        p.rowOrderThreshold = -1;
        p.allowCopyData = false;
    }
}

struct RevisionCase {
    int revision;
    quint8 fill;
    bool compressed;
};

class Revisions : public ::testing::TestWithParam<RevisionCase>
{
};

TEST_P(Revisions, ReadAsRevisionNineWithReplacements)
{
    const RevisionCase c = GetParam();
    const Reference ref = reference();
    const ReadResult nine = readBytes(ref.file.toBytes());
    ASSERT_EQ(nine.code, OpenResult::Ok) << nine.detail.toStdString();

    KelFile old = ref.file;
    old.options.revision = c.revision;
    old.options.undefinedFill = c.fill;
    old.options.compressed = c.compressed;
    const ReadResult read = readBytes(old.toBytes());
    ASSERT_EQ(read.code, OpenResult::Ok) << read.detail.toStdString();

    Document expected = *nine.document;
    applyReplacements(expected, c.revision, ref.pooledTotal);
    EXPECT_EQ(describe(*read.document).toStdString(), describe(expected).toStdString());
}

std::vector<RevisionCase> revisionCases()
{
    std::vector<RevisionCase> cases;
    for (int r = 1; r <= 9; ++r) {
        cases.push_back({r, 0x00, true});
        cases.push_back({r, 0xA5, r % 2 == 0});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(EveryRevision, Revisions, ::testing::ValuesIn(revisionCases()), [](const auto &info) {
    return "rev" + std::to_string(info.param.revision) + (info.param.fill ? "_garbage" : "_zero")
        + (info.param.compressed ? "_zlib" : "_plain");
});

// The record sizes of each revision, from the field tables: alternatives
// grow at revisions 3 and 7, questions at 2, 6 and 8, row comments at 4,
// blocks at 2 and 8. Records are padded to 4 bytes.
TEST(Revisions, StridesFollowTheFieldTables)
{
    const struct {
        int revision;
        Strides s;
    } table[] = {
        {1, {28, 52, 4, 32, 8}}, {2, {28, 56, 4, 36, 8}}, {3, {36, 56, 4, 36, 8}},
        {4, {36, 56, 8, 36, 8}}, {5, {36, 56, 8, 36, 8}}, {6, {36, 60, 8, 36, 8}},
        {7, {40, 60, 8, 36, 8}}, {8, {40, 68, 8, 40, 8}}, {9, {40, 68, 8, 40, 8}},
    };
    for (const auto &[revision, e] : table) {
        const Strides s = stridesForRevision(revision);
        EXPECT_EQ(std::tie(s.alternative, s.question, s.rowComment, s.block, s.blockItem),
                  std::tie(e.alternative, e.question, e.rowComment, e.block, e.blockItem))
            << revision;
    }
}

// A writer newer than the reader may use longer records; only the stride
// tells where the next one starts. Such a file opens with the upgrade warning
// (revision 9 itself opens without, as the table above shows).
TEST(Revisions, WiderStridesOfANewerWriterAreFollowed)
{
    const Reference ref = reference();
    const ReadResult nine = readBytes(ref.file.toBytes());
    KelFile wide = ref.file;
    wide.options.revision = 12;
    wide.options.compatibleRevision = 9;
    wide.options.strides = Strides{52, 80, 12, 48, 16};
    wide.options.cellCommentStride = 12;
    wide.options.undefinedFill = 0xEE;
    const ReadResult read = readBytes(wide.toBytes());
    ASSERT_EQ(read.code, OpenResult::Ok) << read.detail.toStdString();
    Document expected = *nine.document;
    expected.revision = 12;
    expected.compatibleRevision = 9;
    expected.upgradeWarning = true;
    EXPECT_EQ(describe(*read.document).toStdString(), describe(expected).toStdString());
}

} // namespace
} // namespace kel::test
