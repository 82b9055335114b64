// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/textpopup.h"

#include "texts/language.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace kel {

namespace {

// A text browser that resolves no resources: an <img> or a link in the
// text cannot make it read a file or reach the network.
class InertBrowser : public QTextBrowser
{
public:
    using QTextBrowser::QTextBrowser;
    QVariant loadResource(int, const QUrl &) override { return QVariant(); }
};

} // namespace

TextPopup::TextPopup(bool isSwedish, QWidget *parent)
    : QWidget(parent, Qt::Window), mText(new InertBrowser(this)),
      mClose(new QPushButton(pickText(isSwedish, "C&lose", "&Stäng"), this))
{
    setObjectName(QStringLiteral("frmTextPopUp"));
    mText->setObjectName(QStringLiteral("rtbText"));
    mText->setOpenLinks(false);
    mText->setOpenExternalLinks(false);
    mText->setReadOnly(true);
    mClose->setObjectName(QStringLiteral("cmdClose"));
    connect(mClose, &QPushButton::clicked, this, &QWidget::close);
    // Escape closes it like a message box.
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(mClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(mText);
    layout->addLayout(buttons);

    setMinimumWidth(qRound(MinimumWidthTwips * logicalDpiX() / 1440.0));
    resize(qRound(5400 * logicalDpiX() / 1440.0), qRound(4000 * logicalDpiY() / 1440.0));
}

void TextPopup::setHtml(const QString &html)
{
    mText->setHtml(html);
}

QString TextPopup::plainText() const
{
    return mText->toPlainText();
}

} // namespace kel
