// SPDX-License-Identifier: GPL-3.0-or-later
// The texts around a chart's plot that Qt Charts lays out poorly when they
// are many or long: the category labels (upright, turned or thinned, drawn
// by the chart itself), the bars' tooltips that name their category in full,
// and a legend above or below that shrinks before it shortens names.
#pragma once

#include "engine/graphs/chartdescription.h"

#include <QStringList>

QT_BEGIN_NAMESPACE
class QAbstractBarSeries;
class QBarCategoryAxis;
class QChart;
QT_END_NAMESPACE

namespace kel {

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

/// Draws `labels` along `axis` by the rule of `categoryLabels`, anew
/// whenever the plot area changes. `labels` run along the axis from its
/// origin (bottom-up beside lying bars, whose first item is on top: their
/// step counts from the top).
void drawCategoryLabels(QChart *chart, QBarCategoryAxis *axis, QAbstractBarSeries *bars, const QStringList &labels,
                        bool standing, bool turnedAsked);

/// Tooltips naming each bar's category in full, with its group and value.
/// `reversedCount` > 0: the bars run in reverse of the description's points.
void showCategoryTips(QAbstractBarSeries *bars, const ChartDescription &d, const QStringList &categories,
                      qsizetype reversedCount);

/// A legend above or below the chart takes a smaller size before its names
/// are shortened.
void fitLegend(QChart *chart);

} // namespace kel
