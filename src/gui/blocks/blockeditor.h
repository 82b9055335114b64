// SPDX-License-Identifier: GPL-3.0-or-later
// The block editor: the user adds, renames and deletes his own blocks, ticks
// their questions and chooses per block whether Copy Indexes lists it. All
// edits go to a working copy; only OK changes the document and the store.
#pragma once

#include "engine/blocks/userblocks.h"

#include <QDialog>

#include <functional>
#include <optional>

class QCheckBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace kel {

class SettingsStore;

/// The editor's questions to the user; tests answer them without boxes.
struct BlockEditorPrompts {
    /// An input box; nothing when cancelled.
    std::function<std::optional<QString>(const QString &title, const QString &prompt, const QString &value)> input;
    /// OK/Cancel with the exclamation icon, Cancel the default; true for OK.
    std::function<bool(const QString &title, const QString &text)> confirm;
    /// A message box with the critical icon.
    std::function<void(const QString &title, const QString &text)> error;

    /// The program's own boxes, parented to `parent`.
    static BlockEditorPrompts dialogs(QWidget *parent);
};

class BlockEditor : public QDialog
{
    Q_OBJECT
public:
    /// `doc`, `catalogue` and `store` must outlive the editor.
    BlockEditor(const Document &doc, BlockCatalogue &catalogue, SettingsStore &store, bool isSwedish,
                QWidget *parent = nullptr);

    void setPrompts(BlockEditorPrompts prompts) { mPrompts = std::move(prompts); }
    /// Set by OK: the catalogue's blocks were replaced.
    bool blocksChanged() const { return mBlocksChanged; }
    const BlockEditModel &model() const { return mModel; }

    // The buttons' actions, also for tests.
    void addBlock();
    void renameBlock();
    void deleteBlock();
    void accept() override;

    QListWidget *blockList() const { return mBlocks; }
    QListWidget *questionList() const { return mQuestions; }
    QListWidget *originalList() const { return mOriginal; }
    QCheckBox *includeInCopy() const { return mInclude; }

private:
    QString t(const char *english, const char *swedish) const;
    qint32 selectedEntry() const;
    void showSelected();
    void questionClicked(QListWidgetItem *item);
    void questionChanged(QListWidgetItem *item);

    const Document &mDoc;
    BlockCatalogue &mCatalogue;
    SettingsStore &mStore;
    bool mIsSwedish;
    BlockEditModel mModel;
    BlockEditorPrompts mPrompts;
    bool mBlocksChanged = false;
    bool mFilling = false; // item-check handling is off while ticks are set

    QListWidget *mBlocks;
    QLabel *mName;
    QCheckBox *mInclude;
    QListWidget *mQuestions;
    QListWidget *mOriginal;
    QLabel *mQuestionsLabel;
    QLabel *mFullText;
    QPushButton *mRename;
    QPushButton *mDelete;
};

} // namespace kel
