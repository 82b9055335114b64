// SPDX-License-Identifier: GPL-3.0-or-later
// The sheet view: frozen header while the body scrolls, right clicks, and
// the keyboard cell cursor.
#include "gui/overview/sheetview.h"

#include "surveys.h"
#include "engine/document/pooledindex.h"

#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;

namespace {

// 20 columns in two blocks, 40 rows; answers alternate in a pattern that
// makes every line and column distinguishable.
Document viewDocument()
{
    std::vector<test::SheetQuestion> questions;
    for (int q = 0; q < 20; ++q)
        questions.push_back(
            {QStringLiteral("Q%1").arg(q),
             q < 10 ? 0 : 1,
             -1,
             0x808080,
             {{QStringLiteral("a"), 0x0000FF}, {QStringLiteral("b"), 0x00FF00}, {QStringLiteral("c"), 0xFF0000}}});
    std::vector<std::vector<qint32>> answers(40, std::vector<qint32>(20));
    for (int r = 0; r < 40; ++r)
        for (int q = 0; q < 20; ++q)
            answers[std::size_t(r)][std::size_t(q)] = (r * 7 + q) % 3;
    Document doc = test::sheetSurvey(questions, {{"B0", "First"}, {"B1", "Second"}}, answers);
    doc.properties.sheetColours = {0xDDDDDD, 0xBBBBBB, -1, -1};
    doc.properties.sheetColourB = 0;
    return doc;
}

SheetInput viewInput(const Document &doc)
{
    SheetInput input;
    input.document = &doc;
    input.rows = kel::allRows(doc);
    input.columns = doc.overviewColumns;
    return input;
}

QImage grabViewport(SheetView &view)
{
    return view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

class SheetViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        view.resize(200, 150);
        view.show();
        ASSERT_TRUE(view.setSheet(viewInput(doc)));
    }

    QPoint cellCentre(int column, int line) const // line: -2, -1 header; 0.. visible body lines
    {
        return QPoint(1 + column * 16 + 8, 1 + (line + 2) * 16 + 8);
    }

    Document doc = viewDocument();
    SheetView view;
};

} // namespace

TEST_F(SheetViewTest, HeaderStaysWhileTheBodyScrolls)
{
    SheetTextOffsets offsets;
    const QImage sheet = renderSheetImage(viewInput(doc), offsets);
    view.setScrollPosition(3, 5);
    ASSERT_EQ(view.scrollColumn(), 3);
    ASSERT_EQ(view.scrollLine(), 5);
    const QImage shown = grabViewport(view);
    const int width = view.viewport()->width() - 2;
    const int height = view.viewport()->height() - 2;
    // Header: columns from 3 on, the top two lines.
    EXPECT_EQ(shown.copy(1, 1, width, 32), sheet.copy(48, 0, width, 32));
    // Body: lines from 5 on, right under the header.
    EXPECT_EQ(shown.copy(1, 33, width, height - 32), sheet.copy(48, (5 + 2) * 16, width, height - 32));
    // The margin is button face.
    EXPECT_EQ(QColor(shown.pixel(0, 0)), view.palette().color(QPalette::Button));
}

TEST_F(SheetViewTest, RightClickRequestsThePopupOnlyOnTheSheet)
{
    QSignalSpy popup(&view, &SheetView::popupRequested);
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, cellCentre(3, -1));
    ASSERT_EQ(popup.count(), 1);
    EXPECT_EQ(popup.at(0).at(0).value<SheetHit>().place, SheetPlace::CodeLine);
    const SheetHit codeLine = popup.at(0).at(0).value<SheetHit>();
    EXPECT_TRUE(codeLine.row == -1 && codeLine.question == 3);

    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, cellCentre(5, 2));
    ASSERT_EQ(popup.count(), 2);

    // With a modifier, with the left button, or outside: nothing, so the
    // receiver keeps the row and question of the last request.
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::ShiftModifier, cellCentre(1, 1));
    EXPECT_EQ(popup.count(), 2);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, cellCentre(1, 1));
    view.resize(600, 900); // the whole sheet fits: room right of it
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, QPoint(1 + 20 * 16 + 2, 30));
    EXPECT_EQ(popup.count(), 2);
    const SheetHit last = popup.last().at(0).value<SheetHit>();
    EXPECT_EQ(last.row, 2);
    EXPECT_EQ(last.question, 5);
}

// The cursor's moves, read from the key conventions of a sheet with frozen
// header lines: 3 columns, 2 header lines, 5 answer lines, pages of 2.
TEST(SheetCursorTest, KeysMoveWithinTheSheet)
{
    struct Case {
        const char *name;
        int column, line;
        int key;
        Qt::KeyboardModifiers modifiers;
        int expectedColumn, expectedLine;
    };
    const Case cases[] = {
        {"right", 0, 0, Qt::Key_Right, Qt::NoModifier, 1, 0},
        {"right at the last column", 2, 0, Qt::Key_Right, Qt::NoModifier, 2, 0},
        {"left", 1, 3, Qt::Key_Left, Qt::NoModifier, 0, 3},
        {"left at the first column", 0, 3, Qt::Key_Left, Qt::NoModifier, 0, 3},
        {"down", 1, 3, Qt::Key_Down, Qt::NoModifier, 1, 4},
        {"down at the last line", 1, 4, Qt::Key_Down, Qt::NoModifier, 1, 4},
        {"up into the code line", 1, 0, Qt::Key_Up, Qt::NoModifier, 1, -1},
        {"up into the block line", 1, -1, Qt::Key_Up, Qt::NoModifier, 1, -2},
        {"up at the top header line", 1, -2, Qt::Key_Up, Qt::NoModifier, 1, -2},
        {"down out of the header", 1, -1, Qt::Key_Down, Qt::NoModifier, 1, 0},
        {"home keeps the line", 2, 3, Qt::Key_Home, Qt::NoModifier, 0, 3},
        {"end keeps the line", 0, 3, Qt::Key_End, Qt::NoModifier, 2, 3},
        {"ctrl+home: first answer cell", 2, 4, Qt::Key_Home, Qt::ControlModifier, 0, 0},
        {"ctrl+home from the header", 2, -2, Qt::Key_Home, Qt::ControlModifier, 0, 0},
        {"ctrl+end: last answer cell", 0, -1, Qt::Key_End, Qt::ControlModifier, 2, 4},
        {"page down", 1, 0, Qt::Key_PageDown, Qt::NoModifier, 1, 2},
        {"page down one short of the end", 1, 3, Qt::Key_PageDown, Qt::NoModifier, 1, 4},
        {"page up", 1, 4, Qt::Key_PageUp, Qt::NoModifier, 1, 2},
        {"page up stays among answers", 1, 1, Qt::Key_PageUp, Qt::NoModifier, 1, 0},
        {"page up from the header", 1, -1, Qt::Key_PageUp, Qt::NoModifier, 1, -2},
        {"page down from the header", 1, -2, Qt::Key_PageDown, Qt::NoModifier, 1, 0},
    };
    for (const Case &c : cases) {
        SheetCursor cursor;
        cursor.setBounds({3, 2, 5});
        cursor.setPosition(c.column, c.line);
        ASSERT_TRUE(cursor.moveByKey(c.key, c.modifiers, 2)) << c.name;
        EXPECT_EQ(cursor.column(), c.expectedColumn) << c.name;
        EXPECT_EQ(cursor.line(), c.expectedLine) << c.name;
    }
    SheetCursor cursor;
    cursor.setBounds({3, 2, 5});
    EXPECT_FALSE(cursor.moveByKey(Qt::Key_A, Qt::NoModifier, 2));
    EXPECT_FALSE(cursor.moveByKey(Qt::Key_Tab, Qt::NoModifier, 2)) << "Tab leaves the sheet";
}

TEST(SheetCursorTest, NewBoundsPullTheCursorIn)
{
    SheetCursor cursor;
    EXPECT_FALSE(cursor.isValid());
    cursor.setBounds({4, 3, 10});
    EXPECT_TRUE(cursor.column() == 0 && cursor.line() == 0) << "starts on the first answer cell";
    cursor.setPosition(3, 9);
    cursor.setBounds({2, 1, 4}); // a smaller sheet
    EXPECT_TRUE(cursor.column() == 1 && cursor.line() == 3);
    cursor.setPosition(1, -1);
    cursor.setBounds({2, 1, 4});
    EXPECT_EQ(cursor.line(), -1) << "a header line stays a header line";
    // Only the header drawn (the selection is below the minimum): the code line.
    cursor.setPosition(1, 2);
    cursor.setBounds({2, 2, 0});
    EXPECT_EQ(cursor.line(), -1);
    cursor.moveByKey(Qt::Key_Down, Qt::NoModifier, 5);
    EXPECT_EQ(cursor.line(), -1) << "no answer line to go down to";
    cursor.setPosition(0, -5);
    EXPECT_EQ(cursor.line(), -2);
}

TEST(SheetCursorTest, ScrollShowsTheIndexInAWindowOfWholeCells)
{
    // A window of 4 starting at 10 shows 10..13.
    EXPECT_EQ(SheetCursor::scrollToShow(10, 10, 4, 100), 10);
    EXPECT_EQ(SheetCursor::scrollToShow(13, 10, 4, 100), 10) << "the last shown cell";
    EXPECT_EQ(SheetCursor::scrollToShow(14, 10, 4, 100), 11) << "one past: scroll by one";
    EXPECT_EQ(SheetCursor::scrollToShow(9, 10, 4, 100), 9) << "one before: scroll back by one";
    EXPECT_EQ(SheetCursor::scrollToShow(50, 10, 4, 40), 40) << "never past the bar's end";
    EXPECT_EQ(SheetCursor::scrollToShow(5, 10, 0, 100), 5) << "a window narrower than a cell shows the cell";
}

// The view: 200 x 150 shows 12 columns (192 px) and, below two header
// lines, 7 body lines; both bars are shown (20 columns, 40 rows).
TEST_F(SheetViewTest, CursorKeysMoveScrollAndReport)
{
    view.setHoverEnabled(true);
    QSignalSpy hovered(&view, &SheetView::cellHovered);
    view.setFocus();
    ASSERT_TRUE(view.cursor().isValid());

    QTest::keyClick(&view, Qt::Key_Right);
    ASSERT_EQ(hovered.count(), 1) << "the detail window follows the cursor at once";
    SheetHit hit = hovered.last().at(0).value<SheetHit>();
    EXPECT_EQ(hit.place, SheetPlace::AnswerCell);
    EXPECT_TRUE(hit.column == 1 && hit.line == 0 && hit.question == 1 && hit.row == 0);

    // Down through the visible body lines; the bar moves only past the last.
    const int bodyLines = (view.viewport()->height() - 2 - 32) / 16;
    for (int i = 0; i < bodyLines - 1; ++i)
        QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.cursor().line(), bodyLines - 1);
    EXPECT_EQ(view.scrollLine(), 0) << "the last visible line needs no scroll";
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.scrollLine(), 1) << "one past it scrolls by one";
    EXPECT_EQ(hovered.last().at(0).value<SheetHit>().row, bodyLines);

    QTest::keyClick(&view, Qt::Key_End);
    EXPECT_EQ(view.cursor().column(), 19);
    EXPECT_EQ(view.scrollColumn(), view.horizontalScrollBar()->maximum());
    QTest::keyClick(&view, Qt::Key_Home, Qt::ControlModifier);
    EXPECT_TRUE(view.scrollColumn() == 0 && view.scrollLine() == 0);

    // Into the header: the view does not scroll, the hit is a header place.
    QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Up);
    const int scrolled = view.scrollLine();
    for (int i = 0; i < 39; ++i)
        QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(view.cursorHit().place, SheetPlace::CodeLine);
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(view.cursorHit().place, SheetPlace::BlockLine);
    EXPECT_LT(view.scrollLine(), scrolled);
    EXPECT_FALSE(view.cursorRect().isEmpty()) << "header lines are always in view";
}

TEST_F(SheetViewTest, MenuKeyAndShiftF10OpenThePopupAtTheCursor)
{
    QSignalSpy popup(&view, &SheetView::popupRequested);
    view.setFocus();
    view.setCursorPosition(4, 30); // scrolled into view
    EXPECT_FALSE(view.cursorRect().isEmpty());
    QTest::keyClick(&view, Qt::Key_Menu);
    ASSERT_EQ(popup.count(), 1);
    const SheetHit hit = popup.last().at(0).value<SheetHit>();
    EXPECT_TRUE(hit.place == SheetPlace::AnswerCell && hit.question == 4 && hit.row == 30);
    const QRect cell = view.cursorRect();
    EXPECT_EQ(popup.last().at(1).toPoint(), view.viewport()->mapToGlobal(cell.bottomLeft() + QPoint(0, 1)));

    view.setCursorPosition(2, -1);
    QTest::keyClick(&view, Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_EQ(popup.count(), 2);
    EXPECT_EQ(popup.last().at(0).value<SheetHit>().place, SheetPlace::CodeLine);
    QTest::keyClick(&view, Qt::Key_F10);
    EXPECT_EQ(popup.count(), 2) << "F10 alone is the menu bar's key";
}

TEST_F(SheetViewTest, CursorIsDrawnOverTheSheetWhileFocused)
{
    view.setCursorPosition(2, 1);
    const QRect cell = view.cursorRect();
    ASSERT_EQ(cell, QRect(1 + 2 * 16, 1 + 3 * 16, 16, 16));
    const QImage before = grabViewport(view);
    view.setFocus();
    QTRY_VERIFY(view.hasFocus());
    const QImage focused = grabViewport(view);
    EXPECT_NE(focused.copy(cell), before.copy(cell)) << "drawn while focused";
    // Everything outside the cell is the sheet as before.
    QImage a = focused, b = before;
    for (int y = cell.top(); y <= cell.bottom(); ++y)
        for (int x = cell.left(); x <= cell.right(); ++x)
            a.setPixel(x, y, 0), b.setPixel(x, y, 0);
    EXPECT_EQ(a, b);
    EXPECT_EQ(QColor(focused.pixel(cell.topLeft())), QColor(Qt::black));
    EXPECT_EQ(QColor(focused.pixel(cell.topLeft() + QPoint(2, 2))), QColor(Qt::white));
    view.clearFocus();
    QTRY_COMPARE(grabViewport(view), before);
}
