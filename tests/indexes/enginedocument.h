// SPDX-License-Identifier: GPL-3.0-or-later
// Builds Document objects in memory for the engine's tests and benchmarks:
// questions with their alternatives, blocks, and an answer matrix of any
// cell width, with the fields the reader would derive filled in.
#pragma once

#include "engine/document/document.h"

#include <cstring>
#include <initializer_list>
#include <utility>
#include <vector>

namespace kel::test {

struct QuestionSpec {
    QString heading;
    std::vector<qint32> points; ///< one per alternative; -1 = no points
    bool category = false;
    bool overview = true;
    bool flex = false;
    bool inTotal = true;
    qint32 block = -1;
    qint32 subBlock = -1;
    double totalIndex = 1.0; ///< any value but -1 lists the question in exports
    std::vector<bool> complementCheck{};
    std::vector<bool> countsForPrivacy{};
};

class EngineDocument
{
public:
    EngineDocument()
    {
        mDoc.textPool << QStringLiteral("Total") << QStringLiteral("Too few!");
        mDoc.properties.totalText = 0;
        mDoc.properties.selectionTooSmallText = 1;
        mDoc.properties.pointsScale = 1;
        mDoc.properties.maxPoints = 100;
        mDoc.currentFileName = QStringLiteral("memory.kel");
    }

    DocumentProperties &properties() { return mDoc.properties; }

    /// Adds a question; its alternatives are named "<heading> <i>" with short
    /// texts "s<i>". Returns the question number.
    qint32 addQuestion(const QuestionSpec &recipe)
    {
        Question q;
        q.heading = recipe.heading;
        q.code = QStringLiteral("Q%1").arg(mDoc.questions.size() + 1);
        q.text = recipe.heading + QStringLiteral(" (full)");
        q.selectionLabel = recipe.heading;
        q.isCategory = recipe.category;
        q.inOverview = recipe.overview;
        q.isFlexCategory = recipe.flex;
        q.inTotalIndex = recipe.inTotal;
        q.block = recipe.block;
        q.subBlock = recipe.subBlock;
        q.totalIndex = recipe.totalIndex;
        q.firstAlternative = qint32(mDoc.alternatives.size());
        q.alternativeCount = qint32(recipe.points.size());
        for (std::size_t i = 0; i < recipe.points.size(); ++i) {
            Alternative a;
            a.text = recipe.heading + QStringLiteral(" %1").arg(i);
            a.shortText = QStringLiteral("s%1").arg(i);
            a.points = recipe.points[i];
            a.complementCheck = i < recipe.complementCheck.size() && recipe.complementCheck[i];
            a.countsForPrivacy = i < recipe.countsForPrivacy.size() && recipe.countsForPrivacy[i];
            mDoc.alternatives.push_back(a);
        }
        mDoc.questions.push_back(q);
        return qint32(mDoc.questions.size() - 1);
    }

    qint32 addBlock(const QString &name, bool memberRule, qint32 linkedBlock = -1, double totalIndex = 1.0,
                    bool fromDocument = true)
    {
        Block b;
        b.name = name;
        b.memberRule = memberRule;
        b.linkedBlock = linkedBlock;
        b.totalIndex = totalIndex;
        b.fromDocument = fromDocument;
        mDoc.blocks.push_back(b);
        return qint32(mDoc.blocks.size() - 1);
    }
    Block &block(qint32 b) { return mDoc.blocks[std::size_t(b)]; }
    void addBlockItem(qint32 block, qint32 question) { mDoc.blockItems.push_back({block, question}); }

    /// Answers per question (columns[q][row]), stored with cell width `type`.
    Document build(const std::vector<std::vector<qint32>> &columns, CellType type = CellType::U8)
    {
        Document doc = mDoc;
        const qint32 rows = columns.empty() ? 0 : qint32(columns.front().size());
        const int width = type == CellType::I32 ? 4 : type == CellType::I16 ? 2 : 1;
        std::vector<quint8> bytes(std::size_t(rows) * columns.size() * std::size_t(width));
        std::size_t at = 0;
        for (const auto &column : columns)
            for (qint32 v : column) {
                if (width == 1) {
                    bytes[at] = quint8(v);
                } else if (width == 2) {
                    const qint16 s = qint16(v);
                    std::memcpy(&bytes[at], &s, 2);
                } else {
                    std::memcpy(&bytes[at], &v, 4);
                }
                at += std::size_t(width);
            }
        doc.answers = AnswerMatrix(type, rows, qint32(columns.size()), bytes);
        deriveQuestionLists(doc);
        doc.properties.indexDecimals = indexDecimalsFor(doc.properties.pointsScale);
        return doc;
    }

private:
    Document mDoc;
};

/// n copies of v.
inline std::vector<qint32> repeat(qint32 v, std::size_t n)
{
    return std::vector<qint32>(n, v);
}
/// Concatenation of runs, e.g. runs({{0, 3}, {1, 2}}) = 0 0 0 1 1.
inline std::vector<qint32> runs(std::initializer_list<std::pair<qint32, std::size_t>> parts)
{
    std::vector<qint32> out;
    for (const auto &[v, n] : parts)
        out.insert(out.end(), n, v);
    return out;
}

} // namespace kel::test
