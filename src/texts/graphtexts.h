// SPDX-License-Identifier: GPL-3.0-or-later
// The interface's words around question and block graphs: the status texts
// of the commands that open them, their messages and the graph window's own.
#pragma once

#include <QString>

namespace kel {

/// An English and a Swedish literal (UTF-8); pick one with pickText.
struct TextPair {
    const char *english = "";
    const char *swedish = "";
};

/// The commands that open a question or block graph; their status texts differ.
enum class BasicGraphCommand {
    PopupBlockHistogram,         ///< overview popup, block histogram
    PopupBlockFraction,          ///< overview popup, block fraction graph
    QuestionHistogram,           ///< total or split
    QuestionFraction,            ///< total, or split by a submenu's column
    QuestionFractionSplitDialog, ///< split by a question chosen in the dialog
    ViewBlockHistogram,          ///< View menu, one item per block
    ViewBlockFraction,
};

TextPair basicGraphStartText(BasicGraphCommand command);
TextPair basicGraphSuccessText(BasicGraphCommand command);
/// The failure text; empty literals where the command has none.
TextPair basicGraphFailureText(BasicGraphCommand command);

/// A block from the View menu without questions.
QString blockWithoutQuestionsMessage(bool isSwedish);
/// A split that would show a group smaller than the document allows.
QString splitNotAllowedMessage(bool isSwedish);
/// Shown in a graph window too small for its graph.
QString graphTooBigMessage(bool isSwedish);

/// Why a picture did not reach the clipboard, in words that say what to do
/// instead. `overview`: the overview's picture (its other ways out are the
/// overview's save and copy-as-data commands), else a graph's.
enum class PictureCopyFailure { TooLarge, NotMade, Refused };
QString pictureCopyFailureMessage(PictureCopyFailure failure, bool overview, bool isSwedish);

} // namespace kel
