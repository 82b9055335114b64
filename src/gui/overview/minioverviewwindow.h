// SPDX-License-Identifier: GPL-3.0-or-later
// frmOverview: a mini-overview, a window that shows the overview as it stood
// when it was copied (8-pixel cells, no text), so that several selections
// can be compared side by side. The window owns its copy of the row list and
// offsets and draws what it shows from them; it does not follow later
// changes of the overview.
#pragma once

#include "render/overview/sheetdrawer.h"

#include <QWidget>

namespace kel {

class SheetView;

class MiniOverviewWindow : public QWidget
{
    Q_OBJECT
public:
    explicit MiniOverviewWindow(bool isSwedish, QWidget *parent = nullptr);

    /// Shows `input` as a mini-overview, replacing any earlier one; the
    /// caption names the selection. What it keeps is what it needs to draw
    /// again (the row list and its offsets), never a picture of the sheet,
    /// so `input`'s document must outlive it (the session closes every
    /// mini-overview with the document). Returns false (and keeps nothing)
    /// when there is nothing to show.
    bool initializeData(SheetInput input);
    /// Lets go of the sheet and its selection text.
    void removeData();

    bool hasData() const { return mHasData; }
    QString selectionText() const { return mSelectionText; }
    const SheetGeometry &sheetGeometry() const { return mGeometry; }
    SheetView *view() const { return mView; }

    /// The size that shows the whole sheet, limited to `available`.
    QSize preferredSize(const QSize &available) const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    bool mIsSwedish;
    SheetView *mView;
    SheetGeometry mGeometry;
    QString mSelectionText;
    bool mHasData = false;
};

/// The caption of a mini-overview of `selectionText`.
QString miniOverviewCaption(bool isSwedish, const QString &selectionText);

} // namespace kel
