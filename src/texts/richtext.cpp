// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/richtext.h"

#include <QStringDecoder>

#include <vector>

namespace kel {

namespace {

struct GroupState {
    bool skip = false; ///< inside a destination that holds no text
    bool bold = false;
    bool italic = false;
    bool underline = false;
    int unicodeSkip = 1; ///< characters after \uN that stand in for it
};

class HtmlOut
{
public:
    void text(QChar c, const GroupState &state)
    {
        if (state.skip)
            return;
        setStyle(state);
        switch (c.unicode()) {
        case u'<': mHtml += QStringLiteral("&lt;"); break;
        case u'>': mHtml += QStringLiteral("&gt;"); break;
        case u'&': mHtml += QStringLiteral("&amp;"); break;
        case u'"': mHtml += QStringLiteral("&quot;"); break;
        case u'\n': mHtml += QStringLiteral("<br>"); break;
        default:
            if (c.isPrint() || c == QLatin1Char('\t'))
                mHtml += c;
        }
    }
    void lineBreak(const GroupState &state)
    {
        if (!state.skip)
            text(QLatin1Char('\n'), state);
    }
    QString finish()
    {
        setStyle(GroupState());
        return mHtml;
    }

private:
    void setStyle(const GroupState &s)
    {
        // Close in the reverse order of opening so the tags stay nested.
        if (mOpen.underline && !s.underline) { mHtml += QStringLiteral("</u>"); mOpen.underline = false; }
        if (mOpen.italic && !s.italic) {
            if (mOpen.underline) { mHtml += QStringLiteral("</u>"); mOpen.underline = false; }
            mHtml += QStringLiteral("</i>");
            mOpen.italic = false;
        }
        if (mOpen.bold && !s.bold) {
            if (mOpen.underline) { mHtml += QStringLiteral("</u>"); mOpen.underline = false; }
            if (mOpen.italic) { mHtml += QStringLiteral("</i>"); mOpen.italic = false; }
            mHtml += QStringLiteral("</b>");
            mOpen.bold = false;
        }
        if (s.bold && !mOpen.bold) { mHtml += QStringLiteral("<b>"); mOpen.bold = true; }
        if (s.italic && !mOpen.italic) { mHtml += QStringLiteral("<i>"); mOpen.italic = true; }
        if (s.underline && !mOpen.underline) { mHtml += QStringLiteral("<u>"); mOpen.underline = true; }
    }

    QString mHtml;
    GroupState mOpen;
};

bool isDestination(const QString &word)
{
    static const char *const Destinations[] = {"fonttbl", "colortbl", "stylesheet", "info", "pict", "object",
                                               "header", "footer", "listtable", "listoverridetable", "generator",
                                               "xmlnstbl", "rsidtbl", "themedata", "datastore", "latentstyles"};
    for (const char *d : Destinations)
        if (word == QLatin1String(d))
            return true;
    return false;
}

QChar cp1252(int byte)
{
    const char b = char(byte);
    QStringDecoder decoder("windows-1252");
    if (!decoder.isValid())
        return QChar(byte); // Latin-1 is the same for the letters that matter
    const QString s = decoder(QByteArrayView(&b, 1));
    return s.isEmpty() ? QChar(byte) : s.at(0);
}

} // namespace

QString rtfToHtml(const QString &rtf)
{
    HtmlOut out;
    if (!rtf.startsWith(QLatin1String("{\\rtf"))) {
        for (QChar c : rtf)
            out.text(c == QLatin1Char('\r') ? QChar() : c, GroupState());
        return out.finish();
    }

    std::vector<GroupState> stack{GroupState()};
    int pendingSkip = 0; // fallback characters still to drop after \uN
    const qsizetype n = rtf.size();
    qsizetype i = 0;
    while (i < n) {
        const QChar c = rtf.at(i);
        GroupState &state = stack.back();
        if (c == QLatin1Char('{')) {
            // Nesting deeper than any real fragment is not followed further.
            if (stack.size() < 256)
                stack.push_back(state);
            ++i;
            continue;
        }
        if (c == QLatin1Char('}')) {
            if (stack.size() > 1)
                stack.pop_back();
            ++i;
            continue;
        }
        if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
            ++i;
            continue;
        }
        if (c != QLatin1Char('\\')) {
            if (pendingSkip > 0)
                --pendingSkip;
            else
                out.text(c, state);
            ++i;
            continue;
        }
        // A control symbol or word.
        ++i;
        if (i >= n)
            break;
        const QChar s = rtf.at(i);
        if (s == QLatin1Char('\\') || s == QLatin1Char('{') || s == QLatin1Char('}')) {
            if (pendingSkip > 0)
                --pendingSkip;
            else
                out.text(s, state);
            ++i;
            continue;
        }
        if (s == QLatin1Char('\'')) {
            const int value = rtf.mid(i + 1, 2).toInt(nullptr, 16);
            i += 3;
            if (pendingSkip > 0)
                --pendingSkip;
            else if (value > 0)
                out.text(cp1252(value), state);
            continue;
        }
        if (s == QLatin1Char('*')) {
            state.skip = true; // an optional destination this reader does not know
            ++i;
            continue;
        }
        if (!s.isLetter()) {
            if (s == QLatin1Char('~'))
                out.text(QChar(0xA0), state);
            ++i;
            continue;
        }
        const qsizetype wordStart = i;
        while (i < n && rtf.at(i).isLetter())
            ++i;
        const QString word = rtf.mid(wordStart, i - wordStart);
        bool hasParameter = false;
        int parameter = 0;
        const qsizetype numberStart = i;
        if (i < n && (rtf.at(i) == QLatin1Char('-') || rtf.at(i).isDigit())) {
            ++i;
            while (i < n && rtf.at(i).isDigit())
                ++i;
            if (i - numberStart <= 11) // longer numbers are no parameter at all
                parameter = rtf.mid(numberStart, i - numberStart).toInt(&hasParameter);
        }
        if (i < n && rtf.at(i) == QLatin1Char(' '))
            ++i; // the delimiter belongs to the control word

        if (isDestination(word)) {
            state.skip = true;
        } else if (word == QLatin1String("par") || word == QLatin1String("line")) {
            out.lineBreak(state);
        } else if (word == QLatin1String("tab")) {
            out.text(QLatin1Char('\t'), state);
        } else if (word == QLatin1String("b")) {
            state.bold = !hasParameter || parameter != 0;
        } else if (word == QLatin1String("i")) {
            state.italic = !hasParameter || parameter != 0;
        } else if (word == QLatin1String("ul")) {
            state.underline = !hasParameter || parameter != 0;
        } else if (word == QLatin1String("ulnone")) {
            state.underline = false;
        } else if (word == QLatin1String("plain")) {
            state.bold = state.italic = state.underline = false;
        } else if (word == QLatin1String("uc") && hasParameter) {
            state.unicodeSkip = qBound(0, parameter, 8);
        } else if (word == QLatin1String("u") && hasParameter) {
            const char16_t unit = char16_t(parameter < 0 ? parameter + 65536 : parameter);
            out.text(QChar(unit), state);
            pendingSkip = state.unicodeSkip;
        }
    }
    return out.finish();
}

} // namespace kel
