// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/report/reportdialog.h"

#include "gui/graphs/chartpicture.h"
#include "render/report/reportwriter.h"
#include "texts/language.h"
#include "texts/selectiontexts.h"

#include <QCheckBox>

#include <algorithm>
#include <QComboBox>
#include <QDate>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QSaveFile>
#include <QScrollArea>
#include <QCoreApplication>
#include <QFileInfo>
#include <QVBoxLayout>

namespace kel {

namespace {

Picture reportChartPicture(const ChartDescription &chart)
{
    return chartPicture(chart, DefaultChartPictureSize);
}

} // namespace

SelectionModel selectionModelFor(const Document &doc, const SelectionMatrix &applied)
{
    SelectionModel model;
    model.setUpDimensions(doc);
    for (qint32 c = 0; c < qint32(doc.categories.size()); ++c) {
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(c)])];
        for (qint32 o = firstVisibleOption(doc); o < q.alternativeCount; ++o)
            model.setOptionChecked(c, o, applied.at(c, o));
    }
    return model;
}

ReportDialog::ReportDialog(ReportDialogContext context, QWidget *parent)
    : QDialog(parent), mContext(std::move(context)), mTexts(reportDialogTexts(mContext.isSwedish))
{
    setObjectName(QStringLiteral("frmCreateReport"));
    setWindowTitle(mTexts.title);
    const Document &doc = *mContext.document;
    const DocumentProperties &p = doc.properties;

    auto *units = new QGroupBox(mTexts.unitsGroup, this);
    auto *unitsLayout = new QGridLayout(units);
    mCurrent = new QRadioButton(mTexts.current, units);
    mByCategory = new QRadioButton(mTexts.byCategory, units);
    mList = new QRadioButton(mTexts.list, units);
    mCategory = new QComboBox(units);
    mCategory->setObjectName(QStringLiteral("cboReportCategory"));
    for (qint32 c : doc.categories)
        mCategory->addItem(doc.questions[std::size_t(c)].heading);
    mWithinCurrent = new QCheckBox(mTexts.withinCurrent, units);
    mSelections = new QPlainTextEdit(units);
    mSelections->setPlaceholderText(mTexts.listHint);
    mSelections->setToolTip(mTexts.listHint);
    mSelections->setMaximumHeight(70);
    unitsLayout->addWidget(mCurrent, 0, 0, 1, 2);
    unitsLayout->addWidget(mByCategory, 1, 0);
    unitsLayout->addWidget(mCategory, 1, 1);
    unitsLayout->addWidget(mWithinCurrent, 2, 1);
    unitsLayout->addWidget(mList, 3, 0, 1, 2);
    unitsLayout->addWidget(mSelections, 4, 0, 1, 2);
    (doc.categories.empty() ? mCurrent : mByCategory)->setChecked(true);
    mByCategory->setEnabled(!doc.categories.empty());

    auto *sections = new QGroupBox(mTexts.sectionsGroup, this);
    auto *sectionsLayout = new QVBoxLayout(sections);
    for (const ReportSectionName &s : ReportSectionNames) {
        auto *box = new QCheckBox(reportSectionName(s.section, mContext.isSwedish), sections);
        box->setObjectName(QStringLiteral("chkReport_%1").arg(QLatin1String(s.key)));
        // A section the document's permissions forbid cannot be chosen; the
        // engine leaves it out anyway, this only says so in advance.
        box->setEnabled(reportSectionAllowed(p, s.section));
        sectionsLayout->addWidget(box);
        mSections.emplace_back(s.section, box);
    }

    mBlocks = new QListWidget(this);
    mBlocks->setObjectName(QStringLiteral("lstReportBlocks"));
    for (const Block &b : mContext.base.blocks.blocks) {
        auto *item = new QListWidgetItem(b.name, mBlocks);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
    mSplit = new QComboBox(this);
    mSplit->setObjectName(QStringLiteral("cboReportSplit"));
    mSplit->addItem(mTexts.wholeGraphs, -1);
    for (qint32 c : doc.categories)
        mSplit->addItem(doc.questions[std::size_t(c)].heading, c);
    mDate = new QLineEdit(QDate::currentDate().toString(Qt::ISODate), this);
    mDate->setObjectName(QStringLiteral("txtReportDate"));

    auto *form = new QFormLayout;
    auto *blocksLabel = new QLabel(mTexts.blocks, this);
    blocksLabel->setBuddy(mBlocks);
    form->addRow(blocksLabel, mBlocks);
    auto *splitLabel = new QLabel(mTexts.split, this);
    splitLabel->setBuddy(mSplit);
    form->addRow(splitLabel, mSplit);
    auto *dateLabel = new QLabel(mTexts.date, this);
    dateLabel->setBuddy(mDate);
    form->addRow(dateLabel, mDate);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *previewButton = buttons->addButton(mTexts.preview, QDialogButtonBox::ActionRole);
    QPushButton *loadButton = buttons->addButton(mTexts.loadRecipe, QDialogButtonBox::ActionRole);
    QPushButton *saveButton = buttons->addButton(mTexts.saveRecipe, QDialogButtonBox::ActionRole);
    QPushButton *writeButton = buttons->addButton(mTexts.write, QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Close);
    previewButton->setObjectName(QStringLiteral("cmdReportPreview"));
    loadButton->setObjectName(QStringLiteral("cmdReportLoad"));
    saveButton->setObjectName(QStringLiteral("cmdReportSave"));
    writeButton->setObjectName(QStringLiteral("cmdReportWrite"));
    writeButton->setDefault(true);
    connect(previewButton, &QPushButton::clicked, this, &ReportDialog::preview);
    connect(loadButton, &QPushButton::clicked, this, &ReportDialog::loadRecipe);
    connect(saveButton, &QPushButton::clicked, this, &ReportDialog::saveRecipe);
    connect(writeButton, &QPushButton::clicked, this, &ReportDialog::write);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *columns = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    left->addWidget(units);
    left->addLayout(form);
    columns->addLayout(left, 1);
    columns->addWidget(sections);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(buttons);

    for (QRadioButton *r : {mCurrent, mByCategory, mList})
        connect(r, &QRadioButton::toggled, this, &ReportDialog::updateControls);
    for (const auto &[section, box] : mSections)
        connect(box, &QCheckBox::toggled, this, &ReportDialog::updateControls);

    // A first report that is worth reading: title, indexes and block graphs.
    ReportRecipe start;
    start.units = mByCategory->isChecked() ? ReportUnits::ByCategory : ReportUnits::Current;
    start.category = 0;
    for (ReportSection s : {ReportSection::TitlePage, ReportSection::IndexTable, ReportSection::BlockFractions})
        start.add(s);
    setRecipe(start);
}

void ReportDialog::updateControls()
{
    mCategory->setEnabled(mByCategory->isChecked());
    mWithinCurrent->setEnabled(mByCategory->isChecked());
    mSelections->setEnabled(mList->isChecked());
    bool any = false;
    for (const auto &[section, box] : mSections)
        any = any || (box->isChecked() && box->isEnabled());
    for (QPushButton *b : findChildren<QPushButton *>())
        if (b->objectName() == QLatin1String("cmdReportWrite") || b->objectName() == QLatin1String("cmdReportPreview"))
            b->setEnabled(any);
}

ReportRecipe ReportDialog::recipe() const
{
    ReportRecipe r;
    r.units = mByCategory->isChecked() ? ReportUnits::ByCategory
        : mList->isChecked()           ? ReportUnits::List
                                       : ReportUnits::Current;
    r.category = mCategory->currentIndex();
    r.withinCurrent = mWithinCurrent->isChecked();
    for (const QString &line : mSelections->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        if (!line.trimmed().isEmpty())
            r.selections.push_back(line.trimmed());
    for (const auto &[section, box] : mSections)
        if (box->isChecked() && box->isEnabled())
            r.add(section);
    bool every = true;
    for (int i = 0; i < mBlocks->count(); ++i) {
        if (mBlocks->item(i)->checkState() == Qt::Checked)
            r.blocks.push_back(i);
        else
            every = false;
    }
    if (every)
        r.blocks.clear();
    r.split = mSplit->currentData().toInt();
    r.date = mDate->text().trimmed();
    return r;
}

void ReportDialog::setRecipe(const ReportRecipe &r)
{
    (r.units == ReportUnits::ByCategory && mByCategory->isEnabled() ? mByCategory
         : r.units == ReportUnits::List                             ? mList
                                                                    : mCurrent)
        ->setChecked(true);
    if (r.category >= 0 && r.category < mCategory->count())
        mCategory->setCurrentIndex(r.category);
    mWithinCurrent->setChecked(r.withinCurrent);
    QStringList lines;
    for (const QString &s : r.selections)
        lines << s;
    mSelections->setPlainText(lines.join(QLatin1Char('\n')));
    for (const auto &[section, box] : mSections)
        box->setChecked(r.has(section));
    for (int i = 0; i < mBlocks->count(); ++i) {
        const bool chosen = r.blocks.empty() || std::find(r.blocks.begin(), r.blocks.end(), i) != r.blocks.end();
        mBlocks->item(i)->setCheckState(chosen ? Qt::Checked : Qt::Unchecked);
    }
    const int split = mSplit->findData(r.split);
    mSplit->setCurrentIndex(split < 0 ? 0 : split);
    if (!r.date.isEmpty())
        mDate->setText(r.date);
    updateControls();
}

std::optional<Report> ReportDialog::buildReport(const ReportRecipe &recipe, const ReportProgress &progress,
                                                std::size_t maxUnits, QString &error) const
{
    const Document &doc = *mContext.document;
    if (reportEntirelyForbidden(doc.properties, recipe)) {
        error = reportForbiddenMessage(mContext.isSwedish);
        return std::nullopt;
    }
    ReportPlanError planError;
    const std::optional<std::vector<ReportUnitPlan>> plans = planReportUnits(doc, mContext.base, recipe, planError);
    if (!plans) {
        error = reportPlanErrorMessage(doc, planError, mContext.isSwedish);
        return std::nullopt;
    }
    Report report;
    report.title = reportTitle(doc);
    report.words = reportWords(doc, mContext.isSwedish);
    ReportOptions options;
    options.locale = mContext.locale;
    options.date = QDate::currentDate().toString(Qt::ISODate);
    for (std::size_t u = 0; u < plans->size() && u < maxUnits; ++u) {
        report.units.push_back(buildReportUnit(doc, mContext.base, recipe, (*plans)[u], report.words, options));
        if (progress && !progress(int(u + 1)))
            return std::nullopt;
    }
    return report;
}

void ReportDialog::preview()
{
    QString error;
    const std::optional<Report> report = buildReport(recipe(), {}, 1, error);
    if (!report) {
        QMessageBox::warning(this, mTexts.title, error);
        return;
    }
    const std::vector<QImage> pages = reportPreviewPages(*report, reportChartPicture, 20);
    QDialog view(this);
    view.setObjectName(QStringLiteral("frmReportPreview"));
    view.setWindowTitle(mTexts.title);
    auto *scroll = new QScrollArea(&view);
    auto *strip = new QWidget;
    auto *stripLayout = new QVBoxLayout(strip);
    for (const QImage &page : pages) {
        auto *label = new QLabel(strip);
        label->setPixmap(QPixmap::fromImage(page.scaledToWidth(560, Qt::SmoothTransformation)));
        label->setFrameShape(QFrame::Box);
        stripLayout->addWidget(label);
    }
    scroll->setWidget(strip);
    auto *close = new QDialogButtonBox(QDialogButtonBox::Close, &view);
    connect(close, &QDialogButtonBox::rejected, &view, &QDialog::reject);
    auto *layout = new QVBoxLayout(&view);
    layout->addWidget(scroll);
    layout->addWidget(close);
    view.resize(620, 760);
    view.exec();
}

void ReportDialog::loadRecipe()
{
    const QString path = QFileDialog::getOpenFileName(this, mTexts.loadRecipe, QString(), mTexts.recipeFilter);
    if (path.isEmpty())
        return;
    QFile file(path);
    QString error;
    std::optional<ReportRecipe> read;
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
    } else {
        RecipeError recipeError;
        read = readReportRecipe(QString::fromUtf8(file.readAll()), recipeError);
        error = recipeErrorMessage(recipeError, mContext.isSwedish);
    }
    if (!read) {
        QMessageBox::warning(this, mTexts.title, mTexts.recipeError.arg(path, error));
        return;
    }
    setRecipe(*read);
}

void ReportDialog::saveRecipe()
{
    QString path = QFileDialog::getSaveFileName(this, mTexts.saveRecipe, QString(), mTexts.recipeFilter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".kelreport");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(writeReportRecipe(recipe()).toUtf8()) < 0 || !file.commit())
        QMessageBox::warning(this, mTexts.title, mTexts.failed.arg(path, file.errorString()));
}

QString ReportDialog::writeTo(const QString &path)
{
    const std::optional<ReportFormat> format = reportFormatForFileName(path);
    if (!format)
        return mTexts.failed.arg(path, QStringLiteral("?"));
    const ReportRecipe r = recipe();
    QString error;
    // Units are counted first so that the bar knows its end: building and
    // writing each unit are one step each.
    ReportPlanError planError;
    const std::optional<std::vector<ReportUnitPlan>> plans =
        planReportUnits(*mContext.document, mContext.base, r, planError);
    if (!plans)
        return mTexts.failed.arg(path, reportPlanErrorMessage(*mContext.document, planError, mContext.isSwedish));
    const int units = int(plans->size());
    QProgressDialog progress(mTexts.writing.arg(0).arg(units), mTexts.cancel, 0, 2 * units, this);
    progress.setObjectName(QStringLiteral("frmReportProgress"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    const auto step = [&](int value, int unit) {
        progress.setValue(value);
        progress.setLabelText(mTexts.writing.arg(unit).arg(units));
        QCoreApplication::processEvents();
        return !progress.wasCanceled();
    };
    const std::optional<Report> report = buildReport(
        r, [&](int done) { return step(done, done); }, std::size_t(units), error);
    if (!report)
        return progress.wasCanceled() ? QString() : error;
    // As kel does: a report of refusals only is not worth a file.
    if (std::all_of(report->units.begin(), report->units.end(), [](const ReportUnit &u) { return u.isRefused(); })) {
        progress.reset();
        return report->units.empty() ? mTexts.failed.arg(path, QString()) : report->units.front().refusal;
    }
    const ReportWriteResult result = writeReport(
        *report, *format, path, reportChartPicture, [&](int done) { return step(units + done, done); }, &error);
    progress.reset();
    switch (result) {
    case ReportWriteResult::Written: return mTexts.written.arg(path);
    case ReportWriteResult::Cancelled: return QString();
    case ReportWriteResult::Failed: return mTexts.failed.arg(path, error);
    }
    return {};
}

void ReportDialog::write()
{
    QString path = QFileDialog::getSaveFileName(this, mTexts.write, QString(), mTexts.reportFilter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".pdf");
    const QString message = writeTo(path);
    QMessageBox::information(this, mTexts.title, message.isEmpty() ? mTexts.cancelled : message);
}

} // namespace kel
