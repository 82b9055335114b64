// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/indexgraph.h"

#include "engine/indexes/blockindex.h"
#include "engine/selection/counting.h"

namespace kel {

namespace {

enum class ItemKind { Total, Block, Question };

struct Item {
    ItemKind kind;
    qint32 number; // block or question
    QString label;
};

struct Group {
    RowList rows;
    QString label;
};

bool validBlock(const Document &doc, qint32 block)
{
    return block >= 0 && std::size_t(block) < doc.blocks.size();
}

bool validQuestion(const Document &doc, qint32 question)
{
    return question >= 0 && std::size_t(question) < doc.questions.size();
}

std::vector<Item> indexItems(const Document &doc, const IndexGraphRequest &request)
{
    std::vector<Item> items;
    const DocumentProperties &p = doc.properties;
    if (request.block < 0) {
        if (request.includeMainIndex)
            items.push_back({ItemKind::Total, -1, doc.text(p.indexLineTexts[4])});
        if (request.includeSubIndexes && request.useQuestionsInsteadOfBlocks) {
            for (qint32 q : doc.overviewColumns)
                if (doc.questions[std::size_t(q)].flexTotalIndex != -1.0)
                    items.push_back({ItemKind::Question, q, doc.questions[std::size_t(q)].heading});
        } else if (request.includeSubIndexes) {
            for (std::size_t b = 0; b < doc.blocks.size(); ++b)
                if (doc.blocks[b].flexTotalIndex != -1.0)
                    items.push_back({ItemKind::Block, qint32(b), doc.blocks[b].name});
        }
        return items;
    }
    if (!validBlock(doc, request.block))
        return items;
    if (request.includeMainIndex)
        items.push_back({ItemKind::Block, request.block, doc.text(p.indexLineTexts[3])});
    if (request.includeSubIndexes) {
        for (qint32 q : blockMembers(doc, request.block))
            if (validQuestion(doc, q) && doc.questions[std::size_t(q)].flexTotalIndex != -1.0)
                items.push_back({ItemKind::Question, q, doc.questions[std::size_t(q)].heading});
    }
    return items;
}

std::vector<Group> indexGroups(const Document &doc, const ChartContext &context, const IndexGraphRequest &request)
{
    const RowList &rows = *context.rows;
    if (!validQuestion(doc, request.splitQuestion))
        return {Group{rows, QString()}};

    const Question &split = doc.questions[std::size_t(request.splitQuestion)];
    const qint32 first = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
    const qint32 n = split.alternativeCount;
    std::vector<Group> groups(std::size_t(qMax(n, 0)));
    for (qint32 r : rows) {
        const qint32 a = doc.getData(r, request.splitQuestion);
        if (a >= first && a < n)
            groups[std::size_t(a)].rows.push_back(r);
    }
    std::vector<Group> kept;
    for (qint32 a = first; a < n; ++a) {
        Group &g = groups[std::size_t(a)];
        if (g.rows.empty() && !request.includeEmptySplits)
            continue;
        const Alternative &alt = doc.alternatives[std::size_t(split.firstAlternative + a)];
        g.label = chartAlternativeName(alt, context.shortCategoryNames) + QStringLiteral(" [")
            + chartWholeNumber(qint64(g.rows.size()), context.locale) + QLatin1Char(']');
        kept.push_back(std::move(g));
    }
    return kept;
}

double itemIndex(const Document &doc, const Item &item, const RowList &rows)
{
    if (rows.empty())
        return -1.0;
    switch (item.kind) {
    case ItemKind::Total: return calculateTotalIndex(doc, rows);
    case ItemKind::Block: return calculateBlockIndex(doc, item.number, rows);
    case ItemKind::Question: return calculateColumnsIndex(doc, {item.number}, rows);
    }
    return -1.0;
}

std::vector<ChartIndexLine> indexLines(const Document &doc, const ChartContext &context,
                                       const IndexGraphRequest &request)
{
    const DocumentProperties &p = doc.properties;
    const bool blockGraph = validBlock(doc, request.block);
    const QString totalText = doc.text(p.indexLineTexts[4]);
    const QString blockText = doc.text(p.indexLineTexts[3]);
    const auto format = [&](double v) { return formatIndex(v, p.indexDecimals, context.locale); };

    std::vector<ChartIndexLine> lines;
    const auto add = [&](double value, const QString &text, bool ofTotal) {
        if (value == -1.0 || lines.size() >= 2)
            return;
        lines.push_back({value, text + (ofTotal ? QStringLiteral(", total (") : QStringLiteral(" (")) + format(value)
                                    + QLatin1Char(')')});
    };
    if (request.indexLines & TotalIndexForTotal)
        add(p.flexTotalIndex, totalText, true);
    if (request.indexLines & TotalIndexForSelection)
        add(context.rows->empty() ? -1.0 : calculateTotalIndex(doc, *context.rows), totalText, false);
    if (blockGraph && (request.indexLines & BlockIndexForTotal))
        add(doc.blocks[std::size_t(request.block)].flexTotalIndex, blockText, true);
    if (blockGraph && (request.indexLines & BlockIndexForSelection))
        add(context.rows->empty() ? -1.0 : calculateBlockIndex(doc, request.block, *context.rows), blockText,
            false);
    if (lines.size() == 2 && lines[1].value > lines[0].value)
        std::swap(lines[0], lines[1]);
    return lines;
}

QString splitSuffix(const Document &doc, qint32 splitQuestion)
{
    if (!validQuestion(doc, splitQuestion))
        return QString();
    return pickDocumentText(doc, " split by ", " fördelat på ") + doc.questions[std::size_t(splitQuestion)].heading;
}

} // namespace

bool splitAllowed(const Document &doc, const SelectionSteps &steps, qint32 question)
{
    for (std::size_t c = 0; c < doc.categories.size(); ++c)
        if (doc.categories[c] == question)
            return c >= steps.splitNotAllowed.size() || !steps.splitNotAllowed[c];
    return false;
}

std::optional<ChartValueAxis> indexValueAxis(qint32 maxPoints, qint32 pointsScale)
{
    if (maxPoints < 10 || pointsScale < 1)
        return std::nullopt;
    const QString digits = QString::number(maxPoints);
    qint32 d = digits.at(0).digitValue();
    bool restZero = true;
    for (qsizetype i = 1; i < digits.size(); ++i)
        restZero = restZero && digits.at(i) == QLatin1Char('0');
    if (!restZero)
        ++d;
    double power = 1;
    for (qsizetype i = 1; i < digits.size(); ++i)
        power *= 10;
    ChartValueAxis axis;
    axis.max = d * power / pointsScale;
    switch (d) {
    case 1: case 2: case 5: axis.ticks = 5; break;
    case 3: case 6: case 9: axis.ticks = 6; break;
    case 4: case 8: axis.ticks = 4; break;
    case 7: axis.ticks = 7; break;
    default: axis.ticks = 0; break; // 10: the chart's own count
    }
    return axis;
}

QString totalIndexGraphTitle(const Document &doc, bool totalIndex, bool blockIndexes, bool questionIndexes,
                             qint32 splitQuestion)
{
    QString title;
    if (totalIndex) {
        title = pickDocumentText(doc, "Total index", "Totalindex");
        if (blockIndexes)
            title += pickDocumentText(doc, " and all block indexes", " och alla blockindex");
        else if (questionIndexes)
            title += pickDocumentText(doc, " and all question indexes", " och alla frågeindex");
    } else if (blockIndexes) {
        title = pickDocumentText(doc, "All block indexes", "Alla blockindex");
    } else if (questionIndexes) {
        title = pickDocumentText(doc, "All question indexes", "Alla frågeindex");
    }
    return title + splitSuffix(doc, splitQuestion);
}

QString blockIndexGraphTitle(const Document &doc, qint32 block, bool blockIndex, bool questionIndexes,
                             qint32 splitQuestion)
{
    const QString name = validBlock(doc, block) ? doc.blocks[std::size_t(block)].name : QString();
    QString title;
    if (blockIndex) {
        title = name;
        if (questionIndexes)
            title += pickDocumentText(doc, " and it's question indexes", " och underliggande frågeindex");
    } else {
        title = pickDocumentText(doc, "Question indexes for ", "Underliggande frågeindex för ") + name;
    }
    return title + splitSuffix(doc, splitQuestion);
}

ChartDescription generateIndexGraph(const Document &doc, const ChartContext &context,
                                    const IndexGraphRequest &request)
{
    const DocumentProperties &p = doc.properties;
    ChartDescription chart;
    chart.chartType = ChartType::Bar;
    chart.title = shortenChartTitle(request.title);
    chart.caption = chart.title;
    chart.selectionCaption =
        chartSelectionCaption(context.selectionText, qint32(context.rows->size()), context.locale);
    chart.horizontal = request.horizontalBars;
    chart.verticalLabels = request.verticalLabels && !request.horizontalBars;
    chart.dataLabels = request.dataLabels;
    chart.valueAxisTitle = doc.text(p.indexName);
    chart.categoryAxisTitle = chart.selectionCaption;
    if (chart.horizontal)
        std::swap(chart.valueAxisTitle, chart.categoryAxisTitle);
    chart.valueAxis = indexValueAxis(p.maxPoints, p.pointsScale);
    if (p.pointsScale < 1)
        return chart;

    const std::vector<Item> items = indexItems(doc, request);
    const std::vector<Group> groups = indexGroups(doc, context, request);
    if (groups.size() > 1)
        chart.legendPosition = chartLegendPosition(context.graphLegends);

    const auto point = [&](const QString &label, double value) {
        ChartPoint pt;
        pt.label = label;
        pt.value = value == -1.0 ? 0.0 : value;
        if (request.dataLabels && value != -1.0)
            pt.dataLabel = formatIndex(value, p.indexDecimals, context.locale);
        return pt;
    };

    if (items.size() == 1 && groups.size() > 1) {
        // One item split into groups: the groups are the bars.
        ChartSeries series;
        series.name = items.front().label;
        for (const Group &g : groups)
            series.points.push_back(point(g.label, itemIndex(doc, items.front(), g.rows)));
        chart.series.push_back(std::move(series));
    } else {
        for (const Group &g : groups) {
            ChartSeries series;
            series.name = groups.size() > 1 ? g.label : chart.selectionCaption;
            for (const Item &item : items)
                series.points.push_back(point(item.label, itemIndex(doc, item, g.rows)));
            chart.series.push_back(std::move(series));
        }
    }
    chart.indexLines = indexLines(doc, context, request);
    if (!request.indexLinesShowExplanation)
        for (ChartIndexLine &line : chart.indexLines)
            line.text.clear();
    return chart;
}

} // namespace kel
