// SPDX-License-Identifier: GPL-3.0-or-later
// Distribution graphs: how the selection spreads over one navigator
// category's alternatives, as a pie, bars, or bars grouped by a second
// category.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "engine/selection/selectionmatrix.h"

namespace kel {

enum class DistributionGraphType : qint32 { Pie = 0, Bar = 1, GroupedBar = 2 };

struct DistributionGraphRequest {
    qint32 mainCategory = 0; ///< navigator category number
    DistributionGraphType type = DistributionGraphType::Bar;
    qint32 groupByCategory = -1; ///< navigator category number, grouped bars only
    bool inPercent = false;
    bool threeD = false;
    bool horizontalBars = false;
    bool verticalLabels = false;
};

/// `selection` is the applied selection: its flags decide which group
/// alternatives become series. An invalid category gives no series.
ChartDescription generateDistributionGraph(const Document &doc, const ChartContext &context,
                                           const SelectionMatrix &selection, const DistributionGraphRequest &request);

} // namespace kel
