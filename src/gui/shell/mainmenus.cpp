// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/mainmenus.h"

#include "texts/language.h"
#include "texts/reporttexts.h"
#include "engine/settings/recentfiles.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

namespace kel {

namespace {

class MenuBuilder
{
public:
    explicit MenuBuilder(bool isSwedish) : mIsSwedish(isSwedish) { }

    QAction *item(QMenu *menu, const char *name, const char *english, const char *swedish) const
    {
        QAction *a = menu->addAction(pickText(mIsSwedish, english, swedish));
        a->setObjectName(QString::fromUtf8(name));
        return a;
    }
    QAction *bar(QMenu *menu, const char *name) const
    {
        QAction *a = menu->addSeparator();
        a->setObjectName(QString::fromUtf8(name));
        return a;
    }
    QMenu *submenu(QMenu *menu, const char *name, const char *english, const char *swedish) const
    {
        QMenu *m = menu->addMenu(pickText(mIsSwedish, english, swedish));
        m->setObjectName(QString::fromUtf8(name));
        m->menuAction()->setObjectName(QString::fromUtf8(name));
        return m;
    }
    QMenu *topMenu(QMenuBar *menuBar, const char *name, const char *english, const char *swedish) const
    {
        QMenu *m = menuBar->addMenu(pickText(mIsSwedish, english, swedish));
        m->setObjectName(QString::fromUtf8(name));
        m->menuAction()->setObjectName(QString::fromUtf8(name));
        return m;
    }

private:
    bool mIsSwedish;
};

QAction *newSplitByItem(QMenu *menu, int index)
{
    QAction *a = menu->addAction(QString());
    a->setObjectName(menu->objectName() + QStringLiteral("Column%1").arg(index));
    return a;
}

} // namespace

MainMenus buildMainMenus(QMenuBar *bar, QWidget *owner, bool isSwedish)
{
    const MenuBuilder b(isSwedish);
    MainMenus m;

    m.mnuFile = b.topMenu(bar, "mnuFile", "&File", "&Arkiv");
    m.mnuFOpen = b.item(m.mnuFile, "mnuFOpen", "&Open...", "&Öppna...");
    m.mnuFBar1 = b.bar(m.mnuFile, "mnuFBar1");
    m.mnuFSaveAs = b.item(m.mnuFile, "mnuFSaveAs", "Save Overview &As...", "Spara översikt so&m...");
    m.mnuFCreateReport = m.mnuFile->addAction(reportDialogTexts(isSwedish).menuItem);
    m.mnuFCreateReport->setObjectName(QStringLiteral("mnuFCreateReport"));
    m.mnuFBar2 = b.bar(m.mnuFile, "mnuFBar2");
    m.mnuFPrint = b.item(m.mnuFile, "mnuFPrint", "&Print Overview", "Skriv &ut översikt");
    m.mnuFPrintFormat = b.item(m.mnuFile, "mnuFPrintFormat", "Print &Format...", "Utskrifts&format...");
    m.mnuFBar3 = b.bar(m.mnuFile, "mnuFBar3");
    m.mnuFProperties = b.item(m.mnuFile, "mnuFProperties", "P&roperties", "&Egenskaper");
    m.mnuFMRUBar = b.bar(m.mnuFile, "mnuFMRUBar");
    for (std::size_t i = 0; i < m.mnuFMRU.size(); ++i) {
        m.mnuFMRU[i] = m.mnuFile->addAction(QString());
        m.mnuFMRU[i]->setObjectName(QStringLiteral("mnuFMRU%1").arg(i));
        m.mnuFMRU[i]->setVisible(false);
    }
    m.mnuFBar4 = b.bar(m.mnuFile, "mnuFBar4");
    m.mnuFExit = b.item(m.mnuFile, "mnuFExit", "E&xit", "&Avsluta");

    m.mnuEdit = b.topMenu(bar, "mnuEdit", "&Edit", "&Redigera");
    m.mnuECopy = b.item(m.mnuEdit, "mnuECopy", "&Copy Overview", "K&opiera översikt");
    m.mnuECopy->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_C));
    m.mnuECopyHeadersAndTotals =
        b.item(m.mnuEdit, "mnuECopyHeadersAndTotals", "Copy Headers and &Totals", "Kopiera rubriker och &totaler");
    m.mnuECopyIndexes = b.item(m.mnuEdit, "mnuECopyIndexes", "Copy &Indexes...", "Kopiera &index...");
    m.mnuECopyToMiniOverview =
        b.item(m.mnuEdit, "mnuECopyToMiniOverview", "Copy to &Mini-overview", "Kopiera till &miniöversikt");
    m.mnuECopyToMiniOverview->setShortcut(QKeySequence(Qt::Key_F4));
    m.mnuECopyData = b.item(m.mnuEdit, "mnuECopyData", "Copy Overview as &Data", "Kopiera översikt som &data");

    m.mnuView = b.topMenu(bar, "mnuView", "&View", "&Visa");
    m.mnuVNavigator = b.item(m.mnuView, "mnuVNavigator", "&Navigator", "&Navigatör");
    m.mnuVNavigator->setCheckable(true);
    m.mnuVDetailInfo = b.item(m.mnuView, "mnuVDetailInfo", "Detail &Information", "Detalj&information");
    m.mnuVDetailInfo->setCheckable(true);
    m.mnuVBar1 = b.bar(m.mnuView, "mnuVBar1");
    m.mnuVDistributionGraph =
        b.item(m.mnuView, "mnuVDistributionGraph", "&Distribution Graph...", "&Fördelningsgraf...");
    m.mnuVTotalGraph1 = b.item(m.mnuView, "mnuVTotalGraph1", "&Total Index Graph...", "&Totalindexgraf...");
    m.mnuVBlockGraph4 = b.submenu(m.mnuView, "mnuVBlockGraph4", "&Block Index Graph", "&Blockindexgraf");
    m.mnuVBlockGraph1 = b.submenu(m.mnuView, "mnuVBlockGraph1", "Block &Histogram", "Block&histogram");
    m.mnuVBlockGraph2 = b.submenu(m.mnuView, "mnuVBlockGraph2", "Block &Graph", "Block&graf");
    m.mnuVBlockGraph3 = b.submenu(m.mnuView, "mnuVBlockGraph3", "Block &Ranking Graph", "Block&rankningsgraf");
    m.mnuVUserBlockGraphs = b.submenu(m.mnuView, "mnuVUserBlockGraphs", "&User Block Graphs", "&Egna blockgrafer");
    m.mnuVUserBlockGraphs->menuAction()->setVisible(false);
    m.mnuVComments = b.item(m.mnuView, "mnuVComments", "&Comments", "&Kommentarer");
    m.mnuVBar2 = b.bar(m.mnuView, "mnuVBar2");
    m.mnuVCloseAllGraphWindows =
        b.item(m.mnuView, "mnuVCloseAllGraphWindows", "Close &All Graph Windows", "Stäng &alla diagramfönster");

    m.mnuTools = b.topMenu(bar, "mnuTools", "&Tools", "Verkt&yg");
    m.mnuTEditBlocks = b.item(m.mnuTools, "mnuTEditBlocks", "Edit &Blocks...", "Redigera &block...");
    m.mnuTBar1 = b.bar(m.mnuTools, "mnuTBar1");
    m.mnuTOptions = b.item(m.mnuTools, "mnuTOptions", "&Options...", "&Alternativ...");
    m.mnuTBar2 = b.bar(m.mnuTools, "mnuTBar2");
    m.mnuTExport = b.item(m.mnuTools, "mnuTExport", "&Export", "&Export"); // never recaptioned

    m.mnuHelp = b.topMenu(bar, "mnuHelp", "&Help", "&Hjälp");
    m.mnuHHelpTopics = b.item(m.mnuHelp, "mnuHHelpTopics", "&Help Topics", "&Hjälpavsnitt");
    m.mnuHBar1 = b.bar(m.mnuHelp, "mnuHBar1");
    m.mnuHAbout = m.mnuHelp->addAction(isSwedish ? QStringLiteral("&Om ") + applicationTitle() + QStringLiteral("...")
                                                 : QStringLiteral("&About KEL Viewer..."));
    m.mnuHAbout->setObjectName(QStringLiteral("mnuHAbout"));

    m.mnuPopUp = new QMenu(owner);
    m.mnuPopUp->setObjectName(QStringLiteral("mnuPopUp"));
    QMenu *p = m.mnuPopUp;
    m.mnuPShowRowsComments = b.item(p, "mnuPShowRowsComments", "Show R&ow's Comments", "Visa r&adens kommentarer");
    m.mnuPShowColumnsComments =
        b.item(p, "mnuPShowColumnsComments", "Show Co&lumn's Comments", "Visa &kolumnens kommentarer");
    m.mnuPCopyThisRowsAnswers =
        b.item(p, "mnuPCopyThisRowsAnswers", "Copy this Row's Ans&wers", "Kopiera den här radens &svar");
    m.mnuPBar1 = b.bar(p, "mnuPBar1");
    m.mnuPShowTotalGraph1 = b.item(p, "mnuPShowTotalGraph1", "Show &Total Index Graph...", "Visa &totalindexgraf...");
    m.mnuPShowBlockGraph4 = b.item(p, "mnuPShowBlockGraph4", "Show &Block Index Graph...", "Visa block&indexgraf...");
    m.mnuPShowBlockGraph1 = b.item(p, "mnuPShowBlockGraph1", "Show Block &Histogram", "Visa block&histogram");
    m.mnuPShowBlockGraph2 = b.item(p, "mnuPShowBlockGraph2", "Show Block &Graph", "Visa block&graf");
    m.mnuPShowBlockGraph3 =
        b.submenu(p, "mnuPShowBlockGraph3", "Show Block &Ranking Graph", "Visa block&rankningsgraf");
    m.mnuPSB3SortedBy[0] =
        b.item(m.mnuPShowBlockGraph3, "mnuPSB3SortedBy0", "Sorted by &Ranking", "Sorterad efter &rankning");
    m.mnuPSB3SortedBy[1] =
        b.item(m.mnuPShowBlockGraph3, "mnuPSB3SortedBy1", "Sorted by &Option", "Sorterad efter &alternativ");
    m.mnuPShowQuestionGraph1 =
        b.submenu(p, "mnuPShowQuestionGraph1", "Show Question &Histogram", "Visa fråge&histogram");
    m.mnuPS1Total =
        b.item(m.mnuPShowQuestionGraph1, "mnuPS1Total", "&Total for Current Selection", "&Totalt för aktuellt urval");
    m.mnuPS1SplitBy = b.submenu(m.mnuPShowQuestionGraph1, "mnuPS1SplitBy", "&Split by", "&Fördelat på");
    m.mnuPS1SplitByColumn << newSplitByItem(m.mnuPS1SplitBy, 0);
    m.mnuPS1Split = b.item(m.mnuPShowQuestionGraph1, "mnuPS1Split", "Split by &Another Question...",
                           "Fördelat på en &annan fråga...");
    m.mnuPShowQuestionGraph2 = b.submenu(p, "mnuPShowQuestionGraph2", "Show Question &Graph", "Visa fråge&graf");
    m.mnuPS2Total =
        b.item(m.mnuPShowQuestionGraph2, "mnuPS2Total", "&Total for Current Selection", "&Totalt för aktuellt urval");
    m.mnuPS2SplitBy = b.submenu(m.mnuPShowQuestionGraph2, "mnuPS2SplitBy", "&Split by", "&Fördelad på");
    m.mnuPS2SplitByColumn << newSplitByItem(m.mnuPS2SplitBy, 0);
    m.mnuPS2Split = b.item(m.mnuPShowQuestionGraph2, "mnuPS2Split", "Split by &Another Question...",
                           "Fördelad på en &annan fråga...");
    m.mnuPShowQuestionGraph3 =
        b.submenu(p, "mnuPShowQuestionGraph3", "Show Question &Ranking Graph", "Visa fråge&rankningsgraf");
    m.mnuPSQ3SortedBy[0] =
        b.item(m.mnuPShowQuestionGraph3, "mnuPSQ3SortedBy0", "Sorted by &Ranking", "Sorterad efter &rankning");
    m.mnuPSQ3SortedBy[1] =
        b.item(m.mnuPShowQuestionGraph3, "mnuPSQ3SortedBy1", "Sorted by &Option", "Sorterad efter &alternativ");
    m.mnuPBar2 = b.bar(p, "mnuPBar2");
    m.mnuPCopy = b.item(p, "mnuPCopy", "&Copy Overview", "K&opiera översikt");
    m.mnuPCopyHeadersAndTotals =
        b.item(p, "mnuPCopyHeadersAndTotals", "Copy Headers a&nd Totals", "Kopiera rubriker o&ch totaler");
    m.mnuPCopyIndexes = b.item(p, "mnuPCopyIndexes", "Copy &Indexes...", "Kopiera i&ndex...");
    m.mnuPPrint = b.item(p, "mnuPPrint", "&Print Overview", "Skriv &ut översikt");
    m.mnuPSaveAs = b.item(p, "mnuPSaveAs", "Save Overview &As...", "Spara översikt so&m...");
    m.mnuPCopyToMiniOverview =
        b.item(p, "mnuPCopyToMiniOverview", "Copy to &Mini-overview", "Kopiera till mini&översikt");
    m.mnuPCopyData = b.item(p, "mnuPCopyData", "Copy Overview as &Data", "Kopiera översikt som &data");
    m.mnuPBar3 = b.bar(p, "mnuPBar3");
    m.mnuPMouseWheelScrollDirection[0] =
        b.item(p, "mnuPMouseWheelScrollDirection0", "Mouse Wheel Scrolls &Vertically", "Mushjulet bläddrar &vertikalt");
    m.mnuPMouseWheelScrollDirection[1] = b.item(p, "mnuPMouseWheelScrollDirection1",
                                                "Mouse Wheel Scrolls Hori&zontally", "Mushjulet bläddrar horisonta&lt");
    auto *wheelGroup = new QActionGroup(p);
    for (QAction *a : m.mnuPMouseWheelScrollDirection) {
        a->setCheckable(true);
        wheelGroup->addAction(a);
    }

    // The state before any document is opened; the popup shows its
    // place-dependent items when it opens.
    m.mnuFMRUBar->setVisible(false);
    for (QAction *a : {m.mnuPShowRowsComments, m.mnuPShowColumnsComments, m.mnuPCopyThisRowsAnswers})
        a->setVisible(false);
    applyMenuEnabling(m, menuEnablingFor(MenuState()));
    return m;
}

void applyMenuEnabling(MainMenus &m, const MenuEnabling &enabling, const std::vector<bool> &splitNotAllowed)
{
    auto enable = [&](MenuCommand c, std::initializer_list<QAction *> actions) {
        for (QAction *a : actions)
            a->setEnabled(enabling[std::size_t(c)].enabled);
    };
    auto enableAll = [&](MenuCommand c, const QList<QAction *> &actions) {
        for (QAction *a : actions)
            a->setEnabled(enabling[std::size_t(c)].enabled);
    };
    auto show = [&](MenuCommand c, std::initializer_list<QAction *> actions) {
        for (QAction *a : actions)
            a->setVisible(enabling[std::size_t(c)].visible);
    };
    auto both = [&](MenuCommand c, std::initializer_list<QAction *> actions) {
        enable(c, actions);
        show(c, actions);
    };
    using C = MenuCommand;
    enable(C::Open, {m.mnuFOpen});
    for (QAction *a : m.mnuFMRU)
        a->setEnabled(enabling[std::size_t(C::Open)].enabled);
    enable(C::SaveOverviewAs, {m.mnuFSaveAs, m.mnuPSaveAs});
    enable(C::CreateReport, {m.mnuFCreateReport});
    both(C::PrintOverview, {m.mnuFPrint, m.mnuPPrint});
    enable(C::PrintFormat, {m.mnuFPrintFormat});
    enable(C::Properties, {m.mnuFProperties});
    enable(C::Exit, {m.mnuFExit});
    enable(C::CopyOverview, {m.mnuECopy, m.mnuPCopy});
    enable(C::CopyHeadersAndTotals, {m.mnuECopyHeadersAndTotals, m.mnuPCopyHeadersAndTotals});
    both(C::CopyIndexes, {m.mnuECopyIndexes, m.mnuPCopyIndexes});
    enable(C::CopyToMiniOverview, {m.mnuECopyToMiniOverview, m.mnuPCopyToMiniOverview});
    both(C::CopyData, {m.mnuECopyData, m.mnuPCopyData});
    enable(C::Navigator, {m.mnuVNavigator});
    enable(C::DetailInformation, {m.mnuVDetailInfo});
    enable(C::DistributionGraph, {m.mnuVDistributionGraph});
    both(C::TotalIndexGraph, {m.mnuVTotalGraph1, m.mnuPShowTotalGraph1});
    show(C::BlockGraphs,
         {m.mnuVBlockGraph4->menuAction(), m.mnuVBlockGraph1->menuAction(), m.mnuVBlockGraph2->menuAction(),
          m.mnuVBlockGraph3->menuAction()});
    for (const QList<QAction *> *items : {&m.mnuVB4Item, &m.mnuVB1Item, &m.mnuVB2Item, &m.mnuVB3Item})
        enableAll(C::BlockGraphs, *items);
    enable(C::BlockGraphs, {m.mnuVUserBlockGraphs->menuAction()});
    enable(C::BlockGraphs,
           {m.mnuPShowBlockGraph4, m.mnuPShowBlockGraph1, m.mnuPShowBlockGraph2, m.mnuPSB3SortedBy[0],
            m.mnuPSB3SortedBy[1]});
    show(C::QuestionGraphs, {m.mnuPS1SplitBy->menuAction(), m.mnuPS2SplitBy->menuAction()});
    enable(C::QuestionGraphs,
           {m.mnuPS1Total, m.mnuPS1Split, m.mnuPS2Total, m.mnuPS2Split, m.mnuPSQ3SortedBy[0], m.mnuPSQ3SortedBy[1]});
    // A group smaller than the document allows must never be split off.
    for (QList<QAction *> *items : {&m.mnuPS1SplitByColumn, &m.mnuPS2SplitByColumn}) {
        for (qsizetype c = 0; c < items->size(); ++c) {
            const bool refused = std::size_t(c) < splitNotAllowed.size() && splitNotAllowed[std::size_t(c)];
            (*items)[c]->setEnabled(enabling[std::size_t(C::QuestionGraphs)].enabled && !refused);
        }
    }
    enable(C::Comments, {m.mnuVComments});
    enable(C::RowsComments, {m.mnuPShowRowsComments});
    enable(C::ColumnsComments, {m.mnuPShowColumnsComments});
    enable(C::CopyThisRowsAnswers, {m.mnuPCopyThisRowsAnswers});
    enable(C::CloseAllGraphWindows, {m.mnuVCloseAllGraphWindows});
    enable(C::EditBlocks, {m.mnuTEditBlocks});
    enable(C::Options, {m.mnuTOptions});
    both(C::Export, {m.mnuTBar2, m.mnuTExport});
    enable(C::HelpTopics, {m.mnuHHelpTopics});
    enable(C::About, {m.mnuHAbout});
    both(C::MouseWheelDirection, {m.mnuPBar3, m.mnuPMouseWheelScrollDirection[0], m.mnuPMouseWheelScrollDirection[1]});
}

bool setSplitByItem(MainMenus &menus, int index, const QString &heading)
{
    if (index < 0)
        return false;
    while (menus.mnuPS1SplitByColumn.size() <= index) {
        menus.mnuPS1SplitByColumn << newSplitByItem(menus.mnuPS1SplitBy, int(menus.mnuPS1SplitByColumn.size()));
        menus.mnuPS2SplitByColumn << newSplitByItem(menus.mnuPS2SplitBy, int(menus.mnuPS2SplitByColumn.size()));
    }
    const QString caption = doubleAmpersands(heading);
    menus.mnuPS1SplitByColumn[index]->setText(caption);
    menus.mnuPS2SplitByColumn[index]->setText(caption);
    return true;
}

void removeExtraSplitByItems(MainMenus &menus)
{
    for (QList<QAction *> *items : {&menus.mnuPS1SplitByColumn, &menus.mnuPS2SplitByColumn}) {
        while (items->size() > 1) {
            QAction *a = items->takeLast();
            delete a;
        }
        items->first()->setText(QString());
    }
}

} // namespace kel
