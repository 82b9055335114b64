// SPDX-License-Identifier: GPL-3.0-or-later
// The navigator and the detail-information window, docked in the main
// window while a document is open. They come and go with the document and
// keep where they stood for the next document and run; the detail window
// follows the session's flex total and shown sheet.
#pragma once

#include "gui/selection/detailwindow.h"
#include "gui/selection/navigatorwindow.h"

#include <QObject>
#include <QPointer>

class QMainWindow;

namespace kel {

class StatusLine;
class ViewerSession;
struct SheetHit;
struct SheetInput;
struct ViewerSettings;

class SelectionDocks : public QObject
{
    Q_OBJECT
public:
    /// Docks into `main`; `actions` run the navigator's Show.
    SelectionDocks(QMainWindow &main, ViewerSession &session, ViewerSettings &settings, StatusLine &status,
                   NavigatorActions actions);

    /// Both exist while a document is open (the navigator only when the
    /// document has categories); nullptr otherwise.
    NavigatorWindow *navigator() const { return mNavigator; }
    DetailWindow *detailWindow() const { return mDetail; }

    /// Brings up the docks for the session's document, placed as they were.
    void create();
    /// Keeps their places and closes them.
    void destroy();

    /// The cell the pointer rests on, in the sheet `shown`.
    void showHoveredCell(const SheetHit &hit, const SheetInput &shown);

signals:
    /// The user closed a dock with its own button.
    void navigatorHidden();
    void detailHidden();

private:
    void showFlexTotalIndex();
    void showShownSheet();

    QMainWindow &mMain;
    ViewerSession &mSession;
    ViewerSettings &mSettings;
    StatusLine &mStatus;
    NavigatorActions mActions;
    QPointer<NavigatorWindow> mNavigator;
    QPointer<DetailWindow> mDetail;
};

} // namespace kel
