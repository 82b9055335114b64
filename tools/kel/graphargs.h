// SPDX-License-Identifier: GPL-3.0-or-later
// What every `kel graph` kind shares: the selection options (as `kel
// select` takes them), the two graph settings, and the Show that every graph
// is computed after. Each kind parses only its own options.
#pragma once

#include "commands.h"
#include "selectionargs.h"

#include "engine/graphs/basicgraph.h"
#include "engine/graphs/chartdescription.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace kel::cli {

struct GraphArgs {
    SelectionArgs selection;
    bool reversed = false;   ///< "Graph Value Order Reversed"
    bool shortNames = false; ///< "Graph By Category Use Short Category Names"
    QString kind;
    QStringList kindArgs; ///< everything after KIND
};

/// Splits the command line at KIND: the common options before it, the kind's
/// own after it. Returns nothing and sets `error` when KIND is missing or an
/// option before it is unknown.
std::optional<GraphArgs> parseGraphArgs(const QStringList &args, QString &error);

/// The selection after Show, for a graph kind to compute from.
struct GraphInput {
    const Document &doc;
    const GraphArgs &args;
    const ShownSelection &shown;
};

/// Runs Show for the common options. A refusal is written to `output.err`
/// and returns Refused; a bad option returns UsageError; on
/// success returns 0 and fills `shown`.
int showForGraph(const Document &doc, const GraphArgs &args, std::optional<ShownSelection> &shown,
                 CommandOutput &output);

/// A graph as its window would be handed it: one of the two.
struct MadeGraph {
    std::optional<BasicGraphDescription> basic; ///< histogram, fraction
    std::optional<ChartDescription> chart;      ///< ranking, distribution, index graphs
};

/// `kel graph`'s command line (FILE taken off) turned into its graph: Show
/// on the selection options, then KIND with its options. 0 and `graph`
/// filled, or the exit status (Refused, UsageError) with the message in
/// `output.err`.
int makeGraph(const Document &doc, const QStringList &args, MadeGraph &graph, CommandOutput &output);

/// Reads a number option's value at args[i + 1]; false (and `error`) when
/// it is missing or not a number.
bool takeNumber(const QStringList &args, qsizetype &i, qint32 &value, QString &error);

} // namespace kel::cli
