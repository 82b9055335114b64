// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/overview/overviewtext.h"

#include "engine/overview/sheetlayout.h"

namespace kel {

namespace {

const QString LineBreak = QStringLiteral("\r\n");

// The alternative answered in (row, question), or nullptr when the cell
// cannot be read or names no alternative of the question.
const Alternative *answeredAlternative(const Document &doc, qint32 row, qint32 question)
{
    if (!isReadableColumn(doc, question) || row < 0 || row >= doc.rowCount())
        return nullptr;
    const Question &q = doc.questions[std::size_t(question)];
    const qint32 answer = doc.getData(row, question);
    if (answer < 0 || answer >= q.alternativeCount)
        return nullptr;
    const qint64 index = qint64(q.firstAlternative) + answer;
    if (index < 0 || index >= qint64(doc.alternatives.size()))
        return nullptr;
    return &doc.alternatives[std::size_t(index)];
}

} // namespace

QString overviewDataText(const Document &doc, const std::vector<qint32> &rows, const std::vector<qint32> &columns)
{
    QString text;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        if (k > 0)
            text += LineBreak;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            if (c > 0)
                text += QLatin1Char('\t');
            if (const Alternative *a = answeredAlternative(doc, rows[k], columns[c]))
                text += a->label;
        }
    }
    return text;
}

QString rowAnswersText(const Document &doc, qint32 row, const std::vector<qint32> &columns)
{
    if (row < 0 || row >= doc.rowCount())
        return QString();
    QStringList lines;
    qint32 previousBlock = -1;
    for (qint32 question : columns) {
        if (question < 0 || std::size_t(question) >= doc.questions.size())
            continue;
        const Question &q = doc.questions[std::size_t(question)];
        if (q.block != previousBlock && q.block >= 0 && std::size_t(q.block) < doc.blocks.size())
            lines << doc.blocks[std::size_t(q.block)].name;
        previousBlock = q.block;
        QString line = q.code + QStringLiteral(". ") + q.text + QLatin1Char('\t');
        if (const Alternative *a = answeredAlternative(doc, row, question))
            line += a->shortText;
        if (doc.hasCellComments && isReadableColumn(doc, question)) {
            const qint32 comment = doc.cellComment(row, question);
            if (comment != -1) {
                QString commentText = doc.text(comment);
                commentText.replace(LineBreak, QStringLiteral(", "));
                line += QLatin1Char('\t') + commentText;
            }
        }
        lines << line;
    }
    return lines.join(LineBreak);
}

} // namespace kel
