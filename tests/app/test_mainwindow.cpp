// SPDX-License-Identifier: GPL-3.0-or-later
// The main window under the offscreen platform: menu state before, with and
// after documents of every permission, recent files, closing and settings.
#include "engine/document/documentsession.h"
#include "gui/shell/mainwindow.h"
#include "texts/statusline.h"
#include "engine/indexes/columnindex.h"
#include "gui/overview/sheetview.h"
#include "engine/selection/counting.h"
#include "gui/selection/detailwindow.h"

#include "surveys.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QScreen>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>


using namespace kel;
using kel::test::ShellSurveyOptions;
using kel::test::shellSurvey;

namespace {

struct ActionState {
    bool visible;
    bool enabled;
    QString text;
    bool operator==(const ActionState &) const = default;
};

// Qt reports a hidden action as disabled; what matters for a hidden item is
// whether it will be enabled once something shows it, which Qt remembers.
bool enabledWhenShown(QAction *a)
{
    if (a->isVisible())
        return a->isEnabled();
    a->setVisible(true);
    const bool enabled = a->isEnabled();
    a->setVisible(false);
    return enabled;
}

// Whether anything but Qt itself listens to an item's triggered signal. Every
// menu showing the item, and its action group, connect to the signal too, so
// isSignalConnected alone is always true; the count of receivers beyond those
// is what tells. (QObject::receivers is protected; a pointer to it named
// through a derived class may be applied to any QObject.)
struct SignalPeek : QObject {
    static bool hasOwnReceiver(const QAction *action)
    {
        int internal = action->actionGroup() ? 1 : 0;
        for (const QObject *o : action->associatedObjects())
            internal += qobject_cast<const QMenu *>(o) ? 1 : 0;
        if ((action->*(&SignalPeek::receivers))(SIGNAL(triggered(bool))) > internal)
            return true;
        // Item lists that change with the document are served by their
        // menu's triggered(QAction *), which Qt never connects itself.
        for (const QObject *o : action->associatedObjects()) {
            if (auto *menu = qobject_cast<const QMenu *>(o);
                menu && (menu->*(&SignalPeek::receivers))(SIGNAL(triggered(QAction *))) > 0)
                return true;
        }
        return false;
    }
};

// Every item of `menu` and its submenus that a user can choose.
void collectItems(QMenu *menu, QList<QAction *> &items)
{
    if (!menu)
        return;
    for (QAction *a : menu->actions()) {
        if (a->menu())
            collectItems(a->menu(), items);
        else if (!a->isSeparator())
            items << a;
    }
}

QMap<QString, ActionState> menuState(const MainWindow &w)
{
    QMap<QString, ActionState> state;
    for (QAction *a : w.findChildren<QAction *>()) {
        if (!a->objectName().isEmpty())
            state.insert(a->objectName(), {a->isVisible(), enabledWhenShown(a), a->text()});
    }
    return state;
}

class MainWindowTest : public ::testing::Test
{
protected:
    SettingsLocation location() const
    {
        SettingsLocation l;
        l.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        l.policyFile = mDir.filePath(QStringLiteral("policy.ini"));
        return l;
    }

    std::unique_ptr<MainWindow> makeWindow(bool isSwedish = false, bool printer = false, bool mouseWheel = false)
    {
        mStore = std::make_unique<SettingsStore>(location());
        MainWindowEnvironment env;
        env.printerInstalled = printer;
        env.mouseWheel = mouseWheel;
        auto w = std::make_unique<MainWindow>(*mStore, isSwedish, env);
        w->setMessageHandler([this](QMessageBox::Icon icon, const QString &title, const QString &text) {
            mMessages << QStringLiteral("%1|%2|%3").arg(int(icon)).arg(title, text);
        });
        return w;
    }

    static void open(MainWindow &w, const ShellSurveyOptions &recipe, const QString &path = QStringLiteral("/s/survey.kel"))
    {
        w.session().installDocument(shellSurvey(recipe), path, true);
    }

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    QStringList mMessages;
};

} // namespace

TEST_F(MainWindowTest, EveryEnabledItemHasAnActionBehindIt)
{
    ShellSurveyOptions everything;
    everything.allowCopy = everything.allowCopyData = everything.allowPrint = everything.allowSavePicture = true;
    everything.pointsScale = 4;
    everything.totalIndexGraph = true;
    everything.rowComments = true;
    everything.categoryHeadings = {QStringLiteral("Unit"), QStringLiteral("Age")};
    for (bool withDocument : {false, true}) {
        auto w = makeWindow(false, true, true);
        if (withDocument) {
            open(*w, everything);
            // The popup as a right click on the first answer cell leaves it.
            SheetHit hit;
            hit.place = SheetPlace::AnswerCell;
            hit.question = 0;
            hit.row = 0;
            w->preparePopup(hit);
        }
        QList<QAction *> items;
        for (QAction *top : w->menuBar()->actions())
            collectItems(top->menu(), items);
        collectItems(w->menus().mnuPopUp, items);
        ASSERT_GT(items.size(), 50);
        QStringList idle;
        for (QAction *a : items) {
            if (enabledWhenShown(a) && !SignalPeek::hasOwnReceiver(a))
                idle << (a->objectName().isEmpty() ? a->text() : a->objectName());
        }
        EXPECT_TRUE(idle.isEmpty()) << (withDocument ? "with a document: " : "without one: ")
                                    << idle.join(QLatin1Char(' ')).toStdString();
    }
}

TEST_F(MainWindowTest, ClosingBringsEveryItemBackToWhereItStarted)
{
    ShellSurveyOptions rich;
    rich.allowCopy = rich.allowCopyData = rich.allowSavePicture = true;
    rich.pointsScale = 4;
    rich.totalIndexGraph = true;
    rich.rowComments = true;
    rich.categoryHeadings = {QStringLiteral("Unit")};
    auto w = makeWindow(false, true, true);
    const auto designState = menuState(*w);
    open(*w, rich);
    // What the document allows reaches the window's state...
    const MenuState state = w->menuState();
    EXPECT_TRUE(state.documentOpen && state.allowCopy && state.hasIndexes && state.totalIndexGraph);
    EXPECT_TRUE(state.hasCategories && state.hasRowComments && state.dataRowsAllowed);
    // ... and the items follow the one rule for it.
    const MenuEnabling enabling = menuEnablingFor(state);
    const MainMenus &m = w->menus();
    EXPECT_EQ(m.mnuECopyIndexes->isVisible(), enabling[std::size_t(MenuCommand::CopyIndexes)].visible);
    EXPECT_EQ(m.mnuVTotalGraph1->isVisible(), enabling[std::size_t(MenuCommand::TotalIndexGraph)].visible);
    EXPECT_TRUE(m.mnuVNavigator->isEnabled() && m.mnuVDetailInfo->isEnabled());
    EXPECT_TRUE(m.mnuPS1SplitBy->menuAction()->isVisible());
    EXPECT_EQ(w->windowTitle(), QStringLiteral("KEL Viewer - survey.kel"));

    // Closing: only the recent files differ, since the closed file was recorded.
    w->closeDocument();
    auto closed = menuState(*w);
    for (const QString &name : {QStringLiteral("mnuFMRUBar"), QStringLiteral("mnuFMRU0")}) {
        EXPECT_TRUE(closed.value(name).visible);
        closed.remove(name);
    }
    auto expected = designState;
    expected.remove(QStringLiteral("mnuFMRUBar"));
    expected.remove(QStringLiteral("mnuFMRU0"));
    EXPECT_EQ(closed.keys(), expected.keys());
    for (const QString &name : expected.keys())
        EXPECT_EQ(closed.value(name), expected.value(name)) << name.toStdString();
    EXPECT_EQ(w->windowTitle(), QStringLiteral("KEL Viewer"));
}

TEST_F(MainWindowTest, SplitItemsFollowTheCategories)
{
    auto w = makeWindow();
    ShellSurveyOptions recipe;
    recipe.categoryHeadings = {QStringLiteral("Unit"), QStringLiteral("R&D group"), QStringLiteral("Age")};
    open(*w, recipe);
    const MainMenus &m = w->menus();
    ASSERT_EQ(m.mnuPS1SplitByColumn.size(), 3);
    ASSERT_EQ(m.mnuPS2SplitByColumn.size(), 3);
    EXPECT_EQ(m.mnuPS1SplitByColumn[0]->text(), QStringLiteral("Unit"));
    EXPECT_EQ(m.mnuPS2SplitByColumn[1]->text(), QStringLiteral("R&&D group"));
    EXPECT_EQ(m.mnuPS1SplitBy->actions().size(), 3);

    // A document with fewer categories must not keep the old ones.
    ShellSurveyOptions fewer;
    fewer.categoryHeadings = {QStringLiteral("Region")};
    open(*w, fewer, QStringLiteral("/s/other.kel"));
    ASSERT_EQ(m.mnuPS1SplitByColumn.size(), 1);
    EXPECT_EQ(m.mnuPS1SplitBy->actions().size(), 1);
    EXPECT_EQ(m.mnuPS1SplitByColumn[0]->text(), QStringLiteral("Region"));
}

TEST_F(MainWindowTest, FailedOpenLeavesDocumentAndMenusAlone)
{
    auto w = makeWindow();
    ShellSurveyOptions recipe;
    recipe.allowCopy = true;
    recipe.categoryHeadings = {QStringLiteral("Unit")};
    open(*w, recipe);
    const Document *before = w->document();
    const auto state = menuState(*w);
    const QImage sheet = w->sheetView()->sheetImage();
    ASSERT_FALSE(sheet.isNull());

    const QString garbage = mDir.filePath(QStringLiteral("broken.kel"));
    {
        QFile f(garbage);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("KEL? no.");
    }
    EXPECT_FALSE(w->openDocument(garbage, true, QStringLiteral("Open Data File")));
    ASSERT_EQ(mMessages.size(), 1);
    EXPECT_EQ(mMessages.first(),
              QStringLiteral("%1|Open Data File|This is not a KEL file!").arg(int(QMessageBox::Critical)));
    EXPECT_EQ(w->document(), before);
    EXPECT_EQ(menuState(*w), state);
    EXPECT_EQ(w->sheetView()->sheetImage(), sheet);
    EXPECT_EQ(w->windowTitle(), QStringLiteral("KEL Viewer - survey.kel"));
    EXPECT_EQ(w->statusLine().text(), QString());
    EXPECT_TRUE(w->session().recentFiles().isEmpty());
}

TEST_F(MainWindowTest, RecentFilesMenuShowsTheListWithLiteralAmpersands)
{
    auto w = makeWindow();
    w->session().setRecentFiles({QStringLiteral("/data/R&D/a.kel"), QStringLiteral("/data/b.kel")});
    const MainMenus &m = w->menus();
    EXPECT_TRUE(m.mnuFMRUBar->isVisible());
    EXPECT_TRUE(m.mnuFMRU[0]->text().startsWith(QStringLiteral("&1 ")));
    EXPECT_TRUE(m.mnuFMRU[0]->text().contains(QStringLiteral("R&&D"))) << m.mnuFMRU[0]->text().toStdString();
    EXPECT_TRUE(m.mnuFMRU[1]->isVisible());
    EXPECT_FALSE(m.mnuFMRU[2]->isVisible());

    // A very long path is shortened, keeping its start and its file name.
    const QString longPath = QStringLiteral("/") + QString(300, QLatin1Char('x')) + QStringLiteral("/final.kel");
    w->session().setRecentFiles({longPath});
    const QString caption = m.mnuFMRU[0]->text();
    EXPECT_LT(caption.size(), longPath.size());
    EXPECT_TRUE(caption.endsWith(QStringLiteral("final.kel"))) << caption.toStdString();
    EXPECT_FALSE(m.mnuFMRU[1]->isVisible());
}

TEST_F(MainWindowTest, CloseAllGraphWindowsClosesEveryTable)
{
    auto w = makeWindow();
    std::vector<std::unique_ptr<QWidget>> windows;
    for (SlotTable t : {SlotTable::MiniOverviews, SlotTable::BasicGraphs, SlotTable::ChartGraphs}) {
        for (int i : {0, 9}) {
            windows.push_back(std::make_unique<QWidget>());
            windows.back()->show();
            WindowSlot &slot = w->windowSlots(t)[std::size_t(i)];
            slot.window = windows.back().get();
            slot.inUse = true;
        }
    }
    w->closeAllGraphWindows();
    for (const auto &window : windows)
        EXPECT_FALSE(window->isVisible());
    for (SlotTable t : {SlotTable::MiniOverviews, SlotTable::BasicGraphs, SlotTable::ChartGraphs})
        EXPECT_FALSE(w->windowSlots(t)[0].inUse);
    EXPECT_EQ(w->statusLine().text(), QStringLiteral("All graph windows has been closed!"));
    EXPECT_TRUE(w->statusLine().isClearPending());
}

TEST_F(MainWindowTest, StartUpReportsAMissingCommandLineFile)
{
    auto w = makeWindow();
    w->startUp(QStringLiteral("/no/such/file.kel"));
    EXPECT_EQ(w->statusLine().text(), QStringLiteral("Could not find the file \"/no/such/file.kel\"!"));
    EXPECT_FALSE(w->isAutoOpenPending());
    EXPECT_EQ(w->document(), nullptr);

    const QString existing = mDir.filePath(QStringLiteral("here.kel"));
    QFile f(existing);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    auto w2 = makeWindow(true);
    w2->startUp(existing);
    EXPECT_EQ(w2->statusLine().text(), QStringLiteral("Öppnar datafil..."));
    EXPECT_TRUE(w2->isAutoOpenPending());
    EXPECT_EQ(w2->pendingFile(), existing);

    auto w3 = makeWindow();
    w3->startUp(QString());
    EXPECT_EQ(w3->statusLine().text(), QStringLiteral("Welcome to KEL Viewer!"));
}

TEST_F(MainWindowTest, ClosingTheWindowRecordsAndSavesInOrder)
{
    {
        auto w = makeWindow();
        open(*w, {}, QStringLiteral("/s/first.kel"));
        w->show();
        w->close();
    }
    QSettings raw(location().file, QSettings::IniFormat);
    EXPECT_EQ(raw.value(QStringLiteral("MRU List/Item 00")).toString(), QStringLiteral("/s/first.kel"));
    EXPECT_EQ(raw.value(QStringLiteral("Last Settings/Data Open Folder")).toString(), QStringLiteral("/s"));
    EXPECT_TRUE(raw.childGroups().contains(QStringLiteral("Windows")));

    // The next run starts with that list and folder.
    auto again = makeWindow();
    EXPECT_EQ(again->session().recentFiles(), QStringList{QStringLiteral("/s/first.kel")});
    EXPECT_EQ(again->session().currentFolder(), QStringLiteral("/s"));
}

TEST_F(MainWindowTest, NoRecentDocsMenuHidesTheList)
{
    {
        QSettings seed(location().file, QSettings::IniFormat);
        seed.setValue(QStringLiteral("MRU List/Item 00"), QStringLiteral("/s/old.kel"));
        QSettings policy(location().policyFile, QSettings::IniFormat);
        policy.setValue(QStringLiteral("Explorer/NoRecentDocsMenu"), 1);
    }
    auto w = makeWindow();
    EXPECT_FALSE(w->menus().mnuFMRU[0]->isVisible());
    open(*w, {}, QStringLiteral("/s/a.kel"));
    w->closeDocument();
    EXPECT_FALSE(w->menus().mnuFMRUBar->isVisible());
    EXPECT_TRUE(w->session().recentFiles().isEmpty());
}

// Real files through the reader: the bundled survey, and variants of it.
TEST_F(MainWindowTest, OpensRealFilesWithTheirPermissions)
{
    // What each permission does to the menus is the enabling rule's; here the
    // whole way from a file on disk to the menus, sheet and panels.
    {
        const writer::KelFile file = writer::employeeSurvey(false);
        const QString path = mDir.filePath(QStringLiteral("survey.kel"));
        ASSERT_TRUE(file.writeFile(path));
        auto w = makeWindow();
        ASSERT_TRUE(w->openDocument(path, true, QStringLiteral("Open Data File"))) << mMessages.join(u'\n').toStdString();
        EXPECT_TRUE(mMessages.isEmpty());
        EXPECT_EQ(w->statusLine().text(), QStringLiteral("survey.kel has been opened!"));
        EXPECT_EQ(w->session().currentFolder(), mDir.path());
        const MenuState state = w->menuState();
        EXPECT_TRUE(state.allowCopy && state.allowSavePicture && state.hasIndexes);
        EXPECT_TRUE(state.allowCopyData && state.hasRowComments && state.hasCategories);
        EXPECT_EQ(w->menus().mnuPS1SplitByColumn.size(), qsizetype(w->document()->categories.size()));
        EXPECT_TRUE(w->statusPanel(2)->isVisibleTo(w.get()));
        EXPECT_EQ(w->statusPanel(2)->text(), QStringLiteral(" %1").arg(w->document()->rowCount()));
        // The first overview holds everyone, cut to "Overview Max Rows".
        const SheetView *sheet = w->sheetView();
        ASSERT_TRUE(sheet->hasSheet());
        EXPECT_EQ(qint32(sheet->input().rows.size()), w->document()->rowCount());
        EXPECT_EQ(sheet->input().columns, w->document()->overviewColumns);
        EXPECT_EQ(sheet->sheetGeometry().answerLines, std::min(w->document()->rowCount(), 300));
        EXPECT_EQ(w->statusPanel(3)->text(), QLatin1Char(' ') + w->document()->text(w->document()->properties.totalText));
    }
}

TEST_F(MainWindowTest, NewerRevisionOpensWithTheUpgradeWarning)
{
    writer::KelFile file = writer::employeeSurvey(true);
    file.options.revision = 12;
    file.options.compatibleRevision = 9;
    const QString path = mDir.filePath(QStringLiteral("newer.kel"));
    ASSERT_TRUE(file.writeFile(path));
    auto w = makeWindow(true);
    ASSERT_TRUE(w->openDocument(path, false, QStringLiteral("KEL Viewer")));
    ASSERT_EQ(mMessages.size(), 1);
    EXPECT_TRUE(mMessages.first().startsWith(
        QStringLiteral("%1|Dags att uppgradera|newer.kel har ett nyare filformat än den här versionen av KEL Viewer "
                       "är gjord för!")
            .arg(int(QMessageBox::Warning))))
        << mMessages.first().toStdString();
    EXPECT_EQ(w->statusLine().text(), QStringLiteral("newer.kel har öppnats!"));
}

TEST_F(MainWindowTest, StoredPlacementIsRestoredSensibly)
{
    struct Case {
        const char *label;
        qint32 left, top, width, height, state;
    };
    const Case cases[] = {
        {"maximized", 150, 150, 9000, 6000, WindowPlacement::Maximized},
        {"minimized is not restored", 150, 150, 9000, 6000, WindowPlacement::Minimized},
        {"off every screen", 14400000, 14400000, 9000, 6000, WindowPlacement::Normal},
        {"too small", 150, 150, 10, 10, WindowPlacement::Normal},
        {"partly off the right edge", 6000, 150, 9000, 6000, WindowPlacement::Normal},
    };
    for (const Case &c : cases) {
        {
            SettingsStore seed(location());
            for (const auto &[name, value] : {std::pair{"WLeft", c.left}, {"WTop", c.top}, {"WWidth", c.width},
                                              {"WHeight", c.height}, {"WState", c.state}})
                seed.writeDword(QStringLiteral("Windows\\Main"), QString::fromLatin1(name), value);
        }
        auto w = makeWindow();
        const double pixelsPerTwip = w->logicalDpiX() / 1440.0;
        EXPECT_EQ(w->windowState().testFlag(Qt::WindowMaximized), c.state == WindowPlacement::Maximized) << c.label;
        EXPECT_FALSE(w->windowState().testFlag(Qt::WindowMinimized)) << c.label;
        EXPECT_GE(w->width(), qRound(4800 * pixelsPerTwip)) << c.label;
        EXPECT_GE(w->height(), qRound(3600 * pixelsPerTwip)) << c.label;
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        EXPECT_TRUE(screen.contains(w->pos())) << c.label;
        if (c.state == WindowPlacement::Normal) {
            EXPECT_TRUE(screen.contains(QRect(w->pos(), w->size()))) << c.label; // wholly, not just a corner
        }
    }
}

// --- The overview sheet in the window ---

namespace {

constexpr int Cell = 16;

// Eight respondents in two units: unit 0 (rows 0-3) all answered "Yes",
// unit 1 (rows 4-7) all "No", so the question's index differs between the
// selection of unit 0 and everyone. The question sits in a block whose
// graph flags offer the histogram, the graph and the index graph.
std::unique_ptr<Document> unitDocument(qint32 rowOrder = -1)
{
    writer::SurveyBuilder b(8, 1);
    writer::HeaderFields &h = b.header();
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.pointsScale = 100; // two decimals
    h.allowCopy = h.allowCopyData = writer::FileTrue;
    h.rowOrder = rowOrder;
    const qint32 block = b.addBlock({.code = QStringLiteral("B"), .name = QStringLiteral("Work"), .graphFlags = 0x103});
    const qint32 q = b.addQuestion({.code = QStringLiteral("Q1"), .heading = QStringLiteral("Satisfaction"),
                                    .block = block, .graphFlags = 0x3},
                                   {{.text = QStringLiteral("No"), .points = 0}, {.text = QStringLiteral("Yes"), .points = 100}});
    const qint32 unit = b.addQuestion({.code = QStringLiteral("Q2"), .heading = QStringLiteral("Unit"), .isCategory = true,
                                       .inOverview = false, .inTotalIndex = false},
                                      {{.text = QStringLiteral("No")}, {.text = QStringLiteral("Yes")}});
    for (qint32 r = 0; r < 8; ++r) {
        b.setAnswer(r, q, r < 4 ? 1 : 0);
        b.setAnswer(r, unit, r < 4 ? 0 : 1);
    }
    b.setRowComment(0, QStringLiteral("A comment")); // row 0 has a comment, the others none
    return test::readBackOwned(b.build());
}

// The middle of a cell of the view: column 0 .. , line -H .. -1 for the
// header lines, 0 .. for answer lines (no scrolling).
QPoint cellCentre(int column, int line, int headerLines)
{
    return QPoint(1 + column * Cell + Cell / 2, 1 + (line + headerLines) * Cell + Cell / 2);
}

SelectionMatrix unitOnly(const Document &doc, qint32 unit)
{
    SelectionMatrix selection = fullSelection(doc);
    for (qint32 o = 0; o < selection.optionCount(); ++o)
        selection.set(0, o, o == unit);
    return selection;
}

} // namespace

TEST_F(MainWindowTest, OverviewFollowsOpenShowAndClose)
{
    auto w = makeWindow();
    SheetView *sheet = w->sheetView();
    EXPECT_EQ(w->centralWidget(), sheet);
    EXPECT_FALSE(sheet->hasSheet());

    w->session().installDocument(unitDocument(), QStringLiteral("/s/units.kel"), true);
    ASSERT_TRUE(sheet->hasSheet());
    EXPECT_EQ(sheet->input().rows, (std::vector<qint32>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(sheet->sheetGeometry().answerLines, 8);
    EXPECT_EQ(sheet->sheetGeometry().headerLines, 2);
    EXPECT_EQ(w->statusPanel(2)->text(), QStringLiteral(" 8"));
    EXPECT_EQ(w->statusPanel(3)->text(), QStringLiteral(" Everyone"));
    EXPECT_TRUE(sheet->hoverEnabled());
    EXPECT_TRUE(w->menuState().dataRowsAllowed);

    // A narrower selection replaces rows, picture and panels together.
    const QImage everyone = sheet->sheetImage();
    EXPECT_TRUE(w->showSelection(unitOnly(*w->document(), 1)).isEmpty());
    EXPECT_EQ(sheet->input().rows, (std::vector<qint32>{4, 5, 6, 7}));
    EXPECT_EQ(sheet->sheetGeometry().answerLines, 4);
    EXPECT_NE(sheet->sheetImage(), everyone);
    EXPECT_EQ(w->statusPanel(2)->text(), QStringLiteral(" 4"));
    EXPECT_EQ(w->statusPanel(3)->text(), QLatin1Char(' ') + sheet->input().selectionText);
    EXPECT_NE(sheet->input().selectionText, QStringLiteral("Everyone"));

    w->closeDocument();
    EXPECT_FALSE(sheet->hasSheet());
    EXPECT_TRUE(sheet->input().rows.empty());
    EXPECT_FALSE(sheet->hoverEnabled());
    EXPECT_FALSE(w->statusPanel(2)->isVisibleTo(w.get()));
}

TEST_F(MainWindowTest, PopupOffersTheItemsOfThePlaceClicked)
{
    struct Expected {
        const char *label;
        qint32 rowOrder;
        int column, line; ///< line -2: block line, -1: code line
        std::vector<const char *> shown; ///< of the place-dependent items
        qint32 popupRow;
    };
    const Expected cases[] = {
        {"answer cell with a row comment", -1, 0, 0,
         {"mnuPShowRowsComments", "mnuPCopyThisRowsAnswers", "mnuPBar1", "mnuPShowQuestionGraph1",
          "mnuPShowQuestionGraph2", "mnuPBar2"},
         0},
        {"code line", -1, 0, -1, {"mnuPShowQuestionGraph1", "mnuPShowQuestionGraph2", "mnuPBar2"}, -1},
        {"block line", -1, 0, -2,
         {"mnuPShowBlockGraph1", "mnuPShowBlockGraph2", "mnuPShowBlockGraph4", "mnuPBar2"}, -2},
        {"answer cell, random per column", 2, 0, 0,
         {"mnuPShowQuestionGraph1", "mnuPShowQuestionGraph2", "mnuPBar2"}, -9},
    };
    const QStringList placeItems = {
        "mnuPShowRowsComments", "mnuPShowColumnsComments", "mnuPCopyThisRowsAnswers", "mnuPBar1",
        "mnuPShowBlockGraph1", "mnuPShowBlockGraph2", "mnuPShowBlockGraph3", "mnuPShowBlockGraph4",
        "mnuPShowQuestionGraph1", "mnuPShowQuestionGraph2", "mnuPShowQuestionGraph3", "mnuPBar2"};
    for (const Expected &c : cases) {
        auto w = makeWindow();
        w->session().installDocument(unitDocument(c.rowOrder), QStringLiteral("/s/units.kel"), true);
        w->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
        SheetView *sheet = w->sheetView();
        QMenu *popup = w->menus().mnuPopUp;
        QTest::mouseClick(sheet->viewport(), Qt::RightButton, {}, cellCentre(c.column, c.line, 2));
        ASSERT_TRUE(popup->isVisible()) << c.label;
        QStringList shown;
        for (QAction *a : popup->actions()) {
            const QString name = a->menu() ? a->menu()->objectName() : a->objectName();
            if (placeItems.contains(name) && a->isVisible())
                shown << name;
        }
        QStringList expected;
        for (const char *name : c.shown)
            expected << QString::fromLatin1(name);
        shown.sort();
        expected.sort();
        EXPECT_EQ(shown.join(u' ').toStdString(), expected.join(u' ').toStdString()) << c.label;
        EXPECT_EQ(sheet->popupQuestion(), 0) << c.label;
        if (c.popupRow != -9) {
            EXPECT_EQ(sheet->popupRow(), c.popupRow) << c.label;
        }
        popup->hide();

        // Right of the last column and below the last line: no menu.
        for (const QPoint outside : {cellCentre(1, 0, 2), cellCentre(0, 8, 2)}) {
            QTest::mouseClick(sheet->viewport(), Qt::RightButton, {}, outside);
            EXPECT_FALSE(popup->isVisible()) << c.label;
        }
    }
}

TEST_F(MainWindowTest, HoveringACellFillsTheDetailWindowForTheSelection)
{
    auto w = makeWindow();
    w->session().installDocument(unitDocument(), QStringLiteral("/s/units.kel"), true);
    ASSERT_TRUE(w->showSelection(unitOnly(*w->document(), 0)).isEmpty());
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    DetailWindow *detail = w->detailWindow();
    ASSERT_NE(detail, nullptr);
    EXPECT_TRUE(detail->textValue().isEmpty());

    QTest::mouseMove(w->sheetView()->viewport(), cellCentre(0, 1, 2));
    for (int i = 0; i < 40 && detail->textValue().isEmpty(); ++i)
        QTest::qWait(50);
    const Document &doc = *w->document();
    EXPECT_EQ(detail->headerValue(0), QStringLiteral("Work"));
    EXPECT_EQ(detail->headerValue(2), QStringLiteral("Satisfaction"));
    EXPECT_TRUE(detail->textValue().contains(QStringLiteral("Yes"))) << detail->textValue().toStdString();
    // The question's index is over the shown selection (unit 0: all "Yes"),
    // not over everyone.
    const QString selectionIndex = formatIndex(calculateColumnsIndex(doc, {0}, {0, 1, 2, 3}),
                                               doc.properties.indexDecimals, QLocale());
    EXPECT_EQ(detail->indexValue(1, false), selectionIndex);
    EXPECT_NE(selectionIndex, formatIndex(calculateColumnsIndex(doc, {0}, {0, 1, 2, 3, 4, 5, 6, 7}),
                                          doc.properties.indexDecimals, QLocale()));

    // Without indexes the pointer shows nothing.
    auto plain = makeWindow();
    ShellSurveyOptions recipe;
    plain->session().installDocument(shellSurvey(recipe), QStringLiteral("/s/plain.kel"), true);
    EXPECT_FALSE(plain->sheetView()->hoverEnabled());
}

TEST_F(MainWindowTest, WheelItemsSetTheScrollDirection)
{
    auto w = makeWindow(false, false, true);
    const MainMenus &m = w->menus();
    m.mnuPMouseWheelScrollDirection[1]->trigger();
    EXPECT_TRUE(w->sheetView()->wheelHorizontal());
    EXPECT_FALSE(m.mnuPMouseWheelScrollDirection[0]->isChecked());
    m.mnuPMouseWheelScrollDirection[0]->trigger();
    EXPECT_FALSE(w->sheetView()->wheelHorizontal());
    EXPECT_FALSE(m.mnuPMouseWheelScrollDirection[1]->isChecked());
}

TEST(DroppedFiles, OnlyOneLocalKelFileIsTaken)
{
    EXPECT_EQ(droppedDocument({QUrl::fromLocalFile(QStringLiteral("/a/b.KEL"))}), QStringLiteral("/a/b.KEL"));
    EXPECT_TRUE(droppedDocument({QUrl::fromLocalFile(QStringLiteral("/a/b.txt"))}).isEmpty());
    EXPECT_TRUE(droppedDocument({QUrl(QStringLiteral("https://example.org/a.kel"))}).isEmpty());
    EXPECT_TRUE(droppedDocument({QUrl::fromLocalFile(QStringLiteral("/a.kel")),
                                 QUrl::fromLocalFile(QStringLiteral("/b.kel"))})
                    .isEmpty());
}

#ifdef KEL_HAVE_WRITER
// A renamed document still shows as one on the desktop (by its magic words),
// so it can be dropped; a file that only carries the name cannot fool it.
TEST(DroppedFiles, RenamedDocumentsAreKnownByTheirContent)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString renamed = dir.filePath(QStringLiteral("survey.dat"));
    ASSERT_TRUE(writer::employeeSurvey(false).writeFile(renamed));
    EXPECT_EQ(droppedDocument({QUrl::fromLocalFile(renamed)}), renamed);

    const QString notes = dir.filePath(QStringLiteral("notes.dat"));
    const QString shortFile = dir.filePath(QStringLiteral("short.dat"));
    QByteArray magicOnly;
    magicOnly.append("\x98\xF0\x8B\x5A\x51\x44\x8E", 7); // one byte short of both words
    ASSERT_TRUE(writer::writeBytes(notes, QByteArrayLiteral("plain text, not a survey\n")));
    ASSERT_TRUE(writer::writeBytes(shortFile, magicOnly));
    EXPECT_TRUE(droppedDocument({QUrl::fromLocalFile(notes)}).isEmpty());
    EXPECT_TRUE(droppedDocument({QUrl::fromLocalFile(shortFile)}).isEmpty());
    EXPECT_TRUE(droppedDocument({QUrl::fromLocalFile(dir.filePath(QStringLiteral("missing.dat")))}).isEmpty());
    EXPECT_TRUE(droppedDocument({QUrl::fromLocalFile(dir.path())}).isEmpty());
}
#endif

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
