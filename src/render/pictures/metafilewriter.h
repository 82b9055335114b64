// SPDX-License-Identifier: GPL-3.0-or-later
// Turns a metafile recording into an enhanced metafile (EMF) or a
// placeable Windows metafile (WMF), record by record through libUEMF.
#pragma once

#include "render/pictures/emfpaintdevice.h"

#include <QByteArray>
#include <QRect>
#include <QString>

namespace kel {

/// The EMF file of `recording`: its bounds are the picture's pixels, its
/// frame the same area in hundredths of millimetres at 96 dpi, `description`
/// the creating application. Empty when a record could not be made.
QByteArray encodeEmf(const MetafileRecording &recording, const QString &description);

/// The placeable WMF file of `recording`: the 22-byte placeable header (key
/// 0x9AC6CDD7, the EMF's bounds, 96 units per inch, XOR checksum) before a
/// Windows metafile drawn in the anisotropic mapping mode. Empty on failure
/// (also when the picture exceeds the format's 16-bit coordinates).
QByteArray encodeWmf(const MetafileRecording &recording);

/// An SVG file of `recording`, `description` as its title: the same
/// drawing as the metafiles, with the painter's clips kept as clip paths.
QByteArray encodeSvg(const MetafileRecording &recording, const QString &description);

/// The placeable header alone, for `bounds` (inclusive pixel edges).
QByteArray placeableWmfHeader(const QRect &bounds);

} // namespace kel
