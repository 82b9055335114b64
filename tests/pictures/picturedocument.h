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
    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"), .heading = QStringLiteral("Unit"),
                                       .isCategory = true, .inOverview = false, .inTotalIndex = false},
                                      {{.text = QStringLiteral("North"), .label = QStringLiteral("N")},
                                       {.text = QStringLiteral("South"), .label = QStringLiteral("S")}});
    for (qint32 r = 0; r < rows; ++r)
        b.setAnswer(r, unit, r % 2);
    const qint32 work = b.addBlock({.code = QStringLiteral("W"), .name = QStringLiteral("Work")});
    const qint32 pay = b.addBlock({.code = QStringLiteral("P"), .name = QStringLiteral("Pay")});
    const QList<AlternativeSpec> scale = {
        {.text = QStringLiteral("Agree"), .points = 2, .colour = rgb(0, 160, 0), .label = QStringLiteral("1"),
         .shortText = QStringLiteral("Agree")},
        {.text = QStringLiteral("Neutral"), .points = 1, .colour = rgb(240, 240, 0), .label = QStringLiteral("2"),
         .shortText = QStringLiteral("Neutral")},
        {.text = QStringLiteral("Disagree"), .points = 0, .colour = rgb(220, 0, 0), .label = QStringLiteral("3"),
         .shortText = QStringLiteral("Disagree")}};
    const qint32 q0 = b.addQuestion({.code = QStringLiteral("A0"), .heading = QStringLiteral("Overall"),
                                     .text = QStringLiteral("I like it here")},
                                    scale);
    b.addQuestionLike({.code = QStringLiteral("A1"), .heading = QStringLiteral("Tasks"),
                       .text = QStringLiteral("My tasks are clear"), .block = work},
                      q0);
    b.addQuestionLike({.code = QStringLiteral("A2"), .heading = QStringLiteral("Feedback"),
                       .text = QStringLiteral("I get feedback"), .block = work},
                      q0);
    b.addQuestionLike({.code = QStringLiteral("B1"), .heading = QStringLiteral("Salary"),
                       .text = QStringLiteral("My pay is fair"), .block = pay},
                      q0);
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
