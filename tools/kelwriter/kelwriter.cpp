// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelwriter.h"

#include <QFile>
#include <QSaveFile>
#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace kel::writer {

using namespace kel::format;

qint32 TextPool::add(const QString &text)
{
    const auto index = qint32(mTexts.size());
    mTexts.append(text);
    mIndex.insert(text, index); // a later intern() finds the newest equal entry
    return index;
}

qint32 TextPool::intern(const QString &text)
{
    const auto it = mIndex.constFind(text);
    return it != mIndex.constEnd() ? it.value() : add(text);
}

AnswerGrid::AnswerGrid(qint32 cellType, qint32 rows, qint32 columns, qint32 fill)
    : mCellType(cellType), mRows(std::max(rows, 0)), mColumns(std::max(columns, 0)),
      mValues(std::size_t(mRows) * std::size_t(mColumns), fill)
{
}

void patchI16(QByteArray &bytes, qint64 offset, qint16 value)
{
    qToLittleEndian<qint16>(value, bytes.data() + offset);
}

void patchI32(QByteArray &bytes, qint64 offset, qint32 value)
{
    qToLittleEndian<qint32>(value, bytes.data() + offset);
}

void patchF64(QByteArray &bytes, qint64 offset, double value)
{
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    qToLittleEndian<quint64>(bits, bytes.data() + offset);
}

namespace {

quint32 crcOf(const QByteArray &header, const QByteArray &stored)
{
    uLong crc = crc32(0L, Z_NULL, 0);
    crc = crc32(crc, reinterpret_cast<const Bytef *>(header.constData()), uInt(header.size()));
    crc = crc32(crc, reinterpret_cast<const Bytef *>(stored.constData()), uInt(stored.size()));
    return quint32(crc);
}

/// One record (or the payload header) being filled: bytes the revision or
/// the stride does not define keep the fill byte.
class RecordBuffer
{
public:
    RecordBuffer(qint32 size, qint32 revision, quint8 fill) : mBytes(std::max(size, 0), char(fill)), mRevision(revision)
    {
    }

    void i32(int offset, qint32 value, int sinceRevision = 1)
    {
        if (fits(offset, 4, sinceRevision))
            patchI32(mBytes, offset, value);
    }
    void i16(int offset, qint16 value, int sinceRevision = 1)
    {
        if (fits(offset, 2, sinceRevision))
            patchI16(mBytes, offset, value);
    }
    void f64(int offset, double value, int sinceRevision = 1)
    {
        if (fits(offset, 8, sinceRevision))
            patchF64(mBytes, offset, value);
    }
    void raw(int offset, const void *data, int size)
    {
        if (fits(offset, size, 1))
            std::memcpy(mBytes.data() + offset, data, std::size_t(size));
    }
    const QByteArray &bytes() const { return mBytes; }

private:
    bool fits(int offset, int width, int sinceRevision) const
    {
        return mRevision >= sinceRevision && offset + width <= mBytes.size();
    }

    QByteArray mBytes;
    qint32 mRevision;
};

struct SectionPlace {
    qint32 offset = 0;
    qint32 stride = 0;
    qint32 count = 0;
};

class PayloadWriter
{
public:
    PayloadWriter(const KelFile &file)
        : mFile(file), mOptions(file.options), mRevision(file.options.revision),
          mStrides(file.options.strides.value_or(stridesForRevision(std::clamp(file.options.revision, 1, 9))))
    {
    }

    QByteArray write(PayloadLayout *layout);

private:
    template<typename Record, typename Fill>
    SectionPlace writeSection(const std::vector<Record> &records, qint32 stride, qint32 readSize, Fill &&fill);
    void writeTexts();
    void writeAnswers();
    void writeCellComments();
    QByteArray header() const;

    RecordBuffer record(qint32 stride) const { return RecordBuffer(stride, mRevision, mOptions.undefinedFill); }

    const KelFile &mFile;
    const WriteOptions &mOptions;
    qint32 mRevision;
    Strides mStrides;
    QByteArray mBody; // everything after the 288-byte header
    PayloadLayout mLayout;
    SectionPlace mAlternatives, mQuestions, mRowComments, mBlocks, mBlockItems;

    qint32 here() const { return qint32(PayloadHeaderSize + mBody.size()); }
};

template<typename Record, typename Fill>
SectionPlace PayloadWriter::writeSection(const std::vector<Record> &records, qint32 stride, qint32 readSize,
                                         Fill &&fill)
{
    if (records.empty() || stride < 1)
        return {};
    SectionPlace place{here(), stride, qint32(records.size())};
    for (const Record &r : records) {
        RecordBuffer buffer = record(stride);
        fill(buffer, r);
        mBody += buffer.bytes();
    }
    if (mOptions.padShortSections && stride < readSize)
        mBody += QByteArray(readSize - stride, char(mOptions.undefinedFill));
    return place;
}

void PayloadWriter::writeTexts()
{
    const QStringList &texts = mFile.texts.texts();
    if (texts.isEmpty())
        return;
    mLayout.textTable = here();
    for (qint32 i = 0; i < qint32(texts.size()); ++i) {
        const QString &s = texts.at(i);
        const auto forged = mFile.forgery.textLengths.find(i);
        char length[4];
        qToLittleEndian<qint32>(forged != mFile.forgery.textLengths.end() ? forged->second : qint32(s.size()), length);
        mBody.append(length, 4);
        for (QChar c : s) {
            char unit[2];
            qToLittleEndian<quint16>(c.unicode(), unit);
            mBody.append(unit, 2);
        }
    }
}

void PayloadWriter::writeAnswers()
{
    const AnswerGrid &a = mFile.answers;
    if (a.isEmpty())
        return;
    mLayout.answers = here();
    const int width = a.cellWidth();
    QByteArray cells(qsizetype(a.rowCount()) * a.columnCount() * width, Qt::Uninitialized);
    char *p = cells.data();
    for (qint32 c = 0; c < a.columnCount(); ++c)
        for (qint32 r = 0; r < a.rowCount(); ++r, p += width) {
            const qint32 v = a.at(r, c);
            if (width == 1)
                *p = char(quint8(v));
            else if (width == 2)
                qToLittleEndian<qint16>(qint16(v), p);
            else
                qToLittleEndian<qint32>(v, p);
        }
    mBody += cells;
}

void PayloadWriter::writeCellComments()
{
    const AnswerGrid &a = mFile.answers;
    const qint64 cells = qint64(a.rowCount()) * a.columnCount();
    if (mRevision < 4 || a.isEmpty() || qint64(mFile.cellComments.size()) != cells)
        return;
    const qint32 stride = std::max(mOptions.cellCommentStride, 4);
    mLayout.cellComments = here();
    QByteArray block(qsizetype(cells * stride), char(mOptions.undefinedFill));
    for (qint64 i = 0; i < cells; ++i)
        patchI32(block, i * stride, mFile.cellComments[std::size_t(i)]);
    mBody += block;
}

QByteArray PayloadWriter::header() const
{
    const HeaderFields &h = mFile.header;
    const Forgery &f = mFile.forgery;
    const AnswerGrid &a = mFile.answers;
    RecordBuffer b(PayloadHeaderSize, mRevision, mOptions.undefinedFill);
    b.raw(PhGuid, h.guid.data(), 16);
    b.i32(PhTextTableOffset, f.textTableOffset.value_or(mLayout.textTable));
    b.i32(PhTextCount, f.textCount.value_or(mLayout.textTable ? mFile.texts.size() : 0));
    b.i32(PhAnswersOffset, f.answersOffset.value_or(mLayout.answers));
    b.i32(PhCellType, f.cellType.value_or(a.isEmpty() ? 0 : a.cellType()));
    b.i32(PhRowCount, f.rowCount.value_or(a.isEmpty() ? 0 : a.rowCount()));
    b.i32(PhColumnCount, f.columnCount.value_or(a.isEmpty() ? 0 : a.columnCount()));
    b.i32(PhUnused40, h.unused40);
    auto section = [&](int at, const SectionPlace &p, const SectionOverride &o) {
        b.i32(at, o.offset.value_or(p.offset));
        b.i32(at + 4, o.stride.value_or(p.stride));
        b.i32(at + 8, o.count.value_or(p.count));
    };
    section(PhAlternatives, mAlternatives, f.alternatives);
    section(PhQuestions, mQuestions, f.questions);
    section(PhRowComments, mRowComments, f.rowComments);
    section(PhBlocks, mBlocks, f.blocks);
    section(PhBlockItems, mBlockItems, f.blockItems);
    b.i32(PhProjectNumber, h.projectNumber);
    b.i32(PhProjectName, h.projectName);
    b.i32(PhCopyright, h.copyright);
    b.i32(PhComment, h.comment);
    b.i32(PhVersionMajor, h.versionMajor);
    b.i32(PhVersionMinor, h.versionMinor);
    b.i32(PhVersionBuild, h.versionBuild);
    b.f64(PhCreated, h.created);
    b.i32(PhUnused140, h.unused140);
    b.i32(PhUnused144, h.unused144);
    b.i32(PhLanguage, h.language);
    b.i16(PhAllowCopy, h.allowCopy);
    b.i16(PhAllowPrint, h.allowPrint);
    b.i16(PhAllowSavePicture, h.allowSavePicture);
    b.i32(PhPointsScale, h.pointsScale);
    b.i32(PhIndexName, h.indexName);
    b.i32(PhIndexLineText0, h.indexLineTexts[0]);
    b.i32(PhIndexLineText1, h.indexLineTexts[1]);
    b.i32(PhIndexLineText2, h.indexLineTexts[2], 2);
    b.i32(PhIndexLineText3, h.indexLineTexts[3]);
    b.i32(PhIndexLineText4, h.indexLineTexts[4]);
    b.i32(PhStatusPanel2Tip, h.statusPanel2Tip);
    b.i32(PhStatusPanel3Tip, h.statusPanel3Tip);
    b.i32(PhTotalText, h.totalText);
    b.i32(PhMinimumSelection, h.minimumSelection);
    b.i32(PhMinimumGraphSelection, h.minimumGraphSelection);
    b.i32(PhSelectionTooSmallText, h.selectionTooSmallText);
    b.i16(PhHasRowComments, h.hasRowComments);
    b.i16(PhFirstAlternativeIsNoAnswer, h.firstAlternativeIsNoAnswer);
    b.i32(PhSheetColourA, h.sheetColourA);
    b.i32(PhSheetColourB, h.sheetColourB);
    b.i32(PhSheetColours, h.sheetColours[0]);
    b.i32(PhSheetColours + 4, h.sheetColours[1]);
    b.i32(PhSheetColours + 8, h.sheetColours[2], 2);
    b.i32(PhSheetColours + 12, h.sheetColours[3], 2);
    b.i32(PhUnused240, h.unused240, 4);
    b.i32(PhCellCommentsOffset, f.cellCommentsOffset.value_or(mLayout.cellComments), 4);
    b.i32(PhCellCommentStride,
          f.cellCommentStride.value_or(mLayout.cellComments ? std::max(mOptions.cellCommentStride, 4) : 0), 4);
    b.i32(PhRowOrder, h.rowOrder, 5);
    b.i32(PhMinimumComplementSelection, h.minimumComplementSelection, 5);
    b.f64(PhTotalIndex, h.totalIndex, 5);
    b.i32(PhUnused268, h.unused268, 6);
    b.i32(PhIndexFlags, h.indexFlags, 9);
    b.i32(PhMaxPoints, h.maxPoints, 9);
    b.i32(PhRowOrderThreshold, h.rowOrderThreshold, 9);
    b.i16(PhAllowCopyData, h.allowCopyData, 9);
    return b.bytes();
}

QByteArray PayloadWriter::write(PayloadLayout *layout)
{
    writeTexts();
    writeAnswers();
    mAlternatives = writeSection(mFile.alternatives, mStrides.alternative, AlternativeReadSize,
                                 [](RecordBuffer &b, const AlternativeRecord &r) {
                                     b.i32(0, r.label);
                                     b.i32(4, r.text);
                                     b.i32(8, r.shortText);
                                     b.i32(12, r.sheetColour);
                                     b.i32(16, r.kept16);
                                     b.i32(20, r.points);
                                     b.i16(24, r.complementCheck);
                                     b.i16(26, r.countsForPrivacy);
                                     b.i32(28, r.graphAttribute, 3);
                                     b.i32(32, r.sortValue, 3);
                                     b.i32(36, r.graphColour, 7);
                                 });
    mQuestions = writeSection(mFile.questions, mStrides.question, QuestionReadSize,
                              [](RecordBuffer &b, const QuestionRecord &r) {
                                  b.i32(0, r.code);
                                  b.i32(4, r.heading);
                                  b.i32(8, r.text);
                                  b.i32(12, r.selectionLabel);
                                  b.i32(16, r.sheetColour);
                                  b.i32(20, r.kept20);
                                  b.i32(24, r.block);
                                  b.i32(28, r.firstAlternative);
                                  b.i32(32, r.alternativeCount);
                                  b.i16(36, r.isCategory);
                                  b.i16(38, r.inOverview);
                                  b.f64(40, r.totalIndex);
                                  b.i16(48, r.inTotalIndex);
                                  b.i32(52, r.subBlock, 2);
                                  b.i16(56, r.isFlexCategory, 6);
                                  b.i32(60, r.graphFlags, 8);
                                  b.i32(64, r.rankingWeight, 8);
                              });
    mRowComments = writeSection(mFile.rowComments, mStrides.rowComment, RowCommentReadSize,
                                [](RecordBuffer &b, const RowCommentRecord &r) {
                                    b.i32(0, r.comment);
                                    b.i32(4, r.kept4, 4);
                                });
    mBlocks = writeSection(mFile.blocks, mStrides.block, BlockReadSize, [](RecordBuffer &b, const BlockRecord &r) {
        b.i32(0, r.code);
        b.i32(4, r.name);
        b.i32(8, r.text);
        b.i32(12, r.kept12);
        b.i32(16, r.kept16);
        b.i16(20, r.kept20);
        b.i16(22, r.memberRule);
        b.f64(24, r.totalIndex);
        b.i32(32, r.linkedBlock, 2);
        b.i32(36, r.graphFlags, 8);
    });
    mBlockItems = writeSection(mFile.blockItems, mStrides.blockItem, BlockItemReadSize,
                               [](RecordBuffer &b, const BlockItemRecord &r) {
                                   b.i32(0, r.block);
                                   b.i32(4, r.question);
                               });
    writeCellComments();

    mLayout.alternatives = mAlternatives.offset;
    mLayout.questions = mQuestions.offset;
    mLayout.rowComments = mRowComments.offset;
    mLayout.blocks = mBlocks.offset;
    mLayout.blockItems = mBlockItems.offset;
    QByteArray payload = header() + mBody;
    mLayout.size = qint32(payload.size());
    if (mFile.forgery.patchPayload)
        mFile.forgery.patchPayload(payload);
    if (layout)
        *layout = mLayout;
    return payload;
}

} // namespace

void KelFile::setCellComment(qint32 row, qint32 column, qint32 textIndex)
{
    const std::size_t cells = std::size_t(answers.rowCount()) * std::size_t(answers.columnCount());
    if (cellComments.size() != cells)
        cellComments.assign(cells, -1);
    cellComments[std::size_t(column) * std::size_t(answers.rowCount()) + std::size_t(row)] = textIndex;
}

QByteArray KelFile::payload(PayloadLayout *layout) const
{
    return PayloadWriter(*this).write(layout);
}

QByteArray KelFile::toBytes(PayloadLayout *layout) const
{
    const QByteArray plain = payload(layout);
    QByteArray stored;
    if (options.compressed) {
        uLongf length = compressBound(uLong(plain.size()));
        stored.resize(qsizetype(length));
        const int z = compress(reinterpret_cast<Bytef *>(stored.data()), &length,
                               reinterpret_cast<const Bytef *>(plain.constData()), uLong(plain.size()));
        Q_ASSERT(z == Z_OK);
        (void)z;
        stored.resize(qsizetype(length));
    } else {
        stored = plain;
    }
    if (forgery.patchStored)
        forgery.patchStored(stored);

    const qint32 headerLength = std::max(options.headerLength, ContainerHeaderSize);
    QByteArray head(headerLength, '\0');
    const qsizetype reserved = std::min<qsizetype>(options.reservedBytes.size(), headerLength - ContainerHeaderSize);
    std::memcpy(head.data() + ContainerHeaderSize, options.reservedBytes.constData(), std::size_t(reserved));
    const qint64 fileLength = qint64(headerLength) + stored.size() + 4 + forgery.trailingBytes.size();
    const qint32 compatible = options.compatibleRevision.value_or(std::clamp(options.revision, 1, 9));
    patchI32(head, OffMagic1, qint32(forgery.magic1.value_or(Magic1)));
    patchI32(head, OffMagic2, qint32(forgery.magic2.value_or(Magic2)));
    patchI32(head, OffRevision, options.revision);
    patchI32(head, OffCompatibleRevision, compatible);
    patchI32(head, OffFileLength, forgery.fileLength.value_or(qint32(fileLength)));
    patchI32(head, OffPayloadLength, forgery.payloadLength.value_or(qint32(plain.size())));
    patchI32(head, OffStoredLength, forgery.storedLength.value_or(options.compressed ? qint32(stored.size()) : 0));
    patchI32(head, OffHeaderLength, forgery.headerLength.value_or(options.headerLength));

    QByteArray file = head + stored;
    char crc[4];
    qToLittleEndian<quint32>(forgery.checksum.value_or(crcOf(head, stored)), crc);
    file.append(crc, 4);
    file += forgery.trailingBytes;
    return file;
}

bool KelFile::writeFile(const QString &path, QString *error) const
{
    return writeBytes(path, toBytes(), error);
}

bool writeBytes(const QString &path, const QByteArray &bytes, QString *error)
{
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size() || !f.commit()) {
        if (error)
            *error = QStringLiteral("cannot write %1: %2").arg(path, f.errorString());
        return false;
    }
    return true;
}

void repairContainer(QByteArray &file)
{
    if (file.size() < ContainerHeaderSize)
        return;
    const auto *p = reinterpret_cast<const uchar *>(file.constData());
    const qint32 headerLength = qFromLittleEndian<qint32>(p + OffHeaderLength);
    const qint32 payloadLength = qFromLittleEndian<qint32>(p + OffPayloadLength);
    const qint32 storedLength = qFromLittleEndian<qint32>(p + OffStoredLength);
    const qint64 stored = storedLength >= 1 ? storedLength : payloadLength;
    if (headerLength < ContainerHeaderSize || qint64(headerLength) + stored + 4 > file.size())
        return;
    patchI32(file, OffFileLength, qint32(file.size()));
    const quint32 crc = crcOf(file.left(headerLength), file.mid(headerLength, stored));
    char bytes[4];
    qToLittleEndian<quint32>(crc, bytes);
    std::memcpy(file.data() + headerLength + stored, bytes, 4);
}

// ---------------------------------------------------------------------------

quint64 Random::next()
{
    quint64 z = (mState += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

qint32 Random::below(qint32 n)
{
    return n <= 1 ? 0 : qint32(next() % quint64(n));
}

double Random::uniform()
{
    return double(next() >> 11) * (1.0 / 9007199254740992.0);
}

double Random::normal()
{
    double sum = 0.0;
    for (int i = 0; i < 12; ++i)
        sum += uniform();
    return sum - 6.0;
}

} // namespace kel::writer
