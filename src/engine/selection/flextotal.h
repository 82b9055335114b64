// SPDX-License-Identifier: GPL-3.0-or-later
// The flex total: the second set of respondents that the selection is
// compared with, its name, and the flex-total indexes kept in the document.
#pragma once

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
    void reset(Document &doc);

    /// `selected` holds one flag per option of the flex category. With every
    /// flag set the flex total is the whole document again; otherwise it is
    /// the rows answering a ticked option, or (based on the current
    /// selection) rebuilt at the next overview build.
    void setFlexTotal(Document &doc, const std::vector<bool> &selected, bool baseOnCurrentSelection);

    /// The rows matching `selection` in every category, except that the flex
    /// category (when it is a navigator category) is tested with the flex options.
    void buildFlexTotalFromSelection(Document &doc, const SelectionMatrix &selection);

    /// Recomputes every flex-total index from the flex rows; all -1 when the
    /// flex total is too small to be shown.
    void calculateFlexTotalIndexes(Document &doc) const;

    const std::vector<bool> &options() const { return mOptions; }
    /// False for an option the flags do not cover.
    bool option(qint32 o) const { return o >= 0 && o < qint32(mOptions.size()) && mOptions[std::size_t(o)]; }
    bool basedOnCurrentSelection() const { return mBasedOnCurrentSelection; }
    const RowList &rows() const { return mRows; }
    qint32 rowCount() const { return qint32(mRows.size()); }
    const QString &text() const { return mText; }

private:
    std::vector<bool> mOptions;
    bool mBasedOnCurrentSelection = false;
    RowList mRows;
    QString mText;
};

/// "A", "A & B", "A, B & C".
QString joinWithAmpersand(const QStringList &names);

} // namespace kel
