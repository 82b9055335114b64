// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/filedialogs.h"

#include <QFileDialog>
#include <QFileSystemModel>
#include <QIdentityProxyModel>

namespace kel {

namespace {

// The type column: "Mapp" for folders (Qt's text, translated), "KEL-fil"
// for a file by its suffix. The system's MIME descriptions are in the
// desktop's language and often missing ("unknown").
class SwedishFileTypes : public QIdentityProxyModel
{
public:
    using QIdentityProxyModel::QIdentityProxyModel;

    QVariant data(const QModelIndex &index, int role) const override
    {
        constexpr int TypeColumn = 2;
        if (role == Qt::DisplayRole && index.column() == TypeColumn) {
            if (const auto *files = qobject_cast<const QFileSystemModel *>(sourceModel())) {
                const QFileInfo info = files->fileInfo(mapToSource(index));
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
    dialog.setProxyModel(new SwedishFileTypes(&dialog));
}

} // namespace kel
