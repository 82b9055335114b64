// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the overview sheet on any QPainter: the screen picture (16-pixel
// cells), the copy and save pictures (32-pixel cells with index lines and a
// caption block) and the mini-overview (8-pixel cells, no text) all come
// from drawSheet(), so they cannot drift apart.
#pragma once

#include "engine/overview/sheetlayout.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QLocale>
#include <QMargins>
#include <QRect>
#include <QString>

#include <vector>

class QPainter;

namespace kel {

/// Everything one drawing needs, as plain values: whoever builds the
/// overview (row order, display limit, selection text) fills it in.
struct SheetInput {
    const Document *document = nullptr;
    SheetMode mode = SheetMode::Screen;
    std::vector<qint32> rows;    ///< the ordered row list (n = its size)
    std::vector<qint32> columns; ///< question numbers of the overview columns
    /// Random per column: one offset per question number; empty otherwise.
    std::vector<qint32> columnRowOffsets;
    qint32 overviewMaxRows = 300;  ///< the user's "Overview Max Rows"
    qint32 maxRowsDisplayed = -1;  ///< -1 = no further limit; 0 when data rows are not allowed
    bool groupLines = true;        ///< the user's "Overview Group Lines"
    QString selectionText;         ///< caption of the picture modes
    double totalIndex = 0.0;       ///< the sheet's total index, for the caption
    QLocale locale = QLocale::c(); ///< formats index values and counts
};

struct SubSheet;

/// What every picture of a built overview shares: its document, rows,
/// columns, row offsets, row limit, caption and total index. The user's
/// options and the locale are the caller's to set.
SheetInput sheetInputFor(const Document &doc, const SubSheet &sheet);

/// The background of the sheet where nothing else is drawn: cells of
/// alternatives without a colour, runs without a block. Plain white, so that
/// the black labels stay readable on colour-less cells.
inline constexpr QRgb SheetBackground = 0xFFFFFFFF;
/// Texts are drawn in black, as on a fresh drawing surface.
inline constexpr QRgb SheetTextColour = 0xFF000000;

/// A document colour (0x00BBGGRR) as QColor; -1 (or any negative value)
/// gives an invalid colour, which draws no fill.
QColor sheetColour(qint32 colourRef);

/// The sheet's fonts: "Arial" (or its metric twin Liberation Sans) at
/// 12 x scale pixels; bold for the header lines.
QFont sheetFont(bool bold, int scale);

/// Label offsets that centre each question's code and each alternative's
/// label in a 16-pixel cell: measured once per document, used at every scale.
class SheetTextOffsets
{
public:
    bool isComputed() const { return mComputed; }
    void compute(const Document &doc);
    void clear();
    int questionOffset(qint32 question) const;
    int alternativeOffset(qint32 alternative) const;

private:
    bool mComputed = false;
    std::vector<int> mQuestions;
    std::vector<int> mAlternatives;
};

/// Sizes of the sheet for `input` (caption lines are measured with the
/// detail font of the mode).
SheetGeometry measureSheet(const SheetInput &input);

/// The room a picture of the sheet needs beside it, left and right, so that
/// no text is cut at its edges: index values centred on the first and last
/// columns, codes wider than their cell, caption words wider than the sheet.
/// None outside the picture modes. Computes `offsets` when not yet computed.
QMargins sheetPictureMargins(const SheetInput &input, SheetTextOffsets &offsets);

/// Draws the sheet with its top-left corner at the painter's origin.
/// Computes `offsets` first when they are not yet computed. Returns 0 on
/// success, -1 when there is nothing to draw with (no document, or an
/// inactive painter).
int drawSheet(QPainter &painter, const SheetInput &input, SheetTextOffsets &offsets);

/// The same, but only the pixels inside `area` (in the sheet's pixels, with
/// the sheet's top-left corner still at the painter's origin): whatever the
/// whole drawing puts there, pixel for pixel on a raster device, at a cost
/// that follows the area rather than the sheet. The painter is clipped to
/// the area while drawing. A null `area` draws the whole sheet.
int drawSheetArea(QPainter &painter, const SheetInput &input, SheetTextOffsets &offsets, const QRect &area);

/// The sheet drawn into a new 32-bit image at `devicePixelRatio` (the image
/// carries that ratio). A sheet too large for memory at that ratio falls
/// back to ratio 1; a null image means it could not be made at all (no
/// document, no columns, or a picture of more than 1.5 GB).
QImage renderSheetImage(const SheetInput &input, SheetTextOffsets &offsets, qreal devicePixelRatio = 1.0,
                        SheetGeometry *geometry = nullptr);

/// The same into `image`, whose memory is reused when it already has the
/// sheet's size and ratio (a large picture costs more to allocate than to
/// draw). Returns false, with `image` null, when it could not be made.
bool renderSheetInto(QImage &image, const SheetInput &input, SheetTextOffsets &offsets, qreal devicePixelRatio = 1.0,
                     SheetGeometry *geometry = nullptr);

} // namespace kel
