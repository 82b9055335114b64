// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/helpwindow.h"

#include "texts/language.h"

#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <QHBoxLayout>

// The help pages are compiled into the static GUI library; a static library's
// resources must be registered explicitly, and only from the global namespace.
static void registerHelpResources()
{
    Q_INIT_RESOURCE(help);
}

namespace kel {

QString HelpWindow::startPage(bool isSwedish)
{
    return isSwedish ? QStringLiteral("qrc:/help/sv/index.html") : QStringLiteral("qrc:/help/en/index.html");
}

HelpWindow::HelpWindow(bool isSwedish, QWidget *parent) : QWidget(parent, Qt::Window), mBrowser(new QTextBrowser(this))
{
    registerHelpResources();
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(applicationTitle() + QStringLiteral(" - ") + pickText(isSwedish, "Help", "Hjälp"));
    mBrowser->setOpenExternalLinks(true);
    mBrowser->setSource(QUrl(startPage(isSwedish)));

    auto *back = new QPushButton(pickText(isSwedish, "&Back", "&Bakåt"), this);
    auto *home = new QPushButton(pickText(isSwedish, "&Contents", "&Innehåll"), this);
    auto *close = new QPushButton(pickText(isSwedish, "C&lose", "&Stäng"), this);
    back->setEnabled(false);
    connect(mBrowser, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    connect(back, &QPushButton::clicked, mBrowser, &QTextBrowser::backward);
    connect(home, &QPushButton::clicked, mBrowser, &QTextBrowser::home);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    // Escape closes it as it closes a dialog, wherever the focus is inside.
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(back);
    buttons->addWidget(home);
    buttons->addStretch();
    buttons->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(mBrowser);
    layout->addLayout(buttons);
    resize(640, 560);
}

} // namespace kel
