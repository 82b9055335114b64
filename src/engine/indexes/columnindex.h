// SPDX-License-Identifier: GPL-3.0-or-later
// The index of a set of questions over a set of rows: the mean points of all
// their answers pooled together (not the mean of per-question means),
// divided by the document's points scale. -1 means "no value".
#pragma once

#include "engine/document/document.h"

#include <QLocale>
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

/// "-" for exactly -1.0, else the value with `decimals` decimals in `locale`.
QString formatIndex(double value, qint32 decimals, const QLocale &locale);

} // namespace kel
