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
    auto shared = std::make_shared<const SheetInput>(std::move(input));
    auto offsets = std::make_shared<SheetTextOffsets>();
    Picture picture;
    picture.size = QSize(geometry.width(), geometry.height());
    // The sheet's fonts are made with the ANSI character set and the
    // default pitch and family.
    picture.metafileFonts = MetafileFontClass{0, 0};
    picture.paint = [shared, offsets](QPainter &painter) { drawSheet(painter, *shared, *offsets); };
    return picture;
}

} // namespace kel
