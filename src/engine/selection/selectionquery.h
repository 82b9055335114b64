// SPDX-License-Identifier: GPL-3.0-or-later
// A selection written as text, by names or by numbers, as scripts and report
// recipes give it: "Department=Sales,IT;Gender=Woman" or "0:1,4;2:1".
//
//  - Parts are separated by ';'. A part is CATEGORY=OPTIONS or
//    CATEGORY:OPTIONS; the named category keeps exactly those options (none
//    when OPTIONS is empty); a category not named keeps every option.
//  - CATEGORY is the navigator's category number (0-based, in navigator
//    order) or the category's selection label or question code.
//  - OPTIONS are separated by ','. Each is the option's number or its text or
//    short text. A number is the question's alternative number, 0-based, as
//    the document stores it: when the document's first alternative means "no
//    answer", number 0 is that hidden alternative, which the navigator never
//    shows and always counts, so naming it is an error and the visible
//    options start at 1.
//  - Names are compared without regard to case, spaces around them are
//    ignored, and a word of digits only is always a number. A backslash takes
//    the next character literally, for names holding ';' ',' ':' '=' or '\'.
#pragma once

#include "engine/document/document.h"
#include "engine/selection/selectionmodel.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace kel {

/// One named category and the options it keeps.
struct QueryCategory {
    qint32 category = -1; ///< navigator category number
    std::vector<qint32> options;
};

enum class QueryProblem {
    None,
    Syntax,            ///< a part without '=' or ':', or a dangling backslash
    UnknownCategory,   ///< no category has that number or name
    AmbiguousCategory, ///< several categories have that name
    UnknownOption,     ///< the category has no option of that number or name
    AmbiguousOption,   ///< several options have that name
    HiddenOption,      ///< the number of the hidden no-answer alternative
};

/// What went wrong, for the caller to word (texts/selectiontexts.h): the
/// word that was not found and, for unknown and ambiguous names, what exists
/// ("NUMBER NAME" each).
struct QueryError {
    QueryProblem problem = QueryProblem::None;
    QString word;
    qint32 category = -1; ///< for option problems: the category searched
    QStringList choices;
};

struct ParsedSelectionQuery {
    std::vector<QueryCategory> categories;
    QueryError error;
    bool ok() const { return error.problem == QueryProblem::None; }
};

/// Reads a selection written as above against `doc`'s categories.
ParsedSelectionQuery parseSelectionQuery(const Document &doc, const QString &spec);

/// Applies a selection written as above to `model`: each named category
/// keeps exactly the listed options. False with `error`, `model` untouched,
/// when the text names something `doc` does not have.
bool applySelectionQuery(const Document &doc, SelectionModel &model, const QString &spec, QueryError &error);

/// The options of a flex-category list ("OPTION,OPTION"), by number or name,
/// of `question`; the part of parseSelectionQuery that reads one list.
ParsedSelectionQuery parseOptionList(const Document &doc, qint32 question, const QString &list);

/// "NUMBER NAME" of every visible option of `question`, and of every
/// category: what an error lists.
QStringList optionChoices(const Document &doc, qint32 question);
QStringList categoryChoices(const Document &doc);

} // namespace kel
