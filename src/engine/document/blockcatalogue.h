// SPDX-License-Identifier: GPL-3.0-or-later
// The blocks a session works with: the document's own blocks as the file has
// them, followed by the blocks the user defines. The document stays as it was
// read, so one read document can serve many selections (every line of a
// `kel batch`, every unit of a report) while each keeps its own catalogue.
#pragma once

#include "engine/document/document.h"

#include <vector>

namespace kel {

struct BlockCatalogue {
    BlockCatalogue() = default;
    /// The document's blocks only, "Include In Copy" as the file says.
    explicit BlockCatalogue(const Document &doc) : blocks(doc.blocks), items(doc.blockItems) { }

    std::vector<Block> blocks;    ///< the document's first, then the user's
    std::vector<BlockItem> items; ///< the members of blocks that list them

    qint32 size() const { return qint32(blocks.size()); }
    /// Block `number`, or null for -1 and for a number outside the list:
    /// files carry such numbers, and they mean a block without members.
    const Block *blockAt(qint32 number) const
    {
        return (number >= 0 && std::size_t(number) < blocks.size()) ? &blocks[std::size_t(number)] : nullptr;
    }
    /// Number of blocks that come from the document (they come first).
    qint32 documentBlockCount() const
    {
        qint32 n = 0;
        while (n < size() && blocks[std::size_t(n)].fromDocument)
            ++n;
        return n;
    }
};

} // namespace kel
