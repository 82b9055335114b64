// SPDX-License-Identifier: GPL-3.0-or-later
// Widgets need an application; the GUI tests of the overview, the shell and
// the selection windows draw off-screen, without a display.
#include "gui/overview/sheetview.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    qRegisterMetaType<kel::SheetHit>();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
