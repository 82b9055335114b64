// SPDX-License-Identifier: GPL-3.0-or-later
// The keys that open a window's popup menu for a keyboard user, as the right
// mouse button does: the Menu key and Shift+F10.
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>

namespace kel {

inline bool isPopupKey(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Menu && event.modifiers() == Qt::NoModifier)
        || (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

/// For a popup key: opens `popup` in the middle of `window` (there is no
/// pointer to open it at), unless a popup is open already, and accepts the
/// event. False for any other key.
inline bool openPopupOnKey(QKeyEvent &event, QMenu &popup, const QWidget &window)
{
    if (!isPopupKey(event))
        return false;
    if (!QApplication::activePopupWidget())
        popup.popup(window.mapToGlobal(window.rect().center()));
    event.accept();
    return true;
}

} // namespace kel
