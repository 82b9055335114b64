// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/documentsession.h"

#include "surveys.h"

#include <gtest/gtest.h>

using namespace kel;
using kel::test::shellSurvey;

TEST(DocumentSession, ClosingRecordsTheFileOnceAtTheTop)
{
    DocumentSession session(true);
    session.setCurrentFolder(QStringLiteral("/start"));
    session.installDocument(shellSurvey({}), QStringLiteral("/s/a.kel"), false);
    EXPECT_EQ(session.currentFolder(), QStringLiteral("/start")); // not remembered
    EXPECT_EQ(session.document()->currentFileTitle, QStringLiteral("a.kel"));
    session.installDocument(shellSurvey({}), QStringLiteral("/t/b.kel"), true);
    EXPECT_EQ(session.currentFolder(), QStringLiteral("/t"));
    EXPECT_EQ(session.recentFiles(), QStringList{QStringLiteral("/s/a.kel")});
    session.installDocument(shellSurvey({}), QStringLiteral("/s/a.kel"), true);
    session.closeDocument();
    EXPECT_EQ(session.recentFiles(), QStringList({QStringLiteral("/s/a.kel"), QStringLiteral("/t/b.kel")}));
    EXPECT_FALSE(session.hasDocument());
    session.closeDocument(); // nothing open: nothing recorded
    EXPECT_EQ(session.recentFiles().size(), 2);
}
