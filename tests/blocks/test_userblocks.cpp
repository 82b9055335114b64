// SPDX-License-Identifier: GPL-3.0-or-later
// User blocks: the settings layout, restoring (also from a damaged store),
// the editor's working copy, and how the index export lists blocks.
#include "kelwriter.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/documentreader.h"
#include "engine/indexes/blockindex.h"
#include "engine/indexes/indexexport.h"
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

// Block "Work" (0) with sub-blocks "Tasks" (1) and "Tools" (2); questions:
// 0 Unit (category), 1 Load and 2 Pace in Tasks, 3 Laptop in Tools, 4 Lunch
// outside any block and left out of the overview. 20 respondents.
std::unique_ptr<Document> surveyDocument()
{
    SurveyBuilder b(20);
    HeaderFields &h = b.header();
    h.pointsScale = 10;
    h.minimumGraphSelection = 3;
    h.guid = {0x78, 0x56, 0x34, 0x12, 0xcd, 0xab, 0x01, 0xef, 1, 2, 3, 4, 5, 6, 7, 8};
    const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
    const qint32 tasks = b.addBlock({.name = QStringLiteral("Tasks"), .linkedBlock = work});
    const qint32 tools = b.addBlock({.name = QStringLiteral("Tools"), .linkedBlock = work});
    const QList<AlternativeSpec> scale{{.text = QStringLiteral("bad"), .points = 10},
                                       {.text = QStringLiteral("fair"), .points = 30},
                                       {.text = QStringLiteral("good"), .points = 50}};
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    const qint32 load = b.addQuestion({.heading = QStringLiteral("Load"), .block = work, .subBlock = tasks}, scale);
    const qint32 pace = b.addQuestionLike({.heading = QStringLiteral("Pace"), .block = work, .subBlock = tasks}, load);
    const qint32 laptop =
        b.addQuestionLike({.heading = QStringLiteral("Laptop"), .block = work, .subBlock = tools}, load);
    const qint32 lunch = b.addQuestionLike({.heading = QStringLiteral("Lunch"), .inOverview = false}, load);
    for (qint32 r = 0; r < 20; ++r) {
        b.setAnswer(r, 0, r < 12 ? 0 : 1);
        b.setAnswer(r, load, r % 3);
        b.setAnswer(r, pace, (r / 2) % 3);
        b.setAnswer(r, laptop, 2);
        b.setAnswer(r, lunch, r % 2);
    }
    ReadResult read = readDocumentBytes(b.build().toBytes());
    EXPECT_EQ(read.code, OpenResult::Ok) << read.detail.toStdString();
    return std::move(read.document);
}

class UserBlocks : public ::testing::Test
{
protected:
    QString iniFile() const { return mDir.filePath(QStringLiteral("user/KEL Viewer.ini")); }
    QString policyFile() const { return mDir.filePath(QStringLiteral("etc/KEL Viewer.ini")); }

    std::unique_ptr<SettingsStore> openStore() const
    {
        SettingsLocation l;
        l.file = iniFile();
        l.policyFile = policyFile();
        return std::make_unique<SettingsStore>(l);
    }

    QByteArray iniBytes() const
    {
        QFile f(iniFile());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    void writeRaw(const QString &name, const QString &value) const
    {
        QDir().mkpath(QFileInfo(iniFile()).absolutePath());
        QSettings s(iniFile(), QSettings::IniFormat);
        s.setValue(QStringLiteral("Documents/{12345678-ABCD-EF01-0102-030405060708}/") + name, value);
    }

    static std::vector<std::pair<qint32, qint32>> items(const Document &doc)
    {
        std::vector<std::pair<qint32, qint32>> out;
        for (const BlockItem &i : doc.blockItems)
            out.emplace_back(i.block, i.question);
        return out;
    }

    QTemporaryDir mDir;
};

} // namespace

TEST_F(UserBlocks, StoredLayoutIsWrittenExactlyAndReadBack)
{
    std::unique_ptr<Document> doc = surveyDocument();
    ASSERT_EQ(doc->guidText(), QStringLiteral("{12345678-ABCD-EF01-0102-030405060708}"));
    BlockEditModel model(*doc);
    qint32 theme = -1;
    ASSERT_EQ(model.add(QStringLiteral("Theme"), &theme), BlockEditModel::NameCheck::Ok);
    model.setMember(theme, 3, true);
    model.setMember(theme, 1, true);
    model.setMember(theme, 4, true); // not an overview question: still a member
    model.setIncludeInCopy(theme, true);
    ASSERT_EQ(model.add(QStringLiteral("Empty")), BlockEditModel::NameCheck::Ok);
    model.setIncludeInCopy(1, true); // the sub-block "Tasks"
    model.apply(*doc, allRows(*doc));

    auto store = openStore();
    ASSERT_TRUE(storeUserBlocks(*doc, *store));
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

    // The same document opened again finds the same blocks, and reading
    // leaves the file as it was.
    std::unique_ptr<Document> again = surveyDocument();
    EXPECT_FALSE(again->blocks[1].includeInCopy); // the reader's default for a sub-block
    store = openStore();
    const UserBlockRestore restore = restoreUserBlocks(*again, *store, true);
    store.reset();
    EXPECT_TRUE(restore.found);
    EXPECT_EQ(restore.added, 2);
    EXPECT_TRUE(restore.problems.isEmpty()) << restore.problems.join(QLatin1Char('\n')).toStdString();
    ASSERT_EQ(again->blocks.size(), 5u);
    EXPECT_TRUE(again->blocks[1].includeInCopy);
    EXPECT_FALSE(again->blocks[2].includeInCopy);
    EXPECT_EQ(again->blocks[3].name, QStringLiteral("Theme"));
    EXPECT_FALSE(again->blocks[3].fromDocument);
    EXPECT_FALSE(again->blocks[4].includeInCopy);
    EXPECT_EQ(items(*again), items(*doc));
    EXPECT_EQ(iniBytes(), expected);

    // Their indexes pool the members over every row; an empty block has none.
    EXPECT_DOUBLE_EQ(again->blocks[3].totalIndex, calculateColumnsIndex(*again, {1, 3, 4}, allRows(*again)));
    EXPECT_DOUBLE_EQ(again->blocks[3].flexTotalIndex, again->blocks[3].totalIndex);
    EXPECT_EQ(again->blocks[4].totalIndex, -1.0);
    EXPECT_EQ(again->blocks[4].flexTotalIndex, -1.0);
}

TEST_F(UserBlocks, DeletingRenumbersLaterKeysAndDropsTheLastOne)
{
    std::unique_ptr<Document> doc = surveyDocument();
    {
        BlockEditModel model(*doc);
        model.add(QStringLiteral("First"));
        model.add(QStringLiteral("Second"));
        model.setMember(4, 2, true);
        model.apply(*doc, allRows(*doc));
        auto store = openStore();
        ASSERT_TRUE(storeUserBlocks(*doc, *store));
    }
    BlockEditModel model(*doc);
    ASSERT_TRUE(model.remove(3));
    EXPECT_EQ(model.entry(3).state, BlockEditModel::Deleted);
    EXPECT_EQ(model.listed(), (std::vector<qint32>{0, 1, 2, 4}));
    model.apply(*doc, allRows(*doc));
    ASSERT_EQ(doc->blocks.size(), 4u);
    EXPECT_EQ(items(*doc), (std::vector<std::pair<qint32, qint32>>{{3, 2}}));
    auto store = openStore();
    ASSERT_TRUE(storeUserBlocks(*doc, *store));
    const QString key = SettingsStore::documentKey(doc->guidText());
    EXPECT_EQ(store->readString(blockKey(key, 3), QStringLiteral("Name")), QStringLiteral("Second"));
    EXPECT_EQ(store->readString(blockKey(key, 3), QStringLiteral("Included Data Headers")), QStringLiteral("2"));
    EXPECT_FALSE(store->keyExists(blockKey(key, 4)));
    EXPECT_EQ(store->readDword(key, QStringLiteral("Block Items")), 4);
}

TEST_F(UserBlocks, DamagedStoreIsRepairedWithoutStoppingTheOpen)
{
    writeRaw(QStringLiteral("Block Items"), QStringLiteral("seven"));
    writeRaw(QStringLiteral("Block 000/Include In Copy"), QStringLiteral("maybe"));
    writeRaw(QStringLiteral("Block 003/Name"), QStringLiteral("Kept"));
    writeRaw(QStringLiteral("Block 003/Include In Copy"), QStringLiteral("dword:00000000"));
    writeRaw(QStringLiteral("Block 003/Included Data Headers"), QStringLiteral("2|x|99|-1|0.6|2.6||1e308"));
    writeRaw(QStringLiteral("Block 004/Included Data Headers"), QStringLiteral("1")); // no name
    writeRaw(QStringLiteral("Block 006/Name"), QStringLiteral("kept"));                // same name again
    writeRaw(QStringLiteral("Block 007/Name"), QStringLiteral("Last"));                // no members, no flag

    std::unique_ptr<Document> doc = surveyDocument();
    auto store = openStore();
    const UserBlockRestore restore = restoreUserBlocks(*doc, *store, true);
    EXPECT_TRUE(restore.found);
    EXPECT_FALSE(restore.problems.isEmpty());
    EXPECT_TRUE(restore.repaired);
    ASSERT_EQ(doc->blocks.size(), 5u);
    EXPECT_TRUE(doc->blocks[0].includeInCopy); // a bad flag leaves the default
    EXPECT_EQ(doc->blocks[3].name, QStringLiteral("Kept"));
    EXPECT_FALSE(doc->blocks[3].includeInCopy);
    EXPECT_EQ(doc->blocks[4].name, QStringLiteral("Last"));
    EXPECT_TRUE(doc->blocks[4].includeInCopy);
    EXPECT_EQ(items(*doc), (std::vector<std::pair<qint32, qint32>>{{3, 1}, {3, 2}, {3, 3}}));
    for (const BlockItem &i : doc->blockItems)
        EXPECT_LT(std::size_t(i.question), doc->questions.size());

    // The repaired store reads back cleanly and gives the same blocks.
    store = openStore();
    std::unique_ptr<Document> again = surveyDocument();
    const UserBlockRestore second = restoreUserBlocks(*again, *store, true);
    EXPECT_TRUE(second.problems.isEmpty()) << second.problems.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(second.added, 2);
    EXPECT_EQ(items(*again), items(*doc));
    const QString key = SettingsStore::documentKey(doc->guidText());
    EXPECT_FALSE(store->keyExists(blockKey(key, 6)));
    EXPECT_EQ(store->readDword(key, QStringLiteral("Block Items")), 5);
}

TEST_F(UserBlocks, AbsurdCountAndPolicyWriteNothing)
{
    writeRaw(QStringLiteral("Block Items"), QStringLiteral("dword:7fffffff"));
    writeRaw(QStringLiteral("Block 003/Name"), QStringLiteral("Only"));
    writeRaw(QStringLiteral("Block 003/Include In Copy"), QStringLiteral("dword:00000001"));
    writeRaw(QStringLiteral("Block 003/Included Data Headers"), QStringLiteral("1"));
    QDir().mkpath(QFileInfo(policyFile()).absolutePath());
    QSettings(policyFile(), QSettings::IniFormat).setValue(QStringLiteral("Explorer/NoSaveSettings"), 1);
    const QByteArray before = iniBytes();

    std::unique_ptr<Document> doc = surveyDocument();
    auto store = openStore();
    ASSERT_TRUE(store->policies().noSaveSettings);
    const UserBlockRestore restore = restoreUserBlocks(*doc, *store, true);
    EXPECT_EQ(restore.added, 1);
    EXPECT_FALSE(restore.problems.isEmpty());
    EXPECT_FALSE(restore.repaired);
    EXPECT_FALSE(storeUserBlocks(*doc, *store));
    store.reset();
    EXPECT_EQ(iniBytes(), before);
}

TEST(BlockEditor, WorkingCopyStates)
{
    std::unique_ptr<Document> doc = surveyDocument();
    const std::vector<Block> original = doc->blocks;
    BlockEditModel model(*doc);

    // Document blocks: members found by the rule, fixed.
    EXPECT_EQ(model.members(0), (QuestionList{1, 2, 3}));
    EXPECT_EQ(model.members(1), (QuestionList{1, 2}));
    EXPECT_EQ(model.overviewMembers(2), (QuestionList{3}));
    EXPECT_FALSE(model.remove(0));
    EXPECT_EQ(model.rename(1, QStringLiteral("Other")), BlockEditModel::NameCheck::Nothing);
    model.setMember(0, 4, true);
    EXPECT_EQ(model.members(0), (QuestionList{1, 2, 3}));

    // Add then delete leaves no trace.
    qint32 added = -1;
    ASSERT_EQ(model.add(QStringLiteral("Service"), &added), BlockEditModel::NameCheck::Ok);
    EXPECT_EQ(added, 3);
    EXPECT_EQ(model.entry(3).state, BlockEditModel::Added);
    EXPECT_FALSE(model.entry(3).includeInCopy);
    EXPECT_EQ(model.add(QStringLiteral("WORK")), BlockEditModel::NameCheck::Duplicate);
    EXPECT_EQ(model.add(QString()), BlockEditModel::NameCheck::Nothing);
    ASSERT_TRUE(model.remove(3));
    EXPECT_EQ(model.size(), 3);

    // Renaming an added block keeps it "added"; case changes are allowed for
    // the block itself, and refused for another.
    model.add(QStringLiteral("Service"));
    model.add(QStringLiteral("Staff"));
    EXPECT_EQ(model.rename(3, QStringLiteral("  service ")), BlockEditModel::NameCheck::Ok);
    EXPECT_EQ(model.rename(3, QStringLiteral("Care")), BlockEditModel::NameCheck::Ok);
    EXPECT_EQ(model.entry(3).state, BlockEditModel::Added);
    EXPECT_EQ(model.entry(3).name, QStringLiteral("Care"));
    EXPECT_EQ(model.rename(4, QStringLiteral("care")), BlockEditModel::NameCheck::Duplicate);
    EXPECT_EQ(model.rename(4, QStringLiteral("Staff")), BlockEditModel::NameCheck::Nothing);

    // Nothing reached the document before OK.
    EXPECT_EQ(doc->blocks.size(), original.size());

    model.setMember(3, 2, true);
    model.apply(*doc, {});
    ASSERT_EQ(doc->blocks.size(), 5u);

    // A stored block renamed twice is "renamed"; a name still held by a
    // block marked for deletion cannot be taken until OK.
    BlockEditModel second(*doc);
    EXPECT_EQ(second.rename(3, QStringLiteral("Help")), BlockEditModel::NameCheck::Ok);
    EXPECT_EQ(second.rename(3, QStringLiteral("Aid")), BlockEditModel::NameCheck::Ok);
    EXPECT_EQ(second.entry(3).state, BlockEditModel::Renamed);
    ASSERT_TRUE(second.remove(4));
    EXPECT_EQ(second.entry(4).state, BlockEditModel::Deleted);
    EXPECT_EQ(second.add(QStringLiteral("staff")), BlockEditModel::NameCheck::Duplicate);
    second.apply(*doc, allRows(*doc));
    ASSERT_EQ(doc->blocks.size(), 4u);
    EXPECT_EQ(doc->blocks[3].name, QStringLiteral("Aid"));
    EXPECT_EQ(doc->blocks[3].graphFlags, doc->questions[2].graphFlags);
    EXPECT_DOUBLE_EQ(doc->blocks[3].flexTotalIndex, calculateColumnsIndex(*doc, {2}, allRows(*doc)));
    // Flex-total with no rows gives no value.
    BlockEditModel(*doc).apply(*doc, {});
    EXPECT_EQ(doc->blocks[3].flexTotalIndex, -1.0);
}

TEST_F(UserBlocks, ExportListsSubBlocksAndUserBlocksOnceIncluded)
{
    IndexExportOptions options;
    options.subSelTotal = true;
    options.indexFor[IndexExportOptions::ForBlocks] = true;
    options.indexFor[IndexExportOptions::ForSubBlocks] = true;
    options.indexFor[IndexExportOptions::ForUserBlocks] = true;
    auto names = [&](const Document &doc) {
        QStringList out;
        for (const IndexItem &item : buildIndexItems(doc, options))
            out << item.name;
        return out;
    };

    std::unique_ptr<Document> doc = surveyDocument();
    EXPECT_EQ(names(*doc), QStringList{QStringLiteral("Work")});

    writeRaw(QStringLiteral("Block Items"), QStringLiteral("dword:00000005"));
    writeRaw(QStringLiteral("Block 000/Include In Copy"), QStringLiteral("dword:00000000"));
    writeRaw(QStringLiteral("Block 001/Include In Copy"), QStringLiteral("dword:00000001"));
    writeRaw(QStringLiteral("Block 002/Include In Copy"), QStringLiteral("dword:00000001"));
    for (const char *name : {"Block 003", "Block 004"}) {
        const QString k = QString::fromLatin1(name);
        writeRaw(k + QStringLiteral("/Name"), k == QStringLiteral("Block 003") ? QStringLiteral("Mine")
                                                                              : QStringLiteral("Hidden"));
        writeRaw(k + QStringLiteral("/Include In Copy"),
                 k == QStringLiteral("Block 003") ? QStringLiteral("dword:00000001") : QStringLiteral("dword:00000000"));
        writeRaw(k + QStringLiteral("/Included Data Headers"), QStringLiteral("1|4"));
    }
    auto store = openStore();
    restoreUserBlocks(*doc, *store, false);
    EXPECT_EQ(names(*doc), (QStringList{QStringLiteral("Tasks"), QStringLiteral("Tools"), QStringLiteral("Mine")}));

    // The user block's cell pools its members, the hidden question included.
    const QString text = exportIndexes(*doc, QStringLiteral("All"), allRows(*doc), options, QLocale::c());
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 2);
    const QString mine = QLocale::c().toString(calculateColumnsIndex(*doc, {1, 4}, allRows(*doc)), 'f',
                                               doc->properties.indexDecimals);
    EXPECT_EQ(lines[1].split(QLatin1Char('\t')).last(), mine);
}
