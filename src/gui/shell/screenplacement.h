// SPDX-License-Identifier: GPL-3.0-or-later
// Where a restored window may stand: a position saved with another monitor
// setup can lie partly or wholly off the screens of today.
#pragma once

#include <QList>
#include <QRect>

namespace kel {

/// `frame` unchanged when it lies wholly inside one of `areas` (the
/// screens' available geometries); otherwise moved, and shrunk where it is
/// larger, into the area it overlaps most (the first area when it overlaps
/// none). Without areas it is returned as it is.
QRect keepWhollyOnScreen(const QRect &frame, const QList<QRect> &areas);

/// The same against the screens of this session.
QRect keepWhollyOnScreen(const QRect &frame);

} // namespace kel
