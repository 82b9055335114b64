// SPDX-License-Identifier: GPL-3.0-or-later
// `kel render` as scripts see it: files in every format, the Show gates,
// and clear refusals.
#include "kelprocess.h"
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
    static QByteArray read(const QString &path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    QTemporaryDir mDir;
    QString mFile;
};

TEST_F(KelRender, WritesEveryFormat)
{
    const struct {
        const char *name;
        QByteArray start;
    } formats[] = {{"o.emf", QByteArray::fromHex("01000000")}, {"o.wmf", QByteArray::fromHex("D7CDC69A")},
                   {"o.png", QByteArray("\x89PNG")},            {"o.bmp", QByteArray("BM")},
                   {"o.jpg", QByteArray::fromHex("FFD8")},      {"o.gif", QByteArray("GIF8")},
                   {"o.svg", QByteArray("<?xml")},              {"o.pdf", QByteArray("%PDF")}};
    for (const auto &f : formats) {
        SCOPED_TRACE(f.name);
        const QString path = out(QString::fromLatin1(f.name));
        const KelRun run = runKel({QStringLiteral("render"), mFile, QStringLiteral("overview"), QStringLiteral("-o"), path});
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_TRUE(read(path).startsWith(f.start));
    }
    // The image is the 32-pixel sheet: four columns, 20 answer lines.
    const QImage image(out(QStringLiteral("o.png")));
    EXPECT_EQ(image.width(), 4 * 32);
    EXPECT_GT(image.height(), 20 * 32);
}

TEST_F(KelRender, GraphsInEveryFormat)
{
    const struct {
        const char *suffix;
        QByteArray start;
    } formats[] = {{"emf", QByteArray::fromHex("01000000")}, {"wmf", QByteArray::fromHex("D7CDC69A")},
                   {"png", QByteArray("\x89PNG")},            {"bmp", QByteArray("BM")},
                   {"jpg", QByteArray::fromHex("FFD8")},      {"gif", QByteArray("GIF8")},
                   {"svg", QByteArray("<?xml")},              {"pdf", QByteArray("%PDF")}};
    const QStringList fraction{QStringLiteral("fraction"), QStringLiteral("--block"), QStringLiteral("0")};
    const QStringList distribution{QStringLiteral("distribution"), QStringLiteral("--category"), QStringLiteral("0")};
    for (const QStringList &graph : {fraction, distribution}) {
        for (const auto &f : formats) {
            const QString path = out(graph[0] + QLatin1Char('.') + QLatin1String(f.suffix));
            SCOPED_TRACE(path.toStdString());
            const KelRun run =
                runKel(QStringList{QStringLiteral("render"), mFile, QStringLiteral("graph")} + graph
                       + QStringList{QStringLiteral("-o"), path});
            EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
            EXPECT_TRUE(read(path).startsWith(f.start));
        }
    }
    // The fraction graph at twice the window's default size less its
    // margins: 9300 twips at 96 dots per inch are 620 pixels.
    const QImage fractionImage(out(QStringLiteral("fraction.png")));
    EXPECT_EQ(fractionImage.width(), (620 - 20) * 2);
    EXPECT_EQ(QImage(out(QStringLiteral("distribution.png"))).size(), QSize(800, 600));
    // The graph is drawn: its three answer colours are in the picture.
    const QImage bmp(out(QStringLiteral("fraction.bmp")));
    bool green = false, yellow = false, red = false;
    for (int y = 0; y < bmp.height(); ++y) {
        for (int x = 0; x < bmp.width(); ++x) {
            const QRgb c = bmp.pixel(x, y);
            green = green || c == qRgb(0, 160, 0);
            yellow = yellow || c == qRgb(240, 240, 0);
            red = red || c == qRgb(220, 0, 0);
        }
    }
    EXPECT_TRUE(green && yellow && red);

    // A selection narrows the graph as Show narrows the overview: the
    // selection text differs, so does the picture.
    const QString north = out(QStringLiteral("north.svg"));
    ASSERT_EQ(runKel(QStringList{QStringLiteral("render"), mFile, QStringLiteral("--select"), QStringLiteral("0:0"),
                                 QStringLiteral("graph")}
                     + fraction + QStringList{QStringLiteral("-o"), north})
                  .exitCode,
              0);
    EXPECT_NE(read(north), read(out(QStringLiteral("fraction.svg"))));
}

TEST_F(KelRender, AHistogramTooWideForItsWindowIsNotWrittenEmpty)
{
    // 16 questions of three answers: 48 bars do not fit 620 pixels.
    SurveyBuilder b(6, 1);
    const qint32 block = b.addBlock({.code = QStringLiteral("W"), .name = QStringLiteral("Wide")});
    const QList<AlternativeSpec> scale = {{.text = QStringLiteral("a"), .points = 0},
                                          {.text = QStringLiteral("b"), .points = 1},
                                          {.text = QStringLiteral("c"), .points = 2}};
    qint32 first = -1;
    for (int q = 0; q < 16; ++q) {
        const QuestionSpec recipe{.code = QStringLiteral("Q%1").arg(q), .heading = QStringLiteral("Q%1").arg(q),
                                .block = block};
        const qint32 added = first < 0 ? b.addQuestion(recipe, scale) : b.addQuestionLike(recipe, first);
        first = first < 0 ? added : first;
        for (qint32 r = 0; r < 6; ++r)
            b.setAnswer(r, added, r % 3);
    }
    const QString wide = out(QStringLiteral("wide.kel")), path = out(QStringLiteral("wide.png"));
    ASSERT_TRUE(b.build().writeFile(wide));
    KelRun run = runKel({QStringLiteral("render"), wide, QStringLiteral("graph"), QStringLiteral("histogram"),
                         QStringLiteral("--block"), QStringLiteral("0"), QStringLiteral("-o"), path});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("The graph is to big for the window!")) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(path));
    // The fraction graph of the same block grows with it and is written.
    run = runKel({QStringLiteral("render"), wide, QStringLiteral("graph"), QStringLiteral("fraction"),
                  QStringLiteral("--block"), QStringLiteral("0"), QStringLiteral("-o"), path});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(KelRender, HeadersOnlyAndSelections)
{
    const QString all = out(QStringLiteral("all.png")), headers = out(QStringLiteral("headers.png")),
                  north = out(QStringLiteral("north.png"));
    ASSERT_EQ(runKel({QStringLiteral("render"), mFile, QStringLiteral("overview"), QStringLiteral("-o"), all}).exitCode, 0);
    ASSERT_EQ(runKel({QStringLiteral("render"), mFile, QStringLiteral("overview"), QStringLiteral("--headers-only"),
                      QStringLiteral("-o"), headers})
                  .exitCode,
              0);
    ASSERT_EQ(runKel({QStringLiteral("render"), mFile, QStringLiteral("--select"), QStringLiteral("0:0"),
                      QStringLiteral("overview"), QStringLiteral("-o"), north})
                  .exitCode,
              0);
    EXPECT_EQ(QImage(all).height() - QImage(headers).height(), 20 * 32);
    EXPECT_EQ(QImage(all).height() - QImage(north).height(), 10 * 32);
}

TEST_F(KelRender, RefusalsWriteNothing)
{
    const QString path = out(QStringLiteral("x.png"));
    // Nothing selected: Show's refusal, exit 7, its message on stderr.
    KelRun run = runKel({QStringLiteral("render"), mFile, QStringLiteral("--select"), QStringLiteral("0:"),
                         QStringLiteral("overview"), QStringLiteral("-o"), path});
    EXPECT_EQ(run.exitCode, 7);
    EXPECT_FALSE(run.err.isEmpty());
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_FALSE(QFile::exists(path));

    // Graphs are refused as Show refuses them, basic graphs and charts alike.
    for (const QStringList &graph : {QStringList{QStringLiteral("fraction"), QStringLiteral("--block"), QStringLiteral("0")},
                                     QStringList{QStringLiteral("distribution"), QStringLiteral("--category"),
                                                 QStringLiteral("0")}}) {
        run = runKel(QStringList{QStringLiteral("render"), mFile, QStringLiteral("--select"), QStringLiteral("0:"),
                                 QStringLiteral("graph")}
                     + graph + QStringList{QStringLiteral("-o"), path});
        EXPECT_EQ(run.exitCode, 7) << run.err.toStdString();
        EXPECT_FALSE(run.err.isEmpty());
        EXPECT_FALSE(QFile::exists(path));
    }

    for (const QStringList &bad : {QStringList{QStringLiteral("overview"), QStringLiteral("-o"), out(QStringLiteral("x.tiff"))},
                                   QStringList{QStringLiteral("overview")},
                                   QStringList{QStringLiteral("-o"), path},
                                   QStringList{QStringLiteral("overview"), QStringLiteral("--mode"), QStringLiteral("4"),
                                               QStringLiteral("-o"), path},
                                   QStringList{QStringLiteral("graph"), QStringLiteral("-o"), path},
                                   QStringList{QStringLiteral("graph"), QStringLiteral("pie"), QStringLiteral("-o"), path},
                                   QStringList{QStringLiteral("graph"), QStringLiteral("histogram"), QStringLiteral("--block"),
                                               QStringLiteral("0")},
                                   QStringList{QStringLiteral("graph"), QStringLiteral("ranking"), QStringLiteral("--block"),
                                               QStringLiteral("9"), QStringLiteral("-o"), path},
                                   QStringList{QStringLiteral("graph"), QStringLiteral("fraction"), QStringLiteral("--block"),
                                               QStringLiteral("0"), QStringLiteral("--mode"), QStringLiteral("2"),
                                               QStringLiteral("-o"), path}}) {
        run = runKel(QStringList{QStringLiteral("render"), mFile} + bad);
        EXPECT_EQ(run.exitCode, 64) << bad.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(run.err.contains("usage")) << run.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(path));
}

} // namespace
} // namespace kel::test
