// SPDX-License-Identifier: GPL-3.0-or-later
// The print format dialog: which printer, and the binding and other
// margins in the unit of the user's measurement system.
#pragma once

#include "engine/settings/settingsstore.h"

#include <QDialog>
#include <QLocale>

#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;

namespace kel {

/// The unit the margins are edited in.
struct MarginUnit {
    QString name;        ///< "inches" / "tum", or "mm"
    double twipsPerUnit; ///< 1440 or 56.7
    int decimals;        ///< 2 or 1
};
MarginUnit marginUnit(QLocale::MeasurementSystem system, bool isSwedish);
/// Stored twips as the box shows them.
QString formatMargin(qint32 twips, const MarginUnit &unit, const QLocale &locale);
/// A box's text as twips (rounded); nothing for text that is not a number
/// from 0 up to 100 inches.
std::optional<qint32> parseMargin(const QString &text, const MarginUnit &unit, const QLocale &locale);

class PrintFormatDialog : public QDialog
{
    Q_OBJECT
public:
    /// `printers` are the names offered; the stored one is selected when it
    /// is among them, else the first.
    PrintFormatDialog(const LastSettings &settings, const QStringList &printers, const MarginUnit &unit, bool isSwedish,
                      const QLocale &locale = QLocale(), QWidget *parent = nullptr);

    /// What OK stores: the printer and both margins in twips.
    void storeInto(LastSettings &settings) const;

    QComboBox *printerBox() const { return mPrinter; }
    QLineEdit *marginBox(int index) const { return mMargin[index]; } ///< 0 binding, 1 others

private:
    void reformat(int index);

    MarginUnit mUnit;
    QLocale mLocale;
    QComboBox *mPrinter;
    QLineEdit *mMargin[2];
    qint32 mTwips[2];
};

} // namespace kel
