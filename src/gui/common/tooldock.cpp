// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/tooldock.h"

#include "gui/common/placement.h"

#include <QCloseEvent>
#include <QMainWindow>

namespace kel {

namespace {

bool isDockArea(qint32 value)
{
    return value == Qt::LeftDockWidgetArea || value == Qt::RightDockWidgetArea || value == Qt::TopDockWidgetArea
        || value == Qt::BottomDockWidgetArea;
}

} // namespace

ToolDock::ToolDock(const QString &name, const QString &title, QWidget *parent) : QDockWidget(title, parent), mName(name)
{
    setObjectName(QStringLiteral("frm") + name);
    setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
}

double ToolDock::pixelsPerTwip() const
{
    return kel::pixelsPerTwip(*this);
}

int ToolDock::twipsToPixels(int twips) const
{
    return qRound(twips * pixelsPerTwip());
}

void ToolDock::restorePlacement(QMainWindow &main, const SettingsStore &store, Qt::DockWidgetArea defaultArea,
                                QSize defaultSize)
{
    const RestoredPlacement p = readPlacement(*this, store, mName, QRect(QPoint(), defaultSize));
    const std::optional<qint32> area = p.dockArea;
    const bool floating = area && *area == 0 && p.hasPosition;
    main.addDockWidget(area && isDockArea(*area) ? Qt::DockWidgetArea(*area) : defaultArea, this);
    if (!floating) {
        main.resizeDocks({this}, {p.frame.width()}, Qt::Horizontal);
        main.resizeDocks({this}, {p.frame.height()}, Qt::Vertical);
        return;
    }
    setFloating(true);
    const QRect frame = keepOnScreen(p.frame, availableScreenAreas());
    resize(frame.size());
    move(frame.topLeft());
}

void ToolDock::savePlacement(SettingsStore &store) const
{
    qint32 area = 0;
    if (!isFloating()) {
        if (auto *main = qobject_cast<QMainWindow *>(parentWidget()))
            area = main->dockWidgetArea(const_cast<ToolDock *>(this));
    }
    saveWindowPlacement(*this, store, mName, BorderStyle::SizableToolWindow, area);
}

void ToolDock::closeForGood()
{
    mClosedForGood = true;
    close();
}

void ToolDock::closeEvent(QCloseEvent *event)
{
    // Accepting hides the dock (it is not deleted), which is what the close
    // box should do; the owner unchecks its menu item on the signal.
    event->accept();
    if (!mClosedForGood)
        emit hiddenByUser();
}

} // namespace kel
