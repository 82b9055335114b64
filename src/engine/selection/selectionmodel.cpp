// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/selection/selectionmodel.h"

#include "engine/selection/showdecision.h"

namespace kel {

void SelectionModel::setUpDimensions(const Document &doc)
{
    mCategories = qint32(doc.categories.size());
    mFirstVisible = firstVisibleOption(doc);
    mSelected = fullSelection(doc);
    mApplied = mSelected;
    mComplementCheck = SelectionMatrix(mSelected.categoryCount(), mSelected.optionCount(), false);
    mOptionCounts.clear();
    for (qint32 c = 0; c < mCategories; ++c) {
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(c)])];
        mOptionCounts.push_back(q.alternativeCount);
        for (qint32 o = 0; o < q.alternativeCount; ++o)
            mComplementCheck.set(c, o, doc.alternatives[std::size_t(q.firstAlternative + o)].complementCheck);
    }
    mMinimumComplement = doc.properties.minimumComplementSelection;
    mMinimumGraph = doc.properties.minimumGraphSelection;
    mShowEnabled = true;
    mShowEnabledChanged = false;

    qint32 flexOptions = 0;
    if (doc.flexCategory >= 0 && doc.flexCategory < qint32(doc.questions.size()))
        flexOptions = doc.questions[std::size_t(doc.flexCategory)].alternativeCount;
    mFlexVisible = flexOptions > 0;
    mFlexOptions.assign(std::size_t(qMax(flexOptions, 1)), true);
    mAppliedFlexOptions = mFlexOptions;
    mFlexBased = false;
    mAppliedFlexBased = false;
}

void SelectionModel::setCategoryChecked(qint32 category, bool checked)
{
    for (qint32 o = mFirstVisible; o < mSelected.optionCount(); ++o)
        mSelected.set(category, o, checked);
}

void SelectionModel::setOptionChecked(qint32 category, qint32 option, bool checked)
{
    if (option < mFirstVisible)
        return;
    mSelected.set(category, option, checked);
}

bool SelectionModel::isCategoryChecked(qint32 category) const
{
    if (category < 0 || category >= mCategories)
        return false;
    for (qint32 o = mFirstVisible; o < mOptionCounts[std::size_t(category)]; ++o)
        if (!mSelected.at(category, o))
            return false;
    return true;
}

RecountResult SelectionModel::recount(const Document &doc)
{
    RecountResult result;
    result.found = CountMatrix(mSelected.categoryCount(), mSelected.optionCount());
    result.count = countOptions(doc, mSelected, result.found);
    result.shaded.assign(std::size_t(mCategories), false);
    result.blocked.assign(std::size_t(mCategories), false);
    bool anyBlocked = false;
    for (qint32 c = 0; c < mCategories; ++c) {
        bool shaded = false;
        for (qint32 o = 0; o < mSelected.optionCount() && !shaded; ++o) {
            const qint32 n = result.found.at(c, o);
            shaded = mComplementCheck.at(c, o) && n > 0 && n < mMinimumComplement;
        }
        result.shaded[std::size_t(c)] = shaded;
        result.blocked[std::size_t(c)] = shaded && !isCategoryChecked(c);
        anyBlocked = anyBlocked || result.blocked[std::size_t(c)];
    }
    result.flexShaded = mFlexVisible && flexTotalBlocked(doc, mSelected, mFlexOptions, mFlexBased);
    result.showEnabled = !anyBlocked && result.count >= mMinimumGraph;
    mShowEnabledChanged = result.showEnabled != mShowEnabled;
    mShowEnabled = result.showEnabled;
    return result;
}

void SelectionModel::setFlexOption(qint32 option, bool selected)
{
    if (option >= 0 && option < qint32(mFlexOptions.size()))
        mFlexOptions[std::size_t(option)] = selected;
}

bool SelectionModel::hasPendingChanges() const
{
    if (mFlexVisible && (mFlexBased != mAppliedFlexBased || mFlexOptions != mAppliedFlexOptions))
        return true;
    return !(mSelected == mApplied);
}

bool SelectionModel::applyShow()
{
    bool flexChanged = false;
    if (mFlexVisible && (mFlexBased != mAppliedFlexBased || mFlexOptions != mAppliedFlexOptions)) {
        mAppliedFlexBased = mFlexBased;
        mAppliedFlexOptions = mFlexOptions;
        flexChanged = true;
    }
    mApplied = mSelected;
    return flexChanged;
}

} // namespace kel
