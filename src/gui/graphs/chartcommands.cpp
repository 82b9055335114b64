// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/distributiongraph.h"
#include "engine/graphs/indexgraph.h"
#include "engine/graphs/rankinggraph.h"
#include "engine/indexes/blockindex.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/graphs/chartwindow.h"
#include "gui/graphs/distributiondialog.h"
#include "gui/graphs/graphcommands.h"
#include "gui/graphs/indexgraphdialog.h"
#include "texts/statusline.h"

namespace kel {

ChartContext GraphCommands::chartContext() const
{
    const SubSheet &shown = mContext.session.shownSheet();
    ChartContext c;
    c.rows = &shown.rows;
    c.selectionText = shown.steps.selectionText;
    c.locale = QLocale();
    c.shortCategoryNames = mContext.settings.options.graphByCategoryUseShortCategoryNames;
    c.graphLegends = mContext.settings.options.graphLegends;
    return c;
}

ChartWindow *GraphCommands::showChart(const ChartDescription &chart)
{
    const bool swedish = mContext.settings.isSwedish;
    QWidget *parent = mContext.host.dialogParent();
    QWidget *taken = takePooledWindow(mContext.session.windowSlots(SlotTable::ChartGraphs),
                                      [swedish, parent] { return new ChartWindow(swedish, parent); });
    auto *window = qobject_cast<ChartWindow *>(taken);
    if (!window)
        return nullptr;
    window->setUpChart(chart);
    const Document &doc = *mContext.session.document();
    window->setPictureContext(mContext.host.statusLine(), pictureContextFor(doc), permissionsFor(doc));
    mPending = window;
    mAutoShow.start();
    return window;
}

void GraphCommands::showAutoShowWindow()
{
    mAutoShow.stop();
    if (!mPending)
        return;
    mPending->show();
    mPending->raise();
    mPending->activateWindow();
}

void GraphCommands::totalIndexGraph()
{
    indexGraph(-1);
}

void GraphCommands::blockIndexGraph(qint32 block)
{
    if (mContext.session.document() && mContext.session.blocks().blockAt(block))
        indexGraph(block);
}

void GraphCommands::indexGraph(qint32 block)
{
    if (!canGraph())
        return;
    const bool total = block < 0;
    StatusLine &status = mContext.host.statusLine();
    if (total)
        status.setStatus("Generating total index graph...", "Skapar totalindexgraf...", false);
    else
        status.setStatus("Generating block index graph...", "Skapar blockindexgraf...", false);
    const Document &doc = *mContext.session.document();
    LastSettings &last = mContext.settings.last;
    IndexGraphDialog dialog(doc, mContext.session.blocks(), block, mContext.session.selectionSteps(), last,
                            mContext.settings.isSwedish, mContext.host.dialogParent());
    if (runDialog(dialog) != QDialog::Accepted) {
        status.clearStatus();
        return;
    }
    dialog.storeSettings(last);
    WaitCursor wait;
    showChart(generateIndexGraph(doc, mContext.session.blocks(), mContext.session.flexTotal(), chartContext(),
                                 dialog.request()));
    if (total)
        status.setStatus("Total index graph generated!", "Totalindexgraf skapad!", true);
    else
        status.setStatus("Block index graph generated!", "Blockindexgraf skapad!", true);
}

void GraphCommands::rankingGraph(const QuestionList &questions, const QString &titleText, bool sorted, bool isBlock)
{
    if (!canGraph() || questions.empty())
        return;
    StatusLine &status = mContext.host.statusLine();
    WaitCursor wait;
    if (isBlock)
        status.setStatus("Generating block ranking graph...", "Skapar blockrankningsgraf...", false);
    else
        status.setStatus("Generating question ranking graph...", "Skapar frågerankningsgraf...", false);
    RankingGraphRequest request;
    request.questions = questions;
    request.sorted = sorted;
    request.titleText = titleText;
    showChart(generateRankingGraph(*mContext.session.document(), chartContext(), request));
    if (isBlock)
        status.setStatus("Block ranking graph generated!", "Blockrankningsgraf skapad!", true);
    else
        status.setStatus("Question ranking graph generated!", "Frågerankningsgraf skapad!", true);
}

void GraphCommands::popupBlockIndexGraph()
{
    blockIndexGraph(mContext.session.popupBlock());
}

void GraphCommands::popupBlockRankingGraph(bool sorted)
{
    const Document *doc = mContext.session.document();
    const qint32 block = mContext.session.popupBlock();
    if (doc && block >= 0)
        rankingGraph(overviewColumnsOf(block), mContext.session.blocks().blocks[std::size_t(block)].name, sorted, true);
}

void GraphCommands::popupQuestionRankingGraph(bool sorted)
{
    const Document *doc = mContext.session.document();
    const qint32 q = mContext.session.popupQuestion();
    if (doc && q >= 0)
        rankingGraph({q}, doc->questions[std::size_t(q)].heading, sorted, false);
}

void GraphCommands::viewBlockRankingGraph(qint32 block)
{
    const Document *doc = mContext.session.document();
    const BlockCatalogue &blocks = mContext.session.blocks();
    if (!canGraph() || !blocks.blockAt(block))
        return;
    const QuestionList questions = blockGraphQuestions(*doc, blocks, block);
    if (questions.empty()) {
        mContext.host.statusLine().setStatus("The block did not contain any questions!",
                                             "Blocket innehöll inga frågor!", true);
        return;
    }
    rankingGraph(questions, blocks.blocks[std::size_t(block)].name, true, true);
}

void GraphCommands::distributionGraph()
{
    if (!canGraph())
        return;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Generating distribution graph...", "Skapar fördelningsgraf...", false);
    const Document &doc = *mContext.session.document();
    LastSettings &last = mContext.settings.last;
    DistributionDialog dialog(last, mContext.settings.isSwedish, mContext.host.dialogParent());
    dialog.setCategories(doc);
    if (runDialog(dialog) != QDialog::Accepted) {
        status.clearStatus();
        return;
    }
    dialog.storeSettings(last);
    WaitCursor wait;
    showChart(
        generateDistributionGraph(doc, chartContext(), mContext.session.shownSheet().selection, dialog.request()));
    status.setStatus("Distribution graph generated!", "Fördelningsgraf skapad!", true);
}

} // namespace kel
