// SPDX-License-Identifier: GPL-3.0-or-later
// frmTextPopUp: a small window that shows a piece of formatted text (the
// respondents' comments) with a Close button. It never loads anything the
// text refers to: links, images and style sheets stay inert.
#pragma once

#include <QWidget>

class QPushButton;
class QTextBrowser;

namespace kel {

class TextPopup : public QWidget
{
    Q_OBJECT
public:
    /// The window keeps at least this width when resized, in twips.
    static constexpr int MinimumWidthTwips = 2000;

    explicit TextPopup(bool isSwedish, QWidget *parent = nullptr);

    /// Shows `html` (as made by the engine: every text already escaped).
    void setHtml(const QString &html);
    QString plainText() const;
    QTextBrowser *textBox() const { return mText; }

private:
    QTextBrowser *mText;
    QPushButton *mClose;
};

} // namespace kel
