// SPDX-License-Identifier: GPL-3.0-or-later
// The basic graph window, the window pool's choice of slot and the graph
// commands of the main window, off-screen, on a document written by the
// test writer and opened as the user opens it.
#include "chartsurvey.h"

#include "engine/document/document.h"
#include "engine/document/documentreader.h"
#include "engine/settings/settingsstore.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/chartwindow.h"
#include "gui/graphs/questionselectdialog.h"
#include "gui/overview/sheetview.h"
#include "gui/graphs/graphcommands.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "gui/common/windowpool.h"
#include "kelwriter.h"
#include "texts/statusline.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

BasicGraphDescription twoGroups(qint32 kind)
{
    BasicGraphDescription d;
    d.graphKind = kind;
    d.title = QStringLiteral("Title");
    d.selectionText = QStringLiteral("Everyone [4]");
    d.legends = {{QStringLiteral("yes"), 0x00FF00, 0}, {QStringLiteral("no"), 0x0000FF, 0}};
    for (const qint32 n : {3, 1, 2, 2}) // four answers in each group
        d.bars.push_back({n, n * 250, QString::number(n), QString::number(n * 25)});
    d.groups = {{0, 2, QStringLiteral("A"), 0, 2}, {2, 2, QStringLiteral("B"), 0, 2}};
    return d;
}

QImage clipboardPng()
{
    QImage png;
    if (const QMimeData *data = QGuiApplication::clipboard()->mimeData())
        png.loadFromData(data->data(QStringLiteral("image/png")));
    return png;
}

QByteArray head(const QString &path, int bytes)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(bytes) : QByteArray();
}

} // namespace

TEST(WindowPool, SlotChoice)
{
    std::vector<std::unique_ptr<QWidget>> windows;
    WindowSlotTable table;
    EXPECT_EQ(choosePoolSlot(table), 0);
    const QDateTime start = QDateTime::currentDateTimeUtc();
    for (int i = 0; i < WindowSlotCount; ++i) {
        windows.push_back(std::make_unique<QWidget>());
        windows.back()->show();
        table[std::size_t(i)] = {windows.back().get(), true, start.addSecs(100 - i)};
    }
    EXPECT_EQ(choosePoolSlot(table), 9) << "all visible: the one handed out longest ago";
    table[4].lastHandedOut = table[9].lastHandedOut;
    EXPECT_EQ(choosePoolSlot(table), 4) << "equal times: the lower slot";
    windows[6]->hide();
    windows[2]->hide();
    EXPECT_EQ(choosePoolSlot(table), 2) << "the first hidden one";
    table[7].inUse = false;
    EXPECT_EQ(choosePoolSlot(table), 7) << "a released slot first";
    windows[1].reset();
    EXPECT_EQ(choosePoolSlot(table), 1) << "a destroyed window frees its slot";
}

// The window with the settings the main window would give and the save
// dialog answered by the test.
class GraphWindowTest : public ::testing::Test
{
protected:
    GraphPictureContext context()
    {
        GraphPictureContext c{.options = &options, .settings = &settings};
        c.chooseFile = [this](const QString &title, const QString &, const QString &defaultName,
                              const QStringList &filters, int preselected) {
            seenTitle = title;
            seenDefaultName = defaultName;
            seenFilters = filters;
            seenPreselected = preselected;
            return answer;
        };
        c.reportError = [this](const QString &, const QString &text) { messages << text; };
        return c;
    }

    StatusLine status{false};
    UserOptions options;
    LastSettings settings;
    QTemporaryDir dir;
    std::pair<QString, QString> answer;
    QString seenTitle, seenDefaultName;
    QStringList seenFilters, messages;
    int seenPreselected = -1;
};

TEST_F(GraphWindowTest, MenuAndCopiedValuesFollowKindModeAndPermission)
{
    BasicGraphWindow w(false, status);
    ASSERT_TRUE(w.setUpGraph(twoGroups(HistogramGraph), {.allowCopy = true}, {}));
    EXPECT_TRUE(w.mnuPUsePercentage->isVisible() && !w.mnuPSetAsDefaultSize->isVisible());
    EXPECT_FALSE(w.mnuPCopy->isEnabled()) << "no pictures before the settings are known";
    QClipboard *clipboard = QGuiApplication::clipboard();
    w.mnuPCopyValues->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("A\tB\r\n3\t2\r\n1\t2"));
    w.mnuPUsePercentage->trigger();
    w.mnuPCopyValues->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("A\tB\r\n75\t50\r\n25\t50"));
    w.mnuPCopyLegends->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("Title\r\nyes\r\nno\r\nEveryone [4]"));

    // A new graph in the same window starts in count mode and takes its
    // document's rights: without them nothing reaches the clipboard.
    ASSERT_TRUE(w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = false}, {}));
    EXPECT_FALSE(w.percentage());
    EXPECT_TRUE(!w.mnuPUsePercentage->isVisible() && w.mnuPSetAsDefaultSize->isVisible());
    EXPECT_FALSE(w.mnuPCopyValues->isEnabled());
    clipboard->setText(QStringLiteral("untouched"));
    w.copyValues();
    EXPECT_EQ(clipboard->text(), QStringLiteral("untouched"));
}

TEST_F(GraphWindowTest, FractionGraphDefaultSizeAndTooSmallWindow)
{
    BasicGraphWindow w(false, status);
    std::optional<FractionGraphDefaultSize> stored;
    w.setDefaultSizeHandler([&](const FractionGraphDefaultSize &s) { stored = s; });
    w.setUpGraph(twoGroups(FractionGraph), {}, {.windowWidthTwips = 9300, .barWidth = 46});
    EXPECT_EQ(w.width(), qRound(9300 * w.logicalDpiX() / 1440.0));
    w.mnuPSetAsDefaultSize->trigger();
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->barWidth, 46); // the height was made from it
    EXPECT_EQ(stored->windowWidthTwips, 9300);
    w.resize(w.width(), w.height() + 3); // two groups: 1.5 px a group more
    w.mnuPSetAsDefaultSize->trigger();
    EXPECT_EQ(stored->barWidth, 48);

    w.setUpGraph(twoGroups(HistogramGraph), {}, {});
    w.show();
    QImage image(600, 400, QImage::Format_RGB32);
    for (const auto &[width, tooBig] : {std::pair{120, true}, {600, false}}) {
        w.resize(width, 300);
        w.render(&image);
        EXPECT_EQ(w.graphTooBig(), tooBig) << width;
    }
}

// The histogram's layout needs 900 x 700 here; the search grows from the
// default size and stops at the first size that fits, at the available
// area when that is all there is.
TEST(GraphWindowSize, HistogramsGrowUntilTheLayoutFits)
{
    const QSize start(620, 460);
    const auto needs = [](QSize need) {
        return [need](QSize s) { return s.width() >= need.width() && s.height() >= need.height(); };
    };
    EXPECT_EQ(grownGraphWindowSize(start, QSize(1264, 952), needs(start)), start) << "fits at once";
    EXPECT_EQ(grownGraphWindowSize(start, QSize(1264, 952), needs(QSize(700, 100))).height(), 460)
        << "only the width it needs";
    const QSize grown = grownGraphWindowSize(start, QSize(1264, 952), needs(QSize(900, 700)));
    EXPECT_GE(grown.width(), 900);
    EXPECT_GE(grown.height(), 700);
    EXPECT_LT(grown.width(), 900 + 620 / 8 + 1) << "no more than one step beyond";
    // The available area is the edge: just enough, and one pixel short.
    EXPECT_EQ(grownGraphWindowSize(start, QSize(900, 700), needs(QSize(900, 700))), QSize(900, 700));
    EXPECT_EQ(grownGraphWindowSize(start, QSize(899, 700), needs(QSize(900, 700))), QSize(899, 700));
    EXPECT_EQ(grownGraphWindowSize(start, QSize(500, 400), needs(start)), QSize(500, 400)) << "never beyond the screen";
}

// A fraction graph keeps the rules' size up to the available height; from
// one pixel beyond, the window takes the available height, the scroll bar
// comes beside the graph, and the graph keeps its height.
TEST(GraphWindowSize, FractionGraphsScrollFromOnePixelBeyondTheScreen)
{
    const QSize available(1264, 952);
    struct Case {
        int formulaHeight;
        QSize window;
    };
    const Case cases[] = {{951, {600, 951}}, {952, {600, 952}}, {953, {617, 952}}, {3000, {617, 952}}};
    for (const Case &c : cases) {
        const FractionWindowFit fit = fittedFractionWindow(QSize(600, c.formulaHeight), available, 17);
        EXPECT_EQ(fit.window, c.window) << c.formulaHeight;
        EXPECT_EQ(fit.graphHeight, c.formulaHeight);
    }
    EXPECT_EQ(fittedFractionWindow(QSize(2000, 500), available, 17).window, QSize(1264, 500));
}

namespace {

// Twelve questions with long texts, as a block of a real survey.
BasicGraphDescription manyGroups(qint32 kind, int groups)
{
    BasicGraphDescription d;
    d.graphKind = kind;
    d.title = QStringLiteral("Leadership and working climate");
    d.selectionText = QStringLiteral("Everyone [120]");
    const char *scale[] = {"Strongly agree", "Agree", "Neither", "Disagree", "Strongly disagree"};
    for (int a = 0; a < 5; ++a)
        d.legends.push_back({QString::fromUtf8(scale[a]), 0x202020 * (a + 1), 0});
    for (int g = 0; g < groups; ++g) {
        const qint32 first = qint32(d.bars.size());
        for (int a = 0; a < 5; ++a)
            d.bars.push_back({24, 200, QStringLiteral("24"), QStringLiteral("20")});
        d.groups.push_back(
            {first, 5, QStringLiteral("%1 My manager gives me clear goals for my work, number %1").arg(g + 1), 0, 5});
    }
    return d;
}

} // namespace

TEST_F(GraphWindowTest, GraphWindowsOpenDrawnWithinTheAvailableArea)
{
    const QSize available(1264, 952);
    BasicGraphWindow w(false, status);
    w.setAvailableArea(available);
    // The default size is too small for this block: the window grows.
    w.setUpGraph(manyGroups(HistogramGraph, 12), {}, {});
    w.resize(620, 460);
    w.grab();
    ASSERT_TRUE(w.graphTooBig()) << "the case the growth is for";
    w.setUpGraph(manyGroups(HistogramGraph, 12), {}, {});
    w.grab();
    EXPECT_FALSE(w.graphTooBig()) << w.width() << "x" << w.height();
    EXPECT_LE(w.width(), available.width());
    EXPECT_LE(w.height(), available.height());

    // 40 bars of 46 pixels: taller than the screen. The window takes the
    // available height and the graph, at its full height, scrolls.
    w.setPictureContext(context());
    w.setUpGraph(manyGroups(FractionGraph, 40), {.allowSavePicture = true}, {.windowWidthTwips = 9300, .barWidth = 46});
    w.show();
    EXPECT_EQ(w.height(), available.height());
    EXPECT_GT(w.graphSize().height(), 40 * 46);
    EXPECT_FALSE(w.scrollBar()->isHidden());
    w.grab();
    EXPECT_FALSE(w.graphTooBig());
    // The keyboard reaches the bottom; saved pictures show the whole graph.
    QTest::keyClick(&w, Qt::Key_End);
    EXPECT_EQ(w.scrollBar()->value(), w.graphSize().height() - w.height());
    EXPECT_EQ(w.picture(BasicGraphPictureOptions{.whiteSpace = true}).size, w.graphSize() * 2);
    // The stored default size is the graph's, not the window's.
    EXPECT_EQ(w.currentDefaultSize()->barWidth, 46);
    // Made as tall as its graph, the window draws the graph in itself again.
    w.resize(w.width(), w.graphSize().height());
    EXPECT_TRUE(w.scrollBar()->isHidden());
    EXPECT_EQ(w.graphSize(), w.size());
}

// A window put partly off the screen is moved back when it shows, both
// kinds of graph window.
TEST_F(GraphWindowTest, GraphWindowsShowWhollyOnTheScreen)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    BasicGraphWindow basic(false, status);
    basic.setUpGraph(twoGroups(HistogramGraph), {}, {});
    ChartWindow chart(false);
    chart.setUpChart(ChartDescription{});
    for (QWidget *w : {static_cast<QWidget *>(&basic), static_cast<QWidget *>(&chart)}) {
        w->resize(w->size().boundedTo(screen.size() - QSize(40, 40)));
        w->move(screen.right() - 20, screen.bottom() - 20);
        w->show();
        QCoreApplication::processEvents();
        EXPECT_TRUE(screen.contains(w->frameGeometry())) << w->objectName().toStdString();
    }
}

TEST_F(GraphWindowTest, RightsGateItemsAndShortcuts)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = true}, {});
    w.setPictureContext(context());
    EXPECT_TRUE(w.mnuPCopy->isEnabled() && !w.mnuPPrint->isEnabled() && !w.mnuPSave->isEnabled());
    answer = {dir.filePath(QStringLiteral("g.emf")), QStringLiteral("Windows enhanced meta file (*.emf)")};
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(seenTitle.isEmpty()) << "no saving without the right";
    QTest::keyClick(&w, Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(clipboardPng().isNull());

    // Another document's graph in the same window takes that one's rights.
    w.setUpGraph(twoGroups(FractionGraph), {.allowSavePicture = true}, {});
    QGuiApplication::clipboard()->setText(QStringLiteral("untouched"));
    QTest::keyClick(&w, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("untouched"));
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(QFile::exists(answer.first));
}

// Print and Print Preview follow the print format command's rule: they need
// a printer besides the document's permission, in both kinds of graph
// window, on the popup and through Ctrl+P.
TEST_F(GraphWindowTest, PrintingNeedsAPrinterAndTheRight)
{
    struct Case {
        bool printer;
        bool allowed;
    };
    const Case cases[] = {{false, false}, {false, true}, {true, false}, {true, true}};
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "printer " << c.printer << ", allowed " << c.allowed);
        const bool expected = c.printer && c.allowed;
        GraphPictureContext ctx = context();
        ctx.printerInstalled = c.printer;
        int previews = 0;
        QString footer;
        ctx.showPreview = [&](const Picture &picture, const QString &line) {
            ++previews;
            footer = line;
            EXPECT_TRUE(picture.isValid());
        };
        const GraphPermissions rights{.allowPrint = c.allowed};

        BasicGraphWindow basic(false, status);
        basic.setUpGraph(twoGroups(HistogramGraph), rights, {});
        basic.setPictureContext(ctx);
        EXPECT_EQ(basic.mnuPPrint->isEnabled(), expected);
        EXPECT_EQ(basic.mnuPPrintPreview->isEnabled(), expected);
        EXPECT_FALSE(basic.mnuPPrintPreview->text().isEmpty());
        basic.mnuPPrintPreview->trigger();
        EXPECT_EQ(previews, expected ? 1 : 0);
        if (expected) {
            EXPECT_TRUE(footer.startsWith(QStringLiteral("Created by"))) << footer.toStdString();
        }
        if (!expected) {
            // Ctrl+P must not reach the printer either (no printer: it would
            // end in a failure message).
            status.clearStatus();
            QTest::keyClick(&basic, Qt::Key_P, Qt::ControlModifier);
            EXPECT_TRUE(status.text().isEmpty()) << status.text().toStdString();
            EXPECT_FALSE(basic.printGraph());
        }

        ChartWindow chart(false);
        chart.setUpChart(ChartDescription{});
        chart.setPictureContext(status, ctx, rights);
        EXPECT_EQ(chart.mnuPPrint->isEnabled(), expected);
        EXPECT_EQ(chart.mnuPPrintPreview->isEnabled(), expected);
        chart.mnuPPrintPreview->trigger();
        EXPECT_EQ(previews, expected ? 2 : 0);
        if (!expected) {
            EXPECT_FALSE(chart.printGraph());
        }
    }
}

TEST_F(GraphWindowTest, CopySizeFollowsWhiteSpaceScaleAndOpaque)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = true}, {});
    w.setPictureContext(context());
    w.resize(400, 300);
    ASSERT_TRUE(w.doCopy());
    const QImage plain = clipboardPng();
    EXPECT_EQ(plain.size(), QSize(380 * 2, 280 * 2));
    EXPECT_EQ(qAlpha(plain.pixel(0, plain.height() - 1)), 0) << "transparent unless opaque";

    options.graphCopySaveWhiteSpace = true;
    options.graphCopySaveOpaque = true;
    ASSERT_TRUE(w.doCopy());
    const QImage spaced = clipboardPng();
    EXPECT_EQ(spaced.size() - plain.size(), QSize(20 * 2, 20 * 2));
    EXPECT_EQ(qAlpha(spaced.pixel(0, 0)), 255);

    // The picture is the graph as it was copied, not as the window shows it later.
    const Picture picture = w.picture();
    w.setUpGraph(twoGroups(HistogramGraph), {.allowCopy = true}, {});
    w.resize(200, 200);
    QImage image(picture.size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    picture.paint(painter);
    painter.end();
    EXPECT_EQ(image, spaced.convertToFormat(QImage::Format_ARGB32));
}

TEST_F(GraphWindowTest, SaveWritesEachFormatAndRemembersIt)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(HistogramGraph), {.allowSavePicture = true}, {});
    w.setPictureContext(context());
    answer = {dir.filePath(QStringLiteral("graph")), QStringLiteral("Windows meta file (*.wmf)")};
    ASSERT_TRUE(w.saveGraph());
    EXPECT_EQ(seenPreselected, 0);
    EXPECT_EQ(seenDefaultName, QStringLiteral("abc.emf"));
    EXPECT_EQ(head(dir.filePath(QStringLiteral("graph.wmf")), 4), QByteArray::fromHex("D7CDC69A"));
    EXPECT_EQ(settings.graphSaveFolder, dir.path());

    answer = {dir.filePath(QStringLiteral("graph.emf")), seenFilters.value(0)};
    ASSERT_TRUE(w.saveGraph());
    EXPECT_EQ(seenPreselected, 1) << "the last type is offered first";
    EXPECT_EQ(seenDefaultName, QStringLiteral("abc.wmf"));
    EXPECT_EQ(head(answer.first, 4), QByteArray::fromHex("01000000"));

    // A type the dialog does not know: a message and nothing written.
    answer = {dir.filePath(QStringLiteral("other.emf")), QStringLiteral("All files (*)")};
    EXPECT_FALSE(w.saveGraph());
    EXPECT_FALSE(QFile::exists(answer.first));
    EXPECT_EQ(messages.size(), 1);
    answer = {};
    EXPECT_FALSE(w.saveGraph());
    EXPECT_TRUE(status.text().isEmpty()) << "cancelling leaves an empty line, not the start text";
}

// The commands through the main window, on the chart survey with copying
// allowed and a minimum of three for splits (Site X has one respondent).
class GraphCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        kel::writer::SurveyBuilder b = kel::test::chartSurvey();
        b.header().minimumGraphSelection = 3;
        b.header().allowCopy = FileTrue;
        const QString path = mDir.filePath(QStringLiteral("survey.kel"));
        ASSERT_TRUE(b.build().writeFile(path));
        mStore = std::make_unique<SettingsStore>(SettingsLocation{.file = mDir.filePath(QStringLiteral("k.ini"))});
        window = std::make_unique<MainWindow>(*mStore, false, MainWindowEnvironment{});
        window->setMessageHandler([](QMessageBox::Icon, const QString &, const QString &) {});
        ASSERT_TRUE(window->openDocument(path, false, QStringLiteral("t")));
        SheetHit hit;
        hit.place = SheetPlace::AnswerCell;
        hit.question = kel::test::Q1;
        emit window->sheetView()->popupRequested(hit, QPoint(10, 10));
        window->menus().mnuPopUp->hide();
    }

    std::vector<BasicGraphWindow *> visibleGraphs() const
    {
        std::vector<BasicGraphWindow *> out;
        for (const WindowSlot &slot : window->session().windowSlots(SlotTable::BasicGraphs))
            if (auto *g = qobject_cast<BasicGraphWindow *>(slot.window.data()); g && g->isVisible())
                out.push_back(g);
        return out;
    }

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    std::unique_ptr<MainWindow> window;
};

TEST_F(GraphCommandsTest, MenuGraphsOpenInPooledWindows)
{
    const MainMenus &m = window->menus();
    m.mnuPS2Total->trigger();
    auto graphs = visibleGraphs();
    ASSERT_EQ(graphs.size(), 1u);
    EXPECT_EQ(graphs[0]->description().graphKind, FractionGraph);
    EXPECT_EQ(graphs[0]->description().selectionText, QStringLiteral("Everyone [8]"));
    // The document allows copying only; the copy uses the main window's settings.
    EXPECT_TRUE(graphs[0]->mnuPCopy->isEnabled() && !graphs[0]->mnuPSave->isEnabled());
    graphs[0]->mnuPCopy->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("The graph has been copied to the clipboard!"));

    ASSERT_EQ(m.mnuPS1SplitByColumn.size(), 3);
    EXPECT_FALSE(m.mnuPS1SplitByColumn[2]->isEnabled()); // Site X: 1 of a minimum 3
    m.mnuPS1SplitByColumn[1]->trigger();
    EXPECT_EQ(visibleGraphs().at(1)->windowTitle(), QStringLiteral("Question Histogram: Q1 split by Role"));
    m.mnuVB2Item[kel::test::WorkBlock]->trigger();
    // The window keeps its own copy: a later graph leaves it as it was.
    const QString label = graphs[0]->description().groups.at(0).label;
    m.mnuPS1Total->trigger();
    EXPECT_EQ(graphs[0]->description().groups.at(0).label, label);
    for (int i = 0; i < 7; ++i) {
        QTest::qWait(2); // distinct hand-out times
        m.mnuPS1Total->trigger();
    }
    EXPECT_EQ(visibleGraphs().size(), 10u);
    EXPECT_EQ(window->session().windowSlots(SlotTable::BasicGraphs)[0].window->windowTitle(),
              QStringLiteral("Question Histogram: Q1"))
        << "the eleventh replaced the oldest";
    window->closeDocument();
    EXPECT_TRUE(visibleGraphs().empty()) << "closing the document closes the graphs";
}

// User blocks cannot be reached from the popup (no overview line is theirs):
// the View menu lists them, only them, with their block graphs, and the
// graphs are the same as a document block's.
TEST(UserBlockGraphs, TheViewMenuGraphsUserBlocks)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("survey.kel"));
    ASSERT_TRUE(kel::test::chartSurvey().build().writeFile(path));
    SettingsStore store(SettingsLocation{.file = dir.filePath(QStringLiteral("k.ini"))});
    const QString key = QStringLiteral("Documents\\") + kel::test::readChartSurvey()->guidText();
    store.writeDword(key, QStringLiteral("Block Items"), 3);
    // Members stored out of order: the graph still shows Q1 before Q2.
    store.writeString(key + QStringLiteral("\\Block 002"), QStringLiteral("Name"), QStringLiteral("Mine"));
    store.writeString(key + QStringLiteral("\\Block 002"), QStringLiteral("Included Data Headers"),
                      QStringLiteral("%1|%2").arg(kel::test::Q2).arg(kel::test::Q1));

    MainWindow window(store, false, MainWindowEnvironment{});
    window.setMessageHandler([](QMessageBox::Icon, const QString &, const QString &) {});
    ASSERT_TRUE(window.openDocument(path, false, QStringLiteral("t")));
    QMenu *menu = window.menus().mnuVUserBlockGraphs;
    EXPECT_TRUE(menu->menuAction()->isVisible());
    EXPECT_TRUE(menu->menuAction()->isEnabled());
    const QList<QAction *> blocks = menu->actions();
    ASSERT_EQ(blocks.size(), 1) << "the user block only; the document's blocks have the popup";
    EXPECT_EQ(blocks[0]->text(), QStringLiteral("Mine"));
    QAction *histogram = nullptr;
    QStringList offered;
    for (QAction *item : blocks[0]->menu()->actions()) {
        offered << item->text();
        if (item->text() == QStringLiteral("Block &Histogram"))
            histogram = item;
    }
    // Q1 and Q2 carry points, so the writer gives them the index graph bit
    // besides histogram and graph; a block of them offers what they offer.
    EXPECT_EQ(offered,
              (QStringList{QStringLiteral("Block &Index Graph..."), QStringLiteral("Block &Histogram"),
                           QStringLiteral("Block &Graph")}));
    ASSERT_NE(histogram, nullptr);
    histogram->trigger();
    BasicGraphWindow *graph = nullptr;
    for (const WindowSlot &slot : window.session().windowSlots(SlotTable::BasicGraphs))
        if (auto *g = qobject_cast<BasicGraphWindow *>(slot.window.data()); g && g->isVisible())
            graph = g;
    ASSERT_NE(graph, nullptr);
    EXPECT_EQ(graph->windowTitle(), QStringLiteral("Block Histogram: Mine"));
    ASSERT_EQ(graph->description().groups.size(), 2u);
    EXPECT_TRUE(graph->description().groups[0].label.startsWith(QStringLiteral("1 ")));
    EXPECT_TRUE(graph->description().groups[1].label.startsWith(QStringLiteral("2 ")));

    window.closeDocument();
    EXPECT_FALSE(menu->menuAction()->isVisible());
    EXPECT_TRUE(menu->actions().isEmpty());
}

TEST(QuestionSelectDialogTest, OffersTheOtherOverviewQuestionsThatMaySplit)
{
    SurveyBuilder b(3);
    b.addQuestion({.heading = QStringLiteral("Hidden"), .inOverview = false}, {{.text = QStringLiteral("a")}});
    const qint32 q = b.addQuestion({.heading = QStringLiteral("R&D")}, {{.text = QStringLiteral("a")}});
    b.addQuestion({.heading = QStringLiteral("Gate")}, {{.text = QStringLiteral("a")}});
    b.addQuestion({.heading = QStringLiteral("Size"), .text = QStringLiteral("How big?")},
                  {{.text = QStringLiteral("a")}});
    ReadResult read = readDocumentBytes(b.toBytes());
    ASSERT_TRUE(read.document);
    QuestionSelectDialog dialog(
        *read.document, q, [](qint32 s) { return s != 2; }, true);
    EXPECT_EQ(dialog.lblQuestionsLabel->text(), QStringLiteral("&Visa R&&D fördelad på:")) << "the & escaped";
    ASSERT_EQ(dialog.lstQuestions->count(), 1); // not itself, not hidden, not gated
    // Shown, the list has the focus and a current item of its own making;
    // nothing is chosen until the user chooses, so Enter splits by nothing.
    dialog.show();
    dialog.activateWindow();
    dialog.lstQuestions->setFocus(Qt::TabFocusReason);
    QCoreApplication::processEvents();
    dialog.lstQuestions->setCurrentRow(0, QItemSelectionModel::NoUpdate); // as a focus-in does
    EXPECT_TRUE(dialog.lstQuestions->selectedItems().isEmpty());
    EXPECT_FALSE(dialog.cmdOK->isEnabled());
    EXPECT_TRUE(dialog.lblQuestionFullText->text().isEmpty());
    QTest::keyClick(dialog.lstQuestions, Qt::Key_Return);
    EXPECT_FALSE(dialog.accepted());
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(dialog.lstQuestions, Qt::Key_Space); // the keyboard's way to choose
    EXPECT_TRUE(dialog.cmdOK->isEnabled());
    dialog.lstQuestions->clearSelection();
    EXPECT_FALSE(dialog.cmdOK->isEnabled()) << "a choice taken back disables OK again";
    dialog.lstQuestions->setCurrentRow(0);
    EXPECT_EQ(dialog.lblQuestionFullText->text(), QStringLiteral("How big?"));
    dialog.cmdOK->click();
    EXPECT_TRUE(dialog.accepted());
    EXPECT_EQ(dialog.chosenQuestion(), 3);
}
