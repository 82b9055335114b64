// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's commands that work on the open document as a whole:
// Tools > Blocks, Copy Indexes (Edit menu and popup), File > Properties, and
// the points list behind the total index from a double click on the status
// line. Kept apart from mainwindow.cpp so the window's own file stays about
// menus, opening and the sheet.
#include "gui/shell/mainwindow.h"
#include "texts/messages.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/documentsession.h"
#include "engine/indexes/blockindex.h"
#include "gui/blocks/blockeditor.h"
#include "gui/document/propertiesview.h"
#include "gui/indexes/exportindexes.h"
#include "gui/overview/sheetview.h"
#include "gui/common/waitcursor.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QLabel>

namespace kel {

namespace {

/// Calls `onClick` when a watched status panel is double-clicked.
class PanelClickFilter : public QObject
{
public:
    PanelClickFilter(std::function<void()> onClick, QObject *parent) : QObject(parent), mOnClick(std::move(onClick)) { }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonDblClick)
            mOnClick();
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> mOnClick;
};

} // namespace

void MainWindow::connectDocumentCommands()
{
    connect(mMenus.mnuTEditBlocks, &QAction::triggered, this, &MainWindow::editBlocks);
    connect(mMenus.mnuECopyIndexes, &QAction::triggered, this, &MainWindow::copyIndexes);
    connect(mMenus.mnuPCopyIndexes, &QAction::triggered, this, &MainWindow::copyIndexes);
    connect(mMenus.mnuFProperties, &QAction::triggered, this, &MainWindow::showProperties);
    auto *filter = new PanelClickFilter([this] { copyTotalIndexPoints(); }, this);
    for (QLabel *panel : mPanels)
        panel->installEventFilter(filter);
}

void MainWindow::restoreStoredBlocks()
{
    const Document *doc = document();
    if (!doc)
        return;
    const UserBlockRestore restore =
        restoreUserBlocks(*doc, mSession->editableBlocks(), mSettings, !mSettings.policies().noSaveSettings);
    if (restore.problems.isEmpty())
        return;
    for (const QString &problem : restore.problems)
        qWarning("stored blocks of %s: %s", qUtf8Printable(doc->guidText()), qUtf8Printable(problem));
    showMessage(QMessageBox::Warning, applicationTitle(),
                pickText(mIsSwedish,
                         "Some of the blocks you have defined for this file could not be read and have been left "
                         "out. The rest of your blocks are shown as before.",
                         "Några av de block du har definierat för den här filen kunde inte läsas och har utelämnats. "
                         "Dina övriga block visas som tidigare."));
}

void MainWindow::editBlocks()
{
    const Document *doc = document();
    if (!doc)
        return;
    mStatus->setStatus("Editing blocks...", "Redigerar block...", false);
    BlockEditor editor(*doc, mSession->editableBlocks(), mSettings, mIsSwedish, this);
    editor.exec();
    if (editor.blocksChanged()) {
        mFlexTotal.updateUserBlockIndexes(*doc, blocks());
        rebuildBlockMenus();
    }
    mStatus->clearStatus();
}

void MainWindow::copyIndexes()
{
    const Document *doc = document();
    if (!doc || !mSheet->input().document || !mayOutput(OutputCommand::Figures))
        return;
    mStatus->setStatus("Copying indexes to clipboard...", "Kopierar index till urklipp...", false);
    // The overview on screen is the current selection.
    const RowList rows = mSheet->input().rows;
    const QString selectionText = mSheet->input().selectionText;
    bool done = false;
    SetupExportIndexes setup(*doc, mExportOptions, mIsSwedish, this);
    setup.setOnExport([&](const IndexExportOptions &options) {
        ExportIndexes progress(*doc, blocks(), selectionText, rows, options, QLocale(), mIsSwedish, &setup);
        progress.exec();
        done = progress.copied();
    });
    setup.exec();
    if (done)
        mStatus->setStatus(indexExportText(IndexExportText::Copied, false),
                           indexExportText(IndexExportText::Copied, true), true);
    else
        mStatus->setStatus(indexExportText(IndexExportText::Canceled, false),
                           indexExportText(IndexExportText::Canceled, true), true);
}

void MainWindow::showProperties()
{
    const Document *doc = document();
    if (!doc)
        return;
    std::optional<WaitCursor> wait(std::in_place);
    mStatus->setStatus("Displaying file properties...", "Visar filegenskaper...", false);
    PropertiesView view(*doc, mIsSwedish, QLocale(), this);
    wait.reset();
    view.exec();
    mStatus->clearStatus();
}

void MainWindow::copyTotalIndexPoints()
{
    const Document *doc = document();
    if (!doc || doc->properties.pointsScale < 1 || !mSheet->input().document)
        return;
    QString distribution;
    calculateTotalIndexSpec(*doc, mSheet->input().rows, distribution);
    // Nothing scored: the clipboard keeps what it had.
    if (distribution.isEmpty())
        return;
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(distribution);
    // The clipboard's old content is gone: say what replaced it.
    mStatus->setStatus("The total index points have been copied to the clipboard!",
                       "Totalindexets poäng har kopierats till urklipp!", true);
}

} // namespace kel
