// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/chartbuilder.h"

#include "render/colour/documentcolour.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QGraphicsSimpleTextItem>
#include <QHorizontalBarSeries>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPen>
#include <QPieSeries>
#include <QPieSlice>
#include <QRadialGradient>
#include <QValueAxis>

#include <cmath>
#include <memory>

namespace kel {

namespace {

constexpr qreal BarWidth = 0.8;

const QColor SliceColours[] = {QColor(0x20, 0x9f, 0xdf), QColor(0x99, 0xca, 0x53), QColor(0xf6, 0xa6, 0x25),
                               QColor(0x6d, 0x5f, 0xd5), QColor(0xbf, 0x59, 0x3e), QColor(0x3e, 0xbf, 0xa6),
                               QColor(0xd5, 0x5f, 0xa9), QColor(0x8a, 0x8a, 0x8a)};

QLinearGradient barGradient(const QColor &base, bool horizontal)
{
    // Across the bar: a highlight just off the middle, darker flanks.
    QLinearGradient g(0, 0, horizontal ? 0 : 1, horizontal ? 1 : 0);
    g.setCoordinateMode(QGradient::ObjectBoundingMode);
    g.setColorAt(0.0, base.darker(150));
    g.setColorAt(0.35, base.lighter(140));
    g.setColorAt(1.0, base.darker(170));
    return g;
}

struct PlacedText {
    QGraphicsSimpleTextItem *item;
    QPointF anchor; // value coordinates
    QAbstractSeries *series;
    enum Kind { DataLabel, LineTextBefore, LineTextAfter } kind;
};

/// Keeps the chart's own text items where their values are drawn whenever
/// the plot area moves (resizes, legend changes, first layout).
void followPlotArea(QChart *chart, std::shared_ptr<std::vector<PlacedText>> texts, bool horizontal)
{
    const auto place = [chart, texts, horizontal] {
        // Index-line texts first: data labels make way for them.
        std::vector<QRectF> taken;
        for (const PlacedText &t : *texts) {
            if (t.kind == PlacedText::DataLabel)
                continue;
            const QPointF at = chart->mapToPosition(t.anchor, t.series);
            const QRectF box = t.item->boundingRect();
            const bool after = t.kind == PlacedText::LineTextAfter;
            QPointF pos = horizontal ? at + QPointF(after ? -box.width() - 3 : 3, 0)
                                     : at + QPointF(-box.width() - 3, after ? 1 : -box.height() - 1);
            // Lines close together would stack their texts: a later one
            // steps down below the earlier ones.
            for (int tries = 0; tries < 4; ++tries) {
                const QRectF rect = box.translated(pos);
                const auto hit =
                    std::find_if(taken.begin(), taken.end(), [&](const QRectF &r) { return r.intersects(rect); });
                if (hit == taken.end())
                    break;
                pos.setY(hit->bottom() + 1);
            }
            t.item->setPos(pos);
            taken.push_back(box.translated(pos));
        }
        // A data label that would cover another text moves out along its
        // bar (up, or right) by whole label sizes, twice at most; one that
        // still collides is left out, as a careful chart thins its labels.
        for (const PlacedText &t : *texts) {
            if (t.kind != PlacedText::DataLabel)
                continue;
            const QPointF at = chart->mapToPosition(t.anchor, t.series);
            const QRectF box = t.item->boundingRect();
            QPointF pos =
                horizontal ? at + QPointF(4, -box.height() / 2) : at + QPointF(-box.width() / 2, -box.height() - 2);
            const QPointF step = horizontal ? QPointF(box.width() + 2, 0) : QPointF(0, -box.height() - 1);
            bool free = false;
            for (int tries = 0; tries < 3; ++tries, pos += step) {
                const QRectF rect = box.translated(pos);
                free = std::none_of(taken.begin(), taken.end(), [&](const QRectF &r) { return r.intersects(rect); });
                if (free)
                    break;
            }
            t.item->setPos(pos);
            t.item->setVisible(free);
            if (free)
                taken.push_back(box.translated(pos));
        }
    };
    QObject::connect(chart, &QChart::plotAreaChanged, chart, place);
    place();
}

void buildPie(QChart *chart, const ChartDescription &d)
{
    auto *pie = new QPieSeries;
    pie->setPieSize(0.7);
    for (const ChartSeries &s : d.series) {
        for (const ChartPoint &p : s.points) {
            QPieSlice *slice = pie->append(p.label, p.value);
            slice->setLabelVisible(true);
        }
    }
    chart->addSeries(pie);
    // The theme shades one colour for a pie; neighbouring slices are told
    // apart better by the colours the bars use.
    const QList<QPieSlice *> slices = pie->slices();
    for (qsizetype i = 0; i < slices.size(); ++i)
        slices[i]->setColor(SliceColours[std::size_t(i) % std::size(SliceColours)]);
    if (d.threeD) {
        // The theme colours are known once the series is in the chart.
        for (QPieSlice *slice : pie->slices()) {
            const QColor base = slice->brush().color();
            QRadialGradient g(QPointF(0.4, 0.4), 0.9);
            g.setCoordinateMode(QGradient::ObjectBoundingMode);
            g.setColorAt(0.0, base.lighter(135));
            g.setColorAt(1.0, base.darker(160));
            slice->setBrush(g);
            slice->setPen(QPen(base.darker(200), 1.5));
            slice->setExploded(true);
            slice->setExplodeDistanceFactor(0.04);
        }
    }
}

// Qt Charts shortens a text that does not fit by trying ever shorter copies
// of it, which for a label of 200,000 characters (a document may hold one)
// runs out of memory. No chart can show more than a screenful of one label,
// so each text is cut to this many characters first.
constexpr qsizetype LongestChartText = 1000;

QString clipped(const QString &text)
{
    if (text.size() <= LongestChartText)
        return text;
    qsizetype cut = LongestChartText - 1;
    if (text[cut - 1].isHighSurrogate())
        --cut;
    return text.left(cut) + QChar(0x2026);
}

ChartDescription withClippedTexts(ChartDescription d)
{
    for (QString *text : {&d.title, &d.caption, &d.selectionCaption, &d.valueAxisTitle, &d.categoryAxisTitle})
        *text = clipped(*text);
    for (ChartSeries &s : d.series) {
        s.name = clipped(s.name);
        for (ChartPoint &p : s.points) {
            p.label = clipped(p.label);
            p.dataLabel = clipped(p.dataLabel);
        }
    }
    for (ChartIndexLine &line : d.indexLines)
        line.text = clipped(line.text);
    return d;
}

} // namespace

Qt::Alignment legendAlignment(qint32 code)
{
    switch (code) {
    case 0: return Qt::AlignRight;
    case 2: return Qt::AlignLeft;
    case 4: return Qt::AlignTop;
    default: return Qt::AlignBottom;
    }
}

QChart *buildChart(const ChartDescription &description)
{
    const ChartDescription d = withClippedTexts(description);
    auto *chart = new QChart;
    chart->setTitle(d.title);
    // Titles as prominent as the basic graphs' (Arial, 24 px there; bold
    // here, where the chart's own texts are larger), on a square, opaque
    // background so that a copy has no transparent corners.
    QFont titleFont(QStringLiteral("Arial"));
    titleFont.setPixelSize(20);
    titleFont.setBold(true);
    chart->setTitleFont(titleFont);
    chart->setBackgroundRoundness(0);
    chart->setBackgroundBrush(Qt::white);
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->legend()->setVisible(d.legendPosition.has_value());
    if (d.legendPosition)
        chart->legend()->setAlignment(legendAlignment(*d.legendPosition));

    if (d.chartType == ChartType::Pie) {
        buildPie(chart, d);
        // A pie has no axes; the selection caption stands under it.
        auto *caption = new QGraphicsSimpleTextItem(d.selectionCaption, chart);
        caption->setData(ChartTextRole, QStringLiteral("selectionCaption"));
        const auto place = [chart, caption] {
            const QRectF plot = chart->plotArea();
            caption->setPos(plot.left(), plot.top());
        };
        QObject::connect(chart, &QChart::plotAreaChanged, chart, place);
        place();
        fitLegend(chart);
        return chart;
    }

    QAbstractBarSeries *bars = d.horizontal ? static_cast<QAbstractBarSeries *>(new QHorizontalBarSeries)
                                            : static_cast<QAbstractBarSeries *>(new QBarSeries);
    bars->setBarWidth(BarWidth);
    QStringList categories;
    qsizetype pointCount = 0;
    for (const ChartSeries &s : d.series)
        pointCount = qMax(pointCount, qsizetype(s.points.size()));
    // Horizontal bars read top-down in the order vertical ones read left to
    // right, but the category axis counts upwards: their points go in last
    // first. (The axis's own reversal leaves bar series where they were.)
    const auto position = [&](qsizetype i) { return d.horizontal ? pointCount - 1 - i : i; };
    for (qsizetype p = 0; p < pointCount; ++p) {
        const qsizetype i = position(p);
        QString label;
        for (const ChartSeries &s : d.series)
            if (i < qsizetype(s.points.size()) && label.isEmpty())
                label = s.points[std::size_t(i)].label;
        categories << label;
    }
    double largest = 0;
    for (const ChartSeries &s : d.series) {
        auto *set = new QBarSet(s.name);
        for (qsizetype p = 0; p < pointCount; ++p) {
            const qsizetype i = position(p);
            const double value = i < qsizetype(s.points.size()) ? s.points[std::size_t(i)].value : 0.0;
            *set << value;
            largest = qMax(largest, value);
        }
        if (s.colour != -1)
            set->setColor(documentColour(s.colour));
        bars->append(set);
    }
    chart->addSeries(bars);
    showCategoryTips(bars, d, categories, d.horizontal ? pointCount : 0);
    if (d.threeD) {
        for (QBarSet *set : bars->barSets()) {
            const QColor base = set->color();
            set->setBrush(barGradient(base, d.horizontal));
            set->setPen(QPen(base.darker(220), 1));
        }
    }

    auto *categoryAxis = new QBarCategoryAxis;
    // Qt's labels only keep the room for the chart's own (see
    // drawCategoryLabels): whole, for turned ones to get theirs below.
    categoryAxis->setTruncateLabels(false);
    auto *valueAxis = new QValueAxis;
    valueAxis->setLabelFormat(QStringLiteral("%g"));
    double top = largest;
    for (const ChartIndexLine &line : d.indexLines)
        top = qMax(top, line.value);
    if (d.valueAxis) {
        valueAxis->setRange(d.valueAxis->min, d.valueAxis->max);
        if (d.valueAxis->ticks > 0)
            valueAxis->setTickCount(d.valueAxis->ticks + 1);
    } else {
        valueAxis->setRange(0, top > 0 ? top * 1.1 : 1);
        valueAxis->applyNiceNumbers();
    }
    // Titles stand where the chart puts them: the first beside the left
    // axis, the second under the bottom one, whichever way the bars run.
    QAbstractAxis *left = d.horizontal ? static_cast<QAbstractAxis *>(categoryAxis) : valueAxis;
    QAbstractAxis *bottom = d.horizontal ? static_cast<QAbstractAxis *>(valueAxis) : categoryAxis;
    // A long value-axis title (the ranking's weights) wraps onto a second
    // line at its middle space rather than being cut; a single series named
    // like it would only repeat it as a one-item legend.
    QString valueTitle = d.valueAxisTitle.toHtmlEscaped();
    if (d.valueAxisTitle.size() > 40) {
        const qsizetype middle = valueTitle.size() / 2;
        const qsizetype before = valueTitle.lastIndexOf(QLatin1Char(' '), middle);
        if (before > 0)
            valueTitle = valueTitle.left(before) + QStringLiteral("<br>") + valueTitle.mid(before + 1);
    }
    if (d.series.size() == 1 && d.series.front().name == d.valueAxisTitle)
        chart->legend()->setVisible(false);
    left->setTitleText(valueTitle);
    bottom->setTitleText(d.categoryAxisTitle.toHtmlEscaped());
    chart->addAxis(bottom, Qt::AlignBottom);
    chart->addAxis(left, Qt::AlignLeft);
    bars->attachAxis(categoryAxis);
    bars->attachAxis(valueAxis);
    drawCategoryLabels(chart, categoryAxis, bars, categories, !d.horizontal, d.verticalLabels);

    auto texts = std::make_shared<std::vector<PlacedText>>();
    const qsizetype setCount = qsizetype(d.series.size());
    if (d.dataLabels) {
        for (qsizetype s = 0; s < setCount; ++s) {
            const auto &points = d.series[std::size_t(s)].points;
            for (qsizetype i = 0; i < qsizetype(points.size()); ++i) {
                if (points[std::size_t(i)].dataLabel.isEmpty())
                    continue;
                auto *item = new QGraphicsSimpleTextItem(points[std::size_t(i)].dataLabel, chart);
                item->setData(ChartTextRole, QStringLiteral("dataLabel"));
                item->setZValue(10);
                const double centre =
                    double(position(i)) - BarWidth / 2 + (double(s) + 0.5) * BarWidth / double(setCount);
                const double v = points[std::size_t(i)].value;
                texts->push_back(
                    {item, d.horizontal ? QPointF(v, centre) : QPointF(centre, v), bars, PlacedText::DataLabel});
            }
        }
    }

    // Index lines run across the whole plot, over the bars.
    const double from = -0.5, to = double(qMax<qsizetype>(pointCount, 1)) - 0.5;
    for (std::size_t l = 0; l < d.indexLines.size(); ++l) {
        const ChartIndexLine &line = d.indexLines[l];
        auto *series = new QLineSeries;
        series->setName(line.text);
        if (d.horizontal)
            series->append({QPointF(line.value, from), QPointF(line.value, to)});
        else
            series->append({QPointF(from, line.value), QPointF(to, line.value)});
        series->setPen(QPen(Qt::red, 2, Qt::DashLine));
        chart->addSeries(series);
        series->attachAxis(categoryAxis);
        series->attachAxis(valueAxis);
        // The line explains itself beside it, not in the legend.
        for (QLegendMarker *marker : chart->legend()->markers(series))
            marker->setVisible(false);
        if (!line.text.isEmpty()) {
            auto *item = new QGraphicsSimpleTextItem(line.text, chart);
            item->setData(ChartTextRole, QStringLiteral("indexLineText"));
            item->setBrush(Qt::red);
            item->setZValue(11);
            const auto kind = l == 0 ? PlacedText::LineTextBefore : PlacedText::LineTextAfter;
            texts->push_back({item, d.horizontal ? QPointF(line.value, to) : QPointF(to, line.value), series, kind});
        }
    }
    followPlotArea(chart, texts, d.horizontal);
    fitLegend(chart);
    return chart;
}

} // namespace kel
