// SPDX-License-Identifier: GPL-3.0-or-later
// The in-memory form of one open KEL document. Filled once by the reader,
// read by every other subsystem, never changed after: what a session adds
// (user blocks, flex-total indexes) lives in BlockCatalogue and FlexTotal.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <vector>

namespace kel {

/// Width of one answer cell as stored in the file. `None` = no answer matrix.
enum class CellType : int { None = -1, U8 = 1, I16 = 2, I32 = 3 };

/// One answer alternative. The alternatives of all questions form one list; a
/// question owns the run [firstAlternative, firstAlternative + alternativeCount).
struct Alternative {
    QString label;
    QString text;            ///< shown in lists and graph legends
    QString shortText;       ///< used in selection texts and as short category name
    qint32 sheetColour = -1; ///< 0x00BBGGRR; -1 = no colour
    qint32 kept16 = 0;       ///< file value with no settled use
    qint32 graphColour = -1; ///< revision < 7: = sheetColour
    qint32 points = -1;      ///< -1 = no points: left out of every index
    bool complementCheck = false;
    bool countsForPrivacy = false;
    qint32 graphAttribute = 0; ///< revision < 3: 0
    qint32 sortValue = 0;      ///< revision < 3: = points; negative sorts last
};

struct Question {
    QString code;
    QString heading; ///< short heading, shown in lists and menus
    QString text;    ///< full question text
    QString selectionLabel;
    bool isCategory = false;
    bool inOverview = false;
    bool isFlexCategory = false;
    qint32 sheetColour = -1; ///< fill of the question's cell in the code line
    qint32 kept20 = 0;
    qint32 block = -1;        ///< index into Document::blocks, -1 = none; may lie outside it (see blockAt)
    qint32 subBlock = -1;     ///< -1 = none; may lie outside Document::blocks (see blockAt)
    double totalIndex = -1.0; ///< over all rows, from the file; -1 = none
    qint32 graphFlags = 3;
    bool inTotalIndex = false;
    qint32 rankingWeight = 1;
    qint32 firstAlternative = 0;
    qint32 alternativeCount = 0;
};

struct Block {
    QString code;
    QString name;
    QString text;
    qint32 kept12 = 0;
    qint32 kept16 = 0;
    qint16 kept20 = 0;
    bool memberRule = false; ///< selects how member questions are found (rule vs. item list)
    qint32 linkedBlock = -1; ///< -1 = none; otherwise this block is a sub-block of that one (may dangle)
    double totalIndex = -1.0;
    qint32 graphFlags = 3;
    bool fromDocument = true; ///< false for user-defined blocks
    bool includeInCopy = true;
};

struct BlockItem {
    qint32 block = 0; ///< may lie outside Document::blocks; the question never does
    qint32 question = 0;
};

struct RowComment {
    qint32 comment = -1; ///< text index; -1 = none
    qint32 kept4 = -1;
};

/// Document-wide scalars of the payload header, revision replacements applied.
/// Text fields are text-pool indexes (resolve with Document::text()).
struct DocumentProperties {
    std::array<quint8, 16> fileGuid{}; ///< Windows GUID memory layout
    qint32 projectNumber = -1;
    qint32 projectName = -1;
    qint32 copyright = -1;
    qint32 comment = -1; ///< an RTF fragment
    qint32 versionMajor = 0;
    qint32 versionMinor = 0;
    qint32 versionBuild = 0;
    double created = 0.0; ///< OLE automation date, UTC
    qint32 unused140 = 0;
    qint32 unused144 = 0;
    qint32 language = -1;
    QString languageCode; ///< "sv", "en", ... (derived)
    bool allowCopy = false;
    bool allowPrint = false; ///< the document's own flag
    bool allowSavePicture = false;
    bool allowCopyData = false;
    qint32 rowOrder = -1;          ///< -1 user selectable, 0 original, 1 random, 2 random per column
    qint32 rowOrderThreshold = -1; ///< rowOrder applies below this many rows; -1 = always
    qint32 pointsScale = 0;        ///< > 0: the document has indexes
    qint32 maxPoints = -1;
    qint32 indexDecimals = 0; ///< derived from pointsScale
    qint32 indexName = -1;
    std::array<qint32, 5> indexLineTexts{-1, -1, -1, -1, -1};
    qint32 statusPanel2Tip = -1;
    qint32 statusPanel3Tip = -1;
    qint32 totalText = -1;
    qint32 selectionTooSmallText = -1;
    double totalIndex = -1.0;
    qint32 indexFlags = 0; ///< bit 0x100: the total-index graph is offered
    qint32 minimumSelection = 0;
    qint32 minimumComplementSelection = 0;
    qint32 minimumGraphSelection = 0;
    bool hasRowComments = false;
    bool firstAlternativeIsNoAnswer = false;
    qint32 sheetColourA = -1;
    qint32 sheetColourB = -1;
    std::array<qint32, 4> sheetColours{-1, -1, -1, -1};
};

/// The answer matrix, kept exactly as the file stores it: column after column,
/// one cell of `cellType` width each. Values were checked on load to lie in
/// 0 .. alternativeCount-1 of their question.
class AnswerMatrix
{
public:
    AnswerMatrix() = default;
    /// Takes the cells from a byte vector (tests and tools build these).
    AnswerMatrix(CellType type, qint32 rows, qint32 columns, const std::vector<quint8> &bytes)
        : AnswerMatrix(type, rows, columns,
                       QByteArray(reinterpret_cast<const char *>(bytes.data()), qsizetype(bytes.size())), 0)
    {
    }
    /// Shares `buffer` from `offset` on, so that a freshly read payload becomes
    /// the matrix without a copy. Falls back to a copy when the cells would be
    /// misaligned for their width. The caller guarantees the buffer holds
    /// rows x columns cells from `offset`, little-endian on a little-endian host.
    AnswerMatrix(CellType type, qint32 rows, qint32 columns, QByteArray buffer, qsizetype offset)
        : mType(type), mRows(rows), mColumns(columns)
    {
        const qsizetype bytes = qsizetype(rows) * columns * width();
        const auto address = reinterpret_cast<quintptr>(buffer.constData() + offset);
        if (address % quintptr(width()) == 0) {
            mStorage = std::move(buffer);
            mData = reinterpret_cast<const quint8 *>(mStorage.constData()) + offset;
        } else {
            mStorage = QByteArray(buffer.constData() + offset, bytes);
            mData = reinterpret_cast<const quint8 *>(mStorage.constData());
        }
    }

    CellType cellType() const { return mType; }
    qint32 rowCount() const { return mRows; }
    qint32 columnCount() const { return mColumns; }
    bool isEmpty() const { return mType == CellType::None; }
    /// Bytes per cell: 1, 2 or 4 (1 without a matrix).
    int width() const { return mType == CellType::I32 ? 4 : mType == CellType::I16 ? 2 : 1; }

    /// One cell as i32: u8 zero-extended, i16 sign-extended.
    qint32 at(qint32 row, qint32 column) const
    {
        switch (mType) {
        case CellType::U8: return column8(column)[row];
        case CellType::I16: return column16(column)[row];
        case CellType::I32: return column32(column)[row];
        case CellType::None: break;
        }
        return 0;
    }

    /// Direct column access for tight loops; valid only for the matching type.
    const quint8 *column8(qint32 column) const { return mData + std::size_t(column) * std::size_t(mRows); }
    const qint16 *column16(qint32 column) const
    {
        return reinterpret_cast<const qint16 *>(mData) + std::size_t(column) * std::size_t(mRows);
    }
    const qint32 *column32(qint32 column) const
    {
        return reinterpret_cast<const qint32 *>(mData) + std::size_t(column) * std::size_t(mRows);
    }

    /// Calls f(const T *column) with the column typed by the cell width, so that
    /// hot loops are instantiated once per width instead of switching per cell.
    template<typename F>
    void visitColumn(qint32 column, F &&f) const
    {
        switch (mType) {
        case CellType::U8: f(column8(column)); break;
        case CellType::I16: f(column16(column)); break;
        case CellType::I32: f(column32(column)); break;
        case CellType::None: break;
        }
    }

private:
    CellType mType = CellType::None;
    qint32 mRows = 0;
    qint32 mColumns = 0;
    QByteArray mStorage;           // owns (or shares) the cells
    const quint8 *mData = nullptr; // first cell, aligned for the cell width
};

/// The open document. A default-constructed Document is the "no document" state.
struct Document {
    qint32 revision = 0;
    qint32 compatibleRevision = 0;
    /// Set by the reader when revision > 9: the caller shows the upgrade warning.
    bool upgradeWarning = false;

    QStringList textPool;
    AnswerMatrix answers;
    std::vector<Alternative> alternatives;
    std::vector<Question> questions;
    std::vector<RowComment> rowComments;
    std::vector<Block> blocks;
    std::vector<BlockItem> blockItems;
    /// Text index per answer cell, same column-major shape as `answers`;
    /// empty when the file has none (`hasCellComments` false).
    std::vector<qint32> cellComments;
    bool hasCellComments = false;

    // Derived on load.
    std::vector<qint32> categories;      ///< questions with isCategory, in order
    std::vector<qint32> overviewColumns; ///< questions with inOverview, in order
    qint32 flexCategory = -1;            ///< first question with isFlexCategory
    qint32 maxCategoryAlternatives = 0;

    DocumentProperties properties;

    // Where the document came from; empty currentFileName = no document.
    QString currentFile;
    QString currentFolder;
    QString currentFileName;
    QString currentFileTitle;

    qint32 rowCount() const { return answers.rowCount(); }
    qint32 columnCount() const { return answers.columnCount(); }
    bool isOpen() const { return !currentFileName.isEmpty(); }

    /// Entry `index` of the text pool; empty for -1 or any index out of range.
    QString text(qint32 index) const
    {
        return (index >= 0 && index < textPool.size()) ? textPool.at(index) : QString();
    }
    /// One answer cell as i32 (u8 zero-extended, i16 sign-extended).
    qint32 getData(qint32 row, qint32 column) const { return answers.at(row, column); }

    /// Comment text index of cell (row, column); -1 when there is none.
    qint32 cellComment(qint32 row, qint32 column) const
    {
        if (!hasCellComments)
            return -1;
        return cellComments[std::size_t(column) * std::size_t(rowCount()) + std::size_t(row)];
    }

    /// The document's own block `number`, or null for -1 and for a number
    /// outside its list: files carry such numbers, and they mean a block
    /// without members. User blocks are in BlockCatalogue.
    const Block *blockAt(qint32 number) const
    {
        return (number >= 0 && std::size_t(number) < blocks.size()) ? &blocks[std::size_t(number)] : nullptr;
    }

    /// Points of the alternative chosen by `answer` in `question`.
    qint32 pointsOf(qint32 question, qint32 answer) const
    {
        return alternatives[std::size_t(questions[std::size_t(question)].firstAlternative + answer)].points;
    }

    /// The GUID as "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper-case.
    QString guidText() const;
};

/// Fills categories, overviewColumns, flexCategory and maxCategoryAlternatives
/// from the questions' flags (the lists are rebuilt from scratch).
void deriveQuestionLists(Document &doc);

/// Number of decimals of index texts for a points scale.
qint32 indexDecimalsFor(qint32 pointsScale);
/// The language code of a document language text ("Sv" -> "sv", "e" -> "e").
QString languageCodeFor(const QString &language);

} // namespace kel
