// SPDX-License-Identifier: GPL-3.0-or-later
// The main window under the offscreen platform: menu state before, with and
// after documents, recent files, closing, the sheet and its popup.
#include "engine/document/documentsession.h"
#include "engine/indexes/columnindex.h"
#include "engine/selection/counting.h"
#include "gui/overview/sheetview.h"
#include "gui/selection/detailwindow.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "gui/overview/textpopup.h"
#include "gui/overview/overviewcommands.h"
#include "texts/statusline.h"

#include "surveys.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

using namespace kel;
using kel::test::shellSurvey;
using kel::test::ShellSurveyOptions;

namespace {

// The whole sheet a view shows, drawn afresh from what the view keeps: the
// view itself draws only the parts in sight.
QImage wholeSheet(const SheetView &view)
{
    SheetTextOffsets offsets;
    return renderSheetImage(view.input(), offsets);
}

using ActionState = std::tuple<bool, bool, QString>; // visible, enabled when shown, text

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
        for (const QObject *o : action->associatedObjects())
            if (auto *menu = qobject_cast<const QMenu *>(o);
                menu && (menu->*(&SignalPeek::receivers))(SIGNAL(triggered(QAction *))) > 0)
                return true;
        return false;
    }
};

// Every item of `menu` and its submenus that a user can choose.
void collectItems(QMenu *menu, QList<QAction *> &items)
{
    for (QAction *a : menu ? menu->actions() : QList<QAction *>())
        if (a->menu())
            collectItems(a->menu(), items);
        else if (!a->isSeparator())
            items << a;
}

QMap<QString, ActionState> menuState(const MainWindow &w)
{
    QMap<QString, ActionState> state;
    for (QAction *a : w.findChildren<QAction *>())
        if (!a->objectName().isEmpty())
            state.insert(a->objectName(), {a->isVisible(), enabledWhenShown(a), a->text()});
    return state;
}

class MainWindowTest : public ::testing::Test
{
protected:
    SettingsLocation location() const { return {.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"))}; }

    std::unique_ptr<MainWindow> makeWindow(bool isSwedish = false, bool devices = false)
    {
        mStore = std::make_unique<SettingsStore>(location());
        MainWindowEnvironment env;
        env.printerInstalled = env.mouseWheel = devices;
        auto w = std::make_unique<MainWindow>(*mStore, isSwedish, env);
        w->setMessageHandler([this](QMessageBox::Icon icon, const QString &title, const QString &text) {
            mMessages << QStringLiteral("%1|%2|%3").arg(int(icon)).arg(title, text);
        });
        return w;
    }

    static void open(MainWindow &w, const ShellSurveyOptions &recipe,
                     const QString &path = QStringLiteral("/s/survey.kel"))
    {
        w.session().documents().installDocument(shellSurvey(recipe), path, true);
    }

    static ShellSurveyOptions richRecipe()
    {
        ShellSurveyOptions r;
        r.allowCopy = r.allowCopyData = r.allowPrint = r.allowSavePicture = true;
        r.pointsScale = 4;
        r.totalIndexGraph = r.rowComments = true;
        r.categoryHeadings = {QStringLiteral("Unit"), QStringLiteral("Age")};
        return r;
    }

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    QStringList mMessages;
};

} // namespace

TEST_F(MainWindowTest, EveryEnabledItemHasAnActionBehindIt)
{
    for (bool withDocument : {false, true}) {
        auto w = makeWindow(false, true);
        if (withDocument) {
            open(*w, richRecipe());
            // The popup as a right click on the first answer cell leaves it.
            w->preparePopup(SheetHit{.place = SheetPlace::AnswerCell, .question = 0, .row = 0});
        }
        QList<QAction *> items;
        for (QAction *top : w->menuBar()->actions())
            collectItems(top->menu(), items);
        collectItems(w->menus().mnuPopUp, items);
        ASSERT_GT(items.size(), 50);
        QStringList idle;
        for (QAction *a : items)
            if (enabledWhenShown(a) && !SignalPeek::hasOwnReceiver(a))
                idle << (a->objectName().isEmpty() ? a->text() : a->objectName());
        EXPECT_TRUE(idle.isEmpty()) << (withDocument ? "with a document: " : "without one: ")
                                    << idle.join(QLatin1Char(' ')).toStdString();
    }
}

TEST_F(MainWindowTest, ClosingBringsEveryItemBackToWhereItStarted)
{
    auto w = makeWindow(false, true);
    const auto designState = menuState(*w);
    open(*w, richRecipe());
    // What the document allows reaches the items through the one rule for it.
    const MenuEnabling enabling = menuEnablingFor(w->menuState());
    const MainMenus &m = w->menus();
    EXPECT_EQ(m.mnuECopyIndexes->isVisible(), enabling[std::size_t(MenuCommand::CopyIndexes)].visible);
    EXPECT_EQ(m.mnuVTotalGraph1->isVisible(), enabling[std::size_t(MenuCommand::TotalIndexGraph)].visible);
    EXPECT_TRUE(m.mnuVNavigator->isEnabled() && m.mnuPS1SplitBy->menuAction()->isVisible());
    EXPECT_EQ(w->windowTitle(), QStringLiteral("KEL Viewer - survey.kel"));
    // A document with fewer categories must not keep the old split items.
    ShellSurveyOptions fewer;
    fewer.categoryHeadings = {QStringLiteral("R&D")};
    open(*w, fewer, QStringLiteral("/s/other.kel"));
    ASSERT_EQ(m.mnuPS1SplitBy->actions().size(), 1);
    EXPECT_EQ(m.mnuPS1SplitByColumn[0]->text(), QStringLiteral("R&&D"));
    open(*w, richRecipe());

    // Closing: only the recent files differ, since the closed file was recorded.
    w->closeDocument();
    auto closed = menuState(*w);
    auto expected = designState;
    for (const QString &name : {QStringLiteral("mnuFMRUBar"), QStringLiteral("mnuFMRU0"), QStringLiteral("mnuFMRU1")}) {
        EXPECT_TRUE(std::get<0>(closed.value(name))) << name.toStdString();
        closed.remove(name);
        expected.remove(name);
    }
    EXPECT_EQ(closed.keys(), expected.keys());
    for (const QString &name : expected.keys())
        EXPECT_EQ(closed.value(name), expected.value(name)) << name.toStdString();
    EXPECT_EQ(w->windowTitle(), QStringLiteral("KEL Viewer"));
}

// Closing records the file and saves the placements; the next run starts
// with that list and folder, and reports a missing command-line file.
TEST_F(MainWindowTest, ClosingTheWindowSavesWhatTheNextRunStartsWith)
{
    {
        auto w = makeWindow();
        open(*w, {}, QStringLiteral("/s/first.kel"));
        w->show();
        w->close();
    }
    EXPECT_TRUE(QSettings(location().file, QSettings::IniFormat).childGroups().contains(QStringLiteral("Windows")));
    auto again = makeWindow();
    EXPECT_EQ(again->session().documents().recentFiles(), QStringList{QStringLiteral("/s/first.kel")});
    EXPECT_EQ(again->session().documents().currentFolder(), QStringLiteral("/s"));
    again->startUp(QStringLiteral("/no/such/file.kel"));
    EXPECT_EQ(again->statusLine().text(), QStringLiteral("Could not find the file \"/no/such/file.kel\"!"));
    EXPECT_FALSE(again->isAutoOpenPending());
}

// Real files through the reader, from disk to the menus, sheet and panels;
// a newer revision opens with its warning (in Swedish, once for the family).
TEST_F(MainWindowTest, OpensRealFilesWithTheirPermissions)
{
    const QString path = mDir.filePath(QStringLiteral("survey.kel"));
    ASSERT_TRUE(writer::employeeSurvey(false).writeFile(path));
    auto w = makeWindow();
    ASSERT_TRUE(w->openDocument(path, true, QStringLiteral("Open Data File"))) << mMessages.join(u'\n').toStdString();
    EXPECT_TRUE(mMessages.isEmpty());
    const MenuState state = w->menuState();
    EXPECT_TRUE(state.allowCopy && state.allowSavePicture && state.hasIndexes && state.allowCopyData);
    const Document &doc = *w->document();
    EXPECT_EQ(w->menus().mnuPS1SplitByColumn.size(), qsizetype(doc.categories.size()));
    EXPECT_EQ(w->statusPanel(2)->text(), QStringLiteral(" %1").arg(doc.rowCount()));
    // The first overview holds everyone, cut to "Overview Max Rows".
    const SheetView *sheet = w->sheetView();
    EXPECT_EQ(qint32(sheet->input().rows.size()), doc.rowCount());
    EXPECT_EQ(sheet->input().columns, doc.overviewColumns);
    EXPECT_EQ(sheet->sheetGeometry().answerLines, std::min(doc.rowCount(), 300));

    // A file that fails to open leaves document, menus and sheet alone.
    const auto menus = menuState(*w);
    const QImage picture = wholeSheet(*sheet);
    const QString garbage = mDir.filePath(QStringLiteral("broken.kel"));
    ASSERT_TRUE(writer::writeBytes(garbage, QByteArrayLiteral("KEL? no.")));
    EXPECT_FALSE(w->openDocument(garbage, true, QStringLiteral("Open Data File")));
    EXPECT_EQ(mMessages.value(0),
              QStringLiteral("%1|Open Data File|This is not a KEL file!").arg(int(QMessageBox::Critical)));
    EXPECT_EQ(w->document(), &doc);
    EXPECT_EQ(menuState(*w), menus);
    EXPECT_EQ(wholeSheet(*sheet), picture);
    mMessages.clear();

    writer::KelFile newer = writer::employeeSurvey(true);
    newer.options.revision = 12;
    newer.options.compatibleRevision = 9;
    const QString newerPath = mDir.filePath(QStringLiteral("newer.kel"));
    ASSERT_TRUE(newer.writeFile(newerPath));
    auto sv = makeWindow(true);
    ASSERT_TRUE(sv->openDocument(newerPath, false, QStringLiteral("KEL Viewer")));
    ASSERT_EQ(mMessages.size(), 1);
    EXPECT_TRUE(mMessages.first().startsWith(
        QStringLiteral("%1|Dags att uppgradera|newer.kel har ett nyare filformat").arg(int(QMessageBox::Warning))))
        << mMessages.first().toStdString();
    EXPECT_EQ(sv->statusLine().text(), QStringLiteral("newer.kel har öppnats!"));
}

// --- The overview sheet in the window ---

namespace {

constexpr int Cell = 16;

// Eight respondents in two units: unit 0 (rows 0-3) all answered "Yes",
// unit 1 (rows 4-7) all "No", so the question's index differs between the
// selection of unit 0 and everyone. The question sits in a block whose
// graph flags offer the histogram, the graph and the index graph.
std::unique_ptr<Document> unitDocument()
{
    writer::SurveyBuilder b(8, 1);
    writer::HeaderFields &h = b.header();
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.pointsScale = 100; // two decimals
    h.allowCopy = h.allowCopyData = writer::FileTrue;
    const qint32 block = b.addBlock({.code = QStringLiteral("B"), .name = QStringLiteral("Work"), .graphFlags = 0x103});
    const qint32 q = b.addQuestion(
        {.code = QStringLiteral("Q1"), .heading = QStringLiteral("Satisfaction"), .block = block, .graphFlags = 0x3},
        {{.text = QStringLiteral("No"), .points = 0}, {.text = QStringLiteral("Yes"), .points = 100}});
    const qint32 unit = b.addQuestion({.code = QStringLiteral("Q2"),
                                       .heading = QStringLiteral("Unit"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false},
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

} // namespace

TEST_F(MainWindowTest, OverviewFollowsOpenShowAndClose)
{
    auto w = makeWindow();
    SheetView *sheet = w->sheetView();
    w->session().documents().installDocument(unitDocument(), QStringLiteral("/s/units.kel"), true);
    ASSERT_TRUE(sheet->hasSheet());
    EXPECT_EQ(sheet->sheetGeometry().answerLines, 8);
    EXPECT_EQ(w->statusPanel(3)->text(), QStringLiteral(" Everyone"));

    // A narrower selection replaces rows, picture and panels together.
    const QImage everyone = wholeSheet(*sheet);
    EXPECT_TRUE(w->showSelection(test::firstCategoryOnly(*w->document(), 1)).done());
    EXPECT_EQ(sheet->input().rows, (std::vector<qint32>{4, 5, 6, 7}));
    EXPECT_NE(wholeSheet(*sheet), everyone);
    EXPECT_EQ(w->statusPanel(2)->text(), QStringLiteral(" 4"));
    EXPECT_EQ(w->statusPanel(3)->text(), QLatin1Char(' ') + sheet->input().selectionText);

    w->closeDocument();
    EXPECT_FALSE(sheet->hasSheet() || sheet->hoverEnabled());
    EXPECT_FALSE(w->statusPanel(2)->isVisibleTo(w.get()));
}

// Four respondents against a minimum of four (shown) and of five (headers
// only, and the sheet says why).
TEST_F(MainWindowTest, SheetExplainsHeadersShownAlone)
{
    for (const qint32 minimum : {4, 5}) {
        for (const bool swedish : {false, true}) {
            auto w = makeWindow(swedish);
            auto doc = unitDocument();
            doc->properties.minimumSelection = minimum;
            w->session().documents().installDocument(std::move(doc), QStringLiteral("/s/units.kel"), true);
            ASSERT_TRUE(w->showSelection(test::firstCategoryOnly(*w->document(), 1)).done());
            SheetView *sheet = w->sheetView();
            if (minimum == 4) {
                EXPECT_EQ(sheet->sheetGeometry().answerLines, 4);
                EXPECT_TRUE(sheet->notice().isEmpty());
                continue;
            }
            EXPECT_EQ(sheet->sheetGeometry().answerLines, 0);
            EXPECT_EQ(sheet->notice(),
                      swedish ? QStringLiteral("Endast rubrikerna visas: urvalet har 4 svarande, och undersökningen "
                                               "visar svar bara för urval med minst 5.")
                              : QStringLiteral("Only the headers are shown: this selection has 4 respondents, and "
                                               "the survey shows answers only for selections of at least 5."));
            // Everyone (8) is enough again: the notice goes.
            ASSERT_TRUE(w->showSelection(fullSelection(*w->document())).done());
            EXPECT_TRUE(sheet->notice().isEmpty());
        }
    }
}

// Which items each place offers, and what a cell shows, are the engine's
// rules; here the pointer on the view reaches them: a right click opens the
// popup of the place (none beside the sheet), hovering fills the detail
// window with the question's index over the shown selection (unit 0: all
// "Yes"), not over everyone.
TEST_F(MainWindowTest, PointerOnTheSheetReachesPopupAndDetailWindow)
{
    auto w = makeWindow();
    w->session().documents().installDocument(unitDocument(), QStringLiteral("/s/units.kel"), true);
    ASSERT_TRUE(w->showSelection(test::firstCategoryOnly(*w->document(), 0)).done());
    w->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(w.get()));
    SheetView *sheet = w->sheetView();
    QMenu *popup = w->menus().mnuPopUp;
    QTest::mouseClick(sheet->viewport(), Qt::RightButton, {}, cellCentre(0, 0, 2));
    ASSERT_TRUE(popup->isVisible());
    EXPECT_TRUE(w->menus().mnuPShowRowsComments->isVisible()); // row 0 has a comment
    EXPECT_EQ(std::pair(w->session().popupHit().question, w->session().popupHit().row), std::pair(0, 0));
    popup->hide();
    for (const QPoint outside : {cellCentre(1, 0, 2), cellCentre(0, 4, 2)}) {
        QTest::mouseClick(sheet->viewport(), Qt::RightButton, {}, outside);
        EXPECT_FALSE(popup->isVisible());
    }

    DetailWindow *detail = w->detailWindow();
    ASSERT_NE(detail, nullptr);
    QTest::mouseMove(sheet->viewport(), cellCentre(0, 1, 2));
    for (int i = 0; i < 40 && detail->textValue().isEmpty(); ++i)
        QTest::qWait(50);
    const Document &doc = *w->document();
    EXPECT_EQ(detail->headerValue(2), QStringLiteral("Satisfaction"));
    EXPECT_TRUE(detail->textValue().contains(QStringLiteral("Yes"))) << detail->textValue().toStdString();
    const auto index = [&](const RowList &rows) {
        return formatIndex(calculateColumnsIndex(doc, {0}, rows), doc.properties.indexDecimals, QLocale());
    };
    EXPECT_EQ(detail->indexValue(1, false), index({0, 1, 2, 3}));
    EXPECT_NE(index({0, 1, 2, 3}), index({0, 1, 2, 3, 4, 5, 6, 7}));
}

// The small unit (9 respondents: shown, but below the minimum selection of
// 10) through the viewer's own commands: its overview has figures and no
// rows, and nothing that gives individual answers is offered or works,
// even when called without its menu item.
TEST_F(MainWindowTest, ASelectionWithoutRowsGivesNoAnswersThroughAnyCommand)
{
    auto w = makeWindow();
    w->session().documents().installDocument(kel::test::smallUnitSurvey({.smallUnit = 9}),
                                             QStringLiteral("/s/small.kel"), true);
    ASSERT_TRUE(w->sheetView()->hasSheet());
    const MainMenus &m = w->menus();
    // Everyone (89): rows and comments offered.
    EXPECT_TRUE(m.mnuVComments->isEnabled() && m.mnuECopyData->isEnabled());

    ASSERT_TRUE(w->showSelection(test::firstCategoryOnly(*w->document(), 2)).done());
    ASSERT_EQ(w->sheetView()->input().rows.size(), 9u);
    EXPECT_EQ(w->sheetView()->input().maxRowsDisplayed, 0);
    for (QAction *item : {m.mnuVComments, m.mnuECopyData, m.mnuPCopyData, m.mnuECopyToMiniOverview,
                          m.mnuPCopyToMiniOverview, m.mnuPCopyThisRowsAnswers, m.mnuPShowRowsComments})
        EXPECT_FALSE(item->isEnabled()) << item->objectName().toStdString();
    // The column's comments from the code line: the unit's cell comments exist.
    w->preparePopup(SheetHit{.place = SheetPlace::CodeLine, .line = -1, .question = 3, .row = -1});
    EXPECT_FALSE(m.mnuPShowColumnsComments->isEnabled());

    // Called directly, the commands ask the engine again and do nothing.
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->setText(QStringLiteral("untouched"));
    auto *commands = w->findChild<OverviewCommands *>();
    ASSERT_NE(commands, nullptr);
    commands->setClipboard(clipboard);
    commands->copyOverviewData();
    EXPECT_EQ(clipboard->text(), QStringLiteral("untouched"));
    w->commands().overview->showAllComments();
    w->commands().overview->showPopupComments(OverviewCommands::CommentsOf::Column);
    EXPECT_TRUE(w->findChildren<TextPopup *>().isEmpty());

    // The same selection's figures are still there.
    EXPECT_TRUE(w->session().mayOutput(OutputCommand::Figures));
    EXPECT_FALSE(w->session().mayOutput(OutputCommand::AllComments));
}

TEST_F(MainWindowTest, StatusPanelCopySaysWhatReplacedTheClipboard)
{
    for (const bool swedish : {false, true}) {
        auto w = makeWindow(swedish);
        open(*w, richRecipe());
        w->show();
        QGuiApplication::clipboard()->setText(QStringLiteral("before"));
        auto *panel = w->findChild<QLabel *>(QStringLiteral("stbMainPanel1"));
        ASSERT_NE(panel, nullptr);
        QTest::mouseDClick(panel, Qt::LeftButton);
        EXPECT_NE(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
        EXPECT_EQ(w->statusLine().text(),
                  swedish ? QStringLiteral("Totalindexets poäng har kopierats till urklipp!")
                          : QStringLiteral("The total index points have been copied to the "
                                           "clipboard!"));
    }
}

// Only one local document is taken, known by its magic words whatever its
// name; a file that only carries the name cannot fool it.
TEST(DroppedFiles, OnlyOneLocalDocumentIsTaken)
{
    QTemporaryDir dir;
    const QString renamed = dir.filePath(QStringLiteral("survey.dat"));
    ASSERT_TRUE(writer::employeeSurvey(false).writeFile(renamed));
    EXPECT_EQ(droppedDocument({QUrl::fromLocalFile(renamed)}), renamed);
    const QString notes = dir.filePath(QStringLiteral("notes.dat")),
                  shortFile = dir.filePath(QStringLiteral("short.dat"));
    ASSERT_TRUE(writer::writeBytes(notes, QByteArrayLiteral("plain text, not a survey\n")));
    ASSERT_TRUE(writer::writeBytes(shortFile, QByteArray("\x98\xF0\x8B\x5A\x51\x44\x8E", 7))); // one byte short
    const QList<QList<QUrl>> refused = {{QUrl::fromLocalFile(notes)},
                                        {QUrl::fromLocalFile(shortFile)},
                                        {QUrl::fromLocalFile(dir.path())},
                                        {QUrl::fromLocalFile(dir.filePath(QStringLiteral("missing.dat")))},
                                        {QUrl(QStringLiteral("https://example.org/a.kel"))},
                                        {QUrl::fromLocalFile(renamed), QUrl::fromLocalFile(renamed)}};
    for (const QList<QUrl> &urls : refused)
        EXPECT_TRUE(droppedDocument(urls).isEmpty()) << urls.first().toString().toStdString();
}
