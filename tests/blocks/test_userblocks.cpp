// SPDX-License-Identifier: GPL-3.0-or-later
// User blocks: the stored layout, restoring (also a damaged store), the editor's working copy.
#include "kelwriter.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/documentreader.h"
#include "engine/indexes/blockindex.h"
#include "engine/selection/flextotal.h"
#include "engine/settings/settingsstore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

// Block "Work" (0), sub-blocks "Tasks" (1), "Tools" (2); questions 0 Unit, 1 Load
// and 2 Pace in Tasks, 3 Laptop in Tools, 4 Lunch outside the overview.
std::unique_ptr<Document> surveyDocument()
{
    SurveyBuilder b(20);
    b.header().pointsScale = 10;
    b.header().guid = {0x78, 0x56, 0x34, 0x12, 0xcd, 0xab, 0x01, 0xef, 1, 2, 3, 4, 5, 6, 7, 8};
    const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
    const qint32 tasks = b.addBlock({.name = QStringLiteral("Tasks"), .linkedBlock = work});
    const qint32 tools = b.addBlock({.name = QStringLiteral("Tools"), .linkedBlock = work});
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    const qint32 load = b.addQuestion({.heading = QStringLiteral("Load"), .block = work, .subBlock = tasks},
                                      {{.text = QStringLiteral("bad"), .points = 10},
                                       {.text = QStringLiteral("fair"), .points = 30},
                                       {.text = QStringLiteral("good"), .points = 50}});
    const qint32 pace = b.addQuestionLike({.heading = QStringLiteral("Pace"), .block = work, .subBlock = tasks}, load);
    const qint32 laptop =
        b.addQuestionLike({.heading = QStringLiteral("Laptop"), .block = work, .subBlock = tools}, load);
    const qint32 lunch = b.addQuestionLike({.heading = QStringLiteral("Lunch"), .inOverview = false}, load);
    for (qint32 r = 0; r < 20; ++r)
        for (const auto &[q, a] : std::initializer_list<std::pair<qint32, qint32>>{
                 {0, r / 12}, {load, r % 3}, {pace, (r / 2) % 3}, {laptop, 2}, {lunch, r % 2}})
            b.setAnswer(r, q, a);
    return readDocumentBytes(b.build().toBytes()).document;
}

class UserBlocks : public ::testing::Test
{
protected:
    QString iniFile() const { return mDir.filePath(QStringLiteral("user/KEL Viewer.ini")); }
    QString policyFile() const { return mDir.filePath(QStringLiteral("etc/KEL Viewer.ini")); }

    std::unique_ptr<SettingsStore> openStore() const
    {
        return std::make_unique<SettingsStore>(SettingsLocation{.file = iniFile(), .policyFile = policyFile()});
    }

    QByteArray iniBytes() const
    {
        QFile f(iniFile());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    // Values as a damaged or foreign store might hold them, under this document's key.
    void writeRaw(std::initializer_list<std::pair<const char *, const char *>> values) const
    {
        QDir().mkpath(QFileInfo(iniFile()).absolutePath());
        QSettings s(iniFile(), QSettings::IniFormat);
        for (const auto &[name, value] : values)
            s.setValue(QStringLiteral("Documents/{12345678-ABCD-EF01-0102-030405060708}/") + QLatin1String(name),
                       QString::fromUtf8(value));
    }

    static std::vector<std::pair<qint32, qint32>> items(const BlockCatalogue &catalogue)
    {
        std::vector<std::pair<qint32, qint32>> out;
        for (const BlockItem &i : catalogue.items)
            out.emplace_back(i.block, i.question);
        return out;
    }

    QTemporaryDir mDir;
};

} // namespace

TEST_F(UserBlocks, StoredLayoutIsWrittenExactlyAndReadBack)
{
    std::unique_ptr<Document> doc = surveyDocument();
    BlockCatalogue blocks(*doc);
    BlockEditModel model(*doc, blocks);
    model.add(QStringLiteral("Theme"));
    for (qint32 q : {3, 1, 4}) // 4 is not in the overview: still a member
        model.setMember(3, q, true);
    model.setIncludeInCopy(3, true);
    model.add(QStringLiteral("Empty"));
    model.setIncludeInCopy(1, true); // the sub-block "Tasks"
    model.apply(blocks);

    auto store = openStore();
    ASSERT_TRUE(storeUserBlocks(*doc, blocks, *store));
    store.reset();
    const QByteArray expected =
        "[Documents]\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20000\\Include%20In%20Copy=dword:00000001\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20001\\Include%20In%20Copy=dword:00000001\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20002\\Include%20In%20Copy=dword:00000000\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20003\\Include%20In%20Copy=dword:00000001\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20003\\Included%20Data%20Headers=1|3|4\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20003\\Name=Theme\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20004\\Include%20In%20Copy=dword:00000000\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20004\\Included%20Data%20Headers=\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20004\\Name=Empty\n"
        "%7B12345678-ABCD-EF01-0102-030405060708%7D\\Block%20Items=dword:00000005\n";
    EXPECT_EQ(iniBytes(), expected);

    // Opened again: the same blocks, and reading leaves the file as it was.
    std::unique_ptr<Document> again = surveyDocument();
    BlockCatalogue restored(*again);
    const UserBlockRestore restore = restoreUserBlocks(*again, restored, *openStore(), true);
    EXPECT_TRUE(restore.found && restore.problems.isEmpty() && restore.added == 2);
    ASSERT_EQ(restored.size(), 5);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(restored.blocks[i].includeInCopy, blocks.blocks[i].includeInCopy) << i;
    EXPECT_EQ(items(restored), items(blocks));
    EXPECT_EQ(iniBytes(), expected);
    EXPECT_EQ(again->blocks.size(), 3u) << "the document keeps its own blocks only";
    EXPECT_TRUE(!again->blocks[1].includeInCopy && restored.blocks[1].includeInCopy)
        << "a stored flag goes to the catalogue, never into the document";

    EXPECT_DOUBLE_EQ(restored.blocks[3].totalIndex, calculateColumnsIndex(*again, {1, 3, 4}, allRows(*again)));
    EXPECT_EQ(restored.blocks[4].totalIndex, -1.0) << "an empty block has no index";

    // Deleting renumbers the later keys and drops the last one.
    BlockEditModel edit(*again, restored);
    ASSERT_TRUE(edit.remove(3));
    edit.apply(restored);
    store = openStore();
    ASSERT_TRUE(storeUserBlocks(*again, restored, *store));
    const QString key = SettingsStore::documentKey(again->guidText());
    EXPECT_EQ(store->readString(blockKey(key, 3), QStringLiteral("Name")), QStringLiteral("Empty"));
    EXPECT_FALSE(store->keyExists(blockKey(key, 4)));
    EXPECT_EQ(store->readDword(key, QStringLiteral("Block Items")), 4);
}

TEST_F(UserBlocks, DamagedStoreIsRepairedAndAPolicyKeepsItUntouched)
{
    // Block 4 has no name, block 6 repeats 3's, block 7 has no members and no flag.
    writeRaw({{"Block Items", "seven"},
              {"Block 000/Include In Copy", "maybe"},
              {"Block 003/Name", "Kept"},
              {"Block 003/Include In Copy", "dword:00000000"},
              {"Block 003/Included Data Headers", "2|x|99|-1|0.6|2.6||1e308"},
              {"Block 004/Included Data Headers", "1"},
              {"Block 006/Name", "kept"},
              {"Block 007/Name", "Last"}});
    std::unique_ptr<Document> doc = surveyDocument();
    BlockCatalogue blocks(*doc);
    auto store = openStore();
    const UserBlockRestore restore = restoreUserBlocks(*doc, blocks, *store, true);
    EXPECT_TRUE(restore.found && restore.repaired && !restore.problems.isEmpty());
    ASSERT_EQ(blocks.size(), 5);
    EXPECT_TRUE(blocks.blocks[0].includeInCopy) << "a bad flag leaves the default";
    EXPECT_TRUE(blocks.blocks[3].name == QStringLiteral("Kept") && !blocks.blocks[3].includeInCopy);
    EXPECT_TRUE(blocks.blocks[4].name == QStringLiteral("Last") && blocks.blocks[4].includeInCopy);
    EXPECT_EQ(items(blocks), (std::vector<std::pair<qint32, qint32>>{{3, 1}, {3, 2}, {3, 3}}));
    std::unique_ptr<Document> again = surveyDocument();
    BlockCatalogue repaired(*again);
    EXPECT_TRUE(restoreUserBlocks(*again, repaired, *openStore(), true).problems.isEmpty()) << "the repair holds";
    EXPECT_EQ(items(repaired), items(blocks));

    // An absurd count is not walked; with saving forbidden nothing is written.
    writeRaw({{"Block Items", "dword:7fffffff"}});
    QDir().mkpath(QFileInfo(policyFile()).absolutePath());
    QSettings(policyFile(), QSettings::IniFormat).setValue(QStringLiteral("Explorer/NoSaveSettings"), 1);
    const QByteArray before = iniBytes();
    std::unique_ptr<Document> third = surveyDocument();
    BlockCatalogue bounds(*third);
    store = openStore();
    const UserBlockRestore bounded = restoreUserBlocks(*third, bounds, *store, true);
    EXPECT_TRUE(bounded.added == 2 && !bounded.repaired);
    EXPECT_FALSE(storeUserBlocks(*third, bounds, *store));
    store.reset();
    EXPECT_EQ(iniBytes(), before);
}

TEST(BlockEditor, NamesAreCheckedAgainstTheWorkingCopy)
{
    std::unique_ptr<Document> doc = surveyDocument();
    BlockCatalogue blocks(*doc);
    BlockEditModel model(*doc, blocks);
    using enum BlockEditModel::NameCheck;
    EXPECT_EQ(model.add(QStringLiteral("WORK")), Duplicate);
    model.add(QStringLiteral("Service"));
    EXPECT_EQ(model.rename(3, QStringLiteral("  service ")), Ok) << "its own name in another case";
    EXPECT_EQ(blocks.size(), 3) << "nothing reaches the catalogue before OK";
    model.apply(blocks);
    EXPECT_EQ(blocks.size(), 4);
    BlockEditModel second(*doc, blocks);
    ASSERT_TRUE(second.remove(3));
    EXPECT_EQ(second.add(QStringLiteral("SERVICE")), Duplicate) << "a deleted block's name is free only after OK";
}

// The flex total keeps an index per catalogue block: the user's blocks get
// theirs when it is told of them, over its own rows, and the document's
// blocks keep what they had.
TEST_F(UserBlocks, TheFlexTotalLearnsTheUserBlocksAfterAnEdit)
{
    std::unique_ptr<Document> doc = surveyDocument();
    BlockCatalogue blocks(*doc);
    FlexTotal flex;
    flex.reset(*doc, blocks);
    const double workBefore = flex.blockIndex(0);
    BlockEditModel model(*doc, blocks);
    qint32 added = -1;
    ASSERT_EQ(model.add(QStringLiteral("Theme"), &added), BlockEditModel::NameCheck::Ok);
    model.setMember(added, 1, true);
    model.setMember(added, 3, true);
    model.apply(blocks);
    ASSERT_EQ(blocks.size(), 4);
    EXPECT_EQ(flex.blockIndex(3), -1.0) << "not known before it is told";
    flex.updateUserBlockIndexes(*doc, blocks);
    ASSERT_NE(flex.blockIndex(3), -1.0);
    EXPECT_DOUBLE_EQ(flex.blockIndex(3), calculateColumnsIndex(*doc, {1, 3}, allRows(*doc)));
    EXPECT_EQ(flex.blockIndex(0), workBefore);
    EXPECT_EQ(doc->blocks.size(), 3u);
}
