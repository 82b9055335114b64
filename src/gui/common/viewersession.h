// SPDX-License-Identifier: GPL-3.0-or-later
// What the viewer shows now, in one object handed to whoever needs it: the
// open document (through the engine's DocumentSession, which reads it and
// keeps the recent files), the flex total, the overview last built with its
// selection steps, the place the overview's popup was opened on, and the
// pools of graph and mini-overview windows. Windows and commands read the
// shown state here and follow its signals instead of asking the main window,
// so there is one answer to "what is on screen" and one owner to reset it.
#pragma once

#include "engine/document/documentsession.h"
#include "engine/overview/sheetlayout.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmatrix.h"
#include "engine/selection/showdecision.h"
#include "gui/common/windowpool.h"

#include <QObject>

namespace kel {

class ViewerSession : public QObject
{
    Q_OBJECT
public:
    /// `recordRecentFiles` is false under the NoRecentDocsMenu policy.
    explicit ViewerSession(bool recordRecentFiles, QObject *parent = nullptr);
    ~ViewerSession() override;

    DocumentSession &documents() { return mDocuments; }
    const DocumentSession &documents() const { return mDocuments; }
    const Document *document() const { return mDocuments.document(); }
    /// The open document's blocks and the user's; empty without a document.
    const BlockCatalogue &blocks() const { return mDocuments.blocks(); }
    /// For the two that change them: restoring the stored user blocks and
    /// the block editor (which then calls blocksEdited()).
    BlockCatalogue &editableBlocks() { return mDocuments.editableBlocks(); }

    const FlexTotal &flexTotal() const { return mFlexTotal; }
    /// Every respondent again, as after opening.
    void resetFlexTotal();

    /// Show for `selection` (or the navigator's edited `model`): a built
    /// overview becomes the shown sheet (sheetChanged); a refused one leaves
    /// the previous sheet shown. The flex total may change either way
    /// (flexTotalChanged). Without a document nothing happens and done comes back.
    Outcome<> show(const SelectionMatrix &selection, qint32 userRowOrder);
    Outcome<> show(SelectionModel &model, qint32 userRowOrder);

    /// The overview last built (rows, selection, selection steps), empty
    /// without a document.
    const SubSheet &shownSheet() const { return mShown; }
    const SelectionSteps &selectionSteps() const { return mShown.steps; }
    /// Whether the shown sheet is on screen: the view may refuse a sheet too
    /// large to draw, and then nothing may be output from it.
    bool hasSheet() const { return mOnScreen; }
    void setSheetOnScreen(bool onScreen);
    /// Whether answer rows may be copied as data or to a mini-overview.
    bool dataRowsAllowed() const { return mShown.dataRowsAllowed; }

    /// The engine's decision for the overview on screen, asked anew from
    /// what it shows; every output command asks it before it outputs.
    ShowPermissions shownPermissions() const;
    bool mayOutput(OutputCommand command, qint32 splitCategory = -1) const;

    /// The place the overview's popup menu was opened on, and the document
    /// block there (-1: none), kept for the popup's commands.
    void setPopupPlace(const SheetHit &hit, qint32 block);
    const SheetHit &popupHit() const { return mPopupHit; }
    qint32 popupBlock() const { return mPopupBlock; }
    /// The popup's question when it is one of the document's; -1 otherwise.
    qint32 popupQuestion() const;
    /// The popup's respondent: only an answer cell has one (-1 otherwise).
    qint32 popupAnswerRow() const;

    /// The three tables of pooled windows; the graph and mini-overview
    /// commands take their windows from here.
    WindowSlotTable &windowSlots(SlotTable table);
    /// Closes every in-use window of the three tables and marks the slots free.
    void closeInUseWindows();

    /// The user's blocks changed: the flex total's block indexes follow.
    void blocksEdited();

signals:
    /// A new overview was built; the view draws it, then says whether it is
    /// on screen (setSheetOnScreen), and the docks follow.
    void sheetChanged();
    /// After every Show and reset: its indexes may have changed.
    void flexTotalChanged();
    /// The block menus list the blocks anew.
    void blocksChanged();

private:
    Outcome<> take(SubSheet sheet);
    void forgetShown();

    DocumentSession mDocuments;
    FlexTotal mFlexTotal;
    RowRandom mRowRandom; // seeded once per run from the clock
    SubSheet mShown;
    bool mOnScreen = false;
    SheetHit mPopupHit;
    qint32 mPopupBlock = -1;
    WindowSlotTable mMiniOverviews, mBasicGraphs, mChartGraphs;
};

} // namespace kel
