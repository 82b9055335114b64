// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's sheet: shows the sheet with the header lines frozen at
// the top while the body scrolls in whole cells, finds the cell under the
// pointer, and reports hovering and right clicks. Only the shown part is
// drawn, in tiles kept while scrolling, so time and memory follow the
// window rather than the sheet.
// A keyboard cell cursor, drawn over the sheet while the view has focus,
// moves with the arrow and page keys and opens the popup with the Menu key
// or Shift+F10.
#pragma once

#include "gui/overview/sheetcursor.h"
#include "render/overview/sheetdrawer.h"
#include "render/overview/sheettiles.h"

#include <QAbstractScrollArea>
#include <QPoint>
#include <QTimer>

namespace kel {

class SheetView : public QAbstractScrollArea
{
    Q_OBJECT
public:
    /// The pointer must rest this long before its cell's values are shown.
    static constexpr int HoverDelayMs = 200;

    explicit SheetView(QWidget *parent = nullptr);

    /// Shows `input` (its mode is forced to the screen), replacing any
    /// previous sheet, and lays out the scroll bars: a bar shown before and
    /// after keeps its position, a bar that appears starts at 0. Returns
    /// false when there is nothing to show (no document or no columns); the
    /// view then shows no sheet.
    bool setSheet(SheetInput input);
    /// Shows `input` as a mini-overview (8-pixel cells, no text) with the
    /// same frozen header lines and whole-cell scrolling; the view reports
    /// no cells and keeps no tiles: it draws what it shows at every paint.
    bool setMiniSheet(SheetInput input);
    /// Discards the sheet and stops the hover delay.
    void eraseSheet();
    /// For a newly opened or closed document: erases the sheet and forgets
    /// the label offsets measured for the previous one.
    void resetDocument();

    bool hasSheet() const { return mHasSheet; }
    const SheetInput &input() const { return mInput; }
    const SheetGeometry &sheetGeometry() const { return mGeometry; }
    /// The tiles kept for the shown parts (their count and bytes).
    const SheetTiles &tiles() const { return mTiles; }
    bool isRandomPerColumn() const { return !mInput.columnRowOffsets.empty(); }
    /// The label offsets measured for the current document; the copy and
    /// save pictures pass them to drawSheet() so they are measured once.
    SheetTextOffsets &textOffsets() { return mOffsets; }

    /// Hovering reports cells only when enabled (documents with indexes).
    void setHoverEnabled(bool enabled);
    bool hoverEnabled() const { return mHoverEnabled; }
    /// false: the wheel scrolls vertically; true: horizontally when the
    /// horizontal bar is shown.
    void setWheelHorizontal(bool horizontal) { mWheelHorizontal = horizontal; }
    bool wheelHorizontal() const { return mWheelHorizontal; }
    /// Lines per wheel notch; -1 scrolls a page. Starts at the platform's value.
    void setWheelScrollLines(int lines) { mWheelLines = lines; }
    int wheelScrollLines() const { return mWheelLines; }

    /// Scroll positions in cells (0 when a bar is hidden).
    int scrollColumn() const;
    int scrollLine() const;
    void setScrollPosition(int column, int line);

    /// What lies under `pos` in viewport coordinates.
    SheetHit hitTest(const QPointF &pos) const;

    /// The keyboard cell cursor and what lies under it (Outside without a
    /// sheet, on a mini-overview's picture, or on a line no row fills).
    const SheetCursor &cursor() const { return mCursor; }
    SheetHit cursorHit() const;
    /// Moves the cursor (clamped to the sheet), scrolls it into view and
    /// reports it as a key would.
    void setCursorPosition(int column, int line);
    /// The cursor's cell in viewport coordinates, cut to what the view
    /// shows; empty when it is scrolled out of view.
    QRect cursorRect() const;
    /// A line or two shown in the empty area under the sheet, saying why it
    /// is empty there (empty: none).
    void setNotice(const QString &text);
    QString notice() const { return mNotice; }

    /// The language the view describes itself in to assistive technology.
    void setSwedish(bool isSwedish) { mIsSwedish = isSwedish; }
    bool isSwedish() const { return mIsSwedish; }

    /// Opens the popup for the cursor's place, as the Menu key does.
    void requestPopupAtCursor();

Q_SIGNALS:
    /// The pointer has rested on `hit` for the hover delay (Outside clears).
    void cellHovered(const kel::SheetHit &hit);
    /// A right click without modifier keys on a cell or header line: the
    /// receiver builds the popup menu for it at `globalPos` and keeps the
    /// place for the popup's commands (the view keeps none).
    void popupRequested(const kel::SheetHit &hit, const QPoint &globalPos);
    /// The keyboard cursor moved to `hit` (also sent as cellHovered() when
    /// hovering is enabled, so the detail window follows it).
    void cursorMoved(const kel::SheetHit &hit);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    void discardSheet();
    bool showInput(SheetInput input, SheetMode mode);
    void updateScrollBars();
    void showHoveredCell();
    void refreshHover();
    void scrollBy(QScrollBar *bar, int notches);
    void scrollCursorIntoView();
    void reportCursor();
    void paintCursor(QPainter &painter) const;
    void paintNotice(QPainter &painter) const;
    QRect cursorCellRect() const; // uncut, in viewport coordinates
    int visibleBodyLines() const;

    SheetInput mInput;
    SheetGeometry mGeometry;
    SheetTextOffsets mOffsets;
    const Document *mOffsetsDocument = nullptr;
    SheetTiles mTiles;
    bool mHasSheet = false;
    SheetScrollLayout mLayout;
    QTimer mHoverTimer;
    QPointF mLastPointer{-1.0, -1.0};
    bool mHoverEnabled = false;
    bool mWheelHorizontal = false;
    int mWheelLines = 3;
    QPoint mWheelRemainder;
    bool mLayingOut = false;
    bool mMiniSheet = false; // a mini-overview: no cells reported, no tiles kept
    SheetCursor mCursor;
    QString mNotice;
    bool mIsSwedish = false;
};

} // namespace kel

Q_DECLARE_METATYPE(kel::SheetHit)
