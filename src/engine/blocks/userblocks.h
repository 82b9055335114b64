// SPDX-License-Identifier: GPL-3.0-or-later
// Blocks of questions that the user defines himself. They follow the
// document's own blocks in the block catalogue, so whatever walks the
// catalogue (graphs, the detail window, the index export) sees them like any
// other block. They live per document in the settings store, keyed by the
// document's GUID, together with every block's "Include In Copy" choice;
// neither the document nor its file is ever written.
//
// The editor works on a copy (BlockEditModel) and only its OK touches the
// catalogue and the store.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/document/document.h"
#include "engine/indexes/columnindex.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace kel {

class SettingsStore;

namespace blockstore {
inline constexpr char BlockItems[] = "Block Items";
inline constexpr char IncludeInCopy[] = "Include In Copy";
inline constexpr char Name[] = "Name";
inline constexpr char IncludedDataHeaders[] = "Included Data Headers";
} // namespace blockstore

/// "Block 000", "Block 007", "Block 1234".
QString blockKeyName(qint32 block);
/// The key of one block below the document's key.
QString blockKey(const QString &documentKey, qint32 block);

/// A user block as the editor and the loader create it: members listed as
/// items, no parent, no index yet.
Block makeUserBlock(const QString &name, bool includeInCopy);

/// Member question numbers joined by "|" ("3|5|12"; empty for none).
QString joinMembers(const QuestionList &members);

/// What restoring the stored blocks found.
struct UserBlockRestore {
    bool found = false;    ///< the document has a key in the store
    qint32 added = 0;      ///< user blocks appended
    QStringList problems;  ///< damaged values that were ignored, one line each
    bool repaired = false; ///< the store was rewritten without them
};

/// Appends the user blocks stored for `doc` to `catalogue`, applies the
/// stored "Include In Copy" of every block and, for a document with indexes,
/// computes the user blocks' total indexes. Damaged values (numbers that are not numbers, missing
/// keys or names, members outside the document, repeated names) are left
/// out; the store is then rewritten without them unless `mayWrite` is false.
/// Never fails: a store that cannot be read gives a document without user
/// blocks.
UserBlockRestore restoreUserBlocks(const Document &doc, BlockCatalogue &catalogue, SettingsStore &store, bool mayWrite);

/// Writes every block's key of `catalogue` ("Include In Copy"; for user blocks
/// also "Name" and "Included Data Headers"), removes the keys of blocks
/// beyond the new count and writes "Block Items". Does nothing (false) under
/// the NoSaveSettings policy or when the store cannot be written.
bool storeUserBlocks(const Document &doc, const BlockCatalogue &catalogue, SettingsStore &store);

/// The editor's working copy of the block list.
class BlockEditModel
{
public:
    enum State : qint32 { Unchanged = 0, Added = 1, Renamed = 2, Deleted = 3 };

    struct Entry {
        State state = Unchanged;
        QString name;
        bool includeInCopy = false;
        bool isDocumentBlock = false;
        std::vector<bool> members; ///< one per question of the document
    };

    enum class NameCheck { Ok, Nothing, Duplicate };

    BlockEditModel(const Document &doc, const BlockCatalogue &catalogue);

    const std::vector<Entry> &entries() const { return mEntries; }
    const Entry &entry(qint32 index) const { return mEntries[std::size_t(index)]; }
    qint32 size() const { return qint32(mEntries.size()); }
    /// The entries a list shows: every one not marked for deletion, in order.
    std::vector<qint32> listed() const;

    /// The member questions of an entry, in question order.
    QuestionList members(qint32 index) const;
    /// Only the overview questions among them (what a document block lists).
    QuestionList overviewMembers(qint32 index) const;

    /// Adds a user block called `name`; its index is `*added`. Refused when
    /// the name is empty or equal (ignoring case) to any entry's name,
    /// entries marked for deletion included.
    NameCheck add(const QString &name, qint32 *added = nullptr);
    /// Renames user block `index` to `name` trimmed. Nothing for an empty or
    /// unchanged name; refused when another entry has that name (ignoring
    /// case).
    NameCheck rename(qint32 index, const QString &name);
    /// Marks user block `index` for deletion, or forgets it altogether when
    /// it was added in this session (later indexes then move down by one).
    /// False for a document block.
    bool remove(qint32 index);
    void setMember(qint32 index, qint32 question, bool member);
    void setIncludeInCopy(qint32 index, bool include);

    /// OK: rebuilds the catalogue's blocks and block items from the working
    /// copy and computes the user blocks' total indexes (the flex total
    /// computes its own: FlexTotal::updateUserBlockIndexes).
    void apply(BlockCatalogue &catalogue) const;

private:
    const Document &mDoc;
    const BlockCatalogue &mCatalogue;
    std::vector<Entry> mEntries;
};

} // namespace kel
