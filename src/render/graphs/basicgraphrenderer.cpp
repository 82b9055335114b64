// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/graphs/basicgraphrenderer.h"

#include "render/colour/documentcolour.h"
#include "engine/settings/settingsstore.h"

#include <QFontMetrics>
#include <QTextLayout>
#include <QPainter>
#include <QPicture>

#include <algorithm>
#include <cmath>
#include <limits>

namespace kel {

namespace {

constexpr int MinimumPlotWidth = 50;
constexpr int TextFlagsWrapped = Qt::TextWordWrap | Qt::AlignHCenter;
// The smallest a histogram's values are drawn, in pixels at 100 %.
constexpr int MinimumValuePixels = 9;
constexpr qint32 White = 0xFFFFFF;

int roundEven(double value)
{
    return int(std::nearbyint(value)); // the default rounding mode rounds halves to even
}

// The bar or segment gets a black outline: white ones would vanish otherwise.
bool needsOutline(qint32 colour, qint32 drawFlags)
{
    return colour == White || (drawFlags & 1) != 0;
}

void fillBar(QPainter &painter, const QRect &r, qint32 colour, qint32 drawFlags, int outline)
{
    if (r.width() <= 0 || r.height() <= 0)
        return;
    if (colour != -1)
        painter.fillRect(r, documentColour(colour));
    if (needsOutline(colour, drawFlags)) {
        // Nested one-pixel frames, inward.
        const int frames = std::max(outline, 1);
        for (int i = 0; i < frames; ++i) {
            const QRect f = r.adjusted(i, i, -i, -i);
            if (f.width() <= 0 || f.height() <= 0)
                break;
            painter.fillRect(QRect(f.left(), f.top(), f.width(), 1), Qt::black);
            painter.fillRect(QRect(f.left(), f.bottom(), f.width(), 1), Qt::black);
            painter.fillRect(QRect(f.left(), f.top(), 1, f.height()), Qt::black);
            painter.fillRect(QRect(f.right(), f.top(), 1, f.height()), Qt::black);
        }
    }
}

} // namespace

int graphScaleFactor(double dotsPerInch)
{
    return std::max(1, roundEven(dotsPerInch / 96.0));
}

BasicGraphRenderer::BasicGraphRenderer(BasicGraphDescription description, BasicGraphUnits units)
    : mDescription(std::move(description)), mUnits(units), mRuns(legendRuns(mDescription))
{
}

void BasicGraphRenderer::setUnits(BasicGraphUnits units)
{
    mUnits = units;
}

QFont BasicGraphRenderer::textFont() const
{
    QFont font(QStringLiteral("Arial"));
    font.setStyleHint(QFont::SansSerif);
    font.setWeight(QFont::Normal);
    font.setPixelSize(mUnits.textHeight());
    return font;
}

QFont BasicGraphRenderer::titleFont() const
{
    QFont font = textFont();
    font.setPixelSize(mUnits.titleHeight());
    return font;
}

int BasicGraphRenderer::tickStep(int largestValue)
{
    const double x = largestValue / 5.0;
    static constexpr std::pair<double, int> Steps[] = {{1, 1},       {5, 5},       {10, 10},    {20, 20},   {25, 25},
                                                       {50, 50},     {100, 100},   {200, 200},  {250, 250}, {500, 500},
                                                       {1000, 1000}, {2500, 2500}, {5000, 5000}};
    for (const auto &[limit, step] : Steps) {
        if (x < limit)
            return step;
    }
    return 10000;
}

QString BasicGraphRenderer::runMarker(int run) const
{
    return QString::number(run + 1) + QLatin1Char('*');
}

int BasicGraphRenderer::titleBlockHeight() const
{
    int height = 0;
    if (!mDescription.title.isEmpty())
        height += mUnits.titleHeight() + mUnits.gapY();
    if (!mDescription.subTitle.isEmpty())
        height += mUnits.textHeight() + mUnits.gapY();
    return height;
}

int BasicGraphRenderer::selectionBlockHeight(int width) const
{
    if (mDescription.selectionText.isEmpty() || width <= 0)
        return 0;
    const QFontMetrics metrics(textFont());
    return metrics.boundingRect(QRect(0, 0, width, 100000), TextFlagsWrapped, mDescription.selectionText).height();
}

int BasicGraphRenderer::legendBlockHeight(int width) const
{
    return drawLegends(nullptr, QRect(0, 0, width, 0), 0);
}

// Lays out the legend runs in `area` (its width) and, with a painter, draws
// them from its top. Returns the block's height.
int BasicGraphRenderer::drawLegends(QPainter *painter, const QRect &area, int outline) const
{
    const QFontMetrics metrics(textFont());
    const int h = mUnits.textHeight();
    const int gx = mUnits.gapX();
    const int gy = mUnits.gapY();
    const int W = area.width();
    const bool markers = mRuns.runs.size() >= 2;
    int markerColumn = 0;
    if (markers) {
        for (std::size_t r = 0; r < mRuns.runs.size(); ++r)
            markerColumn = std::max(markerColumn, metrics.horizontalAdvance(runMarker(int(r))));
        markerColumn += gx;
    }

    // Entry positions per run: (line, x) for each legend; lines start after the marker column.
    struct Placed {
        int legend;
        int line;
        int x;
        int width;
    };
    std::vector<std::vector<Placed>> runs;
    int widest = 0;
    for (const auto &[first, count] : mRuns.runs) {
        std::vector<Placed> placed;
        int line = 0;
        int x = markerColumn;
        for (int i = 0; i < count; ++i) {
            const int index = first + i;
            if (index < 0 || std::size_t(index) >= mDescription.legends.size())
                break;
            const int width =
                metrics.horizontalAdvance(mDescription.legends[std::size_t(index)].text) + h + (3 * gx) / 2;
            if (x > markerColumn && x + width > W) {
                ++line;
                x = markerColumn;
            }
            placed.push_back({index, line, x, width});
            x += width;
            widest = std::max(widest, x);
        }
        runs.push_back(std::move(placed));
    }

    const int offset = widest > W ? 0 : (W - widest) / 2;
    int y = area.top();
    int height = 0;
    for (std::size_t r = 0; r < runs.size(); ++r) {
        const int lines = runs[r].empty() ? 1 : runs[r].back().line + 1;
        if (painter) {
            painter->setPen(Qt::black);
            if (markers)
                painter->drawText(QRect(area.left() + offset, y + gy / 2, markerColumn, h),
                                  Qt::AlignLeft | Qt::AlignVCenter, runMarker(int(r)));
            for (const Placed &p : runs[r]) {
                const BasicGraphLegend &legend = mDescription.legends[std::size_t(p.legend)];
                const int top = y + gy / 2 + p.line * (h + gy / 2);
                const QRect square(area.left() + offset + p.x, top, h, h);
                if (legend.colour != -1)
                    painter->fillRect(square, documentColour(legend.colour));
                const int frames = std::max(outline, 1);
                for (int i = 0; i < frames; ++i) {
                    const QRect f = square.adjusted(i, i, -i, -i);
                    painter->fillRect(QRect(f.left(), f.top(), f.width(), 1), Qt::black);
                    painter->fillRect(QRect(f.left(), f.bottom(), f.width(), 1), Qt::black);
                    painter->fillRect(QRect(f.left(), f.top(), 1, f.height()), Qt::black);
                    painter->fillRect(QRect(f.right(), f.top(), 1, f.height()), Qt::black);
                }
                painter->drawText(QRect(square.right() + 1 + gx / 2, top, p.width - h - gx / 2, h),
                                  Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, legend.text);
            }
        }
        const int runHeight = lines * (h + gy / 2) + gy / 2;
        y += runHeight;
        height += runHeight;
    }
    return height;
}

void BasicGraphRenderer::drawCommon(QPainter &painter, const QRect &rect, int outline) const
{
    painter.setPen(Qt::black);
    int y = rect.top();
    if (!mDescription.title.isEmpty()) {
        painter.setFont(titleFont());
        painter.drawText(QRect(rect.left(), y, rect.width(), mUnits.titleHeight()),
                         Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, mDescription.title);
        y += mUnits.titleHeight() + mUnits.gapY();
    }
    painter.setFont(textFont());
    if (!mDescription.subTitle.isEmpty())
        painter.drawText(QRect(rect.left(), y, rect.width(), mUnits.textHeight()),
                         Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, mDescription.subTitle);
    const int selection = selectionBlockHeight(rect.width());
    if (selection > 0)
        painter.drawText(QRect(rect.left(), rect.bottom() + 1 - selection, rect.width(), selection),
                         TextFlagsWrapped | Qt::AlignBottom, mDescription.selectionText);
    const int legends = legendBlockHeight(rect.width());
    drawLegends(&painter,
                QRect(rect.left(), rect.bottom() + 1 - selection - mUnits.gapY() - legends, rect.width(), legends),
                outline);
}

bool BasicGraphRenderer::draw(QPainter &painter, const QRect &rect, int outline, bool percentage) const
{
    painter.save();
    painter.setBackgroundMode(Qt::TransparentMode);
    bool fits = false;
    if (mDescription.graphKind == HistogramGraph)
        fits = drawHistogram(painter, rect, outline, percentage);
    else if (mDescription.graphKind == FractionGraph)
        fits = drawFraction(painter, rect, outline);
    painter.restore();
    return fits;
}

bool BasicGraphRenderer::drawHistogram(QPainter &painter, const QRect &R, int outline, bool percentage) const
{
    const BasicGraphDescription &d = mDescription;
    const QFontMetrics metrics(textFont());
    const int h = mUnits.textHeight();
    const int gx = mUnits.gapX();
    const int gy = mUnits.gapY();
    const bool markers = mRuns.runs.size() >= 2;

    auto valueOf = [&](const BasicGraphBar &bar) { return percentage ? bar.perMille : bar.count; };
    int largest = 0;
    for (const BasicGraphBar &bar : d.bars)
        largest = std::max(largest, valueOf(bar));
    const int step = tickStep(largest);
    const int axisMax = 5 * step;
    auto tickText = [&](int i) { return QLatin1Char(' ') + QString::number(percentage ? i * step / 10 : i * step); };
    int widestTick = 0;
    for (int i = 0; i <= 5; ++i)
        widestTick = std::max(widestTick, metrics.horizontalAdvance(tickText(i)));
    const QString axisCaption = percentage ? d.percentAxisText : d.countAxisText;
    const int captionExtent = metrics.height();

    const int left = R.left() + captionExtent + widestTick + gx + mUnits.borderWidth();
    const int right = R.right() + 1 - gx;
    const int plotWidth = right - left;
    if (plotWidth < MinimumPlotWidth)
        return false;
    const int G = int(d.groups.size());
    const int B = int(d.bars.size());
    int barWidth = 0;
    if (B > 0) {
        barWidth = (plotWidth - (G - 1 + B) * gx - 3 * mUnits.sx) / B;
        if (barWidth < 2 * gx)
            return false;
    }

    // Group positions, then the label row as high as the highest wrapped label.
    std::vector<QRect> groupSpans; // x extent only
    int x = left + gx;
    for (const BasicGraphGroup &g : d.groups) {
        const int width = g.barCount * barWidth + std::max(0, g.barCount - 1) * gx;
        groupSpans.emplace_back(x, 0, width, 0);
        x += width + 2 * gx;
    }
    // Group labels wrap at words, and a word wider than its group (a long
    // Swedish compound under a narrow group) breaks where it must rather
    // than being cut at both ends.
    std::vector<QStringList> labelLines;
    int labelRow = 0;
    for (std::size_t i = 0; i < d.groups.size(); ++i) {
        labelLines.push_back(d.groups[i].label.isEmpty()
                                 ? QStringList()
                                 : wholeLabelLines(d.groups[i].label, textFont(), std::max(1, groupSpans[i].width()),
                                                   std::numeric_limits<int>::max() / 2));
        labelRow = std::max(labelRow, int(labelLines.back().size()) * metrics.lineSpacing());
    }
    // Values wider than a bar and its gap would run into their neighbours':
    // they take a smaller size that fits, down to a floor; one that still
    // touches the value before it is left out (Copy as Data keeps it).
    QFont valueFont = textFont();
    int widestValue = 0;
    for (const BasicGraphBar &bar : d.bars)
        widestValue = std::max(widestValue, metrics.horizontalAdvance(percentage ? bar.percentText : bar.countText));
    if (widestValue > barWidth + gx - mUnits.sx)
        valueFont.setPixelSize(std::max(std::min(h, MinimumValuePixels * mUnits.sy),
                                        h * (barWidth + gx - mUnits.sx) / std::max(1, widestValue)));
    const QFontMetrics valueMetrics(valueFont);

    const int selection = selectionBlockHeight(R.width());
    const int legends = legendBlockHeight(R.width());
    const int top = R.top() + titleBlockHeight() + h + (markers ? h : 0);
    const int bottom = R.bottom() + 1 - (selection + gy) - legends - gy - mUnits.borderHeight() - labelRow - gy;
    const int plotHeight = bottom - top;
    if (plotHeight <= 0)
        return false;

    drawCommon(painter, R, outline);
    painter.setFont(textFont());
    painter.setPen(Qt::black);

    // Axis caption, turned a quarter counter-clockwise, centred on the plot height.
    painter.save();
    painter.translate(R.left(), top + plotHeight / 2);
    painter.rotate(-90);
    painter.drawText(QRect(-plotHeight / 2, 0, plotHeight, captionExtent), Qt::AlignCenter | Qt::TextDontClip,
                     axisCaption);
    painter.restore();

    // Ticks and their labels.
    for (int i = 0; i <= 5; ++i) {
        const int y = bottom - roundEven(double(plotHeight) * i / 5.0);
        painter.drawText(QRect(left - mUnits.borderWidth() - gx / 2 - widestTick, y - h / 2, widestTick, h),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, tickText(i));
        painter.fillRect(QRect(left - mUnits.borderWidth() - gx / 2, y, gx / 2, mUnits.sy), Qt::black);
    }

    // Bars, their values, the labels and run markers.
    QRect previousValue;
    for (std::size_t gi = 0; gi < d.groups.size(); ++gi) {
        const BasicGraphGroup &g = d.groups[gi];
        const QRect &span = groupSpans[gi];
        for (int b = 0; b < g.barCount; ++b) {
            const int index = g.firstBar + b;
            if (index < 0 || index >= B)
                break;
            const BasicGraphBar &bar = d.bars[std::size_t(index)];
            const int barLeft = span.left() + b * (barWidth + gx);
            const int height = axisMax > 0 ? roundEven(double(plotHeight) * valueOf(bar) / axisMax) : 0;
            fillBar(painter, QRect(barLeft, bottom - height, barWidth, height), bar.colour, bar.drawFlags, outline);
            const QString value = percentage ? bar.percentText : bar.countText;
            const int valueWidth = valueMetrics.horizontalAdvance(value);
            const QRect valueBox(barLeft + (barWidth - valueWidth) / 2, bottom - height - valueMetrics.height(),
                                 valueWidth, valueMetrics.height());
            if (value.isEmpty() || valueBox.intersects(previousValue))
                continue;
            painter.setFont(valueFont);
            painter.drawText(QRect(barLeft, bottom - height - h, barWidth, h),
                             Qt::AlignHCenter | Qt::AlignBottom | Qt::TextDontClip, value);
            painter.setFont(textFont());
            previousValue = valueBox;
        }
        for (int line = 0; line < int(labelLines[gi].size()); ++line)
            painter.drawText(
                QRect(span.left(), bottom + gy + line * metrics.lineSpacing(), span.width(), metrics.lineSpacing()),
                Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, labelLines[gi][line]);
        if (markers)
            painter.drawText(QRect(span.left(), top - 2 * h, span.width(), h), Qt::AlignCenter | Qt::TextDontClip,
                             runMarker(mRuns.groupRun[gi]));
    }

    // The axis left of the plot, the base line under it.
    painter.fillRect(QRect(left - mUnits.borderWidth(), top, mUnits.borderWidth(), plotHeight + mUnits.borderHeight()),
                     Qt::black);
    painter.fillRect(
        QRect(left - mUnits.borderWidth(), bottom, plotWidth + mUnits.borderWidth(), mUnits.borderHeight()), Qt::black);
    return true;
}

QStringList wholeLabelLines(const QString &text, const QFont &font, int width, int height)
{
    const QFontMetrics metrics(font);
    const int fitting = std::max(1, height / std::max(1, metrics.lineSpacing()));
    QTextLayout layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator), font);
    QTextOption option(Qt::AlignLeft);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const QString rest = layout.text().mid(line.textStart());
        if (int(lines.size()) == fitting - 1) {
            // The last line that fits takes the rest of the text, shortened
            // with "..." when it would need another line.
            lines << metrics.elidedText(rest.trimmed(), Qt::ElideRight, width);
            break;
        }
        lines << layout.text().mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    for (QString &line : lines)
        line.replace(QChar::LineSeparator, QLatin1Char(' '));
    return lines;
}

bool BasicGraphRenderer::drawFraction(QPainter &painter, const QRect &R, int outline) const
{
    const BasicGraphDescription &d = mDescription;
    const QFontMetrics metrics(textFont());
    const int h = mUnits.textHeight();
    const int gx = mUnits.gapX();
    const int gy = mUnits.gapY();
    const bool markers = mRuns.runs.size() >= 2;

    const int barLeft = R.left() + mUnits.labelColumn() + gx;
    const int barWidth = R.right() + 1 - gx - barLeft;
    if (barWidth < MinimumPlotWidth)
        return false;
    const int selection = selectionBlockHeight(R.width());
    const int legends = legendBlockHeight(R.width());
    const int axisTop = R.top() + titleBlockHeight();
    const int areaTop = axisTop + h;
    const int areaBottom = R.bottom() + 1 - (selection + gy) - legends - gy - mUnits.borderHeight();
    const int G = int(d.groups.size());
    int barHeight = 0;
    if (G > 0) {
        barHeight = roundEven(double(areaBottom - areaTop - (G + 1) * gy) / G);
        if (barHeight < h)
            return false;
    }

    drawCommon(painter, R, outline);
    painter.setFont(textFont());
    painter.setPen(Qt::black);

    // The percentage axis over the bars, the total at its left end.
    for (int i = 0; i <= 5; ++i) {
        const int x = barLeft + roundEven(double(barWidth) * i / 5.0);
        const QString text = QString::number(i * 20);
        const int w = metrics.horizontalAdvance(text);
        // Centred on its mark, but never out of the drawing rectangle: the
        // "100" at the right end moves in rather than being cut.
        const int textLeft = std::min(x - w / 2, R.right() + 1 - w);
        painter.drawText(QRect(textLeft, axisTop, w, h), Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, text);
    }
    if (!d.totalText.isEmpty())
        painter.drawText(QRect(R.left(), axisTop, mUnits.labelColumn(), h),
                         Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, d.totalText);

    int y = areaTop + gy;
    for (std::size_t gi = 0; gi < d.groups.size(); ++gi) {
        const BasicGraphGroup &g = d.groups[gi];
        int labelWidth = mUnits.labelColumn();
        if (markers) {
            const QString marker = runMarker(mRuns.groupRun[gi]);
            const int w = metrics.horizontalAdvance(marker);
            painter.drawText(QRect(barLeft - gx - w, y, w, barHeight), Qt::AlignRight | Qt::AlignVCenter, marker);
            labelWidth -= w + gx / 2;
        }
        // The label keeps whole lines: as many as its bar's height holds,
        // the last one shortened with "..." when the text goes on.
        const QStringList lines = wholeLabelLines(g.label, textFont(), std::max(1, labelWidth), barHeight);
        const int lineSpacing = metrics.lineSpacing();
        int lineTop = y + (barHeight - int(lines.size()) * lineSpacing) / 2;
        for (const QString &line : lines) {
            painter.drawText(QPoint(R.left(), lineTop + metrics.ascent()), line);
            lineTop += lineSpacing;
        }
        qint64 sum = 0;
        int start = barLeft;
        for (int b = 0; b < g.barCount; ++b) {
            const int index = g.firstBar + b;
            if (index < 0 || std::size_t(index) >= d.bars.size())
                break;
            const BasicGraphBar &bar = d.bars[std::size_t(index)];
            if (bar.count <= 0)
                continue;
            sum += bar.perMille;
            const int end =
                d.valueScale > 0 ? roundEven(barLeft + double(barWidth) * double(sum) / d.valueScale + 1) : start;
            const QRect segment(start, y, end - start, barHeight);
            fillBar(painter, segment, bar.colour, bar.drawFlags, outline);
            if (metrics.horizontalAdvance(bar.percentText) <= segment.width() && h <= barHeight)
                painter.drawText(segment, Qt::AlignCenter, bar.percentText);
            start = end;
        }
        y += barHeight + gy;
    }
    return true;
}

QSize basicGraphWindowSize(const BasicGraphRenderer &renderer, qint32 windowWidthTwips, qint32 barWidth,
                           double dotsPerInch)
{
    const BasicGraphDescription &d = renderer.description();
    if (d.graphKind != FractionGraph)
        return QSize(620, 460);
    const BasicGraphUnits &u = renderer.units();
    // Stored values may be anything; the window stays usable.
    const double twips = std::clamp(double(windowWidthTwips), 0.0, 1440.0 * 100);
    const qint64 perGroup = std::clamp<qint64>(barWidth, 0, 2000);
    const int width = int(std::lround(twips * dotsPerInch / 1440.0));
    const int inner = std::max(1, width - 2 * BasicGraphMargin);
    const qint64 height = qint64(d.groups.size()) * perGroup + renderer.titleBlockHeight() + 2 * BasicGraphMargin
        + renderer.selectionBlockHeight(inner) + renderer.legendBlockHeight(inner) + u.textHeight() + u.gapY()
        + u.borderHeight();
    return QSize(std::max(width, 200), int(std::clamp<qint64>(height, 120, 30000)));
}

bool drawScaledBasicGraph(QPainter &painter, const BasicGraphRenderer &renderer, const QRect &area, int scale,
                          bool percentage)
{
    scale = std::max(scale, 1);
    const BasicGraphUnits screen = renderer.units();
    const BasicGraphRenderer scaled(renderer.description(), BasicGraphUnits{screen.sx * scale, screen.sy * scale});
    return scaled.draw(painter, area, scale, percentage);
}

std::optional<Picture> basicGraphDefaultPicture(const BasicGraphDescription &description)
{
    constexpr int Scale = 2;
    const BasicGraphRenderer renderer(description, BasicGraphUnits{});
    const LastSettings defaults;
    const QSize window =
        basicGraphWindowSize(renderer, defaults.questionGraphWindowWidth, defaults.questionGraphBarWidth, 96);
    Picture picture;
    picture.size = (window - QSize(2 * BasicGraphMargin, 2 * BasicGraphMargin)) * Scale;
    const QRect area(QPoint(0, 0), picture.size);
    QPicture probe; // a recording only, to learn whether it fits
    QPainter painter(&probe);
    const bool fits = drawScaledBasicGraph(painter, renderer, area, Scale, false);
    painter.end();
    if (!fits)
        return std::nullopt;
    picture.paint = [renderer, area](QPainter &target) { drawScaledBasicGraph(target, renderer, area, Scale, false); };
    return picture;
}

} // namespace kel
