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

// The flex-total indexes mirror the total indexes while the flex total is
// the whole document; nothing needs recomputing then.
void copyTotalIndexes(Document &doc)
{
    if (doc.properties.pointsScale < 1)
        return;
    doc.properties.flexTotalIndex = doc.properties.totalIndex;
    for (Question &q : doc.questions)
        q.flexTotalIndex = q.totalIndex;
    for (Block &b : doc.blocks)
        b.flexTotalIndex = b.totalIndex;
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

void FlexTotal::reset(Document &doc)
{
    mOptions.assign(std::size_t(qMax(flexOptionCount(doc), 1)), true);
    mBasedOnCurrentSelection = false;
    mRows = allRows(doc);
    mText = doc.text(doc.properties.totalText);
    copyTotalIndexes(doc);
}

void FlexTotal::setFlexTotal(Document &doc, const std::vector<bool> &selected, bool baseOnCurrentSelection)
{
    mOptions = selected;
    mBasedOnCurrentSelection = baseOnCurrentSelection;

    if (std::all_of(selected.begin(), selected.end(), [](bool b) { return b; })) {
        mText = doc.text(doc.properties.totalText);
        mRows = allRows(doc);
        copyTotalIndexes(doc);
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
    calculateFlexTotalIndexes(doc);
}

void FlexTotal::buildFlexTotalFromSelection(Document &doc, const SelectionMatrix &selection)
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
    calculateFlexTotalIndexes(doc);
}

void FlexTotal::calculateFlexTotalIndexes(Document &doc) const
{
    if (doc.properties.pointsScale < 1)
        return;
    const bool hidden = mRows.empty() || rowCount() < doc.properties.minimumGraphSelection;
    if (hidden) {
        doc.properties.flexTotalIndex = -1.0;
        for (Question &q : doc.questions)
            q.flexTotalIndex = -1.0;
        for (Block &b : doc.blocks)
            b.flexTotalIndex = -1.0;
        return;
    }
    doc.properties.flexTotalIndex = calculateTotalIndex(doc, mRows);
    for (std::size_t q = 0; q < doc.questions.size(); ++q)
        doc.questions[q].flexTotalIndex = calculateColumnsIndex(doc, QuestionList{qint32(q)}, mRows);
    for (std::size_t b = 0; b < doc.blocks.size(); ++b)
        doc.blocks[b].flexTotalIndex = calculateBlockIndex(doc, qint32(b), mRows);
}

} // namespace kel
