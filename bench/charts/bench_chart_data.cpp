// SPDX-License-Identifier: GPL-3.0-or-later
// Speed of the chart data: the description of a total index graph of every
// question split by a 10-alternative category over 20,000 respondents
// (target under 5 ms). Prints median milliseconds.
#include "kelwriter.h"

#include "engine/document/documentreader.h"
#include "engine/graphs/indexgraph.h"
#include "engine/indexes/blockindex.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

using namespace kel;
using namespace kel::writer;

constexpr int Rows = 20000;
constexpr int Questions = 45; // with the category, as many cells as a file may hold
constexpr int Runs = 21;

std::unique_ptr<Document> makeDocument()
{
    SurveyBuilder b(Rows);
    b.header().pointsScale = 100;
    b.header().indexLineTexts[4] = b.text(QStringLiteral("Total index"));
    QList<AlternativeSpec> units;
    for (int a = 0; a < 10; ++a)
        units << AlternativeSpec{.text = QStringLiteral("Unit %1").arg(a)};
    const qint32 unit = b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false,
                                       .inTotalIndex = false},
                                      units);
    Random random(7);
    std::vector<qint32> answers(Rows);
    for (qint32 &a : answers)
        a = random.below(10);
    b.setAnswers(unit, answers);
    qint32 first = -1;
    for (int q = 0; q < Questions; ++q) {
        const QuestionSpec recipe{.code = QString::number(q), .heading = QStringLiteral("Question %1").arg(q)};
        const qint32 question = first < 0 ? b.addQuestion(recipe, {{.text = QStringLiteral("1"), .points = 0},
                                                                 {.text = QStringLiteral("2"), .points = 25},
                                                                 {.text = QStringLiteral("3"), .points = 50},
                                                                 {.text = QStringLiteral("4"), .points = 75},
                                                                 {.text = QStringLiteral("5"), .points = 100}})
                                          : b.addQuestionLike(recipe, first);
        if (first < 0)
            first = question;
        for (qint32 &a : answers)
            a = random.below(5);
        b.setAnswers(question, answers);
    }
    ReadResult read = readDocumentBytes(b.toBytes());
    if (!read.document)
        std::fprintf(stderr, "%d %s\n", int(read.code), qPrintable(read.detail));
    return std::move(read.document);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const std::unique_ptr<Document> doc = makeDocument();
    if (!doc) {
        std::fprintf(stderr, "the benchmark document did not read back\n");
        return 1;
    }
    const RowList rows = allRows(*doc);
    ChartContext context;
    context.rows = &rows;
    context.selectionText = QStringLiteral("Everyone");
    IndexGraphRequest request;
    request.includeSubIndexes = true;
    request.useQuestionsInsteadOfBlocks = true;
    request.splitQuestion = 0;
    request.indexLines = TotalIndexForTotal | TotalIndexForSelection;
    request.title = totalIndexGraphTitle(*doc, true, false, true, 0);

    ChartDescription chart;
    std::vector<double> times;
    for (int run = 0; run < Runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        chart = generateIndexGraph(*doc, context, request);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::printf("total index graph description, %d questions + total split by 10 groups, %d rows: %.2f ms "
                "(target < 5 ms; %zu series x %zu points)\n",
                Questions, Rows, median(times), chart.series.size(), chart.series.front().points.size());

    return 0;
}
