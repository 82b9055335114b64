// SPDX-License-Identifier: GPL-3.0-or-later
// The sheet drawn a part at a time (areas, tiles, the view that shows them)
// against the whole picture drawn in one go: every pixel must be the same.
#include "gui/overview/sheetview.h"
#include "render/overview/sheetdrawer.h"
#include "render/overview/sheettiles.h"

#include "surveys.h"
#include "engine/document/pooledindex.h"

#include <QPainter>
#include <QScrollBar>

#include <gtest/gtest.h>

using namespace kel;

namespace {

constexpr int Columns = 120;
constexpr int Rows = 70;

// Wide enough for many tiles. Codes wider than their cell run over the
// neighbours, block names are shortened to their runs, labels differ per
// alternative, and one column without a colour leaves the background.
Document wideDocument()
{
    std::vector<test::SheetQuestion> questions;
    std::vector<test::SheetBlock> blocks;
    const int blockCount = Columns / 7 + 1;
    for (int b = 0; b < blockCount; ++b)
        blocks.push_back({QStringLiteral("B%1").arg(b), QStringLiteral("A rather long block name %1").arg(b)});
    for (int b = 0; b < Columns / 3 + 1; ++b)
        blocks.push_back({QStringLiteral("S%1").arg(b), QStringLiteral("Sub %1").arg(b)});
    for (int q = 0; q < Columns; ++q) {
        const int subBlock = (q % 6) < 3 ? blockCount + q / 3 : -1;
        questions.push_back({QStringLiteral("Question%1").arg(q),
                             q / 7,
                             subBlock,
                             q == 17 ? -1 : 0x30A0C0 + q,
                             {{QStringLiteral("1"), 0x0000FF},
                              {QStringLiteral("Wide label"), 0x00FF00},
                              {QStringLiteral("3"), -1},
                              {QString(), 0xFF0000}}});
    }
    std::vector<std::vector<qint32>> answers(Rows, std::vector<qint32>(Columns));
    for (int r = 0; r < Rows; ++r)
        for (int q = 0; q < Columns; ++q)
            answers[std::size_t(r)][std::size_t(q)] = (r * 5 + q * 3) % 4;
    Document doc = test::sheetSurvey(questions, blocks, answers);
    doc.properties.sheetColours = {0xDDDDDD, 0xBBBBBB, 0x99CCEE, -1};
    doc.properties.sheetColourB = 0x202020;
    doc.properties.sheetColourA = 0x99FFFF;
    doc.properties.pointsScale = 100;
    return doc;
}

SheetInput inputFor(const Document &doc, SheetMode mode)
{
    SheetInput input;
    input.document = &doc;
    input.mode = mode;
    input.rows = kel::allRows(doc);
    input.columns = doc.overviewColumns;
    input.selectionText = QStringLiteral("Everyone who answered the whole survey, in the order of their answers");
    return input;
}

// `area` of the sheet drawn alone, onto an image of just that size.
QImage drawnAlone(const SheetInput &input, const QRect &area)
{
    QImage image(area.size(), QImage::Format_RGB32);
    image.fill(Qt::magenta); // anything left undrawn shows
    QPainter painter(&image);
    painter.translate(-area.topLeft());
    SheetTextOffsets offsets;
    drawSheetArea(painter, input, offsets, area);
    return image;
}

} // namespace

TEST(SheetArea, AnyAreaHasThePixelsOfTheWholeSheetInEveryMode)
{
    const Document doc = wideDocument();
    const struct {
        SheetMode mode;
        const char *name;
    } modes[] = {{SheetMode::Screen, "screen"},
                 {SheetMode::CopyPicture, "copy picture"},
                 {SheetMode::MiniOverview, "mini-overview"}};
    for (const auto &m : modes) {
        const SheetInput input = inputFor(doc, m.mode);
        SheetTextOffsets offsets;
        SheetGeometry g;
        const QImage whole = renderSheetImage(input, offsets, 1.0, &g);
        ASSERT_FALSE(whole.isNull()) << m.name;
        const int w = g.cellWidth, h = g.cellHeight;
        // Areas on cell edges, through the middle of cells and of texts, a
        // band across the whole width through the index lines and caption,
        // and one reaching past the sheet.
        const QRect areas[] = {
            QRect(0, 0, 5 * w, 4 * h),
            QRect(3 * w + w / 2, h / 2, 7 * w + 3, 9 * h + 5),
            QRect(17 * w - 5, 2 * h + 3, 2 * w + 10, 3 * h),
            QRect(0, g.height() - 6 * h, g.width(), 6 * h),
            QRect(g.width() - 3 * w - 7, g.height() - 4 * h - 1, 3 * w + 7, 4 * h + 1),
            QRect(1, 1, 1, 1),
        };
        for (const QRect &area : areas) {
            EXPECT_EQ(drawnAlone(input, area), whole.copy(area))
                << m.name << " area " << area.x() << "," << area.y() << " " << area.width() << "x" << area.height();
        }
    }
}

TEST(SheetTiles, CapacityCoversTheViewAndOneRingOfTiles)
{
    constexpr int T = SheetTiles::TileSize;
    // A view of exactly 2 x 1 tiles can straddle 3 x 2 of them; the ring
    // adds 3 + 2 + 1.
    EXPECT_EQ(SheetTiles::capacityFor(QSize(2 * T, T)), 3 * 2 + 3 + 2 + 1);
    // One pixel more is one more tile across.
    EXPECT_EQ(SheetTiles::capacityFor(QSize(2 * T + 1, T)), 4 * 2 + 4 + 2 + 1);
    EXPECT_EQ(SheetTiles::capacityFor(QSize(0, 0)), 1 + 1 + 1 + 1);
}

TEST(SheetTiles, PaintingPartsKeepsNoMoreThanTheCapacity)
{
    const Document doc = wideDocument();
    const SheetInput input = inputFor(doc, SheetMode::Screen);
    const SheetGeometry g = measureSheet(input);
    SheetTextOffsets offsets;
    SheetTiles tiles;
    const QSize view(300, 200);
    tiles.setCapacity(SheetTiles::capacityFor(view));
    QImage target(view, QImage::Format_RGB32);
    QPainter painter(&target);
    for (int x = 0; x + view.width() <= g.width(); x += 37) {
        tiles.paint(painter, QPoint(0, 0), QRect(QPoint(x, 40), view), input, offsets, g);
        EXPECT_LE(tiles.tileCount(), tiles.capacity());
    }
    EXPECT_GT(tiles.tileCount(), 0);
    EXPECT_LE(tiles.memoryBytes(), qint64(tiles.capacity()) * SheetTiles::TileSize * SheetTiles::TileSize * 4);
    painter.end();
    QImage whole = renderSheetImage(input, offsets);
    const QRect last(QPoint(((g.width() - view.width()) / 37) * 37, 40), view);
    EXPECT_EQ(target, whole.copy(last));
}

TEST(SheetViewTiles, EveryScrollPositionShowsTheWholeSheetsPixels)
{
    const Document doc = wideDocument();
    SheetView view;
    view.resize(700, 500);
    view.show();
    ASSERT_TRUE(view.setSheet(inputFor(doc, SheetMode::Screen)));
    SheetTextOffsets offsets;
    const QImage whole = renderSheetImage(view.input(), offsets);
    const SheetGeometry g = view.sheetGeometry();
    const int header = g.headerHeight();
    // Positions on both sides of tile edges (a tile is 16 cells) and at the end.
    const int columns[] = {0, 15, 16, 17, 31, 32, view.horizontalScrollBar()->maximum()};
    const int lines[] = {0, 1, 13, 14, 29, 30, view.verticalScrollBar()->maximum()};
    for (int column : columns) {
        for (int line : lines) {
            view.setScrollPosition(column, line);
            ASSERT_EQ(view.scrollColumn(), column);
            ASSERT_EQ(view.scrollLine(), line);
            const QImage shown = view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
            const int width = std::min(view.viewport()->width() - 2, g.width() - column * 16);
            const int body = std::min(view.viewport()->height() - 2 - header, g.height() - (line * 16 + header));
            EXPECT_EQ(shown.copy(1, 1, width, header), whole.copy(column * 16, 0, width, header))
                << "header at " << column << "," << line;
            EXPECT_EQ(shown.copy(1, 1 + header, width, body), whole.copy(column * 16, header + line * 16, width, body))
                << "body at " << column << "," << line;
            EXPECT_LE(view.tiles().tileCount(), view.tiles().capacity());
        }
    }
    // A new sheet at the same place shows its own rows, not kept tiles of the old.
    SheetInput reversed = inputFor(doc, SheetMode::Screen);
    std::reverse(reversed.rows.begin(), reversed.rows.end());
    view.setScrollPosition(16, 14);
    ASSERT_TRUE(view.setSheet(reversed));
    const QImage again = renderSheetImage(view.input(), offsets);
    const QImage shown = view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(shown.copy(1, 1 + header, 200, 100), again.copy(16 * 16, header + 14 * 16, 200, 100));
    EXPECT_NE(again.copy(16 * 16, header + 14 * 16, 200, 100), whole.copy(16 * 16, header + 14 * 16, 200, 100));
}
