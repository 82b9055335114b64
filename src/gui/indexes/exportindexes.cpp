// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/indexes/exportindexes.h"
#include "texts/messages.h"

#include "engine/indexes/blockindex.h"
#include "gui/common/waitcursor.h"
#include "texts/language.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QThread>
#include <QVBoxLayout>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#endif

namespace kel {

namespace {
// A third of a normal thread's weight: the window's thread wins every wake-up.
[[maybe_unused]] constexpr int WorkerNice = 5;
// How often the progress bar looks at the worker: smooth to the eye.
constexpr int ProgressPollMs = 40;
} // namespace

// --- Setup ---

SetupExportIndexes::SetupExportIndexes(const Document &doc, IndexExportOptions &options, bool isSwedish,
                                       QWidget *parent)
    : QDialog(parent), mDoc(doc), mOptions(options)
{
    auto t = [isSwedish](const char *en, const char *sv) { return pickText(isSwedish, en, sv); };
    setObjectName(QStringLiteral("frmSetupExportIndexes"));
    setWindowTitle(indexExportText(IndexExportText::Caption, isSwedish));

    auto *subSel = new QGroupBox(t("Use following sub-selections", "Använd underurval"), this);
    subSel->setObjectName(QStringLiteral("fraSubSel"));
    mTotal = new QCheckBox(t("&Total", "&Totalt"), subSel);
    mTotal->setObjectName(QStringLiteral("chkSubSelTotal"));
    auto *categoriesLabel = new QLabel(t("&All options in these categories:", "Alla alternativ i kate&gori:"), subSel);
    categoriesLabel->setObjectName(QStringLiteral("lblSubSelCategoriesLabel"));
    mCategories = new QListWidget(subSel);
    mCategories->setObjectName(QStringLiteral("lstSubSelCategories"));
    mCategories->setSelectionMode(QAbstractItemView::MultiSelection);
    categoriesLabel->setBuddy(mCategories);
    mCounts = new QCheckBox(t("Show &number of answers", "Visa &antal svar"), subSel);
    mCounts->setObjectName(QStringLiteral("chkSubSelShowNumberOfAnswers"));
    auto *subLayout = new QVBoxLayout(subSel);
    subLayout->addWidget(mTotal);
    subLayout->addWidget(categoriesLabel);
    subLayout->addWidget(mCategories);
    subLayout->addWidget(mCounts);

    auto *indGrp = new QGroupBox(t("Show index for", "Visa index för"), this);
    indGrp->setObjectName(QStringLiteral("fraIndGrp"));
    auto *indLayout = new QVBoxLayout(indGrp);
    const char *const english[] = {"T&otal", "All &blocks", "All &sub-blocks", "All &questions",
                                   "All &user defined blocks"};
    const char *const swedish[] = {"T&otalt", "Alla &block", "Alla &underblock", "Alla &frågor",
                                   "Alla &egendefinerade block"};
    for (std::size_t i = 0; i < mIndexFor.size(); ++i) {
        mIndexFor[i] = new QCheckBox(t(english[i], swedish[i]), indGrp);
        mIndexFor[i]->setObjectName(QStringLiteral("chkIndGrpSelection%1").arg(i));
        indLayout->addWidget(mIndexFor[i]);
    }
    mFullText = new QCheckBox(t("Show &full question text", "&Visa fullständig frågetext"), indGrp);
    mFullText->setObjectName(QStringLiteral("chkIndGrpShowFullQuestionText"));
    indLayout->addWidget(mFullText);

    auto *ori = new QGroupBox(t("Orientation", "Orientering"), this);
    ori->setObjectName(QStringLiteral("fraOriSel"));
    mRows = new QRadioButton(t("Sub-selections in &rows", "Underurval i &rader"), ori);
    mRows->setObjectName(QStringLiteral("optOriSel0"));
    mColumns = new QRadioButton(t("Sub-selections in &columns", "Underurval i &kolumner"), ori);
    mColumns->setObjectName(QStringLiteral("optOriSel1"));
    auto *oriLayout = new QVBoxLayout(ori);
    oriLayout->addWidget(mRows);
    oriLayout->addWidget(mColumns);

    auto *buttons = new QDialogButtonBox(this);
    mOk = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    mOk->setObjectName(QStringLiteral("cmdOK"));
    QPushButton *cancel = buttons->addButton(t("Cancel", "Avbryt"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *right = new QVBoxLayout;
    right->addWidget(indGrp);
    right->addWidget(ori);
    right->addStretch();
    auto *columns = new QHBoxLayout;
    columns->addWidget(subSel);
    columns->addLayout(right);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(buttons);

    // The remembered choices.
    for (qint32 q : doc.categories) {
        auto *item = new QListWidgetItem(doc.questions[std::size_t(q)].heading, mCategories);
        item->setData(Qt::UserRole, q);
        item->setSelected(std::find(options.subSelCategories.begin(), options.subSelCategories.end(), q)
                          != options.subSelCategories.end());
    }
    mTotal->setChecked(options.subSelTotal);
    mCounts->setChecked(options.showNumberOfAnswers);
    for (std::size_t i = 0; i < mIndexFor.size(); ++i)
        mIndexFor[i]->setChecked(options.indexFor[i]);
    mIndexFor[IndexExportOptions::ForSubBlocks]->setEnabled(hasSubBlocks(doc));
    mFullText->setChecked(options.showFullQuestionText);
    (options.subSelectionsInColumns ? mColumns : mRows)->setChecked(true);

    connect(mTotal, &QCheckBox::clicked, this, &SetupExportIndexes::updateEnabled);
    connect(mCategories, &QListWidget::itemSelectionChanged, this, &SetupExportIndexes::updateEnabled);
    for (QCheckBox *box : mIndexFor)
        connect(box, &QCheckBox::toggled, this, &SetupExportIndexes::updateEnabled);
    connect(mOk, &QPushButton::clicked, this, &SetupExportIndexes::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    updateEnabled();
}

IndexExportOptions SetupExportIndexes::chosen() const
{
    IndexExportOptions o;
    o.subSelTotal = mTotal->isChecked();
    for (int row = 0; row < mCategories->count(); ++row)
        if (mCategories->item(row)->isSelected())
            o.subSelCategories.push_back(mCategories->item(row)->data(Qt::UserRole).toInt());
    o.showNumberOfAnswers = mCounts->isChecked();
    for (std::size_t i = 0; i < mIndexFor.size(); ++i)
        o.indexFor[i] = mIndexFor[i]->isChecked() && mIndexFor[i]->isEnabled();
    o.showFullQuestionText = mFullText->isChecked() && mFullText->isEnabled();
    o.subSelectionsInColumns = mColumns->isChecked();
    return o;
}

void SetupExportIndexes::updateEnabled()
{
    mFullText->setEnabled(mIndexFor[IndexExportOptions::ForQuestions]->isChecked());
    mOk->setEnabled(chosen().canExport());
}

void SetupExportIndexes::accept()
{
    if (!chosen().canExport())
        return;
    mOptions = chosen();
    if (mOnExport)
        mOnExport(mOptions);
    QDialog::accept();
}

// --- Progress ---

namespace {

// On a busy machine the window's thread must get a core before the worker
// whenever it wakes (to paint, to hear Cancel); the worker still gets its
// fair share against other programs. Linux keeps a nice value per thread;
// elsewhere Qt's priorities do the same.
void lowerWorkerPriority()
{
#ifdef Q_OS_LINUX
    setpriority(PRIO_PROCESS, 0, WorkerNice);
#else
    QThread::currentThread()->setPriority(QThread::LowPriority);
#endif
}

} // namespace

ExportIndexes::ExportIndexes(const Document &doc, const BlockCatalogue &catalogue, const QString &selectionText,
                             const RowList &currentRows, const IndexExportOptions &options, const QLocale &locale,
                             bool isSwedish, QWidget *parent)
    : QDialog(parent), mDoc(doc), mCatalogue(catalogue), mSelectionText(selectionText), mRows(currentRows),
      mOptions(options), mLocale(locale), mIsSwedish(isSwedish)
{
    setObjectName(QStringLiteral("frmExportIndexes"));
    setWindowTitle(indexExportText(IndexExportText::Caption, isSwedish));
    mActivity = new QLabel(indexExportText(IndexExportText::Preparing, isSwedish), this);
    mActivity->setObjectName(QStringLiteral("lblActivity"));
    mProgress = new QProgressBar(this);
    mProgress->setObjectName(QStringLiteral("prbProgress"));
    mProgress->setRange(0, 1);
    mProgress->setValue(0);
    mCancel = new QPushButton(pickText(isSwedish, "Cancel", "Avbryt"), this);
    mCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(mActivity);
    layout->addWidget(mProgress);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(mCancel);
    layout->addLayout(row);
    setMinimumWidth(360);

    mStart.setObjectName(QStringLiteral("tmrStart"));
    mStart.setSingleShot(true);
    mStart.setInterval(0);
    connect(&mStart, &QTimer::timeout, this, &ExportIndexes::start);
    mProgressPoll.setInterval(ProgressPollMs);
    connect(&mProgressPoll, &QTimer::timeout, this, [this] { mProgress->setValue(mItemsDone); });
    connect(mCancel, &QPushButton::clicked, this, &ExportIndexes::reject);
}

ExportIndexes::~ExportIndexes()
{
    if (mWorker) {
        mCancelled = true;
        mWorker->wait();
        delete mWorker;
    }
}

void ExportIndexes::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    // The work starts once the window is on screen.
    if (!mWorker && !mCancelled)
        mStart.start();
}

void ExportIndexes::requestCancel()
{
    mCancelled = true;
}

void ExportIndexes::reject()
{
    if (!mWorker) {
        // Not started yet, or already finished: just close.
        mStart.stop();
        mCancelled = true;
        QDialog::reject();
        return;
    }
    mActivity->setText(indexExportText(IndexExportText::Canceling, mIsSwedish));
    mCancel->setEnabled(false);
    mCancelled = true; // the worker stops at the next item; finish() closes
}

void ExportIndexes::start()
{
    if (mCancelled)
        return;
    mActivity->setText(indexExportText(IndexExportText::Calculating, mIsSwedish));
    mItems = buildIndexItems(mDoc, mCatalogue, mOptions);
    mProgress->setRange(0, std::max<int>(1, int(mItems.size())));
    mProgress->setValue(0);
    mWorker = QThread::create([this] {
        lowerWorkerPriority();
        mSubSelections = buildSubSelections(mDoc, mOptions, mRows);
        mValues = calculateIndexValues(mDoc, mCatalogue, mSubSelections, mItems, [this](qint32 done) {
            if (mObserver)
                mObserver(done);
            mItemsDone = done;
            return !mCancelled.load();
        });
    });
    connect(mWorker, &QThread::finished, this, &ExportIndexes::finish, Qt::QueuedConnection);
    // The bar follows the worker at the window's pace: an event per item
    // would keep the event loop busy with them for as long as the export runs.
    mProgressPoll.start();
    mWorker->start();
}

void ExportIndexes::finish()
{
    mProgressPoll.stop();
    mProgress->setValue(mItemsDone);
    mWorker->wait();
    delete mWorker;
    mWorker = nullptr;
    const bool complete = mValues.size() == mSubSelections.size() * mItems.size();
    if (mCancelled || !complete) {
        QDialog::reject(); // nothing reaches the clipboard
        return;
    }
    WaitCursor wait;
    mCancel->setEnabled(false);
    mActivity->setText(indexExportText(IndexExportText::Copying, mIsSwedish));
    const QString text = formatIndexTable(mDoc, mSelectionText, mOptions, mSubSelections, mItems, mValues, mLocale);
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
    mDone = true;
    QDialog::accept();
}

} // namespace kel
