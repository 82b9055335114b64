// SPDX-License-Identifier: GPL-3.0-or-later
// The help pages shipped inside the program, in the interface language.
#pragma once

#include <QWidget>

class QTextBrowser;

namespace kel {

class HelpWindow : public QWidget
{
    Q_OBJECT
public:
    explicit HelpWindow(bool isSwedish, QWidget *parent = nullptr);

    /// The start page of the chosen language.
    static QString startPage(bool isSwedish);
    QTextBrowser *browser() const { return mBrowser; }

private:
    QTextBrowser *mBrowser;
};

} // namespace kel
