// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/blocks/blockeditor.h"

#include "gui/common/waitcursor.h"
#include "texts/language.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace kel {

BlockEditorPrompts BlockEditorPrompts::dialogs(QWidget *parent)
{
    BlockEditorPrompts p;
    p.input = [parent](const QString &title, const QString &prompt, const QString &value) -> std::optional<QString> {
        bool ok = false;
        const QString text = QInputDialog::getText(parent, title, prompt, QLineEdit::Normal, value, &ok);
        return ok ? std::optional<QString>(text) : std::nullopt;
    };
    p.confirm = [parent](const QString &title, const QString &text) {
        QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok | QMessageBox::Cancel, parent);
        box.setDefaultButton(QMessageBox::Cancel);
        box.button(QMessageBox::Ok)->setText(QStringLiteral("&OK")); // Escape is Cancel; OK needs a key
        return box.exec() == QMessageBox::Ok;
    };
    p.error = [parent](const QString &title, const QString &text) { QMessageBox::critical(parent, title, text); };
    return p;
}

QString BlockEditor::t(const char *english, const char *swedish) const
{
    return pickText(mIsSwedish, english, swedish);
}

BlockEditor::BlockEditor(const Document &doc, BlockCatalogue &catalogue, SettingsStore &store, bool isSwedish,
                         QWidget *parent)
    : QDialog(parent), mDoc(doc), mCatalogue(catalogue), mStore(store), mIsSwedish(isSwedish), mModel(doc, catalogue),
      mPrompts(BlockEditorPrompts::dialogs(this))
{
    setObjectName(QStringLiteral("frmBlockEdit"));
    setWindowTitle(t("Edit Blocks", "Redigera block"));

    mBlocks = new QListWidget(this);
    mBlocks->setObjectName(QStringLiteral("lstBlocks"));
    mName = new QLabel(this);
    mName->setObjectName(QStringLiteral("lblName"));
    mName->setTextFormat(Qt::PlainText);
    mInclude = new QCheckBox(t("&Yes", "&Ja"), this);
    mInclude->setObjectName(QStringLiteral("chkIncludeInCopy"));
    mQuestions = new QListWidget(this);
    mQuestions->setObjectName(QStringLiteral("lstQuestions"));
    mOriginal = new QListWidget(this);
    mOriginal->setObjectName(QStringLiteral("lstQuestionsOriginal"));
    mOriginal->hide();
    mFullText = new QLabel(this);
    mFullText->setObjectName(QStringLiteral("lblQuestionFullText"));
    mFullText->setTextFormat(Qt::PlainText);
    mFullText->setWordWrap(true);
    mFullText->setMinimumHeight(40);
    mFullText->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto *add = new QPushButton(t("&Add", "&Lägg till"), this);
    add->setObjectName(QStringLiteral("cmdAddBlock"));
    mRename = new QPushButton(t("&Rename", "&Byt namn"), this);
    mRename->setObjectName(QStringLiteral("cmdRenameBlock"));
    mDelete = new QPushButton(t("&Delete", "&Ta bort"), this);
    mDelete->setObjectName(QStringLiteral("cmdDeleteBlock"));
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    QPushButton *cancel = buttons->addButton(t("Cancel", "Avbryt"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *nameLabel = new QLabel(t("Name:", "Namn:"), this);
    nameLabel->setObjectName(QStringLiteral("lblNameLabel"));
    auto *includeLabel = new QLabel(t("Include in copy:", "Ingår i kopiera:"), this);
    includeLabel->setObjectName(QStringLiteral("lblIncludeInCopyLabel"));
    mQuestionsLabel = new QLabel(t("&Questions:", "&Frågor:"), this);
    mQuestionsLabel->setObjectName(QStringLiteral("lblQuestionsLabel"));
    mQuestionsLabel->setBuddy(mQuestions);

    auto *right = new QGridLayout;
    right->addWidget(nameLabel, 0, 0);
    right->addWidget(mName, 0, 1);
    right->addWidget(includeLabel, 1, 0);
    right->addWidget(mInclude, 1, 1);
    right->addWidget(mQuestionsLabel, 2, 0, 1, 2);
    right->addWidget(mQuestions, 3, 0, 1, 2);
    right->addWidget(mOriginal, 4, 0, 1, 2);
    right->addWidget(mFullText, 5, 0, 1, 2);
    auto *blockButtons = new QHBoxLayout;
    blockButtons->addWidget(add);
    blockButtons->addWidget(mRename);
    blockButtons->addWidget(mDelete);
    auto *left = new QVBoxLayout;
    left->addWidget(mBlocks);
    left->addLayout(blockButtons);
    auto *columns = new QHBoxLayout;
    columns->addLayout(left, 1);
    columns->addLayout(right, 2);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(buttons);

    // Working copy and lists.
    for (qint32 i : mModel.listed()) {
        auto *item = new QListWidgetItem(mModel.entry(i).name, mBlocks);
        item->setData(Qt::UserRole, i);
    }
    for (qint32 q : mDoc.overviewColumns) {
        auto *item = new QListWidgetItem(mDoc.questions[std::size_t(q)].heading, mQuestions);
        item->setData(Qt::UserRole, q);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }

    connect(mBlocks, &QListWidget::currentRowChanged, this, &BlockEditor::showSelected);
    connect(mQuestions, &QListWidget::itemClicked, this, &BlockEditor::questionClicked);
    connect(mOriginal, &QListWidget::itemClicked, this, &BlockEditor::questionClicked);
    connect(mQuestions, &QListWidget::itemChanged, this, &BlockEditor::questionChanged);
    connect(mInclude, &QCheckBox::toggled, this, [this](bool on) {
        if (!mFilling)
            mModel.setIncludeInCopy(selectedEntry(), on);
    });
    connect(add, &QPushButton::clicked, this, &BlockEditor::addBlock);
    connect(mRename, &QPushButton::clicked, this, &BlockEditor::renameBlock);
    connect(mDelete, &QPushButton::clicked, this, &BlockEditor::deleteBlock);
    connect(ok, &QPushButton::clicked, this, &BlockEditor::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    showSelected();
    resize(640, 440);
}

qint32 BlockEditor::selectedEntry() const
{
    const QListWidgetItem *item = mBlocks->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : -1;
}

void BlockEditor::showSelected()
{
    mFilling = true;
    mFullText->clear();
    const qint32 index = selectedEntry();
    if (index < 0) {
        mName->clear();
        mInclude->setChecked(false);
        mInclude->setEnabled(false);
        mRename->setEnabled(false);
        mDelete->setEnabled(false);
        mOriginal->clear();
        for (int row = 0; row < mQuestions->count(); ++row)
            mQuestions->item(row)->setCheckState(Qt::Unchecked);
        mQuestions->setEnabled(false);
        mFilling = false;
        return;
    }
    const BlockEditModel::Entry &e = mModel.entry(index);
    mName->setText(e.name);
    mInclude->setEnabled(true);
    mInclude->setChecked(e.includeInCopy);
    mRename->setEnabled(!e.isDocumentBlock);
    mDelete->setEnabled(!e.isDocumentBlock);
    if (e.isDocumentBlock) {
        mOriginal->clear();
        for (qint32 q : mModel.overviewMembers(index)) {
            auto *item = new QListWidgetItem(mDoc.questions[std::size_t(q)].heading, mOriginal);
            item->setData(Qt::UserRole, q);
        }
        mQuestions->hide();
        mOriginal->show();
        mQuestionsLabel->setBuddy(mOriginal); // the key goes to the list shown
    } else {
        for (int row = 0; row < mQuestions->count(); ++row) {
            QListWidgetItem *item = mQuestions->item(row);
            const qint32 q = item->data(Qt::UserRole).toInt();
            item->setCheckState(e.members[std::size_t(q)] ? Qt::Checked : Qt::Unchecked);
        }
        mQuestions->setEnabled(true);
        mOriginal->hide();
        mQuestions->show();
        mQuestionsLabel->setBuddy(mQuestions);
    }
    mFilling = false;
}

void BlockEditor::questionClicked(QListWidgetItem *item)
{
    const qint32 q = item->data(Qt::UserRole).toInt();
    if (q >= 0 && std::size_t(q) < mDoc.questions.size())
        mFullText->setText(mDoc.questions[std::size_t(q)].text);
}

void BlockEditor::questionChanged(QListWidgetItem *item)
{
    if (mFilling)
        return;
    mModel.setMember(selectedEntry(), item->data(Qt::UserRole).toInt(), item->checkState() == Qt::Checked);
}

void BlockEditor::addBlock()
{
    const std::optional<QString> name = mPrompts.input(
        t("Add Block", "Lägg till block"),
        t("Enter a unique name for the new block:", "Ange ett unikt namn på det nya blocket:"), QString());
    if (!name)
        return;
    qint32 index = -1;
    switch (mModel.add(*name, &index)) {
    case BlockEditModel::NameCheck::Nothing: return;
    case BlockEditModel::NameCheck::Duplicate:
        mPrompts.error(t("Add Block", "Lägg till block"),
                       t("There already exists a block with the name ", "Det finns redan ett block med namnet ")
                           + QLatin1Char('"') + *name + QStringLiteral("\"!"));
        return;
    case BlockEditModel::NameCheck::Ok: break;
    }
    auto *item = new QListWidgetItem(*name, mBlocks);
    item->setData(Qt::UserRole, index);
    mBlocks->setCurrentItem(item);
}

void BlockEditor::renameBlock()
{
    const qint32 index = selectedEntry();
    if (index < 0 || mModel.entry(index).isDocumentBlock)
        return;
    const std::optional<QString> name =
        mPrompts.input(t("Rename Block", "Byt namn på block"),
                       t("Enter the block's new name:", "Ange blockets nya namn:"), mModel.entry(index).name);
    if (!name)
        return;
    switch (mModel.rename(index, *name)) {
    case BlockEditModel::NameCheck::Nothing: return;
    case BlockEditModel::NameCheck::Duplicate:
        mPrompts.error(
            t("Rename Block", "Byt namn på block"),
            t("There already exists another block with the name ", "Det finns redan ett annat block med namnet ")
                + QLatin1Char('"') + name->trimmed() + QStringLiteral("\"!"));
        return;
    case BlockEditModel::NameCheck::Ok: break;
    }
    mBlocks->currentItem()->setText(mModel.entry(index).name);
    mName->setText(mModel.entry(index).name);
}

void BlockEditor::deleteBlock()
{
    const qint32 index = selectedEntry();
    if (index < 0 || mModel.entry(index).isDocumentBlock)
        return;
    const QString name = mModel.entry(index).name;
    if (!mPrompts.confirm(t("Delete Block", "Ta bort block"),
                          QStringLiteral("Block \"") + name + t("\" will be deleted!", "\" kommer att tas bort!")))
        return;
    const bool forgotten = mModel.entry(index).state == BlockEditModel::Added;
    mModel.remove(index);
    const int row = mBlocks->currentRow();
    // An entry forgotten altogether moves the later ones down by one.
    if (forgotten) {
        for (int r = row + 1; r < mBlocks->count(); ++r) {
            QListWidgetItem *item = mBlocks->item(r);
            item->setData(Qt::UserRole, item->data(Qt::UserRole).toInt() - 1);
        }
    }
    delete mBlocks->takeItem(row);
    mBlocks->setCurrentRow(mBlocks->count() == 0 ? -1 : std::min(row, mBlocks->count() - 1));
    showSelected();
}

void BlockEditor::accept()
{
    WaitCursor wait;
    mModel.apply(mCatalogue);
    storeUserBlocks(mDoc, mCatalogue, mStore); // nothing is stored under the NoSaveSettings policy
    mBlocksChanged = true;
    QDialog::accept();
}

} // namespace kel
