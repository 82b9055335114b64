// SPDX-License-Identifier: GPL-3.0-or-later
// kel: reads, checks and exports KEL documents from a shell.
#include "commands.h"
#include "options.h"
#include "renderhelper.h"

#include <cstring>

namespace {

/// Commands that read the file themselves.
struct FileCommand {
    const char *name;
    int (*run)(const QStringList &args);
};

const FileCommand FileCommands[] = {
    {"check", kel::cli::runCheck}, {"dump", kel::cli::runDump}, {"batch", nullptr}, // run by main itself
};

/// Commands that work on a document read once (so `kel batch` can run them).

const kel::cli::NamedCommand Commands[] = {
    {"select", kel::cli::selectCommand},
    {"indexes", kel::cli::indexesCommand},
    {"graph", kel::cli::graphCommand},
};

// Commands that draw are the rendering helper's: `kel` becomes the helper
// for them, and `kel batch` hands their lines to it. They are marked in the
// table of options (tools/kel/options.cpp) and run by the helper's table
// (tools/kel-render/main.cpp).
bool isHelperCommand(const QString &name)
{
    return kel::cli::isDrawingCommand(name);
}

// Written from the table of options, so that it lists exactly what each
// command takes.
QString usageText()
{
    QString text = QStringLiteral("usage:\n");
    for (const kel::cli::CommandPart &p : kel::cli::commandParts())
        text += kel::cli::usageLine(p);
    text += QStringLiteral("  kel --help | --version | --options [PART]\n"
                           "SPEC: CATEGORY=OPTION,...;... by names or numbers; OUT: .emf .wmf .png .bmp .jpg .gif "
                           ".svg .pdf\n");
    return text;
}

// For completion scripts: the parts of command lines, or one part's options.
int printOptions(const QStringList &args)
{
    if (args.isEmpty()) {
        for (const kel::cli::CommandPart &p : kel::cli::commandParts())
            kel::cli::printOut(QLatin1String(p.part) + QLatin1Char('\n'));
        return 0;
    }
    const kel::cli::CommandPart *part = kel::cli::findPart(args.join(QLatin1Char(' ')));
    if (!part) {
        kel::cli::printErr(QStringLiteral("kel --options: no part '%1'\n").arg(args.join(QLatin1Char(' '))));
        return kel::cli::UsageError;
    }
    for (const kel::cli::OptionSpec &o : part->options)
        kel::cli::printOut(QLatin1String(o.name) + QLatin1Char('\n'));
    return 0;
}

int usage()
{
    kel::cli::printErr(usageText());
    return kel::cli::UsageError;
}

kel::cli::DocumentCommand findDocumentCommand(const QString &name)
{
    return kel::cli::findCommand(Commands, name);
}

} // namespace

int main(int argc, char *argv[])
{
    // Pictures are the helper's: this process never loads more than QtCore.
    if (argc > 1 && isHelperCommand(QString::fromLocal8Bit(argv[1]))) {
        // What can be judged without drawing is judged here, before the
        // helper is looked for: a command line that makes no sense, or an
        // output that is the document itself, is refused whether or not the
        // helper is installed.
        const QString name = QString::fromLocal8Bit(argv[1]);
        QStringList rest;
        for (int i = 3; i < argc; ++i)
            rest << QString::fromLocal8Bit(argv[i]);
        const QString file = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
        if (file.isEmpty() || file.startsWith(QLatin1String("--"))) {
            kel::cli::printErr(QStringLiteral("kel %1: no file given\n").arg(name) + kel::cli::usageOf(name));
            return kel::cli::UsageError;
        }
        if (const QString error = kel::cli::checkOptions(name, rest); !error.isEmpty()) {
            kel::cli::printErr(QStringLiteral("kel %1: %2\n").arg(name, error) + kel::cli::usageOf(name));
            return kel::cli::UsageError;
        }
        if (const QString refusal = kel::cli::outputOverwritesDocument(file, rest); !refusal.isEmpty()) {
            kel::cli::printErr(QStringLiteral("kel %1: ").arg(name) + refusal);
            return kel::cli::UsageError;
        }
        return kel::cli::execRenderHelper(argv);
    }
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
    if (name == QLatin1String("--options"))
        return printOptions(args);
    if (name == QLatin1String("--version")) {
        kel::cli::printOut(QStringLiteral("kel (KEL Viewer) %1\n").arg(QLatin1String(KEL_VERSION)));
        return 0;
    }
    for (const FileCommand &c : FileCommands)
        if (c.run && name == QLatin1String(c.name))
            return c.run(args);
    for (const kel::cli::NamedCommand &c : Commands) {
        if (name == QLatin1String(c.name)) {
            return kel::cli::runOnFile(c.name, kel::cli::usageOf(QLatin1String(c.name)).toUtf8().constData(), c.run,
                                       args);
        }
    }
    kel::cli::printErr(QStringLiteral("kel: unknown command '%1'\n").arg(name));
    return usage();
}
