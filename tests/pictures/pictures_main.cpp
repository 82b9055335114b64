// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures need fonts, and fonts need a GUI application (off-screen here).
#include <QGuiApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
