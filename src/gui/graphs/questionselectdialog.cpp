// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/questionselectdialog.h"

#include "texts/language.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace kel {

QuestionSelectDialog::QuestionSelectDialog(const Document &doc, qint32 question,
                                           const std::function<bool(qint32)> &offered, bool isSwedish, QWidget *parent)
    : QDialog(parent), mDoc(doc)
{
    setObjectName(QStringLiteral("frmQuestionSelect"));
    setModal(true);
    setWindowTitle(pickText(isSwedish, "Splitting Question", "Välj fördelningsfråga"));

    QString heading;
    if (question >= 0 && std::size_t(question) < doc.questions.size())
        heading = doc.questions[std::size_t(question)].heading;
    heading.replace(QLatin1Char('&'), QStringLiteral("&&"));
    lblQuestionsLabel = new QLabel(isSwedish ? QStringLiteral("&Visa ") + heading + QStringLiteral(" fördelad på:")
                                             : QStringLiteral("&Show ") + heading + QStringLiteral(" split by:"),
                                   this);
    lblQuestionsLabel->setObjectName(QStringLiteral("lblQuestionsLabel"));
    lstQuestions = new QListWidget(this);
    lstQuestions->setObjectName(QStringLiteral("lstQuestions"));
    lblQuestionsLabel->setBuddy(lstQuestions);
    lblQuestionFullText = new QLabel(this);
    lblQuestionFullText->setObjectName(QStringLiteral("lblQuestionFullText"));
    lblQuestionFullText->setWordWrap(true);
    lblQuestionFullText->setTextFormat(Qt::PlainText);
    lblQuestionFullText->setMinimumHeight(3 * fontMetrics().height());
    lblQuestionFullText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdOK->setEnabled(false);
    cmdCancel = new QPushButton(pickText(isSwedish, "Cancel", "Avbryt"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    for (std::size_t q = 0; q < doc.questions.size(); ++q) {
        if (!doc.questions[q].inOverview || qint32(q) == question || (offered && !offered(qint32(q))))
            continue;
        auto *item = new QListWidgetItem(doc.questions[q].heading, lstQuestions);
        item->setData(Qt::UserRole, qint32(q));
    }

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblQuestionsLabel);
    layout->addWidget(lstQuestions, 1);
    layout->addWidget(lblQuestionFullText);
    layout->addLayout(buttons);
    resize(420, 380);

    // The choice is the selected item, never the current one: a list that
    // gets the focus makes its first item current on its own, and Enter
    // would then split by a question the user never chose.
    connect(lstQuestions, &QListWidget::itemSelectionChanged, this, &QuestionSelectDialog::choiceChanged);
    connect(lstQuestions, &QListWidget::itemDoubleClicked, cmdOK, &QPushButton::click);
    connect(cmdOK, &QPushButton::clicked, this, [this] {
        const QListWidgetItem *item = chosenItem();
        if (!item)
            return;
        mChosen = item->data(Qt::UserRole).toInt();
        mAccepted = true;
        accept();
    });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

QListWidgetItem *QuestionSelectDialog::chosenItem() const
{
    const QList<QListWidgetItem *> selected = lstQuestions->selectedItems();
    return selected.isEmpty() ? nullptr : selected.front();
}

void QuestionSelectDialog::choiceChanged()
{
    const QListWidgetItem *item = chosenItem();
    if (!item) {
        lblQuestionFullText->clear();
        cmdOK->setEnabled(false);
        return;
    }
    lblQuestionFullText->setText(mDoc.questions[std::size_t(item->data(Qt::UserRole).toInt())].text);
    cmdOK->setEnabled(true);
}

} // namespace kel
