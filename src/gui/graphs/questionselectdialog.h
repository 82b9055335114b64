// SPDX-License-Identifier: GPL-3.0-or-later
// frmQuestionSelect: the modal choice of the question a graph is split by.
#pragma once

#include "engine/document/document.h"

#include <QDialog>

#include <functional>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace kel {

class QuestionSelectDialog : public QDialog
{
    Q_OBJECT
public:
    /// Lists the overview questions other than `question` for which
    /// `offered` is true (the split gate), in document order.
    QuestionSelectDialog(const Document &doc, qint32 question, const std::function<bool(qint32)> &offered,
                         bool isSwedish, QWidget *parent = nullptr);

    /// The chosen question after OK; -1 before.
    qint32 chosenQuestion() const { return mChosen; }
    bool accepted() const { return mAccepted; }

    QLabel *lblQuestionsLabel;
    QListWidget *lstQuestions;
    QLabel *lblQuestionFullText;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;

private:
    void choiceChanged();
    QListWidgetItem *chosenItem() const;

    const Document &mDoc;
    qint32 mChosen = -1;
    bool mAccepted = false;
};

} // namespace kel
