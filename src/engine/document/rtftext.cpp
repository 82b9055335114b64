// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/rtftext.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <vector>

namespace kel {

namespace {

struct Format {
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool operator==(const Format &) const = default;
};

struct Run {
    Format format;
    QString text; // may hold '\n' for a line break inside the paragraph
};
using Paragraph = std::vector<Run>;

struct GroupState {
    Format format;
    bool skip = false; // a destination without visible text
    int unicodeSkip = 1;
};

// Windows-1252 in 0x80..0x9F (the rest of the byte range is Latin-1); the
// authoring tool writes \'hh escapes in that code page.
constexpr std::array<char16_t, 32> Cp1252High = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                                 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

QChar fromCp1252(int byte)
{
    if (byte >= 0x80 && byte < 0xA0)
        return QChar(Cp1252High[std::size_t(byte - 0x80)]);
    return QChar(char16_t(byte));
}

int hexValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

bool isAsciiLetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z');
}

bool isAsciiDigit(QChar c)
{
    return c.unicode() >= '0' && c.unicode() <= '9';
}

// Destinations whose content is never shown.
bool isHiddenDestination(const QString &word)
{
    static const QStringList hidden = {
        QStringLiteral("fonttbl"),
        QStringLiteral("colortbl"),
        QStringLiteral("stylesheet"),
        QStringLiteral("info"),
        QStringLiteral("pict"),
        QStringLiteral("object"),
        QStringLiteral("header"),
        QStringLiteral("footer"),
        QStringLiteral("headerl"),
        QStringLiteral("headerr"),
        QStringLiteral("headerf"),
        QStringLiteral("footerl"),
        QStringLiteral("footerr"),
        QStringLiteral("footerf"),
        QStringLiteral("footnote"),
        QStringLiteral("fldinst"),
        QStringLiteral("themedata"),
        QStringLiteral("colorschememapping"),
        QStringLiteral("latentstyles"),
        QStringLiteral("datastore"),
        QStringLiteral("xmlnstbl"),
        QStringLiteral("listtable"),
        QStringLiteral("listoverridetable"),
        QStringLiteral("rsidtbl"),
        QStringLiteral("generator"),
        QStringLiteral("filetbl"),
        QStringLiteral("revtbl"),
        QStringLiteral("template"),
        QStringLiteral("nonshppict"),
        QStringLiteral("shpinst"),
        QStringLiteral("bkmkstart"),
        QStringLiteral("bkmkend"),
        QStringLiteral("comment"),
        QStringLiteral("annotation"),
        QStringLiteral("atnid"),
        QStringLiteral("atnauthor"),
    };
    return hidden.contains(word);
}

class Reader
{
public:
    explicit Reader(const QString &text) : mText(text) { mStack.push_back(GroupState()); }

    std::vector<Paragraph> read()
    {
        const qsizetype n = mText.size();
        qsizetype i = 0;
        while (i < n) {
            const QChar c = mText.at(i);
            if (c == QLatin1Char('{')) {
                openGroup();
                ++i;
            } else if (c == QLatin1Char('}')) {
                closeGroup();
                ++i;
            } else if (c == QLatin1Char('\\')) {
                i = control(i + 1);
            } else if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
                ++i; // line ends in RTF source are not text
            } else {
                put(c);
                ++i;
            }
        }
        if (!mCurrent.empty())
            mParagraphs.push_back(std::move(mCurrent));
        return std::move(mParagraphs);
    }

private:
    GroupState &state() { return mStack.back(); }

    void openGroup()
    {
        // Past the depth limit the deepest state is shared: counted, not stored.
        if (mStack.size() < std::size_t(RtfMaxGroupDepth))
            mStack.push_back(mStack.back());
        else
            ++mOverflow;
    }

    void closeGroup()
    {
        if (mOverflow > 0)
            --mOverflow;
        else if (mStack.size() > 1)
            mStack.pop_back();
        // An unmatched '}' at the top level is ignored.
    }

    void put(QChar c)
    {
        if (mPendingSkip > 0) {
            --mPendingSkip;
            return;
        }
        if (state().skip)
            return;
        if (!mCurrent.empty() && mCurrent.back().format == state().format)
            mCurrent.back().text.append(c);
        else
            mCurrent.push_back(Run{state().format, QString(c)});
    }

    void endParagraph()
    {
        mPendingSkip = 0;
        if (state().skip)
            return;
        mParagraphs.push_back(std::move(mCurrent));
        mCurrent.clear();
    }

    // Reads the control sequence after a backslash at `i`; returns the
    // position after it.
    qsizetype control(qsizetype i)
    {
        const qsizetype n = mText.size();
        if (i >= n)
            return i;
        const QChar c = mText.at(i);
        if (!isAsciiLetter(c))
            return controlSymbol(i);

        const qsizetype wordStart = i;
        while (i < n && isAsciiLetter(mText.at(i)))
            ++i;
        const QString word = mText.mid(wordStart, std::min<qsizetype>(i - wordStart, 32));
        bool hasParameter = false;
        bool negative = false;
        qint64 parameter = 0;
        if (i < n && mText.at(i) == QLatin1Char('-') && i + 1 < n && isAsciiDigit(mText.at(i + 1))) {
            negative = true;
            ++i;
        }
        while (i < n && isAsciiDigit(mText.at(i))) {
            hasParameter = true;
            if (parameter < 1000000000) // larger numbers mean nothing here
                parameter = parameter * 10 + (mText.at(i).unicode() - '0');
            ++i;
        }
        if (i < n && mText.at(i) == QLatin1Char(' '))
            ++i; // the delimiter belongs to the control word
        controlWord(word, hasParameter, negative ? -parameter : parameter);
        return i;
    }

    qsizetype controlSymbol(qsizetype i)
    {
        const qsizetype n = mText.size();
        const QChar c = mText.at(i);
        switch (c.unicode()) {
        case '\\':
        case '{':
        case '}': put(c); return i + 1;
        case '~': put(QChar(0x00A0)); return i + 1;
        case '_': put(QChar(0x2011)); return i + 1;
        case '-': return i + 1; // optional hyphen
        case '*': state().skip = true; return i + 1;
        case '\r':
        case '\n': endParagraph(); return i + 1;
        case '\'': {
            if (i + 2 < n && hexValue(mText.at(i + 1)) >= 0 && hexValue(mText.at(i + 2)) >= 0) {
                put(fromCp1252(hexValue(mText.at(i + 1)) * 16 + hexValue(mText.at(i + 2))));
                return i + 3;
            }
            return i + 1;
        }
        default: return i + 1;
        }
    }

    void controlWord(const QString &word, bool hasParameter, qint64 parameter)
    {
        const bool on = !hasParameter || parameter != 0;
        if (word == QLatin1String("par")) {
            endParagraph();
        } else if (word == QLatin1String("line")) {
            put(QLatin1Char('\n'));
        } else if (word == QLatin1String("tab")) {
            put(QLatin1Char('\t'));
        } else if (word == QLatin1String("b")) {
            state().format.bold = on;
        } else if (word == QLatin1String("i")) {
            state().format.italic = on;
        } else if (word == QLatin1String("ul")) {
            state().format.underline = on;
        } else if (word == QLatin1String("ulnone")) {
            state().format.underline = false;
        } else if (word == QLatin1String("plain")) {
            state().format = Format();
        } else if (word == QLatin1String("uc")) {
            state().unicodeSkip = int(std::clamp<qint64>(parameter, 0, 8));
        } else if (word == QLatin1String("u") && hasParameter) {
            qint64 code = parameter;
            if (code < 0)
                code += 65536;
            const int skip = state().unicodeSkip;
            mPendingSkip = 0;
            put(code >= 0 && code <= 0xFFFF ? QChar(char16_t(code)) : QChar(QChar::ReplacementCharacter));
            mPendingSkip = skip;
        } else if (word == QLatin1String("emdash")) {
            put(QChar(0x2014));
        } else if (word == QLatin1String("endash")) {
            put(QChar(0x2013));
        } else if (word == QLatin1String("bullet")) {
            put(QChar(0x2022));
        } else if (word == QLatin1String("lquote")) {
            put(QChar(0x2018));
        } else if (word == QLatin1String("rquote")) {
            put(QChar(0x2019));
        } else if (word == QLatin1String("ldblquote")) {
            put(QChar(0x201C));
        } else if (word == QLatin1String("rdblquote")) {
            put(QChar(0x201D));
        } else if (isHiddenDestination(word)) {
            state().skip = true;
        }
    }

    const QString &mText;
    std::vector<GroupState> mStack;
    int mOverflow = 0;
    int mPendingSkip = 0;
    std::vector<Paragraph> mParagraphs;
    Paragraph mCurrent;
};

std::vector<Paragraph> plainParagraphs(const QString &text)
{
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    lines.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    std::vector<Paragraph> paragraphs;
    for (const QString &line : lines.split(QLatin1Char('\n'))) {
        Paragraph p;
        if (!line.isEmpty())
            p.push_back(Run{Format(), line});
        paragraphs.push_back(std::move(p));
    }
    return paragraphs;
}

std::vector<Paragraph> paragraphsOf(const QString &text)
{
    return looksLikeRtf(text) ? Reader(text).read() : plainParagraphs(text);
}

// Unpaired surrogates (from \uN or a damaged pool) would make invalid HTML
// and UTF-8; they are shown as the replacement character.
QString withoutLoneSurrogates(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate())
            text[i] = QChar(QChar::ReplacementCharacter);
    }
    return text;
}

} // namespace

bool looksLikeRtf(const QString &text)
{
    return text.trimmed().startsWith(QLatin1String("{\\rtf"));
}

QString rtfToHtml(const QString &rtf)
{
    QString html;
    for (const Paragraph &paragraph : paragraphsOf(rtf)) {
        html += QStringLiteral("<p style=\"margin:0; white-space:pre-wrap\">");
        if (paragraph.empty())
            html += QStringLiteral("&nbsp;");
        for (const Run &run : paragraph) {
            QString text = withoutLoneSurrogates(run.text).toHtmlEscaped();
            text.replace(QLatin1Char('\n'), QStringLiteral("<br/>"));
            if (run.format.underline)
                text = QStringLiteral("<u>") + text + QStringLiteral("</u>");
            if (run.format.italic)
                text = QStringLiteral("<i>") + text + QStringLiteral("</i>");
            if (run.format.bold)
                text = QStringLiteral("<b>") + text + QStringLiteral("</b>");
            html += text;
        }
        html += QStringLiteral("</p>");
    }
    return html;
}

QString rtfToPlainText(const QString &rtf)
{
    QString plain;
    for (const Paragraph &paragraph : paragraphsOf(rtf)) {
        for (const Run &run : paragraph)
            plain += run.text;
        plain += QLatin1Char('\n');
    }
    return withoutLoneSurrogates(plain);
}

} // namespace kel
