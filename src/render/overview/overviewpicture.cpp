// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/overview/overviewpicture.h"

#include <QPainter>

#include <memory>

namespace kel {

Picture overviewPicture(const SheetInput &sheet, SheetMode mode, OverviewPictureContent content, bool dataRowsAllowed)
{
    SheetInput input = sheet;
    input.mode = mode;
    input.maxRowsDisplayed = (content == OverviewPictureContent::Answers && dataRowsAllowed) ? -1 : 0;
    const SheetGeometry geometry = measureSheet(input);
    if (!input.document || geometry.width() <= 0 || geometry.height() <= 0)
        return Picture{};
    auto offsets = std::make_shared<SheetTextOffsets>();
    // The picture widens by what its edge texts need: the sheet keeps its
    // cells and the margins show the picture's background beside it, with
    // the caption block's colour carried across under the caption.
    const QMargins margins = sheetPictureMargins(input, *offsets);
    const int captionTop = geometry.height() - geometry.captionLines * geometry.cellHeight - geometry.captionExtra;
    const QColor captionColour = sheetColour(input.document->properties.sheetColourA);
    auto shared = std::make_shared<const SheetInput>(std::move(input));
    Picture picture;
    picture.size = QSize(geometry.width() + margins.left() + margins.right(), geometry.height());
    // The sheet's fonts are made with the ANSI character set and the
    // default pitch and family.
    picture.metafileFonts = MetafileFontClass{0, 0};
    const int sheetWidth = geometry.width();
    const int height = geometry.height();
    auto paintSides = [margins, captionTop, captionColour, sheetWidth, height](QPainter &painter) {
        for (const QRect &side :
             {QRect(0, 0, margins.left(), height), QRect(margins.left() + sheetWidth, 0, margins.right(), height)}) {
            if (side.isEmpty())
                continue;
            painter.fillRect(side, QColor::fromRgb(SheetBackground));
            if (captionColour.isValid())
                painter.fillRect(QRect(side.left(), captionTop, side.width(), height - captionTop), captionColour);
        }
    };
    picture.paint = [shared, offsets, margins, paintSides](QPainter &painter) {
        paintSides(painter);
        painter.save();
        painter.translate(margins.left(), 0);
        drawSheet(painter, *shared, *offsets);
        painter.restore();
    };
    picture.paintArea = [shared, offsets, margins, paintSides](QPainter &painter, const QRect &area) {
        paintSides(painter);
        painter.save();
        painter.translate(margins.left(), 0);
        drawSheetArea(painter, *shared, *offsets, area.translated(-margins.left(), 0));
        painter.restore();
    };
    // The sheet fills its background before anything else, and the margins
    // are filled beside it.
    picture.opaque = true;
    return picture;
}

} // namespace kel
