// SPDX-License-Identifier: GPL-3.0-or-later
// The text of the main window's first status panel. Every subsystem reports
// progress and results here; a result text may clear itself after a while so
// that a stale "done" never reads as the state of a later action.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace kel {

class StatusLine : public QObject
{
    Q_OBJECT
public:
    static constexpr int DefaultClearInterval = 7000; ///< ms

    explicit StatusLine(bool isSwedish, int clearIntervalMs = DefaultClearInterval, QObject *parent = nullptr);

    /// Shows `swedish` when the interface is Swedish, else `english`. Any
    /// pending clearing is cancelled first; with `autoClear` a new one starts,
    /// so the text stays for the full interval from this call.
    void setStatus(const QString &english, const QString &swedish, bool autoClear);
    /// UTF-8 literal convenience for the common case.
    void setStatus(const char *english, const char *swedish, bool autoClear);
    /// Empties the line and cancels a pending clearing.
    void clearStatus();

    QString text() const { return mText; }
    bool isSwedish() const { return mIsSwedish; }
    /// True while an auto-clear is counting down.
    bool isClearPending() const { return mClearTimer.isActive(); }
    int clearInterval() const { return mClearTimer.interval(); }
    /// Milliseconds until the pending clearing; -1 when none is pending.
    int clearRemainingTime() const { return mClearTimer.remainingTime(); }

signals:
    void textChanged(const QString &text);

private:
    void show(const QString &text);

    bool mIsSwedish;
    QString mText;
    QTimer mClearTimer; // tmrClearStatus
};

} // namespace kel
