// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/overview/sheetlayout.h"

#include "engine/indexes/columnindex.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace kel {

namespace {

const Question *questionAt(const Document &doc, qint32 q)
{
    return (q >= 0 && std::size_t(q) < doc.questions.size()) ? &doc.questions[std::size_t(q)] : nullptr;
}

// Floor division: a point left of or above the picture's 1-pixel margin must
// not fold into column or line 0 as truncation would.
int floorDiv(int a, int b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

int ceilDiv(int a, int b)
{
    return a <= 0 ? 0 : (a + b - 1) / b;
}

} // namespace

SheetModeMetrics sheetModeMetrics(SheetMode mode)
{
    switch (mode) {
    case SheetMode::CopyPicture:
    case SheetMode::SaveEmf:
    case SheetMode::SaveWmf: return {32, 32, 2, true, true};
    case SheetMode::MiniOverview: return {8, 8, 1, false, false};
    case SheetMode::Screen: break;
    }
    return {16, 16, 1, true, false};
}

int headerLineCount(const Document &doc, const std::vector<qint32> &columns)
{
    bool anyBlock = false;
    bool anySubBlock = false;
    for (qint32 q : columns) {
        if (const Question *question = questionAt(doc, q)) {
            anyBlock = anyBlock || question->block != -1;
            anySubBlock = anySubBlock || question->subBlock != -1;
        }
    }
    return 1 + (anyBlock ? 1 : 0) + (anySubBlock ? 1 : 0);
}

std::vector<HeaderRun> headerRuns(const Document &doc, const std::vector<qint32> &columns, bool subBlocks)
{
    std::vector<HeaderRun> runs;
    const int count = int(columns.size());
    for (int c = 0; c < count; ++c) {
        const Question *question = questionAt(doc, columns[std::size_t(c)]);
        const qint32 block = question ? (subBlocks ? question->subBlock : question->block) : -1;
        if (!runs.empty() && runs.back().block == block) {
            ++runs.back().columnCount;
            continue;
        }
        HeaderRun run;
        run.firstColumn = c;
        run.columnCount = 1;
        run.block = block;
        run.colourSlot = int(runs.size() % 2);
        runs.push_back(run);
    }
    if (!runs.empty())
        runs.back().isLast = true;
    for (HeaderRun &run : runs) {
        if (const Block *block = doc.blockAt(run.block))
            run.text = run.isLast ? block->name : block->code;
    }
    return runs;
}

std::vector<int> groupLineEdges(const std::vector<HeaderRun> &blockRuns, const std::vector<HeaderRun> &subBlockRuns,
                                int cellWidth, int scale, int columnCount)
{
    std::vector<int> edges;
    const int width = columnCount * cellWidth;
    for (const auto *runs : {&blockRuns, &subBlockRuns}) {
        for (const HeaderRun &run : *runs) {
            const int x = run.firstColumn * cellWidth;
            if (x - scale >= 1 && x < width)
                edges.push_back(x);
        }
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    return edges;
}

QString shortenToWidth(const QString &text, int maxWidth, const std::function<int(const QString &)> &width)
{
    if (text.size() <= 2 || width(text) <= maxWidth)
        return text;
    // A document may hold a heading of a million characters; measuring every
    // shorter prefix in turn would take time in the square of that. Widths
    // grow with the prefix, so the longest prefix that fits is found by
    // halving: `fits` is the floor of 2 or a prefix known to fit,
    // `tooLong` a prefix known not to.
    qsizetype fits = 2, tooLong = text.size();
    while (tooLong - fits > 1) {
        const qsizetype middle = fits + (tooLong - fits) / 2;
        if (width(text.left(middle)) <= maxWidth)
            fits = middle;
        else
            tooLong = middle;
    }
    return text.left(fits);
}

qint32 rowShownInCell(const std::vector<qint32> &rows, const std::vector<qint32> &columnOffsets, qint32 question,
                      qint32 line)
{
    const qint64 n = qint64(rows.size());
    if (line < 0 || line >= n)
        return -1;
    if (columnOffsets.empty())
        return rows[std::size_t(line)];
    const qint64 offset =
        (question >= 0 && std::size_t(question) < columnOffsets.size()) ? columnOffsets[std::size_t(question)] : 0;
    // Offsets come from the builder as 0 .. n-1, but a wrong one must still
    // land inside the list.
    const qint64 position = ((offset + line) % n + n) % n;
    return rows[std::size_t(position)];
}

bool isReadableColumn(const Document &doc, qint32 question)
{
    const Question *q = questionAt(doc, question);
    return q && question < doc.columnCount() && q->firstAlternative >= 0 && q->alternativeCount > 0
        && qint64(q->firstAlternative) + q->alternativeCount <= qint64(doc.alternatives.size());
}

std::vector<qint32> rowsInMatrix(const Document &doc, const std::vector<qint32> &rows)
{
    const auto outside = [&](qint32 r) { return r < 0 || r >= doc.rowCount(); };
    if (std::none_of(rows.begin(), rows.end(), outside))
        return rows;
    std::vector<qint32> kept;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(kept), [&](qint32 r) { return !outside(r); });
    return kept;
}

int answerLineCount(qint32 rowCount, qint32 overviewMaxRows, qint32 maxRowsDisplayed)
{
    qint64 lines = std::max<qint64>(0, rowCount);
    lines = std::min<qint64>(lines, std::max<qint64>(0, overviewMaxRows));
    if (maxRowsDisplayed != -1)
        lines = std::min<qint64>(lines, std::max<qint64>(0, maxRowsDisplayed));
    return int(lines);
}

SheetHit hitTestSheet(double x, double y, const SheetGeometry &geometry, int scrollColumn, int scrollLine,
                      const std::vector<qint32> &columns, const std::vector<qint32> &rows,
                      const std::vector<qint32> &columnOffsets)
{
    SheetHit hit;
    if (!std::isfinite(x) || !std::isfinite(y) || std::abs(x) > 1e9 || std::abs(y) > 1e9)
        return hit;
    const int px = int(std::lround(x));
    const int py = int(std::lround(y));
    int column = floorDiv(px - 1, geometry.cellWidth);
    if (column < 0)
        return hit;
    column += scrollColumn;
    if (column >= geometry.columns || column >= int(columns.size()))
        return hit;
    int line = floorDiv(py - 1, geometry.cellHeight) - geometry.headerLines;
    if (line < -geometry.headerLines)
        return hit;
    if (line >= 0) {
        line += scrollLine;
        if (line >= geometry.answerLines)
            return hit;
    }
    hit.column = column;
    hit.line = line;
    hit.question = columns[std::size_t(column)];
    if (line >= 0) {
        hit.row = rowShownInCell(rows, columnOffsets, hit.question, line);
        if (hit.row < 0) {
            hit = SheetHit();
            return hit;
        }
        hit.place = SheetPlace::AnswerCell;
    } else {
        hit.row = line;
        hit.place = line == -1 ? SheetPlace::CodeLine : SheetPlace::BlockLine;
    }
    return hit;
}

SheetScrollLayout layoutSheetScrollBars(const SheetGeometry &geometry, int areaWidth, int areaHeight,
                                        int horizontalBarHeight, int verticalBarWidth)
{
    SheetScrollLayout layout;
    const int width = geometry.width();
    const int height = geometry.height();
    bool needH = width > areaWidth;
    bool needV = height > areaHeight;
    // One bar can make room short enough to need the other.
    for (int pass = 0; pass < 2; ++pass) {
        const int w = areaWidth - (needV ? verticalBarWidth : 0);
        const int h = areaHeight - (needH ? horizontalBarHeight : 0);
        needH = width > w;
        needV = height > h;
    }
    layout.availableWidth = std::max(0, areaWidth - (needV ? verticalBarWidth : 0));
    layout.availableHeight = std::max(0, areaHeight - (needH ? horizontalBarHeight : 0));

    layout.horizontal.visible = needH;
    layout.vertical.visible = needV;
    if (needH) {
        layout.horizontal.maximum = ceilDiv(width - layout.availableWidth, geometry.cellWidth);
        layout.horizontal.pageStep = std::max(1, layout.availableWidth / geometry.cellWidth);
    }
    if (needV) {
        layout.vertical.maximum = ceilDiv(height - layout.availableHeight, geometry.cellHeight);
        layout.vertical.pageStep =
            std::max(1, (layout.availableHeight - geometry.headerHeight()) / geometry.cellHeight);
    }
    return layout;
}

PopupItems popupItemsFor(SheetPlace place, const PopupContext &context)
{
    PopupItems items;
    switch (place) {
    case SheetPlace::Outside: return items;
    case SheetPlace::AnswerCell:
        items.showRowsComments = !context.randomPerColumn && (context.hasRowComments || context.hasCellComments);
        items.showColumnsComments = context.hasCellComments;
        items.copyThisRowsAnswers = !context.randomPerColumn;
        items.bar1 = items.showRowsComments || items.showColumnsComments || items.copyThisRowsAnswers;
        break;
    case SheetPlace::CodeLine:
        items.showColumnsComments = context.hasCellComments;
        items.bar1 = context.hasCellComments;
        break;
    case SheetPlace::BlockLine: {
        static constexpr qint32 blockBits[4] = {0x1, 0x2, 0x4, 0x100};
        for (int i = 0; i < 4; ++i)
            items.showBlockGraph[i] = (context.blockGraphFlags & blockBits[i]) != 0;
        items.bar2 = context.totalGraphVisible || context.blockGraphFlags != 0;
        return items;
    }
    }
    static constexpr qint32 questionBits[3] = {0x1, 0x2, 0x4};
    for (int i = 0; i < 3; ++i)
        items.showQuestionGraph[i] = (context.questionGraphFlags & questionBits[i]) != 0;
    items.bar2 = context.totalGraphVisible || context.questionGraphFlags != 0;
    return items;
}

qint32 blockAtHeaderLine(const Question &question, int line, int headerLines)
{
    if (line == -headerLines)
        return question.block;
    return question.subBlock != -1 ? question.subBlock : question.block;
}

PopupEnabling popupEnablingFor(const Document &doc, const std::vector<qint32> &rows, const std::vector<qint32> &columns,
                               bool randomPerColumn, qint32 row, qint32 question)
{
    PopupEnabling enabling;
    const bool rowInMatrix = row >= 0 && row < doc.rowCount();
    const bool questionInMatrix = question >= 0 && question < doc.columnCount();
    if (!randomPerColumn && rowInMatrix) {
        if (doc.properties.hasRowComments && std::size_t(row) < doc.rowComments.size()
            && doc.rowComments[std::size_t(row)].comment != -1)
            enabling.showRowsComments = true;
        if (!enabling.showRowsComments && doc.hasCellComments) {
            for (qint32 q : columns) {
                if (q >= 0 && q < doc.columnCount() && doc.cellComment(row, q) != -1) {
                    enabling.showRowsComments = true;
                    break;
                }
            }
        }
    }
    if (doc.hasCellComments && questionInMatrix) {
        for (qint32 r : rows) {
            if (r >= 0 && r < doc.rowCount() && doc.cellComment(r, question) != -1) {
                enabling.showColumnsComments = true;
                break;
            }
        }
    }
    return enabling;
}

} // namespace kel
