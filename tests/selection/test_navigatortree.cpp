// SPDX-License-Identifier: GPL-3.0-or-later
// The category tree reports each user tick exactly once, however the mouse
// and the tree's own notification interleave, and never reports changes the
// program makes.
#include "gui/selection/navigatortree.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;

namespace {

class NavigatorTreeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (int c = 0; c < 2; ++c) {
            auto *root = new QTreeWidgetItem(&mTree, {QStringLiteral("Category %1").arg(c)});
            root->setData(0, NavigatorTree::KeyRole, QStringLiteral("R%1").arg(c));
            root->setFlags(root->flags() | Qt::ItemIsUserCheckable);
            root->setCheckState(0, Qt::Checked);
            for (int o = 1; o < 4; ++o) {
                auto *node = new QTreeWidgetItem(root, {QStringLiteral("Option %1").arg(o)});
                node->setData(0, NavigatorTree::KeyRole, QStringLiteral("A%1-%2").arg(c).arg(o));
                node->setFlags(node->flags() | Qt::ItemIsUserCheckable);
                node->setCheckState(0, Qt::Checked);
            }
        }
        mTree.expandAll();
        mTree.resize(300, 400);
        mTree.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&mTree));
    }

    QPoint boxCentre(const QString &key) const { return mTree.checkBoxRect(mTree.itemByKey(key)).center(); }
    QPoint textPoint(const QString &key) const
    {
        return mTree.visualItemRect(mTree.itemByKey(key)).center() + QPoint(40, 0);
    }

    NavigatorTree mTree;
};

TEST_F(NavigatorTreeTest, ClickOnCheckBoxIsReportedOnce)
{
    QSignalSpy spy(&mTree, &NavigatorTree::checkClicked);
    QTreeWidgetItem *item = mTree.itemByKey(QStringLiteral("A0-2"));
    ASSERT_TRUE(item);
    QTest::mouseClick(mTree.viewport(), Qt::LeftButton, {}, boxCentre(QStringLiteral("A0-2")));
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).value<QTreeWidgetItem *>(), item);
    EXPECT_EQ(item->checkState(0), Qt::Unchecked);
    EXPECT_EQ(mTree.rememberedItem(), nullptr);

    QTest::mouseClick(mTree.viewport(), Qt::LeftButton, {}, boxCentre(QStringLiteral("A0-2")));
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(item->checkState(0), Qt::Checked);
}

TEST_F(NavigatorTreeTest, DoubleClickOnCheckBoxReportsEveryToggle)
{
    QSignalSpy spy(&mTree, &NavigatorTree::checkClicked);
    QTreeWidgetItem *item = mTree.itemByKey(QStringLiteral("A1-1"));
    const QPoint p = boxCentre(QStringLiteral("A1-1"));
    QTest::mouseClick(mTree.viewport(), Qt::LeftButton, {}, p);
    QTest::mouseDClick(mTree.viewport(), Qt::LeftButton, {}, p);
    // Whatever the tree made of the clicks, each change of the box was
    // reported and the last report carries the box's final state.
    const int toggles = spy.count();
    ASSERT_GE(toggles, 1);
    EXPECT_EQ(item->checkState(0), toggles % 2 == 1 ? Qt::Unchecked : Qt::Checked);
}

TEST_F(NavigatorTreeTest, ChangesNotMadeByTheUserAreNotReported)
{
    QSignalSpy spy(&mTree, &NavigatorTree::checkClicked);
    mTree.itemByKey(QStringLiteral("A0-1"))->setCheckState(0, Qt::Unchecked);
    mTree.itemByKey(QStringLiteral("R1"))->setCheckState(0, Qt::Unchecked);
    // A click on the text selects the node but leaves its box alone.
    QTest::mouseClick(mTree.viewport(), Qt::LeftButton, {}, textPoint(QStringLiteral("A0-3")));
    EXPECT_EQ(mTree.currentItem(), mTree.itemByKey(QStringLiteral("A0-3")));
    // A press on a box dragged off it before the release toggles nothing.
    QTest::mousePress(mTree.viewport(), Qt::LeftButton, {}, boxCentre(QStringLiteral("A1-2")));
    QTest::mouseRelease(mTree.viewport(), Qt::LeftButton, {}, textPoint(QStringLiteral("A1-3")));
    EXPECT_EQ(mTree.itemByKey(QStringLiteral("A1-2"))->checkState(0), Qt::Checked);
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(mTree.rememberedItem(), nullptr);
}

TEST_F(NavigatorTreeTest, SpaceBarTicksTheCurrentNode)
{
    QSignalSpy spy(&mTree, &NavigatorTree::checkClicked);
    QTreeWidgetItem *item = mTree.itemByKey(QStringLiteral("R0"));
    mTree.setCurrentItem(item);
    mTree.setFocus();
    QTest::keyClick(&mTree, Qt::Key_Space);
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).value<QTreeWidgetItem *>(), item);
    EXPECT_EQ(item->checkState(0), Qt::Unchecked);
    // Other keys only move.
    QTest::keyClick(&mTree, Qt::Key_Down);
    EXPECT_EQ(spy.count(), 1);
}

} // namespace
