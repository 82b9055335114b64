// SPDX-License-Identifier: GPL-3.0-or-later
// PNG, BMP and GIF files written a band at a time, read back with Qt's own
// readers and compared with the picture drawn whole in one go.
#include "engine/document/pooledindex.h"
#include "engine/overview/subsheet.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/bandedencoders.h"
#include "render/pictures/picturewriter.h"

#include "picturedocument.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QSet>
#include <QtEndian>

#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <functional>

namespace kel::test {
namespace {

using Writer = std::function<bool(const Picture &, QIODevice &, QString *, qint64)>;

struct Format {
    const char *name;
    Writer write;
};

const Format Formats[] = {
    {"png", [](const Picture &p, QIODevice &d, QString *e, qint64 b) { return writePng(p, d, e, b); }},
    {"bmp", [](const Picture &p, QIODevice &d, QString *e, qint64 b) { return writeBmp(p, d, e, b); }},
    {"gif", [](const Picture &p, QIODevice &d, QString *e, qint64 b) { return writeGif(p, d, e, b); }},
};

QByteArray written(const Format &format, const Picture &picture, qint64 bandBytes)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QString error;
    EXPECT_TRUE(format.write(picture, buffer, &error, bandBytes)) << format.name << ": " << error.toStdString();
    return out;
}

// The first differing pixel, for a readable failure.
std::string firstDifference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return "sizes differ";
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                return "pixel " + std::to_string(x) + "," + std::to_string(y) + ": "
                    + QColor(a.pixel(x, y)).name().toStdString() + " instead of "
                    + QColor(b.pixel(x, y)).name().toStdString();
    return {};
}

QImage readBack(const QByteArray &file)
{
    QImage image;
    EXPECT_TRUE(image.loadFromData(file));
    return image.convertToFormat(QImage::Format_RGB32);
}

Picture overviewOf(const Document &doc)
{
    SheetInput input;
    input.document = &doc;
    input.rows = allRows(doc);
    input.columns = doc.overviewColumns;
    input.selectionText = QStringLiteral("Everyone");
    return overviewPicture(input, SheetMode::CopyPicture, OverviewPictureContent::Answers, true);
}

// A picture without an area routine whose colours are `count` greys and
// blues, one column each, on a transparent background at the right.
Picture columnsOfColours(int count)
{
    Picture p;
    p.size = QSize(count + 3, 5);
    p.paint = [count](QPainter &painter) {
        for (int i = 0; i < count; ++i)
            painter.fillRect(i, 0, 1, 5, QColor(i % 256, i % 256, i / 256 * 200));
    };
    return p;
}

// An opaque picture drawn by area whose pixels no filter predicts, in rows
// that come in threes (repeats within and across pieces).
Picture noisyRows(int width, int height)
{
    Picture p;
    p.size = QSize(width, height);
    p.opaque = true;
    p.paintArea = [](QPainter &painter, const QRect &area) {
        for (int y = area.top(); y <= area.bottom(); ++y) {
            const int source = y / 3;
            for (int x = area.left(); x <= area.right(); ++x) {
                const quint32 h = (quint32(x) * 2654435761U) ^ (quint32(source) * 40503U);
                painter.fillRect(x, y, 1, 1, QColor(int(h >> 24), int(h >> 16) & 0xFF, int(h >> 8) & 0xFF));
            }
        }
    };
    const auto paintArea = p.paintArea;
    const QSize size = p.size;
    p.paint = [paintArea, size](QPainter &painter) { paintArea(painter, QRect(QPoint(0, 0), size)); };
    return p;
}

QByteArray writtenPng(const Picture &picture, qint64 bandBytes, const PngEncoding &encoding)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QString error;
    EXPECT_TRUE(writePng(picture, buffer, &error, bandBytes, encoding)) << error.toStdString();
    return out;
}

// The PNG's IDAT chunks joined and inflated by zlib, which checks the
// stream's end and its Adler-32; empty when zlib refuses them.
QByteArray inflatedRows(const QByteArray &png, qsizetype expectedBytes)
{
    QByteArray stream;
    for (qsizetype at = 8; at + 12 <= png.size();) {
        const qsizetype length = qFromBigEndian<quint32>(png.constData() + at);
        if (png.mid(at + 4, 4) == "IDAT")
            stream += png.mid(at + 8, length);
        at += 12 + length;
    }
    QByteArray rows(expectedBytes + 1, '\0'); // room for one byte too many
    uLongf size = uLongf(rows.size());
    if (uncompress(reinterpret_cast<Bytef *>(rows.data()), &size, reinterpret_cast<const Bytef *>(stream.constData()),
                   uLong(stream.size()))
        != Z_OK)
        return {};
    rows.resize(qsizetype(size));
    return rows;
}

} // namespace

TEST(BandedImages, PiecesOnAnyNumberOfThreadsMakeOneStreamOfThePixels)
{
    constexpr int Width = 37; // 111 bytes a row: not a whole number of 8-byte steps
    constexpr qint64 FilteredRow = 3 * Width + 1;
    const int threadCounts[] = {1, 2, 3, 4, 8};
    for (int pieceRows : {1, 10}) {
        // Heights at a piece's edges, and past a second one.
        for (int height : {1, pieceRows - 1, pieceRows, pieceRows + 1, 2 * pieceRows + 1}) {
            if (height < 1)
                continue;
            const Picture picture = noisyRows(Width, height);
            const QImage whole = renderPictureImage(picture, Qt::white).convertToFormat(QImage::Format_RGB32);
            // Bands of 4 rows (pieces cut at bands too) and one band.
            for (qint64 bandBytes : {4 * Width * qint64(4), PictureBands::DefaultBandBytes}) {
                QByteArray oneThread;
                for (int threads : threadCounts) {
                    SCOPED_TRACE("pieces of " + std::to_string(pieceRows) + " rows, height " + std::to_string(height)
                                 + ", bands of " + std::to_string(bandBytes) + " bytes, " + std::to_string(threads)
                                 + " threads");
                    PngEncoding encoding;
                    encoding.threads = threads;
                    encoding.pieceBytes = pieceRows * FilteredRow;
                    const QByteArray png = writtenPng(picture, bandBytes, encoding);
                    EXPECT_EQ(inflatedRows(png, height * FilteredRow).size(), height * FilteredRow);
                    EXPECT_EQ(firstDifference(readBack(png), whole), "");
                    if (threads == 1)
                        oneThread = png;
                    else
                        EXPECT_EQ(png, oneThread); // the pieces do not depend on the threads
                }
            }
        }
    }
}

TEST(BandedImages, PiecesOfOverAMegabyteKeepTheStreamsChecksum)
{
    // Rows of white with a noisy one every 97: long runs of zeros after the
    // Up filter, in one piece of 1.2 MB whose checksum zlib verifies.
    constexpr int Width = 400, Height = 1000;
    Picture picture;
    picture.size = QSize(Width, Height);
    picture.opaque = true;
    picture.paint = [](QPainter &painter) {
        painter.fillRect(0, 0, Width, Height, Qt::white);
        for (int y = 0; y < Height; y += 97)
            for (int x = 0; x < Width; ++x)
                painter.fillRect(x, y, 1, 1, QColor::fromRgb(quint32(x) * 2654435761U ^ quint32(y)));
    };
    const QImage whole = renderPictureImage(picture, Qt::white).convertToFormat(QImage::Format_RGB32);
    constexpr qint64 Filtered = Height * (3 * Width + 1);
    ASSERT_GT(Filtered, 1 << 20);
    PngEncoding encoding;
    encoding.pieceBytes = Filtered;
    const QByteArray png = writtenPng(picture, PictureBands::DefaultBandBytes, encoding);
    EXPECT_EQ(inflatedRows(png, Filtered).size(), Filtered);
    EXPECT_EQ(firstDifference(readBack(png), whole), "");
}

TEST(BandedImages, EveryRowFilterDecodesToThePixels)
{
    // Each single filter is applied in pieces; several (a per-row search)
    // and the one stream go through libpng.
    const struct {
        const char *name;
        int filters;
        bool parallel;
    } cases[] = {
        {"none", PNG_FILTER_NONE, true},
        {"sub", PNG_FILTER_SUB, true},
        {"up", PNG_FILTER_UP, true},
        {"average", PNG_FILTER_AVG, true},
        {"paeth", PNG_FILTER_PAETH, true},
        {"all, searched", PNG_ALL_FILTERS, true},
        {"up, one stream", PNG_FILTER_UP, false},
    };
    const Picture picture = noisyRows(29, 23);
    const QImage whole = renderPictureImage(picture, Qt::white).convertToFormat(QImage::Format_RGB32);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        PngEncoding encoding;
        encoding.filters = c.filters;
        encoding.parallel = c.parallel;
        encoding.threads = 2;
        encoding.pieceBytes = 5 * (3 * 29 + 1);
        // Levels of each class the zlib header records.
        for (int level : {1, 3, 6, 9}) {
            encoding.level = level;
            const QByteArray png = writtenPng(picture, 7 * 29 * 4, encoding);
            EXPECT_EQ(inflatedRows(png, 23 * (3 * 29 + 1)).size(), 23 * (3 * 29 + 1)) << level;
            EXPECT_EQ(firstDifference(readBack(png), whole), "") << level;
        }
    }
}

TEST(BandedImages, PiecesOfASheetMakeNoLargerFileThanOneStream)
{
    // Each piece primed with the rows before it finds the repeats of the
    // rows above; without them, pieces of 64 rows make a file 1.6 times as
    // large (measured).
    auto doc = readSurvey(pictureSurvey(40));
    ASSERT_TRUE(doc);
    const Picture picture = overviewOf(*doc);
    ASSERT_GT(picture.size.height(), 10 * 64);
    PngEncoding pieces;
    pieces.pieceBytes = 64 * (3 * qint64(picture.size.width()) + 1);
    PngEncoding oneStream;
    oneStream.parallel = false;
    EXPECT_LE(writtenPng(picture, PictureBands::DefaultBandBytes, pieces).size(),
              writtenPng(picture, PictureBands::DefaultBandBytes, oneStream).size());
}

TEST(BandedImages, EveryFormatReadsBackAsTheWholePicture)
{
    auto doc = readSurvey(pictureSurvey(40));
    ASSERT_TRUE(doc);
    const Picture picture = overviewOf(*doc);
    ASSERT_TRUE(picture.isValid() && picture.paintArea && picture.opaque);
    const QImage whole = renderPictureImage(picture, Qt::white).convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(whole.isNull());
    const qint64 rowBytes = qint64(picture.size.width()) * 4;
    // Antialiased texts give the sheet more colours than a GIF palette
    // holds: there every pixel takes the nearest level of the colour cube.
    QSet<QRgb> colours;
    QImage cube = whole;
    for (int y = 0; y < whole.height(); ++y) {
        for (int x = 0; x < whole.width(); ++x) {
            const QRgb c = whole.pixel(x, y);
            colours.insert(c);
            const auto level = [](int v) { return (v + 25) / 51 * 51; };
            cube.setPixel(x, y, qRgb(level(qRed(c)), level(qGreen(c)), level(qBlue(c))));
        }
    }
    ASSERT_GT(colours.size(), 256);
    for (const Format &format : Formats) {
        // One band, bands of 7 rows (seams through texts, a short last band),
        // and one row at a time (a band smaller than a row).
        for (qint64 bandBytes : {PictureBands::DefaultBandBytes, 7 * rowBytes, qint64(1)}) {
            SCOPED_TRACE(std::string(format.name) + " bands of " + std::to_string(bandBytes) + " bytes");
            const QImage back = readBack(written(format, picture, bandBytes));
            EXPECT_EQ(firstDifference(back, std::string(format.name) == "gif" ? cube : whole), "");
        }
    }
}

TEST(BandedImages, FilesMatchWhatOtherWritersMake)
{
    auto doc = readSurvey(pictureSurvey(12));
    ASSERT_TRUE(doc);
    const Picture picture = overviewOf(*doc);
    const QImage whole = renderPictureImage(picture, Qt::white).convertToFormat(QImage::Format_RGB32);
    // Qt's BMP writer makes the same 24-bit bottom-up file, byte for byte,
    // also where rows need padding (9 pixels are 27 bytes, padded to 28).
    for (const Picture &p : {picture, columnsOfColours(6)}) {
        QByteArray qtBmp;
        QBuffer buffer(&qtBmp);
        buffer.open(QIODevice::WriteOnly);
        QImage stamped = renderPictureImage(p, Qt::white).convertToFormat(QImage::Format_RGB32);
        stamped.setDotsPerMeterX(qRound(96 / 0.0254));
        stamped.setDotsPerMeterY(qRound(96 / 0.0254));
        ASSERT_TRUE(QImageWriter(&buffer, "bmp").write(stamped));
        EXPECT_EQ(written(Formats[1], p, 2 * qint64(p.size.width()) * 4), qtBmp) << p.size.width();
    }

    // An opaque PNG has RGB rows (colour type 2) and 96 dpi; a picture that
    // leaves pixels alone keeps them transparent in RGBA rows (type 6).
    const QByteArray png = written(Formats[0], picture, PictureBands::DefaultBandBytes);
    EXPECT_EQ(png.at(25), 2);
    EXPECT_EQ(QImage::fromData(png).dotsPerMeterX(), qRound(96 / 0.0254));
    const QByteArray clear = written(Formats[0], columnsOfColours(4), PictureBands::DefaultBandBytes);
    EXPECT_EQ(clear.at(25), 6);
    const QImage clearBack = QImage::fromData(clear);
    EXPECT_EQ(qAlpha(clearBack.pixel(5, 2)), 0);
    EXPECT_EQ(clearBack.pixel(2, 2), qRgb(2, 2, 0));
}

TEST(BandedImages, GifPaletteIsExactUpTo256Colours)
{
    // The picture's colours plus the white it is drawn on: 255 and 256 fit
    // exactly, 257 go to the colour cube.
    const struct {
        int columns;
        bool exact;
    } cases[] = {{254, true}, {255, true}, {256, false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.columns);
        const Picture picture = columnsOfColours(c.columns);
        const QImage back = readBack(written(Formats[2], picture, PictureBands::DefaultBandBytes));
        ASSERT_EQ(back.width(), c.columns + 3);
        EXPECT_EQ(back.pixel(c.columns + 1, 0), qRgb(255, 255, 255));
        for (int i = 0; i < c.columns; ++i) {
            const QColor want(i % 256, i % 256, i / 256 * 200);
            // The cube's levels are 0, 51, ..., 255: the nearest one.
            const auto level = [](int v) { return (v + 25) / 51 * 51; };
            const QRgb expected =
                c.exact ? want.rgb() : qRgb(level(want.red()), level(want.green()), level(want.blue()));
            ASSERT_EQ(back.pixel(i, 3), expected) << "column " << i;
        }
    }
}

// A device that takes `room` bytes, then fails as a full disk does.
class FullDevice : public QIODevice
{
public:
    explicit FullDevice(qint64 room) : mRoom(room) { open(QIODevice::WriteOnly); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 length) override
    {
        if (length > mRoom) {
            setErrorString(QStringLiteral("No space left on device"));
            return -1;
        }
        mRoom -= length;
        return length;
    }

private:
    qint64 mRoom;
};

TEST(BandedImages, AFullDeviceStopsThePiecesWithItsMessage)
{
    // Full at the header, after the first piece, and at the end: pieces
    // still being deflated are waited for, not left writing freed memory.
    const Picture picture = noisyRows(31, 40);
    PngEncoding encoding;
    encoding.threads = 3;
    encoding.pieceBytes = 2 * (3 * 31 + 1);
    const qsizetype size = writtenPng(picture, 5 * 31 * 4, encoding).size();
    for (qint64 room : {qint64(10), qint64(120), qint64(size - 1)}) {
        SCOPED_TRACE(room);
        FullDevice device(room);
        QString error;
        EXPECT_FALSE(writePng(picture, device, &error, 5 * 31 * 4, encoding));
        EXPECT_EQ(error, QStringLiteral("No space left on device"));
    }
}

TEST(BandedImages, FailuresAreReportedForEveryFormat)
{
    const Picture picture = columnsOfColours(10);
    for (const Format &format : Formats) {
        SCOPED_TRACE(format.name);
        QByteArray bytes;
        QBuffer readOnly(&bytes);
        readOnly.open(QIODevice::ReadOnly); // every write fails
        QString error;
        EXPECT_FALSE(format.write(picture, readOnly, &error, PictureBands::DefaultBandBytes));
        EXPECT_FALSE(error.isEmpty());
        error.clear();
        QBuffer open;
        open.open(QIODevice::WriteOnly);
        EXPECT_FALSE(format.write(Picture{}, open, &error, PictureBands::DefaultBandBytes));
        EXPECT_FALSE(error.isEmpty());
    }
}

} // namespace kel::test
