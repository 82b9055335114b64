// SPDX-License-Identifier: GPL-3.0-or-later
// A report's recipe: which selections become units and which sections each
// unit shows. It is kept as a small "key = value" text file so that people
// can read, compare and edit it.
#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace kel {

/// The sections, in the order a unit shows them.
enum class ReportSection {
    TitlePage,
    IndexTable,
    Overview,
    BlockHistograms,
    BlockFractions,
    TotalIndexGraph,
    BlockIndexGraphs,
    DistributionGraphs,
    RankingGraphs,
    Comments,
};

/// Every section with its name in recipe files and on `kel report --sections`.
struct ReportSectionName {
    ReportSection section;
    const char *key;
};
inline constexpr ReportSectionName ReportSectionNames[] = {
    {ReportSection::TitlePage, "title"},
    {ReportSection::IndexTable, "indexes"},
    {ReportSection::Overview, "overview"},
    {ReportSection::BlockHistograms, "histograms"},
    {ReportSection::BlockFractions, "fractions"},
    {ReportSection::TotalIndexGraph, "total-index"},
    {ReportSection::BlockIndexGraphs, "block-indexes"},
    {ReportSection::DistributionGraphs, "distributions"},
    {ReportSection::RankingGraphs, "rankings"},
    {ReportSection::Comments, "comments"},
};

/// Where the units come from.
enum class ReportUnits {
    Current,    ///< the selection as the navigator holds it
    ByCategory, ///< one per option of a navigator category
    List,       ///< the selections the recipe lists
};

struct ReportRecipe {
    ReportUnits units = ReportUnits::Current;
    qint32 category = -1;       ///< navigator category, for ByCategory
    bool withinCurrent = false; ///< ByCategory: each option within the current selection
    /// List: selections as `kel --select` takes them, "C:O,O;C:..." by
    /// names or numbers (engine/selection/selectionquery.h); a category not
    /// named keeps every option.
    std::vector<QString> selections;
    std::vector<ReportSection> sections; ///< kept in the order of ReportSection
    /// Blocks (document blocks, then user blocks) for the block sections;
    /// empty means every block.
    std::vector<qint32> blocks;
    /// The question that splits the index graphs; -1 draws them whole.
    qint32 split = -1;
    /// Navigator categories for the distribution graphs; empty means every one.
    std::vector<qint32> distributions;
    /// The title page's date as written; empty means today's.
    QString date;

    bool has(ReportSection section) const;
    void add(ReportSection section);
};

/// The section named `key` ("title", "indexes", ...), or nothing.
std::optional<ReportSection> reportSectionForKey(const QString &key);
QString reportSectionKey(ReportSection section);

/// What is wrong in a recipe, for the caller to word (texts/reporttexts.h).
enum class RecipeProblem {
    None,
    UnknownSection,          ///< `word`: a section name
    UnknownSectionHeader,    ///< `word`: the header line
    NotKeyValue,             ///< `word`: the line
    UnknownKey,              ///< `word`: the key
    BadValue,                ///< `word`: the value, `key`: its key
    NoReportSection,         ///< the file has no [Report] line
    ByCategoryNeedsCategory, ///< units = by-category without category
    ListNeedsSelection,      ///< units = list without selection lines
};

struct RecipeError {
    RecipeProblem problem = RecipeProblem::None;
    qsizetype line = 0; ///< 1-based; 0 for the recipe as a whole
    QString word;
    QString key;
};

/// Parses a comma-separated list of section names into `recipe`; false with
/// `error` naming the first unknown one.
bool parseReportSections(const QString &list, ReportRecipe &recipe, RecipeError &error);

/// The recipe as its file holds it.
QString writeReportRecipe(const ReportRecipe &recipe);
/// A recipe file's text; nothing with `error` (naming the line) when a line
/// cannot be read. Unknown keys are errors too: a misspelt key must not
/// silently give a different report.
std::optional<ReportRecipe> readReportRecipe(const QString &text, RecipeError &error);

} // namespace kel
