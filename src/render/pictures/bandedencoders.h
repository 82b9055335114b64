// SPDX-License-Identifier: GPL-3.0-or-later
// PNG, BMP and GIF files written a band of rows at a time: the picture is
// drawn one band after another into one band-sized image and each band is
// encoded before the next is drawn, so neither the whole picture nor the
// whole file (where the device is a file) is ever held in memory.
#pragma once

#include "render/pictures/picture.h"

#include <QColor>
#include <QImage>

class QIODevice;

namespace kel {

/// A picture drawn band by band. Pictures with an area routine are cut into
/// bands of about `bandBytes`; others are drawn whole, in one band.
class PictureBands
{
public:
    static constexpr qint64 DefaultBandBytes = qint64(16) * 1024 * 1024;

    PictureBands(const Picture &picture, QImage::Format format, QColor background, qint64 bandBytes = DefaultBandBytes);

    /// False when the picture is empty or a band cannot be made.
    bool isValid() const { return mBandRows > 0; }
    int width() const { return mPicture.size.width(); }
    int height() const { return mPicture.size.height(); }
    int bandRows() const { return mBandRows; }

    /// Rows [top, top + bandRows()) (fewer at the bottom) drawn into the band
    /// image, which is reused from band to band.
    const QImage &draw(int top);
    /// The band as last drawn.
    const QImage &band() const { return mBand; }

private:
    const Picture &mPicture;
    // The last, shorter band is a view of the first rows of the full one:
    // a copy would hold both at once.
    QImage mStorage;
    QImage mBand;
    QColor mBackground;
    int mBandRows = 0;
};

/// zlib level and row filters (libpng's PNG_FILTER_ bits) of opaque PNGs.
/// Measured on a 250-column overview (bench_pictures): the Up filter alone,
/// which needs no search, turns the sheet's repeated pixel rows into zeros;
/// level 6 is the lowest whose files are no larger than those of the
/// adaptive filters Qt's writer used (level 5 is 10 % larger).
///
/// With one filter, zlib's level 6 costs most of the writing, so the rows
/// are deflated in pieces of about `pieceBytes` on `threads` threads (0: one
/// per processor; no more than 8 MB of pieces wait at a time), each piece
/// primed with the 32 KB before it, into one zlib stream, while the next
/// band is drawn. The pieces depend only on the picture, the band and
/// `pieceBytes`: the file is the same on any number of threads. Several
/// filters (a per-row search) go through libpng, on one thread, as do
/// transparent pictures.
struct PngEncoding {
    static constexpr qint64 DefaultPieceBytes = qint64(2) * 1024 * 1024;

    int level = 6;
    int filters = 0x20; // PNG_FILTER_UP
    int threads = 0;
    qint64 pieceBytes = DefaultPieceBytes;
    /// False: libpng's single stream on this thread, as before the pieces.
    bool parallel = true;
};

/// Each writes `picture` to `device` (already open for writing) and returns
/// false with `error` set on failure (the device then holds part of a file).
/// Opaque pictures are PNGs of RGB rows with `encoding`; others keep their
/// transparency in RGBA rows with libpng's adaptive filters.
bool writePng(const Picture &picture, QIODevice &device, QString *error,
              qint64 bandBytes = PictureBands::DefaultBandBytes, const PngEncoding &encoding = PngEncoding());
/// A 24-bit BMP on white, rows from the bottom up as the format stores them.
bool writeBmp(const Picture &picture, QIODevice &device, QString *error,
              qint64 bandBytes = PictureBands::DefaultBandBytes);
/// A GIF on white: an exact palette when the picture has at most 256
/// colours, else the 6 x 6 x 6 colour cube, each pixel to its nearest level.
/// Drawn twice (colours first, then the pixels) when it has several bands.
bool writeGif(const Picture &picture, QIODevice &device, QString *error,
              qint64 bandBytes = PictureBands::DefaultBandBytes);

} // namespace kel
