// SPDX-License-Identifier: GPL-3.0-or-later
// The GIF writer as it was before pictures were written in bands: the whole
// picture converted to 256 colours by Qt, then encoded. Kept as the
// baseline of bench_pictures.
#include "oldgifencoder.h"

#include <gif_lib.h>

#include <vector>

namespace bench {

namespace {

int appendToArray(GifFileType *gif, const GifByteType *data, int length)
{
    static_cast<QByteArray *>(gif->UserData)->append(reinterpret_cast<const char *>(data), length);
    return length;
}

QString gifError(int code)
{
    const char *text = GifErrorString(code);
    return QString::fromUtf8(text ? text : "GIF error") + QStringLiteral(" (%1)").arg(code);
}

} // namespace

QByteArray encodeGifWhole(const QImage &image, QString *error)
{
    if (image.isNull() || image.width() > 0xFFFF || image.height() > 0xFFFF) {
        if (error)
            *error = QStringLiteral("The picture is too large for a GIF file.");
        return QByteArray();
    }
    // Drawings have few colours: an exact palette when they fit in 256.
    const QImage indexed = image.convertToFormat(QImage::Format_RGB32)
                               .convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither | Qt::AvoidDither);
    int colours = 2;
    while (colours < int(indexed.colorCount()))
        colours *= 2;
    std::vector<GifColorType> palette(std::size_t(colours), GifColorType{0, 0, 0});
    for (int i = 0; i < int(indexed.colorCount()); ++i) {
        const QRgb c = indexed.color(i);
        palette[std::size_t(i)] = GifColorType{GifByteType(qRed(c)), GifByteType(qGreen(c)), GifByteType(qBlue(c))};
    }

    QByteArray out;
    int code = 0;
    GifFileType *gif = EGifOpen(&out, appendToArray, &code);
    if (!gif) {
        if (error)
            *error = gifError(code);
        return QByteArray();
    }
    ColorMapObject *map = GifMakeMapObject(colours, palette.data());
    bool ok = map && EGifPutScreenDesc(gif, indexed.width(), indexed.height(), 8, 0, map) == GIF_OK
        && EGifPutImageDesc(gif, 0, 0, indexed.width(), indexed.height(), false, nullptr) == GIF_OK;
    for (int y = 0; ok && y < indexed.height(); ++y)
        ok = EGifPutLine(gif, const_cast<GifPixelType *>(indexed.constScanLine(y)), indexed.width()) == GIF_OK;
    if (!ok)
        code = gif->Error;
    GifFreeMapObject(map);
    int closeCode = 0;
    if (EGifCloseFile(gif, &closeCode) != GIF_OK && ok) {
        ok = false;
        code = closeCode;
    }
    if (!ok) {
        if (error)
            *error = gifError(code);
        return QByteArray();
    }
    return out;
}

} // namespace bench
