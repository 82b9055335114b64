// SPDX-License-Identifier: GPL-3.0-or-later
// The basic graph renderer against pictures that the test builds itself from
// the layout rules: where the plot lies, how wide the bars are, how high each
// one stands, where the fraction graph's segments begin and end.
#include "render/colour/documentcolour.h"
#include "render/graphs/basicgraphrenderer.h"
#include "render/overview/sheetdrawer.h"
#include "render/pictures/picturewriter.h"

#include "../pictures/metafilereader.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace kel;

namespace {

constexpr qint32 Red = 0x0000FF; // stored as 0x00BBGGRR
constexpr qint32 Green = 0x00FF00;
constexpr qint32 White = 0xFFFFFF;

// No texts: the pictures compare shapes, not glyphs.
BasicGraphBar bar(qint32 count, qint32 perMille, qint32 colour, qint32 flags = 0)
{
    return {count, perMille, {}, {}, colour, flags};
}

QImage blank(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

// Pixels of `region` that differ between the two pictures.
int differences(const QImage &actual, const QImage &expected, const QRect &region)
{
    int n = 0;
    for (int y = region.top(); y <= region.bottom(); ++y)
        for (int x = region.left(); x <= region.right(); ++x)
            n += actual.pixel(x, y) != expected.pixel(x, y);
    return n;
}

void framed(QPainter &p, const QRect &r, int frames)
{
    for (int i = 0; i < frames; ++i) {
        p.setPen(Qt::black);
        p.setBrush(Qt::NoBrush);
        p.drawRect(r.adjusted(i, i, -i - 1, -i - 1));
    }
}

// Two groups of three bars sharing one answer scale.
BasicGraphDescription histogram()
{
    BasicGraphDescription d;
    d.graphKind = HistogramGraph;
    d.legends = {{QStringLiteral("a"), Red, 0}, {QStringLiteral("b"), White, 0}, {QStringLiteral("c"), Green, 1}};
    d.bars = {bar(3, 500, Red), bar(1, 167, White), bar(2, 333, Green, 1),
              bar(2, 400, Red), bar(0, 0, White),   bar(3, 600, Green, 1)};
    d.groups = {{0, 3, QStringLiteral("L"), 0, 3}, {3, 3, QStringLiteral("M"), 0, 3}};
    return d;
}

// The metafile a reader gets of `d` drawn at `size`.
QByteArray emfOf(const BasicGraphDescription &d, const QSize &size)
{
    auto renderer = std::make_shared<BasicGraphRenderer>(d, BasicGraphUnits{1, 1});
    Picture picture;
    picture.size = size;
    picture.paint = [renderer, size](QPainter &p) { EXPECT_TRUE(renderer->draw(p, QRect(QPoint(), size), 0, false)); };
    return encodePicture(picture, PictureFormat::Emf);
}

} // namespace

// Documents store colours as Windows COLORREFs: red in the low byte. The
// sheet reads a negative value as "no colour"; graphs and charts never get one.
TEST(DocumentColour, RedIsTheLowByteAndTheHighByteIsIgnored)
{
    const struct {
        qint32 stored;
        int red, green, blue;
    } cases[] = {
        {0x000000FF, 255, 0, 0},        {0x0000FF00, 0, 255, 0}, {0x00FF0000, 0, 0, 255},
        {0x00123456, 0x56, 0x34, 0x12}, {0x7F0000FF, 255, 0, 0}, {0x00000000, 0, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.stored);
        EXPECT_EQ(documentColour(c.stored), QColor(c.red, c.green, c.blue));
        EXPECT_EQ(sheetColour(c.stored), QColor(c.red, c.green, c.blue));
    }
    EXPECT_FALSE(sheetColour(-1).isValid());
    EXPECT_FALSE(sheetColour(qint32(0x80000000)).isValid());
}

TEST(BasicGraphRenderer, TickStepsAndScaleFactors)
{
    const std::pair<int, int> cases[] = {{0, 1},     {3, 1},     {4, 1},      {5, 5},       {24, 5},
                                         {25, 10},   {49, 10},   {50, 20},    {99, 20},     {100, 25},
                                         {450, 100}, {999, 200}, {1000, 250}, {4999, 1000}, {49999, 10000}};
    for (const auto &[largest, step] : cases)
        EXPECT_EQ(BasicGraphRenderer::tickStep(largest), step) << largest;
    // Dots per inch over 96, halves to even, never below one.
    const std::pair<int, int> factors[] = {{96, 1}, {144, 2}, {240, 2}, {288, 3}, {10, 1}};
    for (const auto &[dpi, factor] : factors)
        EXPECT_EQ(graphScaleFactor(dpi), factor) << dpi;
}

TEST(BasicGraphRenderer, HistogramMatchesThePictureOfItsLayoutRules)
{
    for (const int outline : {0, 3}) {
        const BasicGraphUnits u{1, 1};
        const BasicGraphRenderer renderer(histogram(), u);
        const QRect R(10, 10, 420, 300);
        QImage actual = blank(QSize(440, 320));
        {
            QPainter p(&actual);
            ASSERT_TRUE(renderer.draw(p, R, outline, false));
        }

        // The layout rules, step by step.
        const QFontMetrics fm(renderer.textFont());
        const int h = 14, gx = 6, gy = 6;
        int widestTick = 0;
        for (int i = 0; i <= 5; ++i) // largest count 3 -> step 1 -> ticks 0..5
            widestTick = std::max(widestTick, fm.horizontalAdvance(QStringLiteral(" %1").arg(i)));
        const int left = R.left() + fm.height() + widestTick + gx + 1;
        const int right = R.right() + 1 - gx;
        const int B = 6, G = 2;
        const int w = (right - left - (G - 1 + B) * gx - 3) / B;
        const int groupWidth = 3 * w + 2 * gx;
        const int labelRow =
            fm.boundingRect(QRect(0, 0, groupWidth, 1000), Qt::TextWordWrap | Qt::AlignHCenter, QStringLiteral("L"))
                .height();
        const int legendBlock = (h + gy / 2) + gy / 2; // one run on one line
        const int top = R.top() + h;                   // no title, one run: no marker row
        const int bottom = R.bottom() + 1 - gy - legendBlock - gy - 1 - labelRow - gy;
        const int plotHeight = bottom - top;

        QImage expected = blank(actual.size());
        {
            QPainter p(&expected);
            const BasicGraphDescription d = histogram();
            for (int i = 0; i < B; ++i) {
                const int group = i / 3;
                const int x = left + gx + group * (groupWidth + 2 * gx) + (i % 3) * (w + gx);
                const int height = int(std::nearbyint(plotHeight * d.bars[i].count / 5.0));
                const QRect r(x, bottom - height, w, height);
                if (height == 0)
                    continue;
                p.fillRect(r, documentColour(d.bars[i].colour));
                if (d.bars[i].colour == White || (d.bars[i].drawFlags & 1))
                    framed(p, r, std::max(outline, 1));
            }
        }
        // Inside the plot only bars are drawn, nothing else.
        EXPECT_EQ(differences(actual, expected, QRect(left, top, right - left, plotHeight)), 0) << outline;
        // The axis stands just left of the plot and the base line just under it.
        EXPECT_EQ(QColor(actual.pixel(left - 1, top + plotHeight / 2)), QColor(Qt::black));
        EXPECT_EQ(QColor(actual.pixel(left + (right - left) / 2, bottom)), QColor(Qt::black));
    }
}

TEST(BasicGraphRenderer, FractionGraphSegmentsMatchTheirPerMille)
{
    BasicGraphDescription d;
    d.graphKind = FractionGraph;
    d.legends = {{QStringLiteral("a"), Red, 0}, {QStringLiteral("b"), White, 0}, {QStringLiteral("c"), Green, 0}};
    // The second group's middle alternative has no answers: it takes no width.
    d.bars = {bar(1, 250, Red), bar(1, 250, White), bar(2, 500, Green),
              bar(1, 333, Red), bar(0, 0, White),   bar(2, 667, Green)};
    d.groups = {{0, 3, QStringLiteral("one"), 0, 3}, {3, 3, QStringLiteral("two"), 0, 3}};
    const BasicGraphRenderer renderer(d, BasicGraphUnits{1, 1});
    const QRect R(0, 0, 500, 260);
    QImage actual = blank(R.size());
    {
        QPainter p(&actual);
        ASSERT_TRUE(renderer.draw(p, R, 0, false));
    }

    const int h = 14, gy = 6;
    const int barLeft = 180 + 6;
    const int barWidth = R.width() - 6 - barLeft;
    const int legendBlock = (h + gy / 2) + gy / 2;
    const int areaTop = h;
    const int areaBottom = R.height() - gy - legendBlock - gy - 1;
    const int barHeight = int(std::nearbyint((areaBottom - areaTop - 3 * gy) / 2.0));
    QImage expected = blank(R.size());
    {
        QPainter p(&expected);
        int y = areaTop + gy;
        for (int g = 0; g < 2; ++g) {
            int start = barLeft;
            int sum = 0;
            for (int i = 3 * g; i < 3 * g + 3; ++i) {
                if (d.bars[i].count == 0)
                    continue;
                sum += d.bars[i].perMille;
                const int end = int(std::nearbyint(barLeft + barWidth * sum / 1000.0 + 1));
                const QRect r(start, y, end - start, barHeight);
                p.fillRect(r, documentColour(d.bars[i].colour));
                if (d.bars[i].colour == White)
                    framed(p, r, 1);
                start = end;
            }
            y += barHeight + gy;
        }
    }
    EXPECT_EQ(differences(actual, expected, QRect(barLeft, areaTop + gy, barWidth + 1, 2 * barHeight + gy)), 0);
}

TEST(BasicGraphRenderer, GraphsThatDoNotFitDrawNothing)
{
    const BasicGraphRenderer renderer(histogram(), BasicGraphUnits{1, 1});
    // Six bars need 12 px each plus seven gaps and 3 px: about 100 px of
    // plot is too little; 90 px of window leaves less than 50 px of plot.
    QImage image = blank(QSize(200, 300));
    {
        QPainter p(&image);
        EXPECT_FALSE(renderer.draw(p, QRect(0, 0, 150, 300), 0, false));
        EXPECT_FALSE(renderer.draw(p, QRect(0, 0, 90, 300), 0, false));
    }
    EXPECT_EQ(differences(image, blank(image.size()), image.rect()), 0);

    BasicGraphDescription fraction = histogram();
    fraction.graphKind = FractionGraph;
    QPainter p(&image);
    EXPECT_FALSE(BasicGraphRenderer(fraction, {1, 1}).draw(p, QRect(0, 0, 200, 300), 0, false)); // bar area < 50 px
    EXPECT_FALSE(BasicGraphRenderer(fraction, {1, 1}).draw(p, QRect(0, 0, 600, 70), 0, false));  // bars below text
    fraction.graphKind = 3;
    EXPECT_FALSE(BasicGraphRenderer(fraction, {1, 1}).draw(p, QRect(0, 0, 600, 400), 0, false)); // unknown kind
}

// A fraction graph's labels keep whole lines: exactly as many as the bar's
// height holds, the last shortened with an ellipsis when the text goes on.
TEST(BasicGraphRenderer, FractionLabelsKeepWholeLines)
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(14);
    const QFontMetrics metrics(font);
    const QString label = QStringLiteral("Word1 Word2 Word3 Word4");
    // Room for one word a line, not two.
    const int width = metrics.horizontalAdvance(QStringLiteral("Word1")) + 2;
    ASSERT_LT(width, metrics.horizontalAdvance(QStringLiteral("Word1 Word2")));
    const int ls = metrics.lineSpacing();
    const QChar ellipsis(0x2026);
    struct Case {
        int height;
        int lines;
        bool shortened;
    };
    static const Case cases[] = {
        {4 * ls, 4, false}, {4 * ls - 1, 3, true}, {3 * ls, 3, true}, {2 * ls - 1, 1, true}, {1, 1, true}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.height);
        const QStringList lines = wholeLabelLines(label, font, width, c.height);
        ASSERT_EQ(lines.size(), c.lines);
        for (int i = 0; i + 1 < c.lines; ++i)
            EXPECT_EQ(lines[i], QStringLiteral("Word%1").arg(i + 1));
        EXPECT_EQ(lines.last().endsWith(ellipsis), c.shortened) << lines.last().toStdString();
        if (!c.shortened) {
            EXPECT_EQ(lines.last(), QStringLiteral("Word4"));
        }
        for (const QString &line : lines)
            EXPECT_LE(metrics.horizontalAdvance(line), width) << line.toStdString();
    }
}

// Every text of a fraction graph with long labels lies inside the picture
// and inside any clip it is drawn under, in the metafile a reader gets.
TEST(BasicGraphRenderer, FractionGraphTextsAreNeverCut)
{
    BasicGraphDescription d;
    d.graphKind = FractionGraph;
    d.totalText = QStringLiteral("Total [600]");
    d.legends = {{QStringLiteral("yes"), Red, 0}, {QStringLiteral("no"), Green, 0}};
    d.bars = {{3, 600, QStringLiteral("3"), QStringLiteral("60%"), Red, 0},
              {2, 400, QStringLiteral("2"), QStringLiteral("40%"), Green, 0},
              {1, 1000, QStringLiteral("1"), QStringLiteral("100%"), Red, 0},
              {0, 0, QStringLiteral("0"), QStringLiteral("0%"), Green, 0}};
    const QString longLabel = QStringLiteral("A question whose text runs over many lines of the label column, far "
                                             "more than the bar beside it can hold");
    d.groups = {{0, 2, longLabel, 0, 2}, {2, 2, QStringLiteral("Short"), 0, 2}};
    d.valueScale = 1000;
    const QByteArray emf = emfOf(d, QSize(600, 150));
    ASSERT_FALSE(emf.isEmpty());
    EXPECT_EQ(kel::test::emfTextsCut(emf, QSize(600, 150)).join(QLatin1Char('|')).toStdString(), "");
    QStringList texts;
    for (const auto &t : kel::test::emfTextBoxes(emf))
        texts << t.text;
    EXPECT_TRUE(texts.contains(QStringLiteral("100")));
    EXPECT_TRUE(texts.contains(QStringLiteral("Total [600]")));
    EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [](const QString &t) { return t.endsWith(QChar(0x2026)); }))
        << "the long label is shortened: " << texts.join(QLatin1Char('|')).toStdString();
}

// A histogram of narrow groups: a word wider than its group breaks rather
// than being cut at both ends, and values wider than their bars take a size
// that keeps them apart. Read back from the metafile a reader gets.
TEST(BasicGraphRenderer, HistogramTextsAreNeverCutAndValuesNeverTouch)
{
    BasicGraphDescription d;
    d.graphKind = HistogramGraph;
    d.totalText = QStringLiteral("Total [600]");
    d.legends = {{QStringLiteral("yes"), Red, 0}, {QStringLiteral("no"), Green, 0}};
    const QString longWord = QStringLiteral("Arbetsbelastningsförhållanden");
    for (int g = 0; g < 12; ++g) {
        d.bars.push_back({160 + g, 500, QString::number(160 + g), QStringLiteral("50%"), Red, 0});
        d.bars.push_back({158 + g, 500, QString::number(158 + g), QStringLiteral("50%"), Green, 0});
        d.groups.push_back(
            {2 * g, 2, g == 0 ? QStringLiteral("1 (0.45) ") + longWord : QStringLiteral("Q%1").arg(g), 0, 2});
    }
    const QByteArray emf = emfOf(d, QSize(700, 400));
    ASSERT_FALSE(emf.isEmpty());
    EXPECT_EQ(kel::test::emfTextsCut(emf, QSize(700, 400)).join(QLatin1Char('|')).toStdString(), "");
    QString labelText;
    std::vector<QRect> values;
    for (const auto &t : kel::test::emfTextBoxes(emf)) {
        bool number = false;
        t.text.toInt(&number);
        if (number && t.text.toInt() >= 158)
            values.push_back(t.box);
        else
            labelText += t.text;
    }
    EXPECT_TRUE(labelText.contains(longWord.left(8))) << labelText.toStdString();
    EXPECT_TRUE(labelText.contains(longWord.right(4))) << "the word's end is not lost: " << labelText.toStdString();
    EXPECT_GE(values.size(), 12u) << "values are left out only where even the smaller size cannot part them";
    for (std::size_t i = 0; i < values.size(); ++i)
        for (std::size_t j = i + 1; j < values.size(); ++j)
            EXPECT_FALSE(values[i].intersects(values[j])) << i << " and " << j;
}
