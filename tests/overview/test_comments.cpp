// SPDX-License-Identifier: GPL-3.0-or-later
// The comments windows' content, built from documents written by the test
// writer and read back by the reader, and the reader of documents' own rich
// text on hostile input.
#include "engine/document/documentreader.h"
#include "engine/document/rtftext.h"
#include "engine/overview/comments.h"
#include "kelwriter.h"

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

const QString Frame = QStringLiteral("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss MS Sans Serif;}}\r\n"
                                     "\\deflang1033\\pard\\tx1440\\plain\\f0\\fs17");

std::unique_ptr<Document> readBack(const SurveyBuilder &builder)
{
    ReadResult result = readDocumentBytes(builder.toBytes());
    EXPECT_EQ(result.code, OpenResult::Ok) << result.detail.toStdString();
    return std::move(result.document);
}

// Four respondents, three overview questions; question 1 is left out of the
// overview, so its comments must not appear in a row's comments.
SurveyBuilder commentedSurvey()
{
    SurveyBuilder b(4);
    const QList<AlternativeSpec> yesNo = {{.label = QStringLiteral("Y")}, {.label = QStringLiteral("N")}};
    b.addQuestion(
        {.code = QStringLiteral("Q1"), .heading = QStringLiteral("First"), .text = QStringLiteral("First {question}")},
        yesNo);
    b.addQuestion({.code = QStringLiteral("Q2"), .heading = QStringLiteral("Hidden"), .inOverview = false}, yesNo);
    b.addQuestion(
        {.code = QStringLiteral("Q3"), .heading = QStringLiteral("Third"), .text = QStringLiteral("Third question")},
        yesNo);
    b.setRowComment(0, QStringLiteral("Braces {a} and back\\slash"));
    b.setRowComment(2, QStringLiteral("Line one\r\nLine two"));
    b.setCellComment(0, 2, QStringLiteral("On the third"));
    b.setCellComment(0, 0, QStringLiteral("On the first"));
    b.setCellComment(0, 1, QStringLiteral("Not in the overview"));
    b.setCellComment(1, 2, QStringLiteral("<b>not bold</b> & more"));
    b.setCellComment(3, 2, QStringLiteral("Last"));
    return b;
}

} // namespace

TEST(Comments, RowColumnAndAllCommentsInRtfAndHtml)
{
    const auto doc = readBack(commentedSurvey());
    ASSERT_TRUE(doc);
    const CommentsDocument row0 = rowComments(*doc, 0, doc->overviewColumns);
    EXPECT_EQ(commentsRtf(row0),
              Frame
                  + QStringLiteral("\\b Radkommentar\\b0\r\n\\par Braces \\{a\\} and back\\\\slash\r\n\\par"
                                   "\r\n\\par\r\n\\b First \\{question\\}\\b0\r\n\\par On the first\r\n\\par"
                                   "\r\n\\par\r\n\\b Third question\\b0\r\n\\par On the third\r\n\\par\r\n}"));

    // Row 2's comment has two lines; row 3 has only a cell comment.
    EXPECT_EQ(commentsRtf(rowComments(*doc, 2, doc->overviewColumns)),
              Frame + QStringLiteral("\\b Radkommentar\\b0\r\n\\par Line one\r\n\\par Line two\r\n\\par\r\n}"));
    EXPECT_EQ(rowComments(*doc, 3, doc->overviewColumns).entries.size(), 1u);
    // Rows and questions outside the document find nothing and read nothing.
    EXPECT_TRUE(rowComments(*doc, 4, doc->overviewColumns).isEmpty());
    EXPECT_EQ(rowComments(*doc, 0, {7, -3}).entries.size(), 1u); // its own comment only

    // Column comments: list order, not row order; rows outside the list are not looked at.
    EXPECT_EQ(commentsRtf(columnComments(*doc, 2, {3, 0})),
              Frame
                  + QStringLiteral("\\b Third question\\b0\r\n\r\n\\par Last\r\n\\par\r\n\\par On the third\r\n"
                                   "\\par\r\n}"));
    EXPECT_TRUE(columnComments(*doc, 12, {0, 1, 2, 3}).isEmpty());

    // All comments: the rows of the selection only, in row order whatever
    // order the sheet shows them in.
    EXPECT_EQ(commentsRtf(allComments(*doc, {3, 2, 1, 0})),
              Frame
                  + QStringLiteral("Braces \\{a\\} and back\\\\slash\r\n\\par\r\n\\par Line one\r\n\\par Line two"
                                   "\r\n}"));
    EXPECT_EQ(commentsRtf(allComments(*doc, {2, 3})), Frame + QStringLiteral("Line one\r\n\\par Line two\r\n}"));
    EXPECT_TRUE(allComments(*doc, {1, 3, 9, -1}).isEmpty());

    // The HTML shows every character literally.
    const QString row1 = commentsHtml(rowComments(*doc, 1, doc->overviewColumns), QString());
    EXPECT_TRUE(row1.contains(QStringLiteral("&lt;b&gt;not bold&lt;/b&gt; &amp; more"))) << row1.toStdString();
    EXPECT_TRUE(row1.contains(QStringLiteral("<b>Third question</b>")));

    // A comment the survey tool stored as RTF shows its text, not its code;
    // the RTF text keeps it escaped.
    CommentsDocument stored;
    stored.entries = {{QString(), QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0 Good \\{x\\}\\par}")}};
    EXPECT_EQ(commentsHtml(stored, QString()),
              QStringLiteral("<p style=\"margin:0; white-space:pre-wrap\">Good {x}</p>"));
    EXPECT_TRUE(commentsRtf(stored).contains(QStringLiteral("\\{\\\\rtf1")));

    // The RTF and the HTML say the same: reading the RTF back gives the text.
    EXPECT_EQ(rtfToPlainText(commentsRtf(row0)),
              QStringLiteral("Radkommentar\nBraces {a} and back\\slash\n\nFirst {question}\nOn the first\n\n"
                             "Third question\nOn the third\n"));
}

TEST(RtfText, ReadsTheSubsetDocumentsUse)
{
    const struct {
        const char *rtf;
        const char *plain;
    } cases[] = {
        {"{\\rtf1{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red0\\green0\\blue0;}\\f0 A\\par B}", "A\nB\n"},
        {"{\\rtf1 \\'e5\\'e4\\'f6 \\'80}", "\xc3\xa5\xc3\xa4\xc3\xb6 \xe2\x82\xac\n"},
        {"{\\rtf1 \\u229?x \\uc2\\u8364 ab c}", "\xc3\xa5x \xe2\x82\xac c\n"},
        {"{\\rtf1 x{\\*\\unknown hidden}y{\\field{\\*\\fldinst HYPERLINK}{\\fldrslt shown}}}", "xyshown\n"},
        {"{\\rtf1 \\\\ \\{ \\}}", "\\ { }\n"},
        {"{\\rtf1 {\\pict 89504e47}z}", "z\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(rtfToPlainText(QString::fromUtf8(c.rtf)), QString::fromUtf8(c.plain)) << c.rtf;

    const QString html = rtfToHtml(QStringLiteral("{\\rtf1 \\b bold\\b0  <tag> & {\\i it}}"));
    EXPECT_TRUE(html.contains(QStringLiteral("<b>bold</b>")) && html.contains(QStringLiteral("&lt;tag&gt; &amp; "))
                && html.contains(QStringLiteral("<i>it</i>")))
        << html.toStdString();
    // Plain text is never taken for markup.
    EXPECT_EQ(rtfToHtml(QStringLiteral("<script>")).count(QStringLiteral("<script>")), 0);
}

TEST(RtfText, HostileInputEndsQuietly)
{
    // Unbalanced, truncated and absurd input: each is read to its end.
    const char *hostile[] = {
        "{\\rtf1 }}}}}}} text",
        "{\\rtf1 {{{{{{ text",
        "{\\rtf1 \\",
        "{\\rtf1 \\'",
        "{\\rtf1 \\'4",
        "{\\rtf1 \\'zz",
        "{\\rtf1 \\u",
        "{\\rtf1 \\u-",
        "{\\rtf1 \\u99999999999999999999 x",
        "{\\rtf1 \\u-99999999999 x",
        "{\\rtf1 \\uc999999999\\u65 abc",
        "{\\rtf1 \\b-",
        "{\\rtf1 \\u55357 lone}",
    };
    for (const char *text : hostile) {
        const QString html = rtfToHtml(QString::fromUtf8(text));
        EXPECT_TRUE(html.startsWith(QStringLiteral("<p")) || html.isEmpty()) << text;
        EXPECT_FALSE(rtfToPlainText(QString::fromUtf8(text)).contains(QChar(0xD83D))) << text;
    }

    // Deep nesting is bounded: formatting set inside the limit survives
    // beyond it and is undone when the groups close.
    const int depth = 100000;
    const QString deep = QStringLiteral("{\\rtf1 ") + QString(depth, QLatin1Char('{')) + QStringLiteral("\\b x")
        + QString(depth, QLatin1Char('}')) + QStringLiteral("y}");
    EXPECT_EQ(rtfToPlainText(deep), QStringLiteral("xy\n"));
    EXPECT_TRUE(rtfToHtml(deep).contains(QStringLiteral("<b>x</b>y")));
    const QString skipped = QStringLiteral("{\\rtf1 {\\fonttbl") + QString(depth, QLatin1Char('{'))
        + QStringLiteral("hidden") + QString(depth, QLatin1Char('}')) + QStringLiteral("}shown}");
    EXPECT_EQ(rtfToPlainText(skipped), QStringLiteral("shown\n"));

    // A long control word and a long number are read, not overflowed.
    const QString longWord = QStringLiteral("{\\rtf1 \\") + QString(100000, QLatin1Char('a'))
        + QString(100000, QLatin1Char('9')) + QStringLiteral(" z}");
    EXPECT_EQ(rtfToPlainText(longWord), QStringLiteral("z\n"));
}

namespace {

QString paragraph(const QString &inner)
{
    return QStringLiteral("<p style=\"margin:0; white-space:pre-wrap\">") + inner + QStringLiteral("</p>");
}

// "abcd " repeated: prose with a space every five characters, `length` long.
QString prose(qsizetype length)
{
    QString text;
    while (text.size() < length)
        text += QStringLiteral("abcd ");
    text.truncate(length);
    return text;
}

QString commentHtml(const QString &text, const QString &note = QStringLiteral("cut %1/%2"))
{
    CommentsDocument comments;
    comments.entries = {{QString(), text}};
    return commentsHtml(comments, note);
}

} // namespace

TEST(CommentLayout, LongCommentsAreShortenedWithTheNote)
{
    const QString note = QStringLiteral("<i>cut %1/%2</i>"); // escaped like every text
    const QString noteHtml = QStringLiteral("<p style=\"margin:0\"><i>&lt;i&gt;cut 50001/50000&lt;/i&gt;</i></p>");
    const QString whole = prose(50000), tooLong = prose(50001);
    EXPECT_EQ(commentHtml(whole, note), paragraph(whole)) << "at the limit a comment is shown whole";
    EXPECT_EQ(commentHtml(tooLong, note), paragraph(whole) + noteHtml) << "one more: the first 50,000 and the note";

    // A surrogate pair across the cut is left out whole.
    QString pairs = prose(49999) + QString::fromUtf16(u"\U0001F600") + QStringLiteral("x");
    EXPECT_EQ(commentHtml(pairs, note),
              paragraph(prose(49999))
                  + QStringLiteral("<p style=\"margin:0\"><i>&lt;i&gt;cut 50002/50000&lt;/i&gt;</i></p>"));

    // An RTF comment is measured by its visible text: whole and rich within
    // the limit, its text shortened beyond it.
    const QString rtfHead = QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0 ");
    EXPECT_EQ(commentHtml(rtfHead + QStringLiteral("\\b ") + whole + QStringLiteral("\\b0}")),
              paragraph(QStringLiteral("<b>") + whole + QStringLiteral("</b>")));
    const QString rtfCut = commentHtml(rtfHead + QStringLiteral("\\b ") + tooLong + QStringLiteral("\\b0}"));
    EXPECT_TRUE(rtfCut.startsWith(paragraph(whole))) << "shown as plain text";
    EXPECT_TRUE(rtfCut.endsWith(QStringLiteral("<i>cut 50001/50000</i></p>")));
}

TEST(CommentLayout, LongRunsWithoutSpacesGetBreakOpportunities)
{
    const QChar zwsp(0x200B);
    const QString run200(200, QLatin1Char('x'));
    struct Case {
        const char *name;
        QString text;
        QString shown;
    } cases[] = {
        {"a run at the limit", run200, run200},
        {"one character more", run200 + QStringLiteral("y"), run200 + zwsp + QStringLiteral("y")},
        {"a space resets the count", run200 + QStringLiteral(" ") + run200, run200 + QStringLiteral(" ") + run200},
        {"a line break resets it too", run200 + QStringLiteral("\n") + run200, run200 + QStringLiteral("\n") + run200},
        {"every further 200", QString(401, QLatin1Char('x')), run200 + zwsp + run200 + zwsp + QStringLiteral("x")},
        {"never inside a surrogate pair",
         QString(199, QLatin1Char('x')) + QString::fromUtf16(u"\U0001F600") + QStringLiteral("z"),
         QString(199, QLatin1Char('x')) + QString::fromUtf16(u"\U0001F600") + zwsp + QStringLiteral("z")},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QString expected;
        for (const QString &line : c.shown.split(QLatin1Char('\n')))
            expected += paragraph(line);
        EXPECT_EQ(commentHtml(c.text), expected);
    }
    // A rich-text comment with such a run is shown as its text, with them.
    const QString rtf = QStringLiteral("{\\rtf1 \\b ") + run200 + QStringLiteral("y\\b0}");
    EXPECT_EQ(commentHtml(rtf), paragraph(run200 + zwsp + QStringLiteral("y")));
    // Headings get them as well.
    CommentsDocument column;
    column.kind = CommentsKind::Column;
    column.title = run200 + QStringLiteral("y");
    column.entries = {{QString(), QStringLiteral("ok")}};
    EXPECT_TRUE(commentsHtml(column, QString())
                    .startsWith(QStringLiteral("<p style=\"margin:0; white-space:pre-wrap\"><b>") + run200 + zwsp
                                + QStringLiteral("y</b>")));
}
