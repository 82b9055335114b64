// SPDX-License-Identifier: GPL-3.0-or-later
// The benchmarks' one reading of a process's peak memory.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace kel::bench {

/// This process's peak resident size in KB, -1 where /proc cannot tell.
/// VmHWM rather than getrusage: ru_maxrss survives exec on Linux, so a child
/// started by a large process would report the parent's peak.
inline long peakKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    return -1;
}

} // namespace kel::bench
