// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/sheetaccessible.h"

#include "gui/overview/sheetview.h"
#include "texts/language.h"

#include <QAccessibleTableInterface>
#include <QHash>
#include <QPointer>

namespace kel {

namespace {

class SheetAccessible;

// One answer cell; made on demand and kept by Qt's registry, which hands
// the same cell to every client that asks for it.
class SheetCellAccessible : public QAccessibleInterface, public QAccessibleTableCellInterface
{
public:
    SheetCellAccessible(SheetView *view, int row, int column) : mView(view), mRow(row), mColumn(column) { }

    bool isValid() const override
    {
        return mView && mView->hasSheet() && mRow < mView->sheetGeometry().answerLines
            && mColumn < int(mView->input().columns.size());
    }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(mView.data()); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::Cell; }
    void setText(QAccessible::Text, const QString &) override { }

    QAccessible::State state() const override
    {
        QAccessible::State s;
        s.focusable = true;
        s.selectable = true;
        if (!isValid())
            return s;
        const SheetCursor &cursor = mView->cursor();
        if (cursor.column() == mColumn && cursor.line() == mRow) {
            s.focused = mView->hasFocus();
            s.selected = true;
        }
        s.invisible = rect().isEmpty();
        return s;
    }

    QRect rect() const override
    {
        if (!isValid())
            return QRect();
        const SheetGeometry &g = mView->sheetGeometry();
        const int x = 1 + (mColumn - mView->scrollColumn()) * g.cellWidth;
        const int y = 1 + g.headerHeight() + (mRow - mView->scrollLine()) * g.cellHeight;
        const QRect local = QRect(x, y, g.cellWidth, g.cellHeight).intersected(mView->viewport()->rect());
        if (local.isEmpty())
            return QRect();
        return QRect(mView->viewport()->mapToGlobal(local.topLeft()), local.size());
    }

    QString text(QAccessible::Text t) const override
    {
        if (!isValid())
            return QString();
        const Document &doc = *mView->input().document;
        const qint32 question = mView->input().columns[std::size_t(mColumn)];
        const qint32 row = rowShownInCell(mView->input().rows, mView->input().columnRowOffsets, question, mRow);
        const qint32 answer = row >= 0 && row < doc.rowCount() ? doc.getData(row, question) : -1;
        const Question &q = doc.questions[std::size_t(question)];
        const bool answered = answer >= 0 && answer < q.alternativeCount;
        switch (t) {
        case QAccessible::Name:
            return answered ? doc.alternatives[std::size_t(q.firstAlternative + answer)].text
                            : pickText(isSwedish(), "No answer", "Inget svar");
        case QAccessible::Value: return answered ? QString::number(answer + 1) : QString();
        case QAccessible::Description:
            return pickText(isSwedish(), "Respondent %1, %2", "Svarande %1, %2")
                .arg(row + 1)
                .arg(q.text.isEmpty() ? q.heading : q.text);
        default: return QString();
        }
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface *>(this) : nullptr;
    }

    // The table cell interface.
    bool isSelected() const override { return state().selected; }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return mColumn; }
    int rowIndex() const override { return mRow; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

private:
    bool isSwedish() const { return mView && mView->isSwedish(); }

    QPointer<SheetView> mView;
    int mRow;
    int mColumn;
};

class SheetAccessible : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit SheetAccessible(SheetView *view) : QAccessibleWidget(view, QAccessible::Table) { }

    ~SheetAccessible() override
    {
        for (QAccessible::Id id : std::as_const(mCells))
            QAccessible::deleteAccessibleInterface(id);
    }

    SheetView *view() const { return static_cast<SheetView *>(widget()); }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text t) const override
    {
        if (t == QAccessible::Name && view()->accessibleName().isEmpty())
            return pickText(isSwedish(), "Overview", "Översikt");
        if (t == QAccessible::Description && view()->hasSheet())
            return view()->input().selectionText
                + (view()->notice().isEmpty() ? QString() : QStringLiteral(". ") + view()->notice());
        return QAccessibleWidget::text(t);
    }

    int childCount() const override { return rowCount() * columnCount(); }
    QAccessibleInterface *child(int index) const override
    {
        const int columns = columnCount();
        if (index < 0 || columns == 0 || index >= childCount())
            return nullptr;
        return cellAt(index / columns, index % columns);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        if (!child || child->role() != QAccessible::Cell || child->parent() != this)
            return -1;
        const auto *cell = dynamic_cast<const QAccessibleTableCellInterface *>(child);
        return cell ? cell->rowIndex() * columnCount() + cell->columnIndex() : -1;
    }
    QAccessibleInterface *focusChild() const override
    {
        const SheetCursor &cursor = view()->cursor();
        return cursor.line() >= 0 ? cellAt(cursor.line(), cursor.column()) : nullptr;
    }

    // The table interface.
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    int columnCount() const override { return view()->hasSheet() ? int(view()->input().columns.size()) : 0; }
    int rowCount() const override { return view()->hasSheet() ? view()->sheetGeometry().answerLines : 0; }
    QString columnDescription(int column) const override
    {
        if (column < 0 || column >= columnCount())
            return QString();
        const Question &q =
            view()->input().document->questions[std::size_t(view()->input().columns[std::size_t(column)])];
        return q.code.isEmpty() ? q.heading : q.code + QLatin1Char(' ') + q.heading;
    }
    QString rowDescription(int row) const override
    {
        return row >= 0 && row < rowCount() ? pickText(isSwedish(), "Row %1", "Rad %1").arg(row + 1) : QString();
    }
    QAccessibleInterface *cellAt(int row, int column) const override
    {
        if (row < 0 || column < 0 || row >= rowCount() || column >= columnCount())
            return nullptr;
        const auto key = qMakePair(row, column);
        if (const auto it = mCells.constFind(key); it != mCells.constEnd())
            return QAccessible::accessibleInterface(*it);
        auto *cell = new SheetCellAccessible(view(), row, column);
        mCells.insert(key, QAccessible::registerAccessibleInterface(cell));
        return cell;
    }
    int selectedCellCount() const override { return focusChild() ? 1 : 0; }
    QList<QAccessibleInterface *> selectedCells() const override
    {
        QAccessibleInterface *cell = focusChild();
        return cell ? QList<QAccessibleInterface *>{cell} : QList<QAccessibleInterface *>{};
    }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override
    {
        // A new sheet: every cell made for the old one goes.
        for (QAccessible::Id id : std::as_const(mCells))
            QAccessible::deleteAccessibleInterface(id);
        mCells.clear();
    }

private:
    bool isSwedish() const { return view()->isSwedish(); }

    mutable QHash<QPair<int, int>, QAccessible::Id> mCells;
};

QAccessibleInterface *sheetFactory(const QString &className, QObject *object)
{
    if (className == QLatin1String("kel::SheetView") && object && object->isWidgetType())
        return new SheetAccessible(static_cast<SheetView *>(object));
    return nullptr;
}

} // namespace

void installSheetAccessibility()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    QAccessible::installFactory(sheetFactory);
}

void notifySheetCursorMoved(SheetView *view)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleInterface *table = QAccessible::queryAccessibleInterface(view);
    if (!table)
        return;
    const int line = view->cursor().line();
    if (line < 0)
        return;
    QAccessibleEvent focus(view, QAccessible::Focus);
    focus.setChild(line * int(view->input().columns.size()) + view->cursor().column());
    QAccessible::updateAccessibility(&focus);
}

} // namespace kel
