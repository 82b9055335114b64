// SPDX-License-Identifier: GPL-3.0-or-later
// Whole processes, as a script sees them, on a 20,000 x 50 survey:
//  (a) 50 selections, each with its counts (`select`) and its index table
//      (`indexes`): one `kel batch` against 100 separate `kel` processes;
//  (b) one selection's counts and indexes: `kel batch` against the same work
//      in GNU PSPP (the answers saved as .sav by PSPP itself beforehand, then
//      FREQUENCIES of the categories and MEANS of the scored questions by a
//      category, on the selected respondents). Skipped, with a note, when
//      `pspp` is not installed (bench/batch/install-pspp.sh installs it; it is
//      not part of the build's own packages).
// Each figure is the median wall time of several runs after a warm-up, the
// runs of the two sides taken in turn so that drift of a shared machine hits
// both alike; the ratio is taken pair by pair.
#include "kelwriter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using namespace kel::writer;

constexpr qint32 Rows = 20000;
constexpr qint32 Units = 10;
constexpr qint32 Roles = 4;
constexpr qint32 Ages = 5;
constexpr qint32 Scored = 47; // with the three categories: 50 questions
constexpr qint32 Blocks = 5;
constexpr qint32 PointsScale = 25;
constexpr int Runs = 7;

struct Survey {
    QByteArray kel;
    QByteArray csv; // unit, role, age, then the points of every scored question
};

Survey makeSurvey()
{
    SurveyBuilder b(Rows);
    HeaderFields &h = b.header();
    h.pointsScale = PointsScale;
    h.minimumGraphSelection = 5;
    h.minimumSelection = 10;
    h.minimumComplementSelection = 5;
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.selectionTooSmallText = b.text(QStringLiteral("Too few."));
    auto options = [](const QString &prefix, qint32 n) {
        QList<AlternativeSpec> list;
        for (qint32 i = 0; i < n; ++i)
            list.append({.text = prefix + QString::number(i + 1), .countsForPrivacy = true});
        return list;
    };
    const qint32 unit = b.addQuestion(
        {.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
        options(QStringLiteral("U"), Units));
    const qint32 role = b.addQuestion(
        {.heading = QStringLiteral("Role"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
        options(QStringLiteral("R"), Roles));
    const qint32 age = b.addQuestion(
        {.heading = QStringLiteral("Age"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
        options(QStringLiteral("A"), Ages));
    std::vector<qint32> blocks;
    for (qint32 k = 0; k < Blocks; ++k)
        blocks.push_back(b.addBlock({.name = QStringLiteral("Block %1").arg(k + 1)}));
    const QList<AlternativeSpec> scale = {{.text = QStringLiteral("1"), .points = 0},
                                          {.text = QStringLiteral("2"), .points = 25},
                                          {.text = QStringLiteral("3"), .points = 50},
                                          {.text = QStringLiteral("4"), .points = 75},
                                          {.text = QStringLiteral("5"), .points = 100}};
    std::vector<qint32> scored;
    scored.push_back(b.addQuestion({.heading = QStringLiteral("Q1"), .block = blocks[0]}, scale));
    for (qint32 k = 1; k < Scored; ++k)
        scored.push_back(b.addQuestionLike(
            {.heading = QStringLiteral("Q%1").arg(k + 1), .block = blocks[std::size_t(k % Blocks)]}, scored.front()));

    Random random(20000);
    Survey survey;
    QByteArray &csv = survey.csv;
    csv.reserve(Rows * (Scored * 4 + 8));
    for (qint32 r = 0; r < Rows; ++r) {
        const qint32 u = random.below(Units);
        const qint32 ro = random.below(Roles);
        const qint32 a = random.below(Ages);
        b.setAnswer(r, unit, u);
        b.setAnswer(r, role, ro);
        b.setAnswer(r, age, a);
        csv += QByteArray::number(u) + ',' + QByteArray::number(ro) + ',' + QByteArray::number(a);
        for (qint32 q : scored) {
            // Answers lean on the unit, so that selections differ.
            const qint32 v = std::clamp(qint32(2.0 + 0.15 * u + random.normal()), 0, 4);
            b.setAnswer(r, q, v);
            csv += ',' + QByteArray::number(v * 25);
        }
        csv += '\n';
    }
    survey.kel = b.toBytes();
    return survey;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

/// Wall time and processor time (user + system of the finished children) in
/// seconds; the processor time holds still when a shared machine is busy.
struct Cost {
    double wall = -1.0;
    double cpu = 0.0;
    bool ok() const { return wall >= 0.0; }
    Cost &operator+=(const Cost &o)
    {
        wall = ok() && o.ok() ? wall + o.wall : -1.0;
        cpu += o.cpu;
        return *this;
    }
};

double childrenCpu()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    auto seconds = [](const timeval &t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Runs a program to the end; its output goes to `outputFile`. The cost's
/// wall time is -1 when it could not run or failed.
Cost runProcess(const QString &program, const QStringList &args, const QString &inputFile, const QString &outputFile)
{
    QProcess p;
    if (!inputFile.isEmpty())
        p.setStandardInputFile(inputFile);
    p.setStandardOutputFile(outputFile, QIODevice::Append);
    p.setStandardErrorFile(outputFile, QIODevice::Append);
    const double cpuBefore = childrenCpu();
    QElapsedTimer timer;
    timer.start();
    p.start(program, args);
    Cost cost;
    if (!p.waitForFinished(600000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return cost;
    cost.wall = double(timer.nsecsElapsed()) / 1e9;
    cost.cpu = childrenCpu() - cpuBefore;
    return cost;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void printRow(const char *name, std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::printf("  %-46s %8.1f ms  (min %.1f, max %.1f)\n", name, median(values) * 1e3, values.front() * 1e3,
                values.back() * 1e3);
}

/// Times `a` and `b` in turn, one warm-up each; prints the medians and the
/// medians of the pairwise ratios b / a. False when either failed.
bool compare(const char *title, const char *nameA, const std::function<Cost()> &a, const char *nameB,
             const std::function<Cost()> &b)
{
    if (!a().ok() || !b().ok()) {
        std::printf("%s: a run failed\n", title);
        return false;
    }
    std::vector<double> wallA, wallB, cpuA, cpuB, wallRatio, cpuRatio;
    for (int i = 0; i < Runs; ++i) {
        const Cost x = a();
        const Cost y = b();
        if (!x.ok() || !y.ok()) {
            std::printf("%s: a run failed\n", title);
            return false;
        }
        wallA.push_back(x.wall);
        wallB.push_back(y.wall);
        cpuA.push_back(x.cpu);
        cpuB.push_back(y.cpu);
        wallRatio.push_back(y.wall / x.wall);
        cpuRatio.push_back(x.cpu > 0 ? y.cpu / x.cpu : 0.0);
    }
    std::printf("%s (median of %d runs, whole processes)\n", title, Runs);
    std::printf(" wall time\n");
    printRow(nameA, wallA);
    printRow(nameB, wallB);
    std::printf(" processor time (user + system)\n");
    printRow(nameA, cpuA);
    printRow(nameB, cpuB);
    std::printf(" ratio, median of pairs: wall %.1f, processor %.1f  (target >= 20)\n\n", median(wallRatio),
                median(cpuRatio));
    return true;
}

QStringList benchmarkSelections()
{
    // 50 selections: every unit, every unit with a role, units with an age.
    QStringList selections;
    for (qint32 u = 0; u < Units; ++u)
        selections << QStringLiteral("0:%1").arg(u);
    for (qint32 u = 0; u < Units; ++u)
        for (qint32 r = 0; r < 3; ++r)
            selections << QStringLiteral("0:%1;1:%2").arg(u).arg(r);
    for (qint32 u = 0; u < Units; ++u)
        selections << QStringLiteral("0:%1,%2;2:0,1,2").arg(u).arg((u + 1) % Units);
    return selections;
}

QStringList indexesArgs(const QString &selection)
{
    return {QStringLiteral("--select"), selection,
            QStringLiteral("--total"),  QStringLiteral("--category"),
            QStringLiteral("1"),        QStringLiteral("--counts"),
            QStringLiteral("--items"),  QStringLiteral("total,blocks,questions")};
}

/// One line of `kel batch` input, every argument quoted.
QByteArray batchLine(const QStringList &args)
{
    QStringList quoted;
    for (const QString &a : args)
        quoted << QLatin1Char('\'') + a + QLatin1Char('\'');
    return quoted.join(QLatin1Char(' ')).toUtf8() + '\n';
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString kel = QStringLiteral(KEL_TOOL);
    QTemporaryDir dir;
    if (qEnvironmentVariableIsSet("KEL_BENCH_KEEP"))
        dir.setAutoRemove(false);
    const QString docPath = dir.filePath(QStringLiteral("survey.kel"));
    const QString out = dir.filePath(QStringLiteral("out.txt"));
    const Survey survey = makeSurvey();
    if (!writeFile(docPath, survey.kel)) {
        std::printf("cannot write %s\n", qPrintable(docPath));
        return 1;
    }
    std::printf("document: %d rows x %d questions, %lld bytes\n\n", Rows, Scored + 3, qlonglong(survey.kel.size()));

    // (a) 50 selections.
    const QStringList selections = benchmarkSelections();
    QByteArray lines;
    for (const QString &selection : selections) {
        lines += batchLine(QStringList{QStringLiteral("select"), QStringLiteral("--max-rows"), QStringLiteral("0"),
                                       QStringLiteral("--select"), selection});
        lines += batchLine(QStringList{QStringLiteral("indexes")} + indexesArgs(selection));
    }
    const QString commands = dir.filePath(QStringLiteral("commands.txt"));
    writeFile(commands, lines);
    auto batch50 = [&] { return runProcess(kel, {QStringLiteral("batch"), docPath}, commands, out); };
    auto separate100 = [&] {
        Cost total{0.0, 0.0};
        for (const QString &selection : selections) {
            const Cost s = runProcess(kel,
                                      {QStringLiteral("select"), docPath, QStringLiteral("--max-rows"),
                                       QStringLiteral("0"), QStringLiteral("--select"), selection},
                                      QString(), out);
            const Cost i = runProcess(kel, QStringList{QStringLiteral("indexes"), docPath} + indexesArgs(selection),
                                      QString(), out);
            total += s;
            total += i;
            if (!total.ok())
                return total;
        }
        return total;
    };
    // "a" or "b" as the argument runs that part only.
    const QString only = app.arguments().value(1);
    if (only != QLatin1String("b"))
        compare("(a) 50 selections, counts and indexes", "kel batch, one process", batch50,
                "kel select + kel indexes, 100 processes", separate100);

    if (only == QLatin1String("a"))
        return 0;

    // (b) one selection against PSPP.
    const QString pspp = QStandardPaths::findExecutable(QStringLiteral("pspp"));
    if (pspp.isEmpty()) {
        std::printf("(b) skipped: pspp is not installed (bench/batch/install-pspp.sh installs it)\n");
        return 0;
    }
    const QString csv = dir.filePath(QStringLiteral("answers.csv"));
    const QString sav = dir.filePath(QStringLiteral("answers.sav"));
    writeFile(csv, survey.csv);
    QString variables = QStringLiteral("unit role age");
    for (qint32 k = 1; k <= Scored; ++k)
        variables += QStringLiteral(" q%1").arg(k);
    const QString save =
        QStringLiteral("DATA LIST LIST (\",\") FILE='%1' /%2.\nSAVE OUTFILE='%3'.\n").arg(csv, variables, sav);
    const QString saveSyntax = dir.filePath(QStringLiteral("save.sps"));
    writeFile(saveSyntax, save.toUtf8());
    if (!runProcess(pspp, {saveSyntax}, QString(), out).ok()) {
        std::printf("(b) pspp could not save the answers as .sav\n");
        return 1;
    }
    // Unit 3 (0-based 2): its counts by category, and what the index table
    // holds for the selection and each role: the mean points of every scored
    // question, of every block's questions pooled and of all of them pooled.
    // Every respondent answers every question, so a pooled mean is the mean
    // of the respondents' own means (PSPP 1.6 has no VARSTOCASES).
    QString pooled;
    QString pooledNames = QStringLiteral("total");
    for (qint32 k = 0; k < Blocks; ++k) {
        QStringList members;
        for (qint32 q = k; q < Scored; q += Blocks)
            members << QStringLiteral("q%1").arg(q + 1);
        pooled += QStringLiteral("COMPUTE block%1 = MEAN(%2).\n").arg(k + 1).arg(members.join(QLatin1Char(',')));
        pooledNames += QStringLiteral(" block%1").arg(k + 1);
    }
    const QString analysis = QStringLiteral("GET FILE='%1'.\n"
                                            "SELECT IF (unit = 2).\n"
                                            "FREQUENCIES VARIABLES=unit role age.\n"
                                            "COMPUTE total = MEAN(q1 TO q%2).\n"
                                            "%3"
                                            "MEANS TABLES=%4 q1 TO q%2 BY role.\n")
                                 .arg(sav)
                                 .arg(Scored)
                                 .arg(pooled, pooledNames);
    const QString analysisSyntax = dir.filePath(QStringLiteral("analysis.sps"));
    writeFile(analysisSyntax, analysis.toUtf8());
    const QString one = dir.filePath(QStringLiteral("one.txt"));
    writeFile(one,
              batchLine({QStringLiteral("select"), QStringLiteral("--max-rows"), QStringLiteral("0"),
                         QStringLiteral("--select"), QStringLiteral("0:2")})
                  + batchLine(QStringList{QStringLiteral("indexes")} + indexesArgs(QStringLiteral("0:2"))));
    auto batchOne = [&] { return runProcess(kel, {QStringLiteral("batch"), docPath}, one, out); };
    auto psppOne = [&] {
        return runProcess(pspp, {QStringLiteral("-o"), dir.filePath(QStringLiteral("pspp.txt")), analysisSyntax},
                          QString(), out);
    };
    compare("(b) one selection, counts and indexes", "kel batch (select + indexes)", batchOne,
            "GNU PSPP (FREQUENCIES, MEANS of questions, blocks)", psppOne);
    return 0;
}
