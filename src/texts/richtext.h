// SPDX-License-Identifier: GPL-3.0-or-later
// Documents keep their comments as RTF fragments written by the survey tool.
// Qt reads no RTF, so the few things such a fragment carries (paragraphs,
// bold, italic, underline, 8-bit and Unicode characters) are turned into
// HTML built here from escaped text. The result can never name an image, a
// link or a style sheet, so showing it loads nothing from outside.
#pragma once

#include <QString>

namespace kel {

/// HTML for `rtf`. Text that is not RTF (no leading "{\rtf") is taken as
/// plain text. Damaged RTF (unbalanced braces, cut-off control words) gives
/// whatever text could be recovered; destinations such as font and colour
/// tables are left out.
QString rtfToHtml(const QString &rtf);

} // namespace kel
