// SPDX-License-Identifier: GPL-3.0-or-later
// `kel graph`: the description a graph window would be handed, as JSON, for
// a selection applied as Show applies it. Each KIND is one entry of a table.
#include "commands.h"
#include "options.h"
#include "cmd_graph_charts.h"
#include "graphargs.h"
#include "json.h"

#include "engine/graphs/basicgraph.h"
#include "engine/indexes/blockindex.h"
#include "engine/selection/showdecision.h"
#include "texts/messages.h"
#include "texts/graphtexts.h"

namespace kel::cli {

namespace {

int usageError(CommandOutput &output, const QString &error)
{
    output.err += QStringLiteral("kel graph: %1\n").arg(error) + usageOf(QStringLiteral("graph"));
    return UsageError;
}

void writeBasicGraph(JsonWriter &json, const BasicGraphDescription &d)
{
    json.beginObject();
    json.member("graphKind", int(d.graphKind));
    json.member("valueScale", int(d.valueScale));
    json.member("title", d.title);
    json.member("subTitle", d.subTitle);
    json.member("selectionText", d.selectionText);
    json.member("totalText", d.totalText);
    json.key("groups");
    json.beginArray();
    for (const BasicGraphGroup &g : d.groups) {
        json.beginObject();
        json.member("firstBar", int(g.firstBar));
        json.member("barCount", int(g.barCount));
        json.member("label", g.label);
        json.member("firstLegend", int(g.firstLegend));
        json.member("legendCount", int(g.legendCount));
        json.endObject();
    }
    json.endArray();
    json.key("bars");
    json.beginArray();
    for (const BasicGraphBar &b : d.bars) {
        json.beginObject();
        json.member("count", int(b.count));
        json.member("perMille", int(b.perMille));
        json.member("countText", b.countText);
        json.member("percentText", b.percentText);
        json.member("colour", int(b.colour));
        json.member("drawFlags", int(b.drawFlags));
        json.endObject();
    }
    json.endArray();
    json.key("legends");
    json.beginArray();
    for (const BasicGraphLegend &l : d.legends) {
        json.beginObject();
        json.member("text", l.text);
        json.member("colour", int(l.colour));
        json.member("drawFlags", int(l.drawFlags));
        json.endObject();
    }
    json.endArray();
    json.member("caption", d.caption);
    json.endObject();
}

// histogram / fraction: --block B | --question Q [--split S]
int basicGraphKind(const GraphInput &in, qint32 kind, MadeGraph &graph, CommandOutput &output)
{
    qint32 block = -1;
    qint32 question = -1;
    qint32 split = -1;
    bool hasBlock = false, hasQuestion = false, hasSplit = false;
    QString error;
    const QStringList &args = in.args.kindArgs;
    for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
        if (args[i] == QLatin1String("--block"))
            hasBlock = takeNumber(args, i, block, error);
        else if (args[i] == QLatin1String("--question"))
            hasQuestion = takeNumber(args, i, question, error);
        else if (args[i] == QLatin1String("--split"))
            hasSplit = takeNumber(args, i, split, error);
        else
            error = QStringLiteral("unexpected argument '%1'").arg(args[i]);
    }
    if (error.isEmpty() && hasBlock == hasQuestion)
        error = QStringLiteral("give either --block or --question");
    if (error.isEmpty() && hasSplit && !hasQuestion)
        error = QStringLiteral("--split goes with --question");
    const Document &doc = in.doc;
    const BlockCatalogue &blocks = in.shown.blocks;
    if (error.isEmpty() && hasBlock && !blocks.blockAt(block))
        error = QStringLiteral("the document has no block %1 (it has %2)").arg(block).arg(blocks.size());
    for (qint32 q : {question, split}) {
        if (error.isEmpty() && q != -1 && (q < 0 || std::size_t(q) >= doc.questions.size()))
            error = QStringLiteral("the document has no question %1 (it has %2)").arg(q).arg(doc.questions.size());
    }
    if (error.isEmpty() && hasSplit && split == question)
        error = QStringLiteral("a question cannot be split by itself");
    if (!error.isEmpty())
        return usageError(output, error);

    const ShownSelection &shown = in.shown;
    const bool differs = shown.sheet.steps.differentFromUsedTotal;
    BasicGraphRequest request;
    request.kind = kind;
    if (hasBlock) {
        request.questions = blockGraphQuestions(doc, blocks, block);
        request.name = blocks.blocks[std::size_t(block)].name;
        request.block = block;
        request.showTotalIndex = differs;
        if (request.questions.empty()) {
            output.err += blockWithoutQuestionsMessage(in.args.selection.isSwedish) + QLatin1Char('\n');
            return 1;
        }
    } else if (hasSplit) {
        request.questions = {question};
        request.splitQuestion = split;
        request.name = splitGraphName(doc, question, split);
    } else {
        request.questions = {question};
        request.name = doc.questions[std::size_t(question)].heading;
        request.showTotalIndex = differs;
    }

    BasicGraphSelection selection = graphSelectionOf(shown.sheet, shown.flex);
    selection.valueOrderReversed = in.args.reversed;
    selection.shortCategoryNames = in.args.shortNames;
    selection.locale = in.args.selection.locale;
    const BasicGraphResult result = generateBasicGraph(doc, blocks, in.shown.flex, request, selection);
    if (!result.done()) {
        if (result.refusal().code != RefusalCode::SplitNotAllowed)
            return usageError(output, QStringLiteral("the graph could not be generated"));
        output.err += splitNotAllowedMessage(in.args.selection.isSwedish) + QLatin1Char('\n');
        return Refused;
    }
    graph.basic = result.value();
    return 0;
}

int histogramKind(const GraphInput &in, MadeGraph &graph, CommandOutput &output)
{
    return basicGraphKind(in, HistogramGraph, graph, output);
}

int fractionKind(const GraphInput &in, MadeGraph &graph, CommandOutput &output)
{
    return basicGraphKind(in, FractionGraph, graph, output);
}

/// The graph kinds: adding one is one line here.
struct GraphKindEntry {
    const char *name;
    int (*run)(const GraphInput &in, MadeGraph &graph, CommandOutput &output);
};
int chartKind(const GraphInput &in, MadeGraph &graph, CommandOutput &output)
{
    ChartDescription chart;
    const int status = makeChartGraph(in.doc, in.shown, in.args.kind, in.args.kindArgs, in.args.reversed,
                                      in.args.shortNames, in.args.selection.locale, chart, output);
    if (status == 0)
        graph.chart = std::move(chart);
    return status;
}

const GraphKindEntry GraphKinds[] = {
    {"histogram", histogramKind}, {"fraction", fractionKind}, {"ranking", chartKind},
    {"distribution", chartKind},  {"total-index", chartKind}, {"block-index", chartKind},
};

} // namespace

int makeGraph(const Document &doc, const QStringList &args, MadeGraph &graph, CommandOutput &output)
{
    QString error;
    const std::optional<GraphArgs> parsed = parseGraphArgs(args, error);
    if (!parsed)
        return usageError(output, error);
    const GraphKindEntry *entry = nullptr;
    for (const GraphKindEntry &k : GraphKinds) {
        if (parsed->kind == QLatin1String(k.name))
            entry = &k;
    }
    if (!entry)
        return usageError(output, QStringLiteral("unknown graph kind '%1'").arg(parsed->kind));

    std::optional<ShownSelection> shown;
    if (const int status = showForGraph(doc, *parsed, shown, output); status != 0)
        return status;
    // The decision again, from what is shown, at the moment of output.
    if (!permits(showPermissions(doc, qint32(shown->sheet.rows.size()), shown->flex.rowCount(),
                                 shown->sheet.steps.splitNotAllowed),
                 OutputCommand::Figures)) {
        output.err +=
            showRefusalMessage(doc, Refusal{RefusalCode::TooSmall}, parsed->selection.isSwedish) + QLatin1Char('\n');
        return Refused;
    }
    return entry->run(GraphInput{doc, *parsed, *shown}, graph, output);
}

int graphCommand(const Document &base, const QStringList &args, CommandOutput &output)
{
    MadeGraph graph;
    const int status = makeGraph(base, args, graph, output);
    if (status != 0)
        return status;
    if (graph.chart) {
        writeChart(*graph.chart, output);
        return 0;
    }
    JsonWriter json;
    writeBasicGraph(json, *graph.basic);
    output.out += QString::fromStdString(json.text()) + QLatin1Char('\n');
    return 0;
}

} // namespace kel::cli
