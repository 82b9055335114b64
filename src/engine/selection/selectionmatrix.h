// SPDX-License-Identifier: GPL-3.0-or-later
// Category x option matrices: which options of each navigator category are
// ticked, and how many respondents each option would leave.
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <vector>

namespace kel {

/// Booleans indexed (category, option); true = the option is included.
/// Flags are stored as bytes so that the counting loop can index them
/// directly by an answer value.
class SelectionMatrix
{
public:
    SelectionMatrix() = default;
    SelectionMatrix(qint32 categories, qint32 options, bool value = true)
        : mCategories(categories), mOptions(options),
          mFlags(std::size_t(qMax(categories, 0)) * std::size_t(qMax(options, 0)), value ? 1 : 0)
    {
    }

    qint32 categoryCount() const { return mCategories; }
    qint32 optionCount() const { return mOptions; }

    /// False for any option outside the matrix, so that a stray answer value
    /// never matches instead of reading past the row.
    bool at(qint32 category, qint32 option) const
    {
        if (category < 0 || category >= mCategories || option < 0 || option >= mOptions)
            return false;
        return mFlags[index(category, option)] != 0;
    }
    void set(qint32 category, qint32 option, bool value)
    {
        if (category >= 0 && category < mCategories && option >= 0 && option < mOptions)
            mFlags[index(category, option)] = value ? 1 : 0;
    }
    void fill(bool value) { std::fill(mFlags.begin(), mFlags.end(), quint8(value ? 1 : 0)); }
    /// The flags of one category, optionCount() bytes.
    const quint8 *row(qint32 category) const { return mFlags.data() + index(category, 0); }

    bool operator==(const SelectionMatrix &) const = default;

private:
    std::size_t index(qint32 c, qint32 o) const { return std::size_t(c) * std::size_t(mOptions) + std::size_t(o); }

    qint32 mCategories = 0;
    qint32 mOptions = 0;
    std::vector<quint8> mFlags;
};

/// Signed 32-bit counts indexed (category, option).
class CountMatrix
{
public:
    CountMatrix() = default;
    CountMatrix(qint32 categories, qint32 options)
        : mCategories(categories), mOptions(options),
          mCounts(std::size_t(qMax(categories, 0)) * std::size_t(qMax(options, 0)), 0)
    {
    }

    qint32 categoryCount() const { return mCategories; }
    qint32 optionCount() const { return mOptions; }
    qint32 at(qint32 category, qint32 option) const
    {
        if (category < 0 || category >= mCategories || option < 0 || option >= mOptions)
            return 0;
        return mCounts[std::size_t(category) * std::size_t(mOptions) + std::size_t(option)];
    }
    qint32 *row(qint32 category) { return mCounts.data() + std::size_t(category) * std::size_t(mOptions); }
    void clear() { std::fill(mCounts.begin(), mCounts.end(), 0); }

private:
    qint32 mCategories = 0;
    qint32 mOptions = 0;
    std::vector<qint32> mCounts;
};

} // namespace kel
