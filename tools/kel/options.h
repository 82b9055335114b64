// SPDX-License-Identifier: GPL-3.0-or-later
// What each command accepts, in one table: the usage (`kel --help`) is
// written from it, every command line is checked against it before the
// command reads it (an option the command would ignore is refused), and the
// tests hold the manual page and the bash completion to it.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace kel::cli {

struct OptionSpec {
    const char *name;
    const char *value; ///< the value's placeholder; null for a flag
};

/// One part of a command line: a command ("select"), or the part after a
/// keyword ("graph histogram", "render overview", "render graph").
struct CommandPart {
    const char *part;
    const char *lead;  ///< what comes before the options in the usage
    const char *trail; ///< what comes after them
    std::vector<OptionSpec> options;
    /// Drawn by the rendering helper: `kel` hands the command over to it.
    bool drawn = false;
};

const std::vector<CommandPart> &commandParts();
const CommandPart *findPart(const QString &part);
/// True for a command that the rendering helper runs (render).
bool isDrawingCommand(const QString &command);

/// "[--select SPEC] [--flex-current] ..." of a part.
QString optionsSynopsis(const CommandPart &part);

/// The usage line of one part, as `kel --help` prints it.
QString usageLine(const CommandPart &part);
/// "usage:" and the lines of every part of `command`, for its usage errors.
QString usageOf(const QString &command);

/// Checks the options of `command`'s arguments (FILE taken off) against the
/// table, following its keywords (graph KIND, render overview|graph). An
/// empty string when every option is one the command uses; otherwise the
/// error, naming the option and what the part takes.
QString checkOptions(const QString &command, const QStringList &args);

} // namespace kel::cli
