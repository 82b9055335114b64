// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/document.h"

#include <QtEndian>

#include <algorithm>

namespace kel {

QString Document::guidText() const
{
    const quint8 *g = properties.fileGuid.data();
    const quint32 data1 = qFromLittleEndian<quint32>(g);
    const quint16 data2 = qFromLittleEndian<quint16>(g + 4);
    const quint16 data3 = qFromLittleEndian<quint16>(g + 6);
    QString s = QStringLiteral("{%1-%2-%3-")
                    .arg(data1, 8, 16, QLatin1Char('0'))
                    .arg(data2, 4, 16, QLatin1Char('0'))
                    .arg(data3, 4, 16, QLatin1Char('0'));
    for (int i = 8; i < 16; ++i) {
        if (i == 10)
            s += QLatin1Char('-');
        s += QStringLiteral("%1").arg(g[i], 2, 16, QLatin1Char('0'));
    }
    s += QLatin1Char('}');
    return s.toUpper();
}

void deriveQuestionLists(Document &doc)
{
    doc.categories.clear();
    doc.overviewColumns.clear();
    doc.flexCategory = -1;
    doc.maxCategoryAlternatives = 0;
    for (qint32 i = 0; i < qint32(doc.questions.size()); ++i) {
        const Question &q = doc.questions[std::size_t(i)];
        if (q.inOverview)
            doc.overviewColumns.push_back(i);
        if (q.isCategory) {
            doc.categories.push_back(i);
            doc.maxCategoryAlternatives = std::max(doc.maxCategoryAlternatives, q.alternativeCount);
        }
        if (q.isFlexCategory && doc.flexCategory < 0)
            doc.flexCategory = i;
    }
}

qint32 indexDecimalsFor(qint32 pointsScale)
{
    if (pointsScale <= 0)
        return 0;
    if (pointsScale < 10)
        return 0;
    if (pointsScale < 100)
        return 1;
    if (pointsScale < 1000)
        return 2;
    if (pointsScale < 10000)
        return 3;
    if (pointsScale < 100000)
        return 4;
    return 5;
}

QString languageCodeFor(const QString &language)
{
    // Only trailing blanks go: " x" keeps its leading blank.
    QString code = (language + QStringLiteral("  ")).left(2);
    while (code.endsWith(QLatin1Char(' ')))
        code.chop(1);
    return code.toLower();
}

} // namespace kel
