// SPDX-License-Identifier: GPL-3.0-or-later
// Writing a report file: a cancel or a failure leaves nothing behind and an
// earlier file untouched; the preview shows the first unit's pages.
#include "reportsurvey.h"

#include "engine/report/reportbuilder.h"
#include "render/report/reportwriter.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

Report unitReport()
{
    const std::unique_ptr<Document> read = unitSurvey();
    Document &doc = *read;
    const ReportBase base = baseOf(doc);
    const ReportRecipe recipe = byUnit({ReportSection::TitlePage, ReportSection::BlockFractions});
    Report report;
    report.title = QStringLiteral("Units");
    report.words.page = QStringLiteral("Page %1 of %2");
    ReportPlanError planError;
    const std::optional<std::vector<ReportUnitPlan>> plans = planReportUnits(doc, base, recipe, planError);
    EXPECT_TRUE(plans);
    for (const ReportUnitPlan &plan : plans.value_or(std::vector<ReportUnitPlan>{}))
        report.units.push_back(buildReportUnit(doc, base, recipe, plan, report.words, {}));
    return report;
}

QStringList entries(const QString &dir)
{
    return QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

TEST(ReportWriter, ACancelLeavesNothingBehindAndKeepsAnEarlierFile)
{
    const Report report = unitReport();
    ASSERT_EQ(report.units.size(), 5u);
    for (ReportFormat format : {ReportFormat::Pdf, ReportFormat::Html}) {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("report"));
        int calls = 0;
        const ReportProgress cancelAfterTwo = [&calls](int done) {
            ++calls;
            return done < 2;
        };
        EXPECT_EQ(writeReport(report, format, path, {}, cancelAfterTwo, nullptr), ReportWriteResult::Cancelled);
        EXPECT_EQ(calls, 2);
        EXPECT_TRUE(entries(dir.path()).isEmpty()) << entries(dir.path()).join(QLatin1Char(' ')).toStdString();

        QFile earlier(path);
        ASSERT_TRUE(earlier.open(QIODevice::WriteOnly) && earlier.write("earlier") == 7);
        earlier.close();
        EXPECT_EQ(writeReport(report, format, path, {}, cancelAfterTwo, nullptr), ReportWriteResult::Cancelled);
        ASSERT_TRUE(earlier.open(QIODevice::ReadOnly));
        EXPECT_EQ(earlier.readAll(), QByteArray("earlier"));
        earlier.close();
        EXPECT_EQ(entries(dir.path()), QStringList{QStringLiteral("report")});

        // Progress is reported once per unit when nothing cancels.
        std::vector<int> seen;
        EXPECT_EQ(writeReport(
                      report, format, path, {}, [&seen](int done) { return seen.push_back(done), true; }, nullptr),
                  ReportWriteResult::Written);
        EXPECT_EQ(seen, (std::vector<int>{1, 2, 3, 4, 5}));
        EXPECT_EQ(entries(dir.path()), QStringList{QStringLiteral("report")});
    }
}

TEST(ReportWriter, AFailedWriteSaysWhyAndLeavesNoFile)
{
    const Report report = unitReport();
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("missing/report.html"));
    WriteFailure failure;
    EXPECT_EQ(writeReport(report, ReportFormat::Html, path, {}, {}, &failure), ReportWriteResult::Failed);
    EXPECT_EQ(failure.code, WriteFailureCode::NotWritten);
    EXPECT_FALSE(failure.reason.isEmpty());
    EXPECT_FALSE(QFile::exists(path));
}

TEST(ReportWriter, ThePreviewShowsOnlyTheFirstUnitsPages)
{
    Report report = unitReport();
    const std::vector<QImage> all = reportPreviewPages(report, {}, 50);
    // The first unit: its title page and one page per fraction graph at most.
    ASSERT_GE(all.size(), 2u);
    EXPECT_LE(all.size(), 3u);
    EXPECT_EQ(reportPreviewPages(report, {}, 1).size(), 1u);
    report.units.front().refusal = QStringLiteral("refused");
    EXPECT_EQ(reportPreviewPages(report, {}, 50).size(), 1u);
}

TEST(ReportWriter, FormatsFollowTheExtension)
{
    const std::pair<const char *, std::optional<ReportFormat>> cases[] = {
        {"a.pdf", ReportFormat::Pdf},  {"a.PDF", ReportFormat::Pdf}, {"a.html", ReportFormat::Html},
        {"a.htm", ReportFormat::Html}, {"a.svg", std::nullopt},      {"pdf", std::nullopt},
    };
    for (const auto &[name, format] : cases)
        EXPECT_EQ(reportFormatForFileName(QString::fromUtf8(name)), format) << name;
}

} // namespace
} // namespace kel::test

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
