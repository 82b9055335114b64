// SPDX-License-Identifier: GPL-3.0-or-later
// Geometry of the overview sheet that needs no painter: how many header
// lines, the runs of equal blocks along a header line, where group lines
// go, how texts are shortened, which cell lies under a point, the scroll
// ranges in cells, and which popup items a place offers. The drawer, the
// sheet view and the copy commands all take their numbers from here, so a
// cell is where the mouse finds it.
#pragma once

#include "engine/document/document.h"

#include <QString>

#include <functional>
#include <vector>

namespace kel {

/// What a sheet is drawn for; the numbers are those the drawing callers use.
enum class SheetMode : int {
    Screen = 0,      ///< 16-pixel cells, kept as the window's picture
    CopyPicture = 1, ///< 32-pixel cells, with index lines and caption block
    SaveEmf = 2,
    SaveWmf = 3,
    MiniOverview = 5, ///< 8-pixel cells, no text
};

struct SheetModeMetrics {
    int cellWidth = 16;
    int cellHeight = 16;
    int scale = 1;
    bool drawsText = true;
    bool isPicture = false; ///< index lines and caption block below the answers
};

/// Cell size, scale and extras of a mode; unknown modes draw as the screen.
SheetModeMetrics sheetModeMetrics(SheetMode mode);

/// 1 (codes only), 2 (block line + codes) or 3 (block, sub-block, codes):
/// one more for any column with a block, one more for any with a sub-block.
int headerLineCount(const Document &doc, const std::vector<qint32> &columns);

/// A run of consecutive columns sharing one value of `Block` (or `SubBlock`)
/// on a header line.
struct HeaderRun {
    int firstColumn = 0;
    int columnCount = 0;
    qint32 block = -1;   ///< -1: the run has no block and is not painted
    int colourSlot = 0;  ///< 0 or 1: alternates at every run, with or without a block
    bool isLast = false; ///< ends at the last column: shows the block's name
    QString text;        ///< unshortened: the block's code, or name for the last run
};

/// Runs of the block line (`subBlocks` false) or the sub-block line. A block
/// number outside the document's block list still forms a run (it is a
/// block to the sheet) but has no text.
std::vector<HeaderRun> headerRuns(const Document &doc, const std::vector<qint32> &columns, bool subBlocks);

/// Left edges (pixels) of the group lines: every run's left edge on the
/// block and sub-block lines, once each, in ascending order, keeping only
/// those with x - scale >= 1 and x < sheet width.
std::vector<int> groupLineEdges(const std::vector<HeaderRun> &blockRuns, const std::vector<HeaderRun> &subBlockRuns,
                                int cellWidth, int scale, int columnCount);

/// The longest start of `text` whose `width` is at most `maxWidth`, but
/// never shorter than 2 characters (a text of 2 or fewer is returned as it
/// is). `width` must not shrink as a text grows; it is called a number of
/// times that grows with the logarithm of the text's length.
QString shortenToWidth(const QString &text, int maxWidth, const std::function<int(const QString &)> &width);

/// The row shown in answer line `line` of the column with question
/// `question`: rows[line], or under Random per column (non-empty
/// `columnOffsets`, indexed by question number) rows[(offset + line) mod n].
/// -1 when the line lies outside the row list.
qint32 rowShownInCell(const std::vector<qint32> &rows, const std::vector<qint32> &columnOffsets, qint32 question,
                      qint32 line);

/// The sheet's sizes, in pixels of the surface.
struct SheetGeometry {
    int cellWidth = 16;
    int cellHeight = 16;
    int scale = 1;
    int headerLines = 1;  ///< H
    int columns = 0;      ///< C
    int answerLines = 0;  ///< R, after the display limits
    int indexLines = 0;   ///< T, picture modes with indexes
    int captionLines = 0; ///< L, picture modes
    int captionExtra = 0; ///< pixels of caption text taller than its line
    qint32 rowCount = 0;  ///< n, entries of the row list

    int width() const { return columns * cellWidth; }
    int height() const { return (headerLines + answerLines + indexLines + captionLines) * cellHeight + captionExtra; }
    int headerHeight() const { return headerLines * cellHeight; }
};

/// Whether column `question` can be read: a question of the document with
/// a column in the answer matrix and its alternatives inside the list.
bool isReadableColumn(const Document &doc, qint32 question);
/// `rows` without the row numbers outside the answer matrix (the same list
/// when all are inside), so index sums never read past it.
std::vector<qint32> rowsInMatrix(const Document &doc, const std::vector<qint32> &rows);

/// R = min(n, overviewMaxRows), then min(R, maxRowsDisplayed) unless that is -1.
int answerLineCount(qint32 rowCount, qint32 overviewMaxRows, qint32 maxRowsDisplayed);

enum class SheetPlace { Outside, AnswerCell, CodeLine, BlockLine };

/// What lies under a point of the sheet view.
struct SheetHit {
    SheetPlace place = SheetPlace::Outside;
    int column = -1; ///< index into the column list
    int line = 0;    ///< answer line k >= 0, or -H .. -1 for header lines (-1 = code line)
    qint32 question = -1;
    /// Answer cells: the row number shown there; header lines: the line (negative).
    qint32 row = -1;
};

/// Hit-tests a point of the view, whose sheet picture starts at (1, 1), with
/// the scroll positions in cells. Only drawn answer lines count: a point
/// below the last drawn line or right of the last column is outside.
SheetHit hitTestSheet(double x, double y, const SheetGeometry &geometry, int scrollColumn, int scrollLine,
                      const std::vector<qint32> &columns, const std::vector<qint32> &rows,
                      const std::vector<qint32> &columnOffsets);

/// One scroll bar: shown, its maximum and its page size, in cells.
struct ScrollRange {
    bool visible = false;
    int maximum = 0;
    int pageStep = 1;
};
struct SheetScrollLayout {
    ScrollRange horizontal;
    ScrollRange vertical;
    int availableWidth = 0; ///< pixels for the picture, after the bars
    int availableHeight = 0;
};

/// Lays out the scroll bars of a view whose area is `areaWidth` x
/// `areaHeight` pixels (the 1-pixel margin already taken off): a bar
/// appears when the sheet is larger than the area, and each bar narrows the
/// other's area by its thickness. Pages of the vertical bar count the body's
/// visible lines, below the frozen header.
SheetScrollLayout layoutSheetScrollBars(const SheetGeometry &geometry, int areaWidth, int areaHeight,
                                        int horizontalBarHeight, int verticalBarWidth);

/// Items of the sheet's popup menu that depend on the place clicked.
struct PopupItems {
    bool showRowsComments = false;
    bool showColumnsComments = false;
    bool copyThisRowsAnswers = false;
    bool bar1 = false;
    bool showBlockGraph[4] = {false, false, false, false};
    bool showQuestionGraph[3] = {false, false, false};
    bool bar2 = false;
};

struct PopupContext {
    bool randomPerColumn = false;
    bool hasRowComments = false;
    bool hasCellComments = false;
    qint32 questionGraphFlags = 0;  ///< of the clicked column's question
    qint32 blockGraphFlags = 0;     ///< of the clicked block (block lines)
    bool totalGraphVisible = false; ///< the total-index graph item is offered
};

/// Visible popup items for a place; Outside gives none.
PopupItems popupItemsFor(SheetPlace place, const PopupContext &context);

/// The block named by a click on header line `line` (-H .. -2) of `question`:
/// the first line shows `Block`; a lower block line `SubBlock`, or `Block`
/// when the question has none.
qint32 blockAtHeaderLine(const Question &question, int line, int headerLines);

/// Whether the popup's comment items are enabled for an answer cell.
struct PopupEnabling {
    bool showRowsComments = false;
    bool showColumnsComments = false;
};
PopupEnabling popupEnablingFor(const Document &doc, const std::vector<qint32> &rows, const std::vector<qint32> &columns,
                               bool randomPerColumn, qint32 row, qint32 question);

} // namespace kel
