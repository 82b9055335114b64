// SPDX-License-Identifier: GPL-3.0-or-later
// The document block a sheet popup was opened on, for the popup's items and
// the block graphs and charts it starts.
#pragma once

#include "engine/overview/sheetlayout.h"

namespace kel {

/// On a block line, the block that line shows; elsewhere the question's
/// innermost block. -1 when the hit names no question of `doc` or the block
/// is not one of `doc`'s.
inline qint32 popupBlock(const Document &doc, const SheetHit &hit, int headerLines)
{
    if (hit.question < 0 || std::size_t(hit.question) >= doc.questions.size())
        return -1;
    const Question &q = doc.questions[std::size_t(hit.question)];
    const qint32 block = hit.place == SheetPlace::BlockLine ? blockAtHeaderLine(q, hit.line, headerLines)
        : q.subBlock != -1                                  ? q.subBlock
                                                            : q.block;
    return block >= 0 && std::size_t(block) < doc.blocks.size() ? block : -1;
}

} // namespace kel
