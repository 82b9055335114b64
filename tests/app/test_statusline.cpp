// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/statusline.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;

TEST(StatusLine, AutoClearEmptiesTheLineOnceUnlessSomethingElseComesFirst)
{
    StatusLine status(false, 20);
    QSignalSpy spy(&status, &StatusLine::textChanged);
    status.setStatus("Done!", "Klart!", true);
    ASSERT_TRUE(spy.wait(5000));
    EXPECT_EQ(status.text(), QString());
    EXPECT_EQ(spy.count(), 2); // the text, then the clearing

    // A text without auto-clear, or clearing by hand, cancels the pending clearing.
    status.setStatus("Done!", "Klart!", true);
    status.setStatus("Working...", "Arbetar...", false);
    EXPECT_FALSE(status.isClearPending());
    status.setStatus("Done!", "Klart!", true);
    status.clearStatus();
    EXPECT_FALSE(status.isClearPending());
    const int changes = int(spy.count());
    QTest::qWait(80); // well past the interval: nothing may change it now
    EXPECT_EQ(spy.count(), changes);
}
