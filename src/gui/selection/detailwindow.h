// SPDX-License-Identifier: GPL-3.0-or-later
// frmDetailInfo: the index values that belong to the overview cell under the
// pointer, for the current selection and the flex total side by side. A
// passive display: the loader, the flex-total operations and the overview
// write its cells; the window only lays itself out.
#pragma once

#include "gui/common/tooldock.h"

#include <array>
#include <vector>

class QGridLayout;
class QLabel;

namespace kel {

struct BlockCatalogue;
struct Document;
class FlexTotal;
struct SheetHit;

class DetailWindow : public ToolDock
{
    Q_OBJECT
public:
    static constexpr int RowCount = 5;
    static constexpr int HeaderCount = 3; ///< block, sub-block, question

    explicit DetailWindow(bool isSwedish, QWidget *parent = nullptr);

    /// The label of index row `row` (0..4); a row is shown exactly when its
    /// label is not empty. Out-of-range rows read empty and ignore writes.
    QString indexText(int row) const;
    void setIndexText(int row, const QString &text);
    /// `total` false: the selection column; true: the total column.
    QString indexValue(int row, bool total) const;
    void setIndexValue(int row, bool total, const QString &value);
    QString headerValue(int index) const;
    void setHeaderValue(int index, const QString &value);
    QString textValue() const;
    void setTextValue(const QString &text);

    /// Shows the rows whose label is set and sizes the window to its content.
    void updateLayout();

    /// Set-up for a freshly opened document: row labels from its index line
    /// texts, blank headers, values cleared. A document without indexes gets
    /// no rows at all.
    void setUpForDocument(const Document &doc);
    /// A new overview shows no cell yet: headers and text emptied and, with
    /// indexes, "-" in rows 0-3 (row 0 has no total) and the overview's
    /// total index in row 4.
    void showNoCell(const Document &doc, double overviewTotalIndex);
    /// The overview cell under the pointer (a document with indexes): what
    /// cellDetails() finds for it, formatted. A header line has no answer;
    /// outside the sheet the cell values are emptied.
    void showCell(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex, const SheetHit &hit,
                  const std::vector<qint32> &overviewColumns, const std::vector<qint32> &selectionRows);
    /// Closing a document: headers, text, row labels and values emptied.
    void clearAll();

    bool isRowShown(int row) const;
    /// Whether the lines kept for a cell's headers are blank and say how to
    /// fill them.
    bool isHintShown() const;
    /// The size the content asks for, in pixels.
    QSize contentSize() const;

private:
    struct Row {
        QLabel *label = nullptr;
        QLabel *selection = nullptr;
        QLabel *total = nullptr;
    };

    QWidget *mContent;
    QGridLayout *mGrid;
    std::array<QLabel *, HeaderCount> mHeaders{};
    QLabel *mText;
    QLabel *mHint;
    QLabel *mColumnHeader;
    QLabel *mColumnHeaderTotal;
    std::array<Row, RowCount> mRows;
};

} // namespace kel
