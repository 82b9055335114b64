// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/mainwindow.h"
#include "engine/document/document.h"
#include "engine/overview/popupblock.h"
#include "engine/settings/recentfiles.h"
#include "gui/common/elidinglabel.h"
#include "gui/common/placement.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/graphs/graphcommands.h"
#include "gui/overview/overviewcommands.h"
#include "gui/overview/sheetview.h"
#include "gui/report/reportcommands.h"
#include "gui/selection/detailwindow.h"
#include "gui/selection/selectiondocks.h"
#include "gui/shell/aboutbox.h"
#include "gui/shell/helpwindow.h"
#include "gui/shell/optionsdialog.h"
#include "gui/shell/startup.h"
#include "render/overview/sheetdrawer.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>

#include <optional>

namespace kel {

namespace {

constexpr double TwipsPerInch = 1440.0;
constexpr int RecentFileWidthTwips = 4500;
constexpr int MinimumWidthTwips = 4800;
constexpr int MinimumHeightTwips = 3600;

/// Calls `onClick` when a watched status panel is double-clicked.
class PanelClickFilter : public QObject
{
public:
    PanelClickFilter(std::function<void()> onClick, QObject *parent) : QObject(parent), mOnClick(std::move(onClick)) { }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonDblClick)
            mOnClick();
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> mOnClick;
};

} // namespace

MainWindow::MainWindow(SettingsStore &settings, bool isSwedish, const MainWindowEnvironment &environment,
                       QWidget *parent)
    : QMainWindow(parent), mEnvironment(environment), mViewerSettings{.store = settings,
                                                                      .isSwedish = isSwedish,
                                                                      .printerInstalled = environment.printerInstalled,
                                                                      .options = {},
                                                                      .last = {}},
      mStatus(new StatusLine(isSwedish, StatusLine::DefaultClearInterval, this)),
      mSession(new ViewerSession(!settings.policies().noRecentDocsMenu, this)), mSheet(new SheetView(this))
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(applicationTitle());
    setAcceptDrops(true);
    mSheet->setObjectName(QStringLiteral("sheet"));
    setCentralWidget(mSheet);
    mSheet->setSwedish(isSwedish);
    connect(mSheet, &SheetView::popupRequested, this, &MainWindow::showSheetPopup);
    connect(mSheet, &SheetView::cellHovered, this, &MainWindow::showHoveredCell);
    createStatusPanels();

    // The sheet is drawn before the docks hear of it.
    connect(mSession, &ViewerSession::sheetChanged, this, &MainWindow::drawShownSheet);
    connect(mSession, &ViewerSession::blocksChanged, this, &MainWindow::rebuildBlockMenus);
    NavigatorActions actions;
    actions.show = [this](SelectionModel &model) {
        const Outcome<> shown = showNavigatorSelection(model);
        return shown.done() ? QString() : showRefusalMessage(*document(), shown.refusal(), mViewerSettings.isSwedish);
    };
    actions.showRefusal = [this](const QString &text) { showMessage(QMessageBox::Critical, applicationTitle(), text); };
    mDocks = new SelectionDocks(*this, *mSession, mViewerSettings, *mStatus, std::move(actions));

    mMenus = buildMainMenus(menuBar(), this, isSwedish);
    updateMenus();
    createCommands();
    connectMenus();

    mViewerSettings.last = settings.readLastSettings();
    resolveDefaultFolders(mViewerSettings.last, QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                          QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    mViewerSettings.options = settings.readSettings();
    DocumentSession &documents = mSession->documents();
    documents.setCurrentFolder(mViewerSettings.last.dataOpenFolder);
    connect(&documents, &DocumentSession::recentFilesChanged, this, &MainWindow::rebuildRecentFilesMenu);
    connect(&documents, &DocumentSession::documentClosed, this, &MainWindow::resetForNoDocument);
    connect(&documents, &DocumentSession::documentOpened, this, &MainWindow::installDocument);
    // The navigator, the detail window and the sheet show the document: they
    // let go of it before it is deleted.
    connect(&documents, &DocumentSession::documentClosing, mDocks, &SelectionDocks::destroy);
    connect(&documents, &DocumentSession::documentClosing, mSheet, &SheetView::resetDocument);
    documents.setRecentFiles(settings.readRecentFiles());

    if (mEnvironment.mouseWheel)
        mMenus.mnuPMouseWheelScrollDirection[0]->setChecked(true);

    mAutoOpenTimer.setSingleShot(true);
    mAutoOpenTimer.setInterval(500);
    connect(&mAutoOpenTimer, &QTimer::timeout, this, &MainWindow::autoOpenFile);

    // Room for the sheet beside the navigator and the detail window, on
    // screens that have it.
    QSize defaultSize(1100, 760);
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        defaultSize = defaultSize.boundedTo(screen->availableGeometry().size() * 0.9).expandedTo(QSize(640, 480));
    resize(defaultSize);
    const double pixels = kel::pixelsPerTwip(*this);
    restoreWindowPlacement(*this, settings, QStringLiteral("Main"),
                           QSize(qRound(MinimumWidthTwips * pixels), qRound(MinimumHeightTwips * pixels)));
}

MainWindow::~MainWindow() = default;

void MainWindow::createStatusPanels()
{
    // Activity, rows of the selection, the selection.
    const char *tipsEnglish[] = {"Current activity", "Items in current selection", "Current selection"};
    const char *tipsSwedish[] = {"Aktuell aktivitet", "Antal i aktuellt urval", "Aktuellt urval"};
    for (int i = 0; i < 3; ++i) {
        // Eliding panels keep their widths whatever they show.
        auto *panel = new ElidingLabel(this);
        panel->setPreferredCharacters(i == 1 ? 8 : 0);
        if (i == 1)
            panel->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        mPanels[i] = panel;
        mPanels[i]->setObjectName(QStringLiteral("stbMainPanel%1").arg(i + 1));
        mPanels[i]->setToolTip(pickText(mViewerSettings.isSwedish, tipsEnglish[i], tipsSwedish[i]));
        mPanels[i]->setFrameShape(QFrame::StyledPanel);
        mPanels[i]->setFrameShadow(QFrame::Sunken);
        statusBar()->addWidget(mPanels[i], i == 1 ? 0 : (i == 0 ? 3 : 2));
    }
    mPanels[1]->setVisible(false);
    mPanels[2]->setVisible(false);
    connect(mStatus, &StatusLine::textChanged, mPanels[0], &QLabel::setText);
}

void MainWindow::createCommands()
{
    const CommandContext context{*mSession, mViewerSettings, *this};
    mCommands.overview = new OverviewCommands(context, *mSheet, this);
    mCommands.graphs = new GraphCommands(context, this);
    mCommands.documents = new DocumentCommands(context, this);
    mCommands.reports = new ReportCommands(context, this);
    // A double click on the status line copies the points behind the total index.
    auto *filter = new PanelClickFilter([this] { mCommands.documents->copyTotalIndexPoints(); }, this);
    for (QLabel *panel : mPanels)
        panel->installEventFilter(filter);
}

void MainWindow::connectMenus()
{
    connect(mMenus.mnuFExit, &QAction::triggered, this, &QWidget::close);
    connect(mMenus.mnuVCloseAllGraphWindows, &QAction::triggered, this, &MainWindow::closeAllGraphWindows);
    connect(mMenus.mnuHHelpTopics, &QAction::triggered, this, &MainWindow::showHelpTopics);
    connect(mMenus.mnuHAbout, &QAction::triggered, this, &MainWindow::showAbout);
    connect(mMenus.mnuTOptions, &QAction::triggered, this, &MainWindow::showOptions);
    // A checked item shows its window, an unchecked one hides it.
    connect(mMenus.mnuVNavigator, &QAction::triggered, this, [this](bool checked) {
        if (NavigatorWindow *navigator = mDocks->navigator())
            navigator->setVisible(checked);
    });
    connect(mMenus.mnuVDetailInfo, &QAction::triggered, this, [this](bool checked) {
        if (DetailWindow *detail = mDocks->detailWindow())
            detail->setVisible(checked);
    });
    connect(mDocks, &SelectionDocks::navigatorHidden, this, [this] { mMenus.mnuVNavigator->setChecked(false); });
    connect(mDocks, &SelectionDocks::detailHidden, this, [this] { mMenus.mnuVDetailInfo->setChecked(false); });
    // The action group checks one wheel item and unchecks the other.
    for (std::size_t i = 0; i < mMenus.mnuPMouseWheelScrollDirection.size(); ++i)
        connect(mMenus.mnuPMouseWheelScrollDirection[i], &QAction::triggered, this,
                [this, i] { mSheet->setWheelHorizontal(i == 1); });
    connectCommandMenus(mMenus, mCommands, this);
}

const Document *MainWindow::document() const
{
    return mSession->document();
}

QLabel *MainWindow::statusPanel(int number) const
{
    return (number >= 1 && number <= 3) ? mPanels[std::size_t(number - 1)] : nullptr;
}

void MainWindow::showMessage(QMessageBox::Icon icon, const QString &title, const QString &text)
{
    if (mMessageHandler) {
        mMessageHandler(icon, title, text);
        return;
    }
    QMessageBox box(icon, title, text, QMessageBox::Ok, this);
    box.exec();
}

void MainWindow::startUp(const QString &firstArgument)
{
    if (firstArgument.isEmpty()) {
        const QString en = QStringLiteral("Welcome to ") + applicationTitle() + QLatin1Char('!');
        const QString sv = QStringLiteral("Välkommen till ") + applicationTitle() + QLatin1Char('!');
        mStatus->setStatus(en, sv, true);
        return;
    }
    if (QFileInfo(firstArgument).isFile()) {
        mStatus->setStatus("Opening data file...", "Öppnar datafil...", false);
        mPendingFile = firstArgument;
        mAutoOpenTimer.start();
    } else {
        mStatus->setStatus(couldNotFindFileStatus(firstArgument, false), couldNotFindFileStatus(firstArgument, true),
                           true);
    }
}

void MainWindow::autoOpenFile()
{
    mAutoOpenTimer.stop();
    const QString path = mPendingFile;
    mPendingFile.clear();
    mCommands.documents->openDocument(path, false, applicationTitle());
}

OpenResult MainWindow::loadDocument(const QString &path, bool rememberFolder)
{
    return mCommands.documents->loadDocument(path, rememberFolder);
}

bool MainWindow::openDocument(const QString &path, bool rememberFolder, const QString &messageTitle)
{
    return mCommands.documents->openDocument(path, rememberFolder, messageTitle);
}

void MainWindow::closeDocument()
{
    mSession->documents().closeDocument();
}

void MainWindow::installDocument()
{
    const Document &doc = *document();
    const DocumentProperties &p = doc.properties;

    // Status panels 2 and 3 take the document's own tips.
    const QString tip2 = doc.text(p.statusPanel2Tip);
    const QString tip3 = doc.text(p.statusPanel3Tip);
    if (!tip2.isEmpty())
        mPanels[1]->setToolTip(tip2);
    if (!tip3.isEmpty())
        mPanels[2]->setToolTip(tip3);
    mPanels[1]->setVisible(true);
    mPanels[2]->setVisible(true);

    // One split-by item per category question, captioned with its heading.
    for (std::size_t k = 0; k < doc.categories.size(); ++k)
        setSplitByItem(mMenus, int(k), doc.questions[std::size_t(doc.categories[k])].heading);

    // The user's own blocks of this document follow its blocks.
    mCommands.documents->restoreStoredBlocks();
    rebuildBlockMenus();

    // The navigator (with the categories) and the detail window come up
    // with the document.
    createToolWindows();

    // The first overview shows everyone. A document too small for any
    // overview opens without a sheet; its panels stay empty.
    mSheet->resetDocument();
    mSheet->setHoverEnabled(p.pointsScale > 0);
    showSelection(fullSelection(doc));
    updateMenus();
    // The arrow and page keys scroll the sheet from the start.
    mSheet->setFocus();

    setWindowTitle(applicationTitle() + QStringLiteral(" - ") + doc.currentFileTitle);
}

void MainWindow::resetForNoDocument()
{
    // The session has closed the pooled windows and forgotten the sheet.
    mMenus.mnuVDetailInfo->setChecked(false);
    mMenus.mnuVNavigator->setChecked(false);
    removeExtraSplitByItems(mMenus);

    const char *tipsEnglish[] = {"Items in current selection", "Current selection"};
    const char *tipsSwedish[] = {"Antal i aktuellt urval", "Aktuellt urval"};
    for (int i = 1; i < 3; ++i) {
        mPanels[i]->setVisible(false);
        mPanels[i]->clear();
        mPanels[i]->setToolTip(pickText(mViewerSettings.isSwedish, tipsEnglish[i - 1], tipsSwedish[i - 1]));
    }
    rebuildBlockMenus();
    updateMenus();
    mSheet->resetDocument();
    mSheet->setHoverEnabled(false);
    setWindowTitle(applicationTitle());
}

void MainWindow::rebuildBlockMenus()
{
    kel::rebuildBlockMenus(mMenus, document(), mSession->blocks(), *mCommands.graphs, mViewerSettings.isSwedish);
}

void MainWindow::rebuildRecentFilesMenu()
{
    fillRecentFilesMenu(mMenus, mSession->documents().recentFiles(),
                        qRound(RecentFileWidthTwips * logicalDpiX() / TwipsPerInch));
}

void MainWindow::closeAllGraphWindows()
{
    WaitCursor wait;
    mStatus->setStatus("Closing all graph windows...", "Stänger alla diagramfönster...", false);
    mSession->closeInUseWindows();
    mStatus->setStatus("All graph windows has been closed!", "Alla diagramfönster har stängts!", true);
}

MenuState MainWindow::menuState() const
{
    return MenuState::of(document(), mEnvironment.printerInstalled, mEnvironment.mouseWheel,
                         mSession->dataRowsAllowed());
}

void MainWindow::updateMenus()
{
    applyMenuEnabling(mMenus, menuEnablingFor(menuState()), mSession->selectionSteps().splitNotAllowed);
}

void MainWindow::showHelpTopics()
{
    WaitCursor wait;
    if (!mHelp) {
        mHelp = new HelpWindow(mViewerSettings.isSwedish, this);
        mHelp->setAttribute(Qt::WA_DeleteOnClose);
    }
    mHelp->show();
    mHelp->raise();
    mHelp->activateWindow();
}

void MainWindow::showAbout()
{
    AboutBox box(mViewerSettings.isSwedish, this);
    box.exec();
}

void MainWindow::showOptions()
{
    runOptionsDialog(this, mViewerSettings.isSwedish, mViewerSettings.options, mViewerSettings.store, document());
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls() && !droppedDocument(event->mimeData()->urls()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QString path = droppedDocument(event->mimeData()->urls());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // Let the drag source finish before a message box can come up.
    QTimer::singleShot(0, this, [this, path] { mCommands.documents->openDropped(path); });
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (mClosed) {
        event->accept();
        return;
    }
    mClosed = true;
    std::optional<WaitCursor> wait;
    if (event->spontaneous()) {
        wait.emplace();
        mStatus->setStatus("Terminating application, please wait...", "Avslutar programmet, var vänlig vänta...",
                           false);
    }
    mAutoOpenTimer.stop();
    // Closing the document closes the pooled windows too.
    closeDocument();
    SettingsStore &store = mViewerSettings.store;
    store.writeRecentFiles(mSession->documents().recentFiles());
    mDocks->destroy();
    if (mHelp)
        mHelp->close();
    mViewerSettings.last.dataOpenFolder = mSession->documents().currentFolder();
    store.writeLastSettings(mViewerSettings.last);
    saveWindowPlacement(*this, store, QStringLiteral("Main"), BorderStyle::Sizable);
    event->accept();
}

void MainWindow::createToolWindows()
{
    mDocks->destroy();
    // The flex total starts as every respondent.
    mSession->resetFlexTotal();
    mDocks->create();
    if (mDocks->navigator())
        mMenus.mnuVNavigator->setChecked(true);
    mMenus.mnuVDetailInfo->setChecked(true);
}

Outcome<> MainWindow::showNavigatorSelection(SelectionModel &model)
{
    return mSession->show(model, mViewerSettings.options.overviewRowOrder);
}

Outcome<> MainWindow::showSelection(const SelectionMatrix &selection)
{
    return mSession->show(selection, mViewerSettings.options.overviewRowOrder);
}

void MainWindow::drawShownSheet()
{
    const Document &doc = *document();
    const SubSheet &sheet = mSession->shownSheet();
    const bool sv = mViewerSettings.isSwedish;
    const UserOptions &options = mViewerSettings.options;
    updateMenus();
    mPanels[1]->setText(QStringLiteral(" %1").arg(sheet.rows.size()));
    mPanels[2]->setText(QLatin1Char(' ') + sheet.steps.selectionText);

    SheetInput input = sheetInputFor(doc, sheet);
    input.overviewMaxRows = options.overviewMaxRows;
    input.groupLines = options.overviewGroupLines;
    input.locale = QLocale();
    const bool drawn = mSheet->setSheet(std::move(input));
    mSession->setSheetOnScreen(drawn);
    if (!drawn)
        showMessage(
            QMessageBox::Critical, applicationTitle(),
            pickText(sv, "The overview is too large to be drawn!", "Översikten är för stor för att kunna ritas!"));
    // The status line keeps its usual words; the empty sheet says why it is empty.
    mSheet->setNotice(sheet.dataRowsAllowed
                          ? QString()
                          : belowMinimumNotice(qint32(sheet.rows.size()), doc.properties.minimumSelection, sv));
}

void MainWindow::showHoveredCell(const SheetHit &hit)
{
    if (mSheet->hasSheet())
        mDocks->showHoveredCell(hit, mSheet->input());
}

void MainWindow::preparePopup(const SheetHit &hit)
{
    const bool totalGraph = menuEnablingFor(menuState())[std::size_t(MenuCommand::TotalIndexGraph)].visible;
    preparePopupMenu(mMenus, *mSession, hit,
                     {mSheet->isRandomPerColumn(), mSheet->sheetGeometry().headerLines, totalGraph});
}

void MainWindow::showSheetPopup(const SheetHit &hit, const QPoint &globalPos)
{
    const Document *doc = document();
    if (hit.place == SheetPlace::Outside || !doc)
        return;
    mSession->setPopupPlace(hit, popupBlock(*doc, hit, mSheet->sheetGeometry().headerLines));
    preparePopup(hit);
    mMenus.mnuPopUp->popup(globalPos);
}

} // namespace kel
