// SPDX-License-Identifier: GPL-3.0-or-later
// The figures the windows show about the overview: what the detail window
// shows for the cell under the pointer, and the values of the sheet
// pictures' index lines. Computed here as plain values so that the windows
// and the drawing only format them, and `kel` and the tests can check them.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/document/pooledindex.h"
#include "engine/overview/sheetlayout.h"
#include "engine/selection/flextotal.h"

#include <QString>

#include <vector>

namespace kel {

/// The detail window's content for one cell. Index values are -1 for "no
/// value" (so they format as "-").
struct CellDetails {
    bool onQuestion = false; ///< false: outside the sheet or a document without indexes
    QString blockName;       ///< the question's block, "" when it has none
    QString subBlockName;
    QString questionText;             ///< its text, else its heading
    QString answerText;               ///< answer cells only
    double respondentIndex = -1.0;    ///< the row's index over the overview questions (answer cells)
    double questionIndex = -1.0;      ///< over the selection
    double questionTotalIndex = -1.0; ///< over the flex total
    double subBlockIndex = -1.0;
    double subBlockTotalIndex = -1.0;
    double blockIndex = -1.0;
    double blockTotalIndex = -1.0;
};

/// The details of `hit` for a sheet of `overviewColumns` over `selectionRows`,
/// its totals over `flex`.
CellDetails cellDetails(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                        const SheetHit &hit, const std::vector<qint32> &overviewColumns, const RowList &selectionRows);

/// The index line of the sheet pictures: per column, the question's index
/// over `rows` (-1 for none or a column the matrix cannot answer). `rows`
/// must lie in the answer matrix (rowsInMatrix).
std::vector<double> columnIndexLine(const Document &doc, const std::vector<qint32> &columns, const RowList &rows);

/// The block lines' value for the run of columns first .. first + count - 1:
/// the pooled index of its readable columns over `rows` (in the matrix).
double columnRunIndex(const Document &doc, const std::vector<qint32> &columns, int first, int count,
                      const RowList &rows);

} // namespace kel
