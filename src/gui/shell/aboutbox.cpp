// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/aboutbox.h"

#include "gui/shell/appicon.h"

#include "texts/language.h"
#include "engine/document/documentreader.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QHBoxLayout>
#include <QFile>
#include <QGroupBox>
#include <QLocale>
#include <QThread>
#include <QLabel>
#include <QSysInfo>
#include <QVBoxLayout>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace kel {

namespace {

// The processor's name as the kernel reports it; empty where it cannot be read.
QString processorName()
{
#ifdef Q_OS_LINUX
    QFile cpuinfo(QStringLiteral("/proc/cpuinfo"));
    if (cpuinfo.open(QIODevice::ReadOnly | QIODevice::Text)) {
        // The first entry is enough; the file can be long on large machines.
        // (/proc files report no size, so atEnd() cannot be trusted.)
        for (int i = 0; i < 64; ++i) {
            const QByteArray bytes = cpuinfo.readLine(4096);
            if (bytes.isEmpty())
                break;
            const QString line = QString::fromUtf8(bytes);
            if (line.startsWith(QLatin1String("model name")))
                return line.section(QLatin1Char(':'), 1).trimmed();
        }
    }
#endif
    return QString();
}

// Physical memory in MiB; 0 where it cannot be read.
qint64 physicalMemoryMiB()
{
#if defined(Q_OS_UNIX) && defined(_SC_PHYS_PAGES) && defined(_SC_PAGE_SIZE)
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGE_SIZE);
    if (pages > 0 && pageSize > 0)
        return qint64(pages) * pageSize / (1024 * 1024);
#endif
    return 0;
}

} // namespace

QString systemInformationProgram()
{
#ifdef Q_OS_WIN
    const char *candidates[] = {"msinfo32"};
#else
    const char *candidates[] = {"hardinfo",  "gnome-system-monitor", "plasma-systemmonitor",
                                "ksysguard", "xfce4-taskmanager",    "mate-system-monitor",
                                "lxtask"};
#endif
    for (const char *name : candidates)
        if (QString path = QStandardPaths::findExecutable(QString::fromLatin1(name)); !path.isEmpty())
            return path;
    return QString();
}

QString memoryText(qint64 mebibytes, bool isSwedish)
{
    const QLocale locale =
        isSwedish ? QLocale(QLocale::Swedish, QLocale::Sweden) : QLocale(QLocale::English, QLocale::UnitedStates);
    return locale.toString(mebibytes) + QStringLiteral(" MB");
}

QString systemSummary(bool isSwedish)
{
    QStringList lines;
    lines << pickText(isSwedish, "Operating system: ", "Operativsystem: ") + QSysInfo::prettyProductName();
    lines << pickText(isSwedish, "Kernel: ", "Kärna: ") + QSysInfo::kernelType() + QLatin1Char(' ')
            + QSysInfo::kernelVersion();
    QString processor = processorName();
    if (processor.isEmpty())
        processor = QSysInfo::currentCpuArchitecture();
    else
        processor += QStringLiteral(" (") + QSysInfo::currentCpuArchitecture() + QLatin1Char(')');
    lines << pickText(isSwedish, "Processor: ", "Processor: ") + processor + QStringLiteral(", ")
            + QString::number(QThread::idealThreadCount()) + pickText(isSwedish, " threads", " trådar");
    if (const qint64 memory = physicalMemoryMiB(); memory > 0)
        lines << pickText(isSwedish, "Memory: ", "Minne: ") + memoryText(memory, isSwedish);
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
    // "Version" and "KEL Revision:" read the same in both languages: they
    // are what support asks for over the phone.
    const QString version = pickText(isSwedish, "Version ", "Version ") + QCoreApplication::applicationVersion();
    const QString revision = pickText(isSwedish, "KEL Revision: ", "KEL Revision: ") + QString::number(ReaderRevision);
    const QString contact = pickText(isSwedish,
                                     "Published by Brennvik AB. For questions about a survey, contact whoever "
                                     "sent you the file; for questions about the program, contact Brennvik AB.",
                                     "Utgiven av Brennvik AB. Frågor om en undersökning besvaras av den som "
                                     "skickade filen till dig; frågor om programmet besvaras av Brennvik AB.");
    const QString system = systemSummary(isSwedish);
    mText = applicationTitle() + QLatin1Char('\n') + version + QLatin1Char('\n') + revision + QLatin1Char('\n')
        + contact + QLatin1Char('\n') + system;

    auto *details = new QLabel(version + QLatin1Char('\n') + revision, this);
    details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *contactLabel = new QLabel(contact, this);
    contactLabel->setWordWrap(true);
    auto *systemFrame = new QGroupBox(pickText(isSwedish, "System information", "Systeminformation"), this);
    auto *systemLabel = new QLabel(system, systemFrame);
    systemLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *systemLayout = new QVBoxLayout(systemFrame);
    systemLayout->addWidget(systemLabel);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    mSystemInfo = buttons->addButton(pickText(isSwedish, "&System Info...", "&Systeminformation..."),
                                     QDialogButtonBox::ActionRole);
    mSystemInfo->setObjectName(QStringLiteral("cmdSysInfo"));
    const QString program = systemInformationProgram();
    mSystemInfo->setVisible(!program.isEmpty());
    connect(mSystemInfo, &QPushButton::clicked, this, [this, program, isSwedish] {
        if (!QProcess::startDetached(program, {}))
            QMessageBox::warning(this, windowTitle(),
                                 pickText(isSwedish, "The system information program could not be started.",
                                          "Systeminformationsprogrammet kunde inte startas."));
    });
    auto *layout = new QVBoxLayout(this);
    auto *heading = new QHBoxLayout;
    heading->addWidget(icon);
    heading->addWidget(title, 1);
    layout->addLayout(heading);
    layout->addWidget(details);
    layout->addWidget(contactLabel);
    layout->addWidget(systemFrame);
    layout->addWidget(buttons);
    setMinimumWidth(fontMetrics().averageCharWidth() * 60);
}

} // namespace kel
