// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/pictures/emfpaintdevice.h"

#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainterPath>
#include <QPixmap>
#include <QTextItem>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <optional>

namespace kel {

namespace {

QRgb solidColour(const QBrush &brush)
{
    if (const QGradient *g = brush.gradient(); g && !g->stops().isEmpty())
        return g->stops().constFirst().second.rgba();
    return brush.color().rgba();
}

} // namespace

QString metafileFaceName(const QString &family)
{
    struct Face {
        const char *generic;
        const char *face;
    };
    // Qt's and fontconfig's generic names, and the metric twins that stand
    // in for the Windows faces on Linux.
    static constexpr Face Faces[] = {
        {"sans serif", "Arial"},
        {"sans-serif", "Arial"},
        {"sans", "Arial"},
        {"sansserif", "Arial"},
        {"helvetica", "Arial"},
        {"dejavu sans", "Arial"},
        {"liberation sans", "Arial"},
        {"serif", "Times New Roman"},
        {"times", "Times New Roman"},
        {"dejavu serif", "Times New Roman"},
        {"liberation serif", "Times New Roman"},
        {"monospace", "Courier New"},
        {"courier", "Courier New"},
        {"dejavu sans mono", "Courier New"},
        {"liberation mono", "Courier New"},
    };
    const QString key = family.trimmed().toLower();
    if (key.isEmpty())
        return QStringLiteral("Arial");
    for (const Face &f : Faces)
        if (key == QLatin1String(f.generic))
            return QString::fromLatin1(f.face);
    return family;
}

// Every drawing call ends here with the painter's state already applied
// (pen, brush, font, transform); coordinates are mapped to device pixels
// before they are kept.
class MetafilePaintEngine : public QPaintEngine
{
public:
    MetafilePaintEngine(const QSize &size, MetafileFontClass fontClass)
        : QPaintEngine(AllFeatures), mFontClass(fontClass)
    {
        mRecording.size = size;
    }

    bool begin(QPaintDevice *device) override
    {
        mDevice = device;
        mTransform = QTransform();
        mPen = QPen();
        mBrush = QBrush();
        mClip.reset();
        setActive(true);
        return true;
    }
    bool end() override
    {
        setActive(false);
        return true;
    }
    Type type() const override { return Type(QPaintEngine::User + 7); }

    void updateState(const QPaintEngineState &state) override
    {
        const DirtyFlags flags = state.state();
        if (flags & DirtyPen)
            mPen = state.pen();
        if (flags & DirtyBrush)
            mBrush = state.brush();
        // Texts arrive with their own font (QTextItem), so the painter's
        // font needs no tracking.
        if (flags & DirtyTransform)
            mTransform = state.transform();
        if (flags & (DirtyClipRegion | DirtyClipPath | DirtyClipEnabled))
            updateClip(state, flags);
    }

    void drawRects(const QRectF *rects, int rectCount) override
    {
        for (int i = 0; i < rectCount; ++i) {
            const QRectF &r = rects[i];
            if (mTransform.type() <= QTransform::TxScale && !pen().visible && brush().visible) {
                const QRectF m = mTransform.mapRect(r);
                MetafileOp op;
                op.kind = MetafileOp::FillRect;
                const int left = qRound(m.left()), top = qRound(m.top());
                op.rect = QRect(QPoint(left, top), QPoint(qRound(m.right()) - 1, qRound(m.bottom()) - 1));
                op.brush = brush();
                if (op.rect.isValid())
                    mRecording.ops.push_back(std::move(op));
                continue;
            }
            addShape(MetafileOp::Polygon, mTransform.map(QPolygonF(r)).toPolygon(), pen(), brush());
        }
    }
    void drawRects(const QRect *rects, int rectCount) override
    {
        for (int i = 0; i < rectCount; ++i) {
            const QRectF r(rects[i]);
            drawRects(&r, 1);
        }
    }

    void drawLines(const QLineF *lines, int lineCount) override
    {
        const MetafilePen p = pen();
        if (!p.visible)
            return;
        for (int i = 0; i < lineCount; ++i) {
            QPolygonF line;
            line << lines[i].p1() << lines[i].p2();
            addShape(MetafileOp::Polyline, mTransform.map(line).toPolygon(), p, MetafileBrush{});
        }
    }
    void drawLines(const QLine *lines, int lineCount) override
    {
        for (int i = 0; i < lineCount; ++i) {
            const QLineF l(lines[i]);
            drawLines(&l, 1);
        }
    }

    void drawPolygon(const QPointF *points, int pointCount, PolygonDrawMode mode) override
    {
        QPolygonF polygon;
        polygon.reserve(pointCount);
        for (int i = 0; i < pointCount; ++i)
            polygon << points[i];
        const QPolygon mapped = mTransform.map(polygon).toPolygon();
        if (mode == PolylineMode)
            addShape(MetafileOp::Polyline, mapped, pen(), MetafileBrush{});
        else
            addShape(MetafileOp::Polygon, mapped, pen(), brush());
    }
    void drawPolygon(const QPoint *points, int pointCount, PolygonDrawMode mode) override
    {
        std::vector<QPointF> converted(points, points + pointCount);
        drawPolygon(converted.data(), pointCount, mode);
    }

    void drawPath(const QPainterPath &path) override
    {
        const QPainterPath mapped = mTransform.map(path);
        const MetafileBrush b = brush();
        if (b.visible) {
            MetafileOp op;
            op.kind = MetafileOp::PolyPolygon;
            for (const QPolygonF &polygon : mapped.toFillPolygons())
                if (polygon.size() >= 3)
                    op.shapes.push_back(polygon.toPolygon());
            op.brush = b;
            if (!op.shapes.empty())
                mRecording.ops.push_back(std::move(op));
        }
        const MetafilePen p = pen();
        if (p.visible)
            for (const QPolygonF &polygon : mapped.toSubpathPolygons())
                addShape(MetafileOp::Polyline, polygon.toPolygon(), p, MetafileBrush{});
    }

    void drawPixmap(const QRectF &r, const QPixmap &pixmap, const QRectF &source) override
    {
        drawImage(r, pixmap.toImage(), source, Qt::AutoColor);
    }
    void drawImage(const QRectF &r, const QImage &image, const QRectF &source, Qt::ImageConversionFlags) override
    {
        MetafileOp op;
        op.kind = MetafileOp::Image;
        op.rect = mTransform.mapRect(r).toAlignedRect();
        op.image = image.copy(source.toAlignedRect()).convertToFormat(QImage::Format_ARGB32);
        if (op.rect.isValid() && !op.image.isNull())
            mRecording.ops.push_back(std::move(op));
    }

    void drawTextItem(const QPointF &p, const QTextItem &textItem) override
    {
        const QString text = textItem.text();
        // A text in a transparent colour shows nothing, as on screen (a
        // metafile's text has no alpha and would come out opaque).
        if (text.isEmpty() || qAlpha(mPen.color().rgba()) == 0)
            return;
        // Consecutive texts mostly share one font: its description and
        // metrics are worked out once per font.
        const QFont &font = textItem.font();
        if (!mTextFont || !(font == *mTextFont) || mTextTransform != mTransform) {
            mTextFont = font;
            mTextTransform = mTransform;
            mTextMetrics.emplace(font, mDevice);
            mScaleX = std::hypot(mTransform.m11(), mTransform.m12());
            const qreal scaleY = std::hypot(mTransform.m21(), mTransform.m22());
            const qreal em = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * MetafileDotsPerInch / 72.0;
            mTextLook.family = metafileFaceName(font.family());
            mTextLook.fontClass = mFontClass;
            mTextLook.pixelHeight = std::max(1, qRound(em * scaleY));
            mTextLook.weight = std::clamp(int(font.weight()), 100, 900);
            mTextLook.italic = font.italic();
            mTextLook.escapement = qRound(-qRadiansToDegrees(std::atan2(mTransform.m12(), mTransform.m11())) * 10.0);
        }
        MetafileOp op;
        op.kind = MetafileOp::Text;
        op.text = text;
        op.origin = mTransform.map(p).toPoint();
        op.font = mTextLook;
        // Advances from the running sum of the characters' own widths
        // (measuring whole prefixes would lay the text out again each time),
        // rounded at each end so that rounding never adds up along a label.
        op.advances.reserve(std::size_t(text.size()));
        qreal position = 0;
        int previous = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text.at(i);
            if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
                position += mTextMetrics->horizontalAdvance(text.mid(i, 2));
                const int next = qRound(position * mScaleX);
                op.advances.push_back(next - previous);
                op.advances.push_back(0);
                previous = next;
                ++i;
                continue;
            }
            position += mTextMetrics->horizontalAdvance(c);
            const int next = qRound(position * mScaleX);
            op.advances.push_back(next - previous);
            previous = next;
        }
        op.pen.visible = true;
        op.pen.colour = mPen.color().rgba();
        mRecording.ops.push_back(std::move(op));
    }

    // Clips are kept as their bounding rectangles in device pixels: what
    // this program draws clips to rectangles (chart plot areas, text boxes).
    // The painter replays saved clips with the transform they were made
    // under, which the state carries.
    void updateClip(const QPaintEngineState &state, DirtyFlags flags)
    {
        std::optional<QRect> clip = mClip;
        if (flags & (DirtyClipRegion | DirtyClipPath)) {
            const Qt::ClipOperation operation = state.clipOperation();
            const QRect area = (flags & DirtyClipPath)
                ? state.transform().map(state.clipPath()).boundingRect().toAlignedRect()
                : state.transform().map(state.clipRegion()).boundingRect();
            if (operation == Qt::NoClip)
                clip.reset();
            else if (operation == Qt::IntersectClip && clip)
                clip = clip->intersected(area);
            else
                clip = area;
        }
        if ((flags & DirtyClipEnabled) && !state.isClipEnabled())
            clip.reset();
        mClip = clip;
        MetafileOp op;
        op.kind = MetafileOp::Clip;
        op.clipped = clip.has_value();
        op.rect = clip.value_or(QRect());
        mRecording.ops.push_back(std::move(op));
    }

    const MetafileRecording &recording() const { return mRecording; }
    MetafileRecording take()
    {
        MetafileRecording taken = std::move(mRecording);
        mRecording = MetafileRecording{taken.size, {}};
        return taken;
    }

private:
    MetafilePen pen() const
    {
        MetafilePen p;
        p.visible =
            mPen.style() != Qt::NoPen && mPen.brush().style() != Qt::NoBrush && qAlpha(solidColour(mPen.brush())) != 0;
        p.colour = solidColour(mPen.brush());
        const qreal scale = std::sqrt(std::abs(mTransform.determinant()));
        p.width = mPen.isCosmetic() ? std::max(1, qRound(mPen.widthF())) : std::max(1, qRound(mPen.widthF() * scale));
        switch (mPen.style()) {
        case Qt::DashLine: p.style = MetafilePen::Dash; break;
        case Qt::DotLine: p.style = MetafilePen::Dot; break;
        case Qt::DashDotLine: p.style = MetafilePen::DashDot; break;
        case Qt::DashDotDotLine: p.style = MetafilePen::DashDotDot; break;
        default: p.style = MetafilePen::Solid; break; // custom dashes draw solid
        }
        return p;
    }
    MetafileBrush brush() const
    {
        MetafileBrush b;
        b.visible = mBrush.style() != Qt::NoBrush && qAlpha(solidColour(mBrush)) != 0;
        b.colour = solidColour(mBrush);
        return b;
    }
    void addShape(MetafileOp::Kind kind, const QPolygon &polygon, const MetafilePen &p, const MetafileBrush &b)
    {
        if (polygon.size() < 2 || (!p.visible && !b.visible))
            return;
        MetafileOp op;
        op.kind = kind;
        op.shapes.push_back(polygon);
        op.pen = p;
        op.brush = b;
        mRecording.ops.push_back(std::move(op));
    }

    MetafileRecording mRecording;
    MetafileFontClass mFontClass;
    QPaintDevice *mDevice = nullptr;
    QTransform mTransform;
    std::optional<QRect> mClip;
    QPen mPen;
    QBrush mBrush;
    // The last text's font, as drawn.
    std::optional<QFont> mTextFont;
    QTransform mTextTransform;
    std::optional<QFontMetricsF> mTextMetrics;
    qreal mScaleX = 1.0;
    MetafileFont mTextLook;
};

MetafilePaintDevice::MetafilePaintDevice(const QSize &size, MetafileFontClass fontClass)
    : mSize(size), mEngine(std::make_unique<MetafilePaintEngine>(size, fontClass))
{
}

MetafilePaintDevice::~MetafilePaintDevice() = default;

QPaintEngine *MetafilePaintDevice::paintEngine() const
{
    return mEngine.get();
}

const MetafileRecording &MetafilePaintDevice::recording() const
{
    return mEngine->recording();
}

MetafileRecording MetafilePaintDevice::takeRecording()
{
    return mEngine->take();
}

int MetafilePaintDevice::metric(PaintDeviceMetric metric) const
{
    switch (metric) {
    case PdmWidth: return mSize.width();
    case PdmHeight: return mSize.height();
    case PdmWidthMM: return qRound(mSize.width() * 25.4 / MetafileDotsPerInch);
    case PdmHeightMM: return qRound(mSize.height() * 25.4 / MetafileDotsPerInch);
    case PdmNumColors: return 0x7fffffff;
    case PdmDepth: return 32;
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY: return MetafileDotsPerInch;
    case PdmDevicePixelRatio: return 1;
    case PdmDevicePixelRatioScaled: return int(devicePixelRatioFScale());
    default: break;
    }
    return 0;
}

} // namespace kel
