// SPDX-License-Identifier: GPL-3.0-or-later
// Every dialog and window the program opens, in both languages, looked at
// as a keyboard user meets it: each control's access key works (a label's
// goes to its buddy) and no two controls of one page share a key.
#include "walksurvey.h"

#include "engine/settings/settingsstore.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QMap>
#include <QMenu>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace kel;
using namespace kel::test;

namespace {

// The character after a single '&' ("&&" is a literal ampersand).
QChar accessKey(const QString &text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != QLatin1Char('&'))
            continue;
        if (text[i + 1] == QLatin1Char('&')) {
            ++i;
            continue;
        }
        return text[i + 1].toLower();
    }
    return QChar();
}

// Enter and Escape already reach these two; they need no letter.
bool reachedWithoutLetter(const QAbstractButton *button)
{
    if (const auto *push = qobject_cast<const QPushButton *>(button); push && push->isDefault())
        return true;
    if (button->objectName() == QLatin1String("cmdCancel"))
        return true;
    const auto *box = qobject_cast<const QDialogButtonBox *>(button->parentWidget());
    return box && box->buttonRole(const_cast<QAbstractButton *>(button)) == QDialogButtonBox::RejectRole;
}

QStringList pageProblems(QWidget *top)
{
    QStringList problems;
    QMap<QChar, QString> owners;
    auto claim = [&](QChar key, const QString &text) {
        if (owners.contains(key) && owners[key] != text)
            problems << QStringLiteral("Alt+%1 is both \"%2\" and \"%3\"").arg(key.toUpper(), owners[key], text);
        owners[key] = text;
    };
    for (QWidget *w : top->findChildren<QWidget *>()) {
        if (!w->isVisibleTo(top))
            continue;
        if (auto *button = qobject_cast<QAbstractButton *>(w)) {
            if (button->text().isEmpty() || qobject_cast<QTabBar *>(button->parentWidget()))
                continue;
            const QChar key = accessKey(button->text());
            if (!key.isNull())
                claim(key, button->text());
            else if (!reachedWithoutLetter(button))
                problems << QStringLiteral("no access key: \"%1\"").arg(button->text());
        } else if (auto *label = qobject_cast<QLabel *>(w)) {
            if (label->textFormat() == Qt::RichText || Qt::mightBeRichText(label->text()))
                continue;
            const QChar key = accessKey(label->text());
            if (key.isNull())
                continue;
            if (!label->buddy() || !label->buddy()->isVisibleTo(top))
                problems << QStringLiteral("access key without a control: \"%1\"").arg(label->text());
            else
                claim(key, label->text());
        } else if (auto *group = qobject_cast<QGroupBox *>(w)) {
            if (const QChar key = accessKey(group->title()); !key.isNull())
                claim(key, group->title());
        } else if (auto *bar = qobject_cast<QTabBar *>(w)) {
            for (int i = 0; i < bar->count(); ++i)
                if (const QChar key = accessKey(bar->tabText(i)); !key.isNull())
                    claim(key, bar->tabText(i));
        }
    }
    return problems;
}

// Every page of a tab widget on its own: a hidden page's keys do not fire.
QStringList accessKeyProblems(QWidget *top)
{
    const QList<QTabWidget *> tabs = top->findChildren<QTabWidget *>();
    if (tabs.isEmpty())
        return pageProblems(top);
    QStringList problems;
    for (int i = 0; i < tabs.first()->count(); ++i) {
        tabs.first()->setCurrentIndex(i);
        problems << pageProblems(top);
    }
    problems.removeDuplicates();
    return problems;
}

struct Opening {
    const char *what;
    std::function<void(MainWindow &)> open;
};

class DialogWalkTest : public ::testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        const QString path = dir.filePath(QStringLiteral("walk.kel"));
        ASSERT_TRUE(walkSurvey().build().writeFile(path));
        store = std::make_unique<SettingsStore>(SettingsLocation{.file = dir.filePath(QStringLiteral("k.ini"))});
        window = std::make_unique<MainWindow>(*store, GetParam(),
                                              MainWindowEnvironment{.printerInstalled = true, .mouseWheel = true});
        window->setMessageHandler([](QMessageBox::Icon, const QString &, const QString &) {});
        ASSERT_TRUE(window->loadDocument(path, false).isEmpty());
        window->show();
    }

    // Opens what `open` opens and looks at it: the modal dialog while it
    // runs, or the window it leaves shown.
    QStringList look(const std::function<void(MainWindow &)> &open, QString *seen)
    {
        QStringList problems;
        QTimer poll;
        poll.setInterval(20);
        QObject::connect(&poll, &QTimer::timeout, [&] {
            QWidget *modal = QApplication::activeModalWidget();
            if (!modal || !seen->isEmpty())
                return;
            *seen = QString::fromLatin1(modal->metaObject()->className());
            problems << accessKeyProblems(modal);
            if (auto *dialog = qobject_cast<QDialog *>(modal))
                dialog->reject();
            else
                modal->close();
        });
        poll.start();
        const QList<QWidget *> before = QApplication::topLevelWidgets();
        open(*window);
        poll.stop();
        if (seen->isEmpty()) {
            for (QWidget *w : QApplication::topLevelWidgets()) {
                if (w->isVisible() && !before.contains(w) && !qobject_cast<QMenu *>(w)) {
                    *seen = QString::fromLatin1(w->metaObject()->className());
                    problems << accessKeyProblems(w);
                    w->close();
                }
            }
        }
        return problems;
    }

    void popupAt(int line)
    {
        SheetView *sheet = window->sheetView();
        sheet->setCursorPosition(0, line);
        sheet->requestPopupAtCursor();
        window->menus().mnuPopUp->hide();
    }

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_P(DialogWalkTest, EveryControlHasItsOwnWorkingAccessKey)
{
    const Opening openings[] = {
        {"File > Open", [](MainWindow &w) { w.menus().mnuFOpen->trigger(); }},
        {"File > Save Overview As", [](MainWindow &w) { w.menus().mnuFSaveAs->trigger(); }},
        {"File > Print Format", [](MainWindow &w) { w.menus().mnuFPrintFormat->trigger(); }},
        {"File > Properties", [](MainWindow &w) { w.menus().mnuFProperties->trigger(); }},
        {"Edit > Copy Indexes", [](MainWindow &w) { w.menus().mnuECopyIndexes->trigger(); }},
        {"View > Distribution Graph", [](MainWindow &w) { w.menus().mnuVDistributionGraph->trigger(); }},
        {"View > Total Index Graph", [](MainWindow &w) { w.menus().mnuVTotalGraph1->trigger(); }},
        {"Popup > Block Index Graph",
         [this](MainWindow &w) {
             popupAt(-2);
             w.menus().mnuPShowBlockGraph4->trigger();
         }},
        {"Popup > Split by Another Question",
         [this](MainWindow &w) {
             popupAt(0);
             w.menus().mnuPS1Split->trigger();
         }},
        {"Popup > Row's Comments",
         [this](MainWindow &w) {
             popupAt(0);
             w.menus().mnuPShowRowsComments->trigger();
         }},
        {"Tools > Edit Blocks", [](MainWindow &w) { w.menus().mnuTEditBlocks->trigger(); }},
        {"Tools > Options", [](MainWindow &w) { w.menus().mnuTOptions->trigger(); }},
        {"Help > Help Topics", [](MainWindow &w) { w.menus().mnuHHelpTopics->trigger(); }},
        {"Help > About", [](MainWindow &w) { w.menus().mnuHAbout->trigger(); }},
    };
    for (const Opening &opening : openings) {
        QString seen;
        const QStringList problems = look(opening.open, &seen);
        EXPECT_FALSE(seen.isEmpty()) << opening.what << ": nothing opened";
        EXPECT_TRUE(problems.isEmpty()) << opening.what << " (" << seen.toStdString() << "):\n  "
                                        << problems.join(QStringLiteral("\n  ")).toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, DialogWalkTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool> &info) {
                             return std::string(info.param ? "Swedish" : "English");
                         });
