// SPDX-License-Identifier: GPL-3.0-or-later
// File > Create Report...: the selections and sections of a report, a
// preview of the first unit's pages, recipes saved and loaded, and the
// report written unit by unit with a progress bar and Cancel.
#pragma once

#include "engine/report/reportbuilder.h"
#include "render/report/reportwriter.h"
#include "texts/reporttexts.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QRadioButton;

namespace kel {

/// What the report starts from: the document as shown, its current
/// selection and flex total, the interface language and number locale.
struct ReportDialogContext {
    const Document *document = nullptr;
    ReportBase base;
    bool isSwedish = false;
    QLocale locale = QLocale::c();
};

/// The navigator's applied ticks as a selection model, for a report's base.
SelectionModel selectionModelFor(const Document &doc, const SelectionMatrix &applied);

class ReportDialog : public QDialog
{
    Q_OBJECT
public:
    ReportDialog(ReportDialogContext context, QWidget *parent = nullptr);

    /// The recipe the controls describe, and the controls set from one.
    ReportRecipe recipe() const;
    void setRecipe(const ReportRecipe &recipe);

    /// The report of the recipe, built unit by unit; `progress` gets the
    /// units built so far and may cancel (nothing then). `maxUnits` limits
    /// the units, for the preview.
    std::optional<Report> buildReport(const ReportRecipe &recipe, const ReportProgress &progress, std::size_t maxUnits,
                                      QString &error) const;

    /// Writes the report of the controls to `path` with a progress dialog;
    /// the message said afterwards, or an empty text when cancelled.
    QString writeTo(const QString &path);

private:
    void preview();
    void loadRecipe();
    void saveRecipe();
    void write();
    void updateControls();

    ReportDialogContext mContext;
    ReportDialogTexts mTexts;
    QRadioButton *mCurrent = nullptr;
    QRadioButton *mByCategory = nullptr;
    QRadioButton *mList = nullptr;
    QComboBox *mCategory = nullptr;
    QCheckBox *mWithinCurrent = nullptr;
    QPlainTextEdit *mSelections = nullptr;
    std::vector<std::pair<ReportSection, QCheckBox *>> mSections;
    QListWidget *mBlocks = nullptr;
    QComboBox *mSplit = nullptr;
    QLineEdit *mDate = nullptr;
};

} // namespace kel
