// SPDX-License-Identifier: GPL-3.0-or-later
// Everything the viewer remembers between runs: the user's options, the last
// used folders and graph settings, the recently used files, window placements
// and, per document, the user-defined blocks. All keys, types and defaults
// live in this file and settingsstore.cpp.
//
// Values keep the three types the store has always had: DWORD (signed 32 bit),
// boolean (a DWORD, true only when greater than 0) and string. A value of the
// wrong type, or one that cannot be read, leaves the caller's default. In the
// Windows registry the types are the registry's own; in an INI file a DWORD is
// written the way registry exports write it ("dword:0000012c") and anything
// else is a string, so a hand-edited "1" is a string, not a number.
#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace kel {

inline constexpr char OrganizationName[] = "Brennvik AB";
/// The program's name: the settings file is named after it, and the
/// interface shows it as its title.
inline constexpr char ApplicationTitle[] = "KEL Viewer";

/// Key "Settings": the user's options (written by the Options dialog).
struct UserOptions {
    bool navigatorRemindToClickShow = true;
    bool navigatorAddBeepToReminder = false;
    bool overviewGroupLines = true;
    qint32 overviewRowOrder = 0;
    qint32 overviewMaxRows = 300;
    bool graphValueOrderReversed = false;
    bool graphCopySaveOpaque = false;
    bool graphCopySaveWhiteSpace = false;
    bool graphCopyToMsOffice = false;
    bool graphByCategoryUseShortCategoryNames = true;
    qint32 graphLegends = 6;
    qint32 graphCopyFormat = 2;

    bool operator==(const UserOptions &) const = default;
};

/// Key "Last Settings": read when the main window opens, written when it closes.
/// Sizes and margins are twips (1/1440 inch).
struct LastSettings {
    QString dataOpenFolder;  ///< empty: the documents folder
    QString graphSaveFolder; ///< empty: the pictures folder, else the documents folder
    qint32 graphSaveFormat = 1;
    qint32 graphWindowWidth = 10200;
    qint32 graphPointHeight = 978;
    qint32 questionGraphWindowWidth = 9300;
    qint32 questionGraphBarWidth = 46;
    bool distributionGraphInPercent = false;
    bool distributionGraphIn3D = false;
    bool distributionGraphHasHorizontalBars = false;
    bool distributionGraphHasVerticalLabels = false;
    qint32 totalIndexGraphIndexLines = 0;
    bool totalIndexGraphIndexLinesShowExplanation = false;
    bool totalIndexGraphHasHorizontalBars = false;
    bool totalIndexGraphHasVerticalLabels = true;
    bool totalIndexGraphHasDataLabels = true;
    qint32 blockIndexGraphIndexLines = 0;
    bool blockIndexGraphIndexLinesShowExplanation = false;
    bool blockIndexGraphHasHorizontalBars = false;
    bool blockIndexGraphHasVerticalLabels = true;
    bool blockIndexGraphHasDataLabels = true;
    QString printerDeviceName;
    qint32 printerBindingMargin = 1701; ///< 3 cm
    qint32 printerOtherMargins = 567;   ///< 1 cm

    bool operator==(const LastSettings &) const = default;
};

/// Fills the empty folders of `settings` the way the main window expects them.
void resolveDefaultFolders(LastSettings &settings, const QString &documentsFolder, const QString &picturesFolder);

/// Placement values of one window, twips; a field is absent when not stored.
struct WindowPlacement {
    enum State : qint32 { Normal = 0, Minimized = 1, Maximized = 2 };
    std::optional<qint32> left, top, width, height, state;
    /// A dockable window's side of the main window (Qt's dock-area number),
    /// 0 when it floats; absent for other windows.
    std::optional<qint32> dockArea;
};

/// Which placement values a window keeps depends on how it can be resized.
enum class BorderStyle { None, FixedSingle, Sizable, FixedDialog, FixedToolWindow, SizableToolWindow };

/// The two administrator policies that restrict what is stored.
struct SettingsPolicies {
    bool noRecentDocsMenu = false; ///< recent files neither read, shown, recorded nor written
    bool noSaveSettings = false;   ///< options, last settings and placements not written
};

/// Where the store and the policies live.
struct SettingsLocation {
    QString file; ///< INI file, or a registry path with the native format on Windows
    QSettings::Format format = QSettings::IniFormat;
    QString policyFile; ///< empty: no policies
    QSettings::Format policyFormat = QSettings::IniFormat;
    QString policyGroup = QStringLiteral("Explorer");

    /// The per-user location of this platform: the registry root on Windows,
    /// "$XDG_CONFIG_HOME/Brennvik AB/KEL Viewer.ini" elsewhere; the policies in
    /// the registry's Explorer policies key on Windows, elsewhere section
    /// [Explorer] of the system-wide, administrator-owned
    /// "/etc/xdg/Brennvik AB/KEL Viewer.ini" (the first XDG system folder).
    static SettingsLocation platformDefault();
};

class SettingsStore
{
public:
    /// Opens (creating when missing) the store at `location` and reads the
    /// policies. A store that cannot be written is used read-only.
    explicit SettingsStore(const SettingsLocation &location);
    ~SettingsStore();
    SettingsStore(const SettingsStore &) = delete;
    SettingsStore &operator=(const SettingsStore &) = delete;

    /// 0 when the root opened for writing; otherwise an error number (5 = no
    /// write access, 13 = the file is damaged and is left untouched).
    int openError() const { return mOpenError; }
    bool isWritable() const { return mOpenError == 0; }
    const SettingsPolicies &policies() const { return mPolicies; }
    QString fileName() const;

    // Single values. Keys are paths below the root, "\\" or "/" separated
    // ("Windows\\Main"); readers return nothing when the value is missing or of
    // another type. Writers return false when nothing was written.
    std::optional<qint32> readDword(const QString &key, const QString &name) const;
    std::optional<bool> readBoolean(const QString &key, const QString &name) const;
    std::optional<QString> readString(const QString &key, const QString &name) const;
    bool writeDword(const QString &key, const QString &name, qint32 value);
    bool writeBoolean(const QString &key, const QString &name, bool value);
    bool writeString(const QString &key, const QString &name, const QString &value);
    bool removeValue(const QString &key, const QString &name);
    /// Removes a key with all its values and subkeys.
    bool removeKey(const QString &key);
    bool keyExists(const QString &key) const;
    QStringList valueNames(const QString &key) const;
    QStringList subKeys(const QString &key) const;
    /// Writes pending changes through; false when the store reported an error.
    bool flush();

    // The named keys.
    UserOptions readSettings() const;
    /// Skipped under NoSaveSettings.
    bool writeSettings(const UserOptions &options);
    LastSettings readLastSettings() const;
    /// Skipped under NoSaveSettings.
    bool writeLastSettings(const LastSettings &settings);
    /// Items "Item 00" .. "Item 04", stopping at the first missing or empty
    /// one; nothing under NoRecentDocsMenu.
    QStringList readRecentFiles() const;
    /// Skipped under NoRecentDocsMenu (not under NoSaveSettings).
    bool writeRecentFiles(const QStringList &files);
    /// Key "Windows\\<name>".
    WindowPlacement readWindowPlacement(const QString &name) const;
    /// Writes the values `style` keeps for a window in `placement.state`;
    /// skipped under NoSaveSettings.
    bool writeWindowPlacement(const QString &name, BorderStyle style, const WindowPlacement &placement);

    /// The navigator's flex-total list height, twips ("Windows\\Navigator",
    /// "Flex Total Height"); the write is skipped under NoSaveSettings.
    std::optional<qint32> readNavigatorFlexHeight() const;
    bool writeNavigatorFlexHeight(qint32 twips);

    /// "Documents\\{GUID}": the per-document key of the user-defined blocks.
    static QString documentKey(const QString &guidText);

private:
    QString fullKey(const QString &key, const QString &name) const;
    bool canWrite() const { return mOpenError == 0; }

    std::unique_ptr<QSettings> mSettings;
    SettingsPolicies mPolicies;
    bool mNative = false;
    int mOpenError = 0;
};

} // namespace kel
