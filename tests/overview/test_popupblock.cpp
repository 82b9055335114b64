// SPDX-License-Identifier: GPL-3.0-or-later
// The block a popup was opened on: with three header lines the top line is
// the question's block, the middle one its sub-block (or its block when it
// has none), and every other place means the innermost block.
#include "engine/overview/popupblock.h"

#include <gtest/gtest.h>

using namespace kel;

namespace {

Document threeBlocks()
{
    Document doc;
    doc.blocks.resize(3);
    Question outer;
    outer.block = 0;
    outer.subBlock = 1;
    Question noSub;
    noSub.block = 2;
    Question damaged; // blocks a damaged file may name
    damaged.block = 3;
    damaged.subBlock = -5;
    Question none;
    doc.questions = {outer, noSub, damaged, none};
    return doc;
}

TEST(PopupBlock, EachPlaceNamesItsBlockAndOnlyBlocksOfTheDocument)
{
    const Document doc = threeBlocks();
    constexpr int H = 3; // header lines -3 (block), -2 (sub-block), -1 (code)
    const struct {
        SheetPlace place;
        int line;
        qint32 question;
        qint32 block;
    } cases[] = {
        {SheetPlace::BlockLine, -3, 0, 0},  {SheetPlace::BlockLine, -2, 0, 1},  {SheetPlace::BlockLine, -3, 1, 2},
        {SheetPlace::BlockLine, -2, 1, 2},  {SheetPlace::CodeLine, -1, 0, 1},   {SheetPlace::AnswerCell, 4, 0, 1},
        {SheetPlace::AnswerCell, 4, 1, 2},  {SheetPlace::BlockLine, -3, 2, -1}, {SheetPlace::AnswerCell, 0, 2, -1},
        {SheetPlace::AnswerCell, 0, 3, -1}, {SheetPlace::Outside, 0, -1, -1},   {SheetPlace::AnswerCell, 0, 4, -1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "question " << c.question << " line " << c.line);
        SheetHit hit;
        hit.place = c.place;
        hit.line = c.line;
        hit.question = c.question;
        EXPECT_EQ(popupBlock(doc, hit, H), c.block);
    }
}

} // namespace
