// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/optionsdialog.h"

#include "engine/document/document.h"
#include "gui/common/waitcursor.h"
#include "texts/language.h"

#include <QSysInfo>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFocusEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <limits>

namespace kel {

namespace {

QString rowOrderPhrase(bool isSwedish, qint32 order)
{
    switch (order) {
    case 0: return pickText(isSwedish, "the original row order.", "den ursprungliga radordningen.");
    case 1: return pickText(isSwedish, "a random row order.", "en slumpmässig radordning.");
    case 2: return pickText(isSwedish, "a per column random row order.", "en per kolumn slumpmässig radordning.");
    default: break;
    }
    return pickText(isSwedish, "an undefined row order.", "en odefinerad radordning.");
}

struct ListItem {
    const char *english;
    const char *swedish;
    qint32 value;
};

QComboBox *newList(QWidget *parent, const char *name, bool isSwedish, std::initializer_list<ListItem> items,
                   qint32 setting)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QString::fromUtf8(name));
    for (const ListItem &item : items)
        list->addItem(pickText(isSwedish, item.english, item.swedish), item.value);
    list->setCurrentIndex(list->findData(setting));
    return list;
}

QCheckBox *newCheck(QWidget *parent, const char *name, bool isSwedish, const char *english, const char *swedish,
                    bool checked)
{
    auto *box = new QCheckBox(pickText(isSwedish, english, swedish), parent);
    box->setObjectName(QString::fromUtf8(name));
    box->setChecked(checked);
    return box;
}

QLabel *newLabel(QWidget *parent, const char *name, const QString &text)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QString::fromUtf8(name));
    return label;
}

QLabel *newComment(QWidget *parent, const char *name, const QString &text)
{
    QLabel *label = newLabel(parent, name, text);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

QGroupBox *newFrame(QWidget *parent, const char *name, bool isSwedish, const char *english, const char *swedish)
{
    auto *frame = new QGroupBox(pickText(isSwedish, english, swedish), parent);
    frame->setObjectName(QString::fromUtf8(name));
    return frame;
}

qint32 listValue(const QComboBox *list, qint32 keep)
{
    return list->currentIndex() < 0 ? keep : list->currentData().toInt();
}

} // namespace

QString rowOrderComment(bool isSwedish, const Document *doc)
{
    if (!doc || doc->properties.rowOrder == -1)
        return pickText(isSwedish,
                        "The row order you select below will only be apllied to files that have not been locked to "
                        "use a specific row order.",
                        "Radordningen du väljer nedan kommer endast att påverka filer som inte har blivit låsta "
                        "till en specifik radordning.");
    const QString phrase = rowOrderPhrase(isSwedish, doc->properties.rowOrder);
    const qint32 threshold = doc->properties.rowOrderThreshold;
    if (threshold != -1)
        return pickText(isSwedish,
                        "Note thet the row order you select below won't be applied to the currently open file "
                        "unless the selection size is at least ",
                        "Observera att den radordning du väljer nedan bara kommer att påverka den fil som är öppen "
                        "just nu om urvalet är minst ")
            + QString::number(threshold)
            + pickText(isSwedish, ". Below that it is locked to use ", ", annars är den låst till att använda ")
            + phrase;
    return pickText(isSwedish,
                    "Note that the row order you select below won't be applied to the currently open file since "
                    "it is locked to use ",
                    "Observera att den radordning du väljer nedan inte kommer att påverka den fil som är öppen just "
                    "nu eftersom den är låst till att använda ")
        + phrase;
}

QString maxRowsComment(bool isSwedish, const QString &systemName)
{
    // No platform this program runs on has the old small-memory limit.
    return pickText(isSwedish,
                    "Since this is a %1 system you can select any number you like below, but trying to display a "
                    "large number of rows will degrade system performance.",
                    "Eftersom detta är ett %1-system kan du ange vilket tal som helst nedan, men om du försöker att "
                    "visa ett stort antal rader kommer det att påverka systemets prestanda negativt.")
        .arg(systemName);
}

std::optional<qint32> parseMaxRows(const QString &text)
{
    const QString trimmed = text.trimmed();
    for (const QChar c : trimmed) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return std::nullopt; // signs, blanks inside, decimals, letters
    }
    bool ok = false;
    const qlonglong value = trimmed.toLongLong(&ok);
    if (!ok || value < 1 || value > std::numeric_limits<qint32>::max())
        return std::nullopt;
    return qint32(value);
}

OptionsDialog::OptionsDialog(bool isSwedish, const UserOptions &options, const Document *doc, bool officeAvailable,
                             QWidget *parent)
    : QDialog(parent), mOriginal(options), mTabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("frmOptions"));
    setWindowTitle(pickText(isSwedish, "Options", "Alternativ"));
    mTabs->setObjectName(QStringLiteral("tabOptions"));

    // General
    auto *general = new QWidget(mTabs);
    auto *navigator = newFrame(general, "fraNavigator", isSwedish, "Navigator", "Navigatör");
    mRemind = newCheck(navigator, "chkNavigatorRemindToClickShow", isSwedish, "&Remind me to click Show",
                       "&Påminn mig att klicka på Visa", options.navigatorRemindToClickShow);
    mBeep = newCheck(navigator, "chkNavigatorAddBeepToReminder", isSwedish, "Add a &beep to the reminder",
                     "Komplettera påminnelsen med &ljud", options.navigatorAddBeepToReminder);
    auto *navigatorLayout = new QVBoxLayout(navigator);
    navigatorLayout->addWidget(mRemind);
    navigatorLayout->addWidget(mBeep);
    auto *generalLayout = new QVBoxLayout(general);
    generalLayout->addWidget(navigator);
    generalLayout->addStretch();
    connect(mRemind, &QCheckBox::toggled, this, &OptionsDialog::updateBeepEnabling);
    updateBeepEnabling();

    // Overview
    auto *overview = new QWidget(mTabs);
    auto *blockLinesLabel =
        newLabel(overview, "lblOverviewBlockLinesLabel", pickText(isSwedish, "Block lines:", "Blocklinjer:"));
    mBlockLines =
        newCheck(overview, "chkOverviewBlockLines", isSwedish, "&Enabled", "&Aktiverade", options.overviewGroupLines);
    auto *blockLinesRow = new QHBoxLayout;
    blockLinesRow->addWidget(blockLinesLabel);
    blockLinesRow->addWidget(mBlockLines);
    blockLinesRow->addStretch();

    auto *rowOrderFrame = newFrame(overview, "fraOverviewRowOrder", isSwedish, "Row order", "Radordning");
    auto *rowOrderLabel =
        newLabel(rowOrderFrame, "lblOverviewRowOrderLabel", pickText(isSwedish, "Default &row order:", "&Radordning:"));
    mRowOrder = newList(rowOrderFrame, "cboOverviewRowOrder", isSwedish,
                        {{"Original", "Ursprunglig", 0},
                         {"Random", "Slumpmässig", 1},
                         {"Random per column", "Slumpmässig per kolumn", 2}},
                        options.overviewRowOrder);
    rowOrderLabel->setBuddy(mRowOrder);
    mRowOrderComment = newComment(rowOrderFrame, "lblOverviewRowOrderComment", rowOrderComment(isSwedish, doc));
    auto *rowOrderLayout = new QGridLayout(rowOrderFrame);
    rowOrderLayout->addWidget(mRowOrderComment, 0, 0, 1, 3);
    rowOrderLayout->addWidget(rowOrderLabel, 1, 0);
    rowOrderLayout->addWidget(mRowOrder, 1, 1);
    rowOrderLayout->setColumnStretch(2, 1);

    auto *maxRowsFrame = newFrame(overview, "fraOverviewMaxRows", isSwedish, "Max rows shown", "Max rader som visas");
    auto *maxRowsLabel = newLabel(maxRowsFrame, "lblOverviewMaxRowsLabel",
                                  pickText(isSwedish, "Show a &maximum of:", "Visa &maximalt:"));
    mMaxRows = new QLineEdit(QString::number(options.overviewMaxRows), maxRowsFrame);
    mMaxRows->setObjectName(QStringLiteral("txtOverviewMaxRows"));
    mMaxRows->setMaxLength(11);
    mMaxRows->setMaximumWidth(mMaxRows->fontMetrics().horizontalAdvance(QStringLiteral("0000000000000")));
    mMaxRows->installEventFilter(this);
    maxRowsLabel->setBuddy(mMaxRows);
    auto *unit = newLabel(maxRowsFrame, "lblOverviewMaxRowsUnit", pickText(isSwedish, "rows", "rader"));
    mMaxRowsComment =
        newComment(maxRowsFrame, "lblOverviewMaxRowsComment", maxRowsComment(isSwedish, QSysInfo::prettyProductName()));
    auto *maxRowsLayout = new QGridLayout(maxRowsFrame);
    maxRowsLayout->addWidget(mMaxRowsComment, 0, 0, 1, 4);
    maxRowsLayout->addWidget(maxRowsLabel, 1, 0);
    maxRowsLayout->addWidget(mMaxRows, 1, 1);
    maxRowsLayout->addWidget(unit, 1, 2);
    maxRowsLayout->setColumnStretch(3, 1);

    auto *overviewLayout = new QVBoxLayout(overview);
    overviewLayout->addLayout(blockLinesRow);
    overviewLayout->addWidget(rowOrderFrame);
    overviewLayout->addWidget(maxRowsFrame);
    overviewLayout->addStretch();

    // Graphs
    auto *graphs = new QWidget(mTabs);
    auto *questionGraphs = newFrame(graphs, "fraGraphQuestionGraphs", isSwedish, "Question graphs", "Frågegrafer");
    mReversed =
        newCheck(questionGraphs, "chkGraphValueOrderReversed", isSwedish, "&Reverse display order (start with lowest)",
                 "Använd &omvänd visningsordning (lägsta först)", options.graphValueOrderReversed);
    mOpaque = newCheck(questionGraphs, "chkGraphCopySaveOpaque", isSwedish,
                       "Use &opaque background during copying or saveing",
                       "Använd &solid bakgrund vid kopiera och spara", options.graphCopySaveOpaque);
    mWhiteSpace = newCheck(questionGraphs, "chkGraphCopySaveWhiteSpace", isSwedish,
                           "Add &white space around graph when copying or saveing",
                           "Lägg till tom&rum runt bilden vid kopiera och spara", options.graphCopySaveWhiteSpace);
    // There is no Office automation on this platform: the box shows no
    // stored value and cannot be changed.
    mMsOffice = newCheck(questionGraphs, "chkGraphCopyToMsOffice", isSwedish,
                         "&Increase quality when pasting to Microsoft Office applications",
                         "&Förbättra kvalitén vid inklistring i Microsoft Office-program",
                         officeAvailable && options.graphCopyToMsOffice);
    mMsOffice->setEnabled(officeAvailable);
    mShortNames = newCheck(questionGraphs, "chkGraphByCategoryUseShortCategoryNames", isSwedish,
                           "Use &short category names for graphs split by category",
                           "Använd korta kategori&namn för grafer uppdelade på kategorier",
                           options.graphByCategoryUseShortCategoryNames);
    auto *questionLayout = new QVBoxLayout(questionGraphs);
    for (QCheckBox *box : {mReversed, mOpaque, mWhiteSpace, mMsOffice, mShortNames})
        questionLayout->addWidget(box);

    auto *distribution = newFrame(graphs, "fraGraphDistributionGraphs", isSwedish, "Distribution and index graphs",
                                  "Fördelnings- och indexgrafer");
    auto *legendsLabel =
        newLabel(distribution, "lblGraphLegendsLabel", pickText(isSwedish, "&Legends:", "&Teckenförklaringar:"));
    mLegends = newList(distribution, "cboGraphLegends", isSwedish,
                       {{"None", "Inga", -1},
                        {"Show below graph", "Visa under grafen", 6},
                        {"Show to the right of graph", "Visa till höger om grafen", 0}},
                       options.graphLegends);
    legendsLabel->setBuddy(mLegends);
    auto *copyLabel =
        newLabel(distribution, "lblGraphCopyFormatLabel", pickText(isSwedish, "&Copy as:", "&Kopiera som:"));
    mCopyFormat = newList(distribution, "cboGraphCopyFormat", isSwedish,
                          {{"Meta file", "Metafil", 1}, {"Bitmap", "Bitmap", 2}}, options.graphCopyFormat);
    copyLabel->setBuddy(mCopyFormat);
    auto *distributionLayout = new QFormLayout(distribution);
    distributionLayout->addRow(legendsLabel, mLegends);
    distributionLayout->addRow(copyLabel, mCopyFormat);

    auto *graphsLayout = new QVBoxLayout(graphs);
    graphsLayout->addWidget(questionGraphs);
    graphsLayout->addWidget(distribution);
    graphsLayout->addStretch();

    mTabs->addTab(general, pickText(isSwedish, "General", "Allmänt"));
    mTabs->addTab(overview, pickText(isSwedish, "Overview", "Översikt"));
    mTabs->addTab(graphs, pickText(isSwedish, "Graphs", "Grafer"));

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(pickText(isSwedish, "OK", "OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    QPushButton *cancel = buttons->addButton(pickText(isSwedish, "Cancel", "Avbryt"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &OptionsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OptionsDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(mTabs);
    layout->addWidget(buttons);
    // Wide enough that the comments wrap into a few lines, not a column.
    setMinimumWidth(fontMetrics().averageCharWidth() * 64);
}

void OptionsDialog::updateBeepEnabling()
{
    // A beep only makes sense with the reminder: clearing the reminder
    // clears the beep too.
    mBeep->setEnabled(mRemind->isChecked());
    if (!mRemind->isChecked())
        mBeep->setChecked(false);
}

UserOptions OptionsDialog::options() const
{
    UserOptions o = mOriginal;
    o.navigatorRemindToClickShow = mRemind->isChecked();
    o.navigatorAddBeepToReminder = mBeep->isChecked();
    o.overviewGroupLines = mBlockLines->isChecked();
    o.overviewRowOrder = listValue(mRowOrder, mOriginal.overviewRowOrder);
    o.overviewMaxRows = parseMaxRows(mMaxRows->text()).value_or(mOriginal.overviewMaxRows);
    o.graphValueOrderReversed = mReversed->isChecked();
    o.graphCopySaveOpaque = mOpaque->isChecked();
    o.graphCopySaveWhiteSpace = mWhiteSpace->isChecked();
    o.graphCopyToMsOffice = mMsOffice->isChecked();
    o.graphByCategoryUseShortCategoryNames = mShortNames->isChecked();
    o.graphLegends = listValue(mLegends, mOriginal.graphLegends);
    o.graphCopyFormat = listValue(mCopyFormat, mOriginal.graphCopyFormat);
    return o;
}

bool OptionsDialog::validateMaxRows()
{
    if (parseMaxRows(mMaxRows->text()))
        return true;
    mTabs->setCurrentIndex(OverviewTab);
    mMaxRows->setFocus(Qt::OtherFocusReason);
    mMaxRows->selectAll();
    return false;
}

bool OptionsDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == mMaxRows && event->type() == QEvent::FocusOut) {
        // Leaving for another program or a popup is not leaving the box.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason
            && !parseMaxRows(mMaxRows->text())) {
            // The focus moves on after this event; take it back once it has.
            QTimer::singleShot(0, this, [this] {
                if (isVisible())
                    validateMaxRows();
            });
        }
    }
    return QDialog::eventFilter(watched, event);
}

void OptionsDialog::accept()
{
    // Enter in the box reaches OK without leaving the box.
    if (!validateMaxRows())
        return;
    QDialog::accept();
}

bool runOptionsDialog(QWidget *parent, bool isSwedish, UserOptions &options, SettingsStore &store, const Document *doc)
{
    std::optional<WaitCursor> wait(std::in_place);
    OptionsDialog dialog(isSwedish, options, doc, false, parent);
    wait.reset();
    if (dialog.exec() != QDialog::Accepted)
        return false;
    WaitCursor busy;
    options = dialog.options();
    store.writeSettings(options); // nothing is written under NoSaveSettings
    store.flush();
    return true;
}

} // namespace kel
