// SPDX-License-Identifier: GPL-3.0-or-later
// Documents whose block numbers dangle open, and every engine lookup of a
// block number treats such a number as a block without members. Also the
// total index that revisions before 5 lack, computed once for reader and
// session alike.
#include "engine/document/documentsession.h"
#include "engine/indexes/blockindex.h"
#include "engine/indexes/indexexport.h"
#include "engine/overview/sheetlayout.h"
#include "engine/selection/flextotal.h"

#include "readerfixture.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using namespace kel;
using namespace kel::test;

// richSurvey: blocks Main (0), Sub A (1), Sub B (2), Items (3); questions
// Unit (0), Role (1), One..Four (2..5); One and Two in Sub A, Three in Sub B.
KelFile danglingSurvey()
{
    KelFile f = richSurvey().build();
    f.questions[3].block = 9;        // Two: past the block list
    f.questions[4].subBlock = 99;    // Three: sub-block past the list
    f.questions[5].block = -2;       // Four: below "none"
    f.blocks[1].linkedBlock = 4;     // Sub A linked past the list
    f.blockItems[1].block = -1;      // the item naming Role belongs to no block
    f.blockItems.push_back({12, 2}); // an item of a block that does not exist
    return f;
}

// ... in the lookups, the sheet's header runs and the index table.
TEST(BlockReferences, DanglingNumbersOpenAsBlocksWithoutMembers)
{
    for (const bool compressed : {true, false}) {
        KelFile f = danglingSurvey();
        f.options.compressed = compressed;
        const ReadResult r = readBytes(f.toBytes());
        ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
        const Document &d = *r.document;
        // The numbers are kept as written.
        EXPECT_EQ(d.questions[3].block, 9);
        EXPECT_EQ(d.blocks[1].linkedBlock, 4);
        ASSERT_EQ(d.blockItems.size(), 3u);
        EXPECT_EQ(d.blockAt(9), nullptr);
        EXPECT_EQ(d.blockAt(3), &d.blocks[3]);
        const RowList rows = allRows(d);
        const BlockCatalogue blocks(d);
        EXPECT_EQ(blocks.blockAt(9), nullptr);
        EXPECT_EQ(blocks.blockAt(3), &blocks.blocks[3]);
        for (qint32 b : {9, 99, -2, 4, 12, -1}) {
            EXPECT_TRUE(blockMembers(d, blocks, b).empty()) << b;
            EXPECT_EQ(calculateBlockIndex(d, blocks, b, rows), -1.0) << b;
            EXPECT_EQ(calculateBlockFlexTotalIndex(d, blocks, b, rows), -1.0) << b;
        }
        // Main keeps One (and Three, still naming it); Items keeps only Four.
        EXPECT_EQ(blockMembers(d, blocks, 0), (QuestionList{2, 4}));
        EXPECT_EQ(blockMembers(d, blocks, 3), (QuestionList{5}));
        // Header runs: a dangling block is a run of its own without a text.
        std::vector<qint32> numbers;
        for (bool sub : {false, true}) {
            for (const HeaderRun &run : headerRuns(d, d.overviewColumns, sub)) {
                numbers.push_back(run.block);
                EXPECT_EQ(run.text.isEmpty(), d.blockAt(run.block) == nullptr) << run.block;
            }
        }
        EXPECT_EQ(std::vector<qint32>(numbers.begin(), numbers.begin() + 4), (std::vector<qint32>{0, 9, 0, -2}));

        // The index table lists existing blocks only.
        IndexExportOptions options;
        options.subSelTotal = true, options.indexFor.fill(true);
        for (const IndexItem &item : buildIndexItems(d, blocks, options))
            EXPECT_TRUE(item.kind != IndexItem::Block || d.blockAt(item.number)) << item.number;
        const QString table = exportIndexes(d, blocks, QStringLiteral("All"), allRows(d), options, QLocale::c());
        EXPECT_TRUE(table.startsWith(QStringLiteral("All\t"))) << table.toStdString();
    }
}

// Documents of revision 4 and older carry no total index; it is pooled from
// the total's members over every row, the same way for the reader and the
// session, and a document without rows keeps "none" (this used to compute
// with an alternatives pointer offset from null in the session).
TEST(BlockReferences, MissingTotalIndexComputedOnceAndGuarded)
{
    SurveyBuilder b(4);
    b.header().pointsScale = 10;
    const qint32 q =
        b.addQuestion({.heading = QStringLiteral("Q")},
                      {{.text = QStringLiteral("lo"), .points = 10}, {.text = QStringLiteral("hi"), .points = 40}});
    b.addQuestion({.heading = QStringLiteral("Not in total"), .inTotalIndex = false},
                  {{.text = QStringLiteral("x"), .points = 90}});
    b.setAnswers(q, {0, 1, 1, 1});
    KelFile f = b.build();
    f.options.revision = 4;
    ReadResult r = readBytes(f.toBytes());
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    // (10 + 3 x 40) / 4 / 10
    EXPECT_DOUBLE_EQ(r.document->properties.totalIndex, 3.25);
    FlexTotal flex;
    flex.reset(*r.document, BlockCatalogue(*r.document));
    EXPECT_DOUBLE_EQ(flex.totalIndex(), 3.25) << "the flex total starts from the pooled index";
    // Revision 5 stores it: the stored value stands.
    f.options.revision = 5;
    f.header.totalIndex = 7.0;
    EXPECT_DOUBLE_EQ(readBytes(f.toBytes()).document->properties.totalIndex, 7.0);

    // No rows, no alternatives, a first-alternative number past the empty
    // list: read and installed by the session, the index stays "none".
    SurveyBuilder e(0);
    e.header().pointsScale = 10;
    e.addQuestion({.heading = QStringLiteral("Empty")}, {});
    KelFile empty = e.build();
    empty.options.revision = 4;
    empty.questions[0].firstAlternative = 5;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("empty4.kel"));
    ASSERT_TRUE(empty.writeFile(path));
    DocumentSession session(false);
    ASSERT_EQ(session.loadDocument(path, false), OpenResult::Ok);
    const Document &d = *session.document();
    EXPECT_EQ(d.properties.totalIndex, -1.0);
    EXPECT_EQ(calculateTotalIndex(d, allRows(d)), -1.0);
    EXPECT_EQ(calculateColumnsIndex(d, {0}, RowList{}), -1.0);
}

} // namespace
