// SPDX-License-Identifier: GPL-3.0-or-later
// Turns a chart description into a Qt Charts chart, without a window, so that
// the chart window, pictures and tests all draw the same chart.
//
// Legend codes ("Graph Legends"): 0 right of the chart, 2 left, 4 above,
// 6 below; any other code (and -1, which the generators already read as 6)
// puts it below, where the program's default has it.
//
// The "3D" look: Qt Charts draws flat. Bars get a light-to-dark gradient
// across their width and a darker edge, so they read as rounded columns;
// pie slices get a radial gradient darkening towards the rim, a darker edge
// and a small lift of every slice. The difference is plain to see while the
// values stay where the flat chart has them.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "gui/graphs/chartlabels.h"

#include <QColor>
#include <Qt>

QT_BEGIN_NAMESPACE
class QChart;
QT_END_NAMESPACE

namespace kel {

/// The Qt alignment of a "Graph Legends" code.
Qt::Alignment legendAlignment(qint32 code);

/// Data labels, index-line texts and a pie's selection caption are text
/// items of the chart that follow its plot area; their item data under this
/// key says which: "dataLabel", "indexLineText" or "selectionCaption".
inline constexpr int ChartTextRole = 0;

/// A new chart showing `chart`; the caller owns it (a QChartView takes it over).
/// Category labels follow `categoryLabels` for the size the chart is laid
/// out at, and are shortened with "…" beyond a third of the chart; every
/// bar names its category in full in a tooltip.
QChart *buildChart(const ChartDescription &chart);

} // namespace kel
