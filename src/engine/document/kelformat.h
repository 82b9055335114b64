// SPDX-License-Identifier: GPL-3.0-or-later
// Byte layout of KEL files, shared by the reader and the test-document writer
// so that both speak of the same offsets by name.
#pragma once

#include <cstdint>

namespace kel::format {

inline constexpr std::uint32_t Magic1 = 0x5A8BF098u;
inline constexpr std::uint32_t Magic2 = 0x328E4451u;

// Container header (file offsets).
inline constexpr int ContainerHeaderSize = 32;
inline constexpr int OffMagic1 = 0;
inline constexpr int OffMagic2 = 4;
inline constexpr int OffRevision = 8;
inline constexpr int OffCompatibleRevision = 12;
inline constexpr int OffFileLength = 16;
inline constexpr int OffPayloadLength = 20;
inline constexpr int OffStoredLength = 24;
inline constexpr int OffHeaderLength = 28;

/// Files this large are refused on the Windows 9x family only.
inline constexpr std::int64_t Win9xFileLimit = 10000001;
/// Largest answer matrix (rows x columns) any reader accepts.
inline constexpr std::int64_t MaxCells = 1000000;

// Payload header (payload offsets).
inline constexpr int PayloadHeaderSize = 288;
inline constexpr int PhGuid = 0;
inline constexpr int PhTextTableOffset = 16;
inline constexpr int PhTextCount = 20;
inline constexpr int PhAnswersOffset = 24;
inline constexpr int PhCellType = 28;
inline constexpr int PhRowCount = 32;
inline constexpr int PhColumnCount = 36;
inline constexpr int PhUnused40 = 40;
inline constexpr int PhAlternatives = 44; // offset, stride, count
inline constexpr int PhQuestions = 56;
inline constexpr int PhRowComments = 68;
inline constexpr int PhBlocks = 80;
inline constexpr int PhBlockItems = 92;
inline constexpr int PhProjectNumber = 104;
inline constexpr int PhProjectName = 108;
inline constexpr int PhCopyright = 112;
inline constexpr int PhComment = 116;
inline constexpr int PhVersionMajor = 120;
inline constexpr int PhVersionMinor = 124;
inline constexpr int PhVersionBuild = 128;
inline constexpr int PhCreated = 132;
inline constexpr int PhUnused140 = 140;
inline constexpr int PhUnused144 = 144;
inline constexpr int PhLanguage = 148;
inline constexpr int PhAllowCopy = 152;
inline constexpr int PhAllowPrint = 154;
inline constexpr int PhAllowSavePicture = 156;
inline constexpr int PhPointsScale = 160;
inline constexpr int PhIndexName = 164;
inline constexpr int PhIndexLineText0 = 168;
inline constexpr int PhIndexLineText1 = 172;
inline constexpr int PhIndexLineText3 = 176;
inline constexpr int PhIndexLineText4 = 180;
inline constexpr int PhStatusPanel2Tip = 184;
inline constexpr int PhStatusPanel3Tip = 188;
inline constexpr int PhTotalText = 192;
inline constexpr int PhMinimumSelection = 196;
inline constexpr int PhMinimumGraphSelection = 200;
inline constexpr int PhSelectionTooSmallText = 204;
inline constexpr int PhHasRowComments = 208;
inline constexpr int PhFirstAlternativeIsNoAnswer = 210;
inline constexpr int PhSheetColourA = 212;
inline constexpr int PhSheetColourB = 216;
inline constexpr int PhSheetColours = 220;               // 4 colours
inline constexpr int PhIndexLineText2 = 236;             // rev >= 2
inline constexpr int PhUnused240 = 240;                  // rev >= 4
inline constexpr int PhCellCommentsOffset = 244;         // rev >= 4
inline constexpr int PhCellCommentStride = 248;          // rev >= 4
inline constexpr int PhRowOrder = 252;                   // rev >= 5
inline constexpr int PhMinimumComplementSelection = 256; // rev >= 5
inline constexpr int PhTotalIndex = 260;                 // rev >= 5
inline constexpr int PhUnused268 = 268;                  // rev >= 6
inline constexpr int PhIndexFlags = 272;                 // rev >= 9
inline constexpr int PhMaxPoints = 276;                  // rev >= 9
inline constexpr int PhRowOrderThreshold = 280;          // rev >= 9
inline constexpr int PhAllowCopyData = 284;              // rev >= 9

// Record read sizes: the reader always takes this many bytes per record,
// whatever the stride. A revision-9 writer uses stride = read size.
inline constexpr int AlternativeReadSize = 40;
inline constexpr int QuestionReadSize = 68;
inline constexpr int RowCommentReadSize = 8;
inline constexpr int BlockReadSize = 40;
inline constexpr int BlockItemReadSize = 8;

/// The strides writers of each revision used (what old files carry).
struct Strides {
    int alternative;
    int question;
    int rowComment;
    int block;
    int blockItem;
};
/// Record sizes as the given revision defined them: every field it knows,
/// padded to 4 bytes as the records of revision 1 already were (the 2 bytes
/// after InTotalIndex, and after IsFlexCategory from revision 6).
constexpr Strides stridesForRevision(int revision)
{
    return Strides{
        revision >= 7       ? 40
            : revision >= 3 ? 36
                            : 28,
        revision >= 8       ? 68
            : revision >= 6 ? 60
            : revision >= 2 ? 56
                            : 52,
        revision >= 4 ? 8 : 4,
        revision >= 8       ? 40
            : revision >= 2 ? 36
                            : 32,
        8,
    };
}

} // namespace kel::format
