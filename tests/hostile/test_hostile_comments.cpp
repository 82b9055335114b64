// SPDX-License-Identifier: GPL-3.0-or-later
// A comment of five million characters without a space, shown in each of
// the comments windows: laying it out must end (shortened, with the note)
// long before the child's deadline, where the whole text in one unbroken
// run took minutes.
#include "kelwriter.h"
#include "limitedchild.h"

#include "engine/document/documentreader.h"
#include "engine/overview/comments.h"
#include "gui/overview/textpopup.h"
#include "texts/messages.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QTextBrowser>
#include <QTextDocument>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::test;

TEST(HostileComments, FiveMillionCharactersWithoutASpaceShowShortenedInEveryWindow)
{
    const QString huge(5'000'000, QLatin1Char('w'));
    writer::SurveyBuilder b(3);
    b.addQuestion({.heading = QStringLiteral("Said")},
                  {{.text = QStringLiteral("yes")}, {.text = QStringLiteral("no")}});
    b.setRowComment(1, huge);
    b.setCellComment(1, 0, huge);
    const ReadResult read = readDocumentBytes(b.toBytes());
    ASSERT_EQ(read.code, OpenResult::Ok);
    const Document &doc = *read.document;

    const struct {
        const char *window;
        CommentsDocument comments;
    } windows[] = {
        {"View > Comments", allComments(doc, {0, 1, 2})},
        {"the row's comments", rowComments(doc, 1, {0})},
        {"the column's comments", columnComments(doc, 0, {0, 1, 2})},
    };
    for (const auto &w : windows) {
        for (const bool swedish : {false, true}) {
            SCOPED_TRACE(std::string(w.window) + (swedish ? " (sv)" : " (en)"));
            const QString note = commentShortenedNote(swedish).arg(5'000'000).arg(ShownCommentLength);
            const int status = runLimited(2048 * MiB, 60, [&] {
                int argc = 1;
                char name[] = "hostile_gui_tests";
                char *argv[] = {name, nullptr};
                QApplication app(argc, argv);
                TextPopup popup(swedish);
                popup.setHtml(commentsHtml(w.comments, commentShortenedNote(swedish)));
                popup.show();
                app.processEvents();
                // Force the layout of the whole text, not only what shows.
                popup.textBox()->document()->documentLayout()->documentSize();
                const QString shown = popup.plainText();
                if (!shown.contains(note))
                    return 3;
                return shown.size() < 2 * (ShownCommentLength + 2000) ? 0 : 4;
            });
            EXPECT_EQ(status, 0) << "128 + 14: past the deadline; 3: no note; 4: not shortened";
        }
    }
}
