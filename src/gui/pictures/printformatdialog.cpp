// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/pictures/printformatdialog.h"

#include "texts/language.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <cmath>

namespace kel {

namespace {
constexpr double MaxMarginTwips = 100 * 1440.0;
}

MarginUnit marginUnit(QLocale::MeasurementSystem system, bool isSwedish)
{
    if (system == QLocale::ImperialUSSystem || system == QLocale::ImperialUKSystem)
        return {pickText(isSwedish, "inches", "tum"), 1440.0, 2};
    return {QStringLiteral("mm"), 56.7, 1};
}

QString formatMargin(qint32 twips, const MarginUnit &unit, const QLocale &locale)
{
    return locale.toString(twips / unit.twipsPerUnit, 'f', unit.decimals);
}

std::optional<qint32> parseMargin(const QString &text, const MarginUnit &unit, const QLocale &locale)
{
    bool ok = false;
    double value = locale.toDouble(text.trimmed(), &ok);
    if (!ok)
        value = QLocale::c().toDouble(text.trimmed(), &ok);
    const double twips = value * unit.twipsPerUnit;
    if (!ok || !std::isfinite(twips) || twips < 0 || twips > MaxMarginTwips)
        return std::nullopt;
    return qint32(std::lround(twips));
}

PrintFormatDialog::PrintFormatDialog(const LastSettings &settings, const QStringList &printers, const MarginUnit &unit,
                                     bool isSwedish, const QLocale &locale, QWidget *parent)
    : QDialog(parent), mUnit(unit), mLocale(locale),
      mPrinter(new QComboBox(this)), mTwips{settings.printerBindingMargin, settings.printerOtherMargins}
{
    setObjectName(QStringLiteral("frmPrintFormat"));
    setWindowTitle(pickText(isSwedish, "Print Format", "Utskriftsformat"));
    mPrinter->setObjectName(QStringLiteral("cboPrinter"));
    mPrinter->addItems(printers);
    const int stored = printers.indexOf(settings.printerDeviceName);
    mPrinter->setCurrentIndex(stored >= 0 ? stored : 0);

    auto *form = new QFormLayout;
    auto *printerLabel = new QLabel(pickText(isSwedish, "&Printer:", "&Skrivare:"), this);
    printerLabel->setBuddy(mPrinter);
    form->addRow(printerLabel, mPrinter);
    const char *english[] = {"&Binding margin:", "&Other margins:"};
    const char *swedish[] = {"&Hålslagsmarginal:", "&Övriga marginaler:"};
    for (int i = 0; i < 2; ++i) {
        mMargin[i] = new QLineEdit(formatMargin(mTwips[i], mUnit, mLocale), this);
        mMargin[i]->setObjectName(QStringLiteral("txtMargin%1").arg(i));
        // Leaving a box shows its value in the unit's own format again.
        connect(mMargin[i], &QLineEdit::editingFinished, this, [this, i] { reformat(i); });
        auto *row = new QHBoxLayout;
        row->addWidget(mMargin[i]);
        auto *unitLabel = new QLabel(mUnit.name, this);
        unitLabel->setObjectName(QStringLiteral("lblUnit"));
        row->addWidget(unitLabel);
        auto *label = new QLabel(pickText(isSwedish, english[i], swedish[i]), this);
        label->setBuddy(mMargin[i]);
        form->addRow(label, row);
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    buttons->button(QDialogButtonBox::Cancel)->setText(pickText(isSwedish, "Cancel", "Avbryt"));
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("OK"));
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        reformat(0);
        reformat(1);
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

void PrintFormatDialog::reformat(int index)
{
    // A value that is not a margin brings the last good one back.
    if (const auto twips = parseMargin(mMargin[index]->text(), mUnit, mLocale))
        mTwips[index] = *twips;
    mMargin[index]->setText(formatMargin(mTwips[index], mUnit, mLocale));
}

void PrintFormatDialog::storeInto(LastSettings &settings) const
{
    settings.printerDeviceName = mPrinter->currentText();
    settings.printerBindingMargin = mTwips[0];
    settings.printerOtherMargins = mTwips[1];
}

} // namespace kel
