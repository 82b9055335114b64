// SPDX-License-Identifier: GPL-3.0-or-later
// The chart view checked on the built QChart (series, values, axes, texts),
// the launch dialogs' rules, and the chart commands driven through the main
// window's menus on a survey read from disk.
#include "chartsurvey.h"

#include "gui/graphs/chartbuilder.h"
#include "gui/graphs/chartpicture.h"
#include "render/pictures/picturewriter.h"
#include "gui/graphs/graphcommands.h"
#include "gui/graphs/chartwindow.h"
#include "gui/graphs/distributiondialog.h"
#include "gui/graphs/indexgraphdialog.h"
#include "gui/overview/sheetview.h"
#include "gui/common/viewersession.h"
#include "gui/shell/mainwindow.h"
#include "engine/settings/settingsstore.h"
#include "texts/statusline.h"

#include <QAction>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QGraphicsLayout>
#include <QGraphicsScene>
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
#include <QToolTip>
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
    ChartDescription d{.valueAxisTitle = QStringLiteral("Index"),
                       .categoryAxisTitle = QStringLiteral("Everyone [8]"),
                       .verticalLabels = true,
                       .dataLabels = true,
                       .legendPosition = 0,
                       .valueAxis = {{0, 5, 5}}};
    d.series = {
        {QStringLiteral("North [4]"),
         -1,
         {{QStringLiteral("Total"), 4.5, QStringLiteral("4.5")}, {QStringLiteral("Work"), 0, QString()}}},
        {QStringLiteral("South [4]"),
         0x0000FF,
         {{QStringLiteral("Total"), 2.5, QStringLiteral("2.5")}, {QStringLiteral("Work"), 3, QStringLiteral("3.0")}}}};
    d.indexLines = {{3.5, QStringLiteral("Total index, total (3.5)")}, {2, QString()}};
    return d;
}

TEST(ChartBuilder, BarChartCarriesSeriesValuesAxesAndTexts)
{
    std::unique_ptr<QChart> chart(buildChart(twoGroupChart()));
    const QList<QAbstractSeries *> series = chart->series();
    ASSERT_EQ(series.size(), 3) << "the bars and two index lines";
    auto *bars = qobject_cast<QBarSeries *>(series[0]);
    ASSERT_TRUE(bars);
    ASSERT_EQ(bars->count(), 2);
    EXPECT_TRUE(bars->barSets()[0]->label() == QStringLiteral("North [4]") && bars->barSets()[1]->at(1) == 3);
    EXPECT_EQ(bars->barSets()[1]->color(), QColor(255, 0, 0)) << "colours are stored blue-green-red";

    auto *values = qobject_cast<QValueAxis *>(chart->axes(Qt::Vertical).value(0));
    ASSERT_TRUE(values);
    EXPECT_TRUE(values->min() == 0 && values->max() == 5 && values->tickCount() == 6) << "five intervals";
    auto *categories = qobject_cast<QBarCategoryAxis *>(chart->axes(Qt::Horizontal).value(0));
    ASSERT_TRUE(categories);
    EXPECT_EQ(categories->categories(), (QStringList{QStringLiteral("Total"), QStringLiteral("Work")}));
    EXPECT_EQ(categories->labelsAngle(), -90);
    EXPECT_EQ(chart->legend()->alignment(), Qt::AlignRight);
    // Empty data labels are not drawn.
    EXPECT_EQ(chartTexts(chart.get(), "dataLabel"),
              (QStringList{QStringLiteral("4.5"), QStringLiteral("2.5"), QStringLiteral("3.0")}));
    EXPECT_EQ(chartTexts(chart.get(), "indexLineText"), QStringList{QStringLiteral("Total index, total (3.5)")});
    auto *line = qobject_cast<QLineSeries *>(series[1]);
    ASSERT_TRUE(line);
    ASSERT_EQ(line->count(), 2);
    EXPECT_TRUE(line->at(0).y() == 3.5 && line->at(1).y() == 3.5);
    EXPECT_TRUE(line->at(0).x() < 0 && line->at(1).x() > 1) << "the line spans the whole category axis";

    // Horizontal bars, the automatic scale, no legend and no data labels.
    ChartDescription d = twoGroupChart();
    d.horizontal = true;
    d.verticalLabels = false;
    d.valueAxis.reset();
    d.legendPosition.reset();
    d.dataLabels = false;
    std::unique_ptr<QChart> sideways(buildChart(d));
    ASSERT_TRUE(qobject_cast<QHorizontalBarSeries *>(sideways->series().value(0)));
    auto *automatic = qobject_cast<QValueAxis *>(sideways->axes(Qt::Horizontal).value(0));
    ASSERT_TRUE(automatic);
    EXPECT_GE(automatic->max(), 4.5) << "the automatic scale holds every bar and line";
    EXPECT_FALSE(sideways->legend()->isVisible());
    EXPECT_TRUE(chartTexts(sideways.get(), "dataLabel").isEmpty());
}

TEST(ChartBuilder, PieAndTheThreeDimensionalLook)
{
    ChartDescription d{
        .chartType = ChartType::Pie, .selectionCaption = QStringLiteral("Everyone [8]"), .legendPosition = 6};
    d.series = {
        {QStringLiteral("Site"),
         -1,
         {{QStringLiteral("X [1]"), 1, QStringLiteral("1")}, {QStringLiteral("Y [3]"), 3, QStringLiteral("3")}}}};
    std::unique_ptr<QChart> flat(buildChart(d));
    auto *pie = qobject_cast<QPieSeries *>(flat->series().value(0));
    ASSERT_TRUE(pie);
    ASSERT_EQ(pie->count(), 2);
    EXPECT_TRUE(pie->slices()[1]->label() == QStringLiteral("Y [3]") && pie->slices()[1]->value() == 3);
    EXPECT_TRUE(flat->axes().isEmpty() && flat->legend()->alignment() == Qt::AlignBottom);
    EXPECT_EQ(chartTexts(flat.get(), "selectionCaption"), QStringList{QStringLiteral("Everyone [8]")});

    d.threeD = true;
    std::unique_ptr<QChart> deep(buildChart(d));
    const QPieSlice *slice = qobject_cast<QPieSeries *>(deep->series().value(0))->slices()[0];
    EXPECT_TRUE(slice->brush().style() == Qt::RadialGradientPattern && slice->isExploded());

    ChartDescription bars = twoGroupChart();
    bars.threeD = true;
    std::unique_ptr<QChart> deepBars(buildChart(bars));
    EXPECT_EQ(qobject_cast<QBarSeries *>(deepBars->series()[0])->barSets()[1]->brush().style(),
              Qt::LinearGradientPattern);
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
    GraphPictureContext context{.options = &options, .settings = &settings};
    context.chooseFile = [&](const QString &title, const QString &, const QString &, const QStringList &, int) {
        seenTitle = title;
        return answer;
    };
    ChartWindow w(true, nullptr);
    w.setUpChart(twoGroupChart());
    w.resize(500, 400);
    w.setPictureContext(status, context, {.allowCopy = true, .allowPrint = false, .allowSavePicture = true});
    EXPECT_TRUE(w.mnuPCopy->isEnabled() && !w.mnuPPrint->isEnabled() && w.mnuPSave->isEnabled());

    // "Graph Copy Format" 2: a bitmap only; 1: the metafile too.
    QClipboard *clipboard = QGuiApplication::clipboard();
    w.mnuPCopy->trigger();
    EXPECT_TRUE(clipboard->mimeData()->hasImage());
    EXPECT_FALSE(clipboard->mimeData()->hasFormat(QStringLiteral("image/x-emf")));
    options.graphCopyFormat = 1;
    w.mnuPCopy->trigger();
    EXPECT_TRUE(clipboard->mimeData()->data(QStringLiteral("image/x-emf")).startsWith(QByteArray::fromHex("01000000")));

    // The name's extension decides over the chosen type.
    answer = {dir.filePath(QStringLiteral("chart.png")), QStringLiteral("Windows enhanced meta file (*.emf)")};
    w.mnuPSave->trigger();
    EXPECT_EQ(seenTitle, QStringLiteral("Spara graf"));
    EXPECT_EQ(settings.graphSaveFormat, 3);
    const QImage png(answer.first);
    ASSERT_EQ(png.size(), w.chartView()->size());
    // The chart is drawn, not an empty page: its bars bring colours.
    QSet<QRgb> colours;
    for (int y = 0; y < png.height(); y += 4)
        for (int x = 0; x < png.width(); x += 4)
            colours.insert(png.pixel(x, y));
    EXPECT_GT(colours.size(), 3);
    answer = {dir.filePath(QStringLiteral("chart.svg")), QString()};
    w.mnuPSave->trigger();
    EXPECT_GT(QFileInfo(answer.first).size(), 100);

    w.setPictureContext(status, context, {});
    EXPECT_FALSE(w.mnuPCopy->isEnabled() || w.doCopy());
}

class LaunchDialogs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        doc = readChartSurvey();
        blocks = BlockCatalogue(*doc);
        steps.splitNotAllowed = {false, true, false}; // Role may not split
        steps.differentFromUsedTotal = false;
    }
    std::unique_ptr<Document> doc;
    BlockCatalogue blocks;
    SelectionSteps steps;
    LastSettings settings;
};

TEST_F(LaunchDialogs, IndexDialogsPassOnlyEnabledLinesAndHonourPrivacy)
{
    // The selection is the total: its lines are disabled, yet their stored bits stay.
    settings.blockIndexGraphIndexLines = 2 | 8 | 4;
    IndexGraphDialog dialog(*doc, blocks, WorkBlock, steps, settings, false);
    EXPECT_TRUE(!dialog.chkIndexLines[1]->isEnabled() && dialog.chkIndexLines[1]->isChecked());
    EXPECT_EQ(dialog.request().indexLines, 4) << "only enabled boxes are passed on";
    LastSettings stored;
    dialog.storeSettings(stored);
    EXPECT_EQ(stored.blockIndexGraphIndexLines, 2 | 8 | 4);
    steps.differentFromUsedTotal = true;
    EXPECT_EQ(IndexGraphDialog(*doc, blocks, WorkBlock, steps, settings, false).request().indexLines, 2 | 4 | 8);

    // The total dialog: "(Inget)" and the categories that may split (not Role);
    // block and question indexes exclude each other; nothing to show, no OK.
    IndexGraphDialog total(*doc, blocks, -1, steps, settings, true);
    ASSERT_EQ(total.lstSplitBy->count(), 3);
    EXPECT_EQ(total.lstSplitBy->itemData(2).toInt(), SiteQ);
    total.chkShowBlockIndexes->setChecked(true);
    total.chkShowQuestionIndexes->setChecked(true);
    EXPECT_FALSE(total.chkShowBlockIndexes->isChecked());
    total.chkShowTotalIndex->setChecked(false);
    total.chkShowQuestionIndexes->setChecked(false);
    EXPECT_FALSE(total.cmdOK->isEnabled());
    total.chkShowQuestionIndexes->setChecked(true);
    total.chkIncludeEmptySplits->setChecked(true);
    EXPECT_FALSE(total.request().includeEmptySplits) << "no split chosen";
    total.lstSplitBy->setCurrentIndex(1);
    const IndexGraphRequest request = total.request();
    EXPECT_TRUE(request.includeEmptySplits && request.useQuestionsInsteadOfBlocks && !request.includeMainIndex);
    EXPECT_EQ(request.splitQuestion, UnitQ);
}

TEST_F(LaunchDialogs, DistributionDialogEnablesByChoice)
{
    DistributionDialog dialog(settings, false);
    dialog.setCategories(*doc);
    ASSERT_EQ(dialog.lstMainCategory->count(), 3);
    EXPECT_FALSE(dialog.cmdOK->isEnabled());
    dialog.lstMainCategory->setCurrentRow(2);
    EXPECT_TRUE(dialog.cmdOK->isEnabled());
    ASSERT_EQ(dialog.lstGroupByCategory->count(), 2) << "every other category";
    dialog.optGraphType[2]->setChecked(true);
    EXPECT_FALSE(dialog.cmdOK->isEnabled()) << "a group category is needed";
    dialog.lstGroupByCategory->setCurrentRow(1);
    const DistributionGraphRequest grouped = dialog.request();
    EXPECT_TRUE(grouped.mainCategory == 2 && grouped.groupByCategory == 1);
    EXPECT_EQ(grouped.type, DistributionGraphType::GroupedBar);
}

class ChartCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString path = dir.filePath(QStringLiteral("charts.kel"));
        ASSERT_TRUE(chartSurvey().build().writeFile(path));
        store = std::make_unique<SettingsStore>(SettingsLocation{.file = dir.filePath(QStringLiteral("k.ini"))});
        window = std::make_unique<MainWindow>(*store, false, MainWindowEnvironment{});
        window->setMessageHandler([](QMessageBox::Icon, const QString &, const QString &) {});
        ASSERT_EQ(window->loadDocument(path, false), OpenResult::Ok);
    }
    GraphCommands &charts() { return *window->commands().graphs; }
    ChartWindow *chartWindow(int slot)
    {
        return qobject_cast<ChartWindow *>(
            window->session().windowSlots(SlotTable::ChartGraphs)[std::size_t(slot)].window);
    }

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<MainWindow> window;
};

TEST_F(ChartCommandsTest, ViewMenuGraphsOpenInPooledWindowsAfterTheTimer)
{
    charts().runDialog = [](QDialog &dialog) {
        auto &d = static_cast<IndexGraphDialog &>(dialog);
        d.chkShowBlockIndexes->setChecked(true);
        d.chkHorizontalBars->setChecked(true);
        return int(QDialog::Accepted);
    };
    window->menus().mnuVTotalGraph1->trigger();
    EXPECT_TRUE(window->settings().last.totalIndexGraphHasHorizontalBars) << "the dialog's look is remembered";
    ChartWindow *chart = chartWindow(0);
    ASSERT_TRUE(chart);
    EXPECT_EQ(chart->windowTitle(), QStringLiteral("Total index and all block indexes"));
    EXPECT_FALSE(chart->isVisible()) << "shown by the timer, not at once";
    EXPECT_TRUE(QTest::qWaitFor([&] { return chart->isVisible(); }, 2000));
    EXPECT_FALSE(chart->mnuPCopy->isEnabled()) << "the survey allows no copying";

    // Cancelling clears the status line and opens nothing.
    charts().runDialog = [](QDialog &) { return int(QDialog::Rejected); };
    window->menus().mnuPShowTotalGraph1->trigger();
    EXPECT_TRUE(window->statusLine().text().isEmpty());
    EXPECT_FALSE(window->session().windowSlots(SlotTable::ChartGraphs)[1].window);

    charts().runDialog = [](QDialog &dialog) {
        static_cast<DistributionDialog &>(dialog).lstMainCategory->setCurrentRow(2);
        return int(QDialog::Accepted);
    };
    window->menus().mnuVDistributionGraph->trigger();
    ASSERT_TRUE(chartWindow(1));
    EXPECT_EQ(chartWindow(1)->description().series[0].points[1].value, 3);
    window->menus().mnuVB3Item[ChoicesBlock]->trigger();
    ASSERT_TRUE(chartWindow(2));
    EXPECT_EQ(chartWindow(2)->description().series[0].points[0].value, 22);
    window->closeDocument();
    EXPECT_FALSE(chart->isVisible()) << "closing the document closes the charts";
}

TEST_F(ChartCommandsTest, PopupRankingGraphsUseTheClickedColumn)
{
    SheetHit hit;
    hit.place = SheetPlace::AnswerCell;
    hit.column = 2;
    hit.question = R1;
    emit window->sheetView()->popupRequested(hit, QPoint(10, 10));
    window->menus().mnuPopUp->hide();
    window->menus().mnuPSB3SortedBy[1]->trigger();
    ASSERT_TRUE(chartWindow(0));
    EXPECT_EQ(chartWindow(0)->windowTitle(), QStringLiteral("Ranking Choices"));
    EXPECT_EQ(chartWindow(0)->description().series[0].points[0].label, QStringLiteral("Apple")) << "by option";
    window->menus().mnuPSQ3SortedBy[0]->trigger();
    ASSERT_TRUE(chartWindow(1));
    EXPECT_EQ(chartWindow(1)->windowTitle(), QStringLiteral("Ranking R1"));
    EXPECT_EQ(charts().pendingWindow(), chartWindow(1)) << "the timer shows the latest window";
}

// Charts read in point order (left to right, or top-down when their bars
// lie), copy opaque, and do not repeat a one-series value-axis title as a
// legend.
TEST(ChartLayout, PointOrderOpaqueCopiesAndNoEchoedLegend)
{
    kel::ChartDescription d;
    d.title = QStringLiteral("Ranking");
    d.valueAxisTitle = QStringLiteral("Points");
    d.legendPosition = 0;
    kel::ChartSeries series;
    series.name = QStringLiteral("Points");
    series.colour = 0x0000C8; // red
    series.points = {{QStringLiteral("first"), 90}, {QStringLiteral("second"), 30}};
    d.series = {series};
    for (bool horizontal : {false, true}) {
        SCOPED_TRACE(horizontal);
        d.horizontal = horizontal;
        std::unique_ptr<QChart> chart(kel::buildChart(d));
        EXPECT_FALSE(chart->legend()->isVisible());
        const QImage image = kel::renderPictureImage(kel::chartPicture(d, QSize(400, 300)), Qt::transparent);
        ASSERT_FALSE(image.isNull());
        for (const QPoint &corner : {QPoint(0, 0), QPoint(399, 0), QPoint(0, 299), QPoint(399, 299)})
            EXPECT_EQ(qAlpha(image.pixel(corner)), 255) << corner.x() << "," << corner.y();
        // The first category's bar (90) stands left of (vertical) or above
        // (horizontal) the second's (30): the first row or column, from the
        // top or left, crossing a long bar comes before the short one's.
        const auto reddish = [&image](int x, int y) {
            const QRgb p = image.pixel(x, y);
            return qRed(p) > 180 && qGreen(p) < 60 && qBlue(p) < 60;
        };
        const int lines = horizontal ? image.height() : image.width();
        const int across = horizontal ? image.width() : image.height();
        std::vector<int> runs;
        for (int a = 0; a < lines; ++a) {
            int run = 0;
            for (int b = 0; b < across; ++b)
                run += horizontal ? reddish(b, a) : reddish(a, b);
            runs.push_back(run);
        }
        const int longest = *std::max_element(runs.begin(), runs.end());
        ASSERT_GT(longest, 0);
        int firstLong = -1, firstShort = -1;
        for (int a = 0; a < lines; ++a) {
            if (firstLong < 0 && runs[std::size_t(a)] > longest * 9 / 10)
                firstLong = a;
            if (firstShort < 0 && runs[std::size_t(a)] > longest / 5 && runs[std::size_t(a)] < longest / 2)
                firstShort = a;
        }
        ASSERT_GE(firstLong, 0);
        ASSERT_GE(firstShort, 0);
        EXPECT_LT(firstLong, firstShort);
    }
}

// Data labels of a crowded split index chart never overlap each other or the
// index lines' texts, whichever way the bars run; crowded labels move or are
// thinned out, but lone ones stay.
TEST(ChartLayout, DataLabelsNeverOverlap)
{
    kel::ChartDescription d;
    d.title = QStringLiteral("Index");
    d.dataLabels = true;
    d.legendPosition = 0;
    for (int s = 0; s < 5; ++s) {
        kel::ChartSeries series;
        series.name = QStringLiteral("Group %1").arg(s);
        for (int p = 0; p < 8; ++p) {
            const double value = 3.40 + 0.01 * ((s + p) % 3);
            series.points.push_back({QStringLiteral("Q%1").arg(p), value, QString::number(value, 'f', 2)});
        }
        d.series.push_back(series);
    }
    d.indexLines = {{3.42, QStringLiteral("Total index 3.42")}, {3.45, QStringLiteral("Target 3.45")}};
    for (bool horizontal : {false, true}) {
        SCOPED_TRACE(horizontal);
        d.horizontal = horizontal;
        QGraphicsScene scene;
        QChart *chart = kel::buildChart(d);
        scene.addItem(chart);
        chart->setGeometry(QRectF(0, 0, 800, 600));
        if (chart->layout())
            chart->layout()->activate();
        QCoreApplication::processEvents();
        std::vector<QRectF> boxes;
        int labels = 0, shown = 0;
        for (QGraphicsItem *item : chart->childItems()) {
            const QString role = item->data(kel::ChartTextRole).toString();
            if (role != QLatin1String("dataLabel") && role != QLatin1String("indexLineText"))
                continue;
            labels += role == QLatin1String("dataLabel");
            if (!item->isVisible())
                continue;
            shown += role == QLatin1String("dataLabel");
            boxes.push_back(item->sceneBoundingRect());
        }
        EXPECT_EQ(labels, 40);
        EXPECT_GT(shown, 0);
        for (std::size_t i = 0; i < boxes.size(); ++i)
            for (std::size_t j = i + 1; j < boxes.size(); ++j)
                EXPECT_FALSE(boxes[i].intersects(boxes[j])) << i << " and " << j;
    }
}

// The rule for category labels at its edges: upright while the widest
// label and its gap fit a category's share of the axis; a line and its gap
// for each turned or stacked label, else every step-th. The figures are
// worked by hand: 640 px hold 8 shares of 80 (a 74 px label and 6 px gap),
// and 40 lines of 14 px and 2 px gap.
TEST(CategoryLabels, UprightTurnedAndThinnedAtTheirEdges)
{
    struct Case {
        qsizetype count;
        qreal widest;
        bool standing, turnedAsked;
        kel::CategoryLabels expected;
    };
    static const Case Cases[] = {
        {8, 74, true, false, {false, 1}},    // the last count whose widest label fits upright
        {9, 74, true, false, {true, 1}},     // one more: turned
        {8, 75, true, false, {true, 1}},     // one pixel wider: turned
        {8, 74, true, true, {true, 1}},      // turned when asked, though it would fit
        {40, 74, true, false, {true, 1}},    // the last count of turned lines that fits
        {41, 74, true, false, {true, 2}},    // one more: every other
        {80, 74, true, false, {true, 2}},    // every other still fits
        {81, 74, true, false, {true, 3}},    // one more: every third
        {40, 500, false, false, {false, 1}}, // lying bars: stacked lines, never turned
        {41, 500, false, true, {false, 2}},  {1, 5000, true, false, {true, 1}}, // a lone label is never thinned
        {0, 74, true, false, {false, 1}},                                       // nothing to lay out
    };
    for (const Case &c : Cases) {
        SCOPED_TRACE(testing::Message() << c.count << " labels of " << c.widest << " px, standing " << c.standing
                                        << ", asked " << c.turnedAsked);
        EXPECT_EQ(kel::categoryLabels(c.count, 640, c.widest, 14, c.standing, c.turnedAsked), c.expected);
    }
}

/// The category labels the chart shows, with their boxes on the scene.
std::vector<std::pair<QString, QRectF>> shownCategoryLabels(QChart *chart)
{
    std::vector<std::pair<QString, QRectF>> out;
    for (QGraphicsItem *item : chart->childItems())
        if (auto *text = dynamic_cast<QGraphicsSimpleTextItem *>(item))
            if (text->data(ChartTextRole).toString() == QLatin1String("categoryLabel") && text->isVisible())
                out.emplace_back(text->text(), text->sceneBoundingRect());
    return out;
}

/// The texts Qt draws under `root` (axis titles, legend names), shown,
/// with their boxes on the scene.
std::vector<std::pair<QString, QRectF>> qtTexts(QGraphicsItem *root)
{
    std::vector<std::pair<QString, QRectF>> out;
    const QList<QGraphicsItem *> top = root->childItems();
    std::vector<QGraphicsItem *> items(top.begin(), top.end());
    while (!items.empty()) {
        QGraphicsItem *item = items.back();
        items.pop_back();
        for (QGraphicsItem *child : item->childItems())
            items.push_back(child);
        if (auto *text = dynamic_cast<QGraphicsTextItem *>(item); text && text->isVisible())
            out.emplace_back(text->toPlainText(), text->sceneBoundingRect());
    }
    return out;
}

/// Lays `chart` out at `size` as a window would, labels chosen for it included.
void layOut(QChart *chart, const QSizeF &size)
{
    chart->setGeometry(QRectF(QPointF(0, 0), size));
    for (int pass = 0; pass < 3; ++pass) {
        chart->layout()->activate();
        QCoreApplication::processEvents();
    }
}

// Many categories, laid out at a chart's default size and at a small
// window's, whichever way the bars run: the labels shown never overlap each
// other or the axis title, the first item's is among them, long ones are
// shortened, and texts the axis would read as markup stay texts.
TEST(ChartLayout, CrowdedCategoryLabelsNeverOverlap)
{
    for (const QSizeF size : {QSizeF(800, 600), QSizeF(620, 460)}) {
        for (const int count : {4, 44, 120}) {
            for (const bool horizontal : {false, true}) {
                SCOPED_TRACE(testing::Message() << count << " categories at " << size.width() << " x " << size.height()
                                                << ", lying " << horizontal);
                kel::ChartDescription d;
                d.title = QStringLiteral("Indexes");
                d.categoryAxisTitle = QStringLiteral("Everyone [600]");
                d.verticalLabels = true;
                d.horizontal = horizontal;
                kel::ChartSeries series;
                series.name = QStringLiteral("Index");
                QStringList categories;
                for (int p = 0; p < count; ++p) {
                    const QString label = p == 0 ? QStringLiteral("<5 years & more")
                        : p == 1 ? QStringLiteral("A question text long enough to take a third of the chart and more")
                                 : QStringLiteral("Question %1").arg(p);
                    categories << label;
                    series.points.push_back({label, 0.3 + 0.01 * (p % 50)});
                }
                d.series = {series};
                QGraphicsScene scene;
                QChart *chart = kel::buildChart(d);
                scene.addItem(chart);
                layOut(chart, size);
                auto shown = shownCategoryLabels(chart);
                QStringList texts;
                for (const auto &[text, box] : shown)
                    texts << text;
                EXPECT_TRUE(texts.contains(categories[0])) << texts.join(QLatin1Char('|')).toStdString();
                if (count == 4)
                    EXPECT_EQ(shown.size(), 4u);
                else
                    EXPECT_GE(shown.size(), std::size_t(count / 8)) << "thinned more than the room asks";
                QRectF title;
                for (const auto &[text, box] : qtTexts(chart))
                    if (text == d.categoryAxisTitle)
                        title = box;
                EXPECT_FALSE(title.isEmpty());
                shown.emplace_back(d.categoryAxisTitle, title);
                for (std::size_t i = 0; i < shown.size(); ++i)
                    for (std::size_t j = i + 1; j < shown.size(); ++j)
                        EXPECT_FALSE(shown[i].second.intersects(shown[j].second))
                            << shown[i].first.toStdString() << " and " << shown[j].first.toStdString();
                // Shortened where long, to a third of the chart at most.
                for (const auto &[text, box] : shown)
                    EXPECT_LE(std::max(box.width(), box.height()), size.width() / 3 + 8) << text.toStdString();
            }
        }
    }
}

// A legend under a pie of six groups at a small window's size: Qt shortens
// every name to make one row fit; the legend takes a smaller size instead,
// so whole names show, and keeps full names in tooltips.
TEST(ChartLayout, LegendNamesShowWhole)
{
    kel::ChartDescription d{.chartType = kel::ChartType::Pie, .legendPosition = 6};
    kel::ChartSeries series;
    series.name = QStringLiteral("Avdelning");
    for (const char *name :
         {"Försäljning [110]", "Produktion [169]", "Ekonomi [44]", "IT [87]", "Personal [30]", "Kundtjänst [160]"})
        series.points.push_back({QString::fromUtf8(name), 10});
    d.series = {series};
    QGraphicsScene scene;
    QChart *chart = kel::buildChart(d);
    scene.addItem(chart);
    layOut(chart, QSizeF(620, 460));
    EXPECT_TRUE(chart->legend()->showToolTips());
    QStringList shown;
    for (const auto &[text, box] : qtTexts(chart->legend()))
        shown << text;
    for (const kel::ChartPoint &p : series.points)
        EXPECT_TRUE(shown.contains(p.label))
            << p.label.toStdString() << " in " << shown.join(QLatin1Char('|')).toStdString();
}

// The pointer resting on a bar names its category in full (its label may
// be shortened or not shown), its group and its value; leaving hides it.
TEST(ChartLayout, BarsNameTheirCategoryInATooltip)
{
    kel::ChartDescription d;
    const QString longName = QStringLiteral("A question text long enough to be shortened under its bar, and more");
    d.series = {
        {QStringLiteral("North [4]"), -1, {{longName, 4.5, QStringLiteral("4.50")}, {QStringLiteral("Q2"), 3, {}}}},
        {QStringLiteral("South [4]"), -1, {{longName, 2.5, QStringLiteral("2.50")}, {QStringLiteral("Q2"), 1, {}}}}};
    for (const bool horizontal : {false, true}) {
        SCOPED_TRACE(horizontal);
        d.horizontal = horizontal;
        QChartView view(kel::buildChart(d));
        view.resize(400, 300);
        view.show();
        QCoreApplication::processEvents();
        auto *bars = qobject_cast<QAbstractBarSeries *>(view.chart()->series().value(0));
        ASSERT_TRUE(bars);
        // Lying bars hold their points last first: the first item is the top one.
        const int first = horizontal ? 1 : 0;
        Q_EMIT bars->hovered(true, first, bars->barSets().value(1));
        EXPECT_EQ(QToolTip::text(), longName + QStringLiteral("\nSouth [4]\n2.50"));
        Q_EMIT bars->hovered(true, 1 - first, bars->barSets().value(0));
        EXPECT_EQ(QToolTip::text(), QStringLiteral("Q2\nNorth [4]\n3"));
        EXPECT_TRUE(QToolTip::isVisible());
        Q_EMIT bars->hovered(false, 1 - first, bars->barSets().value(0));
        // A tooltip fades: it is gone within a moment.
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 5000));
    }
}

} // namespace
