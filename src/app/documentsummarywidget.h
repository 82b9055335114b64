// SPDX-License-Identifier: GPL-3.0-or-later
// What the central area of the main window shows until the overview sheet
// takes its place: which document is open and how large it is.
#pragma once

#include <QWidget>

class QLabel;

namespace kel {

struct Document;

class DocumentSummaryWidget : public QWidget
{
    Q_OBJECT
public:
    explicit DocumentSummaryWidget(bool isSwedish, QWidget *parent = nullptr);

    /// Shows `doc`, or the "no document" hint for nullptr. The widget does not
    /// keep the pointer.
    void setDocument(const Document *doc);
    QString text() const;

private:
    bool mIsSwedish;
    QLabel *mLabel;
};

} // namespace kel
