// SPDX-License-Identifier: GPL-3.0-or-later
// The hourglass for the duration of a command, restored however the command
// ends (a message box, an early return, an exception from a reader).
#pragma once

#include <QApplication>

namespace kel {

class WaitCursor
{
public:
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
};

} // namespace kel
