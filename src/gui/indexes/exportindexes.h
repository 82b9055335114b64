// SPDX-License-Identifier: GPL-3.0-or-later
// Copy Indexes: the setup dialog that chooses sub-selections and index items,
// and the progress window that computes the table and puts it on the
// clipboard. The values are computed on a worker thread, item by item, so
// the window keeps painting and Cancel is heard between two items; the
// progress window is modal, so the document cannot change meanwhile. The
// worker runs at a lower priority than the window's thread, and the progress
// bar reads its count on a timer.
#pragma once

#include "engine/indexes/indexexport.h"

#include <QDialog>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

class QCheckBox;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QThread;

namespace kel {

class SetupExportIndexes : public QDialog
{
    Q_OBJECT
public:
    /// `options` are shown, and replaced by the dialog's choices on OK.
    SetupExportIndexes(const Document &doc, IndexExportOptions &options, bool isSwedish, QWidget *parent = nullptr);

    /// Runs after OK stored the options, before the dialog closes.
    void setOnExport(std::function<void(const IndexExportOptions &)> run) { mOnExport = std::move(run); }
    /// The choices the controls hold now.
    IndexExportOptions chosen() const;
    void accept() override;

    QCheckBox *subSelTotal() const { return mTotal; }
    QListWidget *categories() const { return mCategories; }
    QCheckBox *indexFor(int i) const { return mIndexFor[std::size_t(i)]; }
    QCheckBox *fullText() const { return mFullText; }
    QPushButton *okButton() const { return mOk; }

private:
    void updateEnabled();

    const Document &mDoc;
    IndexExportOptions &mOptions;
    std::function<void(const IndexExportOptions &)> mOnExport;
    QCheckBox *mTotal;
    QListWidget *mCategories;
    QCheckBox *mCounts;
    std::array<QCheckBox *, 5> mIndexFor{};
    QCheckBox *mFullText;
    QRadioButton *mRows;
    QRadioButton *mColumns;
    QPushButton *mOk;
};

class ExportIndexes : public QDialog
{
    Q_OBJECT
public:
    ExportIndexes(const Document &doc, const BlockCatalogue &catalogue, const QString &selectionText,
                  const RowList &currentRows, const IndexExportOptions &options, const QLocale &locale, bool isSwedish,
                  QWidget *parent = nullptr);
    ~ExportIndexes() override;

    /// Set when the table went to the clipboard.
    bool copied() const { return mDone; }
    /// Called on the worker thread after each item, before Cancel is looked
    /// at; tests use it to press Cancel at a known place.
    void setItemObserver(std::function<void(qint32 itemsDone)> observer) { mObserver = std::move(observer); }
    /// Cancel: safe from any thread; the export stops at the next item.
    void requestCancel();
    void reject() override;

    QLabel *activity() const { return mActivity; }
    QProgressBar *progress() const { return mProgress; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void start();
    void finish();

    const Document &mDoc;
    const BlockCatalogue &mCatalogue;
    QString mSelectionText;
    const RowList &mRows;
    IndexExportOptions mOptions;
    QLocale mLocale;
    bool mIsSwedish;
    QLabel *mActivity;
    QProgressBar *mProgress;
    QPushButton *mCancel;
    QTimer mStart; // tmrStart
    QTimer mProgressPoll;
    std::atomic<qint32> mItemsDone{0};
    std::function<void(qint32)> mObserver;
    std::atomic<bool> mCancelled{false};
    QThread *mWorker = nullptr;
    std::vector<SubSelection> mSubSelections;
    std::vector<IndexItem> mItems;
    std::vector<double> mValues;
    bool mDone = false;
};

} // namespace kel
