// SPDX-License-Identifier: GPL-3.0-or-later
// `kel check` and `kel dump`: open a document and say whether it opened, or
// write everything the reader found as one JSON object.
#include "commands.h"
#include "json.h"
#include "options.h"

#include "engine/document/documentreader.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/counting.h"
#include "engine/selection/showdecision.h"
#include "texts/messages.h"

#include <QDateTime>

#include <cstdio>

namespace kel::cli {

void printOut(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, std::size_t(utf8.size()), stdout);
}

void printErr(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, std::size_t(utf8.size()), stderr);
}

OpenedDocument openForCommand(const QString &path, bool isSwedish)
{
    ReadResult r = readDocumentFile(path);
    OpenedDocument opened;
    opened.exitCode = int(r.code);
    if (r.code != OpenResult::Ok) {
        printOut(openResultMessage(r.code, isSwedish) + QLatin1Char('\n'));
        // The message says only which kind of failure; the detail says what
        // and where, for whoever has to look at the file.
        if (!r.detail.isEmpty())
            printErr(QStringLiteral("kel: %1: %2\n").arg(path, r.detail));
        return opened;
    }
    opened.document = std::move(r.document);
    return opened;
}

int runOnFile(const char *name, const char *usage, DocumentCommand command, const QStringList &args)
{
    if (args.isEmpty() || args.first().startsWith(QLatin1String("--"))) {
        printErr(QStringLiteral("kel %1: no file given\n").arg(QLatin1String(name)) + QLatin1String(usage));
        return UsageError;
    }
    // Before the document is read: a command line that makes no sense is
    // that, whatever the file.
    if (const QString error = checkOptions(QLatin1String(name), args.mid(1)); !error.isEmpty()) {
        printErr(QStringLiteral("kel %1: %2\n").arg(QLatin1String(name), error) + QLatin1String(usage));
        return UsageError;
    }
    if (const QString refusal = outputOverwritesDocument(args.first(), args.mid(1)); !refusal.isEmpty()) {
        printErr(QStringLiteral("kel %1: ").arg(QLatin1String(name)) + refusal);
        return UsageError;
    }
    OpenedDocument opened = openForCommand(args.first());
    if (!opened.document)
        return opened.exitCode;
    CommandOutput output;
    const int status = command(*opened.document, args.mid(1), output);
    printOut(output.out);
    printErr(output.err);
    return status;
}

int runCheck(const QStringList &args)
{
    QString file;
    bool isSwedish = false;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--lang") && i + 1 < args.size()) {
            const QString lang = args[++i];
            if (lang != QLatin1String("en") && lang != QLatin1String("sv")) {
                printErr(QStringLiteral("kel check: --lang takes en or sv, not '%1'\n").arg(lang));
                return UsageError;
            }
            isSwedish = lang == QLatin1String("sv");
        } else if (file.isEmpty() && !args[i].startsWith(QLatin1String("--"))) {
            file = args[i];
        } else {
            printErr(QStringLiteral("kel check: unexpected argument '%1'\nusage: kel check FILE [--lang en|sv]\n")
                         .arg(args[i]));
            return UsageError;
        }
    }
    if (file.isEmpty()) {
        printErr(QStringLiteral("usage: kel check FILE [--lang en|sv]\n"));
        return UsageError;
    }
    OpenedDocument opened = openForCommand(file, isSwedish);
    if (opened.document)
        printOut(QStringLiteral("OK\n"));
    return opened.exitCode;
}

namespace {

// The document's own indexes are figures of everyone: shown only where the
// viewer shows everyone.
bool everyoneShown(const Document &d)
{
    const SelectionMatrix everyone = fullSelection(d);
    CountMatrix found(everyone.categoryCount(), everyone.optionCount());
    return showRefusalFor(d, countOptions(d, everyone, found), false, false).done();
}

void figure(JsonWriter &j, const char *name, double value, bool shown)
{
    if (shown) {
        j.member(name, value);
    } else {
        j.key(name);
        j.null();
    }
}

void writeProperties(JsonWriter &j, const Document &d)
{
    const bool figures = everyoneShown(d);
    const DocumentProperties &p = d.properties;
    j.key("properties");
    j.beginObject();
    j.member("projectNumber", d.text(p.projectNumber));
    j.member("projectName", d.text(p.projectName));
    j.member("copyright", d.text(p.copyright));
    j.member("comment", d.text(p.comment));
    j.member("language", d.text(p.language));
    j.member("languageCode", p.languageCode);
    j.member("indexName", d.text(p.indexName));
    j.key("indexLineTexts");
    j.beginArray();
    for (qint32 t : p.indexLineTexts)
        j.value(d.text(t));
    j.endArray();
    j.member("statusPanel2Tip", d.text(p.statusPanel2Tip));
    j.member("statusPanel3Tip", d.text(p.statusPanel3Tip));
    j.member("totalText", d.text(p.totalText));
    j.member("selectionTooSmallText", d.text(p.selectionTooSmallText));
    j.member("versionMajor", p.versionMajor);
    j.member("versionMinor", p.versionMinor);
    j.member("versionBuild", p.versionBuild);
    j.member("pointsScale", p.pointsScale);
    j.member("indexDecimals", p.indexDecimals);
    j.member("minimumSelection", p.minimumSelection);
    j.member("minimumComplementSelection", p.minimumComplementSelection);
    j.member("minimumGraphSelection", p.minimumGraphSelection);
    j.member("sheetColourA", p.sheetColourA);
    j.member("sheetColourB", p.sheetColourB);
    j.member("rowOrder", p.rowOrder);
    j.member("rowOrderThreshold", p.rowOrderThreshold);
    j.member("indexFlags", p.indexFlags);
    j.member("maxPoints", p.maxPoints);
    j.key("sheetColours");
    j.beginArray();
    for (qint32 c : p.sheetColours)
        j.value(c);
    j.endArray();
    j.member("created", p.created);
    figure(j, "totalIndex", p.totalIndex, figures);
    j.member("allowCopy", p.allowCopy);
    j.member("allowPrint", p.allowPrint);
    j.member("allowSavePicture", p.allowSavePicture);
    j.member("allowCopyData", p.allowCopyData);
    j.member("hasRowComments", p.hasRowComments);
    j.member("firstAlternativeIsNoAnswer", p.firstAlternativeIsNoAnswer);
    j.endObject();
}

void writeIntArray(JsonWriter &j, const char *name, const std::vector<qint32> &values)
{
    j.key(name);
    j.beginArray();
    for (qint32 v : values)
        j.value(v);
    j.endArray();
}

// What the viewer gives of the answers and comments for the selection of
// everyone, and nothing else: Copy Overview as Data's answers (the
// overview's questions, in the overview's order of rows) and the comments
// windows' comments (row comments, and cell comments of the overview's
// questions), each only where the engine's decision for that selection
// allows the command. What is left out is said, so that an empty list is
// never mistaken for a survey without answers.
void writeAnswersAndComments(JsonWriter &j, const Document &d)
{
    const SelectionMatrix everyone = fullSelection(d);
    CountMatrix found(everyone.categoryCount(), everyone.optionCount());
    const qint32 n = countOptions(d, everyone, found);
    const bool done = showRefusalFor(d, n, false, false).done();
    const ShowPermissions permissions = showPermissions(d, n, n, splitNotAllowedFor(d, found));
    const bool answers = done && permits(permissions, OutputCommand::CopyOverviewAsData);
    const bool comments = done && permits(permissions, OutputCommand::AllComments);

    QStringList leftOut;
    if (!done)
        leftOut << QStringLiteral("totalIndex: everyone is fewer than the minimum graph selection");
    if (!answers)
        leftOut << QStringLiteral("answers: Copy Overview as Data is not allowed for everyone");
    else if (d.overviewColumns.size() < d.questions.size())
        leftOut << QStringLiteral("answers: questions not in the overview");
    if (!comments)
        leftOut << QStringLiteral("comments: the comments windows are not allowed for everyone");
    else if (d.hasCellComments && d.overviewColumns.size() < d.questions.size())
        leftOut << QStringLiteral("cellComments: questions not in the overview");
    j.key("leftOut");
    j.beginArray();
    for (const QString &what : leftOut)
        j.value(what);
    j.endArray();

    j.key("rowComments");
    if (!comments) {
        j.null();
    } else {
        j.beginArray();
        for (const RowComment &c : d.rowComments) {
            if (c.comment == -1)
                j.null();
            else
                j.value(d.text(c.comment));
        }
        j.endArray();
    }

    j.key("cellComments");
    if (!comments || !d.hasCellComments) {
        j.null();
    } else {
        j.beginArray();
        for (qint32 r = 0; r < d.rowCount(); ++r)
            for (qint32 c : d.overviewColumns) {
                const qint32 t = d.cellComment(r, c);
                if (t == -1)
                    continue;
                j.beginArray();
                j.value(r);
                j.value(c);
                j.value(d.text(t));
                j.endArray();
            }
        j.endArray();
    }

    writeIntArray(j, "answerColumns", answers ? d.overviewColumns : std::vector<qint32>());
    j.key("answers");
    if (!answers) {
        j.null();
        return;
    }
    RowList rows = selectedRows(d, everyone);
    // A random order the document forces is drawn as the viewer draws it,
    // never from anything a caller could repeat.
    if (documentForcesRandomOrder(d.properties, n)) {
        RowRandom random{quint64(QDateTime::currentMSecsSinceEpoch())};
        shuffleRows(rows, random);
    }
    j.beginArray();
    for (qint32 r : rows) {
        j.beginArray();
        for (qint32 c : d.overviewColumns)
            j.value(d.getData(r, c));
        j.endArray();
    }
    j.endArray();
}

void writeDocument(JsonWriter &j, const Document &d)
{
    const bool figures = everyoneShown(d);
    j.beginObject();
    j.member("revision", d.revision);
    j.member("compatibleRevision", d.compatibleRevision);
    j.member("guid", d.guidText());
    j.member("cellType", int(d.answers.cellType()));
    j.member("rowCount", d.rowCount());
    j.member("columnCount", d.columnCount());
    j.member("textCount", int(d.textPool.size()));
    writeIntArray(j, "categories", d.categories);
    writeIntArray(j, "overviewColumns", d.overviewColumns);
    j.member("flexCategory", d.flexCategory);
    j.member("maxCategoryAlternatives", d.maxCategoryAlternatives);
    j.member("upgradeWarning", d.upgradeWarning);
    writeProperties(j, d);

    j.key("alternatives");
    j.beginArray();
    for (const Alternative &a : d.alternatives) {
        j.beginObject();
        j.member("label", a.label);
        j.member("text", a.text);
        j.member("shortText", a.shortText);
        j.member("sheetColour", a.sheetColour);
        j.member("graphColour", a.graphColour);
        j.member("points", a.points);
        j.member("complementCheck", a.complementCheck);
        j.member("countsForPrivacy", a.countsForPrivacy);
        j.member("graphAttribute", a.graphAttribute);
        j.member("sortValue", a.sortValue);
        j.endObject();
    }
    j.endArray();

    j.key("questions");
    j.beginArray();
    for (const Question &q : d.questions) {
        j.beginObject();
        j.member("code", q.code);
        j.member("heading", q.heading);
        j.member("text", q.text);
        j.member("selectionLabel", q.selectionLabel);
        j.member("sheetColour", q.sheetColour);
        j.member("block", q.block);
        j.member("subBlock", q.subBlock);
        j.member("firstAlternative", q.firstAlternative);
        j.member("alternativeCount", q.alternativeCount);
        j.member("isCategory", q.isCategory);
        j.member("inOverview", q.inOverview);
        j.member("isFlexCategory", q.isFlexCategory);
        j.member("inTotalIndex", q.inTotalIndex);
        figure(j, "totalIndex", q.totalIndex, figures);
        j.member("graphFlags", q.graphFlags);
        j.member("rankingWeight", q.rankingWeight);
        j.endObject();
    }
    j.endArray();

    j.key("blocks");
    j.beginArray();
    for (const Block &b : d.blocks) {
        j.beginObject();
        j.member("code", b.code);
        j.member("name", b.name);
        j.member("text", b.text);
        j.member("memberRule", b.memberRule);
        j.member("linkedBlock", b.linkedBlock);
        figure(j, "totalIndex", b.totalIndex, figures);
        j.member("graphFlags", b.graphFlags);
        j.member("includeInCopy", b.includeInCopy);
        j.endObject();
    }
    j.endArray();

    j.key("blockItems");
    j.beginArray();
    for (const BlockItem &it : d.blockItems) {
        j.beginArray();
        j.value(it.block);
        j.value(it.question);
        j.endArray();
    }
    j.endArray();

    writeAnswersAndComments(j, d);
    j.endObject();
}

} // namespace

int runDump(const QStringList &args)
{
    if (args.size() != 1 || args[0].startsWith(QLatin1String("--"))) {
        printErr(QStringLiteral("usage: kel dump FILE\n"));
        return UsageError;
    }
    OpenedDocument opened = openForCommand(args[0]);
    if (!opened.document)
        return opened.exitCode;
    JsonWriter j;
    writeDocument(j, *opened.document);
    j.writeTo(stdout);
    std::fputc('\n', stdout);
    return 0;
}

} // namespace kel::cli
