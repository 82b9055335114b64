// SPDX-License-Identifier: GPL-3.0-or-later
// The pure parts of starting the viewer: reading the command line, checking
// the compression library and the start-up messages. The windows and the
// order in which these run live in main.cpp.
#pragma once

#include <QString>
#include <QStringList>

namespace kel {

/// Splits a whole command line the way the viewer always has: blanks and tabs
/// outside double quotes separate arguments (a run counts as one), a double
/// quote toggles quoting and is dropped, and a double quote right after a
/// closing one (outside quotes) stands for one literal double quote.
QStringList splitCommandLine(const QString &commandLine);

/// True when any argument is "/AutoStart", in any letter case.
bool hasAutoStart(const QStringList &arguments);

/// The arguments that matter to the viewer, with the `--lang` option taken out.
struct StartupArguments {
    QStringList commandArguments; ///< element 0, when present, is the file to open
    QString languageOption;       ///< value of --lang / --lang=, empty when absent
    bool autoStart = false;
    /// Started by another viewer for one of several files opened together:
    /// the user asked for this copy, so the second-copy question is not asked.
    bool openedWithOthers = false;
};

/// The internal option a viewer passes to the copies it starts for the
/// further files of one launch.
inline constexpr char OpenedWithOthersOption[] = "--opened-with-others";

/// A file manager hands every selected document to one viewer, which shows
/// one document: the first stays in this viewer, and each further file
/// (command arguments after the first that are not /AutoStart) gets a viewer
/// of its own, in the same language, without the splash or the second-copy
/// question. Returns the argument lists of those viewers, in order.
QList<QStringList> furtherViewerLaunches(const StartupArguments &arguments, bool isSwedish);

/// Takes the arguments after the program name. `--lang sv`, `--lang=sv` and a
/// trailing `--lang` without value are removed from the list.
StartupArguments parseStartupArguments(const QStringList &arguments);

/// What the command line asks for: the viewer, or only a text on standard
/// output (for shells and package checks, which may have no display).
enum class StartupRequest { Run, Help, Version };

/// `--help` (or `-h`) anywhere among the command arguments asks for the
/// usage, `--version` for the version; help wins when both are given.
StartupRequest startupRequest(const StartupArguments &arguments);

/// The usage printed for --help.
QString startupHelpText(bool isSwedish);

/// The line printed for --version.
QString startupVersionText(const QString &version);

enum class ZlibCheck { Ok, Missing, Incompatible };

/// A usable zlib reports a version text whose first character matches that of
/// the release the file format was written with ("1.2.3").
ZlibCheck checkZlibVersion(const char *version);

/// The message for a failed check; empty for Ok.
QString zlibMessage(ZlibCheck check, const QString &version, bool isSwedish);

/// The question asked when another copy is already running.
QString secondInstanceQuestion(bool isSwedish);

/// Shown when the settings root cannot be opened for writing. This message has
/// only ever existed in English, and support staff search for its wording.
QString settingsRootFailureMessage(int errorCode);

/// Said when the viewer for one of several files opened together could not
/// be started, so that no file is dropped without a word.
QString viewerNotStartedMessage(const QString &path, bool isSwedish);

/// Status text for a command-line file that does not exist.
QString couldNotFindFileStatus(const QString &path, bool isSwedish);

/// What the window finds out about the machine when it is created; tests
/// pass their own.
struct MainWindowEnvironment {
    bool printerInstalled = false;
    bool mouseWheel = false;
    static MainWindowEnvironment detect();
};

} // namespace kel
