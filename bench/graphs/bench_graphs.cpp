// SPDX-License-Identifier: GPL-3.0-or-later
// The block fraction graph of 45 questions over 20,000 respondents: computing
// its description, drawing it into a 1200 x 900 picture, and opening its
// window from the overview's popup until the window has painted, all in one
// process on a document written by the test writer and read back. Prints the
// median and the best of each in milliseconds.
#include "engine/document/document.h"
#include "engine/graphs/basicgraph.h"
#include "engine/indexes/blockindex.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/graphcommands.h"
#include "gui/overview/sheetview.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "kelwriter.h"
#include "render/graphs/basicgraphrenderer.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>
#include <vector>

using namespace kel;

namespace {

constexpr int Rows = 20000;
constexpr int Questions = 45;

QByteArray makeSurvey()
{
    using writer::rgb;
    writer::SurveyBuilder b(Rows);
    b.header().pointsScale = 100;
    b.header().firstAlternativeIsNoAnswer = writer::FileTrue;
    b.header().totalText = b.text(QStringLiteral("Everyone"));
    const qint32 block = b.addBlock({.name = QStringLiteral("All questions")});
    std::mt19937 random(7);
    const QList<writer::AlternativeSpec> scale{
        {.text = QStringLiteral("No answer")},
        {.text = QStringLiteral("Strongly agree"), .points = 100, .colour = rgb(30, 150, 80)},
        {.text = QStringLiteral("Agree"), .points = 75, .colour = rgb(140, 200, 90)},
        {.text = QStringLiteral("Neither"), .points = 50, .colour = rgb(250, 220, 130)},
        {.text = QStringLiteral("Disagree"), .points = 25, .colour = rgb(250, 140, 90)},
        {.text = QStringLiteral("Strongly disagree"), .points = 0, .colour = rgb(210, 50, 40)}};
    qint32 first = -1;
    for (int i = 0; i < Questions; ++i) {
        const writer::QuestionSpec recipe{.code = QString::number(i + 1),
                                          .heading = QStringLiteral("Question %1").arg(i + 1),
                                          .text = QStringLiteral("Statement number %1 of the survey").arg(i + 1),
                                          .block = block};
        const qint32 q = first < 0 ? b.addQuestion(recipe, scale) : b.addQuestionLike(recipe, first);
        first = first < 0 ? q : first;
        std::vector<qint32> answers(Rows);
        for (qint32 &a : answers)
            a = qint32(random() % 6);
        b.setAnswers(q, answers);
    }
    return b.toBytes();
}

// Counts the paint events the graph windows receive, to show that the
// measured openings did paint.
class PaintCounter : public QObject
{
public:
    int paints = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

struct Figures {
    double median = 0;
    double best = 0;
};

Figures measure(int runs, const std::function<void()> &work)
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.front()};
}

void print(const char *what, const Figures &f, double target)
{
    std::printf("%-58s median %7.3f ms  best %7.3f ms  (target < %g ms)\n", what, f.median, f.best, target);
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.kel"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write(makeSurvey());
    }
    SettingsLocation location;
    location.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(location);
    MainWindow window(store, false, MainWindowEnvironment{});
    window.resize(1200, 800);
    window.show();
    if (!window.openDocument(path, false, QStringLiteral("bench")))
        return 1;
    const Document &doc = *window.document();

    // 1. The description alone, as the View menu's block item asks for it.
    const BasicGraphSelection selection = window.commands().graphs->currentGraphSelection();
    BasicGraphRequest request{.questions = blockMembers(doc, window.session().blocks(), 0),
                              .name = QStringLiteral("All questions"),
                              .block = 0,
                              .kind = FractionGraph};
    BasicGraphDescription description;
    const Figures data = measure(50, [&] {
        description =
            generateBasicGraph(doc, window.session().blocks(), window.session().flexTotal(), request, selection)
                .value();
    });
    std::printf("%d questions x %zu respondents, %zu bars\n", Questions, selection.rows->size(),
                description.bars.size());
    print("block fraction graph description", data, 2);

    // 2. Drawing it into a 1200 x 900 picture. 45 bars of at least the text
    // height do not fit in 900 pixels, so the picture shows the graph at a
    // scale that does (as a copy at another resolution would), and, for
    // comparison, at full size in the height its window opens with.
    const BasicGraphRenderer renderer(description, BasicGraphUnits{1, 1});
    for (const QSize layout : {QSize(1200, 2300), QSize(1200, 900)}) {
        QImage image(1200, 900, QImage::Format_ARGB32_Premultiplied);
        bool fits = false;
        const Figures draw = measure(30, [&] {
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.scale(900.0 / layout.height(), 900.0 / layout.height());
            fits = renderer.draw(painter, QRect(QPoint(10, 10), layout - QSize(20, 20)), 0, false);
        });
        const QByteArray what = QByteArrayLiteral("drawing it into 1200 x 900, laid out in ")
            + QByteArray::number(layout.width()) + " x " + QByteArray::number(layout.height())
            + (fits ? "" : " (does not fit)");
        print(what.constData(), draw, 10);
    }

    // 3. From the popup's menu item until the window has painted.
    SheetHit hit;
    hit.place = SheetPlace::AnswerCell;
    hit.question = doc.overviewColumns.front();
    emit window.sheetView()->popupRequested(hit, QPoint(20, 20));
    window.menus().mnuPopUp->hide();
    PaintCounter painted;
    const Figures open = measure(20, [&] {
        window.menus().mnuPShowBlockGraph2->trigger();
        for (const WindowSlot &slot : window.session().windowSlots(SlotTable::BasicGraphs)) {
            if (slot.window && slot.window->isVisible())
                slot.window->installEventFilter(&painted);
        }
        // The window paints when the event loop gets to it.
        const int before = painted.paints;
        QElapsedTimer limit;
        limit.start();
        while (painted.paints == before && limit.elapsed() < 2000)
            QCoreApplication::processEvents();
        window.closeAllGraphWindows(); // every run opens a new window
    });
    print("opening the window from the popup until painted", open, 60);
    std::printf("(%d paints in 20 openings)\n", painted.paints);
    return 0;
}
