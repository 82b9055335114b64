// SPDX-License-Identifier: GPL-3.0-or-later
// A tool window of the main window that the user may dock or float. Its
// close box only hides it (the View menu brings it back with its state
// intact); only the program's exit closes it for good. Where it stands is
// kept between runs under "Windows\<name>".
#pragma once

#include <QDockWidget>

class QMainWindow;

namespace kel {

class SettingsStore;

class ToolDock : public QDockWidget
{
    Q_OBJECT
public:
    /// `name` is the window's settings name (without the frm prefix);
    /// the object name becomes "frm" + name.
    ToolDock(const QString &name, const QString &title, QWidget *parent = nullptr);

    QString settingsName() const { return mName; }

    /// Docks the window into `main` where it stood last time (floating with
    /// its stored geometry when it was floating), else at `defaultArea` with
    /// `defaultSize`. A floating geometry off every screen is pulled back.
    void restorePlacement(QMainWindow &main, const SettingsStore &store, Qt::DockWidgetArea defaultArea,
                          QSize defaultSize);
    /// Writes the current placement; the store itself skips it under the
    /// do-not-save-settings policy.
    void savePlacement(SettingsStore &store) const;

    /// The program's exit: the next close really closes.
    void closeForGood();
    bool isClosedForGood() const { return mClosedForGood; }

    /// Pixels per twip of this window's screen.
    double pixelsPerTwip() const;
    int twipsToPixels(int twips) const;

signals:
    /// The user closed the window with its close box; it is hidden, not gone.
    void hiddenByUser();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QString mName;
    bool mClosedForGood = false;
};

} // namespace kel
