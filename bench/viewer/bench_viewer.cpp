// SPDX-License-Identifier: GPL-3.0-or-later
// The viewer with a 1,000 x 1,000 document, measured two ways in one run:
// the sheet drawn in tiles of what the window shows (the viewer as it is),
// and the whole-picture way it replaced (every cell drawn into one picture
// at each Show, the window copying from it), kept here as the baseline.
//
// - Show: building the overview (the same both ways) plus drawing it, and
//   one scroll step (a line down or a column right) shown;
// - peak memory (VmHWM) of a fresh process with the viewer open on the
//   document, then with ten mini-overviews of it, the baseline holding the
//   pictures the whole-picture way kept.
// `bench_viewer --write-document FILE` writes the document and stops.
// Times are medians; the machine is shared, so figures vary between runs.
#include "peakmemory.h"
#include "engine/selection/counting.h"
#include "engine/settings/settingsstore.h"
#include "gui/overview/sheetview.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "gui/overview/overviewcommands.h"
#include "kelwriter.h"
#include "render/overview/sheetdrawer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPainter>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int Rows = 1000;
constexpr int Columns = 1000;
constexpr int MiniOverviews = 10;

bool writeDocument(const QString &path)
{
    kel::writer::SurveyBuilder b(Rows, 3);
    b.header().pointsScale = 100;
    using kel::writer::rgb;
    const QList<kel::writer::AlternativeSpec> scale = {
        {.text = QStringLiteral("No answer"), .points = -1},
        {.text = QStringLiteral("1"), .points = 0, .colour = rgb(230, 60, 50), .label = QStringLiteral("1")},
        {.text = QStringLiteral("2"), .points = 25, .colour = rgb(250, 160, 80), .label = QStringLiteral("2")},
        {.text = QStringLiteral("3"), .points = 50, .colour = rgb(250, 240, 120), .label = QStringLiteral("3")},
        {.text = QStringLiteral("4"), .points = 75, .colour = rgb(150, 210, 110), .label = QStringLiteral("4")},
        {.text = QStringLiteral("5"), .points = 100, .colour = rgb(60, 160, 70), .label = QStringLiteral("5")},
    };
    const qint32 first = b.addQuestion({QStringLiteral("Q1"), QStringLiteral("Question 1")}, scale);
    for (int c = 1; c < Columns; ++c)
        b.addQuestionLike({QStringLiteral("Q%1").arg(c + 1), QStringLiteral("Question %1").arg(c + 1)}, first);
    std::mt19937 rng(5);
    for (int c = 0; c < Columns; ++c)
        for (int r = 0; r < Rows; ++r)
            b.setAnswer(r, c, int(rng() % 6));
    return b.build().writeFile(path);
}

using kel::bench::peakKb;

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

double elapsedMs(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

struct Viewer {
    QTemporaryDir settingsDir;
    std::unique_ptr<kel::SettingsStore> store;
    std::unique_ptr<kel::MainWindow> window;

    bool open(const QString &path)
    {
        store = std::make_unique<kel::SettingsStore>(
            kel::SettingsLocation{.file = settingsDir.filePath(QStringLiteral("KEL Viewer.ini"))});
        window = std::make_unique<kel::MainWindow>(*store, false, kel::MainWindowEnvironment{});
        window->setMessageHandler([](QMessageBox::Icon, const QString &, const QString &text) {
            std::fprintf(stderr, "message: %s\n", qPrintable(text));
        });
        window->resize(1280, 900);
        window->show();
        QApplication::processEvents();
        const bool opened = window->openDocument(path, true, QStringLiteral("Open Data File"));
        QApplication::processEvents();
        return opened && window->sheetView()->hasSheet();
    }
};

// The whole-picture way: the window's picture of every cell, drawn at each
// Show, and the copy of its visible part at each paint.
struct WholePicture {
    QImage picture;
    kel::SheetGeometry geometry;

    void draw(const kel::SheetInput &input, kel::SheetTextOffsets &offsets)
    {
        kel::renderSheetInto(picture, input, offsets, 1.0, &geometry);
    }

    void show(QImage &target, int column, int line) const
    {
        QPainter painter(&target);
        const int x = column * geometry.cellWidth;
        const int header = geometry.headerHeight();
        painter.drawImage(QPoint(1, 1), picture, QRect(x, 0, target.width() - 2, header));
        painter.drawImage(
            QPoint(1, 1 + header), picture,
            QRect(x, header + line * geometry.cellHeight, target.width() - 2, target.height() - 2 - header));
    }
};

// In a fresh process: "<tiles|whole> <file>" prints the peak after opening
// and after ten mini-overviews, in kB.
int childPeaks(bool whole, const QString &path)
{
    Viewer viewer;
    if (!viewer.open(path))
        return 1;
    kel::SheetView *sheet = viewer.window->sheetView();
    std::vector<QImage> kept; // what the whole-picture way held
    kel::SheetTextOffsets offsets;
    if (whole)
        kept.push_back(kel::renderSheetImage(sheet->input(), offsets));
    const long opened = peakKb();
    for (int i = 0; i < MiniOverviews; ++i) {
        if (!viewer.window->commands().overview->copyToMiniOverview())
            return 2;
        if (whole) {
            kel::SheetInput mini = sheet->input();
            mini.mode = kel::SheetMode::MiniOverview;
            kept.push_back(kel::renderSheetImage(mini, offsets));
        }
        QApplication::processEvents();
    }
    std::printf("%ld %ld\n", opened, peakKb());
    return 0;
}

bool runChild(const QString &mode, const QString &path, long &opened, long &withMinis)
{
    QProcess p;
    p.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--peak"), mode, path});
    if (!p.waitForFinished(300000) || p.exitCode() != 0)
        return false;
    const QList<QByteArray> parts = p.readAllStandardOutput().trimmed().split(' ');
    opened = parts.value(0).toLong();
    withMinis = parts.value(1).toLong();
    return opened > 0 && withMinis > 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 4 && args.at(1) == QLatin1String("--peak"))
        return childPeaks(args.at(2) == QLatin1String("whole"), args.at(3));
    // The document alone, to look at the viewer with it.
    if (args.size() == 3 && args.at(1) == QLatin1String("--write-document"))
        return writeDocument(args.at(2)) ? 0 : 1;

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("wide.kel"));
    if (!writeDocument(path)) {
        std::fprintf(stderr, "could not write the document\n");
        return 1;
    }

    Viewer viewer;
    if (!viewer.open(path)) {
        std::fprintf(stderr, "could not open the document\n");
        return 1;
    }
    kel::MainWindow &w = *viewer.window;
    kel::SheetView *sheet = w.sheetView();
    const kel::SelectionMatrix everyone = kel::fullSelection(*w.document());
    QImage target(sheet->viewport()->size(), QImage::Format_RGB32);
    WholePicture old;
    kel::SheetTextOffsets offsets;

    // Show: the overview is built the same way either way; then one way draws
    // the visible tiles, the other the whole picture and copies from it.
    std::vector<double> build, tiles, whole;
    for (int i = 0; i < 9; ++i) {
        build.push_back(elapsedMs([&] { w.showSelection(everyone); }));
        tiles.push_back(elapsedMs([&] { sheet->viewport()->render(&target); }));
        whole.push_back(elapsedMs([&] {
            old.draw(sheet->input(), offsets);
            old.show(target, 0, 0);
        }));
    }
    const double buildMs = median(build);
    std::printf("document %d rows x %d columns, sheet %d x %d px, window %d x %d px; medians of 9\n", Rows, Columns,
                sheet->sheetGeometry().width(), sheet->sheetGeometry().height(), sheet->viewport()->width(),
                sheet->viewport()->height());
    std::printf("%-44s %12s %12s %10s\n", "", "whole picture", "tiles", "target");
    std::printf("%-44s %12.1f %12.1f %10s\n", "Show (build + draw), ms", buildMs + median(whole),
                buildMs + median(tiles), "<= 15");
    std::printf("%-44s %12.1f %12.1f\n", "  of which drawing, ms", median(whole), median(tiles));

    // Scroll steps: a line down, then a column right, alternately, across
    // the sheet; the slowest step is printed too (a step into new tiles).
    QScrollBar *v = sheet->verticalScrollBar();
    QScrollBar *h = sheet->horizontalScrollBar();
    std::vector<double> stepTiles, stepWhole;
    for (int i = 1; i <= 300; ++i) {
        const int column = (i / 2) % (h->maximum() + 1);
        const int line = ((i + 1) / 2) % (v->maximum() + 1);
        stepTiles.push_back(elapsedMs([&] {
            sheet->setScrollPosition(column, line);
            sheet->viewport()->render(&target);
        }));
        stepWhole.push_back(elapsedMs([&] { old.show(target, column, line); }));
    }
    std::printf("%-44s %12.2f %12.2f %10s\n", "scroll step shown, median ms", median(stepWhole), median(stepTiles),
                "<= 4");
    auto percentile95 = [](std::vector<double> v) {
        std::sort(v.begin(), v.end());
        return v[v.size() * 95 / 100];
    };
    std::printf("%-44s %12.2f %12.2f\n", "scroll step shown, 95th percentile ms", percentile95(stepWhole),
                percentile95(stepTiles));
    std::printf("%-44s %12.2f %12.2f\n", "scroll step shown, slowest ms",
                *std::max_element(stepWhole.begin(), stepWhole.end()),
                *std::max_element(stepTiles.begin(), stepTiles.end()));
    std::printf("%-44s %12.1f %12.1f\n", "sheet's own memory, MB", double(old.picture.sizeInBytes()) / 1048576.0,
                double(sheet->tiles().memoryBytes()) / 1048576.0);

    long wholeOpened = 0, wholeMinis = 0, tilesOpened = 0, tilesMinis = 0;
    if (!runChild(QStringLiteral("whole"), path, wholeOpened, wholeMinis)
        || !runChild(QStringLiteral("tiles"), path, tilesOpened, tilesMinis)) {
        std::fprintf(stderr, "a measuring process failed\n");
        return 1;
    }
    std::printf("%-44s %12.1f %12.1f %10s\n", "peak memory with the document open, MB", wholeOpened / 1024.0,
                tilesOpened / 1024.0, "<= 80");
    std::printf("%-44s %12.1f %12.1f %10s\n", "added by ten mini-overviews, MB", (wholeMinis - wholeOpened) / 1024.0,
                (tilesMinis - tilesOpened) / 1024.0, "<= 50");
    return 0;
}
