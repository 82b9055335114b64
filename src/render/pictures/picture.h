// SPDX-License-Identifier: GPL-3.0-or-later
// A picture is a size and a routine that paints it. Every copy, save and
// print of the overview and the graphs goes through one, so the clipboard,
// the files and the printer always show the same drawing.
#pragma once

#include <QRect>
#include <QSize>
#include <QtGlobal>
#include <QString>

#include <functional>
#include <optional>

class QPainter;

namespace kel {

/// How a metafile's font records class the picture's fonts: the LOGFONT
/// character set and pitch-and-family bytes. Qt fonts carry neither, so
/// each picture says what its fonts were made with.
struct MetafileFontClass {
    quint8 charSet = 1;           ///< DEFAULT_CHARSET
    quint8 pitchAndFamily = 0x22; ///< VARIABLE_PITCH | FF_SWISS
    bool operator==(const MetafileFontClass &) const = default;
};

struct Picture {
    QSize size; ///< pixels
    /// Paints the picture in the size's pixel coordinates, origin top left.
    std::function<void(QPainter &painter)> paint;
    /// Who made it, kept in the files that have room for it (EMF, SVG).
    QString description;
    /// Optional: paints only the pixels inside the area (in the size's
    /// pixel coordinates, origin unchanged), exactly as `paint` paints them
    /// there, at a cost that follows the area. Image files of a picture that
    /// has it are drawn and encoded a band at a time, so a picture larger
    /// than memory can still be written.
    std::function<void(QPainter &painter, const QRect &area)> paintArea;
    /// The routine covers every pixel: image files need no transparency.
    bool opaque = false;
    MetafileFontClass metafileFonts;

    bool isValid() const { return size.width() > 0 && size.height() > 0 && bool(paint); }
};

enum class PictureFormat { Emf, Wmf, Png, Bmp, Jpg, Gif, Svg, Pdf };

/// The format a file name's extension asks for (any case; ".jpeg" counts as
/// JPG); nothing for an unknown or missing extension.
std::optional<PictureFormat> pictureFormatForFileName(const QString &fileName);
/// The usual extension of a format, without the dot ("emf").
QString pictureFormatSuffix(PictureFormat format);

} // namespace kel
