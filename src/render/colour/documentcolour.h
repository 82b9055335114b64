// SPDX-License-Identifier: GPL-3.0-or-later
// Colours as the document stores them: 0x00BBGGRR, red in the low byte.
#pragma once

#include <QColor>

namespace kel {

/// The colour of a stored 0x00BBGGRR value; the high byte is ignored.
inline QColor documentColour(qint32 stored)
{
    return QColor(stored & 0xFF, (stored >> 8) & 0xFF, (stored >> 16) & 0xFF);
}

} // namespace kel
