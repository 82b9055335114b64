// SPDX-License-Identifier: GPL-3.0-or-later
// The subcommands of the `kel` tool. Each takes the arguments after its own
// name and returns the process exit status.
#pragma once

#include "engine/document/document.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kel::cli {

/// Exit status for a command line that makes no sense: EX_USAGE of
/// <sysexits.h>, clear of the result codes 1-6 of opening a document.
inline constexpr int UsageError = 64;
/// Exit status when the viewer would refuse what was asked (Show refuses the
/// selection, the document has no indexes): no figures are printed then.
inline constexpr int Refused = 7;

/// Writes UTF-8 text to standard output / standard error.
void printOut(const QString &text);
void printErr(const QString &text);

/// Opens a document the way every command does. On failure it prints the
/// result code's message (English, or Swedish with isSwedish) on standard
/// output and the reader's detail (what failed, and where) on standard
/// error, and sets `exitCode` to the result code; `document` is then null.
struct OpenedDocument {
    int exitCode = 0;
    std::unique_ptr<Document> document;
};
OpenedDocument openForCommand(const QString &path, bool isSwedish = false);

/// What a command writes: the process prints it, `kel batch` packs it into
/// one JSON line per command.
struct CommandOutput {
    QString out;
    QString err;
};

/// A command that works on a document already read and checked. `args` are
/// the command's arguments without FILE; the return value is the exit status.
/// The document is never changed, so one read serves any number of commands.
using DocumentCommand = int (*)(const Document &doc, const QStringList &args, CommandOutput &output);

/// A command's name on the command line and what runs it.
struct NamedCommand {
    const char *name;
    DocumentCommand run;
};

/// The command of `table` called `name`, or null.
template<std::size_t N>
DocumentCommand findCommand(const NamedCommand (&table)[N], const QString &name)
{
    for (const NamedCommand &c : table)
        if (name == QLatin1String(c.name))
            return c.run;
    return nullptr;
}

/// Runs a document command from the process's command line: FILE is the
/// first argument, the document is read with openForCommand, the output
/// printed. `name` and `usage` are for the messages.
int runOnFile(const char *name, const char *usage, DocumentCommand command, const QStringList &args);

/// A message (ending in a newline) when `args` name an output file ("-o
/// OUT") that is the document `documentPath` itself, else empty. Commands
/// that get one write nothing and exit with UsageError.
QString outputOverwritesDocument(const QString &documentPath, const QStringList &args);

int runCheck(const QStringList &args);
int runDump(const QStringList &args);
/// Answers a batch line in another process (the rendering helper): its
/// JSON line, or nothing when the line's command `name` is not one of its.
using ForeignLine = std::function<std::optional<std::string>(const QString &name, const QString &line)>;

/// `kel batch FILE`: document commands from standard input, one JSON line
/// each. `find` names the commands this process runs; lines that `foreign`
/// answers go to it first.
int runBatch(const QStringList &args, DocumentCommand (*find)(const QString &name), const ForeignLine &foreign = {});

/// The JSON line `kel batch` writes for one command.
std::string batchAnswer(const QString &line, int status, const QString &out, const QString &err);

int selectCommand(const Document &doc, const QStringList &args, CommandOutput &output);
int indexesCommand(const Document &doc, const QStringList &args, CommandOutput &output);
int graphCommand(const Document &doc, const QStringList &args, CommandOutput &output);
/// Drawn by the rendering helper (tools/kel-render).
int renderCommand(const Document &doc, const QStringList &args, CommandOutput &output);
int reportCommand(const Document &doc, const QStringList &args, CommandOutput &output);

} // namespace kel::cli
