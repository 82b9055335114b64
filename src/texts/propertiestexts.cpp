// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/propertiestexts.h"

#include "texts/language.h"
#include "engine/document/rtftext.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace kel {

QString fileFormatText(qint32 revision, qint32 compatibleRevision, bool isSwedish)
{
    QString text = QStringLiteral("KEL revision ") + QString::number(revision);
    if (compatibleRevision != revision)
        text += pickText(isSwedish, " (backwards compatible with revision ", " (bakåtkompatibel med revision ")
            + QString::number(compatibleRevision) + QLatin1Char(')');
    return text;
}

QString fileVersionText(qint32 major, qint32 minor, qint32 build)
{
    // Negative numbers keep their sign in front of the padding, as "#00" does.
    auto padded = [](qint32 value, int width) {
        const QString digits = QStringLiteral("%1").arg(qAbs(qint64(value)), width, 10, QLatin1Char('0'));
        return value < 0 ? QLatin1Char('-') + digits : digits;
    };
    return padded(major, 1) + QLatin1Char('.') + padded(minor, 2) + QLatin1Char('.') + padded(build, 4);
}

QDateTime oleDateToUtc(double oleDate)
{
    // Years 100 .. 9999, the range the format allows.
    if (!std::isfinite(oleDate) || oleDate < -657434.0 || oleDate >= 2958466.0)
        return QDateTime();
    // Before day 0 the fraction still counts forward from midnight.
    const double day = std::trunc(oleDate);
    const double fraction = std::fabs(oleDate - day);
    const qint64 ms = qint64(std::llround(fraction * 86400000.0));
    const QDate date = QDate(1899, 12, 30).addDays(qint64(day));
    return QDateTime(date, QTime(0, 0), Qt::UTC).addMSecs(ms);
}

QString creationTimeText(double oleDate, const QLocale &locale)
{
    const QDateTime when = oleDateToUtc(oleDate);
    if (!when.isValid())
        return QString();
    QString timeFormat = locale.timeFormat(QLocale::LongFormat);
    // The long format names the time zone; the text ends in " UTC" instead.
    timeFormat.remove(QLatin1Char('t'));
    timeFormat = timeFormat.trimmed();
    QStringList parts;
    if (std::trunc(oleDate) != 0.0 || when.time() == QTime(0, 0))
        parts << locale.toString(when.date(), QLocale::ShortFormat);
    if (when.time() != QTime(0, 0))
        parts << locale.toString(when.time(), timeFormat);
    return parts.join(QLatin1Char(' ')) + QStringLiteral(" UTC");
}

QString rowOrderText(qint32 rowOrder, qint32 threshold, bool isSwedish, const QLocale &locale)
{
    QString text;
    switch (rowOrder) {
    case -1: text = pickText(isSwedish, "User selectable", "Valfri"); break;
    case 0: text = pickText(isSwedish, "Original", "Ursprunglig"); break;
    case 1: text = pickText(isSwedish, "Random", "Slumpmässig"); break;
    case 2: text = pickText(isSwedish, "Random per column", "Slumpmässig per kolumn"); break;
    default: text = pickText(isSwedish, "Undefined", "Odefinerad"); break;
    }
    if (threshold != -1)
        text += pickText(isSwedish, " at selections less then ", " vid urval mindre än ") + locale.toString(threshold);
    return text;
}

QString totalIndexExclusions(const Document &doc)
{
    QStringList headings;
    for (const Question &q : doc.questions)
        if (q.inOverview && !q.inTotalIndex)
            headings << q.heading;
    return headings.join(QStringLiteral(", "));
}

PropertiesTexts propertiesTexts(const Document &doc, bool isSwedish, const QLocale &locale)
{
    const DocumentProperties &p = doc.properties;
    auto t = [isSwedish](const char *en, const char *sv) { return pickText(isSwedish, en, sv); };
    PropertiesTexts x;
    x.caption = t("Properties", "Egenskaper");
    x.fileNameLabel = t("File name:", "Filnamn:");
    x.fileName = doc.currentFileName;
    x.fileFormatLabel = t("File format:", "Filformat:");
    x.fileFormat = fileFormatText(doc.revision, doc.compatibleRevision, isSwedish);
    x.fileVersionLabel = t("File version:", "Filversion:");
    x.fileVersion = fileVersionText(p.versionMajor, p.versionMinor, p.versionBuild);
    x.fileGuidLabel = t("File GUID:", "Fil-GUID:");
    x.fileGuid = doc.guidText();
    x.fileCreatedLabel = t("File created:", "Filen skapad:");
    // The date follows the regional settings; where those write words (month
    // names, AM/PM) in another language than the interface's, it is written
    // the interface language's way, so that no foreign word stands among the
    // others. Digits alone are kept as the user set them.
    x.fileCreated = creationTimeText(p.created, locale);
    const QString withoutZone = x.fileCreated.chopped(std::min<qsizetype>(4, x.fileCreated.size()));
    const bool wordsInDate =
        std::any_of(withoutZone.cbegin(), withoutZone.cend(), [](QChar c) { return c.isLetter(); });
    if (wordsInDate && isSwedishLocale(locale) != isSwedish)
        x.fileCreated = creationTimeText(p.created,
                                         isSwedish ? QLocale(QLocale::Swedish, QLocale::Sweden)
                                                   : QLocale(QLocale::English, QLocale::UnitedStates));
    x.projectNumberLabel = t("Project no:", "Projektnr:");
    x.projectNumber = doc.text(p.projectNumber);
    x.projectNameLabel = t("Project name:", "Projektnamn:");
    x.projectName = doc.text(p.projectName);
    x.copyrightLabel = QStringLiteral("Copyright:");
    x.copyright = doc.text(p.copyright);
    x.commentLabel = t("Comment:", "Kommentar:");
    if (p.comment != -1)
        x.commentHtml = rtfToHtml(doc.text(p.comment));

    x.indexFrame = QStringLiteral("Index");
    if (p.pointsScale < 1) {
        x.indexState = t("Disabled", "Avaktiverat");
    } else {
        x.indexEnabled = true;
        x.indexFrame = doc.text(p.indexName);
        x.indexState = t("Enabled", "Aktiverat");
        const QString excluded = totalIndexExclusions(doc);
        x.indexTotalInfo = excluded.isEmpty()
            ? t("Total index includes all questions.", "Totalindex inkluderar alla frågor.")
            : t("Total index includes all questions except these:", "Totalindex inkluderar alla frågor utom följande:")
                + QLatin1Char('\n') + excluded;
    }

    x.integrityFrame = t("Integrity protection", "Integritetsskydd");
    x.minimumSelectionLabel = t("Minimum selection:", "Minsta urval:");
    x.minimumSelection = locale.toString(p.minimumSelection);
    x.minimumComplementSelectionLabel = t("Minimum complement selection:", "Minsta komplementurval:");
    x.minimumComplementSelection = locale.toString(p.minimumComplementSelection);
    x.minimumGraphSelectionLabel = t("Minimum graph selection:", "Minsta grafurval:");
    x.minimumGraphSelection = locale.toString(p.minimumGraphSelection);
    x.rowOrderLabel = t("Overview row order:", "Radordning i översikten:");
    x.rowOrder = rowOrderText(p.rowOrder, p.rowOrderThreshold, isSwedish, locale);
    x.okButton = QStringLiteral("OK");
    return x;
}

} // namespace kel
