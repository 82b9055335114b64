// SPDX-License-Identifier: GPL-3.0-or-later
// GIF through giflib: Qt reads GIF but cannot write it.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace kel {

/// A GIF of `image`, whose colours are reduced to at most 256 first; empty
/// with `error` set on failure.
QByteArray encodeGif(const QImage &image, QString *error);

} // namespace kel
