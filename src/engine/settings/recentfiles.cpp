// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/settings/recentfiles.h"

#include <algorithm>

namespace kel {

QStringList recordRecentFile(const QStringList &list, const QString &path)
{
    if (path.isEmpty())
        return list.mid(0, MaxRecentFiles);
    QStringList result = list.mid(0, MaxRecentFiles);
    qsizetype found = -1;
    for (qsizetype i = 0; i < result.size(); ++i) {
        if (result.at(i).compare(path, Qt::CaseInsensitive) == 0) {
            found = i;
            break;
        }
    }
    if (found >= 0)
        result.removeAt(found);
    else if (result.size() == MaxRecentFiles)
        result.removeLast();
    result.prepend(path);
    return result;
}

QString doubleAmpersands(const QString &text)
{
    QString result = text;
    result.replace(QLatin1Char('&'), QLatin1String("&&"));
    return result;
}

PathParts splitDocumentPath(const QString &path)
{
    const qsizetype cut = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    if (cut < 0)
        return {QString(), path};
    if (cut == 0 && path.startsWith(QLatin1Char('/')))
        return {QStringLiteral("/"), path.mid(1)}; // a file in the root folder
    return {path.left(cut), path.mid(cut + 1)};
}

QString fileDisplayTitle(const QString &fileName)
{
    return fileName;
}

QString recentFileCaption(int index, const QString &displayText)
{
    return QStringLiteral("&%1 ").arg(index + 1) + doubleAmpersands(displayText);
}

} // namespace kel
