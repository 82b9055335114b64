// SPDX-License-Identifier: GPL-3.0-or-later
// kel: reads, checks and exports KEL documents from a shell.
#include "commands.h"
#include "renderhelper.h"

#include <cstring>

namespace {

/// Commands that read the file themselves.
struct FileCommand {
    const char *name;
    int (*run)(const QStringList &args);
    const char *synopsis;
};

const FileCommand FileCommands[] = {
    {"check", kel::cli::runCheck, "check FILE [--lang en|sv]"},
    {"dump", kel::cli::runDump, "dump FILE"},
    {"batch", nullptr, "batch FILE [--lang en|sv] < COMMANDS"}, // run by main itself
};

/// Commands that work on a document read once (so `kel batch` can run them).
struct Command {
    const char *name;
    kel::cli::DocumentCommand run;
    const char *synopsis;
};

const Command Commands[] = {
    {"select", kel::cli::selectCommand,
     "select FILE [--select SPEC] [--flex OPTS] [--flex-current] [--order 0|1|2] [--seed N] [--max-rows N]"},
    {"indexes", kel::cli::indexesCommand,
     "indexes FILE [--select SPEC] [--flex OPTS] [--flex-current] [--total] [--category Q]... [--counts] "
     "[--items total,blocks,subblocks,questions,userblocks] [--full-text] [--columns] [--settings FILE]"},
    {"graph", kel::cli::graphCommand,
     "graph FILE [--select SPEC] [--flex OPTS] [--flex-current] [--reversed] [--short-names] [--locale NAME] "
     "KIND [KIND OPTIONS]"},
};

/// Commands that the rendering helper runs: `kel` becomes the helper for
/// them, and `kel batch` hands their lines to it. A new drawing command is
/// one line here and one in the helper's table (tools/kel-render/main.cpp).
struct HelperCommand {
    const char *name;
    const char *synopsis;
};

const HelperCommand HelperCommands[] = {
    {"render",
     "render FILE [selection options] overview [--mode 1|2|3] [--headers-only] | graph KIND [graph options] "
     "-o OUT.emf|wmf|png|bmp|jpg|gif|svg|pdf"},
};

bool isHelperCommand(const QString &name)
{
    for (const HelperCommand &c : HelperCommands)
        if (name == QLatin1String(c.name))
            return true;
    return false;
}

QString usageText()
{
    QString text = QStringLiteral("usage:\n");
    for (const FileCommand &c : FileCommands)
        text += QStringLiteral("  kel %1\n").arg(QLatin1String(c.synopsis));
    for (const Command &c : Commands)
        text += QStringLiteral("  kel %1\n").arg(QLatin1String(c.synopsis));
    for (const HelperCommand &c : HelperCommands)
        text += QStringLiteral("  kel %1\n").arg(QLatin1String(c.synopsis));
    text += QStringLiteral("  kel --help | --version\n");
    return text;
}

int usage()
{
    kel::cli::printErr(usageText());
    return kel::cli::UsageError;
}

kel::cli::DocumentCommand findDocumentCommand(const QString &name)
{
    for (const Command &c : Commands)
        if (name == QLatin1String(c.name))
            return c.run;
    return nullptr;
}

} // namespace

int main(int argc, char *argv[])
{
    // Pictures are the helper's: this process never loads more than QtCore.
    if (argc > 1 && isHelperCommand(QString::fromLocal8Bit(argv[1])))
        return kel::cli::execRenderHelper(argv);
    // No command needs an application object (a batch has always run
    // without one); making it would cost a good part of a `kel check`.
    const bool batch = argc > 1 && std::strcmp(argv[1], "batch") == 0;
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    if (args.isEmpty())
        return usage();
    const QString name = args.takeFirst();
    if (batch) {
        kel::cli::RenderHelperBatch helper(args);
        return kel::cli::runBatch(args, findDocumentCommand,
                                  [&](const QString &command, const QString &line) -> std::optional<std::string> {
                                      if (!isHelperCommand(command))
                                          return std::nullopt;
                                      return helper.answer(line);
                                  });
    }
    // Asked for, the usage is the answer, not an error.
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        kel::cli::printOut(usageText());
        return 0;
    }
    if (name == QLatin1String("--version")) {
        kel::cli::printOut(QStringLiteral("kel (KEL Viewer) %1\n").arg(QLatin1String(KEL_VERSION)));
        return 0;
    }
    for (const FileCommand &c : FileCommands)
        if (c.run && name == QLatin1String(c.name))
            return c.run(args);
    for (const Command &c : Commands) {
        if (name == QLatin1String(c.name)) {
            const QByteArray usage = QByteArrayLiteral("usage: kel ") + c.synopsis + '\n';
            return kel::cli::runOnFile(c.name, usage.constData(), c.run, args);
        }
    }
    kel::cli::printErr(QStringLiteral("kel: unknown command '%1'\n").arg(name));
    return usage();
}
