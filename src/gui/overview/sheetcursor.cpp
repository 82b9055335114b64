// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/sheetcursor.h"

#include <algorithm>

namespace kel {

void SheetCursor::setBounds(const SheetCursorBounds &bounds)
{
    mBounds = bounds;
    mBounds.headerLines = std::max(1, bounds.headerLines);
    mBounds.answerLines = std::max(0, bounds.answerLines);
    setPosition(mColumn, mLine);
}

void SheetCursor::setPosition(int column, int line)
{
    mColumn = std::clamp(column, 0, std::max(0, mBounds.columns - 1));
    const int lastLine = mBounds.answerLines - 1; // -1 when only headers are drawn
    mLine = std::clamp(line, -mBounds.headerLines, lastLine);
}

bool SheetCursor::moveByKey(int key, Qt::KeyboardModifiers modifiers, int pageLines)
{
    const bool ctrl = modifiers & Qt::ControlModifier;
    const int page = std::max(1, pageLines);
    const int lastLine = mBounds.answerLines - 1;
    int column = mColumn;
    int line = mLine;
    switch (key) {
    case Qt::Key_Left: --column; break;
    case Qt::Key_Right: ++column; break;
    case Qt::Key_Up: --line; break;
    case Qt::Key_Down: ++line; break;
    case Qt::Key_Home:
        column = 0;
        if (ctrl)
            line = 0;
        break;
    case Qt::Key_End:
        column = mBounds.columns - 1;
        if (ctrl)
            line = lastLine;
        break;
    case Qt::Key_PageUp: line = line < 0 ? -mBounds.headerLines : std::max(0, line - page); break;
    case Qt::Key_PageDown: line = line < 0 ? 0 : line + page; break;
    default: return false;
    }
    setPosition(column, line);
    return true;
}

int SheetCursor::scrollToShow(int index, int first, int visible, int maximum)
{
    const int window = std::max(1, visible);
    int start = first;
    if (index < start)
        start = index;
    else if (index >= start + window)
        start = index - window + 1;
    return std::clamp(start, 0, std::max(0, maximum));
}

} // namespace kel
