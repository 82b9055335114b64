// SPDX-License-Identifier: GPL-3.0-or-later
// The small survey the picture and overview-text tests share, written with
// the test-document writer and read back through the reader.
#pragma once

#include "engine/document/documentreader.h"
#include "kelwriter.h"

#include <gtest/gtest.h>

#include <memory>

namespace kel::test {

using namespace kel::writer;

/// A unit category (not in the overview), then four overview questions:
/// Q0 without a block, Q1 and Q2 in block "Work", Q3 in block "Pay".
/// Alternatives of the scale: labels "1".."3", short texts "Agree",
/// "Neutral", "Disagree". Answers: row r answers (r + q) % 3 to question q.
/// Cell (1, Q1) has a two-line comment.
inline SurveyBuilder pictureSurvey(qint32 rows)
{
    SurveyBuilder b(rows, 1);
    HeaderFields &h = b.header();
    h.allowCopy = FileTrue;
    h.allowCopyData = FileTrue;
    h.allowSavePicture = FileTrue;
    h.pointsScale = 2;
    h.indexLineTexts = {b.text(QStringLiteral("L0")), b.text(QStringLiteral("L1")), b.text(QStringLiteral("L2")),
                        b.text(QStringLiteral("L3")), b.text(QStringLiteral("Total index"))};
    h.statusPanel2Tip = b.text(QStringLiteral("Respondents"));
    h.statusPanel3Tip = b.text(QStringLiteral("Selection"));
    h.totalText = b.text(QStringLiteral("Everyone"));
    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"),
                                       .heading = QStringLiteral("Unit"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false},
                                      {{.text = QStringLiteral("North"), .label = QStringLiteral("N")},
                                       {.text = QStringLiteral("South"), .label = QStringLiteral("S")}});
    for (qint32 r = 0; r < rows; ++r)
        b.setAnswer(r, unit, r % 2);
    const qint32 work = b.addBlock({.code = QStringLiteral("W"), .name = QStringLiteral("Work")});
    const qint32 pay = b.addBlock({.code = QStringLiteral("P"), .name = QStringLiteral("Pay")});
    QList<AlternativeSpec> scale;
    const char *const words[] = {"Agree", "Neutral", "Disagree"};
    const qint32 colours[] = {rgb(0, 160, 0), rgb(240, 240, 0), rgb(220, 0, 0)};
    for (qint32 a = 0; a < 3; ++a)
        scale.push_back({.text = QString::fromLatin1(words[a]),
                         .points = 2 - a,
                         .colour = colours[a],
                         .label = QString::number(a + 1),
                         .shortText = QString::fromLatin1(words[a])});
    const struct {
        const char *code, *heading, *text;
        qint32 block;
    } questions[] = {{"A0", "Overall", "I like it here", -1},
                     {"A1", "Tasks", "My tasks are clear", work},
                     {"A2", "Feedback", "I get feedback", work},
                     {"B1", "Salary", "My pay is fair", pay}};
    qint32 q0 = -1;
    for (const auto &q : questions) {
        const QuestionSpec spec{.code = QString::fromLatin1(q.code),
                                .heading = QString::fromLatin1(q.heading),
                                .text = QString::fromLatin1(q.text),
                                .block = q.block};
        q0 = q0 < 0 ? b.addQuestion(spec, scale) : (b.addQuestionLike(spec, q0), q0);
    }
    for (qint32 q = 1; q <= 4; ++q)
        for (qint32 r = 0; r < rows; ++r)
            b.setAnswer(r, q, (r + q - 1) % 3);
    if (rows > 1)
        b.setCellComment(1, 2, QStringLiteral("First line\r\nsecond line"));
    return b;
}

inline std::unique_ptr<Document> readSurvey(const SurveyBuilder &builder)
{
    ReadResult read = readDocumentBytes(builder.toBytes());
    EXPECT_EQ(read.code, OpenResult::Ok) << read.detail.toStdString();
    return std::move(read.document);
}

} // namespace kel::test
