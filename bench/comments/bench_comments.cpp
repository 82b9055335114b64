// SPDX-License-Identifier: GPL-3.0-or-later
// Opening a comments window on one very long comment: from the engine's
// comments to a popup laid out in full. Prints the median of five runs in
// milliseconds beside the target (one second) and the baseline, what the
// same comment cost before long comments were shortened and long runs got
// break opportunities.
#include "engine/overview/comments.h"
#include "gui/overview/textpopup.h"
#include "texts/messages.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QElapsedTimer>
#include <QTextBrowser>
#include <QTextDocument>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double showMilliseconds(const QString &comment)
{
    kel::CommentsDocument comments;
    comments.entries = {{QString(), comment}};
    std::vector<double> runs;
    for (int i = 0; i < 5; ++i) {
        QElapsedTimer timer;
        timer.start();
        kel::TextPopup popup(false);
        popup.setHtml(kel::commentsHtml(comments, kel::commentShortenedNote(false)));
        popup.show();
        QApplication::processEvents();
        popup.textBox()->document()->documentLayout()->documentSize();
        runs.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(runs.begin(), runs.end());
    return runs[runs.size() / 2];
}

QString prose(qsizetype length)
{
    QString text;
    text.reserve(length + 8);
    while (text.size() < length)
        text += QStringLiteral("comment ");
    text.truncate(length);
    return text;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const struct {
        const char *what;
        QString comment;
        const char *baseline;
    } cases[] = {
        {"200,000 characters without a space", QString(200'000, QLatin1Char('w')), "2,800 ms"},
        {"1,000,000 characters without a space", QString(1'000'000, QLatin1Char('w')), "> 60,000 ms"},
        {"5,000,000 characters without a space", QString(5'000'000, QLatin1Char('w')), "> 400,000 ms"},
        {"5,000,000 characters of prose", prose(5'000'000), "about 21,000 ms (5 x 1,000,000)"},
        {"50,000 characters of prose (shown whole)", prose(50'000), "the same"},
    };
    std::printf("%-44s %12s %10s  %s\n", "comments window on one comment of", "median ms", "target", "baseline");
    for (const auto &c : cases)
        std::printf("%-44s %12.1f %10s  %s\n", c.what, showMilliseconds(c.comment), "1,000 ms", c.baseline);
    return 0;
}
