// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/overview/comments.h"

#include "engine/document/rtftext.h"

#include <QRegularExpression>

#include <algorithm>

namespace kel {

namespace {

const QString CrLf = QStringLiteral("\r\n");

// The cell comment of (row, question), or -1; the matrix is only read
// inside its bounds, whatever the caller passes.
qint32 cellCommentAt(const Document &doc, qint32 row, qint32 question)
{
    if (!doc.hasCellComments || row < 0 || question < 0 || row >= doc.rowCount() || question >= doc.columnCount())
        return -1;
    const std::size_t at = std::size_t(question) * std::size_t(doc.rowCount()) + std::size_t(row);
    return at < doc.cellComments.size() ? doc.cellComments[at] : -1;
}

QString questionText(const Document &doc, qint32 question)
{
    return question >= 0 && std::size_t(question) < doc.questions.size() ? doc.questions[std::size_t(question)].text
                                                                         : QString();
}

QString paragraphHtml(const QString &text, bool bold)
{
    // An empty paragraph needs content, or the rich-text view drops it.
    QString inner = text.isEmpty() ? QStringLiteral("&nbsp;") : text.toHtmlEscaped();
    if (bold && !text.isEmpty())
        inner = QStringLiteral("<b>") + inner + QStringLiteral("</b>");
    return QStringLiteral("<p style=\"margin:0; white-space:pre-wrap\">") + inner + QStringLiteral("</p>");
}

bool hasLongRun(const QString &text)
{
    qsizetype run = 0;
    for (const QChar c : text) {
        run = c.isSpace() ? 0 : run + 1;
        if (run > LongestUnbrokenRun)
            return true;
    }
    return false;
}

// A zero-width space after every LongestUnbrokenRun characters of a run
// without spaces (never inside a surrogate pair).
QString withBreakOpportunities(const QString &text)
{
    if (!hasLongRun(text))
        return text;
    QString out;
    out.reserve(text.size() + text.size() / LongestUnbrokenRun + 1);
    qsizetype run = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (run >= LongestUnbrokenRun && !c.isSpace() && !c.isLowSurrogate()) {
            out += QChar(0x200B);
            run = 0;
        }
        out += c;
        run = c.isSpace() ? 0 : run + 1;
    }
    return out;
}

QString linesHtml(const QString &text, bool bold)
{
    static const QRegularExpression lineBreak(QStringLiteral("\r\n|\r|\n"));
    QString html;
    for (const QString &line : withBreakOpportunities(text).split(lineBreak))
        html += paragraphHtml(line, bold);
    return html;
}

QString commentHtml(const QString &comment, const QString &shortenedNote)
{
    QString text = comment;
    // The survey tool stores comments as RTF documents of their own: those
    // show their visible text, read by the safe reader, not their code.
    if (looksLikeRtf(comment)) {
        text = rtfToPlainText(comment);
        if (text.endsWith(QLatin1Char('\n')))
            text.chop(1); // the end of the last paragraph
        if (text.size() <= ShownCommentLength && !hasLongRun(text))
            return rtfToHtml(comment);
    }
    const qsizetype length = text.size();
    if (length <= ShownCommentLength)
        return linesHtml(text, false);
    qsizetype cut = ShownCommentLength;
    if (text[cut - 1].isHighSurrogate())
        --cut;
    return linesHtml(text.left(cut), false) + QStringLiteral("<p style=\"margin:0\"><i>")
        + shortenedNote.arg(length).arg(ShownCommentLength).toHtmlEscaped() + QStringLiteral("</i></p>");
}

} // namespace

CommentsDocument rowComments(const Document &doc, qint32 row, const std::vector<qint32> &columns)
{
    CommentsDocument comments;
    comments.kind = CommentsKind::Row;
    if (row < 0)
        return comments;
    if (std::size_t(row) < doc.rowComments.size() && doc.rowComments[std::size_t(row)].comment != -1)
        comments.entries.push_back(
            {QString::fromUtf8(RowCommentHeading), doc.text(doc.rowComments[std::size_t(row)].comment)});
    for (const qint32 question : columns) {
        const qint32 comment = cellCommentAt(doc, row, question);
        if (comment != -1)
            comments.entries.push_back({questionText(doc, question), doc.text(comment)});
    }
    return comments;
}

CommentsDocument columnComments(const Document &doc, qint32 question, const std::vector<qint32> &rows)
{
    CommentsDocument comments;
    comments.kind = CommentsKind::Column;
    comments.title = questionText(doc, question);
    for (const qint32 row : rows) {
        const qint32 comment = cellCommentAt(doc, row, question);
        if (comment != -1)
            comments.entries.push_back({QString(), doc.text(comment)});
    }
    return comments;
}

CommentsDocument allComments(const Document &doc, const std::vector<qint32> &rows)
{
    CommentsDocument comments;
    comments.kind = CommentsKind::All;
    std::vector<qint32> ordered = rows;
    std::sort(ordered.begin(), ordered.end());
    ordered.erase(std::unique(ordered.begin(), ordered.end()), ordered.end());
    for (const qint32 row : ordered) {
        if (row < 0 || std::size_t(row) >= doc.rowComments.size())
            continue;
        const RowComment &record = doc.rowComments[std::size_t(row)];
        if (record.comment != -1)
            comments.entries.push_back({QString(), doc.text(record.comment)});
    }
    return comments;
}

QString rtfEscape(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    escaped.replace(QLatin1Char('{'), QStringLiteral("\\{"));
    escaped.replace(QLatin1Char('}'), QStringLiteral("\\}"));
    escaped.replace(CrLf, CrLf + QStringLiteral("\\par "));
    return escaped;
}

QString commentsRtf(const CommentsDocument &comments)
{
    if (comments.isEmpty())
        return QString();
    const QString par = QStringLiteral("\\par");
    QString body;
    switch (comments.kind) {
    case CommentsKind::Row:
        for (const CommentEntry &entry : comments.entries)
            body += CrLf + par + CrLf + QStringLiteral("\\b ") + rtfEscape(entry.heading) + QStringLiteral("\\b0")
                + CrLf + par + QLatin1Char(' ') + rtfEscape(entry.text) + CrLf + par;
        body.remove(0, 8); // the leading CR LF "\par" CR LF
        break;
    case CommentsKind::Column:
        body = QStringLiteral("\\b ") + rtfEscape(comments.title) + QStringLiteral("\\b0") + CrLf;
        for (const CommentEntry &entry : comments.entries)
            body += CrLf + par + QLatin1Char(' ') + rtfEscape(entry.text) + CrLf + par;
        break;
    case CommentsKind::All:
        for (const CommentEntry &entry : comments.entries)
            body += CrLf + par + CrLf + par + QLatin1Char(' ') + rtfEscape(entry.text);
        body.remove(0, 13); // the leading CR LF "\par" CR LF "\par "
        break;
    }
    return QStringLiteral("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss MS Sans Serif;}}") + CrLf
        + QStringLiteral("\\deflang1033\\pard\\tx1440\\plain\\f0\\fs17") + body + CrLf + QLatin1Char('}');
}

QString commentsHtml(const CommentsDocument &comments, const QString &shortenedNote)
{
    if (comments.isEmpty())
        return QString();
    QString html;
    if (comments.kind == CommentsKind::Column)
        html += linesHtml(comments.title, true);
    for (std::size_t i = 0; i < comments.entries.size(); ++i) {
        const CommentEntry &entry = comments.entries[i];
        if (i > 0)
            html += paragraphHtml(QString(), false);
        if (comments.kind == CommentsKind::Row)
            html += linesHtml(entry.heading, true);
        html += commentHtml(entry.text, shortenedNote);
    }
    return html;
}

} // namespace kel
