// SPDX-License-Identifier: GPL-3.0-or-later
// `kel select`: ticks a selection as the navigator would, presses Show and
// writes what the navigator and the overview would hold, as one JSON object.
#include "commands.h"
#include "options.h"
#include "json.h"
#include "selectionargs.h"

#include "engine/selection/showdecision.h"

#include <algorithm>

namespace kel::cli {

namespace {

template<typename Container>
void writeArray(JsonWriter &json, const char *name, const Container &values)
{
    json.key(name);
    json.beginArray();
    for (const auto &v : values) {
        if constexpr (std::is_same_v<std::decay_t<decltype(v)>, bool>)
            json.value(bool(v));
        else
            json.value(int(v));
    }
    json.endArray();
}

} // namespace

int selectCommand(const Document &doc, const QStringList &args, CommandOutput &output)
{
    SelectionArgs options;
    qint32 maxRows = 300;
    QString error;
    for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
        if (takeSelectionOption(args, i, options, error))
            continue;
        if (args[i] == QLatin1String("--max-rows") && i + 1 < args.size()) {
            bool ok = false;
            maxRows = args[++i].toInt(&ok);
            if (!ok || maxRows < 0)
                error = QStringLiteral("--max-rows takes a non-negative number, not '%1'").arg(args[i]);
        } else {
            error = QStringLiteral("unexpected argument '%1'").arg(args[i]);
        }
    }
    if (!error.isEmpty()) {
        output.err += (QStringLiteral("kel select: %1\n").arg(error) + usageOf(QStringLiteral("select")));
        return UsageError;
    }

    std::optional<ShownSelection> shown = showFromArgs(doc, options, error);
    if (!shown) {
        output.err += (QStringLiteral("kel select: %1\n").arg(error));
        return UsageError;
    }
    if (shown->refusal) {
        // Only what the viewer's message box would say: no counts, rows or
        // cells of a selection the viewer does not show.
        JsonWriter json;
        json.beginObject();
        json.member("outcome", shown->refusal->outcome);
        json.member("message", shown->refusal->message);
        json.endObject();
        output.out += QString::fromStdString(json.text()) + QLatin1Char('\n');
        output.err += QStringLiteral("kel select: %1\n").arg(shown->refusal->message);
        return Refused;
    }
    const SubSheet &sheet = shown->sheet;
    const qint32 categories = qint32(doc.categories.size());

    JsonWriter json;
    json.beginObject();
    json.member("count", int(shown->recount.count));
    json.key("found");
    json.beginArray();
    for (qint32 c = 0; c < categories; ++c) {
        json.beginArray();
        for (qint32 o = 0; o < doc.maxCategoryAlternatives; ++o)
            json.value(int(shown->recount.found.at(c, o)));
        json.endArray();
    }
    json.endArray();
    writeArray(json, "shaded", shown->recount.shaded);
    writeArray(json, "blocked", shown->recount.blocked);
    json.member("showEnabled", shown->recount.showEnabled);
    json.member("outcome", "ok");
    json.member("message", QString());
    json.member("selectionText", sheet.steps.selectionText);
    json.member("differentFromUsedTotal", sheet.steps.differentFromUsedTotal);
    writeArray(json, "splitNotAllowed", sheet.steps.splitNotAllowed);
    json.member("dataRowsAllowed", sheet.dataRowsAllowed);
    // Row numbers name respondents: listed only where the viewer shows the
    // rows, and where the document forces a random order, without the order
    // (nor the cells that would give it away).
    const ShowPermissions permissions =
        showPermissions(doc, qint32(sheet.rows.size()), shown->flex.rowCount(), sheet.steps.splitNotAllowed);
    const bool rowsShown = permits(permissions, OutputCommand::OverviewRows);
    const bool orderHidden = rowsShown && documentForcesRandomOrder(doc.properties, qint32(sheet.rows.size()));
    json.member("rowsShown", rowsShown);
    json.member("rowOrderHidden", orderHidden);
    RowList rows;
    if (rowsShown)
        rows = sheet.rows;
    if (orderHidden)
        std::sort(rows.begin(), rows.end());
    writeArray(json, "rows", rows);
    std::vector<qint32> offsets = orderHidden ? std::vector<qint32>() : sheet.columnRowOffsets;
    offsets.resize(doc.questions.size(), 0);
    writeArray(json, "columnRowOffsets", offsets);
    const bool flexRowsShown = permits(permissions, OutputCommand::FlexRows);
    json.member("flexRowsShown", flexRowsShown);
    writeArray(json, "flexRows", flexRowsShown ? shown->flex.rows() : RowList());
    json.member("flexText", shown->flex.text());
    json.member("flexTotalIndex", shown->flex.totalIndex());
    json.member("totalIndex", sheet.totalIndex);
    json.key("cells");
    json.beginArray();
    const qint32 lines = rowsShown && !orderHidden ? qMin(qint32(sheet.rows.size()), maxRows) : 0;
    for (qint32 k = 0; k < lines; ++k) {
        json.beginArray();
        for (qint32 q : doc.overviewColumns)
            json.value(int(sheet.rowInCell(k, q)));
        json.endArray();
    }
    json.endArray();
    json.endObject();
    output.out += QString::fromStdString(json.text());
    output.out += QLatin1Char('\n');
    return 0;
}

} // namespace kel::cli
