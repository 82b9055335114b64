// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/chartlabels.h"

#include "gui/graphs/chartbuilder.h" // ChartTextRole

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QCursor>
#include <QFontMetricsF>
#include <QGraphicsSimpleTextItem>
#include <QHorizontalBarSeries>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPen>
#include <QPieSeries>
#include <QPieSlice>
#include <QRadialGradient>
#include <QSet>
#include <QToolTip>
#include <QValueAxis>
#include <cmath>
#include <memory>

namespace kel {

namespace {

// Longest a category label is drawn; a longer one ends in "…" and shows
// in full in a tooltip (and the bars' tooltips name it in full). Turned
// labels take at most a quarter of the chart's height, stacked ones a
// third of its width, so that the plot keeps its room.
constexpr qreal LongestCategoryLabel = 260;
// Between the plot's edge and a category label.
constexpr qreal CategoryLabelPadding = 4;
// Around each legend item; and the smallest share of its size a legend takes.
constexpr qreal LegendItemRoom = 20, SmallestLegendScale = 0.7;

} // namespace

/// The category labels, drawn by the chart itself: Qt's own either shorten
/// every label to the bar's width or leave them to overlap, and hide some by
/// rules of their own (a label at the plot's edge, one whose neighbour it
/// touches). Qt's labels stay, invisible and shortened as these are, to keep
/// the room below or beside the plot; these follow `categoryLabels` for the
/// plot the chart is laid out with. `labels` run along the axis from its
/// origin (bottom-up beside lying bars, whose first item is on top: their
/// step counts from the top).
void drawCategoryLabels(QChart *chart, QBarCategoryAxis *axis, QAbstractBarSeries *bars, const QStringList &labels,
                        bool standing, bool turnedAsked)
{
    const QFont font = axis->labelsFont();
    const QFontMetricsF metrics(font);
    auto items = std::make_shared<std::vector<QGraphicsSimpleTextItem *>>();
    qreal widest = 0;
    for (const QString &label : labels) {
        widest = std::max(widest,
                          metrics.horizontalAdvance(metrics.elidedText(label, Qt::ElideRight, LongestCategoryLabel)));
        auto *item = new QGraphicsSimpleTextItem(chart);
        item->setFont(font);
        item->setBrush(axis->labelsBrush());
        item->setData(ChartTextRole, QStringLiteral("categoryLabel"));
        items->push_back(item);
    }
    // Shortens every label to `longest` pixels, here and in Qt's copies.
    const auto shorten = [=](qreal longest) {
        QStringList room;
        QSet<QString> taken;
        for (qsizetype i = 0; i < labels.size(); ++i) {
            const QString shown = metrics.elidedText(labels[i], Qt::ElideRight, longest);
            QGraphicsSimpleTextItem *item = (*items)[std::size_t(i)];
            item->setText(shown);
            item->setToolTip(shown == labels[i] ? QString() : labels[i]);
            // Qt reads its labels as rich text and wants them told apart;
            // shortened ones may not be, an empty comment numbers them.
            QString escaped = shown.toHtmlEscaped();
            if (taken.contains(escaped))
                escaped += QStringLiteral("<!--%1-->").arg(i);
            taken.insert(escaped);
            room << escaped;
        }
        if (room != axis->categories())
            axis->setCategories(room);
    };
    shorten(LongestCategoryLabel);
    axis->setLabelsColor(Qt::transparent);
    axis->setLabelsAngle(standing && turnedAsked ? -90 : 0);

    struct State {
        QSizeF size;
        qreal extent = -1;
        CategoryLabels layout;
    };
    auto state = std::make_shared<State>(State{{}, -1, CategoryLabels{standing && turnedAsked, 1}});
    const qreal lineHeight = metrics.height();
    const auto place = [=] {
        const QRectF plot = chart->plotArea();
        if (plot.isEmpty())
            return;
        // Decided anew when the plot's length along the axis changes. Within
        // one size of the chart labels once turned stay turned: turning them
        // lays the chart out again, which must not turn them back.
        const qreal extent = standing ? plot.width() : plot.height();
        const bool newSize = chart->size() != state->size;
        if (newSize || std::abs(extent - state->extent) >= 1) {
            const bool wasTurned = state->layout.turned && !newSize;
            state->size = chart->size();
            state->extent = extent;
            state->layout = categoryLabels(qsizetype(items->size()), extent, widest, lineHeight, standing,
                                           turnedAsked || wasTurned);
            shorten(!standing                  ? std::min(LongestCategoryLabel, state->size.width() / 3)
                        : state->layout.turned ? std::min(LongestCategoryLabel, state->size.height() / 4)
                                               : LongestCategoryLabel);
            axis->setLabelsAngle(state->layout.turned ? -90 : 0);
        }
        const auto count = qsizetype(items->size());
        for (qsizetype p = 0; p < count; ++p) {
            QGraphicsSimpleTextItem *item = (*items)[std::size_t(p)];
            const qsizetype reading = standing ? p : count - 1 - p;
            item->setVisible(reading % state->layout.step == 0);
            const QRectF box = item->boundingRect();
            if (!standing) {
                const qreal y = chart->mapToPosition(QPointF(0, qreal(p)), bars).y();
                item->setPos(plot.left() - CategoryLabelPadding - box.width(), y - box.height() / 2);
                continue;
            }
            const qreal x = chart->mapToPosition(QPointF(qreal(p), 0), bars).x();
            const qreal top = plot.bottom() + CategoryLabelPadding;
            // Turned, a label reads bottom-up and ends at the axis.
            item->setRotation(state->layout.turned ? -90 : 0);
            item->setPos(state->layout.turned ? QPointF(x - box.height() / 2, top + box.width())
                                              : QPointF(x - box.width() / 2, top));
        }
    };
    QObject::connect(chart, &QChart::plotAreaChanged, chart, place);
    place();
}

/// A bar names its category in full, with its group and value, while the
/// pointer rests on it: its label may be shortened or not shown.
void showCategoryTips(QAbstractBarSeries *bars, const ChartDescription &d, const QStringList &categories,
                      qsizetype reversedCount)
{
    QObject::connect(bars, &QAbstractBarSeries::hovered, bars,
                     [d, categories, reversedCount, bars](bool inside, int index, QBarSet *set) {
                         if (!inside || index < 0 || index >= categories.size()) {
                             QToolTip::hideText();
                             return;
                         }
                         const qsizetype s = bars->barSets().indexOf(set);
                         const qsizetype point = reversedCount > 0 ? reversedCount - 1 - index : index;
                         QString tip = categories[index];
                         if (s >= 0 && s < qsizetype(d.series.size())) {
                             const ChartSeries &series = d.series[std::size_t(s)];
                             if (d.series.size() > 1)
                                 tip += QStringLiteral("\n") + series.name;
                             if (point < qsizetype(series.points.size())) {
                                 const ChartPoint &p = series.points[std::size_t(point)];
                                 tip += QStringLiteral("\n")
                                     + (p.dataLabel.isEmpty() ? QString::number(p.value) : p.dataLabel);
                             }
                         }
                         QToolTip::showText(QCursor::pos(), tip);
                     });
}

/// A legend above or below the chart lays its items out in one row and
/// shortens every name to fit: it takes a smaller size first (down to a
/// floor) so that whole names show, and names a shortened item in full in a
/// tooltip.
void fitLegend(QChart *chart)
{
    QLegend *legend = chart->legend();
    legend->setShowToolTips(true);
    if (!legend->isVisible() || !(legend->alignment() & (Qt::AlignTop | Qt::AlignBottom)))
        return;
    const QFont base = legend->font();
    auto laidOutAt = std::make_shared<QSizeF>();
    const auto fit = [=] {
        if (chart->size().isEmpty() || chart->size() == *laidOutAt)
            return;
        *laidOutAt = chart->size();
        const QFontMetricsF metrics(base);
        // Each item: its marker (a line high), the name and the room Qt
        // keeps around them.
        qreal needed = 0;
        for (QLegendMarker *marker : legend->markers())
            if (marker->isVisible())
                needed += metrics.horizontalAdvance(marker->label()) + metrics.height() + LegendItemRoom;
        const qreal room = chart->size().width() - 2 * LegendItemRoom;
        const qreal scale = needed > room ? std::max(SmallestLegendScale, room / needed) : 1.0;
        QFont font = base;
        if (base.pixelSize() > 0)
            font.setPixelSize(std::max(1, int(base.pixelSize() * scale)));
        else
            font.setPointSizeF(base.pointSizeF() * scale);
        if (font != legend->font())
            legend->setFont(font);
    };
    QObject::connect(chart, &QChart::plotAreaChanged, chart, fit);
    fit();
}

CategoryLabels categoryLabels(qsizetype count, qreal extent, qreal widest, qreal lineHeight, bool standingBars,
                              bool turnedAsked)
{
    CategoryLabels layout{standingBars && turnedAsked, 1};
    if (count <= 0 || extent <= 0)
        return layout;
    const qreal share = extent / qreal(count);
    if (standingBars && !layout.turned && widest + CategoryLabelGap > share)
        layout.turned = true;
    if (standingBars && !layout.turned)
        return layout;
    // The smallest step whose labels, step shares apart, each have a line
    // and the gap.
    const qreal needed = (lineHeight + CategoryLineGap) / share;
    const qreal rounded = std::round(needed);
    // A share that holds the label exactly is enough (division may leave
    // a trace above a whole number).
    const qreal steps = std::abs(needed - rounded) < 1e-9 ? rounded : std::ceil(needed);
    layout.step = int(std::clamp<qreal>(steps, 1, qreal(count)));
    return layout;
}

} // namespace kel
