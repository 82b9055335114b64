// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/overview/menuenabling.h"

#include <algorithm>
#include <iterator>

namespace kel {

bool isCommandBuilt(MenuCommand command)
{
    return std::find(std::begin(NotYetBuiltCommands), std::end(NotYetBuiltCommands), command)
        == std::end(NotYetBuiltCommands);
}

MenuState MenuState::of(const Document *doc, bool printerInstalled, bool mouseWheel, bool dataRowsAllowed)
{
    MenuState s;
    s.printerInstalled = printerInstalled;
    s.mouseWheel = mouseWheel;
    if (!doc)
        return s;
    const DocumentProperties &p = doc->properties;
    s.documentOpen = true;
    s.dataRowsAllowed = dataRowsAllowed;
    s.allowCopy = p.allowCopy;
    s.allowCopyData = p.allowCopyData;
    s.allowPrint = p.allowPrint;
    s.allowSavePicture = p.allowSavePicture;
    s.hasIndexes = p.pointsScale >= 1;
    s.totalIndexGraph = (p.indexFlags & 0x100) != 0;
    s.hasCategories = !doc->categories.empty();
    s.hasRowComments = !doc->rowComments.empty();
    return s;
}

MenuEnabling menuRulesFor(const MenuState &s)
{
    MenuEnabling e;
    auto set = [&](MenuCommand c, bool visible, bool enabled) { e[std::size_t(c)] = {visible, enabled}; };
    const bool doc = s.documentOpen;
    set(MenuCommand::Open, true, true);
    set(MenuCommand::SaveOverviewAs, true, doc && s.allowSavePicture);
    // Printing needs the document's permission and a printer; the print
    // items are not offered on this platform's menus at all.
    set(MenuCommand::PrintOverview, false, doc && s.allowPrint && s.printerInstalled);
    set(MenuCommand::PrintFormat, true, s.printerInstalled);
    set(MenuCommand::Properties, true, doc);
    set(MenuCommand::Exit, true, true);
    set(MenuCommand::CopyOverview, true, doc && s.allowCopy);
    set(MenuCommand::CopyHeadersAndTotals, true, doc && s.allowCopy);
    set(MenuCommand::CopyIndexes, doc && s.allowCopy && s.hasIndexes, true);
    set(MenuCommand::CopyToMiniOverview, true, doc && s.dataRowsAllowed);
    set(MenuCommand::CopyData, doc && s.allowCopy && s.allowCopyData, doc && s.dataRowsAllowed);
    set(MenuCommand::Navigator, true, doc && s.hasCategories);
    set(MenuCommand::DetailInformation, true, doc);
    set(MenuCommand::DistributionGraph, true, doc && s.hasCategories);
    set(MenuCommand::TotalIndexGraph, doc && s.totalIndexGraph, true);
    // The View block submenus stay hidden: block graphs are reached through
    // the popup menu.
    set(MenuCommand::BlockGraphs, false, doc);
    set(MenuCommand::QuestionGraphs, doc && s.hasCategories, doc);
    // Comments and one respondent's answers are individual answers: they
    // go with the answer rows.
    set(MenuCommand::Comments, true, doc && s.hasRowComments && s.dataRowsAllowed);
    set(MenuCommand::RowsComments, true, doc && s.dataRowsAllowed);
    set(MenuCommand::ColumnsComments, true, doc && s.dataRowsAllowed);
    set(MenuCommand::CopyThisRowsAnswers, true, doc && s.dataRowsAllowed);
    set(MenuCommand::CloseAllGraphWindows, true, doc);
    set(MenuCommand::EditBlocks, true, doc);
    set(MenuCommand::Options, true, true);
    set(MenuCommand::Export, false, true);
    set(MenuCommand::HelpTopics, true, true);
    set(MenuCommand::About, true, true);
    set(MenuCommand::MouseWheelDirection, s.mouseWheel, true);
    // A report is worth making when one of its kinds of content may leave
    // the viewer: pictures, tables or comments.
    set(MenuCommand::CreateReport, true, doc && (s.allowSavePicture || s.allowCopy || s.allowCopyData));
    return e;
}

MenuEnabling menuEnablingFor(const MenuState &state)
{
    MenuEnabling e = menuRulesFor(state);
    for (MenuCommand c : NotYetBuiltCommands)
        e[std::size_t(c)].enabled = false;
    return e;
}

} // namespace kel
