// SPDX-License-Identifier: GPL-3.0-or-later
// What the copy, save and print commands of the overview and of the graph
// windows share: the clipboard, the save dialog with its folder and format
// rules, and the printer with the print format settings.
#pragma once

#include "engine/settings/settingsstore.h"
#include "render/pictures/picture.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QClipboard;
class QPainter;
class QPrinter;
class QWidget;

namespace kel {

class StatusLine;

// --- Clipboard ---

/// Result codes of a clipboard copy (0 = done). The platform gives no error
/// numbers, so the program names its own.
enum ClipboardError : int {
    ClipboardOk = 0,
    ClipboardNoPicture = 1, ///< the picture has nothing to draw
    ClipboardRefused = 2,   ///< the clipboard did not keep what was set
    ClipboardTooLarge = 3,  ///< more pixels than a clipboard picture may have
};

/// The words for a copy that failed (`result` not ClipboardOk).
QString clipboardFailureMessage(int result, bool overview, bool isSwedish);

/// Puts the picture on the clipboard as PNG, SVG, EMF (for programs that
/// take Windows metafiles) and a plain image.
int copyPictureToClipboard(const Picture &picture, QClipboard *clipboard = nullptr);
/// The formats of a picture are made when another program asks for them.
/// Before what the picture draws goes away (the document closes), this
/// makes every format of a picture still on the clipboard.
void settlePictureClipboard(QClipboard *clipboard = nullptr);
/// Clears the clipboard and sets `text` as plain text.
int copyTextToClipboard(const QString &text, QClipboard *clipboard = nullptr);

// --- Saving ---

/// Which set of file types a save dialog offers.
enum class SaveKind {
    Overview,   ///< EMF, WMF
    BasicGraph, ///< EMF, WMF
    Chart,      ///< EMF, WMF, PNG, BMP, JPG, GIF, and SVG and PDF as extras
};

/// One file type of a save dialog: the text the user sees and its pattern.
struct SaveFilter {
    QString description;
    QString pattern; ///< "*.emf"
    PictureFormat format;
    qint32 settingValue; ///< its "Graph Save Format" value
};

/// The file types of `kind`, with the bracketed patterns in the
/// descriptions when the platform shows file-name extensions.
std::vector<SaveFilter> saveFilters(SaveKind kind, bool isSwedish, bool showsExtensions);
/// The filter preselected for a stored "Graph Save Format" (the first one
/// when the value names none of them).
int preselectedFilter(const std::vector<SaveFilter> &filters, qint32 graphSaveFormat);
/// The folder the dialog opens in: `stored` when it exists, else the
/// pictures folder, or the documents folder when that is empty.
QString pictureSaveFolder(const QString &stored, const QString &picturesFolder, const QString &documentsFolder);
/// Whether the desktop shows file-name extensions (always on the desktops
/// this program runs on outside Windows).
bool platformShowsFileExtensions();

/// What the user chose in a save dialog.
struct SaveChoice {
    QString path;
    std::optional<PictureFormat> format; ///< none: no file type recognised
    qint32 settingValue = 0;
};

/// Resolves a chosen file name and filter text into a path and format:
/// `extensionDecides` (charts) takes the type from the name's extension
/// when it has a known one; otherwise the filter decides, and a name
/// without the filter's extension gets it.
SaveChoice resolveSaveChoice(const std::vector<SaveFilter> &filters, const QString &fileName,
                             const QString &selectedFilter, bool extensionDecides);

/// Stands in for the save dialog (tests answer it): returns the chosen path
/// and the chosen filter text; an empty path is a cancel.
using PictureFileChooser =
    std::function<std::pair<QString, QString>(const QString &title, const QString &folder, const QString &defaultName,
                                              const QStringList &filters, int preselected)>;
/// Stands in for the error message box.
using PictureErrorReporter = std::function<void(const QString &title, const QString &text)>;

/// The save dialog: `title`, `defaultName` in the folder of the rules
/// above, the filters of `kind`, preselected from "Graph Save Format".
/// Nothing (no path) when cancelled. On a choice `settings` gets the new
/// folder and, when the type was recognised, its format value.
SaveChoice askPictureFile(QWidget *parent, SaveKind kind, const QString &title, const QString &defaultName,
                          bool isSwedish, LastSettings &settings, const PictureFileChooser &chooser = {});

// --- Printing ---

/// The "Created by ..." line printed below a graph, in the document's
/// language.
QString createdByLine(bool documentIsSwedish, const QString &applicationTitle, int major, int minor);
/// The line with this program's title and the running application's version.
QString graphPrintFooter(bool documentIsSwedish);

/// Sets `printer` up from the print format settings: the chosen printer
/// (when it exists), binding margin on the left, the others elsewhere.
void applyPrintFormat(QPrinter &printer, const LastSettings &settings);
/// Draws the picture fitted into the page (never enlarged), with
/// `footer` (may be empty) in Arial 10 points below it. False when the
/// printer could not be started.
bool printPicture(QPrinter &printer, const Picture &picture, const QString &footer);
/// Prints on the printer of the print format settings; false on failure.
bool printPictureWithSettings(const Picture &picture, const LastSettings &settings, const QString &footer);
/// A print preview of the picture on the print format settings' printer.
void previewPicturePrint(QWidget *parent, const Picture &picture, const LastSettings &settings, const QString &footer,
                         bool isSwedish);

// --- Graph windows ---

/// The graph window settings that shape a basic graph's picture.
struct BasicGraphPictureOptions {
    bool opaque = false;     ///< "Graph Copy Save Opaque"
    bool whiteSpace = false; ///< "Graph Copy Save White Space"
    bool toOffice = false;   ///< "Graph Copy To MS Office" (scale 4 instead of 2)
};

/// A basic graph's picture for copying and saving: the window's client
/// size less the 10-pixel margins (kept with white space), times the scale
/// (2, or 4 for the office option); the background filled when opaque.
/// `paint` draws the graph into the rectangle it is given, at `scale`.
Picture basicGraphPicture(const QSize &clientSize, const BasicGraphPictureOptions &options,
                          const std::function<void(QPainter &, const QRect &area, int scale)> &paint);

/// "Graph Copy Format": 1 copies the chart as a metafile picture (EMF with
/// PNG and SVG), 2 (the default, and any other value) as a bitmap only.
int copyChartPicture(const Picture &picture, qint32 graphCopyFormat, QClipboard *clipboard = nullptr);

/// The graph windows' commands with their status texts and messages.
/// `setStatus(english, swedish, autoClear)` reports to the status line.
/// Empty texts clear the line.
using StatusReporter = std::function<void(const char *english, const char *swedish, bool autoClear)>;
StatusReporter statusReporter(StatusLine &line);
/// `chartCopyFormat`: a chart window's copy, with its "Graph Copy Format".
/// A failure also goes to `reportError` (a message box when empty), worded
/// by clipboardFailureMessage.
bool copyGraphPicture(const Picture &picture, const StatusReporter &status,
                      std::optional<qint32> chartCopyFormat = std::nullopt, bool isSwedish = false,
                      const PictureErrorReporter &reportError = {});
/// The dialog and the message box go to `chooser` and `reportError` when
/// they are given.
bool saveGraphPicture(QWidget *parent, const Picture &picture, SaveKind kind, bool isSwedish, LastSettings &settings,
                      const StatusReporter &status, const PictureFileChooser &chooser = {},
                      const PictureErrorReporter &reportError = {});
bool printGraphPicture(const Picture &picture, const LastSettings &settings, const QString &footer,
                       const StatusReporter &status);

} // namespace kel
