// SPDX-License-Identifier: GPL-3.0-or-later
// The payload parse: hostile offsets, counts and references are refused as
// damage (never read out of bounds), odd but legal values read as documented.
#include "readerfixture.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

void shortItemStrides(KelFile &f)
{
    f.cellComments.clear();
    f.options.strides = format::Strides{40, 68, 8, 40, 4};
}

struct HostileCase {
    const char *name;
    std::function<void(KelFile &, const PayloadLayout &)> forge;
};

class HostilePayload : public ::testing::TestWithParam<HostileCase>
{
};

TEST_P(HostilePayload, IsDamaged)
{
    KelFile f = richSurvey().build();
    PayloadLayout layout;
    f.payload(&layout);
    GetParam().forge(f, layout);
    for (bool compressed : {true, false}) {
        f.options.compressed = compressed;
        const ReadResult r = readBytes(f.toBytes());
        EXPECT_EQ(r.code, OpenResult::Damaged) << GetParam().name << (compressed ? " (compressed)" : " (plain)");
        EXPECT_EQ(r.document, nullptr);
        EXPECT_FALSE(r.detail.isEmpty());
    }
}

const HostileCase hostileCases[] = {
    // Sections, tables and matrices that reach past the payload.
    {"AlternativesStartPastTheEnd", [](KelFile &f, const PayloadLayout &l) { f.forgery.alternatives.offset = l.size; }},
    {"AlternativesCountHuge", [](KelFile &f, const PayloadLayout &) { f.forgery.alternatives.count = 0x7FFFFFFF; }},
    {"QuestionsStrideHuge", [](KelFile &f, const PayloadLayout &) { f.forgery.questions.stride = 0x40000000; }},
    {"BlocksEndPastTheEnd", [](KelFile &f, const PayloadLayout &l) { f.forgery.blocks.offset = l.size - 39; }},
    {"RowCommentsCountHuge", [](KelFile &f, const PayloadLayout &) { f.forgery.rowComments.count = 0x20000000; }},
    {"BlockItemsPastTheEnd", [](KelFile &f, const PayloadLayout &l) { f.forgery.blockItems.offset = l.size - 4; }},
    {"TextTablePastTheEnd", [](KelFile &f, const PayloadLayout &l) { f.forgery.textTableOffset = l.size + 1; }},
    {"TextCountHuge", [](KelFile &f, const PayloadLayout &) { f.forgery.textCount = 0x7FFFFFFF; }},
    {"TextLengthHuge",
     [](KelFile &f, const PayloadLayout &) { f.forgery.textLengths[f.texts.size() - 1] = 0x40000000; }},
    {"TextLengthNegative", [](KelFile &f, const PayloadLayout &) { f.forgery.textLengths[0] = -1; }},
    {"TextLengthOverflowsWhenDoubled",
     [](KelFile &f, const PayloadLayout &) { f.forgery.textLengths[0] = 0x7FFFFFFF; }},
    {"AnswersPastTheEnd", [](KelFile &f, const PayloadLayout &l) { f.forgery.answersOffset = l.size - 10; }},
    {"MatrixRowsPastTheEnd", [](KelFile &f, const PayloadLayout &) { f.forgery.rowCount = 100000; }},
    {"CellCommentsPastTheEnd", [](KelFile &f, const PayloadLayout &l) { f.forgery.cellCommentsOffset = l.size - 8; }},
    {"CellCommentStrideHuge", [](KelFile &f, const PayloadLayout &) { f.forgery.cellCommentStride = 0x100000; }},
    // Block items written last with a 4-byte stride: the reader's full 8-byte
    // read of the last item runs off the payload.
    {"ShortStrideWithoutPadding",
     [](KelFile &f, const PayloadLayout &) { shortItemStrides(f), f.options.padShortSections = false; }},
    // Answers outside their question's alternatives.
    {"AnswerEqualsAlternativeCount", [](KelFile &f, const PayloadLayout &) { f.answers.set(3, 2, 4); }},
    {"AnswerNegative", [](KelFile &f, const PayloadLayout &) { f.answers.set(5, 5, -1); }},
    {"CategoryAnswerTooLarge", [](KelFile &f, const PayloadLayout &) { f.answers.set(0, 0, 3); }},
    // Cross references.
    {"AlternativeRunPastTheList",
     [](KelFile &f, const PayloadLayout &) { f.questions[5].firstAlternative = qint32(f.alternatives.size()) - 3; }},
    {"AlternativeRunNegative", [](KelFile &f, const PayloadLayout &) { f.questions[2].firstAlternative = -1; }},
    {"AlternativeCountNegative", [](KelFile &f, const PayloadLayout &) { f.questions[0].alternativeCount = -2; }},
    {"AlternativeRunOverflows",
     [](KelFile &f, const PayloadLayout &) {
         f.questions[2].firstAlternative = f.questions[2].alternativeCount = 0x7FFFFFF0;
     }},
    {"BlockItemQuestionPastTheList", [](KelFile &f, const PayloadLayout &) { f.blockItems[0].question = 6; }},
    {"FewerColumnsThanQuestions", [](KelFile &f, const PayloadLayout &) { f.forgery.columnCount = 5; }},
};

INSTANTIATE_TEST_SUITE_P(Cases, HostilePayload, ::testing::ValuesIn(hostileCases),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(Payload, AnswerReportedWithItsPlace)
{
    KelFile f = richSurvey().build();
    f.answers.set(4, 3, -1); // i16 cells: written as 0xFFFF
    const ReadResult r = readBytes(f.toBytes());
    EXPECT_TRUE(r.detail.contains(QStringLiteral("answer -1 in row 4, column 3"))) << r.detail.toStdString();
}

// Cells are zero-extended (u8) or sign-extended (i16, i32): a u8 cell of 200
// in a question with 201 alternatives is no negative answer.
TEST(Payload, CellWidths)
{
    for (qint32 cellType : {1, 2, 3}) {
        SurveyBuilder b(3, cellType);
        QList<AlternativeSpec> many;
        for (int i = 0; i < 201; ++i)
            many.append({.text = QString::number(i)});
        const qint32 q = b.addQuestion({.code = QStringLiteral("Q")}, many);
        b.setAnswer(0, q, 200);
        b.setAnswer(1, q, 0);
        b.setAnswer(2, q, 128);
        const ReadResult r = readBytes(b.toBytes());
        ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
        EXPECT_EQ(int(r.document->answers.cellType()), cellType);
        EXPECT_EQ(r.document->getData(0, 0), 200);
        EXPECT_EQ(r.document->getData(2, 0), 128);
    }
}

TEST(Payload, TextIndexesOutsideTheTableAreEmpty)
{
    KelFile f = richSurvey().build();
    f.questions[2].code = -1;
    f.questions[2].heading = f.texts.size();
    f.questions[2].text = 0x7FFFFFFF;
    f.questions[2].selectionLabel = -12345;
    f.alternatives[1].label = f.texts.size() + 1;
    f.blocks[0].name = -1;
    f.header.language = f.texts.size();
    f.header.projectName = -7;
    const ReadResult r = readBytes(f.toBytes());
    ASSERT_EQ(r.code, OpenResult::Ok) << r.detail.toStdString();
    const Document &d = *r.document;
    const Question &q = d.questions[2];
    EXPECT_EQ(q.code + q.heading + q.text + q.selectionLabel + d.alternatives[1].label + d.blocks[0].name, QString());
    EXPECT_EQ(d.properties.languageCode, QString());
    EXPECT_EQ(d.properties.projectName, -7); // kept as the file says
    EXPECT_EQ(d.text(d.properties.projectName), QString());
    EXPECT_EQ(d.questions[3].code, QStringLiteral("2")); // neighbours untouched
}

// A section is read only when offset, stride and count are all at least 1.
TEST(Payload, IncompleteSectionsAreEmpty)
{
    const SectionOverride cases[] = {{.count = 0}, {.offset = 0}, {.offset = -1}, {.stride = 0}, {.count = -3}};
    int n = 0;
    for (const SectionOverride &c : cases) {
        KelFile f = richSurvey().build();
        f.forgery.rowComments = f.forgery.blockItems = c;
        const ReadResult r = readBytes(f.toBytes());
        ASSERT_EQ(r.code, OpenResult::Ok) << n << ": " << r.detail.toStdString();
        EXPECT_TRUE(r.document->rowComments.empty() && r.document->blockItems.empty()) << n++;
        EXPECT_EQ(r.document->questions.size(), 6u);
    }
}

TEST(Payload, DocumentWithoutAnswerMatrix)
{
    for (qint32 cellType : {0, 4, -1}) {
        KelFile f = richSurvey().build();
        f.forgery.cellType = cellType;
        const ReadResult r = readBytes(f.toBytes());
        ASSERT_EQ(r.code, OpenResult::Ok) << cellType << ": " << r.detail.toStdString();
        const Document &d = *r.document;
        EXPECT_EQ(d.answers.cellType(), CellType::None);
        EXPECT_EQ(d.rowCount() + d.columnCount(), 0);
        EXPECT_FALSE(d.hasCellComments);
        EXPECT_EQ(d.questions.size(), 6u);
    }
}

TEST(Payload, DerivedLists)
{
    KelFile f = richSurvey().build();
    f.questions[4].isFlexCategory = FileTrue; // a second flag: the first one wins
    const ReadResult r = readBytes(f.toBytes());
    ASSERT_EQ(r.code, OpenResult::Ok);
    const Document &d = *r.document;
    EXPECT_EQ(d.categories, (std::vector<qint32>{0, 1}));
    EXPECT_EQ(d.overviewColumns, (std::vector<qint32>{2, 3, 4, 5}));
    EXPECT_EQ(d.flexCategory, 1);
    EXPECT_EQ(d.maxCategoryAlternatives, 4);
    EXPECT_TRUE(d.hasCellComments);
    EXPECT_EQ(d.text(d.cellComment(5, 5)), QStringLiteral("Cell 5,4"));
    EXPECT_EQ(d.cellComment(1, 2), -1);
    EXPECT_EQ(d.guidText(), QStringLiteral("{04030201-0605-0807-090A-0B0C0D0E0F10}"));
    EXPECT_TRUE(d.blocks[0].includeInCopy);
    EXPECT_FALSE(d.blocks[1].includeInCopy); // a sub-block
}

// The language code (two letters, lower case, trailing blanks cut) and the
// index decimals derived from the header.
TEST(Payload, LanguageCodeAndIndexDecimals)
{
    const std::pair<const char *, const char *> languages[] = {
        {"Sv", "sv"}, {"SVENSKA", "sv"}, {"e", "e"}, {"", ""}, {"en ", "en"}, {"  ", ""}, {" x", " x"}, {"Ö", "ö"}};
    const std::pair<qint32, qint32> decimals[] = {{-100, 0}, {9, 0},    {10, 1},    {100, 2},
                                                  {999, 2},  {1000, 3}, {10000, 4}, {0x7FFFFFFF, 5}};
    for (int i = 0; i < 8; ++i) {
        SurveyBuilder b;
        b.header().language = b.text(QString::fromUtf8(languages[i].first));
        b.header().pointsScale = decimals[i].first;
        const ReadResult r = readBytes(b.toBytes());
        const Document &d = *r.document;
        EXPECT_EQ(d.properties.languageCode, QString::fromUtf8(languages[i].second)) << languages[i].first;
        EXPECT_EQ(d.properties.indexDecimals, decimals[i].second) << decimals[i].first;
    }
}

// Texts are UTF-16 code units; surrogate pairs and empty texts survive.
TEST(Payload, TextsRoundTrip)
{
    SurveyBuilder b;
    const QStringList texts = {QString(), QStringLiteral("Åsa Öberg"), QString::fromUtf8("\xF0\x9F\x98\x80 smile")};
    for (const QString &t : texts)
        b.file().texts.add(t);
    EXPECT_EQ(readBytes(b.toBytes()).document->textPool, texts);
}

} // namespace
} // namespace kel::test
