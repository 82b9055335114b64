// SPDX-License-Identifier: GPL-3.0-or-later
// Building the overview's content for a selection: the selection's checks
// and text, the refusals, the row list and its order. The window draws the
// result; nothing here touches a widget.
#pragma once

#include "engine/document/document.h"
#include "engine/selection/counting.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmodel.h"
#include "engine/selection/showdecision.h"
#include "engine/selection/selectionmatrix.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace kel {

/// Row order codes of the document and of the user setting.
enum RowOrder : qint32 { RowOrderOriginal = 0, RowOrderRandom = 1, RowOrderRandomPerColumn = 2 };

/// The uniform single-precision generator behind the random orders. Seeded
/// once (from the clock by the main window, from a fixed seed in tests).
class RowRandom
{
public:
    explicit RowRandom(quint64 seed) : mState(seed) { }
    /// Uniform in [0, 1), single precision (24 random bits).
    float rnd() { return float(next() >> 40) * (1.0f / 16777216.0f); }

private:
    // splitmix64: one add and three multiply-xor steps per value, which
    // keeps shuffling 200,000 rows well below a millisecond of generator time.
    quint64 next()
    {
        quint64 z = (mState += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

    quint64 mState;
};

/// Rounds to the nearest integer, halves to the even one.
qint32 roundHalfEven(double value);

/// Rnd x (n - 1) rounded half to even: a position in 0 .. n - 1.
qint32 randomPosition(RowRandom &random, qint32 n);

/// Order 1: for i = 0 .. n - 1 in turn, exchanges entries i and randomPosition(n).
void shuffleRows(RowList &rows, RowRandom &random);

/// The order that applies to a selection of n rows.
qint32 effectiveRowOrder(const DocumentProperties &properties, qint32 userRowOrder, qint32 n);

/// Results of the selection steps that run before the row list is built.
struct SelectionSteps {
    CountMatrix found;
    std::vector<bool> splitNotAllowed; ///< per category
    QString selectionText;             ///< completed: the total text when nothing is restricted
    bool differentFromUsedTotal = false;
};

/// Counts, split-by permissions, the selection text and the difference from
/// the flex total, for `selection`.
SelectionSteps selectionSteps(const Document &doc, const SelectionMatrix &selection, const FlexTotal &flex);

struct SubSheet {
    /// Built, or why Show refused it.
    Outcome<> outcome;
    SelectionSteps steps;
    bool dataRowsAllowed = false;
    /// What this overview permits; every output command asks permits() of it
    /// (or of showPermissions() anew) before it outputs.
    ShowPermissions permissions;
    qint32 rowOrder = RowOrderOriginal; ///< the effective order
    bool randomPerColumn = false;
    RowList rows;                         ///< ordered; empty when refused
    std::vector<qint32> columnRowOffsets; ///< per question; only with randomPerColumn
    double totalIndex = 0.0;              ///< the sheet's own total index (0.0 when none)
    SelectionMatrix selection;

    /// -1 (every row may be shown) or 0 (headers and totals only).
    qint32 maxRowsDisplayed() const { return dataRowsAllowed ? -1 : 0; }
    /// Answer lines drawn under the user's "Overview Max Rows".
    qint32 displayedLines(qint32 maxRowsSetting) const;
    /// The row whose answer the cell of answer line `line` and question
    /// `question` shows (rowShownInCell() of this sheet); -1 outside the list.
    qint32 rowInCell(qint32 line, qint32 question) const;
};

/// Builds the overview for `selection`. A refused selection (a blocked
/// category or flex total, nobody, too few) comes back with its outcome and
/// no rows; the caller keeps its previous sheet then. When
/// the flex total is based on the current selection it is rebuilt here, as
/// the selection steps require, whether or not the sheet is refused.
SubSheet createSubSheet(const Document &doc, const BlockCatalogue &catalogue, const SelectionMatrix &selection,
                        FlexTotal &flex, qint32 userRowOrder, RowRandom &random);

/// The navigator's Show without its window: applies the edits of `model`,
/// sets the flex total when its options or check box changed, and builds
/// the overview for the applied selection. The caller shows the refusal of
/// a refused build and keeps its previous sheet then.
SubSheet showSelection(const Document &doc, const BlockCatalogue &catalogue, SelectionModel &model, FlexTotal &flex,
                       qint32 userRowOrder, RowRandom &random);

} // namespace kel
