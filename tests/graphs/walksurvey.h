// SPDX-License-Identifier: GPL-3.0-or-later
// The survey the keyboard and dialog walks run on.
#pragma once

#include "chartsurvey.h"

namespace kel::test {

// The chart survey with every graph offered for every question and block,
// copying and saving allowed, and comments on the first row.
inline SurveyBuilder walkSurvey()
{
    SurveyBuilder b(8);
    HeaderFields &h = b.header();
    h.pointsScale = 10;
    h.allowCopy = FileTrue;
    h.allowCopyData = FileTrue;
    h.allowSavePicture = FileTrue;
    h.indexName = b.text(QStringLiteral("Index"));
    h.totalText = b.text(QStringLiteral("Everyone"));
    const qint32 work = b.addBlock({.name = QStringLiteral("Work"), .graphFlags = 0x107});
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    const qint32 q1 = b.addQuestion({.code = QStringLiteral("1"),
                                     .heading = QStringLiteral("Q1"),
                                     .block = work,
                                     .rankingWeight = 2,
                                     .graphFlags = 7},
                                    {{.text = QStringLiteral("bad"), .points = 0},
                                     {.text = QStringLiteral("ok"), .points = 50},
                                     {.text = QStringLiteral("good"), .points = 100}});
    const qint32 q2 = b.addQuestionLike(
        {.code = QStringLiteral("2"), .heading = QStringLiteral("Q2"), .block = work, .graphFlags = 7}, q1);
    b.setAnswers(0, {0, 0, 0, 0, 1, 1, 1, 1});
    b.setAnswers(q1, {2, 2, 1, 2, 0, 0, 1, 0});
    b.setAnswers(q2, {1, 1, 1, 1, 2, 1, 0, 1});
    b.setRowComment(0, QStringLiteral("A row comment"));
    b.setCellComment(0, q1, QStringLiteral("A cell comment"));
    return b;
}

} // namespace kel::test
