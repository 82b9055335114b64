// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/pictures/bandedencoders.h"

#include "render/pictures/emfpaintdevice.h"

#include <QHash>
#include <QIODevice>
#include <QPainter>
#include <QtEndian>

#include <gif_lib.h>
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <vector>

namespace kel {

namespace {

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

QString writeFailure(const QIODevice &device)
{
    const QString reason = device.errorString();
    return reason.isEmpty() ? QStringLiteral("The file could not be written.") : reason;
}

int dotsPerMeter()
{
    return qRound(MetafileDotsPerInch / 0.0254);
}

} // namespace

PictureBands::PictureBands(const Picture &picture, QImage::Format format, QColor background, qint64 bandBytes)
    : mPicture(picture), mBackground(background)
{
    if (!picture.isValid())
        return;
    const qint64 rowBytes = qint64(picture.size.width()) * 4;
    int rows = picture.size.height();
    if (picture.paintArea)
        rows = int(std::clamp<qint64>(bandBytes / rowBytes, 1, picture.size.height()));
    mBand = QImage(picture.size.width(), rows, format);
    if (mBand.isNull())
        return; // too large for memory: not valid
    mBandRows = rows;
}

const QImage &PictureBands::draw(int top)
{
    const int rows = std::min(mBandRows, height() - top);
    if (rows != mBand.height())
        mBand = mBand.copy(0, 0, width(), rows); // the last, shorter band
    mBand.fill(mBackground);
    QPainter painter(&mBand);
    painter.translate(0, -top);
    if (mPicture.paintArea)
        mPicture.paintArea(painter, QRect(0, top, width(), rows));
    else
        mPicture.paint(painter);
    return mBand;
}

// --- PNG -------------------------------------------------------------------

namespace {

struct PngContext {
    QIODevice *device = nullptr;
    QString error;
};

void pngWrite(png_structp png, png_bytep data, size_t length)
{
    auto *context = static_cast<PngContext *>(png_get_io_ptr(png));
    if (context->device->write(reinterpret_cast<const char *>(data), qint64(length)) != qint64(length)) {
        context->error = writeFailure(*context->device);
        png_error(png, "write");
    }
}

void pngFlush(png_structp)
{
}

void pngFailure(png_structp png, png_const_charp message)
{
    auto *context = static_cast<PngContext *>(png_get_error_ptr(png));
    if (context->error.isEmpty())
        context->error = QString::fromUtf8(message);
    png_longjmp(png, 1);
}

void pngWarning(png_structp, png_const_charp)
{
}

// Everything libpng may jump out of lives here, with no object that needs
// destroying on the way out.
bool writePngRows(png_structp png, png_infop info, PictureBands &bands, bool opaque, const PngEncoding &encoding)
{
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_IHDR(png, info, png_uint_32(bands.width()), png_uint_32(bands.height()), 8,
                 opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, png_uint_32(dotsPerMeter()), png_uint_32(dotsPerMeter()), PNG_RESOLUTION_METER);
    if (opaque) {
        // A sheet repeats each pixel row many times: one fixed filter does
        // as well as the per-row search, which costs more than zlib.
        png_set_filter(png, PNG_FILTER_TYPE_BASE, encoding.filters);
        png_set_compression_level(png, encoding.level);
    }
    png_write_info(png, info);
    if (opaque) {
        // RGB32 rows as they are (B, G, R, unused on a little-endian machine;
        // unused, R, G, B on a big-endian one): libpng drops the unused byte
        // and orders the others as it writes, saving a conversion pass.
        png_set_filler(png, 0, Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? PNG_FILLER_AFTER : PNG_FILLER_BEFORE);
        if (Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
            png_set_bgr(png);
    }
    for (int top = 0; top < bands.height(); top += bands.bandRows()) {
        const QImage &band = bands.draw(top);
        const QImage rows = opaque ? band : band.convertToFormat(QImage::Format_RGBA8888);
        for (int y = 0; y < rows.height(); ++y)
            png_write_row(png, rows.constScanLine(y));
    }
    png_write_end(png, info);
    return true;
}

} // namespace

bool writePng(const Picture &picture, QIODevice &device, QString *error, qint64 bandBytes, const PngEncoding &encoding)
{
    const bool opaque = picture.opaque;
    PictureBands bands(picture, opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied,
                       opaque ? QColor(Qt::white) : QColor(Qt::transparent), bandBytes);
    if (!bands.isValid()) {
        setError(error, QStringLiteral("The picture is too large to be made as an image."));
        return false;
    }
    PngContext context;
    context.device = &device;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &context, pngFailure, pngWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        setError(error, QStringLiteral("The PNG file could not be started."));
        return false;
    }
    png_set_write_fn(png, &context, pngWrite, pngFlush);
    const bool ok = writePngRows(png, info, bands, opaque, encoding);
    png_destroy_write_struct(&png, &info);
    if (!ok)
        setError(error, context.error);
    return ok;
}

// --- BMP -------------------------------------------------------------------

bool writeBmp(const Picture &picture, QIODevice &device, QString *error, qint64 bandBytes)
{
    PictureBands bands(picture, QImage::Format_RGB32, Qt::white, bandBytes);
    if (!bands.isValid()) {
        setError(error, QStringLiteral("The picture is too large to be made as an image."));
        return false;
    }
    const qint64 rowBytes = (qint64(bands.width()) * 24 + 31) / 32 * 4;
    const qint64 imageBytes = rowBytes * bands.height();
    constexpr int HeaderBytes = 14 + 40;
    if (HeaderBytes + imageBytes > qint64(0xFFFFFFFF)) {
        setError(error, QStringLiteral("The picture is too large for a BMP file."));
        return false;
    }
    // BITMAPFILEHEADER and BITMAPINFOHEADER, little-endian.
    QByteArray header(HeaderBytes, '\0');
    auto put16 = [&](int at, quint16 v) { qToLittleEndian(v, header.data() + at); };
    auto put32 = [&](int at, quint32 v) { qToLittleEndian(v, header.data() + at); };
    header[0] = 'B';
    header[1] = 'M';
    put32(2, quint32(HeaderBytes + imageBytes));
    put32(10, HeaderBytes);
    put32(14, 40);
    put32(18, quint32(bands.width()));
    put32(22, quint32(bands.height())); // positive: rows from the bottom up
    put16(26, 1);
    put16(28, 24);
    put32(30, 0); // BI_RGB
    put32(34, quint32(imageBytes));
    put32(38, quint32(dotsPerMeter()));
    put32(42, quint32(dotsPerMeter()));
    if (device.write(header) != header.size()) {
        setError(error, writeFailure(device));
        return false;
    }
    // The file starts with the bottom row: bands are drawn from the bottom.
    const int bandCount = (bands.height() + bands.bandRows() - 1) / bands.bandRows();
    QByteArray row(rowBytes, '\0'); // the padding stays zero
    for (int band = bandCount - 1; band >= 0; --band) {
        const QImage image = bands.draw(band * bands.bandRows()).convertToFormat(QImage::Format_BGR888);
        for (int y = image.height() - 1; y >= 0; --y) {
            std::memcpy(row.data(), image.constScanLine(y), std::size_t(image.width()) * 3);
            if (device.write(row) != row.size()) {
                setError(error, writeFailure(device));
                return false;
            }
        }
    }
    return true;
}

// --- GIF -------------------------------------------------------------------

namespace {

int gifWrite(GifFileType *gif, const GifByteType *data, int length)
{
    auto *device = static_cast<QIODevice *>(gif->UserData);
    return int(device->write(reinterpret_cast<const char *>(data), length));
}

QString gifError(int code)
{
    const char *text = GifErrorString(code);
    return QString::fromUtf8(text ? text : "GIF error") + QStringLiteral(" (%1)").arg(code);
}

// The level (0-5) of the colour cube nearest to a channel value.
int cubeLevel(int channel)
{
    return (channel * 5 + 127) / 255;
}

// Colours in the picture, up to one more than a palette holds.
std::vector<QRgb> collectColours(PictureBands &bands)
{
    QHash<QRgb, bool> seen;
    for (int top = 0; top < bands.height() && seen.size() <= 256; top += bands.bandRows()) {
        const QImage &image = bands.draw(top);
        QRgb last = 0;
        bool any = false;
        for (int y = 0; y < image.height() && seen.size() <= 256; ++y) {
            const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const QRgb c = pixels[x] | 0xFF000000;
                if (any && c == last)
                    continue;
                seen.insert(c, true);
                last = c;
                any = true;
            }
        }
    }
    std::vector<QRgb> colours(seen.keyBegin(), seen.keyEnd());
    std::sort(colours.begin(), colours.end());
    return colours;
}

} // namespace

bool writeGif(const Picture &picture, QIODevice &device, QString *error, qint64 bandBytes)
{
    PictureBands bands(picture, QImage::Format_RGB32, Qt::white, bandBytes);
    if (!bands.isValid()) {
        setError(error, QStringLiteral("The picture is too large to be made as an image."));
        return false;
    }
    if (bands.width() > 0xFFFF || bands.height() > 0xFFFF) {
        setError(error, QStringLiteral("The picture is too large for a GIF file."));
        return false;
    }
    // Drawings have few colours: an exact palette when they fit in 256. A
    // single band is kept from the count to the writing.
    std::vector<QRgb> colours = collectColours(bands);
    const bool exact = colours.size() <= 256;
    const bool oneBand = bands.bandRows() >= bands.height();
    QHash<QRgb, int> indexOf;
    std::vector<GifColorType> palette;
    if (exact) {
        for (std::size_t i = 0; i < colours.size(); ++i) {
            indexOf.insert(colours[i], int(i));
            palette.push_back(GifColorType{GifByteType(qRed(colours[i])), GifByteType(qGreen(colours[i])),
                                           GifByteType(qBlue(colours[i]))});
        }
    } else {
        for (int r = 0; r < 6; ++r)
            for (int g = 0; g < 6; ++g)
                for (int b = 0; b < 6; ++b)
                    palette.push_back(GifColorType{GifByteType(r * 51), GifByteType(g * 51), GifByteType(b * 51)});
    }
    int size = 2;
    while (size < int(palette.size()))
        size *= 2;
    palette.resize(std::size_t(size), GifColorType{0, 0, 0});

    int code = 0;
    GifFileType *gif = EGifOpen(&device, gifWrite, &code);
    if (!gif) {
        setError(error, gifError(code));
        return false;
    }
    ColorMapObject *map = GifMakeMapObject(size, palette.data());
    bool ok = map && EGifPutScreenDesc(gif, bands.width(), bands.height(), 8, 0, map) == GIF_OK
        && EGifPutImageDesc(gif, 0, 0, bands.width(), bands.height(), false, nullptr) == GIF_OK;
    std::vector<GifPixelType> line(std::size_t(bands.width()));
    for (int top = 0; ok && top < bands.height(); top += bands.bandRows()) {
        const QImage &image = oneBand ? bands.band() : bands.draw(top);
        for (int y = 0; ok && y < image.height(); ++y) {
            const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            QRgb last = 0;
            int lastIndex = -1;
            for (int x = 0; x < image.width(); ++x) {
                const QRgb c = pixels[x] | 0xFF000000;
                if (lastIndex < 0 || c != last) {
                    last = c;
                    lastIndex = exact ? indexOf.value(c)
                                      : (cubeLevel(qRed(c)) * 6 + cubeLevel(qGreen(c))) * 6 + cubeLevel(qBlue(c));
                }
                line[std::size_t(x)] = GifPixelType(lastIndex);
            }
            ok = EGifPutLine(gif, line.data(), image.width()) == GIF_OK;
        }
    }
    if (!ok)
        code = gif->Error;
    GifFreeMapObject(map);
    int closeCode = 0;
    if (EGifCloseFile(gif, &closeCode) != GIF_OK && ok) {
        ok = false;
        code = closeCode;
    }
    if (!ok)
        setError(error, gifError(code));
    return ok;
}

} // namespace kel
