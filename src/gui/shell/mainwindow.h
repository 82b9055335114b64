// SPDX-License-Identifier: GPL-3.0-or-later
// The viewer's main window: menus, status bar, the overview sheet, opening
// and closing documents, and the tables of graph windows it owns. A command
// not built yet stays disabled (menuenabling.h, NotYetBuiltCommands).
#pragma once

#include "gui/shell/mainmenus.h"
#include "gui/shell/windowpool.h"
#include "engine/document/openresult.h"
#include "engine/settings/settingsstore.h"
#include "engine/indexes/indexexport.h"
#include "engine/overview/sheetlayout.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmatrix.h"

#include <QDateTime>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>

class QLabel;

namespace kel {

class ChartCommands;
class DetailWindow;
class DocumentSession;
class NavigatorWindow;
class HelpWindow;
class SheetView;
class StatusLine;
struct Document;
struct SheetHit;

/// What the window finds out about the machine when it is created; tests
/// pass their own.
struct MainWindowEnvironment {
    bool printerInstalled = false;
    bool mouseWheel = false;
    static MainWindowEnvironment detect();
};

class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// `settings` must outlive the window.
    MainWindow(SettingsStore &settings, bool isSwedish, const MainWindowEnvironment &environment,
               QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Whether a printer was found: every print command needs one.
    bool printerInstalled() const { return mEnvironment.printerInstalled; }
    /// After the window is shown: welcomes the user, or schedules opening the
    /// file named first on the command line (empty: none).
    void startUp(const QString &firstArgument);

    /// Loads `path`; returns the reader's code (Ok, or why not, for the
    /// caller to word). A failure leaves the open document and the menus as
    /// they were.
    OpenResult loadDocument(const QString &path, bool rememberFolder);
    /// Loads `path` as a user command does: hourglass, status texts, and a
    /// critical message box titled `messageTitle` on failure.
    bool openDocument(const QString &path, bool rememberFolder, const QString &messageTitle);
    void closeDocument();

    const Document *document() const;
    /// The open document's blocks and the user's.
    const BlockCatalogue &blocks() const;
    DocumentSession &session() { return *mSession; }
    StatusLine &statusLine() { return *mStatus; }
    const MainMenus &menus() const { return mMenus; }
    QLabel *statusPanel(int number) const; ///< 1..3
    /// The overview sheet, the window's central view.
    SheetView *sheetView() const { return mSheet; }
    const LastSettings &lastSettings() const { return mLastSettings; }
    /// The launch dialogs of graphs remember their choices here.
    /// The overview Show built last (rows, selection text, privacy steps).
    const SubSheet &shownSheet() const { return mShownSheet; }
    /// The engine's decision for the overview on screen, asked anew from
    /// what it shows; every output command asks it before it outputs.
    ShowPermissions shownPermissions() const;
    bool mayOutput(OutputCommand command, qint32 splitCategory = -1) const;
    /// Where the overview's popup menu was opened last.
    const SheetHit &lastPopupHit() const;
    ChartCommands &chartCommands() { return *mCharts; }
    /// The save and print commands remember folders, formats and margins here.
    LastSettings &lastSettings() { return mLastSettings; }
    const UserOptions &options() const { return mOptions; }
    bool isSwedish() const { return mIsSwedish; }

    /// The three tables of graph windows; the graph and mini-overview windows
    /// put themselves here.
    WindowSlotTable &windowSlots(SlotTable table);
    /// Closes every in-use window of the three tables.
    void closeAllGraphWindows();

    /// Whether answer rows may be copied as data or to a mini-overview; set
    /// by every overview build.
    void setDataRowsAllowed(bool allowed);
    /// The facts the menus' enabling follows, as they stand now.
    MenuState menuState() const;
    /// Sets every menu item's state from menuState().
    void updateMenus();

    // --- Navigator and detail-information windows ---
    /// Both exist while a document is open (the navigator only when the
    /// document has categories); nullptr otherwise.
    NavigatorWindow *navigator() const;
    DetailWindow *detailWindow() const;
    const FlexTotal &flexTotal() const { return mFlexTotal; }
    /// CreateSubSheet, after opening: done when the new overview was built
    /// and drawn; a refusal leaves the previous sheet on screen.
    Outcome<> showSelection(const SelectionMatrix &selection);
    /// The navigator's Show: the engine's Show on `model`, then the new
    /// overview, or the refusal.
    Outcome<> showNavigatorSelection(SelectionModel &model);
    /// Shows or hides the popup menu's place-dependent items for a right
    /// click on `hit` and enables them for its row and question.
    void preparePopup(const SheetHit &hit);

    /// The place the overview's popup menu was last opened on.
    const SheetHit &popupHit() const { return mPopupHit; }
    /// The selection steps of the overview on screen (split-by permissions,
    /// selection text, difference from the used total).
    const SelectionSteps &selectionSteps() const { return mSteps; }
    /// Set as Default Size of a fraction graph: kept for this run and stored.
    void storeQuestionGraphDefaultSize(qint32 windowWidthTwips, qint32 barWidth);

    /// Message boxes go through here so that tests can record them.
    using MessageHandler = std::function<void(QMessageBox::Icon, const QString &title, const QString &text)>;
    void setMessageHandler(MessageHandler handler) { mMessageHandler = std::move(handler); }
    void showMessage(QMessageBox::Icon icon, const QString &title, const QString &text);

    /// The pending command-line file and its timer (tmrAutoOpenFile).
    QString pendingFile() const { return mPendingFile; }
    bool isAutoOpenPending() const { return mAutoOpenTimer.isActive(); }

    // Edit Blocks, Copy Indexes, Properties and the status line's points
    // list (documentcommands.cpp).
    void editBlocks();
    void copyIndexes();
    void showProperties();
    /// File > Create Report... (reportcommands.cpp).
    void createReport();
    /// The points behind the shown overview's total index, on the clipboard.
    void copyTotalIndexPoints();
    const IndexExportOptions &exportOptions() const { return mExportOptions; }

public slots:
    void fileOpen();
    void openRecentFile(int index);
    void showHelpTopics();
    void showAbout();
    /// Tools > Options: the new options take effect at the next overview
    /// build and the next graph.
    void showOptions();

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void connectMenus();
    void autoOpenFile();
    void installDocument();
    void resetForNoDocument();
    void rebuildRecentFilesMenu();
    void rebuildBlockMenus();
    void closeSlotWindows();
    void loadPlacement();
    void savePlacement();
    QString openDialogTitle() const;
    void createToolWindows(const Document &doc);
    void destroyToolWindows();
    void showFlexTotalIndex();
    void showSubSheet(const Document &doc, const SubSheet &sheet);
    void setSelectionPanels(qint32 rows, const QString &selectionText);
    void showSheetPopup(const SheetHit &hit, const QPoint &globalPos);
    void showHoveredCell(const SheetHit &hit);
    void connectDocumentCommands();
    void connectReportCommands();
    void restoreStoredBlocks();

    SettingsStore &mSettings;
    bool mIsSwedish;
    MainWindowEnvironment mEnvironment;
    UserOptions mOptions;
    LastSettings mLastSettings;
    StatusLine *mStatus;
    DocumentSession *mSession;
    MainMenus mMenus;
    SheetView *mSheet;
    std::array<QLabel *, 3> mPanels{};
    QTimer mAutoOpenTimer; // tmrAutoOpenFile
    QString mPendingFile;
    WindowSlotTable mMiniOverviews, mBasicGraphs, mChartGraphs;
    QPointer<HelpWindow> mHelp;
    MessageHandler mMessageHandler;
    bool mClosed = false;
    bool mDataRowsAllowed = false; ///< the current overview may show answer rows

    // Navigator and detail-information windows, and the flex total they edit.
    QPointer<NavigatorWindow> mNavigator;
    QPointer<DetailWindow> mDetail;
    FlexTotal mFlexTotal;
    RowRandom mRowRandom;              // seeded once per run from the clock
    IndexExportOptions mExportOptions; // Copy Indexes' choices, reset with the document
    SheetHit mPopupHit;
    SelectionSteps mSteps;

    SubSheet mShownSheet;
    ChartCommands *mCharts = nullptr;
};

/// The path of the one local file with the .kel extension (any case) in
/// `urls`; empty when there is none or more than one file.
QString droppedDocument(const QList<QUrl> &urls);

} // namespace kel
