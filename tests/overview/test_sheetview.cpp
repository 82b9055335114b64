// SPDX-License-Identifier: GPL-3.0-or-later
// The sheet view: frozen header while the body scrolls, and right clicks.
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
    EXPECT_TRUE(view.popupRow() == -1 && view.popupQuestion() == 3);

    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, cellCentre(5, 2));
    ASSERT_EQ(popup.count(), 2);

    // With a modifier, with the left button, or outside: nothing, and the
    // stored row and question stay.
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::ShiftModifier, cellCentre(1, 1));
    EXPECT_EQ(popup.count(), 2);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, cellCentre(1, 1));
    view.resize(600, 900); // the whole sheet fits: room right of it
    QTest::mouseClick(view.viewport(), Qt::RightButton, Qt::NoModifier, QPoint(1 + 20 * 16 + 2, 30));
    EXPECT_EQ(popup.count(), 2);
    EXPECT_EQ(view.popupRow(), 2);
    EXPECT_EQ(view.popupQuestion(), 5);
}
