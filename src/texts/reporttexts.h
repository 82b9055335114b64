// SPDX-License-Identifier: GPL-3.0-or-later
// The words of reports and of the Create Report dialog.
#pragma once

#include "engine/document/document.h"
#include "engine/report/reportcontent.h"

#include <QString>

namespace kel {

/// The words a report of `doc` is written in; the refusals are Show's own.
ReportWords reportWords(const Document &doc, bool isSwedish);

/// What a section is called in the dialog and in messages.
QString reportSectionName(ReportSection section, bool isSwedish);

/// A recipe's error in words, with its line number when it has one.
QString recipeErrorMessage(const RecipeError &error, bool isSwedish);

/// A report whose every section the document's permissions forbid.
QString reportForbiddenMessage(bool isSwedish);

struct ReportDialogTexts {
    QString menuItem; ///< File menu
    QString title;
    QString unitsGroup;
    QString current;
    QString byCategory;
    QString withinCurrent;
    QString list;
    QString listHint;
    QString sectionsGroup;
    QString blocks;
    QString split;
    QString wholeGraphs;
    QString date;
    QString preview;
    QString loadRecipe;
    QString saveRecipe;
    QString write;
    QString recipeFilter;
    QString reportFilter;
    QString writing; ///< "Writing unit %1 of %2..."
    QString cancel;
    QString cancelled; ///< nothing was written
    QString written;   ///< "%1 was written."
    QString failed;    ///< "%1 could not be written: %2"
    QString recipeError;
};
ReportDialogTexts reportDialogTexts(bool isSwedish);

} // namespace kel
