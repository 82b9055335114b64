// SPDX-License-Identifier: GPL-3.0-or-later
// A keyboard-only walk: the cursor goes to a place of the sheet with the
// arrow keys, the Menu key opens the popup there, and every popup command
// is chosen by its access keys; dialogs it opens are answered with keys.
#include "walksurvey.h"

#include "engine/settings/settingsstore.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/chartwindow.h"
#include "gui/overview/minioverviewwindow.h"
#include "gui/overview/sheetview.h"
#include "gui/overview/textpopup.h"
#include "gui/selection/detailwindow.h"
#include "gui/shell/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace kel;
using namespace kel::test;

namespace {

enum class Place { AnswerCell, CodeLine, BlockLine };
enum class Effect { Comments, BasicGraph, Chart, Clipboard, MiniOverview, WheelDirection, DialogOnly };

struct Step {
    const char *command;
    Place place;
    const char *keys; ///< access keys typed into the popup and its submenus; '\n' is Return
    Effect effect;
    const char *dialog = nullptr; ///< the class of the dialog the command opens
    bool acceptDialog = true;     ///< false: Escape (nothing is written)
};

class KeyboardWalkTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString path = dir.filePath(QStringLiteral("walk.kel"));
        ASSERT_TRUE(walkSurvey().build().writeFile(path));
        store = std::make_unique<SettingsStore>(SettingsLocation{.file = dir.filePath(QStringLiteral("k.ini"))});
        // A mouse wheel: its popup items are offered. Printing is never
        // offered in the popup on this platform.
        window = std::make_unique<MainWindow>(*store, false, MainWindowEnvironment{.mouseWheel = true});
        window->setMessageHandler(
            [this](QMessageBox::Icon, const QString &, const QString &text) { messages << text; });
        ASSERT_EQ(window->loadDocument(path, false), OpenResult::Ok);
        window->show();
        sheet()->setFocus();
    }

    SheetView *sheet() const { return window->sheetView(); }

    void goTo(Place place)
    {
        QTest::keyClick(sheet(), Qt::Key_Home, Qt::ControlModifier);
        if (place != Place::AnswerCell)
            QTest::keyClick(sheet(), Qt::Key_Up);
        if (place == Place::BlockLine)
            QTest::keyClick(sheet(), Qt::Key_Up);
    }

    template<typename T>
    int visible() const
    {
        int n = 0;
        for (T *w : window->findChildren<T *>())
            n += w->isVisible() ? 1 : 0;
        return n;
    }

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<MainWindow> window;
    QStringList messages;
};

} // namespace

TEST_F(KeyboardWalkTest, EveryPopupCommandOpensFromTheKeyboard)
{
    const Step steps[] = {
        {"Show Row's Comments", Place::AnswerCell, "o", Effect::Comments},
        {"Show Column's Comments", Place::AnswerCell, "l", Effect::Comments},
        {"Show Column's Comments (code line)", Place::CodeLine, "l", Effect::Comments},
        {"Copy this Row's Answers", Place::AnswerCell, "w", Effect::Clipboard},
        {"Show Total Index Graph", Place::AnswerCell, "t", Effect::Chart, "kel::IndexGraphDialog"},
        {"Show Block Index Graph", Place::BlockLine, "b", Effect::Chart, "kel::IndexGraphDialog"},
        {"Show Block Histogram", Place::BlockLine, "h", Effect::BasicGraph},
        {"Show Block Graph", Place::BlockLine, "g", Effect::BasicGraph},
        {"Block Ranking Graph, by ranking", Place::BlockLine, "rr", Effect::Chart},
        {"Block Ranking Graph, by option", Place::BlockLine, "ro", Effect::Chart},
        {"Question Histogram, total", Place::AnswerCell, "ht", Effect::BasicGraph},
        {"Question Histogram, split by a category", Place::AnswerCell, "hs\n", Effect::BasicGraph},
        {"Question Histogram, split by another question", Place::AnswerCell, "ha", Effect::BasicGraph,
         "kel::QuestionSelectDialog"},
        {"Question Graph, total", Place::CodeLine, "gt", Effect::BasicGraph},
        {"Question Graph, split by a category", Place::CodeLine, "gs\n", Effect::BasicGraph},
        {"Question Graph, split by another question", Place::CodeLine, "ga", Effect::BasicGraph,
         "kel::QuestionSelectDialog"},
        {"Question Ranking Graph, by ranking", Place::AnswerCell, "rr", Effect::Chart},
        {"Question Ranking Graph, by option", Place::AnswerCell, "ro", Effect::Chart},
        {"Copy Overview", Place::AnswerCell, "c", Effect::Clipboard},
        {"Copy Headers and Totals", Place::AnswerCell, "n", Effect::Clipboard},
        {"Copy Indexes", Place::AnswerCell, "i", Effect::DialogOnly, "kel::SetupExportIndexes", false},
        {"Save Overview As", Place::AnswerCell, "a", Effect::DialogOnly, "QFileDialog", false},
        {"Copy to Mini-overview", Place::AnswerCell, "m", Effect::MiniOverview},
        {"Copy Overview as Data", Place::AnswerCell, "d", Effect::Clipboard},
        {"Mouse Wheel Scrolls Horizontally", Place::AnswerCell, "z", Effect::WheelDirection},
        {"Mouse Wheel Scrolls Vertically", Place::BlockLine, "v", Effect::WheelDirection},
    };
    int clipboardChanges = 0;
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, window.get(),
                     [&clipboardChanges] { ++clipboardChanges; });

    for (const Step &step : steps) {
        SCOPED_TRACE(step.command);
        const int comments = visible<TextPopup>();
        const int graphs = visible<BasicGraphWindow>();
        const int charts = window->findChildren<ChartWindow *>().size();
        const int minis = visible<MiniOverviewWindow>();
        const int clips = clipboardChanges;
        const bool wheel = sheet()->wheelHorizontal();

        // The dialog a command opens is answered from the keyboard too:
        // Return for its default button, Escape to leave it.
        QString dialogSeen;
        QTimer answer;
        answer.setInterval(20);
        QObject::connect(&answer, &QTimer::timeout, [&] {
            QWidget *modal = QApplication::activeModalWidget();
            if (!modal || !dialogSeen.isEmpty())
                return;
            dialogSeen = QString::fromLatin1(modal->metaObject()->className());
            QWidget *target = modal->focusWidget() ? modal->focusWidget() : modal;
            if (step.acceptDialog) {
                // A question to split by: the list starts with none chosen,
                // so the cursor moves to one and Space chooses it.
                QTest::keyClick(target, Qt::Key_Down);
                if (dialogSeen == QLatin1String("kel::QuestionSelectDialog"))
                    QTest::keyClick(target, Qt::Key_Space);
                QTest::keyClick(modal->focusWidget() ? modal->focusWidget() : modal, Qt::Key_Return);
            } else {
                QTest::keyClick(target, Qt::Key_Escape);
            }
            // A dialog the keys could not close fails the step, not the run.
            if (modal->isVisible())
                QMetaObject::invokeMethod(modal, "reject", Qt::QueuedConnection);
        });
        answer.start();

        goTo(step.place);
        QTest::keyClick(sheet(), Qt::Key_Menu);
        ASSERT_EQ(QApplication::activePopupWidget(), window->menus().mnuPopUp);
        for (const char *k = step.keys; *k; ++k) {
            QWidget *menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr) << "a menu closed before key '" << *k << "'";
            if (*k == '\n')
                QTest::keyClick(menu, Qt::Key_Return);
            else
                QTest::keyClick(menu, *k);
        }
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "the command ran and closed the popup";
        if (step.dialog) {
            EXPECT_TRUE(QTest::qWaitFor([&] { return !dialogSeen.isEmpty(); }, 2000));
        }
        answer.stop();
        EXPECT_EQ(dialogSeen, QString::fromLatin1(step.dialog ? step.dialog : ""));
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);

        switch (step.effect) {
        case Effect::Comments: EXPECT_EQ(visible<TextPopup>(), comments + 1); break;
        case Effect::BasicGraph: EXPECT_EQ(visible<BasicGraphWindow>(), graphs + 1); break;
        case Effect::Chart:
            EXPECT_TRUE(
                QTest::qWaitFor([&] { return window->findChildren<ChartWindow *>().size() == charts + 1; }, 2000));
            break;
        case Effect::Clipboard: EXPECT_GT(clipboardChanges, clips); break;
        case Effect::MiniOverview: EXPECT_EQ(visible<MiniOverviewWindow>(), minis + 1); break;
        case Effect::WheelDirection: EXPECT_NE(sheet()->wheelHorizontal(), wheel); break;
        case Effect::DialogOnly: EXPECT_EQ(clipboardChanges, clips) << "left with Escape: nothing done"; break;
        }
        EXPECT_TRUE(messages.isEmpty()) << messages.join(u'\n').toStdString();
        messages.clear();
        // Back to the sheet for the next step, as a user closing the window would.
        window->activateWindow();
        sheet()->setFocus();
    }
}

// A graph window's own popup (copy, print, save, close) opens from the
// keyboard as the sheet's does, for both kinds of graph window.
TEST_F(KeyboardWalkTest, GraphWindowsOpenTheirPopupFromTheKeyboard)
{
    const struct {
        const char *key;
        Qt::Key code;
        Qt::KeyboardModifiers modifiers;
    } keys[] = {{"Menu", Qt::Key_Menu, Qt::NoModifier}, {"Shift+F10", Qt::Key_F10, Qt::ShiftModifier}};

    // "ht": the question histogram, a basic graph; "rr": the ranking graph, a chart.
    for (const char *command : {"ht", "rr"}) {
        goTo(Place::AnswerCell);
        QTest::keyClick(sheet(), Qt::Key_Menu);
        for (const char *k = command; *k; ++k)
            QTest::keyClick(QApplication::activePopupWidget(), *k);
        QWidget *graph = nullptr;
        QMenu *popup = nullptr;
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                for (BasicGraphWindow *w : window->findChildren<BasicGraphWindow *>())
                    if (w->isVisible())
                        graph = w, popup = w->popupMenu();
                for (ChartWindow *w : window->findChildren<ChartWindow *>())
                    if (w->isVisible())
                        graph = w, popup = w->popupMenu();
                return graph != nullptr;
            },
            2000))
            << command;
        for (const auto &key : keys) {
            SCOPED_TRACE(key.key);
            QTest::keyClick(graph, key.code, key.modifiers);
            EXPECT_EQ(QApplication::activePopupWidget(), popup);
            // Pressed again while it is open: still the one popup.
            QTest::keyClick(graph, key.code, key.modifiers);
            EXPECT_EQ(QApplication::activePopupWidget(), popup);
            popup->hide();
        }
        // A modified Menu key is not the popup key.
        QTest::keyClick(graph, Qt::Key_Menu, Qt::ControlModifier);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        graph->close();
        window->activateWindow();
        sheet()->setFocus();
    }
}

TEST_F(KeyboardWalkTest, DetailWindowFollowsTheCursor)
{
    if (!window->detailWindow())
        window->menus().mnuVDetailInfo->trigger();
    ASSERT_TRUE(window->detailWindow());
    goTo(Place::AnswerCell);
    EXPECT_TRUE(window->detailWindow()->headerValue(2).contains(QStringLiteral("Q1")));
    QTest::keyClick(sheet(), Qt::Key_Right);
    EXPECT_TRUE(window->detailWindow()->headerValue(2).contains(QStringLiteral("Q2")))
        << window->detailWindow()->headerValue(2).toStdString();
    QTest::keyClick(sheet(), Qt::Key_Up);
    EXPECT_TRUE(window->detailWindow()->textValue().isEmpty()) << "a header line has no answer";
}

TEST_F(KeyboardWalkTest, EscapeClosesTheHelpWindow)
{
    window->menus().mnuHHelpTopics->trigger();
    QWidget *help = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("frmHelp") && w->isVisible())
            help = w;
    ASSERT_NE(help, nullptr);
    help->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(help));
    // From the page itself, where the focus is while reading.
    QWidget *page = help->findChild<QTextBrowser *>();
    ASSERT_NE(page, nullptr);
    page->setFocus();
    QTest::keyClick(page, Qt::Key_Escape);
    EXPECT_FALSE(help->isVisible());
}
