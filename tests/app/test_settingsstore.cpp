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
    SettingsLocation location() const { return {.file = userFile(), .policyFile = policyFile()}; }

    void setPolicy(const QString &name, const QString &value)
    {
        QDir().mkpath(QFileInfo(policyFile()).absolutePath());
        QSettings(policyFile(), QSettings::IniFormat).setValue(QStringLiteral("Explorer/") + name, value);
    }

    // Writes a value behind the store's back, as a user editing the file would.
    void writeRaw(const QString &key, const QVariant &value)
    {
        QDir().mkpath(QFileInfo(userFile()).absolutePath());
        QSettings(userFile(), QSettings::IniFormat).setValue(key, value);
    }

    static WindowPlacement placement(qint32 left, qint32 top, qint32 width, qint32 height, qint32 state)
    {
        WindowPlacement p;
        p.left = left, p.top = top, p.width = width, p.height = height, p.state = state;
        return p;
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
    LastSettings last;
    last.dataOpenFolder = QStringLiteral("/data/R&D, 2024/surveys");
    last.printerDeviceName = QStringLiteral("dword:not a number");
    last.distributionGraphIn3D = true;
    {
        SettingsStore store(location());
        ASSERT_TRUE(store.writeSettings(options) && store.writeLastSettings(last));
        ASSERT_TRUE(store.writeRecentFiles({QStringLiteral("/a.kel"), QStringLiteral("/b.kel")}));
    }
    SettingsStore store(location());
    EXPECT_EQ(store.readSettings(), options);
    EXPECT_EQ(store.readLastSettings(), last);
    EXPECT_EQ(store.readRecentFiles(), QStringList({QStringLiteral("/a.kel"), QStringLiteral("/b.kel")}));
}

TEST_F(SettingsStoreTest, ValuesOfTheWrongTypeKeepTheirDefaults)
{
    // Booleans and DWORDs must be stored as DWORDs (a string "1" is not one,
    // nor are nine digits); the list of recent files stops at the first gap.
    for (const auto &[key, value] : {std::pair{"Settings/Navigator Add Beep To Reminder", "1"},
                                     {"Settings/Graph Copy Save Opaque", "dword:00000005"},
                                     {"Settings/Overview Group Lines", "dword:ffffffff"},
                                     {"Settings/Overview Max Rows", "300 rows"},
                                     {"Settings/Graph Legends", "dword:fffffffe"},
                                     {"Settings/Graph Copy Format", "dword:123456789"},
                                     {"Last Settings/Data Open Folder", "dword:00000001"},
                                     {"MRU List/Item 00", "/one.kel"},
                                     {"MRU List/Item 02", "/three.kel"}})
        writeRaw(QString::fromLatin1(key), QString::fromLatin1(value));

    SettingsStore store(location());
    const UserOptions o = store.readSettings();
    // DWORD 5 reads as true, -1 as false.
    EXPECT_TRUE(!o.navigatorAddBeepToReminder && o.graphCopySaveOpaque && !o.overviewGroupLines);
    EXPECT_EQ(std::tuple(o.overviewMaxRows, o.graphLegends, o.graphCopyFormat), std::tuple(300, -2, 2));
    EXPECT_EQ(store.readLastSettings().dataOpenFolder, QString());
    EXPECT_EQ(store.readRecentFiles(), QStringList{QStringLiteral("/one.kel")});
}

TEST_F(SettingsStoreTest, PolicyValuesAreTrueOnlyAboveZero)
{
    const std::pair<const char *, bool> cases[] = {
        {"1", true}, {"0", false}, {"-1", false}, {"dword:00000002", true}, {"yes", false}, {"", false}};
    for (const auto &[value, expected] : cases) {
        QFile::remove(policyFile());
        setPolicy(QStringLiteral("NoRecentDocsMenu"), QString::fromLatin1(value));
        setPolicy(QStringLiteral("NoSaveSettings"), QString::fromLatin1(value));
        SettingsStore store(location());
        EXPECT_EQ(store.policies().noRecentDocsMenu, expected) << value;
        EXPECT_EQ(store.policies().noSaveSettings, expected) << value;
    }
}

TEST_F(SettingsStoreTest, NoSaveSettingsKeepsOptionsAndPlacementsButNotRecentFiles)
{
    UserOptions o;
    o.overviewMaxRows = 50;
    ASSERT_TRUE(SettingsStore(location()).writeSettings(o));
    setPolicy(QStringLiteral("NoSaveSettings"), QStringLiteral("1"));
    SettingsStore store(location());
    o.overviewMaxRows = 999;
    EXPECT_FALSE(store.writeSettings(o));
    EXPECT_FALSE(store.writeLastSettings(LastSettings()));
    EXPECT_FALSE(store.writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable,
                                            placement(1, 2, 3000, 4000, WindowPlacement::Normal)));
    EXPECT_TRUE(store.writeRecentFiles({QStringLiteral("/x.kel")}));

    SettingsStore reread(location());
    EXPECT_EQ(reread.readSettings().overviewMaxRows, 50); // still read, never overwritten
    EXPECT_EQ(QSettings(userFile(), QSettings::IniFormat).childGroups(),
              QStringList({QStringLiteral("MRU List"), QStringLiteral("Settings")}));
    EXPECT_EQ(reread.readRecentFiles(), QStringList{QStringLiteral("/x.kel")});
}

TEST_F(SettingsStoreTest, PlacementValuesFollowTheBorderStyleAndState)
{
    const struct {
        BorderStyle style;
        qint32 state;
        const char *written;
    } cases[] = {
        {BorderStyle::Sizable, WindowPlacement::Normal, "WHeight WLeft WState WTop WWidth"},
        {BorderStyle::Sizable, WindowPlacement::Maximized, "WState"},
        {BorderStyle::Sizable, WindowPlacement::Minimized, ""},
        {BorderStyle::FixedSingle, WindowPlacement::Normal, "WLeft WState WTop"},
        {BorderStyle::FixedSingle, WindowPlacement::Maximized, "WState"},
        {BorderStyle::FixedDialog, WindowPlacement::Maximized, "WLeft WTop"},
        {BorderStyle::None, WindowPlacement::Normal, "WLeft WTop"},
        {BorderStyle::SizableToolWindow, WindowPlacement::Maximized, "WHeight WLeft WTop WWidth"},
    };
    int n = 0;
    for (const auto &c : cases) {
        SettingsStore store(location());
        const QString name = QStringLiteral("W%1").arg(n++);
        store.writeWindowPlacement(name, c.style, placement(100, 200, 9000, 6000, c.state));
        QStringList names = store.valueNames(QStringLiteral("Windows\\") + name);
        names.sort();
        EXPECT_EQ(names.join(u' '), QString::fromLatin1(c.written)) << n;
    }

    // Maximized, a window keeps its last normal placement; a docked tool
    // window keeps its dock area, other windows have none.
    SettingsStore store(location());
    store.writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable,
                               placement(1500, 1200, 12000, 9000, WindowPlacement::Normal));
    store.writeWindowPlacement(QStringLiteral("Main"), BorderStyle::Sizable,
                               placement(0, 0, 19200, 14400, WindowPlacement::Maximized));
    const WindowPlacement read = store.readWindowPlacement(QStringLiteral("Main"));
    EXPECT_EQ(read.left, 1500);
    EXPECT_EQ(read.width, 12000);
    EXPECT_EQ(read.state, WindowPlacement::Maximized);
    EXPECT_FALSE(read.dockArea);
    WindowPlacement docked = placement(10, 20, 3000, 4000, WindowPlacement::Normal);
    docked.dockArea = 0;
    ASSERT_TRUE(store.writeWindowPlacement(QStringLiteral("Navigator"), BorderStyle::SizableToolWindow, docked));
    EXPECT_EQ(store.readWindowPlacement(QStringLiteral("Navigator")).dockArea, std::optional<qint32>(0));
}

TEST_F(SettingsStoreTest, StoreThatCannotBeCreatedIsReadOnly)
{
    // A folder that cannot exist because a file of that name is in the way.
    QFile blocker(mDir.filePath(QStringLiteral("blocker")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    SettingsStore store(SettingsLocation{.file = mDir.filePath(QStringLiteral("blocker/sub/KEL Viewer.ini"))});
    EXPECT_NE(store.openError(), 0);
    EXPECT_FALSE(store.isWritable());
    EXPECT_FALSE(store.writeDword(QStringLiteral("Settings"), QStringLiteral("Overview Max Rows"), 5));
    EXPECT_FALSE(store.writeRecentFiles({QStringLiteral("/a.kel")}));
    EXPECT_EQ(store.readSettings(), UserOptions());
}
