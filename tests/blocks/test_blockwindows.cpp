// SPDX-License-Identifier: GPL-3.0-or-later
// The windows of user blocks and Copy Indexes: the editor over its working
// copy, the setup dialog's rules, and the progress window's clipboard.
#include "kelwriter.h"

#include "engine/document/documentreader.h"
#include "engine/indexes/blockindex.h"
#include "engine/settings/settingsstore.h"
#include "gui/blocks/blockeditor.h"
#include "gui/indexes/exportindexes.h"
#include "gui/shell/mainwindow.h"

#include <QAction>
#include <QMouseEvent>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <deque>

using namespace kel;
using namespace kel::writer;

namespace {

// Category "Unit" (North/South) and `questions` scored questions in block
// "Work"; 40 respondents.
SurveyBuilder surveyBuilder(qint32 questions = 3, bool subBlocks = false)
{
    SurveyBuilder b(40);
    b.header().pointsScale = 10;
    b.header().minimumGraphSelection = 2;
    const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
    const qint32 sub = subBlocks ? b.addBlock({.name = QStringLiteral("Part"), .linkedBlock = work}) : -1;
    b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false, .inTotalIndex = false},
                  {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
    for (qint32 q = 0; q < questions; ++q) {
        const qint32 n = b.addQuestion({.code = QString::number(q + 1), .heading = QStringLiteral("Q%1").arg(q + 1),
                                        .text = QStringLiteral("Question number %1?").arg(q + 1), .block = work,
                                        .subBlock = sub},
                                       {{.text = QStringLiteral("no"), .points = 0},
                                        {.text = QStringLiteral("yes"), .points = 10}});
        for (qint32 r = 0; r < 40; ++r)
            b.setAnswer(r, n, (r + q) % 3 == 0 ? 1 : 0);
    }
    for (qint32 r = 0; r < 40; ++r)
        b.setAnswer(r, 0, r % 4 == 0 ? 1 : 0);
    return b;
}

std::unique_ptr<Document> survey(qint32 questions = 3, bool subBlocks = false)
{
    ReadResult read = readDocumentBytes(surveyBuilder(questions, subBlocks).build().toBytes());
    EXPECT_EQ(read.code, OpenResult::Ok) << read.detail.toStdString();
    return std::move(read.document);
}

/// Answers the editor's boxes from a script and records what it showed.
struct ScriptedPrompts {
    std::deque<std::optional<QString>> inputs;
    std::deque<bool> confirms;
    QStringList shown;

    BlockEditorPrompts prompts()
    {
        BlockEditorPrompts p;
        p.input = [this](const QString &title, const QString &, const QString &) {
            shown << title;
            std::optional<QString> answer = inputs.empty() ? std::nullopt : inputs.front();
            if (!inputs.empty())
                inputs.pop_front();
            return answer;
        };
        p.confirm = [this](const QString &, const QString &text) {
            shown << text;
            const bool ok = !confirms.empty() && confirms.front();
            if (!confirms.empty())
                confirms.pop_front();
            return ok;
        };
        p.error = [this](const QString &, const QString &text) { shown << text; };
        return p;
    }
};

class BlockWindows : public ::testing::Test
{
protected:
    std::unique_ptr<SettingsStore> store()
    {
        SettingsLocation l;
        l.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        return std::make_unique<SettingsStore>(l);
    }
    QTemporaryDir mDir;
};

} // namespace

TEST_F(BlockWindows, EditorAddsTicksDeletesAndStoresOnOkOnly)
{
    std::unique_ptr<Document> doc = survey();
    auto settings = store();
    const RowList flex = allRows(*doc);
    ScriptedPrompts script;

    {
        // Cancel: the document keeps its blocks whatever was done.
        BlockEditor editor(*doc, flex, *settings, false);
        editor.setPrompts(script.prompts());
        script.inputs = {QStringLiteral("Mine")};
        editor.addBlock();
        ASSERT_EQ(editor.blockList()->count(), 2);
        editor.reject();
        EXPECT_FALSE(editor.blocksChanged());
        EXPECT_EQ(doc->blocks.size(), 1u);
    }

    BlockEditor editor(*doc, flex, *settings, true);
    editor.setPrompts(script.prompts());
    // A document block shows its members in the plain list and cannot be
    // renamed or deleted.
    editor.blockList()->setCurrentRow(0);
    EXPECT_TRUE(editor.questionList()->isHidden());
    EXPECT_EQ(editor.originalList()->count(), 3);
    EXPECT_FALSE(editor.findChild<QPushButton *>(QStringLiteral("cmdDeleteBlock"))->isEnabled());

    script.inputs = {QStringLiteral("Mine"), QStringLiteral("Temp")};
    editor.addBlock();
    // The new block is selected; ticking its questions makes them members.
    ASSERT_EQ(editor.blockList()->currentItem()->text(), QStringLiteral("Mine"));
    EXPECT_FALSE(editor.questionList()->isHidden());
    editor.questionList()->item(0)->setCheckState(Qt::Checked);
    editor.questionList()->item(2)->setCheckState(Qt::Checked);
    editor.includeInCopy()->setChecked(true);
    editor.addBlock();
    ASSERT_EQ(editor.blockList()->count(), 3);
    // Temp starts with no ticks although Mine had some.
    EXPECT_EQ(editor.questionList()->item(0)->checkState(), Qt::Unchecked);

    // Deleting asks first; declining keeps the block.
    script.confirms = {false, true};
    editor.deleteBlock();
    EXPECT_EQ(editor.blockList()->count(), 3);
    editor.deleteBlock();
    ASSERT_EQ(editor.blockList()->count(), 2);
    EXPECT_EQ(editor.blockList()->currentItem()->text(), QStringLiteral("Mine"));

    editor.accept();
    EXPECT_TRUE(editor.blocksChanged());
    ASSERT_EQ(doc->blocks.size(), 2u);
    EXPECT_EQ(doc->blocks[1].name, QStringLiteral("Mine"));
    EXPECT_TRUE(doc->blocks[1].includeInCopy);
    EXPECT_EQ(blockMembers(*doc, 1), (QuestionList{1, 3}));
    EXPECT_DOUBLE_EQ(doc->blocks[1].totalIndex, calculateColumnsIndex(*doc, {1, 3}, allRows(*doc)));
    const QString key = SettingsStore::documentKey(doc->guidText());
    EXPECT_EQ(settings->readString(key + QStringLiteral("\\Block 001"), QStringLiteral("Included Data Headers")),
              QStringLiteral("1|3"));
}

TEST_F(BlockWindows, SetupDialogEnablesOkOnlyWithSomethingToExport)
{
    std::unique_ptr<Document> doc = survey();
    IndexExportOptions options;
    SetupExportIndexes setup(*doc, options, false);
    EXPECT_FALSE(setup.okButton()->isEnabled());
    EXPECT_FALSE(setup.indexFor(IndexExportOptions::ForSubBlocks)->isEnabled()); // no sub-blocks here
    EXPECT_FALSE(setup.fullText()->isEnabled());
    setup.subSelTotal()->click();
    EXPECT_FALSE(setup.okButton()->isEnabled());
    setup.indexFor(IndexExportOptions::ForQuestions)->click();
    EXPECT_TRUE(setup.okButton()->isEnabled());
    EXPECT_TRUE(setup.fullText()->isEnabled());
    setup.subSelTotal()->click();
    EXPECT_FALSE(setup.okButton()->isEnabled());
    setup.categories()->item(0)->setSelected(true);
    EXPECT_TRUE(setup.okButton()->isEnabled());

    bool ran = false;
    setup.setOnExport([&](const IndexExportOptions &o) {
        ran = true;
        EXPECT_EQ(o.subSelCategories, std::vector<qint32>{0});
    });
    setup.accept();
    EXPECT_TRUE(ran);
    EXPECT_FALSE(options.subSelTotal);
    EXPECT_TRUE(options.indexFor[IndexExportOptions::ForQuestions]);

    // The next export starts from the remembered choices.
    SetupExportIndexes again(*doc, options, true);
    EXPECT_TRUE(again.okButton()->isEnabled());
    EXPECT_TRUE(again.categories()->item(0)->isSelected());
    SetupExportIndexes withSubBlocks(*survey(2, true), options, false);
    EXPECT_TRUE(withSubBlocks.indexFor(IndexExportOptions::ForSubBlocks)->isEnabled());
}

TEST_F(BlockWindows, ProgressWindowCopiesTheTableOrNothing)
{
    std::unique_ptr<Document> doc = survey(30);
    const RowList rows = allRows(*doc);
    IndexExportOptions options;
    options.subSelTotal = true;
    options.subSelCategories = {0};
    options.showNumberOfAnswers = true;
    options.indexFor = {true, true, false, true, false};
    const QLocale locale = QLocale::c();
    QClipboard *clipboard = QApplication::clipboard();

    // Cancel after the second item: nothing reaches the clipboard.
    clipboard->setText(QStringLiteral("before"));
    {
        ExportIndexes progress(*doc, QStringLiteral("All"), rows, options, locale, false);
        std::atomic<qint32> seen{0};
        progress.setItemObserver([&](qint32 done) {
            seen = done;
            if (done == 2)
                progress.requestCancel();
        });
        progress.exec();
        EXPECT_FALSE(progress.copied());
        EXPECT_EQ(seen.load(), 2);
        EXPECT_LT(progress.progress()->value(), progress.progress()->maximum());
    }
    EXPECT_EQ(clipboard->text(), QStringLiteral("before"));

    // Cancel before the timer started the work.
    {
        ExportIndexes progress(*doc, QStringLiteral("All"), rows, options, locale, false);
        QTimer::singleShot(0, &progress, [&] { progress.reject(); });
        progress.exec();
        EXPECT_FALSE(progress.copied());
    }
    EXPECT_EQ(clipboard->text(), QStringLiteral("before"));

    // A full run puts exactly the engine's table there, the one `kel
    // indexes` prints.
    ExportIndexes progress(*doc, QStringLiteral("All"), rows, options, locale, false);
    progress.exec();
    EXPECT_TRUE(progress.copied());
    EXPECT_EQ(progress.progress()->value(), progress.progress()->maximum());
    EXPECT_EQ(progress.progress()->maximum(), 32); // total, one block, 30 questions
    const QString expected = exportIndexes(*doc, QStringLiteral("All"), rows, options, locale);
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_EQ(clipboard->text(), expected);
}

TEST_F(BlockWindows, MainWindowRestoresBlocksAndCopiesThePointsList)
{
    std::unique_ptr<Document> doc = survey();
    const QString path = mDir.filePath(QStringLiteral("survey.kel"));
    ASSERT_TRUE(surveyBuilder().build().writeFile(path));
    const QString key = QStringLiteral("Documents\\") + doc->guidText();
    {
        auto settings = store();
        settings->writeDword(key, QStringLiteral("Block Items"), 3);
        settings->writeString(key + QStringLiteral("\\Block 001"), QStringLiteral("Name"), QStringLiteral("Mine"));
        settings->writeBoolean(key + QStringLiteral("\\Block 001"), QStringLiteral("Include In Copy"), true);
        settings->writeString(key + QStringLiteral("\\Block 001"), QStringLiteral("Included Data Headers"),
                              QStringLiteral("2|3"));
        settings->writeString(key + QStringLiteral("\\Block 002"), QStringLiteral("Name"), QString());
        settings->flush();
    }

    auto settings = store();
    QStringList messages;
    {
        MainWindow w(*settings, false, MainWindowEnvironment());
        w.setMessageHandler([&](QMessageBox::Icon, const QString &, const QString &text) { messages << text; });
        ASSERT_TRUE(w.loadDocument(path, false).isEmpty());
        // The damaged second block is left out with a word to the user and
        // the store is repaired; the open goes on.
        ASSERT_EQ(messages.size(), 1);
        EXPECT_TRUE(messages[0].contains(QStringLiteral("left out")));
        ASSERT_EQ(w.document()->blocks.size(), 2u);
        EXPECT_EQ(w.document()->blocks[1].name, QStringLiteral("Mine"));
        ASSERT_EQ(w.menus().mnuVB1Item.size(), 2);
        EXPECT_EQ(w.menus().mnuVB1Item[1]->text(), QStringLiteral("Mine"));

        // A double click on a status panel: the points behind the total index.
        QApplication::clipboard()->setText(QStringLiteral("before"));
        QLabel *panel = w.statusPanel(2);
        QMouseEvent click(QEvent::MouseButtonDblClick, QPointF(2, 2), panel->mapToGlobal(QPointF(2, 2)),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(panel, &click);
        QString expected;
        calculateTotalIndexSpec(*w.document(), allRows(*w.document()), expected);
        EXPECT_TRUE(expected.startsWith(QStringLiteral("Value\tCount\r\n0\t")));
        EXPECT_EQ(QApplication::clipboard()->text(), expected);
        w.closeDocument();
        EXPECT_TRUE(w.menus().mnuVB1Item.isEmpty());
        EXPECT_FALSE(w.menus().mnuTEditBlocks->isEnabled());
    }
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
