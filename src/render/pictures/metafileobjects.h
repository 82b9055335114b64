// SPDX-License-Identifier: GPL-3.0-or-later
// The object table both metafile encoders keep: pens, brushes and fonts are
// created once per look and selected again when used again, so a sheet of
// thousands of cells in a handful of colours holds a handful of objects.
#pragma once

#include <QRect>

#include <algorithm>
#include <optional>
#include <vector>

namespace kel::metafile {

/// Slots of the player's object table; a new object takes the lowest free
/// one, as the players assign them.
class ObjectSlots
{
public:
    explicit ObjectSlots(int first) : mFirst(first) { }
    int take()
    {
        auto free = std::find(mUsed.begin(), mUsed.end(), false);
        if (free == mUsed.end()) {
            mUsed.push_back(true);
            return mFirst + int(mUsed.size()) - 1;
        }
        *free = true;
        return mFirst + int(free - mUsed.begin());
    }
    void release(int slot) { mUsed[std::size_t(slot - mFirst)] = false; }
    /// The size of the table the player must allocate.
    int tableSize() const { return mFirst + int(mUsed.size()); }

private:
    int mFirst;
    std::vector<bool> mUsed;
};

/// Objects of one kind by look, least recently used first.
template<class Look>
class ObjectCache
{
public:
    static constexpr std::size_t Limit = 48;
    std::optional<int> find(const Look &look)
    {
        for (std::size_t i = 0; i < mEntries.size(); ++i)
            if (mEntries[i].look == look) {
                const Entry e = mEntries[i];
                mEntries.erase(mEntries.begin() + std::ptrdiff_t(i));
                mEntries.push_back(e);
                return e.slot;
            }
        return std::nullopt;
    }
    void add(const Look &look, int slot) { mEntries.push_back({look, slot}); }
    bool isFull() const { return mEntries.size() >= Limit; }
    /// Removes and returns the least recently used object other than `keep`.
    int evict(int keep)
    {
        auto it = std::find_if(mEntries.begin(), mEntries.end(), [keep](const Entry &e) { return e.slot != keep; });
        const int slot = it->slot;
        mEntries.erase(it);
        return slot;
    }

private:
    struct Entry {
        Look look;
        int slot;
    };
    std::vector<Entry> mEntries;
};

/// The inclusive bounding rectangle of points.
template<class Points>
QRect pointBounds(const Points &points)
{
    if (points.isEmpty())
        return QRect();
    int l = points[0].x(), r = l, t = points[0].y(), b = t;
    for (const auto &p : points) {
        l = std::min(l, p.x());
        r = std::max(r, p.x());
        t = std::min(t, p.y());
        b = std::max(b, p.y());
    }
    return QRect(QPoint(l, t), QPoint(r, b));
}

} // namespace kel::metafile
