// SPDX-License-Identifier: GPL-3.0-or-later
// The launch dialogs of the total index graph (frmTotalIndexGraphLaunch) and
// of a block's index graph (frmBlockIndexGraphLaunch): what to show, the
// split, index lines and look, remembered in the last settings.
#pragma once

#include "engine/graphs/indexgraph.h"
#include "engine/settings/settingsstore.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;

namespace kel {

class IndexGraphDialog : public QDialog
{
    Q_OBJECT
public:
    /// `block` -1: the total index graph dialog. `steps` tells which splits
    /// the privacy rules allow and whether the selection differs from the
    /// used total. The look and index-line boxes start from `settings`.
    IndexGraphDialog(const Document &doc, const BlockCatalogue &catalogue, qint32 block, const SelectionSteps &steps,
                     const LastSettings &settings, bool isSwedish, QWidget *parent = nullptr);

    /// After OK: the graph to generate, titled in the document's language.
    IndexGraphRequest request() const;
    /// After OK: stores the index-line mask (every checked box, enabled or
    /// not), the explanation and the look in `settings`.
    void storeSettings(LastSettings &settings) const;

    bool isBlockDialog() const { return mBlock >= 0; }

    // The controls, by the names the program knows them by.
    QLabel *lblBlockName = nullptr;           ///< block dialog only
    QCheckBox *chkShowTotalIndex = nullptr;   ///< total dialog only
    QCheckBox *chkShowBlockIndexes = nullptr; ///< total dialog only
    QCheckBox *chkShowBlockIndex = nullptr;   ///< block dialog only
    QCheckBox *chkShowQuestionIndexes = nullptr;
    QLabel *lblSplitBy = nullptr;
    QComboBox *lstSplitBy = nullptr;
    QCheckBox *chkIncludeEmptySplits = nullptr;
    QGroupBox *fraIndexLines = nullptr;
    std::array<QCheckBox *, 4> chkIndexLines{}; ///< two in the total dialog
    QCheckBox *chkIndexLinesShowExplanation = nullptr;
    QCheckBox *chkHorizontalBars = nullptr;
    QCheckBox *chkVerticalLabels = nullptr;
    QCheckBox *chkDataLabels = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    void updateOk();
    qint32 lineBoxes() const { return mBlock >= 0 ? 4 : 2; }

    const Document &mDoc;
    const BlockCatalogue &mCatalogue;
    qint32 mBlock;
};

} // namespace kel
