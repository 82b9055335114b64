// SPDX-License-Identifier: GPL-3.0-or-later
// The OK and Cancel pair of the program's own dialogs: right-aligned, OK the
// default, named cmdOK and cmdCancel as the rest of the program (and its
// tests) know them, wired to accept and reject.
#pragma once

class QDialog;
class QHBoxLayout;
class QPushButton;

namespace kel {

struct OkCancelRow {
    QHBoxLayout *layout = nullptr; ///< to be added to the dialog's layout
    QPushButton *ok = nullptr;
    QPushButton *cancel = nullptr;
};

OkCancelRow makeOkCancelRow(QDialog &dialog, bool isSwedish);

} // namespace kel
