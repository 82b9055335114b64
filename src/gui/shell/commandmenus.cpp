// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/commandmenus.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/document.h"
#include "engine/overview/popupblock.h"
#include "engine/overview/sheetlayout.h"
#include "engine/settings/recentfiles.h"
#include "gui/common/viewersession.h"
#include "gui/document/documentcommands.h"
#include "gui/graphs/graphcommands.h"
#include "gui/overview/overviewcommands.h"
#include "gui/report/reportcommands.h"
#include "texts/language.h"

#include <QAction>
#include <QDir>
#include <QFontMetrics>
#include <QMenu>

namespace kel {

void connectCommandMenus(const MainMenus &m, const ViewerCommands &c, QObject *owner)
{
    OverviewCommands *overview = c.overview;
    for (QAction *a : {m.mnuECopy, m.mnuPCopy})
        QObject::connect(a, &QAction::triggered, overview, &OverviewCommands::copyOverview);
    for (QAction *a : {m.mnuECopyHeadersAndTotals, m.mnuPCopyHeadersAndTotals})
        QObject::connect(a, &QAction::triggered, overview, &OverviewCommands::copyHeadersAndTotals);
    for (QAction *a : {m.mnuFSaveAs, m.mnuPSaveAs})
        QObject::connect(a, &QAction::triggered, overview, &OverviewCommands::saveOverviewAs);
    for (QAction *a : {m.mnuECopyData, m.mnuPCopyData})
        QObject::connect(a, &QAction::triggered, overview, &OverviewCommands::copyOverviewData);
    for (QAction *a : {m.mnuFPrint, m.mnuPPrint})
        QObject::connect(a, &QAction::triggered, overview, &OverviewCommands::printOverview);
    QObject::connect(m.mnuPCopyThisRowsAnswers, &QAction::triggered, overview, &OverviewCommands::copyThisRowsAnswers);
    QObject::connect(m.mnuFPrintFormat, &QAction::triggered, overview, &OverviewCommands::printFormat);
    for (QAction *a : {m.mnuECopyToMiniOverview, m.mnuPCopyToMiniOverview})
        QObject::connect(a, &QAction::triggered, overview, [overview] { overview->copyToMiniOverview(); });
    QObject::connect(m.mnuVComments, &QAction::triggered, overview, &OverviewCommands::showAllComments);
    QObject::connect(m.mnuPShowRowsComments, &QAction::triggered, overview,
                     [overview] { overview->showPopupComments(OverviewCommands::CommentsOf::Row); });
    QObject::connect(m.mnuPShowColumnsComments, &QAction::triggered, overview,
                     [overview] { overview->showPopupComments(OverviewCommands::CommentsOf::Column); });

    DocumentCommands *documents = c.documents;
    QObject::connect(m.mnuFOpen, &QAction::triggered, documents, &DocumentCommands::fileOpen);
    for (std::size_t i = 0; i < m.mnuFMRU.size(); ++i)
        QObject::connect(m.mnuFMRU[i], &QAction::triggered, documents,
                         [documents, i] { documents->openRecentFile(int(i)); });
    QObject::connect(m.mnuTEditBlocks, &QAction::triggered, documents, &DocumentCommands::editBlocks);
    for (QAction *a : {m.mnuECopyIndexes, m.mnuPCopyIndexes})
        QObject::connect(a, &QAction::triggered, documents, &DocumentCommands::copyIndexes);
    QObject::connect(m.mnuFProperties, &QAction::triggered, documents, &DocumentCommands::showProperties);
    QObject::connect(m.mnuFCreateReport, &QAction::triggered, c.reports, &ReportCommands::createReport);

    GraphCommands *g = c.graphs;
    QObject::connect(m.mnuPShowBlockGraph1, &QAction::triggered, g, [g] { g->popupBlockGraph(HistogramGraph); });
    QObject::connect(m.mnuPShowBlockGraph2, &QAction::triggered, g, [g] { g->popupBlockGraph(FractionGraph); });
    QObject::connect(m.mnuPS1Total, &QAction::triggered, g, [g] { g->questionGraph(HistogramGraph); });
    QObject::connect(m.mnuPS2Total, &QAction::triggered, g, [g] { g->questionGraph(FractionGraph); });
    QObject::connect(m.mnuPS1Split, &QAction::triggered, g, [g] { g->splitGraphByDialog(HistogramGraph); });
    QObject::connect(m.mnuPS2Split, &QAction::triggered, g, [g] { g->splitGraphByDialog(FractionGraph); });
    QObject::connect(m.mnuVTotalGraph1, &QAction::triggered, g, &GraphCommands::totalIndexGraph);
    QObject::connect(m.mnuPShowTotalGraph1, &QAction::triggered, g, &GraphCommands::totalIndexGraph);
    QObject::connect(m.mnuVDistributionGraph, &QAction::triggered, g, &GraphCommands::distributionGraph);
    QObject::connect(m.mnuPShowBlockGraph4, &QAction::triggered, g, &GraphCommands::popupBlockIndexGraph);
    for (int i = 0; i < 2; ++i) {
        const bool sorted = i == 0;
        QObject::connect(m.mnuPSB3SortedBy[std::size_t(i)], &QAction::triggered, g,
                         [g, sorted] { g->popupBlockRankingGraph(sorted); });
        QObject::connect(m.mnuPSQ3SortedBy[std::size_t(i)], &QAction::triggered, g,
                         [g, sorted] { g->popupQuestionRankingGraph(sorted); });
    }
    // Item lists change with the document: the menus find the index of the
    // item chosen at the moment it is chosen.
    const MainMenus *menus = &m;
    const auto byIndex = [menus, owner](QMenu *menu, QList<QAction *> MainMenus::*items, auto run) {
        QObject::connect(menu, &QMenu::triggered, owner, [menus, items, run](QAction *action) {
            const qsizetype index = (menus->*items).indexOf(action);
            if (index >= 0)
                run(qint32(index));
        });
    };
    byIndex(m.mnuPS1SplitBy, &MainMenus::mnuPS1SplitByColumn,
            [g](qint32 i) { g->splitGraphByCategory(HistogramGraph, i); });
    byIndex(m.mnuPS2SplitBy, &MainMenus::mnuPS2SplitByColumn,
            [g](qint32 i) { g->splitGraphByCategory(FractionGraph, i); });
    byIndex(m.mnuVBlockGraph1, &MainMenus::mnuVB1Item, [g](qint32 i) { g->viewBlockGraph(HistogramGraph, i); });
    byIndex(m.mnuVBlockGraph2, &MainMenus::mnuVB2Item, [g](qint32 i) { g->viewBlockGraph(FractionGraph, i); });
    byIndex(m.mnuVBlockGraph4, &MainMenus::mnuVB4Item, [g](qint32 i) { g->blockIndexGraph(i); });
    byIndex(m.mnuVBlockGraph3, &MainMenus::mnuVB3Item, [g](qint32 i) { g->viewBlockRankingGraph(i); });
}

void rebuildBlockMenus(MainMenus &m, const Document *doc, const BlockCatalogue &blocks, GraphCommands &graphs,
                       bool isSwedish)
{
    const std::array<std::pair<QMenu *, QList<QAction *> *>, 4> menus{{{m.mnuVBlockGraph4, &m.mnuVB4Item},
                                                                       {m.mnuVBlockGraph1, &m.mnuVB1Item},
                                                                       {m.mnuVBlockGraph2, &m.mnuVB2Item},
                                                                       {m.mnuVBlockGraph3, &m.mnuVB3Item}}};
    for (const auto &[menu, items] : menus) {
        qDeleteAll(*items);
        items->clear();
        if (!doc)
            continue;
        for (const Block &block : blocks.blocks)
            *items << menu->addAction(doubleAmpersands(block.name));
    }

    QMenu *menu = m.mnuVUserBlockGraphs;
    menu->clear(); // deletes the block submenus' actions, not the submenus
    qDeleteAll(menu->findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
    const qint32 first = blocks.documentBlockCount();
    const qint32 count = blocks.size();
    menu->menuAction()->setVisible(count > first);
    GraphCommands *g = &graphs;
    for (qint32 block = first; block < count; ++block) {
        const Block &b = blocks.blocks[std::size_t(block)];
        QMenu *submenu = menu->addMenu(doubleAmpersands(b.name));
        submenu->setObjectName(QStringLiteral("mnuVUserBlock%1").arg(block));
        // The same graphs, in the same order and by the same flags, as the
        // popup offers over a document block's line.
        const auto add = [&](qint32 flag, const char *english, const char *swedish, auto run) {
            if ((b.graphFlags & flag) == 0)
                return;
            QAction *item = submenu->addAction(pickText(isSwedish, english, swedish));
            QObject::connect(item, &QAction::triggered, g, [g, block, run] { run(*g, block); });
        };
        add(0x100, "Block &Index Graph...", "Block&indexgraf...",
            [](GraphCommands &gc, qint32 bl) { gc.blockIndexGraph(bl); });
        add(0x1, "Block &Histogram", "Block&histogram",
            [](GraphCommands &gc, qint32 bl) { gc.viewBlockGraph(HistogramGraph, bl); });
        add(0x2, "Block &Graph", "Block&graf",
            [](GraphCommands &gc, qint32 bl) { gc.viewBlockGraph(FractionGraph, bl); });
        add(0x4, "Block &Ranking Graph", "Block&rankningsgraf",
            [](GraphCommands &gc, qint32 bl) { gc.viewBlockRankingGraph(bl); });
        submenu->setEnabled(!submenu->isEmpty());
    }
}

void fillRecentFilesMenu(MainMenus &m, const QStringList &files, int widthPixels)
{
    m.mnuFMRUBar->setVisible(!files.isEmpty());
    const QFontMetrics metrics(m.mnuFile->font());
    for (std::size_t i = 0; i < m.mnuFMRU.size(); ++i) {
        QAction *item = m.mnuFMRU[i];
        if (qsizetype(i) >= files.size()) {
            item->setVisible(false);
            continue;
        }
        const PathParts parts = splitDocumentPath(files.at(qsizetype(i)));
        const QString display = QDir::toNativeSeparators(
            parts.folder.isEmpty() ? fileDisplayTitle(parts.name)
                                   : QDir(parts.folder).filePath(fileDisplayTitle(parts.name)));
        QString compact = metrics.elidedText(display, Qt::ElideMiddle, widthPixels);
        if (compact.isEmpty())
            compact = QStringLiteral("...") + QDir::separator() + parts.name;
        item->setText(recentFileCaption(int(i), compact));
        item->setToolTip(files.at(qsizetype(i)));
        item->setVisible(true);
    }
}

void preparePopupMenu(MainMenus &m, const ViewerSession &session, const SheetHit &hit, const PopupView &view)
{
    const Document *doc = session.document();
    if (!doc)
        return;
    const bool questionKnown = hit.question >= 0 && std::size_t(hit.question) < doc->questions.size();
    PopupContext context;
    context.randomPerColumn = view.randomPerColumn;
    context.hasRowComments = doc->properties.hasRowComments;
    context.hasCellComments = doc->hasCellComments;
    context.totalGraphVisible = view.totalGraphVisible;
    if (questionKnown) {
        const Question &question = doc->questions[std::size_t(hit.question)];
        context.questionGraphFlags = question.graphFlags;
        if (hit.place == SheetPlace::BlockLine) {
            if (const qint32 block = popupBlock(*doc, hit, view.headerLines); block >= 0)
                context.blockGraphFlags = session.blocks().blocks[std::size_t(block)].graphFlags;
        }
    }
    const PopupItems items = popupItemsFor(hit.place, context);
    m.mnuPShowRowsComments->setVisible(items.showRowsComments);
    m.mnuPShowColumnsComments->setVisible(items.showColumnsComments);
    m.mnuPCopyThisRowsAnswers->setVisible(items.copyThisRowsAnswers);
    m.mnuPBar1->setVisible(items.bar1);
    const std::array<QAction *, 4> blockGraphs{m.mnuPShowBlockGraph1, m.mnuPShowBlockGraph2,
                                               m.mnuPShowBlockGraph3->menuAction(), m.mnuPShowBlockGraph4};
    for (std::size_t i = 0; i < blockGraphs.size(); ++i)
        blockGraphs[i]->setVisible(items.showBlockGraph[i]);
    const std::array<QAction *, 3> questionGraphs{m.mnuPShowQuestionGraph1->menuAction(),
                                                  m.mnuPShowQuestionGraph2->menuAction(),
                                                  m.mnuPShowQuestionGraph3->menuAction()};
    for (std::size_t i = 0; i < questionGraphs.size(); ++i)
        questionGraphs[i]->setVisible(items.showQuestionGraph[i]);
    m.mnuPBar2->setVisible(items.bar2);

    // A header line has no row: only the column's comments can apply there.
    // Without a sheet on screen there are neither rows nor columns.
    static const RowList none;
    const bool shown = session.hasSheet();
    const PopupEnabling enabling =
        popupEnablingFor(*doc, shown ? session.shownSheet().rows : none, shown ? doc->overviewColumns : none,
                         context.randomPerColumn, hit.place == SheetPlace::AnswerCell ? hit.row : -1, hit.question);
    // Comments are individual answers: the engine's decision for the
    // overview on screen comes first.
    m.mnuPShowRowsComments->setEnabled(enabling.showRowsComments && isCommandBuilt(MenuCommand::RowsComments)
                                       && session.mayOutput(OutputCommand::RowsComments));
    m.mnuPShowColumnsComments->setEnabled(enabling.showColumnsComments && isCommandBuilt(MenuCommand::ColumnsComments)
                                          && session.mayOutput(OutputCommand::ColumnsComments));
}

} // namespace kel
