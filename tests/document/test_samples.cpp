// SPDX-License-Identifier: GPL-3.0-or-later
// The bundled samples are generated, never edited: regenerating them must
// give the committed bytes, and they must open and be consistent.
#include "readerfixture.h"

#include "engine/indexes/blockindex.h"
#include "engine/indexes/columnindex.h"

#include <QFile>

#include <gtest/gtest.h>

namespace kel::test {
namespace {

QByteArray committed(const char *name)
{
    QFile f(QStringLiteral(KEL_SAMPLES_DIR "/%1").arg(QLatin1String(name)));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

class Sample : public ::testing::TestWithParam<bool>
{
protected:
    bool swedish() const { return GetParam(); }
    const char *fileName() const { return swedish() ? "employee-survey-sv.kel" : "employee-survey-en.kel"; }
};

TEST_P(Sample, RegeneratesToTheCommittedBytes)
{
    const QByteArray onDisk = committed(fileName());
    ASSERT_FALSE(onDisk.isEmpty()) << "missing samples/" << fileName();
    const QByteArray fresh = employeeSurvey(swedish()).toBytes();
    EXPECT_TRUE(fresh == onDisk) << "samples/" << fileName()
                                 << " differs from what the writer makes now; regenerate it with kelwrite sample";
}

TEST_P(Sample, OpensAndIsConsistent)
{
    const ReadResult r = readDocumentFile(QStringLiteral(KEL_SAMPLES_DIR "/%1").arg(QLatin1String(fileName())));
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    const Document &d = *r.document;
    const DocumentProperties &p = d.properties;

    // Stored indexes agree with what the index calculation makes of the
    // answers: the writer and the viewer compute independently.
    const RowList all = allRows(d);
    QuestionList total;
    for (qint32 q : d.overviewColumns) {
        const Question &question = d.questions[std::size_t(q)];
        EXPECT_DOUBLE_EQ(question.totalIndex, calculateColumnsIndex(d, {q}, all)) << q;
        if (question.inTotalIndex)
            total.push_back(q);
    }
    EXPECT_LT(total.size(), d.overviewColumns.size()); // one question stays out of the total
    EXPECT_DOUBLE_EQ(p.totalIndex, calculateColumnsIndex(d, total, all));
    // Blocks: the engine's members, the writer's stored index.
    int subBlocks = 0;
    const BlockCatalogue blocks(d);
    for (qint32 b = 0; b < qint32(d.blocks.size()); ++b) {
        const QuestionList members = blockMembers(d, blocks, b);
        ASSERT_FALSE(members.empty()) << b;
        EXPECT_DOUBLE_EQ(d.blocks[std::size_t(b)].totalIndex, calculateColumnsIndex(d, members, all)) << b;
        subBlocks += d.blocks[std::size_t(b)].linkedBlock >= 0;
    }
    EXPECT_GE(subBlocks, 6);

    // The agree/disagree questions (every overview question) share one
    // answer scale of five answers after the hidden no-answer alternative,
    // so every block graph shows one legend run.
    ASSERT_EQ(d.overviewColumns.size(), 44u);
    const Question &first = d.questions[std::size_t(d.overviewColumns.front())];
    EXPECT_EQ(first.alternativeCount, 6);
    EXPECT_TRUE(p.firstAlternativeIsNoAnswer);
    for (qint32 q : d.overviewColumns) {
        EXPECT_EQ(d.questions[std::size_t(q)].firstAlternative, first.firstAlternative) << q;
        EXPECT_EQ(d.questions[std::size_t(q)].alternativeCount, first.alternativeCount) << q;
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, Sample, ::testing::Values(false, true),
                         [](const auto &info) { return info.param ? "sv" : "en"; });

} // namespace
} // namespace kel::test
