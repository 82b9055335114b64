// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/minioverviewwindow.h"

#include "gui/overview/sheetview.h"
#include "texts/language.h"

#include <QCloseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

namespace kel {

QString miniOverviewCaption(bool isSwedish, const QString &selectionText)
{
    const QString name = pickText(isSwedish, "Mini-overview", "Miniöversikt");
    return selectionText.isEmpty() ? name : name + QStringLiteral(" - ") + selectionText;
}

MiniOverviewWindow::MiniOverviewWindow(bool isSwedish, QWidget *parent)
    : QWidget(parent, Qt::Window), mIsSwedish(isSwedish), mView(new SheetView(this))
{
    setObjectName(QStringLiteral("frmOverview"));
    setWindowTitle(miniOverviewCaption(isSwedish, QString()));
    mView->setObjectName(QStringLiteral("sheet"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mView);
}

bool MiniOverviewWindow::initializeData(SheetInput input)
{
    removeData();
    const QString selectionText = input.selectionText;
    if (!mView->setMiniSheet(std::move(input)))
        return false;
    mGeometry = mView->sheetGeometry();
    mSelectionText = selectionText;
    mHasData = true;
    setWindowTitle(miniOverviewCaption(mIsSwedish, mSelectionText));
    setToolTip(mSelectionText);
    return true;
}

void MiniOverviewWindow::removeData()
{
    mHasData = false;
    mGeometry = SheetGeometry();
    mSelectionText.clear();
    mView->eraseSheet();
    setWindowTitle(miniOverviewCaption(mIsSwedish, QString()));
    setToolTip(QString());
}

QSize MiniOverviewWindow::preferredSize(const QSize &available) const
{
    // The sheet, its one-pixel margin and room for both bars when the
    // sheet does not fit.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    int w = mGeometry.width() + 2;
    int h = mGeometry.height() + 2;
    const bool tooTall = h > available.height();
    const bool tooWide = w > available.width();
    if (tooTall)
        w += bar;
    if (tooWide)
        h += bar;
    return QSize(std::clamp(w, 120, std::max(120, available.width())),
                 std::clamp(h, 80, std::max(80, available.height())));
}

void MiniOverviewWindow::closeEvent(QCloseEvent *event)
{
    removeData();
    QWidget::closeEvent(event);
}

} // namespace kel
