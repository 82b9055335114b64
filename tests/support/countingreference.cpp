// SPDX-License-Identifier: GPL-3.0-or-later
#include "countingreference.h"

namespace kel::test {

qint32 countOptionsReference(const Document &doc, const SelectionMatrix &selected, CountMatrix &found)
{
    const qint32 categories =
        qMin(qMin(qint32(doc.categories.size()), selected.categoryCount()), found.categoryCount());
    std::vector<qint32> v(std::size_t(qMax(categories, 0)));
    std::vector<bool> m(std::size_t(qMax(categories, 0)));
    qint32 count = 0;
    for (qint32 r = 0; r < doc.rowCount(); ++r) {
        for (qint32 c = 0; c < categories; ++c) {
            v[std::size_t(c)] = doc.getData(r, doc.categories[std::size_t(c)]);
            m[std::size_t(c)] = selected.at(c, v[std::size_t(c)]);
        }
        bool all = true;
        for (qint32 c = 0; c < categories; ++c) {
            bool others = true;
            for (qint32 d = 0; d < categories; ++d)
                if (d != c && !m[std::size_t(d)])
                    others = false;
            if (others && v[std::size_t(c)] >= 0 && v[std::size_t(c)] < found.optionCount())
                ++found.row(c)[v[std::size_t(c)]];
            all = all && m[std::size_t(c)];
        }
        if (all)
            ++count;
    }
    return count;
}

} // namespace kel::test
