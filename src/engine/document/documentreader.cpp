// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/documentreader.h"

#include "engine/document/kelformat.h"
#include "engine/document/pooledindex.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

namespace kel {

namespace {

using namespace kel::format;

// First output buffer of an inflate whose announced length is implausible:
// a few times the stream, at least this.
constexpr qint64 InitialInflateBuffer = 64 * 1024;
// Deflate cannot expand data by more than about 1032:1; an announced payload
// within that bound is allocated whole at once, as uncompress would.
constexpr qint64 MaxDeflateRatio = 1032;

qint32 readI32(const uchar *p)
{
    return qFromLittleEndian<qint32>(p);
}
qint16 readI16(const uchar *p)
{
    return qFromLittleEndian<qint16>(p);
}
double readF64(const uchar *p)
{
    const quint64 bits = qFromLittleEndian<quint64>(p);
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

struct ContainerHeader {
    quint32 magic1 = 0;
    quint32 magic2 = 0;
    qint32 revision = 0;
    qint32 compatibleRevision = 0;
    qint32 fileLength = 0;
    qint32 payloadLength = 0;
    qint32 storedLength = 0;
    qint32 headerLength = 0;
};

// A file shorter than the header reads as zeros past its end, which then
// fails the magic or revision checks in their usual order.
ContainerHeader parseContainerHeader(const char *data, qint64 size)
{
    uchar raw[ContainerHeaderSize] = {};
    std::memcpy(raw, data, std::size_t(std::min<qint64>(size, ContainerHeaderSize)));
    ContainerHeader h;
    h.magic1 = qFromLittleEndian<quint32>(raw + OffMagic1);
    h.magic2 = qFromLittleEndian<quint32>(raw + OffMagic2);
    h.revision = readI32(raw + OffRevision);
    h.compatibleRevision = readI32(raw + OffCompatibleRevision);
    h.fileLength = readI32(raw + OffFileLength);
    h.payloadLength = readI32(raw + OffPayloadLength);
    h.storedLength = readI32(raw + OffStoredLength);
    h.headerLength = readI32(raw + OffHeaderLength);
    return h;
}

struct Failure {
    OpenResult code;
    QString detail;
};

// Steps that need only the header and the real file length.
std::optional<Failure> checkContainerHeader(const ContainerHeader &h, qint64 realLength, const ReadOptions &options)
{
    if (h.magic1 != Magic1 || h.magic2 != Magic2)
        return Failure{OpenResult::NotKel, QStringLiteral("magic words do not match")};
    if (h.compatibleRevision < 1)
        return Failure{OpenResult::TooOld, QStringLiteral("compatible revision %1").arg(h.compatibleRevision)};
    if (h.compatibleRevision > ReaderRevision)
        return Failure{OpenResult::TooNew, QStringLiteral("compatible revision %1").arg(h.compatibleRevision)};
    if (h.fileLength != realLength)
        return Failure{OpenResult::Damaged,
                       QStringLiteral("file length field %1, real length %2").arg(h.fileLength).arg(realLength)};
    if (h.headerLength < ContainerHeaderSize)
        return Failure{OpenResult::Damaged, QStringLiteral("header length %1 below 32").arg(h.headerLength)};
    if (h.payloadLength < PayloadHeaderSize)
        return Failure{OpenResult::Damaged, QStringLiteral("payload length %1 below 288").arg(h.payloadLength)};
    if (options.legacyWin9xLimits && qint64(h.fileLength) >= Win9xFileLimit)
        return Failure{OpenResult::TooBig, QStringLiteral("file of %1 bytes on a 9x system").arg(h.fileLength)};
    return std::nullopt;
}

// Does what zlib's uncompress does with a destination of `limit` bytes: Z_OK
// with the length produced when the stream ends within the limit, an error
// when it needs more room or is cut short. The buffer grows with the output
// actually produced instead of being allocated at `limit` up front, so a
// header that claims gigabytes for a small stream costs nothing, while a
// stream that really inflates to less than announced still opens (it is
// taken at the length zlib reports).
int inflateBounded(const Bytef *source, qint64 sourceLength, qint64 limit, QByteArray &out)
{
    z_stream zs{};
    if (inflateInit(&zs) != Z_OK)
        return Z_MEM_ERROR;
    // Ends the stream also when growing the buffer throws.
    struct End {
        z_stream &zs;
        ~End() { inflateEnd(&zs); }
    } end{zs};
    zs.next_in = const_cast<Bytef *>(source);
    zs.avail_in = uInt(sourceLength);
    qint64 capacity = limit <= sourceLength * MaxDeflateRatio + InitialInflateBuffer
        ? limit
        : std::min(limit, std::max(sourceLength * 4, InitialInflateBuffer));
    out.resize(qsizetype(capacity));
    int z;
    for (;;) {
        zs.next_out = reinterpret_cast<Bytef *>(out.data()) + zs.total_out;
        zs.avail_out = uInt(capacity - qint64(zs.total_out));
        z = inflate(&zs, Z_NO_FLUSH);
        if (z == Z_STREAM_END) {
            z = Z_OK;
            break;
        }
        if (z != Z_OK && z != Z_BUF_ERROR)
            break;
        if (zs.avail_out == 0 && capacity < limit) {
            capacity = std::min(limit, capacity * 2);
            out.resize(qsizetype(capacity));
            continue;
        }
        // No progress possible: the input ended early, or the output is full
        // at the limit while the stream wants to go on.
        if (z == Z_BUF_ERROR)
            break;
    }
    const qint64 produced = qint64(zs.total_out);
    if (z == Z_OK)
        out.resize(qsizetype(produced));
    else
        out.clear();
    return z;
}

// The plain payload: a range of `buffer`. A plain file's payload stays inside
// the file image, so that it is never copied.
struct Payload {
    QByteArray buffer;
    qsizetype offset = 0;
    qsizetype size = 0;
    const uchar *data() const { return reinterpret_cast<const uchar *>(buffer.constData()) + offset; }
};

// CRC and inflate: turns the file image into the plain payload.
// The bytes the checksum covers: the header and the payload as stored.
qint64 checksummedLength(const ContainerHeader &h)
{
    return qint64(h.headerLength) + (h.storedLength >= 1 ? h.storedLength : h.payloadLength);
}

// crc32 takes uInt lengths; feed large ranges in slices.
uLong crcContinue(uLong crc, const uchar *data, qint64 length)
{
    for (qint64 done = 0; done < length;) {
        const qint64 slice = std::min<qint64>(length - done, std::numeric_limits<uInt>::max());
        crc = crc32(crc, data + done, uInt(slice));
        done += slice;
    }
    return crc;
}

// `knownCrc`: the checksum of the covered bytes when the caller already took
// it while reading the file.
std::optional<Failure> extractPayload(const QByteArray &file, const ContainerHeader &h, Payload &payload,
                                      std::optional<quint32> knownCrc)
{
    const bool compressed = h.storedLength >= 1;
    const qint64 stored = compressed ? h.storedLength : h.payloadLength;
    const qint64 payloadStart = h.headerLength;
    if (payloadStart + stored + 4 > file.size())
        return Failure{OpenResult::Damaged,
                       QStringLiteral("payload of %1 bytes at %2 and its checksum do not fit "
                                      "in a file of %3 bytes")
                           .arg(stored)
                           .arg(payloadStart)
                           .arg(file.size())};
    const auto *bytes = reinterpret_cast<const Bytef *>(file.constData());
    const uLong crc = knownCrc ? uLong(*knownCrc) : crcContinue(crc32(0L, Z_NULL, 0), bytes, payloadStart + stored);
    const quint32 checksum = qFromLittleEndian<quint32>(bytes + payloadStart + stored);
    if (quint32(crc) != checksum)
        return Failure{OpenResult::Damaged,
                       QStringLiteral("checksum %1, computed %2")
                           .arg(checksum, 8, 16, QLatin1Char('0'))
                           .arg(quint32(crc), 8, 16, QLatin1Char('0'))};

    if (!compressed) {
        payload = {file, qsizetype(payloadStart), qsizetype(stored)};
        return std::nullopt;
    }
    const int z = inflateBounded(bytes + payloadStart, h.storedLength, h.payloadLength, payload.buffer);
    payload.size = payload.buffer.size();
    if (z != Z_OK)
        return Failure{OpenResult::Damaged, QStringLiteral("inflate failed (zlib %1)").arg(z)};
    return std::nullopt;
}

// ---------------------------------------------------------------------------
// Payload parse

class PayloadParser
{
public:
    PayloadParser(const Payload &payload, qint32 revision)
        : mPayload(payload), mData(payload.data()), mSize(payload.size), mRevision(revision)
    {
    }

    std::optional<Failure> parse(Document &doc);

private:
    struct Section {
        qint32 offset = 0;
        qint32 stride = 0;
        qint32 count = 0; // 0 when the section is absent
    };

    bool rev(int n) const { return mRevision >= n; }
    qint32 h32(int off) const { return readI32(mData + off); }
    bool hBool(int off) const { return readI16(mData + off) != 0; }

    Failure damaged(const QString &why) const { return Failure{OpenResult::Damaged, why}; }

    std::optional<Failure> section(const char *name, int headerOffset, int readSize, Section &out) const;
    std::optional<Failure> parseTexts(Document &doc);
    std::optional<Failure> parseAnswers(Document &doc);
    std::optional<Failure> parseCellComments(Document &doc);
    std::optional<Failure> checkReferences(const Document &doc) const;
    std::optional<Failure> checkAnswers(const Document &doc) const;
    void parseRecords(Document &doc, const Section &alt, const Section &q, const Section &rc, const Section &b,
                      const Section &bi) const;
    void parseProperties(Document &doc) const;

    const Payload &mPayload;
    const uchar *mData;
    qint64 mSize;
    qint32 mRevision;
};

std::optional<Failure> PayloadParser::section(const char *name, int headerOffset, int readSize, Section &out) const
{
    const qint32 offset = h32(headerOffset);
    const qint32 stride = h32(headerOffset + 4);
    const qint32 count = h32(headerOffset + 8);
    out = {};
    if (offset < 1 || stride < 1 || count < 1)
        return std::nullopt;
    const qint64 end = qint64(offset) + qint64(count - 1) * stride + readSize;
    if (end > mSize)
        return damaged(QStringLiteral("%1 section (offset %2, stride %3, count %4) ends at %5, past the payload "
                                      "of %6 bytes")
                           .arg(QLatin1String(name))
                           .arg(offset)
                           .arg(stride)
                           .arg(count)
                           .arg(end)
                           .arg(mSize));
    out = {offset, stride, count};
    return std::nullopt;
}

std::optional<Failure> PayloadParser::parseTexts(Document &doc)
{
    const qint32 offset = h32(PhTextTableOffset);
    const qint32 count = h32(PhTextCount);
    if (offset < 1 || count < 1)
        return std::nullopt;
    if (offset > mSize)
        return damaged(QStringLiteral("text table offset %1 past the payload").arg(offset));
    // Every entry takes at least its 4-byte length, so this bounds the
    // reservation by what the payload can really hold.
    doc.textPool.reserve(qsizetype(std::min<qint64>(count, (mSize - offset) / 4)));
    qint64 pos = offset;
    for (qint32 i = 0; i < count; ++i) {
        if (pos + 4 > mSize)
            return damaged(QStringLiteral("text %1 of %2 starts past the payload").arg(i).arg(count));
        const qint32 units = readI32(mData + pos);
        pos += 4;
        if (units < 0 || pos + 2 * qint64(units) > mSize)
            return damaged(QStringLiteral("text %1 has length %2 at payload offset %3").arg(i).arg(units).arg(pos - 4));
        QString s(units, Qt::Uninitialized);
        if constexpr (Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
            std::memcpy(s.data(), mData + pos, std::size_t(units) * 2);
        } else {
            for (qint32 k = 0; k < units; ++k)
                s[k] = QChar(qFromLittleEndian<quint16>(mData + pos + 2 * k));
        }
        doc.textPool.append(std::move(s));
        pos += 2 * qint64(units);
    }
    return std::nullopt;
}

std::optional<Failure> PayloadParser::parseAnswers(Document &doc)
{
    const qint32 offset = h32(PhAnswersOffset);
    const qint32 type = h32(PhCellType);
    const qint32 rows = h32(PhRowCount);
    const qint32 columns = h32(PhColumnCount);
    if (offset < 1 || rows < 1 || columns < 1 || type < 1 || type > 3)
        return std::nullopt; // no answer matrix
    const int width = type == 1 ? 1 : type == 2 ? 2 : 4;
    const qint64 bytes = qint64(rows) * columns * width;
    if (qint64(offset) + bytes > mSize)
        return damaged(QStringLiteral("answer matrix of %1 x %2 cells at %3 ends past the payload of %4 bytes")
                           .arg(rows)
                           .arg(columns)
                           .arg(offset)
                           .arg(mSize));
    if constexpr (Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
        // The matrix is used where it lies in the payload buffer, without a
        // copy, as long as it is most of that buffer. Otherwise it takes a
        // copy (a few megabytes at most) so that the rest of the payload,
        // which a document may declare in gigabytes, is released after
        // reading instead of staying resident with the matrix.
        if (mPayload.buffer.size() - bytes <= bytes)
            doc.answers = AnswerMatrix(CellType(type), rows, columns, mPayload.buffer, mPayload.offset + offset);
        else
            doc.answers = AnswerMatrix(CellType(type), rows, columns,
                                       QByteArray(reinterpret_cast<const char *>(mData + offset), qsizetype(bytes)), 0);
    } else {
        std::vector<quint8> cells(mData + offset, mData + offset + bytes);
        for (std::size_t i = 0; i < cells.size(); i += std::size_t(width))
            std::reverse(cells.begin() + qsizetype(i), cells.begin() + qsizetype(i) + width);
        doc.answers = AnswerMatrix(CellType(type), rows, columns, cells);
    }
    return std::nullopt;
}

std::optional<Failure> PayloadParser::parseCellComments(Document &doc)
{
    if (!rev(4))
        return std::nullopt;
    const qint32 offset = h32(PhCellCommentsOffset);
    const qint32 stride = h32(PhCellCommentStride);
    if (offset < 1 || doc.answers.isEmpty())
        return std::nullopt;
    const qint64 cells = qint64(doc.rowCount()) * doc.columnCount();
    if (stride < 1 || qint64(offset) + (cells - 1) * stride + 4 > mSize)
        return damaged(QStringLiteral("cell-comment matrix (offset %1, stride %2) reaches past the payload")
                           .arg(offset)
                           .arg(stride));
    doc.cellComments.resize(std::size_t(cells));
    if (stride == 4 && Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
        std::memcpy(doc.cellComments.data(), mData + offset, std::size_t(cells) * 4);
    } else {
        for (qint64 i = 0; i < cells; ++i)
            doc.cellComments[std::size_t(i)] = readI32(mData + offset + i * stride);
    }
    doc.hasCellComments = true;
    return std::nullopt;
}

void PayloadParser::parseRecords(Document &doc, const Section &alt, const Section &q, const Section &rc,
                                 const Section &b, const Section &bi) const
{
    const qint32 pointsScale = h32(PhPointsScale);
    auto text = [&](const uchar *p) { return doc.text(readI32(p)); };
    auto defaultGraphFlags = [&](double totalIndex) {
        return 3 | ((pointsScale > 0 && totalIndex != -1.0) ? 0x100 : 0);
    };

    doc.alternatives.resize(std::size_t(alt.count));
    for (qint32 i = 0; i < alt.count; ++i) {
        const uchar *r = mData + alt.offset + qint64(i) * alt.stride;
        Alternative &a = doc.alternatives[std::size_t(i)];
        a.label = text(r + 0);
        a.text = text(r + 4);
        a.shortText = text(r + 8);
        a.sheetColour = readI32(r + 12);
        a.kept16 = readI32(r + 16);
        a.points = readI32(r + 20);
        a.complementCheck = readI16(r + 24) != 0;
        a.countsForPrivacy = readI16(r + 26) != 0;
        a.graphAttribute = rev(3) ? readI32(r + 28) : 0;
        a.sortValue = rev(3) ? readI32(r + 32) : a.points;
        a.graphColour = rev(7) ? readI32(r + 36) : a.sheetColour;
    }

    doc.questions.resize(std::size_t(q.count));
    for (qint32 i = 0; i < q.count; ++i) {
        const uchar *r = mData + q.offset + qint64(i) * q.stride;
        Question &u = doc.questions[std::size_t(i)];
        u.code = text(r + 0);
        u.heading = text(r + 4);
        u.text = text(r + 8);
        u.selectionLabel = text(r + 12);
        u.sheetColour = readI32(r + 16);
        u.kept20 = readI32(r + 20);
        u.block = readI32(r + 24);
        u.firstAlternative = readI32(r + 28);
        u.alternativeCount = readI32(r + 32);
        u.isCategory = readI16(r + 36) != 0;
        u.inOverview = readI16(r + 38) != 0;
        u.totalIndex = readF64(r + 40);
        u.inTotalIndex = readI16(r + 48) != 0;
        u.subBlock = rev(2) ? readI32(r + 52) : -1;
        u.isFlexCategory = rev(6) ? readI16(r + 56) != 0 : false;
        u.graphFlags = rev(8) ? readI32(r + 60) : defaultGraphFlags(u.totalIndex);
        u.rankingWeight = rev(8) ? readI32(r + 64) : 1;
    }

    doc.rowComments.resize(std::size_t(rc.count));
    for (qint32 i = 0; i < rc.count; ++i) {
        const uchar *r = mData + rc.offset + qint64(i) * rc.stride;
        doc.rowComments[std::size_t(i)] = {readI32(r + 0), rev(4) ? readI32(r + 4) : -1};
    }

    doc.blocks.resize(std::size_t(b.count));
    for (qint32 i = 0; i < b.count; ++i) {
        const uchar *r = mData + b.offset + qint64(i) * b.stride;
        Block &k = doc.blocks[std::size_t(i)];
        k.code = text(r + 0);
        k.name = text(r + 4);
        k.text = text(r + 8);
        k.kept12 = readI32(r + 12);
        k.kept16 = readI32(r + 16);
        k.kept20 = readI16(r + 20);
        k.memberRule = readI16(r + 22) != 0;
        k.totalIndex = readF64(r + 24);
        k.linkedBlock = rev(2) ? readI32(r + 32) : -1;
        k.graphFlags = rev(8) ? readI32(r + 36) : defaultGraphFlags(k.totalIndex);
        k.fromDocument = true;
        k.includeInCopy = k.linkedBlock == -1;
    }

    doc.blockItems.resize(std::size_t(bi.count));
    for (qint32 i = 0; i < bi.count; ++i) {
        const uchar *r = mData + bi.offset + qint64(i) * bi.stride;
        doc.blockItems[std::size_t(i)] = {readI32(r + 0), readI32(r + 4)};
    }
}

// Cross references that index an array without a guard must land inside it.
// Block numbers are the exception: older tools wrote questions, sub-blocks
// and block items naming blocks that are not in the list, and such a number
// simply means a block without members, so every lookup of a block number
// goes through Document::blockAt instead.
std::optional<Failure> PayloadParser::checkReferences(const Document &doc) const
{
    const auto alternatives = qint64(doc.alternatives.size());
    const auto questions = qint32(doc.questions.size());
    for (qint32 i = 0; i < questions; ++i) {
        const Question &q = doc.questions[std::size_t(i)];
        if (q.alternativeCount < 0
            || (q.alternativeCount > 0
                && (q.firstAlternative < 0 || qint64(q.firstAlternative) + q.alternativeCount > alternatives)))
            return damaged(QStringLiteral("question %1 refers to alternatives %2..%3 of %4")
                               .arg(i)
                               .arg(q.firstAlternative)
                               .arg(qint64(q.firstAlternative) + q.alternativeCount - 1)
                               .arg(alternatives));
    }
    for (std::size_t i = 0; i < doc.blockItems.size(); ++i) {
        const BlockItem &it = doc.blockItems[i];
        if (it.question < 0 || it.question >= questions)
            return damaged(QStringLiteral("block item %1 pairs block %2 with question %3 of %4")
                               .arg(i)
                               .arg(it.block)
                               .arg(it.question)
                               .arg(questions));
    }
    if (!doc.answers.isEmpty() && doc.columnCount() != questions)
        return damaged(
            QStringLiteral("answer matrix has %1 columns for %2 questions").arg(doc.columnCount()).arg(questions));
    return std::nullopt;
}

std::optional<Failure> PayloadParser::checkAnswers(const Document &doc) const
{
    const qint32 rows = doc.rowCount();
    for (qint32 c = 0; c < doc.columnCount(); ++c) {
        const auto limit = quint32(doc.questions[std::size_t(c)].alternativeCount);
        qint32 bad = -1;
        // Unsigned compare folds "negative" and "too large" into one test.
        // OR-ing the outcomes without an early exit lets the compiler turn
        // the loop into plain SIMD compares (an unsigned maximum would need
        // SSE4.1); only a column that fails is walked again to name the row.
        doc.answers.visitColumn(c, [&](const auto *col) {
            unsigned outside = 0;
            for (qint32 r = 0; r < rows; ++r)
                outside |= unsigned(quint32(qint32(col[r])) >= limit);
            if (!outside)
                return;
            for (qint32 r = 0; r < rows; ++r)
                if (quint32(qint32(col[r])) >= limit) {
                    bad = r;
                    return;
                }
        });
        if (bad >= 0)
            return damaged(QStringLiteral("answer %1 in row %2, column %3 is outside the question's %4 alternatives")
                               .arg(doc.getData(bad, c))
                               .arg(bad)
                               .arg(c)
                               .arg(limit));
    }
    return std::nullopt;
}

void PayloadParser::parseProperties(Document &doc) const
{
    DocumentProperties &p = doc.properties;
    std::memcpy(p.fileGuid.data(), mData + PhGuid, 16);
    p.projectNumber = h32(PhProjectNumber);
    p.projectName = h32(PhProjectName);
    p.copyright = h32(PhCopyright);
    p.comment = h32(PhComment);
    p.versionMajor = h32(PhVersionMajor);
    p.versionMinor = h32(PhVersionMinor);
    p.versionBuild = h32(PhVersionBuild);
    p.created = readF64(mData + PhCreated);
    p.unused140 = h32(PhUnused140);
    p.unused144 = h32(PhUnused144);
    p.language = h32(PhLanguage);
    p.languageCode = languageCodeFor(doc.text(p.language));
    p.allowCopy = hBool(PhAllowCopy);
    p.allowPrint = hBool(PhAllowPrint);
    p.allowSavePicture = hBool(PhAllowSavePicture);
    p.pointsScale = h32(PhPointsScale);
    p.indexDecimals = indexDecimalsFor(p.pointsScale);
    p.indexName = h32(PhIndexName);
    p.indexLineTexts = {h32(PhIndexLineText0), h32(PhIndexLineText1), rev(2) ? h32(PhIndexLineText2) : -1,
                        h32(PhIndexLineText3), h32(PhIndexLineText4)};
    p.statusPanel2Tip = h32(PhStatusPanel2Tip);
    p.statusPanel3Tip = h32(PhStatusPanel3Tip);
    p.totalText = h32(PhTotalText);
    p.minimumSelection = h32(PhMinimumSelection);
    p.minimumGraphSelection = h32(PhMinimumGraphSelection);
    p.selectionTooSmallText = h32(PhSelectionTooSmallText);
    p.hasRowComments = hBool(PhHasRowComments);
    p.firstAlternativeIsNoAnswer = hBool(PhFirstAlternativeIsNoAnswer);
    p.sheetColourA = h32(PhSheetColourA);
    p.sheetColourB = h32(PhSheetColourB);
    p.sheetColours = {h32(PhSheetColours), h32(PhSheetColours + 4), rev(2) ? h32(PhSheetColours + 8) : -1,
                      rev(2) ? h32(PhSheetColours + 12) : -1};
    p.rowOrder = rev(5) ? h32(PhRowOrder) : -1;
    p.minimumComplementSelection = rev(5) ? h32(PhMinimumComplementSelection) : p.minimumSelection;
    p.totalIndex = rev(5) ? readF64(mData + PhTotalIndex) : -1.0;
    p.indexFlags = rev(9) ? h32(PhIndexFlags) : (p.pointsScale > 0 ? 0x100 : 0);
    if (rev(9)) {
        p.maxPoints = h32(PhMaxPoints);
    } else {
        p.maxPoints = -1;
        for (const Alternative &a : doc.alternatives)
            p.maxPoints = std::max(p.maxPoints, a.points);
    }
    p.rowOrderThreshold = rev(9) ? h32(PhRowOrderThreshold) : -1;
    p.allowCopyData = rev(9) ? hBool(PhAllowCopyData) : false;
}

std::optional<Failure> PayloadParser::parse(Document &doc)
{
    Section alt, q, rc, b, bi;
    if (auto f = parseTexts(doc))
        return f;
    if (auto f = parseAnswers(doc))
        return f;
    if (auto f = section("alternative", PhAlternatives, AlternativeReadSize, alt))
        return f;
    if (auto f = section("question", PhQuestions, QuestionReadSize, q))
        return f;
    if (auto f = section("row-comment", PhRowComments, RowCommentReadSize, rc))
        return f;
    if (auto f = section("block", PhBlocks, BlockReadSize, b))
        return f;
    if (auto f = section("block-item", PhBlockItems, BlockItemReadSize, bi))
        return f;
    parseRecords(doc, alt, q, rc, b, bi);
    if (auto f = checkReferences(doc))
        return f;
    if (auto f = checkAnswers(doc))
        return f;
    if (auto f = parseCellComments(doc))
        return f;
    parseProperties(doc);
    return std::nullopt;
}

// Questions may share one run of alternatives, so a document of a few
// kilobytes can name forty thousand categories of forty thousand
// alternatives each. The selection keeps a table of categories x the most
// alternatives of any category (and the navigator a node for each), so that
// product is bounded like the answer matrix, before anything is built.
std::optional<Failure> checkSelectionSize(const Document &doc)
{
    qint64 categories = 0, mostAlternatives = 0;
    for (const Question &q : doc.questions) {
        if (!q.isCategory)
            continue;
        ++categories;
        mostAlternatives = std::max<qint64>(mostAlternatives, q.alternativeCount);
    }
    if (categories * mostAlternatives > MaxCells)
        return Failure{OpenResult::TooBig,
                       QStringLiteral("selection of %1 categories with up to %2 alternatives")
                           .arg(categories)
                           .arg(mostAlternatives)};
    return std::nullopt;
}

void deriveProperties(Document &doc)
{
    deriveQuestionLists(doc);
    computeMissingTotalIndex(doc);
}

ReadResult fail(const Failure &f)
{
    ReadResult r;
    r.code = f.code;
    r.detail = f.detail;
    return r;
}

// Memory the document needs but cannot get (an announced payload of
// gigabytes that inflates to that, under a memory limit) makes it too big for
// this reader, not a reason to end the program.
ReadResult tooBigForMemory()
{
    return fail({OpenResult::TooBig, QStringLiteral("not enough memory to read the document")});
}

ReadResult readImage(const QByteArray &file, const ContainerHeader &h, std::optional<quint32> knownCrc = {})
{
    Payload payload;
    if (auto f = extractPayload(file, h, payload, knownCrc))
        return fail(*f);
    if (payload.size < PayloadHeaderSize)
        return fail({OpenResult::Damaged, QStringLiteral("payload inflated to %1 bytes only").arg(payload.size)});
    const uchar *ph = payload.data();
    const qint64 cells = qint64(readI32(ph + PhRowCount)) * qint64(readI32(ph + PhColumnCount));
    if (cells > MaxCells)
        return fail({OpenResult::TooBig, QStringLiteral("answer matrix of %1 cells").arg(cells)});

    auto doc = std::make_unique<Document>();
    doc->revision = h.revision;
    doc->compatibleRevision = h.compatibleRevision;
    doc->upgradeWarning = h.revision > ReaderRevision;
    PayloadParser parser(payload, h.revision);
    if (auto f = parser.parse(*doc))
        return fail(*f);
    if (auto f = checkSelectionSize(*doc))
        return fail(*f);
    deriveProperties(*doc);
    ReadResult r;
    r.code = OpenResult::Ok;
    r.document = std::move(doc);
    return r;
}

ReadResult readCheckedFile(QFile &f, const QByteArray &head, const ContainerHeader &h);

} // namespace

ReadResult readDocumentBytes(const QByteArray &file, const ReadOptions &options)
{
    const ContainerHeader h = parseContainerHeader(file.constData(), file.size());
    if (auto f = checkContainerHeader(h, file.size(), options))
        return fail(*f);
    try {
        return readImage(file, h);
    } catch (const std::bad_alloc &) {
        return tooBigForMemory();
    }
}

ReadResult readDocumentFile(const QString &path, const ReadOptions &options)
{
    QFile f(path);
    if (!QFileInfo(path).isFile() || !f.open(QIODevice::ReadOnly))
        return fail({OpenResult::CannotOpen, f.errorString()});
    // Look at the header before reading the rest, so that a large file that
    // is no KEL document is refused without being read whole.
    const QByteArray head = f.read(ContainerHeaderSize);
    const qint64 realLength = f.size();
    const ContainerHeader h = parseContainerHeader(head.constData(), head.size());
    if (auto failure = checkContainerHeader(h, realLength, options))
        return fail(*failure);
    try {
        return readCheckedFile(f, head, h);
    } catch (const std::bad_alloc &) {
        return tooBigForMemory();
    }
}

namespace {

ReadResult readCheckedFile(QFile &f, const QByteArray &head, const ContainerHeader &h)
{
    const qint64 realLength = f.size();
    // Read in slices and take the checksum of each while it is still in the
    // cache: one pass over memory fewer than reading first and summing after.
    constexpr qint64 Slice = 1 << 20;
    QByteArray file;
    file.resize(realLength);
    std::memcpy(file.data(), head.constData(), std::size_t(head.size()));
    auto *bytes = reinterpret_cast<uchar *>(file.data());
    const qint64 covered = std::min(checksummedLength(h), realLength);
    uLong crc = crcContinue(crc32(0L, Z_NULL, 0), bytes, std::min<qint64>(head.size(), covered));
    for (qint64 pos = head.size(); pos < realLength;) {
        const qint64 want = std::min(Slice, realLength - pos);
        if (f.read(file.data() + pos, want) != want)
            return fail({OpenResult::CannotOpen, f.errorString()});
        if (pos < covered)
            crc = crcContinue(crc, bytes + pos, std::min(want, covered - pos));
        pos += want;
    }
    f.close();
    return readImage(file, h, quint32(crc));
}

} // namespace

} // namespace kel
