// SPDX-License-Identifier: GPL-3.0-or-later
// A one-line label whose text never widens its window: a text longer than
// the label is cut with "..." and shown whole in the tooltip. Its height is
// one line whatever the text, so a window built of such labels keeps its
// size while their texts change (hovered questions, status messages).
#pragma once

#include <QLabel>

namespace kel {

class ElidingLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidingLabel(QWidget *parent = nullptr);

    /// Whether the text is cut at the current width.
    bool isElided() const;
    /// The text as drawn at the current width.
    QString shownText() const;
    /// The width the label asks for, in average characters; 0 = as little as
    /// its frame.
    void setPreferredCharacters(int characters);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;

private:
    int mPreferredCharacters = 0;
};

} // namespace kel
