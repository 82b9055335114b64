// SPDX-License-Identifier: GPL-3.0-or-later
// Copy Indexes as the user runs it: the setup dialog's OK starts the
// progress window, which computes every block, sub-block, user block and
// question of a 20,000 x 50 document for 20 sub-selections (the total and
// the 19 options of one category) and puts the table on the clipboard.
// Prints the time of each run and the longest gap between two ticks of a
// 1 ms timer on the event loop meanwhile (target: under 50 ms).
#include "kelwriter.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/documentreader.h"
#include "engine/indexes/blockindex.h"
#include "engine/settings/settingsstore.h"
#include "gui/indexes/exportindexes.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <random>

using namespace kel;
using namespace kel::writer;

namespace {

constexpr qint32 Rows = 20000;
constexpr qint32 Questions = 49; // and the category: 50 columns, the most a document may have at 20,000 rows
constexpr qint32 Options = 19;

// The document, and in `catalogue` its blocks with five user blocks added.
std::unique_ptr<Document> benchDocument(BlockCatalogue &catalogue)
{
    SurveyBuilder b(Rows);
    b.header().pointsScale = 100;
    b.header().minimumGraphSelection = 5;
    std::vector<qint32> blocks, subBlocks;
    for (qint32 k = 0; k < 10; ++k) {
        blocks.push_back(b.addBlock({.name = QStringLiteral("Block %1").arg(k)}));
        for (qint32 s = 0; s < 2; ++s)
            subBlocks.push_back(
                b.addBlock({.name = QStringLiteral("Block %1.%2").arg(k).arg(s), .linkedBlock = blocks.back()}));
    }
    QList<AlternativeSpec> units;
    for (qint32 o = 0; o < Options; ++o)
        units.append({.text = QStringLiteral("Unit %1").arg(o)});
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  units);
    const QList<AlternativeSpec> scale{
        {.text = QStringLiteral("1"), .points = 100}, {.text = QStringLiteral("2"), .points = 200},
        {.text = QStringLiteral("3"), .points = 300}, {.text = QStringLiteral("4"), .points = 400},
        {.text = QStringLiteral("5"), .points = 500}, {.text = QStringLiteral("-")}};
    std::mt19937 gen(7);
    std::vector<qint32> column(static_cast<std::size_t>(Rows));
    for (qint32 q = 0; q < Questions; ++q) {
        const qint32 n = b.addQuestion({.code = QString::number(q + 1),
                                        .heading = QStringLiteral("Question %1").arg(q + 1),
                                        .block = blocks[std::size_t(q / 5)],
                                        .subBlock = subBlocks[std::size_t(q / 5 * 2 + (q % 5) / 3)]},
                                       scale);
        for (qint32 &v : column)
            v = qint32(gen() % 6);
        b.setAnswers(n, column);
    }
    for (qint32 &v : column)
        v = qint32(gen() % Options);
    b.setAnswers(0, column);
    ReadResult read = readDocumentBytes(b.build().toBytes());
    if (!read.document) {
        std::fprintf(stderr, "%s\n", qPrintable(read.detail));
        return nullptr;
    }
    // Five user blocks across the document's blocks, everything included.
    std::unique_ptr<Document> doc = std::move(read.document);
    catalogue = BlockCatalogue(*doc);
    BlockEditModel model(*doc, catalogue);
    for (qint32 u = 0; u < 5; ++u) {
        qint32 index = -1;
        model.add(QStringLiteral("Theme %1").arg(u), &index);
        model.setIncludeInCopy(index, true);
        for (qint32 q = 1 + u; q <= Questions; q += 7)
            model.setMember(index, q, true);
    }
    for (qint32 i = 0; i < model.size(); ++i)
        model.setIncludeInCopy(i, true);
    model.apply(catalogue);
    return doc;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    BlockCatalogue blocks;
    std::unique_ptr<Document> doc = benchDocument(blocks);
    if (!doc) {
        std::fprintf(stderr, "bench_export: the test document could not be read\n");
        return 1;
    }
    const RowList rows = allRows(*doc);
    IndexExportOptions remembered;
    remembered.subSelTotal = true;
    remembered.subSelCategories = {0};
    remembered.showNumberOfAnswers = true;
    remembered.indexFor = {true, true, true, true, true};

    std::printf("Copy Indexes, %d rows x %d columns, 20 sub-selections, through the dialogs\n", Rows, Questions + 1);
    double worstStall = 0;
    std::vector<double> times;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer clock;
        QElapsedTimer tick;
        double longest = 0;
        QTimer probe;
        probe.setInterval(1);
        QObject::connect(&probe, &QTimer::timeout, [&] {
            longest = std::max(longest, double(tick.nsecsElapsed()) / 1e6);
            tick.restart();
        });
        qsizetype length = 0;
        std::size_t items = 0;
        SetupExportIndexes setup(*doc, remembered, false);
        setup.setOnExport([&](const IndexExportOptions &options) {
            ExportIndexes progress(*doc, blocks, QStringLiteral("Everyone"), rows, options, QLocale::c(), false,
                                   &setup);
            items = buildIndexItems(*doc, blocks, options).size();
            probe.start();
            tick.start();
            clock.start();
            progress.exec();
            times.push_back(double(clock.nsecsElapsed()) / 1e6);
            probe.stop();
            length = QApplication::clipboard()->text().size();
        });
        setup.accept();
        worstStall = std::max(worstStall, longest);
        std::printf("  run %d: %zu items, %8.1f ms, longest event-loop stall %6.1f ms, %lld characters copied\n",
                    run + 1, items, times.back(), longest, static_cast<long long>(length));
    }
    std::sort(times.begin(), times.end());
    std::printf("median %.1f ms; longest stall over all runs %.1f ms (target < 50 ms): %s\n", times[times.size() / 2],
                worstStall, worstStall < 50.0 ? "met" : "NOT met");
    return 0;
}
