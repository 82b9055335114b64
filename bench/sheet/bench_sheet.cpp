// SPDX-License-Identifier: GPL-3.0-or-later
// Drawing the overview sheet: the screen picture of 300 lines x 250 columns
// (mode 0), the copy picture of a 5,000-row selection (mode 1, 300 answer
// lines under the default "Overview Max Rows", index lines over all 5,000
// rows), the mini-overview, and what scrolling one page of the sheet view
// costs against drawing the sheet. Prints median milliseconds.
#include "kelwriter.h"
#include "render/overview/sheetdrawer.h"
#include "gui/overview/sheetview.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

namespace {

constexpr int Columns = 250;
constexpr int Runs = 15;

// Built in memory: 5,000 x 250 cells is more than a file may hold, but a
// sheet must still draw a selection of that size from any document.
std::unique_ptr<kel::Document> makeDocument(int rows)
{
    using kel::writer::rgb;
    auto doc = std::make_unique<kel::Document>();
    doc->currentFileName = QStringLiteral("bench.kel");
    kel::DocumentProperties &p = doc->properties;
    p.pointsScale = 100;
    p.indexDecimals = kel::indexDecimalsFor(100);
    p.sheetColours = {rgb(230, 230, 230), rgb(200, 200, 200), rgb(240, 240, 210), rgb(210, 210, 180)};
    p.sheetColourB = rgb(0, 0, 0);
    p.sheetColourA = rgb(255, 255, 220);
    const struct {
        const char *label;
        qint32 points;
        qint32 colour;
    } scale[] = {{"-", -1, -1},
                 {"1", 0, rgb(230, 60, 50)},
                 {"2", 25, rgb(250, 160, 80)},
                 {"3", 50, rgb(250, 240, 120)},
                 {"4", 75, rgb(150, 210, 110)},
                 {"5", 100, rgb(60, 160, 70)}};
    for (const auto &s : scale) {
        kel::Alternative a;
        a.label = QString::fromLatin1(s.label);
        a.points = s.points;
        a.sheetColour = s.colour;
        doc->alternatives.push_back(a);
    }
    for (int i = 0; i < Columns / 10; ++i) {
        kel::Block block;
        block.code = QStringLiteral("B%1").arg(i + 1);
        block.name = QStringLiteral("Block number %1").arg(i + 1);
        doc->blocks.push_back(block);
    }
    const int subBlockBase = int(doc->blocks.size());
    for (int i = 0; i < Columns / 5; ++i) {
        kel::Block block;
        block.code = QStringLiteral("S%1").arg(i + 1);
        block.name = QStringLiteral("Sub-block %1").arg(i + 1);
        doc->blocks.push_back(block);
    }
    for (int c = 0; c < Columns; ++c) {
        kel::Question q;
        q.code = QStringLiteral("Q%1").arg(c + 1);
        q.inOverview = true;
        q.inTotalIndex = true;
        q.block = c / 10;
        q.subBlock = (c % 10) < 5 ? subBlockBase + c / 5 : -1;
        q.sheetColour = rgb(180, 200, 230);
        q.firstAlternative = 0;
        q.alternativeCount = 6;
        doc->questions.push_back(q);
        doc->overviewColumns.push_back(c);
    }
    std::mt19937 rng(11);
    std::vector<quint8> cells(std::size_t(rows) * Columns);
    for (quint8 &cell : cells)
        cell = quint8(rng() % 6);
    doc->answers = kel::AnswerMatrix(kel::CellType::U8, rows, Columns, cells);
    return doc;
}

kel::SheetInput inputFor(const kel::Document &doc, kel::SheetMode mode)
{
    kel::SheetInput input;
    input.document = &doc;
    input.mode = mode;
    input.columns = doc.overviewColumns;
    input.rows.resize(std::size_t(doc.rowCount()));
    for (qint32 r = 0; r < doc.rowCount(); ++r)
        input.rows[std::size_t(r)] = r;
    input.selectionText = QStringLiteral("Everyone");
    return input;
}

double medianMs(int runs, const std::function<void()> &work)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// Median of a fresh render (allocation included) and of drawing into a
// picture kept from the previous run.
struct Timing {
    double fresh = 0;
    double reused = 0;
    kel::SheetGeometry geometry;
};

Timing timeRender(const kel::SheetInput &input, kel::SheetTextOffsets &offsets, int runs)
{
    Timing t;
    QImage kept;
    kel::renderSheetInto(kept, input, offsets, 1.0, &t.geometry);
    t.fresh = medianMs(runs, [&] { kel::renderSheetImage(input, offsets); });
    t.reused = medianMs(runs, [&] { kel::renderSheetInto(kept, input, offsets); });
    return t;
}

// The floor of a new picture: taking the memory and touching every pixel once.
double allocationFloorMs(const kel::SheetGeometry &g, int runs)
{
    return medianMs(runs, [&] {
        QImage image(g.width(), g.height(), QImage::Format_RGB32);
        image.fill(0xFFFFFFFF);
    });
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    const auto screenDoc = makeDocument(300);
    const auto bigDoc = makeDocument(5000);
    kel::SheetTextOffsets offsets;

    const kel::SheetInput screen = inputFor(*screenDoc, kel::SheetMode::Screen);
    Timing t = timeRender(screen, offsets, Runs);
    std::printf("mode 0 screen sheet, %d lines x %d columns (%d x %d px): %.2f ms into a kept picture "
                "(target < 30 ms), %.2f ms with a new picture\n",
                t.geometry.answerLines, t.geometry.columns, t.geometry.width(), t.geometry.height(), t.reused, t.fresh);
    std::printf("  floor of a new picture of that size (allocate and fill once): %.2f ms\n",
                allocationFloorMs(t.geometry, Runs));

    // Mode 1 of a 5,000-row selection: 300 answer lines under the default
    // "Overview Max Rows", index lines over all 5,000 rows.
    const kel::SheetInput copy = inputFor(*bigDoc, kel::SheetMode::CopyPicture);
    t = timeRender(copy, offsets, 5);
    std::printf("mode 1 copy picture, %d rows (%d answer lines, %d index lines) x %d columns (%d x %d px): "
                "%.2f ms into a kept picture, %.2f ms with a new picture\n",
                t.geometry.rowCount, t.geometry.answerLines, t.geometry.indexLines, t.geometry.columns,
                t.geometry.width(), t.geometry.height(), t.reused, t.fresh);

    // Mode 1 with every one of the 5,000 rows drawn would be a 8000 x 160,000
    // pixel picture (5 GB); the mini-overview draws them all at 8 pixels.
    kel::SheetInput mini = copy;
    mini.mode = kel::SheetMode::MiniOverview;
    mini.overviewMaxRows = 5000;
    t = timeRender(mini, offsets, 5);
    std::printf("mode 5 mini-overview, all %d lines x %d columns (%d x %d px): %.2f ms into a kept picture, "
                "%.2f ms with a new picture\n",
                t.geometry.answerLines, t.geometry.columns, t.geometry.width(), t.geometry.height(), t.reused, t.fresh);

    // The view: setting a sheet draws nothing until it is shown; showing and
    // scrolling a page draw the tiles in sight (bench_viewer compares this
    // with the whole-picture way on a 1,000-column document).
    kel::SheetView view;
    view.resize(1280, 800);
    view.show();
    QImage target(view.viewport()->size(), QImage::Format_RGB32);
    const double buildMs = medianMs(5, [&] {
        view.setSheet(screen);
        view.viewport()->render(&target);
    });
    QScrollBar *v = view.verticalScrollBar();
    QScrollBar *h = view.horizontalScrollBar();
    int page = 0;
    const double scrollMs = medianMs(101, [&] {
        ++page;
        v->setValue((page * v->pageStep()) % (v->maximum() + 1));
        h->setValue((page * h->pageStep()) % (h->maximum() + 1));
        view.viewport()->render(&target);
    });
    std::printf("view %d x %d: setting a new sheet and showing it %.2f ms; scrolling a page and showing it %.3f ms\n",
                view.viewport()->width(), view.viewport()->height(), buildMs, scrollMs);
    return 0;
}
