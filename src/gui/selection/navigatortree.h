// SPDX-License-Identifier: GPL-3.0-or-later
// trvNavigator: the category tree with check boxes. A check change counts
// only when the user made it on that very node, with a mouse click on its
// check box or with the space bar; changes the program makes to other nodes
// while it propagates a tick are not reported. The tree's own notification
// and the release of the mouse button may come in either order (or the
// notification not at all), so the node is remembered when the press lands
// on its check box and reported once, by whichever comes first.
#pragma once

#include <QTreeWidget>

namespace kel {

class NavigatorTree : public QTreeWidget
{
    Q_OBJECT
public:
    /// Item data roles: the node key ("R2", "A2-5"), the category, the option
    /// (-1 on a root node).
    static constexpr int KeyRole = Qt::UserRole;
    static constexpr int CategoryRole = Qt::UserRole + 1;
    static constexpr int OptionRole = Qt::UserRole + 2;

    explicit NavigatorTree(QWidget *parent = nullptr);

    /// The check box of `item` in viewport coordinates (empty when the item
    /// is not shown).
    QRect checkBoxRect(const QTreeWidgetItem *item) const;
    /// The node with `key`, or nullptr.
    QTreeWidgetItem *itemByKey(const QString &key) const;
    /// The node whose check click is waiting to be reported, or nullptr.
    QTreeWidgetItem *rememberedItem() const { return mRemembered; }

signals:
    /// The user toggled the check box of `item`; its check state is the new one.
    void checkClicked(QTreeWidgetItem *item);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void remember(QTreeWidgetItem *item);
    /// The item whose check box a left-button event lies on, else null.
    QTreeWidgetItem *checkBoxAt(const QMouseEvent *event) const;
    void onItemChanged(QTreeWidgetItem *item, int column);
    void reportRemembered();

    QTreeWidgetItem *mRemembered = nullptr;
    Qt::CheckState mStateAtPress = Qt::Unchecked;
};

} // namespace kel
