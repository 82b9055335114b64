// SPDX-License-Identifier: GPL-3.0-or-later
// `kel render` as scripts see it: files in every format, the Show gates,
// and clear refusals.
#include "kelprocess.h"
#include "metafilereader.h"
#include "picturedocument.h"

#include <QFile>
#include <QImage>

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

class KelRender : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mDir.isValid());
        mFile = mDir.filePath(QStringLiteral("survey.kel"));
        ASSERT_TRUE(pictureSurvey(20).build().writeFile(mFile));
    }
    QString out(const QString &name) const { return mDir.filePath(name); }
    /// `kel render FILE <words of rest> -o OUT`, its exit status.
    int render(const char *rest, const QString &output, const QString &file = {})
    {
        mRun = runKel(kelArgs("render", file.isEmpty() ? mFile : file, rest) << QStringLiteral("-o") << output);
        return mRun.exitCode;
    }
    static QByteArray read(const QString &path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    QTemporaryDir mDir;
    QString mFile;
    KelRun mRun;
};

TEST_F(KelRender, OverviewInEveryFormatGraphsAndSelections)
{
    const struct {
        const char *suffix;
        QByteArray start;
    } formats[] = {{"emf", QByteArray::fromHex("01000000")},
                   {"wmf", QByteArray::fromHex("D7CDC69A")},
                   {"png", QByteArray("\x89PNG")},
                   {"bmp", QByteArray("BM")},
                   {"jpg", QByteArray::fromHex("FFD8")},
                   {"gif", QByteArray("GIF8")},
                   {"svg", QByteArray("<?xml")},
                   {"pdf", QByteArray("%PDF")}};
    for (const auto &f : formats) {
        const QString path = out(QStringLiteral("overview.") + QLatin1String(f.suffix));
        EXPECT_EQ(render("overview", path), 0) << f.suffix << mRun.err.toStdString();
        EXPECT_TRUE(read(path).startsWith(f.start)) << f.suffix;
    }
    // The overview is the 32-pixel sheet of four columns, widened by what
    // its edge texts need so that none is cut; a selection narrows it as
    // Show does.
    const QImage overview(out(QStringLiteral("overview.png")));
    EXPECT_GE(overview.width(), 4 * 32);
    EXPECT_EQ(emfTextsCut(read(out(QStringLiteral("overview.emf"))), overview.size()), QStringList());
    ASSERT_EQ(render("--select 0:0 overview --headers-only", out(QStringLiteral("north.png"))), 0);
    EXPECT_EQ(overview.height() - QImage(out(QStringLiteral("north.png"))).height(), 20 * 32);

    // Graphs: the fraction graph at twice the window's default size less its
    // margins (9300 twips at 96 dots per inch are 620 pixels); a chart.
    ASSERT_EQ(render("graph fraction --block 0", out(QStringLiteral("fraction.png"))), 0) << mRun.err.toStdString();
    EXPECT_EQ(QImage(out(QStringLiteral("fraction.png"))).width(), (620 - 20) * 2);
    EXPECT_EQ(render("graph distribution --category 0", out(QStringLiteral("distribution.svg"))), 0);
    ASSERT_EQ(render("--select 0:0 graph fraction --block 0", out(QStringLiteral("north.png"))), 0);
    EXPECT_NE(read(out(QStringLiteral("north.png"))), read(out(QStringLiteral("fraction.png"))));
}

TEST_F(KelRender, AHistogramTooWideForItsWindowIsNotWrittenEmpty)
{
    // 16 questions of three answers: 48 bars do not fit 620 pixels.
    SurveyBuilder b(6, 1);
    const qint32 block = b.addBlock({.code = QStringLiteral("W"), .name = QStringLiteral("Wide")});
    for (qint32 q = 0; q < 16; ++q) {
        const QuestionSpec spec{.code = QStringLiteral("Q%1").arg(q), .block = block};
        const qint32 added =
            q == 0 ? b.addQuestion(spec, {{.points = 0}, {.points = 1}, {.points = 2}}) : b.addQuestionLike(spec, 0);
        for (qint32 r = 0; r < 6; ++r)
            b.setAnswer(r, added, r % 3);
    }
    const QString wide = out(QStringLiteral("wide.kel")), path = out(QStringLiteral("wide.png"));
    ASSERT_TRUE(b.build().writeFile(wide));
    EXPECT_EQ(render("graph histogram --block 0", path, wide), 1);
    EXPECT_TRUE(mRun.err.contains("The graph is to big for the window!")) << mRun.err.toStdString();
    EXPECT_FALSE(QFile::exists(path));
    // The fraction graph of the same block grows with it and is written.
    EXPECT_EQ(render("graph fraction --block 0", path, wide), 0) << mRun.err.toStdString();
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(KelRender, RefusalsWriteNothing)
{
    const QString path = out(QStringLiteral("x.png"));
    // Nothing selected: Show's refusal, exit 7, its message on stderr; for
    // the overview, basic graphs and charts alike.
    for (const char *what : {"overview", "graph fraction --block 0", "graph distribution --category 0"}) {
        EXPECT_EQ(render((QByteArray("--select 0: ") + what).constData(), path), 7) << what;
        EXPECT_FALSE(mRun.err.isEmpty());
        EXPECT_TRUE(mRun.out.isEmpty());
    }
    for (const char *bad :
         {"overview --mode 4", "graph", "graph pie", "graph ranking --block 9", "graph fraction --block 0 --mode 2"}) {
        EXPECT_EQ(render(bad, path), 64) << bad;
        EXPECT_TRUE(mRun.err.contains("usage")) << mRun.err.toStdString();
    }
    EXPECT_EQ(render("overview", out(QStringLiteral("x.tiff"))), 64);
    EXPECT_EQ(runKel(kelArgs("render", mFile, "overview")).exitCode, 64) << "no output file";
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(KelRender, AFileThatCannotBeWrittenIsWordedInTheChosenLanguage)
{
    // A folder that does not exist: the overview, a basic graph and a chart
    // each fail with exit 1, naming the file, in the language of --lang.
    const QString path = out(QStringLiteral("missing/x.png"));
    const QByteArray swedish = QStringLiteral("Filen kunde inte skrivas: ").toUtf8();
    const struct {
        const char *english, *swedish;
    } rows[] = {{"overview", "overview --lang sv"},
                {"graph fraction --block 0", "graph --lang sv fraction --block 0"},
                {"graph distribution --category 0", "graph --lang sv distribution --category 0"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.english);
        EXPECT_EQ(render(row.swedish, path), 1) << mRun.err.toStdString();
        EXPECT_TRUE(mRun.err.contains(path.toUtf8() + ": " + swedish)) << mRun.err.toStdString();
        EXPECT_EQ(render(row.english, path), 1);
        EXPECT_TRUE(mRun.err.contains(path.toUtf8() + ": ")) << mRun.err.toStdString();
        EXPECT_FALSE(mRun.err.contains(swedish)) << mRun.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(path));
}

// A batch starts without the graphical application and makes it for its
// first picture: counts before it and pictures after it both work.
TEST_F(KelRender, BatchDrawsPicturesBetweenOtherLines)
{
    const QString png = out(QStringLiteral("b.png")), emf = out(QStringLiteral("b.emf"));
    const QByteArray lines = "select --max-rows 0\nrender overview -o " + png.toUtf8()
        + "\nrender graph fraction --block 0 -o " + emf.toUtf8() + "\nindexes --total --items total\n";
    const KelRun run = runKel(QStringList{QStringLiteral("batch"), mFile}, lines);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QList<QByteArray> answers = run.out.trimmed().split('\n');
    ASSERT_EQ(answers.size(), 4);
    for (const QByteArray &answer : answers)
        EXPECT_TRUE(answer.contains("\"status\":0")) << answer.toStdString();
    EXPECT_FALSE(QImage(png).isNull());
    EXPECT_TRUE(read(emf).startsWith(QByteArray::fromHex("01000000")));
}

} // namespace
} // namespace kel::test
