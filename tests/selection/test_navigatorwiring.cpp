// SPDX-License-Identifier: GPL-3.0-or-later
// The detail window's rows, and the navigator and the detail window inside
// the main window: they come and go with the document, the View menu and the
// close box, and Show builds or refuses through the main window.
#include "engine/indexes/columnindex.h"
#include "gui/selection/detailwindow.h"
#include "gui/selection/navigatortree.h"
#include "gui/selection/navigatorwindow.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "texts/statusline.h"

#include "surveys.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;

namespace {

std::vector<int> shownRows(const DetailWindow &w)
{
    std::vector<int> rows;
    for (int r = 0; r < DetailWindow::RowCount; ++r) {
        const auto *label = w.findChild<QLabel *>(QStringLiteral("lblIndexLabel%1").arg(r));
        const auto *value = w.findChild<QLabel *>(QStringLiteral("lblIndex%1").arg(r));
        const auto *total = w.findChild<QLabel *>(QStringLiteral("lblIndexTotal%1").arg(r));
        // The value cells follow the label, whatever state they had before.
        EXPECT_EQ(label->isVisibleTo(&w), value->isVisibleTo(&w)) << "row " << r;
        EXPECT_EQ(label->isVisibleTo(&w), total->isVisibleTo(&w)) << "row " << r;
        if (label->isVisibleTo(&w))
            rows.push_back(r);
    }
    return rows;
}

TEST(DetailWindow, RowsFollowTheDocumentsLabels)
{
    DetailWindow w(false);
    auto plain = test::navigatorSurvey({.subBlockLabel = false});
    w.setIndexValue(1, false, QStringLiteral("stale"));
    w.setIndexText(2, QStringLiteral("stale"));
    w.setUpForDocument(*plain);
    EXPECT_EQ(shownRows(w), (std::vector<int>{0, 1, 3, 4}));
    EXPECT_TRUE(w.indexValue(1, false).isEmpty()) << "values of the previous document are cleared";
    EXPECT_EQ(w.headerValue(1), QString()) << "no sub-block line without a sub-block label";

    w.setUpForDocument(*test::navigatorSurvey({.subBlockLabel = true}));
    EXPECT_EQ(shownRows(w), (std::vector<int>{0, 1, 2, 3, 4}));
    // Without indexes there is nothing to show, whatever labels the file has.
    w.setUpForDocument(*test::navigatorSurvey({.pointsScale = 0}));
    EXPECT_TRUE(shownRows(w).empty());
    // A blank is a label.
    w.setIndexText(0, QStringLiteral(" "));
    w.updateLayout();
    EXPECT_EQ(shownRows(w), (std::vector<int>{0}));
}

// The lines kept for a hovered cell's headers say how to fill them while
// they are blank, in the lines themselves: the window keeps its size and
// nothing empty stands above the values.
TEST(DetailWindow, BlankHeaderLinesCarryAHint)
{
    for (const bool subBlocks : {false, true}) {
        SCOPED_TRACE(subBlocks ? "with sub-blocks" : "without sub-blocks");
        DetailWindow w(true);
        w.setUpForDocument(*test::navigatorSurvey({.subBlockLabel = subBlocks}));
        w.show();
        const auto *hint = w.findChild<QLabel *>(QStringLiteral("lblHint"));
        ASSERT_NE(hint, nullptr);
        EXPECT_TRUE(w.isHintShown());
        EXPECT_TRUE(hint->text().startsWith(QStringLiteral("Peka på ett svar"))) << hint->text().toStdString();
        const QSize blank = w.contentSize();
        const QRect hintArea = hint->geometry();
        const auto *columnHeader = w.findChild<QLabel *>(QStringLiteral("lblIndexHeader"));
        EXPECT_LE(hintArea.bottom(), columnHeader->geometry().top()) << "the hint stays in the kept lines";
        EXPECT_GE(hintArea.height(), 2 * hint->fontMetrics().height()) << "room for the hint to wrap";

        // Each written line alone takes the hint away, and the size stays.
        for (int line = 0; line <= DetailWindow::HeaderCount; ++line) {
            if (line == 1 && !subBlocks)
                continue; // no line is kept for a sub-block the survey lacks
            SCOPED_TRACE(line);
            const QString written = QStringLiteral("Ledarskap");
            if (line < DetailWindow::HeaderCount)
                w.setHeaderValue(line, written);
            else
                w.setTextValue(written);
            w.updateLayout();
            EXPECT_FALSE(w.isHintShown());
            EXPECT_EQ(w.contentSize(), blank);
            if (line < DetailWindow::HeaderCount)
                w.setHeaderValue(line, QString());
            else
                w.setTextValue(QString());
            w.updateLayout();
            EXPECT_TRUE(w.isHintShown());
        }
        // No rows, nothing to point at: no hint.
        w.setUpForDocument(*test::navigatorSurvey({.pointsScale = 0}));
        EXPECT_FALSE(w.isHintShown());
    }
}

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
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(test::navigatorSurveyBytes(o)) > 0);
        file.close();
        ASSERT_EQ(mWindow->loadDocument(path, false), OpenResult::Ok);
        ASSERT_TRUE(mWindow->navigator() && mWindow->detailWindow());
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
    open();
    NavigatorWindow *nav = mWindow->navigator();
    EXPECT_TRUE(nav->isVisible() && m.mnuVNavigator->isChecked() && m.mnuVDetailInfo->isChecked());
    const Document *doc = mWindow->document();
    EXPECT_EQ(mWindow->detailWindow()->indexValue(4, true),
              formatIndex(doc->properties.totalIndex, doc->properties.indexDecimals, QLocale()));

    // The close box hides and unchecks; the menu brings the window back with
    // its edits still pending.
    tick("A1-1");
    nav->close();
    EXPECT_FALSE(nav->isVisible() || m.mnuVNavigator->isChecked());
    ASSERT_EQ(mWindow->navigator(), nav) << "hidden, not closed";
    m.mnuVNavigator->trigger();
    EXPECT_TRUE(nav->isVisible() && nav->hasPendingChanges());

    mWindow->closeDocument();
    EXPECT_EQ(mWindow->navigator(), nullptr);
    EXPECT_EQ(mWindow->detailWindow(), nullptr);
    EXPECT_FALSE(m.mnuVNavigator->isChecked() || m.mnuVNavigator->isEnabled());
    // Where the windows stood is kept for the next document.
    for (const char *key : {"Windows\\Navigator", "Windows\\DetailInfo"})
        EXPECT_EQ(mStore->readDword(QString::fromLatin1(key), QStringLiteral("Dock Area")),
                  std::optional<qint32>(Qt::RightDockWidgetArea))
            << key;
}

TEST_F(NavigatorWiringTest, ShowBuildsOrRefusesThroughTheMainWindow)
{
    open({.pointsScale = 100}); // two decimals
    NavigatorWindow *nav = mWindow->navigator();
    // Boss out of the flex total: the detail window shows the narrowed total.
    nav->flexList()->item(1)->setSelected(false);
    nav->applySelection();
    EXPECT_EQ(mWindow->session().flexTotal().rowCount(), 10);
    // Staff are the even rows; every third of them answered Good: 4 of 10.
    EXPECT_NEAR(mWindow->session().flexTotal().totalIndex(), 0.4, 1e-9);
    EXPECT_EQ(mWindow->detailWindow()->indexValue(4, true), QLocale().toString(0.4, 'f', 2));

    tick("A1-1"); // Boss only
    nav->applySelection();
    EXPECT_TRUE(mMessages.isEmpty());
    EXPECT_EQ(mWindow->statusPanel(2)->text(), QStringLiteral(" 10"));
    EXPECT_EQ(mWindow->statusPanel(3)->text(), QStringLiteral(" Role Boss"));
    // Only the Boss without a unit is left: below the minimum graph
    // selection, so the old overview stays.
    tick("A0-1");
    tick("A0-2");
    nav->applySelection();
    EXPECT_EQ(mMessages, QStringList{QStringLiteral("Too few respondents for this selection.")});
    EXPECT_EQ(mWindow->statusPanel(2)->text(), QStringLiteral(" 10"));
    EXPECT_FALSE(nav->hasPendingChanges());
}

} // namespace
