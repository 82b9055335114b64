// SPDX-License-Identifier: GPL-3.0-or-later
// Writing pictures: the overview of 300 rows x 250 columns (EMF file mode)
// as EMF, WMF, SVG, PDF and PNG, each timed from the drawing routine to the
// finished bytes, with the file sizes; and `kel render` of the overview to
// PNG as a whole process (start-up, reading the document, Show, drawing,
// writing). Then a fraction graph of 45 questions as EMF, and `kel render` of
// a chart to PNG as a whole process. Prints median milliseconds.
//
// The PNG writer deflates pieces of the rows on several threads; the single
// stream it replaced (libpng on one thread) is timed beside it in the same
// run, in-process on 1, 2 and one-per-processor threads, and for `kel
// render` as the whole process less the difference of the two in-process.
//
// The image writers (PNG, BMP, GIF) are measured both ways in the same run:
// the whole-picture way they replaced (the picture drawn into one image,
// then Qt's writers, or Qt's 256-colour conversion and giflib) against the
// banded writers, with the PNG zlib levels and filters behind the choice,
// and the peak memory of writing a 250- and a 1,000-column overview file in
// a fresh process.
#include "peakmemory.h"
#include "engine/document/documentreader.h"
#include "engine/graphs/basicgraph.h"
#include "engine/overview/subsheet.h"
#include "kelwriter.h"
#include "render/graphs/basicgraphrenderer.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/emfpaintdevice.h"
#include "render/pictures/bandedencoders.h"
#include "render/pictures/picturewriter.h"

#include "oldgifencoder.h"

#include <QBuffer>
#include <QFile>
#include <QImageWriter>
#include <png.h>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace {

constexpr int Rows = 300;
constexpr int Columns = 250;
constexpr int Runs = 9;

kel::writer::SurveyBuilder survey(int columns = Columns)
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
    for (int c = 0; c < columns; ++c) {
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

// The same for the processes run and waited for (with theirs), as `kel`
// runs `kel-render`.
double lastChildCpuMs = 0.0;

double childrenCpuMs()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto ms = [](const timeval &t) { return t.tv_sec * 1e3 + t.tv_usec / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

double medianMs(const std::function<void()> &work, int runs = Runs)
{
    std::vector<double> times, cpu, childCpu;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        const double cpuStart = processCpuMs(), childStart = childrenCpuMs();
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
        cpu.push_back(processCpuMs() - cpuStart);
        childCpu.push_back(childrenCpuMs() - childStart);
    }
    std::sort(times.begin(), times.end());
    std::sort(cpu.begin(), cpu.end());
    std::sort(childCpu.begin(), childCpu.end());
    lastCpuMs = cpu[cpu.size() / 2];
    lastChildCpuMs = childCpu[childCpu.size() / 2];
    return times[times.size() / 2];
}

// The whole-picture way: one image of the picture, then the encoder.
QByteArray wholePictureFile(const kel::Picture &picture, kel::PictureFormat format)
{
    const QImage image =
        kel::renderPictureImage(picture, format == kel::PictureFormat::Png ? Qt::transparent : Qt::white);
    if (image.isNull())
        return QByteArray();
    if (format == kel::PictureFormat::Gif)
        return bench::encodeGifWhole(image, nullptr);
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format == kel::PictureFormat::Png ? "png" : "bmp");
    return writer.write(image) ? out : QByteArray();
}

// The size of the banded PNG file written with `encoding`.
qsizetype pngBytes(const kel::Picture &picture, const kel::PngEncoding &encoding)
{
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    kel::writePng(picture, buffer, nullptr, kel::PictureBands::DefaultBandBytes, encoding);
    return out.size();
}

using kel::bench::peakKb;

struct Overview {
    std::unique_ptr<kel::Document> document;
    kel::SubSheet sheet;
    kel::FlexTotal flex;
    kel::BlockCatalogue blocks;

    bool make(const kel::writer::SurveyBuilder &builder)
    {
        kel::ReadResult read = kel::readDocumentBytes(builder.toBytes());
        if (read.code != kel::OpenResult::Ok)
            return false;
        document = std::move(read.document);
        kel::RowRandom random(1);
        blocks = kel::BlockCatalogue(*document);
        sheet = kel::createSubSheet(*document, blocks, kel::SelectionMatrix(1, document->maxCategoryAlternatives), flex,
                                    0, random);
        return true;
    }

    kel::Picture picture(kel::SheetMode mode) const
    {
        kel::SheetInput input;
        input.document = document.get();
        input.rows = sheet.rows;
        input.columns = document->overviewColumns;
        input.selectionText = sheet.steps.selectionText;
        input.totalIndex = sheet.totalIndex;
        return kel::overviewPicture(input, mode, kel::OverviewPictureContent::Answers, true);
    }
};

const struct {
    const char *name;
    kel::PictureFormat format;
} ImageFormats[] = {
    {"PNG", kel::PictureFormat::Png}, {"BMP", kel::PictureFormat::Bmp}, {"GIF", kel::PictureFormat::Gif}};

// In a fresh process: `--peak COLUMNS FORMAT whole|bands FILE` writes the
// copy picture of the overview and prints the peak before and after, in kB.
int childPeak(int columns, const QString &formatName, bool whole, const QString &path)
{
    Overview overview;
    if (!overview.make(survey(columns)))
        return 1;
    const kel::Picture picture = overview.picture(kel::SheetMode::CopyPicture);
    kel::PictureFormat format = kel::PictureFormat::Png;
    for (const auto &f : ImageFormats)
        if (formatName == QLatin1String(f.name))
            format = f.format;
    const long before = peakKb();
    bool ok = false;
    if (whole) {
        const QByteArray bytes = wholePictureFile(picture, format);
        QFile file(path);
        ok = !bytes.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    } else {
        ok = kel::writePicture(picture, format, path);
    }
    std::printf("%ld %ld %d\n", before, peakKb(), ok ? 1 : 0);
    return 0;
}

void printPeaks(const QString &dir)
{
    std::printf("peak memory of writing the copy picture to a file, above the process before it (MB):\n");
    std::printf("  %-30s %14s %14s %14s\n", "", "whole picture", "bands", "picture, RGBA");
    for (int columns : {250, 1000}) {
        Overview overview;
        if (!overview.make(survey(columns)))
            return;
        const QSize size = overview.picture(kel::SheetMode::CopyPicture).size;
        const double pictureMb = double(size.width()) * size.height() * 4 / 1048576.0;
        for (const auto &f : ImageFormats) {
            QString figures[2];
            for (int whole = 1; whole >= 0; --whole) {
                QProcess p;
                p.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--peak"), QString::number(columns), QLatin1String(f.name),
                         whole ? QStringLiteral("whole") : QStringLiteral("bands"),
                         dir + QStringLiteral("/peak.") + QLatin1String(f.name)});
                p.waitForFinished(600000);
                const QList<QByteArray> parts = p.readAllStandardOutput().trimmed().split(' ');
                const long before = parts.value(0).toLong(), after = parts.value(1).toLong();
                figures[whole] = parts.value(2) == "1" ? QString::number((after - before) / 1024.0, 'f', 1)
                                                       : QStringLiteral("cannot");
            }
            std::printf("  %4d columns %dx%d %s %*s %14s %14s %14.1f\n", columns, size.width(), size.height(), f.name,
                        4, "", qPrintable(figures[1]), qPrintable(figures[0]), pictureMb);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // figures as they come, also into a file
    const QStringList args = app.arguments();
    if (args.size() == 6 && args.at(1) == QLatin1String("--peak"))
        return childPeak(args.at(2).toInt(), args.at(3), args.at(4) == QLatin1String("whole"), args.at(5));
    // bench_pictures [KEL] [--only EMF|WMF|SVG|PDF|PNG|LEVELS|IMAGES|RENDER] (--only: for profiling
    // one writer; LEVELS: the PNG level table alone; IMAGES: the image files both ways, `kel render`
    // and the peaks; RENDER: the PNG writers and `kel render` alone)
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
    const kel::Document &doc = *read.document;
    const kel::BlockCatalogue blocks(doc);
    kel::FlexTotal flex;
    kel::RowRandom random(1);
    const kel::SubSheet sheet =
        kel::createSubSheet(doc, blocks, kel::SelectionMatrix(1, doc.maxCategoryAlternatives), flex, 0, random);
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
    const bool levelsOnly = only == QLatin1String("LEVELS");
    const bool imagesOnly = only == QLatin1String("IMAGES");
    const bool renderOnly = only == QLatin1String("RENDER");
    for (const auto &f : formats) {
        if (!only.isEmpty() && only != QLatin1String(f.name))
            continue;
        qsizetype size = 0;
        const double ms = medianMs([&] { size = kel::encodePicture(picture, f.format).size(); });
        std::printf("  %-4s %8.1f ms (cpu %7.1f ms) %10lld bytes%s\n", f.name, ms, lastCpuMs,
                    static_cast<long long>(size), f.format == kel::PictureFormat::Emf ? "   (target < 150 ms)" : "");
    }

    // The image writers on the copy picture (what `kel render` writes),
    // both ways.
    const kel::Picture copy =
        kel::overviewPicture(input, kel::SheetMode::CopyPicture, kel::OverviewPictureContent::Answers, true);
    std::printf("copy picture %d x %d pixels as image files (median of 5 runs):\n", copy.size.width(),
                copy.size.height());
    if (!levelsOnly && !renderOnly)
        std::printf("  %-4s %14s %14s %14s %14s %14s %14s\n", "", "whole, ms", "bands, ms", "whole, cpu ms",
                    "bands, cpu ms", "whole, bytes", "bands, bytes");
    double wholePngMs = 0.0, bandsPngMs = 0.0;
    for (const auto &f : ImageFormats) {
        if (levelsOnly || renderOnly)
            break;
        qsizetype wholeSize = 0, bandsSize = 0;
        const double wholeMs = medianMs([&] { wholeSize = wholePictureFile(copy, f.format).size(); }, 5);
        const double wholeCpu = lastCpuMs;
        const double bandsMs = medianMs([&] { bandsSize = kel::encodePicture(copy, f.format).size(); }, 5);
        const double bandsCpu = lastCpuMs;
        if (f.format == kel::PictureFormat::Png) {
            wholePngMs = wholeMs;
            bandsPngMs = bandsMs;
        }
        std::printf("  %-4s %14.1f %14.1f %14.1f %14.1f %14lld %14lld\n", f.name, wholeMs, bandsMs, wholeCpu, bandsCpu,
                    static_cast<long long>(wholeSize), static_cast<long long>(bandsSize));
    }
    // The banded PNG writer before (one stream) and now (pieces), alone.
    double oneStreamMs = 0.0, piecesMs = 0.0;
    if (!levelsOnly) {
        std::printf("banded PNG of the copy picture: one stream (before) against pieces (median of 5 runs)\n");
        const int ideal = QThread::idealThreadCount();
        const struct {
            const char *name;
            bool parallel;
            int threads;
        } ways[] = {{"one stream (libpng)", false, 1},
                    {"pieces, 1 thread", true, 1},
                    {"pieces, 2 threads", true, 2},
                    {"pieces, per processor", true, 0}};
        for (const auto &way : ways) {
            if (way.threads == 0 && ideal == 2)
                continue; // the row above
            kel::PngEncoding encoding;
            encoding.parallel = way.parallel;
            encoding.threads = way.threads;
            qsizetype size = 0;
            const double ms = medianMs([&] { size = pngBytes(copy, encoding); }, 5);
            if (!way.parallel)
                oneStreamMs = ms;
            if (way.threads == (ideal == 2 ? 2 : 0))
                piecesMs = ms;
            std::printf("  %-24s %8.1f ms (cpu %7.1f ms) %10lld bytes\n", way.name, ms, lastCpuMs,
                        static_cast<long long>(size));
        }
    }
    // The PNG choice: zlib levels without a filter and with the Up filter
    // (neither searches), then the other filters at the chosen level.
    if (!imagesOnly && !renderOnly)
        std::printf("PNG of the copy picture, RGB rows: zlib level / filter, ms, bytes (median of 3 runs)\n");
    const struct {
        const char *name;
        int bits;
    } filters[] = {{"none", PNG_FILTER_NONE},
                   {"sub", PNG_FILTER_SUB},
                   {"up", PNG_FILTER_UP},
                   {"paeth", PNG_FILTER_PAETH},
                   {"all (adaptive)", PNG_ALL_FILTERS}};
    const kel::PngEncoding chosen;
    for (int level = 1; level <= 9 && !imagesOnly && !renderOnly; ++level) {
        for (const auto &filter : filters) {
            if (filter.bits != PNG_FILTER_NONE && filter.bits != PNG_FILTER_UP && level != chosen.level)
                continue;
            qsizetype size = 0;
            const double ms = medianMs([&] { size = pngBytes(copy, {level, filter.bits}); }, 3);
            std::printf("  level %d %-15s %8.1f ms (cpu %7.1f ms) %10lld bytes%s\n", level, filter.name, ms, lastCpuMs,
                        static_cast<long long>(size),
                        level == chosen.level && filter.bits == chosen.filters ? "   <- the writers' choice" : "");
        }
    }

    // A fraction graph of 45 questions, saved as the graph window saves it
    // with its default size: twice the size, no margin.
    if (!renderOnly) {
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
        const kel::BasicGraphResult graph = kel::generateBasicGraph(doc, blocks, flex, request, selection);
        if (!graph.done()) {
            std::fprintf(stderr, "the fraction graph could not be made\n");
            return 1;
        }
        const kel::BasicGraphRenderer renderer(graph.value(), kel::BasicGraphUnits{});
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
    std::printf("kel render overview -o PNG, whole process: %.1f ms, cpu %.1f ms (target <= 900 ms)%s\n", ms,
                lastChildCpuMs, exitCode ? "  -- kel failed" : "");
    if (oneStreamMs > 0.0)
        std::printf("  the same with the one-stream PNG writer (this process minus the pieces plus the one "
                    "stream, measured above): %.1f ms\n",
                    ms - piecesMs + oneStreamMs);
    if (wholePngMs > 0.0)
        std::printf("  the same with the whole-picture PNG writer (this process minus the banded writer plus the "
                    "whole-picture one, measured above): %.1f ms\n",
                    ms - bandsPngMs + wholePngMs);
    std::printf("  file: %lld bytes\n", static_cast<long long>(QFile(out).size()));
    if (renderOnly)
        return 0;

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
    printPeaks(dir.path());
    return 0;
}
