// SPDX-License-Identifier: GPL-3.0-or-later
// Every command that opens a chart window: ranking graphs, the distribution
// graph and the index graphs, from the overview's popup menu and the View
// menu, with their dialogs and status texts. The windows come from the main
// window's pool of chart windows and are shown by a short one-shot timer
// once their chart is set up.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "gui/graphs/chartwindow.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class QDialog;

namespace kel {

class MainWindow;

class ChartCommands : public QObject
{
    Q_OBJECT
public:
    /// Connects the chart items of `window`'s menus; lives as its child.
    explicit ChartCommands(MainWindow &window);

    /// Total index graph (View menu and overview popup).
    void totalIndexGraph();
    /// Index graph of `block` (View menu item, overview popup).
    void blockIndexGraph(qint32 block);
    /// Ranking graph of `questions` titled `titleText`; `isBlock` picks
    /// the block or the question status texts.
    void rankingGraph(const QuestionList &questions, const QString &titleText, bool sorted, bool isBlock);
    /// Ranking graph of block `block` from the View menu: its questions, sorted.
    void viewBlockRankingGraph(qint32 block);
    void distributionGraph();

    /// Takes a chart window from the pool, sets `chart` up in it and starts
    /// the timer that shows it.
    ChartWindow *showChart(const ChartDescription &chart);

    /// tmrAutoShowForm: 300 ms, one-shot; shows the window set up last.
    const QTimer &autoShowTimer() const { return mAutoShow; }
    ChartWindow *pendingWindow() const { return mPending; }

    /// Runs a launch dialog; exec() unless a test replaces it.
    std::function<int(QDialog &dialog)> runDialog;

private:
    ChartContext context() const;
    bool canGraph() const;
    /// The block of the column the popup was opened on.
    qint32 popupBlock() const;
    /// The overview's columns that belong to `block`, in overview order.
    QuestionList overviewColumnsOf(qint32 block) const;
    void showAutoShowWindow();

    MainWindow &mWindow;
    QTimer mAutoShow; // tmrAutoShowForm
    QPointer<ChartWindow> mPending;
};

} // namespace kel
