// SPDX-License-Identifier: GPL-3.0-or-later
// Why a picture or report file could not be made. The writers live in the
// drawing layer, which has no words of its own; the code lives here, below
// both the writers and src/texts, so the words can be chosen where the
// failure is shown, in the interface's language. It is not a Refusal: the
// operating system's or the encoder library's reason is text, not a number.
#pragma once

#include <QString>

namespace kel {

enum class WriteFailureCode {
    NoPicture,           ///< the picture has no size
    TooLargeForImage,    ///< no image of its size fits in memory
    TooLargeForBmp,      ///< beyond a BMP file's 4 GB
    TooLargeForGif,      ///< wider or higher than a GIF's 65,535 pixels
    TooLargeForMetafile, ///< beyond a Windows metafile's 16-bit coordinates
    NotEncoded,          ///< the format's encoder gave nothing
    EncoderFailed,       ///< the encoder library said why, in `reason`
    PdfNotStarted,       ///< no PDF writer could be made
    PngNotStarted,       ///< libpng could not be started
    PngNotCompressed,    ///< zlib failed on a piece of the image
    NotWritten,          ///< the file could not be opened or written; `reason` says why
    ReportNotDrawn,      ///< the report's pages came out empty
};

struct WriteFailure {
    WriteFailureCode code = WriteFailureCode::NotWritten;
    QString reason; ///< the operating system's or library's own words, may be empty
    bool operator==(const WriteFailure &) const = default;
};

/// For writers that hand back a failure through an optional pointer.
inline void setWriteFailure(WriteFailure *failure, WriteFailureCode code, const QString &reason = {})
{
    if (failure)
        *failure = WriteFailure{code, reason};
}

} // namespace kel
