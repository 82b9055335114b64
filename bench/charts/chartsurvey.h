// SPDX-License-Identifier: GPL-3.0-or-later
// The survey both chart benchmarks measure: every question split by a
// 10-alternative category over 20,000 respondents, read back through the
// reader as the viewer would read it.
#pragma once

#include "kelwriter.h"

#include "engine/document/documentreader.h"
#include "engine/document/pooledindex.h"
#include "engine/graphs/indexgraph.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace kel::bench {

using namespace kel::writer;

constexpr int Rows = 20000;
constexpr int Questions = 45; // with the category, as many cells as a file may hold
constexpr int Runs = 21;

inline std::unique_ptr<Document> makeDocument()
{
    SurveyBuilder b(Rows);
    b.header().pointsScale = 100;
    b.header().indexLineTexts[4] = b.text(QStringLiteral("Total index"));
    QList<AlternativeSpec> units;
    for (int a = 0; a < 10; ++a)
        units << AlternativeSpec{.text = QStringLiteral("Unit %1").arg(a)};
    const qint32 unit = b.addQuestion(
        {.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false}, units);
    Random random(7);
    std::vector<qint32> answers(Rows);
    for (qint32 &a : answers)
        a = random.below(10);
    b.setAnswers(unit, answers);
    qint32 first = -1;
    for (int q = 0; q < Questions; ++q) {
        const QuestionSpec recipe{.code = QString::number(q), .heading = QStringLiteral("Question %1").arg(q)};
        const qint32 question = first < 0 ? b.addQuestion(recipe,
                                                          {{.text = QStringLiteral("1"), .points = 0},
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

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The graph both benchmarks measure: the total index of every question split
/// by the category, with both total index lines, for everyone.
inline ChartDescription totalIndexGraphOfEveryone(const Document &doc)
{
    const RowList rows = allRows(doc);
    ChartContext context;
    context.rows = &rows;
    context.selectionText = QStringLiteral("Everyone");
    IndexGraphRequest request;
    request.includeSubIndexes = true;
    request.useQuestionsInsteadOfBlocks = true;
    request.splitQuestion = 0;
    request.indexLines = TotalIndexForTotal | TotalIndexForSelection;
    request.title = totalIndexGraphTitle(doc, true, false, true, 0);
    const BlockCatalogue blocks(doc);
    FlexTotal flex;
    flex.reset(doc, blocks);
    return generateIndexGraph(doc, blocks, flex, context, request);
}

} // namespace kel::bench
