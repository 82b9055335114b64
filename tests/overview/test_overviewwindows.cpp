// SPDX-License-Identifier: GPL-3.0-or-later
// Mini-overviews and the comments windows, opened from a main window on
// documents written by the test writer and opened through the reader.
#include "engine/document/document.h"
#include "engine/selection/counting.h"
#include "gui/overview/minioverviewwindow.h"
#include "gui/shell/overviewcommands.h"
#include "gui/overview/sheetview.h"
#include "gui/overview/textpopup.h"
#include "gui/shell/mainwindow.h"
#include "texts/statusline.h"
#include "kelwriter.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QTimer>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

// `rows` respondents answering `columns` two-alternative questions; row 1
// has a row comment, row 2 comments on the second question only.
SurveyBuilder survey(qint32 rows, qint32 columns)
{
    SurveyBuilder b(rows);
    for (qint32 q = 0; q < columns; ++q)
        b.addQuestion({.code = QStringLiteral("Q%1").arg(q + 1), .heading = QStringLiteral("Heading %1").arg(q + 1),
                       .text = QStringLiteral("Question %1").arg(q + 1)},
                      {{.text = QStringLiteral("Yes"), .colour = rgb(0, 160, 0)},
                       {.text = QStringLiteral("No"), .colour = rgb(200, 0, 0)}});
    for (qint32 r = 0; r < rows; ++r)
        b.setAnswer(r, r % columns, 1);
    return b;
}

class OverviewWindowsTest : public ::testing::Test
{
protected:
    std::unique_ptr<MainWindow> open(const SurveyBuilder &builder)
    {
        SettingsLocation l;
        l.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        mStore = std::make_unique<SettingsStore>(l);
        auto w = std::make_unique<MainWindow>(*mStore, false, MainWindowEnvironment());
        w->setMessageHandler([this](QMessageBox::Icon, const QString &title, const QString &text) {
            mMessages << title + QLatin1Char('|') + text;
        });
        const QString path = mDir.filePath(QStringLiteral("survey.kel"));
        EXPECT_TRUE(builder.build().writeFile(path));
        EXPECT_TRUE(w->openDocument(path, false, QStringLiteral("Open"))) << mMessages.join(u'\n').toStdString();
        return w;
    }

    static QList<TextPopup *> popups(const MainWindow &w) { return w.findChildren<TextPopup *>(); }

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    QStringList mMessages;
};

} // namespace

TEST_F(OverviewWindowsTest, MiniOverviewsComeFromTenSlots)
{
    auto w = open(survey(300, 60));
    ASSERT_TRUE(w->sheetView()->hasSheet());
    ASSERT_TRUE(w->menus().mnuECopyToMiniOverview->isEnabled());

    QList<MiniOverviewWindow *> windows;
    for (int i = 0; i < 10; ++i) {
        w->menus().mnuECopyToMiniOverview->trigger();
        EXPECT_EQ(w->statusLine().text(), QStringLiteral("Overview copied to mini-overview!"));
        auto *mini = qobject_cast<MiniOverviewWindow *>(w->windowSlots(SlotTable::MiniOverviews)[std::size_t(i)].window);
        ASSERT_NE(mini, nullptr) << i;
        EXPECT_FALSE(windows.contains(mini));
        EXPECT_TRUE(mini->isVisible());
        windows << mini;
        QTest::qWait(2); // distinct hand-out times
    }
    // 8-pixel cells without text: 60 columns are 480 pixels; the caption
    // tells the selection apart.
    const MiniOverviewWindow &first = *windows.first();
    EXPECT_EQ(first.sheetGeometry().cellWidth, 8);
    EXPECT_EQ(first.sheetGeometry().width(), 480);
    EXPECT_EQ(first.sheetGeometry().answerLines, 300);
    EXPECT_TRUE(first.windowTitle().startsWith(QStringLiteral("Mini-overview")));
    EXPECT_TRUE(first.windowTitle().endsWith(w->sheetView()->input().selectionText));
    EXPECT_TRUE(first.view()->horizontalScrollBar()->maximum() >= 0);

    // Which slot a copy takes is the pool's rule; a window the user closed
    // lets go of its picture.
    windows[6]->close();
    EXPECT_FALSE(windows[6]->hasData());
    w->menus().mnuECopyToMiniOverview->trigger();
    EXPECT_TRUE(windows[6]->isVisible() && windows[6]->hasData());

    // Its picture is its own: a new overview leaves it as it was.
    const QImage before = windows[6]->view()->sheetImage();
    ASSERT_TRUE(w->showSelection(fullSelection(*w->document())).isEmpty());
    EXPECT_EQ(windows[6]->view()->sheetImage(), before);

    // Closing the document closes them all.
    w->closeDocument();
    for (MiniOverviewWindow *mini : w->findChildren<MiniOverviewWindow *>())
        EXPECT_FALSE(mini->isVisible());
    EXPECT_FALSE(copyToMiniOverview(*w));
}

TEST_F(OverviewWindowsTest, CommentsWindowsShowTheTextLiterally)
{
    SurveyBuilder b = survey(6, 3);
    b.setRowComment(1, QStringLiteral("Use {braces} & <tags>\r\nsecond line"));
    b.setCellComment(2, 1, QStringLiteral("C:\\path"));
    b.setCellComment(4, 1, QStringLiteral("another"));
    auto w = open(b);

    w->menus().mnuVComments->trigger();
    ASSERT_EQ(popups(*w).size(), 1);
    TextPopup *all = popups(*w).first();
    EXPECT_EQ(all->plainText(), QStringLiteral("Use {braces} & <tags>\nsecond line"));
    EXPECT_GE(all->minimumWidth(), 100);
    EXPECT_TRUE(w->statusLine().text().isEmpty());
    all->findChild<QPushButton *>(QStringLiteral("cmdClose"))->click();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(popups(*w).isEmpty());

    // Right-click cells as the user does, then the popup's commands.
    w->resize(900, 620);
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    SheetView *sheet = w->sheetView();
    const int headerHeight = sheet->sheetGeometry().headerHeight();
    auto rightClick = [&](int column, int line) {
        const QPoint at(1 + column * 16 + 8, 1 + headerHeight + line * 16 + 8);
        QTest::mouseClick(sheet->viewport(), Qt::RightButton, Qt::NoModifier, at);
        w->menus().mnuPopUp->hide();
    };
    rightClick(0, 2); // row 2, first question
    EXPECT_TRUE(w->menus().mnuPShowRowsComments->isEnabled());
    w->menus().mnuPShowRowsComments->trigger();
    ASSERT_EQ(popups(*w).size(), 1);
    EXPECT_EQ(popups(*w).first()->plainText(), QStringLiteral("Question 2\nC:\\path"));
    delete popups(*w).first();

    rightClick(1, 0); // the second question's column
    w->menus().mnuPShowColumnsComments->trigger();
    ASSERT_EQ(popups(*w).size(), 1);
    EXPECT_EQ(popups(*w).first()->plainText(), QStringLiteral("Question 2\nC:\\path\n \nanother"));
}

TEST_F(OverviewWindowsTest, NoRowCommentsGivesTheMessage)
{
    SurveyBuilder b = survey(4, 2);
    b.setCellComment(0, 0, QStringLiteral("cell only"));
    b.file(); // the row-comment records stay empty
    auto w = open(b);
    showAllComments(*w);
    EXPECT_TRUE(popups(*w).isEmpty());
    EXPECT_EQ(mMessages, QStringList{QStringLiteral("Show Comments|Could not find any comments!")});
}

TEST_F(OverviewWindowsTest, ARestingPointerFollowsScrollingAndNewOverviews)
{
    auto w = open(survey(300, 60));
    w->resize(900, 620);
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    SheetView *sheet = w->sheetView();
    sheet->setHoverEnabled(true);
    QList<SheetHit> hits;
    QObject::connect(sheet, &SheetView::cellHovered, [&hits](const SheetHit &hit) { hits << hit; });

    const int headerHeight = sheet->sheetGeometry().headerHeight();
    QTest::mouseMove(sheet->viewport(), QPoint(1 + 8, 1 + headerHeight + 8));
    QTRY_COMPARE_WITH_TIMEOUT(hits.size(), 1, 2000);
    EXPECT_EQ(hits.last().line, 0);

    // The keyboard moves the sheet under the still pointer.
    QTest::keyClick(sheet, Qt::Key_Down);
    QTRY_COMPARE_WITH_TIMEOUT(hits.size(), 2, 2000);
    EXPECT_EQ(hits.last().line, 1);

    // So does the wheel.
    QWheelEvent wheel(QPointF(9, headerHeight + 9), sheet->viewport()->mapToGlobal(QPointF(9, headerHeight + 9)),
                      QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(sheet->viewport(), &wheel);
    QTRY_COMPARE_WITH_TIMEOUT(hits.size(), 3, 2000);
    EXPECT_GT(hits.last().line, 1);

    // A new overview under the pointer is reported too.
    ASSERT_TRUE(w->showSelection(fullSelection(*w->document())).isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(hits.size(), 4, 2000);

    // A pointer that left the sheet is not.
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(sheet->viewport(), &leave);
    QTest::keyClick(sheet, Qt::Key_Down);
    QTest::qWait(SheetView::HoverDelayMs * 2);
    EXPECT_EQ(hits.size(), 4);
}

TEST_F(OverviewWindowsTest, NewOptionsApplyAtTheNextOverview)
{
    auto w = open(survey(40, 3));
    ASSERT_EQ(w->sheetView()->sheetGeometry().answerLines, 40);
    ASSERT_TRUE(w->sheetView()->input().groupLines);

    // Tools > Options, as the user works it: 10 rows, no block lines.
    QTimer::singleShot(0, [] {
        QWidget *dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        dialog->findChild<QLineEdit *>(QStringLiteral("txtOverviewMaxRows"))->setText(QStringLiteral(" 10 "));
        dialog->findChild<QCheckBox *>(QStringLiteral("chkOverviewBlockLines"))->setChecked(false);
        dialog->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
    w->menus().mnuTOptions->trigger();
    EXPECT_EQ(w->options().overviewMaxRows, 10);
    // The sheet on screen stays as it was built ...
    EXPECT_EQ(w->sheetView()->sheetGeometry().answerLines, 40);
    // ... and the next build follows the options.
    ASSERT_TRUE(w->showSelection(fullSelection(*w->document())).isEmpty());
    EXPECT_EQ(w->sheetView()->sheetGeometry().answerLines, 10);
    EXPECT_FALSE(w->sheetView()->input().groupLines);
    // Written for the next run as well.
    EXPECT_EQ(mStore->readSettings().overviewMaxRows, 10);
}
