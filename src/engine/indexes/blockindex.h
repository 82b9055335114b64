// SPDX-License-Identifier: GPL-3.0-or-later
// Block and total indexes: which questions a block or the total pools, and
// their column index over a row list. -1 means "no value" throughout.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/indexes/columnindex.h"

namespace kel {

/// Members of block `block`: by the block items when the block lists its
/// members, otherwise the overview questions naming it as their block or,
/// when none does, as their sub-block. Empty for a block out of range.
QuestionList blockMembers(const Document &doc, const BlockCatalogue &catalogue, qint32 block);

/// The questions a block graph of `block` shows: its members in question
/// order, each once. Block items may list members in any order and more than
/// once; graphs take their groups, legend runs and first answer scale from
/// this order, so it must not depend on how the items were written.
QuestionList blockGraphQuestions(const Document &doc, const BlockCatalogue &catalogue, qint32 block);

double calculateBlockIndex(const Document &doc, const BlockCatalogue &catalogue, qint32 block, const RowList &rows);
/// Over every row of the document.
double calculateBlockTotalIndex(const Document &doc, const BlockCatalogue &catalogue, qint32 block);
/// Over the flex total; -1 when it has no rows. No privacy test here.
double calculateBlockFlexTotalIndex(const Document &doc, const BlockCatalogue &catalogue, qint32 block,
                                    const RowList &flexRows);

double calculateTotalIndex(const Document &doc, const RowList &rows);
/// The same, with the points distribution of the total's answers in `distribution`.
double calculateTotalIndexSpec(const Document &doc, const RowList &rows, QString &distribution);

/// True when some question has a sub-block (the document declares sub-blocks).
bool hasSubBlocks(const Document &doc);

} // namespace kel
