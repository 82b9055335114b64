// SPDX-License-Identifier: GPL-3.0-or-later
// The chart kinds of `kel graph` (ranking, distribution, total-index,
// block-index): the chart description a chart window would be handed, as JSON.
#pragma once

#include "commands.h"
#include "selectionargs.h"

#include <QLocale>

namespace kel::cli {

/// True for the kinds chartGraphKind draws.
bool isChartGraphKind(const QString &kind);

/// Prints the chart of `kind` with `kindArgs` for the selection in `shown`
/// (already accepted by Show). Returns 0, or 64 with a message on a kind
/// argument that makes no sense. `reversed` has no effect on charts.
int chartGraphKind(const Document &doc, const ShownSelection &shown, const QString &kind,
                   const QStringList &kindArgs, bool reversed, bool shortNames, const QLocale &locale,
                   CommandOutput &output);

} // namespace kel::cli
