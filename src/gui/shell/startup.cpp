// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/startup.h"

#include "texts/language.h"

#include <QInputDevice>
#include <QPrinterInfo>

namespace kel {

QStringList splitCommandLine(const QString &commandLine)
{
    const QString line = commandLine.trimmed();
    QStringList arguments;
    QString current;
    bool inArgument = false;
    bool inQuotes = false;
    bool justClosedQuote = false;
    for (const QChar c : line) {
        if (c == QLatin1Char('"')) {
            if (!inQuotes && justClosedQuote) {
                current += c;
                justClosedQuote = false;
            } else {
                inQuotes = !inQuotes;
                justClosedQuote = !inQuotes;
            }
            inArgument = true;
            continue;
        }
        justClosedQuote = false;
        if (!inQuotes && (c == QLatin1Char(' ') || c == QLatin1Char('\t'))) {
            if (inArgument) {
                arguments << current;
                current.clear();
                inArgument = false;
            }
            continue;
        }
        current += c;
        inArgument = true;
    }
    if (inArgument)
        arguments << current;
    return arguments;
}

bool hasAutoStart(const QStringList &arguments)
{
    for (const QString &a : arguments) {
        if (a.compare(QLatin1String("/AutoStart"), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

StartupArguments parseStartupArguments(const QStringList &arguments)
{
    StartupArguments result;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &a = arguments.at(i);
        if (a == QLatin1String("--lang")) {
            if (i + 1 < arguments.size())
                result.languageOption = arguments.at(++i);
            continue;
        }
        if (a.startsWith(QLatin1String("--lang="))) {
            result.languageOption = a.mid(7);
            continue;
        }
        if (a == QLatin1String(OpenedWithOthersOption)) {
            result.openedWithOthers = true;
            continue;
        }
        result.commandArguments << a;
    }
    result.autoStart = hasAutoStart(result.commandArguments);
    return result;
}

QList<QStringList> furtherViewerLaunches(const StartupArguments &arguments, bool isSwedish)
{
    QList<QStringList> launches;
    for (qsizetype i = 1; i < arguments.commandArguments.size(); ++i) {
        const QString &file = arguments.commandArguments.at(i);
        if (hasAutoStart({file}))
            continue;
        launches << QStringList{file, QStringLiteral("--lang"), isSwedish ? QStringLiteral("sv") : QStringLiteral("en"),
                                QStringLiteral("/AutoStart"), QString::fromLatin1(OpenedWithOthersOption)};
    }
    return launches;
}

StartupRequest startupRequest(const StartupArguments &arguments)
{
    StartupRequest request = StartupRequest::Run;
    for (const QString &a : arguments.commandArguments) {
        if (a == QLatin1String("--help") || a == QLatin1String("-h"))
            return StartupRequest::Help;
        if (a == QLatin1String("--version"))
            request = StartupRequest::Version;
    }
    return request;
}

QString startupHelpText(bool isSwedish)
{
    return pickText(isSwedish,
                    "Usage: kelviewer [FILE...] [--lang en|sv] [/AutoStart]\n"
                    "\n"
                    "Opens FILE, a KEL survey document, in KEL Viewer. Each further FILE\n"
                    "opens in a viewer of its own.\n"
                    "\n"
                    "  --lang en|sv  language of the interface; overrides KELVIEWER_LANG and the locale\n"
                    "  /AutoStart    start without the splash window\n"
                    "  --help        show this text and exit\n"
                    "  --version     show the version and exit\n",
                    "Användning: kelviewer [FIL...] [--lang en|sv] [/AutoStart]\n"
                    "\n"
                    "Öppnar FIL, ett KEL-enkätdokument, i KEL Viewer. Varje ytterligare FIL\n"
                    "öppnas i en egen visare.\n"
                    "\n"
                    "  --lang en|sv  gränssnittets språk; går före KELVIEWER_LANG och språkinställningen\n"
                    "  /AutoStart    starta utan startfönstret\n"
                    "  --help        visa den här texten och avsluta\n"
                    "  --version     visa versionen och avsluta\n");
}

QString startupVersionText(const QString &version)
{
    return applicationTitle() + QLatin1Char(' ') + version + QLatin1Char('\n');
}

ZlibCheck checkZlibVersion(const char *version)
{
    if (version == nullptr || version[0] == '\0')
        return ZlibCheck::Missing;
    return version[0] == "1.2.3"[0] ? ZlibCheck::Ok : ZlibCheck::Incompatible;
}

QString zlibMessage(ZlibCheck check, const QString &version, bool isSwedish)
{
    switch (check) {
    case ZlibCheck::Ok: return QString();
    case ZlibCheck::Missing:
        return pickText(isSwedish, "The file \"ZLib.dll\" is missing!", "Filen \"ZLib.dll\" saknas!");
    case ZlibCheck::Incompatible:
        return pickText(isSwedish, "Incompatible ZLib version (", "Inkompatibel ZLib-version (") + version
            + QStringLiteral(")!");
    }
    return QString();
}

QString secondInstanceQuestion(bool isSwedish)
{
    return pickText(isSwedish, "You are already running at least one copy of ",
                    "Du har redan startat minst en kopia av ")
        + applicationTitle()
        + pickText(isSwedish, ", do you really want to start another one?", ", vill du verkligen starta en till?");
}

QString settingsRootFailureMessage(int errorCode)
{
    return QStringLiteral("Cannot open Windows' Registry, error code: HKCU %1. Some features in this application may "
                          "not work as expected.")
        .arg(errorCode);
}

QString viewerNotStartedMessage(const QString &path, bool isSwedish)
{
    return pickText(isSwedish, "No viewer could be started for the file ", "Ingen visare kunde startas för filen ")
        + QLatin1Char('"') + path + QStringLiteral("\".");
}

QString couldNotFindFileStatus(const QString &path, bool isSwedish)
{
    return pickText(isSwedish, "Could not find the file ", "Kunde inte hitta filen ") + QLatin1Char('"') + path
        + QStringLiteral("\"!");
}

MainWindowEnvironment MainWindowEnvironment::detect()
{
    MainWindowEnvironment e;
    e.printerInstalled =
        !QPrinterInfo::defaultPrinterName().isEmpty() || !QPrinterInfo::availablePrinterNames().isEmpty();
    for (const QInputDevice *device : QInputDevice::devices()) {
        if (device->type() == QInputDevice::DeviceType::Mouse
            || device->hasCapability(QInputDevice::Capability::Scroll)) {
            e.mouseWheel = true;
            break;
        }
    }
    return e;
}

} // namespace kel
