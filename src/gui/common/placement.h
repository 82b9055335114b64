// SPDX-License-Identifier: GPL-3.0-or-later
// Where a window stands between runs: every window of the program (the main
// window, the docked tool windows, the graph windows) restores and saves its
// placement through these, in twips under the settings layer's
// "Windows\<name>" key, and comes back wholly on a screen.
#pragma once

#include "engine/settings/settingsstore.h"

#include <QList>
#include <QRect>
#include <QSize>
#include <QString>

class QWidget;

namespace kel {

/// Pixels per twip of `widget`'s screen.
double pixelsPerTwip(const QWidget &widget);

/// `frame` moved (and shrunk when it is larger) so that it lies wholly
/// inside one of `screens`: the one it overlaps most, else the first. An
/// empty screen list leaves it as it is.
QRect keepOnScreen(const QRect &frame, const QList<QRect> &screens);

/// The available geometries of the screens now attached.
QList<QRect> availableScreenAreas();

/// The placement stored under `name`, in pixels of `window`'s screen: the
/// frame (`fallback` for what is not stored) and the stored extras.
struct RestoredPlacement {
    QRect frame;
    bool maximized = false;
    bool hasPosition = false;
    std::optional<qint32> dockArea;
};
RestoredPlacement readPlacement(const QWidget &window, const SettingsStore &store, const QString &name,
                                const QRect &fallback);

/// Applies the stored placement to a top-level window: size (at least
/// `minimumSize`), position, maximized state, pulled wholly onto a screen.
void restoreWindowPlacement(QWidget &window, const SettingsStore &store, const QString &name,
                            QSize minimumSize = QSize());

/// Stores `window`'s placement in twips as `style` keeps it (with
/// `dockArea` for a dockable window); nothing under the NoSaveSettings policy.
void saveWindowPlacement(const QWidget &window, SettingsStore &store, const QString &name, BorderStyle style,
                         std::optional<qint32> dockArea = std::nullopt);

} // namespace kel
