// SPDX-License-Identifier: GPL-3.0-or-later
// Which commands of the main window's menus are offered and enabled, decided
// from a few plain facts (document open, its permissions, a printer, whether
// data rows may be shown). The window applies the answer in one place; the
// popup's place-dependent items are popupItemsFor's business.
#pragma once

#include "engine/document/document.h"

#include <array>

namespace kel {

/// A command of the menus. The main menu's item and the popup's item of the
/// same command share one state.
enum class MenuCommand : int {
    Open,
    SaveOverviewAs,
    PrintOverview,
    PrintFormat,
    Properties,
    Exit,
    CopyOverview,
    CopyHeadersAndTotals,
    CopyIndexes,
    CopyToMiniOverview,
    CopyData,
    Navigator,
    DetailInformation,
    DistributionGraph,
    TotalIndexGraph,
    BlockGraphs,     ///< the block graph items (View submenus and popup)
    QuestionGraphs,  ///< the popup's question graph items, split-by included
    Comments,        ///< View > Comments
    RowsComments,    ///< popup
    ColumnsComments, ///< popup
    CopyThisRowsAnswers,
    CloseAllGraphWindows,
    EditBlocks,
    Options,
    Export,
    HelpTopics,
    About,
    MouseWheelDirection,
    CreateReport,
    Count
};
inline constexpr int MenuCommandCount = int(MenuCommand::Count);

/// Commands whose windows are not built yet. Their items stay disabled
/// whatever the state, so that nothing is enabled without an action behind
/// it; whoever builds one removes it from this list.
inline constexpr MenuCommand NotYetBuiltCommands[] = {
    MenuCommand::Export,
};

bool isCommandBuilt(MenuCommand command);

/// The facts the menus depend on.
struct MenuState {
    bool documentOpen = false;
    bool printerInstalled = false;
    bool mouseWheel = false;
    bool dataRowsAllowed = false; ///< the current overview may show answer rows
    // Of the open document (false without one):
    bool allowCopy = false;
    bool allowCopyData = false;
    bool allowPrint = false;
    bool allowSavePicture = false;
    bool hasIndexes = false;      ///< points scale >= 1
    bool totalIndexGraph = false; ///< the document offers the total-index graph
    bool hasCategories = false;
    bool hasRowComments = false;

    /// The facts of `doc` (nullptr: none open) and the surroundings.
    static MenuState of(const Document *doc, bool printerInstalled, bool mouseWheel, bool dataRowsAllowed);
};

struct MenuItemState {
    bool visible = true;
    bool enabled = false;
};

using MenuEnabling = std::array<MenuItemState, MenuCommandCount>;

/// Which commands are offered and may be used in `state`: what the
/// document's permissions and the surroundings allow, built or not.
MenuEnabling menuRulesFor(const MenuState &state);

/// What the menus show: the rules, with every command not built yet
/// disabled.
MenuEnabling menuEnablingFor(const MenuState &state);

} // namespace kel
