// SPDX-License-Identifier: GPL-3.0-or-later
// The survey the report tests share: four units on both sides of the
// document's minimum, one block of two questions, comments, and the four
// permissions chosen per test.
#pragma once

#include "engine/document/documentreader.h"
#include "engine/report/reportbuilder.h"
#include "kelwriter.h"

#include <QString>

#include <gtest/gtest.h>

namespace kel::test {

/// Show's minimum (the document's minimum graph selection): East has one
/// respondent fewer, Harbour exactly this many.
inline constexpr qint32 UnitMinimum = 5;
/// The minimum for showing answer rows (and so comments): West has one
/// respondent fewer, South exactly this many.
inline constexpr qint32 RowsMinimum = 8;
inline constexpr qint32 RoleQuestion = 1;

struct UnitSurveyPermissions {
    bool copy = true, savePicture = true, copyData = true;
};

/// Category 0 "Unit": North (rows 0-9), South (10-17), East (18-21), West
/// (22-28), Harbour (29-33). Category 1 "Role" (question RoleQuestion):
/// Boss for rows 0-4 and 29-32, Staff for the rest, so that within North
/// both groups have UnitMinimum respondents and within Harbour Boss has one
/// fewer. Block 0 "Work": Mood (Good for every third
/// row) and Pay (Good for rows 0-4, 10-12 and 22). Each North row comments
/// on Mood "north mood <row>"; rows 10, 18 and 22 comment "south mood",
/// "east secret" and "west mood".
inline QByteArray unitSurveyBytes(const UnitSurveyPermissions &p = {})
{
    using namespace writer;
    SurveyBuilder b(34, 1);
    HeaderFields &h = b.header();
    h.pointsScale = 100;
    h.maxPoints = 100;
    h.projectName = b.text(QStringLiteral("Unit survey"));
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.selectionTooSmallText = b.text(QStringLiteral("Too few respondents for this selection."));
    h.minimumSelection = RowsMinimum;
    h.minimumGraphSelection = UnitMinimum;
    h.minimumComplementSelection = 0;
    h.allowCopy = fileBool(p.copy);
    h.allowSavePicture = fileBool(p.savePicture);
    h.allowCopyData = fileBool(p.copyData);
    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"),
                                       .heading = QStringLiteral("Unit"),
                                       .selectionLabel = QStringLiteral("Unit"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false},
                                      {{.text = QStringLiteral("North")},
                                       {.text = QStringLiteral("South")},
                                       {.text = QStringLiteral("East")},
                                       {.text = QStringLiteral("West")},
                                       {.text = QStringLiteral("Harbour")}});
    const qint32 role = b.addQuestion({.code = QStringLiteral("R"),
                                       .heading = QStringLiteral("Role"),
                                       .selectionLabel = QStringLiteral("Role"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false},
                                      {{.text = QStringLiteral("Staff"), .countsForPrivacy = true},
                                       {.text = QStringLiteral("Boss"), .countsForPrivacy = true}});
    const qint32 block = b.addBlock({.code = QStringLiteral("B"), .name = QStringLiteral("Work")});
    const qint32 mood =
        b.addQuestion({.code = QStringLiteral("1"), .heading = QStringLiteral("Mood"), .block = block},
                      {{.text = QStringLiteral("Bad"), .points = 0}, {.text = QStringLiteral("Good"), .points = 100}});
    const qint32 pay =
        b.addQuestion({.code = QStringLiteral("2"), .heading = QStringLiteral("Pay"), .block = block},
                      {{.text = QStringLiteral("Bad"), .points = 0}, {.text = QStringLiteral("Good"), .points = 100}});
    for (qint32 r = 0; r < 34; ++r) {
        b.setAnswer(r, unit, r < 10 ? 0 : r < 18 ? 1 : r < 22 ? 2 : r < 29 ? 3 : 4);
        b.setAnswer(r, role, (r < 5 || (r >= 29 && r < 33)) ? 1 : 0);
        b.setAnswer(r, mood, r % 3 == 0 ? 1 : 0);
        b.setAnswer(r, pay, (r < 5 || (r >= 10 && r < 13) || r == 22) ? 1 : 0);
        if (r < 10)
            b.setCellComment(r, mood, QStringLiteral("north mood %1").arg(r));
    }
    b.setCellComment(10, mood, QStringLiteral("south mood"));
    b.setCellComment(18, mood, QStringLiteral("east secret"));
    b.setCellComment(22, mood, QStringLiteral("west mood"));
    return b.toBytes();
}

/// The unit survey as read.
inline std::unique_ptr<Document> unitSurvey(const UnitSurveyPermissions &p = {})
{
    ReadResult read = readDocumentBytes(unitSurveyBytes(p), {});
    EXPECT_TRUE(read.document);
    return std::move(read.document);
}

/// The report base the viewer sets up for `doc`: everyone ticked.
inline ReportBase baseOf(Document &doc)
{
    ReportBase base;
    base.model.setUpDimensions(doc);
    base.blocks = BlockCatalogue(doc);
    base.flex.reset(doc, base.blocks);
    return base;
}

/// A report of one unit per option of the category Unit.
inline ReportRecipe byUnit(std::initializer_list<ReportSection> sections)
{
    ReportRecipe recipe;
    recipe.units = ReportUnits::ByCategory;
    recipe.category = 0;
    for (ReportSection s : sections)
        recipe.add(s);
    return recipe;
}

} // namespace kel::test
