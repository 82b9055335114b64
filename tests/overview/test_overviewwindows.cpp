// SPDX-License-Identifier: GPL-3.0-or-later
// Mini-overviews, copied from a main window on a document written by the
// test writer and opened through the reader.
#include "engine/selection/counting.h"
#include "gui/overview/minioverviewwindow.h"
#include "gui/overview/sheetview.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "gui/overview/overviewcommands.h"
#include "kelwriter.h"
#include "texts/statusline.h"

#include <QAction>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

// The whole sheet a view shows, drawn afresh from what the view keeps: the
// view itself draws only the parts in sight.
QImage wholeSheet(const SheetView &view)
{
    SheetTextOffsets offsets;
    return renderSheetImage(view.input(), offsets);
}

// `rows` respondents answering `columns` two-alternative questions.
SurveyBuilder survey(qint32 rows, qint32 columns)
{
    SurveyBuilder b(rows);
    for (qint32 q = 0; q < columns; ++q)
        b.addQuestion({.code = QStringLiteral("Q%1").arg(q + 1),
                       .heading = QStringLiteral("Heading %1").arg(q + 1),
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

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    QStringList mMessages;
};

} // namespace

TEST_F(OverviewWindowsTest, MiniOverviewsComeFromTenSlots)
{
    auto w = open(survey(300, 60));
    ASSERT_TRUE(w->menus().mnuECopyToMiniOverview->isEnabled());

    QList<MiniOverviewWindow *> windows;
    for (int i = 0; i < 10; ++i) {
        w->menus().mnuECopyToMiniOverview->trigger();
        auto *mini = qobject_cast<MiniOverviewWindow *>(
            w->session().windowSlots(SlotTable::MiniOverviews)[std::size_t(i)].window);
        ASSERT_NE(mini, nullptr) << i;
        EXPECT_TRUE(!windows.contains(mini) && mini->isVisible());
        windows << mini;
        QTest::qWait(2); // distinct hand-out times
    }
    // 8-pixel cells without text: 60 columns are 480 pixels; the caption
    // tells the selection apart.
    const MiniOverviewWindow &first = *windows.first();
    EXPECT_EQ(first.sheetGeometry().width(), 480);
    EXPECT_TRUE(first.windowTitle().endsWith(w->sheetView()->input().selectionText));

    // Which slot a copy takes is the pool's rule; a window the user closed
    // lets go of its picture.
    windows[6]->close();
    w->menus().mnuECopyToMiniOverview->trigger();
    EXPECT_TRUE(windows[6]->isVisible() && windows[6]->hasData());

    // Its picture is its own: a new overview leaves it as it was.
    const QImage before = wholeSheet(*windows[6]->view());
    ASSERT_TRUE(w->showSelection(fullSelection(*w->document())).done());
    EXPECT_EQ(wholeSheet(*windows[6]->view()), before);

    // Closing the document closes them all.
    w->closeDocument();
    for (MiniOverviewWindow *mini : w->findChildren<MiniOverviewWindow *>())
        EXPECT_FALSE(mini->isVisible());
}
