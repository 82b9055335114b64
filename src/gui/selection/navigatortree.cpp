// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/selection/navigatortree.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionViewItem>

namespace kel {

NavigatorTree::NavigatorTree(QWidget *parent) : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("trvNavigator"));
    setHeaderHidden(true);
    setColumnCount(1);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformRowHeights(true);
    connect(this, &QTreeWidget::itemChanged, this, &NavigatorTree::onItemChanged);
}

QRect NavigatorTree::checkBoxRect(const QTreeWidgetItem *item) const
{
    if (!item)
        return QRect();
    const QModelIndex index = indexFromItem(item, 0);
    const QRect cell = visualRect(index);
    if (!cell.isValid())
        return QRect();
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = cell;
    option.features |= QStyleOptionViewItem::HasCheckIndicator;
    option.index = index;
    return style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this);
}

QTreeWidgetItem *NavigatorTree::itemByKey(const QString &key) const
{
    for (int r = 0; r < topLevelItemCount(); ++r) {
        QTreeWidgetItem *root = topLevelItem(r);
        if (root->data(0, KeyRole).toString() == key)
            return root;
        for (int o = 0; o < root->childCount(); ++o) {
            if (root->child(o)->data(0, KeyRole).toString() == key)
                return root->child(o);
        }
    }
    return nullptr;
}

void NavigatorTree::remember(QTreeWidgetItem *item)
{
    mRemembered = item;
    mStateAtPress = item ? item->checkState(0) : Qt::Unchecked;
}

QTreeWidgetItem *NavigatorTree::checkBoxAt(const QMouseEvent *event) const
{
    if (event->button() != Qt::LeftButton)
        return nullptr;
    const QPoint at = event->position().toPoint();
    QTreeWidgetItem *item = itemAt(at);
    return item && checkBoxRect(item).contains(at) ? item : nullptr;
}

void NavigatorTree::mousePressEvent(QMouseEvent *event)
{
    remember(checkBoxAt(event));
    QTreeWidget::mousePressEvent(event);
    // A click on a node makes it the current node, check box or not.
    if (event->button() == Qt::LeftButton) {
        if (QTreeWidgetItem *item = itemAt(event->position().toPoint()))
            setCurrentItem(item);
    }
}

void NavigatorTree::mouseDoubleClickEvent(QMouseEvent *event)
{
    // The second click of a double click arrives here instead of as a press;
    // its release toggles the box again and must count as well.
    remember(checkBoxAt(event));
    QTreeWidget::mouseDoubleClickEvent(event);
}

void NavigatorTree::mouseReleaseEvent(QMouseEvent *event)
{
    QTreeWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton)
        reportRemembered();
}

void NavigatorTree::keyPressEvent(QKeyEvent *event)
{
    QTreeWidgetItem *current = currentItem();
    const bool toggles = (event->key() == Qt::Key_Space || event->key() == Qt::Key_Select) && current
        && (current->flags() & Qt::ItemIsUserCheckable) && event->modifiers() == Qt::NoModifier;
    if (!toggles) {
        QTreeWidget::keyPressEvent(event);
        return;
    }
    remember(current);
    QTreeWidget::keyPressEvent(event);
    reportRemembered();
}

void NavigatorTree::onItemChanged(QTreeWidgetItem *item, int column)
{
    if (column != 0 || !item || item != mRemembered || item->checkState(0) == mStateAtPress)
        return;
    // Forget first: processing the tick changes other nodes, whose
    // notifications must not be taken for user clicks.
    mRemembered = nullptr;
    emit checkClicked(item);
}

void NavigatorTree::reportRemembered()
{
    QTreeWidgetItem *item = mRemembered;
    mRemembered = nullptr;
    // A press that was dragged off the box toggles nothing and reports nothing.
    if (item && item->checkState(0) != mStateAtPress)
        emit checkClicked(item);
}

} // namespace kel
