// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer target for the KEL reader. The last input byte holds flags, the
// rest is the file image. With flag bit 0 the harness repairs the file
// length and the checksum before reading, so that mutations get past the
// integrity check and reach inflate and the payload parser; without it the
// container checks themselves are fuzzed.
#include "engine/document/documentreader.h"
#include "engine/document/kelformat.h"

#include <QByteArray>
#include <QtEndian>

#include <zlib.h>

#include <cstdint>

namespace {

void repair(QByteArray &file)
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    const std::uint8_t flags = data[size - 1];
    QByteArray file(reinterpret_cast<const char *>(data), qsizetype(size - 1));
    if (flags & 1)
        repair(file);
    kel::ReadResult r = kel::readDocumentBytes(file);
    // Touch what a viewer would read first, so that a document that parsed
    // but holds inconsistent references is caught here too.
    if (r.document) {
        const kel::Document &d = *r.document;
        long long sum = 0;
        for (qint32 c = 0; c < d.columnCount(); ++c)
            for (qint32 row = 0; row < d.rowCount(); ++row)
                sum += d.pointsOf(c, d.getData(row, c));
        for (qint32 c : d.categories)
            sum += d.questions[std::size_t(c)].alternativeCount;
        (void)d.guidText();
        if (sum == -42)
            return 1;
    }
    return 0;
}
