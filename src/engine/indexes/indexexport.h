// SPDX-License-Identifier: GPL-3.0-or-later
// The index table copied to the clipboard: sub-selections of the current
// selection crossed with index items, masked by the privacy minimum, as
// tab-separated text. The dialogs and the progress window drive this.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/indexes/columnindex.h"

#include <QLocale>
#include <QString>

#include <array>
#include <functional>
#include <vector>

namespace kel {

/// The export's choices; one record lives with the open document.
struct IndexExportOptions {
    enum IndexFor { ForTotal = 0, ForBlocks = 1, ForSubBlocks = 2, ForQuestions = 3, ForUserBlocks = 4 };

    bool subSelTotal = false;
    std::vector<qint32> subSelCategories; ///< question numbers, in list order
    bool showNumberOfAnswers = false;
    std::array<bool, 5> indexFor{};
    bool showFullQuestionText = false;
    bool subSelectionsInColumns = false;

    /// Back to nothing chosen, sub-selections in rows (a document was closed or opened).
    void reset() { *this = IndexExportOptions(); }
    /// The setup dialog's OK rule: some sub-selection and some index box.
    bool canExport() const;
};

/// Cell markers of the value matrix.
inline constexpr double NoIndexValue = -1.0;
inline constexpr double MaskedIndexValue = -2.0;

/// Which groups of one category a table masks, given their sizes: every
/// group of 0 < size < `minimum`, and then, as long as the masked groups
/// could be recovered from the selection's total by subtraction (only one
/// masked, or together fewer than `minimum`), the smallest group still
/// shown as well. Empty groups show nothing and are never masked.
std::vector<bool> maskedGroups(const std::vector<qint32> &sizes, qint32 minimum);

struct SubSelection {
    QString name;
    RowList rows;
    qint32 category = -1; ///< the question whose option forms the group; -1 for the total
};

struct IndexItem {
    enum Kind { Total, Block, Question };
    Kind kind = Total;
    qint32 number = -1; ///< block or question number
    QString name;
};

/// The sub-selections of `currentRows`, in export order. Rows answering the
/// hidden no-answer alternative belong to no category group.
std::vector<SubSelection> buildSubSelections(const Document &doc, const IndexExportOptions &options,
                                             const RowList &currentRows);

/// The index items, in export order.
std::vector<IndexItem> buildIndexItems(const Document &doc, const BlockCatalogue &catalogue,
                                       const IndexExportOptions &options);

/// Value matrix, sub-selection-major: values[s * items + i]. Groups below
/// the minimum graph selection are masked, and with them, per category, as
/// many of the smallest other groups as keep the masked ones from being
/// worked out from the selection's total (see maskedGroups).
/// `progress` is called after each item with the number done; returning
/// false cancels, and the result is then empty.
std::vector<double> calculateIndexValues(const Document &doc, const BlockCatalogue &catalogue,
                                         const std::vector<SubSelection> &subSelections,
                                         const std::vector<IndexItem> &items,
                                         const std::function<bool(qint32)> &progress = {});

/// The clipboard text: TAB between cells, CR LF between lines, no final break.
QString formatIndexTable(const Document &doc, const QString &selectionText, const IndexExportOptions &options,
                         const std::vector<SubSelection> &subSelections, const std::vector<IndexItem> &items,
                         const std::vector<double> &values, const QLocale &locale);

/// All three steps; empty when cancelled.
QString exportIndexes(const Document &doc, const BlockCatalogue &catalogue, const QString &selectionText,
                      const RowList &currentRows, const IndexExportOptions &options, const QLocale &locale,
                      const std::function<bool(qint32)> &progress = {});

} // namespace kel
