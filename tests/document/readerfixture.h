// SPDX-License-Identifier: GPL-3.0-or-later
// Shared pieces of the reader tests: a small document in which every field
// holds a value that differs from its default and from its replacement in
// older revisions, and a full text dump of a Document for comparisons.
#pragma once

#include "engine/document/documentreader.h"
#include "kelwriter.h"

#include <QTextStream>

namespace kel::test {

using namespace kel::writer;

/// 6 respondents, two categories, four scale questions in a block with two
/// sub-blocks, an item block, row and cell comments; i16 cells so that the
/// cell width is exercised beyond u8.
inline SurveyBuilder richSurvey()
{
    SurveyBuilder b(6, 2);
    HeaderFields &h = b.header();
    h.guid = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    h.unused40 = 40;
    h.projectNumber = b.text(QStringLiteral("P-1"));
    h.projectName = b.text(QStringLiteral("Project"));
    h.copyright = b.text(QStringLiteral("(c) Us"));
    h.comment = b.text(QStringLiteral("{\\rtf1 Comment}"));
    h.versionMajor = 2;
    h.versionMinor = 3;
    h.versionBuild = 4567;
    h.created = 45000.25;
    h.unused140 = 140;
    h.unused144 = 144;
    h.language = b.text(QStringLiteral("Svenska"));
    h.allowCopy = FileTrue;
    h.allowPrint = 1; // any nonzero value is true
    h.allowSavePicture = FileFalse;
    h.pointsScale = 4;
    h.indexName = b.text(QStringLiteral("Index"));
    h.indexLineTexts = {b.text(QStringLiteral("L0")), b.text(QStringLiteral("L1")), b.text(QStringLiteral("L2")),
                        b.text(QStringLiteral("L3")), b.text(QStringLiteral("L4"))};
    h.statusPanel2Tip = b.text(QStringLiteral("Tip 2"));
    h.statusPanel3Tip = b.text(QStringLiteral("Tip 3"));
    h.totalText = b.text(QStringLiteral("Totalt"));
    h.minimumSelection = 5;
    h.minimumGraphSelection = 3;
    h.selectionTooSmallText = b.text(QStringLiteral("Too small"));
    h.firstAlternativeIsNoAnswer = FileTrue;
    h.sheetColourA = 0x111111;
    h.sheetColourB = 0x222222;
    h.sheetColours = {0x333333, 0x444444, 0x555555, 0x666666};
    h.unused240 = 240;
    h.rowOrder = 2;
    h.minimumComplementSelection = 4;
    h.unused268 = 268;
    h.rowOrderThreshold = 50;
    h.allowCopyData = FileTrue;

    const qint32 unit = b.addQuestion(
        {.code = QStringLiteral("U"),
         .heading = QStringLiteral("Unit"),
         .selectionLabel = QStringLiteral("Unit label"),
         .isCategory = true,
         .inOverview = false,
         .inTotalIndex = false,
         .sheetColour = 0x0000FF},
        {{.text = QStringLiteral("None")},
         {.text = QStringLiteral("North"),
          .colour = 0x00FF00,
          .label = QStringLiteral("N"),
          .complementCheck = true,
          .countsForPrivacy = true},
         {.text = QStringLiteral("South"), .colour = 0xFF0000, .label = QStringLiteral("S"), .complementCheck = true}});
    const qint32 role = b.addQuestion({.code = QStringLiteral("R"),
                                       .heading = QStringLiteral("Role"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false,
                                       .isFlexCategory = true},
                                      {{.text = QStringLiteral("None")},
                                       {.text = QStringLiteral("Staff")},
                                       {.text = QStringLiteral("Boss")},
                                       {.text = QStringLiteral("Guest")}});
    const qint32 main =
        b.addBlock({.code = QStringLiteral("M"), .name = QStringLiteral("Main"), .text = QStringLiteral("Main text")});
    const qint32 subA = b.addBlock(
        {.code = QStringLiteral("MA"), .name = QStringLiteral("Sub A"), .linkedBlock = main, .graphFlags = 5});
    const qint32 subB =
        b.addBlock({.code = QStringLiteral("MB"), .name = QStringLiteral("Sub B"), .linkedBlock = main});
    const qint32 items =
        b.addBlock({.code = QStringLiteral("I"), .name = QStringLiteral("Items"), .memberRule = false});
    const QList<AlternativeSpec> scale = {
        {.text = QStringLiteral("No answer"), .colour = 0xC0C0C0},
        {.text = QStringLiteral("Low"),
         .points = 0,
         .colour = 0x0000C0,
         .label = QStringLiteral("1"),
         .shortText = QStringLiteral("L"),
         .graphAttribute = 1,
         .sortValue = 7,
         .graphColour = 0x000080},
        {.text = QStringLiteral("Mid"), .points = 2, .colour = 0x00C0C0, .label = QStringLiteral("2")},
        {.text = QStringLiteral("High"),
         .points = 4,
         .colour = 0x00C000,
         .label = QStringLiteral("3"),
         .graphColour = 0x008000},
    };
    const qint32 q1 = b.addQuestion({.code = QStringLiteral("1"),
                                     .heading = QStringLiteral("One"),
                                     .text = QStringLiteral("Question one?"),
                                     .block = main,
                                     .subBlock = subA,
                                     .rankingWeight = 3,
                                     .graphFlags = 7},
                                    scale);
    const qint32 q2 = b.addQuestionLike(
        {.code = QStringLiteral("2"), .heading = QStringLiteral("Two"), .block = main, .subBlock = subA}, q1);
    const qint32 q3 = b.addQuestion(
        {.code = QStringLiteral("3"), .heading = QStringLiteral("Three"), .block = main, .subBlock = subB}, scale);
    const qint32 q4 = b.addQuestion(
        {.code = QStringLiteral("4"), .heading = QStringLiteral("Four"), .block = main, .inTotalIndex = false}, scale);
    b.addBlockItem(items, q4);
    b.addBlockItem(items, role);

    const qint32 answers[6][6] = {
        {1, 1, 1, 3, 2, 0}, {1, 2, 2, 2, 3, 3}, {2, 1, 3, 3, 0, 1},
        {2, 3, 0, 1, 1, 2}, {0, 1, 2, 2, 2, 2}, {1, 2, 3, 1, 3, 3},
    };
    const qint32 questions[6] = {unit, role, q1, q2, q3, q4};
    for (qint32 r = 0; r < 6; ++r)
        for (int i = 0; i < 6; ++i)
            b.setAnswer(r, questions[i], answers[r][i]);
    b.setRowComment(1, QStringLiteral("{\\rtf1 Row one}"));
    b.setRowComment(4, QStringLiteral("Row four"));
    b.setCellComment(0, q1, QStringLiteral("Cell 0,1"));
    b.setCellComment(5, q4, QStringLiteral("Cell 5,4"));
    return b;
}

inline ReadResult readBytes(const QByteArray &bytes, const ReadOptions &options = {})
{
    return readDocumentBytes(bytes, options);
}

/// Every loaded field of a document as text, so that two documents can be
/// compared in one assertion that names the first difference.
inline QString describe(const Document &d)
{
    QString out;
    QTextStream s(&out);
    s.setRealNumberPrecision(17);
    auto b = [](bool v) { return v ? 1 : 0; };
    s << "rev " << d.revision << '/' << d.compatibleRevision << " upgrade " << b(d.upgradeWarning) << '\n';
    s << "texts " << d.textPool.join(QLatin1Char('|')) << '\n';
    s << "cells " << int(d.answers.cellType()) << ' ' << d.rowCount() << 'x' << d.columnCount() << ':';
    for (qint32 c = 0; c < d.columnCount(); ++c)
        for (qint32 r = 0; r < d.rowCount(); ++r)
            s << ' ' << d.getData(r, c);
    s << '\n';
    for (const Alternative &a : d.alternatives)
        s << "alt " << a.label << '|' << a.text << '|' << a.shortText << ' ' << a.sheetColour << ' ' << a.kept16 << ' '
          << a.graphColour << ' ' << a.points << ' ' << b(a.complementCheck) << b(a.countsForPrivacy) << ' '
          << a.graphAttribute << ' ' << a.sortValue << '\n';
    for (const Question &q : d.questions)
        s << "q " << q.code << '|' << q.heading << '|' << q.text << '|' << q.selectionLabel << ' ' << b(q.isCategory)
          << b(q.inOverview) << b(q.isFlexCategory) << b(q.inTotalIndex) << ' ' << q.sheetColour << ' ' << q.kept20
          << ' ' << q.block << ' ' << q.subBlock << ' ' << q.totalIndex << ' ' << q.graphFlags << ' ' << q.rankingWeight
          << ' ' << q.firstAlternative << '+' << q.alternativeCount << '\n';
    for (const RowComment &c : d.rowComments)
        s << "rc " << c.comment << ' ' << c.kept4 << '\n';
    for (const Block &k : d.blocks)
        s << "b " << k.code << '|' << k.name << '|' << k.text << ' ' << k.kept12 << ' ' << k.kept16 << ' ' << k.kept20
          << ' ' << b(k.memberRule) << ' ' << k.linkedBlock << ' ' << k.totalIndex << ' ' << k.graphFlags << ' '
          << b(k.fromDocument) << b(k.includeInCopy) << '\n';
    for (const BlockItem &i : d.blockItems)
        s << "bi " << i.block << ' ' << i.question << '\n';
    s << "cc " << b(d.hasCellComments);
    for (qint32 v : d.cellComments)
        s << ' ' << v;
    s << '\n';
    s << "derived";
    for (qint32 c : d.categories)
        s << " c" << c;
    for (qint32 c : d.overviewColumns)
        s << " o" << c;
    s << " flex " << d.flexCategory << " maxalt " << d.maxCategoryAlternatives << '\n';
    const DocumentProperties &p = d.properties;
    s << "guid " << d.guidText() << '\n';
    s << "props " << p.projectNumber << ' ' << p.projectName << ' ' << p.copyright << ' ' << p.comment << ' '
      << p.versionMajor << '.' << p.versionMinor << '.' << p.versionBuild << ' ' << p.created << ' ' << p.unused140
      << ' ' << p.unused144 << ' ' << p.language << ' ' << p.languageCode << ' ' << b(p.allowCopy) << b(p.allowPrint)
      << b(p.allowSavePicture) << b(p.allowCopyData) << ' ' << p.rowOrder << ' ' << p.rowOrderThreshold << ' '
      << p.pointsScale << ' ' << p.maxPoints << ' ' << p.indexDecimals << ' ' << p.indexName << ' '
      << p.indexLineTexts[0] << ',' << p.indexLineTexts[1] << ',' << p.indexLineTexts[2] << ',' << p.indexLineTexts[3]
      << ',' << p.indexLineTexts[4] << ' ' << p.statusPanel2Tip << ' ' << p.statusPanel3Tip << ' ' << p.totalText << ' '
      << p.selectionTooSmallText << ' ' << p.totalIndex << ' ' << p.indexFlags << ' ' << p.minimumSelection << ' '
      << p.minimumComplementSelection << ' ' << p.minimumGraphSelection << ' ' << b(p.hasRowComments)
      << b(p.firstAlternativeIsNoAnswer) << ' ' << p.sheetColourA << ' ' << p.sheetColourB << ' ' << p.sheetColours[0]
      << ',' << p.sheetColours[1] << ',' << p.sheetColours[2] << ',' << p.sheetColours[3] << '\n';
    return out;
}

} // namespace kel::test
