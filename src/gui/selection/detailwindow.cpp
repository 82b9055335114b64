// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/selection/detailwindow.h"

#include "gui/common/elidinglabel.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "engine/document/document.h"
#include "engine/indexes/columnindex.h"
#include "engine/overview/celldetails.h"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace kel {

namespace {

constexpr int RowHeightTwips = 240;
constexpr int MarginTwips = 120;

QLabel *makeLabel(QWidget *parent, const QString &name, Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setAlignment(alignment);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

void keepLineWhenEmpty(QWidget *label)
{
    QSizePolicy policy = label->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    label->setSizePolicy(policy);
}

} // namespace

DetailWindow::DetailWindow(bool isSwedish, QWidget *parent)
    : ToolDock(QStringLiteral("DetailInfo"), pickText(isSwedish, "Detail Information", "Detaljinformation"), parent),
      mContent(new QWidget(this)), mGrid(new QGridLayout)
{
    const int margin = twipsToPixels(MarginTwips) / 2;
    auto *outer = new QVBoxLayout(mContent);
    outer->setContentsMargins(margin, margin, margin, margin);
    outer->setSpacing(2);
    // The headers and the answer text change with every hovered cell: they
    // are cut to the window's width (whole in their tooltips) and keep
    // their line when empty, so the window neither widens nor jumps.
    auto *band = new QGridLayout;
    band->setContentsMargins(0, 0, 0, 0);
    band->setSpacing(2);
    for (int i = 0; i < HeaderCount; ++i) {
        auto *header = new ElidingLabel(mContent);
        header->setObjectName(QStringLiteral("lblHeader%1").arg(i));
        QFont bold = header->font();
        bold.setBold(true);
        header->setFont(bold);
        keepLineWhenEmpty(header);
        mHeaders[std::size_t(i)] = header;
        band->addWidget(header, i, 0);
    }
    mHeaders[0]->setText(pickText(isSwedish, "Question:", "Fråga:"));
    mText = new ElidingLabel(mContent);
    mText->setObjectName(QStringLiteral("txtText"));
    keepLineWhenEmpty(mText);
    band->addWidget(mText, HeaderCount, 0);
    // Lines kept for a cell that is not there read as a hole in the window:
    // while they are blank they tell how to fill them. The hint asks for no
    // room of its own, so showing it changes neither height nor width.
    mHint = new QLabel(detailWindowHint(isSwedish), mContent);
    mHint->setObjectName(QStringLiteral("lblHint"));
    mHint->setWordWrap(true);
    mHint->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    mHint->setForegroundRole(QPalette::PlaceholderText);
    mHint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    mHint->hide();
    band->addWidget(mHint, 0, 0, HeaderCount + 1, 1);
    outer->addLayout(band);

    mGrid->setHorizontalSpacing(twipsToPixels(MarginTwips));
    mGrid->setVerticalSpacing(0);
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    mColumnHeader = makeLabel(mContent, QStringLiteral("lblIndexHeader"), right);
    mColumnHeader->setText(pickText(isSwedish, "Selection", "Urval"));
    mColumnHeaderTotal = makeLabel(mContent, QStringLiteral("lblIndexHeaderTotal"), right);
    mColumnHeaderTotal->setText(pickText(isSwedish, "Total", "Totalt"));
    mGrid->addWidget(mColumnHeader, 0, 1);
    mGrid->addWidget(mColumnHeaderTotal, 0, 2);
    const int rowHeight = twipsToPixels(RowHeightTwips);
    for (int r = 0; r < RowCount; ++r) {
        Row &row = mRows[std::size_t(r)];
        row.label = makeLabel(mContent, QStringLiteral("lblIndexLabel%1").arg(r));
        row.selection = makeLabel(mContent, QStringLiteral("lblIndex%1").arg(r), right);
        row.total = makeLabel(mContent, QStringLiteral("lblIndexTotal%1").arg(r), right);
        for (QLabel *l : {row.label, row.selection, row.total}) {
            l->setMinimumHeight(rowHeight);
            mGrid->addWidget(l, r + 1, l == row.label ? 0 : (l == row.selection ? 1 : 2));
        }
    }
    mGrid->setColumnStretch(0, 1);
    outer->addLayout(mGrid);
    outer->addStretch(1);
    // When the dock is given more height than the content needs, the room
    // goes below the values, not above the headers.
    auto *holder = new QWidget(this);
    auto *column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(mContent);
    column->addStretch(1);
    setWidget(holder);
    updateLayout();
}

QString DetailWindow::indexText(int row) const
{
    return (row >= 0 && row < RowCount) ? mRows[std::size_t(row)].label->text() : QString();
}

void DetailWindow::setIndexText(int row, const QString &text)
{
    if (row >= 0 && row < RowCount)
        mRows[std::size_t(row)].label->setText(text);
}

QString DetailWindow::indexValue(int row, bool total) const
{
    if (row < 0 || row >= RowCount)
        return QString();
    const Row &r = mRows[std::size_t(row)];
    return (total ? r.total : r.selection)->text();
}

void DetailWindow::setIndexValue(int row, bool total, const QString &value)
{
    if (row < 0 || row >= RowCount)
        return;
    Row &r = mRows[std::size_t(row)];
    (total ? r.total : r.selection)->setText(value);
}

QString DetailWindow::headerValue(int index) const
{
    return (index >= 0 && index < HeaderCount) ? mHeaders[std::size_t(index)]->text() : QString();
}

void DetailWindow::setHeaderValue(int index, const QString &value)
{
    if (index < 0 || index >= HeaderCount)
        return;
    QLabel *header = mHeaders[std::size_t(index)];
    header->setText(value);
    header->setVisible(!value.isEmpty());
}

QString DetailWindow::textValue() const
{
    return mText->text();
}

void DetailWindow::setTextValue(const QString &text)
{
    mText->setText(text);
    mText->setVisible(!text.isEmpty());
}

bool DetailWindow::isRowShown(int row) const
{
    return row >= 0 && row < RowCount && !mRows[std::size_t(row)].label->text().isEmpty();
}

bool DetailWindow::isHintShown() const
{
    return mHint->isVisibleTo(this);
}

QSize DetailWindow::contentSize() const
{
    return mContent->sizeHint();
}

void DetailWindow::updateLayout()
{
    bool anyRow = false;
    for (int r = 0; r < RowCount; ++r) {
        const bool shown = isRowShown(r);
        const Row &row = mRows[std::size_t(r)];
        row.label->setVisible(shown);
        row.selection->setVisible(shown);
        row.total->setVisible(shown);
        anyRow = anyRow || shown;
    }
    mColumnHeader->setVisible(anyRow);
    mColumnHeaderTotal->setVisible(anyRow);
    bool anyHeader = false;
    for (QLabel *header : mHeaders) {
        header->setVisible(!header->text().isEmpty());
        anyHeader = anyHeader || !header->text().trimmed().isEmpty();
    }
    mText->setVisible(!mText->text().isEmpty());
    mHint->setVisible(anyRow && !anyHeader && mText->text().trimmed().isEmpty());

    // The window follows its content: docked it keeps exactly the content's
    // height and at least its width; floating it is resized to it.
    mContent->layout()->activate();
    const QSize wanted = mContent->sizeHint();
    const bool changed = wanted != mContent->minimumSize();
    mContent->setMinimumSize(wanted);
    mContent->setMaximumHeight(wanted.height());
    if (isFloating() && changed)
        adjustSize();
}

void DetailWindow::setUpForDocument(const Document &doc)
{
    clearAll();
    const DocumentProperties &p = doc.properties;
    if (p.pointsScale > 0) {
        const QString blank = QStringLiteral(" ");
        setHeaderValue(0, blank);
        const bool subBlockLine = !doc.text(p.indexLineTexts[2]).isEmpty();
        setHeaderValue(1, subBlockLine ? blank : QString());
        QSizePolicy policy = mHeaders[1]->sizePolicy();
        policy.setRetainSizeWhenHidden(subBlockLine);
        mHeaders[1]->setSizePolicy(policy);
        setHeaderValue(2, blank);
        for (int r = 0; r < RowCount; ++r)
            setIndexText(r, doc.text(p.indexLineTexts[std::size_t(r)]));
    }
    updateLayout();
}

void DetailWindow::showNoCell(const Document &doc, double overviewTotalIndex)
{
    for (int i = 0; i < HeaderCount; ++i)
        setHeaderValue(i, QString());
    setTextValue(QString());
    const DocumentProperties &p = doc.properties;
    if (p.pointsScale > 0) {
        const QString none = QStringLiteral("-");
        setIndexValue(0, false, none);
        for (int r = 1; r < 4; ++r) {
            setIndexValue(r, false, none);
            setIndexValue(r, true, none);
        }
        setIndexValue(4, false, formatIndex(overviewTotalIndex, p.indexDecimals, QLocale()));
    }
    updateLayout();
}

void DetailWindow::showCell(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                            const SheetHit &hit, const std::vector<qint32> &overviewColumns,
                            const std::vector<qint32> &selectionRows)
{
    const CellDetails d = cellDetails(doc, catalogue, flex, hit, overviewColumns, selectionRows);
    if (!d.onQuestion) {
        for (int i = 0; i < HeaderCount; ++i)
            setHeaderValue(i, QString());
        setTextValue(QString());
        for (int r = 0; r < 4; ++r) {
            setIndexValue(r, false, QString());
            setIndexValue(r, true, QString());
        }
        updateLayout();
        return;
    }
    const QLocale locale;
    auto format = [&](double value) { return formatIndex(value, doc.properties.indexDecimals, locale); };
    setHeaderValue(0, d.blockName);
    setHeaderValue(1, d.subBlockName);
    setHeaderValue(2, d.questionText);
    setTextValue(d.answerText);
    setIndexValue(0, false, format(d.respondentIndex));
    setIndexValue(1, false, format(d.questionIndex));
    setIndexValue(1, true, format(d.questionTotalIndex));
    setIndexValue(2, false, format(d.subBlockIndex));
    setIndexValue(2, true, format(d.subBlockTotalIndex));
    setIndexValue(3, false, format(d.blockIndex));
    setIndexValue(3, true, format(d.blockTotalIndex));
    updateLayout();
}

void DetailWindow::clearAll()
{
    for (int i = 0; i < HeaderCount; ++i)
        setHeaderValue(i, QString());
    setTextValue(QString());
    for (int r = 0; r < RowCount; ++r) {
        setIndexText(r, QString());
        setIndexValue(r, false, QString());
        setIndexValue(r, true, QString());
    }
    updateLayout();
}

} // namespace kel
