// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/statusline.h"

namespace kel {

StatusLine::StatusLine(bool isSwedish, int clearIntervalMs, QObject *parent) : QObject(parent), mIsSwedish(isSwedish)
{
    mClearTimer.setSingleShot(true);
    // A coarse timer may round a long interval; the restart rule needs the
    // full interval from each call.
    mClearTimer.setTimerType(Qt::PreciseTimer);
    mClearTimer.setInterval(clearIntervalMs);
    connect(&mClearTimer, &QTimer::timeout, this, &StatusLine::clearStatus);
}

void StatusLine::setStatus(const QString &english, const QString &swedish, bool autoClear)
{
    mClearTimer.stop();
    show(mIsSwedish ? swedish : english);
    if (autoClear)
        mClearTimer.start();
}

void StatusLine::setStatus(const char *english, const char *swedish, bool autoClear)
{
    setStatus(QString::fromUtf8(english), QString::fromUtf8(swedish), autoClear);
}

void StatusLine::clearStatus()
{
    mClearTimer.stop();
    show(QString());
}

void StatusLine::show(const QString &text)
{
    mText = text;
    emit textChanged(mText);
}

} // namespace kel
