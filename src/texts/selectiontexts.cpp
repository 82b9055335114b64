// SPDX-License-Identifier: GPL-3.0-or-later
#include "selectiontexts.h"

#include "texts/language.h"

namespace kel {

QString queryErrorMessage(const Document &doc, const QueryError &e, bool sv)
{
    QString where;
    if (e.category >= 0) {
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(e.category)])];
        where = pickText(sv, "category %1 (%2)", "kategori %1 (%2)").arg(e.category).arg(q.selectionLabel);
    } else {
        where = pickText(sv, "the flex category", "flexkategorin");
    }
    QString text;
    switch (e.problem) {
    case QueryProblem::None: return QString();
    case QueryProblem::Syntax:
        return pickText(sv, "'%1' is not CATEGORY=OPTION,... (a backslash escapes the next character)",
                        "'%1' är inte KATEGORI=ALTERNATIV,... (ett omvänt snedstreck skyddar nästa tecken)")
            .arg(e.word);
    case QueryProblem::UnknownCategory:
        text = pickText(sv, "no category '%1'", "ingen kategori '%1'").arg(e.word);
        break;
    case QueryProblem::AmbiguousCategory:
        text = pickText(sv, "several categories are called '%1'; use the number",
                        "flera kategorier heter '%1'; använd numret")
                   .arg(e.word);
        break;
    case QueryProblem::UnknownOption:
        text = pickText(sv, "%1 has no option '%2'", "%1 har inget alternativ '%2'").arg(where, e.word);
        break;
    case QueryProblem::AmbiguousOption:
        text = pickText(sv, "%1 has several options called '%2'; use the number",
                        "%1 har flera alternativ som heter '%2'; använd numret")
                   .arg(where, e.word);
        break;
    case QueryProblem::HiddenOption:
        text = pickText(sv, "option %1 of %2 is the hidden no-answer alternative, which is always counted",
                        "alternativ %1 i %2 är det dolda alternativet för inget svar, som alltid räknas")
                   .arg(e.word, where);
        break;
    }
    const bool aboutCategories =
        e.problem == QueryProblem::UnknownCategory || e.problem == QueryProblem::AmbiguousCategory;
    const QString kind = aboutCategories ? pickText(sv, "the categories are", "kategorierna är")
                                         : pickText(sv, "its options are", "dess alternativ är");
    return QStringLiteral("%1; %2: %3").arg(text, kind, e.choices.join(QStringLiteral(", ")));
}

QString reportPlanErrorMessage(const Document &doc, const ReportPlanError &error, bool sv)
{
    if (error.selection.problem != QueryProblem::None)
        return queryErrorMessage(doc, error.selection, sv);
    if (error.missingCategory)
        return pickText(sv, "the document has no category %1 (it has %2)",
                        "dokumentet har ingen kategori %1 (det har %2)")
            .arg(*error.missingCategory)
            .arg(doc.categories.size());
    return QString();
}

} // namespace kel
