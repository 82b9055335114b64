// SPDX-License-Identifier: GPL-3.0-or-later
// The commands' shared rules (save dialog types, folders, print format
// units, the clipboard, printing) and the overview's commands run from
// the main window's menus.
#include "engine/overview/overviewtext.h"
#include "gui/overview/sheetview.h"
#include "gui/shell/overviewpicturecommands.h"
#include "gui/pictures/picturecommands.h"
#include "gui/pictures/printformatdialog.h"
#include "gui/shell/mainwindow.h"
#include "render/pictures/picturewriter.h"
#include "texts/statusline.h"

#include "picturedocument.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPrinter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

QStringList descriptions(const std::vector<SaveFilter> &filters)
{
    QStringList list;
    for (const SaveFilter &f : filters)
        list << f.description + QLatin1Char('|') + f.pattern;
    return list;
}

TEST(SaveDialogRules, FilterTextsInBothLanguages)
{
    EXPECT_EQ(descriptions(saveFilters(SaveKind::Overview, false, true)).join(QLatin1Char('|')),
              QStringLiteral("Windows enhanced meta file (*.emf)|*.emf|Windows meta file (*.wmf)|*.wmf"));
    EXPECT_EQ(descriptions(saveFilters(SaveKind::Overview, true, true)).join(QLatin1Char('|')),
              QStringLiteral("Windows utökad metafil (*.emf)|*.emf|Windows metafil (*.wmf)|*.wmf"));
    EXPECT_EQ(descriptions(saveFilters(SaveKind::BasicGraph, false, false)).join(QLatin1Char('|')),
              QStringLiteral("Windows enhanced meta file|*.emf|Windows meta file|*.wmf"));
    EXPECT_EQ(descriptions(saveFilters(SaveKind::Overview, true, false)).join(QLatin1Char('|')),
              QStringLiteral("Windows utökad metafil|*.emf|Windows metafil|*.wmf"));
    const QStringList chart = descriptions(saveFilters(SaveKind::Chart, true, true));
    ASSERT_GE(chart.size(), 6);
    EXPECT_EQ(chart.mid(0, 6).join(QLatin1Char('|')),
              QStringLiteral("Windows utökad metafil (*.emf)|*.emf|Windows metafil (*.wmf)|*.wmf|Portable Network "
                             "Graphics (*.png)|*.png|Windows bitmapp (*.bmp)|*.bmp|JPEG-filutbytesformat (*.jpg)|*.jpg|"
                             "Graphics Interchange Format (*.gif)|*.gif"));
}

TEST(SaveDialogRules, FormatSettingAndChoices)
{
    const auto overview = saveFilters(SaveKind::Overview, false, true);
    const auto chart = saveFilters(SaveKind::Chart, false, true);
    EXPECT_EQ(preselectedFilter(overview, 1), 0);
    EXPECT_EQ(preselectedFilter(overview, 2), 1);
    EXPECT_EQ(preselectedFilter(overview, 5), 0) << "a chart-only type falls back to EMF";
    EXPECT_EQ(preselectedFilter(chart, 6), 5);
    EXPECT_EQ(preselectedFilter(chart, -3), 0);

    // The filter decides for the overview, and the extension is added.
    SaveChoice c = resolveSaveChoice(overview, QStringLiteral("/p/report"), overview[1].description, false);
    EXPECT_EQ(c.path, QStringLiteral("/p/report.wmf"));
    EXPECT_EQ(c.format, PictureFormat::Wmf);
    EXPECT_EQ(c.settingValue, 2);
    c = resolveSaveChoice(overview, QStringLiteral("/p/r.EMF"), overview[0].description, false);
    EXPECT_EQ(c.path, QStringLiteral("/p/r.EMF"));
    EXPECT_EQ(c.settingValue, 1);
    // No recognisable type: nothing to write.
    c = resolveSaveChoice(overview, QStringLiteral("/p/r.emf"), QStringLiteral("All files (*)"), false);
    EXPECT_FALSE(c.format);
    // For charts the extension decides over the filter.
    c = resolveSaveChoice(chart, QStringLiteral("/p/r.gif"), chart[0].description, true);
    EXPECT_EQ(c.format, PictureFormat::Gif);
    EXPECT_EQ(c.settingValue, 6);
    EXPECT_EQ(c.path, QStringLiteral("/p/r.gif"));
}

TEST(SaveDialogRules, Folder)
{
    QTemporaryDir dir;
    EXPECT_EQ(pictureSaveFolder(dir.path(), QStringLiteral("/pics"), QStringLiteral("/docs")), dir.path());
    EXPECT_EQ(pictureSaveFolder(dir.filePath(QStringLiteral("gone")), QStringLiteral("/pics"), QStringLiteral("/docs")),
              QStringLiteral("/pics"));
    EXPECT_EQ(pictureSaveFolder(QString(), QString(), QStringLiteral("/docs")), QStringLiteral("/docs"));
}

TEST(PrintFormat, UnitsAndMargins)
{
    const MarginUnit mm = marginUnit(QLocale::MetricSystem, true);
    const MarginUnit inches = marginUnit(QLocale::ImperialUSSystem, false);
    EXPECT_EQ(mm.name, QStringLiteral("mm"));
    EXPECT_EQ(inches.name, QStringLiteral("inches"));
    EXPECT_EQ(marginUnit(QLocale::ImperialUKSystem, true).name, QStringLiteral("tum"));
    const QLocale c = QLocale::c(), swedish(QLocale::Swedish, QLocale::Sweden);
    EXPECT_EQ(formatMargin(1701, mm, c), QStringLiteral("30.0"));
    EXPECT_EQ(formatMargin(567, mm, swedish), QStringLiteral("10,0"));
    EXPECT_EQ(formatMargin(1440, inches, c), QStringLiteral("1.00"));
    EXPECT_EQ(parseMargin(QStringLiteral("30,0"), mm, swedish), 1701);
    EXPECT_EQ(parseMargin(QStringLiteral(" 0.5 "), inches, c), 720);
    EXPECT_FALSE(parseMargin(QStringLiteral("abc"), mm, c));
    EXPECT_FALSE(parseMargin(QStringLiteral("-1"), mm, c));
    EXPECT_FALSE(parseMargin(QStringLiteral("1e30"), mm, c));

    LastSettings settings;
    settings.printerDeviceName = QStringLiteral("Second");
    PrintFormatDialog dialog(settings, {QStringLiteral("First"), QStringLiteral("Second")}, mm, true, c);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Utskriftsformat"));
    EXPECT_EQ(dialog.printerBox()->currentText(), QStringLiteral("Second"));
    EXPECT_EQ(dialog.marginBox(0)->text(), QStringLiteral("30.0"));
    // Leaving a box with nonsense brings its value back; a number is kept
    // in the unit's format.
    dialog.marginBox(0)->setText(QStringLiteral("wide"));
    emit dialog.marginBox(0)->editingFinished();
    EXPECT_EQ(dialog.marginBox(0)->text(), QStringLiteral("30.0"));
    dialog.marginBox(1)->setText(QStringLiteral("20"));
    emit dialog.marginBox(1)->editingFinished();
    EXPECT_EQ(dialog.marginBox(1)->text(), QStringLiteral("20.0"));
    dialog.printerBox()->setCurrentIndex(0);
    dialog.storeInto(settings);
    EXPECT_EQ(settings.printerDeviceName, QStringLiteral("First"));
    EXPECT_EQ(settings.printerBindingMargin, 1701);
    EXPECT_EQ(settings.printerOtherMargins, 1134);
}

Picture boxes()
{
    Picture p;
    p.size = QSize(100, 50);
    p.paint = [](QPainter &painter) {
        painter.fillRect(QRect(0, 0, 50, 50), Qt::red);
        painter.drawText(QPoint(55, 30), QStringLiteral("Box"));
    };
    return p;
}

TEST(PictureCommands, ClipboardFormats)
{
    QClipboard *clipboard = QApplication::clipboard();
    ASSERT_EQ(copyPictureToClipboard(boxes(), clipboard), ClipboardOk);
    const QMimeData *data = clipboard->mimeData();
    ASSERT_TRUE(data);
    QImage png;
    ASSERT_TRUE(png.loadFromData(data->data(QStringLiteral("image/png"))));
    EXPECT_EQ(png.size(), QSize(100, 50));
    EXPECT_TRUE(data->data(QStringLiteral("image/svg+xml")).contains("<svg"));
    EXPECT_TRUE(data->data(QStringLiteral("image/x-emf")).startsWith(QByteArray::fromHex("01000000")));
    EXPECT_EQ(copyPictureToClipboard(Picture{}, clipboard), ClipboardNoPicture);

    ASSERT_EQ(copyTextToClipboard(QStringLiteral("a\tb\r\nc"), clipboard), ClipboardOk);
    EXPECT_EQ(clipboard->text(), QStringLiteral("a\tb\r\nc"));
    EXPECT_FALSE(clipboard->mimeData()->hasImage());

    // Graph Copy Format 2: a bitmap only.
    ASSERT_EQ(copyChartPicture(boxes(), 2, clipboard), ClipboardOk);
    EXPECT_TRUE(clipboard->mimeData()->hasImage());
    EXPECT_FALSE(clipboard->mimeData()->hasFormat(QStringLiteral("image/x-emf")));
    ASSERT_EQ(copyChartPicture(boxes(), 1, clipboard), ClipboardOk);
    EXPECT_TRUE(clipboard->mimeData()->hasFormat(QStringLiteral("image/x-emf")));
}

TEST(PictureCommands, BasicGraphPictureOptions)
{
    QRect seen;
    int seenScale = 0;
    const auto paint = [&](QPainter &painter, const QRect &area, int scale) {
        seen = area;
        seenScale = scale;
        painter.fillRect(area, Qt::blue);
    };
    Picture plain = basicGraphPicture(QSize(300, 200), {}, paint);
    EXPECT_EQ(plain.size, QSize(560, 360));
    Picture spaced = basicGraphPicture(QSize(300, 200), {.whiteSpace = true}, paint);
    EXPECT_EQ(spaced.size - plain.size, QSize(40, 40)) << "20 pixels more each way, times the scale";
    const QImage image = renderPictureImage(spaced, Qt::transparent);
    EXPECT_EQ(seen, QRect(20, 20, 560, 360));
    EXPECT_EQ(qAlpha(image.pixel(5, 5)), 0) << "transparent unless opaque";
    Picture office = basicGraphPicture(QSize(300, 200), {.opaque = true, .toOffice = true}, paint);
    EXPECT_EQ(office.size, QSize(1120, 720));
    const QImage opaque = renderPictureImage(office, Qt::transparent);
    EXPECT_EQ(seenScale, 4);
    EXPECT_EQ(qAlpha(opaque.pixel(0, 0)), 255);
}

TEST(PictureCommands, PrintsToPdfWithTheCreatedByLine)
{
    EXPECT_EQ(createdByLine(false, QStringLiteral("KEL Viewer"), 3, 5),
              QStringLiteral("Created by KEL Viewer version 3.05."));
    EXPECT_EQ(createdByLine(true, QStringLiteral("KEL Viewer"), 12, 10),
              QStringLiteral("Skapad av KEL Viewer version 12.10."));

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("print.pdf"));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    LastSettings settings;
    settings.printerBindingMargin = 1440;
    applyPrintFormat(printer, settings);
    EXPECT_NEAR(printer.pageLayout().margins(QPageLayout::Millimeter).left(), 25.4, 0.01);
    EXPECT_NEAR(printer.pageLayout().margins(QPageLayout::Millimeter).top(), 10.0, 0.01);
    ASSERT_TRUE(printPicture(printer, boxes(), createdByLine(false, QStringLiteral("KEL Viewer"), 1, 0)));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
    EXPECT_FALSE(printPicture(printer, Picture{}, QString()));
}

// --- The overview's commands in the main window ---

class OverviewCommandsTest : public testing::Test
{
protected:
    void SetUp() override { start(false); }
    void start(bool isSwedish)
    {
        SettingsLocation l;
        l.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        l.policyFile = mDir.filePath(QStringLiteral("policy.ini"));
        mStore = std::make_unique<SettingsStore>(l);
        mWindow = std::make_unique<MainWindow>(*mStore, isSwedish, MainWindowEnvironment{});
        mCommands = mWindow->findChild<OverviewCommands *>();
        ASSERT_TRUE(mCommands);
        mCommands->setMessageHandler([this](QMessageBox::Icon, const QString &title, const QString &text) {
            mMessages << title + QLatin1Char('|') + text;
        });
        const QString path = mDir.filePath(QStringLiteral("survey.kel"));
        ASSERT_TRUE(pictureSurvey(12).build().writeFile(path));
        ASSERT_TRUE(mWindow->openDocument(path, false, QStringLiteral("Open")));
        ASSERT_TRUE(mWindow->sheetView()->hasSheet());
    }

    QTemporaryDir mDir;
    std::unique_ptr<SettingsStore> mStore;
    std::unique_ptr<MainWindow> mWindow;
    OverviewCommands *mCommands = nullptr;
    QStringList mMessages;
};

TEST_F(OverviewCommandsTest, CopiesPictureAndData)
{
    const MainMenus &m = mWindow->menus();
    ASSERT_TRUE(m.mnuECopy->isEnabled());
    m.mnuECopy->trigger();
    EXPECT_EQ(mWindow->statusLine().text(), QStringLiteral("Overview copied!"));
    QImage copied;
    ASSERT_TRUE(copied.loadFromData(QApplication::clipboard()->mimeData()->data(QStringLiteral("image/png"))));
    EXPECT_EQ(copied.width(), 4 * 32);
    m.mnuECopyHeadersAndTotals->trigger();
    QImage headers;
    ASSERT_TRUE(headers.loadFromData(QApplication::clipboard()->mimeData()->data(QStringLiteral("image/png"))));
    EXPECT_EQ(copied.height() - headers.height(), 12 * 32);

    m.mnuECopyData->trigger();
    const SheetInput &input = mWindow->sheetView()->input();
    EXPECT_EQ(QApplication::clipboard()->text(), overviewDataText(*mWindow->document(), input.rows, input.columns));
    EXPECT_EQ(QApplication::clipboard()->text().count(QStringLiteral("\r\n")), 11);
    EXPECT_TRUE(mMessages.isEmpty());

    // A copied picture outlives the document it was drawn from.
    m.mnuPCopy->trigger();
    mWindow->closeDocument();
    QImage afterClose;
    ASSERT_TRUE(afterClose.loadFromData(QApplication::clipboard()->mimeData()->data(QStringLiteral("image/png"))));
    EXPECT_EQ(afterClose.size(), copied.size());
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->data(QStringLiteral("image/x-emf")).startsWith(
        QByteArray::fromHex("01000000")));
}

TEST_F(OverviewCommandsTest, CopiesTheRowUnderThePopup)
{
    SheetHit hit;
    hit.place = SheetPlace::AnswerCell;
    hit.column = 1;
    hit.line = 3;
    hit.question = mWindow->sheetView()->input().columns[1];
    hit.row = 7;
    emit mWindow->sheetView()->popupRequested(hit, QPoint(10, 10));
    mWindow->menus().mnuPopUp->hide();
    EXPECT_EQ(mCommands->popupRow(), 7);
    mWindow->menus().mnuPCopyThisRowsAnswers->trigger();
    const QString text = QApplication::clipboard()->text();
    EXPECT_EQ(text, rowAnswersText(*mWindow->document(), 7, mWindow->sheetView()->input().columns));
    EXPECT_TRUE(text.startsWith(QStringLiteral("A0. I like it here\t"))) << text.toStdString();

    // A header line has no row: nothing is copied from there.
    hit.place = SheetPlace::CodeLine;
    hit.row = -1;
    emit mWindow->sheetView()->popupRequested(hit, QPoint(10, 10));
    mWindow->menus().mnuPopUp->hide();
    EXPECT_EQ(mCommands->popupRow(), -1);
}

TEST_F(OverviewCommandsTest, SavesAsChosenAndRemembersIt)
{
    QStringList seenFilters;
    int seenPreselected = -1;
    QString answerPath = mDir.filePath(QStringLiteral("out")), answerFilter;
    mCommands->setFileChooser([&](const QString &title, const QString &, const QString &defaultName,
                                  const QStringList &filters, int preselected) {
        EXPECT_EQ(title, QStringLiteral("Save Overview"));
        EXPECT_EQ(defaultName, QStringLiteral("abc.emf"));
        seenFilters = filters;
        seenPreselected = preselected;
        return std::make_pair(answerPath, answerFilter.isEmpty() ? filters.value(1) : answerFilter);
    });
    mWindow->menus().mnuFSaveAs->trigger();
    EXPECT_EQ(seenPreselected, 0);
    EXPECT_EQ(mWindow->statusLine().text(), QStringLiteral("Overview saved!"));
    QFile wmf(answerPath + QStringLiteral(".wmf"));
    ASSERT_TRUE(wmf.open(QIODevice::ReadOnly));
    EXPECT_EQ(wmf.read(4), QByteArray::fromHex("D7CDC69A"));
    EXPECT_EQ(mWindow->lastSettings().graphSaveFormat, 2);
    EXPECT_EQ(mWindow->lastSettings().graphSaveFolder, mDir.path());

    // The next dialog offers WMF first; a type it does not know saves nothing.
    answerFilter = QStringLiteral("All files (*)");
    answerPath = mDir.filePath(QStringLiteral("other.emf"));
    mWindow->menus().mnuPSaveAs->trigger();
    EXPECT_EQ(seenPreselected, 1);
    EXPECT_FALSE(QFile::exists(answerPath));
    ASSERT_EQ(mMessages.size(), 1);
    EXPECT_EQ(mMessages[0], QStringLiteral("Save Overview|The overview could not be saved since you did not select "
                                           "what file format you wanted!"));
    // Cancel clears the status line.
    answerPath.clear();
    mWindow->menus().mnuFSaveAs->trigger();
    EXPECT_EQ(mWindow->statusLine().text(), QString());
}

TEST_F(OverviewCommandsTest, SwedishTexts)
{
    mWindow.reset();
    start(true);
    mWindow->menus().mnuECopy->trigger();
    EXPECT_EQ(mWindow->statusLine().text(), QStringLiteral("Översikt kopierad!"));
    QString seenTitle;
    QStringList seenFilters;
    mCommands->setFileChooser([&](const QString &title, const QString &, const QString &, const QStringList &filters,
                                  int) {
        seenTitle = title;
        seenFilters = filters;
        return std::make_pair(mDir.filePath(QStringLiteral("x.emf")), QStringLiteral("?"));
    });
    mWindow->menus().mnuFSaveAs->trigger();
    EXPECT_EQ(seenTitle, QStringLiteral("Spara översikt"));
    EXPECT_EQ(seenFilters, QStringList({QStringLiteral("Windows utökad metafil (*.emf)"),
                                        QStringLiteral("Windows metafil (*.wmf)")}));
    ASSERT_EQ(mMessages.size(), 1);
    EXPECT_EQ(mMessages[0], QStringLiteral("Spara översikt|Översikten kunde inte sparas eftersom du inte angav vilket "
                                           "filformat du ville ha!"));
    mCommands->printOverview(); // the menu item needs a printer
    EXPECT_EQ(mWindow->statusLine().text(), QStringLiteral("Översikt utskriven!"));
}

} // namespace
} // namespace kel::test
