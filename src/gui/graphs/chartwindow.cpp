// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/chartwindow.h"

#include "gui/graphs/chartbuilder.h"
#include "texts/language.h"

#include <QChart>
#include <QChartView>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QVBoxLayout>

namespace kel {

ChartWindow::ChartWindow(bool isSwedish, QWidget *parent)
    : QWidget(parent, Qt::Window), mView(new QChartView(this)), mPopup(new QMenu(this))
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
    mnuPSave = item("mnuPSave", "&Save As...", "&Spara som...");
    mPopup->addSeparator();
    mnuPClose = item("mnuPClose", "C&lose", "S&täng");
    // Copy, print and save come with the picture writers; until then they
    // are shown but cannot be chosen.
    for (QAction *a : {mnuPCopy, mnuPPrint, mnuPSave})
        a->setEnabled(false);
    connect(mnuPClose, &QAction::triggered, this, &QWidget::close);
}

void ChartWindow::setUpChart(const ChartDescription &chart)
{
    mDescription = chart;
    QChart *old = mView->chart();
    mView->setChart(buildChart(chart));
    delete old;
    setWindowTitle(chart.caption);
}

QChart *ChartWindow::chart() const
{
    return mView->chart();
}

Picture ChartWindow::picture() const
{
    Picture picture;
    picture.size = mView->size();
    const QPointer<QChartView> view = mView;
    picture.paint = [view](QPainter &painter) {
        if (view)
            view->render(&painter, QRectF(), view->rect());
    };
    return picture;
}

bool ChartWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == mView->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const Qt::KeyboardModifiers held = mouse->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        if (mouse->button() == Qt::RightButton && held == Qt::NoModifier) {
            mPopup->popup(mouse->globalPosition().toPoint());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace kel
