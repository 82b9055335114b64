// SPDX-License-Identifier: GPL-3.0-or-later
// The subcommands of the `kel` tool. Each takes the arguments after its own
// name and returns the process exit status.
#pragma once

#include "engine/document/document.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace kel::cli {

/// Exit status for a command line that makes no sense.
inline constexpr int UsageError = 2;

/// Writes UTF-8 text to standard output / standard error.
void printOut(const QString &text);
void printErr(const QString &text);

/// Opens a document the way every command does. On failure it prints the
/// result code's message (English, or Swedish with isSwedish) and sets
/// `exitCode` to the result code; `document` is then null.
struct OpenedDocument {
    int exitCode = 0;
    std::unique_ptr<Document> document;
};
OpenedDocument openForCommand(const QString &path, bool isSwedish = false);

int runCheck(const QStringList &args);
int runDump(const QStringList &args);
int runSelect(const QStringList &args);
int runIndexes(const QStringList &args);

} // namespace kel::cli
