// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/indexes/columnindex.h"

namespace kel {

QString formatIndex(double value, qint32 decimals, const QLocale &locale)
{
    if (value == -1.0)
        return QStringLiteral("-");
    return locale.toString(value, 'f', decimals);
}

} // namespace kel
