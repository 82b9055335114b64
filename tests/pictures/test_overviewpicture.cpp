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
        EXPECT_TRUE(texts.contains(QString::fromLatin1(code))) << code << " in " << texts.join(QLatin1Char('|')).toStdString();
    // Every answer cell is a filled rectangle with its label.
    EXPECT_GE(rectangles, 200 * 4);
    EXPECT_GE(texts.count(QStringLiteral("2")), 200 * 4 / 3);
}

} // namespace
} // namespace kel::test
