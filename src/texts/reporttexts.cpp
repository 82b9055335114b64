// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/reporttexts.h"

#include "texts/graphtexts.h"
#include "texts/language.h"
#include "texts/messages.h"

namespace kel {

ReportWords reportWords(const Document &doc, bool sv)
{
    ReportWords w;
    w.contents = pickText(sv, "Contents", "Innehåll");
    w.page = pickText(sv, "Page %1 of %2", "Sida %1 av %2");
    w.selection = pickText(sv, "Selection", "Urval");
    w.respondents = pickText(sv, "Respondents", "Svarande");
    w.comparedWith = pickText(sv, "Compared with", "Jämförs med");
    w.date = pickText(sv, "Date", "Datum");
    w.indexTable = pickText(sv, "Indexes", "Index");
    w.overview = pickText(sv, "Overview", "Översikt");
    w.comments = pickText(sv, "Comments", "Kommentarer");
    w.refused = pickText(sv, "Not shown", "Visas inte");
    w.blocked = selectionBlockedMessage(sv);
    w.flexTotalBlocked = flexTotalBlockedMessage(sv);
    w.noAnswers = showRefusalMessage(doc, Refusal{RefusalCode::NoAnswers}, sv);
    w.tooSmall = showRefusalMessage(doc, Refusal{RefusalCode::TooSmall}, sv);
    w.splitNotAllowed = splitNotAllowedMessage(sv);
    w.blockWithoutQuestions = blockWithoutQuestionsMessage(sv);
    w.picturesForbidden = pickText(sv, "The document does not allow its pictures to be saved; the graphs are left out.",
                                   "Dokumentet tillåter inte att bilder sparas; graferna är utelämnade.");
    w.tablesForbidden = pickText(sv, "The document does not allow copying; the index table is left out.",
                                 "Dokumentet tillåter inte kopiering; indextabellen är utelämnad.");
    w.commentsForbidden = pickText(sv, "The document does not allow its data to be copied; the comments are left out.",
                                   "Dokumentet tillåter inte att data kopieras; kommentarerna är utelämnade.");
    w.commentsNotShown =
        pickText(sv, "The overview shows no answers for this selection, so neither are comments shown.",
                 "Översikten visar inga svar för detta urval, så inte heller kommentarer visas.");
    w.graphTooBig = graphTooBigMessage(sv);
    w.noIndexes = pickText(sv, "The document has no indexes.", "Dokumentet har inga index.");
    return w;
}

QString reportSectionName(ReportSection section, bool sv)
{
    switch (section) {
    case ReportSection::TitlePage: return pickText(sv, "Title page", "Titelsida");
    case ReportSection::IndexTable: return pickText(sv, "Index table", "Indextabell");
    case ReportSection::Overview: return pickText(sv, "Overview picture", "Översiktsbild");
    case ReportSection::BlockHistograms: return pickText(sv, "Block histograms", "Histogram per område");
    case ReportSection::BlockFractions: return pickText(sv, "Block graphs", "Andelsgrafer per område");
    case ReportSection::TotalIndexGraph: return pickText(sv, "Total index graph", "Totalindexgraf");
    case ReportSection::BlockIndexGraphs: return pickText(sv, "Block index graphs", "Områdesindexgrafer");
    case ReportSection::DistributionGraphs: return pickText(sv, "Distribution graphs", "Fördelningsgrafer");
    case ReportSection::RankingGraphs: return pickText(sv, "Ranking graphs", "Rangordningsgrafer");
    case ReportSection::Comments: return pickText(sv, "Comments", "Kommentarer");
    }
    return {};
}

QString reportForbiddenMessage(bool sv)
{
    return pickText(sv,
                    "The document's permissions forbid every section of this report (pictures may not be saved, "
                    "tables and data may not be copied). Nothing was written.",
                    "Dokumentets behörigheter förbjuder alla delar av denna rapport (bilder får inte sparas, "
                    "tabeller och data får inte kopieras). Ingenting skrevs.");
}

ReportDialogTexts reportDialogTexts(bool sv)
{
    ReportDialogTexts t;
    t.menuItem = pickText(sv, "Crea&te Report...", "Skapa &rapport...");
    t.title = pickText(sv, "Create Report", "Skapa rapport");
    t.unitsGroup = pickText(sv, "Selections", "Urval");
    t.current = pickText(sv, "&The current selection", "&Det aktuella urvalet");
    t.byCategory = pickText(sv, "&One per option of:", "&Ett per alternativ i:");
    t.withinCurrent = pickText(sv, "&Within the current selection", "&Inom det aktuella urvalet");
    t.list = pickText(sv, "&These selections:", "&Dessa urval:");
    t.listHint = pickText(sv, "One per line: CATEGORY:OPTION,OPTION;CATEGORY:...",
                          "Ett per rad: KATEGORI:ALTERNATIV,ALTERNATIV;KATEGORI:...");
    t.sectionsGroup = pickText(sv, "Sections", "Delar");
    t.blocks = pickText(sv, "&Blocks:", "&Områden:");
    t.split = pickText(sv, "&Split index graphs by:", "&Dela indexgrafer efter:");
    t.wholeGraphs = pickText(sv, "(no split)", "(ingen delning)");
    t.date = pickText(sv, "D&ate on the title page:", "D&atum på titelsidan:");
    t.preview = pickText(sv, "&Preview", "&Förhandsgranska");
    t.loadRecipe = pickText(sv, "&Load Recipe...", "&Läs in recept...");
    t.saveRecipe = pickText(sv, "&Save Recipe...", "&Spara recept...");
    t.write = pickText(sv, "&Write Report...", "S&kriv rapport...");
    t.recipeFilter =
        pickText(sv, "Report recipes (*.kelreport);;All files (*)", "Rapportrecept (*.kelreport);;Alla filer (*)");
    t.reportFilter = pickText(sv, "PDF document (*.pdf);;Web page (*.html)", "PDF-dokument (*.pdf);;Webbsida (*.html)");
    t.writing = pickText(sv, "Writing unit %1 of %2...", "Skriver enhet %1 av %2...");
    t.cancel = pickText(sv, "Cancel", "Avbryt");
    t.cancelled =
        pickText(sv, "The report was cancelled; nothing was written.", "Rapporten avbröts; ingenting skrevs.");
    t.written = pickText(sv, "%1 was written.", "%1 skrevs.");
    t.failed = pickText(sv, "%1 could not be written: %2", "%1 kunde inte skrivas: %2");
    t.recipeError = pickText(sv, "The recipe %1 cannot be read: %2", "Receptet %1 kan inte läsas: %2");
    return t;
}

QString recipeErrorMessage(const RecipeError &e, bool sv)
{
    QString why;
    switch (e.problem) {
    case RecipeProblem::None: return QString();
    case RecipeProblem::UnknownSection:
        why = pickText(sv, "unknown section '%1'", "okänt avsnitt '%1'").arg(e.word);
        break;
    case RecipeProblem::UnknownSectionHeader:
        why = pickText(sv, "unknown section header '%1'", "okänd avsnittsrubrik '%1'").arg(e.word);
        break;
    case RecipeProblem::NotKeyValue:
        why = pickText(sv, "'%1' is not KEY = VALUE", "'%1' är inte NYCKEL = VÄRDE").arg(e.word);
        break;
    case RecipeProblem::UnknownKey: why = pickText(sv, "unknown key '%1'", "okänd nyckel '%1'").arg(e.word); break;
    case RecipeProblem::BadValue:
        why = pickText(sv, "'%1' is not a value for %2", "'%1' är inget värde för %2").arg(e.word, e.key);
        break;
    case RecipeProblem::NoReportSection: why = pickText(sv, "no [Report] section", "inget avsnitt [Report]"); break;
    case RecipeProblem::ByCategoryNeedsCategory:
        why = pickText(sv, "units = by-category needs a category", "units = by-category kräver en kategori");
        break;
    case RecipeProblem::ListNeedsSelection:
        why = pickText(sv, "units = list needs at least one selection line",
                       "units = list kräver minst en rad selection");
        break;
    }
    if (e.line <= 0)
        return why;
    return pickText(sv, "line %1: %2", "rad %1: %2").arg(e.line).arg(why);
}

} // namespace kel
