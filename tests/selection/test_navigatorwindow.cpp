// SPDX-License-Identifier: GPL-3.0-or-later
// The navigator window on a small survey: each user tick (and only a user's
// tick) reaches the tree, the count, the shading and the Show button; the
// reminder.
#include "gui/selection/navigatorwindow.h"

#include "engine/overview/subsheet.h"
#include "engine/selection/flextotal.h"
#include "engine/settings/settingsstore.h"
#include "gui/selection/navigatortree.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include "surveys.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QApplication>
#include <QListWidget>
#include <QTest>

#include <cstdlib>

#include <gtest/gtest.h>

using namespace kel;

namespace {

class NavigatorWindowTest : public ::testing::Test
{
protected:
    void open(const test::NavigatorSurveyOptions &o = {})
    {
        mDoc = test::navigatorSurvey(o);
        ASSERT_TRUE(mDoc);
        mFlex.reset(*mDoc, BlockCatalogue(*mDoc));
        NavigatorActions actions;
        // The main window's Show: the engine's, on the navigator's edits.
        actions.show = [this](SelectionModel &model) {
            const SubSheet sheet = showSelection(*mDoc, BlockCatalogue(*mDoc), model, mFlex, RowOrderOriginal, mRandom);
            return sheet.outcome.done() ? QString() : showRefusalMessage(*mDoc, sheet.outcome.refusal(), false);
        };
        actions.showRefusal = [this](const QString &message) { mRefusals << message; };
        mWindow = std::make_unique<NavigatorWindow>(false, mStatus, mOptions, actions);
        mWindow->setUp(*mDoc);
        mWindow->resize(300, 500);
        mWindow->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(mWindow.get()));
    }

    QTreeWidgetItem *node(const char *key) const { return mWindow->tree()->itemByKey(QString::fromLatin1(key)); }
    bool checked(const char *key) const { return node(key)->checkState(0) == Qt::Checked; }
    void click(const char *key)
    {
        NavigatorTree *tree = mWindow->tree();
        QTreeWidgetItem *item = node(key);
        ASSERT_TRUE(item) << key;
        tree->scrollToItem(item);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->checkBoxRect(item).center());
    }
    QString countText() const { return mWindow->totalLabel()->text(); }

    StatusLine mStatus{false, StatusLine::DefaultClearInterval};
    UserOptions mOptions;
    std::unique_ptr<Document> mDoc;
    std::unique_ptr<NavigatorWindow> mWindow;
    FlexTotal mFlex;
    RowRandom mRandom{1};
    QStringList mRefusals;
};

TEST_F(NavigatorWindowTest, TicksPropagateCountAndShade)
{
    open();
    EXPECT_EQ(node("R0")->childCount(), 3) << "the no-answer first alternative is left out";
    click("R0");
    EXPECT_FALSE(checked("A0-1") || checked("A0-2") || checked("A0-3"));
    EXPECT_EQ(countText(), QStringLiteral("Items in selection: 1"));
    click("A0-1");
    EXPECT_FALSE(checked("R0")) << "root stays unticked while an option is";
    EXPECT_EQ(mWindow->selectionCount(), 11);
    click("A0-2");
    click("A0-3");
    EXPECT_TRUE(checked("R0")) << "all options ticked ticks the root";
    EXPECT_EQ(mWindow->selectionCount(), 20);

    // A click on a text or a press dragged off its box ticks nothing.
    NavigatorTree *tree = mWindow->tree();
    const auto textPoint = [&](const char *key) { return tree->visualItemRect(node(key)).center() + QPoint(40, 0); };
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, textPoint("A0-3"));
    EXPECT_EQ(tree->currentItem(), node("A0-3"));
    QTest::mousePress(tree->viewport(), Qt::LeftButton, {}, tree->checkBoxRect(node("A1-2")).center());
    QTest::mouseRelease(tree->viewport(), Qt::LeftButton, {}, textPoint("A1-1"));
    EXPECT_EQ(tree->rememberedItem(), nullptr);
    EXPECT_FALSE(mWindow->hasPendingChanges());
    // The space bar ticks the current node; other keys only move.
    tree->setCurrentItem(node("A1-1"));
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Space);
    QTest::keyClick(tree, Qt::Key_Down);
    EXPECT_FALSE(checked("A1-1"));
    EXPECT_EQ(mWindow->selectionCount(), 10);

    // East alone leaves a single respondent: below the complement minimum
    // of 3, shaded where the user sees it.
    click("A1-1");
    click("A1-2");
    click("A1-2");
    const QColor shade = node("A0-2")->background(0).color();
    const QColor base = mWindow->palette().color(QPalette::Base);
    EXPECT_GT(std::abs(shade.red() - base.red()) + std::abs(shade.green() - base.green())
                  + std::abs(shade.blue() - base.blue()),
              80);
    EXPECT_TRUE(mWindow->showButton()->isEnabled()) << "shaded but not restricted";
    click("A0-1");
    EXPECT_FALSE(mWindow->showButton()->isEnabled()) << "a restricted shaded category blocks Show";
}

// However small the window, the tree shows five rows; the list gives way.
TEST_F(NavigatorWindowTest, TreeKeepsFiveRowsWhenTheWindowShrinks)
{
    open();
    NavigatorTree *tree = mWindow->tree();
    ASSERT_TRUE(mWindow->flexList()->isVisible());
    const int fiveRows = 5 * tree->sizeHintForRow(0);
    const int listBefore = mWindow->flexList()->height();
    mWindow->resize(300, 80); // far below what the content needs
    QApplication::processEvents();
    EXPECT_GE(tree->viewport()->height(), fiveRows);
    EXPECT_LT(mWindow->flexList()->height(), listBefore) << "the list gave way";
    EXPECT_GE(mWindow->minimumSizeHint().height(), tree->minimumHeight());
}

TEST_F(NavigatorWindowTest, ReminderBlinksWhilePendingAndAway)
{
    open();
    mWindow->focusEntered();
    mWindow->focusLeft();
    EXPECT_FALSE(mWindow->reminderTimer().isActive()) << "nothing pending";
    click("A1-1");
    mWindow->focusEntered();
    mWindow->focusLeft();
    EXPECT_TRUE(mWindow->isReminderLit());
    QTest::qWait(900);
    EXPECT_FALSE(mWindow->isReminderLit()) << "a tick toggles the colour";
    mWindow->focusEntered();
    EXPECT_FALSE(mWindow->reminderTimer().isActive() || mWindow->isReminderLit());
}

} // namespace

// The flex total leaving out South (8 respondents): at a complement minimum
// of 8 it is accepted, at 9 the flex list is shaded and Show refuses it
// with a message, leaving the flex total as it was.
TEST_F(NavigatorWindowTest, AFlexTotalLeavingOutTooFewIsShadedAndRefused)
{
    for (const qint32 minimum : {8, 9}) {
        SCOPED_TRACE(minimum);
        mRefusals.clear();
        open({.flexOnUnit = true, .minimumComplementSelection = minimum});
        ASSERT_FALSE(mWindow->isFlexTotalShaded());
        QListWidget *list = mWindow->flexList();
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->data(Qt::UserRole).toInt() == 2) // South
                list->item(i)->setSelected(false);
        const bool refused = minimum == 9;
        EXPECT_EQ(mWindow->isFlexTotalShaded(), refused);
        mWindow->applySelection();
        EXPECT_EQ(mRefusals.size(), refused ? 1 : 0);
        EXPECT_EQ(mRefusals.value(0), refused ? flexTotalBlockedMessage(false) : QString());
        EXPECT_EQ(mFlex.rowCount(), refused ? 20 : 12);
    }
}
