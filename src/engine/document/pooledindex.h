// SPDX-License-Identifier: GPL-3.0-or-later
// The pooled index of a set of questions over a set of rows: the mean points
// of all their answers pooled together (not the mean of per-question means),
// divided by the document's points scale. -1 means "no value". It lives with
// the document because reading one computes it: a file written before stored
// total indexes existed gets its total index from here.
#pragma once

#include "engine/document/document.h"

#include <QString>

#include <vector>

namespace kel {

using RowList = std::vector<qint32>;
using QuestionList = std::vector<qint32>;

/// Pooled index of `questions` over `rows`; -1.0 when no answer has points.
/// Must only be called for documents with pointsScale >= 1.
double calculateColumnsIndex(const Document &doc, const QuestionList &questions, const RowList &rows);

/// The diagnostic twin: same index, plus the points distribution as text
/// ("Value\tCount" then "\r\n<points>\t<count>" per occurring value).
/// `distribution` is left empty when no answer has points.
double calculateColumnsIndexSpec(const Document &doc, const QuestionList &questions, const RowList &rows,
                                 QString &distribution);

/// The questions among `columns` that count towards the total index.
QuestionList totalMembersAmong(const Document &doc, const std::vector<qint32> &columns);
/// The overview questions that count towards the total index.
QuestionList totalMembers(const Document &doc);

/// Every row number of the document, ascending.
RowList allRows(const Document &doc);

/// Documents older than revision 5 carry no total index: it is the pooled
/// index of the total's members over everyone, and the flex total starts as
/// it. Leaves other documents, and those without rows or members, alone.
void computeMissingTotalIndex(Document &doc);

} // namespace kel
