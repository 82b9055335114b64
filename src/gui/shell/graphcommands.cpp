// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/graphcommands.h"

#include "engine/document/document.h"
#include "engine/graphs/chartdescription.h"
#include "engine/indexes/blockindex.h"
#include "engine/blocks/userblocks.h"
#include "engine/overview/popupblock.h"
#include "engine/overview/sheetlayout.h"
#include "engine/settings/recentfiles.h"
#include "gui/shell/chartcommands.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/questionselectdialog.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"
#include "gui/common/waitcursor.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QAction>
#include <QMenu>

#include <algorithm>

namespace kel {

namespace {

void setStatus(MainWindow &window, const TextPair &text, bool autoClear)
{
    window.statusLine().setStatus(text.english, text.swedish, autoClear);
}

// Runs one graph command: hourglass, start text, generation, result text.
void runGraphCommand(MainWindow &window, BasicGraphCommand command, const BasicGraphRequest &request)
{
    WaitCursor wait;
    setStatus(window, basicGraphStartText(command), false);
    if (openBasicGraph(window, request)) {
        setStatus(window, basicGraphSuccessText(command), true);
        return;
    }
    const TextPair failure = basicGraphFailureText(command);
    if (*failure.english)
        setStatus(window, failure, true);
    else
        window.statusLine().clearStatus();
}

// The question of the column the popup was opened on; -1 when none.
qint32 popupQuestion(MainWindow &window)
{
    const Document *doc = window.document();
    const qint32 q = window.popupHit().question;
    return doc && q >= 0 && std::size_t(q) < doc->questions.size() ? q : -1;
}

BasicGraphCommand questionCommand(qint32 kind)
{
    return kind == HistogramGraph ? BasicGraphCommand::QuestionHistogram : BasicGraphCommand::QuestionFraction;
}

} // namespace

BasicGraphSelection currentGraphSelection(MainWindow &window)
{
    BasicGraphSelection selection;
    selection.rows = &window.sheetView()->input().rows;
    selection.splitNotAllowed = &window.selectionSteps().splitNotAllowed;
    selection.selectionText = window.selectionSteps().selectionText;
    selection.usedTotalText = window.flexTotal().text();
    selection.usedTotalSize = window.flexTotal().rowCount();
    selection.valueOrderReversed = window.options().graphValueOrderReversed;
    selection.shortCategoryNames = window.options().graphByCategoryUseShortCategoryNames;
    selection.locale = QLocale();
    return selection;
}

BasicGraphWindow *openBasicGraph(MainWindow &window, const BasicGraphRequest &request)
{
    const Document *doc = window.document();
    if (!doc || !window.sheetView()->hasSheet() || !window.mayOutput(OutputCommand::Figures))
        return nullptr;
    const BasicGraphResult result =
        generateBasicGraph(*doc, window.blocks(), window.flexTotal(), request, currentGraphSelection(window));
    if (!result.done())
        return nullptr;

    const bool isSwedish = window.isSwedish();
    StatusLine &status = window.statusLine();
    QWidget *pooled = takePooledWindow(window.windowSlots(SlotTable::BasicGraphs),
                                       [&] { return new BasicGraphWindow(isSwedish, status, &window); });
    auto *graph = qobject_cast<BasicGraphWindow *>(pooled);
    if (!graph)
        return nullptr;
    graph->setWindowTitle(result.value().caption);
    graph->setDefaultSizeHandler([&window](const FractionGraphDefaultSize &size) {
        window.storeQuestionGraphDefaultSize(size.windowWidthTwips, size.barWidth);
    });
    GraphPermissions permissions;
    permissions.allowCopy = doc->properties.allowCopy;
    permissions.allowPrint = doc->properties.allowPrint;
    permissions.allowSavePicture = doc->properties.allowSavePicture;
    FractionGraphDefaultSize defaults;
    defaults.windowWidthTwips = window.lastSettings().questionGraphWindowWidth;
    defaults.barWidth = window.lastSettings().questionGraphBarWidth;
    if (!graph->setUpGraph(result.value(), permissions, defaults))
        return nullptr;
    GraphPictureContext context;
    context.options = &window.options();
    context.settings = &window.lastSettings();
    context.documentIsSwedish = documentIsSwedish(*doc);
    context.printerInstalled = window.printerInstalled();
    graph->setPictureContext(context);
    graph->show();
    graph->raise();
    graph->activateWindow();
    return graph;
}

void showPopupBlockGraph(MainWindow &window, qint32 kind)
{
    const BasicGraphCommand command =
        kind == HistogramGraph ? BasicGraphCommand::PopupBlockHistogram : BasicGraphCommand::PopupBlockFraction;
    const Document *doc = window.document();
    BasicGraphRequest request;
    request.kind = kind;
    if (doc) {
        const qint32 block = popupBlock(*doc, window.popupHit(), window.sheetView()->sheetGeometry().headerLines);
        if (block >= 0) {
            // The block's columns as the overview shows them.
            const QuestionList members = blockMembers(*doc, window.blocks(), block);
            for (qint32 column : window.sheetView()->input().columns) {
                if (std::find(members.begin(), members.end(), column) != members.end())
                    request.questions.push_back(column);
            }
            request.name = window.blocks().blocks[std::size_t(block)].name;
            request.block = block;
            request.showTotalIndex = window.selectionSteps().differentFromUsedTotal;
        }
    }
    runGraphCommand(window, command, request); // an empty request fails with the failure text
}

void showQuestionGraph(MainWindow &window, qint32 kind)
{
    const Document *doc = window.document();
    const qint32 q = popupQuestion(window);
    BasicGraphRequest request;
    request.kind = kind;
    if (doc && q >= 0) {
        request.questions = {q};
        request.name = doc->questions[std::size_t(q)].heading;
        request.showTotalIndex = window.selectionSteps().differentFromUsedTotal;
    }
    runGraphCommand(window, questionCommand(kind), request);
}

void showSplitGraphByDialog(MainWindow &window, qint32 kind)
{
    const Document *doc = window.document();
    const qint32 q = popupQuestion(window);
    if (!doc || q < 0)
        return;
    const BasicGraphCommand command =
        kind == HistogramGraph ? BasicGraphCommand::QuestionHistogram : BasicGraphCommand::QuestionFractionSplitDialog;
    WaitCursor wait;
    setStatus(window, basicGraphStartText(command), false);
    const BasicGraphSelection selection = currentGraphSelection(window);
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    QuestionSelectDialog dialog(
        *doc, q, [&](qint32 s) { return splitPermitted(*doc, s, selection); }, window.isSwedish(), &window);
    dialog.exec();
    QApplication::restoreOverrideCursor();
    if (!dialog.accepted()) {
        window.statusLine().clearStatus();
        return;
    }
    BasicGraphRequest request;
    request.kind = kind;
    request.questions = {q};
    request.splitQuestion = dialog.chosenQuestion();
    request.name = splitGraphName(*doc, q, request.splitQuestion);
    runGraphCommand(window, command, request);
}

void showSplitGraphByCategory(MainWindow &window, qint32 kind, int category)
{
    const Document *doc = window.document();
    const qint32 q = popupQuestion(window);
    if (!doc || q < 0 || category < 0 || std::size_t(category) >= doc->categories.size())
        return;
    BasicGraphRequest request;
    request.kind = kind;
    request.questions = {q};
    request.splitQuestion = doc->categories[std::size_t(category)];
    request.name = splitGraphName(*doc, q, request.splitQuestion);
    runGraphCommand(window, questionCommand(kind), request);
}

void showViewBlockGraph(MainWindow &window, qint32 kind, int block)
{
    const Document *doc = window.document();
    const BlockCatalogue &blocks = window.blocks();
    if (!doc || !blocks.blockAt(block))
        return;
    const BasicGraphCommand command =
        kind == HistogramGraph ? BasicGraphCommand::ViewBlockHistogram : BasicGraphCommand::ViewBlockFraction;
    WaitCursor wait;
    BasicGraphRequest request;
    request.kind = kind;
    request.questions = blockGraphQuestions(*doc, blocks, block);
    if (request.questions.empty()) {
        window.showMessage(QMessageBox::Information, applicationTitle(),
                           blockWithoutQuestionsMessage(window.isSwedish()));
        return;
    }
    request.name = blocks.blocks[std::size_t(block)].name;
    request.block = block;
    request.showTotalIndex = window.selectionSteps().differentFromUsedTotal;
    runGraphCommand(window, command, request);
}

void rebuildUserBlockGraphMenu(MainWindow &window)
{
    QMenu *menu = window.menus().mnuVUserBlockGraphs;
    menu->clear(); // deletes the block submenus' actions, not the submenus
    qDeleteAll(menu->findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
    const BlockCatalogue &blocks = window.blocks();
    const qint32 first = blocks.documentBlockCount();
    const qint32 count = blocks.size();
    menu->menuAction()->setVisible(count > first);
    const bool sv = window.isSwedish();
    MainWindow *w = &window;
    for (qint32 block = first; block < count; ++block) {
        const Block &b = blocks.blocks[std::size_t(block)];
        QMenu *graphs = menu->addMenu(doubleAmpersands(b.name));
        graphs->setObjectName(QStringLiteral("mnuVUserBlock%1").arg(block));
        // The same graphs, in the same order and by the same flags, as the
        // popup offers over a document block's line.
        const auto add = [&](qint32 flag, const char *english, const char *swedish, auto run) {
            if ((b.graphFlags & flag) == 0)
                return;
            QAction *item = graphs->addAction(pickText(sv, english, swedish));
            QObject::connect(item, &QAction::triggered, w, [w, block, run] { run(*w, block); });
        };
        add(0x100, "Block &Index Graph...", "Block&indexgraf...",
            [](MainWindow &mw, qint32 bl) { mw.chartCommands().blockIndexGraph(bl); });
        add(0x1, "Block &Histogram", "Block&histogram",
            [](MainWindow &mw, qint32 bl) { showViewBlockGraph(mw, HistogramGraph, bl); });
        add(0x2, "Block &Graph", "Block&graf",
            [](MainWindow &mw, qint32 bl) { showViewBlockGraph(mw, FractionGraph, bl); });
        add(0x4, "Block &Ranking Graph", "Block&rankningsgraf",
            [](MainWindow &mw, qint32 bl) { mw.chartCommands().viewBlockRankingGraph(bl); });
        graphs->setEnabled(!graphs->isEmpty());
    }
}

void connectBasicGraphCommands(MainWindow &window)
{
    const MainMenus &m = window.menus();
    MainWindow *w = &window;
    QObject::connect(m.mnuPShowBlockGraph1, &QAction::triggered, w, [w] { showPopupBlockGraph(*w, HistogramGraph); });
    QObject::connect(m.mnuPShowBlockGraph2, &QAction::triggered, w, [w] { showPopupBlockGraph(*w, FractionGraph); });
    QObject::connect(m.mnuPS1Total, &QAction::triggered, w, [w] { showQuestionGraph(*w, HistogramGraph); });
    QObject::connect(m.mnuPS2Total, &QAction::triggered, w, [w] { showQuestionGraph(*w, FractionGraph); });
    QObject::connect(m.mnuPS1Split, &QAction::triggered, w, [w] { showSplitGraphByDialog(*w, HistogramGraph); });
    QObject::connect(m.mnuPS2Split, &QAction::triggered, w, [w] { showSplitGraphByDialog(*w, FractionGraph); });
    // Item lists change with the document: the menus find the index of the
    // item chosen at the moment it is chosen.
    const auto byIndex = [w](QMenu *menu, QList<QAction *> MainMenus::*items, auto run) {
        QObject::connect(menu, &QMenu::triggered, w, [w, items, run](QAction *action) {
            const qsizetype index = (w->menus().*items).indexOf(action);
            if (index >= 0)
                run(*w, int(index));
        });
    };
    byIndex(m.mnuPS1SplitBy, &MainMenus::mnuPS1SplitByColumn,
            [](MainWindow &mw, int i) { showSplitGraphByCategory(mw, HistogramGraph, i); });
    byIndex(m.mnuPS2SplitBy, &MainMenus::mnuPS2SplitByColumn,
            [](MainWindow &mw, int i) { showSplitGraphByCategory(mw, FractionGraph, i); });
    byIndex(m.mnuVBlockGraph1, &MainMenus::mnuVB1Item,
            [](MainWindow &mw, int i) { showViewBlockGraph(mw, HistogramGraph, i); });
    byIndex(m.mnuVBlockGraph2, &MainMenus::mnuVB2Item,
            [](MainWindow &mw, int i) { showViewBlockGraph(mw, FractionGraph, i); });
}

} // namespace kel
