// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/document/propertiesview.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace kel {

namespace {

QLabel *valueLabel(const QString &name, const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    // Document texts are shown as they are, never as markup.
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

void addRow(QFormLayout *form, const QString &labelName, const QString &label, QWidget *value)
{
    auto *caption = new QLabel(label, value->parentWidget());
    caption->setObjectName(labelName);
    form->addRow(caption, value);
}

} // namespace

PropertiesView::PropertiesView(const Document &doc, bool isSwedish, const QLocale &locale, QWidget *parent)
    : QDialog(parent), mTexts(propertiesTexts(doc, isSwedish, locale))
{
    setObjectName(QStringLiteral("frmProperties"));
    setWindowTitle(mTexts.caption);
    const PropertiesTexts &t = mTexts;
    // The rows scroll when the screen is too short for them (large fonts,
    // high scale factors); the button stays in sight below them.
    auto *outer = new QVBoxLayout(this);
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);

    auto *form = new QFormLayout;
    layout->addLayout(form);
    addRow(form, QStringLiteral("lblFileNameLabel"), t.fileNameLabel,
           valueLabel(QStringLiteral("lblFileName"), t.fileName, this));
    addRow(form, QStringLiteral("lblFileFormatLabel"), t.fileFormatLabel,
           valueLabel(QStringLiteral("lblFileFormat"), t.fileFormat, this));
    addRow(form, QStringLiteral("lblFileVersionLabel"), t.fileVersionLabel,
           valueLabel(QStringLiteral("lblFileVersion"), t.fileVersion, this));
    addRow(form, QStringLiteral("lblFileGUIDLabel"), t.fileGuidLabel,
           valueLabel(QStringLiteral("lblFileGUID"), t.fileGuid, this));
    addRow(form, QStringLiteral("lblFileCreatedLabel"), t.fileCreatedLabel,
           valueLabel(QStringLiteral("lblFileCreated"), t.fileCreated, this));
    addRow(form, QStringLiteral("lblProjectNumberLabel"), t.projectNumberLabel,
           valueLabel(QStringLiteral("lblProjectNumber"), t.projectNumber, this));
    addRow(form, QStringLiteral("lblProjectNameLabel"), t.projectNameLabel,
           valueLabel(QStringLiteral("lblProjectName"), t.projectName, this));
    addRow(form, QStringLiteral("lblCopyrightLabel"), t.copyrightLabel,
           valueLabel(QStringLiteral("lblCopyright"), t.copyright, this));

    // The comment is HTML built from escaped text (see engine/document/rtftext.h); a
    // read-only QTextEdit follows no links and fetches no resources.
    auto *comment = new QTextEdit(this);
    comment->setObjectName(QStringLiteral("rtfComment"));
    comment->setReadOnly(true);
    comment->setAcceptRichText(false);
    comment->setHtml(t.commentHtml);
    comment->setMinimumHeight(70);
    addRow(form, QStringLiteral("lblCommentLabel"), t.commentLabel, comment);

    auto *index = new QGroupBox(t.indexFrame, this);
    index->setObjectName(QStringLiteral("fraCoworkerIndex"));
    auto *indexLayout = new QVBoxLayout(index);
    indexLayout->addWidget(valueLabel(QStringLiteral("lblCoworkerIndex"), t.indexState, index));
    indexLayout->addWidget(valueLabel(QStringLiteral("lblCoworkerIndexTotalInfo"), t.indexTotalInfo, index));
    index->setEnabled(t.indexEnabled);
    layout->addWidget(index);

    auto *integrity = new QGroupBox(t.integrityFrame, this);
    integrity->setObjectName(QStringLiteral("fraIntegrityProtection"));
    auto *integrityForm = new QFormLayout(integrity);
    addRow(integrityForm, QStringLiteral("lblIntegrityProtectionMinimumSelectionLabel"), t.minimumSelectionLabel,
           valueLabel(QStringLiteral("lblIntegrityProtectionMinimumSelection"), t.minimumSelection, integrity));
    addRow(integrityForm, QStringLiteral("lblIntegrityProtectionMinimumComplementSelectionLabel"),
           t.minimumComplementSelectionLabel,
           valueLabel(QStringLiteral("lblIntegrityProtectionMinimumComplementSelection"), t.minimumComplementSelection,
                      integrity));
    addRow(
        integrityForm, QStringLiteral("lblIntegrityProtectionMinimumGraphSelectionLabel"), t.minimumGraphSelectionLabel,
        valueLabel(QStringLiteral("lblIntegrityProtectionMinimumGraphSelection"), t.minimumGraphSelection, integrity));
    addRow(integrityForm, QStringLiteral("lblIntegrityProtectionOverviewRowOrderLabel"), t.rowOrderLabel,
           valueLabel(QStringLiteral("lblIntegrityProtectionOverviewRowOrder"), t.rowOrder, integrity));
    layout->addWidget(integrity);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *close = buttons->addButton(t.okButton, QDialogButtonBox::AcceptRole);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto *scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("scrProperties"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    outer->addWidget(scroll, 1);
    outer->addWidget(buttons);

    const QMargins margins = outer->contentsMargins();
    const int wanted = content->sizeHint().height() + outer->spacing() + buttons->sizeHint().height() + margins.top()
        + margins.bottom();
    const int width = std::max(480,
                               content->sizeHint().width() + margins.left() + margins.right()
                                   + scroll->verticalScrollBar()->sizeHint().width());
    // Room for the title bar and frame as well.
    const QScreen *where = parent && parent->screen() ? parent->screen() : QGuiApplication::primaryScreen();
    const int room = where ? where->availableGeometry().height() * 9 / 10 : wanted;
    resize(width, std::min(wanted, room));
}

} // namespace kel
