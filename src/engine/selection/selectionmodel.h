// SPDX-License-Identifier: GPL-3.0-or-later
// The navigator's state without its window: the ticked options as edited and
// as last applied, the flex options with their applied copies, and the
// recount that decides shading, blocking and whether Show may be pressed.
#pragma once

#include "engine/document/document.h"
#include "engine/selection/counting.h"
#include "engine/selection/selectionmatrix.h"

#include <QLocale>
#include <QString>

#include <vector>

namespace kel {

struct RecountResult {
    qint32 count = 0;          ///< respondents in the edited selection
    CountMatrix found;         ///< what each option would leave (countOptions)
    std::vector<bool> shaded;  ///< per category: an option is a too small complement
    std::vector<bool> blocked; ///< per category: shaded and restricted
    /// The flex options as edited leave out a too small group: the flex list
    /// is shaded and Show refuses them with a message.
    bool flexShaded = false;
    bool showEnabled = false;
};

class SelectionModel
{
public:
    /// Sizes everything for `doc` (at least 1 x 1), every option ticked and
    /// applied, the flex options all ticked; copies the complement flags.
    void setUpDimensions(const Document &doc);

    const SelectionMatrix &selected() const { return mSelected; }
    const SelectionMatrix &appliedSelection() const { return mApplied; }
    /// complement-check flag of (category, option); false beyond a category's options.
    bool complementCheck(qint32 category, qint32 option) const { return mComplementCheck.at(category, option); }

    /// A click on a category's root: every visible option follows it.
    void setCategoryChecked(qint32 category, bool checked);
    /// A click on one option. The hidden no-answer option stays ticked.
    void setOptionChecked(qint32 category, qint32 option, bool checked);
    /// A root is checked exactly when every visible option of its category is.
    bool isCategoryChecked(qint32 category) const;

    /// Counts the edited selection and applies the thresholds. Remembers
    /// whether Show is enabled; `showEnabledChanged` tells the window whether
    /// the button needs updating.
    RecountResult recount(const Document &doc);
    bool showEnabled() const { return mShowEnabled; }
    bool showEnabledChanged() const { return mShowEnabledChanged; }

    // Flex options as edited in the navigator (visible only with a flex category).
    bool flexVisible() const { return mFlexVisible; }
    const std::vector<bool> &flexOptions() const { return mFlexOptions; }
    void setFlexOption(qint32 option, bool selected);
    bool flexBasedOnCurrentSelection() const { return mFlexBased; }
    void setFlexBasedOnCurrentSelection(bool based) { mFlexBased = based; }
    const std::vector<bool> &appliedFlexOptions() const { return mAppliedFlexOptions; }
    bool appliedFlexBasedOnCurrentSelection() const { return mAppliedFlexBased; }

    /// Whether the navigator's edits differ from what Show applied last.
    bool hasPendingChanges() const;

    /// Show's bookkeeping: applies the edits and tells whether the flex total
    /// must be set anew (then call FlexTotal::setFlexTotal with flexOptions()
    /// and flexBasedOnCurrentSelection() before building the overview).
    bool applyShow();

private:
    qint32 mCategories = 0;
    qint32 mFirstVisible = 0;
    std::vector<qint32> mOptionCounts; // alternatives per category
    SelectionMatrix mSelected;
    SelectionMatrix mApplied;
    SelectionMatrix mComplementCheck;
    qint32 mMinimumComplement = 0;
    qint32 mMinimumGraph = 0;
    bool mShowEnabled = true;
    bool mShowEnabledChanged = false;
    bool mFlexVisible = false;
    std::vector<bool> mFlexOptions{true};
    std::vector<bool> mAppliedFlexOptions{true};
    bool mFlexBased = false;
    bool mAppliedFlexBased = false;
};

} // namespace kel
