// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace kel {

namespace {

constexpr double TwipsPerInch = 1440.0;

qint64 overlapArea(const QRect &a, const QRect &b)
{
    const QRect i = a.intersected(b);
    return i.isEmpty() ? 0 : qint64(i.width()) * i.height();
}

} // namespace

double pixelsPerTwip(const QWidget &widget)
{
    return widget.logicalDpiY() / TwipsPerInch;
}

QRect keepOnScreen(const QRect &frame, const QList<QRect> &screens)
{
    if (screens.isEmpty())
        return frame;
    QRect best = screens.first();
    qint64 bestOverlap = 0;
    for (const QRect &screen : screens) {
        const qint64 overlap = overlapArea(frame, screen);
        if (overlap > bestOverlap) {
            bestOverlap = overlap;
            best = screen;
        }
    }
    QRect result(frame.topLeft(),
                 QSize(std::min(frame.width(), best.width()), std::min(frame.height(), best.height())));
    if (result.right() > best.right())
        result.moveRight(best.right());
    if (result.bottom() > best.bottom())
        result.moveBottom(best.bottom());
    if (result.left() < best.left())
        result.moveLeft(best.left());
    if (result.top() < best.top())
        result.moveTop(best.top());
    return result;
}

QList<QRect> availableScreenAreas()
{
    QList<QRect> areas;
    const QScreen *primary = QGuiApplication::primaryScreen();
    if (primary)
        areas << primary->availableGeometry();
    for (const QScreen *screen : QGuiApplication::screens()) {
        if (screen != primary)
            areas << screen->availableGeometry();
    }
    return areas;
}

RestoredPlacement readPlacement(const QWidget &window, const SettingsStore &store, const QString &name,
                                const QRect &fallback)
{
    const WindowPlacement p = store.readWindowPlacement(name);
    const double scale = pixelsPerTwip(window);
    auto pixels = [&](qint32 twips) { return qRound(twips * scale); };
    RestoredPlacement r;
    r.frame = fallback;
    // A value from a hand-edited file may be zero or negative: the fallback
    // size stands then.
    if (p.width && p.height && *p.width > 0 && *p.height > 0)
        r.frame.setSize(QSize(pixels(*p.width), pixels(*p.height)));
    if (p.left && p.top) {
        r.frame.moveTopLeft(QPoint(pixels(*p.left), pixels(*p.top)));
        r.hasPosition = true;
    }
    r.maximized = p.state && *p.state == WindowPlacement::Maximized;
    r.dockArea = p.dockArea;
    return r;
}

void restoreWindowPlacement(QWidget &window, const SettingsStore &store, const QString &name, QSize minimumSize)
{
    RestoredPlacement r = readPlacement(window, store, name, window.geometry());
    r.frame.setSize(r.frame.size().expandedTo(minimumSize));
    const QRect frame = keepOnScreen(r.frame, availableScreenAreas());
    window.resize(frame.size());
    if (r.hasPosition || frame.topLeft() != r.frame.topLeft())
        window.move(frame.topLeft());
    // A stored minimized state is not restored as minimized.
    if (r.maximized)
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

void saveWindowPlacement(const QWidget &window, SettingsStore &store, const QString &name, BorderStyle style,
                         std::optional<qint32> dockArea)
{
    if (store.policies().noSaveSettings)
        return;
    const double twipsPerPixel = 1.0 / pixelsPerTwip(window);
    auto twips = [&](int pixels) { return qint32(qRound(pixels * twipsPerPixel)); };
    WindowPlacement p;
    if (window.isMinimized())
        p.state = WindowPlacement::Minimized;
    else if (window.isMaximized())
        p.state = WindowPlacement::Maximized;
    else
        p.state = WindowPlacement::Normal;
    // A top-level window is placed by its frame, a child by its geometry.
    const QPoint position = window.isWindow() ? window.pos() : window.geometry().topLeft();
    p.left = twips(position.x());
    p.top = twips(position.y());
    p.width = twips(window.width());
    p.height = twips(window.height());
    p.dockArea = dockArea;
    store.writeWindowPlacement(name, style, p);
}

} // namespace kel
