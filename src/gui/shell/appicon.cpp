// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/appicon.h"

// The icon is compiled into the static GUI library so that the program
// shows it wherever it is installed; a static library's resources must be
// registered explicitly, and only from the global namespace.
static void registerIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace kel {

QIcon applicationIcon()
{
    registerIconResources();
    return QIcon(QStringLiteral(":/icons/kelviewer.svg"));
}

} // namespace kel
