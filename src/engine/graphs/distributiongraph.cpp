// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/distributiongraph.h"

#include "engine/overview/subsheet.h"

namespace kel {

namespace {

qint32 categoryQuestion(const Document &doc, qint32 category)
{
    if (category < 0 || std::size_t(category) >= doc.categories.size())
        return -1;
    const qint32 q = doc.categories[std::size_t(category)];
    return q >= 0 && std::size_t(q) < doc.questions.size() ? q : -1;
}

} // namespace

ChartDescription generateDistributionGraph(const Document &doc, const ChartContext &context,
                                           const SelectionMatrix &selection, const DistributionGraphRequest &request)
{
    const RowList &rows = *context.rows;
    const qint64 n = qint64(rows.size());
    const bool pie = request.type == DistributionGraphType::Pie;
    const bool grouped = request.type == DistributionGraphType::GroupedBar;
    const qint32 mainQuestion = categoryQuestion(doc, request.mainCategory);
    const qint32 groupQuestion = grouped ? categoryQuestion(doc, request.groupByCategory) : -1;

    ChartDescription chart;
    chart.chartType = pie ? ChartType::Pie : ChartType::Bar;
    QString title = pickDocumentText(doc, "Distribution ", "Fördelning ");
    if (mainQuestion >= 0)
        title += doc.questions[std::size_t(mainQuestion)].heading;
    if (groupQuestion >= 0)
        title += QStringLiteral(" / ") + doc.questions[std::size_t(groupQuestion)].heading;
    chart.title = shortenChartTitle(title);
    chart.caption = chart.title;
    chart.selectionCaption = chartSelectionCaption(context.selectionText, qint32(n), context.locale);
    chart.threeD = request.threeD;
    chart.horizontal = !pie && request.horizontalBars;
    chart.verticalLabels = !pie && !chart.horizontal && request.verticalLabels;
    chart.dataLabels = true;
    chart.legendPosition = chartLegendPosition(context.graphLegends);
    chart.categoryAxisTitle = chart.selectionCaption;
    if (!pie) {
        chart.valueAxisTitle =
            request.inPercent ? pickDocumentText(doc, "Percent", "Procent") : pickDocumentText(doc, "Number", "Antal");
        if (chart.horizontal)
            std::swap(chart.valueAxisTitle, chart.categoryAxisTitle);
    }
    if (mainQuestion < 0 || (grouped && groupQuestion < 0))
        return chart;

    const Question &main = doc.questions[std::size_t(mainQuestion)];
    const qint32 mainCount = qMax(main.alternativeCount, 0);
    const qint32 groupCount = grouped ? qMax(doc.questions[std::size_t(groupQuestion)].alternativeCount, 0) : 1;
    std::vector<qint64> counts(std::size_t(mainCount) * std::size_t(groupCount), 0);
    for (qint32 r : rows) {
        const qint32 a = doc.getData(r, mainQuestion);
        const qint32 g = grouped ? doc.getData(r, groupQuestion) : 0;
        if (a >= 0 && a < mainCount && g >= 0 && g < groupCount)
            ++counts[std::size_t(g) * std::size_t(mainCount) + std::size_t(a)];
    }

    const auto percent = [&](qint64 count) { return n > 0 ? roundHalfEven(double(count) * 100.0 / double(n)) : 0; };
    const qint32 firstShown = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
    const auto makeSeries = [&](qint32 g, const QString &name) {
        ChartSeries series;
        series.name = name;
        for (qint32 a = firstShown; a < mainCount; ++a) {
            const Alternative &alt = doc.alternatives[std::size_t(main.firstAlternative + a)];
            const qint64 count = counts[std::size_t(g) * std::size_t(mainCount) + std::size_t(a)];
            const qint64 value = request.inPercent ? percent(count) : count;
            ChartPoint pt;
            if (pie)
                pt.label = request.inPercent
                    ? alt.text + QStringLiteral(" (") + chartWholeNumber(percent(count), context.locale)
                        + QStringLiteral(" %)")
                    : alt.text + QStringLiteral(" [") + chartWholeNumber(count, context.locale) + QLatin1Char(']');
            else
                pt.label = chartAlternativeName(alt, context.shortCategoryNames);
            pt.value = double(value);
            pt.dataLabel = chartWholeNumber(value, context.locale);
            series.points.push_back(std::move(pt));
        }
        chart.series.push_back(std::move(series));
    };

    if (grouped) {
        const Question &group = doc.questions[std::size_t(groupQuestion)];
        // The "no answer" alternative stays ticked in every selection but,
        // like everywhere in graphs, forms no series.
        for (qint32 g = firstShown; g < groupCount; ++g)
            if (selection.at(request.groupByCategory, g))
                makeSeries(g, doc.alternatives[std::size_t(group.firstAlternative + g)].text);
    } else {
        makeSeries(0, main.heading);
    }
    return chart;
}

} // namespace kel
