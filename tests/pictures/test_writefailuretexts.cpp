// SPDX-License-Identifier: GPL-3.0-or-later
// Every reason a picture or report file could not be made has its words in
// both languages. The English column is the wording users have always seen;
// it is written out here, not taken from the code under test.
#include "texts/messages.h"

#include <gtest/gtest.h>

#include <set>

namespace kel::test {
namespace {

struct Expected {
    WriteFailureCode code;
    const char *english;
};

// One row per code, in the enum's order: the count and the ends below
// catch a row left out.
const Expected Rows[] = {
    {WriteFailureCode::NoPicture, "There is no picture to write."},
    {WriteFailureCode::TooLargeForImage, "The picture is too large to be made as an image."},
    {WriteFailureCode::TooLargeForBmp, "The picture is too large for a BMP file."},
    {WriteFailureCode::TooLargeForGif, "The picture is too large for a GIF file."},
    {WriteFailureCode::TooLargeForMetafile, "The picture is too large for a Windows metafile."},
    {WriteFailureCode::NotEncoded, "The picture could not be encoded."},
    {WriteFailureCode::EncoderFailed, "The picture could not be encoded."},
    {WriteFailureCode::PdfNotStarted, "The PDF file could not be started."},
    {WriteFailureCode::PngNotStarted, "The PNG file could not be started."},
    {WriteFailureCode::PngNotCompressed, "The PNG file could not be compressed."},
    {WriteFailureCode::NotWritten, "The file could not be written."},
    {WriteFailureCode::ReportNotDrawn, "the report could not be drawn"},
};

TEST(WriteFailureTexts, EveryCodeHasItsEnglishAndASwedishText)
{
    std::set<int> seen;
    for (const Expected &row : Rows) {
        SCOPED_TRACE(row.english);
        seen.insert(int(row.code));
        const WriteFailure failure{row.code, {}};
        const QString english = writeFailureMessage(failure, false);
        const QString swedish = writeFailureMessage(failure, true);
        EXPECT_EQ(english, QString::fromUtf8(row.english));
        EXPECT_FALSE(swedish.isEmpty());
        EXPECT_NE(swedish, english);
    }
    // The table covers the codes from the first to the last, with no gaps.
    EXPECT_EQ(seen.size(), std::size(Rows));
    EXPECT_EQ(*seen.begin(), int(WriteFailureCode::NoPicture));
    EXPECT_EQ(*seen.rbegin(), int(WriteFailureCode::ReportNotDrawn));
    EXPECT_EQ(int(WriteFailureCode::ReportNotDrawn) + 1, int(std::size(Rows)));
}

TEST(WriteFailureTexts, AReasonFromOutsideIsQuotedInBothLanguages)
{
    // The operating system's and the libraries' reasons come in English: the
    // English text is the reason itself, the Swedish one says what failed
    // and then quotes it.
    const QString reason = QStringLiteral("No space left on device");
    const struct {
        WriteFailureCode code;
        const char *swedishStart;
    } rows[] = {{WriteFailureCode::NotWritten, "Filen kunde inte skrivas: "},
                {WriteFailureCode::EncoderFailed, "Bilden kunde inte kodas: "}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.swedishStart);
        EXPECT_EQ(writeFailureMessage({row.code, reason}, false), reason);
        EXPECT_EQ(writeFailureMessage({row.code, reason}, true), QString::fromUtf8(row.swedishStart) + reason);
    }
    // A code that has its own words does not repeat a stray reason.
    EXPECT_EQ(writeFailureMessage({WriteFailureCode::TooLargeForGif, reason}, false),
              QStringLiteral("The picture is too large for a GIF file."));
}

} // namespace
} // namespace kel::test
