// SPDX-License-Identifier: GPL-3.0-or-later
// The words for a selection written as text that names something the
// document does not have: what was not found and what exists, so that
// whoever wrote it can correct it without opening the document.
#pragma once

#include "engine/report/reportbuilder.h"
#include "engine/selection/selectionquery.h"

#include <QString>

namespace kel {

/// `error` in words; empty when there is no error.
QString queryErrorMessage(const Document &doc, const QueryError &error, bool isSwedish);

/// Why a report's units could not be planned: a unit's selection or the
/// recipe's category.
QString reportPlanErrorMessage(const Document &doc, const ReportPlanError &error, bool isSwedish);

} // namespace kel
