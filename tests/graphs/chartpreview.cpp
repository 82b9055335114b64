// SPDX-License-Identifier: GPL-3.0-or-later
// Manual check of the charts: `chartpreview FILE OUTDIR [--lang sv]` opens
// FILE in the main window, runs the chart commands through its menus with
// the dialogs filled in by script, and writes every chart window as a PNG.
#include "engine/selection/counting.h"
#include "gui/shell/chartcommands.h"
#include "gui/graphs/chartwindow.h"
#include "gui/graphs/distributiondialog.h"
#include "gui/graphs/indexgraphdialog.h"
#include "gui/shell/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace kel;

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: chartpreview FILE OUTDIR [--lang sv]\n");
        return 2;
    }
    const bool swedish = args.contains(QStringLiteral("sv"));
    QTemporaryDir settingsDir;
    SettingsLocation location;
    location.file = settingsDir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(location);
    MainWindow window(store, swedish, MainWindowEnvironment{});
    const QString error = window.loadDocument(args[1], false);
    if (!error.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    QDir out(args[2]);
    ChartCommands &charts = window.chartCommands();
    const MainMenus &m = window.menus();
    int shot = 0;
    const auto save = [&](const char *name) {
        ChartWindow *w = charts.pendingWindow();
        if (!w)
            return;
        w->resize(900, 600);
        if (!QTest::qWaitFor([&] { return w->isVisible(); }, 2000))
            std::fprintf(stderr, "%s was never shown\n", name);
        QTest::qWait(100);
        w->grab().save(out.filePath(QStringLiteral("%1-%2.png").arg(++shot, 2, 10, QLatin1Char('0')).arg(QLatin1String(name))));
    };
    using Fill = std::function<void(QDialog &)>;
    const auto run = [&](QAction *item, const Fill &fill, const char *name) {
        charts.runDialog = [fill, &out, name](QDialog &d) {
            fill(d);
            d.show();
            QTest::qWait(50);
            d.grab().save(out.filePath(QStringLiteral("dialog-%1.png").arg(QLatin1String(name))));
            return int(QDialog::Accepted);
        };
        item->trigger();
        save(name);
    };
    const auto index = [](QDialog &d) -> IndexGraphDialog & { return static_cast<IndexGraphDialog &>(d); };
    const auto dist = [](QDialog &d) -> DistributionDialog & { return static_cast<DistributionDialog &>(d); };

    run(m.mnuVTotalGraph1, [&](QDialog &d) {
        index(d).chkShowBlockIndexes->setChecked(true);
        index(d).chkIndexLines[0]->setChecked(true);
        index(d).chkIndexLinesShowExplanation->setChecked(true);
    }, "total-blocks-line");
    run(m.mnuVTotalGraph1, [&](QDialog &d) {
        index(d).chkShowBlockIndexes->setChecked(false);
        index(d).lstSplitBy->setCurrentIndex(1);
    }, "total-split");
    run(m.mnuVB4Item[0], [&](QDialog &d) {
        index(d).chkShowQuestionIndexes->setChecked(true);
        index(d).lstSplitBy->setCurrentIndex(2);
        index(d).chkHorizontalBars->setChecked(true);
    }, "block-grouped-horizontal");
    m.mnuVB3Item[0]->trigger();
    save("ranking");
    run(m.mnuVDistributionGraph, [&](QDialog &d) {
        dist(d).lstMainCategory->setCurrentRow(0);
        dist(d).optGraphType[0]->setChecked(true);
        dist(d).chkInPercent->setChecked(true);
        dist(d).chk3DLook->setChecked(true);
    }, "distribution-pie-3d");
    run(m.mnuVDistributionGraph, [&](QDialog &d) {
        dist(d).lstMainCategory->setCurrentRow(0);
        dist(d).optGraphType[2]->setChecked(true);
        dist(d).lstGroupByCategory->setCurrentRow(0);
        dist(d).chk3DLook->setChecked(false);
        dist(d).chkVerticalLabels->setChecked(true);
    }, "distribution-grouped");
    run(m.mnuVDistributionGraph, [&](QDialog &d) {
        dist(d).lstMainCategory->setCurrentRow(1);
        dist(d).optGraphType[1]->setChecked(true);
        dist(d).chk3DLook->setChecked(true);
        dist(d).chkVerticalLabels->setChecked(false);
    }, "distribution-bars-3d");

    // A narrower selection: the lines of the current selection come alive.
    const Document &doc = *window.document();
    SelectionMatrix selection = fullSelection(doc);
    for (qint32 o = firstVisibleOption(doc) + 1; o < doc.questions[std::size_t(doc.categories[0])].alternativeCount; ++o)
        selection.set(0, o, false);
    const QString refused = window.showSelection(selection);
    if (!refused.isEmpty())
        std::fprintf(stderr, "selection refused: %s\n", qPrintable(refused));
    run(m.mnuVTotalGraph1, [&](QDialog &d) {
        index(d).chkShowQuestionIndexes->setChecked(true);
        index(d).lstSplitBy->setCurrentIndex(0);
        index(d).chkIndexLines[0]->setChecked(true);
        index(d).chkIndexLines[1]->setChecked(true);
        index(d).chkIndexLinesShowExplanation->setChecked(true);
        index(d).chkHorizontalBars->setChecked(false);
    }, "total-questions-two-lines");
    return 0;
}
