// SPDX-License-Identifier: GPL-3.0-or-later
// `kel report` of the bundled sample, whole process: one unit per option of
// its first category, each with its title page, index table, every block's
// fraction graph and the total index graph split by that category, as PDF
// and as HTML. Printed beside two baselines: `kel check` of the same file
// (start-up and reading alone) and `kel render` of one chart.
#include "engine/document/documentreader.h"
#include "engine/selection/counting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int Runs = 3;
constexpr double TargetMs = 3000.0;

// Median wall time of `Runs` runs of kel with `args`; -1 when one fails.
double medianMs(const QString &kel, const QStringList &args)
{
    std::vector<double> times;
    for (int i = 0; i < Runs; ++i) {
        QProcess process;
        QElapsedTimer timer;
        timer.start();
        process.start(kel, args);
        process.waitForFinished(120000);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
            std::fprintf(stderr, "kel %s failed: %s\n", qPrintable(args.join(QLatin1Char(' '))),
                         process.readAllStandardError().constData());
            return -1;
        }
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_report KEL SAMPLE.kel\n");
        return 64;
    }
    const QString kel = QString::fromLocal8Bit(argv[1]);
    const QString sample = QString::fromLocal8Bit(argv[2]);
    QFile file(sample);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", argv[2]);
        return 1;
    }
    const kel::ReadResult read = kel::readDocumentBytes(file.readAll(), {});
    if (!read.document || read.document->categories.empty()) {
        std::fprintf(stderr, "the sample has no category\n");
        return 1;
    }
    const kel::Document &doc = *read.document;
    const qint32 category = doc.categories.front();
    const int units = doc.questions[std::size_t(category)].alternativeCount - kel::firstVisibleOption(doc);

    QTemporaryDir dir;
    const double check = medianMs(kel, {QStringLiteral("check"), sample});
    const double chart =
        medianMs(kel,
                 {QStringLiteral("render"), sample, QStringLiteral("graph"), QStringLiteral("total-index"),
                  QStringLiteral("--main"), QStringLiteral("--blocks"), QStringLiteral("--split"),
                  QString::number(category), QStringLiteral("-o"), dir.filePath(QStringLiteral("chart.png"))});
    std::printf("sample %s: %d units (options of category 0), median of %d runs\n", argv[2], units, Runs);
    std::printf("  baseline kel check, whole process:            %8.1f ms\n", check);
    std::printf("  baseline kel render of one chart to PNG:      %8.1f ms\n", chart);
    for (const char *suffix : {"pdf", "html"}) {
        const QString out = dir.filePath(QStringLiteral("report.%1").arg(QLatin1String(suffix)));
        const double ms = medianMs(kel,
                                   {QStringLiteral("report"), sample, QStringLiteral("--by"), QStringLiteral("0"),
                                    QStringLiteral("--sections"), QStringLiteral("title,indexes,fractions,total-index"),
                                    QStringLiteral("--split"), QString::number(category), QStringLiteral("--date"),
                                    QStringLiteral("2026-01-31"), QStringLiteral("-o"), out});
        std::printf("  kel report -o %-4s, whole process:             %8.1f ms, %6.1f ms per unit, %lld bytes "
                    "(target <= %.0f ms)%s\n",
                    suffix, ms, ms / std::max(1, units), qlonglong(QFile(out).size()), TargetMs,
                    ms >= 0 && ms <= TargetMs ? "" : "  OVER TARGET");
    }
    return 0;
}
