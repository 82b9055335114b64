// SPDX-License-Identifier: GPL-3.0-or-later
// The picture writers: what lands in each format's file, read back with Qt,
// with our own walk over the metafile records, and with other programs.
#include "render/pictures/picturewriter.h"

#include "metafilereader.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>
#include <uemf.h>
#include <uwmf.h>

#include <optional>

#include <set>

namespace kel::test {
namespace {

constexpr QRgb Red = 0xFFC80000, Blue = 0xFF0000C8;

// Two filled rectangles, an outlined triangle, a line and two texts (one
// beyond ASCII) on a white ground.
Picture samplePicture()
{
    Picture p;
    p.size = QSize(240, 120);
    p.description = QStringLiteral("KEL Viewer");
    p.paint = [](QPainter &painter) {
        painter.fillRect(QRect(0, 0, 240, 120), Qt::white);
        painter.fillRect(QRect(10, 10, 60, 40), QColor::fromRgb(Red));
        painter.fillRect(QRect(80, 10, 60, 40), QColor::fromRgb(Blue));
        painter.setPen(QPen(Qt::black, 2));
        painter.setBrush(Qt::green);
        painter.drawPolygon(QPolygon({QPoint(160, 50), QPoint(200, 10), QPoint(230, 50)}));
        painter.drawLine(10, 60, 230, 60);
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize(24);
        for (bool bold : {true, false}) {
            font.setBold(bold);
            painter.setFont(font);
            painter.drawText(QPoint(bold ? 10 : 120, 100), bold ? QStringLiteral("Hello") : QStringLiteral("Åsa ö"));
        }
    };
    return p;
}

QByteArray encoded(PictureFormat format)
{
    QString error;
    const QByteArray bytes = encodePicture(samplePicture(), format, &error);
    EXPECT_FALSE(bytes.isEmpty()) << error.toStdString();
    return bytes;
}

TEST(WmfFile, PlaceableHeaderAndRecords)
{
    const QByteArray wmf = encoded(PictureFormat::Wmf);
    ASSERT_GT(wmf.size(), 40);
    // Key, handle, bounds 0,0-239,119, 96 units per inch, reserved.
    EXPECT_EQ(wmf.left(20), QByteArray::fromHex("D7CDC69A 0000 0000 0000 EF00 7700 6000 00000000"));
    quint16 checksum = 0;
    for (int i = 0; i < 10; ++i)
        checksum ^= u16At(wmf, 2 * i);
    EXPECT_EQ(u16At(wmf, 20), checksum);
    // The metafile header: a disk metafile of version 3 whose size counts
    // every word after the placeable header.
    EXPECT_EQ(wmf.mid(22, 6), QByteArray::fromHex("0100 0900 0003"));
    EXPECT_EQ(qsizetype(u32At(wmf, 22 + 6)) * 2, wmf.size() - 22);

    bool ok = false;
    const auto records = wmfRecords(wmf, &ok);
    ASSERT_TRUE(ok) << "the records do not end in EOF at the end of the file";
    std::multiset<quint32> types;
    QStringList texts;
    for (const MetaRecord &r : records) {
        types.insert(r.type);
        if (r.type == 0x0A32)
            texts << wmfText(wmf, r);
    }
    // A rectangle per fill (ground and two), the triangle, the line.
    for (const auto &[type, count] : {std::pair{0x041Bu, 3u}, {0x0324u, 1u}, {0x0325u, 1u}})
        EXPECT_EQ(types.count(type), count) << std::hex << type;
    EXPECT_EQ(texts, QStringList({QStringLiteral("Hello"), QStringLiteral("Åsa ö")}));

    // Beyond 16 bits is refused.
    Picture huge = samplePicture();
    huge.size = QSize(40000, 10);
    QString error;
    EXPECT_TRUE(encodePicture(huge, PictureFormat::Wmf, &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
}

TEST(EmfFile, HeaderAndRecordsCarryTheDrawing)
{
    const QByteArray emf = encoded(PictureFormat::Emf);
    ASSERT_GT(emf.size(), 108);
    // The header record, bounds in pixels, " EMF"; the frame in hundredths of
    // millimetres at 96 dpi.
    EXPECT_EQ(emf.left(4) + emf.mid(8, 16) + emf.mid(40, 4),
              QByteArray::fromHex("01000000 00000000 00000000 EF000000 77000000 20454D46"));
    // The frame spans the whole picture: 240 x 120 pixels at 96 dpi are
    // 63.5 x 31.75 mm (a frame one pixel short loses the last row in readers).
    EXPECT_EQ(i32At(emf, 24), 0);
    EXPECT_EQ(i32At(emf, 28), 0);
    EXPECT_EQ(i32At(emf, 32), 6350);
    EXPECT_EQ(i32At(emf, 36), 3175);
    EXPECT_EQ(qsizetype(u32At(emf, 48)), emf.size());

    bool ok = false;
    const auto records = emfRecords(emf, &ok);
    ASSERT_TRUE(ok) << "the records do not end in EOF at the end of the file";
    EXPECT_EQ(u32At(emf, 52), quint32(records.size()));
    std::multiset<quint32> types;
    std::set<quint32> created;
    QStringList texts;
    for (const MetaRecord &r : records) {
        types.insert(r.type);
        if (r.type == 84)
            texts << emfText(emf, r);
        const quint32 handle = u32At(emf, r.offset + 8);
        if (r.type == 38 || r.type == 39 || r.type == 82) { // pen, brush, font
            EXPECT_LT(handle, u16At(emf, 56));
            created.insert(handle);
        }
        if (r.type == 37) { // SELECTOBJECT: a created object or a stock one
            EXPECT_TRUE(created.count(handle) || (handle & 0x80000000u)) << handle;
        }
    }
    // Rectangles, POLYGON16, POLYLINE16.
    for (const auto &[type, count] : {std::pair{43u, 3u}, {86u, 1u}, {87u, 1u}})
        EXPECT_EQ(types.count(type), count) << type;
    EXPECT_EQ(texts, QStringList({QStringLiteral("Hello"), QStringLiteral("Åsa ö")}));
}

// Pens (style/width), clips, saved states, selections and rectangles of one
// drawing, in order, as EMF and as WMF records say them: both must agree.
TEST(Metafiles, PensAndClipsAgreeInBothFormats)
{
    Picture p;
    p.size = QSize(100, 100);
    p.paint = [](QPainter &painter) {
        painter.save();
        painter.translate(10, 10);
        painter.setClipRect(QRect(0, 0, 30, 20));
        painter.fillRect(QRect(0, 0, 90, 90), Qt::red);
        painter.restore();
        painter.fillRect(QRect(50, 50, 10, 10), Qt::red);
        painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
        painter.drawLine(0, 10, 90, 10);
        painter.setPen(QPen(Qt::blue, 3, Qt::DotLine));
        painter.drawLine(0, 20, 90, 20);
        painter.scale(2, 2); // a 2-pixel pen drawn at twice the size
        painter.setPen(QPen(Qt::red, 2));
        painter.drawLine(0, 20, 40, 20);
    };
    const auto steps = [](const QByteArray &file, bool wmf) {
        bool ok = false;
        QStringList list;
        const auto records = wmf ? wmfRecords(file, &ok) : emfRecords(file, &ok);
        EXPECT_TRUE(ok);
        const auto i = [&](const MetaRecord &r, int at) {
            return wmf ? i16At(file, r.offset + at) : i32At(file, r.offset + at);
        };
        for (const MetaRecord &r : records) {
            const std::array<quint32, 6> codes = wmf
                ? std::array<quint32, 6>{0x02FA, 0x001E, 0x0416, 0x0127, 0x012D, 0x041B}
                : std::array<quint32, 6>{38, 33, 30, 34, 37, 43};
            if (r.type == codes[0]) // CREATEPEN: style, width
                list << (wmf ? QStringLiteral("pen %1/%2").arg(u16At(file, r.offset + 6)).arg(i(r, 8))
                             : QStringLiteral("pen %1/%2").arg(u32At(file, r.offset + 12)).arg(i(r, 16)));
            else if (r.type == codes[2]) // EMF left, top, right, bottom; WMF bottom, right, top, left
                list << (wmf ? QStringLiteral("clip %1,%2,%3,%4").arg(i(r, 12)).arg(i(r, 10)).arg(i(r, 8)).arg(i(r, 6))
                             : QStringLiteral("clip %1,%2,%3,%4")
                                   .arg(i(r, 8))
                                   .arg(i(r, 12))
                                   .arg(i(r, 16))
                                   .arg(i(r, 20)));
            else if (const auto *word = std::find(codes.begin(), codes.end(), r.type); word != codes.end())
                list << QString::fromLatin1(
                    std::array{"", "save", "", "restore", "select", "rect"}[word - codes.begin()]);
        }
        return list;
    };
    const QStringList emfSteps = steps(encodePicture(p, PictureFormat::Emf), false);
    // The clip is in device pixels (the translation applied); after the
    // restore the fill's objects are selected again; a pen keeps its style
    // and its width in device pixels.
    EXPECT_EQ(emfSteps.join(QLatin1Char(' ')),
              QStringLiteral("save clip 10,10,40,30 pen 0/1 select select rect restore select select rect "
                             "pen 1/1 select pen 2/3 select pen 0/4 select"));
    EXPECT_EQ(steps(encodePicture(p, PictureFormat::Wmf), true), emfSteps);
}

// The font records say what each picture kind's fonts were made with, and
// name faces that office programs on Windows have (and map on Linux).
TEST(Metafiles, FontRecordsCarryTheFacesClassesOfThePicture)
{
    struct Case {
        const char *family;
        MetafileFontClass fontClass;
        const char *face;
    };
    // The overview's fonts are ANSI with default pitch and family; the
    // graphs' are default character set, variable pitch (2), Swiss (0x20).
    static const Case Cases[] = {
        {"Arial", {0, 0}, "Arial"},
        {"Arial", {1, 0x22}, "Arial"},
        {"Sans Serif", {1, 0x22}, "Arial"},
        {"DejaVu Sans", {1, 0x22}, "Arial"},
        {"Liberation Sans", {1, 0x22}, "Arial"},
        {"Serif", {1, 0x12}, "Times New Roman"},
        {"Monospace", {1, 0x31}, "Courier New"},
        {"Verdana", {1, 0x22}, "Verdana"},
    };
    for (const Case &c : Cases) {
        SCOPED_TRACE(c.family);
        Picture p;
        p.size = QSize(120, 40);
        p.metafileFonts = c.fontClass;
        p.paint = [&c](QPainter &painter) {
            QFont font(QString::fromLatin1(c.family));
            font.setPixelSize(14);
            painter.setFont(font);
            painter.drawText(QPoint(4, 20), QStringLiteral("Text"));
        };
        const QByteArray emf = encodePicture(p, PictureFormat::Emf);
        const QByteArray wmf = encodePicture(p, PictureFormat::Wmf);
        bool ok = false;
        int fonts = 0;
        for (const MetaRecord &r : emfRecords(emf, &ok)) {
            if (r.type != 82) // EXTCREATEFONTINDIRECTW: ihFont, then the LOGFONTW
                continue;
            ++fonts;
            EXPECT_EQ(i32At(emf, r.offset + 12), -14); // the em height
            EXPECT_EQ(quint8(emf.at(r.offset + 35)), c.fontClass.charSet);
            EXPECT_EQ(quint8(emf.at(r.offset + 39)), c.fontClass.pitchAndFamily);
            EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t *>(emf.constData() + r.offset + 40)),
                      QLatin1String(c.face));
        }
        EXPECT_EQ(fonts, 1);
        fonts = 0;
        for (const MetaRecord &r : wmfRecords(wmf, &ok)) {
            if (r.type != 0x02FB) // CREATEFONTINDIRECT
                continue;
            ++fonts;
            EXPECT_EQ(i16At(wmf, r.offset + 6), -14);
            EXPECT_EQ(quint8(wmf.at(r.offset + 19)), c.fontClass.charSet);
            EXPECT_EQ(quint8(wmf.at(r.offset + 23)), c.fontClass.pitchAndFamily);
            EXPECT_EQ(QString::fromLatin1(wmf.constData() + r.offset + 24), QLatin1String(c.face));
        }
        EXPECT_EQ(fonts, 1);
    }
}

TEST(PictureFiles, OtherFormatsReadBackWithTheirColours)
{
    for (PictureFormat format :
         {PictureFormat::Png, PictureFormat::Bmp, PictureFormat::Jpg, PictureFormat::Gif, PictureFormat::Svg}) {
        SCOPED_TRACE(pictureFormatSuffix(format).toStdString());
        QImage image(240, 120, QImage::Format_ARGB32);
        if (format == PictureFormat::Svg) {
            QSvgRenderer renderer(encoded(format));
            ASSERT_TRUE(renderer.isValid());
            EXPECT_EQ(renderer.viewBox(), QRect(0, 0, 240, 120));
            image.fill(Qt::transparent);
            QPainter painter(&image);
            renderer.render(&painter);
        } else {
            ASSERT_TRUE(image.loadFromData(encoded(format)));
        }
        EXPECT_EQ(image.size(), QSize(240, 120));
        const QColor red = image.pixelColor(40, 30), blue = image.pixelColor(110, 30);
        EXPECT_TRUE(std::abs(red.red() - 200) <= 6 && red.blue() <= 6 && std::abs(blue.blue() - 200) <= 6
                    && blue.red() <= 6)
            << red.name().toStdString() << ' ' << blue.name().toStdString();
    }
    // 240 x 120 pixels at 96 dpi are 180 x 90 points.
    const QByteArray pdf = encoded(PictureFormat::Pdf);
    EXPECT_TRUE(pdf.startsWith("%PDF-") && pdf.contains("/MediaBox [0 0 180.000000 90.000000]"));

    // A file that cannot be written fails cleanly.
    QTemporaryDir dir;
    QString error;
    EXPECT_FALSE(writePicture(samplePicture(), PictureFormat::Png, dir.filePath(QStringLiteral("no/p.png")), &error));
    EXPECT_FALSE(error.isEmpty());
}

// Other programs open our metafiles: emf2svg for EMF, libwmf for WMF.
QByteArray convertWith(const QString &program, const QStringList &arguments, const QString &output)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0) {
        ADD_FAILURE() << program.toStdString() << " failed: " << process.readAllStandardError().toStdString();
        return QByteArray();
    }
    QFile file(output);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(MetafilesElsewhere, IndependentReadersOpenThem)
{
    const QString emf2svg = QStandardPaths::findExecutable(QStringLiteral("emf2svg-conv"));
    const QString wmf2svg = QStandardPaths::findExecutable(QStringLiteral("wmf2svg"));
    if (emf2svg.isEmpty() || wmf2svg.isEmpty())
        GTEST_SKIP() << "emf2svg-conv or wmf2svg is not installed (scripts/install-deps.sh installs them)";
    QTemporaryDir dir;
    const QString emfPath = dir.filePath(QStringLiteral("p.emf")), wmfPath = dir.filePath(QStringLiteral("p.wmf"));
    const QString fromEmf = dir.filePath(QStringLiteral("emf.svg")), fromWmf = dir.filePath(QStringLiteral("wmf.svg"));
    ASSERT_TRUE(writePicture(samplePicture(), PictureFormat::Emf, emfPath)
                && writePicture(samplePicture(), PictureFormat::Wmf, wmfPath));
    const QByteArray svg1 =
        convertWith(emf2svg, {QStringLiteral("-i"), emfPath, QStringLiteral("-o"), fromEmf}, fromEmf);
    // libwmf copies the metafile's ANSI text bytes into its UTF-8 output as
    // they are.
    const QByteArray svg2 =
        QString::fromLatin1(convertWith(wmf2svg, {QStringLiteral("-o"), fromWmf, wmfPath}, fromWmf)).toUtf8();
    for (const QByteArray &svg : {svg1, svg2}) {
        // Well-formed, and its texts read "Hello" (libwmf places each letter
        // on its own).
        QXmlStreamReader xml(svg);
        QString texts;
        bool inText = false;
        while (!xml.atEnd() && !xml.hasError()) {
            xml.readNext();
            inText = xml.isStartElement() ? xml.name() == QLatin1String("text") : inText && !xml.isEndElement();
            if (inText && xml.isCharacters())
                texts += xml.text().trimmed();
        }
        EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
        EXPECT_TRUE(texts.contains(QStringLiteral("Hello"))) << texts.toStdString();
    }
    // The red fill comes through as a fill in red.
    EXPECT_TRUE(svg1.toLower().contains("#c80000")) << svg1.left(3000).toStdString();
}

// Texts keep their colours through clips: a restored drawing state brings
// back the colour selected when it was saved, never the one used inside.
TEST(MetafilesElsewhere, TextColoursSurviveClips)
{
    const QString emf2svg = QStandardPaths::findExecutable(QStringLiteral("emf2svg-conv"));
    if (emf2svg.isEmpty())
        GTEST_SKIP() << "emf2svg-conv is not installed (scripts/install-deps.sh installs it)";
    // Each text's colour in drawing order; a clip around the ones marked.
    struct Step {
        QRgb colour;
        bool clipped;
    };
    static const Step Steps[] = {{Red, false},  {Red, true},        {Blue, true},
                                 {Red, false},  {Blue, false},      {0xFF000000, true},
                                 {Blue, false}, {0xFF008000, true}, {0xFF008000, false}};
    Picture p;
    p.size = QSize(200, 20 * int(std::size(Steps)) + 10);
    p.paint = [](QPainter &painter) {
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize(12);
        painter.setFont(font);
        int y = 0;
        for (const Step &step : Steps) {
            y += 20;
            painter.save();
            if (step.clipped)
                painter.setClipRect(QRect(0, y - 15, 150, 20));
            painter.setPen(QColor::fromRgb(step.colour));
            painter.drawText(QPoint(5, y), QStringLiteral("line"));
            painter.restore();
        }
    };
    QTemporaryDir dir;
    const QString emfPath = dir.filePath(QStringLiteral("c.emf")), svgPath = dir.filePath(QStringLiteral("c.svg"));
    ASSERT_TRUE(writePicture(p, PictureFormat::Emf, emfPath));
    const QByteArray svg =
        convertWith(emf2svg, {QStringLiteral("-i"), emfPath, QStringLiteral("-o"), svgPath}, svgPath);
    QXmlStreamReader xml(svg);
    QStringList fills;
    while (!xml.atEnd() && !xml.hasError()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("text"))
            fills << xml.attributes().value(QLatin1String("fill")).toString().toLower();
    }
    QStringList expected;
    for (const Step &step : Steps)
        expected << QColor::fromRgb(step.colour).name();
    EXPECT_EQ(fills, expected);
}

// Readers that hold texts back and join them into paragraphs (Inkscape,
// through libUEMF's record properties) must meet a record that makes them
// draw what they hold before every text: else a title and a caption far
// below it are laid out anew as one paragraph. The record between must
// change nothing: any mapping mode set is the one the file starts in.
// A text in a transparent colour is left out (metafile text has no alpha).
TEST(Metafiles, EveryTextStandsOnItsOwnForReadersThatJoinTexts)
{
    Picture p;
    p.size = QSize(300, 300);
    static const QStringList Texts = {QStringLiteral("Age group"), QStringLiteral("Total [600]"),
                                      QStringLiteral("250"),       QStringLiteral("200"),
                                      QStringLiteral("150"),       QStringLiteral("after a line")};
    p.paint = [](QPainter &painter) {
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize(24);
        painter.setFont(font);
        painter.drawText(QRect(0, 0, 300, 30), Qt::AlignHCenter, Texts[0]);
        font.setPixelSize(14);
        painter.setFont(font);
        painter.drawText(QRect(0, 270, 300, 20), Qt::AlignHCenter, Texts[1]);
        for (int i = 2; i < 5; ++i)
            painter.drawText(QRect(0, 40 * i, 40, 20), Qt::AlignRight, Texts[i]);
        painter.drawLine(50, 40, 50, 200);
        painter.drawText(QPoint(60, 230), Texts[5]);
        // A transparent text (a chart keeps room with one) shows nothing.
        painter.setPen(Qt::transparent);
        painter.drawText(QPoint(60, 250), QStringLiteral("unseen"));
    };
    for (const bool wmf : {false, true}) {
        SCOPED_TRACE(wmf ? "WMF" : "EMF");
        const QByteArray file = encodePicture(p, wmf ? PictureFormat::Wmf : PictureFormat::Emf);
        bool ok = false;
        const auto records = wmf ? wmfRecords(file, &ok) : emfRecords(file, &ok);
        ASSERT_TRUE(ok);
        const quint32 textType = wmf ? 0x0A32 : 84, mapModeType = wmf ? 0x0103 : 17;
        const auto lowByte = [wmf](quint32 type) { return wmf ? type & 0xFF : type; };
        QStringList texts;
        std::optional<qint32> mapMode;
        bool held = false;
        for (const MetaRecord &r : records) {
            if (r.type == textType) {
                EXPECT_FALSE(held) << "no drawing record before \""
                                   << (wmf ? wmfText(file, r) : emfText(file, r)).toStdString() << '"';
                texts << (wmf ? wmfText(file, r) : emfText(file, r));
                held = true;
                continue;
            }
            const quint32 properties = wmf ? U_wmr_properties(lowByte(r.type)) : emr_properties(r.type);
            if (properties & U_DRAW_TEXT)
                held = false;
            if (r.type == mapModeType) {
                const qint32 mode = wmf ? qint32(u16At(file, r.offset + 6)) : i32At(file, r.offset + 8);
                EXPECT_EQ(mode, mapMode.value_or(mode)) << "the mapping mode changes";
                mapMode = mode;
            }
        }
        EXPECT_EQ(texts, Texts);
    }
}

// Windows metafiles hold 8-bit text that readers decode differently above
// 0x7F but for Latin-1: the marks labels use are spelled in ASCII, and every
// text keeps the width the EMF (which holds UTF-16) gives it.
TEST(WmfFile, TextIsLatin1WithTypographicMarksSpelledOut)
{
    struct Case {
        const char16_t *text;
        const char *bytes; ///< Latin-1
    };
    static const Case Cases[] = {
        {u"Åsa ö ½", "\xC5sa \xF6 \xBD"},
        {u"behöver …", "beh\xF6ver ..."},
        {u"1–2", "1-2"},
        {u"a—b", "a-b"},
        {u"‘x’", "'x'"},
        {u"“y”", "\"y\""},
        {u"€5", "?5"},
        {u"x\U0001D11Ey", "x?y"},
    };
    for (const Case &c : Cases) {
        const QString text = QString::fromUtf16(c.text);
        SCOPED_TRACE(text.toStdString());
        Picture p;
        p.size = QSize(300, 40);
        p.paint = [&text](QPainter &painter) {
            QFont font(QStringLiteral("Arial"));
            font.setPixelSize(16);
            painter.setFont(font);
            painter.drawText(QPoint(5, 25), text);
        };
        const QByteArray emf = encodePicture(p, PictureFormat::Emf), wmf = encodePicture(p, PictureFormat::Wmf);
        bool ok = false;
        QByteArray bytes;
        qint64 wmfWidth = 0, emfWidth = 0;
        for (const MetaRecord &r : wmfRecords(wmf, &ok)) {
            if (r.type != 0x0A32)
                continue;
            const qint16 count = i16At(wmf, r.offset + 10);
            const qsizetype at = r.offset + 14 + ((u16At(wmf, r.offset + 12) & 0x0006) ? 8 : 0);
            bytes += wmf.mid(at, count);
            for (int i = 0; i < count; ++i)
                wmfWidth += i16At(wmf, at + count + (count & 1) + 2 * i);
        }
        for (const EmfTextBox &t : emfTextBoxes(emf))
            emfWidth += t.box.width();
        EXPECT_EQ(bytes, QByteArray(c.bytes));
        EXPECT_EQ(wmfWidth, emfWidth);
        EXPECT_GT(emfWidth, 0);
    }
}

// SVG clips as the other formats do: a fill and a long text under a clip
// end at the clip's edge, and the clip is lifted after it.
TEST(SvgFile, ClipsAsTheOtherFormats)
{
    Picture p;
    p.size = QSize(100, 100);
    p.paint = [](QPainter &painter) {
        painter.fillRect(QRect(0, 0, 100, 100), Qt::white);
        painter.save();
        painter.translate(10, 10);
        painter.setClipRect(QRect(0, 0, 30, 20));
        painter.fillRect(QRect(0, 0, 90, 90), QColor::fromRgb(Red));
        painter.restore();
        painter.fillRect(QRect(50, 50, 10, 10), QColor::fromRgb(Blue));
    };
    for (PictureFormat format : {PictureFormat::Svg, PictureFormat::Png}) {
        SCOPED_TRACE(pictureFormatSuffix(format).toStdString());
        QImage image(100, 100, QImage::Format_ARGB32);
        if (format == PictureFormat::Svg) {
            // Qt's SVG renderer knows no clip paths; librsvg reads them.
            const QString rsvg = QStandardPaths::findExecutable(QStringLiteral("rsvg-convert"));
            if (rsvg.isEmpty())
                GTEST_SKIP() << "rsvg-convert is not installed (librsvg2-bin)";
            QTemporaryDir dir;
            const QString svgPath = dir.filePath(QStringLiteral("p.svg")),
                          pngPath = dir.filePath(QStringLiteral("p.png"));
            ASSERT_TRUE(writePicture(p, format, svgPath));
            ASSERT_TRUE(image.loadFromData(convertWith(rsvg, {QStringLiteral("-o"), pngPath, svgPath}, pngPath)));
        } else {
            ASSERT_TRUE(image.loadFromData(encodePicture(p, format)));
        }
        EXPECT_EQ(image.pixel(20, 20), Red);         // inside the clip
        EXPECT_EQ(image.pixel(45, 15), 0xFFFFFFFFu); // right of it
        EXPECT_EQ(image.pixel(20, 35), 0xFFFFFFFFu); // below it
        EXPECT_EQ(image.pixel(55, 55), Blue);        // after the restore
    }
}

} // namespace
} // namespace kel::test
