// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/settings/settingsstore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaType>
#include <QStandardPaths>
#include <QStringDecoder>

#include <variant>

namespace kel {

namespace {

const QString DwordPrefix = QStringLiteral("dword:");
// Marks a string that would otherwise read back as a DWORD.
const QString StringPrefix = QStringLiteral("sz:");

const QString SettingsKey = QStringLiteral("Settings");
const QString LastSettingsKey = QStringLiteral("Last Settings");
const QString RecentFilesKey = QStringLiteral("MRU List");

// One named value of a settings record, declared once so that reading and
// writing cannot drift apart.
template<typename Record>
struct Field {
    const char *name;
    std::variant<bool Record::*, qint32 Record::*, QString Record::*> member;
};

const Field<UserOptions> UserOptionFields[] = {
    {"Navigator Remind To Click Show", &UserOptions::navigatorRemindToClickShow},
    {"Navigator Add Beep To Reminder", &UserOptions::navigatorAddBeepToReminder},
    {"Overview Group Lines", &UserOptions::overviewGroupLines},
    {"Overview Row Order", &UserOptions::overviewRowOrder},
    {"Overview Max Rows", &UserOptions::overviewMaxRows},
    {"Graph Value Order Reversed", &UserOptions::graphValueOrderReversed},
    {"Graph Copy Save Opaque", &UserOptions::graphCopySaveOpaque},
    {"Graph Copy Save White Space", &UserOptions::graphCopySaveWhiteSpace},
    {"Graph Copy To MS Office", &UserOptions::graphCopyToMsOffice},
    {"Graph By Category Use Short Category Names", &UserOptions::graphByCategoryUseShortCategoryNames},
    {"Graph Legends", &UserOptions::graphLegends},
    {"Graph Copy Format", &UserOptions::graphCopyFormat},
};

const Field<LastSettings> LastSettingsFields[] = {
    {"Data Open Folder", &LastSettings::dataOpenFolder},
    {"Graph Save Folder", &LastSettings::graphSaveFolder},
    {"Graph Save Format", &LastSettings::graphSaveFormat},
    {"Graph Window Width", &LastSettings::graphWindowWidth},
    {"Graph Point Height", &LastSettings::graphPointHeight},
    {"Question Graph Window Width", &LastSettings::questionGraphWindowWidth},
    {"Question Graph Bar Width", &LastSettings::questionGraphBarWidth},
    {"Distribution Graph In Percent", &LastSettings::distributionGraphInPercent},
    {"Distribution Graph In 3D", &LastSettings::distributionGraphIn3D},
    {"Distribution Graph Has Horizontal Bars", &LastSettings::distributionGraphHasHorizontalBars},
    {"Distribution Graph Has Vertical Labels", &LastSettings::distributionGraphHasVerticalLabels},
    {"Total Index Graph Index Lines", &LastSettings::totalIndexGraphIndexLines},
    {"Total Index Graph Index Lines Show Explanation", &LastSettings::totalIndexGraphIndexLinesShowExplanation},
    {"Total Index Graph Has Horizontal Bars", &LastSettings::totalIndexGraphHasHorizontalBars},
    {"Total Index Graph Has Vertical Labels", &LastSettings::totalIndexGraphHasVerticalLabels},
    {"Total Index Graph Has Data Labels", &LastSettings::totalIndexGraphHasDataLabels},
    {"Block Index Graph Index Lines", &LastSettings::blockIndexGraphIndexLines},
    {"Block Index Graph Index Lines Show Explanation", &LastSettings::blockIndexGraphIndexLinesShowExplanation},
    {"Block Index Graph Has Horizontal Bars", &LastSettings::blockIndexGraphHasHorizontalBars},
    {"Block Index Graph Has Vertical Labels", &LastSettings::blockIndexGraphHasVerticalLabels},
    {"Block Index Graph Has Data Labels", &LastSettings::blockIndexGraphHasDataLabels},
    {"Printer Device Name", &LastSettings::printerDeviceName},
    {"Printer Binding Margin", &LastSettings::printerBindingMargin},
    {"Printer Other Margins", &LastSettings::printerOtherMargins},
};

template<typename Record, std::size_t N>
void readFields(const SettingsStore &store, const QString &key, const Field<Record> (&fields)[N], Record &record)
{
    for (const Field<Record> &f : fields) {
        const QString name = QString::fromUtf8(f.name);
        std::visit(
            [&](auto member) {
                using T = std::remove_reference_t<decltype(record.*member)>;
                if constexpr (std::is_same_v<T, bool>) {
                    if (auto v = store.readBoolean(key, name))
                        record.*member = *v;
                } else if constexpr (std::is_same_v<T, qint32>) {
                    if (auto v = store.readDword(key, name))
                        record.*member = *v;
                } else {
                    if (auto v = store.readString(key, name))
                        record.*member = *v;
                }
            },
            f.member);
    }
}

template<typename Record, std::size_t N>
bool writeFields(SettingsStore &store, const QString &key, const Field<Record> (&fields)[N], const Record &record)
{
    bool ok = true;
    for (const Field<Record> &f : fields) {
        const QString name = QString::fromUtf8(f.name);
        std::visit(
            [&](auto member) {
                using T = std::remove_cv_t<std::remove_reference_t<decltype(record.*member)>>;
                if constexpr (std::is_same_v<T, bool>)
                    ok = store.writeBoolean(key, name, record.*member) && ok;
                else if constexpr (std::is_same_v<T, qint32>)
                    ok = store.writeDword(key, name, record.*member) && ok;
                else
                    ok = store.writeString(key, name, record.*member) && ok;
            },
            f.member);
    }
    return store.flush() && ok;
}

bool isIntegerVariant(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return true;
    default: return false;
    }
}

// The DWORD held by a stored value, or nothing when it is not a DWORD.
std::optional<qint32> dwordOf(const QVariant &v)
{
    if (!v.isValid())
        return std::nullopt;
    if (isIntegerVariant(v))
        return static_cast<qint32>(static_cast<quint32>(v.toLongLong()));
    if (v.metaType().id() != QMetaType::QString)
        return std::nullopt;
    const QString s = v.toString().trimmed();
    if (!s.startsWith(DwordPrefix, Qt::CaseInsensitive))
        return std::nullopt;
    const QString digits = s.mid(DwordPrefix.size());
    if (digits.isEmpty() || digits.size() > 8)
        return std::nullopt;
    bool ok = false;
    const quint32 value = digits.toUInt(&ok, 16);
    if (!ok)
        return std::nullopt;
    return static_cast<qint32>(value);
}

// A policy is an administrator's switch: a plain number is accepted as well.
bool policyValue(const QSettings &settings, const QString &name)
{
    const QVariant v = settings.value(name);
    if (auto d = dwordOf(v))
        return *d > 0;
    bool ok = false;
    const int n = v.toString().trimmed().toInt(&ok);
    return ok && n > 0;
}

// QSettings reads almost anything as an INI file: binary junk parses into a
// few odd keys and would be written back over the original at the next
// save. A file counts as understood only when it is UTF-8 text without NUL
// bytes or byte order mark whose every line is blank, a ";" comment, a
// [section], a key=value pair or the continuation of a value ended by a
// backslash (QSettings itself refuses to save over "#" lines and a BOM).
bool looksLikeIniText(const QByteArray &bytes)
{
    if (bytes.contains('\0'))
        return false;
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return false;
    bool continued = false;
    for (QStringView line : QStringView(text).split(QLatin1Char('\n'))) {
        const QStringView t = line.trimmed();
        const bool understood = continued || t.isEmpty() || t.startsWith(QLatin1Char(';'))
            || (t.startsWith(QLatin1Char('[')) && t.endsWith(QLatin1Char(']')))
            || (t.contains(QLatin1Char('=')) && !t.startsWith(QLatin1Char('=')));
        if (!understood)
            return false;
        continued = t.endsWith(QLatin1Char('\\'));
    }
    return true;
}

QString normalizedKey(const QString &key)
{
    QString k = key;
    k.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (k.endsWith(QLatin1Char('/')))
        k.chop(1);
    return k;
}

} // namespace

SettingsLocation SettingsLocation::platformDefault()
{
    SettingsLocation location;
    const QString organization = QString::fromUtf8(OrganizationName);
    const QString application = QString::fromUtf8(ApplicationTitle);
#ifdef Q_OS_WIN
    location.file = QStringLiteral("HKEY_CURRENT_USER\\Software\\") + organization + QLatin1Char('\\') + application;
    location.format = QSettings::NativeFormat;
    location.policyFile =
        QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer");
    location.policyFormat = QSettings::NativeFormat;
    location.policyGroup.clear();
#else
    location.file = QSettings(QSettings::IniFormat, QSettings::UserScope, organization, application).fileName();
    location.policyFile = QSettings(QSettings::IniFormat, QSettings::SystemScope, organization, application).fileName();
#endif
    return location;
}

void resolveDefaultFolders(LastSettings &settings, const QString &documentsFolder, const QString &picturesFolder)
{
    if (settings.dataOpenFolder.isEmpty())
        settings.dataOpenFolder = documentsFolder;
    if (settings.graphSaveFolder.isEmpty())
        settings.graphSaveFolder = picturesFolder.isEmpty() ? documentsFolder : picturesFolder;
}

SettingsStore::SettingsStore(const SettingsLocation &location)
{
    mNative = location.format == QSettings::NativeFormat;
    if (!mNative) {
        const QFileInfo info(location.file);
        if (!QDir().mkpath(info.absolutePath()))
            mOpenError = 5;
    }
    bool understood = true;
    if (!mNative) {
        QFile file(location.file);
        if (file.open(QIODevice::ReadOnly))
            understood = looksLikeIniText(file.readAll());
    }
    mSettings = std::make_unique<QSettings>(location.file, location.format);
    if (!understood || mSettings->status() == QSettings::FormatError)
        mOpenError = 13; // never overwrite a file we could not understand
    else if (mOpenError == 0 && (!mSettings->isWritable() || mSettings->status() == QSettings::AccessError))
        mOpenError = 5;

    if (!location.policyFile.isEmpty()) {
        QSettings policies(location.policyFile, location.policyFormat);
        if (!location.policyGroup.isEmpty())
            policies.beginGroup(location.policyGroup);
        mPolicies.noRecentDocsMenu = policyValue(policies, QStringLiteral("NoRecentDocsMenu"));
        mPolicies.noSaveSettings = policyValue(policies, QStringLiteral("NoSaveSettings"));
    }
}

SettingsStore::~SettingsStore()
{
    if (canWrite())
        mSettings->sync();
}

QString SettingsStore::fileName() const
{
    return mSettings->fileName();
}

QString SettingsStore::fullKey(const QString &key, const QString &name) const
{
    const QString k = normalizedKey(key);
    return k.isEmpty() ? name : k + QLatin1Char('/') + name;
}

std::optional<qint32> SettingsStore::readDword(const QString &key, const QString &name) const
{
    return dwordOf(mSettings->value(fullKey(key, name)));
}

std::optional<bool> SettingsStore::readBoolean(const QString &key, const QString &name) const
{
    if (auto v = readDword(key, name))
        return *v > 0;
    return std::nullopt;
}

std::optional<QString> SettingsStore::readString(const QString &key, const QString &name) const
{
    const QVariant v = mSettings->value(fullKey(key, name));
    if (!v.isValid() || dwordOf(v))
        return std::nullopt;
    switch (v.metaType().id()) {
    case QMetaType::QString: {
        const QString s = v.toString();
        return s.startsWith(StringPrefix) ? s.mid(StringPrefix.size()) : s;
    }
    case QMetaType::QStringList:
        // A hand-edited INI value with unquoted commas comes back split.
        return v.toStringList().join(QLatin1Char(','));
    default: return std::nullopt;
    }
}

bool SettingsStore::writeDword(const QString &key, const QString &name, qint32 value)
{
    if (!canWrite())
        return false;
    if (mNative)
        mSettings->setValue(fullKey(key, name), value);
    else
        mSettings->setValue(fullKey(key, name),
                            DwordPrefix
                                + QStringLiteral("%1").arg(static_cast<quint32>(value), 8, 16, QLatin1Char('0')));
    return true;
}

bool SettingsStore::writeBoolean(const QString &key, const QString &name, bool value)
{
    return writeDword(key, name, value ? 1 : 0);
}

bool SettingsStore::writeString(const QString &key, const QString &name, const QString &value)
{
    if (!canWrite())
        return false;
    const bool ambiguous =
        !mNative && (value.trimmed().startsWith(DwordPrefix, Qt::CaseInsensitive) || value.startsWith(StringPrefix));
    mSettings->setValue(fullKey(key, name), ambiguous ? StringPrefix + value : value);
    return true;
}

bool SettingsStore::removeValue(const QString &key, const QString &name)
{
    if (!canWrite())
        return false;
    mSettings->remove(fullKey(key, name));
    return true;
}

bool SettingsStore::removeKey(const QString &key)
{
    const QString k = normalizedKey(key);
    if (!canWrite() || k.isEmpty())
        return false;
    mSettings->remove(k);
    return true;
}

bool SettingsStore::keyExists(const QString &key) const
{
    mSettings->beginGroup(normalizedKey(key));
    const bool exists = !mSettings->allKeys().isEmpty();
    mSettings->endGroup();
    return exists;
}

QStringList SettingsStore::valueNames(const QString &key) const
{
    mSettings->beginGroup(normalizedKey(key));
    QStringList names = mSettings->childKeys();
    mSettings->endGroup();
    return names;
}

QStringList SettingsStore::subKeys(const QString &key) const
{
    mSettings->beginGroup(normalizedKey(key));
    QStringList names = mSettings->childGroups();
    mSettings->endGroup();
    return names;
}

bool SettingsStore::flush()
{
    if (!canWrite())
        return false;
    mSettings->sync();
    return mSettings->status() == QSettings::NoError;
}

UserOptions SettingsStore::readSettings() const
{
    UserOptions options;
    readFields(*this, SettingsKey, UserOptionFields, options);
    return options;
}

bool SettingsStore::writeSettings(const UserOptions &options)
{
    if (mPolicies.noSaveSettings || !canWrite())
        return false;
    return writeFields(*this, SettingsKey, UserOptionFields, options);
}

LastSettings SettingsStore::readLastSettings() const
{
    LastSettings settings;
    readFields(*this, LastSettingsKey, LastSettingsFields, settings);
    return settings;
}

bool SettingsStore::writeLastSettings(const LastSettings &settings)
{
    if (mPolicies.noSaveSettings || !canWrite())
        return false;
    return writeFields(*this, LastSettingsKey, LastSettingsFields, settings);
}

QStringList SettingsStore::readRecentFiles() const
{
    QStringList files;
    if (mPolicies.noRecentDocsMenu)
        return files;
    for (int i = 0; i < 5; ++i) {
        const auto item = readString(RecentFilesKey, QStringLiteral("Item %1").arg(i, 2, 10, QLatin1Char('0')));
        if (!item || item->isEmpty())
            break;
        files << *item;
    }
    return files;
}

bool SettingsStore::writeRecentFiles(const QStringList &files)
{
    if (mPolicies.noRecentDocsMenu || !canWrite())
        return false;
    for (qsizetype i = 0; i < files.size() && i < 5; ++i)
        writeString(RecentFilesKey, QStringLiteral("Item %1").arg(i, 2, 10, QLatin1Char('0')), files.at(i));
    return flush();
}

WindowPlacement SettingsStore::readWindowPlacement(const QString &name) const
{
    const QString key = QStringLiteral("Windows/") + name;
    WindowPlacement p;
    p.left = readDword(key, QStringLiteral("WLeft"));
    p.top = readDword(key, QStringLiteral("WTop"));
    p.width = readDword(key, QStringLiteral("WWidth"));
    p.height = readDword(key, QStringLiteral("WHeight"));
    p.state = readDword(key, QStringLiteral("WState"));
    p.dockArea = readDword(key, QStringLiteral("Dock Area"));
    return p;
}

bool SettingsStore::writeWindowPlacement(const QString &name, BorderStyle style, const WindowPlacement &placement)
{
    if (mPolicies.noSaveSettings || !canWrite())
        return false;
    const QString key = QStringLiteral("Windows/") + name;
    const qint32 state = placement.state.value_or(WindowPlacement::Normal);
    auto put = [&](const char *valueName, const std::optional<qint32> &v) {
        if (v)
            writeDword(key, QString::fromUtf8(valueName), *v);
    };
    auto putPosition = [&] {
        put("WLeft", placement.left);
        put("WTop", placement.top);
    };
    auto putSize = [&] {
        put("WWidth", placement.width);
        put("WHeight", placement.height);
    };
    switch (style) {
    case BorderStyle::None:
    case BorderStyle::FixedDialog:
    case BorderStyle::FixedToolWindow: putPosition(); break;
    case BorderStyle::FixedSingle:
        if (state == WindowPlacement::Normal)
            putPosition();
        writeDword(key, QStringLiteral("WState"), state);
        break;
    case BorderStyle::Sizable:
        // A maximized window keeps its earlier normal size in the store so that
        // restoring it later lands where the user left it.
        if (state == WindowPlacement::Normal) {
            putPosition();
            putSize();
            writeDword(key, QStringLiteral("WState"), state);
        } else if (state == WindowPlacement::Maximized) {
            writeDword(key, QStringLiteral("WState"), state);
        }
        break;
    case BorderStyle::SizableToolWindow:
        putPosition();
        putSize();
        break;
    }
    put("Dock Area", placement.dockArea);
    return flush();
}

std::optional<qint32> SettingsStore::readNavigatorFlexHeight() const
{
    return readDword(QStringLiteral("Windows/Navigator"), QStringLiteral("Flex Total Height"));
}

bool SettingsStore::writeNavigatorFlexHeight(qint32 twips)
{
    if (mPolicies.noSaveSettings || !canWrite())
        return false;
    return writeDword(QStringLiteral("Windows/Navigator"), QStringLiteral("Flex Total Height"), twips);
}

QString SettingsStore::documentKey(const QString &guidText)
{
    return QStringLiteral("Documents\\") + guidText;
}

} // namespace kel
