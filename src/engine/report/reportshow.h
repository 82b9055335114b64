// SPDX-License-Identifier: GPL-3.0-or-later
// The one place a report asks whether a unit may be shown. It runs the
// navigator's Show for the unit's ticks, with every gate the viewer applies,
// and keeps the decision's permissions with the shown sheet.
#pragma once

#include "engine/document/document.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmodel.h"

namespace kel {

/// Why a unit is not shown. The words come from the texts layer.
enum class ReportRefusal {
    None,
    Blocked,          ///< a restricted category holds a too small complement group
    FlexTotalBlocked, ///< the flex total leaves a too small group out
    NoAnswers,        ///< nobody is selected
    TooSmall,         ///< fewer respondents than the document's minimum
};

struct ReportShown {
    ReportRefusal refusal = ReportRefusal::None;
    SubSheet sheet; ///< empty (no rows) when refused
    FlexTotal flex;
};

/// Presses Show for `model`'s ticks on `doc` with the blocks of `catalogue`,
/// starting from the flex total `flex`. The rows come in the
/// order the document asks for; random orders use `seed`, so the same
/// recipe gives the same report.
ReportShown showForReport(const Document &doc, const BlockCatalogue &catalogue, SelectionModel model, FlexTotal flex,
                          quint64 seed);

} // namespace kel
