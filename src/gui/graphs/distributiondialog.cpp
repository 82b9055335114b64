// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/distributiondialog.h"

#include "gui/common/dialogbuttons.h"

#include "texts/language.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPalette>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kel {

namespace {

constexpr int CategoryRole = Qt::UserRole;

qint32 chosenCategory(const QListWidget *list)
{
    const QListWidgetItem *item = list->currentItem();
    return item && item->isSelected() ? item->data(CategoryRole).toInt() : -1;
}

} // namespace

DistributionDialog::DistributionDialog(const LastSettings &settings, bool isSwedish, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmDistributionGraphLaunch"));
    setWindowTitle(pickText(isSwedish, "Distribution Graph", "Fördelningsgraf"));
    auto *layout = new QGridLayout(this);

    lblMainCategoryLabel = new QLabel(pickText(isSwedish, "Show &category", "Visa &kategori:"), this);
    lblMainCategoryLabel->setObjectName(QStringLiteral("lblMainCategoryLabel"));
    lstMainCategory = new QListWidget(this);
    lstMainCategory->setObjectName(QStringLiteral("lstMainCategory"));
    lblMainCategoryLabel->setBuddy(lstMainCategory);
    layout->addWidget(lblMainCategoryLabel, 0, 0);
    layout->addWidget(lstMainCategory, 1, 0, 6, 1);

    lblAsLabel = new QLabel(pickText(isSwedish, "As:", "Som:"), this);
    lblAsLabel->setObjectName(QStringLiteral("lblAsLabel"));
    layout->addWidget(lblAsLabel, 0, 1);
    const char *typeEnglish[] = {"&Pie chart", "&Bar graph", "Bar graph &grouped by:"};
    const char *typeSwedish[] = {"&Tårtdiagram", "&Stapeldiagram", "Stapeldiagram &grupperat på:"};
    for (int i = 0; i < 3; ++i) {
        auto *option = new QRadioButton(pickText(isSwedish, typeEnglish[i], typeSwedish[i]), this);
        option->setObjectName(QStringLiteral("optGraphType"));
        option->setProperty("index", i);
        option->setEnabled(false);
        layout->addWidget(option, 1 + i, 1);
        optGraphType[std::size_t(i)] = option;
    }
    optGraphType[1]->setChecked(true);
    lstGroupByCategory = new QListWidget(this);
    lstGroupByCategory->setObjectName(QStringLiteral("lstGroupByCategory"));
    layout->addWidget(lstGroupByCategory, 4, 1);

    chkInPercent = new QCheckBox(pickText(isSwedish, "&In percent", "&I procent"), this);
    chk3DLook = new QCheckBox(pickText(isSwedish, "&3D", "&3D"), this);
    chkHorizontalBars = new QCheckBox(pickText(isSwedish, "&Horizontal bars", "&Horisontella staplar"), this);
    chkVerticalLabels = new QCheckBox(pickText(isSwedish, "&Vertical labels", "&Vertikala etiketter"), this);
    chkInPercent->setObjectName(QStringLiteral("chkInPercent"));
    chk3DLook->setObjectName(QStringLiteral("chk3DLook"));
    chkHorizontalBars->setObjectName(QStringLiteral("chkHorizontalBars"));
    chkVerticalLabels->setObjectName(QStringLiteral("chkVerticalLabels"));
    chkInPercent->setChecked(settings.distributionGraphInPercent);
    chk3DLook->setChecked(settings.distributionGraphIn3D);
    chkHorizontalBars->setChecked(settings.distributionGraphHasHorizontalBars);
    chkVerticalLabels->setChecked(settings.distributionGraphHasVerticalLabels);
    auto *boxes = new QVBoxLayout;
    for (QCheckBox *box : {chkInPercent, chk3DLook, chkHorizontalBars, chkVerticalLabels})
        boxes->addWidget(box);
    layout->addLayout(boxes, 5, 1);

    const OkCancelRow buttons = makeOkCancelRow(*this, isSwedish);
    cmdOK = buttons.ok;
    cmdCancel = buttons.cancel;
    layout->addLayout(buttons.layout, 7, 0, 1, 2);
    for (QRadioButton *option : optGraphType)
        connect(option, &QRadioButton::toggled, this, &DistributionDialog::updateControls);
    connect(lstMainCategory, &QListWidget::itemSelectionChanged, this, &DistributionDialog::mainCategoryChosen);
    connect(lstGroupByCategory, &QListWidget::itemSelectionChanged, this, &DistributionDialog::updateControls);
    updateControls();
}

void DistributionDialog::setCategories(const Document &doc)
{
    lstMainCategory->clear();
    mHeadings.clear();
    for (std::size_t c = 0; c < doc.categories.size(); ++c) {
        const QString heading = doc.questions[std::size_t(doc.categories[c])].heading;
        mHeadings << heading;
        auto *item = new QListWidgetItem(heading, lstMainCategory);
        item->setData(CategoryRole, qint32(c));
    }
    updateControls();
}

void DistributionDialog::mainCategoryChosen()
{
    const qint32 main = chosenCategory(lstMainCategory);
    lstGroupByCategory->clear();
    for (qint32 c = 0; c < qint32(mHeadings.size()); ++c) {
        if (c == main)
            continue;
        auto *item = new QListWidgetItem(mHeadings.at(c), lstGroupByCategory);
        item->setData(CategoryRole, c);
    }
    updateControls();
}

qint32 DistributionDialog::graphType() const
{
    for (int i = 0; i < 3; ++i)
        if (optGraphType[std::size_t(i)]->isChecked())
            return i;
    return 1;
}

void DistributionDialog::updateControls()
{
    const bool chosen = chosenCategory(lstMainCategory) >= 0;
    for (QRadioButton *option : optGraphType)
        option->setEnabled(chosen);
    const qint32 type = graphType();
    const bool grouped = chosen && type == 2;
    lstGroupByCategory->setEnabled(grouped);
    // A disabled group list is greyed all over, not only its texts.
    QPalette palette = lstGroupByCategory->palette();
    palette.setColor(QPalette::Base, grouped ? QPalette().color(QPalette::Base) : QPalette().color(QPalette::Window));
    lstGroupByCategory->setPalette(palette);
    chkHorizontalBars->setEnabled(type != 0);
    cmdOK->setEnabled(chosen && (!grouped || chosenCategory(lstGroupByCategory) >= 0));
}

DistributionGraphRequest DistributionDialog::request() const
{
    DistributionGraphRequest r;
    r.mainCategory = chosenCategory(lstMainCategory);
    r.type = DistributionGraphType(graphType());
    r.groupByCategory = r.type == DistributionGraphType::GroupedBar ? chosenCategory(lstGroupByCategory) : -1;
    r.inPercent = chkInPercent->isChecked();
    r.threeD = chk3DLook->isChecked();
    r.horizontalBars = chkHorizontalBars->isChecked() && r.type != DistributionGraphType::Pie;
    r.verticalLabels = chkVerticalLabels->isChecked();
    return r;
}

void DistributionDialog::storeSettings(LastSettings &settings) const
{
    settings.distributionGraphInPercent = chkInPercent->isChecked();
    settings.distributionGraphIn3D = chk3DLook->isChecked();
    settings.distributionGraphHasHorizontalBars = chkHorizontalBars->isChecked();
    settings.distributionGraphHasVerticalLabels = chkVerticalLabels->isChecked();
}

} // namespace kel
