// SPDX-License-Identifier: GPL-3.0-or-later
// Owner of the one open document. Loading reads and checks the whole file
// before anything is touched, so a bad file leaves the open document exactly
// as it was; only a good file closes the old one and takes its place.
// Windows that show the document connect to the signals below and receive
// the document from here; none of them keeps its own copy.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/document/document.h"
#include "engine/document/documentreader.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace kel {

class DocumentSession : public QObject
{
    Q_OBJECT
public:
    /// `recordRecentFiles` is false under the NoRecentDocsMenu policy.
    explicit DocumentSession(bool recordRecentFiles, QObject *parent = nullptr);
    ~DocumentSession() override;

    /// The open document, or nullptr. It is never changed once read.
    const Document *document() const { return mDocument.get(); }
    /// The open document's blocks and the user's; empty without a document.
    const BlockCatalogue &blocks() const { return mBlocks; }
    /// For the two that change them: restoring the stored user blocks and
    /// the block editor.
    BlockCatalogue &editableBlocks() { return mBlocks; }
    bool hasDocument() const { return mDocument != nullptr; }

    /// Reads `path`. On failure returns why (the caller words it for the
    /// user) and changes nothing. On success closes the open document (documentClosing,
    /// documentClosed), installs the new one and emits documentOpened; with
    /// `rememberFolder` the file's folder becomes the current folder.
    OpenResult loadDocument(const QString &path, bool rememberFolder);

    /// The second half of loading, for a document already read and checked:
    /// closes the open one and installs `doc` as read from `path`.
    void installDocument(std::unique_ptr<Document> doc, const QString &path, bool rememberFolder);

    /// Closes the open document, if any, and records it in the recent files.
    void closeDocument();

    /// The folder File Open starts in.
    QString currentFolder() const { return mCurrentFolder; }
    void setCurrentFolder(const QString &folder) { mCurrentFolder = folder; }

    /// Most recent first, at most MaxRecentFiles.
    QStringList recentFiles() const { return mRecentFiles; }
    void setRecentFiles(const QStringList &files);
    bool recordsRecentFiles() const { return mRecordRecentFiles; }

    /// Read options for the reader; tests use them to force legacy limits.
    void setReadOptions(const ReadOptions &options) { mReadOptions = options; }

signals:
    /// The document is about to go; listeners drop what refers to it.
    void documentClosing();
    void documentClosed();
    void documentOpened();
    void recentFilesChanged();

private:
    bool mRecordRecentFiles;
    ReadOptions mReadOptions;
    std::unique_ptr<const Document> mDocument;
    BlockCatalogue mBlocks;
    QString mCurrentFolder;
    QStringList mRecentFiles;
};

} // namespace kel
