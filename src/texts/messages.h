// SPDX-License-Identifier: GPL-3.0-or-later
// The words for what the engine reports as codes and values: the result of
// opening a file, Show's refusals and status texts, the index export's
// progress, the navigator's count. The viewer and `kel` both take them from
// here, so the two never word the same event differently.
#pragma once

#include "engine/document/document.h"
#include "engine/document/openresult.h"
#include "engine/overview/subsheet.h"

#include <QLocale>
#include <QString>

namespace kel {

/// The user-facing message for a result, "" for Ok.
QString openResultMessage(OpenResult result, bool isSwedish);

/// Why Show (or a graph) refused a selection. A selection below the
/// document's minimum is refused with the document's own text.
QString showRefusalMessage(const Document &doc, const Refusal &refusal, bool isSwedish);

/// A selection that Show cannot apply because a category is blocked.
QString selectionBlockedMessage(bool isSwedish);
/// A flex total that Show cannot apply because it leaves a too small group out.
QString flexTotalBlockedMessage(bool isSwedish);

/// The note under a comment too long to show whole: "%1" is the comment's
/// length in characters, "%2" how many of them are shown.
QString commentShortenedNote(bool isSwedish);

/// Show's status texts: while building (no auto-clear) and after a
/// successful build.
QString buildingOverviewText(bool isSwedish);
QString overviewBuiltText(bool isSwedish);
/// Shown in the sheet's empty area when a selection of `count` respondents,
/// below the document's `minimum`, shows only headers and totals.
QString belowMinimumNotice(qint32 count, qint32 minimum, bool isSwedish);

/// What the detail window says while no answer is pointed at.
QString detailWindowHint(bool isSwedish);

/// The texts of the index export's status line and progress window.
enum class IndexExportText {
    Caption,     ///< both windows' caption
    Preparing,   ///< progress label at the start
    Calculating, ///< while the values are computed
    Copying,     ///< status line and label while the text is put on the clipboard
    Canceling,   ///< after Cancel
    Copied,      ///< status line after success
    Canceled,    ///< status line after Cancel
};
QString indexExportText(IndexExportText which, bool isSwedish);

/// "Items in selection: 1,234" in the interface language, grouped as `locale` groups.
QString itemsInSelectionText(bool isSwedish, qint32 count, const QLocale &locale);

} // namespace kel
