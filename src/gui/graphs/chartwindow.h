// SPDX-License-Identifier: GPL-3.0-or-later
// The chart window (frmGraph): one ranking, distribution or index chart,
// its popup menu, and the picture that copy, save and print draw.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "gui/graphs/graphwindow.h"

class QAction;
class QMenu;

QT_BEGIN_NAMESPACE
class QChart;
class QChartView;
QT_END_NAMESPACE

namespace kel {

class StatusLine;

class ChartWindow : public GraphWindow
{
    Q_OBJECT
public:
    explicit ChartWindow(bool isSwedish, QWidget *parent = nullptr);

    /// Shows `chart` (replacing any earlier one); the caption is its caption.
    void setUpChart(const ChartDescription &chart);
    const ChartDescription &description() const { return mDescription; }
    QChart *chart() const;
    QChartView *chartView() const { return mView; }

    /// The chart at the window's chart size, drawn from its own copy of the
    /// description.
    Picture picture() const override;

    /// What copy, print and save need: the status line, the settings that
    /// shape and keep the picture, the document's permissions and language.
    /// Until given, those items stay disabled.
    void setPictureContext(StatusLine &status, const GraphPictureContext &context, const GraphPermissions &permissions);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    std::optional<qint32> copyFormat() const override;

private:
    ChartDescription mDescription;
    QChartView *mView;
};

} // namespace kel
