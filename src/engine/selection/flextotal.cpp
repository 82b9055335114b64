// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/selection/flextotal.h"

#include "engine/document/documentlanguage.h"
#include "engine/indexes/blockindex.h"

#include <algorithm>

namespace kel {

namespace {

qint32 flexOptionCount(const Document &doc)
{
    if (doc.flexCategory < 0 || doc.flexCategory >= qint32(doc.questions.size()))
        return 0;
    return doc.questions[std::size_t(doc.flexCategory)].alternativeCount;
}

} // namespace

QString joinWithAmpersand(const QStringList &names)
{
    if (names.isEmpty())
        return QString();
    if (names.size() == 1)
        return names.front();
    return names.mid(0, names.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" & ") + names.back();
}

// The flex-total indexes mirror the total indexes while the flex total is
// the whole document; nothing needs recomputing then.
void FlexTotal::copyTotalIndexes(const Document &doc, const BlockCatalogue &catalogue)
{
    mTotalIndex = doc.properties.totalIndex;
    mQuestionIndexes.resize(doc.questions.size());
    for (std::size_t q = 0; q < doc.questions.size(); ++q)
        mQuestionIndexes[q] = doc.questions[q].totalIndex;
    mBlockIndexes.resize(catalogue.blocks.size());
    for (std::size_t b = 0; b < catalogue.blocks.size(); ++b)
        mBlockIndexes[b] = catalogue.blocks[b].totalIndex;
}

void FlexTotal::reset(const Document &doc, const BlockCatalogue &catalogue)
{
    mOptions.assign(std::size_t(qMax(flexOptionCount(doc), 1)), true);
    mBasedOnCurrentSelection = false;
    mRows = allRows(doc);
    mText = doc.text(doc.properties.totalText);
    copyTotalIndexes(doc, catalogue);
}

void FlexTotal::setFlexTotal(const Document &doc, const BlockCatalogue &catalogue, const std::vector<bool> &selected,
                             bool baseOnCurrentSelection)
{
    mOptions = selected;
    mBasedOnCurrentSelection = baseOnCurrentSelection;

    if (std::all_of(selected.begin(), selected.end(), [](bool b) { return b; })) {
        mText = doc.text(doc.properties.totalText);
        mRows = allRows(doc);
        copyTotalIndexes(doc, catalogue);
        return;
    }

    const qint32 q = doc.flexCategory;
    const bool hasFlexQuestion = q >= 0 && q < qint32(doc.questions.size());
    QStringList names;
    if (hasFlexQuestion) {
        const Question &question = doc.questions[std::size_t(q)];
        const qint32 last = qMin(question.alternativeCount, qint32(selected.size())) - 1;
        for (qint32 o = last; o >= firstVisibleOption(doc); --o)
            if (selected[std::size_t(o)])
                names.prepend(doc.alternatives[std::size_t(question.firstAlternative + o)].shortText);
        mText = question.selectionLabel + QLatin1Char(' ') + joinWithAmpersand(names);
    } else {
        mText = joinWithAmpersand(names);
    }
    if (baseOnCurrentSelection) {
        mText.prepend(documentIsSwedish(doc) ? QStringLiteral("Aktuellt urval men ")
                                             : QStringLiteral("Current selection but "));
        return; // the rows follow at the next overview build
    }

    mRows.clear();
    if (hasFlexQuestion) {
        doc.answers.visitColumn(q, [&](const auto *column) {
            for (qint32 r = 0; r < doc.rowCount(); ++r)
                if (option(qint32(column[r])))
                    mRows.push_back(r);
        });
    }
    calculateFlexTotalIndexes(doc, catalogue);
}

void FlexTotal::buildFlexTotalFromSelection(const Document &doc, const BlockCatalogue &catalogue,
                                            const SelectionMatrix &selection)
{
    SelectionMatrix test = selection;
    const qint32 categories = qMin(qint32(doc.categories.size()), test.categoryCount());
    for (qint32 c = 0; c < categories; ++c) {
        if (doc.categories[std::size_t(c)] != doc.flexCategory)
            continue;
        for (qint32 o = 0; o < test.optionCount(); ++o)
            test.set(c, o, option(o));
    }
    mRows = selectedRows(doc, test);
    calculateFlexTotalIndexes(doc, catalogue);
}

void FlexTotal::calculateFlexTotalIndexes(const Document &doc, const BlockCatalogue &catalogue)
{
    // Without points the indexes are whatever the file holds, whatever the
    // flex total.
    if (doc.properties.pointsScale < 1) {
        copyTotalIndexes(doc, catalogue);
        return;
    }
    mQuestionIndexes.assign(doc.questions.size(), -1.0);
    mBlockIndexes.assign(catalogue.blocks.size(), -1.0);
    const bool hidden = mRows.empty() || rowCount() < doc.properties.minimumGraphSelection;
    if (hidden) {
        mTotalIndex = -1.0;
        return;
    }
    mTotalIndex = calculateTotalIndex(doc, mRows);
    for (std::size_t q = 0; q < doc.questions.size(); ++q)
        mQuestionIndexes[q] = calculateColumnsIndex(doc, QuestionList{qint32(q)}, mRows);
    for (std::size_t b = 0; b < catalogue.blocks.size(); ++b)
        mBlockIndexes[b] = calculateBlockIndex(doc, catalogue, qint32(b), mRows);
}

void FlexTotal::updateUserBlockIndexes(const Document &doc, const BlockCatalogue &catalogue)
{
    const std::size_t documentBlocks = std::size_t(catalogue.documentBlockCount());
    mBlockIndexes.resize(catalogue.blocks.size(), -1.0);
    for (std::size_t b = documentBlocks; b < catalogue.blocks.size(); ++b)
        mBlockIndexes[b] = doc.properties.pointsScale > 0
            ? calculateBlockFlexTotalIndex(doc, catalogue, qint32(b), mRows)
            : catalogue.blocks[b].totalIndex;
}

} // namespace kel
