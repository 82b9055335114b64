// SPDX-License-Identifier: GPL-3.0-or-later
#include "batchline.h"

namespace kel::cli {

QStringList splitCommandLine(const QString &line, QString *error)
{
    QStringList words;
    QString word;
    bool inWord = false; // a quoted empty word ("") is a word too
    enum class Quote { None, Single, Double } quote = Quote::None;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        switch (quote) {
        case Quote::Single:
            if (c == QLatin1Char('\''))
                quote = Quote::None;
            else
                word += c;
            continue;
        case Quote::Double:
            if (c == QLatin1Char('"')) {
                quote = Quote::None;
            } else if (c == QLatin1Char('\\') && i + 1 < line.size()
                       && QStringLiteral("\"\\$`").contains(line.at(i + 1))) {
                word += line.at(++i);
            } else {
                word += c;
            }
            continue;
        case Quote::None: break;
        }
        if (c == QLatin1Char(' ') || c == QLatin1Char('\t')) {
            if (inWord)
                words << word;
            word.clear();
            inWord = false;
            continue;
        }
        inWord = true;
        if (c == QLatin1Char('\'')) {
            quote = Quote::Single;
        } else if (c == QLatin1Char('"')) {
            quote = Quote::Double;
        } else if (c == QLatin1Char('\\')) {
            if (i + 1 == line.size()) {
                if (error)
                    *error = QStringLiteral("the line ends in a backslash");
                return {};
            }
            word += line.at(++i);
        } else {
            word += c;
        }
    }
    if (quote != Quote::None) {
        if (error)
            *error = QStringLiteral("unterminated %1 quote")
                         .arg(quote == Quote::Single ? QStringLiteral("single") : QStringLiteral("double"));
        return {};
    }
    if (inWord)
        words << word;
    if (words.isEmpty() && error)
        *error = QStringLiteral("no command");
    return words;
}

} // namespace kel::cli
