// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/tooldock.h"

#include "engine/settings/settingsstore.h"
#include "gui/shell/screenplacement.h"

#include <QCloseEvent>
#include <QMainWindow>

namespace kel {

namespace {

constexpr double TwipsPerInch = 1440.0;
// Besides the placement every window keeps, a dock remembers the side of the
// main window it was docked to; 0 means floating.
const QString DockAreaValue = QStringLiteral("Dock Area");

bool isDockArea(qint32 value)
{
    return value == Qt::LeftDockWidgetArea || value == Qt::RightDockWidgetArea || value == Qt::TopDockWidgetArea
        || value == Qt::BottomDockWidgetArea;
}

} // namespace

ToolDock::ToolDock(const QString &name, const QString &title, QWidget *parent)
    : QDockWidget(title, parent), mName(name)
{
    setObjectName(QStringLiteral("frm") + name);
    setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
}

double ToolDock::pixelsPerTwip() const
{
    return logicalDpiY() / TwipsPerInch;
}

int ToolDock::twipsToPixels(int twips) const
{
    return qRound(twips * pixelsPerTwip());
}

void ToolDock::restorePlacement(QMainWindow &main, const SettingsStore &store, Qt::DockWidgetArea defaultArea,
                                QSize defaultSize)
{
    const WindowPlacement p = store.readWindowPlacement(mName);
    const QString key = QStringLiteral("Windows\\") + mName;
    const std::optional<qint32> area = store.readDword(key, DockAreaValue);
    QSize size = defaultSize;
    if (p.width && p.height && *p.width > 0 && *p.height > 0)
        size = QSize(twipsToPixels(*p.width), twipsToPixels(*p.height));

    const bool floating = area && *area == 0 && p.left && p.top;
    main.addDockWidget(area && isDockArea(*area) ? Qt::DockWidgetArea(*area) : defaultArea, this);
    if (!floating) {
        main.resizeDocks({this}, {size.width()}, Qt::Horizontal);
        main.resizeDocks({this}, {size.height()}, Qt::Vertical);
        return;
    }
    setFloating(true);
    // A window partly off the screens could not be reached by its title bar.
    setGeometry(keepWhollyOnScreen(QRect(QPoint(twipsToPixels(*p.left), twipsToPixels(*p.top)), size)));
}

void ToolDock::savePlacement(SettingsStore &store) const
{
    if (store.policies().noSaveSettings)
        return;
    const double twipsPerPixel = 1.0 / pixelsPerTwip();
    auto toTwips = [&](int pixels) { return qint32(qRound(pixels * twipsPerPixel)); };
    WindowPlacement p;
    p.left = toTwips(geometry().x());
    p.top = toTwips(geometry().y());
    p.width = toTwips(width());
    p.height = toTwips(height());
    store.writeWindowPlacement(mName, BorderStyle::SizableToolWindow, p);
    qint32 area = 0;
    if (!isFloating()) {
        if (auto *main = qobject_cast<QMainWindow *>(parentWidget()))
            area = main->dockWidgetArea(const_cast<ToolDock *>(this));
    }
    store.writeDword(QStringLiteral("Windows\\") + mName, DockAreaValue, area);
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
