// SPDX-License-Identifier: GPL-3.0-or-later
// The file dialogs speak the interface's language: in Swedish they are Qt's
// own dialog (a desktop's dialog follows the desktop's language, not the
// program's), its texts from the program's Swedish catalogue and its file
// types described by the program instead of the system's MIME texts.
#pragma once

class QFileDialog;

namespace kel {

void prepareFileDialog(QFileDialog &dialog, bool isSwedish);

} // namespace kel
