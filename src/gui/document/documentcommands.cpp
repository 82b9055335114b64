// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/document/documentcommands.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/kelformat.h"
#include "engine/indexes/blockindex.h"
#include "gui/blocks/blockeditor.h"
#include "gui/common/filedialogs.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/document/propertiesview.h"
#include "gui/indexes/exportindexes.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include <QApplication>
#include <QFile>
#include <QUrl>
#include <QtEndian>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <QGuiApplication>

#include <optional>

namespace kel {

// The desktop recognises a renamed document by the two magic words it starts
// with (its MIME type says so); the drop must take what the desktop offers.
static bool startsLikeKelDocument(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(8);
    return head.size() == 8 && qFromLittleEndian<quint32>(head.constData()) == format::Magic1
        && qFromLittleEndian<quint32>(head.constData() + 4) == format::Magic2;
}

QString droppedDocument(const QList<QUrl> &urls)
{
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return QString();
    const QString path = urls.first().toLocalFile();
    if (path.endsWith(QLatin1String(".kel"), Qt::CaseInsensitive))
        return path;
    return startsLikeKelDocument(path) ? path : QString();
}

DocumentCommands::DocumentCommands(const CommandContext &context, QObject *parent) : QObject(parent), mContext(context)
{
    // The choices belong to the document they were made for.
    DocumentSession &documents = context.session.documents();
    connect(&documents, &DocumentSession::documentOpened, this, [this] { mExportOptions.reset(); });
    connect(&documents, &DocumentSession::documentClosed, this, [this] { mExportOptions.reset(); });
}

QString DocumentCommands::openDialogTitle() const
{
    return pickText(mContext.settings.isSwedish, "Open Data File", "Öppna datafil");
}

void DocumentCommands::reportOpened()
{
    const QString title = mContext.session.document()->currentFileTitle;
    mContext.host.statusLine().setStatus(title + QStringLiteral(" has been opened!"),
                                         title + QStringLiteral(" har öppnats!"), true);
}

bool DocumentCommands::openDocument(const QString &path, bool rememberFolder, const QString &messageTitle)
{
    StatusLine &status = mContext.host.statusLine();
    WaitCursor wait;
    status.setStatus("Opening data file...", "Öppnar datafil...", false);
    const OpenResult result = loadDocument(path, rememberFolder);
    if (result != OpenResult::Ok) {
        mContext.host.showMessage(QMessageBox::Critical, messageTitle,
                                  openResultMessage(result, mContext.settings.isSwedish));
        status.clearStatus();
        return false;
    }
    reportOpened();
    return true;
}

void DocumentCommands::fileOpen()
{
    StatusLine &status = mContext.host.statusLine();
    WaitCursor wait;
    DocumentSession &documents = mContext.session.documents();
    status.setStatus("Opening data file, locating folder, please wait!",
                     "Öppnar datafil, söker efter mapp, var vänlig vänta!", false);
    if (!QFileInfo(documents.currentFolder()).isDir())
        documents.setCurrentFolder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    status.setStatus("Opening data file...", "Öppnar datafil...", false);

    const QString kelFilter = pickText(mContext.settings.isSwedish, "KEL files (*.kel)", "KEL-filer (*.kel)");
    const QString allFilter = pickText(mContext.settings.isSwedish, "All files (*.*)", "Alla filer (*.*)");
    const Document *doc = mContext.session.document();
    const bool kelFirst = doc == nullptr || doc->currentFileName.endsWith(QLatin1String(".kel"), Qt::CaseInsensitive);
    const QString selectedFilter = kelFirst ? kelFilter : allFilter;
    const QString start =
        doc ? QDir(documents.currentFolder()).filePath(doc->currentFileTitle) : documents.currentFolder();

    QApplication::setOverrideCursor(Qt::ArrowCursor);
    QFileDialog dialog(mContext.host.dialogParent(), openDialogTitle(), start,
                       kelFilter + QStringLiteral(";;") + allFilter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.selectNameFilter(selectedFilter);
    prepareFileDialog(dialog, mContext.settings.isSwedish);
    const QString path = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()
        ? dialog.selectedFiles().first()
        : QString();
    QApplication::restoreOverrideCursor();
    if (path.isEmpty()) {
        status.clearStatus();
        return;
    }
    const OpenResult result = loadDocument(path, true);
    if (result != OpenResult::Ok) {
        mContext.host.showMessage(QMessageBox::Critical, openDialogTitle(),
                                  openResultMessage(result, mContext.settings.isSwedish));
        status.clearStatus();
        return;
    }
    reportOpened();
}

void DocumentCommands::openRecentFile(int index)
{
    DocumentSession &documents = mContext.session.documents();
    const QStringList files = documents.recentFiles();
    if (index < 0 || index >= files.size())
        return;
    openDocument(files.at(index), true, openDialogTitle());
}

OpenResult DocumentCommands::loadDocument(const QString &path, bool rememberFolder)
{
    // The session reads and checks the whole file before it closes the open
    // document; its signals take the old one off the screen and show the new one.
    const OpenResult result = mContext.session.documents().loadDocument(path, rememberFolder);
    if (result != OpenResult::Ok)
        return result;
    const Document *doc = mContext.session.document();
    if (doc->upgradeWarning) {
        const QString title = doc->currentFileTitle;
        const QString app = applicationTitle();
        const QString text = mContext.settings.isSwedish
            ? title + QStringLiteral(" har ett nyare filformat än den här versionen av ") + app
                + QStringLiteral(" är gjord för! Filen kan ändå visas, men om du vill vara säker på att få tillgång "
                                 "till all information i filen bör du uppgradera ")
                + app + QLatin1Char('!')
            : title + QStringLiteral(" is in a newer format then this version of ") + app
                + QStringLiteral(" was designed for! The file can still be opened, but to make sure you can access "
                                 "all the information in the file you should upgrade you copy of ")
                + app + QLatin1Char('!');
        mContext.host.showMessage(QMessageBox::Warning,
                                  pickText(mContext.settings.isSwedish, "Time to upgrade", "Dags att uppgradera"),
                                  text);
    }
    return OpenResult::Ok;
}

void DocumentCommands::restoreStoredBlocks()
{
    const Document *doc = mContext.session.document();
    if (!doc)
        return;
    SettingsStore &store = mContext.settings.store;
    const UserBlockRestore restore =
        restoreUserBlocks(*doc, mContext.session.editableBlocks(), store, !store.policies().noSaveSettings);
    if (restore.problems.isEmpty())
        return;
    for (const QString &problem : restore.problems)
        qWarning("stored blocks of %s: %s", qUtf8Printable(doc->guidText()), qUtf8Printable(problem));
    mContext.host.showMessage(
        QMessageBox::Warning, applicationTitle(),
        pickText(mContext.settings.isSwedish,
                 "Some of the blocks you have defined for this file could not be read and have been left "
                 "out. The rest of your blocks are shown as before.",
                 "Några av de block du har definierat för den här filen kunde inte läsas och har utelämnats. "
                 "Dina övriga block visas som tidigare."));
}

void DocumentCommands::editBlocks()
{
    ViewerSession &session = mContext.session;
    const Document *doc = session.document();
    if (!doc)
        return;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Editing blocks...", "Redigerar block...", false);
    BlockEditor editor(*doc, session.editableBlocks(), mContext.settings.store, mContext.settings.isSwedish,
                       mContext.host.dialogParent());
    editor.exec();
    if (editor.blocksChanged())
        session.blocksEdited();
    status.clearStatus();
}

void DocumentCommands::copyIndexes()
{
    const ViewerSession &session = mContext.session;
    const Document *doc = session.document();
    if (!doc || !session.hasSheet() || !session.mayOutput(OutputCommand::Figures))
        return;
    const bool sv = mContext.settings.isSwedish;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Copying indexes to clipboard...", "Kopierar index till urklipp...", false);
    // The overview on screen is the current selection.
    const RowList rows = session.shownSheet().rows;
    const QString selectionText = session.selectionSteps().selectionText;
    bool done = false;
    SetupExportIndexes setup(*doc, mExportOptions, sv, mContext.host.dialogParent());
    setup.setOnExport([&](const IndexExportOptions &options) {
        ExportIndexes progress(*doc, session.blocks(), selectionText, rows, options, QLocale(), sv, &setup);
        progress.exec();
        done = progress.copied();
    });
    setup.exec();
    const IndexExportText result = done ? IndexExportText::Copied : IndexExportText::Canceled;
    status.setStatus(indexExportText(result, false), indexExportText(result, true), true);
}

void DocumentCommands::showProperties()
{
    const Document *doc = mContext.session.document();
    if (!doc)
        return;
    std::optional<WaitCursor> wait(std::in_place);
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Displaying file properties...", "Visar filegenskaper...", false);
    PropertiesView view(*doc, mContext.settings.isSwedish, QLocale(), mContext.host.dialogParent());
    wait.reset();
    view.exec();
    status.clearStatus();
}

void DocumentCommands::copyTotalIndexPoints()
{
    const ViewerSession &session = mContext.session;
    const Document *doc = session.document();
    if (!doc || doc->properties.pointsScale < 1 || !session.hasSheet())
        return;
    QString distribution;
    calculateTotalIndexSpec(*doc, session.shownSheet().rows, distribution);
    // Nothing scored: the clipboard keeps what it had.
    if (distribution.isEmpty())
        return;
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(distribution);
    // The clipboard's old content is gone: say what replaced it.
    mContext.host.statusLine().setStatus("The total index points have been copied to the clipboard!",
                                         "Totalindexets poäng har kopierats till urklipp!", true);
}

} // namespace kel
