// SPDX-License-Identifier: GPL-3.0-or-later
// `kel report`: one report of many units, as PDF or HTML, from a recipe file
// or from the options for the common cases.
#include "commands.h"
#include "options.h"
#include "selectionargs.h"

#include "engine/report/reportbuilder.h"
#include "gui/graphs/chartpicture.h"
#include "render/report/reportwriter.h"
#include "texts/reporttexts.h"
#include "texts/selectiontexts.h"

#include <QDate>
#include <QFile>

namespace kel::cli {

namespace {

int usageError(CommandOutput &output, const QString &error)
{
    output.err += QStringLiteral("kel report: %1\n").arg(error) + usageOf(QStringLiteral("report"))
        + QStringLiteral("LIST of sections: title,indexes,overview,histograms,fractions,total-index,block-indexes,"
                         "distributions,rankings,comments\n");
    return UsageError;
}

bool numberList(const QString &text, std::vector<qint32> &out)
{
    out.clear();
    for (const QString &part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        out.push_back(part.trimmed().toInt(&ok));
        if (!ok || out.back() < 0)
            return false;
    }
    return true;
}

} // namespace

int reportCommand(const Document &doc, const QStringList &args, CommandOutput &output)
{
    SelectionArgs selection;
    QString recipeFile, output_, sections, blocks, date;
    qint32 by = -1, split = -1;
    bool within = false, hasSplit = false, hasBlocks = false;
    QString error;
    for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
        if (takeSelectionOption(args, i, selection, error))
            continue;
        const QString &a = args[i];
        const bool hasValue = i + 1 < args.size();
        bool ok = true;
        if (a == QLatin1String("-o") && hasValue)
            output_ = args[++i];
        else if (a == QLatin1String("--recipe") && hasValue)
            recipeFile = args[++i];
        else if (a == QLatin1String("--by") && hasValue)
            by = args[++i].toInt(&ok);
        else if (a == QLatin1String("--within"))
            within = true;
        else if (a == QLatin1String("--sections") && hasValue)
            sections = args[++i];
        else if (a == QLatin1String("--blocks") && hasValue)
            blocks = args[++i], hasBlocks = true;
        else if (a == QLatin1String("--split") && hasValue)
            split = args[++i].toInt(&ok), hasSplit = true;
        else if (a == QLatin1String("--date") && hasValue)
            date = args[++i];
        else
            error = QStringLiteral("unexpected argument '%1'").arg(a);
        if (!ok)
            error = QStringLiteral("%1 takes a number, not '%2'").arg(a, args[i]);
    }
    if (!error.isEmpty())
        return usageError(output, error);
    if (output_.isEmpty())
        return usageError(output, QStringLiteral("-o OUT is missing"));
    const std::optional<ReportFormat> format = reportFormatForFileName(output_);
    if (!format)
        return usageError(output, QStringLiteral("'%1' does not end in .pdf or .html").arg(output_));

    ReportRecipe recipe;
    if (!recipeFile.isEmpty()) {
        QFile file(recipeFile);
        if (!file.open(QIODevice::ReadOnly))
            return usageError(output,
                              QStringLiteral("cannot read the recipe '%1': %2").arg(recipeFile, file.errorString()));
        RecipeError recipeError;
        const std::optional<ReportRecipe> read = readReportRecipe(QString::fromUtf8(file.readAll()), recipeError);
        if (!read)
            return usageError(
                output, QStringLiteral("%1: %2").arg(recipeFile, recipeErrorMessage(recipeError, selection.isSwedish)));
        recipe = *read;
    }
    // Options override the recipe, so one recipe serves several runs.
    if (by >= 0) {
        recipe.units = ReportUnits::ByCategory;
        recipe.category = by;
    }
    if (within)
        recipe.withinCurrent = true;
    if (!sections.isEmpty()) {
        recipe.sections.clear();
        RecipeError sectionError;
        if (!parseReportSections(sections, recipe, sectionError))
            return usageError(
                output, QStringLiteral("--sections: %1").arg(recipeErrorMessage(sectionError, selection.isSwedish)));
    }
    if (hasBlocks && !numberList(blocks, recipe.blocks))
        return usageError(output, QStringLiteral("--blocks takes block numbers, not '%1'").arg(blocks));
    if (hasSplit)
        recipe.split = split;
    if (!date.isEmpty())
        recipe.date = date;
    if (recipe.sections.empty())
        return usageError(output, QStringLiteral("no sections: give --sections or a recipe with them"));
    if (recipe.split >= 0 && std::size_t(recipe.split) >= doc.questions.size())
        return usageError(output, QStringLiteral("the document has no question %1").arg(recipe.split));

    if (reportEntirelyForbidden(doc.properties, recipe)) {
        output.err += QStringLiteral("kel report: %1\n").arg(reportForbiddenMessage(selection.isSwedish));
        return Refused;
    }
    std::optional<ShownSelection> shown = showFromArgs(doc, selection, error);
    if (!shown)
        return usageError(output, error);
    for (const QString &problem : shown->blockProblems)
        output.err += QStringLiteral("kel report: settings: %1 (left out)\n").arg(problem);
    for (qint32 b : recipe.blocks)
        if (!shown->blocks.blockAt(b))
            return usageError(output, QStringLiteral("the document has no block %1").arg(b));
    const ReportBase start{shown->model, shown->flex, shown->blocks};
    ReportPlanError planError;
    const std::optional<std::vector<ReportUnitPlan>> plans = planReportUnits(doc, start, recipe, planError);
    if (!plans)
        return usageError(output, reportPlanErrorMessage(doc, planError, selection.isSwedish));

    Report report;
    report.title = reportTitle(doc);
    report.words = reportWords(doc, selection.isSwedish);
    ReportOptions options;
    options.locale = selection.locale;
    options.date = QDate::currentDate().toString(Qt::ISODate);
    bool anyShown = false;
    for (const ReportUnitPlan &plan : *plans) {
        report.units.push_back(buildReportUnit(doc, start, recipe, plan, report.words, options));
        if (report.units.back().isRefused())
            output.err +=
                QStringLiteral("kel report: %1: %2\n").arg(report.units.back().name, report.units.back().refusal);
        else
            anyShown = true;
    }
    if (!anyShown) {
        // Every unit refused: there is nothing a reader could use, and the
        // exit status says so as for any refused selection.
        return Refused;
    }
    const ChartPictureMaker charts = [](const ChartDescription &chart) {
        return chartPicture(chart, DefaultChartPictureSize);
    };
    const ReportWriteResult result = writeReport(report, *format, output_, charts, {}, &error);
    if (result != ReportWriteResult::Written) {
        output.err += QStringLiteral("kel report: %1: %2\n").arg(output_, error);
        return 1;
    }
    return 0;
}

} // namespace kel::cli
