// SPDX-License-Identifier: GPL-3.0-or-later
// Every command that opens a graph window: question and block graphs
// (basic graph windows) and the ranking, distribution and index graphs
// (chart windows), from the overview's popup menu and the View menu. Each
// takes the shown rows and the popup place from the session, runs with the
// hourglass and reports through the status line. Windows come from the
// session's pools; chart windows are shown by a short one-shot timer once
// their chart is set up.
#pragma once

#include "engine/graphs/basicgraph.h"
#include "engine/graphs/chartdescription.h"
#include "gui/common/commandcontext.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/chartwindow.h"
#include "texts/graphtexts.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class QDialog;

namespace kel {

class GraphCommands : public QObject
{
    Q_OBJECT
public:
    GraphCommands(const CommandContext &context, QObject *parent);

    // --- Basic graphs (basicgraphcommands.cpp) ---
    /// The selection of the shown overview, as graphs are computed from it.
    BasicGraphSelection currentGraphSelection() const;
    /// Computes the graph, takes a window from the pool, titles it, hands it
    /// the description and shows it. Returns the window, or nullptr when the
    /// generation failed (nothing is shown then).
    BasicGraphWindow *openBasicGraph(const BasicGraphRequest &request);
    void popupBlockGraph(qint32 kind);
    void questionGraph(qint32 kind);
    void splitGraphByDialog(qint32 kind);
    void splitGraphByCategory(qint32 kind, int category);
    void viewBlockGraph(qint32 kind, int block);

    // --- Charts (chartcommands.cpp) ---
    /// Total index graph (View menu and overview popup).
    void totalIndexGraph();
    /// Index graph of `block` (View menu item, overview popup).
    void blockIndexGraph(qint32 block);
    void popupBlockIndexGraph();
    /// Ranking graph of `questions` titled `titleText`; `isBlock` picks
    /// the block or the question status texts.
    void rankingGraph(const QuestionList &questions, const QString &titleText, bool sorted, bool isBlock);
    void popupBlockRankingGraph(bool sorted);
    void popupQuestionRankingGraph(bool sorted);
    /// Ranking graph of block `block` from the View menu: its questions, sorted.
    void viewBlockRankingGraph(qint32 block);
    void distributionGraph();

    /// Takes a chart window from the pool, sets `chart` up in it and starts
    /// the timer that shows it.
    ChartWindow *showChart(const ChartDescription &chart);

    /// tmrAutoShowForm: 300 ms, one-shot; shows the window set up last.
    const QTimer &autoShowTimer() const { return mAutoShow; }
    ChartWindow *pendingWindow() const { return mPending; }

    /// Runs a chart's launch dialog; exec() unless a test replaces it.
    std::function<int(QDialog &dialog)> runDialog;

private:
    /// The index graph of `block`, or the total index graph for -1.
    void indexGraph(qint32 block);
    void runBasicGraph(BasicGraphCommand command, const BasicGraphRequest &request);
    void setStatus(const TextPair &text, bool autoClear);
    ChartContext chartContext() const;
    static GraphPermissions permissionsFor(const Document &doc);
    GraphPictureContext pictureContextFor(const Document &doc) const;
    /// A graph needs a document, an overview on screen and the engine's leave.
    bool canGraph() const;
    /// The overview's columns that belong to `block`, in overview order.
    QuestionList overviewColumnsOf(qint32 block) const;
    void showAutoShowWindow();

    CommandContext mContext;
    QTimer mAutoShow; // tmrAutoShowForm
    QPointer<ChartWindow> mPending;
};

} // namespace kel
