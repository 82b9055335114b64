// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/documentsession.h"

#include "surveys.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;
using kel::test::shellSurvey;

TEST(DocumentSession, FailedOpenKeepsTheOpenDocument)
{
    QTemporaryDir dir;
    const QString garbage = dir.filePath(QStringLiteral("garbage.kel"));
    {
        QFile f(garbage);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(64, 'x'));
    }
    DocumentSession session(true);
    session.installDocument(shellSurvey({}), dir.filePath(QStringLiteral("good.kel")), true);
    const Document *before = session.document();
    QSignalSpy closed(&session, &DocumentSession::documentClosed);
    QSignalSpy opened(&session, &DocumentSession::documentOpened);

    struct Case {
        QString path;
        OpenResult result;
    };
    const Case cases[] = {
        {garbage, OpenResult::NotKel},
        {dir.filePath(QStringLiteral("missing.kel")), OpenResult::CannotOpen},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(session.loadDocument(c.path, true), c.result);
        EXPECT_EQ(session.document(), before);
    }
    EXPECT_EQ(closed.count(), 0);
    EXPECT_EQ(opened.count(), 0);
    EXPECT_EQ(session.currentFolder(), dir.path());
    EXPECT_TRUE(session.recentFiles().isEmpty());
}

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

TEST(DocumentSession, PolicyStopsRecordingRecentFiles)
{
    DocumentSession session(false);
    session.setRecentFiles({QStringLiteral("/old.kel")});
    EXPECT_TRUE(session.recentFiles().isEmpty());
    session.installDocument(shellSurvey({}), QStringLiteral("/s/a.kel"), true);
    session.closeDocument();
    EXPECT_TRUE(session.recentFiles().isEmpty());
}
