// SPDX-License-Identifier: GPL-3.0-or-later
// kel reads a document and may write a picture; it must never write over the
// document it reads, however the two paths are spelled (relative, through a
// symbolic link, a second hard link).
#include "commands.h"

#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace kel::cli {

namespace {

bool sameFile(const QString &a, const QString &b)
{
    const QFileInfo fa(a), fb(b);
    if (!fa.exists() || !fb.exists())
        return false; // an output that does not exist yet is no document
    if (fa.canonicalFilePath() == fb.canonicalFilePath())
        return true;
#ifdef Q_OS_UNIX
    struct stat sa {
    }, sb{};
    if (::stat(QFile::encodeName(a).constData(), &sa) == 0 && ::stat(QFile::encodeName(b).constData(), &sb) == 0)
        return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
#endif
    return false;
}

} // namespace

QString outputOverwritesDocument(const QString &documentPath, const QStringList &args)
{
    for (qsizetype i = 0; i + 1 < args.size(); ++i)
        if (args[i] == QLatin1String("-o") && sameFile(args[i + 1], documentPath))
            return QStringLiteral("the output '%1' is the document being read; it is never written over\n")
                .arg(args[i + 1]);
    return QString();
}

} // namespace kel::cli
