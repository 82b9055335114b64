// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/statusline.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace kel;

TEST(StatusLine, AutoClearEmptiesTheLineOnce)
{
    StatusLine status(false, 20);
    QSignalSpy spy(&status, &StatusLine::textChanged);
    status.setStatus("Done!", "Klart!", true);
    EXPECT_TRUE(status.isClearPending());
    ASSERT_TRUE(spy.wait(5000));
    EXPECT_EQ(status.text(), QString());
    EXPECT_FALSE(status.isClearPending());
    EXPECT_EQ(spy.count(), 2); // the text, then the clearing
}

TEST(StatusLine, TextWithoutAutoClearCancelsAPendingClearing)
{
    StatusLine status(false, 20);
    status.setStatus("Done!", "Klart!", true);
    status.setStatus("Working...", "Arbetar...", false);
    EXPECT_FALSE(status.isClearPending());
    QTest::qWait(80); // well past the interval: nothing may clear it now
    EXPECT_EQ(status.text(), QStringLiteral("Working..."));
}

TEST(StatusLine, EachAutoClearTextGetsTheFullInterval)
{
    StatusLine status(false, 60000);
    status.setStatus("First", "Första", true);
    QTest::qWait(50);
    const int left = status.clearRemainingTime();
    EXPECT_LE(left, 60000 - 40);
    status.setStatus("Second", "Andra", true);
    EXPECT_GT(status.clearRemainingTime(), left + 30);
    EXPECT_EQ(status.text(), QStringLiteral("Second"));
}

TEST(StatusLine, ClearStatusStopsThePendingClearing)
{
    StatusLine status(false, 20);
    QSignalSpy spy(&status, &StatusLine::textChanged);
    status.setStatus("Done!", "Klart!", true);
    status.clearStatus();
    EXPECT_FALSE(status.isClearPending());
    EXPECT_EQ(status.text(), QString());
    QTest::qWait(80);
    EXPECT_EQ(spy.count(), 2); // no third change from a timer
}
