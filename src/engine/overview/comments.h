// SPDX-License-Identifier: GPL-3.0-or-later
// The respondents' comments, gathered for the comments window: a row's own
// comment and its comments on single answers, one column's comments over
// the sheet's rows, or every row comment of the document. The content is
// kept as plain entries (a bold heading and the comment as written) and
// turned into the rich text of the window on request, so a comment is never
// read as markup: braces, backslashes, '<' and '&' stay what they are.
#pragma once

#include "engine/document/document.h"

#include <QString>

#include <vector>

namespace kel {

enum class CommentsKind { Row, Column, All };

/// One comment with the heading it is shown under (empty: none).
struct CommentEntry {
    QString heading;
    QString text;
    bool operator==(const CommentEntry &) const = default;
};

struct CommentsDocument {
    CommentsKind kind = CommentsKind::All;
    QString title; ///< Column: the question's text, bold above the comments
    std::vector<CommentEntry> entries;
    bool isEmpty() const { return entries.empty(); }
};

/// The heading of a row's own comment, in both interface languages.
inline constexpr char RowCommentHeading[] = "Radkommentar";

/// Row `row`'s own comment (heading "Radkommentar"), then its comments on
/// the questions of `columns` in that order, each under the question's text.
CommentsDocument rowComments(const Document &doc, qint32 row, const std::vector<qint32> &columns);
/// The comments on question `question` of the rows of `rows`, in list order
/// and without their row numbers; empty when the document has no cell
/// comments.
CommentsDocument columnComments(const Document &doc, qint32 question, const std::vector<qint32> &rows);
/// The row comments of the rows of `rows` (the selection on screen), in
/// row order whatever order the list has, so that the window gives nothing
/// of the sheet's random order away.
CommentsDocument allComments(const Document &doc, const std::vector<qint32> &rows);

/// Backslashes and braces escaped, every CR LF followed by "\par ".
QString rtfEscape(const QString &text);

/// The comments as an RTF text for a rich-text box; an empty document gives
/// an empty text.
QString commentsRtf(const CommentsDocument &comments);

/// A comment longer than this (in characters of its visible text) is shown
/// shortened to this length, followed by a note. Laying out rich text costs
/// a few microseconds a character, so this keeps any comments window quick
/// to open while leaving every plausible comment whole.
inline constexpr qsizetype ShownCommentLength = 50000;
/// After this many characters without a space, a zero-width space (U+200B)
/// gives the text layout somewhere to wrap: without one it searches an
/// unbroken run for a break point over and over, in time that grows with the
/// square of the run's length.
inline constexpr qsizetype LongestUnbrokenRun = 200;

/// The comments as HTML for Qt's rich-text widgets: bold headings, one
/// paragraph per line of a comment, an empty paragraph between comments.
/// Line breaks of any kind (CR LF, LF, CR) start a new paragraph. A
/// comment stored as an RTF document ("{\\rtf...") shows its visible text
/// (see rtftext.h), as plain text when that is shortened or has a run that
/// needs break opportunities; every other comment is shown character for
/// character, apart from those break opportunities. A shortened comment is
/// followed by `shortenedNote` in italics, its "%1" replaced by the
/// comment's length and "%2" by ShownCommentLength.
QString commentsHtml(const CommentsDocument &comments, const QString &shortenedNote);

} // namespace kel
