// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/pictures/picturewriter.h"

#include "render/pictures/emfpaintdevice.h"
#include "render/pictures/bandedencoders.h"
#include "render/pictures/metafilewriter.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

namespace kel {

namespace {

// Beyond this many pixels an image would take more than a gigabyte.
constexpr qint64 MaxImagePixels = qint64(256) * 1024 * 1024;

MetafileRecording recordPicture(const Picture &picture)
{
    MetafilePaintDevice device(picture.size, picture.metafileFonts);
    QPainter painter(&device);
    picture.paint(painter);
    painter.end();
    return device.takeRecording();
}

bool writeJpg(const Picture &picture, QIODevice &device, WriteFailure *failure)
{
    const QImage image = renderPictureImage(picture, Qt::white);
    if (image.isNull()) {
        setWriteFailure(failure, WriteFailureCode::TooLargeForImage);
        return false;
    }
    QImageWriter writer(&device, "jpg");
    writer.setQuality(90);
    if (!writer.write(image)) {
        setWriteFailure(failure, WriteFailureCode::EncoderFailed, writer.errorString());
        return false;
    }
    return true;
}

bool isImageFormat(PictureFormat format)
{
    return format == PictureFormat::Png || format == PictureFormat::Bmp || format == PictureFormat::Jpg
        || format == PictureFormat::Gif;
}

// Image files go straight to their device: a large picture is neither held
// whole nor held a second time as its file.
bool writeImage(const Picture &picture, PictureFormat format, QIODevice &device, WriteFailure *failure)
{
    switch (format) {
    case PictureFormat::Png: return writePng(picture, device, failure);
    case PictureFormat::Bmp: return writeBmp(picture, device, failure);
    case PictureFormat::Gif: return writeGif(picture, device, failure);
    case PictureFormat::Jpg: return writeJpg(picture, device, failure);
    default: return false;
    }
}

QByteArray encodeImage(const Picture &picture, PictureFormat format, WriteFailure *failure)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    if (!writeImage(picture, format, buffer, failure))
        return QByteArray();
    return out;
}

QByteArray encodePdf(const Picture &picture, WriteFailure *failure)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setCreator(picture.description);
    writer.setResolution(MetafileDotsPerInch);
    const QSizeF points(picture.size.width() * 72.0 / MetafileDotsPerInch,
                        picture.size.height() * 72.0 / MetafileDotsPerInch);
    writer.setPageSize(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    QPainter painter;
    if (!painter.begin(&writer)) {
        setWriteFailure(failure, WriteFailureCode::PdfNotStarted);
        return QByteArray();
    }
    picture.paint(painter);
    painter.end();
    return out;
}

} // namespace

QImage renderPictureImage(const Picture &picture, QColor background)
{
    if (!picture.isValid() || qint64(picture.size.width()) * picture.size.height() > MaxImagePixels)
        return QImage();
    QImage image(picture.size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.setDotsPerMeterX(qRound(MetafileDotsPerInch / 0.0254));
    image.setDotsPerMeterY(qRound(MetafileDotsPerInch / 0.0254));
    image.fill(background);
    QPainter painter(&image);
    picture.paint(painter);
    painter.end();
    return image;
}

QByteArray encodePicture(const Picture &picture, PictureFormat format, WriteFailure *failure)
{
    if (!picture.isValid()) {
        setWriteFailure(failure, WriteFailureCode::NoPicture);
        return QByteArray();
    }
    QByteArray out;
    switch (format) {
    case PictureFormat::Emf: out = encodeEmf(recordPicture(picture), picture.description); break;
    case PictureFormat::Wmf:
        out = encodeWmf(recordPicture(picture));
        if (out.isEmpty()) {
            setWriteFailure(failure, WriteFailureCode::TooLargeForMetafile);
            return out;
        }
        break;
    case PictureFormat::Png:
    case PictureFormat::Bmp:
    case PictureFormat::Jpg:
    case PictureFormat::Gif: return encodeImage(picture, format, failure);
    case PictureFormat::Svg: out = encodeSvg(recordPicture(picture), picture.description); break;
    case PictureFormat::Pdf: return encodePdf(picture, failure);
    }
    if (out.isEmpty())
        setWriteFailure(failure, WriteFailureCode::NotEncoded);
    return out;
}

bool writePicture(const Picture &picture, PictureFormat format, const QString &path, WriteFailure *failure)
{
    if (isImageFormat(format)) {
        if (!picture.isValid()) {
            setWriteFailure(failure, WriteFailureCode::NoPicture);
            return false;
        }
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            setWriteFailure(failure, WriteFailureCode::NotWritten, file.errorString());
            return false;
        }
        if (!writeImage(picture, format, file, failure)) {
            file.cancelWriting();
            return false;
        }
        if (!file.commit()) {
            setWriteFailure(failure, WriteFailureCode::NotWritten, file.errorString());
            return false;
        }
        return true;
    }
    const QByteArray bytes = encodePicture(picture, format, failure);
    if (bytes.isEmpty())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        setWriteFailure(failure, WriteFailureCode::NotWritten, file.errorString());
        return false;
    }
    return true;
}

} // namespace kel
