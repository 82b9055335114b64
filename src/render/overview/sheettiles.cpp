// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/overview/sheettiles.h"

#include <QPainter>

#include <algorithm>

namespace kel {

namespace {

quint64 tileKey(int column, int line)
{
    return (quint64(quint32(line)) << 32) | quint32(column);
}

int tilesAcross(int pixels)
{
    return (std::max(0, pixels) + SheetTiles::TileSize - 1) / SheetTiles::TileSize;
}

} // namespace

int SheetTiles::capacityFor(const QSize &viewSize)
{
    // A view not aligned to the tiles straddles one more of them each way;
    // the ring beyond that is what the next scroll step brings in.
    const int across = tilesAcross(viewSize.width()) + 1;
    const int down = tilesAcross(viewSize.height()) + 1;
    return across * down + across + down + 1;
}

void SheetTiles::setCapacity(int tiles)
{
    mCapacity = std::max(0, tiles);
    evict();
}

void SheetTiles::clear()
{
    mTiles.clear();
}

qint64 SheetTiles::memoryBytes() const
{
    qint64 bytes = 0;
    for (const Tile &t : mTiles)
        bytes += t.image.sizeInBytes();
    return bytes;
}

void SheetTiles::paint(QPainter &painter, const QPoint &target, const QRect &source, const SheetInput &input,
                       SheetTextOffsets &offsets, const SheetGeometry &geometry)
{
    const QRect part = source.intersected(QRect(0, 0, geometry.width(), geometry.height()));
    if (part.isEmpty() || !input.document)
        return;
    const QPoint shift = target - source.topLeft();
    if (mCapacity == 0) {
        painter.save();
        painter.translate(shift);
        drawSheetArea(painter, input, offsets, part);
        painter.restore();
        return;
    }
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    if (ratio != mRatio) {
        mTiles.clear();
        mRatio = ratio;
    }
    ++mClock;
    const int firstColumn = part.left() / TileSize;
    const int lastColumn = part.right() / TileSize;
    const int firstLine = part.top() / TileSize;
    const int lastLine = part.bottom() / TileSize;
    for (int line = firstLine; line <= lastLine; ++line) {
        for (int column = firstColumn; column <= lastColumn; ++column) {
            const Tile &t = tile(column, line, input, offsets, geometry);
            const QRect tileRect(column * TileSize, line * TileSize, TileSize, TileSize);
            const QRect piece = tileRect.intersected(part);
            const QRectF from((piece.left() - tileRect.left()) * mRatio, (piece.top() - tileRect.top()) * mRatio,
                              piece.width() * mRatio, piece.height() * mRatio);
            painter.drawImage(QRectF(piece.translated(shift)), t.image, from);
        }
    }
    evict();
}

const SheetTiles::Tile &SheetTiles::tile(int column, int line, const SheetInput &input, SheetTextOffsets &offsets,
                                         const SheetGeometry &geometry)
{
    Tile &t = mTiles[tileKey(column, line)];
    t.lastUse = mClock;
    if (!t.image.isNull())
        return t;
    // Tiles at the sheet's right and bottom edges are cut to the sheet.
    const QRect area = QRect(column * TileSize, line * TileSize, TileSize, TileSize)
                           .intersected(QRect(0, 0, geometry.width(), geometry.height()));
    t.image = QImage(qRound(area.width() * mRatio), qRound(area.height() * mRatio), QImage::Format_RGB32);
    if (t.image.isNull())
        return t; // out of memory: the part stays unpainted rather than the program failing
    t.image.setDevicePixelRatio(mRatio);
    QPainter painter(&t.image);
    painter.translate(-area.topLeft());
    drawSheetArea(painter, input, offsets, area);
    return t;
}

void SheetTiles::evict()
{
    // The least recently shown go first; those of the last paint stay even
    // when they are more than the capacity (a window grown in one step).
    while (mTiles.size() > mCapacity) {
        auto oldest = std::min_element(mTiles.begin(), mTiles.end(),
                                       [](const Tile &a, const Tile &b) { return a.lastUse < b.lastUse; });
        if (oldest == mTiles.end() || oldest->lastUse == mClock)
            break;
        mTiles.erase(oldest);
    }
}

} // namespace kel
