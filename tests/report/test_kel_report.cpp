// SPDX-License-Identifier: GPL-3.0-or-later
// `kel report` as scripts see it: the figures of every shown unit are those
// `kel indexes` prints, a refused unit carries no figure at all, the
// permissions remove what they must, and the same input gives the same bytes.
#include "kelprocess.h"
#include "reportsurvey.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The PDF's text as poppler reads it, one string per page.
QStringList pdfPages(const QString &pdf)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0) << "pdftotext (poppler-utils) failed";
    QStringList pages = QString::fromUtf8(p.readAllStandardOutput()).split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.back().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// The HTML's text without its markup and inline pictures' ids.
QString htmlText(const QString &html)
{
    QString text = html;
    text.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    return text;
}

// One HTML unit: the section with the unit's heading.
QString htmlUnit(const QString &html, const QString &name)
{
    const QRegularExpression section(
        QStringLiteral("<section class=\"unit\" id=\"unit\\d+\">\\n<h1>%1</h1>(.*?)</section>")
            .arg(QRegularExpression::escape(name.toHtmlEscaped())),
        QRegularExpression::DotMatchesEverythingOption);
    return section.match(html).captured(1);
}

// The pages of one PDF unit: from the page headed by its name to the next
// unit's first page.
QString pdfUnit(const QStringList &pages, const QString &name, const QStringList &allNames)
{
    QString text;
    bool inside = false;
    for (const QString &page : pages) {
        const QString first = page.trimmed().section(QLatin1Char('\n'), 0, 0).trimmed();
        if (allNames.contains(first))
            inside = first == name;
        if (inside)
            text += page;
    }
    return text;
}

// `kel indexes` for one option of the unit category: label -> value.
std::vector<std::pair<QString, QString>> kelIndexes(const QString &file, int option)
{
    const KelRun run =
        runKel({QStringLiteral("indexes"), file, QStringLiteral("--select"), QStringLiteral("0:%1").arg(option),
                QStringLiteral("--total"), QStringLiteral("--items"),
                QStringLiteral("total,blocks,subblocks,questions,userblocks"), QStringLiteral("--columns")});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    std::vector<std::pair<QString, QString>> rows;
    const QStringList lines = QString::fromUtf8(run.out).split(QStringLiteral("\r\n"));
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QStringList cells = lines[i].split(QLatin1Char('\t'));
        if (cells.size() == 2)
            rows.emplace_back(cells[0], cells[1]);
    }
    EXPECT_FALSE(rows.empty());
    return rows;
}

// The texts `kel graph` gives a graph's bars or points, in order.
QStringList kelGraphLabels(const QString &file, int option, const char *graph)
{
    const KelRun run = runKel(
        QStringList{QStringLiteral("graph"), file, QStringLiteral("--select"), QStringLiteral("0:%1").arg(option)}
        + words(graph));
    const QJsonObject o = jsonOf(run);
    QStringList labels;
    // A bar of no width has no room for its text.
    for (const QJsonValue &bar : o.value(QStringLiteral("bars")).toArray())
        if (bar.toObject().value(QStringLiteral("count")).toInt() > 0)
            labels << bar.toObject().value(QStringLiteral("percentText")).toString();
    for (const QJsonValue &series : o.value(QStringLiteral("series")).toArray())
        for (const QJsonValue &point : series.toObject().value(QStringLiteral("points")).toArray())
            labels << point.toObject().value(QStringLiteral("dataLabel")).toString();
    labels.removeAll(QString());
    EXPECT_FALSE(labels.isEmpty()) << graph;
    return labels;
}

// Whether `labels` occur among the words of `text` in their order.
bool inOrder(const QStringList &labels, const QString &text)
{
    const QStringList tokens = text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    qsizetype at = 0;
    for (const QString &label : labels) {
        while (at < tokens.size() && tokens[at] != label)
            ++at;
        if (at == tokens.size())
            return false;
        ++at;
    }
    return true;
}

bool hasDigitOutsidePageNumbers(const QString &text)
{
    QString rest = text;
    rest.remove(QRegularExpression(QStringLiteral("Page \\d+ of \\d+")));
    rest.remove(QRegularExpression(QStringLiteral("Sida \\d+ av \\d+")));
    return rest.contains(QRegularExpression(QStringLiteral("\\d")));
}

class KelReport : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(mDir.isValid()); }

    QString survey(const UnitSurveyPermissions &p = {})
    {
        const QString path = mDir.filePath(QStringLiteral("survey%1.kel").arg(mSurveys++));
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly) && f.write(unitSurveyBytes(p)) > 0);
        return path;
    }
    QString out(const QString &name) const { return mDir.filePath(name); }
    KelRun report(const QString &file, const char *rest, const QString &output)
    {
        return runKel(kelArgs("report", file, rest) << QStringLiteral("-o") << output);
    }

    QTemporaryDir mDir;
    int mSurveys = 0;
};

const char Sections[] = "--by 0 --sections title,indexes,fractions,total-index,comments --date 2026-01-31";
const QStringList UnitNames{QStringLiteral("North"), QStringLiteral("South"), QStringLiteral("East"),
                            QStringLiteral("West"), QStringLiteral("Harbour")};
constexpr int EastOption = 2;

TEST_F(KelReport, ShownUnitsHoldTheFiguresOfKelIndexesAndRefusedOnesNone)
{
    const QString file = survey();
    const QString pdf = out(QStringLiteral("r.pdf")), html = out(QStringLiteral("r.html"));
    const KelRun pdfRun = report(file, Sections, pdf);
    ASSERT_EQ(pdfRun.exitCode, 0) << pdfRun.err.toStdString();
    ASSERT_EQ(report(file, Sections, html).exitCode, 0);
    // The refusal is said on standard error too, with its words.
    EXPECT_TRUE(pdfRun.err.contains("East: Too few respondents for this selection."));

    const QStringList pages = pdfPages(pdf);
    const QString htmlDoc = QString::fromUtf8(readAll(html));
    ASSERT_FALSE(pages.isEmpty());
    // The contents page lists every unit, the refused one too.
    for (const QString &name : UnitNames)
        EXPECT_TRUE(pages.front().contains(name)) << name.toStdString();

    for (int option = 0; option < int(UnitNames.size()); ++option) {
        const QString &name = UnitNames[option];
        const QString pdfText = pdfUnit(pages, name, UnitNames);
        const QString htmlPart = htmlUnit(htmlDoc, name);
        ASSERT_FALSE(pdfText.isEmpty()) << name.toStdString();
        ASSERT_FALSE(htmlPart.isEmpty()) << name.toStdString();
        if (option == EastOption) {
            EXPECT_TRUE(pdfText.contains(QStringLiteral("Too few respondents for this selection.")));
            EXPECT_TRUE(htmlPart.contains(QStringLiteral("Too few respondents for this selection.")));
            EXPECT_FALSE(hasDigitOutsidePageNumbers(pdfText)) << pdfText.toStdString();
            EXPECT_FALSE(hasDigitOutsidePageNumbers(htmlText(htmlPart))) << htmlPart.toStdString();
            EXPECT_EQ(pdfText.count(QStringLiteral("Page ")), 1) << "a refused unit takes one page";
            continue;
        }
        for (const auto &[label, value] : kelIndexes(file, option)) {
            const QRegularExpression line(
                QStringLiteral("(^|\\n)\\s*%1\\s+%2\\s+")
                    .arg(QRegularExpression::escape(label), QRegularExpression::escape(value)));
            EXPECT_TRUE(line.match(pdfText).hasMatch()) << name.toStdString() << ": " << label.toStdString();
            EXPECT_TRUE(htmlPart.contains(QStringLiteral("<td>%1</td><td>%2</td>").arg(label, value)))
                << name.toStdString() << ": " << label.toStdString();
        }
    }
    // The pictures' figures are those of `kel graph` for the same unit.
    for (int option : {0, 4}) {
        const QString pdfText = pdfUnit(pages, UnitNames[option], UnitNames);
        for (const char *graph : {"fraction --block 0", "total-index --main --blocks"}) {
            const QStringList labels = kelGraphLabels(file, option, graph);
            EXPECT_TRUE(inOrder(labels, pdfText))
                << graph << " of unit " << option << ": " << labels.join(QLatin1Char(' ')).toStdString() << "\n"
                << pdfText.toStdString();
        }
    }
    // Comments: only of rows the overview may show.
    for (const QString &text : {htmlText(htmlDoc), pages.join(QLatin1Char('\n'))}) {
        EXPECT_TRUE(text.contains(QStringLiteral("north mood 9")));
        EXPECT_TRUE(text.contains(QStringLiteral("south mood")));
        EXPECT_FALSE(text.contains(QStringLiteral("west mood")));
        EXPECT_FALSE(text.contains(QStringLiteral("east secret")));
    }
}

TEST_F(KelReport, TheSameInputGivesTheSameBytes)
{
    const QString file = survey();
    for (const char *suffix : {"pdf", "html"}) {
        const QString a = out(QStringLiteral("a.%1").arg(QLatin1String(suffix)));
        const QString b = out(QStringLiteral("b.%1").arg(QLatin1String(suffix)));
        ASSERT_EQ(report(file, Sections, a).exitCode, 0);
        ASSERT_EQ(report(file, Sections, b).exitCode, 0);
        const QByteArray first = readAll(a);
        EXPECT_FALSE(first.isEmpty());
        EXPECT_TRUE(first == readAll(b)) << suffix;
    }
}

TEST_F(KelReport, PermissionsRemoveWhatTheyForbid)
{
    const struct {
        UnitSurveyPermissions permissions;
        const char *absent; ///< in the HTML
        const char *notice;
    } cases[] = {
        {{.copy = true, .savePicture = false, .copyData = true}, "<svg", "pictures to be saved"},
        {{.copy = false, .savePicture = true, .copyData = true}, "<table", "does not allow copying"},
        {{.copy = true, .savePicture = true, .copyData = false}, "north mood", "data to be copied"},
    };
    for (const auto &c : cases) {
        const QString html = out(QStringLiteral("p.html"));
        const KelRun run = report(survey(c.permissions), Sections, html);
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        const QByteArray bytes = readAll(html);
        EXPECT_FALSE(bytes.contains(c.absent)) << c.absent;
        EXPECT_TRUE(bytes.contains(c.notice)) << c.notice;
    }
    // Everything forbidden: refused, and no file.
    const QString none = out(QStringLiteral("none.html"));
    const KelRun run = report(survey({false, false, false}), Sections, none);
    EXPECT_EQ(run.exitCode, 7);
    EXPECT_TRUE(run.err.contains("forbid every section"));
    EXPECT_FALSE(QFile::exists(none));
}

TEST_F(KelReport, ExitStatuses)
{
    const QString file = survey();
    QFile recipe(out(QStringLiteral("bad.kelreport")));
    ASSERT_TRUE(recipe.open(QIODevice::WriteOnly) && recipe.write("[Report]\nsections = title,maps\n") > 0);
    recipe.close();
    const struct {
        const char *args;
        const char *output;
        int status;
    } cases[] = {
        {"--by 0 --sections title", "ok.html", 0},
        {"--by 0 --sections title", "ok.txt", 64},
        {"--by 0 --sections title,maps", "x.html", 64},
        {"--by 9 --sections title", "x.html", 64},
        {"--by 0", "x.html", 64},
        {"--sections title --split 99", "x.html", 64},
        {"--sections title --blocks 5", "x.html", 64},
        {"--sections title --select 0:7", "x.html", 64},
        {"--sections title --bogus", "x.html", 64},
        {"--sections title --select 0:2", "east.html", 7}, // the only unit refused
        {"--sections title --select 0:4", "harbour.html", 0},
    };
    for (const auto &c : cases) {
        const QString path = out(QString::fromUtf8(c.output));
        const KelRun run = report(file, c.args, path);
        EXPECT_EQ(run.exitCode, c.status) << c.args << " " << run.err.toStdString();
        EXPECT_EQ(QFile::exists(path), c.status == 0) << c.args;
    }
    EXPECT_EQ(runKel(kelArgs("report", file, "--sections title")).exitCode, 64);
    const KelRun bad = runKel(kelArgs("report", file) << QStringLiteral("--recipe") << recipe.fileName()
                                                      << QStringLiteral("-o") << out(QStringLiteral("y.html")));
    EXPECT_EQ(bad.exitCode, 64);
    EXPECT_TRUE(bad.err.contains("line 2")) << bad.err.toStdString();
}

TEST_F(KelReport, AReportThatCannotBeWrittenIsWordedInTheChosenLanguage)
{
    const QString file = survey();
    const QString path = out(QStringLiteral("missing/r.html"));
    const QByteArray swedish = QStringLiteral("Filen kunde inte skrivas: ").toUtf8();
    const KelRun sv = report(file, "--by 0 --sections title --lang sv", path);
    EXPECT_EQ(sv.exitCode, 1);
    EXPECT_TRUE(sv.err.contains(path.toUtf8() + ": " + swedish)) << sv.err.toStdString();
    const KelRun en = report(file, "--by 0 --sections title", path);
    EXPECT_EQ(en.exitCode, 1);
    EXPECT_TRUE(en.err.contains(path.toUtf8() + ": ")) << en.err.toStdString();
    EXPECT_FALSE(en.err.contains(swedish)) << en.err.toStdString();
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(KelReport, RecipeFileLanguageAndBatch)
{
    const QString file = survey();
    QFile recipe(out(QStringLiteral("units.kelreport")));
    ASSERT_TRUE(recipe.open(QIODevice::WriteOnly)
                && recipe.write("# by unit\n[Report]\nunits = by-category\ncategory = 0\nsections = title,indexes\n"
                                "date = 31 januari 2026\n")
                    > 0);
    recipe.close();
    const QString sv = out(QStringLiteral("sv.html"));
    const KelRun run = runKel(kelArgs("report", file, "--lang sv")
                              << QStringLiteral("--recipe") << recipe.fileName() << QStringLiteral("-o") << sv);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QString text = QString::fromUtf8(readAll(sv));
    EXPECT_TRUE(text.contains(QStringLiteral("Innehåll")));
    EXPECT_TRUE(text.contains(QStringLiteral("31 januari 2026")));
    EXPECT_TRUE(text.contains(QStringLiteral("Harbour")));

    const QString batchOut = out(QStringLiteral("batch.html"));
    const KelRun batch =
        runKel({QStringLiteral("batch"), file},
               QStringLiteral("report --by 0 --sections title,fractions -o %1\n").arg(batchOut).toUtf8());
    ASSERT_EQ(batch.exitCode, 0) << batch.err.toStdString();
    const QJsonObject line = QJsonDocument::fromJson(batch.out.trimmed()).object();
    EXPECT_EQ(line.value(QStringLiteral("status")).toInt(), 0) << batch.out.toStdString();
    EXPECT_TRUE(readAll(batchOut).contains("<svg"));
}

#ifdef KEL_SAMPLE
// The bundled sample: every unit of its first category agrees with kel indexes.
TEST_F(KelReport, TheSampleAgreesWithKelIndexesForEveryUnit)
{
    const QString file = QStringLiteral(KEL_SAMPLE);
    const QString html = out(QStringLiteral("sample.html"));
    const KelRun run = report(file, "--by 0 --sections title,indexes --date 2026-01-31", html);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QString text = QString::fromUtf8(readAll(html));
    const QRegularExpression units(QStringLiteral("<section class=\"unit\" id=\"unit(\\d+)\">\\n<h1>([^<]*)</h1>"));
    int checked = 0;
    for (QRegularExpressionMatchIterator it = units.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const int option = m.captured(1).toInt(); // the sample's first option is its hidden "no answer"
        const QString part = htmlUnit(text, m.captured(2).replace(QStringLiteral("&amp;"), QStringLiteral("&")));
        for (const auto &[label, value] : kelIndexes(file, option))
            EXPECT_TRUE(part.contains(QStringLiteral("<td>%1</td><td>%2</td>").arg(label.toHtmlEscaped(), value)))
                << m.captured(2).toStdString() << ": " << label.toStdString();
        ++checked;
    }
    EXPECT_GT(checked, 1);
}
#endif

} // namespace
} // namespace kel::test
