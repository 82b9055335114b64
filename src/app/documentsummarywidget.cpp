// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/documentsummarywidget.h"

#include "app/language.h"
#include "document/document.h"

#include <QLabel>
#include <QVBoxLayout>

namespace kel {

DocumentSummaryWidget::DocumentSummaryWidget(bool isSwedish, QWidget *parent)
    : QWidget(parent), mIsSwedish(isSwedish), mLabel(new QLabel(this))
{
    mLabel->setObjectName(QStringLiteral("summaryLabel"));
    mLabel->setTextFormat(Qt::RichText);
    mLabel->setAlignment(Qt::AlignCenter);
    mLabel->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(mLabel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setDocument(nullptr);
}

QString DocumentSummaryWidget::text() const
{
    return mLabel->text();
}

void DocumentSummaryWidget::setDocument(const Document *doc)
{
    const bool sv = mIsSwedish;
    if (doc == nullptr) {
        mLabel->setText(QStringLiteral("<h2>%1</h2><p>%2</p>")
                            .arg(applicationTitle().toHtmlEscaped(),
                                 pickText(sv, "Open a KEL file with File, Open... or drop one on this window.",
                                          "Öppna en KEL-fil med Arkiv, Öppna... eller släpp en på det här fönstret.")
                                     .toHtmlEscaped()));
        return;
    }
    const DocumentProperties &p = doc->properties;
    QString name = doc->text(p.projectName);
    if (name.isEmpty())
        name = doc->currentFileTitle;
    QString html = QStringLiteral("<h2>%1</h2>").arg(name.toHtmlEscaped());
    const QString number = doc->text(p.projectNumber);
    if (!number.isEmpty())
        html += QStringLiteral("<p>%1 %2</p>").arg(pickText(sv, "Project number", "Projektnummer"),
                                                     number.toHtmlEscaped());
    const QString copyright = doc->text(p.copyright);
    if (!copyright.isEmpty())
        html += QStringLiteral("<p>%1</p>").arg(copyright.toHtmlEscaped());
    html += QStringLiteral("<table align='center' cellpadding='3'>");
    auto row = [&](const char *en, const char *svText, qsizetype n) {
        html += QStringLiteral("<tr><td>%1</td><td align='right'>%2</td></tr>").arg(pickText(sv, en, svText)).arg(n);
    };
    row("Respondents", "Svarande", doc->rowCount());
    row("Questions", "Frågor", qsizetype(doc->questions.size()));
    row("Questions in the overview", "Frågor i översikten", qsizetype(doc->overviewColumns.size()));
    row("Categories", "Kategorier", qsizetype(doc->categories.size()));
    row("Blocks", "Block", qsizetype(doc->blocks.size()));
    html += QStringLiteral("</table><p><small>%1</small></p>").arg(doc->currentFile.toHtmlEscaped());
    mLabel->setText(html);
}

} // namespace kel
