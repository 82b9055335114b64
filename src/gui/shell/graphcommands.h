// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that open question and block graphs: from the overview's
// popup menu (block graphs, question graphs total or split) and from the
// View menu's per-block items. Each runs with the hourglass and reports
// through the status line.
#pragma once

#include "engine/graphs/basicgraph.h"
#include "texts/graphtexts.h"

#include <vector>

namespace kel {

class BasicGraphWindow;
class MainWindow;
struct MainMenus;

/// Connects the graph items of the main window's menus.
void connectBasicGraphCommands(MainWindow &window);

/// The selection of the shown overview, as graphs are computed from it.
BasicGraphSelection currentGraphSelection(MainWindow &window);

/// Computes the graph, takes a window from the pool, titles it, hands it the
/// description and shows it. Returns the window, or nullptr when the
/// generation failed (nothing is shown then).
BasicGraphWindow *openBasicGraph(MainWindow &window, const BasicGraphRequest &request);

/// The commands, as the menu items run them.
void showPopupBlockGraph(MainWindow &window, qint32 kind);
void showQuestionGraph(MainWindow &window, qint32 kind);
void showSplitGraphByDialog(MainWindow &window, qint32 kind);
void showSplitGraphByCategory(MainWindow &window, qint32 kind, int category);
void showViewBlockGraph(MainWindow &window, qint32 kind, int block);

/// Fills the View menu's user block submenu: one submenu per user block
/// with the block graphs its graph flags allow, as the popup offers them
/// for a document block. Hidden while the document has no user blocks.
void rebuildUserBlockGraphMenu(MainWindow &window);

} // namespace kel
