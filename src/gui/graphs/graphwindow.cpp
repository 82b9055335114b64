// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/graphwindow.h"

#include "engine/settings/settingsstore.h"
#include "gui/common/placement.h"
#include "gui/common/popupkeys.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QAction>
#include <QMenu>

namespace kel {

GraphWindow::GraphWindow(bool isSwedish, SaveKind saveKind, StatusLine *status, QWidget *parent)
    : QWidget(parent, Qt::Window), mIsSwedish(isSwedish), mStatus(status), mPopup(new QMenu(this)), mSaveKind(saveKind)
{
}

QAction *GraphWindow::addItem(const char *name, const char *english, const char *swedish)
{
    QAction *a = mPopup->addAction(pickText(mIsSwedish, english, swedish));
    a->setObjectName(QString::fromUtf8(name));
    return a;
}

QAction *GraphWindow::addBar(const char *name)
{
    QAction *a = mPopup->addSeparator();
    a->setObjectName(QString::fromUtf8(name));
    return a;
}

void GraphWindow::addCopyItem()
{
    mnuPCopy = addItem("mnuPCopy", "&Copy", "K&opiera");
    mnuPCopy->setEnabled(false);
    connect(mnuPCopy, &QAction::triggered, this, &GraphWindow::doCopy);
}

void GraphWindow::addPrintItems()
{
    mnuPPrint = addItem("mnuPPrint", "&Print", "Skriv &ut");
    mnuPPrintPreview = addItem("mnuPPrintPreview", "Print P&review", "Förhands&granska");
    mnuPPrint->setEnabled(false);
    mnuPPrintPreview->setEnabled(false);
    connect(mnuPPrint, &QAction::triggered, this, &GraphWindow::printGraph);
    connect(mnuPPrintPreview, &QAction::triggered, this, &GraphWindow::previewGraph);
}

void GraphWindow::addSaveItem()
{
    mnuPSave = addItem("mnuPSave", "&Save As...", "&Spara som...");
    mnuPSave->setEnabled(false);
    connect(mnuPSave, &QAction::triggered, this, &GraphWindow::saveGraph);
}

void GraphWindow::addCloseItem()
{
    mnuPClose = addItem("mnuPClose", "C&lose", "S&täng");
    connect(mnuPClose, &QAction::triggered, this, &QWidget::close);
}

void GraphWindow::setPictureContext(StatusLine *status, const GraphPictureContext &context)
{
    if (status)
        mStatus = status;
    mContext = context;
}

void GraphWindow::updatePictureItems(bool hasGraph)
{
    const bool ready = mContext.options && mContext.settings && hasGraph;
    mnuPCopy->setEnabled(ready && mPermissions.allowCopy);
    const bool printing = hasGraph && graphPrintingPossible(mContext, mPermissions);
    mnuPPrint->setEnabled(printing);
    mnuPPrintPreview->setEnabled(printing);
    mnuPSave->setEnabled(ready && mPermissions.allowSavePicture);
}

bool GraphWindow::doCopy()
{
    if (!mnuPCopy->isEnabled() || !mStatus)
        return false;
    const std::optional<qint32> format = copyFormat();
    return copyGraphPicture(picture(), statusReporter(*mStatus), format, mIsSwedish, mContext.reportError);
}

bool GraphWindow::printGraph()
{
    if (!mnuPPrint->isEnabled() || !mStatus)
        return false;
    return printGraphPicture(picture(), *mContext.settings, graphPrintFooter(mContext.documentIsSwedish),
                             statusReporter(*mStatus));
}

bool GraphWindow::previewGraph()
{
    if (!mnuPPrintPreview->isEnabled())
        return false;
    previewGraphPicture(this, picture(), mContext, mIsSwedish);
    return true;
}

bool GraphWindow::saveGraph()
{
    if (!mnuPSave->isEnabled() || !mStatus)
        return false;
    return saveGraphPicture(this, picture(), mSaveKind, mIsSwedish, *mContext.settings, statusReporter(*mStatus),
                            mContext.chooseFile, mContext.reportError);
}

void previewGraphPicture(QWidget *parent, const Picture &picture, const GraphPictureContext &context, bool isSwedish)
{
    const QString footer = graphPrintFooter(context.documentIsSwedish);
    if (context.showPreview)
        context.showPreview(picture, footer);
    else if (context.settings)
        previewPicturePrint(parent, picture, *context.settings, footer, isSwedish);
}

void GraphWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    moveWhollyOnScreen(*this);
}

void GraphWindow::keyPressEvent(QKeyEvent *event)
{
    if (openPopupOnKey(*event, *mPopup, *this))
        return;
    QWidget::keyPressEvent(event);
}

void moveWhollyOnScreen(QWidget &window)
{
    // The window manager may have put it where part of it is off the
    // available area; the size was already chosen to fit.
    const QRect frame = window.frameGeometry();
    const QRect kept = keepOnScreen(frame, availableScreenAreas());
    if (kept.topLeft() != frame.topLeft())
        window.move(kept.topLeft());
}

} // namespace kel
