// SPDX-License-Identifier: GPL-3.0-or-later
// The overview as text for the clipboard: every answer of the sheet's rows
// as tab-separated alternative labels, and one respondent's answers with
// the questions' texts, block names and cell comments.
#pragma once

#include "engine/document/document.h"

#include <QString>

#include <vector>

namespace kel {

/// One line per entry of `rows` (all of them: the display limit of the
/// sheet does not apply), in the list's order; per line the `label` of the
/// answer to each of `columns`, TAB-separated. The row is the same for
/// every column, whatever order the sheet shows. Lines end in CR LF except
/// the last. A cell outside the matrix or an answer outside the question's
/// alternatives gives an empty cell.
QString overviewDataText(const Document &doc, const std::vector<qint32> &rows, const std::vector<qint32> &columns);

/// The answers of respondent `row` to `columns`: a line with the block's
/// name wherever the block changes (none before columns without a block),
/// then per question "code. text" TAB the answer's short text, and TAB the
/// cell's comment (its line breaks as ", ") when it has one. CR LF between
/// lines, none at the end. Empty when `row` lies outside the matrix.
QString rowAnswersText(const Document &doc, qint32 row, const std::vector<qint32> &columns);

} // namespace kel
