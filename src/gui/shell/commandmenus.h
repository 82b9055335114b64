// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's menus joined to the features' commands objects, and the
// menu parts that follow the document (block submenus) or the place of a
// popup click. The commands know nothing of menus; the menus know only
// which command an item runs.
#pragma once

#include "gui/shell/mainmenus.h"

#include <QStringList>

class QObject;

namespace kel {

class DocumentCommands;
class GraphCommands;
class OverviewCommands;
class ReportCommands;
class ViewerSession;
struct BlockCatalogue;
struct Document;
struct SheetHit;

/// One commands object per feature, owned by the main window.
struct ViewerCommands {
    OverviewCommands *overview = nullptr;
    GraphCommands *graphs = nullptr;
    DocumentCommands *documents = nullptr;
    ReportCommands *reports = nullptr;
};

/// Connects every command item of `menus` (menu bar and popup) to the
/// command it runs; the connections live as long as `owner`.
void connectCommandMenus(const MainMenus &menus, const ViewerCommands &commands, QObject *owner);

/// Fills the View menu's block submenus with `doc`'s blocks (empty without
/// a document). The four per-block submenus stay hidden because block
/// graphs are reached through the popup menu; the user block submenu has
/// one submenu per user block with the graphs its flags allow, as the popup
/// offers them for a document block, and is hidden without user blocks.
void rebuildBlockMenus(MainMenus &menus, const Document *doc, const BlockCatalogue &blocks, GraphCommands &graphs,
                       bool isSwedish);

/// Captions the recent-file items with `files` (most recent first), each
/// path shortened in the middle to `widthPixels`; unused items are hidden.
void fillRecentFilesMenu(MainMenus &menus, const QStringList &files, int widthPixels);

/// The view facts the popup's items depend on besides the session.
struct PopupView {
    bool randomPerColumn = false;
    int headerLines = 0;
    /// The engine's menu rule for the total index graph, as it stands now.
    bool totalGraphVisible = false;
};

/// Shows or hides the popup menu's place-dependent items for a right click
/// on `hit` and enables them for its row and question, under the engine's
/// decision for the overview on screen.
void preparePopupMenu(MainMenus &menus, const ViewerSession &session, const SheetHit &hit, const PopupView &view);

} // namespace kel
