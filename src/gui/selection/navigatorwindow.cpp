// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/selection/navigatorwindow.h"

#include "texts/language.h"
#include "engine/settings/settingsstore.h"
#include "texts/messages.h"
#include "texts/statusline.h"
#include "gui/common/waitcursor.h"
#include "engine/document/document.h"
#include "gui/selection/navigatortree.h"

#include <QApplication>
#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

namespace kel {

namespace {

constexpr int ReminderIntervalMs = 800;
constexpr int MinimumPaneTwips = 285; // tree and flex list never get smaller
constexpr int MinimumTreeRows = 5;
constexpr int DesignedFlexHeightTwips = 1140;
constexpr int LabelGapTwips = 120; // between the count and the Show button

} // namespace

NavigatorWindow::NavigatorWindow(bool isSwedish, StatusLine &status, const UserOptions &options,
                                 NavigatorActions actions, QWidget *parent)
    : ToolDock(QStringLiteral("Navigator"), pickText(isSwedish, "Navigator", "Navigatör"), parent),
      mIsSwedish(isSwedish), mStatus(status), mOptions(options), mActions(std::move(actions)),
      mContent(new QWidget(this)), mSplitter(new QSplitter(Qt::Vertical, mContent)),
      mTree(new NavigatorTree(mSplitter)), mFlexList(new QListWidget(mSplitter)),
      mFlexCheck(new QCheckBox(
          pickText(isSwedish, "Base total on &current selection", "Basera &totalen på aktuellt urval"), mContent)),
      // Docked, these share the main window's Alt keys: none may be a menu's.
      mTotalLabel(new QLabel(mContent)), mShowButton(new QPushButton(pickText(isSwedish, "&Show", "Vi&sa"), mContent))
{
    mFlexList->setObjectName(QStringLiteral("lstFlexTotal"));
    mFlexList->setSelectionMode(QAbstractItemView::MultiSelection);
    mFlexList->setToolTip(pickText(isSwedish,
                                   "Defines, together with the check box below, what should be considered total.",
                                   "Definierar, tillsammans med kryssrutan under, vad som ska anses vara totalen."));
    mFlexCheck->setObjectName(QStringLiteral("chkFlexTotalBasedOnCurrentSelection"));
    mFlexCheck->setToolTip(
        pickText(isSwedish, "Total should be the same as the current selection except for the settings made above.",
                 "Totalen ska vara den samma som det aktuella urvalet med undantag för inställningarna ovan."));
    mTotalLabel->setObjectName(QStringLiteral("lblTotal"));
    mShowButton->setObjectName(QStringLiteral("cmdShow"));
    // What a screen reader says for the controls that show no label of their own.
    mTree->setAccessibleName(pickText(isSwedish, "Selection", "Urval"));
    mFlexList->setAccessibleName(pickText(isSwedish, "Total", "Total"));
    mFlexList->setAccessibleDescription(mFlexList->toolTip());
    mTotalLabel->setAccessibleName(pickText(isSwedish, "Total index", "Totalindex"));
    mShowButton->setAutoFillBackground(true);

    // The divider between tree and list is the splitter's handle; neither
    // pane may be dragged below its minimum, and the list keeps its height
    // when the window is resized.
    const int minimumPane = twipsToPixels(MinimumPaneTwips);
    // The tree stays usable, five rows at least, however small the window:
    // the list gives way first, down to its own minimum.
    mTree->setMinimumHeight(std::max(minimumPane, treeMinimumHeight()));
    mFlexList->setMinimumHeight(minimumPane);
    mSplitter->setChildrenCollapsible(false);
    mSplitter->setStretchFactor(0, 1);
    mSplitter->setStretchFactor(1, 0);
    mSplitter->setSizes({4 * minimumPane, designedFlexHeight()});

    auto *bottom = new QHBoxLayout;
    bottom->addStretch(1);
    bottom->addWidget(mTotalLabel);
    bottom->addSpacing(twipsToPixels(LabelGapTwips));
    bottom->addWidget(mShowButton);
    auto *layout = new QVBoxLayout(mContent);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(mSplitter, 1);
    layout->addWidget(mFlexCheck);
    layout->addLayout(bottom);
    setWidget(mContent);

    mReminder.setInterval(ReminderIntervalMs);
    connect(&mReminder, &QTimer::timeout, this, [this] { setReminderLit(!mReminderLit); });
    connect(mTree, &NavigatorTree::checkClicked, this, &NavigatorWindow::onCheckClicked);
    connect(mFlexList, &QListWidget::itemSelectionChanged, this, &NavigatorWindow::onFlexListClicked);
    connect(mFlexCheck, &QCheckBox::clicked, this, [this](bool checked) {
        mModel.setFlexBasedOnCurrentSelection(checked);
        recount();
    });
    connect(mShowButton, &QPushButton::clicked, this, &NavigatorWindow::applySelection);
    mFocusConnection = connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        const bool inside = now && ownsWidget(now);
        if (inside && !mHasFocus)
            focusEntered();
        else if (!inside && mHasFocus)
            focusLeft();
    });
    // Docked, the navigator shares its window with the overview, and a click
    // there need not move the keyboard focus: a press anywhere counts as
    // going there as well.
    qApp->installEventFilter(this);
    setTotalText(0);
}

NavigatorWindow::~NavigatorWindow()
{
    // Destroying the child widgets moves the focus; the window's own state
    // is gone by then.
    disconnect(mFocusConnection);
    qApp->removeEventFilter(this);
    mReminder.stop();
}

int NavigatorWindow::treeMinimumHeight() const
{
    // A row of the tree: its text or its check box, whichever is taller,
    // with the item's padding.
    const int text = mTree->fontMetrics().height();
    const int box = mTree->style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, mTree);
    const int row = mTree->topLevelItemCount() > 0 ? mTree->sizeHintForRow(0) : std::max(text, box) + 4;
    return MinimumTreeRows * row + 2 * mTree->frameWidth();
}

int NavigatorWindow::designedFlexHeight() const
{
    return twipsToPixels(DesignedFlexHeightTwips);
}

int NavigatorWindow::flexHeight() const
{
    return mFlexList->height();
}

bool NavigatorWindow::ownsWidget(const QWidget *widget) const
{
    for (const QWidget *w = widget; w; w = w->parentWidget()) {
        if (w == this)
            return true;
    }
    return false;
}

bool NavigatorWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType()) {
        const bool inside = ownsWidget(static_cast<QWidget *>(watched));
        if (inside && !mHasFocus)
            focusEntered();
        else if (!inside && mHasFocus)
            focusLeft();
    }
    return ToolDock::eventFilter(watched, event);
}

void NavigatorWindow::loadSettings(const SettingsStore &store)
{
    const std::optional<qint32> twips = store.readNavigatorFlexHeight();
    if (!twips)
        return;
    const int pixels = twipsToPixels(*twips);
    // A smaller stored height would hide list items the design makes room for.
    if (pixels > designedFlexHeight()) {
        const QList<int> sizes = mSplitter->sizes();
        const int total = sizes.value(0) + sizes.value(1);
        mSplitter->setSizes({std::max(total - pixels, mTree->minimumHeight()), pixels});
    }
}

void NavigatorWindow::saveSettings(SettingsStore &store) const
{
    savePlacement(store);
    const int pixels = mSplitter->sizes().value(1, designedFlexHeight());
    store.writeNavigatorFlexHeight(qint32(qRound(pixels / pixelsPerTwip())));
}

void NavigatorWindow::setUp(const Document &doc)
{
    mDocument = &doc;
    setReminderLit(false);
    mReminder.stop();
    buildTree(doc);
    // Now with real rows to measure.
    mTree->setMinimumHeight(std::max(twipsToPixels(MinimumPaneTwips), treeMinimumHeight()));
    buildFlexList(doc);
    mModel.setUpDimensions(doc);
    const bool flexShown = mModel.flexVisible();
    mFlexList->setVisible(flexShown);
    mFlexCheck->setVisible(flexShown);
    if (flexShown) {
        // Once the window is laid out the splitter knows its real height.
        QTimer::singleShot(0, this, [this] {
            if (mModel.flexVisible())
                fitFlexListToItems();
        });
    }
    mFlexCheck->setChecked(false);
    mCount = doc.rowCount();
    setTotalText(mCount);
    for (int c = 0; c < int(doc.categories.size()); ++c)
        markCategory(c, false);
    mShowButton->setEnabled(true);
    mShowButton->setToolTip(QString());
}

void NavigatorWindow::buildTree(const Document &doc)
{
    const QSignalBlocker quiet(mTree);
    mTree->clear();
    const int first = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
    for (int c = 0; c < int(doc.categories.size()); ++c) {
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(c)])];
        auto *root = new QTreeWidgetItem(mTree, {q.heading});
        root->setData(0, NavigatorTree::KeyRole, QStringLiteral("R%1").arg(c));
        root->setData(0, NavigatorTree::CategoryRole, c);
        root->setData(0, NavigatorTree::OptionRole, -1);
        root->setFlags((root->flags() | Qt::ItemIsUserCheckable) & ~Qt::ItemIsAutoTristate);
        root->setCheckState(0, Qt::Checked);
        for (int o = first; o < q.alternativeCount; ++o) {
            const Alternative &a = doc.alternatives[std::size_t(q.firstAlternative + o)];
            auto *node = new QTreeWidgetItem(root, {a.text});
            node->setData(0, NavigatorTree::KeyRole, QStringLiteral("A%1-%2").arg(c).arg(o));
            node->setData(0, NavigatorTree::CategoryRole, c);
            node->setData(0, NavigatorTree::OptionRole, o);
            node->setFlags(node->flags() | Qt::ItemIsUserCheckable);
            node->setCheckState(0, Qt::Checked);
        }
    }
    mTree->expandAll();
}

void NavigatorWindow::fitFlexListToItems()
{
    // A list that hides some of its few options makes the user scroll to
    // find them: it grows to show them all, up to half of the window.
    const int count = mFlexList->count();
    if (count == 0 || !mSplitter->isVisible())
        return; // the splitter's sizes mean nothing before it is laid out
    const int rows = mFlexList->sizeHintForRow(0) * count + 2 * mFlexList->frameWidth() + 2;
    const QList<int> sizes = mSplitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int wanted = std::max(designedFlexHeight(), std::min(rows, total / 2));
    if (wanted > sizes.value(1))
        mSplitter->setSizes({std::max(total - wanted, mTree->minimumHeight()), wanted});
}

void NavigatorWindow::buildFlexList(const Document &doc)
{
    const QSignalBlocker quiet(mFlexList);
    mFlexList->clear();
    if (doc.flexCategory < 0 || doc.flexCategory >= qint32(doc.questions.size()))
        return;
    const Question &q = doc.questions[std::size_t(doc.flexCategory)];
    const int first = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
    for (int o = first; o < q.alternativeCount; ++o) {
        auto *item = new QListWidgetItem(doc.alternatives[std::size_t(q.firstAlternative + o)].text, mFlexList);
        item->setData(Qt::UserRole, o);
        item->setSelected(true);
    }
}

void NavigatorWindow::onCheckClicked(QTreeWidgetItem *item)
{
    const int category = item->data(0, NavigatorTree::CategoryRole).toInt();
    const int option = item->data(0, NavigatorTree::OptionRole).toInt();
    const bool checked = item->checkState(0) == Qt::Checked;
    const QSignalBlocker quiet(mTree);
    if (option < 0) {
        // Root: every option follows it.
        for (int i = 0; i < item->childCount(); ++i)
            item->child(i)->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
        mModel.setCategoryChecked(category, checked);
    } else {
        mModel.setOptionChecked(category, option, checked);
        if (QTreeWidgetItem *root = item->parent())
            root->setCheckState(0, mModel.isCategoryChecked(category) ? Qt::Checked : Qt::Unchecked);
    }
    recount();
}

void NavigatorWindow::onFlexListClicked()
{
    if (!mModel.flexVisible())
        return;
    for (int i = 0; i < mFlexList->count(); ++i) {
        const QListWidgetItem *item = mFlexList->item(i);
        mModel.setFlexOption(item->data(Qt::UserRole).toInt(), item->isSelected());
    }
    // The flex total's own complement check follows every change.
    recount();
}

void NavigatorWindow::recount()
{
    if (!mDocument)
        return;
    const RecountResult result = mModel.recount(*mDocument);
    mCount = result.count;
    for (int c = 0; c < int(result.shaded.size()); ++c)
        markCategory(c, result.shaded[std::size_t(c)]);
    markFlexTotal(result.flexShaded);
    if (mModel.showEnabledChanged())
        mShowButton->setEnabled(result.showEnabled);
    // A disabled Show says why, so that the shading is not a riddle.
    QString reason;
    if (!result.showEnabled) {
        const bool blocked = std::find(result.blocked.begin(), result.blocked.end(), true) != result.blocked.end();
        reason = blocked ? pickText(mIsSwedish,
                                    "A shaded category must keep all its options ticked: leaving one out would show "
                                    "a group smaller than the document allows.",
                                    "En skuggad kategori måste ha alla sina alternativ ikryssade: att utelämna ett "
                                    "skulle visa en grupp som är mindre än dokumentet tillåter.")
                         : pickText(mIsSwedish,
                                    "The selection holds fewer respondents than the document allows to be shown "
                                    "(at least %1).",
                                    "Urvalet har färre svarande än dokumentet tillåter att visa (minst %1).")
                               .arg(mDocument->properties.minimumGraphSelection);
    }
    mShowButton->setToolTip(reason);
    setTotalText(result.count);
}

bool NavigatorWindow::hasPendingChanges() const
{
    return mModel.hasPendingChanges();
}

void NavigatorWindow::applySelection()
{
    if (!mDocument)
        return;
    std::optional<WaitCursor> wait(std::in_place);
    mStatus.setStatus(buildingOverviewText(false), buildingOverviewText(true), false);
    const QString message = mActions.show ? mActions.show(mModel) : QString();
    wait.reset();
    if (message.isEmpty()) {
        mStatus.setStatus(overviewBuiltText(false), overviewBuiltText(true), true);
        return;
    }
    if (mActions.showRefusal)
        mActions.showRefusal(message);
    mStatus.clearStatus();
}

void NavigatorWindow::setTotalText(qint32 count)
{
    mTotalLabel->setText(itemsInSelectionText(mIsSwedish, count, QLocale()));
}

void NavigatorWindow::markCategory(int category, bool shaded)
{
    QTreeWidgetItem *root = mTree->topLevelItem(category);
    if (!root)
        return;
    // A warm tint that stands out on any light theme: the palette's button
    // face was too close to the tree's white to be noticed.
    const QBrush brush = shaded ? QBrush(QColor(255, 214, 153)) : QBrush();
    const QString tip = shaded ? pickText(mIsSwedish,
                                          "Shaded: leaving out an option here would show a group smaller than the "
                                          "document allows.",
                                          "Skuggad: att utelämna ett alternativ här skulle visa en grupp som är "
                                          "mindre än dokumentet tillåter.")
                               : QString();
    const QSignalBlocker quiet(mTree);
    root->setBackground(0, brush);
    root->setToolTip(0, tip);
    for (int i = 0; i < root->childCount(); ++i) {
        root->child(i)->setBackground(0, brush);
        root->child(i)->setToolTip(0, tip);
    }
}

void NavigatorWindow::markFlexTotal(bool shaded)
{
    // The same tint as a shaded category; Show then refuses the flex total
    // with a message that says what to do.
    const QBrush brush = shaded ? QBrush(QColor(255, 214, 153)) : QBrush();
    const QString tip = shaded ? pickText(mIsSwedish,
                                          "Shaded: the options left out of the total form a group smaller than the "
                                          "document allows.",
                                          "Skuggad: alternativen som lämnas utanför totalen bildar en grupp som är "
                                          "mindre än dokumentet tillåter.")
                               : QString();
    const QSignalBlocker quiet(mFlexList);
    for (int i = 0; i < mFlexList->count(); ++i)
        mFlexList->item(i)->setBackground(brush);
    mFlexList->setToolTip(tip);
}

bool NavigatorWindow::isFlexTotalShaded() const
{
    return mFlexList->count() > 0 && mFlexList->item(0)->background().style() != Qt::NoBrush;
}

bool NavigatorWindow::isCategoryShaded(int category) const
{
    const QTreeWidgetItem *root = mTree->topLevelItem(category);
    return root && root->background(0).style() != Qt::NoBrush;
}

void NavigatorWindow::focusEntered()
{
    mHasFocus = true;
    mReminder.stop();
    setReminderLit(false);
}

void NavigatorWindow::focusLeft()
{
    mHasFocus = false;
    mFlexList->setCurrentRow(-1, QItemSelectionModel::NoUpdate);
    if (!hasPendingChanges() || !mOptions.navigatorRemindToClickShow || mReminder.isActive())
        return;
    setReminderLit(true);
    mReminder.start();
    if (mOptions.navigatorAddBeepToReminder)
        QApplication::beep();
}

void NavigatorWindow::setReminderLit(bool lit)
{
    mReminderLit = lit;
    QPalette p = mShowButton->palette();
    p.setBrush(QPalette::Button, palette().brush(lit ? QPalette::Highlight : QPalette::Button));
    mShowButton->setPalette(p);
}

} // namespace kel
