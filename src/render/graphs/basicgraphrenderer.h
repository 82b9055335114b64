// SPDX-License-Identifier: GPL-3.0-or-later
// Draws a question or block graph description with plain QPainter calls: a
// histogram of vertical bars, or a fraction graph of horizontal 100 % bars in
// coloured segments. One routine serves the window, and the clipboard,
// picture files and printer with another surface and scale.
#pragma once

#include "engine/graphs/basicgraph.h"
#include "render/pictures/picture.h"

#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

class QPainter;

namespace kel {

/// Resolution divided by 96, rounded halves to even, at least 1.
int graphScaleFactor(double dotsPerInch);

/// The quantities every part of the drawing is measured in, for one surface.
struct BasicGraphUnits {
    int sx = 1;
    int sy = 1;
    int gapX() const { return 6 * sx; }
    int gapY() const { return 6 * sy; }
    int titleHeight() const { return 24 * sy; }
    int textHeight() const { return 14 * sy; }
    int labelColumn() const { return 180 * sx; }
    int borderWidth() const { return sx; } // the one-pixel window border, scaled
    int borderHeight() const { return sy; }
};

class BasicGraphRenderer
{
public:
    /// Copies the description; `units` come from the surface's resolution.
    BasicGraphRenderer(BasicGraphDescription description, BasicGraphUnits units);

    const BasicGraphDescription &description() const { return mDescription; }
    const BasicGraphUnits &units() const { return mUnits; }
    void setUnits(BasicGraphUnits units);

    /// Paints the graph into `rect` (text transparent, nothing cleared).
    /// `outline` is the thickness of outlines and legend frames (at least one
    /// pixel is drawn). Returns false, having drawn nothing, when the graph
    /// does not fit.
    bool draw(QPainter &painter, const QRect &rect, int outline, bool percentage) const;

    /// Title and subtitle with their gaps (0 without either).
    int titleBlockHeight() const;
    /// The selection text word-wrapped to `width`.
    int selectionBlockHeight(int width) const;
    /// The legend block laid out in `width`.
    int legendBlockHeight(int width) const;

    QFont textFont() const;
    QFont titleFont() const;

    /// The histogram's tick step for a largest bar value.
    static int tickStep(int largestValue);

private:
    struct LegendLine;
    bool drawHistogram(QPainter &painter, const QRect &rect, int outline, bool percentage) const;
    bool drawFraction(QPainter &painter, const QRect &rect, int outline) const;
    void drawCommon(QPainter &painter, const QRect &rect, int outline) const;
    int drawLegends(QPainter *painter, const QRect &area, int outline) const;
    QString runMarker(int run) const;

    BasicGraphDescription mDescription;
    BasicGraphUnits mUnits;
    LegendRuns mRuns;
};

/// `text` word-wrapped to `width` pixels in `font`, as many whole lines as
/// `height` holds (at least one); when the text needs more, the last line
/// shown ends in "...". Never a line cut through its glyphs.
QStringList wholeLabelLines(const QString &text, const QFont &font, int width, int height);

/// The space a graph window keeps free on every side of the graph.
inline constexpr int BasicGraphMargin = 10;

/// The client size a graph window opens with at `dotsPerInch`: a fraction
/// graph is `windowWidthTwips` wide and `barWidth` pixels high per group
/// plus its text blocks; a histogram keeps the window's 620 x 460.
QSize basicGraphWindowSize(const BasicGraphRenderer &renderer, qint32 windowWidthTwips, qint32 barWidth,
                           double dotsPerInch);

/// Draws `renderer`'s graph into `area` of a surface `scale` times finer than
/// the screen the renderer was set up for (pictures are made at 2 or 4).
/// False, having drawn nothing, when the graph does not fit.
bool drawScaledBasicGraph(QPainter &painter, const BasicGraphRenderer &renderer, const QRect &area, int scale,
                          bool percentage);

/// The graph as a graph window opens with it and saves it with the stored
/// defaults: a screen of 96 dots per inch, twice the size, no margin kept.
/// Nothing when the graph does not fit in that window (the window would say
/// so instead of drawing it). `kel render` and reports draw graphs so.
std::optional<Picture> basicGraphDefaultPicture(const BasicGraphDescription &description);

} // namespace kel
