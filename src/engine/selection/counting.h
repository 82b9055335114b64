// SPDX-License-Identifier: GPL-3.0-or-later
// Counting respondents through the selection: the one routine behind the
// navigator's counts, the privacy checks and the overview's row list.
#pragma once

#include "engine/document/document.h"
#include "engine/selection/selectionmatrix.h"

#include <vector>

namespace kel {

using RowList = std::vector<qint32>;

/// Adds to `found`(c, o) the respondents who chose option o of category c and
/// match the selection in every *other* category; `found` is incremented,
/// never cleared. Returns the number of respondents in the selection.
/// Categories beyond the matrix do not restrict anything.
qint32 countOptions(const Document &doc, const SelectionMatrix &selected, CountMatrix &found);

/// The rows that match every category (AND across categories, OR within
/// one), ascending.
RowList selectedRows(const Document &doc, const SelectionMatrix &selected);

/// First option the navigator shows: 1 when the first alternative means "no
/// answer", otherwise 0.
inline qint32 firstVisibleOption(const Document &doc)
{
    return doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
}

/// A selection matrix sized for `doc` (at least 1 x 1), every flag true.
SelectionMatrix fullSelection(const Document &doc);
/// A zeroed count matrix of the same shape.
CountMatrix countMatrixFor(const Document &doc);

} // namespace kel
