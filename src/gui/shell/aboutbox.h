// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

namespace kel {

/// A short summary of the system the viewer runs on, for support calls.
QString systemSummary(bool isSwedish);

/// The About box: title, version, the file format revision read, who to
/// contact, and the system summary (operating system, processor, memory).
class AboutBox : public QDialog
{
    Q_OBJECT
public:
    explicit AboutBox(bool isSwedish, QWidget *parent = nullptr);
    QString text() const { return mText; }

private:
    QString mText;
};

} // namespace kel
