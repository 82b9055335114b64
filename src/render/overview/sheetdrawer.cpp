// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/overview/sheetdrawer.h"

#include "engine/indexes/columnindex.h"
#include "engine/overview/celldetails.h"
#include "engine/overview/subsheet.h"
#include "render/colour/documentcolour.h"

#include <QFontMetrics>
#include <QPaintEngine>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>

namespace kel {

SheetInput sheetInputFor(const Document &doc, const SubSheet &sheet)
{
    SheetInput input;
    input.document = &doc;
    input.rows = sheet.rows;
    input.columns = doc.overviewColumns;
    if (sheet.randomPerColumn)
        input.columnRowOffsets = sheet.columnRowOffsets;
    input.maxRowsDisplayed = sheet.maxRowsDisplayed();
    input.selectionText = sheet.steps.selectionText;
    input.totalIndex = sheet.totalIndex;
    return input;
}

namespace {

// Label offsets centre a text in a screen cell; larger modes scale them.
constexpr int OffsetCellWidth = 16;

// The screen picture of a large sheet at a high device pixel ratio would
// take gigabytes; above this many bytes it is drawn at ratio 1 instead.
constexpr qint64 MaxScaledImageBytes = qint64(512) * 1024 * 1024;
// No picture is made above this size (a huge "Overview Max Rows"): the
// allocation would seem to succeed and the system would kill the program
// when the pages are touched.
constexpr qint64 MaxImageBytes = qint64(1536) * 1024 * 1024;
// Far beyond any picture that can be made, but small enough that pixel
// sizes of the geometry stay inside int at every cell size.
constexpr int MaxGeometryCells = 1 << 22;

const Question *questionAt(const Document &doc, qint32 q)
{
    return (q >= 0 && std::size_t(q) < doc.questions.size()) ? &doc.questions[std::size_t(q)] : nullptr;
}

struct CaptionText {
    QString text;
    int height = 0; // wrapped text height
    int lines = 1;  // whole cell lines it takes
    int extra = 0;  // pixels beyond those lines
};

std::vector<CaptionText> captionTexts(const SheetInput &input, const QFont &detailFont, int cellHeight, int sheetWidth)
{
    std::vector<CaptionText> captions;
    if (!sheetModeMetrics(input.mode).isPicture || !input.document)
        return captions;
    const Document &doc = *input.document;
    const DocumentProperties &p = doc.properties;
    QStringList texts;
    if (p.pointsScale > 0)
        texts << doc.text(p.indexLineTexts[4]) + QStringLiteral(": ")
                + formatIndex(input.totalIndex, p.indexDecimals, input.locale);
    texts << doc.text(p.statusPanel2Tip) + QStringLiteral(": ") + QString::number(input.rows.size());
    texts << doc.text(p.statusPanel3Tip) + QStringLiteral(": ") + input.selectionText;

    const QFontMetrics metrics(detailFont);
    const int wrapWidth = std::max(1, sheetWidth - 1);
    for (const QString &text : std::as_const(texts)) {
        CaptionText caption;
        caption.text = text;
        caption.height =
            metrics.boundingRect(QRect(0, 0, wrapWidth, 1 << 20), Qt::AlignHCenter | Qt::TextWordWrap, text).height();
        caption.lines = std::max(1, caption.height / cellHeight);
        caption.extra = std::max(0, caption.height - caption.lines * cellHeight);
        captions.push_back(caption);
    }
    return captions;
}

SheetGeometry geometryFor(const SheetInput &input, const std::vector<CaptionText> &captions)
{
    const SheetModeMetrics metrics = sheetModeMetrics(input.mode);
    SheetGeometry g;
    g.cellWidth = metrics.cellWidth;
    g.cellHeight = metrics.cellHeight;
    g.scale = metrics.scale;
    g.columns = int(std::min<std::size_t>(input.columns.size(), MaxGeometryCells));
    g.rowCount = qint32(std::min<std::size_t>(input.rows.size(), INT32_MAX));
    if (!input.document)
        return g;
    const Document &doc = *input.document;
    g.headerLines = headerLineCount(doc, input.columns);
    g.answerLines =
        std::min(answerLineCount(g.rowCount, input.overviewMaxRows, input.maxRowsDisplayed), MaxGeometryCells);
    if (metrics.isPicture) {
        if (doc.properties.pointsScale > 0)
            g.indexLines = (g.headerLines - 1) + 2;
        for (const CaptionText &caption : captions) {
            g.captionLines += caption.lines;
            g.captionExtra += caption.extra;
        }
    }
    return g;
}

// Draws `text` with its top edge at `top`, as text is placed on the sheet.
void drawTextAt(QPainter &painter, const QFontMetrics &metrics, int x, int top, const QString &text)
{
    painter.drawText(QPoint(x, top + metrics.ascent()), text);
}

void fillIfColoured(QPainter &painter, const QRect &rect, const QColor &colour)
{
    if (colour.isValid())
        painter.fillRect(rect, colour);
}

// Cells of the answer lines. On a raster device every alternative's cell is
// drawn once into a tile and then copied, which keeps a screen sheet of tens
// of thousands of cells cheap; other devices (vector pictures) get real fills
// and texts. A tile clips a label to its cell, where a direct drawing lets a
// label wider than the cell run into a colour-less neighbour.
class AnswerCellPainter
{
public:
    AnswerCellPainter(QPainter &painter, const Document &doc, const SheetTextOffsets &offsets,
                      const SheetModeMetrics &metrics, const QFont &detailFont)
        : mPainter(painter), mDoc(doc), mOffsets(offsets), mMetrics(metrics), mFont(detailFont),
          mFontMetrics(detailFont), mColours(doc.alternatives.size())
    {
        for (std::size_t a = 0; a < doc.alternatives.size(); ++a)
            mColours[a] = sheetColour(doc.alternatives[a].sheetColour);
        const QPaintEngine *engine = painter.paintEngine();
        const QTransform t = painter.worldTransform();
        // The device's own pixel ratio (a high-DPI screen picture) is not part
        // of the world transform, but tiles must be made at it to stay sharp.
        const QPaintDevice *device = painter.device();
        mDpr = t.m11() * (device ? device->devicePixelRatioF() : 1.0);
        // Tiles only where a copy is exact: raster target, no rotation or
        // shear, the same whole-pixel scale on both axes.
        mUseTiles = engine && engine->type() == QPaintEngine::Raster && t.type() <= QTransform::TxScale
            && qFuzzyCompare(t.m11(), t.m22()) && mDpr > 0.0;
        if (mUseTiles)
            mTiles.resize(doc.alternatives.size());
    }

    bool usesTiles() const { return mUseTiles; }

    /// A cell left without an answer (damaged data) still gets the background.
    void drawEmpty(int x, int y, int lines = 1)
    {
        mPainter.fillRect(QRect(x, y, mMetrics.cellWidth, lines * mMetrics.cellHeight),
                          QColor::fromRgb(SheetBackground));
    }

    void draw(int x, int y, qint32 alternative)
    {
        if (mUseTiles) {
            mPainter.drawImage(QPoint(x, y), tile(alternative));
            return;
        }
        drawCell(mPainter, x, y, alternative);
    }

private:
    void drawCell(QPainter &painter, int x, int y, qint32 alternative)
    {
        fillIfColoured(painter, QRect(x, y, mMetrics.cellWidth, mMetrics.cellHeight),
                       mColours[std::size_t(alternative)]);
        if (!mMetrics.drawsText)
            return;
        const QString &label = mDoc.alternatives[std::size_t(alternative)].label;
        if (label.isEmpty())
            return;
        drawTextAt(painter, mFontMetrics, x + mOffsets.alternativeOffset(alternative) * mMetrics.scale,
                   y + 2 * mMetrics.scale, label);
    }

    const QImage &tile(qint32 alternative)
    {
        QImage &tile = mTiles[std::size_t(alternative)];
        if (tile.isNull()) {
            const QSize size(qRound(mMetrics.cellWidth * mDpr), qRound(mMetrics.cellHeight * mDpr));
            tile = QImage(size, QImage::Format_RGB32);
            tile.setDevicePixelRatio(mDpr);
            tile.fill(SheetBackground);
            QPainter p(&tile);
            p.setFont(mFont);
            p.setPen(QColor::fromRgb(SheetTextColour));
            drawCell(p, 0, 0, alternative);
        }
        return tile;
    }

    QPainter &mPainter;
    const Document &mDoc;
    const SheetTextOffsets &mOffsets;
    SheetModeMetrics mMetrics;
    QFont mFont;
    QFontMetrics mFontMetrics;
    std::vector<QColor> mColours;
    std::vector<QImage> mTiles;
    qreal mDpr = 1.0;
    bool mUseTiles = false;
};

// Which drawing operations can change pixels of the area being drawn. An
// operation is skipped only when a generous box around everything it can
// touch lies outside the area, so that a part of the sheet gets the very
// operations, in the same order, that the whole picture gives its pixels.
class AreaFilter
{
public:
    AreaFilter(const QRect &area, int cellWidth, int cellHeight, int scale)
        : mArea(area), mLimited(!area.isNull()), mCellWidth(cellWidth), mCellHeight(cellHeight), mScale(scale)
    {
    }

    bool isLimited() const { return mLimited; }
    const QRect &area() const { return mArea; }

    /// A fill or a picture inside `rect`.
    bool touches(const QRect &rect) const { return !mLimited || rect.intersects(mArea); }

    /// A text placed in `rect`, whose glyphs may reach a little past it.
    bool textTouches(const QRect &rect) const
    {
        return touches(rect.adjusted(-2 * mScale, -mCellHeight, 2 * mScale, mCellHeight));
    }

    /// A text of `offset` (from SheetTextOffsets, at scale 1) in the cell of
    /// `column`: a label wider than its cell has a negative offset and runs
    /// over its neighbours by as much on both sides.
    bool cellTextTouches(int column, int top, int offset) const
    {
        const int overhang = std::max(0, -offset) * mScale + mScale;
        return textTouches(QRect(column * mCellWidth - overhang, top, mCellWidth + 2 * overhang, mCellHeight));
    }

    /// Columns [first, last) and lines [first, last) of a band starting at
    /// `top` that lie in the area, `pad` cells wider on each side.
    std::pair<int, int> columnRange(int columns, int pad) const
    {
        if (!mLimited)
            return {0, columns};
        return cellRange(mArea.left(), mArea.right(), mCellWidth, columns, pad);
    }
    std::pair<int, int> lineRange(int top, int lines, int pad) const
    {
        if (!mLimited)
            return {0, lines};
        return cellRange(mArea.top() - top, mArea.bottom() - top, mCellHeight, lines, pad);
    }

private:
    static std::pair<int, int> cellRange(int from, int to, int cell, int count, int pad)
    {
        // Floor division: the area may start above or left of the band.
        auto floorDiv = [](int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); };
        const int first = std::clamp(floorDiv(from, cell) - pad, 0, count);
        const int last = std::clamp(floorDiv(to, cell) + 1 + pad, first, count);
        return {first, last};
    }

    QRect mArea;
    bool mLimited;
    int mCellWidth;
    int mCellHeight;
    int mScale;
};

void drawHeaderRuns(QPainter &painter, const std::vector<HeaderRun> &runs, const SheetGeometry &g,
                    const std::array<QColor, 4> &colours, int firstColour, int top, int fillHeight, bool drawsText,
                    const QFontMetrics &boldMetrics, const AreaFilter &filter, std::vector<QRect> &texts)
{
    for (const HeaderRun &run : runs) {
        if (run.block == -1)
            continue;
        const int left = run.firstColumn * g.cellWidth;
        const int width = run.columnCount * g.cellWidth;
        // Names are shortened to their run, so the run bounds its text.
        if (!filter.textTouches(QRect(left, top, width, fillHeight)))
            continue;
        fillIfColoured(painter, QRect(left, top, width, fillHeight),
                       colours[std::size_t(firstColour + run.colourSlot)]);
        if (!drawsText || run.text.isEmpty())
            continue;
        const QString shown =
            shortenToWidth(run.text, width, [&](const QString &s) { return boldMetrics.horizontalAdvance(s); });
        const int textWidth = boldMetrics.horizontalAdvance(shown);
        drawTextAt(painter, boldMetrics, left + (width - textWidth) / 2, top + 2 * g.scale, shown);
        texts.emplace_back(left + (width - textWidth) / 2, top, textWidth, g.cellHeight);
    }
}

} // namespace

QColor sheetColour(qint32 colourRef)
{
    if (colourRef < 0)
        return QColor();
    return documentColour(colourRef);
}

QFont sheetFont(bool bold, int scale)
{
    // Documents name Arial; where it is not installed its metric twin keeps
    // every text the same width, so shortened names and centred labels match.
    static std::once_flag substituted;
    std::call_once(substituted,
                   [] { QFont::insertSubstitution(QStringLiteral("Arial"), QStringLiteral("Liberation Sans")); });
    QFont font(QStringLiteral("Arial"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(12 * scale);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    return font;
}

void SheetTextOffsets::compute(const Document &doc)
{
    const QFontMetrics bold(sheetFont(true, 1));
    const QFontMetrics normal(sheetFont(false, 1));
    mQuestions.assign(doc.questions.size(), 0);
    for (std::size_t q = 0; q < doc.questions.size(); ++q)
        mQuestions[q] = (OffsetCellWidth - bold.horizontalAdvance(doc.questions[q].code)) / 2;
    mAlternatives.assign(doc.alternatives.size(), 0);
    for (std::size_t a = 0; a < doc.alternatives.size(); ++a)
        mAlternatives[a] = (OffsetCellWidth - normal.horizontalAdvance(doc.alternatives[a].label)) / 2;
    mComputed = true;
}

void SheetTextOffsets::clear()
{
    mComputed = false;
    mQuestions.clear();
    mAlternatives.clear();
}

int SheetTextOffsets::questionOffset(qint32 question) const
{
    return (question >= 0 && std::size_t(question) < mQuestions.size()) ? mQuestions[std::size_t(question)] : 0;
}

int SheetTextOffsets::alternativeOffset(qint32 alternative) const
{
    return (alternative >= 0 && std::size_t(alternative) < mAlternatives.size())
        ? mAlternatives[std::size_t(alternative)]
        : 0;
}

QMargins sheetPictureMargins(const SheetInput &input, SheetTextOffsets &offsets)
{
    const SheetModeMetrics metrics = sheetModeMetrics(input.mode);
    if (!input.document || !metrics.isPicture || !metrics.drawsText)
        return QMargins();
    const Document &doc = *input.document;
    if (!offsets.isComputed())
        offsets.compute(doc);
    const QFontMetrics bold(sheetFont(true, metrics.scale));
    const QFontMetrics normal(sheetFont(false, metrics.scale));
    const int w = metrics.cellWidth;
    const int columns = int(std::min<std::size_t>(input.columns.size(), MaxGeometryCells));
    const int width = columns * w;
    int left = 0, right = 0;
    const auto reach = [&](int x, int textWidth) {
        left = std::max(left, -x);
        right = std::max(right, x + textWidth - width);
    };
    // Codes wider than their cell, at the first and last columns.
    for (int c : {0, columns - 1}) {
        if (c < 0)
            continue;
        const qint32 q = input.columns[std::size_t(c)];
        const Question *question = questionAt(doc, q);
        if (question && question->inOverview && !question->code.isEmpty())
            reach(c * w + offsets.questionOffset(q) * metrics.scale, bold.horizontalAdvance(question->code));
    }
    // Index values stand centred on their columns.
    if (doc.properties.pointsScale > 0) {
        const std::vector<double> values = columnIndexLine(doc, input.columns, rowsInMatrix(doc, input.rows));
        for (int c = 0; c < columns; ++c) {
            if (values[std::size_t(c)] == -1.0)
                continue;
            const int textWidth = normal.horizontalAdvance(
                formatIndex(values[std::size_t(c)], doc.properties.indexDecimals, input.locale));
            reach(c * w + (w - textWidth) / 2, textWidth);
        }
    }
    // A caption word wider than the sheet overflows its centred lines on
    // both sides.
    for (const CaptionText &caption : captionTexts(input, sheetFont(false, metrics.scale), metrics.cellHeight, width)) {
        const int wrapWidth = std::max(1, width - 1);
        const int textWidth =
            normal.boundingRect(QRect(0, 0, wrapWidth, 1 << 20), Qt::AlignHCenter | Qt::TextWordWrap, caption.text)
                .width();
        if (textWidth > wrapWidth)
            reach((wrapWidth - textWidth) / 2, textWidth);
    }
    return QMargins(left, 0, right, 0);
}

SheetGeometry measureSheet(const SheetInput &input)
{
    const SheetModeMetrics metrics = sheetModeMetrics(input.mode);
    const int width = int(std::min<std::size_t>(input.columns.size(), MaxGeometryCells)) * metrics.cellWidth;
    return geometryFor(input, captionTexts(input, sheetFont(false, metrics.scale), metrics.cellHeight, width));
}

int drawSheet(QPainter &painter, const SheetInput &input, SheetTextOffsets &offsets)
{
    return drawSheetArea(painter, input, offsets, QRect());
}

int drawSheetArea(QPainter &painter, const SheetInput &input, SheetTextOffsets &offsets, const QRect &area)
{
    if (!input.document || !painter.isActive())
        return -1;
    const Document &doc = *input.document;
    const SheetModeMetrics metrics = sheetModeMetrics(input.mode);
    const QFont headerFont = sheetFont(true, metrics.scale);
    const QFont detailFont = sheetFont(false, metrics.scale);
    const QFontMetrics headerMetrics(headerFont);
    const QFontMetrics detailMetrics(detailFont);
    const std::vector<CaptionText> captions =
        captionTexts(input, detailFont, metrics.cellHeight,
                     int(std::min<std::size_t>(input.columns.size(), MaxGeometryCells)) * metrics.cellWidth);
    const SheetGeometry g = geometryFor(input, captions);
    if (metrics.drawsText && !offsets.isComputed())
        offsets.compute(doc);

    painter.save();
    painter.setPen(QColor::fromRgb(SheetTextColour));
    painter.setBackgroundMode(Qt::TransparentMode);
    const int w = g.cellWidth;
    const int h = g.cellHeight;
    const int s = g.scale;
    const int width = g.width();
    const AreaFilter filter(area, w, h, s);
    if (filter.isLimited())
        painter.setClipRect(area, Qt::IntersectClip);

    // Answer cells are covered by their own fills; only the rest needs the
    // background, which saves a pass over most of a large picture.
    const int answersTop = g.headerHeight();
    const int answersBottom = answersTop + g.answerLines * h;
    painter.fillRect(QRect(0, 0, width, answersTop), QColor::fromRgb(SheetBackground));
    painter.fillRect(QRect(0, answersBottom, width, g.height() - answersBottom), QColor::fromRgb(SheetBackground));

    // Header lines.
    const std::array<QColor, 4> runColours = {
        sheetColour(doc.properties.sheetColours[0]), sheetColour(doc.properties.sheetColours[1]),
        sheetColour(doc.properties.sheetColours[2]), sheetColour(doc.properties.sheetColours[3])};
    std::vector<HeaderRun> blockRuns;
    std::vector<HeaderRun> subBlockRuns;
    std::vector<QRect> runTexts; // block and sub-block texts, which group lines go round
    painter.setFont(headerFont);
    if (g.headerLines >= 2) {
        blockRuns = headerRuns(doc, input.columns, false);
        drawHeaderRuns(painter, blockRuns, g, runColours, 0, 0, g.headerLines == 3 ? 2 * h : h, metrics.drawsText,
                       headerMetrics, filter, runTexts);
    }
    if (g.headerLines == 3) {
        subBlockRuns = headerRuns(doc, input.columns, true);
        drawHeaderRuns(painter, subBlockRuns, g, runColours, 2, h, h, metrics.drawsText, headerMetrics, filter,
                       runTexts);
    }
    const int codeTop = (g.headerLines - 1) * h;
    for (int c = 0; c < g.columns; ++c) {
        const qint32 q = input.columns[std::size_t(c)];
        const Question *question = questionAt(doc, q);
        if (!question || !question->inOverview || !filter.cellTextTouches(c, codeTop, offsets.questionOffset(q)))
            continue;
        fillIfColoured(painter, QRect(c * w, codeTop, w, h), sheetColour(question->sheetColour));
        if (metrics.drawsText && !question->code.isEmpty())
            drawTextAt(painter, headerMetrics, c * w + offsets.questionOffset(q) * s, codeTop + 2 * s, question->code);
    }

    // Answer lines, column by column so each column's cells are read in a
    // typed loop.
    painter.setFont(detailFont);
    if (g.answerLines > 0) {
        AnswerCellPainter cells(painter, doc, offsets, metrics, detailFont);
        // Fills and texts on a vector device leave colour-less cells open.
        if (!cells.usesTiles())
            painter.fillRect(QRect(0, answersTop, width, answersBottom - answersTop), QColor::fromRgb(SheetBackground));
        // Copied cells stay inside their cell; drawn labels may run sideways
        // over any number of colour-less neighbours.
        const auto [firstColumn, endColumn] =
            cells.usesTiles() ? filter.columnRange(g.columns, 0) : std::pair<int, int>(0, g.columns);
        // Plain names, not a structured binding: clang 14 cannot capture a
        // binding in the lambda below.
        const std::pair<int, int> lines = filter.lineRange(answersTop, g.answerLines, 1);
        const int firstLine = lines.first;
        const int endLine = lines.second;
        for (int c = firstColumn; c < endColumn; ++c) {
            const qint32 q = input.columns[std::size_t(c)];
            if (!isReadableColumn(doc, q)) {
                cells.drawEmpty(c * w, answersTop + firstLine * h, endLine - firstLine);
                continue;
            }
            const qint32 first = doc.questions[std::size_t(q)].firstAlternative;
            const qint32 count = doc.questions[std::size_t(q)].alternativeCount;
            doc.answers.visitColumn(q, [&](const auto *column) {
                for (int k = firstLine; k < endLine; ++k) {
                    const qint32 row = rowShownInCell(input.rows, input.columnRowOffsets, q, k);
                    const qint32 answer = (row >= 0 && row < doc.rowCount()) ? qint32(column[row]) : -1;
                    if (answer < 0 || answer >= count)
                        cells.drawEmpty(c * w, answersTop + k * h);
                    else
                        cells.draw(c * w, answersTop + k * h, first + answer);
                }
            });
        }
    }

    // Index lines of the pictures: column values alternate between two lines
    // so that their two-cell boxes never overlap; then one line per block level.
    std::vector<QRect> indexTexts; // where the column values' digits stand
    std::vector<double> values;
    std::vector<qint32> rows;
    if (g.indexLines > 0) {
        rows = rowsInMatrix(doc, input.rows);
        values = columnIndexLine(doc, input.columns, rows);
        for (int c = 0; c < g.columns; ++c)
            if (values[std::size_t(c)] != -1.0) {
                const int textWidth = detailMetrics.horizontalAdvance(
                    formatIndex(values[std::size_t(c)], doc.properties.indexDecimals, input.locale));
                indexTexts.emplace_back(c * w + (w - textWidth) / 2, answersBottom + (c % 2) * h, textWidth, h);
            }
    }

    // Group lines end at each run's left edge, over header, answer and index
    // lines; in a header or index line they stop short of a text they would
    // cross (a block name over sub-blocks, a value centred on its column).
    const QColor groupColour = sheetColour(doc.properties.sheetColourB);
    if (input.groupLines && groupColour.isValid()) {
        indexTexts.insert(indexTexts.end(), runTexts.begin(), runTexts.end());
        const auto bandLine = [&](int x, int top) {
            const QRect band(x - s, top, s, h);
            if (std::none_of(indexTexts.begin(), indexTexts.end(),
                             [&](const QRect &text) { return text.intersects(band); }))
                painter.fillRect(band, groupColour);
        };
        for (int x : groupLineEdges(blockRuns, subBlockRuns, w, s, g.columns)) {
            for (int line = 0; line < g.headerLines - 1; ++line)
                bandLine(x, line * h);
            painter.fillRect(QRect(x - s, codeTop, s, (1 + g.answerLines) * h), groupColour);
            for (int line = 0; line < g.indexLines; ++line)
                bandLine(x, answersBottom + line * h);
        }
    }

    if (g.indexLines > 0 && filter.textTouches(QRect(0, answersBottom, width, g.indexLines * h))) {
        const int top = answersBottom;
        const int decimals = doc.properties.indexDecimals;
        const QRect sheetSpan(0, top, width, g.indexLines * h);
        for (int c = 0; c < g.columns; ++c) {
            const double value = values[std::size_t(c)];
            if (value == -1.0)
                continue;
            const Question *question = &doc.questions[std::size_t(input.columns[std::size_t(c)])];
            const QRect box = QRect(c * w - w / 2, top + (c % 2) * h, 2 * w, h).intersected(sheetSpan);
            fillIfColoured(painter, box, sheetColour(question->sheetColour));
            const QString text = formatIndex(value, decimals, input.locale);
            const int textWidth = detailMetrics.horizontalAdvance(text);
            drawTextAt(painter, detailMetrics, c * w + (w - textWidth) / 2, box.top() + 2 * s, text);
        }
        const std::vector<HeaderRun> *levels[2] = {&blockRuns, &subBlockRuns};
        for (int level = 0; level < g.headerLines - 1; ++level) {
            const int lineTop = top + (2 + level) * h;
            for (const HeaderRun &run : *levels[level]) {
                if (run.block == -1)
                    continue;
                const QRect box(run.firstColumn * w, lineTop, run.columnCount * w, h);
                fillIfColoured(painter, box, runColours[std::size_t(2 * level + run.colourSlot)]);
                const double value = columnRunIndex(doc, input.columns, run.firstColumn, run.columnCount, rows);
                if (value == -1.0)
                    continue;
                const QString text = formatIndex(value, decimals, input.locale);
                const int textWidth = detailMetrics.horizontalAdvance(text);
                drawTextAt(painter, detailMetrics, box.left() + (box.width() - textWidth) / 2, lineTop + 2 * s, text);
            }
        }
    }

    // Caption block of the pictures.
    if (!captions.empty()
        && filter.textTouches(QRect(0, answersBottom + g.indexLines * h, width, g.captionLines * h + g.captionExtra))) {
        int top = answersBottom + g.indexLines * h;
        fillIfColoured(painter, QRect(0, top, width, g.captionLines * h + g.captionExtra),
                       sheetColour(doc.properties.sheetColourA));
        for (const CaptionText &caption : captions) {
            const int slot = caption.lines * h + caption.extra;
            // A word wider than the sheet stands out into the picture's
            // margins (sheetPictureMargins) rather than being clipped.
            painter.drawText(QRect(0, top, std::max(1, width - 1), slot),
                             Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextWordWrap | Qt::TextDontClip, caption.text);
            top += slot;
        }
    }

    painter.restore();
    return 0;
}

QImage renderSheetImage(const SheetInput &input, SheetTextOffsets &offsets, qreal devicePixelRatio,
                        SheetGeometry *geometry)
{
    QImage image;
    renderSheetInto(image, input, offsets, devicePixelRatio, geometry);
    return image;
}

bool renderSheetInto(QImage &image, const SheetInput &input, SheetTextOffsets &offsets, qreal devicePixelRatio,
                     SheetGeometry *geometry)
{
    const SheetGeometry g = measureSheet(input);
    if (geometry)
        *geometry = g;
    if (!input.document || g.width() <= 0 || g.height() <= 0) {
        image = QImage();
        return false;
    }
    qreal dpr = devicePixelRatio > 0.0 ? devicePixelRatio : 1.0;
    const qint64 pixels = qint64(g.width()) * g.height();
    if (dpr != 1.0 && qint64(double(pixels) * dpr * dpr * 4.0) > MaxScaledImageBytes)
        dpr = 1.0;
    if (pixels * 4 > MaxImageBytes) {
        image = QImage();
        return false;
    }
    const QSize size(qRound(g.width() * dpr), qRound(g.height() * dpr));
    if (image.size() != size || image.format() != QImage::Format_RGB32 || image.devicePixelRatio() != dpr) {
        image = QImage(); // let the old picture go before the new one is taken
        image = QImage(size, QImage::Format_RGB32);
        if (image.isNull())
            return false; // too large for memory: the caller reports
        image.setDevicePixelRatio(dpr);
    }
    QPainter painter(&image);
    if (drawSheet(painter, input, offsets) != 0) {
        painter.end();
        image = QImage();
        return false;
    }
    return true;
}

} // namespace kel
