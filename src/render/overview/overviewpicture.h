// SPDX-License-Identifier: GPL-3.0-or-later
// The overview as a picture for the clipboard, a file or a command-line
// report: the sheet drawn in one of its picture modes (32-pixel cells,
// index lines and the caption block).
#pragma once

#include "render/overview/sheetdrawer.h"
#include "render/pictures/picture.h"

namespace kel {

/// How much of the sheet the picture shows.
enum class OverviewPictureContent {
    Answers,         ///< the answer lines too, when data rows are allowed
    HeadersAndTotals ///< headers, index lines and caption only
};

/// The picture of `sheet` (as last built) in `mode` (copy picture, EMF or
/// WMF file). `dataRowsAllowed` is the overview build's decision whether
/// answer rows may leave the program. Invalid (empty) when the sheet has
/// no document or no columns.
Picture overviewPicture(const SheetInput &sheet, SheetMode mode, OverviewPictureContent content, bool dataRowsAllowed);

} // namespace kel
