// SPDX-License-Identifier: GPL-3.0-or-later
// A small reader for the rich text that documents carry (their own comment
// is an RTF fragment written by the authoring tool). It understands the part
// of RTF such texts use: groups, paragraphs and line breaks, tabs, bold,
// italic and underline, escaped characters (\\ \{ \} \'hh \uN), and it skips
// the destinations that hold no visible text (font and colour tables,
// pictures, objects, \* groups). Everything else is dropped quietly.
//
// The text is untrusted: the reader never fails, never loads anything from
// outside, runs in time linear in its input and keeps at most MaxGroupDepth
// nested formatting states; deeper groups are read with the formatting of
// the deepest one kept.
#pragma once

#include <QString>

namespace kel {

inline constexpr int RtfMaxGroupDepth = 64;

/// Whether `text` starts (after blanks) like an RTF text: "{\rtf".
bool looksLikeRtf(const QString &text);

/// The visible text of `rtf` as an HTML fragment for Qt's rich-text
/// widgets: one <p> per paragraph, <b>/<i>/<u> for the formatting, every
/// character of the text HTML-escaped. A text that is not RTF is shown as
/// it stands, line breaks kept.
QString rtfToHtml(const QString &rtf);

/// The visible text of `rtf` without formatting: paragraphs end in "\n".
QString rtfToPlainText(const QString &rtf);

} // namespace kel
