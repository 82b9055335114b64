// SPDX-License-Identifier: GPL-3.0-or-later
// The session's three tables of ten pooled windows (mini-overviews,
// basic graphs, charts). Every producer of such a window asks the pool for
// one instead of creating its own, so at most ten of each kind exist and the
// oldest is reused once all are taken.
#pragma once

#include <QDateTime>
#include <QPointer>
#include <QWidget>

#include <array>
#include <functional>

namespace kel {

/// One slot of a window table: the window, whether it has been handed out,
/// and when it was last handed out (the oldest is reused first).
struct WindowSlot {
    QPointer<QWidget> window;
    bool inUse = false;
    QDateTime lastHandedOut;
};
inline constexpr int WindowSlotCount = 10;
using WindowSlotTable = std::array<WindowSlot, WindowSlotCount>;
enum class SlotTable { MiniOverviews, BasicGraphs, ChartGraphs };

/// Which slot the next window comes from: the first slot never handed out
/// (or whose window was destroyed), else the first whose window is hidden,
/// else the one handed out longest ago (the lower slot on equal times).
int choosePoolSlot(const WindowSlotTable &table);

/// Hands out a window of `table`: a new one from `create` for a fresh slot,
/// otherwise the slot's window, set to normal size when it was minimised or
/// maximised and hidden when it was visible. The slot is stamped with the
/// current UTC time. The caller fills the window and shows it.
QWidget *takePooledWindow(WindowSlotTable &table, const std::function<QWidget *()> &create);

/// Closes every window of `table` and forgets them (document closed).
void closePooledWindows(WindowSlotTable &table);

} // namespace kel
