// SPDX-License-Identifier: GPL-3.0-or-later
// The sheet as assistive technology reads it: a table of respondents
// (rows) by questions (columns), each column described by its question's
// code and heading, each answer cell named by its answer text with the
// alternative's number as its value. The cell under the keyboard cursor is
// the focused one, and moving the cursor tells the screen reader so.
#pragma once

#include <QAccessibleWidget>

class QObject;

namespace kel {

class SheetView;

/// Installs the factory that gives every SheetView its table interface.
void installSheetAccessibility();

/// Tells assistive technology that the cursor of `view` moved.
void notifySheetCursorMoved(SheetView *view);

} // namespace kel
