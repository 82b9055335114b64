// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/selection/selectiondocks.h"

#include "engine/indexes/columnindex.h"
#include "gui/common/commandcontext.h"
#include "gui/common/viewersession.h"
#include "gui/selection/detailwindow.h"
#include "render/overview/sheetdrawer.h"

#include <QMainWindow>

namespace kel {

namespace {

constexpr double TwipsPerInch = 1440.0;

} // namespace

SelectionDocks::SelectionDocks(QMainWindow &main, ViewerSession &session, ViewerSettings &settings, StatusLine &status,
                               NavigatorActions actions)
    : QObject(&main), mMain(main), mSession(session), mSettings(settings), mStatus(status), mActions(std::move(actions))
{
    connect(&session, &ViewerSession::flexTotalChanged, this, &SelectionDocks::showFlexTotalIndex);
    connect(&session, &ViewerSession::sheetChanged, this, &SelectionDocks::showShownSheet);
}

void SelectionDocks::create()
{
    destroy();
    const Document *doc = mSession.document();
    if (!doc)
        return;
    const double pixelsPerTwip = mMain.logicalDpiY() / TwipsPerInch;
    auto pixels = [&](int twips) { return qRound(twips * pixelsPerTwip); };
    SettingsStore &store = mSettings.store;

    // The navigator first, so that by default it stands above the detail
    // window on the right.
    if (!doc->categories.empty()) {
        mNavigator = new NavigatorWindow(mSettings.isSwedish, mStatus, mSettings.options, mActions, &mMain);
        connect(mNavigator, &ToolDock::hiddenByUser, this, &SelectionDocks::navigatorHidden);
        mNavigator->restorePlacement(mMain, store, Qt::RightDockWidgetArea, QSize(pixels(4900), pixels(5400)));
        mNavigator->loadSettings(store);
        mNavigator->setUp(*doc);
        mNavigator->show();
    }

    mDetail = new DetailWindow(mSettings.isSwedish, &mMain);
    connect(mDetail, &ToolDock::hiddenByUser, this, &SelectionDocks::detailHidden);
    // Docked under the navigator it shares its width: the same default keeps
    // the navigator's option texts whole.
    mDetail->restorePlacement(mMain, store, Qt::RightDockWidgetArea, QSize(pixels(4900), pixels(600)));
    mDetail->setUpForDocument(*doc);
    showFlexTotalIndex();
    mDetail->show();
}

void SelectionDocks::destroy()
{
    // Where the windows stood is kept for the next document and run.
    if (mNavigator) {
        mNavigator->saveSettings(mSettings.store);
        mNavigator->closeForGood();
        delete mNavigator;
    }
    if (mDetail) {
        mDetail->savePlacement(mSettings.store);
        mDetail->closeForGood();
        delete mDetail;
    }
}

void SelectionDocks::showFlexTotalIndex()
{
    const Document *doc = mSession.document();
    if (mDetail && doc)
        mDetail->setIndexValue(
            4, true, formatIndex(mSession.flexTotal().totalIndex(), doc->properties.indexDecimals, QLocale()));
}

void SelectionDocks::showShownSheet()
{
    const Document *doc = mSession.document();
    if (mDetail && doc)
        mDetail->showNoCell(*doc, mSession.shownSheet().totalIndex);
}

void SelectionDocks::showHoveredCell(const SheetHit &hit, const SheetInput &shown)
{
    const Document *doc = mSession.document();
    if (mDetail && doc)
        mDetail->showCell(*doc, mSession.blocks(), mSession.flexTotal(), hit, shown.columns, shown.rows);
}

} // namespace kel
