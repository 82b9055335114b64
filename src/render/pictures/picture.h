// SPDX-License-Identifier: GPL-3.0-or-later
// A picture that copy, save and print can draw at its size.
#pragma once

#include <QPainter>
#include <QSize>

#include <functional>

namespace kel {

struct Picture {
    QSize size;
    std::function<void(QPainter &painter)> paint; ///< paints in the size's pixel coordinates
};

} // namespace kel
