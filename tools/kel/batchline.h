// SPDX-License-Identifier: GPL-3.0-or-later
// Splitting one line of `kel batch` input into words, the way a POSIX shell
// splits a simple command (no expansions): blanks separate words, 'single'
// quotes keep everything, "double" quotes keep everything but \" \\ \$ \`,
// and a backslash outside quotes takes the next character as it is.
#pragma once

#include <QString>
#include <QStringList>

namespace kel::cli {

/// The words of `line`; empty with `error` set for an unterminated quote or
/// a trailing backslash.
QStringList splitCommandLine(const QString &line, QString *error);

} // namespace kel::cli
