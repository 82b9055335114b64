// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/filedialogs.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QTreeView>
#include <QIdentityProxyModel>
#include <QLocale>

namespace kel {

namespace {

constexpr int DateColumn = 3;

// Sizes and types of files, which Qt words from the system's region and
// MIME descriptions (in the desktop's language, often "unknown"): sizes in
// Swedish units, types by suffix ("KEL-fil"). Folders keep Qt's texts,
// which the catalogue translates. Dates, which Qt writes with the region's
// month names ("24 Nov"), are written the Swedish way for files and folders.
class SwedishFileColumns : public QIdentityProxyModel
{
public:
    using QIdentityProxyModel::QIdentityProxyModel;

    QVariant data(const QModelIndex &index, int role) const override
    {
        constexpr int SizeColumn = 1;
        constexpr int TypeColumn = 2;
        if (role == Qt::DisplayRole && index.column() == DateColumn) {
            if (const auto *files = qobject_cast<const QFileSystemModel *>(sourceModel())) {
                const QDateTime modified = files->lastModified(mapToSource(index));
                if (modified.isValid())
                    return QLocale(QLocale::Swedish, QLocale::Sweden).toString(modified, QLocale::ShortFormat);
            }
        }
        if (role == Qt::DisplayRole && (index.column() == SizeColumn || index.column() == TypeColumn)) {
            if (const auto *files = qobject_cast<const QFileSystemModel *>(sourceModel())) {
                const QFileInfo info = files->fileInfo(mapToSource(index));
                if (info.isFile() && index.column() == SizeColumn)
                    return QLocale(QLocale::Swedish, QLocale::Sweden).formattedDataSize(info.size());
                if (info.isFile()) {
                    const QString suffix = info.suffix();
                    return suffix.isEmpty() ? QStringLiteral("Fil") : suffix.toUpper() + QStringLiteral("-fil");
                }
            }
        }
        return QIdentityProxyModel::data(index, role);
    }
};

} // namespace

void prepareFileDialog(QFileDialog &dialog, bool isSwedish)
{
    if (!isSwedish)
        return;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setProxyModel(new SwedishFileColumns(&dialog));
    // Qt sizes the date column for its own, shorter text; ours would be cut.
    for (QTreeView *details : dialog.findChildren<QTreeView *>())
        details->header()->setSectionResizeMode(DateColumn, QHeaderView::ResizeToContents);
}

} // namespace kel
