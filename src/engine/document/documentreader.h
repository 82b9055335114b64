// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a KEL file into a Document: the container checks (magic, revisions,
// lengths, CRC-32, inflate, size limit) and then the payload parse. The
// result is all or nothing: on any failure no Document is produced, so the
// caller's open document is never touched by a bad file.
#pragma once

#include "engine/document/document.h"
#include "engine/document/openresult.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace kel {

/// The format revision this reader implements.
inline constexpr qint32 ReaderRevision = 9;

struct ReadOptions {
    /// Only the Windows 9x family refuses files of 10000001 bytes or more;
    /// no platform we build for is one, but tests exercise the rule.
    bool legacyWin9xLimits = false;
};

struct ReadResult {
    OpenResult code = OpenResult::CannotOpen;
    std::unique_ptr<Document> document; ///< set exactly when code == Ok
    /// Where and why a damaged file failed, for logs and `kel`'s standard error;
    /// never shown to the user in place of the result message.
    QString detail;
};

/// Reads and checks the file at `path`. The Document it returns has its
/// content and derived properties filled; the path fields are left for
/// the caller (the viewer decides about the remembered folder).
ReadResult readDocumentFile(const QString &path, const ReadOptions &options = {});

/// Same checks on a file image held in memory (used by the fuzzer and tests).
ReadResult readDocumentBytes(const QByteArray &file, const ReadOptions &options = {});

} // namespace kel
