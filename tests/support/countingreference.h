// SPDX-License-Identifier: GPL-3.0-or-later
// The navigator's count written as the rules read, one cell at a time through
// `getData`: what the engine's fast counting is compared with.
#pragma once

#include "engine/document/document.h"
#include "engine/selection/counting.h"
#include "engine/selection/selectionmatrix.h"

namespace kel::test {

/// Respondents matching every category (AND across categories, OR within
/// one); `found` gets, per category, the answers of those who match all the
/// other categories.
qint32 countOptionsReference(const Document &doc, const SelectionMatrix &selected, CountMatrix &found);

} // namespace kel::test
