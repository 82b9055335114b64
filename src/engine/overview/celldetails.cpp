// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/overview/celldetails.h"

#include "engine/indexes/blockindex.h"

namespace kel {

CellDetails cellDetails(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                        const SheetHit &hit, const std::vector<qint32> &overviewColumns, const RowList &selectionRows)
{
    CellDetails d;
    const bool onQuestion =
        hit.place != SheetPlace::Outside && hit.question >= 0 && hit.question < qint32(doc.questions.size());
    if (doc.properties.pointsScale < 1 || !onQuestion)
        return d;
    d.onQuestion = true;
    const Question &q = doc.questions[std::size_t(hit.question)];
    // Block numbers out of the list name no block: no name, no value.
    const Block *block = catalogue.blockAt(q.block);
    const Block *subBlock = catalogue.blockAt(q.subBlock);
    if (block)
        d.blockName = block->name;
    if (subBlock)
        d.subBlockName = subBlock->name;
    d.questionText = q.text.isEmpty() ? q.heading : q.text;

    if (hit.place == SheetPlace::AnswerCell && hit.row >= 0 && hit.row < doc.rowCount()) {
        const qint32 answer = doc.getData(hit.row, hit.question);
        if (answer >= 0 && answer < q.alternativeCount)
            d.answerText = doc.alternatives[std::size_t(q.firstAlternative + answer)].text;
        d.respondentIndex = calculateColumnsIndex(doc, overviewColumns, {hit.row});
    }
    d.questionIndex = calculateColumnsIndex(doc, {hit.question}, selectionRows);
    d.questionTotalIndex = flex.questionIndex(hit.question);
    if (subBlock) {
        d.subBlockIndex = calculateBlockIndex(doc, catalogue, q.subBlock, selectionRows);
        d.subBlockTotalIndex = flex.blockIndex(q.subBlock);
    }
    if (block) {
        d.blockIndex = calculateBlockIndex(doc, catalogue, q.block, selectionRows);
        d.blockTotalIndex = flex.blockIndex(q.block);
    }
    return d;
}

std::vector<double> columnIndexLine(const Document &doc, const std::vector<qint32> &columns, const RowList &rows)
{
    std::vector<double> values(columns.size(), -1.0);
    if (doc.properties.pointsScale < 1)
        return values;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        if (isReadableColumn(doc, columns[c]))
            values[c] = calculateColumnsIndex(doc, QuestionList{columns[c]}, rows);
    }
    return values;
}

double columnRunIndex(const Document &doc, const std::vector<qint32> &columns, int first, int count,
                      const RowList &rows)
{
    if (doc.properties.pointsScale < 1 || first < 0 || count < 1)
        return -1.0;
    QuestionList members;
    for (int c = first; c < first + count && std::size_t(c) < columns.size(); ++c) {
        if (isReadableColumn(doc, columns[std::size_t(c)]))
            members.push_back(columns[std::size_t(c)]);
    }
    return calculateColumnsIndex(doc, members, rows);
}

} // namespace kel
