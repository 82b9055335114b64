// SPDX-License-Identifier: GPL-3.0-or-later
// The drawn sheet compared pixel by pixel with a picture painted in the test
// from the expected cell colours.
#include "render/overview/sheetdrawer.h"

#include "surveys.h"
#include "engine/document/pooledindex.h"

#include <QPainter>

#include <gtest/gtest.h>

using namespace kel;
using kel::test::sheetSurvey;

namespace {

// COLORREF values (0x00BBGGRR) and the colours they must become.
constexpr qint32 Red = 0x0000FF, Green = 0x00FF00, Blue = 0xFF0000, Yellow = 0x00FFFF, Purple = 0x800080,
                 Cyan = 0xFFFF00;
constexpr qint32 Run0 = 0x102030, Run1 = 0x405060, Sub2 = 0x708090, Sub3 = 0xA0B0C0;
constexpr qint32 Group = 0x202020, QuestionA = 0x3355AA, QuestionC = 0x55AA33, QuestionD = 0xAA3355;
constexpr qint32 CaptionBack = 0x99CCFF;
constexpr qint32 W = -1; // no fill: the sheet's background shows

QColor c(qint32 ref)
{
    if (ref == W)
        return QColor::fromRgb(SheetBackground);
    return QColor(ref & 0xFF, (ref >> 8) & 0xFF, (ref >> 16) & 0xFF);
}

// Four columns: a and b in block 0 (a also in sub-block 0), c without a
// block, d in block 1. Three rows.
Document fillDocument()
{
    Document doc = sheetSurvey(
        {
            {"", 0, 0, QuestionA, {{"", Red}, {"", W}}},
            {"", 0, -1, W, {{"", Green}, {"", Blue}}},
            {"", -1, -1, QuestionC, {{"", Yellow}, {"", Purple}}},
            {"", 1, -1, QuestionD, {{"", Cyan}, {"", W}}},
        },
        {{"", ""}, {"", ""}}, {{0, 0, 0, 0}, {1, 1, 1, 1}, {0, 1, 0, 1}});
    doc.properties.sheetColours = {Run0, Run1, Sub2, Sub3};
    doc.properties.sheetColourB = Group;
    doc.properties.sheetColourA = CaptionBack;
    return doc;
}

SheetInput inputFor(const Document &doc, SheetMode mode = SheetMode::Screen)
{
    SheetInput input;
    input.document = &doc;
    input.mode = mode;
    input.rows = kel::allRows(doc);
    input.columns = doc.overviewColumns;
    return input;
}

using CellTable = std::vector<std::vector<qint32>>;

// The picture the rules describe: cells of the given colours, then a
// one-pixel group band ending at each of `groupEdges` (in cells) over all lines.
QImage expectedImage(const CellTable &cells, int cell, const std::vector<int> &groupEdges)
{
    const int lines = int(cells.size());
    const int columns = int(cells.front().size());
    QImage image(columns * cell, lines * cell, QImage::Format_RGB32);
    QPainter p(&image);
    for (int y = 0; y < lines; ++y)
        for (int x = 0; x < columns; ++x)
            p.fillRect(x * cell, y * cell, cell, cell, c(cells[std::size_t(y)][std::size_t(x)]));
    for (int edge : groupEdges)
        p.fillRect(edge * cell - 1, 0, 1, lines * cell, c(Group));
    return image;
}

// The first differing pixel, for a readable failure.
std::string firstDifference(const QImage &actual, const QImage &expected)
{
    if (actual.size() != expected.size())
        return "size " + std::to_string(actual.width()) + "x" + std::to_string(actual.height()) + " instead of "
            + std::to_string(expected.width()) + "x" + std::to_string(expected.height());
    const QImage a = actual.convertToFormat(QImage::Format_RGB32), e = expected.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != e.pixel(x, y))
                return "pixel (" + std::to_string(x) + ", " + std::to_string(y)
                    + "): " + QColor(a.pixel(x, y)).name().toStdString() + " instead of "
                    + QColor(e.pixel(x, y)).name().toStdString();
    return {};
}

const CellTable HeaderCells = {
    {Run0, Run0, W, Run0},                // block line: run 0, no block, run 2 (colour [0] again)
    {Sub2, Run0, W, Run0},                // sub-block line: the block's fill shows where no sub-block is
    {QuestionA, W, QuestionC, QuestionD}, // code line
};

CellTable withAnswers(CellTable table, const CellTable &answers)
{
    table.insert(table.end(), answers.begin(), answers.end());
    return table;
}

} // namespace

TEST(SheetDrawer, ScreenSheetMatchesTheRules)
{
    const Document doc = fillDocument();
    SheetTextOffsets offsets;
    SheetGeometry g;
    const QImage image = renderSheetImage(inputFor(doc), offsets, 1.0, &g);
    EXPECT_EQ(g.headerLines, 3);
    EXPECT_EQ(g.answerLines, 3);
    const CellTable cells = withAnswers(HeaderCells,
                                        {
                                            {Red, Green, Yellow, Cyan},
                                            {W, Blue, Purple, W},
                                            {Red, Blue, Yellow, W},
                                        });
    // Group lines end at column 1 (sub-block edge), 2 and 3 (block edges).
    EXPECT_EQ(firstDifference(image, expectedImage(cells, 16, {1, 2, 3})), "");

    SheetInput noGroups = inputFor(doc);
    noGroups.groupLines = false;
    EXPECT_EQ(firstDifference(renderSheetImage(noGroups, offsets), expectedImage(cells, 16, {})), "");
}

TEST(SheetDrawer, CopyPictureAddsIndexLinesAndCaption)
{
    Document doc = fillDocument();
    doc.properties.pointsScale = 10;
    doc.properties.indexDecimals = 1;
    // Points only on question a; question c has none and gets no index value.
    doc.alternatives[0].points = 10;
    doc.alternatives[1].points = 0;
    doc.alternatives[2].points = 5;
    doc.alternatives[3].points = 5;
    SheetInput input = inputFor(doc, SheetMode::CopyPicture);
    input.selectionText = QStringLiteral("Everyone");
    SheetTextOffsets offsets;
    SheetGeometry g;
    const QImage image = renderSheetImage(input, offsets, 1.0, &g);
    EXPECT_EQ(g.indexLines, 4); // two column lines + block and sub-block lines
    ASSERT_EQ(image.size(), QSize(4 * 32, (3 + 3 + 4 + 3) * 32 + g.captionExtra));

    // Answers at twice the screen size.
    EXPECT_EQ(QColor(image.pixel(40, 3 * 32 + 1)), c(Green));
    const int top = 6 * 32;
    // Column a (even) on the first index line, a box two cells wide round it
    // cut at the sheet's left edge, on the question's colour.
    EXPECT_EQ(QColor(image.pixel(47, top + 1)), c(QuestionA));
    EXPECT_EQ(QColor(image.pixel(49, top + 1)), c(W));
    // Column c has no points: no box.
    EXPECT_EQ(QColor(image.pixel(66, top + 1)), c(W));
    // Block index line: block 0's run on its run colour, over columns a and b.
    EXPECT_EQ(QColor(image.pixel(58, top + 64 + 1)), c(Run0));
    // Caption block on SheetColourA, full width.
    EXPECT_EQ(QColor(image.pixel(127, image.height() - 1)), c(CaptionBack));
}

TEST(SheetDrawer, DamagedInputDrawsWithoutCrashing)
{
    Document doc = fillDocument();
    doc.questions[1].firstAlternative = 1000; // alternatives out of range
    doc.questions[3].block = 99;              // no such block
    SheetInput input = inputFor(doc);
    input.columns.push_back(77); // no such question
    input.rows.push_back(12345); // no such row
    input.columnRowOffsets = {-3, 1 << 30};
    SheetTextOffsets offsets;
    const QImage image = renderSheetImage(input, offsets);
    EXPECT_FALSE(image.isNull());
    EXPECT_EQ(image.width(), 5 * 16);
    // Cells that cannot be drawn show the background, not stale memory.
    EXPECT_EQ(QColor(image.pixel(4 * 16 + 8, 3 * 16 + 8)), c(W));       // no such question
    EXPECT_EQ(QColor(image.pixel(1 * 16 + 8, 3 * 16 + 8)), c(W));       // no alternatives
    EXPECT_EQ(QColor(image.pixel(2 * 16 + 8, (3 + 3) * 16 + 8)), c(W)); // no such row

    // The picture's index lines sum points over the same damaged lists.
    doc.properties.pointsScale = 10;
    doc.alternatives[0].points = 10;
    input.mode = SheetMode::CopyPicture;
    SheetGeometry g;
    EXPECT_FALSE(renderSheetImage(input, offsets, 1.0, &g).isNull());
    EXPECT_EQ(g.indexLines, 4);

    SheetInput none;
    EXPECT_TRUE(renderSheetImage(none, offsets).isNull());
}

TEST(SheetDrawer, HugeSheetIsRefusedNotAllocated)
{
    // A large "Overview Max Rows" with a large selection: 3,000,000 lines of
    // 16 pixels would be a 12 GB picture.
    const Document doc = fillDocument();
    SheetInput input = inputFor(doc);
    input.rows.assign(3'000'000, 0);
    input.overviewMaxRows = 1 << 30;
    SheetTextOffsets offsets;
    SheetGeometry g;
    EXPECT_TRUE(renderSheetImage(input, offsets, 1.0, &g).isNull());
    EXPECT_EQ(g.answerLines, 3'000'000);
}
