// SPDX-License-Identifier: GPL-3.0-or-later
// What keeps the main window steady while texts change: status panels of
// constant width (their labels elide), and restored windows kept wholly on a
// screen; Swedish file dialogs with Swedish columns.
#include "gui/shell/mainwindow.h"
#include "gui/common/filedialogs.h"
#include "gui/common/placement.h"
#include "gui/shell/aboutbox.h"
#include "gui/document/propertiesview.h"
#include "surveys.h"
#include "texts/statusline.h"

#include <QAbstractProxyModel>
#include <QApplication>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QFile>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;

TEST(ScreenPlacement, KeepsWindowsWhollyOnAScreen)
{
    const QList<QRect> screens = {QRect(0, 0, 1280, 1024), QRect(1280, 0, 1920, 1080)};
    const struct {
        const char *label;
        QRect frame;
        QRect expected;
    } cases[] = {
        {"inside the second", QRect(1500, 50, 400, 300), QRect(1500, 50, 400, 300)},
        {"across both: into the one it overlaps most", QRect(1200, 100, 400, 300), QRect(1280, 100, 400, 300)},
        {"partly below the first", QRect(100, 900, 400, 300), QRect(100, 724, 400, 300)},
        {"left of everything", QRect(-5000, 100, 400, 300), QRect(0, 100, 400, 300)},
        {"far away: the first screen", QRect(90000, 90000, 400, 300), QRect(880, 724, 400, 300)},
        {"larger than any screen: shrunk into the one it overlaps most", QRect(-10, -10, 5000, 5000),
         QRect(1280, 0, 1920, 1080)},
    };
    for (const auto &c : cases)
        EXPECT_EQ(keepOnScreen(c.frame, screens), c.expected) << c.label;
    EXPECT_EQ(keepOnScreen(QRect(5, 5, 10, 10), {}), QRect(5, 5, 10, 10));
}

TEST(StatusPanels, KeepTheirWidthsWhateverTheyShow)
{
    QTemporaryDir dir;
    SettingsLocation location;
    location.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(location);
    MainWindow w(store, false, MainWindowEnvironment());
    w.resize(900, 620);
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    for (int i = 2; i <= 3; ++i)
        w.statusPanel(i)->setVisible(true);
    w.statusPanel(2)->setText(QStringLiteral(" 600"));
    w.statusPanel(3)->setText(QStringLiteral(" Total"));
    w.statusLine().setStatus("Ready", "Klar", false);
    QApplication::processEvents();
    const int widths[] = {w.statusPanel(1)->width(), w.statusPanel(2)->width(), w.statusPanel(3)->width()};
    EXPECT_GT(widths[0], 100) << "the activity panel does not collapse";

    const QString longText =
        QStringLiteral("Department: Sales, Production, Finance; Age group: 30-39, 40-49; ").repeated(4);
    w.statusPanel(3)->setText(longText);
    w.statusLine().setStatus(longText, longText, false);
    QApplication::processEvents();
    EXPECT_EQ(w.statusPanel(1)->width(), widths[0]);
    EXPECT_EQ(w.statusPanel(2)->width(), widths[1]);
    EXPECT_EQ(w.statusPanel(3)->width(), widths[2]);
    EXPECT_LE(w.statusPanel(3)->geometry().right(), w.width());
}

// Grouping starts at four digits; Swedish groups with a no-break space.
TEST(AboutBoxTest, MemoryInTheInterfaceLanguagesFormat)
{
    const QString nbsp(QChar(0x00A0));
    const struct {
        qint64 mebibytes;
        QString english, swedish;
    } cases[] = {
        {0, QStringLiteral("0 MB"), QStringLiteral("0 MB")},
        {999, QStringLiteral("999 MB"), QStringLiteral("999 MB")},
        {1000, QStringLiteral("1,000 MB"), QStringLiteral("1") + nbsp + QStringLiteral("000 MB")},
        {24105, QStringLiteral("24,105 MB"), QStringLiteral("24") + nbsp + QStringLiteral("105 MB")},
        {1048576, QStringLiteral("1,048,576 MB"),
         QStringLiteral("1") + nbsp + QStringLiteral("048") + nbsp + QStringLiteral("576 MB")},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(memoryText(c.mebibytes, false), c.english) << c.mebibytes;
        EXPECT_EQ(memoryText(c.mebibytes, true), c.swedish) << c.mebibytes;
    }
}

TEST(AboutBoxTest, SystemInfoButtonStartsTheSystemsProgramOrIsHidden)
{
    QTemporaryDir bin;
    const QByteArray oldPath = qgetenv("PATH");
    const QString marker = bin.filePath(QStringLiteral("started"));
    {
        qputenv("PATH", bin.path().toLocal8Bit());
        AboutBox none(false);
        EXPECT_TRUE(none.systemInfoButton()->isHidden()) << "no program: no button";
    }
    {
        // A stand-in for the desktop's program that leaves a mark.
        QFile program(bin.filePath(QStringLiteral("gnome-system-monitor")));
        ASSERT_TRUE(program.open(QIODevice::WriteOnly));
        program.write("#!/bin/sh\ntouch '" + marker.toLocal8Bit() + "'\n");
        program.close();
        program.setPermissions(program.permissions() | QFile::ExeOwner);
        AboutBox box(true);
        qputenv("PATH", oldPath);
        EXPECT_FALSE(box.systemInfoButton()->isHidden());
        EXPECT_EQ(box.systemInfoButton()->text(), QStringLiteral("&Systeminformation..."));
        box.systemInfoButton()->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(marker); }, 5000));
    }
    qputenv("PATH", oldPath);
}

// With fonts three times the usual size the rows cannot fit the screen:
// the window keeps to the screen and its button stays in sight.
TEST(PropertiesWindow, FitsTheScreenWithLargeFonts)
{
    const auto doc = test::shellSurvey({});
    const QFont normal = QApplication::font();
    QFont large = normal;
    large.setPointSizeF(normal.pointSizeF() * 3);
    QApplication::setFont(large);
    {
        PropertiesView view(*doc, false, QLocale::c());
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        EXPECT_LE(view.height(), screen.height());
        view.show();
        auto *close = view.findChild<QPushButton *>(QStringLiteral("cmdClose"));
        ASSERT_NE(close, nullptr);
        EXPECT_TRUE(view.rect().contains(QRect(close->mapTo(&view, QPoint(0, 0)), close->size())));
    }
    QApplication::setFont(normal);
    PropertiesView view(*doc, false, QLocale::c());
    view.show();
    QApplication::processEvents();
    EXPECT_FALSE(view.findChild<QScrollArea *>()->verticalScrollBar()->isVisible())
        << "with usual fonts every row shows at once";
}

// A Swedish file dialog writes its columns the Swedish way whatever the
// region's language: the date without a month name of another language, the
// type by suffix.
TEST(FileDialogColumns, SwedishWhateverTheRegion)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("enkat.kel"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("KEL") == 3 && file.flush());
    ASSERT_TRUE(file.setFileTime(QDateTime(QDate(2026, 11, 24), QTime(19, 37)), QFileDevice::FileModificationTime));
    file.close();

    QFileDialog dialog;
    dialog.setDirectory(dir.path());
    prepareFileDialog(dialog, true);
    QAbstractProxyModel *columns = dialog.proxyModel();
    ASSERT_NE(columns, nullptr);
    auto *files = qobject_cast<QFileSystemModel *>(columns->sourceModel());
    ASSERT_NE(files, nullptr);
    // The folder is read in the background.
    QModelIndex row;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        row = columns->mapFromSource(files->index(path));
        return row.isValid() && files->lastModified(files->index(path)).isValid();
    }));
    auto cell = [&](int column) { return columns->index(row.row(), column, row.parent()).data().toString(); };
    EXPECT_EQ(cell(3), QStringLiteral("2026-11-24 19:37"));
    EXPECT_EQ(cell(2), QStringLiteral("KEL-fil"));

    // In English the dialog is Qt's own, columns and all.
    QFileDialog english;
    prepareFileDialog(english, false);
    EXPECT_EQ(english.proxyModel(), nullptr);
}
