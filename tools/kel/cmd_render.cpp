// SPDX-License-Identifier: GPL-3.0-or-later
// `kel render`: the overview picture of a selection written to a file,
// without a display, in the format of the file's extension; for folders of
// report pictures made by scripts.
#include "commands.h"
#include "selectionargs.h"

#include "render/overview/overviewpicture.h"
#include "render/pictures/picturewriter.h"
#include "texts/language.h"

#include <QGuiApplication>

#include <cstring>

namespace kel::cli {

namespace {

const char RenderUsage[] =
    "usage: kel render FILE [--select SPEC] [--flex OPTS] [--flex-current] [--order 0|1|2] [--seed N]\n"
    "                  [--max-rows N] [--locale NAME] overview [--mode 1|2|3] [--headers-only] -o OUT\n"
    "       kel render FILE [selection options] graph KIND [graph options] -o OUT\n"
    "OUT ends in .emf, .wmf, .png, .bmp, .jpg, .gif, .svg or .pdf\n";

// Show refused the selection (nothing selected, too few respondents).
constexpr int SelectionRefused = 7;

struct RenderArgs {
    SelectionArgs selection;
    QString what; ///< "overview" or "graph"
    QString graphKind;
    QString output;
    int mode = 0; ///< 0: from the output's format
    bool headersOnly = false;
    qint32 maxRows = 300;
};

QString parse(const QStringList &args, RenderArgs &out)
{
    QString error;
    for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
        const QString &a = args[i];
        const bool hasValue = i + 1 < args.size();
        if (a == QLatin1String("-o") && hasValue) {
            out.output = args[++i];
        } else if (a == QLatin1String("--mode") && hasValue) {
            bool ok = false;
            out.mode = args[++i].toInt(&ok);
            if (!ok || out.mode < 1 || out.mode > 3)
                error = QStringLiteral("--mode takes 1, 2 or 3, not '%1'").arg(args[i]);
        } else if (a == QLatin1String("--headers-only")) {
            out.headersOnly = true;
        } else if (a == QLatin1String("--max-rows") && hasValue) {
            bool ok = false;
            out.maxRows = args[++i].toInt(&ok);
            if (!ok || out.maxRows < 0)
                error = QStringLiteral("--max-rows takes a non-negative number, not '%1'").arg(args[i]);
        } else if ((a == QLatin1String("overview") || a == QLatin1String("graph")) && out.what.isEmpty()) {
            out.what = a;
            if (a == QLatin1String("graph")) {
                if (!hasValue)
                    error = QStringLiteral("graph needs a KIND");
                else
                    out.graphKind = args[++i];
            }
        } else if (!out.what.isEmpty() && out.what == QLatin1String("graph") && a.startsWith(QLatin1String("--"))) {
            // Graph options belong to the graph kinds; they are checked there.
            if (hasValue && !args[i + 1].startsWith(QLatin1String("-")))
                ++i;
        } else if (!takeSelectionOption(args, i, out.selection, error) && error.isEmpty()) {
            error = QStringLiteral("unexpected argument '%1'").arg(a);
        }
    }
    if (error.isEmpty() && out.what.isEmpty())
        error = QStringLiteral("say what to render: overview or graph KIND");
    if (error.isEmpty() && out.output.isEmpty())
        error = QStringLiteral("-o OUT is missing");
    if (error.isEmpty() && !pictureFormatForFileName(out.output))
        error = QStringLiteral("'%1' does not end in a picture format's extension").arg(out.output);
    return error;
}

SheetMode modeFor(int mode, PictureFormat format)
{
    if (mode == 0)
        return format == PictureFormat::Emf ? SheetMode::SaveEmf
               : format == PictureFormat::Wmf ? SheetMode::SaveWmf
                                              : SheetMode::CopyPicture;
    return SheetMode(mode);
}

} // namespace

std::unique_ptr<QCoreApplication> makeApplication(int &argc, char **argv)
{
    const bool draws = argc > 1 && (std::strcmp(argv[1], "render") == 0 || std::strcmp(argv[1], "batch") == 0);
    if (!draws)
        return std::make_unique<QCoreApplication>(argc, argv);
    // Fonts need a GUI application; without a display it runs off-screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

int renderCommand(const Document &base, const QStringList &args, CommandOutput &output)
{
    RenderArgs options;
    QString error = parse(args, options);
    if (!error.isEmpty()) {
        output.err += QStringLiteral("kel render: %1\n").arg(error) + QLatin1String(RenderUsage);
        return UsageError;
    }
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        output.err += QStringLiteral("kel render: pictures can only be drawn when kel starts with render or batch\n");
        return UsageError;
    }
    if (options.what == QLatin1String("graph")) {
        output.err += QStringLiteral("kel render: graph pictures (%1) are not available in this version; "
                                     "render the overview instead\n")
                          .arg(options.graphKind);
        return UsageError;
    }

    Document doc = base;
    const std::optional<ShownSelection> shown = showFromArgs(doc, options.selection, error);
    if (!shown) {
        output.err += QStringLiteral("kel render: %1\n").arg(error);
        return UsageError;
    }
    const SubSheet &sheet = shown->sheet;
    if (shown->refusal) {
        output.err += shown->refusal->message + QLatin1Char('\n');
        return SelectionRefused;
    }

    SheetInput input;
    input.document = &doc;
    input.rows = sheet.rows;
    input.columns = doc.overviewColumns;
    if (sheet.randomPerColumn)
        input.columnRowOffsets = sheet.columnRowOffsets;
    input.overviewMaxRows = options.maxRows;
    input.selectionText = sheet.steps.selectionText;
    input.totalIndex = sheet.totalIndex;
    input.locale = options.selection.locale;
    const PictureFormat format = *pictureFormatForFileName(options.output);
    Picture picture = overviewPicture(input, modeFor(options.mode, format),
                                      options.headersOnly ? OverviewPictureContent::HeadersAndTotals
                                                          : OverviewPictureContent::Answers,
                                      sheet.dataRowsAllowed);
    if (!picture.isValid()) {
        output.err += QStringLiteral("kel render: the overview has nothing to draw\n");
        return 1;
    }
    picture.description = applicationTitle();
    if (!writePicture(picture, format, options.output, &error)) {
        output.err += QStringLiteral("kel render: %1: %2\n").arg(options.output, error);
        return 1;
    }
    return 0;
}

} // namespace kel::cli
