// SPDX-License-Identifier: GPL-3.0-or-later
// The session is the one answer to "what is on screen": what it permits,
// what it keeps across a refused Show, what it forgets when the document
// goes, and the commands built on it without a main window.
#include "engine/blocks/userblocks.h"
#include "engine/selection/counting.h"
#include "gui/common/viewersession.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/graphcommands.h"
#include "texts/statusline.h"

#include "surveys.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kel;
using kel::test::SmallUnitOptions;
using kel::test::smallUnitSurvey;

namespace {

// Unit is category 0; its options are Alpha (40), Beta (40) and Small.
constexpr qint32 Small = 2;

void open(ViewerSession &session, const SmallUnitOptions &options = {})
{
    session.documents().installDocument(smallUnitSurvey(options), QStringLiteral("/s/units.kel"), false);
    session.resetFlexTotal();
}

} // namespace

TEST(ViewerSession, NothingIsOutputUntilASheetIsOnScreen)
{
    ViewerSession session(false);
    const auto anyPermitted = [&] {
        for (int c = 0; c < OutputCommandCount; ++c)
            if (session.mayOutput(OutputCommand(c)))
                return true;
        return false;
    };
    EXPECT_FALSE(anyPermitted()) << "no document";
    open(session);
    ASSERT_TRUE(session.show(fullSelection(*session.document()), 0).done());
    EXPECT_EQ(session.shownSheet().rows.size(), 83u); // Alpha, Beta and the 3 of Small
    EXPECT_FALSE(anyPermitted()) << "built, but the view has not drawn it";
    session.setSheetOnScreen(true);
    // Everyone: figures, rows and comments alike.
    for (const OutputCommand c : {OutputCommand::Figures, OutputCommand::OverviewRows, OutputCommand::AllComments,
                                  OutputCommand::CopyToMiniOverview})
        EXPECT_TRUE(session.mayOutput(c)) << int(c);
}

// A minimum selection of 10: the unit of 9 shows its figures only, the unit
// of 10 its rows as well.
TEST(ViewerSession, RowsFollowTheMinimumSelectionAtItsEdge)
{
    for (const qint32 size : {9, 10}) {
        ViewerSession session(false);
        open(session, {.smallUnit = size, .minimumSelection = 10});
        ASSERT_TRUE(session.show(test::firstCategoryOnly(*session.document(), Small), 0).done()) << size;
        session.setSheetOnScreen(true);
        EXPECT_EQ(session.shownSheet().rows.size(), std::size_t(size));
        EXPECT_EQ(session.dataRowsAllowed(), size == 10) << size;
        EXPECT_EQ(session.mayOutput(OutputCommand::OverviewRows), size == 10) << size;
        EXPECT_TRUE(session.mayOutput(OutputCommand::Figures)) << size;
    }
}

TEST(ViewerSession, ARefusedShowKeepsTheSheetOnScreen)
{
    ViewerSession session(false);
    open(session); // Small has 3, under the minimum graph selection of 5
    ASSERT_TRUE(session.show(fullSelection(*session.document()), 0).done());
    session.setSheetOnScreen(true);
    QSignalSpy shown(&session, &ViewerSession::sheetChanged);
    QSignalSpy flex(&session, &ViewerSession::flexTotalChanged);
    EXPECT_FALSE(session.show(test::firstCategoryOnly(*session.document(), Small), 0).done());
    EXPECT_EQ(shown.count(), 0);
    EXPECT_EQ(flex.count(), 1) << "the flex total may change with a refused Show";
    EXPECT_EQ(session.shownSheet().rows.size(), 83u) << "everyone stays";
    EXPECT_TRUE(session.mayOutput(OutputCommand::OverviewRows));
}

TEST(ViewerSession, ClosingForgetsWhatWasShown)
{
    ViewerSession session(false);
    open(session);
    ASSERT_TRUE(session.show(fullSelection(*session.document()), 0).done());
    session.setSheetOnScreen(true);
    session.setPopupPlace(SheetHit{.place = SheetPlace::AnswerCell, .column = 0, .line = 1, .question = 3, .row = 1},
                          0);
    QWidget *pooled = takePooledWindow(session.windowSlots(SlotTable::BasicGraphs), [] { return new QWidget; });
    pooled->show();

    session.documents().closeDocument();
    EXPECT_FALSE(pooled->isVisible());
    EXPECT_EQ(session.windowSlots(SlotTable::BasicGraphs)[0].window, nullptr);
    EXPECT_TRUE(session.shownSheet().rows.empty());
    EXPECT_FALSE(session.hasSheet());
    EXPECT_EQ(session.popupHit().place, SheetPlace::Outside);
    EXPECT_EQ(session.popupBlock(), -1);
    delete pooled;
}

// Only an answer cell names a respondent; the question must be one of the
// document's (five questions: 0..4).
TEST(ViewerSession, PopupPlaceNamesOnlyWhatIsThere)
{
    ViewerSession session(false);
    open(session);
    const struct {
        SheetPlace place;
        qint32 row;
    } places[] = {{SheetPlace::Outside, -1},
                  {SheetPlace::AnswerCell, 7},
                  {SheetPlace::CodeLine, -1},
                  {SheetPlace::BlockLine, -1}};
    for (const auto &p : places) {
        session.setPopupPlace(SheetHit{.place = p.place, .column = 0, .line = 0, .question = 3, .row = 7}, -1);
        EXPECT_EQ(session.popupAnswerRow(), p.row) << int(p.place);
    }
    const qint32 count = qint32(session.document()->questions.size());
    for (const auto &[question, expected] :
         {std::pair(-1, -1), std::pair(count - 1, count - 1), std::pair(count, -1)}) {
        session.setPopupPlace(SheetHit{.place = SheetPlace::CodeLine, .question = question}, -1);
        EXPECT_EQ(session.popupQuestion(), expected) << question;
    }
}

namespace {

class RecordingHost : public CommandHost
{
public:
    void showMessage(QMessageBox::Icon, const QString &, const QString &text) override { messages << text; }
    StatusLine &statusLine() override { return status; }
    QWidget *dialogParent() override { return &parent; }

    QStringList messages;
    StatusLine status{false};
    QWidget parent;
};

} // namespace

// The graph commands need nothing of the main window: a host, the settings
// and the session. They draw only from a sheet on screen.
TEST(ViewerSession, GraphCommandsRunOnTheSessionAlone)
{
    QTemporaryDir dir;
    SettingsStore store(SettingsLocation{.file = dir.filePath(QStringLiteral("k.ini"))});
    ViewerSettings settings{.store = store, .isSwedish = false, .printerInstalled = false, .options = {}, .last = {}};
    ViewerSession session(false);
    RecordingHost host;
    GraphCommands graphs(CommandContext{session, settings, host}, nullptr);
    open(session);
    ASSERT_TRUE(session.show(fullSelection(*session.document()), 0).done());

    const BasicGraphRequest request{.questions = {3}, .name = QStringLiteral("Influence"), .kind = FractionGraph};
    EXPECT_EQ(graphs.openBasicGraph(request), nullptr) << "not on screen yet";
    session.setSheetOnScreen(true);
    BasicGraphWindow *window = graphs.openBasicGraph(request);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->parentWidget(), &host.parent);
    EXPECT_EQ(session.windowSlots(SlotTable::BasicGraphs)[0].window, window);
    EXPECT_FALSE(window->description().bars.empty());
    EXPECT_TRUE(host.messages.isEmpty());
}

// A block the user adds has no flex-total index until the editor says the
// blocks changed; then the index and the block menus follow.
TEST(ViewerSession, EditedBlocksReachTheFlexTotal)
{
    ViewerSession session(false);
    open(session);
    BlockCatalogue &blocks = session.editableBlocks();
    blocks.blocks.push_back(makeUserBlock(QStringLiteral("Mine"), true));
    const qint32 mine = blocks.size() - 1;
    blocks.items.push_back(BlockItem{.block = mine, .question = 3});
    EXPECT_EQ(session.flexTotal().blockIndex(mine), -1.0);

    QSignalSpy changed(&session, &ViewerSession::blocksChanged);
    session.blocksEdited();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_NE(session.flexTotal().blockIndex(mine), -1.0);
}
