// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/indexgraphdialog.h"

#include "gui/common/dialogbuttons.h"

#include "texts/language.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kel {

namespace {

QCheckBox *checkBox(QWidget *parent, const char *name, const QString &caption)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(QString::fromUtf8(name));
    return box;
}

} // namespace

IndexGraphDialog::IndexGraphDialog(const Document &doc, const BlockCatalogue &catalogue, qint32 block,
                                   const SelectionSteps &steps, const LastSettings &settings, bool isSwedish,
                                   QWidget *parent)
    : QDialog(parent), mDoc(doc), mCatalogue(catalogue), mBlock(block)
{
    const bool blockDialog = block >= 0;
    setObjectName(QString::fromUtf8(blockDialog ? "frmBlockIndexGraphLaunch" : "frmTotalIndexGraphLaunch"));
    setWindowTitle(blockDialog ? pickText(isSwedish, "Block Index Graph", "Blockindexgraf")
                               : pickText(isSwedish, "Total Index Graph", "Totalindexgraf"));
    auto *layout = new QVBoxLayout(this);

    if (blockDialog) {
        const Block *named = catalogue.blockAt(block);
        lblBlockName = new QLabel(named ? named->name : QString(), this);
        lblBlockName->setObjectName(QStringLiteral("lblBlockName"));
        lblBlockName->setTextFormat(Qt::PlainText);
        layout->addWidget(lblBlockName);
        chkShowBlockIndex =
            checkBox(this, "chkShowBlockIndex", pickText(isSwedish, "Show &block index", "Visa &blockindex"));
        chkShowBlockIndex->setChecked(true);
        chkShowQuestionIndexes =
            checkBox(this, "chkShowQuestionIndexes",
                     pickText(isSwedish, "Show block's &question indexes", "Visa blockets fråge&index"));
        layout->addWidget(chkShowBlockIndex);
        layout->addWidget(chkShowQuestionIndexes);
        connect(chkShowBlockIndex, &QCheckBox::toggled, this, &IndexGraphDialog::updateOk);
    } else {
        chkShowTotalIndex =
            checkBox(this, "chkShowTotalIndex", pickText(isSwedish, "Show &total index", "Visa &totalindex"));
        chkShowTotalIndex->setChecked(true);
        chkShowBlockIndexes = checkBox(this, "chkShowBlockIndexes",
                                       pickText(isSwedish, "Show all &block indexes", "Visa alla &blockindex"));
        chkShowQuestionIndexes = checkBox(this, "chkShowQuestionIndexes",
                                          pickText(isSwedish, "Show all &question indexes", "Visa alla fråge&index"));
        layout->addWidget(chkShowTotalIndex);
        layout->addWidget(chkShowBlockIndexes);
        layout->addWidget(chkShowQuestionIndexes);
        connect(chkShowTotalIndex, &QCheckBox::toggled, this, &IndexGraphDialog::updateOk);
        // Block and question indexes exclude each other.
        connect(chkShowBlockIndexes, &QCheckBox::toggled, this, [this](bool on) {
            if (on)
                chkShowQuestionIndexes->setChecked(false);
            updateOk();
        });
        connect(chkShowQuestionIndexes, &QCheckBox::toggled, this, [this](bool on) {
            if (on)
                chkShowBlockIndexes->setChecked(false);
        });
    }
    connect(chkShowQuestionIndexes, &QCheckBox::toggled, this, &IndexGraphDialog::updateOk);

    auto *splitRow = new QHBoxLayout;
    lblSplitBy = new QLabel(pickText(isSwedish, "&Split by:", "&Fördelat på:"), this);
    lblSplitBy->setObjectName(QStringLiteral("lblSplitBy"));
    lstSplitBy = new QComboBox(this);
    lstSplitBy->setObjectName(QStringLiteral("lstSplitBy"));
    lblSplitBy->setBuddy(lstSplitBy);
    lstSplitBy->addItem(pickText(isSwedish, "(Nothing)", "(Inget)"), -1);
    for (std::size_t c = 0; c < doc.categories.size(); ++c) {
        const bool refused = c < steps.splitNotAllowed.size() && steps.splitNotAllowed[c];
        if (!refused)
            lstSplitBy->addItem(doc.questions[std::size_t(doc.categories[c])].heading, doc.categories[c]);
    }
    lstSplitBy->setCurrentIndex(0);
    splitRow->addWidget(lblSplitBy);
    splitRow->addWidget(lstSplitBy, 1);
    layout->addLayout(splitRow);
    chkIncludeEmptySplits =
        checkBox(this, "chkIncludeEmptySplits", pickText(isSwedish, "Include &empty splits", "Ta &med tomma delar"));
    layout->addWidget(chkIncludeEmptySplits);

    fraIndexLines = new QGroupBox(blockDialog ? pickText(isSwedish, "Index &lines (max 2)", "Index&linjer (max 2)")
                                              : pickText(isSwedish, "Index &lines", "Index&linjer"),
                                  this);
    fraIndexLines->setObjectName(QStringLiteral("fraIndexLines"));
    auto *lines = new QVBoxLayout(fraIndexLines);
    const char *lineEnglish[] = {"T&otal index for total selection", "Total index for &current selection",
                                 "Bloc&k index for total selection", "Block index for c&urrent selection"};
    const char *lineSwedish[] = {"T&otalindex för totalurvalet", "Totalindex för a&ktuella urvalet",
                                 "Blockindex för totalu&rvalet", "Blockindex för aktuella &urvalet"};
    const qint32 storedMask = blockDialog ? settings.blockIndexGraphIndexLines : settings.totalIndexGraphIndexLines;
    for (qint32 i = 0; i < lineBoxes(); ++i) {
        QCheckBox *box = checkBox(fraIndexLines, "chkIndexLines", pickText(isSwedish, lineEnglish[i], lineSwedish[i]));
        box->setProperty("index", i);
        box->setChecked((storedMask >> i) & 1);
        // Lines of the current selection only differ from the total's when
        // the selection does.
        if (i % 2 == 1)
            box->setEnabled(steps.differentFromUsedTotal);
        lines->addWidget(box);
        chkIndexLines[std::size_t(i)] = box;
    }
    chkIndexLinesShowExplanation =
        checkBox(fraIndexLines, "chkIndexLinesShowExplanation",
                 pickText(isSwedish, "Show e&xplanation at lines", "Visa förklaring vid lin&jerna"));
    lines->addWidget(chkIndexLinesShowExplanation);
    layout->addWidget(fraIndexLines);

    chkHorizontalBars =
        checkBox(this, "chkHorizontalBars", pickText(isSwedish, "&Horizontal bars", "&Horisontella staplar"));
    chkVerticalLabels =
        checkBox(this, "chkVerticalLabels", pickText(isSwedish, "&Vertical labels", "&Vertikala etiketter"));
    chkDataLabels = checkBox(this, "chkDataLabels", pickText(isSwedish, "&Data labels", "&Dataetiketter"));
    layout->addWidget(chkHorizontalBars);
    layout->addWidget(chkVerticalLabels);
    layout->addWidget(chkDataLabels);
    if (blockDialog) {
        chkIndexLinesShowExplanation->setChecked(settings.blockIndexGraphIndexLinesShowExplanation);
        chkHorizontalBars->setChecked(settings.blockIndexGraphHasHorizontalBars);
        chkVerticalLabels->setChecked(settings.blockIndexGraphHasVerticalLabels);
        chkDataLabels->setChecked(settings.blockIndexGraphHasDataLabels);
    } else {
        chkIndexLinesShowExplanation->setChecked(settings.totalIndexGraphIndexLinesShowExplanation);
        chkHorizontalBars->setChecked(settings.totalIndexGraphHasHorizontalBars);
        chkVerticalLabels->setChecked(settings.totalIndexGraphHasVerticalLabels);
        chkDataLabels->setChecked(settings.totalIndexGraphHasDataLabels);
    }

    const OkCancelRow buttons = makeOkCancelRow(*this, isSwedish);
    cmdOK = buttons.ok;
    cmdCancel = buttons.cancel;
    layout->addLayout(buttons.layout);
    updateOk();
}

void IndexGraphDialog::updateOk()
{
    const bool main = mBlock >= 0 ? chkShowBlockIndex->isChecked() : chkShowTotalIndex->isChecked();
    const bool blocks = mBlock < 0 && chkShowBlockIndexes->isChecked();
    cmdOK->setEnabled(main || blocks || chkShowQuestionIndexes->isChecked());
}

IndexGraphRequest IndexGraphDialog::request() const
{
    IndexGraphRequest r;
    r.block = mBlock;
    const bool questions = chkShowQuestionIndexes->isChecked();
    r.splitQuestion = lstSplitBy->currentData().toInt();
    r.includeEmptySplits = r.splitQuestion >= 0 && chkIncludeEmptySplits->isChecked();
    if (mBlock >= 0) {
        r.includeMainIndex = chkShowBlockIndex->isChecked();
        r.includeSubIndexes = questions;
        r.title = blockIndexGraphTitle(mDoc, mCatalogue, mBlock, r.includeMainIndex, questions, r.splitQuestion);
    } else {
        const bool blocks = chkShowBlockIndexes->isChecked();
        r.includeMainIndex = chkShowTotalIndex->isChecked();
        r.includeSubIndexes = blocks || questions;
        r.useQuestionsInsteadOfBlocks = questions;
        r.title = totalIndexGraphTitle(mDoc, r.includeMainIndex, blocks, questions, r.splitQuestion);
    }
    r.horizontalBars = chkHorizontalBars->isChecked();
    r.verticalLabels = chkVerticalLabels->isChecked();
    r.dataLabels = chkDataLabels->isChecked();
    r.indexLinesShowExplanation = chkIndexLinesShowExplanation->isChecked();
    r.indexLines = 0;
    for (qint32 i = 0; i < lineBoxes(); ++i)
        if (chkIndexLines[std::size_t(i)]->isChecked() && chkIndexLines[std::size_t(i)]->isEnabled())
            r.indexLines |= 1 << i;
    return r;
}

void IndexGraphDialog::storeSettings(LastSettings &settings) const
{
    qint32 mask = 0;
    for (qint32 i = 0; i < lineBoxes(); ++i)
        if (chkIndexLines[std::size_t(i)]->isChecked())
            mask |= 1 << i;
    if (mBlock >= 0) {
        settings.blockIndexGraphIndexLines = mask;
        settings.blockIndexGraphIndexLinesShowExplanation = chkIndexLinesShowExplanation->isChecked();
        settings.blockIndexGraphHasHorizontalBars = chkHorizontalBars->isChecked();
        settings.blockIndexGraphHasVerticalLabels = chkVerticalLabels->isChecked();
        settings.blockIndexGraphHasDataLabels = chkDataLabels->isChecked();
    } else {
        settings.totalIndexGraphIndexLines = mask;
        settings.totalIndexGraphIndexLinesShowExplanation = chkIndexLinesShowExplanation->isChecked();
        settings.totalIndexGraphHasHorizontalBars = chkHorizontalBars->isChecked();
        settings.totalIndexGraphHasVerticalLabels = chkVerticalLabels->isChecked();
        settings.totalIndexGraphHasDataLabels = chkDataLabels->isChecked();
    }
}

} // namespace kel
