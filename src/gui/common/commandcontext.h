// SPDX-License-Identifier: GPL-3.0-or-later
// What a feature's commands object is given instead of the main window: the
// session (what is shown now), the user's settings, and a small host for
// messages, the status line and dialog parents. Commands built on this can
// be driven by a test host and cannot reach menus or other features.
#pragma once

#include "engine/settings/settingsstore.h"

#include <QMessageBox>

class QWidget;

namespace kel {

class StatusLine;
class ViewerSession;

/// The user's settings as commands use them. The options change only
/// through Tools > Options; the last settings are what the dialogs
/// remember, written back when the viewer closes.
struct ViewerSettings {
    SettingsStore &store;
    bool isSwedish = false;
    bool printerInstalled = false; ///< every print command needs one
    UserOptions options;
    LastSettings last;
};

/// The window the commands run in, as far as they need it.
class CommandHost
{
public:
    /// Message boxes go through here so that tests can record them.
    virtual void showMessage(QMessageBox::Icon icon, const QString &title, const QString &text) = 0;
    virtual StatusLine &statusLine() = 0;
    /// The parent of the commands' dialogs and windows.
    virtual QWidget *dialogParent() = 0;

protected:
    ~CommandHost() = default;
};

struct CommandContext {
    ViewerSession &session;
    ViewerSettings &settings;
    CommandHost &host;
};

} // namespace kel
