// SPDX-License-Identifier: GPL-3.0-or-later
// Small in-memory documents for the sheet tests: each question names its
// block, sub-block, colour and alternatives, and the answers are given
// row by row, so that a test reads as the sheet it expects.
#pragma once

#include "engine/document/document.h"

#include <QString>

#include <vector>

namespace kel::test {

struct SheetAlternative {
    QString label;
    qint32 colour = -1;
    qint32 points = -1;
};

struct SheetQuestion {
    QString code;
    qint32 block = -1;
    qint32 subBlock = -1;
    qint32 colour = -1;
    std::vector<SheetAlternative> alternatives;
    qint32 graphFlags = 3;
};

struct SheetBlock {
    QString code;
    QString name;
};

/// A document whose questions are all overview columns. `answers[r][q]` is
/// row r's answer to question q.
inline Document makeSheetDocument(const std::vector<SheetQuestion> &questions, const std::vector<SheetBlock> &blocks,
                                  const std::vector<std::vector<qint32>> &answers)
{
    Document doc;
    doc.revision = 9;
    doc.compatibleRevision = 9;
    doc.currentFileName = QStringLiteral("sheet.kel");
    for (const SheetBlock &b : blocks) {
        Block block;
        block.code = b.code;
        block.name = b.name;
        doc.blocks.push_back(block);
    }
    for (const SheetQuestion &sq : questions) {
        Question q;
        q.code = sq.code;
        q.heading = sq.code;
        q.inOverview = true;
        q.inTotalIndex = true;
        q.block = sq.block;
        q.subBlock = sq.subBlock;
        q.sheetColour = sq.colour;
        q.graphFlags = sq.graphFlags;
        q.firstAlternative = qint32(doc.alternatives.size());
        q.alternativeCount = qint32(sq.alternatives.size());
        for (const SheetAlternative &sa : sq.alternatives) {
            Alternative a;
            a.label = sa.label;
            a.text = sa.label;
            a.sheetColour = sa.colour;
            a.graphColour = sa.colour;
            a.points = sa.points;
            doc.alternatives.push_back(a);
        }
        doc.overviewColumns.push_back(qint32(doc.questions.size()));
        doc.questions.push_back(q);
    }
    const qint32 rows = qint32(answers.size());
    const qint32 columns = qint32(questions.size());
    std::vector<quint8> cells(std::size_t(rows) * std::size_t(columns), 0);
    for (qint32 r = 0; r < rows; ++r)
        for (qint32 c = 0; c < columns; ++c)
            cells[std::size_t(c) * std::size_t(rows) + std::size_t(r)] = quint8(answers[std::size_t(r)][std::size_t(c)]);
    doc.answers = AnswerMatrix(CellType::U8, rows, columns, cells);
    return doc;
}

inline std::vector<qint32> allRows(const Document &doc)
{
    std::vector<qint32> rows(std::size_t(doc.rowCount()));
    for (qint32 r = 0; r < doc.rowCount(); ++r)
        rows[std::size_t(r)] = r;
    return rows;
}

} // namespace kel::test
