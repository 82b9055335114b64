// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/rankinggraph.h"

#include <algorithm>

namespace kel {

namespace {

bool validQuestion(const Document &doc, qint32 question)
{
    return question >= 0 && std::size_t(question) < doc.questions.size();
}

} // namespace

std::vector<qint64> rankingPoints(const Document &doc, const QuestionList &questions, const RowList &rows)
{
    if (questions.empty() || !validQuestion(doc, questions.front()))
        return {};
    const qint32 n = doc.questions[std::size_t(questions.front())].alternativeCount;
    std::vector<qint64> points(std::size_t(qMax(n, 0)), 0);
    for (qint32 q : questions) {
        if (!validQuestion(doc, q))
            continue;
        const qint64 weight = doc.questions[std::size_t(q)].rankingWeight;
        doc.answers.visitColumn(q, [&](const auto *column) {
            for (qint32 r : rows) {
                const qint32 a = qint32(column[r]);
                if (a >= 0 && a < n)
                    points[std::size_t(a)] += weight;
            }
        });
    }
    return points;
}

QString rankingPointsCaption(const Document &doc, const QuestionList &questions, const QLocale &locale)
{
    QList<qint32> weights;
    for (qint32 q : questions)
        if (validQuestion(doc, q))
            weights << doc.questions[std::size_t(q)].rankingWeight;
    const auto number = [&](qint64 v) { return chartWholeNumber(v, locale); };
    QString caption = pickDocumentText(doc, "Points (", "Poäng (") + number(weights.size());
    if (weights.size() == 1) {
        caption += pickDocumentText(doc, " question weighted ", " fråga viktad ") + number(weights.front());
    } else if (weights.size() >= 2) {
        caption += pickDocumentText(doc, " questions weighted ", " frågor viktade ") + number(weights.front());
        for (qsizetype i = 1; i + 1 < weights.size(); ++i)
            caption += QStringLiteral(", ") + number(weights.at(i));
        caption += pickDocumentText(doc, " and ", " och ") + number(weights.back());
    }
    return caption + QLatin1Char(')');
}

ChartDescription generateRankingGraph(const Document &doc, const ChartContext &context,
                                      const RankingGraphRequest &request)
{
    ChartDescription chart;
    chart.chartType = request.barChart ? ChartType::Bar : ChartType::Pie;
    chart.title = shortenChartTitle(pickDocumentText(doc, "Ranking ", "Rankning ") + request.titleText);
    chart.caption = chart.title;
    chart.selectionCaption = chartSelectionCaption(context.selectionText, qint32(context.rows->size()), context.locale);
    chart.threeD = request.threeD;
    chart.dataLabels = request.showPoints;
    const QString pointsCaption = rankingPointsCaption(doc, request.questions, context.locale);
    if (request.showPoints && request.barChart)
        chart.valueAxisTitle = pointsCaption;
    chart.categoryAxisTitle = chart.selectionCaption;
    chart.legendPosition = chartLegendPosition(context.graphLegends);

    const std::vector<qint64> points = rankingPoints(doc, request.questions, *context.rows);
    if (points.empty())
        return chart;
    const Question &scale = doc.questions[std::size_t(request.questions.front())];
    std::vector<qint32> order;
    for (qint32 a = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0; a < scale.alternativeCount; ++a)
        if ((doc.alternatives[std::size_t(scale.firstAlternative + a)].graphAttribute & 2) == 0)
            order.push_back(a);
    if (request.sorted)
        std::stable_sort(order.begin(), order.end(),
                         [&](qint32 x, qint32 y) { return points[std::size_t(x)] > points[std::size_t(y)]; });

    ChartSeries series;
    series.name = pointsCaption;
    series.colour = RankingBarColour;
    for (qint32 a : order) {
        ChartPoint pt;
        pt.label =
            chartAlternativeName(doc.alternatives[std::size_t(scale.firstAlternative + a)], context.shortCategoryNames);
        pt.value = double(points[std::size_t(a)]);
        if (request.showPoints)
            pt.dataLabel = chartWholeNumber(points[std::size_t(a)], context.locale);
        series.points.push_back(std::move(pt));
    }
    chart.series.push_back(std::move(series));
    return chart;
}

} // namespace kel
