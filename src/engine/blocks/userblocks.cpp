// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/blocks/userblocks.h"

#include "engine/indexes/blockindex.h"
#include "engine/settings/settingsstore.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <set>

namespace kel {

namespace {

QString str(const char *text)
{
    return QString::fromLatin1(text);
}

/// Number of a "Block NNN" key name; -1 for anything else.
qint32 blockNumberOf(const QString &keyName)
{
    static const QRegularExpression pattern(QStringLiteral("^Block (\\d{3,9})$"));
    const QRegularExpressionMatch m = pattern.match(keyName);
    return m.hasMatch() ? m.captured(1).toInt() : -1;
}

/// The member questions of block `block` listed as block items, in question
/// order, each once.
QuestionList listedMembers(const BlockCatalogue &catalogue, qint32 block)
{
    QuestionList members;
    for (const BlockItem &item : catalogue.items)
        if (item.block == block)
            members.push_back(item.question);
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    return members;
}

bool sameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

QString blockKeyName(qint32 block)
{
    return QStringLiteral("Block %1").arg(block, 3, 10, QLatin1Char('0'));
}

QString blockKey(const QString &documentKey, qint32 block)
{
    return documentKey + QLatin1Char('\\') + blockKeyName(block);
}

Block makeUserBlock(const QString &name, bool includeInCopy)
{
    Block block;
    block.name = name;
    block.memberRule = false;
    block.linkedBlock = -1;
    block.totalIndex = -1.0;
    block.graphFlags = 3;
    block.fromDocument = false;
    block.includeInCopy = includeInCopy;
    return block;
}

QString joinMembers(const QuestionList &members)
{
    QStringList parts;
    parts.reserve(qsizetype(members.size()));
    for (qint32 q : members)
        parts << QString::number(q);
    return parts.join(QLatin1Char('|'));
}

UserBlockRestore restoreUserBlocks(const Document &doc, BlockCatalogue &catalogue, SettingsStore &store, bool mayWrite)
{
    UserBlockRestore result;
    const QString key = SettingsStore::documentKey(doc.guidText());
    if (!store.keyExists(key))
        return result;
    result.found = true;

    // Only the block keys present are walked, in number order: a stored count
    // or a key number in the billions costs no more than the keys the file
    // really holds, and a run of missing keys is one problem line.
    std::vector<qint32> present;
    for (const QString &sub : store.subKeys(key))
        if (const qint32 b = blockNumberOf(sub); b >= 0)
            present.push_back(b);
    std::sort(present.begin(), present.end());
    present.erase(std::unique(present.begin(), present.end()), present.end());
    const qint32 highestKey = present.empty() ? -1 : present.back();

    const qint32 documentBlocks = catalogue.size();
    const std::optional<qint32> stored = store.readDword(key, str(blockstore::BlockItems));
    qint32 count = highestKey + 1;
    if (!stored || *stored < 0)
        result.problems << QStringLiteral("\"%1\" is missing or not a count").arg(str(blockstore::BlockItems));
    else if (*stored > highestKey + 1 && *stored > documentBlocks)
        result.problems << QStringLiteral("\"%1\" is %2 but the last block key is %3")
                               .arg(str(blockstore::BlockItems))
                               .arg(*stored)
                               .arg(highestKey < 0 ? QStringLiteral("none") : blockKeyName(highestKey));
    else
        count = *stored;

    auto reportMissing = [&](qint32 first, qint32 last) {
        if (first == last)
            result.problems << QStringLiteral("%1 is missing").arg(blockKeyName(first));
        else if (first < last)
            result.problems << QStringLiteral("%1 to %2 are missing").arg(blockKeyName(first), blockKeyName(last));
    };

    const qint32 questionCount = qint32(doc.questions.size());
    qint32 expected = documentBlocks; // the next user block number
    for (const qint32 b : present) {
        if (b >= count)
            break;
        const QString k = blockKey(key, b);
        if (b < documentBlocks) {
            // The store may know fewer blocks than the document has.
            if (const std::optional<bool> include = store.readBoolean(k, str(blockstore::IncludeInCopy)))
                catalogue.blocks[std::size_t(b)].includeInCopy = *include;
            else
                result.problems << QStringLiteral("%1: \"%2\" is not a yes/no value")
                                       .arg(blockKeyName(b), str(blockstore::IncludeInCopy));
            continue;
        }
        reportMissing(expected, b - 1);
        expected = b + 1;
        const QString name = store.readString(k, str(blockstore::Name)).value_or(QString());
        if (name.trimmed().isEmpty()) {
            result.problems << QStringLiteral("%1 has no name").arg(blockKeyName(b));
            continue;
        }
        const bool taken = std::any_of(catalogue.blocks.begin(), catalogue.blocks.end(),
                                       [&](const Block &other) { return sameName(other.name, name); });
        if (taken) {
            result.problems << QStringLiteral("%1: the name \"%2\" is used twice").arg(blockKeyName(b), name);
            continue;
        }
        Block block = makeUserBlock(name, true);
        if (const std::optional<bool> include = store.readBoolean(k, str(blockstore::IncludeInCopy)))
            block.includeInCopy = *include;
        else
            result.problems << QStringLiteral("%1: \"%2\" is not a yes/no value")
                                   .arg(blockKeyName(b), str(blockstore::IncludeInCopy));

        std::set<qint32> members;
        const std::optional<QString> list = store.readString(k, str(blockstore::IncludedDataHeaders));
        if (!list)
            result.problems
                << QStringLiteral("%1: \"%2\" is missing").arg(blockKeyName(b), str(blockstore::IncludedDataHeaders));
        for (const QString &piece : list.value_or(QString()).split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
            bool ok = false;
            const double value = piece.trimmed().toDouble(&ok);
            const double rounded = std::round(value);
            if (!ok || !std::isfinite(value) || rounded < 0 || rounded >= double(questionCount)) {
                result.problems
                    << QStringLiteral("%1: \"%2\" is not a question of this document").arg(blockKeyName(b), piece);
                continue;
            }
            members.insert(qint32(rounded));
        }
        // The graphs a user block offers follow its members, as when the
        // editor made it.
        qint32 flags = 0;
        for (qint32 q : members)
            flags |= doc.questions[std::size_t(q)].graphFlags;
        block.graphFlags = flags;
        const qint32 number = catalogue.size();
        catalogue.blocks.push_back(block);
        for (qint32 q : members)
            catalogue.items.push_back({number, q});
        ++result.added;
    }
    reportMissing(expected, count - 1);

    if (doc.properties.pointsScale > 0)
        for (qint32 b = documentBlocks; b < catalogue.size(); ++b)
            catalogue.blocks[std::size_t(b)].totalIndex = calculateBlockTotalIndex(doc, catalogue, b);
    if (!result.problems.isEmpty() && mayWrite)
        result.repaired = storeUserBlocks(doc, catalogue, store);
    return result;
}

bool storeUserBlocks(const Document &doc, const BlockCatalogue &catalogue, SettingsStore &store)
{
    if (store.policies().noSaveSettings || !store.isWritable())
        return false;
    const QString key = SettingsStore::documentKey(doc.guidText());
    const qint32 count = catalogue.size();

    for (qint32 b = 0; b < count; ++b) {
        const Block &block = catalogue.blocks[std::size_t(b)];
        const QString k = blockKey(key, b);
        bool ok = store.writeBoolean(k, str(blockstore::IncludeInCopy), block.includeInCopy);
        if (!block.fromDocument) {
            ok = ok && store.writeString(k, str(blockstore::Name), block.name);
            ok = ok
                && store.writeString(k, str(blockstore::IncludedDataHeaders), joinMembers(listedMembers(catalogue, b)));
        }
        if (!ok)
            return false;
    }
    auto removeBlock = [&](qint32 b) {
        const QString k = blockKey(key, b);
        for (const char *name : {blockstore::IncludedDataHeaders, blockstore::IncludeInCopy, blockstore::Name})
            store.removeValue(k, str(name));
        store.removeKey(k);
    };
    // Every key beyond the new count goes, whatever the old "Block Items"
    // said: walking the keys present, not the numbers up to that count, keeps
    // a damaged count of two billion from becoming two billion removals.
    for (const QString &sub : store.subKeys(key)) {
        const qint32 b = blockNumberOf(sub);
        if (b >= count)
            removeBlock(b);
    }
    store.writeDword(key, str(blockstore::BlockItems), count);
    return store.flush();
}

// --- Editor working copy ---

BlockEditModel::BlockEditModel(const Document &doc, const BlockCatalogue &catalogue) : mDoc(doc), mCatalogue(catalogue)
{
    const std::size_t questions = doc.questions.size();
    mEntries.reserve(catalogue.blocks.size());
    for (std::size_t b = 0; b < catalogue.blocks.size(); ++b) {
        const Block &block = catalogue.blocks[b];
        Entry e;
        e.name = block.name;
        e.includeInCopy = block.includeInCopy;
        e.isDocumentBlock = block.fromDocument;
        e.members.assign(questions, false);
        if (block.memberRule) {
            for (std::size_t q = 0; q < questions; ++q) {
                const Question &question = doc.questions[q];
                e.members[q] = block.linkedBlock == -1 ? question.block == qint32(b) : question.subBlock == qint32(b);
            }
        } else {
            for (const BlockItem &item : catalogue.items)
                if (item.block == qint32(b) && item.question >= 0 && std::size_t(item.question) < questions)
                    e.members[std::size_t(item.question)] = true;
        }
        mEntries.push_back(std::move(e));
    }
}

std::vector<qint32> BlockEditModel::listed() const
{
    std::vector<qint32> result;
    for (std::size_t i = 0; i < mEntries.size(); ++i)
        if (mEntries[i].state != Deleted)
            result.push_back(qint32(i));
    return result;
}

QuestionList BlockEditModel::members(qint32 index) const
{
    QuestionList result;
    const Entry &e = entry(index);
    for (std::size_t q = 0; q < e.members.size(); ++q)
        if (e.members[q])
            result.push_back(qint32(q));
    return result;
}

QuestionList BlockEditModel::overviewMembers(qint32 index) const
{
    QuestionList result;
    for (qint32 q : members(index))
        if (mDoc.questions[std::size_t(q)].inOverview)
            result.push_back(q);
    return result;
}

BlockEditModel::NameCheck BlockEditModel::add(const QString &name, qint32 *added)
{
    if (name.isEmpty())
        return NameCheck::Nothing;
    for (const Entry &e : mEntries)
        if (sameName(e.name, name))
            return NameCheck::Duplicate;
    Entry e;
    e.state = Added;
    e.name = name;
    e.members.assign(mDoc.questions.size(), false);
    mEntries.push_back(std::move(e));
    if (added)
        *added = size() - 1;
    return NameCheck::Ok;
}

BlockEditModel::NameCheck BlockEditModel::rename(qint32 index, const QString &name)
{
    if (index < 0 || index >= size() || mEntries[std::size_t(index)].isDocumentBlock)
        return NameCheck::Nothing;
    Entry &e = mEntries[std::size_t(index)];
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed == e.name)
        return NameCheck::Nothing;
    for (qint32 i = 0; i < size(); ++i)
        if (i != index && sameName(mEntries[std::size_t(i)].name, trimmed))
            return NameCheck::Duplicate;
    e.name = trimmed;
    if (e.state != Added)
        e.state = Renamed;
    return NameCheck::Ok;
}

bool BlockEditModel::remove(qint32 index)
{
    if (index < 0 || index >= size() || mEntries[std::size_t(index)].isDocumentBlock)
        return false;
    if (mEntries[std::size_t(index)].state == Added)
        mEntries.erase(mEntries.begin() + index);
    else
        mEntries[std::size_t(index)].state = Deleted;
    return true;
}

void BlockEditModel::setMember(qint32 index, qint32 question, bool member)
{
    if (index < 0 || index >= size() || mEntries[std::size_t(index)].isDocumentBlock)
        return;
    Entry &e = mEntries[std::size_t(index)];
    if (question >= 0 && std::size_t(question) < e.members.size())
        e.members[std::size_t(question)] = member;
}

void BlockEditModel::setIncludeInCopy(qint32 index, bool include)
{
    if (index >= 0 && index < size())
        mEntries[std::size_t(index)].includeInCopy = include;
}

void BlockEditModel::apply(BlockCatalogue &catalogue) const
{
    const Document &doc = mDoc;
    std::vector<Block> blocks;
    blocks.reserve(mEntries.size());
    for (std::size_t i = 0; i < mEntries.size(); ++i) {
        const Entry &e = mEntries[i];
        if (e.state == Deleted)
            continue;
        if (e.isDocumentBlock) {
            Block block = mCatalogue.blocks[i]; // document blocks come first and keep their numbers
            block.includeInCopy = e.includeInCopy;
            blocks.push_back(std::move(block));
        } else {
            blocks.push_back(makeUserBlock(e.name, e.includeInCopy));
        }
    }

    std::vector<BlockItem> items;
    qint32 b = 0;
    for (const Entry &e : mEntries) {
        if (e.state == Deleted)
            continue;
        Block &block = blocks[std::size_t(b)];
        if (!block.memberRule) {
            qint32 flags = 0;
            for (std::size_t q = 0; q < e.members.size(); ++q) {
                if (!e.members[q])
                    continue;
                items.push_back({b, qint32(q)});
                flags |= doc.questions[q].graphFlags;
            }
            if (!block.fromDocument)
                block.graphFlags = flags;
        }
        ++b;
    }
    catalogue.blocks = std::move(blocks);
    catalogue.items = std::move(items);

    if (doc.properties.pointsScale > 0)
        for (qint32 i = 0; i < catalogue.size(); ++i)
            if (!catalogue.blocks[std::size_t(i)].fromDocument)
                catalogue.blocks[std::size_t(i)].totalIndex = calculateBlockTotalIndex(doc, catalogue, i);
}

} // namespace kel
