// SPDX-License-Identifier: GPL-3.0-or-later
// Writes KEL files for tests, benchmarks, fuzz seeds and the bundled samples,
// so that no binary document has to be checked in by hand.
//
// Two layers:
//  - KelFile: the file as raw file values (text indexes, i16 booleans,
//    colours) plus how to lay it out (revision, strides, compression) and how
//    to damage it. It writes exactly the fields the chosen revision defines.
//  - SurveyBuilder: a convenience front end that takes strings, adds a
//    question together with its alternatives, keeps answers per question and
//    computes the stored total indexes, then hands back a KelFile.
#pragma once

#include "engine/document/kelformat.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace kel::writer {

/// Booleans in KEL files are i16; writers use -1 for true.
inline constexpr qint16 FileTrue = -1;
inline constexpr qint16 FileFalse = 0;
inline constexpr qint16 fileBool(bool b)
{
    return b ? FileTrue : FileFalse;
}

/// A COLORREF (0x00BBGGRR) from its components.
inline constexpr qint32 rgb(int r, int g, int b)
{
    return qint32((b & 0xFF) << 16 | (g & 0xFF) << 8 | (r & 0xFF));
}

/// The text table. add() always appends; intern() reuses an equal entry.
class TextPool
{
public:
    qint32 add(const QString &text);
    qint32 intern(const QString &text);
    qint32 size() const { return qint32(mTexts.size()); }
    const QString &at(qint32 index) const { return mTexts.at(index); }
    const QStringList &texts() const { return mTexts; }

private:
    QStringList mTexts;
    QHash<QString, qint32> mIndex;
};

// ---------------------------------------------------------------------------
// File records: raw file values, laid out as the payload stores them.

struct AlternativeRecord {
    qint32 label = -1; ///< text index
    qint32 text = -1;
    qint32 shortText = -1;
    qint32 sheetColour = -1;
    qint32 kept16 = 0;
    qint32 points = -1;
    qint16 complementCheck = FileFalse;
    qint16 countsForPrivacy = FileFalse;
    qint32 graphAttribute = 0; ///< rev >= 3
    qint32 sortValue = 0;      ///< rev >= 3
    qint32 graphColour = -1;   ///< rev >= 7
};

struct QuestionRecord {
    qint32 code = -1; ///< text index
    qint32 heading = -1;
    qint32 text = -1;
    qint32 selectionLabel = -1;
    qint32 sheetColour = -1;
    qint32 kept20 = 0;
    qint32 block = -1;
    qint32 firstAlternative = 0;
    qint32 alternativeCount = 0;
    qint16 isCategory = FileFalse;
    qint16 inOverview = FileFalse;
    double totalIndex = -1.0;
    qint16 inTotalIndex = FileFalse;
    qint32 subBlock = -1;              ///< rev >= 2
    qint16 isFlexCategory = FileFalse; ///< rev >= 6
    qint32 graphFlags = 3;             ///< rev >= 8
    qint32 rankingWeight = 1;          ///< rev >= 8
};

struct RowCommentRecord {
    qint32 comment = -1; ///< text index
    qint32 kept4 = -1;   ///< rev >= 4
};

struct BlockRecord {
    qint32 code = -1; ///< text index
    qint32 name = -1;
    qint32 text = -1;
    qint32 kept12 = 0;
    qint32 kept16 = 0;
    qint16 kept20 = 0;
    qint16 memberRule = FileTrue;
    double totalIndex = -1.0;
    qint32 linkedBlock = -1; ///< rev >= 2
    qint32 graphFlags = 3;   ///< rev >= 8
};

struct BlockItemRecord {
    qint32 block = 0;
    qint32 question = 0;
};

/// The scalar fields of the payload header (the section fields are laid
/// out by the writer). Fields of later revisions are written only when the
/// file's revision defines them.
struct HeaderFields {
    std::array<quint8, 16> guid{};
    qint32 unused40 = 0;
    qint32 projectNumber = -1; ///< text indexes ...
    qint32 projectName = -1;
    qint32 copyright = -1;
    qint32 comment = -1;
    qint32 versionMajor = 1;
    qint32 versionMinor = 0;
    qint32 versionBuild = 0;
    double created = 0.0; ///< OLE automation date
    qint32 unused140 = 0;
    qint32 unused144 = 0;
    qint32 language = -1;
    qint16 allowCopy = FileFalse;
    qint16 allowPrint = FileFalse;
    qint16 allowSavePicture = FileFalse;
    qint32 pointsScale = 0;
    qint32 indexName = -1;
    std::array<qint32, 5> indexLineTexts{-1, -1, -1, -1, -1}; ///< [2] rev >= 2
    qint32 statusPanel2Tip = -1;
    qint32 statusPanel3Tip = -1;
    qint32 totalText = -1;
    qint32 minimumSelection = 0;
    qint32 minimumGraphSelection = 0;
    qint32 selectionTooSmallText = -1;
    qint16 hasRowComments = FileFalse;
    qint16 firstAlternativeIsNoAnswer = FileFalse;
    qint32 sheetColourA = -1;
    qint32 sheetColourB = -1;
    std::array<qint32, 4> sheetColours{-1, -1, -1, -1}; ///< [2], [3] rev >= 2
    qint32 unused240 = 0;                               ///< rev >= 4
    qint32 rowOrder = -1;                               ///< rev >= 5
    qint32 minimumComplementSelection = 0;              ///< rev >= 5
    double totalIndex = -1.0;                           ///< rev >= 5
    qint32 unused268 = 0;                               ///< rev >= 6
    qint32 indexFlags = 0;                              ///< rev >= 9
    qint32 maxPoints = -1;                              ///< rev >= 9
    qint32 rowOrderThreshold = -1;                      ///< rev >= 9
    qint16 allowCopyData = FileFalse;                   ///< rev >= 9
};

/// The answer matrix: cellType 1 = u8, 2 = i16, 3 = i32, 0 = no matrix.
/// Values are kept as i32 and cut to the cell width when written, so
/// set(r, c, -1) in an i16 grid writes 0xFFFF.
class AnswerGrid
{
public:
    AnswerGrid() = default;
    AnswerGrid(qint32 cellType, qint32 rows, qint32 columns, qint32 fill = 0);

    qint32 cellType() const { return mCellType; }
    qint32 rowCount() const { return mRows; }
    qint32 columnCount() const { return mColumns; }
    bool isEmpty() const { return mCellType < 1 || mCellType > 3 || mRows < 1 || mColumns < 1; }
    int cellWidth() const { return mCellType == 1 ? 1 : mCellType == 2 ? 2 : 4; }

    void set(qint32 row, qint32 column, qint32 value) { mValues[index(row, column)] = value; }
    qint32 at(qint32 row, qint32 column) const { return mValues[index(row, column)]; }

private:
    std::size_t index(qint32 row, qint32 column) const
    {
        return std::size_t(column) * std::size_t(mRows) + std::size_t(row);
    }

    qint32 mCellType = 0;
    qint32 mRows = 0;
    qint32 mColumns = 0;
    std::vector<qint32> mValues; // column after column, as in the file
};

// ---------------------------------------------------------------------------
// Layout and damage

/// How the file is laid out.
struct WriteOptions {
    /// Container `Revision`; decides which fields are written (revisions above
    /// 9 write what revision 9 defines).
    qint32 revision = 9;
    /// Container `CompatibleRevision`; unset = the revision, at most 9.
    std::optional<qint32> compatibleRevision;
    bool compressed = true; ///< zlib `compress`, else stored plain
    /// Container `HeaderLength`; bytes 32.. are filled from `reservedBytes`
    /// (then zeros).
    qint32 headerLength = format::ContainerHeaderSize;
    QByteArray reservedBytes;
    /// Record strides; unset = what the revision's writers used.
    std::optional<format::Strides> strides;
    qint32 cellCommentStride = 4;
    /// Byte written where the revision (or a short stride) defines no field,
    /// to show that readers ignore those bytes.
    quint8 undefinedFill = 0;
    /// A reader takes a full record (its read size) even from a short stride;
    /// the writer appends that many bytes after such a section, as the old
    /// writers' later sections did. Off only for forging.
    bool padShortSections = true;
};

/// Overrides of a record section's three header fields.
struct SectionOverride {
    std::optional<qint32> offset;
    std::optional<qint32> stride;
    std::optional<qint32> count;
};

/// Ways to damage a file. Every field left unset keeps its true value.
struct Forgery {
    // Container header.
    std::optional<quint32> magic1;
    std::optional<quint32> magic2;
    std::optional<qint32> fileLength;
    std::optional<qint32> payloadLength;
    std::optional<qint32> storedLength;
    std::optional<qint32> headerLength; ///< the field only; the layout uses WriteOptions::headerLength
    std::optional<quint32> checksum;
    QByteArray trailingBytes; ///< appended after the checksum; counted in the true FileLength

    // Payload header.
    SectionOverride alternatives;
    SectionOverride questions;
    SectionOverride rowComments;
    SectionOverride blocks;
    SectionOverride blockItems;
    std::optional<qint32> textTableOffset;
    std::optional<qint32> textCount;
    std::optional<qint32> answersOffset;
    std::optional<qint32> cellType;
    std::optional<qint32> rowCount;
    std::optional<qint32> columnCount;
    std::optional<qint32> cellCommentsOffset;
    std::optional<qint32> cellCommentStride;
    /// Text index -> the length written in its length field (the text's own
    /// code units are written unchanged).
    std::map<qint32, qint32> textLengths;

    /// Last word on the plain payload, before compression and the CRC.
    std::function<void(QByteArray &payload)> patchPayload;
    /// Last word on the stored payload bytes (the zlib stream when
    /// compressed), before the CRC is taken over them.
    std::function<void(QByteArray &stored)> patchStored;
};

/// Where the writer put each part of the payload (payload offsets; 0 when
/// the part is absent).
struct PayloadLayout {
    qint32 textTable = 0;
    qint32 answers = 0;
    qint32 alternatives = 0;
    qint32 questions = 0;
    qint32 rowComments = 0;
    qint32 blocks = 0;
    qint32 blockItems = 0;
    qint32 cellComments = 0;
    qint32 size = 0; ///< the payload length
};

/// A KEL file described by its raw file values.
class KelFile
{
public:
    TextPool texts;
    HeaderFields header;
    std::vector<AlternativeRecord> alternatives;
    std::vector<QuestionRecord> questions;
    std::vector<RowCommentRecord> rowComments;
    std::vector<BlockRecord> blocks;
    std::vector<BlockItemRecord> blockItems;
    AnswerGrid answers;
    /// Text index per answer cell, column after column, same shape as
    /// `answers`; empty = no cell-comment matrix. See setCellComment().
    std::vector<qint32> cellComments;

    WriteOptions options;
    Forgery forgery;

    /// Sets the comment text index of one answer cell, creating the matrix
    /// (all -1) on first use. The answer grid must be in place.
    void setCellComment(qint32 row, qint32 column, qint32 textIndex);

    /// The plain payload, forgeries applied (before compression).
    QByteArray payload(PayloadLayout *layout = nullptr) const;
    /// The whole file image.
    QByteArray toBytes(PayloadLayout *layout = nullptr) const;
    /// Writes toBytes() to `path`; false with a message in `error` on failure.
    bool writeFile(const QString &path, QString *error = nullptr) const;
};

/// Writes `bytes` to `path`; false with a message in `error` on failure.
bool writeBytes(const QString &path, const QByteArray &bytes, QString *error = nullptr);

/// Little-endian patches of a byte image, for damaging files by hand.
void patchI16(QByteArray &bytes, qint64 offset, qint16 value);
void patchI32(QByteArray &bytes, qint64 offset, qint32 value);
void patchF64(QByteArray &bytes, qint64 offset, double value);

/// Recomputes FileLength and the checksum of a file image (for example after
/// its payload header was patched in a plain file).
void repairContainer(QByteArray &file);

// ---------------------------------------------------------------------------
// Survey builder

struct AlternativeSpec {
    QString text;
    qint32 points = -1;
    qint32 colour = -1; ///< sheet colour, and graph colour unless graphColour is set
    QString label;      ///< the label drawn in sheet cells
    QString shortText;  ///< empty = the text
    bool complementCheck = false;
    bool countsForPrivacy = false;
    qint32 graphAttribute = 0;
    std::optional<qint32> sortValue;   ///< unset = points
    std::optional<qint32> graphColour; ///< unset = colour
};

struct QuestionSpec {
    QString code;
    QString heading;
    QString text;           ///< empty = the heading
    QString selectionLabel; ///< empty = the heading
    qint32 block = -1;
    qint32 subBlock = -1;
    bool isCategory = false;
    bool inOverview = true;
    bool inTotalIndex = true;
    bool isFlexCategory = false;
    qint32 sheetColour = -1;
    qint32 rankingWeight = 1;
    std::optional<qint32> graphFlags; ///< unset = 3, plus 0x100 with an index
};

struct BlockSpec {
    QString code;
    QString name;
    QString text;
    qint32 linkedBlock = -1;
    /// true: members are found through the questions' block numbers;
    /// false: members are the block items added with addBlockItem().
    bool memberRule = true;
    std::optional<qint32> graphFlags; ///< unset = 3, plus 0x100 with an index
};

/// Builds a consistent document from strings and answers. Everything it
/// cannot know (header texts, permissions, colours, layout) is set on
/// file() directly, before or after build().
class SurveyBuilder
{
public:
    /// `cellType` 1, 2 or 3: width of the answer cells.
    explicit SurveyBuilder(qint32 rowCount = 0, qint32 cellType = 1);

    /// The file being built: header, options and forgery are free to edit.
    KelFile &file() { return mFile; }
    const KelFile &file() const { return mFile; }
    HeaderFields &header() { return mFile.header; }
    /// Interns `text` in the text pool and returns its index.
    qint32 text(const QString &text) { return mFile.texts.intern(text); }

    qint32 rowCount() const { return mRows; }
    /// Changes the number of respondents; new answers are 0.
    void setRowCount(qint32 rows);
    void setCellType(qint32 cellType) { mCellType = cellType; }

    /// Adds a block; returns its index.
    qint32 addBlock(const BlockSpec &recipe);
    /// Adds a question with its own run of alternatives; returns its index.
    qint32 addQuestion(const QuestionSpec &recipe, const QList<AlternativeSpec> &alternatives);
    /// Adds a question sharing the alternatives run of `sameAs`.
    qint32 addQuestionLike(const QuestionSpec &recipe, qint32 sameAs);
    void addBlockItem(qint32 block, qint32 question);

    void setAnswer(qint32 row, qint32 question, qint32 value);
    qint32 answer(qint32 row, qint32 question) const;
    void setAnswers(qint32 question, const std::vector<qint32> &values);

    /// Row and cell comments are stored as texts of the pool.
    void setRowComment(qint32 row, const QString &comment);
    void setCellComment(qint32 row, qint32 question, const QString &comment);

    /// When on (the default), build() stores the total index of every
    /// question, block and the document computed over all rows (when the
    /// header's pointsScale > 0), the default graph flags, MaxPoints and
    /// IndexFlags 0x100 with indexes.
    void setComputeIndexes(bool on) { mComputeIndexes = on; }

    /// The finished file: answers, comments and computed values in place.
    KelFile build() const;
    QByteArray toBytes() const { return build().toBytes(); }

    /// Members of block `b` as the viewer finds them (rule or items).
    std::vector<qint32> blockMembers(qint32 b) const;
    /// Pooled index (mean points / pointsScale) of `questions` over all
    /// rows; -1 when no answer has points.
    double poolIndex(const std::vector<qint32> &questions) const;

private:
    KelFile mFile;
    qint32 mRows = 0;
    qint32 mCellType = 1;
    bool mComputeIndexes = true;
    std::vector<std::vector<qint32>> mColumns;      // answers per question
    std::vector<std::optional<qint32>> mGraphFlags; // per question; unset = default
    std::vector<std::optional<qint32>> mBlockGraphFlags;
    std::map<qint32, qint32> mRowComments;                     // row -> text index
    std::map<std::pair<qint32, qint32>, qint32> mCellComments; // (row, question) -> text index
};

// ---------------------------------------------------------------------------
// Ready-made documents

/// The bundled employee survey (samples/employee-survey-<lang>.kel).
KelFile employeeSurvey(bool swedish);

struct DemoOptions {
    qint32 revision = 9;
    bool compressed = true;
    qint32 cellType = 1;
    qint32 rows = 40;
    quint64 seed = 1;
};
/// A small deterministic document with every kind of content, for any
/// revision: categories (one the flex category), blocks with sub-blocks,
/// an item block, row and cell comments, indexes.
KelFile demoDocument(const DemoOptions &options);

/// Deterministic pseudo-random numbers (SplitMix64): identical on every
/// platform and compiler, unlike the standard distributions.
class Random
{
public:
    explicit Random(quint64 seed) : mState(seed) { }
    quint64 next();
    /// Uniform in [0, n).
    qint32 below(qint32 n);
    /// Uniform in [0, 1).
    double uniform();
    /// Approximately standard normal (sum of uniforms; no libm).
    double normal();
    bool chance(double p) { return uniform() < p; }

private:
    quint64 mState;
};

} // namespace kel::writer
