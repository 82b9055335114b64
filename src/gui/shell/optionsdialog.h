// SPDX-License-Identifier: GPL-3.0-or-later
// frmOptions (Tools > Options): the user's options on three tabs. The dialog
// edits a copy; OK hands the new values back for the caller to keep and
// store, Cancel or closing the window discards them.
#pragma once

#include "engine/settings/settingsstore.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QTabWidget;

namespace kel {

struct Document;

/// The comment above the row-order list: what the open document's own row
/// order (`RowOrder`, `RowOrderThreshold`) leaves of the user's choice.
/// `doc` may be nullptr (no document open).
QString rowOrderComment(bool isSwedish, const Document *doc);
/// The comment below the max-rows box. This platform sets no upper limit.
/// It names the system the program runs on (`systemName`, the operating
/// system's own name for itself) as the reason any number of rows may be set.
QString maxRowsComment(bool isSwedish, const QString &systemName);
/// The max-rows box's text as a number: a whole number of at least 1
/// (blanks around it ignored) that fits the stored DWORD; nothing otherwise.
std::optional<qint32> parseMaxRows(const QString &text);

class OptionsDialog : public QDialog
{
    Q_OBJECT
public:
    /// `officeAvailable`: a presentation program that can take improved
    /// pastes was found; without one its box stays disabled and cleared.
    OptionsDialog(bool isSwedish, const UserOptions &options, const Document *doc, bool officeAvailable,
                  QWidget *parent = nullptr);

    /// The controls' values. A list showing no item (its stored value was
    /// none of the list's) keeps the value the dialog was opened with.
    UserOptions options() const;

    /// Checks the max-rows box; when it is refused its text is selected
    /// whole and the focus goes back to it (on its tab). Returns whether it
    /// was accepted.
    bool validateMaxRows();

    enum Tab { GeneralTab, OverviewTab, GraphsTab };
    QTabWidget *tabs() const { return mTabs; }

public slots:
    void accept() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateBeepEnabling();

    UserOptions mOriginal;
    QTabWidget *mTabs;
    QCheckBox *mRemind;
    QCheckBox *mBeep;
    QCheckBox *mBlockLines;
    QComboBox *mRowOrder;
    QLabel *mRowOrderComment;
    QLineEdit *mMaxRows;
    QLabel *mMaxRowsComment;
    QCheckBox *mReversed;
    QCheckBox *mOpaque;
    QCheckBox *mWhiteSpace;
    QCheckBox *mMsOffice;
    QCheckBox *mShortNames;
    QComboBox *mLegends;
    QComboBox *mCopyFormat;
};

/// Runs the dialog modally over `parent` (hourglass while it is built).
/// OK: `options` takes the new values and, unless the store's policy
/// forbids saving settings, all twelve are written to "Settings". Returns
/// whether OK was chosen.
bool runOptionsDialog(QWidget *parent, bool isSwedish, UserOptions &options, SettingsStore &store, const Document *doc);

} // namespace kel
