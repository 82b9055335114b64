// SPDX-License-Identifier: GPL-3.0-or-later
// The distribution graph's launch dialog (frmDistributionGraphLaunch): which
// category, as what kind of chart, and its look.
#pragma once

#include "engine/graphs/distributiongraph.h"
#include "engine/settings/settingsstore.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace kel {

class DistributionDialog : public QDialog
{
    Q_OBJECT
public:
    DistributionDialog(const LastSettings &settings, bool isSwedish, QWidget *parent = nullptr);

    /// Fills the category list with the navigator categories' headings, each
    /// carrying its category number.
    void setCategories(const Document &doc);

    /// After OK: the chosen graph.
    DistributionGraphRequest request() const;
    /// After OK: the four look settings.
    void storeSettings(LastSettings &settings) const;

    QLabel *lblMainCategoryLabel = nullptr;
    QListWidget *lstMainCategory = nullptr;
    QLabel *lblAsLabel = nullptr;
    std::array<QRadioButton *, 3> optGraphType{};
    QListWidget *lstGroupByCategory = nullptr;
    QCheckBox *chkInPercent = nullptr;
    QCheckBox *chk3DLook = nullptr;
    QCheckBox *chkHorizontalBars = nullptr;
    QCheckBox *chkVerticalLabels = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    void mainCategoryChosen();
    void updateControls();
    qint32 graphType() const;

    QStringList mHeadings; // by category number
};

} // namespace kel
