// SPDX-License-Identifier: GPL-3.0-or-later
// `kel check` and `kel dump`: open a document and say whether it opened, or
// write everything the reader found as one JSON object.
#include "commands.h"
#include "json.h"
#include "options.h"

#include "engine/document/documentreader.h"
#include "texts/messages.h"

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

void writeProperties(JsonWriter &j, const Document &d)
{
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
    j.member("totalIndex", p.totalIndex);
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

void writeDocument(JsonWriter &j, const Document &d)
{
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
        j.member("totalIndex", q.totalIndex);
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
        j.member("totalIndex", b.totalIndex);
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

    j.key("rowComments");
    j.beginArray();
    for (const RowComment &c : d.rowComments) {
        if (c.comment == -1)
            j.null();
        else
            j.value(d.text(c.comment));
    }
    j.endArray();

    j.key("cellComments");
    if (!d.hasCellComments) {
        j.null();
    } else {
        j.beginArray();
        for (qint32 r = 0; r < d.rowCount(); ++r)
            for (qint32 c = 0; c < d.columnCount(); ++c) {
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

    j.key("answers");
    j.beginArray();
    for (qint32 r = 0; r < d.rowCount(); ++r) {
        j.beginArray();
        for (qint32 c = 0; c < d.columnCount(); ++c)
            j.value(d.getData(r, c));
        j.endArray();
    }
    j.endArray();
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
