// SPDX-License-Identifier: GPL-3.0-or-later
// Block and total indexes: which questions a block or the total pools, and
// their column index over a row list. -1 means "no value" throughout.
#pragma once

#include "engine/indexes/columnindex.h"

namespace kel {

/// Members of block `block`: by the block items when the block lists its
/// members, otherwise the overview questions naming it as their block or,
/// when none does, as their sub-block. Empty for a block out of range.
QuestionList blockMembers(const Document &doc, qint32 block);

/// The overview questions that count towards the total index.
QuestionList totalMembers(const Document &doc);

double calculateBlockIndex(const Document &doc, qint32 block, const RowList &rows);
/// Over every row of the document.
double calculateBlockTotalIndex(const Document &doc, qint32 block);
/// Over the flex total; -1 when it has no rows. No privacy test here.
double calculateBlockFlexTotalIndex(const Document &doc, qint32 block, const RowList &flexRows);

double calculateTotalIndex(const Document &doc, const RowList &rows);
/// The same, with the points distribution of the total's answers in `distribution`.
double calculateTotalIndexSpec(const Document &doc, const RowList &rows, QString &distribution);

/// Documents older than revision 5 carry no total index: it is the total's
/// index over every row, and the flex total starts equal to it. Does nothing
/// for later revisions, without indexes, rows or total members, so calling
/// it again on an opened document changes nothing.
void computeMissingTotalIndex(Document &doc);

/// Every row number of the document, ascending.
RowList allRows(const Document &doc);

/// True when some question has a sub-block (the document declares sub-blocks).
bool hasSubBlocks(const Document &doc);

} // namespace kel
