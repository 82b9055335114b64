// SPDX-License-Identifier: GPL-3.0-or-later
// What may be shown of a selection, decided in one place. Show asks it once
// and keeps the answer with the overview it builds; every command that puts
// data out (a window, the clipboard, a file, `kel`) asks it again at the
// moment it outputs, from the figures of what is shown, so that no menu
// state, window or tool can stand in for the rule. The reports of a unit go
// through the same gates by calling the same functions.
#pragma once

#include "engine/document/document.h"
#include "engine/document/outcome.h"
#include "engine/selection/selectionmatrix.h"

#include <vector>

namespace kel {

/// What the shown overview permits. Built only by showPermissions().
struct ShowPermissions {
    bool shown = false;      ///< the selection passed every gate: its figures and graphs may be shown
    bool rows = false;       ///< its individual answer rows may be shown (and copied to a mini-overview)
    bool copyData = false;   ///< rows, and the document allows copying data
    bool comments = false;   ///< comments are individual answers: they follow the rows
    bool flexTotal = false;  ///< the flex total's figures may be shown
    bool flexRows = false;   ///< the flex total's row numbers may be listed
    std::vector<bool> split; ///< per category: a split by it may be shown
    bool operator==(const ShowPermissions &) const = default;
};

/// Every command that outputs something of the respondents' answers.
enum class OutputCommand {
    OverviewRows,        ///< answer rows in the sheet, its pictures, `kel select` rows and cells
    CopyOverviewAsData,  ///< Edit/popup Copy Overview as Data, `kel dump` answers
    CopyToMiniOverview,  ///< a mini-overview with answer rows
    CopyThisRowsAnswers, ///< the popup's copy of one respondent's answers
    RowsComments,        ///< popup Show Row's Comments
    ColumnsComments,     ///< popup Show Column's Comments
    AllComments,         ///< View > Comments, `kel dump` comments
    Figures,             ///< counts, indexes, graphs and index copies of the selection
    FlexFigures,         ///< the flex total's indexes
    FlexRows,            ///< `kel select` flex rows
    Count
};
inline constexpr int OutputCommandCount = int(OutputCommand::Count);

/// The gate of Show: refuses a blocked category or flex total first, then an
/// empty selection, then one below the minimum graph selection.
Outcome<> showRefusalFor(const Document &doc, qint32 selectionSize, bool categoryBlocked, bool flexBlocked);

/// What a selection that Show accepted permits.
ShowPermissions showPermissions(const Document &doc, qint32 selectionSize, qint32 flexSize,
                                const std::vector<bool> &splitNotAllowed);

/// Whether `command` may output, per `permissions`. A split needs its
/// category's permission as well (`Figures` with `splitCategory` >= 0).
bool permits(const ShowPermissions &permissions, OutputCommand command, qint32 splitCategory = -1);

/// Per category: restricted in `selection` while an option with the
/// complement-check flag holds 0 < found < the minimum complement selection.
/// `found` is countOptions of `selection`.
std::vector<bool> blockedCategories(const Document &doc, const SelectionMatrix &selection, const CountMatrix &found);

/// Per category: splitting by it would show a group below the minimum graph
/// selection. For a category question every option flagged to count for
/// privacy is tested; `found` is countOptions of the selection.
std::vector<bool> splitNotAllowedFor(const Document &doc, const CountMatrix &found);

/// Whether a split of `rows` by question `question` would show a group
/// below the minimum graph selection. Questions that are not categories
/// carry no privacy flags: every non-empty group counts.
bool splitRefused(const Document &doc, qint32 question, const std::vector<qint32> &rows);

/// The size of each group the flex total leaves out: per option of the flex
/// category, the respondents answering it (among those matching `selection`
/// in the other categories when the flex total is based on it) where the
/// option is not in `flexOptions`; 0 for options it keeps.
std::vector<qint32> flexLeftOutGroups(const Document &doc, const SelectionMatrix &selection,
                                      const std::vector<bool> &flexOptions, bool basedOnSelection);

/// The flex total leaves out a group with the complement-check flag of
/// 0 < size < the minimum complement selection.
bool flexTotalBlocked(const Document &doc, const SelectionMatrix &selection, const std::vector<bool> &flexOptions,
                      bool basedOnSelection);

/// The document forces a random row order on a selection of `n`: the order
/// protects the respondents, so it is never taken from a seed given from
/// outside and the row numbers behind it are not listed.
bool documentForcesRandomOrder(const DocumentProperties &properties, qint32 n);

} // namespace kel
