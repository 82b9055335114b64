// SPDX-License-Identifier: GPL-3.0-or-later
// The menus' enabling rule: what each document permission and each fact of
// the surroundings offers, and that nothing unbuilt is ever enabled.
#include "engine/overview/menuenabling.h"

#include <gtest/gtest.h>

#include <iterator>

using namespace kel;

TEST(MenuEnabling, PermissionsAndSurroundingsDecideEachCommand)
{
    struct Expect {
        MenuCommand command;
        bool visible;
        bool enabled;
    };
    struct Case {
        const char *label;
        MenuState state;
        std::vector<Expect> expected;
    };
    using C = MenuCommand;
    MenuState none;
    MenuState plain;
    plain.documentOpen = true;
    MenuState copyAll = plain;
    copyAll.allowCopy = copyAll.allowCopyData = copyAll.hasIndexes = copyAll.dataRowsAllowed = true;
    MenuState dataOnly = plain; // copying data without copying at all gives nothing
    dataOnly.allowCopyData = dataOnly.hasIndexes = dataOnly.dataRowsAllowed = true;
    MenuState printNoPrinter = plain;
    printNoPrinter.allowPrint = printNoPrinter.allowSavePicture = true;
    MenuState printer = printNoPrinter;
    printer.printerInstalled = true;
    MenuState belowMinimum = copyAll;
    belowMinimum.dataRowsAllowed = false;
    MenuState rich = plain;
    rich.totalIndexGraph = rich.hasRowComments = rich.hasCategories = rich.mouseWheel = rich.dataRowsAllowed = true;

    const Case cases[] = {
        {"no document",
         none,
         {{C::Open, true, true},
          {C::Exit, true, true},
          {C::Options, true, true},
          {C::Properties, true, false},
          {C::Navigator, true, false},
          {C::DetailInformation, true, false},
          {C::CloseAllGraphWindows, true, false},
          {C::CopyIndexes, false, true},
          {C::TotalIndexGraph, false, true},
          {C::QuestionGraphs, false, false},
          {C::MouseWheelDirection, false, true},
          {C::PrintFormat, true, false},
          {C::Export, false, true},
          {C::CreateReport, true, false}}},
        {"no permissions",
         plain,
         {{C::Properties, true, true},
          {C::EditBlocks, true, true},
          {C::CloseAllGraphWindows, true, true},
          {C::DetailInformation, true, true},
          {C::Navigator, true, false},
          {C::CopyOverview, true, false},
          {C::CopyIndexes, false, true},
          {C::CopyData, false, false},
          {C::SaveOverviewAs, true, false},
          {C::DistributionGraph, true, false},
          {C::Comments, true, false},
          {C::QuestionGraphs, false, true},
          {C::CopyToMiniOverview, true, false},
          {C::CreateReport, true, false}}},
        {"copy, data and indexes",
         copyAll,
         {{C::CopyOverview, true, true},
          {C::CopyHeadersAndTotals, true, true},
          {C::CopyIndexes, true, true},
          {C::CopyData, true, true},
          {C::CopyToMiniOverview, true, true},
          {C::CreateReport, true, true}}},
        {"copy data without copy",
         dataOnly,
         {{C::CopyOverview, true, false},
          {C::CopyIndexes, false, true},
          {C::CopyData, false, true},
          {C::CreateReport, true, true}}},
        {"print without printer",
         printNoPrinter,
         {{C::PrintOverview, false, false},
          {C::PrintFormat, true, false},
          {C::SaveOverviewAs, true, true},
          {C::CreateReport, true, true}}},
        {"print with printer", printer, {{C::PrintOverview, false, true}, {C::PrintFormat, true, true}}},
        {"selection below minimum",
         belowMinimum,
         {{C::CopyData, true, false}, {C::CopyToMiniOverview, true, false}, {C::CopyOverview, true, true}}},
        {"categories, comments, total graph, wheel",
         rich,
         {{C::TotalIndexGraph, true, true},
          {C::Comments, true, true},
          {C::DistributionGraph, true, true},
          {C::QuestionGraphs, true, true},
          {C::Navigator, true, true},
          {C::MouseWheelDirection, true, true},
          {C::BlockGraphs, false, true}}},
    };
    for (const Case &c : cases) {
        const MenuEnabling rules = menuRulesFor(c.state);
        for (const Expect &e : c.expected) {
            const MenuItemState &got = rules[std::size_t(e.command)];
            EXPECT_TRUE(got.visible == e.visible && got.enabled == e.enabled)
                << c.label << ": command " << int(e.command);
        }
    }
}

// Every command, with everything a document may allow, for an overview
// whose rows are shown and one whose rows are hidden. Written from the
// rules: what shows individual answers (rows, their copies, a respondent's
// answers, every comments window) goes with the rows; nothing else does.
TEST(MenuEnabling, EveryCommandFollowsTheRowsPermissionExactlyWhereItShowsAnswers)
{
    MenuState shown;
    shown.documentOpen = shown.printerInstalled = shown.mouseWheel = shown.dataRowsAllowed = true;
    shown.allowCopy = shown.allowCopyData = shown.allowPrint = shown.allowSavePicture = true;
    shown.hasIndexes = shown.totalIndexGraph = shown.hasCategories = shown.hasRowComments = true;
    MenuState hidden = shown;
    hidden.dataRowsAllowed = false;

    using C = MenuCommand;
    struct Row {
        C command;
        bool visible;
        bool enabledWithRows;
        bool enabledWithoutRows;
    };
    const Row table[] = {
        {C::Open, true, true, true},
        {C::SaveOverviewAs, true, true, true},
        {C::PrintOverview, false, true, true},
        {C::PrintFormat, true, true, true},
        {C::Properties, true, true, true},
        {C::Exit, true, true, true},
        {C::CopyOverview, true, true, true},
        {C::CopyHeadersAndTotals, true, true, true},
        {C::CopyIndexes, true, true, true},
        {C::CopyToMiniOverview, true, true, false},
        {C::CopyData, true, true, false},
        {C::Navigator, true, true, true},
        {C::DetailInformation, true, true, true},
        {C::DistributionGraph, true, true, true},
        {C::TotalIndexGraph, true, true, true},
        {C::BlockGraphs, false, true, true},
        {C::QuestionGraphs, true, true, true},
        {C::Comments, true, true, false},
        {C::RowsComments, true, true, false},
        {C::ColumnsComments, true, true, false},
        {C::CopyThisRowsAnswers, true, true, false},
        {C::CloseAllGraphWindows, true, true, true},
        {C::EditBlocks, true, true, true},
        {C::Options, true, true, true},
        {C::Export, false, false, false}, // not built: never enabled
        {C::HelpTopics, true, true, true},
        {C::About, true, true, true},
        {C::MouseWheelDirection, true, true, true},
        // Each unit of a report passes Show's gates by itself.
        {C::CreateReport, true, true, true},
    };
    ASSERT_EQ(std::size(table), std::size_t(MenuCommandCount));
    const MenuEnabling withRows = menuEnablingFor(shown), withoutRows = menuEnablingFor(hidden);
    for (std::size_t i = 0; i < std::size(table); ++i) {
        const Row &row = table[i];
        ASSERT_EQ(int(row.command), int(i)) << "the table follows the enumeration";
        const MenuItemState &a = withRows[i], &b = withoutRows[i];
        EXPECT_EQ(a.visible, row.visible) << "command " << i;
        EXPECT_EQ(b.visible, row.visible) << "command " << i;
        EXPECT_EQ(a.enabled, row.enabledWithRows) << "command " << i << " with rows";
        EXPECT_EQ(b.enabled, row.enabledWithoutRows) << "command " << i << " without rows";
    }
}
