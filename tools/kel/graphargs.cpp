// SPDX-License-Identifier: GPL-3.0-or-later
#include "graphargs.h"

#include "texts/graphtexts.h"

namespace kel::cli {

std::optional<GraphArgs> parseGraphArgs(const QStringList &args, QString &error)
{
    GraphArgs out;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        if (a == QLatin1String("--reversed")) {
            out.reversed = true;
        } else if (a == QLatin1String("--short-names")) {
            out.shortNames = true;
        } else if (a.startsWith(QLatin1String("--"))) {
            if (!takeSelectionOption(args, i, out.selection, error)) {
                error = QStringLiteral("unknown option '%1'").arg(a);
                return std::nullopt;
            }
            if (!error.isEmpty())
                return std::nullopt;
        } else {
            // The first word is KIND; the rest belongs to it.
            out.kind = a;
            out.kindArgs = args.mid(i + 1);
            return out;
        }
    }
    error = QStringLiteral("no graph KIND given");
    return std::nullopt;
}

int showForGraph(const Document &doc, const GraphArgs &args, std::optional<ShownSelection> &shown,
                 CommandOutput &output)
{
    QString error;
    shown = showFromArgs(doc, args.selection, error);
    if (!shown) {
        output.err += QStringLiteral("kel graph: %1\n").arg(error);
        return UsageError;
    }
    if (shown->refusal) {
        output.err += shown->refusal->message + QLatin1Char('\n');
        return Refused;
    }
    return 0;
}

bool takeNumber(const QStringList &args, qsizetype &i, qint32 &value, QString &error)
{
    const QString option = args[i];
    if (i + 1 >= args.size()) {
        error = QStringLiteral("%1 needs a number").arg(option);
        return false;
    }
    bool ok = false;
    value = args[++i].toInt(&ok);
    if (!ok)
        error = QStringLiteral("%1 takes a number, not '%2'").arg(option, args[i]);
    return ok;
}

} // namespace kel::cli
