// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/report/reportbuilder.h"

#include "engine/graphs/distributiongraph.h"
#include "engine/graphs/indexgraph.h"
#include "engine/graphs/rankinggraph.h"
#include "engine/indexes/blockindex.h"
#include "engine/indexes/indexexport.h"
#include "engine/overview/comments.h"
#include "engine/selection/counting.h"
#include "engine/selection/selectionquery.h"
#include "engine/selection/showdecision.h"

namespace kel {

namespace {

bool isPictureSection(ReportSection section)
{
    switch (section) {
    case ReportSection::Overview:
    case ReportSection::BlockHistograms:
    case ReportSection::BlockFractions:
    case ReportSection::TotalIndexGraph:
    case ReportSection::BlockIndexGraphs:
    case ReportSection::DistributionGraphs:
    case ReportSection::RankingGraphs: return true;
    case ReportSection::TitlePage:
    case ReportSection::IndexTable:
    case ReportSection::Comments: return false;
    }
    return false;
}

ReportItem item(ReportItem::Kind kind, const QString &text = {})
{
    ReportItem i;
    i.kind = kind;
    i.text = text;
    return i;
}

std::vector<qint32> chosenBlocks(const BlockCatalogue &catalogue, const ReportRecipe &recipe)
{
    std::vector<qint32> blocks;
    if (recipe.blocks.empty()) {
        for (qint32 b = 0; b < catalogue.size(); ++b)
            blocks.push_back(b);
        return blocks;
    }
    for (qint32 b : recipe.blocks)
        if (catalogue.blockAt(b))
            blocks.push_back(b);
    return blocks;
}

// The index table as Copy Indexes makes it for every kind of item, with the
// unit and the flex total it is compared with in two columns.
std::vector<QStringList> indexTable(const Document &doc, const BlockCatalogue &catalogue, const ReportShown &shown,
                                    const QLocale &locale)
{
    IndexExportOptions options;
    options.subSelTotal = true;
    options.showNumberOfAnswers = true;
    options.indexFor = {true, true, true, true, true};
    options.subSelectionsInColumns = true;
    std::vector<SubSelection> columns{{shown.sheet.steps.selectionText, shown.sheet.rows},
                                      {shown.flex.text(), shown.flex.rows()}};
    const std::vector<IndexItem> items = buildIndexItems(doc, catalogue, options);
    const std::vector<double> values = calculateIndexValues(doc, catalogue, columns, items);
    const QString text =
        formatIndexTable(doc, shown.sheet.steps.selectionText, options, columns, items, values, locale);
    std::vector<QStringList> table;
    for (const QString &line : text.split(QStringLiteral("\r\n")))
        table.push_back(line.split(QLatin1Char('\t')));
    return table;
}

BasicGraphSelection graphSelection(const ReportShown &shown, const ReportOptions &options)
{
    BasicGraphSelection selection = graphSelectionOf(shown.sheet, shown.flex);
    selection.valueOrderReversed = options.valueOrderReversed;
    selection.shortCategoryNames = options.shortCategoryNames;
    selection.locale = options.locale;
    return selection;
}

void addBasicGraphs(std::vector<ReportItem> &items, const Document &doc, const BlockCatalogue &catalogue,
                    const ReportShown &shown, const std::vector<qint32> &blocks, qint32 kind, const ReportWords &words,
                    const ReportOptions &options)
{
    const BasicGraphSelection selection = graphSelection(shown, options);
    for (qint32 b : blocks) {
        BasicGraphRequest request;
        request.questions = blockMembers(doc, catalogue, b);
        request.name = catalogue.blocks[std::size_t(b)].name;
        request.block = b;
        request.kind = kind;
        request.showTotalIndex = shown.sheet.steps.differentFromUsedTotal;
        if (request.questions.empty()) {
            items.push_back(
                item(ReportItem::Kind::Notice, request.name + QStringLiteral(": ") + words.blockWithoutQuestions));
            continue;
        }
        const BasicGraphResult result = generateBasicGraph(doc, catalogue, shown.flex, request, selection);
        if (!result.done()) {
            items.push_back(
                item(ReportItem::Kind::Notice, request.name + QStringLiteral(": ") + words.splitNotAllowed));
            continue;
        }
        ReportItem graph = item(ReportItem::Kind::BasicGraph);
        graph.basic = std::make_shared<BasicGraphDescription>(result.value());
        items.push_back(std::move(graph));
    }
}

ChartContext chartContext(const ReportShown &shown, const ReportOptions &options)
{
    ChartContext context;
    context.rows = &shown.sheet.rows;
    context.selectionText = shown.sheet.steps.selectionText;
    context.locale = options.locale;
    context.shortCategoryNames = options.shortCategoryNames;
    return context;
}

ReportItem chartItem(ChartDescription chart)
{
    ReportItem i = item(ReportItem::Kind::Chart);
    i.chart = std::make_shared<ChartDescription>(std::move(chart));
    return i;
}

// The total index graph (block < 0) or one block's, with the recipe's split
// when the unit's privacy rules allow it and its own refusal otherwise.
void addIndexGraph(std::vector<ReportItem> &items, const Document &doc, const BlockCatalogue &catalogue,
                   const ReportShown &shown, qint32 block, qint32 split, const ReportWords &words,
                   const ReportOptions &options)
{
    IndexGraphRequest request;
    request.block = block;
    request.includeMainIndex = true;
    request.includeSubIndexes = true;
    request.useQuestionsInsteadOfBlocks = false;
    const bool total = block < 0;
    if (split >= 0 && !splitAllowed(doc, shown.sheet.steps, split)) {
        const QString name = total ? totalIndexGraphTitle(doc, true, true, false, split)
                                   : blockIndexGraphTitle(doc, catalogue, block, true, true, split);
        items.push_back(item(ReportItem::Kind::Notice, name + QStringLiteral(": ") + words.splitNotAllowed));
        return;
    }
    request.splitQuestion = split;
    request.title = total ? totalIndexGraphTitle(doc, true, true, false, split)
                          : blockIndexGraphTitle(doc, catalogue, block, true, true, split);
    items.push_back(chartItem(generateIndexGraph(doc, catalogue, shown.flex, chartContext(shown, options), request)));
}

void addComments(std::vector<ReportItem> &items, const Document &doc, const ReportShown &shown,
                 const ReportWords &words)
{
    if (!permits(shown.sheet.permissions, OutputCommand::ColumnsComments)) {
        items.push_back(item(ReportItem::Kind::Notice, words.commentsNotShown));
        return;
    }
    for (qint32 q : doc.overviewColumns) {
        const CommentsDocument comments = columnComments(doc, q, shown.sheet.rows);
        if (comments.isEmpty())
            continue;
        items.push_back(item(ReportItem::Kind::SubHeading, comments.title));
        for (const CommentEntry &e : comments.entries)
            items.push_back(item(ReportItem::Kind::Text, e.text));
    }
}

QString refusalWords(const Refusal &refusal, const ReportWords &words)
{
    switch (refusal.code) {
    case RefusalCode::Blocked: return words.blocked;
    case RefusalCode::FlexTotalBlocked: return words.flexTotalBlocked;
    case RefusalCode::NoAnswers: return words.noAnswers;
    case RefusalCode::TooSmall: return words.tooSmall;
    case RefusalCode::SplitNotAllowed: return words.splitNotAllowed;
    case RefusalCode::NoSuchGraph: break; // a unit's Show never gives it
    }
    return {};
}

} // namespace

std::optional<std::vector<ReportUnitPlan>> planReportUnits(const Document &doc, const ReportBase &base,
                                                           const ReportRecipe &recipe, ReportPlanError &error)
{
    std::vector<ReportUnitPlan> units;
    switch (recipe.units) {
    case ReportUnits::Current: units.push_back({QString(), base.model}); break;
    case ReportUnits::ByCategory: {
        if (recipe.category < 0 || std::size_t(recipe.category) >= doc.categories.size()) {
            error.missingCategory = recipe.category;
            return std::nullopt;
        }
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(recipe.category)])];
        for (qint32 o = firstVisibleOption(doc); o < q.alternativeCount; ++o) {
            ReportUnitPlan plan{doc.alternatives[std::size_t(q.firstAlternative + o)].text, base.model};
            if (!recipe.withinCurrent)
                plan.model.setUpDimensions(doc);
            // Within the current selection an option left out of it stays
            // out: the unit is then empty and Show refuses it.
            const bool inCurrent = plan.model.selected().at(recipe.category, o);
            plan.model.setCategoryChecked(recipe.category, false);
            plan.model.setOptionChecked(recipe.category, o, inCurrent || !recipe.withinCurrent);
            if (recipe.withinCurrent && !inCurrent)
                plan.model.setOptionChecked(recipe.category, o, false);
            units.push_back(std::move(plan));
        }
        break;
    }
    case ReportUnits::List:
        for (const QString &spec : recipe.selections) {
            ReportUnitPlan plan{spec, base.model};
            plan.model.setUpDimensions(doc);
            if (!applySelectionQuery(doc, plan.model, spec, error.selection))
                return std::nullopt;
            units.push_back(std::move(plan));
        }
        break;
    }
    return units;
}

bool reportSectionAllowed(const DocumentProperties &properties, ReportSection section)
{
    if (section == ReportSection::TitlePage)
        return true;
    if (section == ReportSection::IndexTable)
        return properties.allowCopy;
    if (section == ReportSection::Comments)
        return properties.allowCopyData;
    return isPictureSection(section) && properties.allowSavePicture;
}

bool reportEntirelyForbidden(const DocumentProperties &properties, const ReportRecipe &recipe)
{
    bool asked = false;
    for (ReportSection s : recipe.sections) {
        if (s == ReportSection::TitlePage)
            continue;
        asked = true;
        if (reportSectionAllowed(properties, s))
            return false;
    }
    return asked;
}

QString reportTitle(const Document &doc)
{
    const QString name = doc.text(doc.properties.projectName);
    return name.isEmpty() ? doc.currentFileTitle : name;
}

ReportUnit buildReportUnit(const Document &base, const ReportBase &start, const ReportRecipe &recipe,
                           const ReportUnitPlan &plan, const ReportWords &words, const ReportOptions &options)
{
    const Document *doc = &base;
    const BlockCatalogue &catalogue = start.blocks;
    ReportShown shown = showForReport(base, catalogue, plan.model, start.flex, options.seed);
    ReportUnit unit;
    unit.name = plan.name;
    if (!shown.outcome.done()) {
        unit.refusal = refusalWords(shown.outcome.refusal(), words);
        if (unit.name.isEmpty())
            unit.name = words.refused;
        return unit;
    }
    if (unit.name.isEmpty())
        unit.name = shown.sheet.steps.selectionText;
    const DocumentProperties &p = doc->properties;
    std::vector<ReportItem> &items = unit.items;
    const auto allowed = [&](ReportSection s) {
        if (reportSectionAllowed(p, s))
            return true;
        const QString why = s == ReportSection::IndexTable ? words.tablesForbidden
            : s == ReportSection::Comments                 ? words.commentsForbidden
                                                           : words.picturesForbidden;
        // One notice per kind of refusal is enough for a reader.
        for (const ReportItem &i : items)
            if (i.kind == ReportItem::Kind::Notice && i.text == why)
                return false;
        items.push_back(item(ReportItem::Kind::Notice, why));
        return false;
    };
    const std::vector<qint32> blocks = chosenBlocks(catalogue, recipe);
    const bool hasIndexes = p.pointsScale >= 1;

    for (ReportSection section : recipe.sections) {
        switch (section) {
        case ReportSection::TitlePage: {
            items.push_back(item(ReportItem::Kind::Heading, reportTitle(*doc)));
            const auto labelled = [&](const QString &label, const QString &value) {
                ReportItem i = item(ReportItem::Kind::Labelled, label);
                i.value = value;
                items.push_back(std::move(i));
            };
            labelled(words.selection, shown.sheet.steps.selectionText);
            labelled(words.respondents, options.locale.toString(qlonglong(shown.sheet.rows.size())));
            // The flex total's size is a figure of its own group: where the
            // viewer hides it, so does the report.
            const bool flexShown = permits(shown.sheet.permissions, OutputCommand::FlexFigures);
            labelled(words.comparedWith,
                     flexShown ? QStringLiteral("%1 (%2)").arg(shown.flex.text(),
                                                               options.locale.toString(shown.flex.rowCount()))
                               : shown.flex.text());
            labelled(words.date, recipe.date.isEmpty() ? options.date : recipe.date);
            items.push_back(item(ReportItem::Kind::PageBreak));
            break;
        }
        case ReportSection::IndexTable:
            if (!allowed(section))
                break;
            items.push_back(item(ReportItem::Kind::Heading, words.indexTable));
            if (!hasIndexes) {
                items.push_back(item(ReportItem::Kind::Notice, words.noIndexes));
                break;
            }
            {
                ReportItem table = item(ReportItem::Kind::Table);
                table.table = indexTable(*doc, catalogue, shown, options.locale);
                items.push_back(std::move(table));
            }
            break;
        case ReportSection::Overview:
            if (!allowed(section))
                break;
            items.push_back(item(ReportItem::Kind::Overview, words.overview));
            unit.document = doc;
            unit.sheet = std::make_shared<SubSheet>(shown.sheet);
            break;
        case ReportSection::BlockHistograms:
            if (allowed(section))
                addBasicGraphs(items, *doc, catalogue, shown, blocks, HistogramGraph, words, options);
            break;
        case ReportSection::BlockFractions:
            if (allowed(section))
                addBasicGraphs(items, *doc, catalogue, shown, blocks, FractionGraph, words, options);
            break;
        case ReportSection::TotalIndexGraph:
            if (!allowed(section))
                break;
            if (!hasIndexes)
                items.push_back(item(ReportItem::Kind::Notice, words.noIndexes));
            else
                addIndexGraph(items, *doc, catalogue, shown, -1, recipe.split, words, options);
            break;
        case ReportSection::BlockIndexGraphs:
            if (!allowed(section))
                break;
            if (!hasIndexes) {
                items.push_back(item(ReportItem::Kind::Notice, words.noIndexes));
                break;
            }
            for (qint32 b : blocks) {
                if (blockMembers(*doc, catalogue, b).empty())
                    continue;
                addIndexGraph(items, *doc, catalogue, shown, b, recipe.split, words, options);
            }
            break;
        case ReportSection::DistributionGraphs: {
            if (!allowed(section))
                break;
            std::vector<qint32> categories = recipe.distributions;
            if (categories.empty())
                for (std::size_t c = 0; c < doc->categories.size(); ++c)
                    categories.push_back(qint32(c));
            for (qint32 c : categories) {
                if (c < 0 || std::size_t(c) >= doc->categories.size())
                    continue;
                // A distribution shows the size of every group of the
                // category within the unit: the split rule decides whether
                // one of them is too small to be shown.
                const qint32 question = doc->categories[std::size_t(c)];
                if (!splitAllowed(*doc, shown.sheet.steps, question)) {
                    items.push_back(item(ReportItem::Kind::Notice,
                                         doc->questions[std::size_t(question)].heading + QStringLiteral(": ")
                                             + words.splitNotAllowed));
                    continue;
                }
                DistributionGraphRequest request;
                request.mainCategory = c;
                items.push_back(chartItem(
                    generateDistributionGraph(*doc, chartContext(shown, options), shown.sheet.selection, request)));
            }
            break;
        }
        case ReportSection::RankingGraphs:
            if (!allowed(section))
                break;
            for (qint32 b : blocks) {
                RankingGraphRequest request;
                request.questions = blockMembers(*doc, catalogue, b);
                request.titleText = catalogue.blocks[std::size_t(b)].name;
                if (request.questions.empty())
                    continue;
                items.push_back(chartItem(generateRankingGraph(*doc, chartContext(shown, options), request)));
            }
            break;
        case ReportSection::Comments:
            if (!allowed(section))
                break;
            items.push_back(item(ReportItem::Kind::Heading, words.comments));
            addComments(items, *doc, shown, words);
            break;
        }
    }
    return unit;
}

} // namespace kel
