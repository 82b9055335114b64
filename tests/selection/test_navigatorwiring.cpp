// SPDX-License-Identifier: GPL-3.0-or-later
// The navigator and the detail window inside the main window: they come and
// go with the document, the View menu and the close box, and Show builds or
// refuses through the main window.
#include "gui/shell/mainwindow.h"
#include "texts/statusline.h"
#include "engine/document/document.h"
#include "engine/indexes/columnindex.h"
#include "gui/selection/detailwindow.h"
#include "gui/selection/navigatortree.h"
#include "gui/selection/navigatorwindow.h"

#include "surveys.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;

namespace {

class NavigatorWiringTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SettingsLocation l;
        l.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        l.policyFile = mDir.filePath(QStringLiteral("policy.ini"));
        mStore = std::make_unique<SettingsStore>(l);
        mWindow = std::make_unique<MainWindow>(*mStore, false, MainWindowEnvironment{});
        mWindow->setMessageHandler(
            [this](QMessageBox::Icon, const QString &, const QString &text) { mMessages << text; });
        mWindow->show();
    }

    void open(const test::NavigatorSurveyOptions &o = {})
    {
        const QString path = mDir.filePath(QStringLiteral("survey.kel"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(test::navigatorSurveyBytes(o));
        file.close();
        ASSERT_EQ(mWindow->loadDocument(path, false), QString());
        ASSERT_TRUE(mWindow->navigator());
        ASSERT_TRUE(mWindow->detailWindow());
    }

    // The same path a mouse click on the node's check box takes.
    void tick(const char *key)
    {
        NavigatorTree *tree = mWindow->navigator()->tree();
        QTreeWidgetItem *item = tree->itemByKey(QString::fromLatin1(key));
        ASSERT_TRUE(item) << key;
        item->setCheckState(0, item->checkState(0) == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        emit tree->checkClicked(item);
    }

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    std::unique_ptr<MainWindow> mWindow;
    QStringList mMessages;
};

TEST_F(NavigatorWiringTest, WindowsFollowTheDocumentTheMenuAndTheCloseBox)
{
    const MainMenus &m = mWindow->menus();
    EXPECT_EQ(mWindow->navigator(), nullptr);
    open();
    NavigatorWindow *nav = mWindow->navigator();
    EXPECT_TRUE(nav->isVisible());
    EXPECT_TRUE(m.mnuVNavigator->isChecked() && m.mnuVNavigator->isEnabled());
    EXPECT_TRUE(m.mnuVDetailInfo->isChecked());
    EXPECT_EQ(mWindow->detailWindow()->indexText(4), QStringLiteral("All questions"));
    const Document *doc = mWindow->document();
    EXPECT_EQ(mWindow->detailWindow()->indexValue(4, true),
              formatIndex(doc->properties.totalIndex, doc->properties.indexDecimals, QLocale()));

    // The close box hides and unchecks; the menu brings the window back with
    // its edits still pending.
    tick("A1-1");
    nav->close();
    EXPECT_FALSE(nav->isVisible());
    EXPECT_FALSE(m.mnuVNavigator->isChecked());
    ASSERT_EQ(mWindow->navigator(), nav) << "hidden, not closed";
    m.mnuVNavigator->trigger();
    EXPECT_TRUE(nav->isVisible());
    EXPECT_TRUE(m.mnuVNavigator->isChecked());
    EXPECT_TRUE(nav->hasPendingChanges());
    EXPECT_FALSE(nav->isSelected(1, 1));
    m.mnuVNavigator->trigger();
    EXPECT_FALSE(nav->isVisible());

    mWindow->detailWindow()->close();
    EXPECT_FALSE(m.mnuVDetailInfo->isChecked());
    m.mnuVDetailInfo->trigger();
    EXPECT_TRUE(mWindow->detailWindow()->isVisible());

    mWindow->closeDocument();
    EXPECT_EQ(mWindow->navigator(), nullptr);
    EXPECT_EQ(mWindow->detailWindow(), nullptr);
    EXPECT_FALSE(m.mnuVNavigator->isChecked() || m.mnuVNavigator->isEnabled());
    EXPECT_FALSE(m.mnuVDetailInfo->isChecked());

    // Where the windows stood is kept for the next document.
    for (const char *key : {"Windows\\Navigator", "Windows\\DetailInfo"}) {
        EXPECT_TRUE(mStore->readDword(QString::fromLatin1(key), QStringLiteral("WWidth"))) << key;
        EXPECT_EQ(mStore->readDword(QString::fromLatin1(key), QStringLiteral("Dock Area")),
                  std::optional<qint32>(Qt::RightDockWidgetArea))
            << key;
    }
    EXPECT_TRUE(mStore->readDword(QStringLiteral("Windows\\Navigator"), QStringLiteral("Flex Total Height")));
}

TEST_F(NavigatorWiringTest, RefusedShowLeavesTheOldOverview)
{
    open();
    NavigatorWindow *nav = mWindow->navigator();
    tick("A1-1"); // Boss only
    nav->applySelection();
    EXPECT_TRUE(mMessages.isEmpty());
    EXPECT_EQ(mWindow->statusPanel(2)->text(), QStringLiteral(" 10"));
    EXPECT_EQ(mWindow->statusPanel(3)->text(), QStringLiteral(" Role Boss"));
    EXPECT_EQ(mWindow->statusLine().text(), QStringLiteral("New overview built!"));

    // Only the Boss without a unit is left: below the minimum graph selection.
    tick("A0-1");
    tick("A0-2");
    EXPECT_EQ(nav->selectionCount(), 1);
    nav->applySelection();
    ASSERT_EQ(mMessages.size(), 1);
    EXPECT_EQ(mMessages.at(0), QStringLiteral("Too few respondents for this selection."));
    EXPECT_EQ(mWindow->statusPanel(2)->text(), QStringLiteral(" 10"));
    EXPECT_EQ(mWindow->statusPanel(3)->text(), QStringLiteral(" Role Boss"));
    EXPECT_TRUE(mWindow->statusLine().text().isEmpty());
    EXPECT_FALSE(nav->hasPendingChanges());
}

TEST_F(NavigatorWiringTest, NarrowedFlexTotalReachesTheDetailWindow)
{
    open({.pointsScale = 100}); // two decimals
    EXPECT_NEAR(mWindow->document()->properties.totalIndex, 0.35, 1e-9);
    NavigatorWindow *nav = mWindow->navigator();
    const Document *doc = mWindow->document();
    const QString before = mWindow->detailWindow()->indexValue(4, true);
    nav->flexList()->item(1)->setSelected(false); // Boss out of the total
    nav->applySelection();
    EXPECT_EQ(mWindow->flexTotal().text(), QStringLiteral("Role Staff"));
    EXPECT_EQ(mWindow->flexTotal().rowCount(), 10);
    // Staff are the even rows; every third of them answered Good: 4 of 10.
    EXPECT_NEAR(doc->properties.flexTotalIndex, 0.4, 1e-9);
    const QString after = mWindow->detailWindow()->indexValue(4, true);
    EXPECT_NE(after, before);
    EXPECT_EQ(after, QLocale().toString(0.4, 'f', 2));
}

} // namespace
