// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/report/reportcommands.h"

#include "gui/common/viewersession.h"
#include "gui/report/reportdialog.h"

namespace kel {

void ReportCommands::createReport()
{
    const ViewerSession &session = mContext.session;
    const Document *doc = session.document();
    if (!doc)
        return;
    ReportDialogContext context;
    context.document = doc;
    context.base.model = selectionModelFor(*doc, session.shownSheet().selection);
    context.base.flex = session.flexTotal();
    context.base.blocks = session.blocks();
    context.isSwedish = mContext.settings.isSwedish;
    context.locale = QLocale();
    ReportDialog dialog(std::move(context), mContext.host.dialogParent());
    dialog.exec();
}

} // namespace kel
