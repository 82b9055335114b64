// SPDX-License-Identifier: GPL-3.0-or-later
// Index graphs: the total index, block indexes and question indexes of the
// selection as bars, optionally split into groups by one question's answers,
// with up to two reference lines.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "engine/overview/subsheet.h"

namespace kel {

/// Index-line bits, as the launch dialogs store and pass them.
enum IndexLineBits : qint32 {
    TotalIndexForTotal = 1,
    TotalIndexForSelection = 2,
    BlockIndexForTotal = 4,
    BlockIndexForSelection = 8,
};

struct IndexGraphRequest {
    qint32 block = -1; ///< -1: the total index graph
    bool includeMainIndex = true;
    bool includeSubIndexes = false;
    bool useQuestionsInsteadOfBlocks = false; ///< total graph only
    qint32 splitQuestion = -1;
    bool includeEmptySplits = false;
    QString title;
    bool horizontalBars = false;
    bool verticalLabels = true;
    qint32 indexLines = 0; ///< IndexLineBits; bits 4 and 8 only count for block graphs
    bool indexLinesShowExplanation = false;
    bool dataLabels = true;
};

/// The chart of `request` over the context's rows. Needs a document with
/// indexes (points scale >= 1); otherwise the chart has no series.
/// `catalogue` holds the blocks, `flex` the totals the index lines compare with.
ChartDescription generateIndexGraph(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                                    const ChartContext &context, const IndexGraphRequest &request);

/// The fixed value axis that the document's maximum points ask for; none
/// when they have fewer than two digits (the chart scales itself).
std::optional<ChartValueAxis> indexValueAxis(qint32 maxPoints, qint32 pointsScale);

/// Whether the privacy rules let `question` split a graph of the selection
/// behind `steps`: only navigator categories whose split is not refused.
bool splitAllowed(const Document &doc, const SelectionSteps &steps, qint32 question);

/// The dialogs' titles, in the document's language.
QString totalIndexGraphTitle(const Document &doc, bool totalIndex, bool blockIndexes, bool questionIndexes,
                             qint32 splitQuestion);
QString blockIndexGraphTitle(const Document &doc, const BlockCatalogue &catalogue, qint32 block, bool blockIndex,
                             bool questionIndexes, qint32 splitQuestion);

} // namespace kel
