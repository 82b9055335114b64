// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/chartcommands.h"

#include "engine/graphs/distributiongraph.h"
#include "engine/graphs/indexgraph.h"
#include "engine/graphs/rankinggraph.h"
#include "engine/indexes/blockindex.h"
#include "engine/overview/popupblock.h"
#include "engine/overview/sheetlayout.h"
#include "gui/graphs/chartwindow.h"
#include "gui/graphs/distributiondialog.h"
#include "gui/graphs/indexgraphdialog.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"
#include "gui/common/waitcursor.h"
#include "texts/statusline.h"

#include <QAction>
#include <QMenu>

#include <algorithm>

namespace kel {

ChartCommands::ChartCommands(MainWindow &window) : QObject(&window), mWindow(window)
{
    runDialog = [](QDialog &dialog) { return dialog.exec(); };
    mAutoShow.setSingleShot(true);
    mAutoShow.setInterval(300);
    connect(&mAutoShow, &QTimer::timeout, this, &ChartCommands::showAutoShowWindow);

    const MainMenus &m = window.menus();
    connect(m.mnuVTotalGraph1, &QAction::triggered, this, &ChartCommands::totalIndexGraph);
    connect(m.mnuPShowTotalGraph1, &QAction::triggered, this, &ChartCommands::totalIndexGraph);
    connect(m.mnuVDistributionGraph, &QAction::triggered, this, &ChartCommands::distributionGraph);
    connect(m.mnuPShowBlockGraph4, &QAction::triggered, this, [this] { blockIndexGraph(popupBlock()); });
    for (int i = 0; i < 2; ++i) {
        const bool sorted = i == 0;
        connect(m.mnuPSB3SortedBy[std::size_t(i)], &QAction::triggered, this, [this, sorted] {
            const Document *doc = mWindow.document();
            const qint32 block = popupBlock();
            if (doc && block >= 0)
                rankingGraph(overviewColumnsOf(block), mWindow.blocks().blocks[std::size_t(block)].name, sorted, true);
        });
        connect(m.mnuPSQ3SortedBy[std::size_t(i)], &QAction::triggered, this, [this, sorted] {
            const Document *doc = mWindow.document();
            const qint32 q = mWindow.lastPopupHit().question;
            if (doc && q >= 0 && std::size_t(q) < doc->questions.size())
                rankingGraph({q}, doc->questions[std::size_t(q)].heading, sorted, false);
        });
    }
    // The per-block items are rebuilt with every document; their menus stay.
    connect(m.mnuVBlockGraph4, &QMenu::triggered, this,
            [this](QAction *item) { blockIndexGraph(qint32(mWindow.menus().mnuVB4Item.indexOf(item))); });
    connect(m.mnuVBlockGraph3, &QMenu::triggered, this,
            [this](QAction *item) { viewBlockRankingGraph(qint32(mWindow.menus().mnuVB3Item.indexOf(item))); });
}

bool ChartCommands::canGraph() const
{
    return mWindow.document() && mWindow.sheetView()->hasSheet() && mWindow.mayOutput(OutputCommand::Figures);
}

ChartContext ChartCommands::context() const
{
    ChartContext c;
    c.rows = &mWindow.shownSheet().rows;
    c.selectionText = mWindow.shownSheet().steps.selectionText;
    c.locale = QLocale();
    c.shortCategoryNames = mWindow.options().graphByCategoryUseShortCategoryNames;
    c.graphLegends = mWindow.options().graphLegends;
    return c;
}

qint32 ChartCommands::popupBlock() const
{
    const Document *doc = mWindow.document();
    return doc ? kel::popupBlock(*doc, mWindow.lastPopupHit(), mWindow.sheetView()->sheetGeometry().headerLines) : -1;
}

QuestionList ChartCommands::overviewColumnsOf(qint32 block) const
{
    const QuestionList members = blockMembers(*mWindow.document(), mWindow.blocks(), block);
    QuestionList columns;
    for (qint32 q : mWindow.sheetView()->input().columns)
        if (std::find(members.begin(), members.end(), q) != members.end())
            columns.push_back(q);
    return columns;
}

ChartWindow *ChartCommands::showChart(const ChartDescription &chart)
{
    const bool swedish = mWindow.isSwedish();
    QWidget *taken = takePooledWindow(mWindow.windowSlots(SlotTable::ChartGraphs),
                                      [this, swedish] { return new ChartWindow(swedish, &mWindow); });
    auto *window = qobject_cast<ChartWindow *>(taken);
    if (!window)
        return nullptr;
    window->setUpChart(chart);
    const Document &doc = *mWindow.document();
    GraphPermissions permissions;
    permissions.allowCopy = doc.properties.allowCopy;
    permissions.allowPrint = doc.properties.allowPrint;
    permissions.allowSavePicture = doc.properties.allowSavePicture;
    GraphPictureContext context;
    context.options = &mWindow.options();
    context.settings = &mWindow.lastSettings();
    context.documentIsSwedish = documentIsSwedish(doc);
    context.printerInstalled = mWindow.printerInstalled();
    window->setPictureContext(mWindow.statusLine(), context, permissions);
    mPending = window;
    mAutoShow.start();
    return window;
}

void ChartCommands::showAutoShowWindow()
{
    mAutoShow.stop();
    if (!mPending)
        return;
    mPending->show();
    mPending->raise();
    mPending->activateWindow();
}

void ChartCommands::totalIndexGraph()
{
    if (!canGraph())
        return;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Generating total index graph...", "Skapar totalindexgraf...", false);
    const Document &doc = *mWindow.document();
    IndexGraphDialog dialog(doc, mWindow.blocks(), -1, mWindow.shownSheet().steps, mWindow.lastSettings(),
                            mWindow.isSwedish(), &mWindow);
    if (runDialog(dialog) != QDialog::Accepted) {
        status.clearStatus();
        return;
    }
    dialog.storeSettings(mWindow.lastSettings());
    WaitCursor wait;
    showChart(generateIndexGraph(doc, mWindow.blocks(), mWindow.flexTotal(), context(), dialog.request()));
    status.setStatus("Total index graph generated!", "Totalindexgraf skapad!", true);
}

void ChartCommands::blockIndexGraph(qint32 block)
{
    const Document *doc = mWindow.document();
    if (!canGraph() || !mWindow.blocks().blockAt(block))
        return;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Generating block index graph...", "Skapar blockindexgraf...", false);
    IndexGraphDialog dialog(*doc, mWindow.blocks(), block, mWindow.shownSheet().steps, mWindow.lastSettings(),
                            mWindow.isSwedish(), &mWindow);
    if (runDialog(dialog) != QDialog::Accepted) {
        status.clearStatus();
        return;
    }
    dialog.storeSettings(mWindow.lastSettings());
    WaitCursor wait;
    showChart(generateIndexGraph(*doc, mWindow.blocks(), mWindow.flexTotal(), context(), dialog.request()));
    status.setStatus("Block index graph generated!", "Blockindexgraf skapad!", true);
}

void ChartCommands::rankingGraph(const QuestionList &questions, const QString &titleText, bool sorted, bool isBlock)
{
    if (!canGraph() || questions.empty())
        return;
    StatusLine &status = mWindow.statusLine();
    WaitCursor wait;
    if (isBlock)
        status.setStatus("Generating block ranking graph...", "Skapar blockrankningsgraf...", false);
    else
        status.setStatus("Generating question ranking graph...", "Skapar frågerankningsgraf...", false);
    RankingGraphRequest request;
    request.questions = questions;
    request.sorted = sorted;
    request.titleText = titleText;
    showChart(generateRankingGraph(*mWindow.document(), context(), request));
    if (isBlock)
        status.setStatus("Block ranking graph generated!", "Blockrankningsgraf skapad!", true);
    else
        status.setStatus("Question ranking graph generated!", "Frågerankningsgraf skapad!", true);
}

void ChartCommands::viewBlockRankingGraph(qint32 block)
{
    const Document *doc = mWindow.document();
    const BlockCatalogue &blocks = mWindow.blocks();
    if (!canGraph() || !blocks.blockAt(block))
        return;
    const QuestionList questions = blockGraphQuestions(*doc, blocks, block);
    if (questions.empty()) {
        mWindow.statusLine().setStatus("The block did not contain any questions!", "Blocket innehöll inga frågor!",
                                       true);
        return;
    }
    rankingGraph(questions, blocks.blocks[std::size_t(block)].name, true, true);
}

void ChartCommands::distributionGraph()
{
    if (!canGraph())
        return;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Generating distribution graph...", "Skapar fördelningsgraf...", false);
    const Document &doc = *mWindow.document();
    DistributionDialog dialog(mWindow.lastSettings(), mWindow.isSwedish(), &mWindow);
    dialog.setCategories(doc);
    if (runDialog(dialog) != QDialog::Accepted) {
        status.clearStatus();
        return;
    }
    dialog.storeSettings(mWindow.lastSettings());
    WaitCursor wait;
    showChart(generateDistributionGraph(doc, context(), mWindow.shownSheet().selection, dialog.request()));
    status.setStatus("Distribution graph generated!", "Fördelningsgraf skapad!", true);
}

} // namespace kel
