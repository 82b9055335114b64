// SPDX-License-Identifier: GPL-3.0-or-later
// The whole-picture GIF writer, kept as a baseline.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace bench {

/// A GIF of `image`, whose colours are reduced to at most 256 first.
QByteArray encodeGifWhole(const QImage &image, QString *error);

} // namespace bench
