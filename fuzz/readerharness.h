// SPDX-License-Identifier: GPL-3.0-or-later
// One fuzz input through the reader and the first things a viewer does with
// the document, shared by the libFuzzer target and the test that replays the
// inputs kept under fuzz/crashers/. The last input byte holds flags, the rest
// is the file image. With flag bit 0 the length and the checksum are repaired
// before reading, so that mutations get past the integrity check and reach
// inflate and the payload parser; without it the container checks themselves
// are fuzzed.
#pragma once

#include "engine/document/documentreader.h"
#include "engine/document/kelformat.h"
#include "engine/indexes/blockindex.h"

#include <QByteArray>
#include <QtEndian>

#include <zlib.h>

#include <cstdint>
#include <set>

namespace kel::fuzz {

inline void repairContainer(QByteArray &file)
{
    using namespace kel::format;
    if (file.size() < ContainerHeaderSize)
        return;
    auto *p = reinterpret_cast<uchar *>(file.data());
    qToLittleEndian<qint32>(qint32(file.size()), p + OffFileLength);
    const qint64 header = qFromLittleEndian<qint32>(p + OffHeaderLength);
    const qint32 storedField = qFromLittleEndian<qint32>(p + OffStoredLength);
    const qint64 stored = storedField >= 1 ? storedField : qFromLittleEndian<qint32>(p + OffPayloadLength);
    if (header < ContainerHeaderSize || stored < 0 || header + stored + 4 > file.size())
        return;
    uLong crc = crc32(0L, Z_NULL, 0);
    crc = crc32(crc, p, uInt(header + stored));
    qToLittleEndian<quint32>(quint32(crc), p + header + stored);
}

/// Returns the reader's result code (0 = opened); a fault shows up as a
/// sanitizer report or a crash, never as a return value.
inline int exerciseReader(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return -1;
    const std::uint8_t flags = data[size - 1];
    QByteArray file(reinterpret_cast<const char *>(data), qsizetype(size - 1));
    if (flags & 1)
        repairContainer(file);
    ReadResult r = readDocumentBytes(file);
    if (!r.document)
        return int(r.code);
    // What opening and the first overview read: the session's pass over the
    // total index, every answer's points, every block a question or an item
    // names (dangling numbers included), the total over all rows.
    Document &d = *r.document;
    computeMissingTotalIndex(d);
    long long sum = 0;
    for (qint32 c = 0; c < d.columnCount(); ++c)
        for (qint32 row = 0; row < d.rowCount(); ++row)
            sum += d.pointsOf(c, d.getData(row, c));
    for (qint32 c : d.categories)
        sum += d.questions[std::size_t(c)].alternativeCount;
    if (d.properties.pointsScale >= 1) {
        // Each named number once: a pass per question would be quadratic.
        std::set<qint32> named;
        for (const Question &q : d.questions)
            named.insert({q.block, q.subBlock});
        for (const BlockItem &item : d.blockItems)
            named.insert(item.block);
        const RowList rows = allRows(d);
        const BlockCatalogue blocks(d);
        for (qint32 b : named)
            sum += qint64(calculateBlockIndex(d, blocks, b, rows));
        sum += qint64(calculateTotalIndex(d, rows));
    }
    (void)d.guidText();
    return sum == -42 ? 1 : 0;
}

} // namespace kel::fuzz
