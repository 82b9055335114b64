// SPDX-License-Identifier: GPL-3.0-or-later
// The overview's pictures: what the copy and save commands put out.
#include "engine/overview/subsheet.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/picturewriter.h"

#include "metafilereader.h"
#include "picturedocument.h"

#include <QImage>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

SheetInput sheetFor(Document &doc, const SelectionMatrix &selection)
{
    FlexTotal flex;
    RowRandom random(7);
    const SubSheet sheet = createSubSheet(doc, selection, flex, RowOrderOriginal, random);
    EXPECT_EQ(sheet.outcome, SubSheetOutcome::Ok);
    SheetInput input;
    input.document = &doc;
    input.rows = sheet.rows;
    input.columns = doc.overviewColumns;
    input.selectionText = sheet.steps.selectionText;
    input.totalIndex = sheet.totalIndex;
    return input;
}

TEST(OverviewPicture, HeadersAndTotalsLeaveTheAnswersOut)
{
    auto doc = readSurvey(pictureSurvey(200));
    ASSERT_TRUE(doc);
    SelectionMatrix northOnly(1, doc->maxCategoryAlternatives);
    northOnly.set(0, 1, false);
    const SheetInput everyone = sheetFor(*doc, SelectionMatrix(1, doc->maxCategoryAlternatives));
    const SheetInput north = sheetFor(*doc, northOnly);
    ASSERT_EQ(everyone.rows.size(), 200u);
    ASSERT_EQ(north.rows.size(), 100u);

    const Picture largeHeaders = overviewPicture(everyone, SheetMode::CopyPicture,
                                                 OverviewPictureContent::HeadersAndTotals, true);
    const Picture smallHeaders = overviewPicture(north, SheetMode::CopyPicture,
                                                 OverviewPictureContent::HeadersAndTotals, true);
    const Picture largeAll = overviewPicture(everyone, SheetMode::CopyPicture, OverviewPictureContent::Answers, true);
    ASSERT_TRUE(largeHeaders.isValid());
    EXPECT_EQ(largeHeaders.size, smallHeaders.size);
    EXPECT_EQ(largeAll.size.width(), largeHeaders.size.width());
    EXPECT_EQ(largeAll.size.height() - largeHeaders.size.height(), 200 * 32) << "one 32-pixel line per answer row";
    // Without permission for data rows the whole picture is headers only.
    EXPECT_EQ(overviewPicture(everyone, SheetMode::SaveEmf, OverviewPictureContent::Answers, false).size,
              largeHeaders.size);

    // The header lines are drawn the same whatever the selection.
    const QImage a = renderPictureImage(largeHeaders), b = renderPictureImage(smallHeaders);
    const int headerHeight = 2 * 32; // block line and code line
    EXPECT_EQ(a.copy(0, 0, a.width(), headerHeight), b.copy(0, 0, b.width(), headerHeight));
}

TEST(OverviewPicture, MetafilesCarryTheSheetsTexts)
{
    auto doc = readSurvey(pictureSurvey(5));
    ASSERT_TRUE(doc);
    const SheetInput sheet = sheetFor(*doc, SelectionMatrix(1, doc->maxCategoryAlternatives));
    const Picture picture = overviewPicture(sheet, SheetMode::SaveEmf, OverviewPictureContent::Answers, true);
    const QByteArray emf = encodePicture(picture, PictureFormat::Emf);
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
    for (const char *code : {"A0", "A1", "A2", "B1", "W", "Pa"})
        EXPECT_TRUE(texts.contains(QString::fromLatin1(code))) << code << " in " << texts.join(QLatin1Char('|')).toStdString();
    // Every answer cell is a filled rectangle with its label.
    EXPECT_GE(rectangles, 5 * 4);
    EXPECT_GE(texts.count(QStringLiteral("2")), 5 * 4 / 3);
    EXPECT_TRUE(texts.join(QLatin1Char(' ')).contains(QStringLiteral("Everyone")));

    const QByteArray wmf = encodePicture(picture, PictureFormat::Wmf);
    QStringList wmfTexts;
    for (const MetaRecord &r : wmfRecords(wmf, &ok))
        if (r.type == 0x0A32)
            wmfTexts << wmfText(wmf, r);
    ASSERT_TRUE(ok);
    EXPECT_EQ(wmfTexts, texts) << "both metafiles are made from one drawing";
}

} // namespace
} // namespace kel::test
