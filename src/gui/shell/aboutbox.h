// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QPushButton;

namespace kel {

/// A short summary of the system the viewer runs on, for support calls.
QString systemSummary(bool isSwedish);
/// Memory in the interface language's number format ("24 105 MB" in
/// Swedish, "24,105 MB" in English), whatever the system's region.
QString memoryText(qint64 mebibytes, bool isSwedish);

/// The system's own information program, found on the PATH: msinfo32 on
/// Windows; elsewhere the first of the usual desktops' programs. Empty where
/// the system has none.
QString systemInformationProgram();

/// The About box: title, version, the file format revision read, who to
/// contact, and the system summary (operating system, processor, memory).
class AboutBox : public QDialog
{
    Q_OBJECT
public:
    explicit AboutBox(bool isSwedish, QWidget *parent = nullptr);
    QString text() const { return mText; }
    /// Starts the system's information program; hidden where there is none.
    QPushButton *systemInfoButton() const { return mSystemInfo; }

private:
    QString mText;
    QPushButton *mSystemInfo = nullptr;
};

} // namespace kel
