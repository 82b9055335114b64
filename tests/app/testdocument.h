// SPDX-License-Identifier: GPL-3.0-or-later
// Small in-memory documents for the shell's tests: what the reader would
// produce, built directly so that each permission can be set on its own.
#pragma once

#include "engine/document/document.h"

#include <QString>

#include <memory>

namespace kel::test {

struct DocumentOptions {
    bool allowCopy = false;
    bool allowPrint = false;
    bool allowSavePicture = false;
    bool allowCopyData = false;
    qint32 pointsScale = 0;
    qint32 indexFlags = 0;
    qint32 minimumSelection = 0;
    qint32 revision = 9;
    bool rowComments = false;
    QStringList categoryHeadings; ///< one category question per heading
    qint32 rows = 4;
};

/// One overview question with two alternatives (0 and `pointsScale` points)
/// answered 0,1,0,1,...; then one category question per heading, answered 0.
inline std::unique_ptr<Document> makeDocument(const DocumentOptions &recipe)
{
    auto doc = std::make_unique<Document>();
    doc->revision = recipe.revision;
    doc->compatibleRevision = std::min(recipe.revision, 9);
    doc->textPool << QStringLiteral("Test survey") << QStringLiteral("Everyone");
    DocumentProperties &p = doc->properties;
    p.projectName = 0;
    p.totalText = 1;
    p.allowCopy = recipe.allowCopy;
    p.allowPrint = recipe.allowPrint;
    p.allowSavePicture = recipe.allowSavePicture;
    p.allowCopyData = recipe.allowCopyData;
    p.pointsScale = recipe.pointsScale;
    p.indexFlags = recipe.indexFlags;
    p.minimumSelection = recipe.minimumSelection;
    p.hasRowComments = recipe.rowComments;
    if (recipe.rowComments)
        doc->rowComments.push_back(RowComment{0, -1});

    auto addQuestion = [&](const QString &heading, bool category, qint32 points1) {
        Question q;
        q.code = QStringLiteral("Q%1").arg(doc->questions.size() + 1);
        q.heading = heading;
        q.isCategory = category;
        q.inOverview = !category;
        q.inTotalIndex = !category;
        q.firstAlternative = qint32(doc->alternatives.size());
        q.alternativeCount = 2;
        Alternative a0, a1;
        a0.text = QStringLiteral("No");
        a1.text = QStringLiteral("Yes");
        a0.points = recipe.pointsScale > 0 ? 0 : -1;
        a1.points = recipe.pointsScale > 0 ? points1 : -1;
        doc->alternatives.push_back(a0);
        doc->alternatives.push_back(a1);
        doc->questions.push_back(q);
    };
    addQuestion(QStringLiteral("Satisfaction"), false, recipe.pointsScale);
    for (const QString &h : recipe.categoryHeadings)
        addQuestion(h, true, 0);

    const qint32 columns = qint32(doc->questions.size());
    std::vector<quint8> cells(std::size_t(columns) * std::size_t(recipe.rows), 0);
    for (qint32 r = 0; r < recipe.rows; ++r)
        cells[std::size_t(r)] = quint8(r % 2);
    doc->answers = AnswerMatrix(CellType::U8, recipe.rows, columns, std::move(cells));
    deriveQuestionLists(*doc);
    return doc;
}

} // namespace kel::test
