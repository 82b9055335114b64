// SPDX-License-Identifier: GPL-3.0-or-later
// SVG from a metafile recording. Qt's own SVG generator drops the painter's
// clips, so a long label would spill into its neighbours in SVG while every
// other format cuts it at its box; written from the recording, SVG keeps the
// clips and draws exactly what the metafiles draw.
#include "render/pictures/metafilewriter.h"

#include <QBuffer>
#include <QXmlStreamWriter>

namespace kel {

namespace {

QString colourName(QRgb rgb)
{
    return QColor::fromRgb(rgb).name(QColor::HexRgb);
}

void paintAttributes(QXmlStreamWriter &xml, const MetafilePen &pen, const MetafileBrush &brush)
{
    xml.writeAttribute(QStringLiteral("fill"), brush.visible ? colourName(brush.colour) : QStringLiteral("none"));
    if (brush.visible && qAlpha(brush.colour) != 255)
        xml.writeAttribute(QStringLiteral("fill-opacity"), QString::number(qAlpha(brush.colour) / 255.0));
    if (!pen.visible)
        return;
    xml.writeAttribute(QStringLiteral("stroke"), colourName(pen.colour));
    if (qAlpha(pen.colour) != 255)
        xml.writeAttribute(QStringLiteral("stroke-opacity"), QString::number(qAlpha(pen.colour) / 255.0));
    xml.writeAttribute(QStringLiteral("stroke-width"), QString::number(pen.width));
    const int w = pen.width;
    QString dashes;
    switch (pen.style) {
    case MetafilePen::Dash: dashes = QStringLiteral("%1 %2").arg(4 * w).arg(2 * w); break;
    case MetafilePen::Dot: dashes = QStringLiteral("%1 %1").arg(w); break;
    case MetafilePen::DashDot: dashes = QStringLiteral("%1 %2 %3 %2").arg(4 * w).arg(2 * w).arg(w); break;
    case MetafilePen::DashDotDot: dashes = QStringLiteral("%1 %2 %3 %2 %3 %2").arg(4 * w).arg(2 * w).arg(w); break;
    default: break;
    }
    if (!dashes.isEmpty())
        xml.writeAttribute(QStringLiteral("stroke-dasharray"), dashes);
}

QString pointList(const QPolygon &polygon)
{
    QStringList points;
    for (const QPoint &p : polygon)
        points << QStringLiteral("%1,%2").arg(p.x()).arg(p.y());
    return points.join(QLatin1Char(' '));
}

} // namespace

QByteArray encodeSvg(const MetafileRecording &recording, const QString &description)
{
    if (recording.size.isEmpty())
        return QByteArray();
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&buffer);
    xml.setAutoFormatting(false);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("svg"));
    xml.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    xml.writeNamespace(QStringLiteral("http://www.w3.org/1999/xlink"), QStringLiteral("xlink"));
    const int w = recording.size.width(), h = recording.size.height();
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.1"));
    xml.writeAttribute(QStringLiteral("width"), QString::number(w));
    xml.writeAttribute(QStringLiteral("height"), QString::number(h));
    xml.writeAttribute(QStringLiteral("viewBox"), QStringLiteral("0 0 %1 %2").arg(w).arg(h));
    if (!description.isEmpty())
        xml.writeTextElement(QStringLiteral("title"), description);
    bool inClip = false;
    int clips = 0;
    for (const MetafileOp &op : recording.ops) {
        switch (op.kind) {
        case MetafileOp::Clip: {
            if (inClip)
                xml.writeEndElement(); // g
            inClip = op.clipped;
            if (!inClip)
                break;
            const QString id = QStringLiteral("clip%1").arg(++clips);
            xml.writeStartElement(QStringLiteral("clipPath"));
            xml.writeAttribute(QStringLiteral("id"), id);
            xml.writeEmptyElement(QStringLiteral("rect"));
            xml.writeAttribute(QStringLiteral("x"), QString::number(op.rect.x()));
            xml.writeAttribute(QStringLiteral("y"), QString::number(op.rect.y()));
            xml.writeAttribute(QStringLiteral("width"), QString::number(std::max(0, op.rect.width())));
            xml.writeAttribute(QStringLiteral("height"), QString::number(std::max(0, op.rect.height())));
            xml.writeEndElement(); // clipPath
            xml.writeStartElement(QStringLiteral("g"));
            xml.writeAttribute(QStringLiteral("clip-path"), QStringLiteral("url(#%1)").arg(id));
            break;
        }
        case MetafileOp::FillRect:
            xml.writeEmptyElement(QStringLiteral("rect"));
            xml.writeAttribute(QStringLiteral("x"), QString::number(op.rect.x()));
            xml.writeAttribute(QStringLiteral("y"), QString::number(op.rect.y()));
            xml.writeAttribute(QStringLiteral("width"), QString::number(op.rect.width()));
            xml.writeAttribute(QStringLiteral("height"), QString::number(op.rect.height()));
            paintAttributes(xml, MetafilePen{}, op.brush);
            break;
        case MetafileOp::Polygon:
        case MetafileOp::Polyline:
            if (op.shapes.empty())
                break;
            xml.writeEmptyElement(op.kind == MetafileOp::Polygon ? QStringLiteral("polygon")
                                                                 : QStringLiteral("polyline"));
            xml.writeAttribute(QStringLiteral("points"), pointList(op.shapes.front()));
            paintAttributes(xml, op.pen, op.kind == MetafileOp::Polygon ? op.brush : MetafileBrush{});
            break;
        case MetafileOp::PolyPolygon: {
            QString d;
            for (const QPolygon &shape : op.shapes)
                d += QLatin1Char('M') + pointList(shape) + QLatin1Char('Z');
            xml.writeEmptyElement(QStringLiteral("path"));
            xml.writeAttribute(QStringLiteral("d"), d);
            xml.writeAttribute(QStringLiteral("fill-rule"), QStringLiteral("evenodd"));
            paintAttributes(xml, MetafilePen{}, op.brush);
            break;
        }
        case MetafileOp::Text: {
            // One x per character, from the recorded advances, so the text
            // stands where the other formats put it whatever font the viewer
            // has; the second half of a surrogate pair has none.
            QStringList xs;
            int x = op.origin.x();
            for (qsizetype i = 0; i < op.text.size(); ++i) {
                if (!op.text.at(i).isLowSurrogate())
                    xs << QString::number(x);
                x += i < qsizetype(op.advances.size()) ? op.advances[std::size_t(i)] : 0;
            }
            xml.writeStartElement(QStringLiteral("text"));
            xml.writeAttribute(QStringLiteral("xml:space"), QStringLiteral("preserve"));
            xml.writeAttribute(QStringLiteral("x"), xs.join(QLatin1Char(' ')));
            xml.writeAttribute(QStringLiteral("y"), QString::number(op.origin.y()));
            xml.writeAttribute(QStringLiteral("font-family"), op.font.family);
            xml.writeAttribute(QStringLiteral("font-size"), QString::number(op.font.pixelHeight));
            xml.writeAttribute(QStringLiteral("font-weight"), QString::number(op.font.weight));
            if (op.font.italic)
                xml.writeAttribute(QStringLiteral("font-style"), QStringLiteral("italic"));
            xml.writeAttribute(QStringLiteral("fill"), colourName(op.pen.colour));
            if (op.font.escapement != 0)
                xml.writeAttribute(QStringLiteral("transform"),
                                   QStringLiteral("rotate(%1 %2 %3)")
                                       .arg(-op.font.escapement / 10.0)
                                       .arg(op.origin.x())
                                       .arg(op.origin.y()));
            xml.writeCharacters(op.text);
            xml.writeEndElement();
            break;
        }
        case MetafileOp::Image: {
            QByteArray png;
            QBuffer pngBuffer(&png);
            pngBuffer.open(QIODevice::WriteOnly);
            op.image.save(&pngBuffer, "PNG");
            xml.writeEmptyElement(QStringLiteral("image"));
            xml.writeAttribute(QStringLiteral("x"), QString::number(op.rect.x()));
            xml.writeAttribute(QStringLiteral("y"), QString::number(op.rect.y()));
            xml.writeAttribute(QStringLiteral("width"), QString::number(op.rect.width()));
            xml.writeAttribute(QStringLiteral("height"), QString::number(op.rect.height()));
            xml.writeAttribute(QStringLiteral("preserveAspectRatio"), QStringLiteral("none"));
            xml.writeAttribute(QStringLiteral("xlink:href"),
                               QStringLiteral("data:image/png;base64,") + QString::fromLatin1(png.toBase64()));
            break;
        }
        }
    }
    if (inClip)
        xml.writeEndElement();
    xml.writeEndElement(); // svg
    xml.writeEndDocument();
    return out;
}

} // namespace kel
