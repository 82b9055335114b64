// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/overviewcommands.h"

#include "engine/overview/comments.h"
#include "gui/overview/minioverviewwindow.h"
#include "gui/overview/sheetview.h"
#include "gui/overview/textpopup.h"
#include "gui/shell/mainwindow.h"
#include "gui/common/waitcursor.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include <QAction>
#include <QGuiApplication>
#include <QScreen>

namespace kel {

namespace {

void showComments(MainWindow &window, const CommentsDocument &comments, const QString &caption)
{
    if (comments.isEmpty())
        return;
    auto *popup = new TextPopup(window.isSwedish(), &window);
    popup->setAttribute(Qt::WA_DeleteOnClose);
    popup->setWindowTitle(caption);
    popup->setHtml(commentsHtml(comments, commentShortenedNote(window.isSwedish())));
    // Over the middle of the main window, where the user is looking.
    popup->move(window.geometry().center() - popup->rect().center());
    popup->show();
    popup->raise();
    popup->activateWindow();
}

// A new mini-overview goes beside the others: three abreast on the screen
// of the main window, the next three a little lower, all below the main
// window's menu bar so that the next copy can still be made.
void placeNewMiniOverview(MainWindow &window, MiniOverviewWindow &mini, int slot)
{
    const QScreen *screen = window.screen() ? window.screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    const int columnWidth = area.width() / 3;
    const int top = std::max(area.top(), window.geometry().top()) + area.height() / 10;
    const QSize size = mini.preferredSize(QSize(columnWidth - 16, area.bottom() - top - 120));
    mini.resize(size);
    mini.move(area.left() + (slot % 3) * columnWidth + 8, top + (slot / 3) * 40);
}

} // namespace

void connectOverviewCommands(MainWindow &window)
{
    const MainMenus &m = window.menus();
    for (QAction *a : {m.mnuECopyToMiniOverview, m.mnuPCopyToMiniOverview})
        QObject::connect(a, &QAction::triggered, &window, [&window] { copyToMiniOverview(window); });
    QObject::connect(m.mnuVComments, &QAction::triggered, &window, [&window] { showAllComments(window); });
    QObject::connect(m.mnuPShowRowsComments, &QAction::triggered, &window, [&window] { showRowsComments(window); });
    QObject::connect(m.mnuPShowColumnsComments, &QAction::triggered, &window,
                     [&window] { showColumnsComments(window); });
}

bool copyToMiniOverview(MainWindow &window)
{
    SheetView *sheet = window.sheetView();
    if (!window.document() || !sheet->hasSheet())
        return false;
    const bool rows = window.mayOutput(OutputCommand::CopyToMiniOverview);
    WaitCursor wait;
    StatusLine &status = window.statusLine();
    status.setStatus("Copying overview to mini-overview...", "Kopierar översikt till miniöversikt...", false);

    WindowSlotTable &table = window.windowSlots(SlotTable::MiniOverviews);
    const int slot = choosePoolSlot(table);
    const bool fresh = !table[std::size_t(slot)].inUse || !table[std::size_t(slot)].window;
    auto *mini = qobject_cast<MiniOverviewWindow *>(
        takePooledWindow(table, [&window] { return new MiniOverviewWindow(window.isSwedish(), &window); }));
    SheetInput input = sheet->input();
    input.maxRowsDisplayed = rows ? -1 : 0;
    if (!mini || !mini->initializeData(std::move(input))) {
        status.setStatus("Overview could not be copied to mini-overview!",
                         "Översikt kunde inte kopieras till miniöversikt!", true);
        return false;
    }
    if (fresh)
        placeNewMiniOverview(window, *mini, slot);
    mini->show();
    mini->raise();
    status.setStatus("Overview copied to mini-overview!", "Översikt kopierad till miniöversikt!", true);
    return true;
}

void showRowsComments(MainWindow &window)
{
    const Document *doc = window.document();
    if (!doc || !window.mayOutput(OutputCommand::RowsComments))
        return;
    StatusLine &status = window.statusLine();
    status.setStatus("Shows row's comments...", "Visar radens kommentarer...", false);
    const SheetView *sheet = window.sheetView();
    showComments(window, rowComments(*doc, sheet->popupRow(), sheet->input().columns),
                 pickText(window.isSwedish(), "Show Row's Comments", "Visa radens kommentarer"));
    status.clearStatus();
}

void showColumnsComments(MainWindow &window)
{
    const Document *doc = window.document();
    if (!doc || !window.mayOutput(OutputCommand::ColumnsComments))
        return;
    StatusLine &status = window.statusLine();
    status.setStatus("Shows column's comments...", "Visar kolumnens kommentarer...", false);
    const SheetView *sheet = window.sheetView();
    showComments(window, columnComments(*doc, sheet->popupQuestion(), sheet->input().rows),
                 pickText(window.isSwedish(), "Show Column's Comments", "Visa kolumnens kommentarer"));
    status.clearStatus();
}

void showAllComments(MainWindow &window)
{
    const Document *doc = window.document();
    if (!doc || !window.mayOutput(OutputCommand::AllComments))
        return;
    StatusLine &status = window.statusLine();
    status.setStatus("Showing comments...", "Visar kommentarer...", false);
    const CommentsDocument comments = allComments(*doc, window.sheetView()->input().rows);
    if (comments.isEmpty())
        window.showMessage(
            QMessageBox::Warning, pickText(window.isSwedish(), "Show Comments", "Visa kommentarer"),
            pickText(window.isSwedish(), "Could not find any comments!", "Kunde inte hitta några kommentarer!"));
    else
        showComments(window, comments, pickText(window.isSwedish(), "All Comments", "Alla kommentarer"));
    status.clearStatus();
}

} // namespace kel
