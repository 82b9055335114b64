// SPDX-License-Identifier: GPL-3.0-or-later
// The list of recently used documents and the texts the File menu shows for
// it. Pure functions so that the rules are tested without a window.
#pragma once

#include <QString>
#include <QStringList>

namespace kel {

inline constexpr int MaxRecentFiles = 5;

/// Puts `path` at the top of `list`. An entry equal to it without regard to
/// case moves up instead of being duplicated; otherwise the list grows to at
/// most MaxRecentFiles and the oldest entry falls off. An empty path changes
/// nothing.
QStringList recordRecentFile(const QStringList &list, const QString &path);

/// Doubles every "&" so that a menu shows the character instead of taking it
/// as the access-key marker.
QString doubleAmpersands(const QString &text);

/// A path split at its last separator ("/" or "\\"): the folder is empty when
/// there is no separator, the name is then the whole path.
struct PathParts {
    QString folder;
    QString name;
};
PathParts splitDocumentPath(const QString &path);

/// The name of a file as the user sees it. On the desktops we run on,
/// extensions are always shown, so this is the name itself.
QString fileDisplayTitle(const QString &fileName);

/// Menu caption of recent-file item `index` (0-based): "&<index+1> " followed
/// by the (already compacted) display text with its "&" doubled.
QString recentFileCaption(int index, const QString &displayText);

} // namespace kel
