// SPDX-License-Identifier: GPL-3.0-or-later
// Writing pictures: the overview of 300 rows x 250 columns (EMF file mode)
// as EMF, WMF, SVG, PDF and PNG, each timed from the drawing routine to the
// finished bytes, with the file sizes; and `kel render` of the overview to
// PNG as a whole process (start-up, reading the document, Show, drawing,
// writing). Then a fraction graph of 45 questions as EMF, and `kel render` of
// a chart to PNG as a whole process. Prints median milliseconds.
#include "engine/document/documentreader.h"
#include "engine/graphs/basicgraph.h"
#include "engine/overview/subsheet.h"
#include "kelwriter.h"
#include "render/graphs/basicgraphrenderer.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/emfpaintdevice.h"
#include "render/pictures/picturewriter.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace {

constexpr int Rows = 300;
constexpr int Columns = 250;
constexpr int Runs = 9;

kel::writer::SurveyBuilder survey()
{
    using namespace kel::writer;
    SurveyBuilder b(Rows, 1);
    b.header().pointsScale = 100;
    b.header().allowCopy = FileTrue;
    b.header().allowCopyData = FileTrue;
    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"),
                                       .heading = QStringLiteral("Unit"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false},
                                      {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    const QList<AlternativeSpec> scale = {
        {.text = QStringLiteral("1"), .points = 0, .colour = rgb(230, 60, 50), .label = QStringLiteral("1")},
        {.text = QStringLiteral("2"), .points = 25, .colour = rgb(250, 160, 80), .label = QStringLiteral("2")},
        {.text = QStringLiteral("3"), .points = 50, .colour = rgb(250, 240, 120), .label = QStringLiteral("3")},
        {.text = QStringLiteral("4"), .points = 75, .colour = rgb(150, 210, 110), .label = QStringLiteral("4")},
        {.text = QStringLiteral("5"), .points = 100, .colour = rgb(60, 160, 70), .label = QStringLiteral("5")}};
    qint32 first = -1, block = -1;
    Random random(11);
    for (int c = 0; c < Columns; ++c) {
        if (c % 10 == 0)
            block = b.addBlock({.code = QStringLiteral("B%1").arg(c / 10 + 1),
                                .name = QStringLiteral("Block number %1").arg(c / 10 + 1)});
        const QuestionSpec q{.code = QStringLiteral("Q%1").arg(c + 1),
                             .heading = QStringLiteral("Question %1").arg(c + 1),
                             .block = block};
        const qint32 question = first < 0 ? b.addQuestion(q, scale) : b.addQuestionLike(q, first);
        if (first < 0)
            first = question;
        for (int r = 0; r < Rows; ++r)
            b.setAnswer(r, question, random.below(5));
    }
    for (int r = 0; r < Rows; ++r)
        b.setAnswer(r, unit, r % 2);
    return b;
}

// The machine these run on is shared: besides the wall-clock median, the
// median processor time of this process is kept, which other processes
// disturb far less.
double lastCpuMs = 0.0;

double processCpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

double medianMs(const std::function<void()> &work)
{
    std::vector<double> times, cpu;
    for (int i = 0; i < Runs; ++i) {
        QElapsedTimer timer;
        const double cpuStart = processCpuMs();
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
        cpu.push_back(processCpuMs() - cpuStart);
    }
    std::sort(times.begin(), times.end());
    std::sort(cpu.begin(), cpu.end());
    lastCpuMs = cpu[cpu.size() / 2];
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    // bench_pictures [KEL] [--only EMF|WMF|SVG|PDF|PNG] (--only: for profiling one writer)
    QString kelTool, only;
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--only") && i + 1 < args.size())
            only = args[++i];
        else
            kelTool = args[i];
    }

    const kel::writer::SurveyBuilder builder = survey();
    const QByteArray file = builder.toBytes();
    kel::ReadResult read = kel::readDocumentBytes(file);
    if (read.code != kel::OpenResult::Ok) {
        std::fprintf(stderr, "document not readable: %s\n", qPrintable(read.detail));
        return 1;
    }
    kel::Document &doc = *read.document;
    kel::FlexTotal flex;
    kel::RowRandom random(1);
    const kel::SubSheet sheet =
        kel::createSubSheet(doc, kel::SelectionMatrix(1, doc.maxCategoryAlternatives), flex, 0, random);
    kel::SheetInput input;
    input.document = &doc;
    input.rows = sheet.rows;
    input.columns = doc.overviewColumns;
    input.selectionText = sheet.steps.selectionText;
    input.totalIndex = sheet.totalIndex;
    const kel::Picture picture =
        kel::overviewPicture(input, kel::SheetMode::SaveEmf, kel::OverviewPictureContent::Answers, true);
    std::printf("overview %d rows x %d columns, picture %d x %d pixels (median of %d runs)\n", Rows, Columns,
                picture.size.width(), picture.size.height(), Runs);
    // The share of the drawing routine itself: painting into a recording
    // without writing any record.
    const double recordMs = medianMs([&] {
        kel::MetafilePaintDevice device(picture.size);
        QPainter painter(&device);
        picture.paint(painter);
    });
    std::printf("  drawing into a metafile recording alone: %.1f ms (cpu %.1f ms)\n", recordMs, lastCpuMs);
    const struct {
        const char *name;
        kel::PictureFormat format;
    } formats[] = {{"EMF", kel::PictureFormat::Emf},
                   {"WMF", kel::PictureFormat::Wmf},
                   {"SVG", kel::PictureFormat::Svg},
                   {"PDF", kel::PictureFormat::Pdf},
                   {"PNG", kel::PictureFormat::Png}};
    for (const auto &f : formats) {
        if (!only.isEmpty() && only != QLatin1String(f.name))
            continue;
        qsizetype size = 0;
        const double ms = medianMs([&] { size = kel::encodePicture(picture, f.format).size(); });
        std::printf("  %-4s %8.1f ms (cpu %7.1f ms) %10lld bytes%s\n", f.name, ms, lastCpuMs,
                    static_cast<long long>(size), f.format == kel::PictureFormat::Emf ? "   (target < 150 ms)" : "");
    }

    // A fraction graph of 45 questions, saved as the graph window saves it
    // with its default size: twice the size, no margin.
    {
        kel::BasicGraphRequest request;
        request.kind = kel::FractionGraph;
        for (qint32 q = 0; q < 45; ++q)
            request.questions.push_back(doc.overviewColumns[std::size_t(q)]);
        request.name = QStringLiteral("Forty-five questions");
        kel::BasicGraphSelection selection;
        selection.rows = &sheet.rows;
        selection.splitNotAllowed = &sheet.steps.splitNotAllowed;
        selection.selectionText = sheet.steps.selectionText;
        selection.usedTotalText = flex.text();
        selection.usedTotalSize = flex.rowCount();
        const kel::BasicGraphResult graph = kel::generateBasicGraph(doc, request, selection);
        if (graph.outcome != kel::BasicGraphOutcome::Ok) {
            std::fprintf(stderr, "the fraction graph could not be made\n");
            return 1;
        }
        const kel::BasicGraphRenderer renderer(graph.description, kel::BasicGraphUnits{});
        const QSize window = kel::basicGraphWindowSize(renderer, 9300, 46, 96);
        kel::Picture fraction;
        fraction.size = (window - QSize(20, 20)) * 2;
        bool drawn = false;
        fraction.paint = [&](QPainter &painter) {
            drawn = kel::drawScaledBasicGraph(painter, renderer, QRect(QPoint(0, 0), fraction.size), 2, false);
        };
        qsizetype size = 0;
        const double ms = medianMs([&] { size = kel::encodePicture(fraction, kel::PictureFormat::Emf).size(); });
        std::printf("fraction graph of 45 questions, %d x %d pixels, as EMF: %.1f ms (cpu %.1f ms) %lld bytes%s\n",
                    fraction.size.width(), fraction.size.height(), ms, lastCpuMs, static_cast<long long>(size),
                    drawn ? "" : "  -- too big, nothing drawn");
    }

    if (kelTool.isEmpty()) {
        std::printf("kel render: pass the kel tool's path to time it\n");
        return 0;
    }
    QTemporaryDir dir;
    const QString documentPath = dir.filePath(QStringLiteral("bench.kel"));
    if (!builder.build().writeFile(documentPath))
        return 1;
    const QString out = dir.filePath(QStringLiteral("overview.png"));
    int exitCode = 0;
    const double ms = medianMs([&] {
        QProcess process;
        process.start(kelTool,
                      {QStringLiteral("render"), documentPath, QStringLiteral("overview"), QStringLiteral("-o"), out});
        process.waitForFinished(60000);
        exitCode = std::max(exitCode, process.exitCode());
    });
    std::printf("kel render overview -o PNG, whole process: %.1f ms (target < 400 ms)%s\n", ms,
                exitCode ? "  -- kel failed" : "");

    // A chart: the total index and the 25 block indexes, drawn by Qt Charts.
    const QString chart = dir.filePath(QStringLiteral("chart.png"));
    exitCode = 0;
    const double chartMs = medianMs([&] {
        QProcess process;
        process.start(kelTool,
                      {QStringLiteral("render"), documentPath, QStringLiteral("graph"), QStringLiteral("total-index"),
                       QStringLiteral("--main"), QStringLiteral("--blocks"), QStringLiteral("-o"), chart});
        process.waitForFinished(60000);
        exitCode = std::max(exitCode, process.exitCode());
    });
    std::printf("kel render graph total-index -o PNG (800 x 600), whole process: %.1f ms (target < 400 ms)%s\n",
                chartMs, exitCode ? "  -- kel failed" : "");
    return 0;
}
