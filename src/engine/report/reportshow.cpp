// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/report/reportshow.h"

#include <algorithm>

namespace kel {

ReportShown showForReport(const Document &doc, const BlockCatalogue &catalogue, SelectionModel model, FlexTotal flex,
                          quint64 seed)
{
    ReportShown shown;
    const RecountResult recount = model.recount(doc);
    if (!recount.showEnabled) {
        // The navigator's button would be disabled: nothing of this unit may
        // appear, not even its count.
        const bool blocked = std::find(recount.blocked.begin(), recount.blocked.end(), true) != recount.blocked.end();
        shown.refusal = blocked  ? ReportRefusal::Blocked
            : recount.count == 0 ? ReportRefusal::NoAnswers
                                 : ReportRefusal::TooSmall;
        shown.flex = std::move(flex);
        return shown;
    }
    RowRandom random(seed);
    shown.sheet = showSelection(doc, catalogue, model, flex, RowOrderOriginal, random);
    switch (shown.sheet.outcome) {
    case SubSheetOutcome::Ok: break;
    case SubSheetOutcome::Blocked: shown.refusal = ReportRefusal::Blocked; break;
    case SubSheetOutcome::FlexTotalBlocked: shown.refusal = ReportRefusal::FlexTotalBlocked; break;
    case SubSheetOutcome::NoAnswers: shown.refusal = ReportRefusal::NoAnswers; break;
    case SubSheetOutcome::TooSmall: shown.refusal = ReportRefusal::TooSmall; break;
    }
    if (shown.refusal != ReportRefusal::None)
        shown.sheet.rows.clear();
    shown.flex = std::move(flex);
    return shown;
}

} // namespace kel
