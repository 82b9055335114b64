// SPDX-License-Identifier: GPL-3.0-or-later
// kelwrite: writes the bundled sample survey or a small demo document of any
// revision, for the samples folder, fuzz seeds and trying the viewer out.
#include "kelwriter.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <limits>
#include <map>
#include <optional>

using namespace kel::writer;

namespace {

constexpr char Usage[] =
    "usage: kelwrite sample --lang en|sv OUT.kel\n"
    "       kelwrite demo --revision N [--plain] [--cell-type 1|2|3] [--rows R] [--seed S] OUT.kel\n";

int fail(const QString &message)
{
    std::fprintf(stderr, "kelwrite: %s\n%s", qPrintable(message), Usage);
    return 2;
}

/// Parses "--name value" integer options; everything else is positional.
struct Arguments {
    QStringList positional;
    QStringList flags;
    std::map<QString, QString> values;
    QString error;
};

Arguments parse(const QStringList &args, const QStringList &valueOptions, const QStringList &flagOptions)
{
    Arguments a;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        if (valueOptions.contains(arg)) {
            if (i + 1 >= args.size()) {
                a.error = QStringLiteral("option %1 needs a value").arg(arg);
                return a;
            }
            a.values[arg] = args.at(++i);
        } else if (flagOptions.contains(arg)) {
            a.flags.append(arg);
        } else if (arg.startsWith(QLatin1String("--"))) {
            a.error = QStringLiteral("unknown option %1").arg(arg);
            return a;
        } else {
            a.positional.append(arg);
        }
    }
    if (a.positional.size() != 1)
        a.error = a.positional.isEmpty() ? QStringLiteral("no output file given")
                                         : QStringLiteral("more than one output file given");
    return a;
}

std::optional<qint64> number(const Arguments &a, const QString &option, qint64 fallback, qint64 low, qint64 high,
                             QString &error)
{
    const auto it = a.values.find(option);
    if (it == a.values.end())
        return fallback;
    bool ok = false;
    const qint64 v = it->second.toLongLong(&ok);
    if (!ok || v < low || v > high) {
        error = QStringLiteral("%1 must be a number from %2 to %3, not \"%4\"")
                    .arg(option)
                    .arg(low)
                    .arg(high)
                    .arg(it->second);
        return std::nullopt;
    }
    return v;
}

int write(const KelFile &file, const QString &path)
{
    QString error;
    if (!file.writeFile(path, &error)) {
        std::fprintf(stderr, "kelwrite: %s\n", qPrintable(error));
        return 1;
    }
    return 0;
}

int sample(const QStringList &args)
{
    const Arguments a = parse(args, {QStringLiteral("--lang")}, {});
    if (!a.error.isEmpty())
        return fail(a.error);
    const auto lang = a.values.find(QStringLiteral("--lang"));
    if (lang == a.values.end())
        return fail(QStringLiteral("sample needs --lang en or --lang sv"));
    if (lang->second != QLatin1String("en") && lang->second != QLatin1String("sv"))
        return fail(QStringLiteral("unknown language \"%1\" (en or sv)").arg(lang->second));
    return write(employeeSurvey(lang->second == QLatin1String("sv")), a.positional.first());
}

int demo(const QStringList &args)
{
    const Arguments a = parse(args,
                              {QStringLiteral("--revision"), QStringLiteral("--cell-type"), QStringLiteral("--rows"),
                               QStringLiteral("--seed")},
                              {QStringLiteral("--plain")});
    if (!a.error.isEmpty())
        return fail(a.error);
    if (a.values.find(QStringLiteral("--revision")) == a.values.end())
        return fail(QStringLiteral("demo needs --revision N"));
    QString error;
    // Revisions above 9 are allowed: they make files that ask for an upgrade.
    const auto revision = number(a, QStringLiteral("--revision"), 9, 1, 1000, error);
    const auto cellType = number(a, QStringLiteral("--cell-type"), 1, 1, 3, error);
    const auto rows = number(a, QStringLiteral("--rows"), 40, 0, 100000, error);
    const auto seed = number(a, QStringLiteral("--seed"), 1, 0, std::numeric_limits<qint64>::max(), error);
    if (!error.isEmpty())
        return fail(error);
    DemoOptions o;
    o.revision = qint32(*revision);
    o.compressed = !a.flags.contains(QStringLiteral("--plain"));
    o.cellType = qint32(*cellType);
    o.rows = qint32(*rows);
    o.seed = quint64(*seed);
    return write(demoDocument(o), a.positional.first());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty())
        return fail(QStringLiteral("no command given"));
    const QString command = args.takeFirst();
    if (command == QLatin1String("sample"))
        return sample(args);
    if (command == QLatin1String("demo"))
        return demo(args);
    if (command == QLatin1String("--help") || command == QLatin1String("-h")) {
        std::fputs(Usage, stdout);
        return 0;
    }
    return fail(QStringLiteral("unknown command \"%1\"").arg(command));
}
