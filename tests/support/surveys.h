// SPDX-License-Identifier: GPL-3.0-or-later
// The tests' documents: every one is written by the test-document writer's
// SurveyBuilder and read back by the real reader, so that a test sees
// exactly what the viewer would. The recipes below only save typing for the
// shapes several tests share.
#pragma once

#include "engine/document/document.h"
#include "engine/document/documentreader.h"
#include "engine/selection/selectionmatrix.h"
#include "kelwriter.h"

#include <QString>
#include <QStringList>

#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kel::test {

/// The document `file` describes, read back by the reader. A file the reader
/// refuses fails the calling test (with the reader's detail) and gives an
/// empty document.
Document readBack(const writer::KelFile &file);
std::unique_ptr<Document> readBackOwned(const writer::KelFile &file);

// --- Engine surveys: questions by their points, answers per question -------

struct QuestionRecipe {
    QString heading;
    std::vector<qint32> points; ///< one per alternative; -1 = no points
    bool category = false, overview = true, flex = false, inTotal = true;
    qint32 block = -1, subBlock = -1;
    /// The stored total index; any value but -1 lists the question in exports.
    double totalIndex = 1.0;
    std::vector<bool> complementCheck{};
    std::vector<bool> countsForPrivacy{};
};

/// Questions get the code "Q<n>", the text "<heading> (full)" and
/// alternatives "<heading> <i>" with short texts "s<i>". The total text is
/// "Total", the too-small text "Too few!", the points scale 1.
class EngineSurvey
{
public:
    EngineSurvey();

    /// The header of the file: permissions, minimums, points scale...
    writer::HeaderFields &properties() { return mBuilder.header(); }

    qint32 addQuestion(const QuestionRecipe &recipe);
    /// Blocks the file stores; `fromDocument` false adds a user-defined
    /// block after reading, as the block editor would.
    qint32 addBlock(const QString &name, bool memberRule, qint32 linkedBlock = -1, double totalIndex = 1.0,
                    bool fromDocument = true);
    void addBlockItem(qint32 block, qint32 question) { mBuilder.addBlockItem(block, question); }

    /// Answers per question (columns[q][row]) with cells of `type`.
    Document build(const std::vector<std::vector<qint32>> &columns, CellType type = CellType::U8);

private:
    writer::SurveyBuilder mBuilder;
    std::vector<double> mQuestionTotals, mBlockTotals;
    std::vector<Block> mUserBlocks;         // after the file's blocks
    std::vector<BlockItem> mUserBlockItems; // items of the user blocks
};

/// Concatenation of runs, e.g. runs({{0, 3}, {1, 2}}) = 0 0 0 1 1.
inline std::vector<qint32> runs(std::initializer_list<std::pair<qint32, std::size_t>> parts)
{
    std::vector<qint32> out;
    for (const auto &[v, n] : parts)
        out.insert(out.end(), n, v);
    return out;
}

// --- Sheet surveys: answers row by row, as the sheet shows them ------------

struct SheetAlternative {
    QString label;
    qint32 colour = -1, points = -1;
};

struct SheetQuestion {
    QString code;
    qint32 block = -1, subBlock = -1, colour = -1;
    std::vector<SheetAlternative> alternatives;
    qint32 graphFlags = 3;
};

struct SheetBlock {
    QString code, name;
};

/// A document whose questions are all overview columns, headed by their
/// codes. `answers[r][q]` is row r's answer to question q.
Document sheetSurvey(const std::vector<SheetQuestion> &questions, const std::vector<SheetBlock> &blocks,
                     const std::vector<std::vector<qint32>> &answers);

// --- Shell surveys: one permission at a time -------------------------------

struct ShellSurveyOptions {
    bool allowCopy = false, allowPrint = false, allowSavePicture = false, allowCopyData = false;
    qint32 pointsScale = 0;
    bool totalIndexGraph = false; ///< the document offers the total-index graph
    qint32 minimumSelection = 0;
    qint32 revision = 9;
    bool rowComments = false;
    QStringList categoryHeadings; ///< one category question per heading
    qint32 rows = 4;
};

/// One overview question "Satisfaction" with two alternatives (0 and
/// `pointsScale` points) answered 0,1,0,1,...; then one category question
/// per heading, answered 0.
std::unique_ptr<Document> shellSurvey(const ShellSurveyOptions &recipe);

// --- The navigator's survey ------------------------------------------------

struct NavigatorSurveyOptions {
    bool firstAlternativeIsNoAnswer = true;
    bool flexCategory = true;
    bool flexOnUnit = false; ///< Unit instead of Role is the flex category
    qint32 minimumGraphSelection = 3;
    qint32 minimumComplementSelection = 3;
    bool subBlockLabel = false; ///< index line text 2 set
    qint32 pointsScale = 4;
    qint32 rows = 20; ///< rows beyond 20 answer "No answer" on Unit and Staff on Role
};

/// Categories: 0 Unit (North, South, East; complement check on all three),
/// 1 Role (Staff, Boss; the flex category when asked for). With the first
/// alternative excluded, option 0 of both is "No answer".
/// 20 respondents. Unit: rows 0-9 North, 10-17 South, 18 East, 19 no answer.
/// Role: even rows Staff, odd rows Boss. One question, Good (full points)
/// for every third row, so its index is the share of Good answers.
QByteArray navigatorSurveyBytes(const NavigatorSurveyOptions &o = {});
std::unique_ptr<Document> navigatorSurvey(const NavigatorSurveyOptions &o = {});

// --- The small-unit survey: what the privacy gates protect ------------------

struct SmallUnitOptions {
    qint32 smallUnit = 3; ///< respondents of the unit "Small"
    qint32 minimumSelection = 10, minimumComplementSelection = 5, minimumGraphSelection = 5;
    bool allowCopyData = true;
    qint32 rowOrder = -1; ///< the document's forced row order, -1 none
};

/// Categories: 0 Unit (Alpha 40 rows, Beta 40 rows, Small `smallUnit`
/// rows, in that order; the flex category; complement check and privacy
/// flag on every option), 1 Age (Young: the first 20 rows of Alpha, Old:
/// everyone else; both flags), 2 Gender (Woman on even rows, Man on odd).
/// Overview questions without privacy flags: 3 Influence (Lowest .. Highest,
/// 0..4 points; Small answers Lowest, nobody else does), 4 Workload (Low,
/// High; even rows Low). Row comments "Small <row>" on Small's rows and
/// "Alpha 0" on row 0; cell comments "Influence <row>" on Influence for
/// Small's rows. Copying and printing allowed; "Too few respondents!" is
/// the refusal text, "Everyone" the total.
QByteArray smallUnitSurveyBytes(const SmallUnitOptions &o = {});
std::unique_ptr<Document> smallUnitSurvey(const SmallUnitOptions &o = {});

/// Everyone, but only `option` of category 0 ticked.
SelectionMatrix firstCategoryOnly(const Document &doc, qint32 option);

} // namespace kel::test
