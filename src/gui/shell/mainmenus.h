// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's menu bar and the overview's popup menu, built in one place
// with both languages' captions. The items keep the names the rest of the
// program refers to them by (every QAction's objectName is that name too).
#pragma once

#include "engine/overview/menuenabling.h"

#include <QList>

#include <array>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace kel {

struct MainMenus {
    // File
    QMenu *mnuFile = nullptr;
    QAction *mnuFOpen = nullptr;
    QAction *mnuFBar1 = nullptr;
    QAction *mnuFSaveAs = nullptr;
    QAction *mnuFCreateReport = nullptr;
    QAction *mnuFBar2 = nullptr;
    QAction *mnuFPrint = nullptr;
    QAction *mnuFPrintFormat = nullptr;
    QAction *mnuFBar3 = nullptr;
    QAction *mnuFProperties = nullptr;
    QAction *mnuFMRUBar = nullptr;
    std::array<QAction *, 5> mnuFMRU{};
    QAction *mnuFBar4 = nullptr;
    QAction *mnuFExit = nullptr;

    // Edit
    QMenu *mnuEdit = nullptr;
    QAction *mnuECopy = nullptr;
    QAction *mnuECopyHeadersAndTotals = nullptr;
    QAction *mnuECopyIndexes = nullptr;
    QAction *mnuECopyToMiniOverview = nullptr;
    QAction *mnuECopyData = nullptr;

    // View
    QMenu *mnuView = nullptr;
    QAction *mnuVNavigator = nullptr;
    QAction *mnuVDetailInfo = nullptr;
    QAction *mnuVBar1 = nullptr;
    QAction *mnuVDistributionGraph = nullptr;
    QAction *mnuVTotalGraph1 = nullptr;
    QMenu *mnuVBlockGraph4 = nullptr;
    QMenu *mnuVBlockGraph1 = nullptr;
    QMenu *mnuVBlockGraph2 = nullptr;
    QMenu *mnuVBlockGraph3 = nullptr;
    QList<QAction *> mnuVB4Item, mnuVB1Item, mnuVB2Item, mnuVB3Item;
    /// One submenu per user block with its block graphs; shown while the
    /// document has user blocks (the popup cannot reach them).
    QMenu *mnuVUserBlockGraphs = nullptr;
    QAction *mnuVComments = nullptr;
    QAction *mnuVBar2 = nullptr;
    QAction *mnuVCloseAllGraphWindows = nullptr;

    // Tools
    QMenu *mnuTools = nullptr;
    QAction *mnuTEditBlocks = nullptr;
    QAction *mnuTBar1 = nullptr;
    QAction *mnuTOptions = nullptr;
    QAction *mnuTBar2 = nullptr;
    QAction *mnuTExport = nullptr;

    // Help
    QMenu *mnuHelp = nullptr;
    QAction *mnuHHelpTopics = nullptr;
    QAction *mnuHBar1 = nullptr;
    QAction *mnuHAbout = nullptr;

    // Popup menu of the overview sheet
    QMenu *mnuPopUp = nullptr;
    QAction *mnuPShowRowsComments = nullptr;
    QAction *mnuPShowColumnsComments = nullptr;
    QAction *mnuPCopyThisRowsAnswers = nullptr;
    QAction *mnuPBar1 = nullptr;
    QAction *mnuPShowTotalGraph1 = nullptr;
    QAction *mnuPShowBlockGraph4 = nullptr;
    QAction *mnuPShowBlockGraph1 = nullptr;
    QAction *mnuPShowBlockGraph2 = nullptr;
    QMenu *mnuPShowBlockGraph3 = nullptr;
    std::array<QAction *, 2> mnuPSB3SortedBy{};
    QMenu *mnuPShowQuestionGraph1 = nullptr;
    QAction *mnuPS1Total = nullptr;
    QMenu *mnuPS1SplitBy = nullptr;
    QList<QAction *> mnuPS1SplitByColumn; ///< item 0 always exists
    QAction *mnuPS1Split = nullptr;
    QMenu *mnuPShowQuestionGraph2 = nullptr;
    QAction *mnuPS2Total = nullptr;
    QMenu *mnuPS2SplitBy = nullptr;
    QList<QAction *> mnuPS2SplitByColumn; ///< item 0 always exists
    QAction *mnuPS2Split = nullptr;
    QMenu *mnuPShowQuestionGraph3 = nullptr;
    std::array<QAction *, 2> mnuPSQ3SortedBy{};
    QAction *mnuPBar2 = nullptr;
    QAction *mnuPCopy = nullptr;
    QAction *mnuPCopyHeadersAndTotals = nullptr;
    QAction *mnuPCopyIndexes = nullptr;
    QAction *mnuPPrint = nullptr;
    QAction *mnuPSaveAs = nullptr;
    QAction *mnuPCopyToMiniOverview = nullptr;
    QAction *mnuPCopyData = nullptr;
    QAction *mnuPBar3 = nullptr;
    std::array<QAction *, 2> mnuPMouseWheelScrollDirection{};
};

/// Builds every menu into `bar` and a popup menu owned by `owner`, with the
/// captions of the chosen language and the state they have before any
/// document is opened.
MainMenus buildMainMenus(QMenuBar *bar, QWidget *owner, bool isSwedish);

/// Shows, hides, enables and disables every item as `enabling` says: the one
/// place where the menus' state is set. Items that depend on the place of a
/// popup click are shown by the popup itself. Split-by item c is enabled
/// only when question graphs are and the shown overview allows splitting by
/// category c (`splitNotAllowed`, as the overview build decided it).
void applyMenuEnabling(MainMenus &menus, const MenuEnabling &enabling, const std::vector<bool> &splitNotAllowed = {});

/// Adds split-by item `index` to both popup split menus when it does not exist
/// yet and sets its caption; returns false for a negative index.
bool setSplitByItem(MainMenus &menus, int index, const QString &heading);

/// Removes the split-by items added for categories 1 and up, last first.
void removeExtraSplitByItems(MainMenus &menus);

} // namespace kel
