// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/chartdescription.h"

namespace kel {

namespace {

QString rightTrimmed(QString text)
{
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1).isSpace())
        --end;
    text.truncate(end);
    return text;
}

} // namespace

QString shortenChartTitle(const QString &title)
{
    if (title.size() <= 80)
        return title;
    return rightTrimmed(title.left(77)) + QStringLiteral("...");
}

QString chartSelectionCaption(const QString &selectionText, qint32 rows, const QLocale &locale)
{
    const QString count = QStringLiteral(" [") + chartWholeNumber(rows, locale) + QLatin1Char(']');
    const QString caption = selectionText + count;
    if (caption.size() <= 80)
        return caption;
    const qsizetype keep = qMax<qsizetype>(0, 77 - count.size());
    return rightTrimmed(selectionText.left(keep)) + QStringLiteral("...") + count;
}

qint32 chartLegendPosition(qint32 graphLegends)
{
    return graphLegends == -1 ? 6 : graphLegends;
}

QString chartWholeNumber(qint64 value, const QLocale &locale)
{
    return locale.toString(value);
}

QString pickDocumentText(const Document &doc, const char *english, const char *swedish)
{
    return QString::fromUtf8(documentIsSwedish(doc) ? swedish : english);
}

QString chartAlternativeName(const Alternative &alternative, bool shortNames)
{
    return shortNames ? alternative.shortText : alternative.text;
}

} // namespace kel
