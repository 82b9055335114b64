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

struct ReportShown {
    /// Shown, or why the unit is not (the words come from the texts layer).
    Outcome<> outcome;
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
