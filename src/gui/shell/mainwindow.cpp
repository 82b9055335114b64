// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/mainwindow.h"
#include "gui/common/placement.h"

#include "gui/shell/overviewpicturecommands.h"

#include "gui/shell/aboutbox.h"
#include "gui/shell/chartcommands.h"
#include "engine/document/documentsession.h"
#include "gui/shell/helpwindow.h"
#include "gui/shell/optionsdialog.h"
#include "gui/common/elidinglabel.h"
#include "gui/shell/overviewcommands.h"
#include "texts/language.h"
#include "engine/settings/recentfiles.h"
#include "gui/shell/startup.h"
#include "texts/messages.h"
#include "texts/statusline.h"
#include "gui/common/waitcursor.h"
#include "engine/document/document.h"
#include "engine/document/kelformat.h"
#include "engine/indexes/columnindex.h"
#include "engine/overview/popupblock.h"
#include "engine/overview/sheetlayout.h"
#include "gui/common/filedialogs.h"
#include "gui/overview/sheetview.h"
#include "engine/selection/counting.h"
#include "gui/selection/detailwindow.h"
#include "gui/selection/navigatorwindow.h"
#include "gui/shell/graphcommands.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QInputDevice>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPrinterInfo>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>
#include <QUrl>
#include <QtEndian>

#include <optional>

namespace kel {

namespace {

constexpr double TwipsPerInch = 1440.0;
constexpr int RecentFileWidthTwips = 4500;
constexpr int MinimumWidthTwips = 4800;
constexpr int MinimumHeightTwips = 3600;

QString documentsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

QString picturesFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

} // namespace

MainWindowEnvironment MainWindowEnvironment::detect()
{
    MainWindowEnvironment e;
    e.printerInstalled =
        !QPrinterInfo::defaultPrinterName().isEmpty() || !QPrinterInfo::availablePrinterNames().isEmpty();
    for (const QInputDevice *device : QInputDevice::devices()) {
        if (device->type() == QInputDevice::DeviceType::Mouse
            || device->hasCapability(QInputDevice::Capability::Scroll)) {
            e.mouseWheel = true;
            break;
        }
    }
    return e;
}

// The desktop recognises a renamed document by the two magic words it starts
// with (its MIME type says so); the drop must take what the desktop offers.
static bool startsLikeKelDocument(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(8);
    return head.size() == 8 && qFromLittleEndian<quint32>(head.constData()) == format::Magic1
        && qFromLittleEndian<quint32>(head.constData() + 4) == format::Magic2;
}

QString droppedDocument(const QList<QUrl> &urls)
{
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return QString();
    const QString path = urls.first().toLocalFile();
    if (path.endsWith(QLatin1String(".kel"), Qt::CaseInsensitive))
        return path;
    return startsLikeKelDocument(path) ? path : QString();
}

MainWindow::MainWindow(SettingsStore &settings, bool isSwedish, const MainWindowEnvironment &environment,
                       QWidget *parent)
    : QMainWindow(parent), mSettings(settings), mIsSwedish(isSwedish), mEnvironment(environment),
      mStatus(new StatusLine(isSwedish, StatusLine::DefaultClearInterval, this)),
      mSession(new DocumentSession(!settings.policies().noRecentDocsMenu, this)), mSheet(new SheetView(this)),
      mRowRandom(quint32(QDateTime::currentMSecsSinceEpoch()))
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(applicationTitle());
    setAcceptDrops(true);
    mSheet->setObjectName(QStringLiteral("sheet"));
    setCentralWidget(mSheet);
    mSheet->setSwedish(isSwedish);
    connect(mSheet, &SheetView::popupRequested, this, &MainWindow::showSheetPopup);
    connect(mSheet, &SheetView::cellHovered, this, &MainWindow::showHoveredCell);

    // Status bar: activity, rows of the selection, the selection.
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
        mPanels[i]->setToolTip(pickText(isSwedish, tipsEnglish[i], tipsSwedish[i]));
        mPanels[i]->setFrameShape(QFrame::StyledPanel);
        mPanels[i]->setFrameShadow(QFrame::Sunken);
        statusBar()->addWidget(mPanels[i], i == 1 ? 0 : (i == 0 ? 3 : 2));
    }
    mPanels[1]->setVisible(false);
    mPanels[2]->setVisible(false);
    connect(mStatus, &StatusLine::textChanged, mPanels[0], &QLabel::setText);

    mMenus = buildMainMenus(menuBar(), this, isSwedish);
    updateMenus();
    connectMenus();
    connectDocumentCommands();
    connectReportCommands();
    connectBasicGraphCommands(*this);
    mCharts = new ChartCommands(*this);
    new OverviewCommands(*this);

    mLastSettings = mSettings.readLastSettings();
    resolveDefaultFolders(mLastSettings, documentsFolder(), picturesFolder());
    mOptions = mSettings.readSettings();
    mSession->setCurrentFolder(mLastSettings.dataOpenFolder);
    connect(mSession, &DocumentSession::recentFilesChanged, this, &MainWindow::rebuildRecentFilesMenu);
    connect(mSession, &DocumentSession::documentClosed, this, &MainWindow::resetForNoDocument);
    connect(mSession, &DocumentSession::documentOpened, this, &MainWindow::installDocument);
    // The navigator, the detail window and the sheet show the document: they
    // let go of it before it is deleted.
    connect(mSession, &DocumentSession::documentClosing, this, &MainWindow::destroyToolWindows);
    connect(mSession, &DocumentSession::documentClosing, mSheet, &SheetView::resetDocument);
    mSession->setRecentFiles(mSettings.readRecentFiles());

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
    loadPlacement();
}

MainWindow::~MainWindow() = default;

void MainWindow::connectMenus()
{
    connect(mMenus.mnuFOpen, &QAction::triggered, this, &MainWindow::fileOpen);
    for (std::size_t i = 0; i < mMenus.mnuFMRU.size(); ++i)
        connect(mMenus.mnuFMRU[i], &QAction::triggered, this, [this, i] { openRecentFile(int(i)); });
    connect(mMenus.mnuFExit, &QAction::triggered, this, &QWidget::close);
    connect(mMenus.mnuVCloseAllGraphWindows, &QAction::triggered, this, &MainWindow::closeAllGraphWindows);
    connect(mMenus.mnuHHelpTopics, &QAction::triggered, this, &MainWindow::showHelpTopics);
    connect(mMenus.mnuHAbout, &QAction::triggered, this, &MainWindow::showAbout);
    connect(mMenus.mnuTOptions, &QAction::triggered, this, &MainWindow::showOptions);
    connectOverviewCommands(*this);
    // A checked item shows its window, an unchecked one hides it.
    connect(mMenus.mnuVNavigator, &QAction::triggered, this, [this](bool checked) {
        if (mNavigator)
            mNavigator->setVisible(checked);
    });
    connect(mMenus.mnuVDetailInfo, &QAction::triggered, this, [this](bool checked) {
        if (mDetail)
            mDetail->setVisible(checked);
    });
    // The action group checks one wheel item and unchecks the other.
    for (std::size_t i = 0; i < mMenus.mnuPMouseWheelScrollDirection.size(); ++i)
        connect(mMenus.mnuPMouseWheelScrollDirection[i], &QAction::triggered, this,
                [this, i] { mSheet->setWheelHorizontal(i == 1); });
    // Save As, Print, Print Format, the Edit commands, the graph commands,
    // Comments, Options and the popup menu's commands are connected by the
    // windows that carry them out.
}

const Document *MainWindow::document() const
{
    return mSession->document();
}

const BlockCatalogue &MainWindow::blocks() const
{
    return mSession->blocks();
}

QLabel *MainWindow::statusPanel(int number) const
{
    return (number >= 1 && number <= 3) ? mPanels[std::size_t(number - 1)] : nullptr;
}

QString MainWindow::openDialogTitle() const
{
    return pickText(mIsSwedish, "Open Data File", "Öppna datafil");
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
    openDocument(path, false, applicationTitle());
}

bool MainWindow::openDocument(const QString &path, bool rememberFolder, const QString &messageTitle)
{
    WaitCursor wait;
    mStatus->setStatus("Opening data file...", "Öppnar datafil...", false);
    const OpenResult result = loadDocument(path, rememberFolder);
    if (result != OpenResult::Ok) {
        showMessage(QMessageBox::Critical, messageTitle, openResultMessage(result, mIsSwedish));
        mStatus->clearStatus();
        return false;
    }
    const QString title = document()->currentFileTitle;
    mStatus->setStatus(title + QStringLiteral(" has been opened!"), title + QStringLiteral(" har öppnats!"), true);
    return true;
}

void MainWindow::fileOpen()
{
    WaitCursor wait;
    mStatus->setStatus("Opening data file, locating folder, please wait!",
                       "Öppnar datafil, söker efter mapp, var vänlig vänta!", false);
    if (!QFileInfo(mSession->currentFolder()).isDir())
        mSession->setCurrentFolder(documentsFolder());
    mStatus->setStatus("Opening data file...", "Öppnar datafil...", false);

    const QString kelFilter = pickText(mIsSwedish, "KEL files (*.kel)", "KEL-filer (*.kel)");
    const QString allFilter = pickText(mIsSwedish, "All files (*.*)", "Alla filer (*.*)");
    const Document *doc = document();
    const bool kelFirst = doc == nullptr || doc->currentFileName.endsWith(QLatin1String(".kel"), Qt::CaseInsensitive);
    const QString selectedFilter = kelFirst ? kelFilter : allFilter;
    const QString start =
        doc ? QDir(mSession->currentFolder()).filePath(doc->currentFileTitle) : mSession->currentFolder();

    QApplication::setOverrideCursor(Qt::ArrowCursor);
    QFileDialog dialog(this, openDialogTitle(), start, kelFilter + QStringLiteral(";;") + allFilter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.selectNameFilter(selectedFilter);
    prepareFileDialog(dialog, mIsSwedish);
    const QString path = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()
        ? dialog.selectedFiles().first()
        : QString();
    QApplication::restoreOverrideCursor();
    if (path.isEmpty()) {
        mStatus->clearStatus();
        return;
    }
    const OpenResult result = loadDocument(path, true);
    if (result != OpenResult::Ok) {
        showMessage(QMessageBox::Critical, openDialogTitle(), openResultMessage(result, mIsSwedish));
        mStatus->clearStatus();
        return;
    }
    const QString title = document()->currentFileTitle;
    mStatus->setStatus(title + QStringLiteral(" has been opened!"), title + QStringLiteral(" har öppnats!"), true);
}

void MainWindow::openRecentFile(int index)
{
    const QStringList files = mSession->recentFiles();
    if (index < 0 || index >= files.size())
        return;
    openDocument(files.at(index), true, openDialogTitle());
}

OpenResult MainWindow::loadDocument(const QString &path, bool rememberFolder)
{
    // The session reads and checks the whole file before it closes the open
    // document; its signals run resetForNoDocument and installDocument.
    const OpenResult result = mSession->loadDocument(path, rememberFolder);
    if (result != OpenResult::Ok)
        return result;
    const Document *doc = document();
    if (doc->upgradeWarning) {
        const QString title = doc->currentFileTitle;
        const QString app = applicationTitle();
        const QString text = mIsSwedish
            ? title + QStringLiteral(" har ett nyare filformat än den här versionen av ") + app
                + QStringLiteral(" är gjord för! Filen kan ändå visas, men om du vill vara säker på att få tillgång "
                                 "till all information i filen bör du uppgradera ")
                + app + QLatin1Char('!')
            : title + QStringLiteral(" is in a newer format then this version of ") + app
                + QStringLiteral(" was designed for! The file can still be opened, but to make sure you can access "
                                 "all the information in the file you should upgrade you copy of ")
                + app + QLatin1Char('!');
        showMessage(QMessageBox::Warning, pickText(mIsSwedish, "Time to upgrade", "Dags att uppgradera"), text);
    }
    return OpenResult::Ok;
}

void MainWindow::closeDocument()
{
    mSession->closeDocument();
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
    restoreStoredBlocks();
    mExportOptions.reset();
    rebuildBlockMenus();

    // The flex total starts as every respondent; the navigator (with the
    // categories) and the detail window come up with the document.
    createToolWindows(doc);

    // The first overview shows everyone. A document too small for any
    // overview opens without a sheet; its panels stay empty.
    mSheet->resetDocument();
    mSheet->setHoverEnabled(p.pointsScale > 0);
    setDataRowsAllowed(false);
    showSelection(fullSelection(doc));
    updateMenus();
    // The arrow and page keys scroll the sheet from the start.
    mSheet->setFocus();

    setWindowTitle(applicationTitle() + QStringLiteral(" - ") + doc.currentFileTitle);
}

void MainWindow::resetForNoDocument()
{
    // Every window of the three tables shows the old document.
    closeSlotWindows();
    mSteps = SelectionSteps();
    mShownSheet = SubSheet();

    mMenus.mnuVDetailInfo->setChecked(false);
    mMenus.mnuVNavigator->setChecked(false);
    removeExtraSplitByItems(mMenus);
    mDataRowsAllowed = false;

    const char *tipsEnglish[] = {"Items in current selection", "Current selection"};
    const char *tipsSwedish[] = {"Antal i aktuellt urval", "Aktuellt urval"};
    for (int i = 1; i < 3; ++i) {
        mPanels[i]->setVisible(false);
        mPanels[i]->clear();
        mPanels[i]->setToolTip(pickText(mIsSwedish, tipsEnglish[i - 1], tipsSwedish[i - 1]));
    }
    mExportOptions.reset();
    rebuildBlockMenus();
    updateMenus();
    mSheet->resetDocument();
    mSheet->setHoverEnabled(false);
    setWindowTitle(applicationTitle());
}

void MainWindow::rebuildBlockMenus()
{
    // The four View block submenus list the blocks; they stay hidden because
    // block graphs are reached through the popup menu.
    const std::array<std::pair<QMenu *, QList<QAction *> *>, 4> menus{{{mMenus.mnuVBlockGraph4, &mMenus.mnuVB4Item},
                                                                       {mMenus.mnuVBlockGraph1, &mMenus.mnuVB1Item},
                                                                       {mMenus.mnuVBlockGraph2, &mMenus.mnuVB2Item},
                                                                       {mMenus.mnuVBlockGraph3, &mMenus.mnuVB3Item}}};
    const Document *doc = document();
    for (const auto &[menu, items] : menus) {
        qDeleteAll(*items);
        items->clear();
        if (!doc)
            continue;
        for (const Block &block : blocks().blocks)
            *items << menu->addAction(doubleAmpersands(block.name));
    }
    rebuildUserBlockGraphMenu(*this);
}

void MainWindow::rebuildRecentFilesMenu()
{
    const QStringList files = mSession->recentFiles();
    mMenus.mnuFMRUBar->setVisible(!files.isEmpty());
    const QFontMetrics metrics(mMenus.mnuFile->font());
    const int width = qRound(RecentFileWidthTwips * logicalDpiX() / TwipsPerInch);
    for (std::size_t i = 0; i < mMenus.mnuFMRU.size(); ++i) {
        QAction *item = mMenus.mnuFMRU[i];
        if (qsizetype(i) >= files.size()) {
            item->setVisible(false);
            continue;
        }
        const PathParts parts = splitDocumentPath(files.at(qsizetype(i)));
        const QString display = QDir::toNativeSeparators(
            parts.folder.isEmpty() ? fileDisplayTitle(parts.name)
                                   : QDir(parts.folder).filePath(fileDisplayTitle(parts.name)));
        QString compact = metrics.elidedText(display, Qt::ElideMiddle, width);
        if (compact.isEmpty())
            compact = QStringLiteral("...") + QDir::separator() + parts.name;
        item->setText(recentFileCaption(int(i), compact));
        item->setToolTip(files.at(qsizetype(i)));
        item->setVisible(true);
    }
}

const SheetHit &MainWindow::lastPopupHit() const
{
    return mPopupHit;
}

WindowSlotTable &MainWindow::windowSlots(SlotTable table)
{
    switch (table) {
    case SlotTable::MiniOverviews: return mMiniOverviews;
    case SlotTable::BasicGraphs: return mBasicGraphs;
    case SlotTable::ChartGraphs: break;
    }
    return mChartGraphs;
}

void MainWindow::storeQuestionGraphDefaultSize(qint32 windowWidthTwips, qint32 barWidth)
{
    mLastSettings.questionGraphWindowWidth = windowWidthTwips;
    mLastSettings.questionGraphBarWidth = barWidth;
    mSettings.writeLastSettings(mLastSettings);
}

void MainWindow::closeAllGraphWindows()
{
    WaitCursor wait;
    mStatus->setStatus("Closing all graph windows...", "Stänger alla diagramfönster...", false);
    for (WindowSlotTable *table : {&mMiniOverviews, &mBasicGraphs, &mChartGraphs}) {
        for (WindowSlot &slot : *table) {
            if (slot.inUse && slot.window)
                slot.window->close();
            slot.inUse = false;
        }
    }
    mStatus->setStatus("All graph windows has been closed!", "Alla diagramfönster har stängts!", true);
}

void MainWindow::closeSlotWindows()
{
    for (WindowSlotTable *table : {&mMiniOverviews, &mBasicGraphs, &mChartGraphs})
        closePooledWindows(*table);
}

ShowPermissions MainWindow::shownPermissions() const
{
    const Document *doc = document();
    if (!doc || !mSheet->hasSheet())
        return ShowPermissions();
    return showPermissions(*doc, qint32(mShownSheet.rows.size()), mFlexTotal.rowCount(),
                           mShownSheet.steps.splitNotAllowed);
}

bool MainWindow::mayOutput(OutputCommand command, qint32 splitCategory) const
{
    return permits(shownPermissions(), command, splitCategory);
}

void MainWindow::setDataRowsAllowed(bool allowed)
{
    mDataRowsAllowed = allowed;
    updateMenus();
}

MenuState MainWindow::menuState() const
{
    return MenuState::of(document(), mEnvironment.printerInstalled, mEnvironment.mouseWheel, mDataRowsAllowed);
}

void MainWindow::updateMenus()
{
    applyMenuEnabling(mMenus, menuEnablingFor(menuState()), mSteps.splitNotAllowed);
}

void MainWindow::setSelectionPanels(qint32 rows, const QString &selectionText)
{
    mPanels[1]->setText(QStringLiteral(" %1").arg(rows));
    mPanels[2]->setText(QLatin1Char(' ') + selectionText);
}

void MainWindow::showHelpTopics()
{
    WaitCursor wait;
    if (!mHelp) {
        mHelp = new HelpWindow(mIsSwedish, this);
        mHelp->setAttribute(Qt::WA_DeleteOnClose);
    }
    mHelp->show();
    mHelp->raise();
    mHelp->activateWindow();
}

void MainWindow::showAbout()
{
    AboutBox box(mIsSwedish, this);
    box.exec();
}

void MainWindow::showOptions()
{
    runOptionsDialog(this, mIsSwedish, mOptions, mSettings, document());
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
    QTimer::singleShot(0, this, [this, path] { openDocument(path, true, openDialogTitle()); });
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
    closeDocument();
    mSettings.writeRecentFiles(mSession->recentFiles());
    closeSlotWindows();
    destroyToolWindows();
    if (mHelp)
        mHelp->close();
    mLastSettings.dataOpenFolder = mSession->currentFolder();
    mSettings.writeLastSettings(mLastSettings);
    savePlacement();
    event->accept();
}

void MainWindow::loadPlacement()
{
    const double pixels = kel::pixelsPerTwip(*this);
    restoreWindowPlacement(*this, mSettings, QStringLiteral("Main"),
                           QSize(qRound(MinimumWidthTwips * pixels), qRound(MinimumHeightTwips * pixels)));
}

void MainWindow::savePlacement()
{
    saveWindowPlacement(*this, mSettings, QStringLiteral("Main"), BorderStyle::Sizable);
}

// --- Navigator and detail-information windows ---

NavigatorWindow *MainWindow::navigator() const
{
    return mNavigator;
}

DetailWindow *MainWindow::detailWindow() const
{
    return mDetail;
}

void MainWindow::createToolWindows(const Document &doc)
{
    destroyToolWindows();
    mFlexTotal.reset(doc, blocks());
    const double pixelsPerTwip = logicalDpiY() / TwipsPerInch;
    auto pixels = [&](int twips) { return qRound(twips * pixelsPerTwip); };

    // The navigator first, so that by default it stands above the detail
    // window on the right.
    if (!doc.categories.empty()) {
        NavigatorActions actions;
        actions.show = [this](SelectionModel &model) {
            const Outcome<> shown = showNavigatorSelection(model);
            return shown.done() ? QString() : showRefusalMessage(*document(), shown.refusal(), mIsSwedish);
        };
        actions.showRefusal = [this](const QString &text) {
            showMessage(QMessageBox::Critical, applicationTitle(), text);
        };
        mNavigator = new NavigatorWindow(mIsSwedish, *mStatus, mOptions, std::move(actions), this);
        connect(mNavigator, &ToolDock::hiddenByUser, this, [this] { mMenus.mnuVNavigator->setChecked(false); });
        mNavigator->restorePlacement(*this, mSettings, Qt::RightDockWidgetArea, QSize(pixels(4900), pixels(5400)));
        mNavigator->loadSettings(mSettings);
        mNavigator->setUp(doc);
        mNavigator->show();
        mMenus.mnuVNavigator->setChecked(true);
    }

    mDetail = new DetailWindow(mIsSwedish, this);
    connect(mDetail, &ToolDock::hiddenByUser, this, [this] { mMenus.mnuVDetailInfo->setChecked(false); });
    // Docked under the navigator it shares its width: the same default keeps
    // the navigator's option texts whole.
    mDetail->restorePlacement(*this, mSettings, Qt::RightDockWidgetArea, QSize(pixels(4900), pixels(600)));
    mDetail->setUpForDocument(doc);
    showFlexTotalIndex();
    mDetail->show();
    mMenus.mnuVDetailInfo->setChecked(true);
}

void MainWindow::destroyToolWindows()
{
    // Where the windows stood is kept for the next document and run.
    if (mNavigator) {
        mNavigator->saveSettings(mSettings);
        mNavigator->closeForGood();
        delete mNavigator;
    }
    if (mDetail) {
        mDetail->savePlacement(mSettings);
        mDetail->closeForGood();
        delete mDetail;
    }
}

void MainWindow::showFlexTotalIndex()
{
    const Document *doc = document();
    if (mDetail && doc)
        mDetail->setIndexValue(4, true, formatIndex(mFlexTotal.totalIndex(), doc->properties.indexDecimals, QLocale()));
}

Outcome<> MainWindow::showNavigatorSelection(SelectionModel &model)
{
    const Document *doc = document();
    if (!doc)
        return {};
    const SubSheet sheet = kel::showSelection(*doc, blocks(), model, mFlexTotal, mOptions.overviewRowOrder, mRowRandom);
    // The flex total changes with Show even when the selection is refused.
    showFlexTotalIndex();
    if (!sheet.outcome.done())
        return sheet.outcome; // the previous overview stays
    showSubSheet(*doc, sheet);
    return {};
}

Outcome<> MainWindow::showSelection(const SelectionMatrix &selection)
{
    const Document *doc = document();
    if (!doc)
        return {};
    const SubSheet sheet = createSubSheet(*doc, blocks(), selection, mFlexTotal, mOptions.overviewRowOrder, mRowRandom);
    // A flex total based on the current selection is rebuilt even when the
    // selection itself is refused.
    showFlexTotalIndex();
    if (!sheet.outcome.done())
        return sheet.outcome; // the previous overview stays
    showSubSheet(*doc, sheet);
    return {};
}

void MainWindow::showSubSheet(const Document &doc, const SubSheet &sheet)
{
    mShownSheet = sheet;
    mSteps = sheet.steps;
    setDataRowsAllowed(sheet.dataRowsAllowed);
    setSelectionPanels(qint32(sheet.rows.size()), sheet.steps.selectionText);

    SheetInput input = sheetInputFor(doc, sheet);
    input.overviewMaxRows = mOptions.overviewMaxRows;
    input.groupLines = mOptions.overviewGroupLines;
    input.locale = QLocale();
    if (!mSheet->setSheet(std::move(input)))
        showMessage(QMessageBox::Critical, applicationTitle(),
                    pickText(mIsSwedish, "The overview is too large to be drawn!",
                             "Översikten är för stor för att kunna ritas!"));
    // The status line keeps its usual words; the empty sheet says why it is empty.
    mSheet->setNotice(sheet.dataRowsAllowed
                          ? QString()
                          : belowMinimumNotice(qint32(sheet.rows.size()), doc.properties.minimumSelection, mIsSwedish));
    if (mDetail)
        mDetail->showNoCell(doc, sheet.totalIndex);
}

void MainWindow::showHoveredCell(const SheetHit &hit)
{
    const Document *doc = document();
    if (mDetail && doc && mSheet->hasSheet())
        mDetail->showCell(*doc, blocks(), mFlexTotal, hit, mSheet->input().columns, mSheet->input().rows);
}

void MainWindow::preparePopup(const SheetHit &hit)
{
    const Document *doc = document();
    if (!doc)
        return;
    const bool questionKnown = hit.question >= 0 && std::size_t(hit.question) < doc->questions.size();
    PopupContext context;
    context.randomPerColumn = mSheet->isRandomPerColumn();
    context.hasRowComments = doc->properties.hasRowComments;
    context.hasCellComments = doc->hasCellComments;
    context.totalGraphVisible = mMenus.mnuPShowTotalGraph1->isVisible();
    if (questionKnown) {
        const Question &question = doc->questions[std::size_t(hit.question)];
        context.questionGraphFlags = question.graphFlags;
        if (hit.place == SheetPlace::BlockLine) {
            if (const qint32 block = popupBlock(*doc, hit, mSheet->sheetGeometry().headerLines); block >= 0)
                context.blockGraphFlags = blocks().blocks[std::size_t(block)].graphFlags;
        }
    }
    const PopupItems items = popupItemsFor(hit.place, context);
    mMenus.mnuPShowRowsComments->setVisible(items.showRowsComments);
    mMenus.mnuPShowColumnsComments->setVisible(items.showColumnsComments);
    mMenus.mnuPCopyThisRowsAnswers->setVisible(items.copyThisRowsAnswers);
    mMenus.mnuPBar1->setVisible(items.bar1);
    const std::array<QAction *, 4> blockGraphs{mMenus.mnuPShowBlockGraph1, mMenus.mnuPShowBlockGraph2,
                                               mMenus.mnuPShowBlockGraph3->menuAction(), mMenus.mnuPShowBlockGraph4};
    for (std::size_t i = 0; i < blockGraphs.size(); ++i)
        blockGraphs[i]->setVisible(items.showBlockGraph[i]);
    const std::array<QAction *, 3> questionGraphs{mMenus.mnuPShowQuestionGraph1->menuAction(),
                                                  mMenus.mnuPShowQuestionGraph2->menuAction(),
                                                  mMenus.mnuPShowQuestionGraph3->menuAction()};
    for (std::size_t i = 0; i < questionGraphs.size(); ++i)
        questionGraphs[i]->setVisible(items.showQuestionGraph[i]);
    mMenus.mnuPBar2->setVisible(items.bar2);

    // A header line has no row: only the column's comments can apply there.
    const PopupEnabling enabling =
        popupEnablingFor(*doc, mSheet->input().rows, mSheet->input().columns, context.randomPerColumn,
                         hit.place == SheetPlace::AnswerCell ? hit.row : -1, hit.question);
    // Comments are individual answers: the engine's decision for the
    // overview on screen comes first.
    mMenus.mnuPShowRowsComments->setEnabled(enabling.showRowsComments && isCommandBuilt(MenuCommand::RowsComments)
                                            && mayOutput(OutputCommand::RowsComments));
    mMenus.mnuPShowColumnsComments->setEnabled(enabling.showColumnsComments
                                               && isCommandBuilt(MenuCommand::ColumnsComments)
                                               && mayOutput(OutputCommand::ColumnsComments));
}

void MainWindow::showSheetPopup(const SheetHit &hit, const QPoint &globalPos)
{
    if (hit.place == SheetPlace::Outside || !document())
        return;
    mPopupHit = hit;
    preparePopup(hit);
    mMenus.mnuPopUp->popup(globalPos);
}

} // namespace kel
