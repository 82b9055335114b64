// SPDX-License-Identifier: GPL-3.0-or-later
#include "selectionquery.h"

#include "engine/selection/counting.h"

#include <limits>

namespace kel {

namespace {

/// Splits at unescaped `separator`, keeping escapes for the next split.
bool splitEscaped(const QString &text, QChar separator, QStringList &parts)
{
    QString current;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\')) {
            if (i + 1 == text.size())
                return false;
            current += c;
            current += text.at(++i);
        } else if (c == separator) {
            parts << current;
            current.clear();
        } else {
            current += c;
        }
    }
    parts << current;
    return true;
}

/// The word with its escapes taken out and outer spaces trimmed.
QString unescaped(const QString &word)
{
    QString out;
    const QString trimmed = word.trimmed();
    for (qsizetype i = 0; i < trimmed.size(); ++i)
        out += trimmed.at(i) == QLatin1Char('\\') && i + 1 < trimmed.size() ? trimmed.at(++i) : trimmed.at(i);
    return out;
}

bool isNumber(const QString &word, qint32 &value)
{
    if (word.isEmpty())
        return false;
    for (const QChar c : word)
        if (!c.isDigit() || c.unicode() > 0x7f)
            return false;
    bool ok = false;
    value = word.toInt(&ok);
    if (!ok)
        value = std::numeric_limits<qint32>::max(); // out of every range
    return true;
}

bool sameName(const QString &a, const QString &b)
{
    return !b.isEmpty() && a.compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

qint32 resolveCategory(const Document &doc, const QString &word, QueryError &error)
{
    const qint32 count = qint32(doc.categories.size());
    qint32 number = -1;
    if (isNumber(word, number)) {
        if (number < count)
            return number;
    } else {
        std::vector<qint32> found;
        for (qint32 c = 0; c < count; ++c) {
            const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(c)])];
            if (sameName(word, q.selectionLabel) || sameName(word, q.code))
                found.push_back(c);
        }
        if (found.size() == 1)
            return found.front();
        if (found.size() > 1) {
            error = {QueryProblem::AmbiguousCategory, word, -1, categoryChoices(doc)};
            return -1;
        }
    }
    error = {QueryProblem::UnknownCategory, word, -1, categoryChoices(doc)};
    return -1;
}

bool resolveOptions(const Document &doc, qint32 question, qint32 category, const QString &list, QueryCategory &out,
                    QueryError &error)
{
    const Question &q = doc.questions[std::size_t(question)];
    const qint32 first = firstVisibleOption(doc);
    QStringList words;
    if (!splitEscaped(list, QLatin1Char(','), words)) {
        error = {QueryProblem::Syntax, list, category, {}};
        return false;
    }
    for (const QString &raw : words) {
        const QString word = unescaped(raw);
        if (word.isEmpty())
            continue;
        qint32 number = -1;
        if (isNumber(word, number)) {
            if (number < first) {
                error = {QueryProblem::HiddenOption, word, category, optionChoices(doc, question)};
                return false;
            }
            if (number >= q.alternativeCount) {
                error = {QueryProblem::UnknownOption, word, category, optionChoices(doc, question)};
                return false;
            }
            out.options.push_back(number);
            continue;
        }
        std::vector<qint32> found;
        for (qint32 o = first; o < q.alternativeCount; ++o) {
            const Alternative &a = doc.alternatives[std::size_t(q.firstAlternative + o)];
            if (sameName(word, a.text) || sameName(word, a.shortText))
                found.push_back(o);
        }
        if (found.size() != 1) {
            error = {found.empty() ? QueryProblem::UnknownOption : QueryProblem::AmbiguousOption, word, category,
                     optionChoices(doc, question)};
            return false;
        }
        out.options.push_back(found.front());
    }
    return true;
}

} // namespace

QStringList categoryChoices(const Document &doc)
{
    QStringList choices;
    for (std::size_t c = 0; c < doc.categories.size(); ++c) {
        const Question &q = doc.questions[std::size_t(doc.categories[c])];
        choices << QStringLiteral("%1 %2 (%3)").arg(c).arg(q.selectionLabel, q.code);
    }
    return choices;
}

QStringList optionChoices(const Document &doc, qint32 question)
{
    const Question &q = doc.questions[std::size_t(question)];
    QStringList choices;
    for (qint32 o = firstVisibleOption(doc); o < q.alternativeCount; ++o) {
        const Alternative &a = doc.alternatives[std::size_t(q.firstAlternative + o)];
        choices << (a.shortText.isEmpty() || a.shortText == a.text
                        ? QStringLiteral("%1 %2").arg(o).arg(a.text)
                        : QStringLiteral("%1 %2 (%3)").arg(o).arg(a.text, a.shortText));
    }
    return choices;
}

ParsedSelectionQuery parseSelectionQuery(const Document &doc, const QString &spec)
{
    ParsedSelectionQuery parsed;
    QStringList parts;
    if (!splitEscaped(spec, QLatin1Char(';'), parts)) {
        parsed.error = {QueryProblem::Syntax, spec, -1, {}};
        return parsed;
    }
    for (const QString &part : parts) {
        if (part.trimmed().isEmpty())
            continue;
        // The first unescaped '=' or ':' ends the category.
        qsizetype at = -1;
        for (qsizetype i = 0; i < part.size() && at < 0; ++i) {
            if (part.at(i) == QLatin1Char('\\'))
                ++i;
            else if (part.at(i) == QLatin1Char('=') || part.at(i) == QLatin1Char(':'))
                at = i;
        }
        if (at < 0) {
            parsed.error = {QueryProblem::Syntax, part.trimmed(), -1, {}};
            return parsed;
        }
        QueryCategory chosen;
        chosen.category = resolveCategory(doc, unescaped(part.left(at)), parsed.error);
        if (chosen.category < 0)
            return parsed;
        const qint32 question = doc.categories[std::size_t(chosen.category)];
        if (!resolveOptions(doc, question, chosen.category, part.mid(at + 1), chosen, parsed.error))
            return parsed;
        parsed.categories.push_back(std::move(chosen));
    }
    return parsed;
}

bool applySelectionQuery(const Document &doc, SelectionModel &model, const QString &spec, QueryError &error)
{
    const ParsedSelectionQuery parsed = parseSelectionQuery(doc, spec);
    if (!parsed.ok()) {
        error = parsed.error;
        return false;
    }
    for (const QueryCategory &part : parsed.categories) {
        model.setCategoryChecked(part.category, false);
        for (const qint32 option : part.options)
            model.setOptionChecked(part.category, option, true);
    }
    return true;
}

ParsedSelectionQuery parseOptionList(const Document &doc, qint32 question, const QString &list)
{
    ParsedSelectionQuery parsed;
    QueryCategory chosen;
    if (resolveOptions(doc, question, -1, list, chosen, parsed.error))
        parsed.categories.push_back(std::move(chosen));
    return parsed;
}

} // namespace kel
