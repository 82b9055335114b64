// SPDX-License-Identifier: GPL-3.0-or-later
// The Create Report dialog follows the engine's rules: sections the
// document forbids cannot be ticked, the controls and a recipe say the same,
// and writing goes through to a file.
#include "reportsurvey.h"

#include "gui/report/reportdialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

struct Opened {
    std::unique_ptr<Document> doc;
    ReportDialogContext context;
};

Opened open(const UnitSurveyPermissions &p)
{
    Opened o;
    o.doc = unitSurvey(p);
    o.context.document = o.doc.get();
    o.context.base = baseOf(*o.doc);
    return o;
}

TEST(ReportDialog, ForbiddenSectionsCannotBeTicked)
{
    Opened o = open({.copy = false, .savePicture = true, .copyData = false});
    ReportDialog dialog(o.context);
    for (const ReportSectionName &s : ReportSectionNames) {
        auto *box = dialog.findChild<QCheckBox *>(QStringLiteral("chkReport_%1").arg(QLatin1String(s.key)));
        ASSERT_TRUE(box) << s.key;
        EXPECT_EQ(box->isEnabled(), reportSectionAllowed(o.doc->properties, s.section)) << s.key;
    }
    // A recipe asking for a forbidden section does not get it through the controls.
    ReportRecipe recipe;
    recipe.add(ReportSection::IndexTable);
    recipe.add(ReportSection::BlockFractions);
    dialog.setRecipe(recipe);
    EXPECT_FALSE(dialog.recipe().has(ReportSection::IndexTable));
    EXPECT_TRUE(dialog.recipe().has(ReportSection::BlockFractions));
}

TEST(ReportDialog, TheControlsHoldARecipe)
{
    Opened o = open({});
    ReportDialog dialog(o.context);
    ReportRecipe recipe;
    recipe.units = ReportUnits::List;
    recipe.selections = {QStringLiteral("0:0"), QStringLiteral("0:1,4")};
    recipe.add(ReportSection::TitlePage);
    recipe.add(ReportSection::Comments);
    recipe.split = o.doc->categories.front();
    recipe.date = QStringLiteral("31 March 2026");
    dialog.setRecipe(recipe);
    EXPECT_EQ(writeReportRecipe(dialog.recipe()), writeReportRecipe(recipe));

    recipe.units = ReportUnits::ByCategory;
    recipe.category = 0;
    recipe.withinCurrent = true;
    recipe.selections.clear();
    dialog.setRecipe(recipe);
    const ReportRecipe back = dialog.recipe();
    EXPECT_EQ(back.units, ReportUnits::ByCategory);
    EXPECT_TRUE(back.withinCurrent);
}

TEST(ReportDialog, WritesTheReportOfItsControls)
{
    Opened o = open({});
    ReportDialog dialog(o.context);
    ReportRecipe recipe = byUnit({ReportSection::TitlePage, ReportSection::IndexTable});
    dialog.setRecipe(recipe);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("units.html"));
    EXPECT_FALSE(dialog.writeTo(path).isEmpty());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray html = f.readAll();
    for (const char *unit : {"North", "South", "East", "West", "Harbour"})
        EXPECT_TRUE(html.contains(QByteArray("<h1>") + unit + "</h1>")) << unit;
    EXPECT_TRUE(html.contains("<table"));

    // Every unit refused (East alone is below the minimum): no file, Show's words.
    recipe.units = ReportUnits::List;
    recipe.selections = {QStringLiteral("0:2")};
    dialog.setRecipe(recipe);
    const QString refused = dir.filePath(QStringLiteral("east.html"));
    EXPECT_EQ(dialog.writeTo(refused), QStringLiteral("Too few respondents for this selection."));
    EXPECT_FALSE(QFile::exists(refused));
}

TEST(ReportDialog, AReportThatCannotBeWrittenSaysWhyInTheInterfaceLanguage)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("missing/units.html"));
    const struct {
        bool swedish;
        const char *start;
    } rows[] = {{false, "%1 could not be written: "}, {true, "%1 kunde inte skrivas: Filen kunde inte skrivas: "}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.swedish);
        Opened o = open({});
        o.context.isSwedish = row.swedish;
        ReportDialog dialog(o.context);
        dialog.setRecipe(byUnit({ReportSection::TitlePage}));
        const QString message = dialog.writeTo(path);
        EXPECT_TRUE(message.startsWith(QString::fromUtf8(row.start).arg(path))) << message.toStdString();
        EXPECT_GT(message.size(), QString::fromUtf8(row.start).arg(path).size()) << "the reason is missing";
        EXPECT_FALSE(QFile::exists(path));
    }
}

TEST(ReportDialog, SelectionModelForKeepsTheAppliedTicks)
{
    Opened o = open({});
    SelectionMatrix applied = o.context.base.model.appliedSelection();
    applied.set(0, 2, false);
    const SelectionModel model = selectionModelFor(*o.doc, applied);
    for (qint32 option = 0; option < 5; ++option)
        EXPECT_EQ(model.selected().at(0, option), option != 2) << option;
}

} // namespace
} // namespace kel::test

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
