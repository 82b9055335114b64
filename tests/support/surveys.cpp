// SPDX-License-Identifier: GPL-3.0-or-later
#include "surveys.h"

#include "engine/selection/counting.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kel::test {

using namespace kel::writer;

Document readBack(const KelFile &file)
{
    std::unique_ptr<Document> doc = readBackOwned(file);
    return doc ? std::move(*doc) : Document();
}

std::unique_ptr<Document> readBackOwned(const KelFile &file)
{
    ReadResult result = readDocumentBytes(file.toBytes(), {});
    if (!result.document) {
        ADD_FAILURE() << "the reader refuses the test document (" << int(result.code)
                      << "): " << result.detail.toStdString();
        return nullptr;
    }
    return std::move(result.document);
}

EngineSurvey::EngineSurvey() : mBuilder(0, 1)
{
    HeaderFields &h = mBuilder.header();
    h.totalText = mBuilder.text(QStringLiteral("Total"));
    h.selectionTooSmallText = mBuilder.text(QStringLiteral("Too few!"));
    h.pointsScale = 1;
}

qint32 EngineSurvey::addQuestion(const QuestionRecipe &recipe)
{
    const auto q = qint32(mQuestionTotals.size());
    QList<AlternativeSpec> alternatives;
    for (std::size_t i = 0; i < recipe.points.size(); ++i) {
        alternatives << AlternativeSpec{
            .text = recipe.heading + QStringLiteral(" %1").arg(i),
            .points = recipe.points[i],
            .shortText = QStringLiteral("s%1").arg(i),
            .complementCheck = i < recipe.complementCheck.size() && recipe.complementCheck[i],
            .countsForPrivacy = i < recipe.countsForPrivacy.size() && recipe.countsForPrivacy[i],
        };
    }
    mBuilder.addQuestion({.code = QStringLiteral("Q%1").arg(q + 1),
                          .heading = recipe.heading,
                          .text = recipe.heading + QStringLiteral(" (full)"),
                          .selectionLabel = recipe.heading,
                          .block = recipe.block,
                          .subBlock = recipe.subBlock,
                          .isCategory = recipe.category,
                          .inOverview = recipe.overview,
                          .inTotalIndex = recipe.inTotal,
                          .isFlexCategory = recipe.flex},
                         alternatives);
    mQuestionTotals.push_back(recipe.totalIndex);
    return q;
}

qint32 EngineSurvey::addBlock(const QString &name, bool memberRule, qint32 linkedBlock, double totalIndex,
                              bool fromDocument)
{
    const auto fileBlocks = qint32(mBlockTotals.size());
    if (!fromDocument) {
        Block &b = mUserBlocks.emplace_back();
        b.name = name, b.memberRule = memberRule, b.linkedBlock = linkedBlock, b.totalIndex = totalIndex;
        b.fromDocument = false;
        return fileBlocks + qint32(mUserBlocks.size()) - 1;
    }
    EXPECT_TRUE(mUserBlocks.empty()) << "a user-defined block comes after the document's blocks";
    mBuilder.addBlock({.code = QStringLiteral("B%1").arg(fileBlocks + 1),
                       .name = name,
                       .linkedBlock = linkedBlock,
                       .memberRule = memberRule});
    mBlockTotals.push_back(totalIndex);
    return fileBlocks;
}

Document EngineSurvey::build(const std::vector<std::vector<qint32>> &columns, CellType type)
{
    const qint32 rows = columns.empty() ? 0 : qint32(columns.front().size());
    mBuilder.setRowCount(rows);
    mBuilder.setCellType(type == CellType::I32 ? 3 : type == CellType::I16 ? 2 : 1);
    for (std::size_t q = 0; q < columns.size() && q < mQuestionTotals.size(); ++q)
        mBuilder.setAnswers(qint32(q), columns[q]);
    KelFile file = mBuilder.build();
    // The stored totals decide which questions and blocks an export lists;
    // a test names them instead of deriving them from the answers.
    for (std::size_t q = 0; q < mQuestionTotals.size(); ++q)
        file.questions[q].totalIndex = mQuestionTotals[q];
    for (std::size_t b = 0; b < mBlockTotals.size(); ++b)
        file.blocks[b].totalIndex = mBlockTotals[b];
    // Items of user-defined blocks are not the file's: they join after reading.
    const auto fileBlocks = qint32(mBlockTotals.size());
    std::vector<BlockItem> userItems;
    std::erase_if(file.blockItems, [&](const BlockItemRecord &item) {
        if (item.block < fileBlocks)
            return false;
        userItems.push_back({item.block, item.question});
        return true;
    });
    Document doc = readBack(file);
    doc.currentFileName = QStringLiteral("memory.kel");
    for (const Block &b : mUserBlocks)
        doc.blocks.push_back(b);
    for (const BlockItem &item : userItems)
        doc.blockItems.push_back(item);
    return doc;
}

Document sheetSurvey(const std::vector<SheetQuestion> &questions, const std::vector<SheetBlock> &blocks,
                     const std::vector<std::vector<qint32>> &answers)
{
    SurveyBuilder b(qint32(answers.size()), 1);
    for (const SheetBlock &block : blocks)
        b.addBlock({.code = block.code, .name = block.name});
    for (const SheetQuestion &sq : questions) {
        QList<AlternativeSpec> alternatives;
        for (const SheetAlternative &sa : sq.alternatives)
            alternatives << AlternativeSpec{
                .text = sa.label, .points = sa.points, .colour = sa.colour, .label = sa.label};
        b.addQuestion({.code = sq.code,
                       .heading = sq.code,
                       .block = sq.block,
                       .subBlock = sq.subBlock,
                       .sheetColour = sq.colour,
                       .graphFlags = sq.graphFlags},
                      alternatives);
    }
    for (std::size_t r = 0; r < answers.size(); ++r)
        for (std::size_t q = 0; q < answers[r].size() && q < questions.size(); ++q)
            b.setAnswer(qint32(r), qint32(q), answers[r][q]);
    Document doc = readBack(b.build());
    doc.currentFileName = QStringLiteral("sheet.kel");
    return doc;
}

std::unique_ptr<Document> shellSurvey(const ShellSurveyOptions &recipe)
{
    SurveyBuilder b(recipe.rows, 1);
    HeaderFields &h = b.header();
    h.projectName = b.text(QStringLiteral("Test survey"));
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.allowCopy = fileBool(recipe.allowCopy), h.allowPrint = fileBool(recipe.allowPrint);
    h.allowSavePicture = fileBool(recipe.allowSavePicture), h.allowCopyData = fileBool(recipe.allowCopyData);
    h.pointsScale = recipe.pointsScale, h.minimumSelection = recipe.minimumSelection;
    b.file().options.revision = recipe.revision;
    const bool points = recipe.pointsScale > 0;
    const qint32 q = b.addQuestion({.code = QStringLiteral("Q1"), .heading = QStringLiteral("Satisfaction")},
                                   {{.text = QStringLiteral("No"), .points = points ? 0 : -1},
                                    {.text = QStringLiteral("Yes"), .points = points ? recipe.pointsScale : -1}});
    for (qint32 r = 0; r < recipe.rows; ++r)
        b.setAnswer(r, q, r % 2);
    for (const QString &heading : recipe.categoryHeadings)
        b.addQuestion({.code = QStringLiteral("Q%1").arg(b.file().questions.size() + 1),
                       .heading = heading,
                       .isCategory = true,
                       .inOverview = false,
                       .inTotalIndex = false},
                      {{.text = QStringLiteral("No")}, {.text = QStringLiteral("Yes")}});
    if (recipe.rowComments)
        b.setRowComment(0, QStringLiteral("A comment"));
    KelFile file = b.build();
    file.header.indexFlags = recipe.totalIndexGraph ? 0x100 : 0;
    return readBackOwned(file);
}

QByteArray navigatorSurveyBytes(const NavigatorSurveyOptions &o)
{
    SurveyBuilder b(std::max<qint32>(o.rows, 20), 1);
    HeaderFields &h = b.header();
    h.pointsScale = o.pointsScale;
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.selectionTooSmallText = b.text(QStringLiteral("Too few respondents for this selection."));
    h.minimumSelection = 5;
    h.minimumGraphSelection = o.minimumGraphSelection;
    h.minimumComplementSelection = o.minimumComplementSelection;
    h.firstAlternativeIsNoAnswer = fileBool(o.firstAlternativeIsNoAnswer);
    h.indexLineTexts = {b.text(QStringLiteral("Respondent")), b.text(QStringLiteral("Question")),
                        o.subBlockLabel ? b.text(QStringLiteral("Sub-block")) : -1, b.text(QStringLiteral("Block")),
                        b.text(QStringLiteral("All questions"))};
    const qint32 unit =
        b.addQuestion({.code = QStringLiteral("U"),
                       .heading = QStringLiteral("Unit"),
                       .selectionLabel = QStringLiteral("Unit"),
                       .isCategory = true,
                       .inOverview = false,
                       .inTotalIndex = false,
                       .isFlexCategory = o.flexCategory && o.flexOnUnit},
                      {{.text = QStringLiteral("No answer")},
                       {.text = QStringLiteral("North"), .shortText = QStringLiteral("N"), .complementCheck = true},
                       {.text = QStringLiteral("South"), .shortText = QStringLiteral("S"), .complementCheck = true},
                       {.text = QStringLiteral("East"), .shortText = QStringLiteral("E"), .complementCheck = true}});
    const qint32 role = b.addQuestion(
        {.code = QStringLiteral("R"),
         .heading = QStringLiteral("Role"),
         .selectionLabel = QStringLiteral("Role"),
         .isCategory = true,
         .inOverview = false,
         .inTotalIndex = false,
         .isFlexCategory = o.flexCategory && !o.flexOnUnit},
        {{.text = QStringLiteral("No answer")}, {.text = QStringLiteral("Staff")}, {.text = QStringLiteral("Boss")}});
    const qint32 block = b.addBlock({.code = QStringLiteral("B"), .name = QStringLiteral("Work")});
    const qint32 q = b.addQuestion(
        {.code = QStringLiteral("1"), .heading = QStringLiteral("Mood"), .block = block},
        {{.text = QStringLiteral("Bad"), .points = 0}, {.text = QStringLiteral("Good"), .points = o.pointsScale}});
    for (qint32 r = 0; r < b.rowCount(); ++r) {
        b.setAnswer(r, unit, r < 10 ? 1 : r < 18 ? 2 : r == 18 ? 3 : 0);
        b.setAnswer(r, role, r % 2 == 0 || r >= 20 ? 1 : 2);
        b.setAnswer(r, q, r % 3 == 0 ? 1 : 0);
    }
    return b.toBytes();
}

std::unique_ptr<Document> navigatorSurvey(const NavigatorSurveyOptions &o)
{
    ReadResult result = readDocumentBytes(navigatorSurveyBytes(o), {});
    if (!result.document)
        return nullptr;
    result.document->currentFileName = QStringLiteral("navigator.kel");
    return std::move(result.document);
}

QByteArray smallUnitSurveyBytes(const SmallUnitOptions &o)
{
    const qint32 rows = 80 + o.smallUnit;
    SurveyBuilder b(rows, 1);
    HeaderFields &h = b.header();
    h.pointsScale = 4;
    h.totalText = b.text(QStringLiteral("Everyone"));
    h.selectionTooSmallText = b.text(QStringLiteral("Too few respondents!"));
    h.minimumSelection = o.minimumSelection;
    h.minimumComplementSelection = o.minimumComplementSelection;
    h.minimumGraphSelection = o.minimumGraphSelection;
    h.allowCopy = h.allowPrint = h.allowSavePicture = FileTrue;
    h.allowCopyData = fileBool(o.allowCopyData);
    h.rowOrder = o.rowOrder;
    const auto flagged = [](const char *text) {
        return AlternativeSpec{.text = QString::fromLatin1(text), .complementCheck = true, .countsForPrivacy = true};
    };
    const qint32 unit = b.addQuestion({.code = QStringLiteral("U"),
                                       .heading = QStringLiteral("Unit"),
                                       .isCategory = true,
                                       .inOverview = false,
                                       .inTotalIndex = false,
                                       .isFlexCategory = true},
                                      {flagged("Alpha"), flagged("Beta"), flagged("Small")});
    const qint32 age = b.addQuestion({.code = QStringLiteral("A"),
                                      .heading = QStringLiteral("Age"),
                                      .isCategory = true,
                                      .inOverview = false,
                                      .inTotalIndex = false},
                                     {flagged("Young"), flagged("Old")});
    const qint32 gender = b.addQuestion({.code = QStringLiteral("G"),
                                         .heading = QStringLiteral("Gender"),
                                         .isCategory = true,
                                         .inOverview = false,
                                         .inTotalIndex = false},
                                        {flagged("Woman"), flagged("Man")});
    const qint32 block = b.addBlock({.code = QStringLiteral("W"), .name = QStringLiteral("Work")});
    const qint32 influence =
        b.addQuestion({.code = QStringLiteral("1"), .heading = QStringLiteral("Influence"), .block = block},
                      {{.text = QStringLiteral("Lowest"), .points = 0},
                       {.text = QStringLiteral("Low"), .points = 1},
                       {.text = QStringLiteral("Middle"), .points = 2},
                       {.text = QStringLiteral("High"), .points = 3},
                       {.text = QStringLiteral("Highest"), .points = 4}});
    const qint32 workload =
        b.addQuestion({.code = QStringLiteral("2"), .heading = QStringLiteral("Workload"), .block = block},
                      {{.text = QStringLiteral("Low"), .points = 4}, {.text = QStringLiteral("High"), .points = 0}});
    for (qint32 r = 0; r < rows; ++r) {
        const bool small = r >= 80;
        b.setAnswer(r, unit, r < 40 ? 0 : small ? 2 : 1);
        b.setAnswer(r, age, r < 20 ? 0 : 1);
        b.setAnswer(r, gender, r % 2);
        b.setAnswer(r, influence, small ? 0 : 1 + r % 4);
        b.setAnswer(r, workload, r % 2);
        if (small) {
            b.setRowComment(r, QStringLiteral("Small %1").arg(r));
            b.setCellComment(r, influence, QStringLiteral("Influence %1").arg(r));
        }
    }
    b.setRowComment(0, QStringLiteral("Alpha 0"));
    return b.toBytes();
}

std::unique_ptr<Document> smallUnitSurvey(const SmallUnitOptions &o)
{
    ReadResult result = readDocumentBytes(smallUnitSurveyBytes(o), {});
    EXPECT_TRUE(result.document) << result.detail.toStdString();
    if (!result.document)
        return nullptr;
    result.document->currentFileName = QStringLiteral("smallunit.kel");
    return std::move(result.document);
}

SelectionMatrix firstCategoryOnly(const Document &doc, qint32 option)
{
    SelectionMatrix selection = fullSelection(doc);
    for (qint32 o = 0; o < selection.optionCount(); ++o)
        selection.set(0, o, o == option);
    return selection;
}

} // namespace kel::test
