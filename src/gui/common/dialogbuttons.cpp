// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/dialogbuttons.h"

#include "texts/language.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>

namespace kel {

OkCancelRow makeOkCancelRow(QDialog &dialog, bool isSwedish)
{
    OkCancelRow row;
    row.ok = new QPushButton(QStringLiteral("OK"), &dialog);
    row.ok->setObjectName(QStringLiteral("cmdOK"));
    row.ok->setDefault(true);
    row.cancel = new QPushButton(pickText(isSwedish, "Cancel", "Avbryt"), &dialog);
    row.cancel->setObjectName(QStringLiteral("cmdCancel"));
    row.layout = new QHBoxLayout;
    row.layout->addStretch(1);
    row.layout->addWidget(row.ok);
    row.layout->addWidget(row.cancel);
    QObject::connect(row.ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    QObject::connect(row.cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    return row;
}

} // namespace kel
