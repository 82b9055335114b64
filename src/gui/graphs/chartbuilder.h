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

/// How a bar chart's category axis shows its labels.
struct CategoryLabels {
    bool turned = false; ///< read bottom-up, a quarter turn from upright
    int step = 1;        ///< every step-th label is shown, from the first
    friend bool operator==(const CategoryLabels &, const CategoryLabels &) = default;
};

/// Room an upright label keeps from its neighbours, and a turned or stacked
/// line from the next, in pixels.
inline constexpr qreal CategoryLabelGap = 6, CategoryLineGap = 2;

/// The labels of `count` categories along `extent` pixels of plot. Under
/// standing bars a label stays upright while the widest (`widest` pixels
/// and the gap) fits its category's share of the axis, and is turned when
/// asked (`turnedAsked`) or when it does not; beside lying bars labels stay
/// upright. A turned or stacked label needs a line (`lineHeight`) and its
/// gap across the axis: where that is more than a category's share, only
/// every step-th label is shown, the smallest step that gives each its room.
CategoryLabels categoryLabels(qsizetype count, qreal extent, qreal widest, qreal lineHeight, bool standingBars,
                              bool turnedAsked);

/// A new chart showing `chart`; the caller owns it (a QChartView takes it over).
/// Category labels follow `categoryLabels` for the size the chart is laid
/// out at, and are shortened with "…" beyond a third of the chart; every
/// bar names its category in full in a tooltip.
QChart *buildChart(const ChartDescription &chart);

} // namespace kel
