// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/mainwindow.h"
#include "engine/document/document.h"
#include "engine/document/kelformat.h"
#include "engine/indexes/columnindex.h"
#include "engine/overview/popupblock.h"
#include "engine/settings/recentfiles.h"
#include "gui/common/elidinglabel.h"
#include "gui/common/filedialogs.h"
#include "gui/common/placement.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/document/documentcommands.h"
#include "gui/graphs/graphcommands.h"
#include "gui/overview/overviewcommands.h"
#include "gui/overview/sheetview.h"
#include "gui/report/reportcommands.h"
#include "gui/selection/detailwindow.h"
#include "gui/selection/navigatorwindow.h"
#include "gui/shell/aboutbox.h"
#include "gui/shell/helpwindow.h"
#include "gui/shell/optionsdialog.h"
#include "gui/shell/startup.h"
#include "render/overview/sheetdrawer.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

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

    mMenus = buildMainMenus(menuBar(), this, isSwedish);
    updateMenus();
    createCommands();
    connectMenus();

    mViewerSettings.last = settings.readLastSettings();
    resolveDefaultFolders(mViewerSettings.last, documentsFolder(), picturesFolder());
    mViewerSettings.options = settings.readSettings();
    DocumentSession &documents = mSession->documents();
    documents.setCurrentFolder(mViewerSettings.last.dataOpenFolder);
    connect(&documents, &DocumentSession::recentFilesChanged, this, &MainWindow::rebuildRecentFilesMenu);
    connect(&documents, &DocumentSession::documentClosed, this, &MainWindow::resetForNoDocument);
    connect(&documents, &DocumentSession::documentOpened, this, &MainWindow::installDocument);
    // The navigator, the detail window and the sheet show the document: they
    // let go of it before it is deleted.
    connect(&documents, &DocumentSession::documentClosing, this, &MainWindow::destroyToolWindows);
    connect(&documents, &DocumentSession::documentClosing, mSheet, &SheetView::resetDocument);
    documents.setRecentFiles(settings.readRecentFiles());
    connect(mSession, &ViewerSession::sheetChanged, this, &MainWindow::drawShownSheet);
    connect(mSession, &ViewerSession::flexTotalChanged, this, &MainWindow::showFlexTotalIndex);
    connect(mSession, &ViewerSession::blocksChanged, this, &MainWindow::rebuildBlockMenus);

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
    connect(mMenus.mnuFOpen, &QAction::triggered, this, &MainWindow::fileOpen);
    for (std::size_t i = 0; i < mMenus.mnuFMRU.size(); ++i)
        connect(mMenus.mnuFMRU[i], &QAction::triggered, this, [this, i] { openRecentFile(int(i)); });
    connect(mMenus.mnuFExit, &QAction::triggered, this, &QWidget::close);
    connect(mMenus.mnuVCloseAllGraphWindows, &QAction::triggered, this, &MainWindow::closeAllGraphWindows);
    connect(mMenus.mnuHHelpTopics, &QAction::triggered, this, &MainWindow::showHelpTopics);
    connect(mMenus.mnuHAbout, &QAction::triggered, this, &MainWindow::showAbout);
    connect(mMenus.mnuTOptions, &QAction::triggered, this, &MainWindow::showOptions);
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

QString MainWindow::openDialogTitle() const
{
    return pickText(mViewerSettings.isSwedish, "Open Data File", "Öppna datafil");
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
    const QString message = loadDocument(path, rememberFolder);
    if (!message.isEmpty()) {
        showMessage(QMessageBox::Critical, messageTitle, message);
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
    if (!QFileInfo(mSession->documents().currentFolder()).isDir())
        mSession->documents().setCurrentFolder(documentsFolder());
    mStatus->setStatus("Opening data file...", "Öppnar datafil...", false);

    const QString kelFilter = pickText(mViewerSettings.isSwedish, "KEL files (*.kel)", "KEL-filer (*.kel)");
    const QString allFilter = pickText(mViewerSettings.isSwedish, "All files (*.*)", "Alla filer (*.*)");
    const Document *doc = document();
    const bool kelFirst = doc == nullptr || doc->currentFileName.endsWith(QLatin1String(".kel"), Qt::CaseInsensitive);
    const QString selectedFilter = kelFirst ? kelFilter : allFilter;
    const QString start = doc ? QDir(mSession->documents().currentFolder()).filePath(doc->currentFileTitle)
                              : mSession->documents().currentFolder();

    QApplication::setOverrideCursor(Qt::ArrowCursor);
    QFileDialog dialog(this, openDialogTitle(), start, kelFilter + QStringLiteral(";;") + allFilter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.selectNameFilter(selectedFilter);
    prepareFileDialog(dialog, mViewerSettings.isSwedish);
    const QString path = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()
        ? dialog.selectedFiles().first()
        : QString();
    QApplication::restoreOverrideCursor();
    if (path.isEmpty()) {
        mStatus->clearStatus();
        return;
    }
    const QString message = loadDocument(path, true);
    if (!message.isEmpty()) {
        showMessage(QMessageBox::Critical, openDialogTitle(), message);
        mStatus->clearStatus();
        return;
    }
    const QString title = document()->currentFileTitle;
    mStatus->setStatus(title + QStringLiteral(" has been opened!"), title + QStringLiteral(" har öppnats!"), true);
}

void MainWindow::openRecentFile(int index)
{
    const QStringList files = mSession->documents().recentFiles();
    if (index < 0 || index >= files.size())
        return;
    openDocument(files.at(index), true, openDialogTitle());
}

QString MainWindow::loadDocument(const QString &path, bool rememberFolder)
{
    // The session reads and checks the whole file before it closes the open
    // document; its signals run resetForNoDocument and installDocument.
    const OpenResult result = mSession->documents().loadDocument(path, rememberFolder);
    if (result != OpenResult::Ok)
        return openResultMessage(result, mViewerSettings.isSwedish);
    const Document *doc = document();
    if (doc->upgradeWarning) {
        const QString title = doc->currentFileTitle;
        const QString app = applicationTitle();
        const QString text = mViewerSettings.isSwedish
            ? title + QStringLiteral(" har ett nyare filformat än den här versionen av ") + app
                + QStringLiteral(" är gjord för! Filen kan ändå visas, men om du vill vara säker på att få tillgång "
                                 "till all information i filen bör du uppgradera ")
                + app + QLatin1Char('!')
            : title + QStringLiteral(" is in a newer format then this version of ") + app
                + QStringLiteral(" was designed for! The file can still be opened, but to make sure you can access "
                                 "all the information in the file you should upgrade you copy of ")
                + app + QLatin1Char('!');
        showMessage(QMessageBox::Warning, pickText(mViewerSettings.isSwedish, "Time to upgrade", "Dags att uppgradera"),
                    text);
    }
    return QString();
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

    // The flex total starts as every respondent; the navigator (with the
    // categories) and the detail window come up with the document.
    createToolWindows(doc);

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
    kel::rebuildBlockMenus(mMenus, document(), *mCommands.graphs, mViewerSettings.isSwedish);
}

void MainWindow::rebuildRecentFilesMenu()
{
    const QStringList files = mSession->documents().recentFiles();
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
    // Closing the document closes the pooled windows too.
    closeDocument();
    SettingsStore &store = mViewerSettings.store;
    store.writeRecentFiles(mSession->documents().recentFiles());
    destroyToolWindows();
    if (mHelp)
        mHelp->close();
    mViewerSettings.last.dataOpenFolder = mSession->documents().currentFolder();
    store.writeLastSettings(mViewerSettings.last);
    saveWindowPlacement(*this, store, QStringLiteral("Main"), BorderStyle::Sizable);
    event->accept();
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
    mSession->resetFlexTotal();
    const double pixelsPerTwip = logicalDpiY() / TwipsPerInch;
    auto pixels = [&](int twips) { return qRound(twips * pixelsPerTwip); };
    const bool sv = mViewerSettings.isSwedish;
    SettingsStore &store = mViewerSettings.store;

    // The navigator first, so that by default it stands above the detail
    // window on the right.
    if (!doc.categories.empty()) {
        NavigatorActions actions;
        actions.show = [this](SelectionModel &model) { return showNavigatorSelection(model); };
        actions.showRefusal = [this](const QString &text) {
            showMessage(QMessageBox::Critical, applicationTitle(), text);
        };
        mNavigator = new NavigatorWindow(sv, *mStatus, mViewerSettings.options, std::move(actions), this);
        connect(mNavigator, &ToolDock::hiddenByUser, this, [this] { mMenus.mnuVNavigator->setChecked(false); });
        mNavigator->restorePlacement(*this, store, Qt::RightDockWidgetArea, QSize(pixels(4900), pixels(5400)));
        mNavigator->loadSettings(store);
        mNavigator->setUp(doc);
        mNavigator->show();
        mMenus.mnuVNavigator->setChecked(true);
    }

    mDetail = new DetailWindow(sv, this);
    connect(mDetail, &ToolDock::hiddenByUser, this, [this] { mMenus.mnuVDetailInfo->setChecked(false); });
    // Docked under the navigator it shares its width: the same default keeps
    // the navigator's option texts whole.
    mDetail->restorePlacement(*this, store, Qt::RightDockWidgetArea, QSize(pixels(4900), pixels(600)));
    mDetail->setUpForDocument(doc);
    showFlexTotalIndex();
    mDetail->show();
    mMenus.mnuVDetailInfo->setChecked(true);
}

void MainWindow::destroyToolWindows()
{
    // Where the windows stood is kept for the next document and run.
    if (mNavigator) {
        mNavigator->saveSettings(mViewerSettings.store);
        mNavigator->closeForGood();
        delete mNavigator;
    }
    if (mDetail) {
        mDetail->savePlacement(mViewerSettings.store);
        mDetail->closeForGood();
        delete mDetail;
    }
}

void MainWindow::showFlexTotalIndex()
{
    const Document *doc = document();
    if (mDetail && doc)
        mDetail->setIndexValue(4, true,
                               formatIndex(doc->properties.flexTotalIndex, doc->properties.indexDecimals, QLocale()));
}

QString MainWindow::showNavigatorSelection(SelectionModel &model)
{
    return shownOrRefused(mSession->show(model, mViewerSettings.options.overviewRowOrder));
}

QString MainWindow::showSelection(const SelectionMatrix &selection)
{
    return shownOrRefused(mSession->show(selection, mViewerSettings.options.overviewRowOrder));
}

QString MainWindow::shownOrRefused(SubSheetOutcome outcome)
{
    const Document *doc = document();
    if (!doc || outcome == SubSheetOutcome::Ok)
        return QString();
    return showRefusalMessage(*doc, outcome, mViewerSettings.isSwedish); // the previous overview stays
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
    if (mDetail)
        mDetail->showNoCell(doc, sheet.totalIndex);
}

void MainWindow::showHoveredCell(const SheetHit &hit)
{
    const Document *doc = document();
    if (mDetail && doc && mSheet->hasSheet())
        mDetail->showCell(*doc, hit, mSheet->input().columns, mSheet->input().rows);
}

void MainWindow::preparePopup(const SheetHit &hit)
{
    preparePopupMenu(mMenus, *mSession, hit, {mSheet->isRandomPerColumn(), mSheet->sheetGeometry().headerLines});
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
