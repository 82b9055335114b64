// SPDX-License-Identifier: GPL-3.0-or-later
// The chart window (frmGraph): one ranking, distribution or index chart,
// its popup menu, and the picture that copy, save and print draw.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "render/pictures/picture.h"

#include <QWidget>

class QAction;
class QMenu;

QT_BEGIN_NAMESPACE
class QChart;
class QChartView;
QT_END_NAMESPACE

namespace kel {

class ChartWindow : public QWidget
{
    Q_OBJECT
public:
    explicit ChartWindow(bool isSwedish, QWidget *parent = nullptr);

    /// Shows `chart` (replacing any earlier one); the caption is its caption.
    void setUpChart(const ChartDescription &chart);
    const ChartDescription &description() const { return mDescription; }
    QChart *chart() const;
    QChartView *chartView() const { return mView; }

    /// The chart as it is drawn now, at the window's chart size.
    Picture picture() const;

    QMenu *popupMenu() const { return mPopup; }
    QAction *mnuPCopy = nullptr;
    QAction *mnuPPrint = nullptr;
    QAction *mnuPSave = nullptr;
    QAction *mnuPClose = nullptr;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ChartDescription mDescription;
    QChartView *mView;
    QMenu *mPopup;
};

} // namespace kel
