// SPDX-License-Identifier: GPL-3.0-or-later
// Question and block graph data on documents written with the test writer
// and read back through the reader.
#include "engine/document/documentreader.h"
#include "engine/graphs/basicgraph.h"
#include "engine/indexes/blockindex.h"
#include "kelwriter.h"

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString &s, std::ostream *os)
{
    *os << '"' << s.toStdString() << '"';
}
QT_END_NAMESPACE

namespace {

std::unique_ptr<Document> readBack(const SurveyBuilder &b)
{
    return readDocumentBytes(b.toBytes()).document;
}

// With the document's own blocks, compared with a flex total of everyone
// (whose indexes are the document's total indexes).
BasicGraphResult graphOf(const Document &doc, const BasicGraphRequest &request, const BasicGraphSelection &selection)
{
    const BlockCatalogue blocks(doc);
    FlexTotal flex;
    flex.reset(doc, blocks);
    return generateBasicGraph(doc, blocks, flex, request, selection);
}

std::optional<RefusalCode> refused(const BasicGraphResult &result)
{
    return result.done() ? std::nullopt : std::optional<RefusalCode>(result.refusal().code);
}

BasicGraphSelection selectionOf(const std::vector<qint32> &rows)
{
    return {.rows = &rows,
            .selectionText = QStringLiteral("Everyone"),
            .usedTotalText = QStringLiteral("Flex"),
            .usedTotalSize = 99};
}

std::vector<qint32> counts(const BasicGraphDescription &d)
{
    std::vector<qint32> out;
    for (const BasicGraphBar &b : d.bars)
        out.push_back(b.count);
    return out;
}

QString legendTexts(const BasicGraphDescription &d)
{
    QStringList out;
    for (const BasicGraphLegend &l : d.legends)
        out << l.text;
    return out.join(QLatin1Char('|'));
}

} // namespace

TEST(BasicGraphRounding, SharesRoundHalvesToEven)
{
    struct Case {
        qint64 count, scale, total;
        qint32 expected;
    };
    const Case cases[] = {
        {1, 1000, 8, 125},  {1, 1000, 3, 333},  {2, 1000, 3, 667}, {1, 1000, 16, 62}, // 62.5 -> 62
        {3, 1000, 16, 188},                                                           // 187.5 -> 188
        {1, 100, 8, 12},    {3, 100, 8, 38},    {5, 100, 8, 62},   {7, 100, 8, 88},   // 12.5, 37.5, 62.5, 87.5
        {0, 1000, 0, 0},    {4, 1000, 4, 1000}, {1, 100, 200, 0},                     // 0.5 -> 0
    };
    for (const Case &c : cases)
        EXPECT_EQ(roundedShare(c.count, c.scale, c.total), c.expected)
            << c.count << " x " << c.scale << " / " << c.total;
}

// X set: alternative 0 means "no answer". It carries points 0 here, so it
// counts in the index as well as in the denominator.
TEST(BasicGraphData, HiddenFirstAlternativeCountsButIsNeverDrawn)
{
    SurveyBuilder b(8);
    b.header().pointsScale = 10;
    b.header().firstAlternativeIsNoAnswer = FileTrue;
    const qint32 q = b.addQuestion(
        {.code = QStringLiteral("Q1"), .heading = QStringLiteral("Pay"), .text = QStringLiteral("Is the pay fair?")},
        {{.text = QStringLiteral("No answer"), .points = 0},
         {.text = QStringLiteral("Yes"), .points = 40},
         {.text = QStringLiteral("No"), .points = 0}});
    b.setAnswers(q, {0, 0, 0, 0, 0, 0, 1, 2}); // six hidden, one yes, one no
    auto doc = readBack(b);
    const auto rows = allRows(*doc);
    const BasicGraphResult r = graphOf(*doc, {.questions = {q}, .name = QStringLiteral("Pay")}, selectionOf(rows));
    ASSERT_TRUE(r.done());
    const BasicGraphDescription &d = r.value();
    ASSERT_EQ(d.bars.size(), 2u);
    EXPECT_EQ(legendTexts(d), QStringLiteral("Yes|No"));
    EXPECT_EQ(d.bars[0].perMille, 125); // 1 of 8, not 1 of 2
    EXPECT_EQ(d.bars[0].percentText, QStringLiteral("12"));
    // Index: 40 points over 8 answers / scale 10 = 0.5 (0.0 would be 1 of 2 -> 2.0).
    EXPECT_EQ(d.groups[0].label, QStringLiteral("Q1 (0.5) Is the pay fair?"));
    EXPECT_TRUE(d.totalText.isEmpty()); // one group
}

// A block of three questions: two share one answer scale, the third has its
// own; a fourth, outside the graphed list, has one alternative.
class BlockGraph : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SurveyBuilder b(6);
        b.header().pointsScale = 100;
        b.header().language = b.text(QStringLiteral("sv"));
        block = b.addBlock({.name = QStringLiteral("Arbete")});
        q1 = b.addQuestion(
            {.code = QStringLiteral("A"), .text = QStringLiteral("T1"), .block = block},
            {{.text = QStringLiteral("low"), .points = 0, .colour = 0x0000FF},
             {.text = QStringLiteral("high"), .points = 100, .colour = 0xFFFFFF, .graphAttribute = 1, .sortValue = 1}});
        q2 = b.addQuestionLike({.code = QStringLiteral("B"), .text = QStringLiteral("T2"), .block = block}, q1);
        q3 = b.addQuestion({.code = QStringLiteral("C"), .text = QStringLiteral("T3"), .block = block},
                           {{.text = QStringLiteral("x"), .points = 100, .sortValue = 1},
                            {.text = QStringLiteral("y"), .points = 0},
                            {.text = QStringLiteral("z")}});
        q4 = b.addQuestion({.block = block}, {{.text = QStringLiteral("only")}});
        b.setAnswers(q1, {0, 0, 1, 1, 1, 1});
        b.setAnswers(q2, {1, 1, 1, 1, 1, 1});
        b.setAnswers(q3, {0, 1, 2, 2, 2, 2});
        doc = readBack(b);
        // Total indexes unlike the rows' own, so that the flex total's
        // figures (everyone: the total indexes) stand out in the labels.
        doc->questions[std::size_t(q1)].totalIndex = 0.25;
        doc->questions[std::size_t(q2)].totalIndex = -1.0;
        doc->blocks[std::size_t(block)].totalIndex = 0.75;
        rows = allRows(*doc);
    }

    BasicGraphDescription generate(bool showTotalIndex, std::vector<qint32> rowsUsed = {})
    {
        if (!rowsUsed.empty())
            rows = rowsUsed;
        BasicGraphRequest request{.questions = {q1, q2, q3},
                                  .name = QStringLiteral("Arbete"),
                                  .block = block,
                                  .showTotalIndex = showTotalIndex,
                                  .kind = FractionGraph};
        BasicGraphResult r = graphOf(*doc, request, selectionOf(rows));
        EXPECT_TRUE(r.done());
        return r.value();
    }

    qint32 block = -1, q1 = -1, q2 = -1, q3 = -1, q4 = -1;
    std::unique_ptr<Document> doc;
    std::vector<qint32> rows;
};

TEST_F(BlockGraph, SharedScalesLabelsAndTotalWithAndWithoutTheUsedTotal)
{
    const BasicGraphDescription d = generate(false);
    ASSERT_EQ(d.groups.size(), 3u);
    // Sort values default to the points: high (1) before low (0); x (1), y (0), z (-1 last).
    EXPECT_EQ(legendTexts(d), QStringLiteral("high|low|x|y|z"));
    EXPECT_TRUE(d.groups[1].firstLegend == 0 && d.groups[2].firstLegend == 2 && d.groups[2].legendCount == 3);
    EXPECT_EQ(d.groups[2].firstBar, 4);
    EXPECT_EQ(counts(d), (std::vector<qint32>{4, 2, 6, 0, 1, 1, 4}));
    EXPECT_EQ(legendRuns(d).groupRun, (std::vector<qint32>{0, 0, 1}));
    // Colours and outline flags travel with the bars.
    EXPECT_TRUE(d.bars[0].colour == 0xFFFFFF && d.bars[0].drawFlags == 1);

    const BasicGraphDescription &plain = d;
    EXPECT_EQ(plain.groups[0].label, QStringLiteral("A (0.67) T1")); // 4 of 6 high
    EXPECT_EQ(plain.groups[2].label, QStringLiteral("C (0.50) T3")); // z has no points: 1 of 2
    // (4 + 6 + 1) / (6 + 6 + 2), in the document's language.
    EXPECT_EQ(plain.totalText, QStringLiteral("Totalt: 0.79"));
    EXPECT_EQ(plain.selectionText, QStringLiteral("Everyone [6]"));

    const BasicGraphDescription compared = generate(true);
    EXPECT_EQ(compared.groups[0].label, QStringLiteral("A (0.67 / 0.25) T1"));
    EXPECT_EQ(compared.groups[1].label, QStringLiteral("B (1.00 / -) T2"));
    EXPECT_EQ(compared.totalText, QStringLiteral("Totalt: 0.79 / 0.75"));
    EXPECT_EQ(compared.selectionText, QStringLiteral("Everyone [6] / Flex [99]"));
}

TEST_F(BlockGraph, GroupsWithoutShownAnswersAreLeftOut)
{
    // Rows 0 and 1 only: question 3 has x and y, question 1 low twice.
    const BasicGraphDescription d = generate(false, {0, 1});
    ASSERT_EQ(d.groups.size(), 3u);
    EXPECT_EQ(d.bars[0].countText, QStringLiteral("0")); // the group has answers

    // q4's one alternative is shown and chosen by everyone: it stays. Without
    // rows every group goes and the graph is empty.
    BasicGraphRequest request{.questions = {q4, q1}, .name = QStringLiteral("n")};
    EXPECT_EQ(graphOf(*doc, request, selectionOf(rows)).value().groups.size(), 2u);
    const std::vector<qint32> none;
    const BasicGraphResult empty = graphOf(*doc, request, selectionOf(none));
    EXPECT_TRUE(empty.value().groups.empty() && empty.value().bars.empty());
    EXPECT_EQ(empty.value().legends.size(), 3u);
}

TEST(BasicGraphData, ReversedOrderFlipsOnlyNonNegativeSortValues)
{
    SurveyBuilder b(1);
    QList<AlternativeSpec> alternatives;
    for (const auto &[letter, sortValue] : {std::pair{'a', 2}, {'b', -1}, {'c', 5}, {'d', 0}, {'e', -3}, {'f', 2}})
        alternatives.append({.text = QString(QLatin1Char(letter)), .sortValue = sortValue});
    const qint32 q = b.addQuestion({.heading = QStringLiteral("Q")}, alternatives);
    auto doc = readBack(b);
    const auto rows = allRows(*doc);
    BasicGraphSelection selection = selectionOf(rows);
    auto order = [&] {
        const BasicGraphResult r = graphOf(*doc, {.questions = {q}, .name = QStringLiteral("Q")}, selection);
        return legendTexts(r.value());
    };
    EXPECT_EQ(order(), QStringLiteral("c|a|f|d|b|e"));
    selection.valueOrderReversed = true;
    EXPECT_EQ(order(), QStringLiteral("d|a|f|c|b|e"));
}

// Split by a category whose first alternative means "no answer" (g0 = 1).
class SplitGraph : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SurveyBuilder b(12);
        b.header().pointsScale = 10;
        b.header().firstAlternativeIsNoAnswer = FileTrue;
        b.header().minimumGraphSelection = 3;
        QList<AlternativeSpec> units;
        for (const char *name : {"none", "North side", "South side", "West side"})
            units.append({.text = QString::fromUtf8(name),
                          .shortText = QString::fromUtf8(name).left(1),
                          .countsForPrivacy = true});
        unit = b.addQuestion({.heading = QStringLiteral("Unit"),
                              .text = QStringLiteral("Which unit?"),
                              .isCategory = true,
                              .inOverview = false},
                             units);
        q = b.addQuestion(
            {.code = QStringLiteral("Q"), .heading = QStringLiteral("Mood"), .text = QStringLiteral("How?")},
            {{.text = QStringLiteral("-")},
             {.text = QStringLiteral("good"), .points = 20},
             {.text = QStringLiteral("bad"), .points = 0}});
        b.setAnswers(unit, {0, 0, 0, 1, 1, 1, 1, 1, 2, 2, 2, 2}); // 3 none, 5 north, 4 south
        b.setAnswers(q, {1, 1, 1, 1, 1, 1, 2, 0, 2, 2, 2, 1});
        doc = readBack(b);
        rows = allRows(*doc);
    }
    BasicGraphResult generate(const BasicGraphSelection &selection)
    {
        BasicGraphRequest request{.questions = {q}, .splitQuestion = unit, .name = splitGraphName(*doc, q, unit)};
        return graphOf(*doc, request, selection);
    }

    qint32 unit = -1, q = -1;
    std::unique_ptr<Document> doc;
    std::vector<qint32> rows;
};

TEST_F(SplitGraph, GroupsFromTheSecondAlternativeWithIndexAndCount)
{
    BasicGraphSelection selection = selectionOf(rows);
    const BasicGraphResult r = generate(selection);
    ASSERT_TRUE(r.done());
    const BasicGraphDescription &d = r.value();
    EXPECT_EQ(d.title, QStringLiteral("Mood split by Unit"));
    EXPECT_EQ(d.subTitle, QStringLiteral("How? / Which unit?"));
    ASSERT_EQ(d.groups.size(), 2u); // "none" forms no group, West has nobody
    // North: good 3, bad 1, hidden 1 -> index 60/4/10; per mille of 5 answers.
    EXPECT_EQ(d.groups[0].label, QStringLiteral("North side (1.5) [5]"));
    EXPECT_EQ(counts(d), (std::vector<qint32>{3, 1, 1, 3}));
    EXPECT_EQ(d.bars[0].perMille, 600);
    EXPECT_EQ(d.groups[1].label, QStringLiteral("South side (0.5) [4]"));
    // Over North and South only: 80 points / 8 answers with points / 10.
    EXPECT_EQ(d.totalText, QStringLiteral("Total: 1.0"));

    selection.shortCategoryNames = true;
    EXPECT_EQ(generate(selection).value().groups[0].label, QStringLiteral("N (1.5) [5]"));

    // Three candidate groups remain after g0, so one drawn group still has a total.
    const std::vector<qint32> northOnly{0, 1, 2, 3, 4, 5, 6, 7};
    const BasicGraphDescription north = generate(selectionOf(northOnly)).value();
    EXPECT_EQ(north.groups.size(), 1u);
    EXPECT_EQ(north.totalText, QStringLiteral("Total: 1.5"));
}

TEST_F(SplitGraph, NoGroupBelowTheMinimumGraphSelection)
{
    // Rows 7..9: one north, two south, both below 3.
    const std::vector<qint32> few{7, 8, 9, 10, 11};
    EXPECT_EQ(refused(generate(selectionOf(few))), RefusalCode::SplitNotAllowed);
    EXPECT_FALSE(splitAllowed(*doc, unit, few));
    EXPECT_TRUE(splitAllowed(*doc, unit, rows));

    // A navigator category follows the overview's decision, either way.
    BasicGraphSelection selection = selectionOf(rows);
    const std::vector<bool> notAllowed{true};
    selection.splitNotAllowed = &notAllowed;
    EXPECT_EQ(refused(generate(selection)), RefusalCode::SplitNotAllowed);
    const std::vector<bool> allowed{false};
    selection.rows = &few;
    selection.splitNotAllowed = &allowed;
    EXPECT_TRUE(generate(selection).done());
}

TEST(BasicGraphData, BadRequestsFailWithoutTouchingAnything)
{
    SurveyBuilder b(2);
    const qint32 q = b.addQuestion({.heading = QStringLiteral("Q")}, {{.text = QStringLiteral("a")}});
    auto doc = readBack(b);
    const auto rows = allRows(*doc);
    const BasicGraphSelection s = selectionOf(rows);
    EXPECT_EQ(refused(graphOf(*doc, {.questions = {}}, s)), RefusalCode::NoSuchGraph);
    EXPECT_EQ(refused(graphOf(*doc, {.questions = {q + 1}}, s)), RefusalCode::NoSuchGraph);
    EXPECT_EQ(refused(graphOf(*doc, {.questions = {q}, .kind = 3}, s)), RefusalCode::NoSuchGraph);
    EXPECT_EQ(refused(graphOf(*doc, {.questions = {q}, .block = 4}, s)), RefusalCode::NoSuchGraph);
    EXPECT_EQ(refused(graphOf(*doc, {.questions = {q}, .splitQuestion = -7}, s)), RefusalCode::NoSuchGraph);
    // Rows outside the document are skipped, not read.
    const std::vector<qint32> wild{-5, 0, 1, 2, 1000000};
    const BasicGraphResult r = graphOf(*doc, {.questions = {q}}, selectionOf(wild));
    ASSERT_TRUE(r.done());
    EXPECT_EQ(counts(r.value()), (std::vector<qint32>{2}));
}

TEST(BasicGraphClipboard, ValuesAndLegendsText)
{
    BasicGraphDescription d;
    d.title = QStringLiteral("Block");
    d.selectionText = QStringLiteral("All [9]");
    for (const char *legend : {"yes", "no", "x", "y", "z"})
        d.legends.push_back({QString::fromUtf8(legend), 0, 0});
    for (qint32 n = 1; n <= 7; ++n)
        d.bars.push_back({n, 0, QString::number(n), QString::number(n * 10)});
    d.groups = {
        {0, 2, QStringLiteral("G1"), 0, 2}, {2, 3, QStringLiteral("G2"), 2, 3}, {5, 2, QStringLiteral("G3"), 0, 2}};
    EXPECT_EQ(basicGraphValuesText(d, false), QStringLiteral("G1\tG2\tG3\r\n1\t3\t6\r\n2\t4\t7\r\n\t5\t"));
    EXPECT_EQ(basicGraphValuesText(d, true), QStringLiteral("G1\tG2\tG3\r\n10\t30\t60\r\n20\t40\t70\r\n\t50\t"));
    EXPECT_EQ(basicGraphLegendsText(d), QStringLiteral("Block\r\nyes\tx\r\nno\ty\r\n\tz\r\nAll [9]"));
}
