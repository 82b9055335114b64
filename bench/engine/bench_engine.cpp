// SPDX-License-Identifier: GPL-3.0-or-later
// Speed of the selection engine's hot paths against straightforward versions:
//  (a) countOptions, 200,000 respondents x 5 category questions (u8);
//  (b) the index export of every block and question of a 20,000 x 50
//      document for 20 sub-selections;
//  (c) createSubSheet's row list and Random order for 200,000 rows.
// After the usual Google Benchmark table, prints each case's time per run,
// its target and the ratio to its baseline.
#include "engine/document/documentreader.h"
#include "kelwriter.h"

#include "engine/indexes/blockindex.h"
#include "engine/indexes/indexexport.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/counting.h"
#include "engine/selection/flextotal.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <map>
#include <random>
#include <string>

using namespace kel;

namespace {

// Written by the test-document writer and read back, as the viewer would.
Document categoryDocument(qint32 rows, qint32 categories, qint32 options, qint32 scored)
{
    std::mt19937 gen(5);
    writer::SurveyBuilder b(rows, 1);
    b.header().pointsScale = 1;
    b.header().totalText = b.text(QStringLiteral("Total"));
    for (qint32 blk = 0; blk < (scored + 4) / 5; ++blk)
        b.addBlock({.code = QStringLiteral("B%1").arg(blk), .name = QStringLiteral("block %1").arg(blk)});
    for (qint32 c = 0; c < categories; ++c) {
        QList<writer::AlternativeSpec> alternatives;
        for (qint32 o = 0; o < options; ++o)
            alternatives << writer::AlternativeSpec{.text = QStringLiteral("o%1").arg(o)};
        const qint32 q = b.addQuestion({.code = QStringLiteral("c%1").arg(c),
                                        .heading = QStringLiteral("c%1").arg(c),
                                        .isCategory = true,
                                        .inOverview = false,
                                        .inTotalIndex = false},
                                       alternatives);
        for (qint32 r = 0; r < rows; ++r)
            b.setAnswer(r, q, qint32(gen() % quint32(options)));
    }
    for (qint32 s = 0; s < scored; ++s) {
        QList<writer::AlternativeSpec> alternatives{{.text = QStringLiteral("none")}};
        for (qint32 p = 1; p <= 5; ++p)
            alternatives << writer::AlternativeSpec{.text = QStringLiteral("p%1").arg(p), .points = p};
        const qint32 q = b.addQuestion(
            {.code = QStringLiteral("q%1").arg(s), .heading = QStringLiteral("q%1").arg(s), .block = s / 5},
            alternatives);
        for (qint32 r = 0; r < rows; ++r)
            b.setAnswer(r, q, qint32(gen() % 6));
    }
    ReadResult read = readDocumentBytes(b.toBytes());
    if (!read.document) {
        std::fprintf(stderr, "bench_engine: the reader refuses the benchmark document: %s\n", qPrintable(read.detail));
        std::exit(1);
    }
    return std::move(*read.document);
}

SelectionMatrix someUnticked(const Document &doc)
{
    SelectionMatrix s = fullSelection(doc);
    for (qint32 c = 0; c < s.categoryCount(); ++c)
        s.set(c, c % s.optionCount(), false);
    return s;
}

// ---- (a) -------------------------------------------------------------------
const Document &countDoc()
{
    static const Document doc = categoryDocument(200000, 5, 6, 0);
    return doc;
}

void BM_CountOptions(benchmark::State &state)
{
    const Document &doc = countDoc();
    const SelectionMatrix selected = someUnticked(doc);
    CountMatrix found = countMatrixFor(doc);
    for (auto _ : state) {
        found.clear();
        benchmark::DoNotOptimize(countOptions(doc, selected, found));
    }
}
BENCHMARK(BM_CountOptions)->Unit(benchmark::kMillisecond);

// The obvious reading: getData per cell, pairwise tests, a std::map of counts.
void BM_CountOptionsBaseline(benchmark::State &state)
{
    const Document &doc = countDoc();
    const SelectionMatrix selected = someUnticked(doc);
    const qint32 n = qint32(doc.categories.size());
    for (auto _ : state) {
        std::map<std::pair<qint32, qint32>, qint32> found;
        qint32 count = 0;
        std::vector<qint32> v(static_cast<std::size_t>(n));
        std::vector<bool> m(static_cast<std::size_t>(n));
        for (qint32 r = 0; r < doc.rowCount(); ++r) {
            for (qint32 c = 0; c < n; ++c) {
                v[std::size_t(c)] = doc.getData(r, doc.categories[std::size_t(c)]);
                m[std::size_t(c)] = selected.at(c, v[std::size_t(c)]);
            }
            bool all = true;
            for (qint32 c = 0; c < n; ++c) {
                bool others = true;
                for (qint32 d = 0; d < n; ++d)
                    others = others && (d == c || m[std::size_t(d)]);
                if (others)
                    ++found[{c, v[std::size_t(c)]}];
                all = all && m[std::size_t(c)];
            }
            count += all;
        }
        benchmark::DoNotOptimize(count);
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(BM_CountOptionsBaseline)->Unit(benchmark::kMillisecond);

// ---- (b) -------------------------------------------------------------------
// 49 scored questions in 10 blocks beside one category of 19 options: 50
// columns, a million cells, the most a document may hold. The category
// gives, with the total, 20 sub-selections.
Document &exportDoc()
{
    static Document doc = categoryDocument(20000, 1, 19, 49);
    return doc;
}

IndexExportOptions exportOptions(const Document &doc)
{
    IndexExportOptions options;
    options.subSelTotal = true;
    options.subSelCategories = {doc.categories.front()};
    options.showNumberOfAnswers = true;
    options.indexFor = {true, true, true, true, true};
    return options;
}

void BM_IndexExport(benchmark::State &state)
{
    const Document &doc = exportDoc();
    const BlockCatalogue blocks(doc);
    const IndexExportOptions options = exportOptions(doc);
    const RowList rows = allRows(doc);
    for (auto _ : state)
        benchmark::DoNotOptimize(exportIndexes(doc, blocks, QStringLiteral("Total"), rows, options, QLocale::c()));
}
BENCHMARK(BM_IndexExport)->Unit(benchmark::kMillisecond);

// Every cell computed on its own with the index routines.
void BM_IndexExportBaseline(benchmark::State &state)
{
    const Document &doc = exportDoc();
    const BlockCatalogue blocks(doc);
    const IndexExportOptions options = exportOptions(doc);
    const RowList rows = allRows(doc);
    for (auto _ : state) {
        const auto subs = buildSubSelections(doc, options, rows);
        const auto items = buildIndexItems(doc, blocks, options);
        std::vector<double> values;
        for (const SubSelection &s : subs)
            for (const IndexItem &item : items)
                values.push_back(item.kind == IndexItem::Total ? calculateTotalIndex(doc, s.rows)
                                     : item.kind == IndexItem::Block
                                     ? calculateBlockIndex(doc, blocks, item.number, s.rows)
                                     : calculateColumnsIndex(doc, {item.number}, s.rows));
        benchmark::DoNotOptimize(
            formatIndexTable(doc, QStringLiteral("Total"), options, subs, items, values, QLocale::c()));
    }
}
BENCHMARK(BM_IndexExportBaseline)->Unit(benchmark::kMillisecond);

// ---- (c) -------------------------------------------------------------------
Document &sheetDoc()
{
    static Document doc = categoryDocument(200000, 2, 4, 0);
    return doc;
}

void BM_CreateSubSheetRandom(benchmark::State &state)
{
    const Document &doc = sheetDoc();
    const BlockCatalogue blocks(doc);
    FlexTotal flex;
    flex.reset(doc, blocks);
    const SelectionMatrix selection = someUnticked(doc);
    RowRandom random(17);
    for (auto _ : state)
        benchmark::DoNotOptimize(createSubSheet(doc, blocks, selection, flex, RowOrderRandom, random));
}
BENCHMARK(BM_CreateSubSheetRandom)->Unit(benchmark::kMillisecond);

// getData per cell into a growing list, then the same exchanges drawn
// with the standard library's generator and rounding.
void BM_CreateSubSheetBaseline(benchmark::State &state)
{
    Document &doc = sheetDoc();
    const SelectionMatrix selection = someUnticked(doc);
    std::mt19937 gen(17);
    std::uniform_real_distribution<float> rnd(0.0f, 1.0f);
    for (auto _ : state) {
        RowList rows;
        for (qint32 r = 0; r < doc.rowCount(); ++r) {
            bool all = true;
            for (std::size_t c = 0; c < doc.categories.size(); ++c)
                all = all && selection.at(qint32(c), doc.getData(r, doc.categories[c]));
            if (all)
                rows.push_back(r);
        }
        const qint32 n = qint32(rows.size());
        for (qint32 i = 0; i < n; ++i)
            std::swap(rows[std::size_t(i)], rows[std::size_t(std::nearbyint(double(rnd(gen)) * (n - 1)))]);
        benchmark::DoNotOptimize(rows);
    }
}
BENCHMARK(BM_CreateSubSheetBaseline)->Unit(benchmark::kMillisecond);

// Keeps each run's time per iteration so that the ratios can be printed.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                mMs[run.benchmark_name()] = run.GetAdjustedRealTime(); // in the run's unit: ms
    }
    void printRatios() const
    {
        const struct {
            const char *label, *fast, *base;
            double targetMs;
        } cases[] = {
            {"(a) countOptions 200,000 x 5 u8", "BM_CountOptions", "BM_CountOptionsBaseline", 2.0},
            {"(b) index export 20,000 x 50, 20 sub-selections", "BM_IndexExport", "BM_IndexExportBaseline", 50.0},
            {"(c) createSubSheet row list + Random, 200,000 rows", "BM_CreateSubSheetRandom",
             "BM_CreateSubSheetBaseline", 5.0},
        };
        std::printf("\n%-52s %10s %8s %12s %8s\n", "case", "ms/run", "target", "baseline ms", "speed-up");
        for (const auto &c : cases) {
            const auto f = mMs.find(c.fast);
            const auto b = mMs.find(c.base);
            if (f == mMs.end() || b == mMs.end())
                continue;
            std::printf("%-52s %10.3f %8.1f %12.3f %7.1fx %s\n", c.label, f->second, c.targetMs, b->second,
                        b->second / f->second, f->second < c.targetMs ? "ok" : "OVER TARGET");
        }
    }

private:
    std::map<std::string, double> mMs;
};

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    benchmark::Shutdown();
    return 0;
}
