// SPDX-License-Identifier: GPL-3.0-or-later
// Ranking graphs: every answer adds its question's ranking weight to the
// chosen alternative, and the alternatives are shown by their points.
#pragma once

#include "engine/graphs/chartdescription.h"

namespace kel {

struct RankingGraphRequest {
    QuestionList questions; ///< the scale is the first question's
    bool barChart = true;   ///< false: a pie
    bool sorted = true;
    bool showPoints = true;
    bool threeD = false;
    QString titleText; ///< block name or question heading
};

/// Points per alternative of the first question's scale.
std::vector<qint64> rankingPoints(const Document &doc, const QuestionList &questions, const RowList &rows);

/// "Points (3 questions weighted 3, 2 and 1)" in the document's language.
QString rankingPointsCaption(const Document &doc, const QuestionList &questions, const QLocale &locale);

/// Empty series when `questions` holds no valid question.
ChartDescription generateRankingGraph(const Document &doc, const ChartContext &context,
                                      const RankingGraphRequest &request);

/// The fill of every ranking bar.
inline constexpr qint32 RankingBarColour = 0x00B47828; // 0x00BBGGRR: a mid blue

} // namespace kel
