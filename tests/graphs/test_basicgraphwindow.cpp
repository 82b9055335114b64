// SPDX-License-Identifier: GPL-3.0-or-later
// The basic graph window, the window pool's choice of slot and the graph
// commands of the main window, off-screen, on a document written by the
// test writer and opened as the user opens it.
#include "engine/document/document.h"
#include "engine/document/documentreader.h"
#include "gui/graphs/questionselectdialog.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/shell/graphcommands.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"
#include "gui/shell/windowpool.h"
#include "kelwriter.h"
#include "engine/settings/settingsstore.h"
#include "texts/statusline.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
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
    auto bar = [](qint32 n, qint32 perMille, const char *count, const char *percent) {
        BasicGraphBar b;
        b.count = n;
        b.perMille = perMille;
        b.countText = QString::fromUtf8(count);
        b.percentText = QString::fromUtf8(percent);
        return b;
    };
    d.bars = {bar(3, 750, "3", "75"), bar(1, 250, "1", "25"), bar(2, 500, "2", "50"), bar(2, 500, "2", "50")};
    d.groups = {{0, 2, QStringLiteral("A"), 0, 2}, {2, 2, QStringLiteral("B"), 0, 2}};
    return d;
}

} // namespace

TEST(WindowPool, SlotChoice)
{
    std::vector<std::unique_ptr<QWidget>> windows;
    WindowSlotTable table;
    EXPECT_EQ(choosePoolSlot(table), 0); // nothing handed out yet
    const QDateTime start = QDateTime::currentDateTimeUtc();
    for (int i = 0; i < WindowSlotCount; ++i) {
        windows.push_back(std::make_unique<QWidget>());
        windows.back()->show();
        table[std::size_t(i)] = {windows.back().get(), true, start.addSecs(100 - i)};
    }
    // All visible: the one handed out longest ago (slot 9 here).
    EXPECT_EQ(choosePoolSlot(table), 9);
    table[4].lastHandedOut = table[9].lastHandedOut; // equal times: the lower slot
    EXPECT_EQ(choosePoolSlot(table), 4);
    windows[6]->hide();
    windows[2]->hide();
    EXPECT_EQ(choosePoolSlot(table), 2); // the first hidden one
    table[7].inUse = false;
    EXPECT_EQ(choosePoolSlot(table), 7); // a slot never used (or released) first
    windows[1].reset();                  // a destroyed window frees its slot
    EXPECT_EQ(choosePoolSlot(table), 1);
}

class GraphWindowTest : public ::testing::Test
{
protected:
    StatusLine status{false};
};

TEST_F(GraphWindowTest, MenuFollowsKindAndPermissions)
{
    BasicGraphWindow w(false, status);
    ASSERT_TRUE(w.setUpGraph(twoGroups(HistogramGraph), {.allowCopy = true}, {}));
    EXPECT_TRUE(w.mnuPUsePercentage->isVisible());
    EXPECT_FALSE(w.mnuPSetAsDefaultSize->isVisible());
    EXPECT_TRUE(w.mnuPCopyValues->isEnabled());
    // The picture commands wait for the settings they need.
    EXPECT_FALSE(w.mnuPCopy->isEnabled());
    EXPECT_FALSE(w.mnuPPrint->isEnabled());
    EXPECT_FALSE(w.mnuPSave->isEnabled());

    ASSERT_TRUE(w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = false}, {}));
    EXPECT_FALSE(w.mnuPUsePercentage->isVisible());
    EXPECT_TRUE(w.mnuPSetAsDefaultSize->isVisible());
    EXPECT_FALSE(w.mnuPCopyValues->isEnabled());
    EXPECT_FALSE(w.mnuPCopyLegends->isEnabled());

    BasicGraphWindow sv(true, status);
    EXPECT_EQ(sv.mnuPCopyLegends->text(), QStringLiteral("Kopiera &förklaringar"));
    EXPECT_EQ(sv.mnuPSetAsDefaultSize->text(), QStringLiteral("Sätt som stan&dardstorlek"));
}

TEST_F(GraphWindowTest, CopyValuesFollowsPercentageModeAndPermission)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(HistogramGraph), {.allowCopy = true}, {});
    QClipboard *clipboard = QGuiApplication::clipboard();
    w.mnuPCopyValues->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("A\tB\r\n3\t2\r\n1\t2"));
    EXPECT_EQ(status.text(), QStringLiteral("The graph values has been copied to the clipboard!"));
    w.mnuPUsePercentage->trigger();
    EXPECT_TRUE(w.percentage());
    w.mnuPCopyValues->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("A\tB\r\n75\t50\r\n25\t50"));
    w.mnuPCopyLegends->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("Title\r\nyes\r\nno\r\nEveryone [4]"));
    EXPECT_EQ(status.text(), QStringLiteral("The graph legends has been copied to the clipboard!"));

    // A new graph in the same window starts in count mode; without the
    // permission nothing reaches the clipboard.
    w.setUpGraph(twoGroups(HistogramGraph), {.allowCopy = false}, {});
    EXPECT_FALSE(w.percentage());
    clipboard->setText(QStringLiteral("untouched"));
    w.copyValues();
    EXPECT_EQ(clipboard->text(), QStringLiteral("untouched"));
}

TEST_F(GraphWindowTest, FractionGraphSizeAndDefaultSizeRoundTrip)
{
    BasicGraphWindow w(false, status);
    std::optional<FractionGraphDefaultSize> stored;
    w.setDefaultSizeHandler([&](const FractionGraphDefaultSize &s) { stored = s; });
    const FractionGraphDefaultSize defaults{.windowWidthTwips = 9300, .barWidth = 46};
    w.setUpGraph(twoGroups(FractionGraph), {}, defaults);
    EXPECT_EQ(w.width(), qRound(9300 * w.logicalDpiX() / 1440.0));
    w.mnuPSetAsDefaultSize->trigger();
    ASSERT_TRUE(stored.has_value());
    EXPECT_EQ(stored->barWidth, 46); // the height was made from it
    EXPECT_EQ(stored->windowWidthTwips, 9300);

    // Two groups more in height -> one more pixel a group, rounded.
    w.resize(w.width(), w.height() + 3);
    w.mnuPSetAsDefaultSize->trigger();
    EXPECT_EQ(stored->barWidth, 48); // 47.5 -> 48
}

TEST_F(GraphWindowTest, TooSmallWindowShowsTheMessageInstead)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(HistogramGraph), {}, {});
    w.resize(120, 300);
    w.show();
    QImage image(w.size(), QImage::Format_RGB32);
    w.render(&image);
    EXPECT_TRUE(w.graphTooBig());
    w.resize(600, 400);
    w.render(&image);
    EXPECT_FALSE(w.graphTooBig());
}

// Copy, save and print of the graph picture, with the settings the main
// window would give and the save dialog answered by the test.
class GraphPictureTest : public GraphWindowTest
{
protected:
    GraphPictureContext context(QStringList *messages = nullptr)
    {
        GraphPictureContext c;
        c.options = &options;
        c.settings = &settings;
        c.chooseFile = [this](const QString &title, const QString &, const QString &defaultName,
                              const QStringList &filters, int preselected) {
            seenTitle = title;
            seenDefaultName = defaultName;
            seenFilters = filters;
            seenPreselected = preselected;
            return answer;
        };
        c.reportError = [messages](const QString &, const QString &text) {
            if (messages)
                *messages << text;
        };
        return c;
    }
    static QImage clipboardPng()
    {
        QImage png;
        if (const QMimeData *data = QGuiApplication::clipboard()->mimeData())
            png.loadFromData(data->data(QStringLiteral("image/png")));
        return png;
    }
    static QByteArray head(const QString &path, int bytes)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.read(bytes) : QByteArray();
    }

    UserOptions options;
    LastSettings settings;
    QTemporaryDir dir;
    std::pair<QString, QString> answer;
    QString seenTitle, seenDefaultName;
    QStringList seenFilters;
    int seenPreselected = -1;
};

TEST_F(GraphPictureTest, PermissionsGateItemsAndShortcuts)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = true}, {});
    EXPECT_FALSE(w.mnuPCopy->isEnabled()) << "nothing to copy with before the settings are known";
    w.setPictureContext(context());
    EXPECT_TRUE(w.mnuPCopy->isEnabled());
    EXPECT_FALSE(w.mnuPPrint->isEnabled());
    EXPECT_FALSE(w.mnuPSave->isEnabled());

    QGuiApplication::clipboard()->setText(QStringLiteral("untouched"));
    answer = {dir.filePath(QStringLiteral("g.emf")), QStringLiteral("Windows enhanced meta file (*.emf)")};
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(seenTitle.isEmpty()) << "no save dialog without AllowSavePicture";
    QTest::keyClick(&w, Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(status.text().isEmpty()) << "no printing without AllowPrint";
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("untouched"));
    QTest::keyClick(&w, Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(clipboardPng().isNull());
    EXPECT_EQ(status.text(), QStringLiteral("The graph has been copied to the clipboard!"));

    // Another document's graph in the same window takes that one's rights.
    w.setUpGraph(twoGroups(FractionGraph), {.allowSavePicture = true}, {});
    EXPECT_FALSE(w.mnuPCopy->isEnabled());
    QGuiApplication::clipboard()->setText(QStringLiteral("untouched"));
    QTest::keyClick(&w, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("untouched"));
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(seenTitle, QStringLiteral("Save Graph"));
    EXPECT_TRUE(QFile::exists(answer.first));
}

TEST_F(GraphPictureTest, CopySizeFollowsWhiteSpaceScaleAndOpaque)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = true}, {});
    w.setPictureContext(context());
    w.resize(400, 300);
    ASSERT_TRUE(w.doCopy());
    const QImage plain = clipboardPng();
    EXPECT_EQ(plain.size(), QSize(380 * 2, 280 * 2));
    EXPECT_EQ(qAlpha(plain.pixel(0, plain.height() - 1)), 0) << "transparent unless opaque";
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    EXPECT_TRUE(data->data(QStringLiteral("image/svg+xml")).contains("<svg"));
    EXPECT_TRUE(data->data(QStringLiteral("image/x-emf")).startsWith(QByteArray::fromHex("01000000")));

    options.graphCopySaveWhiteSpace = true;
    options.graphCopySaveOpaque = true;
    ASSERT_TRUE(w.doCopy());
    const QImage spaced = clipboardPng();
    EXPECT_EQ(spaced.size() - plain.size(), QSize(20 * 2, 20 * 2));
    EXPECT_EQ(qAlpha(spaced.pixel(0, 0)), 255);

    // The picture is the graph as it was copied, not as the window shows
    // it later.
    const Picture picture = w.picture();
    w.setUpGraph(twoGroups(HistogramGraph), {.allowCopy = true}, {});
    w.resize(200, 200);
    EXPECT_EQ(picture.size, spaced.size());
    QImage image(picture.size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    picture.paint(painter);
    painter.end();
    EXPECT_EQ(image, spaced.convertToFormat(QImage::Format_ARGB32));
}

TEST_F(GraphPictureTest, SaveWritesEachFormatAndRemembersIt)
{
    BasicGraphWindow w(false, status);
    w.setUpGraph(twoGroups(HistogramGraph), {.allowSavePicture = true}, {});
    QStringList messages;
    w.setPictureContext(context(&messages));

    answer = {dir.filePath(QStringLiteral("graph")), QStringLiteral("Windows meta file (*.wmf)")};
    ASSERT_TRUE(w.saveGraph());
    EXPECT_EQ(seenFilters, QStringList({QStringLiteral("Windows enhanced meta file (*.emf)"),
                                        QStringLiteral("Windows meta file (*.wmf)")}));
    EXPECT_EQ(seenPreselected, 0);
    EXPECT_EQ(seenDefaultName, QStringLiteral("abc.emf"));
    EXPECT_EQ(head(dir.filePath(QStringLiteral("graph.wmf")), 4), QByteArray::fromHex("D7CDC69A"));
    EXPECT_EQ(settings.graphSaveFormat, 2);
    EXPECT_EQ(settings.graphSaveFolder, dir.path());
    EXPECT_EQ(status.text(), QStringLiteral("The graph has been saved!"));

    answer = {dir.filePath(QStringLiteral("graph.emf")), QStringLiteral("Windows enhanced meta file (*.emf)")};
    ASSERT_TRUE(w.saveGraph());
    EXPECT_EQ(seenPreselected, 1) << "the last type is offered first";
    EXPECT_EQ(seenDefaultName, QStringLiteral("abc.wmf"));
    const QByteArray emf = head(answer.first, 64);
    ASSERT_EQ(emf.size(), 64);
    EXPECT_EQ(emf.left(4), QByteArray::fromHex("01000000"));
    EXPECT_EQ(emf.mid(40, 4), QByteArray(" EMF"));
    EXPECT_EQ(settings.graphSaveFormat, 1);

    // A type the dialog does not know: the message, and nothing written.
    answer = {dir.filePath(QStringLiteral("other.emf")), QStringLiteral("All files (*)")};
    EXPECT_FALSE(w.saveGraph());
    EXPECT_FALSE(QFile::exists(answer.first));
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0], QStringLiteral("The graph could not be saved since you did not select what file format "
                                          "you wanted!"));
    EXPECT_TRUE(status.text().isEmpty());
    // A folder that cannot be written: the failure, not a crash.
    answer = {dir.filePath(QStringLiteral("missing/g.emf")), QStringLiteral("Windows enhanced meta file (*.emf)")};
    EXPECT_FALSE(w.saveGraph());
    EXPECT_EQ(status.text(), QStringLiteral("The graph could not be saved!"));

    BasicGraphWindow sv(true, status);
    sv.setUpGraph(twoGroups(HistogramGraph), {.allowSavePicture = true}, {});
    sv.setPictureContext(context());
    answer = {};
    EXPECT_FALSE(sv.saveGraph());
    EXPECT_EQ(seenTitle, QStringLiteral("Spara diagram"));
    EXPECT_EQ(seenFilters.value(0), QStringLiteral("Windows utökad metafil (*.emf)"));
}

TEST_F(GraphPictureTest, StatusTextsStartAndEndEachCommand)
{
    StatusLine swedish(true);
    QStringList seen;
    QObject::connect(&swedish, &StatusLine::textChanged, [&](const QString &text) { seen << text; });
    BasicGraphWindow w(true, swedish);
    w.setUpGraph(twoGroups(FractionGraph), {.allowCopy = true, .allowSavePicture = true}, {});
    w.setPictureContext(context());
    ASSERT_TRUE(w.doCopy());
    EXPECT_EQ(seen, QStringList({QStringLiteral("Kopierar grafen till urklipp..."),
                                 QStringLiteral("Grafen har kopierats till urklipp!")}));
    EXPECT_TRUE(swedish.isClearPending()) << "the result clears itself";
    seen.clear();
    answer = {dir.filePath(QStringLiteral("g.wmf")), QStringLiteral("Windows metafil (*.wmf)")};
    ASSERT_TRUE(w.saveGraph());
    EXPECT_EQ(seen, QStringList({QStringLiteral("Spara grafen..."), QStringLiteral("Grafen har sparats!")}));
    // Cancelling the dialog leaves an empty line, not the start text.
    seen.clear();
    answer = {};
    EXPECT_FALSE(w.saveGraph());
    EXPECT_EQ(seen.value(0), QStringLiteral("Spara grafen..."));
    EXPECT_TRUE(swedish.text().isEmpty());
}

// The commands through the main window, on a written document.
class GraphCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SurveyBuilder b(12);
        HeaderFields &h = b.header();
        h.pointsScale = 10;
        h.minimumGraphSelection = 3;
        h.allowCopy = FileTrue;
        h.totalText = b.text(QStringLiteral("Everyone"));
        block = b.addBlock({.name = QStringLiteral("Work")});
        empty = b.addBlock({.name = QStringLiteral("Nothing")});
        unit = b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false},
                             {{.text = QStringLiteral("North"), .countsForPrivacy = true},
                              {.text = QStringLiteral("South"), .countsForPrivacy = true},
                              {.text = QStringLiteral("West"), .countsForPrivacy = true}});
        role = b.addQuestion({.heading = QStringLiteral("Role"), .isCategory = true, .inOverview = false},
                             {{.text = QStringLiteral("A")}, {.text = QStringLiteral("B")}});
        q = b.addQuestion({.code = QStringLiteral("Q"), .heading = QStringLiteral("Load"), .block = block},
                          {{.text = QStringLiteral("low"), .points = 0}, {.text = QStringLiteral("high"), .points = 10}});
        b.setAnswers(unit, {0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2}); // West has two: too few to split off
        b.setAnswers(role, {0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1});
        b.setAnswers(q, {1, 1, 1, 0, 0, 0, 1, 1, 0, 0, 1, 0});
        const QString path = mDir.filePath(QStringLiteral("survey.kel"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(b.toBytes());
        file.close();

        SettingsLocation location;
        location.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        mStore = std::make_unique<SettingsStore>(location);
        window = std::make_unique<MainWindow>(*mStore, false, MainWindowEnvironment{});
        window->setMessageHandler([this](QMessageBox::Icon, const QString &, const QString &text) {
            messages << text;
        });
        ASSERT_TRUE(window->openDocument(path, false, QStringLiteral("t")));
    }

    void popupOn(qint32 question)
    {
        SheetHit hit;
        hit.place = SheetPlace::AnswerCell;
        hit.question = question;
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
    QStringList messages;
    qint32 block = -1, empty = -1, unit = -1, role = -1, q = -1;
};

TEST_F(GraphCommandsTest, PopupQuestionGraphsOpenInPooledWindows)
{
    popupOn(q);
    window->menus().mnuPS2Total->trigger();
    auto graphs = visibleGraphs();
    ASSERT_EQ(graphs.size(), 1u);
    EXPECT_EQ(graphs[0]->windowTitle(), QStringLiteral("Question Graph: Load"));
    EXPECT_EQ(graphs[0]->description().graphKind, FractionGraph);
    EXPECT_EQ(graphs[0]->description().selectionText, QStringLiteral("Everyone [12]"));
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Question fraction graph generated!"));
    // The document allows copying only: the picture items follow it, and
    // the copy reaches the clipboard with the main window's settings.
    EXPECT_TRUE(graphs[0]->mnuPCopy->isEnabled());
    EXPECT_FALSE(graphs[0]->mnuPSave->isEnabled());
    EXPECT_FALSE(graphs[0]->mnuPPrint->isEnabled());
    graphs[0]->mnuPCopy->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("The graph has been copied to the clipboard!"));

    window->menus().mnuPShowBlockGraph1->trigger();
    graphs = visibleGraphs();
    ASSERT_EQ(graphs.size(), 2u);
    EXPECT_EQ(graphs[1]->windowTitle(), QStringLiteral("Block Histogram: Work"));
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Block histogram generated!"));

    // The window keeps its own copy: a later graph leaves it as it was.
    const QString label = graphs[0]->description().groups.at(0).label;
    window->menus().mnuPS1Total->trigger();
    EXPECT_EQ(graphs[0]->description().groups.at(0).label, label);

    // Ten windows at most: the eleventh replaces the oldest.
    for (int i = 0; i < 9; ++i) {
        QTest::qWait(2); // distinct hand-out times
        window->menus().mnuPS1Total->trigger();
    }
    EXPECT_EQ(visibleGraphs().size(), 10u);
    EXPECT_EQ(window->windowSlots(SlotTable::BasicGraphs)[0].window->windowTitle(),
              QStringLiteral("Question Histogram: Load"));

    window->closeAllGraphWindows();
    EXPECT_TRUE(visibleGraphs().empty());
}

TEST_F(GraphCommandsTest, SplitItemsOnlyWhereTheSplitIsAllowed)
{
    const MainMenus &m = window->menus();
    ASSERT_EQ(m.mnuPS1SplitByColumn.size(), 2);
    EXPECT_FALSE(m.mnuPS1SplitByColumn[0]->isEnabled()); // West: 2 of a minimum 3
    EXPECT_FALSE(m.mnuPS2SplitByColumn[0]->isEnabled());
    EXPECT_TRUE(m.mnuPS1SplitByColumn[1]->isEnabled());

    popupOn(q);
    m.mnuPS1SplitByColumn[1]->trigger();
    auto graphs = visibleGraphs();
    ASSERT_EQ(graphs.size(), 1u);
    EXPECT_EQ(graphs[0]->windowTitle(), QStringLiteral("Question Histogram: Load split by Role"));
    EXPECT_EQ(graphs[0]->description().groups.size(), 2u);
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Question histogram generated!"));
}

TEST_F(GraphCommandsTest, ViewMenuBlockItems)
{
    const MainMenus &m = window->menus();
    ASSERT_EQ(m.mnuVB2Item.size(), 2);
    m.mnuVB2Item[empty]->trigger();
    EXPECT_EQ(messages, QStringList{QStringLiteral("The block did not contain any questions!")});
    EXPECT_TRUE(visibleGraphs().empty());

    m.mnuVB2Item[block]->trigger();
    ASSERT_EQ(visibleGraphs().size(), 1u);
    EXPECT_EQ(visibleGraphs()[0]->windowTitle(), QStringLiteral("Block Graph: Work"));
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Block fraction bar graph generated!"));

    // Closing the document closes the graph windows.
    window->closeDocument();
    EXPECT_TRUE(visibleGraphs().empty());
}

TEST(QuestionSelectDialogTest, OffersTheOtherOverviewQuestionsThatMaySplit)
{
    SurveyBuilder b(3);
    b.addQuestion({.heading = QStringLiteral("Hidden"), .inOverview = false}, {{.text = QStringLiteral("a")}});
    const qint32 q = b.addQuestion({.heading = QStringLiteral("R&D"), .text = QStringLiteral("Research?")},
                                   {{.text = QStringLiteral("a")}});
    b.addQuestion({.heading = QStringLiteral("Gate"), .text = QStringLiteral("Refused")}, {{.text = QStringLiteral("a")}});
    b.addQuestion({.heading = QStringLiteral("Size"), .text = QStringLiteral("How big?")},
                  {{.text = QStringLiteral("a")}});
    ReadResult read = readDocumentBytes(b.toBytes());
    ASSERT_TRUE(read.document);
    const Document &doc = *read.document;

    QuestionSelectDialog dialog(doc, q, [](qint32 s) { return s != 2; }, true);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Välj fördelningsfråga"));
    EXPECT_EQ(dialog.lblQuestionsLabel->text(), QStringLiteral("&Visa R&&D fördelad på:"));
    EXPECT_EQ(dialog.cmdCancel->text(), QStringLiteral("Avbryt"));
    ASSERT_EQ(dialog.lstQuestions->count(), 1); // not itself, not hidden, not gated
    EXPECT_EQ(dialog.lstQuestions->item(0)->text(), QStringLiteral("Size"));
    EXPECT_FALSE(dialog.cmdOK->isEnabled());

    dialog.lstQuestions->setCurrentRow(0);
    EXPECT_TRUE(dialog.cmdOK->isEnabled());
    EXPECT_EQ(dialog.lblQuestionFullText->text(), QStringLiteral("How big?"));
    dialog.lstQuestions->setCurrentRow(-1);
    EXPECT_FALSE(dialog.cmdOK->isEnabled());
    EXPECT_TRUE(dialog.lblQuestionFullText->text().isEmpty());

    dialog.lstQuestions->setCurrentRow(0);
    dialog.cmdOK->click();
    EXPECT_TRUE(dialog.accepted());
    EXPECT_EQ(dialog.chosenQuestion(), 3);
}
