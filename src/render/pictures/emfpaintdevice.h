// SPDX-License-Identifier: GPL-3.0-or-later
// A paint device that keeps what a QPainter draws as metafile drawing
// operations (fills, polygons, lines, texts with their fonts), in device
// pixels. The EMF and WMF encoders turn one recording into records, so the
// two file kinds carry the same drawing and stay vector pictures.
#pragma once

#include "render/pictures/picture.h"

#include <QImage>
#include <QPaintDevice>
#include <QPoint>
#include <QPolygon>
#include <QRect>
#include <QRgb>
#include <QString>

#include <deque>
#include <memory>
#include <vector>

namespace kel {

/// The face name a metafile gives `family`: generic and fallback names that
/// only this system knows become the faces that office programs on Windows
/// have and on Linux map to their metric twins ("Sans Serif" -> "Arial").
QString metafileFaceName(const QString &family);

/// The drawing surface's resolution: what a 96 dpi screen would show.
inline constexpr int MetafileDotsPerInch = 96;

struct MetafilePen {
    /// Line styles as the metafile formats number them.
    enum Style : int { Solid = 0, Dash = 1, Dot = 2, DashDot = 3, DashDotDot = 4 };
    bool visible = false;
    QRgb colour = 0xFF000000;
    int width = 1; ///< pixels, at least 1
    int style = Solid;
    bool operator==(const MetafilePen &) const = default;
};

struct MetafileBrush {
    bool visible = false;
    QRgb colour = 0xFFFFFFFF;
    bool operator==(const MetafileBrush &) const = default;
};

struct MetafileFont {
    QString family;
    int pixelHeight = 12; ///< em height in pixels (a font's negative LOGFONT height)
    int weight = 400;     ///< 100..900, 400 normal, 700 bold
    bool italic = false;
    int escapement = 0; ///< tenths of a degree, counter-clockwise
    MetafileFontClass fontClass;
    bool operator==(const MetafileFont &) const = default;
};

struct MetafileOp {
    /// Clip: from here on drawing is limited to `rect` (device pixels,
    /// possibly empty) when `clipped`, else not limited.
    enum Kind { FillRect, Polygon, PolyPolygon, Polyline, Text, Image, Clip };
    Kind kind = FillRect;
    QRect rect;                   ///< FillRect, Image (target)
    std::vector<QPolygon> shapes; ///< Polygon/Polyline: one; PolyPolygon: several
    MetafilePen pen;
    MetafileBrush brush;
    // Text: drawn with its baseline's left end at `origin`.
    QPoint origin;
    QString text;
    std::vector<int> advances; ///< per UTF-16 unit, pixels
    MetafileFont font;
    QImage image;
    bool clipped = false;
};

struct MetafileRecording {
    QSize size; ///< pixels
    /// A deque: a sheet records a few hundred thousand operations, which a
    /// vector would copy again at every growth.
    std::deque<MetafileOp> ops;
};

/// A QPaintDevice that records into a MetafileRecording. Paint on it with a
/// QPainter, end the painter, then take the recording.
class MetafilePaintDevice : public QPaintDevice
{
public:
    explicit MetafilePaintDevice(const QSize &size, MetafileFontClass fontClass = {});
    ~MetafilePaintDevice() override;

    QPaintEngine *paintEngine() const override;
    const MetafileRecording &recording() const;
    MetafileRecording takeRecording();

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    QSize mSize;
    std::unique_ptr<class MetafilePaintEngine> mEngine;
};

} // namespace kel
