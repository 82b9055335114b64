// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a picture in any of the formats the program offers. The picture's
// routine paints straight onto the format's own surface: metafiles, SVG and
// PDF stay vector drawings, only the image formats are rasterised.
#pragma once

#include "engine/document/writefailure.h"
#include "render/pictures/picture.h"

#include <QByteArray>
#include <QImage>

namespace kel {

/// The file's bytes; empty with `failure` set when the picture could not be
/// made (no size, too large for the format, an encoder failure).
QByteArray encodePicture(const Picture &picture, PictureFormat format, WriteFailure *failure = nullptr);

/// Encodes and writes `path`, replacing an existing file only once the new
/// one is complete. False with `failure` set on failure.
bool writePicture(const Picture &picture, PictureFormat format, const QString &path, WriteFailure *failure = nullptr);

/// The picture drawn into an image of its size, starting from `background`
/// (transparent keeps the areas the routine leaves alone). Null when the
/// picture is empty or too large to hold in memory.
QImage renderPictureImage(const Picture &picture, QColor background = Qt::white);

} // namespace kel
