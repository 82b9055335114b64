// SPDX-License-Identifier: GPL-3.0-or-later
// frmNavigator: where the user edits the current selection. Ticks in the
// category tree change the edited selection at once and recount it (sizes,
// shading of categories that would split off too small a group, the Show
// button); nothing else changes until Show hands the edits to the main
// window. While edits are pending and the user has gone elsewhere, Show
// blinks to remind them.
#pragma once

#include "engine/selection/selectionmodel.h"
#include "gui/common/tooldock.h"

#include <QTimer>

#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSplitter;
class QTreeWidgetItem;

namespace kel {

class NavigatorTree;
class SettingsStore;
class StatusLine;
struct Document;
struct UserOptions;

/// What Show asks of the main window.
struct NavigatorActions {
    /// Show: runs the engine's Show on the navigator's edits (it applies
    /// them, sets the flex total, builds the overview); returns the refusal
    /// to show, empty on success.
    std::function<QString(SelectionModel &model)> show;
    /// Shows a refusal in a critical message box titled with the application title.
    std::function<void(const QString &text)> showRefusal;
};

class NavigatorWindow : public ToolDock
{
    Q_OBJECT
public:
    /// `status` and `options` must outlive the window; the options are read
    /// when the reminder starts, so later changes take effect.
    NavigatorWindow(bool isSwedish, StatusLine &status, const UserOptions &options, NavigatorActions actions,
                    QWidget *parent = nullptr);
    ~NavigatorWindow() override;

    /// Fills the tree and the flex list from `doc` and sets up the selection
    /// state for it (everything ticked and applied). `doc` must outlive the
    /// window or the next setUp.
    void setUp(const Document &doc);

    /// Stored "Flex Total Height" (applied only when larger than designed).
    void loadSettings(const SettingsStore &store);
    /// Placement and "Flex Total Height"; the store honours the policy.
    void saveSettings(SettingsStore &store) const;

    /// Edits not yet applied by Show.
    bool hasPendingChanges() const;
    /// The Show command (`cmdShow`).
    void applySelection();

    /// The selection state behind the window (edited and applied ticks,
    /// flex edits and their applied copies).
    const SelectionModel &model() const { return mModel; }
    /// Tick of category `category` option `option` in the edited selection.
    bool isSelected(int category, int option) const { return mModel.selected().at(category, option); }
    bool isAppliedSelected(int category, int option) const { return mModel.appliedSelection().at(category, option); }
    qint32 selectionCount() const { return mCount; }
    bool isCategoryShaded(int category) const;
    /// The flex list is shaded: its options leave out a too small group.
    bool isFlexTotalShaded() const;

    NavigatorTree *tree() const { return mTree; }
    QListWidget *flexList() const { return mFlexList; }
    QCheckBox *flexCheckBox() const { return mFlexCheck; }
    QLabel *totalLabel() const { return mTotalLabel; }
    QPushButton *showButton() const { return mShowButton; }
    const QTimer &reminderTimer() const { return mReminder; }
    bool isReminderLit() const { return mReminderLit; }
    /// The designed height of the flex list, pixels.
    int designedFlexHeight() const;
    int treeMinimumHeight() const;
    int flexHeight() const;

    /// The navigator gained or lost the focus (called from the application's
    /// focus tracking; public so that tests can drive it).
    void focusEntered();
    void focusLeft();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildTree(const Document &doc);
    void buildFlexList(const Document &doc);
    void fitFlexListToItems();
    void onCheckClicked(QTreeWidgetItem *item);
    void onFlexListClicked();
    void recount();
    void setTotalText(qint32 count);
    void markCategory(int category, bool shaded);
    void markFlexTotal(bool shaded);
    void setReminderLit(bool lit);
    bool ownsWidget(const QWidget *widget) const;

    bool mIsSwedish;
    StatusLine &mStatus;
    const UserOptions &mOptions;
    NavigatorActions mActions;
    const Document *mDocument = nullptr;
    SelectionModel mModel;
    qint32 mCount = 0;

    QWidget *mContent;
    QSplitter *mSplitter;
    NavigatorTree *mTree;
    QListWidget *mFlexList;
    QCheckBox *mFlexCheck;
    QLabel *mTotalLabel;
    QPushButton *mShowButton;
    QTimer mReminder; // tmrReminder
    bool mReminderLit = false;
    bool mHasFocus = false;
    QMetaObject::Connection mFocusConnection;
};

} // namespace kel
