// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/document/documentcommands.h"

#include "engine/blocks/userblocks.h"
#include "engine/indexes/blockindex.h"
#include "gui/blocks/blockeditor.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/document/propertiesview.h"
#include "gui/indexes/exportindexes.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include <QClipboard>
#include <QGuiApplication>

#include <optional>

namespace kel {

DocumentCommands::DocumentCommands(const CommandContext &context, QObject *parent) : QObject(parent), mContext(context)
{
    // The choices belong to the document they were made for.
    DocumentSession &documents = context.session.documents();
    connect(&documents, &DocumentSession::documentOpened, this, [this] { mExportOptions.reset(); });
    connect(&documents, &DocumentSession::documentClosed, this, [this] { mExportOptions.reset(); });
}

void DocumentCommands::restoreStoredBlocks()
{
    Document *doc = mContext.session.editableDocument();
    if (!doc)
        return;
    SettingsStore &store = mContext.settings.store;
    const UserBlockRestore restore = restoreUserBlocks(*doc, store, !store.policies().noSaveSettings);
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
    Document *doc = session.editableDocument();
    if (!doc)
        return;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Editing blocks...", "Redigerar block...", false);
    BlockEditor editor(*doc, session.flexTotal().rows(), mContext.settings.store, mContext.settings.isSwedish,
                       mContext.host.dialogParent());
    editor.exec();
    if (editor.blocksChanged())
        session.notifyBlocksChanged();
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
        ExportIndexes progress(*doc, selectionText, rows, options, QLocale(), sv, &setup);
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
