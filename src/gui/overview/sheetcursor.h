// SPDX-License-Identifier: GPL-3.0-or-later
// The sheet's keyboard cell cursor: where it is, how keys move it, and
// which scroll position keeps it in view. It knows nothing of painting, so
// the view draws it over whatever the sheet's drawing leaves on the screen.
#pragma once

#include <Qt>

namespace kel {

/// What the cursor may visit: every column, the header lines (-H .. -1)
/// and the drawn answer lines (0 .. R-1).
struct SheetCursorBounds {
    int columns = 0;
    int headerLines = 1;
    int answerLines = 0;
};

class SheetCursor
{
public:
    int column() const { return mColumn; }
    /// Answer line k >= 0, or -H .. -1 for the header lines (-1 = code line).
    int line() const { return mLine; }
    /// false while the sheet has no columns: there is nowhere to be.
    bool isValid() const { return mBounds.columns > 0; }

    /// For a new sheet: the cursor stays where it was, pulled inside the new
    /// bounds. A cursor that never moved starts on the first answer line
    /// (the code line when no answer line is drawn).
    void setBounds(const SheetCursorBounds &bounds);
    void setPosition(int column, int line);

    /// Moves for an arrow, Home/End (Ctrl: the first or last cell),
    /// Page Up/Down (`pageLines` answer lines) key; false for any other key.
    /// Answer lines page among themselves; the header lines are frozen and
    /// always in view, so a page from there goes to the first answer line.
    bool moveByKey(int key, Qt::KeyboardModifiers modifiers, int pageLines);

    /// The first visible index that keeps `index` in a window of `visible`
    /// whole cells now starting at `first`, within [0, maximum].
    static int scrollToShow(int index, int first, int visible, int maximum);

private:
    SheetCursorBounds mBounds;
    int mColumn = 0;
    int mLine = 0;
};

} // namespace kel
