// SPDX-License-Identifier: GPL-3.0-or-later
// Every word and value of the file properties view, in the interface's
// language, computed without a window so that tests can read them.
#pragma once

#include "engine/document/document.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace kel {

struct PropertiesTexts {
    QString caption;
    QString fileNameLabel, fileName;
    QString fileFormatLabel, fileFormat;
    QString fileVersionLabel, fileVersion;
    QString fileGuidLabel, fileGuid;
    QString fileCreatedLabel, fileCreated;
    QString projectNumberLabel, projectNumber;
    QString projectNameLabel, projectName;
    QString copyrightLabel, copyright;
    QString commentLabel;
    QString commentHtml; ///< empty when the document has no comment

    bool indexEnabled = false;
    QString indexFrame; ///< the document's index name when enabled
    QString indexState; ///< "Enabled" / "Disabled"
    QString indexTotalInfo;

    QString integrityFrame;
    QString minimumSelectionLabel, minimumSelection;
    QString minimumComplementSelectionLabel, minimumComplementSelection;
    QString minimumGraphSelectionLabel, minimumGraphSelection;
    QString rowOrderLabel, rowOrder;
    QString okButton;
};

/// "KEL revision 9", with " (backwards compatible with revision 7)" when
/// the compatible revision differs.
QString fileFormatText(qint32 revision, qint32 compatibleRevision, bool isSwedish);
/// "3.05.0012".
QString fileVersionText(qint32 major, qint32 minor, qint32 build);
/// An OLE automation date (days since 30 December 1899) as UTC; invalid for
/// values outside the years 100 .. 9999 or not a number.
QDateTime oleDateToUtc(double oleDate);
/// The date and time in `locale`'s general format followed by " UTC"; the
/// date is left out at day 0 and the time at midnight, as that format does.
/// Empty for a value that is no date.
QString creationTimeText(double oleDate, const QLocale &locale);
/// The row order with its threshold.
QString rowOrderText(qint32 rowOrder, qint32 threshold, bool isSwedish, const QLocale &locale);
/// Headings of the overview questions left out of the total index, joined by ", ".
QString totalIndexExclusions(const Document &doc);

PropertiesTexts propertiesTexts(const Document &doc, bool isSwedish, const QLocale &locale);

} // namespace kel
