// SPDX-License-Identifier: GPL-3.0-or-later
// The chart view checked on the built QChart (series, values, axes, texts),
// the launch dialogs' rules, and the chart commands driven through the main
// window's menus on a survey read from disk.
#include "chartsurvey.h"

#include "engine/indexes/blockindex.h"
#include "gui/graphs/chartbuilder.h"
#include "gui/shell/chartcommands.h"
#include "gui/graphs/chartwindow.h"
#include "gui/graphs/distributiondialog.h"
#include "gui/graphs/indexgraphdialog.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/mainwindow.h"
#include "engine/settings/settingsstore.h"
#include "texts/statusline.h"

#include <QAction>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QSet>
#include <QCheckBox>
#include <QComboBox>
#include <QGraphicsSimpleTextItem>
#include <QHorizontalBarSeries>
#include <QLabel>
#include <QLegend>
#include <QLineSeries>
#include <QListWidget>
#include <QMenu>
#include <QPieSeries>
#include <QPieSlice>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QValueAxis>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace kel;
using namespace kel::test;

/// Texts the builder placed on the chart, by their kind.
QStringList chartTexts(QChart *chart, const char *kind)
{
    QStringList out;
    for (QGraphicsItem *item : chart->childItems())
        if (auto *text = dynamic_cast<QGraphicsSimpleTextItem *>(item))
            if (text->data(ChartTextRole).toString() == QLatin1String(kind))
                out << text->text();
    return out;
}

ChartDescription twoGroupChart()
{
    ChartDescription d;
    d.title = QStringLiteral("Total index split by Unit");
    d.valueAxisTitle = QStringLiteral("Index");
    d.categoryAxisTitle = QStringLiteral("Everyone [8]");
    d.dataLabels = true;
    d.verticalLabels = true;
    d.legendPosition = 0;
    d.valueAxis = ChartValueAxis{0, 5, 5};
    d.series = {{QStringLiteral("North [4]"), -1, {{QStringLiteral("Total"), 4.5, QStringLiteral("4.5")},
                                                   {QStringLiteral("Work"), 0, QString()}}},
                {QStringLiteral("South [4]"), 0x0000FF, {{QStringLiteral("Total"), 2.5, QStringLiteral("2.5")},
                                                         {QStringLiteral("Work"), 3, QStringLiteral("3.0")}}}};
    d.indexLines = {{3.5, QStringLiteral("Total index, total (3.5)")}, {2, QString()}};
    return d;
}

TEST(ChartBuilder, BarChartCarriesSeriesValuesAxesAndTexts)
{
    std::unique_ptr<QChart> chart(buildChart(twoGroupChart()));
    EXPECT_EQ(chart->title(), QStringLiteral("Total index split by Unit"));
    const QList<QAbstractSeries *> series = chart->series();
    ASSERT_EQ(series.size(), 3) << "the bars and two index lines";
    auto *bars = qobject_cast<QBarSeries *>(series[0]);
    ASSERT_TRUE(bars);
    ASSERT_EQ(bars->count(), 2);
    EXPECT_EQ(bars->barSets()[0]->label(), QStringLiteral("North [4]"));
    EXPECT_EQ(bars->barSets()[1]->at(1), 3);
    EXPECT_EQ(bars->barSets()[1]->color(), QColor(255, 0, 0)) << "colours are stored blue-green-red";

    auto *values = qobject_cast<QValueAxis *>(chart->axes(Qt::Vertical).value(0));
    ASSERT_TRUE(values);
    EXPECT_EQ(values->min(), 0);
    EXPECT_EQ(values->max(), 5);
    EXPECT_EQ(values->tickCount(), 6) << "five intervals";
    EXPECT_EQ(values->titleText(), QStringLiteral("Index"));
    auto *categories = qobject_cast<QBarCategoryAxis *>(chart->axes(Qt::Horizontal).value(0));
    ASSERT_TRUE(categories);
    EXPECT_EQ(categories->categories(), (QStringList{QStringLiteral("Total"), QStringLiteral("Work")}));
    EXPECT_EQ(categories->labelsAngle(), -90);
    EXPECT_EQ(categories->titleText(), QStringLiteral("Everyone [8]"));

    EXPECT_TRUE(chart->legend()->isVisible());
    EXPECT_EQ(chart->legend()->alignment(), Qt::AlignRight);
    // Empty data labels are not drawn.
    EXPECT_EQ(chartTexts(chart.get(), "dataLabel"),
              (QStringList{QStringLiteral("4.5"), QStringLiteral("2.5"), QStringLiteral("3.0")}));
    EXPECT_EQ(chartTexts(chart.get(), "indexLineText"), QStringList{QStringLiteral("Total index, total (3.5)")});
    auto *line = qobject_cast<QLineSeries *>(series[1]);
    ASSERT_TRUE(line);
    ASSERT_EQ(line->count(), 2);
    EXPECT_EQ(line->at(0).y(), 3.5);
    EXPECT_EQ(line->at(1).y(), 3.5);
    EXPECT_LT(line->at(0).x(), 0) << "the line spans the whole category axis";
    EXPECT_GT(line->at(1).x(), 1);
}

TEST(ChartBuilder, HorizontalBarsAutomaticScaleAndNoLegend)
{
    ChartDescription d = twoGroupChart();
    d.horizontal = true;
    d.verticalLabels = false;
    d.valueAxis.reset();
    d.legendPosition.reset();
    d.dataLabels = false;
    std::swap(d.valueAxisTitle, d.categoryAxisTitle);
    std::unique_ptr<QChart> chart(buildChart(d));
    ASSERT_TRUE(qobject_cast<QHorizontalBarSeries *>(chart->series().value(0)));
    auto *values = qobject_cast<QValueAxis *>(chart->axes(Qt::Horizontal).value(0));
    ASSERT_TRUE(values);
    EXPECT_EQ(values->min(), 0);
    EXPECT_GE(values->max(), 4.5) << "the automatic scale holds every bar and line";
    EXPECT_EQ(chart->axes(Qt::Vertical).value(0)->titleText(), QStringLiteral("Everyone [8]"));
    EXPECT_FALSE(chart->legend()->isVisible());
    EXPECT_TRUE(chartTexts(chart.get(), "dataLabel").isEmpty());
}

TEST(ChartBuilder, PieAndTheThreeDimensionalLook)
{
    ChartDescription d;
    d.chartType = ChartType::Pie;
    d.selectionCaption = QStringLiteral("Everyone [8]");
    d.legendPosition = 6;
    d.series = {{QStringLiteral("Site"), -1, {{QStringLiteral("X [1]"), 1, QStringLiteral("1")},
                                              {QStringLiteral("Y [3]"), 3, QStringLiteral("3")}}}};
    std::unique_ptr<QChart> flat(buildChart(d));
    auto *pie = qobject_cast<QPieSeries *>(flat->series().value(0));
    ASSERT_TRUE(pie);
    ASSERT_EQ(pie->count(), 2);
    EXPECT_EQ(pie->slices()[1]->label(), QStringLiteral("Y [3]"));
    EXPECT_EQ(pie->slices()[1]->value(), 3);
    EXPECT_TRUE(flat->axes().isEmpty());
    EXPECT_EQ(flat->legend()->alignment(), Qt::AlignBottom);
    EXPECT_EQ(chartTexts(flat.get(), "selectionCaption"), QStringList{QStringLiteral("Everyone [8]")});
    EXPECT_FALSE(pie->slices()[0]->isExploded());

    d.threeD = true;
    std::unique_ptr<QChart> deep(buildChart(d));
    const QPieSlice *slice = qobject_cast<QPieSeries *>(deep->series().value(0))->slices()[0];
    EXPECT_EQ(slice->brush().style(), Qt::RadialGradientPattern);
    EXPECT_TRUE(slice->isExploded());

    ChartDescription bars = twoGroupChart();
    bars.threeD = true;
    std::unique_ptr<QChart> deepBars(buildChart(bars));
    EXPECT_EQ(qobject_cast<QBarSeries *>(deepBars->series()[0])->barSets()[1]->brush().style(),
              Qt::LinearGradientPattern);
}

TEST(ChartBuilder, LegendCodesMapToSides)
{
    EXPECT_EQ(legendAlignment(0), Qt::AlignRight);
    EXPECT_EQ(legendAlignment(2), Qt::AlignLeft);
    EXPECT_EQ(legendAlignment(4), Qt::AlignTop);
    EXPECT_EQ(legendAlignment(6), Qt::AlignBottom);
    EXPECT_EQ(legendAlignment(17), Qt::AlignBottom);
}

// The chart window's copy, save and print with the settings the main window
// would give it.
TEST(ChartPictures, CopyFormatSaveByExtensionAndPermissions)
{
    StatusLine status(true);
    UserOptions options;
    LastSettings settings;
    QTemporaryDir dir;
    std::pair<QString, QString> answer;
    QString seenTitle;
    GraphPictureContext context;
    context.options = &options;
    context.settings = &settings;
    context.chooseFile = [&](const QString &title, const QString &, const QString &, const QStringList &, int) {
        seenTitle = title;
        return answer;
    };
    ChartWindow w(true, nullptr);
    w.setUpChart(twoGroupChart());
    w.resize(500, 400);
    w.setPictureContext(status, context, {.allowCopy = true, .allowPrint = false, .allowSavePicture = true});
    EXPECT_TRUE(w.mnuPCopy->isEnabled());
    EXPECT_FALSE(w.mnuPPrint->isEnabled());
    EXPECT_TRUE(w.mnuPSave->isEnabled());

    // "Graph Copy Format" 2: a bitmap only; 1: the metafile too.
    QClipboard *clipboard = QGuiApplication::clipboard();
    w.mnuPCopy->trigger();
    EXPECT_EQ(status.text(), QStringLiteral("Grafen har kopierats till urklipp!"));
    EXPECT_TRUE(clipboard->mimeData()->hasImage());
    EXPECT_FALSE(clipboard->mimeData()->hasFormat(QStringLiteral("image/x-emf")));
    options.graphCopyFormat = 1;
    w.mnuPCopy->trigger();
    EXPECT_TRUE(clipboard->mimeData()->data(QStringLiteral("image/x-emf")).startsWith(QByteArray::fromHex("01000000")));

    // The name's extension decides over the chosen type.
    answer = {dir.filePath(QStringLiteral("chart.png")), QStringLiteral("Windows enhanced meta file (*.emf)")};
    w.mnuPSave->trigger();
    EXPECT_EQ(seenTitle, QStringLiteral("Spara graf"));
    EXPECT_EQ(status.text(), QStringLiteral("Grafen har sparats!"));
    EXPECT_EQ(settings.graphSaveFormat, 3);
    QImage png(answer.first);
    ASSERT_FALSE(png.isNull());
    EXPECT_EQ(png.size(), w.chartView()->size());
    // The chart is drawn, not an empty page: its bars bring colours.
    QSet<QRgb> colours;
    for (int y = 0; y < png.height(); y += 4)
        for (int x = 0; x < png.width(); x += 4)
            colours.insert(png.pixel(x, y));
    EXPECT_GT(colours.size(), 3);
    for (const char *name : {"chart.gif", "chart.jpg", "chart.svg", "chart.pdf", "chart.wmf"}) {
        answer = {dir.filePath(QString::fromUtf8(name)), QString()};
        w.mnuPSave->trigger();
        EXPECT_GT(QFileInfo(answer.first).size(), 100) << name;
    }

    w.setPictureContext(status, context, {});
    EXPECT_FALSE(w.mnuPCopy->isEnabled());
    EXPECT_FALSE(w.doCopy());
}

class LaunchDialogs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        doc = readChartSurvey();
        ASSERT_TRUE(doc);
        steps.splitNotAllowed = {false, true, false}; // Role may not split
        steps.differentFromUsedTotal = false;
    }
    std::unique_ptr<Document> doc;
    SelectionSteps steps;
    LastSettings settings;
};

TEST_F(LaunchDialogs, SelectionLinesAreDisabledWhileTheSelectionIsTheTotalYetStayStored)
{
    settings.blockIndexGraphIndexLines = 2 | 8 | 4;
    settings.blockIndexGraphHasDataLabels = false;
    IndexGraphDialog dialog(*doc, WorkBlock, steps, settings, false);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Block Index Graph"));
    EXPECT_EQ(dialog.lblBlockName->text(), QStringLiteral("Work"));
    EXPECT_FALSE(dialog.chkIndexLines[1]->isEnabled());
    EXPECT_FALSE(dialog.chkIndexLines[3]->isEnabled());
    EXPECT_TRUE(dialog.chkIndexLines[1]->isChecked());
    EXPECT_TRUE(dialog.chkIndexLines[2]->isEnabled());
    EXPECT_FALSE(dialog.chkDataLabels->isChecked());

    const IndexGraphRequest request = dialog.request();
    EXPECT_EQ(request.indexLines, 4) << "only enabled boxes are passed on";
    EXPECT_EQ(request.block, WorkBlock);
    EXPECT_EQ(request.title, QStringLiteral("Work"));
    LastSettings stored;
    dialog.storeSettings(stored);
    EXPECT_EQ(stored.blockIndexGraphIndexLines, 2 | 8 | 4) << "the stored mask keeps the disabled boxes";
    EXPECT_FALSE(stored.blockIndexGraphHasDataLabels);

    steps.differentFromUsedTotal = true;
    IndexGraphDialog differs(*doc, WorkBlock, steps, settings, false);
    EXPECT_TRUE(differs.chkIndexLines[3]->isEnabled());
    EXPECT_EQ(differs.request().indexLines, 2 | 4 | 8);
}

TEST_F(LaunchDialogs, TotalDialogBoxesExcludeEachOtherAndSplitsHonourPrivacy)
{
    IndexGraphDialog dialog(*doc, -1, steps, settings, true);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Totalindexgraf"));
    EXPECT_EQ(dialog.chkShowQuestionIndexes->text(), QString::fromUtf8("Visa alla fråge&index"));
    // "(Inget)" and the categories that may split: Unit and Site, not Role.
    ASSERT_EQ(dialog.lstSplitBy->count(), 3);
    EXPECT_EQ(dialog.lstSplitBy->itemText(0), QStringLiteral("(Inget)"));
    EXPECT_EQ(dialog.lstSplitBy->itemData(2).toInt(), SiteQ);
    EXPECT_EQ(dialog.lstSplitBy->currentIndex(), 0);
    EXPECT_EQ(dialog.chkIndexLines[2], nullptr) << "the total dialog has two line boxes";

    dialog.chkShowBlockIndexes->setChecked(true);
    dialog.chkShowQuestionIndexes->setChecked(true);
    EXPECT_FALSE(dialog.chkShowBlockIndexes->isChecked());
    dialog.chkShowBlockIndexes->setChecked(true);
    EXPECT_FALSE(dialog.chkShowQuestionIndexes->isChecked());
    dialog.chkShowTotalIndex->setChecked(false);
    EXPECT_TRUE(dialog.cmdOK->isEnabled());
    dialog.chkShowBlockIndexes->setChecked(false);
    EXPECT_FALSE(dialog.cmdOK->isEnabled()) << "nothing to show";
    dialog.chkShowQuestionIndexes->setChecked(true);
    dialog.chkIncludeEmptySplits->setChecked(true);
    EXPECT_FALSE(dialog.request().includeEmptySplits) << "no split chosen";
    dialog.lstSplitBy->setCurrentIndex(1);
    const IndexGraphRequest request = dialog.request();
    EXPECT_TRUE(request.includeEmptySplits);
    EXPECT_TRUE(request.useQuestionsInsteadOfBlocks);
    EXPECT_FALSE(request.includeMainIndex);
    EXPECT_EQ(request.splitQuestion, UnitQ);
    EXPECT_EQ(request.title, QStringLiteral("All question indexes split by Unit"));
}

TEST_F(LaunchDialogs, DistributionDialogEnablesByChoice)
{
    settings.distributionGraphIn3D = true;
    DistributionDialog dialog(settings, false);
    dialog.setCategories(*doc);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Distribution Graph"));
    EXPECT_TRUE(dialog.chk3DLook->isChecked());
    ASSERT_EQ(dialog.lstMainCategory->count(), 3);
    EXPECT_FALSE(dialog.optGraphType[0]->isEnabled());
    EXPECT_FALSE(dialog.cmdOK->isEnabled());

    dialog.lstMainCategory->setCurrentRow(2);
    EXPECT_TRUE(dialog.optGraphType[0]->isEnabled());
    EXPECT_TRUE(dialog.cmdOK->isEnabled());
    ASSERT_EQ(dialog.lstGroupByCategory->count(), 2) << "every other category";
    EXPECT_FALSE(dialog.lstGroupByCategory->isEnabled());

    dialog.optGraphType[2]->setChecked(true);
    EXPECT_TRUE(dialog.lstGroupByCategory->isEnabled());
    EXPECT_FALSE(dialog.cmdOK->isEnabled()) << "a group category is needed";
    dialog.lstGroupByCategory->setCurrentRow(1);
    EXPECT_TRUE(dialog.cmdOK->isEnabled());
    const DistributionGraphRequest grouped = dialog.request();
    EXPECT_EQ(grouped.mainCategory, 2);
    EXPECT_EQ(grouped.groupByCategory, 1);
    EXPECT_EQ(grouped.type, DistributionGraphType::GroupedBar);

    dialog.optGraphType[0]->setChecked(true);
    EXPECT_FALSE(dialog.chkHorizontalBars->isEnabled());
    dialog.chkInPercent->setChecked(true);
    LastSettings stored;
    dialog.storeSettings(stored);
    EXPECT_TRUE(stored.distributionGraphInPercent);
    EXPECT_TRUE(stored.distributionGraphIn3D);
}

class ChartCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        const QString path = dir.filePath(QStringLiteral("charts.kel"));
        ASSERT_TRUE(chartSurvey().build().writeFile(path));
        SettingsLocation location;
        location.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
        store = std::make_unique<SettingsStore>(location);
        window = std::make_unique<MainWindow>(*store, false, MainWindowEnvironment{});
        window->setMessageHandler([](QMessageBox::Icon, const QString &, const QString &) {});
        ASSERT_TRUE(window->loadDocument(path, false).isEmpty());
    }
    ChartCommands &charts() { return window->chartCommands(); }
    ChartWindow *chartWindow(int slot)
    {
        return qobject_cast<ChartWindow *>(window->windowSlots(SlotTable::ChartGraphs)[std::size_t(slot)].window);
    }

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<MainWindow> window;
};

TEST_F(ChartCommandsTest, TotalIndexGraphFromTheViewMenuOpensAPooledWindowAfterTheTimer)
{
    charts().runDialog = [](QDialog &dialog) {
        auto &d = static_cast<IndexGraphDialog &>(dialog);
        d.chkShowBlockIndexes->setChecked(true);
        d.chkHorizontalBars->setChecked(true);
        return int(QDialog::Accepted);
    };
    window->menus().mnuVTotalGraph1->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Total index graph generated!"));
    EXPECT_TRUE(window->lastSettings().totalIndexGraphHasHorizontalBars) << "the dialog's look is remembered";
    ChartWindow *chart = chartWindow(0);
    ASSERT_TRUE(chart);
    EXPECT_EQ(chart->windowTitle(), QStringLiteral("Total index and all block indexes"));
    EXPECT_TRUE(chart->description().horizontal);
    EXPECT_FALSE(chart->isVisible()) << "shown by the timer, not at once";
    EXPECT_TRUE(charts().autoShowTimer().isActive());
    EXPECT_EQ(charts().autoShowTimer().interval(), 300);
    EXPECT_TRUE(charts().autoShowTimer().isSingleShot());
    EXPECT_TRUE(QTest::qWaitFor([&] { return chart->isVisible(); }, 2000));
    // The survey allows neither copying nor saving pictures.
    EXPECT_FALSE(chart->mnuPCopy->isEnabled());
    EXPECT_FALSE(chart->mnuPSave->isEnabled());
    EXPECT_TRUE(chart->mnuPClose->isEnabled());
    EXPECT_FALSE(chart->picture().size.isEmpty());

    // Cancelling clears the status line and opens nothing.
    charts().runDialog = [](QDialog &) { return int(QDialog::Rejected); };
    window->menus().mnuPShowTotalGraph1->trigger();
    EXPECT_TRUE(window->statusLine().text().isEmpty());
    EXPECT_FALSE(window->windowSlots(SlotTable::ChartGraphs)[1].window);

    window->closeAllGraphWindows();
    EXPECT_FALSE(chart->isVisible());
}

TEST_F(ChartCommandsTest, ViewMenuBlockItemsAndTheDistributionGraph)
{
    ASSERT_EQ(window->menus().mnuVB3Item.size(), 2);
    window->menus().mnuVB3Item[ChoicesBlock]->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Block ranking graph generated!"));
    ChartWindow *ranking = chartWindow(0);
    ASSERT_TRUE(ranking);
    EXPECT_EQ(ranking->windowTitle(), QStringLiteral("Ranking Choices"));
    ASSERT_EQ(ranking->description().series.size(), 1u);
    EXPECT_EQ(ranking->description().series[0].points[0].value, 22);

    charts().runDialog = [](QDialog &dialog) {
        auto &d = static_cast<IndexGraphDialog &>(dialog);
        d.chkShowQuestionIndexes->setChecked(true);
        return int(QDialog::Accepted);
    };
    window->menus().mnuVB4Item[WorkBlock]->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Block index graph generated!"));
    ChartWindow *block = chartWindow(1);
    ASSERT_TRUE(block);
    EXPECT_EQ(block->windowTitle(), QStringLiteral("Work and it's question indexes"));

    charts().runDialog = [](QDialog &dialog) {
        auto &d = static_cast<DistributionDialog &>(dialog);
        d.lstMainCategory->setCurrentRow(2);
        d.chkInPercent->setChecked(true);
        return int(QDialog::Accepted);
    };
    window->menus().mnuVDistributionGraph->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Distribution graph generated!"));
    ChartWindow *distribution = chartWindow(2);
    ASSERT_TRUE(distribution);
    EXPECT_EQ(distribution->description().series[0].points[1].value, 38);
    EXPECT_TRUE(window->lastSettings().distributionGraphInPercent);

    // Closing the document closes every chart window.
    window->closeDocument();
    EXPECT_FALSE(window->windowSlots(SlotTable::ChartGraphs)[0].window &&
                 window->windowSlots(SlotTable::ChartGraphs)[0].window->isVisible());
}

TEST_F(ChartCommandsTest, PopupRankingGraphsUseTheClickedColumn)
{
    // A right click on R1's answer cell: its block is Choices.
    SheetHit hit;
    hit.place = SheetPlace::AnswerCell;
    hit.column = 2;
    hit.question = R1;
    hit.row = 0;
    emit window->sheetView()->popupRequested(hit, QPoint(10, 10));
    window->menus().mnuPopUp->hide();

    window->menus().mnuPSB3SortedBy[1]->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Block ranking graph generated!"));
    ChartWindow *block = chartWindow(0);
    ASSERT_TRUE(block);
    EXPECT_EQ(block->windowTitle(), QStringLiteral("Ranking Choices"));
    // Sorted by option: Apple, Banana, Cherry.
    EXPECT_EQ(block->description().series[0].points[0].label, QStringLiteral("Apple"));
    EXPECT_EQ(block->description().valueAxisTitle, QStringLiteral("Points (3 questions weighted 3, 2 and 1)"));

    window->menus().mnuPSQ3SortedBy[0]->trigger();
    EXPECT_EQ(window->statusLine().text(), QStringLiteral("Question ranking graph generated!"));
    ChartWindow *question = chartWindow(1);
    ASSERT_TRUE(question);
    EXPECT_EQ(question->windowTitle(), QStringLiteral("Ranking R1"));
    EXPECT_EQ(question->description().series[0].points[0].value, 12) << "Apple and Banana tie; Apple stays first";
    EXPECT_EQ(charts().pendingWindow(), question) << "the timer shows the latest window";
}

} // namespace
