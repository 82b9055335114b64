// SPDX-License-Identifier: GPL-3.0-or-later
// Just enough of the EMF and WMF layouts to walk a file's records in the
// tests, written from the formats' field tables rather than from the
// writer, so that a writer mistake shows up as a mismatch.
#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

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

} // namespace kel::test
