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

#include <gtest/gtest.h>

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

} // namespace

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
