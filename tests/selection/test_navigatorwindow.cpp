// SPDX-License-Identifier: GPL-3.0-or-later
// The navigator window on a small survey: the tree it builds, what a tick
// does to the rest of the tree, the count, the shading and the Show button,
// Show through the engine, the pending state and the reminder.
#include "gui/selection/navigatorwindow.h"

#include "engine/settings/settingsstore.h"
#include "texts/statusline.h"
#include "engine/selection/flextotal.h"
#include "engine/overview/subsheet.h"
#include "texts/messages.h"
#include "gui/selection/navigatortree.h"

#include "surveys.h"

#include <QCheckBox>
#include <cstdlib>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

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
        mFlex.reset(*mDoc);
        NavigatorActions actions;
        // The main window's Show: the engine's, on the navigator's edits.
        actions.show = [this](SelectionModel &model) {
            const SubSheet sheet = showSelection(*mDoc, model, mFlex, RowOrderOriginal, mRandom);
            mShown.push_back(model.appliedSelection());
            return showRefusalMessage(*mDoc, sheet.outcome, false);
        };
        actions.showRefusal = [this](const QString &text) { mRefusals << text; };
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
    void clickFlexItem(int row)
    {
        QListWidget *list = mWindow->flexList();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
    }
    QString countText() const { return mWindow->totalLabel()->text(); }

    StatusLine mStatus{false, StatusLine::DefaultClearInterval};
    UserOptions mOptions;
    std::unique_ptr<Document> mDoc;
    std::unique_ptr<NavigatorWindow> mWindow;
    FlexTotal mFlex;
    RowRandom mRandom{1};
    std::vector<SelectionMatrix> mShown;
    QStringList mRefusals;
};

TEST_F(NavigatorWindowTest, TreeAndListComeFromTheDocument)
{
    for (bool excluded : {true, false}) {
        open({.firstAlternativeIsNoAnswer = excluded});
        NavigatorTree *tree = mWindow->tree();
        ASSERT_EQ(tree->topLevelItemCount(), 2);
        EXPECT_EQ(node("R0")->childCount(), excluded ? 3 : 4);
        EXPECT_EQ(node("A0-0") != nullptr, !excluded);
        EXPECT_EQ(node("R1")->child(0)->text(0), excluded ? QStringLiteral("Staff") : QStringLiteral("No answer"));
        EXPECT_TRUE(checked("R0") && checked("A1-2"));
        ASSERT_EQ(mWindow->flexList()->count(), excluded ? 2 : 3);
        EXPECT_EQ(mWindow->flexList()->item(0)->data(Qt::UserRole).toInt(), excluded ? 1 : 0);
        EXPECT_EQ(mWindow->flexList()->selectedItems().size(), mWindow->flexList()->count());
        EXPECT_FALSE(mWindow->flexList()->isHidden());
        EXPECT_EQ(countText(), QStringLiteral("Items in selection: 20"));
    }
    open({.flexCategory = false});
    EXPECT_TRUE(mWindow->flexList()->isHidden());
    EXPECT_TRUE(mWindow->flexCheckBox()->isHidden());
}

TEST_F(NavigatorWindowTest, RootAndOptionTicksPropagate)
{
    open();
    click("R0");
    EXPECT_FALSE(checked("A0-1") || checked("A0-2") || checked("A0-3"));
    for (int o = 1; o < 4; ++o)
        EXPECT_FALSE(mWindow->isSelected(0, o)) << o;
    EXPECT_TRUE(mWindow->isSelected(0, 0)) << "the excluded first alternative stays ticked";
    // Only the respondent without an answer on Unit is left.
    EXPECT_EQ(mWindow->selectionCount(), 1);
    EXPECT_EQ(countText(), QStringLiteral("Items in selection: 1"));

    click("A0-1");
    EXPECT_FALSE(checked("R0")) << "root stays unticked while an option is";
    EXPECT_TRUE(mWindow->isSelected(0, 1));
    EXPECT_EQ(mWindow->selectionCount(), 11);
    click("A0-2");
    click("A0-3");
    EXPECT_TRUE(checked("R0")) << "all options ticked ticks the root";
    EXPECT_EQ(mWindow->selectionCount(), 20);
    click("A0-2");
    EXPECT_FALSE(checked("R0"));
    EXPECT_FALSE(mWindow->isSelected(0, 2));
    EXPECT_EQ(mWindow->selectionCount(), 12);
    // A second category ANDs with the first.
    click("A1-1");
    EXPECT_EQ(mWindow->selectionCount(), 6) << "North's five Bosses and row 19";
}

TEST_F(NavigatorWindowTest, ShadingAndBlockingFollowTheComplementMinimum)
{
    open();
    // East has a single respondent: below the complement minimum of 3.
    click("A1-2");
    click("A1-2");
    EXPECT_TRUE(mWindow->isCategoryShaded(0));
    EXPECT_FALSE(mWindow->isCategoryShaded(1)) << "Role has no complement-checked option";
    // The shading must be seen on the tree's background, and says why.
    const QColor shade = node("A0-2")->background(0).color();
    const QColor base = mWindow->palette().color(QPalette::Base);
    EXPECT_GT(std::abs(shade.red() - base.red()) + std::abs(shade.green() - base.green())
                  + std::abs(shade.blue() - base.blue()),
              80);
    EXPECT_FALSE(node("A0-2")->toolTip(0).isEmpty());
    EXPECT_TRUE(mWindow->showButton()->isEnabled()) << "shaded but not restricted";
    EXPECT_TRUE(mWindow->showButton()->toolTip().isEmpty());

    click("A0-1");
    EXPECT_EQ(mWindow->selectionCount(), 10);
    EXPECT_FALSE(mWindow->showButton()->isEnabled()) << "a restricted shaded category blocks Show";
    EXPECT_TRUE(mWindow->showButton()->toolTip().startsWith(QStringLiteral("A shaded category")));
    click("A0-1");
    EXPECT_TRUE(mWindow->showButton()->isEnabled());
}

TEST_F(NavigatorWindowTest, FlexListNamesTheFlexTotal)
{
    // The list's edits, handed on by Show, name the flex total.
    open({.firstAlternativeIsNoAnswer = false, .flexOnUnit = true});
    struct Case {
        std::vector<int> deselect; ///< list rows to click (toggle) before Show
        bool basedOnCurrent;
        const char *text;
    };
    // List rows: 0 No answer, 1 North, 2 South, 3 East.
    const Case cases[] = {
        {{0}, false, "Unit N, S & E"},
        {{3, 2}, true, "Current selection but Unit N"},
        {{0, 2, 3}, true, "Everyone"}, // every option again: the total, even based on the selection
    };
    for (const Case &c : cases) {
        for (int row : c.deselect)
            clickFlexItem(row);
        if (mWindow->flexCheckBox()->isChecked() != c.basedOnCurrent)
            QTest::mouseClick(mWindow->flexCheckBox(), Qt::LeftButton);
        mWindow->applySelection();
        EXPECT_EQ(mFlex.text(), QString::fromUtf8(c.text));
    }
}

TEST_F(NavigatorWindowTest, PendingStateTracksEveryKindOfEdit)
{
    open();
    EXPECT_FALSE(mWindow->hasPendingChanges());
    click("A1-1");
    EXPECT_TRUE(mWindow->hasPendingChanges());
    click("A1-1");
    EXPECT_FALSE(mWindow->hasPendingChanges()) << "back to the applied selection";
    clickFlexItem(0);
    EXPECT_TRUE(mWindow->hasPendingChanges());
    clickFlexItem(0);
    EXPECT_FALSE(mWindow->hasPendingChanges());
    QTest::mouseClick(mWindow->flexCheckBox(), Qt::LeftButton);
    EXPECT_TRUE(mWindow->hasPendingChanges());
    QTest::mouseClick(mWindow->flexCheckBox(), Qt::LeftButton);
    EXPECT_FALSE(mWindow->hasPendingChanges());
}

TEST_F(NavigatorWindowTest, ReminderBlinksWhilePendingAndAway)
{
    open();
    mWindow->focusEntered();
    mWindow->focusLeft();
    EXPECT_FALSE(mWindow->reminderTimer().isActive()) << "nothing pending";

    click("A1-1");
    mOptions.navigatorRemindToClickShow = false;
    mWindow->focusEntered();
    mWindow->focusLeft();
    EXPECT_FALSE(mWindow->reminderTimer().isActive()) << "the user turned the reminder off";

    mOptions.navigatorRemindToClickShow = true;
    mWindow->focusEntered();
    mWindow->focusLeft();
    EXPECT_TRUE(mWindow->reminderTimer().isActive());
    EXPECT_EQ(mWindow->reminderTimer().interval(), 800);
    EXPECT_TRUE(mWindow->isReminderLit());
    EXPECT_EQ(mWindow->showButton()->palette().color(QPalette::Button), mWindow->palette().color(QPalette::Highlight));
    QTest::qWait(900);
    EXPECT_FALSE(mWindow->isReminderLit()) << "a tick toggles the colour";

    mWindow->focusEntered();
    EXPECT_FALSE(mWindow->reminderTimer().isActive());
    EXPECT_FALSE(mWindow->isReminderLit());
    EXPECT_EQ(mWindow->showButton()->palette().color(QPalette::Button), mWindow->palette().color(QPalette::Button));
}

TEST_F(NavigatorWindowTest, FlexHeightIsKeptOnlyWhenLargerThanDesigned)
{
    QTemporaryDir dir;
    SettingsLocation location;
    location.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(location);
    open();
    const int designed = mWindow->designedFlexHeight();
    const int twipsPerPixel = qRound(1.0 / mWindow->pixelsPerTwip());
    store.writeDword(QStringLiteral("Windows\\Navigator"), QStringLiteral("Flex Total Height"),
                     (designed / 2) * twipsPerPixel);
    mWindow->loadSettings(store);
    QApplication::processEvents();
    EXPECT_GE(mWindow->flexHeight(), designed - 2);

    store.writeDword(QStringLiteral("Windows\\Navigator"), QStringLiteral("Flex Total Height"),
                     qint32((designed + 40) / mWindow->pixelsPerTwip()));
    mWindow->loadSettings(store);
    QApplication::processEvents();
    EXPECT_NEAR(mWindow->flexHeight(), designed + 40, 2);

    mWindow->saveSettings(store);
    const auto stored = store.readDword(QStringLiteral("Windows\\Navigator"), QStringLiteral("Flex Total Height"));
    ASSERT_TRUE(stored);
    EXPECT_NEAR(*stored * mWindow->pixelsPerTwip(), designed + 40, 2);
}

} // namespace
