// SPDX-License-Identifier: GPL-3.0-or-later
// `kel batch FILE`: reads and checks the document once, then runs one
// document command per line of standard input and writes one JSON object
// per command, so that a script asking many questions about one document
// pays for one process and one read.
#include "batchline.h"
#include "commands.h"
#include "json.h"
#include "options.h"

#include <QTextStream>

#include <cstdio>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace kel::cli {

namespace {

std::string runLine(const Document &doc, const QString &documentPath, const QString &line,
                    DocumentCommand (*find)(const QString &), const ForeignLine &foreign)
{
    QString splitError;
    QStringList words = splitCommandLine(line, &splitError);
    if (!splitError.isEmpty())
        return batchAnswer(line, UsageError, QString(), QStringLiteral("kel batch: %1\n").arg(splitError));
    const QString name = words.takeFirst();
    if (const QString error = checkOptions(name, words); !error.isEmpty())
        return batchAnswer(line, UsageError, QString(), QStringLiteral("kel %1: %2\n").arg(name, error));
    // Refused here, before a line is handed to the helper, so that the
    // document is safe whichever program would have written.
    if (const QString refusal = outputOverwritesDocument(documentPath, words); !refusal.isEmpty())
        return batchAnswer(line, UsageError, QString(), QStringLiteral("kel %1: ").arg(name) + refusal);
    if (foreign) {
        if (std::optional<std::string> answer = foreign(name, line))
            return *answer;
    }
    int status = 0;
    QString error;
    const DocumentCommand command = find(name);
    if (!command) {
        status = UsageError;
        error = QStringLiteral("kel batch: '%1' is not a command that works on a document\n").arg(name)
            + usageOf(QStringLiteral("batch"));
        return batchAnswer(line, status, QString(), error);
    }
    // Every command reads the one document as read; what a Show changes
    // (blocks, flex total) lives in the command's own objects.
    CommandOutput output;
    status = command(doc, words, output);
    return batchAnswer(line, status, output.out, output.err);
}

} // namespace

std::string batchAnswer(const QString &line, int status, const QString &out, const QString &err)
{
    JsonWriter json;
    json.beginObject();
    json.member("command", line);
    json.member("status", status);
    json.member("output", out);
    if (!err.isEmpty())
        json.member("error", err);
    json.endObject();
    return json.text();
}

int runBatch(const QStringList &args, DocumentCommand (*find)(const QString &), const ForeignLine &foreign)
{
    QString file;
    bool isSwedish = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--lang") && i + 1 < args.size()
            && (args[i + 1] == QLatin1String("en") || args[i + 1] == QLatin1String("sv"))) {
            isSwedish = args[++i] == QLatin1String("sv");
        } else if (file.isEmpty() && !args[i].startsWith(QLatin1String("--"))) {
            file = args[i];
        } else {
            printErr(QStringLiteral("kel batch: unexpected argument '%1'\n").arg(args[i])
                     + usageOf(QStringLiteral("batch")));
            return UsageError;
        }
    }
    if (file.isEmpty()) {
        printErr(QStringLiteral("kel batch: no file given\n") + usageOf(QStringLiteral("batch")));
        return UsageError;
    }
    const OpenedDocument opened = openForCommand(file, isSwedish);
    if (!opened.document)
        return opened.exitCode;

#if defined(__GLIBC__)
    // Each command builds and drops output of a few hundred kilobytes. By
    // default such blocks are mapped from the kernel and handed back each
    // time, and faulting fresh pages in then costs more than the command;
    // kept in the heap they are reused.
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 128 << 20);
#endif
    QTextStream in(stdin);
    in.setEncoding(QStringConverter::Utf8);
    QString line;
    while (in.readLineInto(&line)) {
        const QString command = line.trimmed();
        if (command.isEmpty() || command.startsWith(QLatin1Char('#')))
            continue;
        // One line per command, written at once, so that a reader of the
        // pipe sees each answer as soon as it is ready.
        const std::string text = runLine(*opened.document, file, command, find, foreign);
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    }
    return 0;
}

} // namespace kel::cli
