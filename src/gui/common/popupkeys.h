// SPDX-License-Identifier: GPL-3.0-or-later
// The keys that open a window's popup menu for a keyboard user, as the right
// mouse button does: the Menu key and Shift+F10.
#pragma once

#include <QKeyEvent>

namespace kel {

inline bool isPopupKey(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Menu && event.modifiers() == Qt::NoModifier)
        || (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

} // namespace kel
