// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelwriter.h"

#include <algorithm>

namespace kel::writer {

SurveyBuilder::SurveyBuilder(qint32 rowCount, qint32 cellType) : mRows(std::max(rowCount, 0)), mCellType(cellType)
{
}

void SurveyBuilder::setRowCount(qint32 rows)
{
    mRows = std::max(rows, 0);
    for (auto &column : mColumns)
        column.resize(std::size_t(mRows), 0);
}

qint32 SurveyBuilder::addBlock(const BlockSpec &recipe)
{
    BlockRecord r;
    r.code = text(recipe.code);
    r.name = text(recipe.name);
    r.text = text(recipe.text.isEmpty() ? recipe.name : recipe.text);
    r.memberRule = fileBool(recipe.memberRule);
    r.linkedBlock = recipe.linkedBlock;
    mFile.blocks.push_back(r);
    mBlockGraphFlags.push_back(recipe.graphFlags);
    return qint32(mFile.blocks.size()) - 1;
}

namespace {

QuestionRecord questionRecord(SurveyBuilder &b, const QuestionSpec &recipe)
{
    QuestionRecord r;
    r.code = b.text(recipe.code);
    r.heading = b.text(recipe.heading);
    r.text = b.text(recipe.text.isEmpty() ? recipe.heading : recipe.text);
    r.selectionLabel = b.text(recipe.selectionLabel.isEmpty() ? recipe.heading : recipe.selectionLabel);
    r.sheetColour = recipe.sheetColour;
    r.block = recipe.block;
    r.subBlock = recipe.subBlock;
    r.isCategory = fileBool(recipe.isCategory);
    r.inOverview = fileBool(recipe.inOverview);
    r.inTotalIndex = fileBool(recipe.inTotalIndex);
    r.isFlexCategory = fileBool(recipe.isFlexCategory);
    r.rankingWeight = recipe.rankingWeight;
    return r;
}

} // namespace

qint32 SurveyBuilder::addQuestion(const QuestionSpec &recipe, const QList<AlternativeSpec> &alternatives)
{
    QuestionRecord r = questionRecord(*this, recipe);
    r.firstAlternative = qint32(mFile.alternatives.size());
    r.alternativeCount = qint32(alternatives.size());
    for (const AlternativeSpec &a : alternatives) {
        AlternativeRecord ar;
        ar.label = text(a.label);
        ar.text = text(a.text);
        ar.shortText = text(a.shortText.isEmpty() ? a.text : a.shortText);
        ar.sheetColour = a.colour;
        ar.graphColour = a.graphColour.value_or(a.colour);
        ar.points = a.points;
        ar.sortValue = a.sortValue.value_or(a.points);
        ar.graphAttribute = a.graphAttribute;
        ar.complementCheck = fileBool(a.complementCheck);
        ar.countsForPrivacy = fileBool(a.countsForPrivacy);
        mFile.alternatives.push_back(ar);
    }
    mFile.questions.push_back(r);
    mGraphFlags.push_back(recipe.graphFlags);
    mColumns.emplace_back(std::size_t(mRows), 0);
    return qint32(mFile.questions.size()) - 1;
}

qint32 SurveyBuilder::addQuestionLike(const QuestionSpec &recipe, qint32 sameAs)
{
    QuestionRecord r = questionRecord(*this, recipe);
    r.firstAlternative = mFile.questions.at(std::size_t(sameAs)).firstAlternative;
    r.alternativeCount = mFile.questions.at(std::size_t(sameAs)).alternativeCount;
    mFile.questions.push_back(r);
    mGraphFlags.push_back(recipe.graphFlags);
    mColumns.emplace_back(std::size_t(mRows), 0);
    return qint32(mFile.questions.size()) - 1;
}

void SurveyBuilder::addBlockItem(qint32 block, qint32 question)
{
    mFile.blockItems.push_back({block, question});
}

void SurveyBuilder::setAnswer(qint32 row, qint32 question, qint32 value)
{
    mColumns.at(std::size_t(question)).at(std::size_t(row)) = value;
}

qint32 SurveyBuilder::answer(qint32 row, qint32 question) const
{
    return mColumns.at(std::size_t(question)).at(std::size_t(row));
}

void SurveyBuilder::setAnswers(qint32 question, const std::vector<qint32> &values)
{
    auto &column = mColumns.at(std::size_t(question));
    std::copy_n(values.begin(), std::min(values.size(), column.size()), column.begin());
}

void SurveyBuilder::setRowComment(qint32 row, const QString &comment)
{
    mRowComments[row] = text(comment);
}

void SurveyBuilder::setCellComment(qint32 row, qint32 question, const QString &comment)
{
    mCellComments[{row, question}] = text(comment);
}

std::vector<qint32> SurveyBuilder::blockMembers(qint32 b) const
{
    std::vector<qint32> members;
    if (b < 0 || b >= qint32(mFile.blocks.size()))
        return members;
    if (mFile.blocks[std::size_t(b)].memberRule == FileFalse) {
        for (const BlockItemRecord &it : mFile.blockItems)
            if (it.block == b)
                members.push_back(it.question);
        return members;
    }
    // A block pools the questions that name it as their block; a sub-block,
    // which no question names so, the questions that name it as sub-block.
    for (qint32 q = 0; q < qint32(mFile.questions.size()); ++q)
        if (mFile.questions[std::size_t(q)].inOverview && mFile.questions[std::size_t(q)].block == b)
            members.push_back(q);
    if (members.empty())
        for (qint32 q = 0; q < qint32(mFile.questions.size()); ++q)
            if (mFile.questions[std::size_t(q)].inOverview && mFile.questions[std::size_t(q)].subBlock == b)
                members.push_back(q);
    return members;
}

double SurveyBuilder::poolIndex(const std::vector<qint32> &questions) const
{
    if (mFile.header.pointsScale < 1)
        return -1.0;
    qint64 sum = 0;
    qint64 n = 0;
    for (qint32 q : questions) {
        if (q < 0 || q >= qint32(mFile.questions.size()))
            continue;
        const QuestionRecord &question = mFile.questions[std::size_t(q)];
        for (qint32 value : mColumns[std::size_t(q)]) {
            if (value < 0 || value >= question.alternativeCount)
                continue;
            const qint32 p = mFile.alternatives.at(std::size_t(question.firstAlternative + value)).points;
            if (p != -1) {
                sum += p;
                ++n;
            }
        }
    }
    return n > 0 ? double(sum) / double(n) / double(mFile.header.pointsScale) : -1.0;
}

KelFile SurveyBuilder::build() const
{
    KelFile f = mFile;
    const auto questions = qint32(f.questions.size());
    if (mRows > 0 && questions > 0) {
        f.answers = AnswerGrid(mCellType, mRows, questions);
        for (qint32 q = 0; q < questions; ++q)
            for (qint32 r = 0; r < mRows; ++r)
                f.answers.set(r, q, mColumns[std::size_t(q)][std::size_t(r)]);
    }
    if (!mRowComments.empty() && f.rowComments.empty()) {
        f.rowComments.assign(std::size_t(mRows), RowCommentRecord{});
        for (const auto &[row, textIndex] : mRowComments)
            if (row >= 0 && row < mRows)
                f.rowComments[std::size_t(row)].comment = textIndex;
        f.header.hasRowComments = FileTrue;
    }
    if (!mCellComments.empty() && !f.answers.isEmpty())
        for (const auto &[cell, textIndex] : mCellComments)
            f.setCellComment(cell.first, cell.second, textIndex);

    const bool indexes = f.header.pointsScale > 0;
    if (mComputeIndexes) {
        qint32 maxPoints = -1;
        for (const AlternativeRecord &a : f.alternatives)
            maxPoints = std::max(maxPoints, a.points);
        f.header.maxPoints = maxPoints;
        f.header.indexFlags = indexes ? 0x100 : 0;
        if (indexes) {
            std::vector<qint32> total;
            for (qint32 q = 0; q < questions; ++q) {
                f.questions[std::size_t(q)].totalIndex = poolIndex({q});
                if (f.questions[std::size_t(q)].inOverview && f.questions[std::size_t(q)].inTotalIndex)
                    total.push_back(q);
            }
            for (qint32 b = 0; b < qint32(f.blocks.size()); ++b) {
                const std::vector<qint32> members = blockMembers(b);
                f.blocks[std::size_t(b)].totalIndex = members.empty() ? -1.0 : poolIndex(members);
            }
            f.header.totalIndex = total.empty() ? -1.0 : poolIndex(total);
        }
    }
    auto graphFlags = [&](const std::optional<qint32> &given, double totalIndex) {
        return given.value_or(3 | ((indexes && totalIndex != -1.0) ? 0x100 : 0));
    };
    for (qint32 q = 0; q < questions; ++q)
        f.questions[std::size_t(q)].graphFlags =
            graphFlags(mGraphFlags[std::size_t(q)], f.questions[std::size_t(q)].totalIndex);
    for (std::size_t b = 0; b < f.blocks.size(); ++b)
        f.blocks[b].graphFlags = graphFlags(mBlockGraphFlags[b], f.blocks[b].totalIndex);
    return f;
}

} // namespace kel::writer
