// SPDX-License-Identifier: GPL-3.0-or-later
// Start-up: command line, splash, language, zlib, second copy, settings, then
// the main window. Whatever ends the program before the main window appears
// does so before the settings are opened, so nothing is written.
#include "texts/language.h"
#include "texts/qttexts.h"
#include "gui/shell/mainwindow.h"
#include "engine/settings/settingsstore.h"
#include "gui/shell/startup.h"
#include "gui/shell/appicon.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLockFile>
#include <QMessageBox>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QSplashScreen>
#include <QTranslator>

#include <zlib.h>

#include <cstdio>
#include <memory>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

// The arguments after the program name, split the way the viewer has always
// split them on Windows; elsewhere the shell has already split them.
QStringList commandLineArguments()
{
#ifdef Q_OS_WIN
    const QString line = QString::fromWCharArray(GetCommandLineW()).trimmed();
    qsizetype i = 0;
    if (line.startsWith(QLatin1Char('"'))) {
        i = line.indexOf(QLatin1Char('"'), 1);
        i = i < 0 ? line.size() : i + 1;
    } else {
        while (i < line.size() && line.at(i) != QLatin1Char(' ') && line.at(i) != QLatin1Char('\t'))
            ++i;
    }
    return kel::splitCommandLine(line.mid(i));
#else
    return QCoreApplication::arguments().mid(1);
#endif
}

std::unique_ptr<QSplashScreen> showSplash()
{
    QPixmap pixmap(420, 220);
    pixmap.fill(QColor(0x1f, 0x4e, 0x79));
    QPainter painter(&pixmap);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPointSize(26);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRect(0, 40, 420, 80), Qt::AlignCenter, kel::applicationTitle());
    font.setPointSize(12);
    font.setBold(false);
    painter.setFont(font);
    painter.drawText(QRect(0, 130, 420, 40), Qt::AlignCenter,
                     QStringLiteral("Version ") + QCoreApplication::applicationVersion());
    painter.end();
    auto splash = std::make_unique<QSplashScreen>(pixmap);
    splash->show();
    QCoreApplication::processEvents();
    return splash;
}

QString lockFilePath()
{
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty())
        user = qEnvironmentVariable("USERNAME");
    return QDir(QDir::tempPath()).filePath(QStringLiteral("kelviewer-%1.lock").arg(user));
}

// --help and --version answer on standard output without a window, so they
// work where there is no display (a shell over ssh, a package check).
int printRequestedText(int argc, char *argv[], kel::StartupRequest request, const QString &languageOption)
{
    QCoreApplication app(argc, argv);
    const bool isSwedish = kel::chooseIsSwedish(kel::userInterfaceLocale(),
                                                qEnvironmentVariable(kel::LanguageEnvironmentVariable), languageOption);
    const QString text = request == kel::StartupRequest::Help ? kel::startupHelpText(isSwedish)
                                                              : kel::startupVersionText(QStringLiteral(KEL_VERSION));
    std::fputs(text.toLocal8Bit().constData(), stdout);
    return 0;
}

// Qt 6 keeps its own texts per module (qtbase_sv); Qt 6.4 as Debian ships it
// has Swedish only in the older catalogue that holds every module (qt_sv),
// so that one is the fallback. Without either the dialogs stay English, and
// whoever wonders why learns it here.
bool loadQtSwedish(QTranslator &translator)
{
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    for (const char *name : {"qtbase_sv", "qt_sv"})
        if (translator.load(QString::fromLatin1(name), folder))
            return true;
    std::fprintf(stderr,
                 "kelviewer: Qt's Swedish translations (qtbase_sv or qt_sv) not found in %s; "
                 "Qt's own dialogs stay in English (Debian: install qt6-translations-l10n)\n",
                 qPrintable(QDir::toNativeSeparators(folder)));
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    {
        QStringList raw;
        for (int i = 1; i < argc; ++i)
            raw << QString::fromLocal8Bit(argv[i]);
        const kel::StartupArguments early = kel::parseStartupArguments(raw);
        const kel::StartupRequest request = kel::startupRequest(early);
        if (request != kel::StartupRequest::Run)
            return printRequestedText(argc, argv, request, early.languageOption);
    }

    QApplication app(argc, argv);
    QApplication::setOrganizationName(QString::fromUtf8(kel::OrganizationName));
    QApplication::setApplicationName(kel::applicationTitle());
    QApplication::setApplicationVersion(QStringLiteral(KEL_VERSION));
    QApplication::setWindowIcon(kel::applicationIcon());
    QGuiApplication::setDesktopFileName(QString::fromLatin1(kel::DesktopFileName));

    const kel::StartupArguments arguments = kel::parseStartupArguments(commandLineArguments());
    std::unique_ptr<QSplashScreen> splash;
    if (!arguments.autoStart)
        splash = showSplash();

    const bool isSwedish = kel::chooseIsSwedish(
        kel::userInterfaceLocale(), qEnvironmentVariable(kel::LanguageEnvironmentVariable), arguments.languageOption);

    // Qt's own dialogs (file dialog, standard buttons) in the same language.
    QTranslator qtTexts;
    if (isSwedish && loadQtSwedish(qtTexts))
        QCoreApplication::installTranslator(&qtTexts);
    // Installed last, asked first: what Qt's catalogue lacks or words otherwise.
    kel::QtSwedishCatalogue ownQtTexts;
    if (isSwedish)
        QCoreApplication::installTranslator(&ownQtTexts);

    const char *version = zlibVersion();
    const kel::ZlibCheck zlib = kel::checkZlibVersion(version);
    if (zlib != kel::ZlibCheck::Ok) {
        if (splash)
            splash->close();
        QMessageBox::critical(nullptr, kel::applicationTitle(),
                              kel::zlibMessage(zlib, QString::fromLatin1(version ? version : ""), isSwedish));
        return 1;
    }

    // A running copy holds this lock for its lifetime. Age alone must not make
    // the lock look abandoned: only a dead owner does.
    QLockFile instanceLock(lockFilePath());
    instanceLock.setStaleLockTime(0);
    // Only a lock held by someone else means another copy; a temporary folder
    // we cannot write to must not keep the viewer from starting.
    if (!instanceLock.tryLock(0) && instanceLock.error() == QLockFile::LockFailedError && !arguments.openedWithOthers) {
        if (splash)
            splash->hide();
        QMessageBox box(QMessageBox::Question, kel::applicationTitle(), kel::secondInstanceQuestion(isSwedish),
                        QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::No);
        box.button(QMessageBox::Yes)->setText(kel::pickText(isSwedish, "&Yes", "&Ja"));
        box.button(QMessageBox::No)->setText(kel::pickText(isSwedish, "&No", "&Nej"));
        if (box.exec() != QMessageBox::Yes)
            return 0;
        if (splash)
            splash->show();
    }

    kel::SettingsStore settings(kel::SettingsLocation::platformDefault());
    if (settings.openError() != 0) {
        QMessageBox::warning(nullptr, kel::applicationTitle(), kel::settingsRootFailureMessage(settings.openError()));
    }

    kel::MainWindow window(settings, isSwedish, kel::MainWindowEnvironment::detect());
    window.show();
    if (splash)
        splash->finish(&window);
    window.startUp(arguments.commandArguments.value(0));
    for (const QStringList &launch : kel::furtherViewerLaunches(arguments, isSwedish)) {
        if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), launch))
            QMessageBox::warning(&window, kel::applicationTitle(),
                                 kel::viewerNotStartedMessage(launch.at(0), isSwedish));
    }
    return app.exec();
}
