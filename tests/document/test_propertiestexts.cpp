// SPDX-License-Identifier: GPL-3.0-or-later
// The texts of the file properties view, for documents read back from files
// the writer made.
#include "kelwriter.h"

#include "engine/document/documentreader.h"
#include "texts/propertiestexts.h"

#include <gtest/gtest.h>

using namespace kel;
using namespace kel::writer;

namespace {

std::unique_ptr<Document> read(const KelFile &file)
{
    ReadResult r = readDocumentBytes(file.toBytes());
    EXPECT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    if (r.document)
        r.document->currentFileName = QStringLiteral("survey.kel");
    return std::move(r.document);
}

// Overview questions A (in the total), B and C (left out of it); D is left
// out of the total too but is no overview column.
SurveyBuilder indexedSurvey()
{
    SurveyBuilder b(4);
    HeaderFields &h = b.header();
    h.pointsScale = 100;
    h.indexName = b.text(QStringLiteral("Staff Index"));
    h.versionMajor = 3;
    h.versionMinor = 5;
    h.versionBuild = 12;
    h.minimumSelection = 12345;
    h.minimumGraphSelection = 5;
    h.rowOrder = 2;
    h.rowOrderThreshold = 30;
    h.created = 45000.75; // 15 March 2023, 18:00
    h.comment =
        b.text(QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0 Ny \\b m\\'e4tning\\b0 <img src=x>\\par "
                              "rad tv\\u229?\\}}"));
    const QList<AlternativeSpec> alts{{.text = QStringLiteral("no"), .points = 0},
                                      {.text = QStringLiteral("yes"), .points = 100}};
    b.addQuestion({.heading = QStringLiteral("A")}, alts);
    b.addQuestion({.heading = QStringLiteral("B"), .inTotalIndex = false}, alts);
    b.addQuestion({.heading = QStringLiteral("C"), .inTotalIndex = false}, alts);
    b.addQuestion({.heading = QStringLiteral("D"), .inOverview = false, .inTotalIndex = false}, alts);
    return b;
}

} // namespace

TEST(PropertiesTexts, RevisionVersionAndIndexInBothLanguages)
{
    SurveyBuilder b = indexedSurvey();
    KelFile file = b.build();
    file.options.revision = 9;
    file.options.compatibleRevision = 7;
    std::unique_ptr<Document> doc = read(file);
    ASSERT_TRUE(doc);

    const QLocale c = QLocale::c();
    const PropertiesTexts en = propertiesTexts(*doc, false, c);
    EXPECT_EQ(en.fileFormat, QStringLiteral("KEL revision 9 (backwards compatible with revision 7)"));
    EXPECT_EQ(en.fileVersion, QStringLiteral("3.05.0012"));
    EXPECT_EQ(en.indexTotalInfo, QStringLiteral("Total index includes all questions except these:\nB, C"));
    EXPECT_EQ(en.rowOrder, QStringLiteral("Random per column at selections less then 30"));

    const PropertiesTexts sv = propertiesTexts(*doc, true, QLocale(QLocale::Swedish, QLocale::Sweden));
    EXPECT_EQ(sv.rowOrder, QString::fromUtf8("Slumpmässig per kolumn vid urval mindre än 30"));
    EXPECT_EQ(sv.minimumSelection, QString::fromUtf8("12\u00a0345"));
    EXPECT_EQ(sv.fileCreated, QStringLiteral("2023-03-15 18:00:00 UTC"));
    // The creation date never names its month in another language than the
    // interface's; regional settings of the same language, or that write
    // only digits, are kept.
    const struct {
        bool swedish;
        QLocale locale;
        const char *created;
    } dates[] = {
        {true, QLocale::c(), "2023-03-15 18:00:00 UTC"},
        {true, QLocale(QLocale::German, QLocale::Germany), "15.03.23 18:00:00 UTC"},
        {false, QLocale::c(), "15 Mar 2023 18:00:00 UTC"},
        {false, QLocale(QLocale::Swedish, QLocale::Sweden), "2023-03-15 18:00:00 UTC"},
    };
    for (const auto &d : dates)
        EXPECT_EQ(propertiesTexts(*doc, d.swedish, d.locale).fileCreated, QString::fromUtf8(d.created))
            << d.swedish << ' ' << d.locale.name().toStdString();

    // The comment's words survive, its markup becomes tags of our own, and
    // what looked like a tag is text.
    EXPECT_TRUE(en.commentHtml.contains(QString::fromUtf8("Ny <b>mätning</b>&lt;img src=x&gt;")));
    EXPECT_TRUE(en.commentHtml.contains(QString::fromUtf8("rad två")));
    EXPECT_FALSE(en.commentHtml.contains(QStringLiteral("<img")));

    // A revision-4 file has no row order field: user selectable, no threshold.
    file.options.revision = 4;
    file.options.compatibleRevision.reset();
    const PropertiesTexts old = propertiesTexts(*read(file), false, c);
    EXPECT_EQ(old.fileFormat, QStringLiteral("KEL revision 4")); // same revision twice: no parenthesis
    EXPECT_EQ(old.rowOrder, QStringLiteral("User selectable"));

    // No points scale: no index; no comment: nothing to show.
    file.header.pointsScale = 0, file.header.comment = -1;
    const PropertiesTexts t = propertiesTexts(*read(file), false, c);
    EXPECT_FALSE(t.indexEnabled);
    EXPECT_TRUE(t.indexTotalInfo.isEmpty() && t.commentHtml.isEmpty());
}

TEST(PropertiesTexts, OddVersionsAndDates)
{
    EXPECT_EQ(fileVersionText(-1, 123, 4), QStringLiteral("-1.123.0004"));
    // Day 0 shows only the time, midnight only the date; no date at all: empty.
    EXPECT_EQ(creationTimeText(0.5, QLocale::c()), QStringLiteral("12:00:00 UTC"));
    EXPECT_TRUE(creationTimeText(45000.0, QLocale::c()).endsWith(QStringLiteral("2023 UTC")));
    EXPECT_EQ(oleDateToUtc(-1.25), QDateTime(QDate(1899, 12, 29), QTime(6, 0), Qt::UTC));
    for (double bad : {std::nan(""), 1e300, -1e300, std::numeric_limits<double>::infinity()})
        EXPECT_TRUE(creationTimeText(bad, QLocale::c()).isEmpty());
}
