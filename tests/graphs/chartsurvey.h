// SPDX-License-Identifier: GPL-3.0-or-later
// The survey behind the chart tests, written with the test-document writer
// and read back through the reader, so the generators see what the viewer sees.
#pragma once

#include "engine/document/documentreader.h"
#include "kelwriter.h"

#include <memory>

namespace kel::test {

using namespace kel::writer;

/// 8 respondents, points scale 10.
/// Categories: Unit (North r0-3, South r4-7, West nobody), Role (A on even
/// rows, B on odd), Site (X r0, Y r1-3, Z r4-7; its groups count for privacy).
/// Block 0 "Work": Q1 (North 100 points, South 0) and Q2 (50 for everyone).
/// Block 1 "Choices": R1, R2, R3 ranking A..D weighted 3, 2, 1, no points;
/// D is kept out of ranking graphs.
///   R1 = B B B B A A A A, R2 = A A A A B B B B, R3 = C A B B C D D D.
inline SurveyBuilder chartSurvey()
{
    SurveyBuilder b(8);
    HeaderFields &h = b.header();
    h.pointsScale = 10;
    h.indexName = b.text(QStringLiteral("Index"));
    h.indexLineTexts = {b.text(QStringLiteral("Respondent")), b.text(QStringLiteral("Question")), -1,
                        b.text(QStringLiteral("Block index")), b.text(QStringLiteral("Total index"))};
    h.totalText = b.text(QStringLiteral("Everyone"));
    const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
    const qint32 choices = b.addBlock({.name = QStringLiteral("Choices")});
    const auto category = [&](const char *heading, QList<AlternativeSpec> alternatives) {
        return b.addQuestion(
            {.heading = QString::fromUtf8(heading), .isCategory = true, .inOverview = false, .inTotalIndex = false},
            alternatives);
    };
    category("Unit",
             {{.text = QStringLiteral("North"), .shortText = QStringLiteral("N")},
              {.text = QStringLiteral("South"), .shortText = QStringLiteral("S")},
              {.text = QStringLiteral("West"), .shortText = QStringLiteral("W")}});
    category("Role", {{.text = QStringLiteral("A")}, {.text = QStringLiteral("B")}});
    category("Site",
             {{.text = QStringLiteral("X"), .countsForPrivacy = true},
              {.text = QStringLiteral("Y"), .countsForPrivacy = true},
              {.text = QStringLiteral("Z"), .countsForPrivacy = true}});
    const qint32 q1 = b.addQuestion({.code = QStringLiteral("1"), .heading = QStringLiteral("Q1"), .block = work},
                                    {{.text = QStringLiteral("bad"), .points = 0},
                                     {.text = QStringLiteral("ok"), .points = 50},
                                     {.text = QStringLiteral("good"), .points = 100}});
    const qint32 q2 =
        b.addQuestionLike({.code = QStringLiteral("2"), .heading = QStringLiteral("Q2"), .block = work}, q1);
    const qint32 r1 =
        b.addQuestion({.heading = QStringLiteral("R1"), .block = choices, .inTotalIndex = false, .rankingWeight = 3},
                      {{.text = QStringLiteral("Apple")},
                       {.text = QStringLiteral("Banana")},
                       {.text = QStringLiteral("Cherry")},
                       {.text = QStringLiteral("Date"), .graphAttribute = 2}});
    const qint32 r2 = b.addQuestionLike(
        {.heading = QStringLiteral("R2"), .block = choices, .inTotalIndex = false, .rankingWeight = 2}, r1);
    const qint32 r3 = b.addQuestionLike(
        {.heading = QStringLiteral("R3"), .block = choices, .inTotalIndex = false, .rankingWeight = 1}, r1);
    b.setAnswers(0, {0, 0, 0, 0, 1, 1, 1, 1});
    b.setAnswers(1, {0, 1, 0, 1, 0, 1, 0, 1});
    b.setAnswers(2, {0, 1, 1, 1, 2, 2, 2, 2});
    b.setAnswers(q1, {2, 2, 2, 2, 0, 0, 0, 0});
    b.setAnswers(q2, {1, 1, 1, 1, 1, 1, 1, 1});
    b.setAnswers(r1, {1, 1, 1, 1, 0, 0, 0, 0});
    b.setAnswers(r2, {0, 0, 0, 0, 1, 1, 1, 1});
    b.setAnswers(r3, {2, 0, 1, 1, 2, 3, 3, 3});
    return b;
}

inline std::unique_ptr<Document> readChartSurvey()
{
    return readDocumentBytes(chartSurvey().toBytes()).document;
}

// Question numbers of the survey above.
inline constexpr qint32 UnitQ = 0, RoleQ = 1, SiteQ = 2, Q1 = 3, Q2 = 4, R1 = 5, R2 = 6, R3 = 7;
inline constexpr qint32 WorkBlock = 0, ChoicesBlock = 1;

} // namespace kel::test
