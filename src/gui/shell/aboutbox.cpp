// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/aboutbox.h"

#include "gui/shell/appicon.h"

#include "texts/language.h"
#include "engine/document/documentreader.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSysInfo>
#include <QVBoxLayout>

namespace kel {

QString systemSummary(bool isSwedish)
{
    QStringList lines;
    lines << pickText(isSwedish, "Operating system: ", "Operativsystem: ") + QSysInfo::prettyProductName();
    lines << pickText(isSwedish, "Kernel: ", "Kärna: ") + QSysInfo::kernelType() + QLatin1Char(' ')
            + QSysInfo::kernelVersion();
    lines << pickText(isSwedish, "Processor architecture: ", "Processorarkitektur: ")
            + QSysInfo::currentCpuArchitecture();
    lines << pickText(isSwedish, "Qt version: ", "Qt-version: ") + QString::fromLatin1(qVersion());
    return lines.join(QLatin1Char('\n'));
}

AboutBox::AboutBox(bool isSwedish, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(isSwedish ? QStringLiteral("Om ") + applicationTitle()
                             : QStringLiteral("About ") + applicationTitle());
    auto *icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("imgIcon"));
    icon->setPixmap(applicationIcon().pixmap(64, 64));
    auto *title = new QLabel(QStringLiteral("<h2>%1</h2>").arg(applicationTitle().toHtmlEscaped()), this);
    const QString version = QStringLiteral("Version ") + QCoreApplication::applicationVersion();
    const QString revision = QStringLiteral("KEL Revision: %1").arg(ReaderRevision);
    const QString system = systemSummary(isSwedish);
    mText = applicationTitle() + QLatin1Char('\n') + version + QLatin1Char('\n') + revision + QLatin1Char('\n') + system;

    auto *details = new QLabel(version + QLatin1Char('\n') + revision + QStringLiteral("\n\n") + system, this);
    details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto *layout = new QVBoxLayout(this);
    auto *heading = new QHBoxLayout;
    heading->addWidget(icon);
    heading->addWidget(title, 1);
    layout->addLayout(heading);
    layout->addWidget(details);
    layout->addWidget(buttons);
}

} // namespace kel
