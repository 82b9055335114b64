// SPDX-License-Identifier: GPL-3.0-or-later
// kel: reads, checks and exports KEL documents from a shell.
#include "commands.h"

#include <QCoreApplication>

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
    {"render", kel::cli::renderCommand,
     "render FILE [selection options] overview [--mode 1|2|3] [--headers-only] | graph KIND [graph options] "
     "-o OUT.emf|wmf|png|bmp|jpg|gif|svg|pdf"},
    {"report", kel::cli::reportCommand,
     "report FILE [selection options] [--recipe R] [--by CATEGORY [--within]] [--sections LIST] [--blocks LIST] "
     "[--split Q] [--date TEXT] -o OUT.pdf|html"},
};

QString usageText()
{
    QString text = QStringLiteral("usage:\n");
    for (const FileCommand &c : FileCommands)
        text += QStringLiteral("  kel %1\n").arg(QLatin1String(c.synopsis));
    for (const Command &c : Commands)
        text += QStringLiteral("  kel %1\n").arg(QLatin1String(c.synopsis));
    text += QStringLiteral("  kel --help | --version\n");
    return text;
}

int usage()
{
    kel::cli::printErr(usageText());
    return kel::cli::UsageError;
}

} // namespace

kel::cli::DocumentCommand kel::cli::findDocumentCommand(const QString &name)
{
    for (const Command &c : Commands)
        if (name == QLatin1String(c.name))
            return c.run;
    return nullptr;
}

int main(int argc, char *argv[])
{
    const bool renders = argc > 1 && (std::strcmp(argv[1], "render") == 0 || std::strcmp(argv[1], "report") == 0);
    const bool batch = argc > 1 && std::strcmp(argv[1], "batch") == 0;
    // Counting and indexes need no application object. Starting the
    // graphical one costs as much as a whole answer, so a batch makes it only
    // when its first picture is asked for.
    std::unique_ptr<QCoreApplication> app;
    if (renders)
        app = kel::cli::makePictureApplication(argc, argv);
    else if (!batch)
        app = std::make_unique<QCoreApplication>(argc, argv);
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    if (args.isEmpty())
        return usage();
    const QString name = args.takeFirst();
    if (batch) {
        return kel::cli::runBatch(args, [&] {
            if (!app)
                app = kel::cli::makePictureApplication(argc, argv);
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
