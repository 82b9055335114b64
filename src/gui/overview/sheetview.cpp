// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/sheetview.h"

#include "gui/common/popupkeys.h"

#include "gui/overview/sheetaccessible.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>

namespace kel {

namespace {
// The sheet sits one pixel in from the view's top-left corner.
constexpr int Margin = 1;
// One wheel notch, in the units of angleDelta().
constexpr int NotchUnits = 120;
} // namespace

SheetView::SheetView(QWidget *parent) : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    mHoverTimer.setSingleShot(true);
    mHoverTimer.setTimerType(Qt::PreciseTimer);
    mHoverTimer.setInterval(HoverDelayMs);
    connect(&mHoverTimer, &QTimer::timeout, this, &SheetView::showHoveredCell);
    mWheelLines = QApplication::wheelScrollLines();
    installSheetAccessibility();
}

bool SheetView::setSheet(SheetInput input)
{
    return showInput(std::move(input), SheetMode::Screen);
}

bool SheetView::setMiniSheet(SheetInput input)
{
    return showInput(std::move(input), SheetMode::MiniOverview);
}

bool SheetView::showInput(SheetInput input, SheetMode mode)
{
    // The scroll bars stay as they are until the new sheet is laid out, so
    // a bar needed before and after keeps its place (clamped to the new range).
    discardSheet();
    mMiniSheet = mode == SheetMode::MiniOverview;
    if (mMiniSheet)
        mHoverEnabled = false;
    input.mode = mode;
    if (input.document != mOffsetsDocument) {
        mOffsets.clear();
        mOffsetsDocument = input.document;
    }
    mInput = std::move(input);
    mGeometry = measureSheet(mInput);
    mHasSheet = mInput.document && mGeometry.width() > 0 && mGeometry.height() > 0;
    if (!mHasSheet) {
        mInput = SheetInput();
        mGeometry = SheetGeometry();
    }
    mTiles.setCapacity(mMiniSheet ? 0 : SheetTiles::capacityFor(viewport()->size()));
    mCursor.setBounds(mHasSheet && !mMiniSheet
                          ? SheetCursorBounds{std::min(mGeometry.columns, int(mInput.columns.size())),
                                              mGeometry.headerLines, mGeometry.answerLines}
                          : SheetCursorBounds{});
    if (QAccessible::isActive()) {
        QAccessibleTableModelChangeEvent reset(this, QAccessibleTableModelChangeEvent::ModelReset);
        QAccessible::updateAccessibility(&reset);
    }
    updateScrollBars();
    viewport()->update();
    refreshHover();
    return mHasSheet;
}

void SheetView::discardSheet()
{
    mHoverTimer.stop();
    mTiles.clear();
    mHasSheet = false;
    mInput = SheetInput();
    mGeometry = SheetGeometry();
}

void SheetView::eraseSheet()
{
    discardSheet();
    updateScrollBars();
    viewport()->update();
}

void SheetView::resetDocument()
{
    eraseSheet();
    mOffsets.clear();
    mOffsetsDocument = nullptr;
}

void SheetView::setHoverEnabled(bool enabled)
{
    mHoverEnabled = enabled;
    if (!enabled)
        mHoverTimer.stop();
}

int SheetView::scrollColumn() const
{
    return mLayout.horizontal.visible ? horizontalScrollBar()->value() : 0;
}

int SheetView::scrollLine() const
{
    return mLayout.vertical.visible ? verticalScrollBar()->value() : 0;
}

void SheetView::setScrollPosition(int column, int line)
{
    horizontalScrollBar()->setValue(column);
    verticalScrollBar()->setValue(line);
}

SheetHit SheetView::hitTest(const QPointF &pos) const
{
    if (!hasSheet() || mMiniSheet)
        return SheetHit();
    // Only what the view shows can be hit: not the parts under the bars.
    if (pos.x() >= Margin + mLayout.availableWidth || pos.y() >= Margin + mLayout.availableHeight)
        return SheetHit();
    return hitTestSheet(pos.x(), pos.y(), mGeometry, scrollColumn(), scrollLine(), mInput.columns, mInput.rows,
                        mInput.columnRowOffsets);
}

void SheetView::updateScrollBars()
{
    if (mLayingOut)
        return;
    mLayingOut = true;
    const int barExtent = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    const int areaWidth = width() - 2 * Margin;
    const int areaHeight = height() - 2 * Margin;
    if (hasSheet()) {
        mLayout = layoutSheetScrollBars(mGeometry, areaWidth, areaHeight, barExtent, barExtent);
    } else {
        mLayout = SheetScrollLayout();
        mLayout.availableWidth = std::max(0, areaWidth);
        mLayout.availableHeight = std::max(0, areaHeight);
    }
    // A bar that appears starts at 0; one that stays keeps its place.
    auto apply = [](QScrollBar *bar, const ScrollRange &range, bool wasVisible) {
        if (range.visible && !wasVisible)
            bar->setValue(0);
        bar->setRange(0, range.visible ? range.maximum : 0);
        bar->setPageStep(range.pageStep);
        bar->setSingleStep(1);
    };
    const bool hWasVisible = horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOn;
    const bool vWasVisible = verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn;
    setHorizontalScrollBarPolicy(mLayout.horizontal.visible ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(mLayout.vertical.visible ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    apply(horizontalScrollBar(), mLayout.horizontal, hWasVisible);
    apply(verticalScrollBar(), mLayout.vertical, vWasVisible);
    mLayingOut = false;
}

void SheetView::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    const QRegion around(viewport()->rect());
    if (!hasSheet()) {
        painter.fillRect(viewport()->rect(), palette().color(QPalette::Button));
        return;
    }
    const int sourceX = mGeometry.cellWidth * scrollColumn();
    const int visibleWidth = std::max(0, std::min(mLayout.availableWidth, mGeometry.width() - sourceX));
    const int headerHeight = std::min(mLayout.availableHeight, mGeometry.headerHeight());
    const int bodySourceY = mGeometry.cellHeight * (scrollLine() + mGeometry.headerLines);
    const int bodyHeight =
        std::max(0, std::min(mLayout.availableHeight - headerHeight, mGeometry.height() - bodySourceY));
    // Button face around the sheet only: the sheet's own pixels are written once.
    const QRect shown(Margin, Margin, visibleWidth, headerHeight + bodyHeight);
    for (const QRect &rect : around.subtracted(QRegion(shown)))
        painter.fillRect(rect, palette().color(QPalette::Button));
    mTiles.paint(painter, QPoint(Margin, Margin), QRect(sourceX, 0, visibleWidth, headerHeight), mInput, mOffsets,
                 mGeometry);
    mTiles.paint(painter, QPoint(Margin, Margin + headerHeight), QRect(sourceX, bodySourceY, visibleWidth, bodyHeight),
                 mInput, mOffsets, mGeometry);
    paintNotice(painter);
    paintCursor(painter);
}

void SheetView::setNotice(const QString &text)
{
    mNotice = text;
    viewport()->update();
}

void SheetView::paintNotice(QPainter &painter) const
{
    if (mNotice.isEmpty() || mMiniSheet)
        return;
    const int gap = fontMetrics().height() / 2;
    const int top = Margin + std::min(mLayout.availableHeight, mGeometry.height()) + gap;
    const QRect area(Margin + gap, top, mLayout.availableWidth - 2 * gap, Margin + mLayout.availableHeight - top);
    if (area.width() <= 0 || area.height() <= 0)
        return;
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.setFont(font());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, mNotice);
}

void SheetView::paintCursor(QPainter &painter) const
{
    if (!hasFocus())
        return;
    const QRect cell = cursorRect();
    if (cell.isEmpty())
        return;
    // Dark outside, light inside: visible on any answer colour. The frame
    // is cut where the cell is, so a half-shown cell shows half a frame.
    const QRect full = cursorCellRect();
    auto frame = [&](const QRect &r, int width, const QColor &colour) {
        const QRect edges[] = {
            QRect(r.left(), r.top(), r.width(), width), QRect(r.left(), r.bottom() - width + 1, r.width(), width),
            QRect(r.left(), r.top(), width, r.height()), QRect(r.right() - width + 1, r.top(), width, r.height())};
        for (const QRect &edge : edges)
            painter.fillRect(edge.intersected(cell), colour);
    };
    frame(full, 2, Qt::black);
    frame(full.adjusted(2, 2, -2, -2), 1, Qt::white);
}

SheetHit SheetView::cursorHit() const
{
    SheetHit hit;
    if (!hasSheet() || mMiniSheet || !mCursor.isValid())
        return hit;
    hit.column = mCursor.column();
    hit.line = mCursor.line();
    hit.question = mInput.columns[std::size_t(hit.column)];
    if (hit.line >= 0) {
        hit.row = rowShownInCell(mInput.rows, mInput.columnRowOffsets, hit.question, hit.line);
        if (hit.row < 0)
            return SheetHit();
        hit.place = SheetPlace::AnswerCell;
    } else {
        hit.row = hit.line;
        hit.place = hit.line == -1 ? SheetPlace::CodeLine : SheetPlace::BlockLine;
    }
    return hit;
}

QRect SheetView::cursorRect() const
{
    const QRect cell = cursorCellRect();
    if (cell.isEmpty())
        return cell;
    const int headerHeight = std::min(mLayout.availableHeight, mGeometry.headerHeight());
    // Body lines scrolled above the body slide under the frozen header.
    if (mCursor.line() >= 0 && cell.top() < Margin + headerHeight)
        return QRect();
    return cell.intersected(QRect(Margin, Margin, mLayout.availableWidth, mLayout.availableHeight));
}

QRect SheetView::cursorCellRect() const
{
    if (!hasSheet() || mMiniSheet || !mCursor.isValid())
        return QRect();
    const int w = mGeometry.cellWidth;
    const int h = mGeometry.cellHeight;
    const int x = Margin + (mCursor.column() - scrollColumn()) * w;
    if (mCursor.line() < 0)
        return QRect(x, Margin + (mCursor.line() + mGeometry.headerLines) * h, w, h);
    return QRect(x, Margin + mGeometry.headerHeight() + (mCursor.line() - scrollLine()) * h, w, h);
}

int SheetView::visibleBodyLines() const
{
    return std::max(1, (mLayout.availableHeight - mGeometry.headerHeight()) / std::max(1, mGeometry.cellHeight));
}

void SheetView::scrollCursorIntoView()
{
    QScrollBar *h = horizontalScrollBar();
    QScrollBar *v = verticalScrollBar();
    if (mLayout.horizontal.visible) {
        const int columns = mLayout.availableWidth / std::max(1, mGeometry.cellWidth);
        h->setValue(SheetCursor::scrollToShow(mCursor.column(), scrollColumn(), columns, h->maximum()));
    }
    if (mLayout.vertical.visible && mCursor.line() >= 0)
        v->setValue(SheetCursor::scrollToShow(mCursor.line(), scrollLine(), visibleBodyLines(), v->maximum()));
}

void SheetView::reportCursor()
{
    viewport()->update();
    const SheetHit hit = cursorHit();
    notifySheetCursorMoved(this);
    Q_EMIT cursorMoved(hit);
    if (mHoverEnabled) {
        // The pointer's delayed report would overwrite the cursor's cell.
        mHoverTimer.stop();
        Q_EMIT cellHovered(hit);
    }
}

void SheetView::setCursorPosition(int column, int line)
{
    if (!hasSheet() || mMiniSheet)
        return;
    mCursor.setPosition(column, line);
    scrollCursorIntoView();
    reportCursor();
}

void SheetView::requestPopupAtCursor()
{
    const SheetHit hit = cursorHit();
    if (hit.place == SheetPlace::Outside)
        return;
    scrollCursorIntoView();
    const QRect cell = cursorRect();
    // Below the cell, so the menu leaves the cell it is about in sight.
    const QPoint at = cell.isEmpty() ? viewport()->rect().center() : cell.bottomLeft() + QPoint(0, 1);
    Q_EMIT popupRequested(hit, viewport()->mapToGlobal(at));
}

void SheetView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void SheetView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void SheetView::contextMenuEvent(QContextMenuEvent *event)
{
    // The platform turns the Menu key into this event; the key press may
    // already have opened the popup.
    if (event->reason() == QContextMenuEvent::Keyboard && !QApplication::activePopupWidget())
        requestPopupAtCursor();
    event->accept();
}

void SheetView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        const SheetHit hit = hitTest(event->position());
        if (hit.place != SheetPlace::Outside) {
            mCursor.setPosition(hit.column, hit.line);
            viewport()->update();
            Q_EMIT cursorMoved(hit);
        }
    }
    QAbstractScrollArea::mousePressEvent(event);
}

void SheetView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    if (!mMiniSheet)
        mTiles.setCapacity(SheetTiles::capacityFor(viewport()->size()));
    updateScrollBars();
}

void SheetView::scrollContentsBy(int, int)
{
    viewport()->update();
    refreshHover();
}

void SheetView::refreshHover()
{
    // A resting pointer now rests on another cell (the sheet moved or was
    // replaced under it): its values follow after the usual delay.
    mHoverTimer.stop();
    if (mHoverEnabled && hasSheet() && viewport()->rect().contains(mLastPointer.toPoint()))
        mHoverTimer.start();
}

bool SheetView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave) {
        mHoverTimer.stop();
        mLastPointer = QPointF(-1.0, -1.0); // nothing rests on the sheet
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void SheetView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF pos = event->position();
    if (pos != mLastPointer) {
        mHoverTimer.stop();
        // Moving with a button or modifier held (dragging, selecting) shows nothing.
        if (mHoverEnabled && hasSheet() && event->buttons() == Qt::NoButton
            && (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier)) == 0)
            mHoverTimer.start();
        mLastPointer = pos;
    }
    QAbstractScrollArea::mouseMoveEvent(event);
}

void SheetView::showHoveredCell()
{
    mHoverTimer.stop();
    if (!hasSheet())
        return;
    Q_EMIT cellHovered(hitTest(mLastPointer));
}

void SheetView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton && hasSheet()
        && (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier)) == 0) {
        const SheetHit hit = hitTest(event->position());
        if (hit.place != SheetPlace::Outside) {
            Q_EMIT popupRequested(hit, event->globalPosition().toPoint());
        }
        event->accept();
        return;
    }
    QAbstractScrollArea::mouseReleaseEvent(event);
}

void SheetView::scrollBy(QScrollBar *bar, int notches)
{
    const int step = mWheelLines == -1 ? bar->pageStep() : mWheelLines;
    const qint64 value = qint64(bar->value()) - qint64(notches) * step;
    bar->setValue(int(std::clamp<qint64>(value, bar->minimum(), bar->maximum())));
}

void SheetView::wheelEvent(QWheelEvent *event)
{
    if (!hasSheet()) {
        event->ignore();
        return;
    }
    // High-resolution wheels send fractions of a notch; they add up.
    mWheelRemainder += event->angleDelta();
    const int verticalNotches = mWheelRemainder.y() / NotchUnits;
    const int horizontalNotches = mWheelRemainder.x() / NotchUnits;
    mWheelRemainder -= QPoint(horizontalNotches * NotchUnits, verticalNotches * NotchUnits);
    if (verticalNotches != 0) {
        const bool horizontal = mWheelHorizontal && mLayout.horizontal.visible;
        scrollBy(horizontal ? horizontalScrollBar() : verticalScrollBar(), verticalNotches);
    }
    if (horizontalNotches != 0)
        scrollBy(horizontalScrollBar(), horizontalNotches);
    event->accept();
}

void SheetView::keyPressEvent(QKeyEvent *event)
{
    if (isPopupKey(*event)) {
        if (!QApplication::activePopupWidget())
            requestPopupAtCursor();
        event->accept();
        return;
    }
    if (hasSheet() && !mMiniSheet && mCursor.isValid()
        && mCursor.moveByKey(event->key(), event->modifiers(), visibleBodyLines())) {
        scrollCursorIntoView();
        reportCursor();
        event->accept();
        return;
    }
    // A mini-overview's picture has no cells: the keys scroll it.
    QScrollBar *h = horizontalScrollBar();
    QScrollBar *v = verticalScrollBar();
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    switch (event->key()) {
    case Qt::Key_Up: v->setValue(v->value() - 1); break;
    case Qt::Key_Down: v->setValue(v->value() + 1); break;
    case Qt::Key_Left: h->setValue(h->value() - 1); break;
    case Qt::Key_Right: h->setValue(h->value() + 1); break;
    case Qt::Key_PageUp: v->setValue(v->value() - v->pageStep()); break;
    case Qt::Key_PageDown: v->setValue(v->value() + v->pageStep()); break;
    case Qt::Key_Home:
        v->setValue(0);
        if (ctrl)
            h->setValue(0);
        break;
    case Qt::Key_End:
        v->setValue(v->maximum());
        if (ctrl)
            h->setValue(h->maximum());
        break;
    default: QAbstractScrollArea::keyPressEvent(event); return;
    }
    event->accept();
}

} // namespace kel
