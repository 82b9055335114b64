// SPDX-License-Identifier: GPL-3.0-or-later
// Window placement: a frame comes back wholly on a screen, and a dock's side
// travels through the settings layer with the rest of its placement.
#include "gui/common/placement.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;

TEST(Placement, FramesComeBackWhollyOnAScreen)
{
    const QList<QRect> screens{QRect(0, 0, 1280, 900), QRect(1280, 100, 1024, 768)};
    struct Case {
        const char *label;
        QRect frame;
        QRect expected;
    };
    const Case cases[] = {
        {"inside stays", QRect(100, 100, 400, 300), QRect(100, 100, 400, 300)},
        {"hanging off the right of the second", QRect(2100, 200, 400, 300), QRect(1904, 200, 400, 300)},
        {"mostly on the second, above it", QRect(1500, 0, 400, 300), QRect(1500, 100, 400, 300)},
        {"off every screen goes to the first", QRect(-5000, -5000, 400, 300), QRect(0, 0, 400, 300)},
        {"too large is shrunk", QRect(50, 50, 3000, 2000), QRect(0, 0, 1280, 900)},
    };
    for (const Case &c : cases)
        EXPECT_EQ(keepOnScreen(c.frame, screens), c.expected) << c.label;
    EXPECT_EQ(keepOnScreen(QRect(-5, -5, 10, 10), {}), QRect(-5, -5, 10, 10)) << "no screens: left alone";
}

TEST(Placement, DockAreaIsKeptWithThePlacement)
{
    QTemporaryDir dir;
    SettingsLocation location;
    location.file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    SettingsStore store(location);
    WindowPlacement p;
    p.left = 10, p.top = 20, p.width = 3000, p.height = 4000, p.dockArea = 0;
    ASSERT_TRUE(store.writeWindowPlacement(QStringLiteral("Navigator"), BorderStyle::SizableToolWindow, p));
    const WindowPlacement back = store.readWindowPlacement(QStringLiteral("Navigator"));
    EXPECT_EQ(back.dockArea, std::optional<qint32>(0)) << "floating";
    EXPECT_EQ(back.left, p.left);
    EXPECT_EQ(back.height, p.height);
    EXPECT_FALSE(store.readWindowPlacement(QStringLiteral("Main")).dockArea) << "other windows have none";
}
