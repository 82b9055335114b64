// SPDX-License-Identifier: GPL-3.0-or-later
// The viewer's frame: menus, status bar, the overview sheet in the middle,
// the navigator and detail-information docks, placement, drag and drop, and
// opening and closing documents. What is shown lives in the session; the
// commands live in one object per feature, joined to the menus here.
#pragma once

#include "engine/document/openresult.h"
#include "engine/document/outcome.h"
#include "gui/common/commandcontext.h"
#include "gui/document/documentcommands.h"
#include "gui/selection/selectiondocks.h"
#include "gui/shell/startup.h"
#include "gui/shell/commandmenus.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>

class QLabel;

namespace kel {

class DetailWindow;
class HelpWindow;
class SheetView;
class ViewerSession;
class SelectionMatrix;
struct SheetHit;

class MainWindow : public QMainWindow, public CommandHost
{
    Q_OBJECT
public:
    /// `settings` must outlive the window.
    MainWindow(SettingsStore &settings, bool isSwedish, const MainWindowEnvironment &environment,
               QWidget *parent = nullptr);
    ~MainWindow() override;

    /// After the window is shown: welcomes the user, or schedules opening the
    /// file named first on the command line (empty: none).
    void startUp(const QString &firstArgument);

    /// Opening as the document commands do it (see there).
    OpenResult loadDocument(const QString &path, bool rememberFolder);
    bool openDocument(const QString &path, bool rememberFolder, const QString &messageTitle);
    void closeDocument();

    const Document *document() const;
    ViewerSession &session() { return *mSession; }
    ViewerSettings &settings() { return mViewerSettings; }
    const ViewerCommands &commands() const { return mCommands; }
    const MainMenus &menus() const { return mMenus; }
    QLabel *statusPanel(int number) const; ///< 1..3
    /// The overview sheet, the window's central view.
    SheetView *sheetView() const { return mSheet; }

    /// CreateSubSheet, after opening: done when the new overview was built;
    /// a refusal leaves the previous sheet on screen.
    Outcome<> showSelection(const SelectionMatrix &selection);
    /// The navigator's Show: the engine's Show on `model`, then the new
    /// overview, or the refusal.
    Outcome<> showNavigatorSelection(SelectionModel &model);
    /// Shows or hides the popup menu's place-dependent items for a right
    /// click on `hit` and enables them for its row and question.
    void preparePopup(const SheetHit &hit);
    /// The facts the menus' enabling follows, as they stand now.
    MenuState menuState() const;
    /// Closes every in-use window of the three pools (View menu).
    void closeAllGraphWindows();

    /// Both exist while a document is open (the navigator only when the
    /// document has categories); nullptr otherwise.
    NavigatorWindow *navigator() const { return mDocks->navigator(); }
    DetailWindow *detailWindow() const { return mDocks->detailWindow(); }

    // CommandHost
    using MessageHandler = std::function<void(QMessageBox::Icon, const QString &title, const QString &text)>;
    void setMessageHandler(MessageHandler handler) { mMessageHandler = std::move(handler); }
    void showMessage(QMessageBox::Icon icon, const QString &title, const QString &text) override;
    StatusLine &statusLine() override { return *mStatus; }
    QWidget *dialogParent() override { return this; }

    /// The pending command-line file and its timer (tmrAutoOpenFile).
    QString pendingFile() const { return mPendingFile; }
    bool isAutoOpenPending() const { return mAutoOpenTimer.isActive(); }

public slots:
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
    void createStatusPanels();
    void createCommands();
    void connectMenus();
    void autoOpenFile();
    void installDocument();
    void resetForNoDocument();
    void rebuildRecentFilesMenu();
    void rebuildBlockMenus();
    void updateMenus();
    void createToolWindows();
    void drawShownSheet();
    void showSheetPopup(const SheetHit &hit, const QPoint &globalPos);
    void showHoveredCell(const SheetHit &hit);

    MainWindowEnvironment mEnvironment;
    ViewerSettings mViewerSettings;
    StatusLine *mStatus;
    ViewerSession *mSession;
    MainMenus mMenus;
    ViewerCommands mCommands;
    SheetView *mSheet;
    std::array<QLabel *, 3> mPanels{};
    QTimer mAutoOpenTimer; // tmrAutoOpenFile
    QString mPendingFile;
    QPointer<HelpWindow> mHelp;
    MessageHandler mMessageHandler;
    bool mClosed = false;
    SelectionDocks *mDocks = nullptr;
};

} // namespace kel
