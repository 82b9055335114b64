// SPDX-License-Identifier: GPL-3.0-or-later
// `kel render`: the overview or a graph of a selection written to a file,
// without a display, in the format of the file's extension; for folders of
// report pictures made by scripts.
#include "commands.h"
#include "options.h"
#include "graphargs.h"
#include "selectionargs.h"

#include "gui/graphs/chartpicture.h"
#include "render/graphs/basicgraphrenderer.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/picturewriter.h"
#include "texts/graphtexts.h"
#include "texts/language.h"

#include <QPainter>
#include <QPicture>

#include <cstring>

namespace kel::cli {

namespace {

struct RenderArgs {
    SelectionArgs selection;
    QString what; ///< "overview" (graphs are `kel graph` command lines)
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
        } else if (a == QLatin1String("overview") && out.what.isEmpty()) {
            out.what = a;
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

// Where the command line names the graph (before any "overview"), the rest
// of it, less "-o OUT", is a `kel graph` command line.
bool splitGraphCommandLine(const QStringList &args, QStringList &graphArgs, QString &output)
{
    bool graph = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        if (a == QLatin1String("-o") && i + 1 < args.size())
            output = args[++i];
        else if (!graph && a == QLatin1String("overview"))
            return false;
        else if (!graph && a == QLatin1String("graph"))
            graph = true;
        else
            graphArgs << a;
    }
    return graph;
}

int renderGraph(const Document &doc, const QStringList &graphArgs, const QString &outputPath, CommandOutput &output)
{
    if (outputPath.isEmpty() || !pictureFormatForFileName(outputPath)) {
        output.err +=
            (outputPath.isEmpty()
                 ? QStringLiteral("kel render: -o OUT is missing\n")
                 : QStringLiteral("kel render: '%1' does not end in a picture format's extension\n").arg(outputPath))
            + usageOf(QStringLiteral("render"));
        return UsageError;
    }
    MadeGraph graph;
    if (const int status = makeGraph(doc, graphArgs, graph, output); status != 0)
        return status;
    std::optional<Picture> picture =
        graph.chart ? chartPicture(*graph.chart, DefaultChartPictureSize) : basicGraphDefaultPicture(*graph.basic);
    if (!picture) {
        output.err += QStringLiteral("kel render: %1\n").arg(graphTooBigMessage(false));
        return 1;
    }
    picture->description = applicationTitle();
    QString error;
    if (!writePicture(*picture, *pictureFormatForFileName(outputPath), outputPath, &error)) {
        output.err += QStringLiteral("kel render: %1: %2\n").arg(outputPath, error);
        return 1;
    }
    return 0;
}

SheetMode modeFor(int mode, PictureFormat format)
{
    if (mode == 0)
        return format == PictureFormat::Emf ? SheetMode::SaveEmf
            : format == PictureFormat::Wmf  ? SheetMode::SaveWmf
                                            : SheetMode::CopyPicture;
    return SheetMode(mode);
}

} // namespace

int renderCommand(const Document &doc, const QStringList &args, CommandOutput &output)
{
    QStringList graphArgs;
    QString graphOutput;
    if (splitGraphCommandLine(args, graphArgs, graphOutput))
        return renderGraph(doc, graphArgs, graphOutput, output);
    RenderArgs options;
    QString error = parse(args, options);
    if (!error.isEmpty()) {
        output.err += QStringLiteral("kel render: %1\n").arg(error) + usageOf(QStringLiteral("render"));
        return UsageError;
    }
    const std::optional<ShownSelection> shown = showFromArgs(doc, options.selection, error);
    if (!shown) {
        output.err += QStringLiteral("kel render: %1\n").arg(error);
        return UsageError;
    }
    const SubSheet &sheet = shown->sheet;
    if (shown->refusal) {
        output.err += shown->refusal->message + QLatin1Char('\n');
        return Refused;
    }

    SheetInput input = sheetInputFor(doc, sheet);
    input.overviewMaxRows = options.maxRows;
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
