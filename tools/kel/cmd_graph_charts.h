// SPDX-License-Identifier: GPL-3.0-or-later
// The chart kinds of `kel graph` (ranking, distribution, total-index,
// block-index): the chart description a chart window would be handed.
#pragma once

#include "commands.h"
#include "selectionargs.h"

#include "engine/graphs/chartdescription.h"

#include <QLocale>

namespace kel::cli {

/// True for the kinds makeChartGraph makes.
bool isChartGraphKind(const QString &kind);

/// Prints `chart` as the JSON of `kel graph`.
void writeChart(const ChartDescription &chart, CommandOutput &output);
/// The chart of `kind` with `kindArgs` for the selection in `shown`
/// (already accepted by Show), as a chart window would be handed it.
/// Returns 0, or the exit status (64 on a kind argument that makes no
/// sense, 7 on a refusal) with the message in `output.err`. `reversed` has
/// no effect on charts.
int makeChartGraph(const Document &doc, const ShownSelection &shown, const QString &kind, const QStringList &kindArgs,
                   bool reversed, bool shortNames, const QLocale &locale, ChartDescription &chart,
                   CommandOutput &output);

} // namespace kel::cli
