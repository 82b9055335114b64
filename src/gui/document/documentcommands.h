// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that work on the open document as a whole: Tools > Blocks,
// Copy Indexes (Edit menu and popup), File > Properties, the points list
// behind the total index (a double click on the status line), and the
// user's stored blocks brought back when a document opens.
#pragma once

#include "engine/indexes/indexexport.h"
#include "gui/common/commandcontext.h"

#include <QObject>

namespace kel {

class DocumentCommands : public QObject
{
    Q_OBJECT
public:
    DocumentCommands(const CommandContext &context, QObject *parent);

    void editBlocks();
    void copyIndexes();
    void showProperties();
    /// The points behind the shown overview's total index, on the clipboard.
    void copyTotalIndexPoints();
    /// Adds the user's blocks stored for the open document; a message says
    /// when some could not be read.
    void restoreStoredBlocks();

    /// Copy Indexes' choices, kept while the document stays open.
    const IndexExportOptions &exportOptions() const { return mExportOptions; }

private:
    CommandContext mContext;
    IndexExportOptions mExportOptions;
};

} // namespace kel
