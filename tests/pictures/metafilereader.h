// SPDX-License-Identifier: GPL-3.0-or-later
// Just enough of the EMF and WMF layouts to walk a file's records in the
// tests, written from the formats' field tables rather than from the
// writer, so that a writer mistake shows up as a mismatch.
#pragma once

#include <QByteArray>
#include <QRect>
#include <QSize>
#include <QStringList>
#include <QString>
#include <QtEndian>

#include <cstdlib>
#include <utility>
#include <vector>

namespace kel::test {

inline quint32 u32At(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint32>(b.constData() + at);
}
inline qint32 i32At(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<qint32>(b.constData() + at);
}
inline quint16 u16At(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint16>(b.constData() + at);
}
inline qint16 i16At(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<qint16>(b.constData() + at);
}

struct MetaRecord {
    quint32 type = 0; ///< EMF record type, or WMF function number
    qsizetype offset = 0;
    qsizetype size = 0; ///< bytes
};

/// The records of an EMF file from its start, or of a WMF file after its
/// placeable header (22 bytes) and metafile header (18 bytes). Stops,
/// returning what it has and `ok` false, at a record that does not fit the
/// file; `ok` is true only when an EOF record ends the file exactly.
inline std::vector<MetaRecord> metaRecords(const QByteArray &file, bool wmf, bool *ok)
{
    std::vector<MetaRecord> records;
    qsizetype at = wmf ? 22 + 18 : 0;
    *ok = false;
    while (at + (wmf ? 6 : 8) <= file.size()) {
        const MetaRecord r = wmf ? MetaRecord{u16At(file, at + 4), at, qsizetype(u32At(file, at)) * 2}
                                 : MetaRecord{u32At(file, at), at, qsizetype(u32At(file, at + 4))};
        if (r.size < (wmf ? 6 : 8) || (!wmf && r.size % 4) || at + r.size > file.size())
            return records;
        records.push_back(r);
        at += r.size;
        if (r.type == (wmf ? 0u : 14u)) { // EOF
            *ok = at == file.size();
            return records;
        }
    }
    return records;
}
inline std::vector<MetaRecord> emfRecords(const QByteArray &file, bool *ok)
{
    return metaRecords(file, false, ok);
}
inline std::vector<MetaRecord> wmfRecords(const QByteArray &file, bool *ok)
{
    return metaRecords(file, true, ok);
}

/// The UTF-16 string of an EMR_EXTTEXTOUTW record.
inline QString emfText(const QByteArray &file, const MetaRecord &r)
{
    const quint32 chars = u32At(file, r.offset + 44);
    const quint32 offString = u32At(file, r.offset + 48);
    if (offString + chars * 2 > quint32(r.size))
        return QStringLiteral("<outside the record>");
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(file.constData() + r.offset + offString),
                              qsizetype(chars));
}

/// The Latin-1 string of a META_EXTTEXTOUT record.
inline QString wmfText(const QByteArray &file, const MetaRecord &r)
{
    const qint16 length = i16At(file, r.offset + 10);
    const quint16 options = u16At(file, r.offset + 12);
    const qsizetype text = r.offset + 14 + ((options & 0x0006) ? 8 : 0);
    if (length < 0 || text + length > r.offset + r.size)
        return QStringLiteral("<outside the record>");
    return QString::fromLatin1(file.constData() + text, length);
}

/// A text of an EMF file where it lands: its box from the reference point
/// (baseline, left) across the sum of its advances, Arial's ascent (0.905 em)
/// above the baseline and its descent (0.212 em) below; and the clip it was
/// drawn under.
struct EmfTextBox {
    QString text;
    QRect box;
    QRect clip; ///< null when not clipped
};

/// Every EMR_EXTTEXTOUTW of an EMF file with its box, following the fonts
/// selected (EXTCREATEFONTINDIRECTW, SELECTOBJECT) and the clips
/// (SAVEDC, INTERSECTCLIPRECT, RESTOREDC) as a player keeps them.
inline std::vector<EmfTextBox> emfTextBoxes(const QByteArray &file)
{
    bool ok = false;
    std::vector<EmfTextBox> texts;
    std::vector<std::pair<quint32, int>> fontHeights; // handle, em height
    int height = 0;
    QRect clip;
    std::vector<QRect> saved;
    for (const MetaRecord &r : emfRecords(file, &ok)) {
        switch (r.type) {
        case 82: // EXTCREATEFONTINDIRECTW: ihFont, LOGFONTW (height first)
            fontHeights.emplace_back(u32At(file, r.offset + 8), std::abs(i32At(file, r.offset + 12)));
            break;
        case 37: // SELECTOBJECT
            for (const auto &[handle, h] : fontHeights)
                if (handle == u32At(file, r.offset + 8))
                    height = h;
            break;
        case 33: saved.push_back(clip); break; // SAVEDC
        case 34:                               // RESTOREDC (by one)
            if (!saved.empty()) {
                clip = saved.back();
                saved.pop_back();
            }
            break;
        case 30: { // INTERSECTCLIPRECT: left, top, right, bottom (exclusive)
            const QRect rect(QPoint(i32At(file, r.offset + 8), i32At(file, r.offset + 12)),
                             QPoint(i32At(file, r.offset + 16) - 1, i32At(file, r.offset + 20) - 1));
            clip = clip.isNull() ? rect : clip.intersected(rect);
            break;
        }
        case 84: { // EXTTEXTOUTW: the EMRTEXT from offset 36
            const qint32 x = i32At(file, r.offset + 36), y = i32At(file, r.offset + 40);
            const quint32 chars = u32At(file, r.offset + 44);
            const quint32 offDx = u32At(file, r.offset + 72);
            qint64 width = 0;
            for (quint32 i = 0; i < chars && offDx + 4 * (i + 1) <= quint32(r.size); ++i)
                width += i32At(file, r.offset + offDx + 4 * i);
            texts.push_back(
                {emfText(file, r),
                 QRect(x, y - qRound(height * 0.905), int(width), qRound(height * 0.905) + qRound(height * 0.212)),
                 clip});
            break;
        }
        default: break;
        }
    }
    return texts;
}

/// The texts of an EMF picture of `size` pixels that reach beyond it or
/// beyond their clip, each with its box, for a test's failure message.
inline QStringList emfTextsCut(const QByteArray &file, const QSize &size)
{
    QStringList cut;
    const QRect picture(QPoint(0, 0), size);
    for (const EmfTextBox &t : emfTextBoxes(file))
        if (!picture.contains(t.box) || (!t.clip.isNull() && !t.clip.contains(t.box)))
            cut << QStringLiteral("\"%1\" at %2,%3 %4x%5 clip %6,%7 %8x%9")
                       .arg(t.text)
                       .arg(t.box.x())
                       .arg(t.box.y())
                       .arg(t.box.width())
                       .arg(t.box.height())
                       .arg(t.clip.x())
                       .arg(t.clip.y())
                       .arg(t.clip.width())
                       .arg(t.clip.height());
    return cut;
}

} // namespace kel::test
