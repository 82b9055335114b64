// SPDX-License-Identifier: GPL-3.0-or-later
// What a chart window shows, apart from any chart library: the generators of
// ranking, distribution and index graphs fill one of these, and the chart
// view (or `kel graph`) turns it into pixels or JSON. Keeping the chart
// library out of here lets the view move to another library later.
#pragma once

#include "engine/document/document.h"
#include "engine/document/documentlanguage.h"
#include "engine/indexes/columnindex.h"
#include "engine/selection/counting.h"

#include <QLocale>
#include <QString>

#include <optional>
#include <vector>

namespace kel {

enum class ChartType { Bar, Pie };

struct ChartPoint {
    QString label;     ///< category label (or pie slice label)
    double value = 0;  ///< the number drawn; 0 for a missing index
    QString dataLabel; ///< text written on the bar; empty when none
};

struct ChartSeries {
    QString name;       ///< legend text
    qint32 colour = -1; ///< 0x00BBGGRR fill of every point; -1 = the chart's own palette
    std::vector<ChartPoint> points;
};

struct ChartIndexLine {
    double value = 0;
    QString text;
};

/// A fixed value-axis scale; without one the chart scales itself.
struct ChartValueAxis {
    double min = 0;
    double max = 0;
    qint32 ticks = 0; ///< number of tick intervals; 0 = the chart chooses
};

struct ChartDescription {
    ChartType chartType = ChartType::Bar;
    QString title;
    QString caption; ///< the window caption
    QString selectionCaption;
    /// Axis titles as drawn: already swapped for horizontal bars.
    QString valueAxisTitle;
    QString categoryAxisTitle;
    bool threeD = false;
    bool horizontal = false;
    bool verticalLabels = false; ///< only ever set with vertical bars
    bool dataLabels = false;
    std::optional<qint32> legendPosition; ///< the "Graph Legends" code; none = no legend
    std::optional<ChartValueAxis> valueAxis;
    std::vector<ChartSeries> series;
    std::vector<ChartIndexLine> indexLines;
};

/// What every chart generator needs from the selection Show applied.
struct ChartContext {
    const RowList *rows = nullptr; ///< the selection's rows
    QString selectionText;
    QLocale locale = QLocale::c();  ///< number format of texts inside the chart
    bool shortCategoryNames = true; ///< "Graph By Category Use Short Category Names"
    qint32 graphLegends = 6;        ///< "Graph Legends"
};

/// Titles longer than 80 characters keep their first 77, right-trimmed, and "...".
QString shortenChartTitle(const QString &title);
/// Selection text + " [n]"; beyond 80 characters the text is cut so that
/// "..." and the count still fit.
QString chartSelectionCaption(const QString &selectionText, qint32 rows, const QLocale &locale);
/// The legend code charts use: -1 stands for 6 (below the chart).
qint32 chartLegendPosition(qint32 graphLegends);
/// Whole numbers in chart texts.
QString chartWholeNumber(qint64 value, const QLocale &locale);
/// Texts inside charts follow the document's language.
QString pickDocumentText(const Document &doc, const char *english, const char *swedish);
/// The alternative's name in a chart: short or full text by the setting.
QString chartAlternativeName(const Alternative &alternative, bool shortNames);

} // namespace kel
