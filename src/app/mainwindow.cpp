// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mainwindow.h"

#include "app/language.h"
#include "document/documentreader.h"

#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>

namespace kel {

MainWindow::MainWindow(bool isSwedish, QWidget *parent) : QMainWindow(parent), mIsSwedish(isSwedish)
{
    setWindowTitle(QString::fromUtf8(ApplicationTitle));
    resize(900, 600);
}

void MainWindow::openFile(const QString &path)
{
    ReadResult r = readDocumentFile(path);
    if (r.code != OpenResult::Ok) {
        QMessageBox::critical(this, QString::fromUtf8(ApplicationTitle), openResultMessage(r.code, mIsSwedish));
        return;
    }
    const Document &d = *r.document;
    auto *label = new QLabel(this);
    label->setMargin(16);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    label->setText(QStringLiteral("%1\n\n%2 respondents, %3 questions, %4 categories")
                       .arg(d.text(d.properties.projectName))
                       .arg(d.rowCount())
                       .arg(d.questions.size())
                       .arg(d.categories.size()));
    setCentralWidget(label);
    setWindowTitle(QString::fromUtf8(ApplicationTitle) + QStringLiteral(" - ") + QFileInfo(path).fileName());
}

} // namespace kel
