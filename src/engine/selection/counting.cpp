// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/selection/counting.h"

#include <array>

namespace kel {

namespace {

// Rows are processed in blocks so that the per-row state (how many categories
// a row fails, and the last one it fails) lives in small stack arrays that the
// column loops can fill without branches. A row counts for found(c, v) when it
// fails no category, or fails exactly c: that is the pairwise "every other
// category" test without going over the categories twice per row.
constexpr qint32 BlockRows = 2048;

struct BlockState {
    std::array<qint32, BlockRows> fails;
    std::array<qint32, BlockRows> lastFail;
};

qint32 categoriesInUse(const Document &doc, const SelectionMatrix &selected)
{
    return qMin(qint32(doc.categories.size()), selected.categoryCount());
}

// Marks in `state` the rows [first, first + count) that category c rejects.
void markFailures(const Document &doc, const SelectionMatrix &selected, qint32 c, qint32 first, qint32 count,
                  BlockState &state)
{
    const quint8 *flags = selected.row(c);
    const quint32 options = quint32(selected.optionCount());
    doc.answers.visitColumn(doc.categories[std::size_t(c)], [&](const auto *column) {
        const auto *cells = column + first;
        for (qint32 i = 0; i < count; ++i) {
            const quint32 v = quint32(qint32(cells[i]));
            const qint32 ok = v < options ? flags[v] : 0;
            const qint32 bad = ok ^ 1;
            state.fails[std::size_t(i)] += bad;
            state.lastFail[std::size_t(i)] = bad ? c : state.lastFail[std::size_t(i)];
        }
    });
}

void fillFailures(const Document &doc, const SelectionMatrix &selected, qint32 categories, qint32 first, qint32 count,
                  BlockState &state)
{
    std::fill_n(state.fails.begin(), count, 0);
    std::fill_n(state.lastFail.begin(), count, -1);
    for (qint32 c = 0; c < categories; ++c)
        markFailures(doc, selected, c, first, count, state);
}

// When the categories have few options, every respondent is one combination
// of answers. Counting the combinations (one key per row, built column by
// column without branches) and then applying the selection to each distinct
// combination does the per-row work once instead of once per category; the
// counts are the same. An answer outside its question's options gets a slot
// of its own that neither matches nor is counted.
constexpr qint64 MaxCombinations = 1 << 16;
constexpr qint32 MaxKeyedCategories = 32;

struct Combinations {
    qint32 categories = 0;
    std::array<quint32, MaxKeyedCategories> limit{};  // options of each category
    std::array<quint32, MaxKeyedCategories> stride{}; // mixed-radix place value
    qint64 count = 0;                                 // 0: too many to tabulate
};

Combinations planCombinations(const Document &doc, const SelectionMatrix &selected, qint32 categories)
{
    Combinations plan;
    if (categories > MaxKeyedCategories)
        return plan;
    qint64 combinations = 1;
    for (qint32 c = 0; c < categories; ++c) {
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(c)])];
        plan.limit[std::size_t(c)] = quint32(qBound(0, q.alternativeCount, selected.optionCount()));
        plan.stride[std::size_t(c)] = quint32(combinations);
        combinations *= qint64(plan.limit[std::size_t(c)]) + 1;
        // A table larger than the rows would cost more to scan than it saves.
        if (combinations > MaxCombinations || combinations > qMax<qint64>(4096, doc.rowCount()))
            return plan;
    }
    plan.categories = categories;
    plan.count = combinations;
    return plan;
}

void fillKeys(const Document &doc, const Combinations &plan, qint32 first, qint32 n,
              std::array<quint32, BlockRows> &keys)
{
    std::fill_n(keys.begin(), n, 0u);
    for (qint32 c = 0; c < plan.categories; ++c) {
        const quint32 k = plan.limit[std::size_t(c)];
        const quint32 s = plan.stride[std::size_t(c)];
        doc.answers.visitColumn(doc.categories[std::size_t(c)], [&](const auto *column) {
            const auto *cells = column + first;
            for (qint32 i = 0; i < n; ++i) {
                const quint32 v = quint32(qint32(cells[i]));
                keys[std::size_t(i)] += (v < k ? v : k) * s;
            }
        });
    }
}

// Decodes a key into its answers and tells how many categories reject it
// (and the last one that does).
qint32 decodeKey(const Combinations &plan, const SelectionMatrix &selected, qint64 key,
                 std::array<quint32, MaxKeyedCategories> &v, qint32 &lastFail)
{
    qint32 fails = 0;
    lastFail = -1;
    quint64 rest = quint64(key);
    for (qint32 c = 0; c < plan.categories; ++c) {
        const quint32 radix = plan.limit[std::size_t(c)] + 1;
        v[std::size_t(c)] = quint32(rest % radix);
        rest /= radix;
        if (v[std::size_t(c)] >= plan.limit[std::size_t(c)] || !selected.at(c, qint32(v[std::size_t(c)]))) {
            ++fails;
            lastFail = c;
        }
    }
    return fails;
}

void countByCombination(const Document &doc, const SelectionMatrix &selected, CountMatrix &found,
                        const Combinations &plan, qint32 &count)
{
    const qint32 rows = doc.rowCount();
    std::vector<qint32> joint(std::size_t(plan.count), 0);
    std::array<quint32, BlockRows> keys;
    for (qint32 first = 0; first < rows; first += BlockRows) {
        const qint32 n = qMin(BlockRows, rows - first);
        fillKeys(doc, plan, first, n, keys);
        for (qint32 i = 0; i < n; ++i)
            ++joint[keys[std::size_t(i)]];
    }

    count = 0;
    std::array<quint32, MaxKeyedCategories> v{};
    for (qint64 key = 0; key < plan.count; ++key) {
        const qint32 h = joint[std::size_t(key)];
        if (h == 0)
            continue;
        qint32 lastFail = -1;
        const qint32 fails = decodeKey(plan, selected, key, v, lastFail);
        if (fails == 0)
            count += h;
        for (qint32 c = 0; c < plan.categories; ++c)
            if ((fails == 0 || (fails == 1 && lastFail == c)) && v[std::size_t(c)] < plan.limit[std::size_t(c)]
                && qint32(v[std::size_t(c)]) < found.optionCount())
                found.row(c)[v[std::size_t(c)]] += h;
    }
}

} // namespace

SelectionMatrix fullSelection(const Document &doc)
{
    return SelectionMatrix(qMax(qint32(doc.categories.size()), 1), qMax(doc.maxCategoryAlternatives, 1), true);
}

CountMatrix countMatrixFor(const Document &doc)
{
    return CountMatrix(qMax(qint32(doc.categories.size()), 1), qMax(doc.maxCategoryAlternatives, 1));
}

qint32 countOptions(const Document &doc, const SelectionMatrix &selected, CountMatrix &found)
{
    const qint32 rows = doc.rowCount();
    const qint32 categories = qMin(categoriesInUse(doc, selected), found.categoryCount());
    const quint32 options = quint32(qMin(selected.optionCount(), found.optionCount()));
    qint32 count = 0;
    const Combinations plan = planCombinations(doc, selected, categories);
    if (plan.count > 0) {
        countByCombination(doc, selected, found, plan, count);
        return count;
    }
    BlockState state;
    // Four interleaved histograms per category: consecutive rows with the same
    // answer would otherwise wait on each other's increment.
    constexpr int Lanes = 4;
    std::vector<qint32> lanes(std::size_t(Lanes) * options * std::size_t(qMax(categories, 0)), 0);

    for (qint32 first = 0; first < rows; first += BlockRows) {
        const qint32 n = qMin(BlockRows, rows - first);
        fillFailures(doc, selected, categories, first, n, state);
        for (qint32 i = 0; i < n; ++i)
            count += state.fails[std::size_t(i)] == 0;
        for (qint32 c = 0; c < categories; ++c) {
            qint32 *hist = lanes.data() + std::size_t(c) * Lanes * options;
            doc.answers.visitColumn(doc.categories[std::size_t(c)], [&](const auto *column) {
                const auto *cells = column + first;
                // Branch-free: whether a row counts is a coin toss for the
                // predictor, so every row adds 0 or 1.
                for (qint32 i = 0; i < n; ++i) {
                    const qint32 f = state.fails[std::size_t(i)];
                    const quint32 v = quint32(qint32(cells[i]));
                    const quint32 inRange = v < options;
                    const quint32 counts =
                        quint32(f == 0) | (quint32(f == 1) & quint32(state.lastFail[std::size_t(i)] == c));
                    hist[std::size_t(i & (Lanes - 1)) * options + (inRange ? v : 0)] += qint32(counts & inRange);
                }
            });
        }
    }
    for (qint32 c = 0; c < categories; ++c) {
        const qint32 *hist = lanes.data() + std::size_t(c) * Lanes * options;
        qint32 *out = found.row(c);
        for (quint32 o = 0; o < options; ++o)
            for (int l = 0; l < Lanes; ++l)
                out[o] += hist[std::size_t(l) * options + o];
    }
    return count;
}

RowList selectedRows(const Document &doc, const SelectionMatrix &selected)
{
    const qint32 rows = doc.rowCount();
    const qint32 categories = categoriesInUse(doc, selected);
    // Written without a branch per row (whether a row matches is as good as
    // random), then cut to the rows taken.
    RowList result(std::size_t(qMax(rows, 0)));
    std::size_t taken = 0;
    const Combinations plan = planCombinations(doc, selected, categories);
    if (plan.count > 0) {
        std::vector<quint8> matches(std::size_t(plan.count));
        std::array<quint32, MaxKeyedCategories> v{};
        for (qint64 key = 0; key < plan.count; ++key) {
            qint32 lastFail = -1;
            matches[std::size_t(key)] = decodeKey(plan, selected, key, v, lastFail) == 0;
        }
        std::array<quint32, BlockRows> keys;
        for (qint32 first = 0; first < rows; first += BlockRows) {
            const qint32 n = qMin(BlockRows, rows - first);
            fillKeys(doc, plan, first, n, keys);
            for (qint32 i = 0; i < n; ++i) {
                result[taken] = first + i;
                taken += matches[keys[std::size_t(i)]];
            }
        }
    } else {
        BlockState state;
        for (qint32 first = 0; first < rows; first += BlockRows) {
            const qint32 n = qMin(BlockRows, rows - first);
            fillFailures(doc, selected, categories, first, n, state);
            for (qint32 i = 0; i < n; ++i) {
                result[taken] = first + i;
                taken += state.fails[std::size_t(i)] == 0;
            }
        }
    }
    result.resize(taken);
    return result;
}

} // namespace kel
