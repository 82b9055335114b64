// SPDX-License-Identifier: GPL-3.0-or-later
// `kel graph`: the description a graph window would be handed, for a
// selection shown as the navigator would show it.
#include "cmd_graph_charts.h"
#include "commands.h"
#include "selectionargs.h"

namespace kel::cli {

namespace {

const char GraphUsage[] = "usage: kel graph FILE [--select SPEC] [--flex OPTS] [--flex-current] [--reversed] "
                          "[--short-names] [--locale NAME] KIND [KIND OPTIONS]\n";

} // namespace

int graphCommand(const Document &base, const QStringList &args, CommandOutput &output)
{
    SelectionArgs selection;
    bool reversed = false, shortNames = false;
    QString error, kind;
    qsizetype i = 0;
    for (; i < args.size() && error.isEmpty() && kind.isEmpty(); ++i) {
        // The first word that is no option names the kind; the rest is its own.
        if (!args[i].startsWith(QLatin1String("--"))) {
            kind = args[i];
            continue;
        }
        if (takeSelectionOption(args, i, selection, error))
            continue;
        if (args[i] == QLatin1String("--reversed"))
            reversed = true;
        else if (args[i] == QLatin1String("--short-names"))
            shortNames = true;
        else
            error = QStringLiteral("unexpected argument '%1'").arg(args[i]);
    }
    if (error.isEmpty() && !isChartGraphKind(kind))
        error = kind.isEmpty() ? QStringLiteral("no graph kind given") : QStringLiteral("unknown kind '%1'").arg(kind);
    if (!error.isEmpty()) {
        output.err += QStringLiteral("kel graph: %1\n").arg(error) + QLatin1String(GraphUsage);
        return 64;
    }

    Document doc = base;
    std::optional<ShownSelection> shown = showFromArgs(doc, selection, error);
    if (!shown) {
        output.err += QStringLiteral("kel graph: %1\n").arg(error);
        return 64;
    }
    if (shown->sheet.outcome != SubSheetOutcome::Ok) {
        output.err += shown->sheet.message + QLatin1Char('\n');
        return 7;
    }
    return chartGraphKind(doc, *shown, kind, args.mid(i), reversed, shortNames, selection.locale, output);
}

} // namespace kel::cli
