// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer target for the reader of the user blocks kept in the settings
// file: the file is the user's to edit, so anything may be in it. The input
// is the body of the "[Documents]" section (the harness writes the header);
// its last byte holds flags: 1 = the store may be repaired, as the viewer
// does when it opens a document. A repair must hold: the repaired file
// restores without a problem to the same blocks.
#include "kelwriter.h"

#include "engine/blocks/userblocks.h"
#include "engine/document/blockcatalogue.h"
#include "engine/document/documentreader.h"
#include "engine/settings/settingsstore.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <set>

namespace {

using namespace kel;

// Block 0 "Work" of the document, sub-block 1 "Tasks"; four questions.
const QByteArray &documentBytes()
{
    static const QByteArray bytes = [] {
        writer::SurveyBuilder b(8);
        b.header().pointsScale = 10;
        const qint32 work = b.addBlock({.name = QStringLiteral("Work")});
        const qint32 tasks = b.addBlock({.name = QStringLiteral("Tasks"), .linkedBlock = work});
        b.addQuestion({.heading = QStringLiteral("Unit"), .isCategory = true, .inOverview = false},
                      {{.text = QStringLiteral("North")}, {.text = QStringLiteral("South")}});
        const qint32 load = b.addQuestion(
            {.heading = QStringLiteral("Load"), .block = work, .subBlock = tasks},
            {{.text = QStringLiteral("bad"), .points = 10}, {.text = QStringLiteral("good"), .points = 50}});
        b.addQuestionLike({.heading = QStringLiteral("Pace"), .block = work, .subBlock = tasks}, load);
        b.addQuestionLike({.heading = QStringLiteral("Lunch"), .inOverview = false}, load);
        for (qint32 r = 0; r < 8; ++r)
            for (qint32 q = 0; q < 4; ++q)
                b.setAnswer(r, q, (r + q) % 2);
        return b.toBytes();
    }();
    return bytes;
}

QStringList userBlockNames(const BlockCatalogue &catalogue)
{
    QStringList names;
    for (std::size_t b = std::size_t(catalogue.documentBlockCount()); b < catalogue.blocks.size(); ++b)
        names << catalogue.blocks[b].name;
    return names;
}

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static QTemporaryDir dir;
    static const QString file = dir.filePath(QStringLiteral("KEL Viewer.ini"));
    const bool mayWrite = size > 0 && (data[size - 1] & 1);
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size > 0 ? size - 1 : 0));
    {
        QFile f(file);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        f.write("[Documents]\n" + body);
    }

    std::unique_ptr<Document> doc = readDocumentBytes(documentBytes()).document;
    check(doc != nullptr);
    const qint32 documentBlocks = qint32(doc->blocks.size());
    const qint32 questions = qint32(doc->questions.size());
    BlockCatalogue catalogue(*doc);
    UserBlockRestore restore;
    {
        SettingsStore store(SettingsLocation{.file = file});
        restore = restoreUserBlocks(*doc, catalogue, store, mayWrite);
    }

    // The user's blocks go to the catalogue, never into the document.
    check(qint32(doc->blocks.size()) == documentBlocks);
    check(catalogue.size() == documentBlocks + restore.added);
    check(catalogue.documentBlockCount() == documentBlocks);
    std::set<QString> names;
    for (std::size_t b = std::size_t(documentBlocks); b < catalogue.blocks.size(); ++b) {
        const QString name = catalogue.blocks[b].name.toCaseFolded();
        check(!catalogue.blocks[b].name.trimmed().isEmpty() && names.insert(name).second);
    }
    for (const BlockItem &item : catalogue.items)
        check(item.question >= 0 && item.question < questions && item.block >= 0 && item.block < catalogue.size());

    if (restore.repaired) {
        std::unique_ptr<Document> again = readDocumentBytes(documentBytes()).document;
        BlockCatalogue againCatalogue(*again);
        SettingsStore store(SettingsLocation{.file = file});
        const UserBlockRestore second = restoreUserBlocks(*again, againCatalogue, store, false);
        check(second.problems.isEmpty() && userBlockNames(againCatalogue) == userBlockNames(catalogue));
    }
    return 0;
}
