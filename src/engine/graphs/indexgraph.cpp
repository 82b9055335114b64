// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/indexgraph.h"

#include "engine/indexes/blockindex.h"
#include "engine/selection/counting.h"

#include <algorithm>

namespace kel {

namespace {

enum class ItemKind { Total, Block, Question };

struct Item {
    ItemKind kind;
    qint32 number; // block or question
    QString label;
};

struct Group {
    qint64 rows = 0;
    QString label;
};

bool validBlock(const BlockCatalogue &catalogue, qint32 block)
{
    return catalogue.blockAt(block) != nullptr;
}

bool validQuestion(const Document &doc, qint32 question)
{
    return question >= 0 && std::size_t(question) < doc.questions.size();
}

std::vector<Item> indexItems(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                             const IndexGraphRequest &request)
{
    std::vector<Item> items;
    const DocumentProperties &p = doc.properties;
    if (request.block < 0) {
        if (request.includeMainIndex)
            items.push_back({ItemKind::Total, -1, doc.text(p.indexLineTexts[4])});
        if (request.includeSubIndexes && request.useQuestionsInsteadOfBlocks) {
            for (qint32 q : doc.overviewColumns)
                if (flex.questionIndex(q) != -1.0)
                    items.push_back({ItemKind::Question, q, doc.questions[std::size_t(q)].heading});
        } else if (request.includeSubIndexes) {
            for (qint32 b = 0; b < catalogue.size(); ++b)
                if (flex.blockIndex(b) != -1.0)
                    items.push_back({ItemKind::Block, b, catalogue.blocks[std::size_t(b)].name});
        }
        return items;
    }
    if (!validBlock(catalogue, request.block))
        return items;
    if (request.includeMainIndex)
        items.push_back({ItemKind::Block, request.block, doc.text(p.indexLineTexts[3])});
    if (request.includeSubIndexes) {
        for (qint32 q : blockGraphQuestions(doc, catalogue, request.block))
            if (validQuestion(doc, q) && flex.questionIndex(q) != -1.0)
                items.push_back({ItemKind::Question, q, doc.questions[std::size_t(q)].heading});
    }
    return items;
}

/// The selection's rows divided into groups, each row's group beside it
/// (-1: in no group).
struct Grouping {
    std::vector<Group> groups;
    std::vector<qint32> groupOfRow; // parallel to the context's rows
};

Grouping indexGroups(const Document &doc, const ChartContext &context, const IndexGraphRequest &request)
{
    const RowList &rows = *context.rows;
    Grouping out;
    if (!validQuestion(doc, request.splitQuestion)) {
        out.groups.push_back({qint64(rows.size()), QString()});
        out.groupOfRow.assign(rows.size(), 0);
        return out;
    }

    const Question &split = doc.questions[std::size_t(request.splitQuestion)];
    const qint32 first = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
    const qint32 n = qMax(split.alternativeCount, 0);
    std::vector<qint64> counts(std::size_t(n), 0);
    out.groupOfRow.resize(rows.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        const qint32 a = doc.getData(rows[k], request.splitQuestion);
        const bool inGroup = a >= first && a < n;
        out.groupOfRow[k] = inGroup ? a : -1;
        if (inGroup)
            ++counts[std::size_t(a)];
    }
    // Renumber the groups that are kept.
    std::vector<qint32> renumbered(std::size_t(n), -1);
    for (qint32 a = first; a < n; ++a) {
        const qint64 count = counts[std::size_t(a)];
        if (count == 0 && !request.includeEmptySplits)
            continue;
        const Alternative &alt = doc.alternatives[std::size_t(split.firstAlternative + a)];
        renumbered[std::size_t(a)] = qint32(out.groups.size());
        out.groups.push_back({count,
                              chartAlternativeName(alt, context.shortCategoryNames) + QStringLiteral(" [")
                                  + chartWholeNumber(count, context.locale) + QLatin1Char(']')});
    }
    for (qint32 &g : out.groupOfRow)
        if (g >= 0)
            g = renumbered[std::size_t(g)];
    return out;
}

/// Points and answers with points, per group and question, summed in one
/// walk over each needed column, so that a graph of many questions and
/// groups reads every cell once.
class GroupSums
{
public:
    GroupSums(const Document &doc, const RowList &rows, const Grouping &grouping, const std::vector<bool> &needed)
        : mQuestions(qint32(needed.size())), mSums(grouping.groups.size() * needed.size(), 0),
          mCounts(grouping.groups.size() * needed.size(), 0)
    {
        for (qint32 q = 0; q < mQuestions; ++q) {
            if (!needed[std::size_t(q)])
                continue;
            const Alternative *alts = doc.alternatives.data() + doc.questions[std::size_t(q)].firstAlternative;
            doc.answers.visitColumn(q, [&](const auto *column) {
                for (std::size_t k = 0; k < rows.size(); ++k) {
                    const qint32 g = grouping.groupOfRow[k];
                    const qint32 p = alts[column[rows[k]]].points;
                    if (g >= 0 && p != -1) {
                        mSums[index(g, q)] += p;
                        ++mCounts[index(g, q)];
                    }
                }
            });
        }
    }

    /// The pooled index of `questions` in group `g`; -1 without answers.
    double index(const Document &doc, qint32 g, const QuestionList &questions) const
    {
        qint64 sum = 0, n = 0;
        for (qint32 q : questions) {
            sum += mSums[index(g, q)];
            n += mCounts[index(g, q)];
        }
        if (n <= 0)
            return -1.0;
        return (double(sum) / double(n)) / double(doc.properties.pointsScale);
    }

private:
    std::size_t index(qint32 g, qint32 q) const { return std::size_t(g) * std::size_t(mQuestions) + std::size_t(q); }

    qint32 mQuestions;
    std::vector<qint64> mSums;
    std::vector<qint64> mCounts;
};

QuestionList itemQuestions(const Document &doc, const BlockCatalogue &catalogue, const Item &item)
{
    switch (item.kind) {
    case ItemKind::Total: return totalMembers(doc);
    case ItemKind::Block: return blockMembers(doc, catalogue, item.number);
    case ItemKind::Question: return {item.number};
    }
    return {};
}

std::vector<ChartIndexLine> indexLines(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                                       const ChartContext &context, const IndexGraphRequest &request)
{
    const DocumentProperties &p = doc.properties;
    const bool blockGraph = validBlock(catalogue, request.block);
    const QString totalText = doc.text(p.indexLineTexts[4]);
    const QString blockText = doc.text(p.indexLineTexts[3]);
    const auto format = [&](double v) { return formatIndex(v, p.indexDecimals, context.locale); };

    std::vector<ChartIndexLine> lines;
    const auto add = [&](double value, const QString &text, bool ofTotal) {
        if (value == -1.0 || lines.size() >= 2)
            return;
        lines.push_back(
            {value,
             text + (ofTotal ? QStringLiteral(", total (") : QStringLiteral(" (")) + format(value) + QLatin1Char(')')});
    };
    if (request.indexLines & TotalIndexForTotal)
        add(flex.totalIndex(), totalText, true);
    if (request.indexLines & TotalIndexForSelection)
        add(context.rows->empty() ? -1.0 : calculateTotalIndex(doc, *context.rows), totalText, false);
    if (blockGraph && (request.indexLines & BlockIndexForTotal))
        add(flex.blockIndex(request.block), blockText, true);
    if (blockGraph && (request.indexLines & BlockIndexForSelection))
        add(context.rows->empty() ? -1.0 : calculateBlockIndex(doc, catalogue, request.block, *context.rows), blockText,
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
    case 1:
    case 2:
    case 5: axis.ticks = 5; break;
    case 3:
    case 6:
    case 9: axis.ticks = 6; break;
    case 4:
    case 8: axis.ticks = 4; break;
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

QString blockIndexGraphTitle(const Document &doc, const BlockCatalogue &catalogue, qint32 block, bool blockIndex,
                             bool questionIndexes, qint32 splitQuestion)
{
    const Block *named = catalogue.blockAt(block);
    const QString name = named ? named->name : QString();
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

ChartDescription generateIndexGraph(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                                    const ChartContext &context, const IndexGraphRequest &request)
{
    const DocumentProperties &p = doc.properties;
    ChartDescription chart;
    chart.chartType = ChartType::Bar;
    chart.title = shortenChartTitle(request.title);
    chart.caption = chart.title;
    chart.selectionCaption = chartSelectionCaption(context.selectionText, qint32(context.rows->size()), context.locale);
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

    const std::vector<Item> items = indexItems(doc, catalogue, flex, request);
    const Grouping grouping = indexGroups(doc, context, request);
    const std::vector<Group> &groups = grouping.groups;
    std::vector<QuestionList> itemMembers;
    std::vector<bool> needed(doc.questions.size(), false);
    for (const Item &item : items) {
        QuestionList members = itemQuestions(doc, catalogue, item);
        // A member list naming a question that does not exist gives no index.
        if (!std::all_of(members.begin(), members.end(), [&](qint32 q) { return validQuestion(doc, q); }))
            members.clear();
        for (qint32 q : members)
            needed[std::size_t(q)] = true;
        itemMembers.push_back(std::move(members));
    }
    const GroupSums sums(doc, *context.rows, grouping, needed);
    // A group without rows has no index for any item.
    const auto value = [&](std::size_t g, std::size_t i) {
        return groups[g].rows == 0 ? -1.0 : sums.index(doc, qint32(g), itemMembers[i]);
    };
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
        for (std::size_t g = 0; g < groups.size(); ++g)
            series.points.push_back(point(groups[g].label, value(g, 0)));
        chart.series.push_back(std::move(series));
    } else {
        for (std::size_t g = 0; g < groups.size(); ++g) {
            ChartSeries series;
            series.name = groups.size() > 1 ? groups[g].label : chart.selectionCaption;
            for (std::size_t i = 0; i < items.size(); ++i)
                series.points.push_back(point(items[i].label, value(g, i)));
            chart.series.push_back(std::move(series));
        }
    }
    chart.indexLines = indexLines(doc, catalogue, flex, context, request);
    if (!request.indexLinesShowExplanation)
        for (ChartIndexLine &line : chart.indexLines)
            line.text.clear();
    return chart;
}

} // namespace kel
