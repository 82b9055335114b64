// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>

namespace kel {

/// The name under which the desktop entry and the AppStream data know the
/// viewer; the window system uses it to find the entry's icon and name.
inline constexpr char DesktopFileName[] = "se.brennvik.kelviewer";

/// The application's icon (the same drawing as the installed one), for the
/// windows and the About box. Null when the platform cannot draw SVG.
QIcon applicationIcon();

} // namespace kel
