// SPDX-License-Identifier: GPL-3.0-or-later
// Every dialog and window the program opens, in both languages, looked at
// as a keyboard user meets it: each control's access key works (a label's
// goes to its buddy) and no two controls of one page share a key; in
// Swedish, no English word shows, Qt's own dialogs and buttons included.
#include "walksurvey.h"

#include "engine/settings/settingsstore.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"
#include "texts/qttexts.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QInputDialog>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSet>
#include <QTranslator>
#include <QLibraryInfo>
#include <QTextDocumentFragment>
#include <QAbstractItemView>
#include <QLineEdit>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QMap>
#include <QMenuBar>
#include <QMenu>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
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

// Every text a window shows a reader: its title, labels, buttons, group
// and tab titles, list and header entries, field hints.
QStringList shownTexts(QWidget *top)
{
    QStringList texts{top->windowTitle()};
    for (QWidget *w : top->findChildren<QWidget *>()) {
        if (!w->isVisibleTo(top))
            continue;
        if (auto *label = qobject_cast<QLabel *>(w))
            texts << QTextDocumentFragment::fromHtml(label->text()).toPlainText();
        else if (auto *button = qobject_cast<QAbstractButton *>(w))
            texts << button->text() << button->toolTip();
        else if (auto *group = qobject_cast<QGroupBox *>(w))
            texts << group->title();
        else if (auto *bar = qobject_cast<QTabBar *>(w))
            for (int i = 0; i < bar->count(); ++i)
                texts << bar->tabText(i);
        else if (auto *combo = qobject_cast<QComboBox *>(w))
            for (int i = 0; i < combo->count(); ++i)
                texts << combo->itemText(i);
        else if (auto *edit = qobject_cast<QLineEdit *>(w))
            texts << edit->placeholderText();
        else if (auto *view = qobject_cast<QAbstractItemView *>(w)) {
            QAbstractItemModel *model = view->model();
            if (!model)
                continue;
            for (int c = 0; c < model->columnCount(view->rootIndex()); ++c)
                texts << model->headerData(c, Qt::Horizontal).toString();
            for (int r = 0; r < std::min(model->rowCount(view->rootIndex()), 50); ++r)
                for (int c = 0; c < model->columnCount(view->rootIndex()); ++c)
                    texts << model->index(r, c, view->rootIndex()).data().toString()
                          << model->index(r, c, view->rootIndex()).data(Qt::ToolTipRole).toString();
        }
    }
    texts.removeAll(QString());
    return texts;
}

// Words of Qt's dialogs and of the program's English texts that Swedish
// never uses; a Swedish window showing one shows English.
QStringList englishWords(QWidget *top)
{
    static const QSet<QString> english = [] {
        QSet<QString> words;
        for (const char *w :
             {"look",     "back",     "forward", "parent",    "directory", "directories", "create",   "folder",
              "list",     "view",     "detail",  "name",      "size",      "type",        "date",     "modified",
              "computer", "file",     "files",   "of",        "open",      "save",        "cancel",   "yes",
              "no",       "close",    "unknown", "kind",      "drive",     "apply",       "reset",    "help",
              "discard",  "abort",    "retry",   "ignore",    "delete",    "rename",      "remove",   "add",
              "show",     "hidden",   "the",     "and",       "are",       "you",         "sure",     "want",
              "to",       "recent",   "places",  "new",       "choose",    "details",     "select",   "all",
              "copy",     "paste",    "undo",    "redo",      "cut",       "bytes",       "shortcut", "is",
              "this",     "for",      "with",    "selection", "graph",     "total",       "question", "questions",
              "options",  "settings", "system",  "memory",    "print",     "printer",     "margin",   "margins",
              "other",    "enter",    "please",  "bars",      "labels",    "lines",       "split"})
            words.insert(QString::fromLatin1(w));
        return words;
    }();
    QStringList found;
    for (const QString &text : shownTexts(top)) {
        const QStringList words = QString(text)
                                      .remove(QLatin1Char('&'))
                                      .split(QRegularExpression(QStringLiteral("[^\\p{L}]+")), Qt::SkipEmptyParts);
        for (const QString &word : words)
            if (english.contains(word.toLower()))
                found << QStringLiteral("English \"%1\" in \"%2\"").arg(word, text);
    }
    found.removeDuplicates();
    return found;
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
        // As the program starts in Swedish: Qt's catalogue, then its own.
        if (GetParam()) {
            if (qtCatalogue.load(QStringLiteral("qt_sv"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
                QCoreApplication::installTranslator(&qtCatalogue);
            QCoreApplication::installTranslator(&ownCatalogue);
        }
        // The file dialogs start in the working folder: one holding only
        // the test's files, whose names are no words.
        previousFolder = QDir::currentPath();
        QDir::setCurrent(dir.path());
        const QString path = dir.filePath(QStringLiteral("walk.kel"));
        ASSERT_TRUE(walkSurvey().build().writeFile(path));
        store = std::make_unique<SettingsStore>(SettingsLocation{.file = dir.filePath(QStringLiteral("k.ini"))});
        window = std::make_unique<MainWindow>(*store, GetParam(),
                                              MainWindowEnvironment{.printerInstalled = true, .mouseWheel = true});
        window->setMessageHandler([](QMessageBox::Icon, const QString &, const QString &) {});
        ASSERT_EQ(window->loadDocument(path, false), OpenResult::Ok);
        window->show();
    }

    // Opens what `open` opens and looks at it: every modal dialog while it
    // runs (the block editor's own input boxes and confirmation included),
    // or the window it leaves shown.
    QStringList look(const std::function<void(MainWindow &)> &open, QStringList *seen)
    {
        QStringList problems;
        QList<QWidget *> inspected;
        int editorStep = 0;
        int inputs = 0;
        auto inspect = [&](QWidget *w) {
            *seen << QString::fromLatin1(w->metaObject()->className());
            problems << accessKeyProblems(w);
            if (GetParam())
                problems << englishWords(w);
        };
        QTimer poll;
        poll.setInterval(20);
        QObject::connect(&poll, &QTimer::timeout, [&] {
            QWidget *modal = QApplication::activeModalWidget();
            if (!modal)
                return;
            if (!inspected.contains(modal)) {
                inspected << modal;
                inspect(modal);
            } else if (modal->objectName() != QLatin1String("frmBlockEdit")) {
                return; // already answered
            }
            // The block editor: Add (a name typed and accepted), Rename and
            // Delete on the new block (both left), then the editor is left.
            if (modal->objectName() == QLatin1String("frmBlockEdit")) {
                const char *buttons[] = {"cmdAddBlock", "cmdRenameBlock", "cmdDeleteBlock"};
                if (editorStep < 3) {
                    auto *button = modal->findChild<QPushButton *>(QLatin1String(buttons[editorStep++]));
                    EXPECT_TRUE(button && button->isEnabled()) << buttons[editorStep - 1];
                    if (button && button->isEnabled()) {
                        QMetaObject::invokeMethod(button, &QPushButton::click, Qt::QueuedConnection);
                        return;
                    }
                }
            } else if (auto *input = qobject_cast<QInputDialog *>(modal); input && inputs++ == 0) {
                input->setTextValue(QStringLiteral("Mine"));
                QMetaObject::invokeMethod(input, &QDialog::accept, Qt::QueuedConnection);
                return;
            }
            if (auto *dialog = qobject_cast<QDialog *>(modal))
                QMetaObject::invokeMethod(dialog, &QDialog::reject, Qt::QueuedConnection);
            else
                QMetaObject::invokeMethod(modal, &QWidget::close, Qt::QueuedConnection);
        });
        poll.start();
        const QList<QWidget *> before = QApplication::topLevelWidgets();
        open(*window);
        poll.stop();
        if (seen->isEmpty()) {
            for (QWidget *w : QApplication::topLevelWidgets()) {
                if (w->isVisible() && !before.contains(w) && !qobject_cast<QMenu *>(w)) {
                    inspect(w);
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

    void TearDown() override
    {
        window.reset();
        QDir::setCurrent(previousFolder);
        QCoreApplication::removeTranslator(&ownCatalogue);
        QCoreApplication::removeTranslator(&qtCatalogue);
    }

    QTranslator qtCatalogue;
    QtSwedishCatalogue ownCatalogue;
    QString previousFolder;
    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_P(DialogWalkTest, EveryDialogSpeaksTheLanguageWithWorkingAccessKeys)
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
        QStringList seen;
        const QStringList problems = look(opening.open, &seen);
        EXPECT_FALSE(seen.isEmpty()) << opening.what << ": nothing opened";
        EXPECT_TRUE(problems.isEmpty()) << opening.what << " (" << seen.join(u' ').toStdString() << "):\n  "
                                        << problems.join(QStringLiteral("\n  ")).toStdString();
        if (std::string(opening.what) == "Tools > Edit Blocks") {
            // Its own input boxes (Add, Rename) and confirmation (Delete) were met.
            EXPECT_EQ(seen.count(QStringLiteral("QInputDialog")), 2) << seen.join(u' ').toStdString();
            EXPECT_EQ(seen.count(QStringLiteral("QMessageBox")), 1) << seen.join(u' ').toStdString();
        }
    }
}

// The main window is a dialog of its own: its menu titles and the docked
// navigator answer the same Alt presses, so a letter used twice there only
// moves the focus between the two owners, and a button without one cannot
// be reached from the sheet.
TEST_P(DialogWalkTest, MainWindowsAccessKeysAreItsOwn)
{
    QStringList problems = pageProblems(window.get());
    QMap<QChar, QString> menuKeys;
    for (const QAction *menu : window->menuBar()->actions()) {
        const QChar key = accessKey(menu->text());
        EXPECT_FALSE(key.isNull()) << menu->text().toStdString();
        EXPECT_FALSE(menuKeys.contains(key)) << menu->text().toStdString();
        menuKeys[key] = menu->text();
    }
    EXPECT_EQ(menuKeys.size(), 5);
    // Shown or not with this document: another document shows it.
    for (const QAbstractButton *button : window->findChildren<QAbstractButton *>()) {
        const QChar key = accessKey(button->text());
        if (menuKeys.contains(key))
            problems << QStringLiteral("Alt+%1 is both the menu \"%2\" and \"%3\"")
                            .arg(key.toUpper(), menuKeys[key], button->text());
    }
    EXPECT_TRUE(problems.isEmpty()) << problems.join(QStringLiteral("\n  ")).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Languages, DialogWalkTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool> &info) {
                             return std::string(info.param ? "Swedish" : "English");
                         });
