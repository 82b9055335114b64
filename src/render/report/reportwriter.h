// SPDX-License-Identifier: GPL-3.0-or-later
// A report's content laid out as a PDF (vector pictures, embedded fonts, a
// contents page, page numbers) or as one self-contained HTML file (inline
// SVG, HTML tables). The same report gives the same bytes every time.
#pragma once

#include "engine/document/writefailure.h"
#include "engine/report/reportcontent.h"
#include "render/pictures/picture.h"

#include <QByteArray>
#include <QImage>

#include <functional>
#include <optional>

namespace kel {

enum class ReportFormat { Pdf, Html };

/// The format a file name's extension asks for (.pdf, .html, .htm; any case).
std::optional<ReportFormat> reportFormatForFileName(const QString &fileName);

/// How charts become pictures. Charts are drawn by Qt Charts, which lives
/// with the windows; the caller hands its chart drawing in, so that every
/// picture in a report is the one the viewer draws.
using ChartPictureMaker = std::function<Picture(const ChartDescription &chart)>;

/// Called after each unit with the number written so far; false cancels.
using ReportProgress = std::function<bool(int unitsDone)>;

/// The report's bytes; empty when cancelled.
QByteArray reportPdf(const Report &report, const ChartPictureMaker &charts, const ReportProgress &progress = {});
QByteArray reportHtml(const Report &report, const ChartPictureMaker &charts, const ReportProgress &progress = {});

/// The pages of the report's first unit (at most `maxPages`), drawn as the
/// PDF draws them, for a preview at 96 dots per inch.
std::vector<QImage> reportPreviewPages(const Report &report, const ChartPictureMaker &charts, int maxPages);

enum class ReportWriteResult { Written, Cancelled, Failed };

/// Writes `path` in `format`. The bytes go to a temporary file beside it that
/// replaces `path` only once complete: a cancel or a failure leaves nothing
/// behind and any earlier file untouched. `failure` says why on Failed.
ReportWriteResult writeReport(const Report &report, ReportFormat format, const QString &path,
                              const ChartPictureMaker &charts, const ReportProgress &progress, WriteFailure *failure);

} // namespace kel
