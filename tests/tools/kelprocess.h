// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

namespace kel::test {

struct KelRun {
    int exitCode = -1; ///< -1 when the tool crashed or hung
    QByteArray out, err;
};

/// The words of `line`, split at blanks (no quoting).
inline QStringList words(const char *line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// `command FILE` followed by the words of `rest`.
inline QStringList kelArgs(const char *command, const QString &file, const char *rest = "")
{
    return QStringList{QString::fromUtf8(command), file} + words(rest);
}

/// Runs kel with `args`, feeding `input` to its standard input, in an
/// environment without locale variables (numbers in C unless `locale`
/// sets some: "LANG=sv_SE.UTF-8", ...).
inline KelRun runKel(const QStringList &args, const QByteArray &input = QByteArray(),
                     const QStringList &locale = QStringList())
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
        env.remove(QString::fromLatin1(variable));
    for (const QString &setting : locale)
        env.insert(setting.section(u'=', 0, 0), setting.section(u'=', 1));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(KEL_TOOL), args);
    p.write(input), p.closeWriteChannel(), p.waitForFinished(60000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}

/// The value at a dotted path of names and array positions: "groups.0.label".
inline QJsonValue jsonAt(QJsonValue v, const char *path)
{
    for (const QString &step : QString::fromLatin1(path).split(u'.')) {
        bool isIndex = false;
        const int i = step.toInt(&isIndex);
        v = isIndex ? v.toArray().at(i) : v.toObject().value(step);
    }
    return v;
}

/// Each path of `o` holds the value written as text (numbers as JSON writes them).
inline void expectJson(const QJsonObject &o, std::initializer_list<std::pair<const char *, const char *>> expected)
{
    for (const auto &[path, value] : expected)
        EXPECT_EQ(jsonAt(o, path).toVariant().toString(), QString::fromUtf8(value)) << path;
}

inline QJsonObject jsonOf(const KelRun &run)
{
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    return QJsonDocument::fromJson(run.out).object();
}

} // namespace kel::test
