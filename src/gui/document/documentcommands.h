// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that work on the open document as a whole: File > Open and
// the recent files, Tools > Blocks,
// Copy Indexes (Edit menu and popup), File > Properties, the points list
// behind the total index (a double click on the status line), and the
// user's stored blocks brought back when a document opens.
#pragma once

#include "engine/document/openresult.h"
#include "engine/indexes/indexexport.h"
#include "gui/common/commandcontext.h"

#include <QObject>

namespace kel {

class DocumentCommands : public QObject
{
    Q_OBJECT
public:
    DocumentCommands(const CommandContext &context, QObject *parent);

    /// Loads `path`; returns the reader's code (Ok, or why not, for the
    /// caller to word). A failure leaves the open document as it was.
    OpenResult loadDocument(const QString &path, bool rememberFolder);
    /// Loads `path` as a user command does: hourglass, status texts, and a
    /// critical message box titled `messageTitle` on failure.
    bool openDocument(const QString &path, bool rememberFolder, const QString &messageTitle);
    void fileOpen();
    void openRecentFile(int index);
    /// A document dropped on the main window opens as File > Open would.
    void openDropped(const QString &path) { openDocument(path, true, openDialogTitle()); }

    void editBlocks();
    void copyIndexes();
    void showProperties();
    /// The points behind the shown overview's total index, on the clipboard.
    void copyTotalIndexPoints();
    /// Adds the user's blocks stored for the open document; a message says
    /// when some could not be read.
    void restoreStoredBlocks();

    /// Copy Indexes' choices, kept while the document stays open.
    const IndexExportOptions &exportOptions() const { return mExportOptions; }

private:
    QString openDialogTitle() const;
    void reportOpened();

    CommandContext mContext;
    IndexExportOptions mExportOptions;
};

/// The path of the one local file with the .kel extension (any case) in
/// `urls`; empty when there is none or more than one file.
QString droppedDocument(const QList<QUrl> &urls);

} // namespace kel
