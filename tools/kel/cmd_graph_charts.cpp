// SPDX-License-Identifier: GPL-3.0-or-later
#include "cmd_graph_charts.h"
#include "json.h"
#include "options.h"

#include "engine/graphs/distributiongraph.h"
#include "engine/graphs/indexgraph.h"
#include "engine/graphs/rankinggraph.h"
#include "engine/indexes/blockindex.h"

namespace kel::cli {

namespace {

constexpr int ChartUsageError = 64;

/// Reads the number after args[i]; false (with `error`) when missing or bad.
bool takeNumber(const QStringList &args, qsizetype &i, qint32 low, qint32 high, qint32 &value, QString &error)
{
    const QString name = args[i];
    bool ok = false;
    if (i + 1 < args.size())
        value = args[++i].toInt(&ok);
    if (!ok || value < low || value > high) {
        error = QStringLiteral("%1 takes a number from %2 to %3").arg(name).arg(low).arg(high);
        return false;
    }
    return true;
}

} // namespace

void writeChart(const ChartDescription &chart, CommandOutput &output)
{
    JsonWriter json;
    json.beginObject();
    json.member("chartType", chart.chartType == ChartType::Pie ? "pie" : "bar");
    json.member("title", chart.title);
    json.member("caption", chart.caption);
    json.member("selectionCaption", chart.selectionCaption);
    json.member("valueAxisTitle", chart.valueAxisTitle);
    json.member("categoryAxisTitle", chart.categoryAxisTitle);
    json.member("threeD", chart.threeD);
    json.member("horizontal", chart.horizontal);
    json.member("verticalLabels", chart.verticalLabels);
    json.member("dataLabels", chart.dataLabels);
    json.key("legendPosition");
    if (chart.legendPosition)
        json.value(int(*chart.legendPosition));
    else
        json.null();
    json.key("valueAxis");
    if (chart.valueAxis) {
        json.beginObject();
        json.member("min", chart.valueAxis->min);
        json.member("max", chart.valueAxis->max);
        json.key("ticks");
        if (chart.valueAxis->ticks > 0)
            json.value(int(chart.valueAxis->ticks));
        else
            json.null();
        json.endObject();
    } else {
        json.null();
    }
    json.key("series");
    json.beginArray();
    for (const ChartSeries &s : chart.series) {
        json.beginObject();
        json.member("name", s.name);
        json.member("colour", int(s.colour));
        json.key("points");
        json.beginArray();
        for (const ChartPoint &p : s.points) {
            json.beginObject();
            json.member("label", p.label);
            json.member("value", p.value);
            json.member("dataLabel", p.dataLabel);
            json.endObject();
        }
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.key("indexLines");
    json.beginArray();
    for (const ChartIndexLine &line : chart.indexLines) {
        json.beginObject();
        json.member("value", line.value);
        json.member("text", line.text);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    output.out += QString::fromStdString(json.text()) + QLatin1Char('\n');
}

bool isChartGraphKind(const QString &kind)
{
    return kind == QLatin1String("ranking") || kind == QLatin1String("distribution")
        || kind == QLatin1String("total-index") || kind == QLatin1String("block-index");
}

int makeChartGraph(const Document &doc, const ShownSelection &shown, const QString &kind, const QStringList &args,
                   bool reversed, bool shortNames, const QLocale &locale, ChartDescription &chart,
                   CommandOutput &output)
{
    Q_UNUSED(reversed); // the value order setting belongs to the basic graphs
    ChartContext context;
    context.rows = &shown.sheet.rows;
    context.selectionText = shown.sheet.steps.selectionText;
    context.locale = locale;
    context.shortCategoryNames = shortNames;
    context.graphLegends = 6;

    const qint32 questions = qint32(doc.questions.size());
    const qint32 blocks = shown.blocks.size();
    const qint32 categories = qint32(doc.categories.size());
    QString error;
    const auto fail = [&](const QString &message) {
        output.err += QStringLiteral("kel graph %1: %2\nusage of the chart kinds:\n").arg(kind, message)
            + usageOf(QStringLiteral("graph"));
        return ChartUsageError;
    };

    if (kind == QLatin1String("ranking")) {
        RankingGraphRequest request;
        qint32 block = -1, question = -1;
        for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
            if (args[i] == QLatin1String("--block"))
                takeNumber(args, i, 0, blocks - 1, block, error);
            else if (args[i] == QLatin1String("--question"))
                takeNumber(args, i, 0, questions - 1, question, error);
            else if (args[i] == QLatin1String("--unsorted"))
                request.sorted = false;
            else
                error = QStringLiteral("unexpected argument '%1'").arg(args[i]);
        }
        if (error.isEmpty() && (block < 0) == (question < 0))
            error = QStringLiteral("give one of --block and --question");
        if (!error.isEmpty())
            return fail(error);
        if (block >= 0) {
            request.questions = blockGraphQuestions(doc, shown.blocks, block);
            request.titleText = shown.blocks.blocks[std::size_t(block)].name;
            if (request.questions.empty()) {
                output.err += QStringLiteral("The block did not contain any questions!\n");
                return Refused;
            }
        } else {
            request.questions = {question};
            request.titleText = doc.questions[std::size_t(question)].heading;
        }
        chart = generateRankingGraph(doc, context, request);
        return 0;
    }

    if (kind == QLatin1String("distribution")) {
        DistributionGraphRequest request;
        request.mainCategory = -1;
        bool pie = false;
        for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
            const QString &a = args[i];
            if (a == QLatin1String("--category"))
                takeNumber(args, i, 0, categories - 1, request.mainCategory, error);
            else if (a == QLatin1String("--group"))
                takeNumber(args, i, 0, categories - 1, request.groupByCategory, error);
            else if (a == QLatin1String("--pie"))
                pie = true;
            else if (a == QLatin1String("--percent"))
                request.inPercent = true;
            else if (a == QLatin1String("--3d"))
                request.threeD = true;
            else if (a == QLatin1String("--horizontal"))
                request.horizontalBars = true;
            else if (a == QLatin1String("--vertical-labels"))
                request.verticalLabels = true;
            else
                error = QStringLiteral("unexpected argument '%1'").arg(a);
        }
        if (error.isEmpty() && request.mainCategory < 0)
            error = QStringLiteral("--category is required");
        if (error.isEmpty() && pie && request.groupByCategory >= 0)
            error = QStringLiteral("--pie and --group exclude each other");
        if (error.isEmpty() && request.groupByCategory == request.mainCategory)
            error = QStringLiteral("--group must name another category");
        if (!error.isEmpty())
            return fail(error);
        request.type = pie                 ? DistributionGraphType::Pie
            : request.groupByCategory >= 0 ? DistributionGraphType::GroupedBar
                                           : DistributionGraphType::Bar;
        chart = generateDistributionGraph(doc, context, shown.sheet.selection, request);
        return 0;
    }

    if (kind == QLatin1String("total-index") || kind == QLatin1String("block-index")) {
        const bool total = kind == QLatin1String("total-index");
        IndexGraphRequest request;
        request.includeMainIndex = false;
        bool blocksWanted = false, questionsWanted = false;
        for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
            const QString &a = args[i];
            if (a == QLatin1String("--main"))
                request.includeMainIndex = true;
            else if (total && a == QLatin1String("--blocks"))
                blocksWanted = true;
            else if (a == QLatin1String("--questions"))
                questionsWanted = true;
            else if (!total && a == QLatin1String("--block"))
                takeNumber(args, i, 0, blocks - 1, request.block, error);
            else if (a == QLatin1String("--split"))
                takeNumber(args, i, 0, questions - 1, request.splitQuestion, error);
            else if (a == QLatin1String("--empty-splits"))
                request.includeEmptySplits = true;
            else if (a == QLatin1String("--lines"))
                takeNumber(args, i, 0, total ? 3 : 15, request.indexLines, error);
            else if (a == QLatin1String("--explain"))
                request.indexLinesShowExplanation = true;
            else if (a == QLatin1String("--horizontal"))
                request.horizontalBars = true;
            else if (a == QLatin1String("--no-vertical-labels"))
                request.verticalLabels = false;
            else if (a == QLatin1String("--no-data-labels"))
                request.dataLabels = false;
            else
                error = QStringLiteral("unexpected argument '%1'").arg(a);
        }
        if (error.isEmpty() && blocksWanted && questionsWanted)
            error = QStringLiteral("--blocks and --questions exclude each other");
        if (error.isEmpty() && !total && request.block < 0)
            error = QStringLiteral("--block is required");
        if (error.isEmpty() && !request.includeMainIndex && !blocksWanted && !questionsWanted)
            error = QStringLiteral("choose at least one of the indexes to show");
        if (error.isEmpty() && doc.properties.pointsScale < 1)
            error = QStringLiteral("the document has no indexes");
        if (!error.isEmpty())
            return fail(error);
        if (request.splitQuestion >= 0 && !splitAllowed(doc, shown.sheet.steps, request.splitQuestion)) {
            output.err += QStringLiteral("Splitting by question %1 is not allowed for this selection.\n")
                              .arg(request.splitQuestion);
            return Refused;
        }
        // The dialogs keep the empty-splits box only with a split chosen.
        if (request.splitQuestion < 0)
            request.includeEmptySplits = false;
        request.includeSubIndexes = total ? (blocksWanted || questionsWanted) : questionsWanted;
        request.useQuestionsInsteadOfBlocks = total && questionsWanted;
        request.title = total
            ? totalIndexGraphTitle(doc, request.includeMainIndex, blocksWanted, questionsWanted, request.splitQuestion)
            : blockIndexGraphTitle(doc, shown.blocks, request.block, request.includeMainIndex, questionsWanted,
                                   request.splitQuestion);
        chart = generateIndexGraph(doc, shown.blocks, shown.flex, context, request);
        return 0;
    }
    return fail(QStringLiteral("unknown kind '%1'").arg(kind));
}

} // namespace kel::cli
