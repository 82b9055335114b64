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

inline quint32 u32At(const QByteArray &b, qsizetype at) { return qFromLittleEndian<quint32>(b.constData() + at); }
inline qint32 i32At(const QByteArray &b, qsizetype at) { return qFromLittleEndian<qint32>(b.constData() + at); }
inline quint16 u16At(const QByteArray &b, qsizetype at) { return qFromLittleEndian<quint16>(b.constData() + at); }
inline qint16 i16At(const QByteArray &b, qsizetype at) { return qFromLittleEndian<qint16>(b.constData() + at); }

struct MetaRecord {
    quint32 type = 0;   ///< EMF record type, or WMF function number
    qsizetype offset = 0;
    qsizetype size = 0; ///< bytes
};

/// EMF records from the start; stops (returning what it has and `ok`
/// false) at a record that does not fit the file.
inline std::vector<MetaRecord> emfRecords(const QByteArray &file, bool *ok)
{
    std::vector<MetaRecord> records;
    qsizetype at = 0;
    *ok = false;
    while (at + 8 <= file.size()) {
        const MetaRecord r{u32At(file, at), at, qsizetype(u32At(file, at + 4))};
        if (r.size < 8 || r.size % 4 || at + r.size > file.size())
            return records;
        records.push_back(r);
        at += r.size;
        if (r.type == 14) { // EOF
            *ok = at == file.size();
            return records;
        }
    }
    return records;
}

/// WMF records after the placeable header (22 bytes) and the metafile
/// header (18 bytes).
inline std::vector<MetaRecord> wmfRecords(const QByteArray &file, bool *ok)
{
    std::vector<MetaRecord> records;
    qsizetype at = 22 + 18;
    *ok = false;
    while (at + 6 <= file.size()) {
        const MetaRecord r{u16At(file, at + 4), at, qsizetype(u32At(file, at)) * 2};
        if (r.size < 6 || at + r.size > file.size())
            return records;
        records.push_back(r);
        at += r.size;
        if (r.type == 0) { // EOF
            *ok = at == file.size();
            return records;
        }
    }
    return records;
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
