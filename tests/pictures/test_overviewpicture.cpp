// SPDX-License-Identifier: GPL-3.0-or-later
// The overview's pictures and texts: what the copy and save commands put out.
#include "engine/overview/overviewtext.h"
#include "engine/overview/subsheet.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/picturewriter.h"

#include "metafilereader.h"
#include "picturedocument.h"

#include <QImage>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

SheetInput sheetFor(Document &doc, const SelectionMatrix &selection, qint32 order = RowOrderOriginal)
{
    FlexTotal flex;
    RowRandom random(7);
    const SubSheet sheet = createSubSheet(doc, BlockCatalogue(doc), selection, flex, order, random);
    EXPECT_EQ(sheet.outcome, Outcome<>());
    SheetInput input;
    input.document = &doc;
    input.rows = sheet.rows;
    input.columns = doc.overviewColumns;
    input.selectionText = sheet.steps.selectionText;
    input.totalIndex = sheet.totalIndex;
    return input;
}

TEST(OverviewPicture, HeadersTotalsAndMetafileTexts)
{
    auto doc = readSurvey(pictureSurvey(200));
    ASSERT_TRUE(doc);
    SelectionMatrix northOnly(1, doc->maxCategoryAlternatives);
    northOnly.set(0, 1, false);
    const SheetInput everyone = sheetFor(*doc, SelectionMatrix(1, doc->maxCategoryAlternatives));
    const SheetInput north = sheetFor(*doc, northOnly);
    ASSERT_EQ(north.rows.size(), 100u);
    const auto picture = [](const SheetInput &sheet, OverviewPictureContent content, bool allowData = true) {
        return overviewPicture(sheet, SheetMode::CopyPicture, content, allowData);
    };
    const Picture largeHeaders = picture(everyone, OverviewPictureContent::HeadersAndTotals);
    const Picture smallHeaders = picture(north, OverviewPictureContent::HeadersAndTotals);
    const Picture largeAll = picture(everyone, OverviewPictureContent::Answers);
    ASSERT_TRUE(largeHeaders.isValid());
    EXPECT_EQ(largeHeaders.size, smallHeaders.size);
    EXPECT_EQ(largeAll.size - largeHeaders.size, QSize(0, 200 * 32)) << "one 32-pixel line per answer row";
    // Without permission for data rows the whole picture is headers only.
    EXPECT_EQ(picture(everyone, OverviewPictureContent::Answers, false).size, largeHeaders.size);
    // The header lines (block line and code line) are drawn the same
    // whatever the selection.
    const QImage a = renderPictureImage(largeHeaders), b = renderPictureImage(smallHeaders);
    EXPECT_EQ(a.copy(0, 0, a.width(), 2 * 32), b.copy(0, 0, b.width(), 2 * 32));

    const QByteArray emf = encodePicture(largeAll, PictureFormat::Emf);
    bool ok = false;
    QStringList texts;
    int rectangles = 0;
    for (const MetaRecord &r : emfRecords(emf, &ok)) {
        if (r.type == 84)
            texts << emfText(emf, r);
        rectangles += r.type == 43;
    }
    ASSERT_TRUE(ok);
    // Block codes, and the last block's name shortened to its run.
    for (const char *code : {"A0", "A1", "A2", "B1", "W", "Pa", "Everyone"})
        EXPECT_TRUE(texts.contains(QString::fromLatin1(code)))
            << code << " in " << texts.join(QLatin1Char('|')).toStdString();
    // No text is cut at the picture's edges: the picture is the sheet's
    // four 32-pixel columns widened by the room its edge texts need.
    EXPECT_GT(largeAll.size.width(), 4 * 32);
    EXPECT_EQ(emfTextsCut(emf, largeAll.size).join(QLatin1Char('|')).toStdString(), "")
        << largeAll.size.width() << "x" << largeAll.size.height();
    // The sheet's fonts are ANSI with the default pitch and family.
    for (const MetaRecord &r : emfRecords(emf, &ok))
        if (r.type == 82) {
            EXPECT_EQ(emf.mid(r.offset + 35, 5), QByteArray::fromHex("0000000000"));
        }
    // Every answer cell is a filled rectangle with its label.
    EXPECT_GE(rectangles, 200 * 4);
    EXPECT_GE(texts.count(QStringLiteral("2")), 200 * 4 / 3);
}

TEST(OverviewTexts, EveryRowWholeUnderEveryRowOrderAndOneRowsAnswers)
{
    // More rows than the sheet shows by default: the text is not limited.
    const SurveyBuilder builder = pictureSurvey(1000);
    const auto doc = readSurvey(builder);
    ASSERT_TRUE(doc);
    for (qint32 order : {RowOrderOriginal, RowOrderRandom, RowOrderRandomPerColumn}) {
        SCOPED_TRACE(order);
        const SheetInput sheet = sheetFor(*doc, SelectionMatrix(1, doc->maxCategoryAlternatives), order);
        ASSERT_EQ(sheet.rows.size(), 1000u);
        const QString text = overviewDataText(*doc, sheet.rows, doc->overviewColumns);
        EXPECT_FALSE(text.endsWith(QLatin1Char('\n')));
        const QStringList lines = text.split(QStringLiteral("\r\n"));
        ASSERT_EQ(lines.size(), 1000);
        // Line k holds the whole respondent at position k of the list, even
        // where the sheet rotates each column.
        for (int k = 0; k < lines.size(); ++k) {
            QStringList expected;
            for (qint32 q : doc->overviewColumns)
                expected << QString::number(builder.answer(sheet.rows[std::size_t(k)], q) + 1); // labels "1".."3"
            ASSERT_EQ(lines[k], expected.join(QLatin1Char('\t'))) << "line " << k;
        }
    }

    // One row's answers. The first column has no block: no block line before it.
    EXPECT_EQ(rowAnswersText(*doc, 1, doc->overviewColumns),
              QStringLiteral("A0. I like it here\tNeutral\r\n"
                             "Work\r\n"
                             "A1. My tasks are clear\tDisagree\tFirst line, second line\r\n"
                             "A2. I get feedback\tAgree\r\n"
                             "Pay\r\n"
                             "B1. My pay is fair\tNeutral"));
    // A block coming back after another gets its line again; a row without
    // comments has no comment cells.
    EXPECT_EQ(rowAnswersText(*doc, 0, {2, 4, 3}),
              QStringLiteral("Work\r\nA1. My tasks are clear\tNeutral\r\nPay\r\nB1. My pay is fair\tAgree\r\n"
                             "Work\r\nA2. I get feedback\tDisagree"));
    // Rows outside the matrix give empty cells or nothing.
    EXPECT_EQ(rowAnswersText(*doc, 1000, doc->overviewColumns), QString());
    EXPECT_EQ(overviewDataText(*doc, {2, 5000, -1}, {1, 3}), QStringLiteral("3\t2\r\n\t\r\n\t"));
}

} // namespace
} // namespace kel::test
