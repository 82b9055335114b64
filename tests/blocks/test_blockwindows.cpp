// SPDX-License-Identifier: GPL-3.0-or-later
// The block editor, the Copy Indexes progress window and the main window's restore.
#include "kelwriter.h"

#include "engine/document/documentreader.h"
#include "engine/indexes/blockindex.h"
#include "engine/settings/settingsstore.h"
#include "gui/blocks/blockeditor.h"
#include "gui/indexes/exportindexes.h"
#include "gui/shell/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QProgressBar>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

// Category "Unit" and `questions` yes/no questions in block "Work"; 40 rows.
SurveyBuilder surveyBuilder(qint32 questions = 3)
{
    SurveyBuilder b(40);
    b.header().pointsScale = 10;
    const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    for (qint32 q = 0; q < questions; ++q)
        b.addQuestion({.heading = QStringLiteral("Q%1").arg(q + 1), .block = work},
                      {{.text = QStringLiteral("no"), .points = 0}, {.text = QStringLiteral("yes"), .points = 10}});
    for (qint32 r = 0; r < 40; ++r)
        for (qint32 q = 0; q <= questions; ++q)
            b.setAnswer(r, q, q == 0 ? r % 4 == 0 : (r + q) % 3 == 1);
    return b;
}

std::unique_ptr<Document> survey(qint32 questions = 3)
{
    return readDocumentBytes(surveyBuilder(questions).build().toBytes()).document;
}

class BlockWindows : public ::testing::Test
{
protected:
    std::unique_ptr<SettingsStore> store()
    {
        const QString file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        return std::make_unique<SettingsStore>(SettingsLocation{.file = file});
    }
    // Answers the editor's boxes: the names in turn, then always yes.
    BlockEditorPrompts prompts()
    {
        BlockEditorPrompts p;
        p.input = [this](const QString &, const QString &, const QString &) { return names.value(asked++); };
        p.confirm = [](const QString &, const QString &) { return true; };
        p.error = [](const QString &, const QString &) {};
        return p;
    }
    QTemporaryDir mDir;
    QStringList names;
    qsizetype asked = 0;
};

} // namespace

TEST_F(BlockWindows, EditorAddsTicksDeletesAndStoresOnOkOnly)
{
    std::unique_ptr<Document> doc = survey();
    auto settings = store();
    BlockCatalogue blocks(*doc);
    BlockEditor editor(*doc, blocks, *settings, true);
    editor.setPrompts(prompts());
    names = {QStringLiteral("Mine"), QStringLiteral("Temp")};
    editor.addBlock(); // the new block is selected; ticks make members
    editor.questionList()->item(0)->setCheckState(Qt::Checked);
    editor.questionList()->item(2)->setCheckState(Qt::Checked);
    editor.includeInCopy()->setChecked(true);
    editor.addBlock();
    EXPECT_EQ(editor.questionList()->item(0)->checkState(), Qt::Unchecked) << "Temp starts without Mine's ticks";
    editor.deleteBlock();
    editor.accept();
    ASSERT_TRUE(editor.blocksChanged() && blocks.size() == 2);
    EXPECT_TRUE(blocks.blocks[1].name == QStringLiteral("Mine") && blocks.blocks[1].includeInCopy);
    EXPECT_EQ(blockMembers(*doc, blocks, 1), (QuestionList{1, 3}));
    EXPECT_EQ(doc->blocks.size(), 1u) << "the document keeps its own blocks only";
    EXPECT_EQ(settings->readString(SettingsStore::documentKey(doc->guidText()) + QStringLiteral("\\Block 001"),
                                   QStringLiteral("Included Data Headers")),
              QStringLiteral("1|3"));
}

TEST_F(BlockWindows, ProgressWindowCopiesTheTableOrNothing)
{
    std::unique_ptr<Document> doc = survey(30);
    const BlockCatalogue blocks(*doc);
    const RowList rows = allRows(*doc);
    IndexExportOptions options;
    options.subSelCategories = {0};
    options.indexFor = {true, true, false, true, false};
    QClipboard *clipboard = QApplication::clipboard();
    clipboard->setText(QStringLiteral("before"));
    {
        // Cancel after the second item: nothing reaches the clipboard.
        ExportIndexes progress(*doc, blocks, QStringLiteral("All"), rows, options, QLocale::c(), false);
        progress.setItemObserver([&](qint32 done) { done == 2 ? progress.requestCancel() : void(); });
        progress.exec();
        EXPECT_FALSE(progress.copied());
    }
    EXPECT_EQ(clipboard->text(), QStringLiteral("before"));

    // A full run puts exactly the engine's table there.
    ExportIndexes progress(*doc, blocks, QStringLiteral("All"), rows, options, QLocale::c(), false);
    progress.exec();
    EXPECT_EQ(progress.progress()->value(), 32); // the total, one block, 30 questions
    EXPECT_EQ(clipboard->text(), exportIndexes(*doc, blocks, QStringLiteral("All"), rows, options, QLocale::c()));
}

TEST_F(BlockWindows, MainWindowRestoresBlocksAndCopiesThePointsList)
{
    const QString path = mDir.filePath(QStringLiteral("survey.kel"));
    ASSERT_TRUE(surveyBuilder().build().writeFile(path));
    const QString key = QStringLiteral("Documents\\") + survey()->guidText();
    {
        auto settings = store(); // block 2 has no name: damaged
        settings->writeDword(key, QStringLiteral("Block Items"), 3);
        settings->writeString(key + QStringLiteral("\\Block 001"), QStringLiteral("Name"), QStringLiteral("Mine"));
        settings->writeString(key + QStringLiteral("\\Block 002"), QStringLiteral("Name"), QString());
    }
    auto settings = store();
    QStringList messages;
    MainWindow w(*settings, false, MainWindowEnvironment());
    w.setMessageHandler([&](QMessageBox::Icon, const QString &, const QString &text) { messages << text; });
    ASSERT_EQ(w.loadDocument(path, false), OpenResult::Ok);
    ASSERT_EQ(messages.size(), 1) << "the damaged block is left out with a word to the user";
    ASSERT_EQ(w.menus().mnuVB1Item.size(), 2);
    EXPECT_EQ(w.menus().mnuVB1Item[1]->text(), QStringLiteral("Mine"));

    // A double click on a status panel: the points behind the total index.
    QLabel *panel = w.statusPanel(2);
    QMouseEvent click(QEvent::MouseButtonDblClick, QPointF(2, 2), panel->mapToGlobal(QPointF(2, 2)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(panel, &click);
    QString expected;
    calculateTotalIndexSpec(*w.document(), allRows(*w.document()), expected);
    EXPECT_EQ(QApplication::clipboard()->text(), expected);
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
