// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/viewersession.h"

#include "engine/selection/counting.h"

#include <QDateTime>

namespace kel {

ViewerSession::ViewerSession(bool recordRecentFiles, QObject *parent)
    : QObject(parent), mDocuments(recordRecentFiles), mRowRandom(quint32(QDateTime::currentMSecsSinceEpoch()))
{
    // Connected before anyone else can be: listeners of the document's
    // signals find the shown state already reset.
    connect(&mDocuments, &DocumentSession::documentClosing, this, [this] { mOnScreen = false; });
    connect(&mDocuments, &DocumentSession::documentClosed, this, [this] {
        // Every pooled window shows the old document.
        for (WindowSlotTable *table : {&mMiniOverviews, &mBasicGraphs, &mChartGraphs})
            closePooledWindows(*table);
        forgetShown();
    });
}

ViewerSession::~ViewerSession() = default;

void ViewerSession::resetFlexTotal()
{
    if (const Document *doc = document()) {
        mFlexTotal.reset(*doc, blocks());
        emit flexTotalChanged();
    }
}

void ViewerSession::blocksEdited()
{
    if (const Document *doc = document())
        mFlexTotal.updateUserBlockIndexes(*doc, blocks());
    emit blocksChanged();
}

Outcome<> ViewerSession::show(const SelectionMatrix &selection, qint32 userRowOrder)
{
    const Document *doc = document();
    if (!doc)
        return {};
    return take(createSubSheet(*doc, blocks(), selection, mFlexTotal, userRowOrder, mRowRandom));
}

Outcome<> ViewerSession::show(SelectionModel &model, qint32 userRowOrder)
{
    const Document *doc = document();
    if (!doc)
        return {};
    return take(kel::showSelection(*doc, blocks(), model, mFlexTotal, userRowOrder, mRowRandom));
}

Outcome<> ViewerSession::take(SubSheet sheet)
{
    // A flex total based on the current selection is rebuilt even when the
    // selection itself is refused.
    emit flexTotalChanged();
    if (!sheet.outcome.done())
        return sheet.outcome; // the previous overview stays
    mShown = std::move(sheet);
    emit sheetChanged();
    return {};
}

void ViewerSession::forgetShown()
{
    mShown = SubSheet();
    mOnScreen = false;
    mPopupHit = SheetHit();
    mPopupBlock = -1;
}

void ViewerSession::setSheetOnScreen(bool onScreen)
{
    mOnScreen = onScreen;
}

ShowPermissions ViewerSession::shownPermissions() const
{
    const Document *doc = document();
    if (!doc || !mOnScreen)
        return ShowPermissions();
    return showPermissions(*doc, qint32(mShown.rows.size()), mFlexTotal.rowCount(), mShown.steps.splitNotAllowed);
}

bool ViewerSession::mayOutput(OutputCommand command, qint32 splitCategory) const
{
    return permits(shownPermissions(), command, splitCategory);
}

void ViewerSession::setPopupPlace(const SheetHit &hit, qint32 block)
{
    mPopupHit = hit;
    mPopupBlock = block;
}

qint32 ViewerSession::popupQuestion() const
{
    const Document *doc = document();
    const qint32 q = mPopupHit.question;
    return doc && q >= 0 && std::size_t(q) < doc->questions.size() ? q : -1;
}

qint32 ViewerSession::popupAnswerRow() const
{
    return mPopupHit.place == SheetPlace::AnswerCell ? mPopupHit.row : -1;
}

WindowSlotTable &ViewerSession::windowSlots(SlotTable table)
{
    switch (table) {
    case SlotTable::MiniOverviews: return mMiniOverviews;
    case SlotTable::BasicGraphs: return mBasicGraphs;
    case SlotTable::ChartGraphs: break;
    }
    return mChartGraphs;
}

void ViewerSession::closeInUseWindows()
{
    for (WindowSlotTable *table : {&mMiniOverviews, &mBasicGraphs, &mChartGraphs}) {
        for (WindowSlot &slot : *table) {
            if (slot.inUse && slot.window)
                slot.window->close();
            slot.inUse = false;
        }
    }
}

} // namespace kel
