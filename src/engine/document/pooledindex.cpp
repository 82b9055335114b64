// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/pooledindex.h"

#include <numeric>

namespace kel {

namespace {

// One pass over questions x rows, reading each column with its own cell
// width. The accumulators are 64-bit: the same result as 32-bit wherever
// that one would not overflow, and a right one where it would.
template<typename PerAnswer>
void forEachPointedAnswer(const Document &doc, const QuestionList &questions, const RowList &rows, PerAnswer &&add)
{
    if (rows.empty())
        return;
    for (qint32 q : questions) {
        const Question &question = doc.questions[std::size_t(q)];
        // Without alternatives no answer can be valid (the reader allows
        // that only without rows), and the first-alternative number may
        // point anywhere: nothing to add.
        if (question.alternativeCount < 1)
            continue;
        const Alternative *alts = doc.alternatives.data() + question.firstAlternative;
        doc.answers.visitColumn(q, [&](const auto *column) {
            for (qint32 r : rows) {
                const qint32 p = alts[column[r]].points;
                if (p != -1)
                    add(p);
            }
        });
    }
}

} // namespace

double calculateColumnsIndex(const Document &doc, const QuestionList &questions, const RowList &rows)
{
    qint64 sum = 0;
    qint64 n = 0;
    forEachPointedAnswer(doc, questions, rows, [&](qint32 p) {
        sum += p;
        ++n;
    });
    if (n <= 0)
        return -1.0;
    return (double(sum) / double(n)) / double(doc.properties.pointsScale);
}

double calculateColumnsIndexSpec(const Document &doc, const QuestionList &questions, const RowList &rows,
                                 QString &distribution)
{
    distribution.clear();
    const qint32 maxPoints = doc.properties.maxPoints;
    std::vector<qint64> counts(std::size_t(std::max(maxPoints, -1) + 1), 0);
    qint64 sum = 0;
    qint64 n = 0;
    forEachPointedAnswer(doc, questions, rows, [&](qint32 p) {
        sum += p;
        ++n;
        if (p >= 0 && p <= maxPoints)
            ++counts[std::size_t(p)];
    });
    if (n < 1)
        return -1.0;
    distribution = QStringLiteral("Value\tCount");
    for (qint32 p = 0; p <= maxPoints; ++p)
        if (counts[std::size_t(p)] > 0)
            distribution += QStringLiteral("\r\n%1\t%2").arg(p).arg(counts[std::size_t(p)]);
    return (double(sum) / double(n)) / double(doc.properties.pointsScale);
}

QuestionList totalMembersAmong(const Document &doc, const std::vector<qint32> &columns)
{
    QuestionList members;
    for (qint32 q : columns)
        if (q >= 0 && std::size_t(q) < doc.questions.size() && doc.questions[std::size_t(q)].inTotalIndex)
            members.push_back(q);
    return members;
}

QuestionList totalMembers(const Document &doc)
{
    return totalMembersAmong(doc, doc.overviewColumns);
}

RowList allRows(const Document &doc)
{
    RowList rows(std::size_t(qMax(doc.rowCount(), 0)));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

void computeMissingTotalIndex(Document &doc)
{
    DocumentProperties &p = doc.properties;
    // Without rows there is nothing to pool (and a question without
    // alternatives may carry any first-alternative number then).
    if (doc.revision >= 5 || p.pointsScale < 1 || doc.rowCount() < 1)
        return;
    const QuestionList members = totalMembers(doc);
    if (members.empty())
        return;
    p.totalIndex = calculateColumnsIndex(doc, members, allRows(doc));
}

} // namespace kel
