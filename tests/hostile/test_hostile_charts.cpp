// SPDX-License-Identifier: GPL-3.0-or-later
// Chart texts of hostile length: Qt Charts shortens a label that does not
// fit by trying ever shorter copies, which ran out of memory on a label of
// 200,000 characters. The chart builder cuts every text first.
#include "limitedchild.h"

#include "gui/graphs/chartbuilder.h"

#include <QApplication>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QGraphicsItem>
#include <QPieSeries>
#include <QPieSlice>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::test;

namespace {

ChartDescription bars(const QString &label)
{
    ChartDescription d;
    d.chartType = ChartType::Bar;
    d.title = label;
    d.legendPosition = 6;
    d.series = {{label, -1, {{label, 2, label}, {QStringLiteral("short"), 3, QString()}}}};
    d.indexLines = {{2.5, label}};
    return d;
}

} // namespace

TEST(HostileCharts, TextsAreCutToAThousandCharactersBeforeQtChartsSeesThem)
{
    const QChar ellipsis(0x2026);
    const struct {
        const char *name;
        QString label;
        QString shown;
    } cases[] = {
        {"a thousand characters stay whole", QString(1000, QLatin1Char('w')), QString(1000, QLatin1Char('w'))},
        {"one more is cut", QString(1001, QLatin1Char('w')), QString(999, QLatin1Char('w')) + ellipsis},
        {"200,000 characters", QString(200000, QLatin1Char('w')), QString(999, QLatin1Char('w')) + ellipsis},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const int status = runLimited(2048 * MiB, 60, [&] {
            int argc = 1;
            char name[] = "hostile_gui_tests";
            char *argv[] = {name, nullptr};
            QApplication app(argc, argv);
            QChart *chart = buildChart(bars(c.label));
            QChartView view(chart); // takes the chart over
            view.resize(800, 600);
            view.show();
            app.processEvents();
            auto *series = qobject_cast<QBarSeries *>(chart->series().value(0));
            auto *axis = qobject_cast<QBarCategoryAxis *>(chart->axes(Qt::Horizontal).value(0));
            if (!series || !axis)
                return 2;
            // The category label the chart draws is shortened further to
            // the room it has; its tooltip holds the text as cut.
            QString categoryTip;
            for (QGraphicsItem *item : chart->childItems())
                if (item->data(ChartTextRole).toString() == QLatin1String("categoryLabel") && categoryTip.isEmpty())
                    categoryTip = item->toolTip();
            if (chart->title() != c.shown || series->barSets().value(0)->label() != c.shown
                || axis->categories().value(0).size() > c.shown.size() || categoryTip != c.shown
                || chart->series().value(1)->name() != c.shown)
                return 3;

            ChartDescription pie = bars(c.label);
            pie.chartType = ChartType::Pie;
            QChart *pieChart = buildChart(pie);
            QChartView pieView(pieChart);
            pieView.resize(800, 600);
            pieView.show();
            app.processEvents();
            auto *slices = qobject_cast<QPieSeries *>(pieChart->series().value(0));
            return slices && slices->slices().value(0)->label() == c.shown ? 0 : 4;
        });
        EXPECT_EQ(status, 0) << "128 + 14: past the deadline; 128 + 6: aborted; 3, 4: a text not cut";
    }
}
