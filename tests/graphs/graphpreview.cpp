// SPDX-License-Identifier: GPL-3.0-or-later
// Manual check of the question and block graphs as the user opens them:
// `graphpreview FILE [--lang sv] (--question Q [--split S | --category C] |
// --block B [--view]) [--kind 1|2] [--png OUT] [--save OUT...] [--hold MS]`
// opens the main window on FILE, right-clicks the question's column (or the
// block line) through the overview's popup signal, chooses the menu item and,
// with --png, saves the graph window's grab. Each --save presses Ctrl+S in the
// graph window and answers the save dialog with OUT and the file type of its
// extension, as a user would. --hold keeps the windows up for a screenshot
// before quitting.
#include "engine/document/document.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"
#include "texts/statusline.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QFileDialog>
#include <QFileInfo>
#include <QTest>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

using namespace kel;

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("KEL document"));
    for (const char *name : {"lang", "question", "split", "category", "block", "kind", "png", "save", "hold"})
        parser.addOption({QString::fromUtf8(name), QString::fromUtf8(name), QStringLiteral("V")});
    parser.addOption({QStringLiteral("view"), QStringLiteral("the View menu's block item")});
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    const bool sv = parser.value(QStringLiteral("lang")) == QLatin1String("sv");
    const int kind = parser.isSet(QStringLiteral("kind")) ? parser.value(QStringLiteral("kind")).toInt() : 1;

    QTemporaryDir dir;
    SettingsLocation location;
    location.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(location);
    MainWindow window(store, sv, MainWindowEnvironment{});
    window.show();
    if (!window.openDocument(parser.positionalArguments().first(), false, QStringLiteral("graphpreview")))
        return 1;
    const Document &doc = *window.document();
    const MainMenus &m = window.menus();

    QAction *item = nullptr;
    SheetHit hit;
    hit.place = SheetPlace::AnswerCell;
    hit.line = 0;
    if (parser.isSet(QStringLiteral("question"))) {
        hit.question = parser.value(QStringLiteral("question")).toInt();
        if (parser.isSet(QStringLiteral("split"))) {
            // The dialog is modal: answer it as soon as it is up.
            const int split = parser.value(QStringLiteral("split")).toInt();
            QTimer::singleShot(300, [split] {
                for (QWidget *w : QApplication::topLevelWidgets()) {
                    if (w->objectName() != QLatin1String("frmQuestionSelect") || !w->isVisible())
                        continue;
                    auto *list = w->findChild<QListWidget *>(QStringLiteral("lstQuestions"));
                    for (int i = 0; list && i < list->count(); ++i)
                        if (list->item(i)->data(Qt::UserRole).toInt() == split)
                            list->setCurrentRow(i);
                    if (auto *ok = w->findChild<QPushButton *>(QStringLiteral("cmdOK")))
                        ok->click();
                }
            });
            item = kind == 1 ? m.mnuPS1Split : m.mnuPS2Split;
        } else if (parser.isSet(QStringLiteral("category"))) {
            const int c = parser.value(QStringLiteral("category")).toInt();
            const auto &items = kind == 1 ? m.mnuPS1SplitByColumn : m.mnuPS2SplitByColumn;
            item = c >= 0 && c < items.size() ? items[c] : nullptr;
        } else {
            item = kind == 1 ? m.mnuPS1Total : m.mnuPS2Total;
        }
    } else if (parser.isSet(QStringLiteral("block"))) {
        const int block = parser.value(QStringLiteral("block")).toInt();
        if (parser.isSet(QStringLiteral("view"))) {
            const auto &items = kind == 1 ? m.mnuVB1Item : m.mnuVB2Item;
            item = block >= 0 && block < items.size() ? items[block] : nullptr;
        } else {
            for (qint32 q : doc.overviewColumns)
                if (doc.questions[std::size_t(q)].block == block && hit.question < 0)
                    hit.question = q;
            item = kind == 1 ? m.mnuPShowBlockGraph1 : m.mnuPShowBlockGraph2;
        }
    }
    if (!item) {
        std::fprintf(stderr, "nothing to choose\n");
        return 2;
    }
    if (hit.question >= 0)
        emit window.sheetView()->popupRequested(hit, QPoint(100, 100));
    m.mnuPopUp->hide();
    item->trigger();
    std::printf("status: %s\n", qPrintable(window.statusLine().text()));

    BasicGraphWindow *graph = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *g = qobject_cast<BasicGraphWindow *>(w); g && g->isVisible())
            graph = g;
    if (!graph) {
        std::fprintf(stderr, "no graph window\n");
        return 3;
    }
    graph->move(window.geometry().topLeft() + QPoint(40, 60));
    const QString png = parser.value(QStringLiteral("png"));
    const int hold = parser.value(QStringLiteral("hold")).toInt();
    QTimer::singleShot(std::max(hold, 200), [&] {
        if (!png.isEmpty())
            graph->grab().save(png);
        for (const QString &path : parser.values(QStringLiteral("save"))) {
            // The dialog is modal: answer it from the event loop it runs.
            QTimer::singleShot(300, [path] {
                auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
                if (!dialog) {
                    std::fprintf(stderr, "no save dialog\n");
                    return;
                }
                std::printf("dialog: %s\n", qPrintable(dialog->windowTitle()));
                const QString suffix = QStringLiteral("(*.") + QFileInfo(path).suffix() + QLatin1Char(')');
                for (const QString &filter : dialog->nameFilters())
                    if (filter.endsWith(suffix))
                        dialog->selectNameFilter(filter);
                dialog->selectFile(path);
                // Typed into the name box, as a user does.
                if (auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
                    name->setText(path);
                static_cast<QDialog *>(dialog)->accept(); // as the Save button does
            });
            graph->activateWindow();
            QTest::keyClick(graph, Qt::Key_S, Qt::ControlModifier);
            std::printf("status: %s\n", qPrintable(window.statusLine().text()));
        }
        app.quit();
    });
    return app.exec();
}
