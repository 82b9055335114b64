// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/windowpool.h"

namespace kel {

int choosePoolSlot(const WindowSlotTable &table)
{
    for (int i = 0; i < WindowSlotCount; ++i) {
        const WindowSlot &slot = table[std::size_t(i)];
        if (!slot.inUse || !slot.window)
            return i;
    }
    for (int i = 0; i < WindowSlotCount; ++i) {
        if (table[std::size_t(i)].window->isHidden())
            return i;
    }
    int oldest = 0;
    for (int i = 1; i < WindowSlotCount; ++i) {
        if (table[std::size_t(i)].lastHandedOut < table[std::size_t(oldest)].lastHandedOut)
            oldest = i;
    }
    return oldest;
}

QWidget *takePooledWindow(WindowSlotTable &table, const std::function<QWidget *()> &create)
{
    WindowSlot &slot = table[std::size_t(choosePoolSlot(table))];
    if (!slot.inUse || !slot.window) {
        if (slot.window)
            slot.window->deleteLater();
        slot.window = create();
        slot.inUse = true;
    } else {
        QWidget *w = slot.window;
        if (w->isMinimized() || w->isMaximized())
            w->showNormal();
        if (w->isVisible())
            w->hide();
    }
    slot.lastHandedOut = QDateTime::currentDateTimeUtc();
    return slot.window;
}

void closePooledWindows(WindowSlotTable &table)
{
    for (WindowSlot &slot : table) {
        if (slot.window)
            slot.window->close();
        slot = WindowSlot();
    }
}

} // namespace kel
