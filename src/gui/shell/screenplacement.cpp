// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/screenplacement.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace kel {

QRect keepWhollyOnScreen(const QRect &frame, const QList<QRect> &areas)
{
    if (areas.isEmpty() || !frame.isValid())
        return frame;
    qint64 bestOverlap = -1;
    QRect best = areas.first();
    for (const QRect &area : areas) {
        if (area.contains(frame))
            return frame;
        const QRect overlap = area.intersected(frame);
        const qint64 size = overlap.isValid() ? qint64(overlap.width()) * overlap.height() : 0;
        if (size > bestOverlap) {
            bestOverlap = size;
            best = area;
        }
    }
    QRect placed(frame.topLeft(), frame.size().boundedTo(best.size()));
    placed.moveLeft(std::clamp(placed.left(), best.left(), best.right() - placed.width() + 1));
    placed.moveTop(std::clamp(placed.top(), best.top(), best.bottom() - placed.height() + 1));
    return placed;
}

QRect keepWhollyOnScreen(const QRect &frame)
{
    QList<QRect> areas;
    if (const QScreen *primary = QGuiApplication::primaryScreen())
        areas << primary->availableGeometry();
    for (const QScreen *screen : QGuiApplication::screens()) {
        if (screen != QGuiApplication::primaryScreen())
            areas << screen->availableGeometry();
    }
    return keepWhollyOnScreen(frame, areas);
}

} // namespace kel
