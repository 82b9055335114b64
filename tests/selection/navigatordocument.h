// SPDX-License-Identifier: GPL-3.0-or-later
// A small survey for the navigator and detail-window tests, written with the
// test-document writer and read back by the real reader, so that the windows
// see exactly what the viewer would.
#pragma once

#include "engine/document/documentreader.h"
#include "kelwriter.h"

#include <algorithm>
#include <memory>

namespace kel::test {

struct NavigatorSurveyOptions {
    bool firstAlternativeIsNoAnswer = true;
    bool flexCategory = true;
    bool flexOnUnit = false; ///< Unit instead of Role is the flex category
    qint32 minimumGraphSelection = 3;
    qint32 minimumComplementSelection = 3;
    bool subBlockLabel = false; ///< index line text 2 set
    qint32 pointsScale = 4;
    qint32 rows = 20; ///< rows beyond 20 answer "No answer" on Unit and Staff on Role
};

/// Categories: 0 Unit (North, South, East; complement check on all three),
/// 1 Role (Staff, Boss; the flex category when asked for). With the first
/// alternative excluded, option 0 of both is "No answer".
/// 20 respondents. Unit: rows 0-9 North, 10-17 South, 18 East, 19 no answer.
/// Role: even rows Staff, odd rows Boss. One question, Good (full points)
/// for every third row, so its index is the share of Good answers.
inline QByteArray navigatorSurveyBytes(const NavigatorSurveyOptions &o = {})
{
    using namespace kel::writer;
    SurveyBuilder b(std::max<qint32>(o.rows, 20), 1);
    HeaderFields &h = b.header();
    h.pointsScale = o.pointsScale;
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.selectionTooSmallText = b.text(QStringLiteral("Too few respondents for this selection."));
    h.minimumSelection = 5;
    h.minimumGraphSelection = o.minimumGraphSelection;
    h.minimumComplementSelection = o.minimumComplementSelection;
    h.firstAlternativeIsNoAnswer = fileBool(o.firstAlternativeIsNoAnswer);
    h.indexLineTexts = {b.text(QStringLiteral("Respondent")), b.text(QStringLiteral("Question")),
                        o.subBlockLabel ? b.text(QStringLiteral("Sub-block")) : -1, b.text(QStringLiteral("Block")),
                        b.text(QStringLiteral("All questions"))};
    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"), .heading = QStringLiteral("Unit"),
                                       .selectionLabel = QStringLiteral("Unit"), .isCategory = true,
                                       .inOverview = false, .inTotalIndex = false,
                                       .isFlexCategory = o.flexCategory && o.flexOnUnit},
                                      {{.text = QStringLiteral("No answer")},
                                       {.text = QStringLiteral("North"), .shortText = QStringLiteral("N"),
                                        .complementCheck = true},
                                       {.text = QStringLiteral("South"), .shortText = QStringLiteral("S"),
                                        .complementCheck = true},
                                       {.text = QStringLiteral("East"), .shortText = QStringLiteral("E"),
                                        .complementCheck = true}});
    const qint32 role = b.addQuestion({.code = QStringLiteral("R"), .heading = QStringLiteral("Role"),
                                       .selectionLabel = QStringLiteral("Role"), .isCategory = true,
                                       .inOverview = false, .inTotalIndex = false, .isFlexCategory = o.flexCategory && !o.flexOnUnit},
                                      {{.text = QStringLiteral("No answer")},
                                       {.text = QStringLiteral("Staff")},
                                       {.text = QStringLiteral("Boss")}});
    const qint32 block = b.addBlock({.code = QStringLiteral("B"), .name = QStringLiteral("Work")});
    const qint32 q = b.addQuestion({.code = QStringLiteral("1"), .heading = QStringLiteral("Mood"), .block = block},
                                   {{.text = QStringLiteral("Bad"), .points = 0},
                                    {.text = QStringLiteral("Good"), .points = o.pointsScale}});
    for (qint32 r = 0; r < b.rowCount(); ++r) {
        b.setAnswer(r, unit, r < 10 ? 1 : r < 18 ? 2 : r == 18 ? 3 : 0);
        b.setAnswer(r, role, r % 2 == 0 || r >= 20 ? 1 : 2);
        b.setAnswer(r, q, r % 3 == 0 ? 1 : 0);
    }
    return b.toBytes();
}

inline std::unique_ptr<Document> navigatorSurvey(const NavigatorSurveyOptions &o = {})
{
    ReadResult result = readDocumentBytes(navigatorSurveyBytes(o), {});
    if (!result.document)
        return nullptr;
    result.document->currentFileName = QStringLiteral("navigator.kel");
    return std::move(result.document);
}

} // namespace kel::test
