// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QStringList>

namespace kel::test {

struct KelRun {
    int exitCode = -1; ///< -1 when the tool crashed or hung
    QByteArray out, err;
};

/// The words of `line`, split at blanks: a command line without quoting.
inline QStringList words(const char *line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// `command FILE` followed by the words of `rest`.
inline QStringList kelArgs(const char *command, const QString &file, const char *rest = "")
{
    return QStringList{QString::fromUtf8(command), file} + words(rest);
}

/// Runs kel with `args`, feeding `input` to its standard input.
inline KelRun runKel(const QStringList &args, const QByteArray &input = QByteArray())
{
    QProcess p;
    p.start(QStringLiteral(KEL_TOOL), args);
    p.write(input), p.closeWriteChannel(), p.waitForFinished(60000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}

} // namespace kel::test
