// SPDX-License-Identifier: GPL-3.0-or-later
// The sheet shown a part at a time: whatever part of the sheet a window
// shows is drawn from drawSheetArea() in square tiles that are kept and
// reused while the window scrolls. Memory follows the window's size, never
// the sheet's, and every shown pixel is the one the whole picture has there.
#pragma once

#include "render/overview/sheetdrawer.h"

#include <QHash>
#include <QImage>
#include <QPoint>
#include <QRect>

class QPainter;

namespace kel {

class SheetTiles
{
public:
    /// Side of a tile in the sheet's pixels (device-independent).
    static constexpr int TileSize = 256;

    /// Tiles to keep for a window of `viewSize` pixels: all that can be seen
    /// at once plus one more line and column of them, so that scrolling
    /// step by step draws only the tiles coming into view.
    static int capacityFor(const QSize &viewSize);

    /// How many tiles are kept at most; 0 keeps none and draws every shown
    /// part straight onto the painter (for windows that seldom scroll).
    void setCapacity(int tiles);
    int capacity() const { return mCapacity; }

    /// Forgets every tile: the sheet changed.
    void clear();
    int tileCount() const { return int(mTiles.size()); }
    /// Bytes held by the kept tiles.
    qint64 memoryBytes() const;

    /// Paints the part `source` of the sheet (in its pixels) with its
    /// top-left corner at `target` on `painter`, drawing the tiles it needs
    /// that are not kept. Tiles are made at the painter's device pixel ratio;
    /// a new ratio starts them afresh.
    void paint(QPainter &painter, const QPoint &target, const QRect &source, const SheetInput &input,
               SheetTextOffsets &offsets, const SheetGeometry &geometry);

private:
    struct Tile {
        QImage image;
        quint64 lastUse = 0;
    };

    const Tile &tile(int column, int line, const SheetInput &input, SheetTextOffsets &offsets,
                     const SheetGeometry &geometry);
    void evict();

    QHash<quint64, Tile> mTiles;
    int mCapacity = 0;
    qreal mRatio = 1.0;
    quint64 mClock = 0;
};

} // namespace kel
