// SPDX-License-Identifier: GPL-3.0-or-later
// The basic graph window, the window pool's choice of slot and the graph
// commands of the main window, off-screen, on a document written by the
// test writer and opened as the user opens it.
#include "chartsurvey.h"

#include "engine/document/document.h"
#include "engine/document/documentreader.h"
#include "engine/settings/settingsstore.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/questionselectdialog.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/graphcommands.h"
#include "gui/shell/mainwindow.h"
#include "gui/shell/windowpool.h"
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
        for (const WindowSlot &slot : window->windowSlots(SlotTable::BasicGraphs))
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
    EXPECT_EQ(window->windowSlots(SlotTable::BasicGraphs)[0].window->windowTitle(),
              QStringLiteral("Question Histogram: Q1"))
        << "the eleventh replaced the oldest";
    window->closeDocument();
    EXPECT_TRUE(visibleGraphs().empty()) << "closing the document closes the graphs";
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
    EXPECT_FALSE(dialog.cmdOK->isEnabled());
    dialog.lstQuestions->setCurrentRow(0);
    EXPECT_EQ(dialog.lblQuestionFullText->text(), QStringLiteral("How big?"));
    dialog.cmdOK->click();
    EXPECT_TRUE(dialog.accepted());
    EXPECT_EQ(dialog.chosenQuestion(), 3);
}
