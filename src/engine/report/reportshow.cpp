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
        shown.outcome = Refusal{blocked                  ? RefusalCode::Blocked
                                    : recount.count == 0 ? RefusalCode::NoAnswers
                                                         : RefusalCode::TooSmall};
        shown.flex = std::move(flex);
        return shown;
    }
    RowRandom random(seed);
    shown.sheet = showSelection(doc, catalogue, model, flex, RowOrderOriginal, random);
    shown.outcome = shown.sheet.outcome;
    if (!shown.outcome.done())
        shown.sheet.rows.clear();
    shown.flex = std::move(flex);
    return shown;
}

} // namespace kel
