// SPDX-License-Identifier: GPL-3.0-or-later
// kel-render: the commands of `kel` that draw. `kel` runs it for them, so
// that `kel` itself loads only QtCore; users call `kel`, not this program.
//   kel-render COMMAND FILE ARGS...   one command, as `kel COMMAND` takes it
//   kel-render batch FILE [--lang en|sv]   lines of `kel batch` for its commands
#include "commands.h"
#include "options.h"

#include <QApplication>

namespace {

/// The drawing commands. A new one is one line here and one in the table
/// of the commands `kel` hands over (tools/kel/main.cpp).

const kel::cli::NamedCommand Commands[] = {
    {"render", kel::cli::renderCommand},
    {"report", kel::cli::reportCommand},
};

kel::cli::DocumentCommand findCommand(const QString &name)
{
    return kel::cli::findCommand(Commands, name);
}

} // namespace

int main(int argc, char *argv[])
{
    // Fonts need a GUI application, charts (graphics widgets) a widget
    // one; without a display it runs off-screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    const QString name = args.isEmpty() ? QString() : args.takeFirst();
    if (name == QLatin1String("batch"))
        return kel::cli::runBatch(args, findCommand);
    for (const kel::cli::NamedCommand &c : Commands)
        if (name == QLatin1String(c.name))
            return kel::cli::runOnFile(c.name, kel::cli::usageOf(QLatin1String(c.name)).toUtf8().constData(), c.run,
                                       args);
    kel::cli::printErr(
        QStringLiteral("kel-render: '%1' is not a drawing command; run kel, which runs this program\n").arg(name));
    return kel::cli::UsageError;
}
