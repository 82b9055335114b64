// SPDX-License-Identifier: GPL-3.0-or-later
// The overview's commands: copy, save and print its picture, copy its data
// or one respondent's answers, copy it to a mini-overview, and show the
// comments behind it. They work on the overview as last shown (the
// session's sheet, drawn by the view), never on a selection the navigator
// has not applied, and ask the engine's decision before they output.
#pragma once

#include "gui/common/commandcontext.h"

#include <QObject>

#include <functional>

class QClipboard;

namespace kel {

class SheetView;
struct CommentsDocument;

class OverviewCommands : public QObject
{
    Q_OBJECT
public:
    /// `sheet` draws the shown overview; the pictures are made from it.
    OverviewCommands(const CommandContext &context, const SheetView &sheet, QObject *parent);

    /// Returns the chosen path and the chosen filter text; an empty path is
    /// a cancel. Empty: the save dialog (tests answer instead).
    using FileChooser = std::function<std::pair<QString, QString>(const QString &title, const QString &folder,
                                                                  const QString &defaultName,
                                                                  const QStringList &filters, int preselected)>;
    void setFileChooser(FileChooser chooser) { mChooseFile = std::move(chooser); }
    void setClipboard(QClipboard *clipboard) { mClipboard = clipboard; }

    void copyOverview();
    void copyHeadersAndTotals();
    void saveOverviewAs();
    void copyOverviewData();
    void copyThisRowsAnswers();
    void printOverview();
    void printFormat();

    /// Draws the shown sheet into a pooled mini-overview window and shows
    /// it; false when there is no sheet or it could not be drawn.
    bool copyToMiniOverview();
    /// The popup row's own comment and its comments on the overview's
    /// questions, or the popup question's comments over the sheet's rows.
    enum class CommentsOf { Row, Column };
    void showPopupComments(CommentsOf which);
    /// Every row comment of the shown rows, or a message that there is none.
    void showAllComments();

private:
    bool hasSheet() const;
    void copyPicture(bool headersOnly);
    void showComments(const CommentsDocument &comments, const QString &caption);

    CommandContext mContext;
    const SheetView &mSheet;
    FileChooser mChooseFile;
    QClipboard *mClipboard = nullptr;
};

} // namespace kel
