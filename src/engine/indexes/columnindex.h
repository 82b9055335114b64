// SPDX-License-Identifier: GPL-3.0-or-later
// The index of a set of questions over a set of rows (computed with the
// document, see pooledindex.h) and how it is written. -1 means "no value".
#pragma once

#include "engine/document/pooledindex.h"

#include <QLocale>
#include <QString>

namespace kel {

/// "-" for exactly -1.0, else the value with `decimals` decimals in `locale`.
QString formatIndex(double value, qint32 decimals, const QLocale &locale);

} // namespace kel
