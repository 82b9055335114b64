// SPDX-License-Identifier: GPL-3.0-or-later
// WMF half of the metafile writer.
#include "render/pictures/metafileobjects.h"
#include "render/pictures/metafilewriter.h"

#include <QtEndian>

#include <uwmf.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>

namespace kel {

namespace {

using metafile::ObjectCache;
using metafile::ObjectSlots;

constexpr uint32_t PlaceableKey = 0x9AC6CDD7;

U_COLORREF colourRef(QRgb rgb)
{
    return colorref3_set(uint8_t(qRed(rgb)), uint8_t(qGreen(rgb)), uint8_t(qBlue(rgb)));
}

// Points outside the 16-bit range (a shape reaching far beyond the
// picture) are pulled to its edge instead of wrapping around.
U_POINT16 point16(const QPoint &p)
{
    constexpr int lo = std::numeric_limits<int16_t>::min(), hi = std::numeric_limits<int16_t>::max();
    return point16_set(int16_t(std::clamp(p.x(), lo, hi)), int16_t(std::clamp(p.y(), lo, hi)));
}

bool fitsInt16(const QRect &r)
{
    constexpr int lo = std::numeric_limits<int16_t>::min(), hi = std::numeric_limits<int16_t>::max();
    return r.left() >= lo && r.top() >= lo && r.right() <= hi && r.bottom() <= hi;
}

// A pen of style "null" and a brush of style "null" are ordinary objects
// in a Windows metafile (there are no stock objects), so they are cached
// under looks of their own.
class WmfBuilder
{
public:
    void add(char *record)
    {
        if (!record) {
            mFailed = true;
            return;
        }
        const uint32_t words = U_wmr_size(reinterpret_cast<const U_METARECORD *>(record)) / 2;
        const uint32_t type = U_WMRTYPE(record);
        mData.append(record, qsizetype(words) * 2);
        std::free(record);
        mMaxRecord = std::max(mMaxRecord, words);
        if (U_wmr_properties(type) & U_DRAW_TEXT)
            mTextHeld = false;
    }

    // As in the EMF writer: a record between two texts that changes nothing
    // keeps readers that join held texts into paragraphs from moving them.
    void addText(char *record)
    {
        if (mTextHeld)
            add(U_WMRSETMAPMODE_set(U_MM_ANISOTROPIC));
        add(record);
        mTextHeld = record != nullptr;
    }

    void selectPen(const MetafilePen &pen)
    {
        const MetafilePen look = pen.visible ? pen : MetafilePen{};
        if (const auto slot = mPens.find(look)) {
            select(*slot, mPen);
            return;
        }
        if (mPens.isFull())
            remove(mPens.evict(mPen));
        const int created = mSlots.take();
        add(U_WMRCREATEPENINDIRECT_set(U_PEN_set(pen.visible ? uint16_t(pen.style) : uint16_t(U_PS_NULL),
                                                 uint16_t(std::clamp(pen.width, 1, 0x7FFF)), colourRef(pen.colour))));
        mPens.add(look, created);
        select(created, mPen);
    }

    void selectBrush(const MetafileBrush &brush)
    {
        const MetafileBrush look = brush.visible ? brush : MetafileBrush{};
        if (const auto slot = mBrushes.find(look)) {
            select(*slot, mBrush);
            return;
        }
        if (mBrushes.isFull())
            remove(mBrushes.evict(mBrush));
        const int created = mSlots.take();
        add(U_WMRCREATEBRUSHINDIRECT_set(
            U_WLOGBRUSH_set(brush.visible ? U_BS_SOLID : U_BS_NULL, colourRef(brush.colour), 0)));
        mBrushes.add(look, created);
        select(created, mBrush);
    }

    void selectFont(const MetafileFont &font)
    {
        if (const auto slot = mFonts.find(font)) {
            select(*slot, mFont);
            return;
        }
        if (mFonts.isFull())
            remove(mFonts.evict(mFont));
        const int created = mSlots.take();
        QByteArray face = font.family.toLatin1().left(31);
        U_FONT *uf = U_FONT_set(int16_t(-std::clamp(font.pixelHeight, 1, 0x7FFF)), 0, int16_t(font.escapement),
                                int16_t(font.escapement), int16_t(font.weight), font.italic ? 1 : 0, 0, 0,
                                font.fontClass.charSet, U_OUT_DEFAULT_PRECIS, U_CLIP_DEFAULT_PRECIS, U_DEFAULT_QUALITY,
                                font.fontClass.pitchAndFamily, face.data());
        if (!uf) {
            mFailed = true;
            return;
        }
        add(U_WMRCREATEFONTINDIRECT_set(uf));
        std::free(uf);
        mFonts.add(font, created);
        select(created, mFont);
    }

    // Fills do not depend on the background mode, but libwmf's readers
    // draw every fill half transparent under the transparent mode: shapes
    // are drawn in the opaque mode, texts (which must not get a background
    // box) in the transparent one.
    void setOpaqueBackground(bool opaque)
    {
        if (mOpaque == opaque)
            return;
        mOpaque = opaque;
        add(U_WMRSETBKMODE_set(opaque ? U_OPAQUE : U_TRANSPARENT));
    }

    void setTextColour(QRgb colour)
    {
        if (mTextColour == colour)
            return;
        mTextColour = colour;
        add(U_WMRSETTEXTCOLOR_set(colourRef(colour)));
    }

    // As in the EMF writer: a clip is a saved state, and restoring it
    // brings back what was selected when it was saved.
    void setClip(bool clipped, const QRect &rect)
    {
        if (!clipped && !mClipped)
            return;
        if (mClipped) {
            add(U_WMRRESTOREDC_set(-1));
            mPen = mBrush = mFont = -1;
            mTextColour.reset();
            mOpaque.reset();
        }
        mClipped = clipped;
        if (clipped) {
            add(U_WMRSAVEDC_set());
            const QRect r = rect.isEmpty() ? QRect(rect.topLeft(), QSize(0, 0)) : rect.adjusted(0, 0, 1, 1);
            add(U_WMRINTERSECTCLIPRECT_set(U_RECT16_set(point16(r.topLeft()), point16(r.bottomRight()))));
        }
    }

    bool failed() const { return mFailed; }

    /// The metafile's own 18-byte header and the records after it.
    QByteArray finish()
    {
        add(U_WMREOF_set());
        if (mFailed)
            return QByteArray();
        QByteArray file(18, '\0');
        char *h = file.data();
        qToLittleEndian<quint16>(1, h);     // in memory... kept as a disk file's type
        qToLittleEndian<quint16>(9, h + 2); // header size in words
        qToLittleEndian<quint16>(0x0300, h + 4);
        qToLittleEndian<quint32>(quint32((mData.size() + 18) / 2), h + 6);
        qToLittleEndian<quint16>(quint16(std::min(mSlots.tableSize(), 0xFFFF)), h + 10);
        qToLittleEndian<quint32>(mMaxRecord, h + 12);
        qToLittleEndian<quint16>(0, h + 16);
        file.append(mData);
        return file;
    }

private:
    void select(int object, int &current)
    {
        if (current == object)
            return;
        current = object;
        add(U_WMRSELECTOBJECT_set(uint16_t(object)));
    }
    void remove(int slot)
    {
        add(U_WMRDELETEOBJECT_set(uint16_t(slot)));
        mSlots.release(slot);
    }

    QByteArray mData;
    uint32_t mMaxRecord = 0;
    bool mFailed = false;
    ObjectSlots mSlots{0};
    ObjectCache<MetafilePen> mPens;
    ObjectCache<MetafileBrush> mBrushes;
    ObjectCache<MetafileFont> mFonts;
    int mPen = -1, mBrush = -1, mFont = -1;
    std::optional<QRgb> mTextColour = 0xFF000000; ///< none: not known after a restore
    std::optional<bool> mOpaque = false;          ///< none: not known after a restore
    bool mClipped = false;
    bool mTextHeld = false; ///< a text record since the last record that makes readers draw held texts
};

void addShape(WmfBuilder &wmf, const MetafileOp &op)
{
    std::vector<uint16_t> counts;
    std::vector<U_POINT16> points;
    for (const QPolygon &shape : op.shapes) {
        counts.push_back(uint16_t(std::min<qsizetype>(shape.size(), 0xFFFF)));
        for (const QPoint &p : shape)
            points.push_back(point16(p));
    }
    // One record holds at most 32767 points; longer shapes are left out
    // rather than cut into something else.
    if (points.empty() || points.size() > 0x7FFF)
        return;
    if (op.kind == MetafileOp::Polyline)
        wmf.add(U_WMRPOLYLINE_set(uint16_t(points.size()), points.data()));
    else if (op.kind == MetafileOp::Polygon)
        wmf.add(U_WMRPOLYGON_set(uint16_t(points.size()), points.data()));
    else
        wmf.add(U_WMRPOLYPOLYGON_set(uint16_t(counts.size()), counts.data(), points.data()));
}

// Windows metafiles carry 8-bit text. Readers disagree on the bytes
// 0x80-0x9F (LibreOffice reads Windows' western code page, Inkscape
// Latin-1), so only Latin-1 is written, and the typographic marks beyond it
// that labels use are spelled in ASCII, each taking the advance of the mark
// it stands for: the "…" of shortened labels as "...", dashes as "-",
// curly quotes as straight ones. Anything else becomes "?".
struct AnsiText {
    QByteArray bytes;
    std::vector<int16_t> advances;
};

AnsiText ansiText(const QString &text, const std::vector<int> &advances)
{
    AnsiText out;
    const auto put = [&out](const char *spelling, int advance) {
        const auto n = int(std::strlen(spelling));
        for (int i = 0; i < n; ++i) {
            out.bytes.append(spelling[i]);
            // The mark's advance shared out so that the next text starts where it did.
            const int share = advance * (i + 1) / n - advance * i / n;
            out.advances.push_back(int16_t(std::clamp(share, -0x7FFF, 0x7FFF)));
        }
    };
    for (qsizetype i = 0; i < text.size() && out.bytes.size() < 0x7FFF; ++i) {
        // A character beyond 16 bits is one "?" (its second half adds nothing).
        const char16_t u = text.at(i).unicode();
        const int advance = i < qsizetype(advances.size()) ? advances[std::size_t(i)] : 0;
        const char latin1[2] = {char(u), 0};
        put(u < 0x80 || (u >= 0xA0 && u <= 0xFF) ? latin1
                : QChar::isLowSurrogate(u)       ? ""
                : u == 0x2026                    ? "..."
                : u == 0x2013 || u == 0x2014     ? "-"
                : u == 0x2018 || u == 0x2019     ? "'"
                : u == 0x201C || u == 0x201D     ? "\""
                                                 : "?",
            advance);
    }
    out.bytes.truncate(0x7FFF);
    out.advances.resize(std::size_t(out.bytes.size()));
    return out;
}

void addText(WmfBuilder &wmf, const MetafileOp &op)
{
    AnsiText text = ansiText(op.text, op.advances);
    wmf.selectFont(op.font);
    wmf.setTextColour(op.pen.colour);
    wmf.setOpaqueBackground(false);
    wmf.addText(U_WMREXTTEXTOUT_set(point16(op.origin), int16_t(text.bytes.size()), 0, text.bytes.constData(),
                                    text.advances.data(), U_RECT16_set(point16_set(0, 0), point16_set(0, 0))));
}

} // namespace

QByteArray placeableWmfHeader(const QRect &bounds)
{
    QByteArray header(22, '\0');
    char *h = header.data();
    qToLittleEndian<quint32>(PlaceableKey, h);
    qToLittleEndian<quint16>(0, h + 4);
    qToLittleEndian<qint16>(qint16(bounds.left()), h + 6);
    qToLittleEndian<qint16>(qint16(bounds.top()), h + 8);
    qToLittleEndian<qint16>(qint16(bounds.right()), h + 10);
    qToLittleEndian<qint16>(qint16(bounds.bottom()), h + 12);
    qToLittleEndian<quint16>(quint16(MetafileDotsPerInch), h + 14);
    qToLittleEndian<quint32>(0, h + 16);
    quint16 checksum = 0;
    for (int i = 0; i < 20; i += 2)
        checksum ^= qFromLittleEndian<quint16>(h + i);
    qToLittleEndian<quint16>(checksum, h + 20);
    return header;
}

QByteArray encodeWmf(const MetafileRecording &recording)
{
    const QRect bounds(QPoint(0, 0), recording.size);
    if (recording.size.isEmpty() || !fitsInt16(bounds))
        return QByteArray();
    WmfBuilder wmf;
    wmf.add(U_WMRSETMAPMODE_set(U_MM_ANISOTROPIC));
    wmf.add(U_WMRSETWINDOWORG_set(point16_set(0, 0)));
    wmf.add(U_WMRSETWINDOWEXT_set(point16_set(int16_t(recording.size.width()), int16_t(recording.size.height()))));
    wmf.add(U_WMRSETBKMODE_set(U_TRANSPARENT));
    wmf.add(U_WMRSETROP2_set(U_R2_COPYPEN));
    wmf.add(U_WMRSETTEXTALIGN_set(U_TA_BASELINE));
    wmf.add(U_WMRSETPOLYFILLMODE_set(U_ALTERNATE));
    wmf.add(U_WMRSETTEXTCOLOR_set(colourRef(0xFF000000)));
    for (const MetafileOp &op : recording.ops) {
        if (op.kind != MetafileOp::Text && op.kind != MetafileOp::Clip)
            wmf.setOpaqueBackground(true);
        switch (op.kind) {
        case MetafileOp::FillRect: {
            const QRect r = op.rect.adjusted(0, 0, 1, 1);
            if (!fitsInt16(r))
                break;
            wmf.selectPen(MetafilePen{true, op.brush.colour, 1, MetafilePen::Solid});
            wmf.selectBrush(op.brush);
            wmf.add(U_WMRRECTANGLE_set(U_RECT16_set(point16(r.topLeft()), point16(r.bottomRight()))));
            break;
        }
        case MetafileOp::Polygon:
        case MetafileOp::PolyPolygon:
            wmf.selectPen(op.pen);
            wmf.selectBrush(op.brush);
            addShape(wmf, op);
            break;
        case MetafileOp::Polyline:
            wmf.selectPen(op.pen);
            addShape(wmf, op);
            break;
        case MetafileOp::Text: addText(wmf, op); break;
        case MetafileOp::Image: break; // bitmaps are kept in EMF pictures only; nothing drawn here needs one
        case MetafileOp::Clip: wmf.setClip(op.clipped, op.rect); break;
        }
    }
    const QByteArray body = wmf.finish();
    if (body.isEmpty())
        return QByteArray();
    return placeableWmfHeader(bounds) + body;
}

} // namespace kel
