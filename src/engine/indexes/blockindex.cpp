// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/indexes/blockindex.h"

#include <algorithm>

namespace kel {

QuestionList blockMembers(const Document &doc, const BlockCatalogue &catalogue, qint32 block)
{
    QuestionList members;
    const Block *b = catalogue.blockAt(block);
    if (!b)
        return members;
    if (!b->memberRule) {
        for (const BlockItem &item : catalogue.items)
            if (item.block == block && item.question >= 0 && item.question < qint32(doc.questions.size()))
                members.push_back(item.question);
        return members;
    }
    for (qint32 q : doc.overviewColumns)
        if (doc.questions[std::size_t(q)].block == block)
            members.push_back(q);
    // A sub-block is named by no question as its block: it gathers the
    // questions that name it as their sub-block.
    if (members.empty())
        for (qint32 q : doc.overviewColumns)
            if (doc.questions[std::size_t(q)].subBlock == block)
                members.push_back(q);
    return members;
}

QuestionList blockGraphQuestions(const Document &doc, const BlockCatalogue &catalogue, qint32 block)
{
    QuestionList members = blockMembers(doc, catalogue, block);
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    return members;
}

double calculateBlockIndex(const Document &doc, const BlockCatalogue &catalogue, qint32 block, const RowList &rows)
{
    const QuestionList members = blockMembers(doc, catalogue, block);
    if (members.empty())
        return -1.0;
    return calculateColumnsIndex(doc, members, rows);
}

double calculateBlockTotalIndex(const Document &doc, const BlockCatalogue &catalogue, qint32 block)
{
    return calculateBlockIndex(doc, catalogue, block, allRows(doc));
}

double calculateBlockFlexTotalIndex(const Document &doc, const BlockCatalogue &catalogue, qint32 block,
                                    const RowList &flexRows)
{
    if (flexRows.empty())
        return -1.0;
    return calculateBlockIndex(doc, catalogue, block, flexRows);
}

double calculateTotalIndex(const Document &doc, const RowList &rows)
{
    const QuestionList members = totalMembers(doc);
    if (members.empty())
        return -1.0;
    return calculateColumnsIndex(doc, members, rows);
}

double calculateTotalIndexSpec(const Document &doc, const RowList &rows, QString &distribution)
{
    distribution.clear();
    const QuestionList members = totalMembers(doc);
    if (members.empty())
        return -1.0;
    return calculateColumnsIndexSpec(doc, members, rows, distribution);
}

bool hasSubBlocks(const Document &doc)
{
    for (const Question &q : doc.questions)
        if (q.subBlock >= 0)
            return true;
    return false;
}

} // namespace kel
