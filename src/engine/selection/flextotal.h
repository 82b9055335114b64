// SPDX-License-Identifier: GPL-3.0-or-later
// The flex total: the second set of respondents that the selection is
// compared with, its name, and its indexes. The indexes live here, not in
// the document, so that any number of flex totals (the viewer's, each unit
// of a report, each line of `kel batch`) can share one read document.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/document/document.h"
#include "engine/selection/counting.h"
#include "engine/selection/selectionmatrix.h"

#include <QString>

#include <vector>

namespace kel {

class FlexTotal
{
public:
    /// The state after opening: every option, every row, the total text, and
    /// the flex-total indexes equal to the total indexes.
    void reset(const Document &doc, const BlockCatalogue &catalogue);

    /// `selected` holds one flag per option of the flex category. With every
    /// flag set the flex total is the whole document again; otherwise it is
    /// the rows answering a ticked option, or (based on the current
    /// selection) rebuilt at the next overview build.
    void setFlexTotal(const Document &doc, const BlockCatalogue &catalogue, const std::vector<bool> &selected,
                      bool baseOnCurrentSelection);

    /// The rows matching `selection` in every category, except that the flex
    /// category (when it is a navigator category) is tested with the flex options.
    void buildFlexTotalFromSelection(const Document &doc, const BlockCatalogue &catalogue,
                                     const SelectionMatrix &selection);

    /// Recomputes every flex-total index from the flex rows; all -1 when the
    /// flex total is too small to be shown. Without points every flex-total
    /// index is the total index.
    void calculateFlexTotalIndexes(const Document &doc, const BlockCatalogue &catalogue);

    /// After the user's blocks changed: the document's blocks keep their
    /// values, the user's are computed over the flex rows.
    void updateUserBlockIndexes(const Document &doc, const BlockCatalogue &catalogue);

    const std::vector<bool> &options() const { return mOptions; }
    /// False for an option the flags do not cover.
    bool option(qint32 o) const { return o >= 0 && o < qint32(mOptions.size()) && mOptions[std::size_t(o)]; }
    bool basedOnCurrentSelection() const { return mBasedOnCurrentSelection; }
    const RowList &rows() const { return mRows; }
    qint32 rowCount() const { return qint32(mRows.size()); }
    const QString &text() const { return mText; }

    /// The flex-total index of the whole document, of question `question`,
    /// of block `block` of the catalogue; -1 for none or a number out of range.
    double totalIndex() const { return mTotalIndex; }
    double questionIndex(qint32 question) const { return valueAt(mQuestionIndexes, question); }
    double blockIndex(qint32 block) const { return valueAt(mBlockIndexes, block); }

private:
    static double valueAt(const std::vector<double> &values, qint32 i)
    {
        return i >= 0 && std::size_t(i) < values.size() ? values[std::size_t(i)] : -1.0;
    }
    void copyTotalIndexes(const Document &doc, const BlockCatalogue &catalogue);

    std::vector<bool> mOptions;
    bool mBasedOnCurrentSelection = false;
    RowList mRows;
    QString mText;
    double mTotalIndex = -1.0;
    std::vector<double> mQuestionIndexes;
    std::vector<double> mBlockIndexes;
};

/// "A", "A & B", "A, B & C".
QString joinWithAmpersand(const QStringList &names);

} // namespace kel
