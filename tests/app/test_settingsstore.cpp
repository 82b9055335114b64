// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/settings/settingsstore.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;

namespace {

class SettingsStoreTest : public ::testing::Test
{
protected:
    QString userFile() const { return mDir.filePath(QStringLiteral("user/Brennvik AB/KEL Viewer.ini")); }
    QString policyFile() const { return mDir.filePath(QStringLiteral("etc/KEL Viewer.ini")); }

    SettingsLocation location() const
    {
        SettingsLocation l;
        l.file = userFile();
        l.policyFile = policyFile();
        return l;
    }

    void setPolicies(const QString &noRecentDocsMenu, const QString &noSaveSettings)
    {
        QDir().mkpath(QFileInfo(policyFile()).absolutePath());
        QSettings s(policyFile(), QSettings::IniFormat);
        if (!noRecentDocsMenu.isNull())
            s.setValue(QStringLiteral("Explorer/NoRecentDocsMenu"), noRecentDocsMenu);
        if (!noSaveSettings.isNull())
            s.setValue(QStringLiteral("Explorer/NoSaveSettings"), noSaveSettings);
    }

    // Writes a value behind the store's back, as a user editing the file would.
    void writeRaw(const QString &key, const QVariant &value)
    {
        QDir().mkpath(QFileInfo(userFile()).absolutePath());
        QSettings s(userFile(), QSettings::IniFormat);
        s.setValue(key, value);
    }

    QStringList rawGroups()
    {
        QSettings s(userFile(), QSettings::IniFormat);
        return s.childGroups();
    }

    QTemporaryDir mDir;
};

} // namespace

TEST_F(SettingsStoreTest, NamedKeysRoundTripThroughAFreshStore)
{
    UserOptions options;
    options.navigatorRemindToClickShow = false;
    options.overviewMaxRows = 1234;
    options.graphLegends = -7;
    options.graphCopyToMsOffice = true;
    LastSettings last;
    last.dataOpenFolder = QStringLiteral("/data/R&D, 2024/surveys");
    last.printerDeviceName = QStringLiteral("dword:not a number");
    last.distributionGraphIn3D = true;
    last.blockIndexGraphHasDataLabels = false;
    last.printerOtherMargins = 0;
    {
        SettingsStore store(location());
        ASSERT_TRUE(store.writeSettings(options));
        ASSERT_TRUE(store.writeLastSettings(last));
        ASSERT_TRUE(store.writeRecentFiles({QStringLiteral("/a.kel"), QStringLiteral("/b.kel")}));
    }
    SettingsStore store(location());
    EXPECT_EQ(store.readSettings(), options);
    EXPECT_EQ(store.readLastSettings(), last);
    EXPECT_EQ(store.readRecentFiles(), QStringList({QStringLiteral("/a.kel"), QStringLiteral("/b.kel")}));
}

TEST_F(SettingsStoreTest, ValuesOfTheWrongTypeKeepTheirDefaults)
{
    // Booleans and DWORDs must be stored as DWORDs; a string "1" is not one.
    writeRaw(QStringLiteral("Settings/Navigator Add Beep To Reminder"), QStringLiteral("1"));
    writeRaw(QStringLiteral("Settings/Graph Copy Save Opaque"), QStringLiteral("dword:00000005"));
    writeRaw(QStringLiteral("Settings/Overview Group Lines"), QStringLiteral("dword:ffffffff"));
    writeRaw(QStringLiteral("Settings/Graph By Category Use Short Category Names"), QStringLiteral("dword:00000000"));
    writeRaw(QStringLiteral("Settings/Overview Max Rows"), QStringLiteral("300 rows"));
    writeRaw(QStringLiteral("Settings/Graph Legends"), QStringLiteral("dword:fffffffe"));
    writeRaw(QStringLiteral("Settings/Graph Copy Format"), QStringLiteral("dword:123456789")); // nine digits
    writeRaw(QStringLiteral("Last Settings/Data Open Folder"), QStringLiteral("dword:00000001"));
    writeRaw(QStringLiteral("Last Settings/Graph Save Format"), QStringLiteral("dword:0000000A"));

    SettingsStore store(location());
    const UserOptions o = store.readSettings();
    EXPECT_FALSE(o.navigatorAddBeepToReminder);
    EXPECT_TRUE(o.graphCopySaveOpaque);                    // DWORD 5 reads as true
    EXPECT_FALSE(o.overviewGroupLines);                    // DWORD -1 reads as false
    EXPECT_FALSE(o.graphByCategoryUseShortCategoryNames);  // 0 is false
    EXPECT_EQ(o.overviewMaxRows, 300);
    EXPECT_EQ(o.graphLegends, -2);
    EXPECT_EQ(o.graphCopyFormat, 2);
    const LastSettings l = store.readLastSettings();
    EXPECT_EQ(l.dataOpenFolder, QString());
    EXPECT_EQ(l.graphSaveFormat, 10);
}

TEST_F(SettingsStoreTest, RecentFilesStopAtTheFirstGap)
{
    writeRaw(QStringLiteral("MRU List/Item 00"), QStringLiteral("/one.kel"));
    writeRaw(QStringLiteral("MRU List/Item 02"), QStringLiteral("/three.kel"));
    SettingsStore store(location());
    EXPECT_EQ(store.readRecentFiles(), QStringList{QStringLiteral("/one.kel")});

    writeRaw(QStringLiteral("MRU List/Item 01"), QString());
    SettingsStore again(location());
    EXPECT_EQ(again.readRecentFiles(), QStringList{QStringLiteral("/one.kel")});
}

TEST_F(SettingsStoreTest, PolicyValuesAreTrueOnlyAboveZero)
{
    struct Case {
        QString value;
        bool expected;
    };
    const Case cases[] = {{QStringLiteral("1"), true},         {QStringLiteral("0"), false},
                          {QStringLiteral("-1"), false},       {QStringLiteral("dword:00000002"), true},
                          {QStringLiteral("yes"), false},      {QString(), false}};
    for (const Case &c : cases) {
        QFile::remove(policyFile());
        setPolicies(c.value, c.value);
        SettingsStore store(location());
        EXPECT_EQ(store.policies().noRecentDocsMenu, c.expected) << c.value.toStdString();
        EXPECT_EQ(store.policies().noSaveSettings, c.expected) << c.value.toStdString();
    }
}

TEST_F(SettingsStoreTest, NoSaveSettingsKeepsOptionsAndPlacementsButNotRecentFiles)
{
    {
        SettingsStore store(location());
        UserOptions o;
        o.overviewMaxRows = 50;
        ASSERT_TRUE(store.writeSettings(o));
    }
    setPolicies(QString(), QStringLiteral("1"));
    SettingsStore store(location());
    UserOptions changed;
    changed.overviewMaxRows = 999;
    EXPECT_FALSE(store.writeSettings(changed));
    EXPECT_FALSE(store.writeLastSettings(LastSettings()));
    WindowPlacement p;
    p.left = 1, p.top = 2, p.width = 3000, p.height = 4000, p.state = WindowPlacement::Normal;
    EXPECT_FALSE(store.writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable, p));
    EXPECT_TRUE(store.writeRecentFiles({QStringLiteral("/x.kel")}));

    SettingsStore reread(location());
    EXPECT_EQ(reread.readSettings().overviewMaxRows, 50); // still read, never overwritten
    const QStringList groups = rawGroups();
    EXPECT_FALSE(groups.contains(QStringLiteral("Last Settings")));
    EXPECT_FALSE(groups.contains(QStringLiteral("Windows")));
    EXPECT_EQ(reread.readRecentFiles(), QStringList{QStringLiteral("/x.kel")});
}

TEST_F(SettingsStoreTest, NoRecentDocsMenuNeitherReadsNorWritesTheList)
{
    writeRaw(QStringLiteral("MRU List/Item 00"), QStringLiteral("/old.kel"));
    setPolicies(QStringLiteral("1"), QString());
    SettingsStore store(location());
    EXPECT_TRUE(store.readRecentFiles().isEmpty());
    EXPECT_FALSE(store.writeRecentFiles({QStringLiteral("/new.kel")}));
    EXPECT_TRUE(store.writeSettings(UserOptions()));

    QSettings raw(userFile(), QSettings::IniFormat);
    EXPECT_EQ(raw.value(QStringLiteral("MRU List/Item 00")).toString(), QStringLiteral("/old.kel"));
}

TEST_F(SettingsStoreTest, PlacementValuesFollowTheBorderStyleAndState)
{
    struct Case {
        BorderStyle style;
        qint32 state;
        QStringList written;
    };
    const QStringList all{QStringLiteral("WHeight"), QStringLiteral("WLeft"), QStringLiteral("WState"),
                          QStringLiteral("WTop"), QStringLiteral("WWidth")};
    const QStringList position{QStringLiteral("WLeft"), QStringLiteral("WTop")};
    const Case cases[] = {
        {BorderStyle::Sizable, WindowPlacement::Normal, all},
        {BorderStyle::Sizable, WindowPlacement::Maximized, {QStringLiteral("WState")}},
        {BorderStyle::Sizable, WindowPlacement::Minimized, {}},
        {BorderStyle::FixedSingle, WindowPlacement::Normal,
         {QStringLiteral("WLeft"), QStringLiteral("WState"), QStringLiteral("WTop")}},
        {BorderStyle::FixedSingle, WindowPlacement::Maximized, {QStringLiteral("WState")}},
        {BorderStyle::FixedDialog, WindowPlacement::Maximized, position},
        {BorderStyle::None, WindowPlacement::Normal, position},
        {BorderStyle::SizableToolWindow, WindowPlacement::Maximized,
         {QStringLiteral("WHeight"), QStringLiteral("WLeft"), QStringLiteral("WTop"), QStringLiteral("WWidth")}},
    };
    int n = 0;
    for (const Case &c : cases) {
        SettingsStore store(location());
        const QString name = QStringLiteral("W%1").arg(n++);
        WindowPlacement p;
        p.left = 100, p.top = 200, p.width = 9000, p.height = 6000, p.state = c.state;
        store.writeWindowPlacement(name, c.style, p);
        QStringList names = store.valueNames(QStringLiteral("Windows\\") + name);
        names.sort();
        EXPECT_EQ(names, c.written) << n;
    }
}

TEST_F(SettingsStoreTest, MaximizedWindowKeepsItsLastNormalPlacement)
{
    SettingsStore store(location());
    WindowPlacement normal;
    normal.left = 1500, normal.top = 1200, normal.width = 12000, normal.height = 9000;
    normal.state = WindowPlacement::Normal;
    store.writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable, normal);
    WindowPlacement maximized;
    maximized.left = 0, maximized.top = 0, maximized.width = 19200, maximized.height = 14400;
    maximized.state = WindowPlacement::Maximized;
    store.writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable, maximized);

    const WindowPlacement read = store.readWindowPlacement(QStringLiteral("Main"));
    EXPECT_EQ(read.left, 1500);
    EXPECT_EQ(read.width, 12000);
    EXPECT_EQ(read.state, WindowPlacement::Maximized);
}

TEST_F(SettingsStoreTest, StoreThatCannotBeCreatedIsReadOnly)
{
    // A folder that cannot exist because a file of that name is in the way.
    QFile blocker(mDir.filePath(QStringLiteral("blocker")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    SettingsLocation l;
    l.file = mDir.filePath(QStringLiteral("blocker/sub/KEL Viewer.ini"));
    SettingsStore store(l);
    EXPECT_NE(store.openError(), 0);
    EXPECT_FALSE(store.isWritable());
    EXPECT_FALSE(store.writeDword(QStringLiteral("Settings"), QStringLiteral("Overview Max Rows"), 5));
    EXPECT_FALSE(store.writeRecentFiles({QStringLiteral("/a.kel")}));
    EXPECT_EQ(store.readSettings(), UserOptions());
}

TEST_F(SettingsStoreTest, DockAreaIsKeptWithThePlacement)
{
    SettingsStore store(location());
    WindowPlacement p;
    p.left = 10, p.top = 20, p.width = 3000, p.height = 4000, p.dockArea = 0;
    ASSERT_TRUE(store.writeWindowPlacement(QStringLiteral("Navigator"), BorderStyle::SizableToolWindow, p));
    const WindowPlacement back = store.readWindowPlacement(QStringLiteral("Navigator"));
    EXPECT_EQ(back.dockArea, std::optional<qint32>(0)) << "floating";
    EXPECT_EQ(back.left, p.left);
    EXPECT_EQ(back.height, p.height);
    EXPECT_FALSE(store.readWindowPlacement(QStringLiteral("Main")).dockArea) << "other windows have none";
}

TEST(SettingsDefaults, EmptyFoldersFallBackToTheUsersFolders)
{
    LastSettings s;
    resolveDefaultFolders(s, QStringLiteral("/home/u/Documents"), QString());
    EXPECT_EQ(s.dataOpenFolder, QStringLiteral("/home/u/Documents"));
    EXPECT_EQ(s.graphSaveFolder, QStringLiteral("/home/u/Documents"));
    LastSettings kept;
    kept.dataOpenFolder = QStringLiteral("/data");
    resolveDefaultFolders(kept, QStringLiteral("/home/u/Documents"), QStringLiteral("/home/u/Pictures"));
    EXPECT_EQ(kept.dataOpenFolder, QStringLiteral("/data"));
    EXPECT_EQ(kept.graphSaveFolder, QStringLiteral("/home/u/Pictures"));
}
