// SPDX-License-Identifier: GPL-3.0-or-later
// The commands' shared rules (save dialog types, folders, print format
// units, the clipboard, printing) and the overview's commands run from
// the main window's menus.
#include "gui/pictures/picturecommands.h"
#include "gui/pictures/printformatdialog.h"
#include "gui/shell/mainwindow.h"
#include "gui/overview/overviewcommands.h"

#include "picturedocument.h"
#include "render/overview/sheetdrawer.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QMimeData>
#include <QPainter>
#include <QPrinter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(SaveAndPrintRules, FiltersFormatSettingFolderAndMargins)
{
    const auto overview = saveFilters(SaveKind::Overview, false, true);
    const auto chart = saveFilters(SaveKind::Chart, false, true);
    EXPECT_EQ(saveFilters(SaveKind::Overview, true, true)[1].description, QStringLiteral("Windows metafil (*.wmf)"));
    EXPECT_EQ(preselectedFilter(overview, 5), 0) << "a chart-only type falls back to EMF";
    EXPECT_EQ(preselectedFilter(chart, -3), 0);

    // The filter decides for the overview, and the extension is added.
    SaveChoice c = resolveSaveChoice(overview, QStringLiteral("/p/report"), overview[1].description, false);
    EXPECT_TRUE(c.path == QStringLiteral("/p/report.wmf") && c.format == PictureFormat::Wmf && c.settingValue == 2);
    // No recognisable type: nothing to write.
    EXPECT_FALSE(
        resolveSaveChoice(overview, QStringLiteral("/p/r.emf"), QStringLiteral("All files (*)"), false).format);
    // For charts the extension decides over the filter.
    c = resolveSaveChoice(chart, QStringLiteral("/p/r.gif"), chart[0].description, true);
    EXPECT_TRUE(c.format == PictureFormat::Gif && c.settingValue == 6);
    // A folder that is gone gives way to the next.
    QTemporaryDir dir;
    EXPECT_EQ(pictureSaveFolder(dir.filePath(QStringLiteral("gone")), QStringLiteral("/p"), QString()),
              QStringLiteral("/p"));

    // Print format margins in their units; nonsense is refused.
    const MarginUnit mm = marginUnit(QLocale::MetricSystem, true);
    const MarginUnit inches = marginUnit(QLocale::ImperialUSSystem, false);
    const QLocale english = QLocale::c(), swedish(QLocale::Swedish, QLocale::Sweden);
    EXPECT_EQ(formatMargin(567, mm, swedish), QStringLiteral("10,0"));
    EXPECT_EQ(parseMargin(QStringLiteral("30,0"), mm, swedish), 1701);
    EXPECT_EQ(parseMargin(QStringLiteral(" 0.5 "), inches, english), 720);
    for (const char *bad : {"abc", "-1", "1e30"})
        EXPECT_FALSE(parseMargin(QString::fromLatin1(bad), mm, english)) << bad;
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

// A clipboard picture may have 256 Mi pixels: 16384 x 16384 is accepted,
// one row more is refused as too large, and the user is told so in words
// that name the way out, never as a bare number.
TEST(PictureCommands, ClipboardRefusesPicturesBeyondItsSizeInWords)
{
    QClipboard *clipboard = QApplication::clipboard();
    Picture edge = boxes();
    edge.size = QSize(16384, 16384);
    EXPECT_EQ(copyPictureToClipboard(edge, clipboard), ClipboardOk);
    clipboard->clear(); // nobody asks it to draw that
    Picture beyond = boxes();
    beyond.size = QSize(16384, 16385);
    EXPECT_EQ(copyPictureToClipboard(beyond, clipboard), ClipboardTooLarge);
    EXPECT_EQ(copyChartPicture(beyond, 1, clipboard), ClipboardTooLarge);

    struct Case {
        int result;
        bool overview;
        bool swedish;
        const char *mustSay;
    };
    const Case cases[] = {
        {ClipboardTooLarge, true, false, "Copy Overview as Data"},
        {ClipboardTooLarge, true, true, "Kopiera översikt som data"},
        {ClipboardTooLarge, false, false, "Save As..."},
        {ClipboardTooLarge, false, true, "Spara som..."},
        {ClipboardNoPicture, true, false, "nothing to copy"},
        {ClipboardNoPicture, false, true, "ingenting att kopiera"},
        {ClipboardRefused, true, false, "Try again"},
        {ClipboardRefused, false, true, "Försök igen"},
    };
    for (const Case &c : cases) {
        const QString text = clipboardFailureMessage(c.result, c.overview, c.swedish);
        EXPECT_TRUE(text.contains(QString::fromUtf8(c.mustSay))) << text.toStdString();
        EXPECT_FALSE(text.contains(QLatin1Char('(')) || text.contains(QStringLiteral("code"))) << text.toStdString();
    }
    EXPECT_TRUE(clipboardFailureMessage(ClipboardTooLarge, true, false).contains(QStringLiteral("too large")));
}

TEST(PictureCommands, ClipboardFormatsAndPrinting)
{
    QClipboard *clipboard = QApplication::clipboard();
    ASSERT_EQ(copyPictureToClipboard(boxes(), clipboard), ClipboardOk);
    EXPECT_EQ(QImage::fromData(clipboard->mimeData()->data(QStringLiteral("image/png"))).size(), QSize(100, 50));
    EXPECT_TRUE(clipboard->mimeData()->data(QStringLiteral("image/svg+xml")).contains("<svg"));
    EXPECT_TRUE(clipboard->mimeData()->data(QStringLiteral("image/x-emf")).startsWith(QByteArray::fromHex("01000000")));
    EXPECT_EQ(copyPictureToClipboard(Picture{}, clipboard), ClipboardNoPicture);

    QTemporaryDir dir;
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath(QStringLiteral("print.pdf")));
    LastSettings settings;
    settings.printerBindingMargin = 1440;
    applyPrintFormat(printer, settings);
    EXPECT_NEAR(printer.pageLayout().margins(QPageLayout::Millimeter).left(), 25.4, 0.01);
    ASSERT_TRUE(printPicture(printer, boxes(), createdByLine(false, QStringLiteral("KEL Viewer"), 1, 0)));
    QFile file(dir.filePath(QStringLiteral("print.pdf")));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.read(5) == "%PDF-");
    EXPECT_FALSE(printPicture(printer, Picture{}, QString()));
}

TEST(PictureCommands, AGraphThatCannotBeSavedSaysWhyInTheInterfaceLanguage)
{
    // A folder that does not exist: the message names the file and the
    // writer's reason, worded in the interface's language.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("missing/graph.png"));
    for (const bool swedish : {false, true}) {
        SCOPED_TRACE(swedish);
        LastSettings settings;
        const auto chooser = [&](const QString &, const QString &, const QString &, const QStringList &filters, int) {
            return std::pair{path, filters.front()};
        };
        QString shown;
        const auto reportError = [&](const QString &, const QString &text) { shown = text; };
        const StatusReporter status = [](const char *, const char *, bool) {};
        EXPECT_FALSE(
            saveGraphPicture(nullptr, boxes(), SaveKind::Chart, swedish, settings, status, chooser, reportError));
        EXPECT_TRUE(shown.startsWith(swedish ? QStringLiteral("Grafen kunde inte sparas!")
                                             : QStringLiteral("The graph could not be saved!")))
            << shown.toStdString();
        EXPECT_TRUE(shown.contains(QDir::toNativeSeparators(path))) << shown.toStdString();
        EXPECT_EQ(shown.contains(QStringLiteral("Filen kunde inte skrivas: ")), swedish) << shown.toStdString();
        EXPECT_FALSE(QFile::exists(path));
    }
}

// --- The overview's commands in the main window ---

TEST(OverviewCommands, CopyAndSaveFromTheMenus)
{
    QTemporaryDir dir;
    SettingsLocation l;
    l.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(l);
    MainWindow window(store, false, MainWindowEnvironment{});
    auto *commands = window.findChild<OverviewCommands *>();
    ASSERT_TRUE(commands);
    const QString path = dir.filePath(QStringLiteral("survey.kel"));
    ASSERT_TRUE(pictureSurvey(12).build().writeFile(path));
    ASSERT_TRUE(window.openDocument(path, false, QStringLiteral("Open")));
    const MainMenus &m = window.menus();
    m.mnuECopy->trigger();
    const QImage copied = QImage::fromData(QApplication::clipboard()->mimeData()->data(QStringLiteral("image/png")));
    // The four 32-pixel columns, widened on both sides by what the caption's
    // "Respondents:" (about 148 pixels at 24) needs beyond the sheet's 127.
    const int word = QFontMetrics(sheetFont(false, 2)).horizontalAdvance(QStringLiteral("Respondents:"));
    EXPECT_NEAR(copied.width(), std::max(4 * 32, word + 1), 2);
    m.mnuECopyHeadersAndTotals->trigger();
    EXPECT_EQ(copied.height()
                  - QImage::fromData(QApplication::clipboard()->mimeData()->data(QStringLiteral("image/png"))).height(),
              12 * 32);

    // Save As writes the type the dialog's filter names.
    commands->setFileChooser([&](const QString &, const QString &, const QString &, const QStringList &filters, int) {
        return std::make_pair(dir.filePath(QStringLiteral("out")), filters.value(1));
    });
    m.mnuFSaveAs->trigger();
    QFile wmf(dir.filePath(QStringLiteral("out.wmf")));
    EXPECT_TRUE(wmf.open(QIODevice::ReadOnly) && wmf.read(4) == QByteArray::fromHex("D7CDC69A"));
}

} // namespace
} // namespace kel::test
