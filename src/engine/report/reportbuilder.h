// SPDX-License-Identifier: GPL-3.0-or-later
// From a recipe and a document to a report's content: the unit list, Show
// for every unit, the document's permissions, and each section's figures.
#pragma once

#include "engine/report/reportcontent.h"
#include "engine/report/reportshow.h"
#include "engine/selection/selectionquery.h"

#include <QLocale>

#include <optional>

namespace kel {

/// The selection a unit starts from: the navigator's ticks, flex total and
/// blocks.
struct ReportBase {
    SelectionModel model; ///< set up for the document
    FlexTotal flex;
    BlockCatalogue blocks;
};

/// A unit to build: its name and the ticks Show gets.
struct ReportUnitPlan {
    QString name;
    SelectionModel model;
};

/// Why the units could not be planned, for the caller to word
/// (texts/selectiontexts.h): a unit's selection names something the document
/// lacks, or the recipe's category is past the document's last.
struct ReportPlanError {
    QueryError selection;
    std::optional<qint32> missingCategory;
};

/// The units of `recipe` (after the base selection for "current" and
/// "within current"). Nothing with `error` when the recipe names a category
/// or option the document does not have.
std::optional<std::vector<ReportUnitPlan>> planReportUnits(const Document &doc, const ReportBase &base,
                                                           const ReportRecipe &recipe, ReportPlanError &error);

/// Which of the recipe's sections the document's permissions allow: pictures
/// where saving pictures is, tables where copying is, comments where copying
/// data is. The title page is always allowed.
bool reportSectionAllowed(const DocumentProperties &properties, ReportSection section);
/// True when the recipe asks for something beyond the title page and the
/// permissions forbid all of it: such a report is refused as a whole.
bool reportEntirelyForbidden(const DocumentProperties &properties, const ReportRecipe &recipe);

struct ReportOptions {
    QLocale locale = QLocale::c(); ///< numbers in tables and graph texts
    QString date;                  ///< the title page's date when the recipe fixes none
    bool shortCategoryNames = false;
    bool valueOrderReversed = false;
    quint64 seed = 1; ///< random row orders
};

/// The content of one planned unit. `words` for refusals and notices. The
/// unit's overview picture refers to `doc`, which must outlive it.
ReportUnit buildReportUnit(const Document &doc, const ReportBase &base, const ReportRecipe &recipe,
                           const ReportUnitPlan &plan, const ReportWords &words, const ReportOptions &options);

/// The title a report carries: the document's project name, or its file's.
QString reportTitle(const Document &doc);

} // namespace kel
