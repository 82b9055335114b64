// SPDX-License-Identifier: GPL-3.0-or-later
// The overview's commands that open windows of their own: Copy to
// Mini-overview and the three comments views. They work on the main
// window's current sheet and the popup's row and question.
#pragma once

namespace kel {

class MainWindow;

/// Connects Edit and popup Copy to Mini-overview, View Comments and the
/// popup's row and column comments to the commands below.
void connectOverviewCommands(MainWindow &window);

/// Draws the current sheet into a pooled mini-overview window and shows
/// it; false when there is no sheet or it could not be drawn.
bool copyToMiniOverview(MainWindow &window);
/// The popup row's own comment and its comments on the overview's questions.
void showRowsComments(MainWindow &window);
/// The popup question's comments over the sheet's rows.
void showColumnsComments(MainWindow &window);
/// Every row comment of the document, or a message that there is none.
void showAllComments(MainWindow &window);

} // namespace kel
