// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/sheetview.h"

#include <QApplication>
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
            mPopupRow = hit.row;
            mPopupQuestion = hit.question;
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
