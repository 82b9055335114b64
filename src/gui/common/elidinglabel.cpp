// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/common/elidinglabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace kel {

ElidingLabel::ElidingLabel(QWidget *parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setWordWrap(false);
}

void ElidingLabel::setPreferredCharacters(int characters)
{
    mPreferredCharacters = std::max(0, characters);
    updateGeometry();
}

QString ElidingLabel::shownText() const
{
    // Line breaks would make a second line: they are shown as blanks.
    QString line = text();
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    const int width = contentsRect().width() - 2 * margin() - std::max(0, indent());
    return fontMetrics().elidedText(line, Qt::ElideRight, std::max(0, width));
}

bool ElidingLabel::isElided() const
{
    QString line = text();
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    return shownText() != line;
}

QSize ElidingLabel::sizeHint() const
{
    const QMargins m = contentsMargins();
    return QSize(fontMetrics().averageCharWidth() * mPreferredCharacters + m.left() + m.right() + 2 * margin(),
                 fontMetrics().height() + m.top() + m.bottom() + 2 * margin());
}

QSize ElidingLabel::minimumSizeHint() const
{
    const QSize hint = sizeHint();
    return QSize(std::min(hint.width(), fontMetrics().averageCharWidth() * 3), hint.height());
}

void ElidingLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect().adjusted(margin() + std::max(0, indent()), margin(), -margin(), -margin());
    style()->drawItemText(&painter, area, int(alignment()) | Qt::TextSingleLine, palette(), isEnabled(), shownText(),
                          foregroundRole());
}

bool ElidingLabel::event(QEvent *event)
{
    // A cut text shows whole in the tooltip; otherwise the label's own tip.
    if (event->type() == QEvent::ToolTip && isElided()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

} // namespace kel
