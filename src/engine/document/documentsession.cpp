// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/documentsession.h"

#include "engine/settings/recentfiles.h"
#include "engine/document/pooledindex.h"

#include <QDir>
#include <QFileInfo>

namespace kel {

DocumentSession::DocumentSession(bool recordRecentFiles, QObject *parent)
    : QObject(parent), mRecordRecentFiles(recordRecentFiles)
{
}

DocumentSession::~DocumentSession() = default;

void DocumentSession::setRecentFiles(const QStringList &files)
{
    mRecentFiles = mRecordRecentFiles ? files.mid(0, MaxRecentFiles) : QStringList();
    emit recentFilesChanged();
}

OpenResult DocumentSession::loadDocument(const QString &path, bool rememberFolder)
{
    ReadResult result = readDocumentFile(path, mReadOptions);
    if (result.code != OpenResult::Ok || !result.document)
        return result.code == OpenResult::Ok ? OpenResult::CannotOpen : result.code;

    installDocument(std::move(result.document), path, rememberFolder);
    return OpenResult::Ok;
}

void DocumentSession::installDocument(std::unique_ptr<Document> doc, const QString &path, bool rememberFolder)
{
    if (!doc)
        return;
    closeDocument();
    computeMissingTotalIndex(*doc);
    // Kept absolute so that the recent-files list still works from another
    // working folder.
    const QString fullPath = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    const PathParts parts = splitDocumentPath(fullPath);
    doc->currentFile = fullPath;
    if (rememberFolder)
        mCurrentFolder = parts.folder;
    doc->currentFolder = mCurrentFolder;
    doc->currentFileName = parts.name;
    doc->currentFileTitle = fileDisplayTitle(parts.name);
    mDocument = std::move(doc);
    mBlocks = BlockCatalogue(*mDocument);
    emit documentOpened();
}

void DocumentSession::closeDocument()
{
    if (!mDocument)
        return;
    emit documentClosing();
    const QString closedFile = mDocument->currentFile;
    mDocument.reset();
    mBlocks = BlockCatalogue();
    emit documentClosed();
    if (mRecordRecentFiles && !closedFile.isEmpty()) {
        mRecentFiles = recordRecentFile(mRecentFiles, closedFile);
        emit recentFilesChanged();
    }
}

} // namespace kel
