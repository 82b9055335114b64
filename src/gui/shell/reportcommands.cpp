// SPDX-License-Identifier: GPL-3.0-or-later
// File > Create Report...: the dialog gets the document and the selection
// as the overview shows them, so a report of "the current selection" is
// the one on the screen.
#include "gui/report/reportdialog.h"
#include "gui/shell/mainmenus.h"
#include "gui/shell/mainwindow.h"

#include <QAction>

namespace kel {

void MainWindow::connectReportCommands()
{
    connect(mMenus.mnuFCreateReport, &QAction::triggered, this, &MainWindow::createReport);
}

void MainWindow::createReport()
{
    const Document *doc = document();
    if (!doc)
        return;
    ReportDialogContext context;
    context.document = doc;
    context.base.model = selectionModelFor(*doc, mShownSheet.selection);
    context.base.flex = mFlexTotal;
    context.base.blocks = blocks();
    context.isSwedish = mIsSwedish;
    context.locale = QLocale();
    ReportDialog dialog(std::move(context), this);
    dialog.exec();
}

} // namespace kel
