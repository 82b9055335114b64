// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/documentsession.h"

#include "testdocument.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;
using kel::test::DocumentOptions;
using kel::test::makeDocument;

TEST(DocumentSession, FailedOpenKeepsTheOpenDocument)
{
    QTemporaryDir dir;
    const QString garbage = dir.filePath(QStringLiteral("garbage.kel"));
    {
        QFile f(garbage);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(64, 'x'));
    }
    DocumentSession session(false, true);
    session.installDocument(makeDocument({}), dir.filePath(QStringLiteral("good.kel")), true);
    const Document *before = session.document();
    QSignalSpy closed(&session, &DocumentSession::documentClosed);
    QSignalSpy opened(&session, &DocumentSession::documentOpened);

    struct Case {
        QString path;
        QString message;
    };
    const Case cases[] = {
        {garbage, QStringLiteral("This is not a KEL file!")},
        {dir.filePath(QStringLiteral("missing.kel")), QStringLiteral("Can not open the file!")},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(session.loadDocument(c.path, true), c.message);
        EXPECT_EQ(session.document(), before);
    }
    EXPECT_EQ(closed.count(), 0);
    EXPECT_EQ(opened.count(), 0);
    EXPECT_EQ(session.currentFolder(), dir.path());
    EXPECT_TRUE(session.recentFiles().isEmpty());

    DocumentSession swedish(true, true);
    EXPECT_EQ(swedish.loadDocument(garbage, true), QStringLiteral("Det här är inte en KEL-fil!"));
}

TEST(DocumentSession, ClosingRecordsTheFileOnceAtTheTop)
{
    DocumentSession session(false, true);
    session.setCurrentFolder(QStringLiteral("/start"));
    session.installDocument(makeDocument({}), QStringLiteral("/s/a.kel"), false);
    EXPECT_EQ(session.currentFolder(), QStringLiteral("/start")); // not remembered
    EXPECT_EQ(session.document()->currentFileTitle, QStringLiteral("a.kel"));
    session.installDocument(makeDocument({}), QStringLiteral("/t/b.kel"), true);
    EXPECT_EQ(session.currentFolder(), QStringLiteral("/t"));
    EXPECT_EQ(session.recentFiles(), QStringList{QStringLiteral("/s/a.kel")});
    session.installDocument(makeDocument({}), QStringLiteral("/s/a.kel"), true);
    session.closeDocument();
    EXPECT_EQ(session.recentFiles(), QStringList({QStringLiteral("/s/a.kel"), QStringLiteral("/t/b.kel")}));
    EXPECT_FALSE(session.hasDocument());
    session.closeDocument(); // nothing open: nothing recorded
    EXPECT_EQ(session.recentFiles().size(), 2);
}

TEST(DocumentSession, PolicyStopsRecordingRecentFiles)
{
    DocumentSession session(false, false);
    session.setRecentFiles({QStringLiteral("/old.kel")});
    EXPECT_TRUE(session.recentFiles().isEmpty());
    session.installDocument(makeDocument({}), QStringLiteral("/s/a.kel"), true);
    session.closeDocument();
    EXPECT_TRUE(session.recentFiles().isEmpty());
}

TEST(DocumentSession, OldFilesGetTheirTotalIndexComputed)
{
    DocumentOptions recipe;
    recipe.pointsScale = 4; // answers alternate 0 and 4 points: mean 2, index 0.5
    recipe.revision = 4;
    DocumentSession session(false, true);
    auto doc = makeDocument(recipe);
    doc->properties.totalIndex = -1.0;
    session.installDocument(std::move(doc), QStringLiteral("/s/old.kel"), true);
    EXPECT_DOUBLE_EQ(session.document()->properties.totalIndex, 0.5);
    EXPECT_DOUBLE_EQ(session.document()->properties.flexTotalIndex, 0.5);

    recipe.revision = 5; // a stored index, even "none", is kept
    auto newer = makeDocument(recipe);
    session.installDocument(std::move(newer), QStringLiteral("/s/new.kel"), true);
    EXPECT_DOUBLE_EQ(session.document()->properties.totalIndex, -1.0);
}
