// SPDX-License-Identifier: GPL-3.0-or-later
// `kel indexes`: the index table that Copy Indexes puts on the clipboard,
// for a selection shown as the navigator would show it.
#include "commands.h"
#include "options.h"
#include "selectionargs.h"

#include "engine/indexes/indexexport.h"
#include "engine/selection/showdecision.h"
#include "texts/messages.h"

namespace kel::cli {

namespace {

bool parseItems(const QString &list, IndexExportOptions &options, QString &error)
{
    static const char *const Names[] = {"total", "blocks", "subblocks", "questions", "userblocks"};
    for (const QString &name : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool known = false;
        for (std::size_t i = 0; i < options.indexFor.size(); ++i) {
            if (name.trimmed() == QLatin1String(Names[i])) {
                options.indexFor[i] = true;
                known = true;
            }
        }
        if (!known) {
            error = QStringLiteral("--items: unknown item '%1'").arg(name);
            return false;
        }
    }
    return true;
}

} // namespace

int indexesCommand(const Document &doc, const QStringList &args, CommandOutput &output)
{
    SelectionArgs selection;
    IndexExportOptions options;
    QString error;
    for (qsizetype i = 0; i < args.size() && error.isEmpty(); ++i) {
        if (takeSelectionOption(args, i, selection, error))
            continue;
        const QString &a = args[i];
        if (a == QLatin1String("--total")) {
            options.subSelTotal = true;
        } else if (a == QLatin1String("--counts")) {
            options.showNumberOfAnswers = true;
        } else if (a == QLatin1String("--full-text")) {
            options.showFullQuestionText = true;
        } else if (a == QLatin1String("--columns")) {
            options.subSelectionsInColumns = true;
        } else if (a == QLatin1String("--category") && i + 1 < args.size()) {
            bool ok = false;
            const qint32 q = args[++i].toInt(&ok);
            if (!ok)
                error = QStringLiteral("--category takes a question number, not '%1'").arg(args[i]);
            options.subSelCategories.push_back(q);
        } else if (a == QLatin1String("--items") && i + 1 < args.size()) {
            parseItems(args[++i], options, error);
        } else {
            error = QStringLiteral("unexpected argument '%1'").arg(a);
        }
    }
    if (error.isEmpty() && !options.canExport())
        error = QStringLiteral("nothing to export: give --total or --category, and --items");
    if (!error.isEmpty()) {
        output.err += (QStringLiteral("kel indexes: %1\n").arg(error) + usageOf(QStringLiteral("indexes")));
        return UsageError;
    }

    for (qint32 q : options.subSelCategories) {
        if (q < 0 || q >= qint32(doc.questions.size()) || !doc.questions[std::size_t(q)].isCategory) {
            output.err += (QStringLiteral("kel indexes: question %1 is not a category question\n").arg(q));
            return UsageError;
        }
    }
    if (doc.properties.pointsScale < 1) {
        // The viewer offers no index copy for such a document.
        output.err += (QStringLiteral("kel indexes: the document has no indexes\n"));
        return Refused;
    }
    std::optional<ShownSelection> shown = showFromArgs(doc, selection, error);
    if (!shown) {
        output.err += (QStringLiteral("kel indexes: %1\n").arg(error));
        return UsageError;
    }
    for (const QString &problem : shown->blockProblems)
        output.err += QStringLiteral("kel indexes: settings: %1 (left out)\n").arg(problem);
    if (shown->refusal) {
        output.err += QStringLiteral("kel indexes: %1\n").arg(shown->refusal->message);
        return Refused;
    }
    // The decision again, from what is shown, at the moment of output.
    if (!permits(showPermissions(doc, qint32(shown->sheet.rows.size()), shown->flex.rowCount(),
                                 shown->sheet.steps.splitNotAllowed),
                 OutputCommand::Figures)) {
        output.err += QStringLiteral("kel indexes: %1\n")
                          .arg(showRefusalMessage(doc, Refusal{RefusalCode::TooSmall}, selection.isSwedish));
        return Refused;
    }
    output.out += (exportIndexes(doc, shown->blocks, shown->sheet.steps.selectionText, shown->sheet.rows, options,
                                 selection.locale));
    return 0;
}

} // namespace kel::cli
