// SPDX-License-Identifier: GPL-3.0-or-later
// EMF half of the metafile writer.
#include "render/pictures/metafileobjects.h"
#include "render/pictures/metafilewriter.h"

#include <uemf.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

namespace kel {

namespace {

using metafile::ObjectCache;
using metafile::ObjectSlots;

U_COLORREF colourRef(QRgb rgb)
{
    return colorref3_set(uint8_t(qRed(rgb)), uint8_t(qGreen(rgb)), uint8_t(qBlue(rgb)));
}

U_RECTL rectl(const QRect &r)
{
    return rectl_set(point32_set(r.left(), r.top()), point32_set(r.right(), r.bottom()));
}

bool fitsInt16(const QRect &bounds)
{
    constexpr int lo = std::numeric_limits<int16_t>::min(), hi = std::numeric_limits<int16_t>::max();
    return bounds.left() >= lo && bounds.top() >= lo && bounds.right() <= hi && bounds.bottom() <= hi;
}

class EmfBuilder
{
public:
    /// Takes a record made by libUEMF (malloc'ed, size at offset 4).
    void add(char *record)
    {
        if (!record) {
            mFailed = true;
            return;
        }
        uint32_t type = 0, size = 0;
        std::memcpy(&type, record, sizeof type);
        std::memcpy(&size, record + 4, sizeof size);
        mData.append(record, qsizetype(size));
        std::free(record);
        ++mRecords;
        if (emr_properties(type) & U_DRAW_TEXT)
            mTextHeld = false;
    }

    // Inkscape's import holds texts back until a record that draws or
    // changes the mapping comes, then joins all it holds into paragraphs it
    // lays out anew with a line spacing of its own: a graph's title and the
    // selection caption far below it became one text object whose second
    // line fell outside the picture. Setting the mapping mode again (it
    // changes nothing) between two texts makes such readers place each text
    // on its own, where the picture put it.
    void addText(char *record)
    {
        if (mTextHeld)
            add(U_EMRSETMAPMODE_set(U_MM_TEXT));
        add(record);
        mTextHeld = record != nullptr;
    }

    void reserve(qsizetype bytes) { mData.reserve(bytes); }

    void selectPen(const MetafilePen &pen)
    {
        if (!pen.visible) {
            select(U_NULL_PEN, mPen);
            return;
        }
        const auto slot = mPens.find(pen);
        if (slot) {
            select(uint32_t(*slot), mPen);
            return;
        }
        if (mPens.isFull())
            remove(mPens.evict(int(mPen)));
        const int created = mSlots.take();
        add(U_EMRCREATEPEN_set(uint32_t(created),
                               logpen_set(uint32_t(pen.style), point32_set(pen.width, 0), colourRef(pen.colour))));
        mPens.add(pen, created);
        select(uint32_t(created), mPen);
    }

    void selectBrush(const MetafileBrush &brush)
    {
        if (!brush.visible) {
            select(U_NULL_BRUSH, mBrush);
            return;
        }
        const auto slot = mBrushes.find(brush);
        if (slot) {
            select(uint32_t(*slot), mBrush);
            return;
        }
        if (mBrushes.isFull())
            remove(mBrushes.evict(int(mBrush)));
        const int created = mSlots.take();
        add(U_EMRCREATEBRUSHINDIRECT_set(uint32_t(created), logbrush_set(U_BS_SOLID, colourRef(brush.colour), 0)));
        mBrushes.add(brush, created);
        select(uint32_t(created), mBrush);
    }

    void selectFont(const MetafileFont &font)
    {
        const auto slot = mFonts.find(font);
        if (slot) {
            select(uint32_t(*slot), mFont);
            return;
        }
        if (mFonts.isFull())
            remove(mFonts.evict(int(mFont)));
        const int created = mSlots.take();
        uint16_t face[U_LF_FACESIZE] = {};
        const QString family = font.family.left(U_LF_FACESIZE - 1);
        std::memcpy(face, family.utf16(), std::size_t(family.size()) * sizeof(uint16_t));
        U_LOGFONT lf = logfont_set(-font.pixelHeight, 0, font.escapement, font.escapement, font.weight,
                                   font.italic ? 1 : 0, 0, 0, font.fontClass.charSet, U_OUT_DEFAULT_PRECIS,
                                   U_CLIP_DEFAULT_PRECIS, U_DEFAULT_QUALITY, font.fontClass.pitchAndFamily, face);
        add(U_EMREXTCREATEFONTINDIRECTW_set(uint32_t(created), reinterpret_cast<const char *>(&lf), nullptr));
        mFonts.add(font, created);
        select(uint32_t(created), mFont);
    }

    void setTextColour(QRgb colour)
    {
        if (mTextColour == colour)
            return;
        mTextColour = colour;
        add(U_EMRSETTEXTCOLOR_set(colourRef(colour)));
    }

    // A clip lives in a saved state of the player: restoring it lifts the
    // clip, and brings back the objects and text colour selected when it
    // was saved, so those are selected again as needed.
    void setClip(bool clipped, const QRect &rect)
    {
        if (!clipped && !mClipped)
            return;
        if (mClipped) {
            add(U_EMRRESTOREDC_set(-1));
            mPen = mBrush = mFont = 0;
            mTextColour.reset();
        }
        mClipped = clipped;
        if (clipped) {
            add(U_EMRSAVEDC_set());
            add(U_EMRINTERSECTCLIPRECT_set(
                rectl(rect.isEmpty() ? QRect(rect.topLeft(), QSize(0, 0)) : rect.adjusted(0, 0, 1, 1))));
        }
    }

    QByteArray finish(const QSize &size, const QString &description)
    {
        EMFTRACK track{};
        add(U_EMREOF_set(0, nullptr, &track));
        if (mFailed)
            return QByteArray();
        // The header goes in front now that the records are counted. The
        // bounds are the picture's pixels, inclusive; the frame is the
        // picture's whole extent (W by H pixels), so its right and bottom edge
        // lie one pixel beyond the last pixel's left and top edge: a frame
        // one pixel short makes readers drop what is drawn in the last row.
        const QRect bounds(QPoint(0, 0), size);
        const U_RECTL frame = rectl_set(point32_set(0, 0),
                                        point32_set(qRound(size.width() * 2540.0 / MetafileDotsPerInch),
                                                    qRound(size.height() * 2540.0 / MetafileDotsPerInch)));
        // Description: the application, NUL, the picture, NUL NUL.
        std::vector<uint16_t> text;
        for (QChar c : description)
            text.push_back(c.unicode());
        text.insert(text.end(), {0, 0});
        if (text.size() % 2)
            text.push_back(0);
        // A 96 dpi reference screen of 1920 x 1080 pixels.
        char *header = U_EMRHEADER_set(rectl(bounds), frame, nullptr, U_CBSTR(text.size()), text.data(),
                                       sizel_set(1920, 1080), sizel_set(508, 286), 0);
        if (!header)
            return QByteArray();
        uint32_t headerSize = 0;
        std::memcpy(&headerSize, header + 4, sizeof headerSize);
        QByteArray file(header, qsizetype(headerSize));
        std::free(header);
        file.append(mData);
        const uint32_t bytes = uint32_t(file.size());
        const uint32_t records = mRecords + 1;
        const uint16_t handles = uint16_t(std::min(mSlots.tableSize(), 0xFFFF));
        std::memcpy(file.data() + 48, &bytes, 4);
        std::memcpy(file.data() + 52, &records, 4);
        std::memcpy(file.data() + 56, &handles, 2);
        return file;
    }

private:
    void select(uint32_t object, uint32_t &current)
    {
        if (current == object)
            return;
        current = object;
        add(U_EMRSELECTOBJECT_set(object));
    }
    void remove(int slot)
    {
        add(U_EMRDELETEOBJECT_set(uint32_t(slot)));
        mSlots.release(slot);
    }

    QByteArray mData;
    uint32_t mRecords = 0;
    bool mFailed = false;
    ObjectSlots mSlots{1}; // 0 stands for the metafile itself
    ObjectCache<MetafilePen> mPens;
    ObjectCache<MetafileBrush> mBrushes;
    ObjectCache<MetafileFont> mFonts;
    uint32_t mPen = 0, mBrush = 0, mFont = 0;
    std::optional<QRgb> mTextColour = 0xFF000000; ///< none: not known after a restore
    bool mClipped = false;
    bool mTextHeld = false; ///< a text record since the last record that makes readers draw held texts
};

void addShape(EmfBuilder &emf, const MetafileOp &op)
{
    std::vector<uint32_t> counts;
    QPolygon all;
    for (const QPolygon &shape : op.shapes) {
        counts.push_back(uint32_t(shape.size()));
        all += shape;
    }
    const QRect bounds = metafile::pointBounds(all);
    if (fitsInt16(bounds)) {
        std::vector<U_POINT16> points;
        points.reserve(std::size_t(all.size()));
        for (const QPoint &p : all)
            points.push_back(point16_set(int16_t(p.x()), int16_t(p.y())));
        const auto n = uint32_t(points.size());
        if (op.kind == MetafileOp::Polyline)
            emf.add(U_EMRPOLYLINE16_set(rectl(bounds), n, points.data()));
        else if (op.kind == MetafileOp::Polygon)
            emf.add(U_EMRPOLYGON16_set(rectl(bounds), n, points.data()));
        else
            emf.add(U_EMRPOLYPOLYGON16_set(rectl(bounds), uint32_t(counts.size()), counts.data(), n, points.data()));
        return;
    }
    std::vector<U_POINTL> points;
    points.reserve(std::size_t(all.size()));
    for (const QPoint &p : all)
        points.push_back(point32_set(p.x(), p.y()));
    const auto n = uint32_t(points.size());
    if (op.kind == MetafileOp::Polyline)
        emf.add(U_EMRPOLYLINE_set(rectl(bounds), n, points.data()));
    else if (op.kind == MetafileOp::Polygon)
        emf.add(U_EMRPOLYGON_set(rectl(bounds), n, points.data()));
    else
        emf.add(U_EMRPOLYPOLYGON_set(rectl(bounds), uint32_t(counts.size()), counts.data(), n, points.data()));
}

void addText(EmfBuilder &emf, const MetafileOp &op)
{
    emf.selectFont(op.font);
    emf.setTextColour(op.pen.colour);
    std::vector<uint32_t> dx(op.advances.begin(), op.advances.end());
    int width = 0;
    for (int a : op.advances)
        width += a;
    const QRect bounds(op.origin.x(), op.origin.y() - op.font.pixelHeight, std::max(1, width),
                       op.font.pixelHeight + op.font.pixelHeight / 4 + 1);
    char *text = emrtext_set(point32_set(op.origin.x(), op.origin.y()), U_NUM_STR(op.text.size()), 2,
                             const_cast<ushort *>(op.text.utf16()), U_ETO_NONE,
                             rectl_set(point32_set(0, 0), point32_set(-1, -1)), dx.data());
    if (!text) {
        emf.add(nullptr);
        return;
    }
    emf.addText(U_EMREXTTEXTOUTW_set(rectl(bounds), U_GM_COMPATIBLE, 1.0f, 1.0f, reinterpret_cast<PU_EMRTEXT>(text)));
    std::free(text);
}

void addImage(EmfBuilder &emf, const MetafileOp &op)
{
    // A bottom-up 32-bit DIB: the rows of the image in reverse order.
    const QImage image = op.image.mirrored(false, true);
    const int w = image.width(), h = image.height();
    const auto bytes = uint32_t(w) * uint32_t(h) * 4;
    QByteArray pixels;
    pixels.reserve(qsizetype(bytes));
    for (int y = 0; y < h; ++y)
        pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)), qsizetype(w) * 4);
    const U_BITMAPINFOHEADER header = bitmapinfoheader_set(w, h, 1, 32, U_BI_RGB, bytes, 3780, 3780, 0, 0);
    PU_BITMAPINFO info = bitmapinfo_set(header, nullptr);
    if (!info) {
        emf.add(nullptr);
        return;
    }
    emf.add(U_EMRSTRETCHDIBITS_set(rectl(op.rect), point32_set(op.rect.left(), op.rect.top()),
                                   point32_set(op.rect.width(), op.rect.height()), point32_set(0, 0), point32_set(w, h),
                                   U_DIB_RGB_COLORS, U_SRCCOPY, info, bytes, pixels.data()));
    std::free(info);
}

} // namespace

QByteArray encodeEmf(const MetafileRecording &recording, const QString &description)
{
    if (recording.size.isEmpty())
        return QByteArray();
    EmfBuilder emf;
    emf.reserve(qsizetype(recording.ops.size()) * 64);
    emf.add(U_EMRSETMAPMODE_set(U_MM_TEXT));
    emf.add(U_EMRSETBKMODE_set(U_TRANSPARENT));
    emf.add(U_EMRSETTEXTALIGN_set(U_TA_BASELINE));
    emf.add(U_EMRSETPOLYFILLMODE_set(U_ALTERNATE));
    emf.add(U_EMRSETTEXTCOLOR_set(colourRef(0xFF000000)));
    for (const MetafileOp &op : recording.ops) {
        switch (op.kind) {
        case MetafileOp::FillRect: {
            // An outline in the fill's colour makes the rectangle cover its
            // right and bottom edge too, as the painter's fill does.
            emf.selectPen(MetafilePen{true, op.brush.colour, 1, MetafilePen::Solid});
            emf.selectBrush(op.brush);
            emf.add(U_EMRRECTANGLE_set(rectl(op.rect.adjusted(0, 0, 1, 1))));
            break;
        }
        case MetafileOp::Polygon:
        case MetafileOp::PolyPolygon:
            emf.selectPen(op.pen);
            emf.selectBrush(op.brush);
            addShape(emf, op);
            break;
        case MetafileOp::Polyline:
            emf.selectPen(op.pen);
            addShape(emf, op);
            break;
        case MetafileOp::Text: addText(emf, op); break;
        case MetafileOp::Image: addImage(emf, op); break;
        case MetafileOp::Clip: emf.setClip(op.clipped, op.rect); break;
        }
    }
    return emf.finish(recording.size, description);
}

} // namespace kel
