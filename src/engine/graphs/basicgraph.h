// SPDX-License-Identifier: GPL-3.0-or-later
// Question and block graph data: how the selection's respondents spread their
// answers over the alternatives, per question or per group of a split
// question. The result is a self-contained description that the graph
// window copies and the basic graph renderer draws; nothing here draws.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/document/document.h"
#include "engine/document/outcome.h"
#include "engine/selection/flextotal.h"

#include <QLocale>
#include <QString>

#include <vector>

namespace kel {

enum BasicGraphKind : qint32 { HistogramGraph = 1, FractionGraph = 2 };

struct BasicGraphGroup {
    qint32 firstBar = 0; ///< index of the group's first entry in `bars`
    qint32 barCount = 0; ///< = legendCount
    QString label;
    qint32 firstLegend = 0; ///< first legend of the group's answer scale
    qint32 legendCount = 0; ///< shown alternatives of that scale
};

struct BasicGraphBar {
    qint32 count = 0;
    qint32 perMille = 0;  ///< count x 1000 / the group's answered count, halves to even
    QString countText;    ///< empty when the group has no answers
    QString percentText;  ///< empty when the group has no answers
    qint32 colour = -1;   ///< 0x00BBGGRR; -1 = none
    qint32 drawFlags = 0; ///< bit 0: black outline; bit 1: not in ranking graphs
};

struct BasicGraphLegend {
    QString text;
    qint32 colour = -1;
    qint32 drawFlags = 0;
};

/// What one question or block graph shows. Texts drawn inside the graph are
/// in the document's language.
struct BasicGraphDescription {
    qint32 graphKind = HistogramGraph;
    qint32 valueScale = 1000; ///< denominator of every bar's perMille
    QString title;
    QString subTitle;
    QString selectionText;
    QString totalText;
    std::vector<BasicGraphGroup> groups;   ///< in drawing order
    std::vector<BasicGraphBar> bars;       ///< group after group
    std::vector<BasicGraphLegend> legends; ///< one run per answer scale
    QString caption;                       ///< the window caption: kind prefix + name
    // Axis captions of the histogram, in the document's language.
    QString countAxisText;
    QString percentAxisText;
};

/// What the caller asks for.
struct BasicGraphRequest {
    std::vector<qint32> questions; ///< in order; a split graph uses the first only
    qint32 splitQuestion = -1;     ///< -1 = no split
    QString name;                  ///< becomes the title and the end of the caption
    qint32 block = -1;             ///< -1 = a question graph
    bool showTotalIndex = false;   ///< the selection differs from the used total
    qint32 kind = HistogramGraph;
};

/// The selection the graph is computed for, as the overview holds it.
struct BasicGraphSelection {
    const std::vector<qint32> *rows = nullptr; ///< the overview's rows
    /// The overview's split-by permission per navigator category (true =
    /// not allowed); decides splits by a category question.
    const std::vector<bool> *splitNotAllowed = nullptr;
    QString selectionText;
    QString usedTotalText; ///< the flex total's text
    qint32 usedTotalSize = 0;
    bool valueOrderReversed = false; ///< "Graph Value Order Reversed"
    bool shortCategoryNames = false; ///< "Graph By Category Use Short Category Names"
    QLocale locale = QLocale::c();   ///< numbers in graph texts
};

struct SubSheet;

/// The graph selection of the overview `sheet` beside the flex total `flex`
/// (both must outlive it); the caller adds the user's graph options.
BasicGraphSelection graphSelectionOf(const SubSheet &sheet, const FlexTotal &flex);

/// The description, or why there is none (NoSuchGraph, SplitNotAllowed).
using BasicGraphResult = Outcome<BasicGraphDescription>;

/// `catalogue` holds the request's block, `flex` the totals it is compared with.
BasicGraphResult generateBasicGraph(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                                    const BasicGraphRequest &request, const BasicGraphSelection &selection);

/// Whether `rows` may be split by `question`: no alternative that counts for
/// privacy is chosen by more than 0 and fewer than the minimum graph selection
/// of these rows. Category questions are decided by the overview's split-by
/// permission instead (it counts across the other categories).
bool splitAllowed(const Document &doc, qint32 question, const std::vector<qint32> &rows);

/// The split gate: a navigator category follows the overview's split-by
/// permission in `selection`; any other question is tested with splitAllowed.
bool splitPermitted(const Document &doc, qint32 question, const BasicGraphSelection &selection);

/// Split graph name: heading + " split by " / " fördelad på " + split heading.
QString splitGraphName(const Document &doc, qint32 question, qint32 splitQuestion);

/// count x scale / total rounded to the nearest integer, halves to even; 0
/// when total is 0.
qint32 roundedShare(qint64 count, qint64 scale, qint64 total);

/// Distinct (firstLegend, legendCount) pairs in group order, and for every
/// group the number of its run.
struct LegendRuns {
    std::vector<std::pair<qint32, qint32>> runs;
    std::vector<qint32> groupRun;
};
LegendRuns legendRuns(const BasicGraphDescription &description);

/// The graph's values as text for the clipboard: the labels, then one line
/// per bar position (percent texts or counts); TAB between cells, CR LF
/// between lines, nothing after the last.
QString basicGraphValuesText(const BasicGraphDescription &description, bool percentage);
/// The title, one column per legend run, then the selection text.
QString basicGraphLegendsText(const BasicGraphDescription &description);

} // namespace kel
