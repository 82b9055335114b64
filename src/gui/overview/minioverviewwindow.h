// SPDX-License-Identifier: GPL-3.0-or-later
// frmOverview: a mini-overview, a window that keeps a small picture of the
// overview as it stood when it was copied (8-pixel cells, no text), so that
// several selections can be compared side by side. The window owns its
// picture; it does not follow later changes of the overview or document.
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

    /// Draws `input` as a mini-overview and keeps the picture, replacing any
    /// earlier one; the caption names the selection. Returns false (and
    /// keeps no picture) when it could not be drawn.
    bool initializeData(SheetInput input, SheetTextOffsets &offsets);
    /// Lets go of the picture and its selection text.
    void removeData();

    bool hasData() const { return mHasData; }
    QString selectionText() const { return mSelectionText; }
    const SheetGeometry &sheetGeometry() const { return mGeometry; }
    SheetView *view() const { return mView; }

    /// The size that shows the whole picture, limited to `available`.
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
