// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/chartwindow.h"

#include "gui/common/popupkeys.h"

#include "engine/settings/settingsstore.h"
#include "gui/graphs/chartbuilder.h"
#include "gui/graphs/chartpicture.h"
#include "gui/pictures/picturecommands.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QLocale>
#include <QChart>
#include <QChartView>
#include <QMenu>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace kel {

ChartWindow::ChartWindow(bool isSwedish, QWidget *parent)
    : QWidget(parent, Qt::Window), mIsSwedish(isSwedish), mView(new QChartView(this)), mPopup(new QMenu(this))
{
    setObjectName(QStringLiteral("frmGraph"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mView);
    mView->setObjectName(QStringLiteral("gphMain"));
    mView->setRenderHint(QPainter::Antialiasing);
    mView->viewport()->installEventFilter(this);
    resize(680, 480);

    const auto item = [&](const char *name, const char *english, const char *swedish) {
        QAction *a = mPopup->addAction(pickText(isSwedish, english, swedish));
        a->setObjectName(QString::fromUtf8(name));
        return a;
    };
    mnuPCopy = item("mnuPCopy", "&Copy", "K&opiera");
    mnuPPrint = item("mnuPPrint", "&Print", "Skriv &ut");
    mnuPPrintPreview = item("mnuPPrintPreview", "Print P&review", "Förhands&granska");
    mnuPSave = item("mnuPSave", "&Save As...", "&Spara som...");
    mPopup->addSeparator();
    mnuPClose = item("mnuPClose", "C&lose", "S&täng");
    // Copy, print and save wait for the settings and the permissions.
    for (QAction *a : {mnuPCopy, mnuPPrint, mnuPPrintPreview, mnuPSave})
        a->setEnabled(false);
    connect(mnuPCopy, &QAction::triggered, this, &ChartWindow::doCopy);
    connect(mnuPPrint, &QAction::triggered, this, &ChartWindow::printGraph);
    connect(mnuPPrintPreview, &QAction::triggered, this, &ChartWindow::previewGraph);
    connect(mnuPSave, &QAction::triggered, this, &ChartWindow::saveGraph);
    connect(mnuPClose, &QAction::triggered, this, &QWidget::close);
}

void ChartWindow::setUpChart(const ChartDescription &chart)
{
    mDescription = chart;
    QChart *old = mView->chart();
    mView->setChart(buildChart(chart));
    delete old;
    setWindowTitle(chart.caption);
    // The chart is drawn; a screen reader reads its values: per series its
    // name, then one line per point.
    QStringList lines;
    for (const ChartSeries &series : chart.series) {
        if (!series.name.isEmpty())
            lines << series.name;
        for (const ChartPoint &point : series.points)
            lines << point.label + QLatin1Char('\t') + QLocale().toString(point.value);
    }
    setAccessibleDescription(lines.join(QLatin1Char('\n')));
}

QChart *ChartWindow::chart() const
{
    return mView->chart();
}

Picture ChartWindow::picture() const
{
    return chartPicture(mDescription, mView->size());
}

void ChartWindow::setPictureContext(StatusLine &status, const GraphPictureContext &context,
                                    const GraphPermissions &permissions)
{
    mStatus = &status;
    mContext = context;
    const bool ready = context.options && context.settings;
    mnuPCopy->setEnabled(ready && permissions.allowCopy);
    const bool printing = graphPrintingPossible(context, permissions);
    mnuPPrint->setEnabled(printing);
    mnuPPrintPreview->setEnabled(printing);
    mnuPSave->setEnabled(ready && permissions.allowSavePicture);
}

bool ChartWindow::doCopy()
{
    if (!mnuPCopy->isEnabled())
        return false;
    return copyGraphPicture(picture(), statusReporter(*mStatus), mContext.options->graphCopyFormat, mIsSwedish,
                            mContext.reportError);
}

bool ChartWindow::printGraph()
{
    if (!mnuPPrint->isEnabled())
        return false;
    return printGraphPicture(picture(), *mContext.settings, graphPrintFooter(mContext.documentIsSwedish),
                             statusReporter(*mStatus));
}

bool ChartWindow::previewGraph()
{
    if (!mnuPPrintPreview->isEnabled())
        return false;
    previewGraphPicture(this, picture(), mContext, mIsSwedish);
    return true;
}

bool ChartWindow::saveGraph()
{
    if (!mnuPSave->isEnabled())
        return false;
    return saveGraphPicture(this, picture(), SaveKind::Chart, mIsSwedish, *mContext.settings, statusReporter(*mStatus),
                            mContext.chooseFile, mContext.reportError);
}

void ChartWindow::keyPressEvent(QKeyEvent *event)
{
    if (openPopupOnKey(*event, *mPopup, *this))
        return;
    QWidget::keyPressEvent(event);
}

void ChartWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    moveWhollyOnScreen(*this);
}

bool ChartWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == mView->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const Qt::KeyboardModifiers held =
            mouse->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        if (mouse->button() == Qt::RightButton && held == Qt::NoModifier) {
            mPopup->popup(mouse->globalPosition().toPoint());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace kel
