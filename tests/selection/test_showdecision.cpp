// SPDX-License-Identifier: GPL-3.0-or-later
// Every gate of Show at its exact edge: one respondent fewer than the
// document's minimum is refused (or hidden), the minimum itself is shown.
// The survey's small unit is made exactly as large as each case needs, so
// that an off-by-one anywhere (a `<` written `<=`) fails here.
#include "engine/graphs/basicgraph.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/showdecision.h"
#include "surveys.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace kel;
using namespace kel::test;

constexpr qint32 Unit = 0, Influence = 3;
constexpr qint32 Alpha = 0, Beta = 1, Small = 2;

struct Shown {
    RecountResult recount;
    SubSheet sheet;
    qint32 flexRows = 0;
};

// The navigator's edits, then the engine's Show (no button in between).
Shown show(Document &doc, const std::function<void(SelectionModel &)> &edit)
{
    SelectionModel model;
    model.setUpDimensions(doc);
    FlexTotal flex;
    flex.reset(doc, BlockCatalogue(doc));
    edit(model);
    Shown shown;
    shown.recount = model.recount(doc);
    RowRandom random(7);
    shown.sheet = showSelection(doc, BlockCatalogue(doc), model, flex, RowOrderOriginal, random);
    shown.flexRows = flex.rowCount();
    return shown;
}

void keepUnits(SelectionModel &m, std::initializer_list<qint32> units)
{
    m.setCategoryChecked(Unit, false);
    for (qint32 u : units)
        m.setOptionChecked(Unit, u, true);
}

void flexUnits(SelectionModel &m, std::initializer_list<qint32> units)
{
    for (qint32 o = 0; o < 3; ++o)
        m.setFlexOption(o, false);
    for (qint32 u : units)
        m.setFlexOption(u, true);
}

struct Gate {
    const char *name;
    qint32 minimum;    ///< the unit size at the edge (minimums 10 / 5 / 5)
    qint32 complement; ///< the complement minimum (0 where it must not decide)
    std::function<void(SelectionModel &)> edit;
    std::function<bool(const Document &, const Shown &)> passes;
};

TEST(ShowDecision, EveryGateRefusesOneBelowItsMinimumAndShowsTheMinimum)
{
    const Gate gates[] = {
        {"selection below the graph minimum", 5, 0, [](SelectionModel &m) { keepUnits(m, {Small}); },
         [](const Document &, const Shown &s) { return s.sheet.outcome == Outcome<>(); }},
        {"complement left out of the selection", 5, 5,
         [](SelectionModel &m) {
             keepUnits(m, {Alpha, Beta});
         },
         [](const Document &, const Shown &s) { return s.sheet.outcome == Outcome<>(); }},
        {"answer rows of a selection", 10, 5, [](SelectionModel &m) { keepUnits(m, {Small}); },
         [](const Document &, const Shown &s) { return s.sheet.permissions.rows && s.sheet.dataRowsAllowed; }},
        {"comments of a selection", 10, 5, [](SelectionModel &m) { keepUnits(m, {Small}); },
         [](const Document &, const Shown &s) {
             const ShowPermissions &p = s.sheet.permissions;
             return permits(p, OutputCommand::RowsComments) && permits(p, OutputCommand::ColumnsComments)
                 && permits(p, OutputCommand::AllComments);
         }},
        {"split by a category", 5, 5, [](SelectionModel &) {},
         [](const Document &, const Shown &s) { return permits(s.sheet.permissions, OutputCommand::Figures, Unit); }},
        {"split by a question that is not a category", 5, 5, [](SelectionModel &) {},
         [](const Document &doc, const Shown &s) { return splitAllowed(doc, Influence, s.sheet.rows); }},
        {"flex total leaving a group out", 5, 5,
         [](SelectionModel &m) {
             flexUnits(m, {Alpha, Beta});
         },
         [](const Document &, const Shown &s) { return s.sheet.outcome == Outcome<>() && !s.recount.flexShaded; }},
        {"flex total's own figures", 5, 5, [](SelectionModel &m) { flexUnits(m, {Small}); },
         [](const Document &, const Shown &s) { return permits(s.sheet.permissions, OutputCommand::FlexFigures); }},
        {"flex total's row numbers", 10, 5, [](SelectionModel &m) { flexUnits(m, {Small}); },
         [](const Document &, const Shown &s) { return permits(s.sheet.permissions, OutputCommand::FlexRows); }},
    };
    for (const Gate &gate : gates) {
        for (const qint32 size : {gate.minimum - 1, gate.minimum}) {
            SCOPED_TRACE(testing::Message() << gate.name << ", unit of " << size);
            std::unique_ptr<Document> doc =
                smallUnitSurvey({.smallUnit = size, .minimumComplementSelection = gate.complement});
            ASSERT_TRUE(doc);
            const Shown shown = show(*doc, gate.edit);
            EXPECT_EQ(gate.passes(*doc, shown), size == gate.minimum);
        }
    }
}

// What Show says when it refuses: the reason, before anything else is
// decided, and nothing of the selection with it.
TEST(ShowDecision, RefusalsNameTheirReasonAndCarryNothing)
{
    struct Case {
        const char *name;
        qint32 complement; ///< 0: the complement check does not refuse
        std::function<void(SelectionModel &)> edit;
        Outcome<> outcome;
    };
    const Case cases[] = {
        {"blocked category", 5,
         [](SelectionModel &m) {
             keepUnits(m, {Alpha, Beta});
         },
         Outcome<>(Refusal{RefusalCode::Blocked})},
        // Blocking comes first: an empty selection of a shaded category is blocked.
        {"blocked before empty", 5, [](SelectionModel &m) { keepUnits(m, {}); },
         Outcome<>(Refusal{RefusalCode::Blocked})},
        {"blocked flex total", 5,
         [](SelectionModel &m) {
             flexUnits(m, {Alpha, Beta});
         },
         Outcome<>(Refusal{RefusalCode::FlexTotalBlocked})},
        {"nobody", 0, [](SelectionModel &m) { keepUnits(m, {}); }, Outcome<>(Refusal{RefusalCode::NoAnswers})},
        {"too few", 0, [](SelectionModel &m) { keepUnits(m, {Small}); }, Outcome<>(Refusal{RefusalCode::TooSmall})},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<Document> doc = smallUnitSurvey({.minimumComplementSelection = c.complement});
        const Shown shown = show(*doc, c.edit);
        EXPECT_EQ(shown.sheet.outcome, c.outcome);
        EXPECT_TRUE(shown.sheet.rows.empty());
        EXPECT_EQ(shown.sheet.permissions, ShowPermissions());
        for (int command = 0; command < OutputCommandCount; ++command)
            EXPECT_FALSE(permits(shown.sheet.permissions, OutputCommand(command))) << command;
    }

    // The overview build alone, without the navigator, refuses the blocked
    // selection too.
    std::unique_ptr<Document> doc = smallUnitSurvey();
    SelectionMatrix selection = fullSelection(*doc);
    selection.set(Unit, Small, false);
    FlexTotal flex;
    flex.reset(*doc, BlockCatalogue(*doc));
    RowRandom random(3);
    EXPECT_EQ(createSubSheet(*doc, BlockCatalogue(*doc), selection, flex, RowOrderOriginal, random).outcome,
              Outcome<>(Refusal{RefusalCode::Blocked}));
}

// A blocked flex total leaves the flex total as it was: the figures the
// detail window shows never come from it.
TEST(ShowDecision, ARefusedFlexTotalIsNotApplied)
{
    std::unique_ptr<Document> doc = smallUnitSurvey();
    SelectionModel model;
    model.setUpDimensions(*doc);
    FlexTotal flex;
    flex.reset(*doc, BlockCatalogue(*doc));
    const double everyone = flex.totalIndex();
    flexUnits(model, {Alpha, Beta});
    RowRandom random(1);
    EXPECT_EQ(showSelection(*doc, BlockCatalogue(*doc), model, flex, RowOrderOriginal, random).outcome,
              Outcome<>(Refusal{RefusalCode::FlexTotalBlocked}));
    EXPECT_EQ(flex.rowCount(), doc->rowCount());
    EXPECT_EQ(flex.totalIndex(), everyone);

    // Based on the current selection the left-out group is counted within
    // it: Young (20 of Alpha) with the flex total Alpha & Beta leaves nobody
    // of Small out, so it is accepted.
    model.setCategoryChecked(1, false);
    model.setOptionChecked(1, 0, true);
    model.setFlexBasedOnCurrentSelection(true);
    EXPECT_FALSE(model.recount(*doc).flexShaded);
    EXPECT_EQ(showSelection(*doc, BlockCatalogue(*doc), model, flex, RowOrderOriginal, random).outcome, Outcome<>());
    EXPECT_EQ(flex.rowCount(), 20);
}

// The rows permission of each output command, from the rules: individual
// answers need the rows, copying them the document's leave as well, the
// figures only a shown selection.
TEST(ShowDecision, EachOutputCommandAsksItsOwnPermission)
{
    std::unique_ptr<Document> doc = smallUnitSurvey({.smallUnit = 9, .allowCopyData = false});
    struct Row {
        OutputCommand command;
        bool everyone; ///< 89 respondents: rows shown, data copy not allowed by the document
        bool unit;     ///< the unit of 9: shown without rows
    };
    using C = OutputCommand;
    const Row table[] = {
        {C::OverviewRows, true, false},       {C::CopyOverviewAsData, false, false},
        {C::CopyToMiniOverview, true, false}, {C::CopyThisRowsAnswers, true, false},
        {C::RowsComments, true, false},       {C::ColumnsComments, true, false},
        {C::AllComments, true, false},        {C::Figures, true, true},
        {C::FlexFigures, true, true},         {C::FlexRows, true, true},
    };
    ASSERT_EQ(std::size(table), std::size_t(OutputCommandCount));
    const Shown everyone = show(*doc, [](SelectionModel &) {});
    const Shown unit = show(*doc, [](SelectionModel &m) { keepUnits(m, {Small}); });
    ASSERT_EQ(unit.sheet.outcome, Outcome<>());
    for (const Row &row : table) {
        EXPECT_EQ(permits(everyone.sheet.permissions, row.command), row.everyone) << int(row.command);
        EXPECT_EQ(permits(unit.sheet.permissions, row.command), row.unit) << int(row.command);
    }
}

// A forced random order applies below the document's threshold only, and
// only for the random orders.
TEST(ShowDecision, ADocumentForcesItsRandomOrderBelowItsThreshold)
{
    struct Case {
        qint32 rowOrder, threshold, n;
        bool forced;
    };
    const Case cases[] = {
        {1, 50, 49, true},  {1, 50, 50, false},  {2, 50, 49, true},   {2, -1, 100000, true},
        {0, -1, 10, false}, {-1, -1, 10, false}, {-1, 50, 10, false},
    };
    for (const Case &c : cases) {
        DocumentProperties p;
        p.rowOrder = c.rowOrder;
        p.rowOrderThreshold = c.threshold;
        EXPECT_EQ(documentForcesRandomOrder(p, c.n), c.forced) << c.rowOrder << ' ' << c.threshold << ' ' << c.n;
    }
}

} // namespace
