// SPDX-License-Identifier: GPL-3.0-or-later
// Opening a maximum-size document (1,000,000 i32 cells), compressed and
// plain, against the floor of what any reader must do with the same file:
// read it, crc32 it, and (when compressed) uncompress it. Prints median
// times, their ratio, and the peak memory of one open measured in a fresh
// process against file size + payload size. Then, as a script sees it, whole
// processes: `kel check` of the compressed document against a program that
// does only the floor's work (bench_load_floor), taken in turn.
#include "peakmemory.h"
#include "engine/document/documentreader.h"
#include "kelwriter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr int Rows = 1000;
constexpr int Columns = 1000;
constexpr int Runs = 15;

QByteArray makeDocument(bool compressed)
{
    kel::writer::SurveyBuilder b(Rows, 3);
    b.header().pointsScale = 100;
    const QList<kel::writer::AlternativeSpec> scale = {
        {QStringLiteral("No answer"), -1}, {QStringLiteral("Disagree"), 0},   {QStringLiteral("Rather not"), 25},
        {QStringLiteral("Neutral"), 50},   {QStringLiteral("Rather so"), 75}, {QStringLiteral("Agree"), 100},
    };
    qint32 first = b.addQuestion({QStringLiteral("Q1"), QStringLiteral("Question 1")}, scale);
    for (int c = 1; c < Columns; ++c)
        b.addQuestionLike({QStringLiteral("Q%1").arg(c + 1), QStringLiteral("Question %1").arg(c + 1)}, first);
    std::mt19937 rng(7);
    for (int c = 0; c < Columns; ++c)
        for (int r = 0; r < Rows; ++r)
            b.setAnswer(r, c, int(rng() % 6));
    kel::writer::KelFile f = b.build();
    f.options.compressed = compressed;
    return f.toBytes();
}

// The floor: what reading the file costs before any parsing.
qint64 floorOnce(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray file = f.readAll();
    const auto *p = reinterpret_cast<const Bytef *>(file.constData());
    const qint32 payloadLength = qFromLittleEndian<qint32>(p + 20);
    const qint32 storedLength = qFromLittleEndian<qint32>(p + 24);
    const qint32 headerLength = qFromLittleEndian<qint32>(p + 28);
    const qint64 stored = storedLength >= 1 ? storedLength : payloadLength;
    uLong crc = crc32(0L, Z_NULL, 0);
    crc = crc32(crc, p, uInt(headerLength + stored));
    if (storedLength >= 1) {
        QByteArray payload(payloadLength, Qt::Uninitialized);
        uLongf destLen = uLongf(payloadLength);
        if (uncompress(reinterpret_cast<Bytef *>(payload.data()), &destLen, p + headerLength, uLong(storedLength))
            != Z_OK)
            return -1;
        crc ^= destLen;
    }
    return qint64(crc);
}

double medianMs(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

using kel::bench::peakKb;

// Runs in a child process so that its peak is that of one open alone.
int measurePeak(const QString &path, bool load)
{
    const long before = peakKb();
    if (load) {
        kel::ReadResult r = kel::readDocumentFile(path);
        if (r.code != kel::OpenResult::Ok)
            return 1;
    }
    std::printf("%ld %ld\n", before, peakKb());
    return 0;
}

long childPeakAbove(const QString &path)
{
    QProcess p;
    p.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--peak"), path});
    p.waitForFinished(-1);
    const QList<QByteArray> parts = p.readAllStandardOutput().trimmed().split(' ');
    if (parts.size() != 2)
        return -1;
    return parts[1].toLong() - parts[0].toLong();
}

// Wall time of one whole process, start to exit, in milliseconds; -1 when
// it fails.
double processMs(const QString &program, const QStringList &args)
{
    QProcess p;
    p.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer t;
    t.start();
    p.start(program, args);
    if (!p.waitForFinished(-1) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return -1;
    return double(t.nsecsElapsed()) / 1e6;
}

bool compareProcesses(const QString &path)
{
    constexpr int ProcessRuns = 21;
    const QString kel = QStringLiteral(KEL_TOOL), floorTool = QStringLiteral(LOAD_FLOOR_TOOL);
    std::vector<double> check, floor, ratio;
    for (int i = 0; i <= ProcessRuns; ++i) {
        const double k = processMs(kel, {QStringLiteral("check"), path});
        const double f = processMs(floorTool, {path});
        if (k < 0 || f < 0) {
            std::printf("a process failed\n");
            return false;
        }
        if (i == 0)
            continue; // warm-up: the page cache and the loader's
        check.push_back(k), floor.push_back(f), ratio.push_back(k / f);
    }
    std::printf("\nwhole processes, compressed document, median of %d runs\n", ProcessRuns);
    std::printf("%-26s %10s\n%-26s %10.2f\n%-26s %10.2f\n%-26s %10.2f   (target <= 1.30)\n", "", "ms", "kel check",
                medianMs(check), "read+crc+inflate program", medianMs(floor), "ratio (pairwise median)",
                medianMs(ratio));
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 3 && args[1] == QLatin1String("--peak"))
        return measurePeak(args[2], true);

    QTemporaryDir dir;
    std::printf("open of %d x %d i32 cells, median of %d runs\n", Rows, Columns, Runs);
    std::printf("%-12s %10s %10s %10s %8s %12s %12s %8s\n", "form", "file KiB", "load ms", "floor ms", "ratio",
                "peak KiB", "budget KiB", "of it");
    for (bool compressed : {true, false}) {
        const QString path = dir.filePath(compressed ? QStringLiteral("z.kel") : QStringLiteral("plain.kel"));
        const QByteArray bytes = makeDocument(compressed);
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            return 1;
        out.close();
        const qint64 payloadLength = qFromLittleEndian<qint32>(bytes.constData() + 20);

        std::vector<double> load, floor;
        for (int i = 0; i < Runs; ++i) {
            QElapsedTimer t;
            t.start();
            kel::ReadResult r = kel::readDocumentFile(path);
            load.push_back(double(t.nsecsElapsed()) / 1e6);
            if (r.code != kel::OpenResult::Ok) {
                std::printf("open failed: %d %s\n", int(r.code), qPrintable(r.detail));
                return 1;
            }
            t.restart();
            if (floorOnce(path) < 0)
                return 1;
            floor.push_back(double(t.nsecsElapsed()) / 1e6);
        }
        const double l = medianMs(load), f = medianMs(floor);
        const long peak = childPeakAbove(path);
        const long budget = long(2 * (bytes.size() + payloadLength) / 1024);
        std::printf("%-12s %10lld %10.2f %10.2f %8.2f %12ld %12ld %7.0f%%\n", compressed ? "compressed" : "plain",
                    qint64(bytes.size() / 1024), l, f, l / f, peak, budget, 100.0 * double(peak) / double(budget));
    }
    std::printf("targets: load within 1.5 x the floor; peak within 2 x (file + payload)\n");
    return compareProcesses(dir.filePath(QStringLiteral("z.kel"))) ? 0 : 1;
}
