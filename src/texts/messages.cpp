// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/messages.h"

#include "texts/graphtexts.h"

#include "texts/language.h"

namespace kel {

QString openResultMessage(OpenResult result, bool isSwedish)
{
    const QString title = applicationTitle();
    switch (result) {
    case OpenResult::Ok: return QString();
    case OpenResult::CannotOpen: return pickText(isSwedish, "Can not open the file!", "Kan inte öppna filen!");
    case OpenResult::NotKel: return pickText(isSwedish, "This is not a KEL file!", "Det här är inte en KEL-fil!");
    case OpenResult::TooOld:
        return pickText(isSwedish, "This KEL file is in an older format that this version of %1 does not support!",
                        "Den här KEL-filen är i ett äldre format som denna version av %1 inte stöder!")
            .arg(title);
    case OpenResult::TooNew:
        return pickText(isSwedish,
                        "This KEL file is in a newer format that this version of %1 does not support! Please upgrade "
                        "your copy of %1!",
                        "Den här KEL-filen är i ett nyare format som denna version av %1 inte stöder! Uppgradera din "
                        "kopia av %1!")
            .arg(title);
    case OpenResult::Damaged: return pickText(isSwedish, "This KEL file is damaged!", "Den här KEL-filen är skadad!");
    case OpenResult::TooBig:
        return pickText(isSwedish, "This KEL file is to big for this version of %1!",
                        "Den här KEL-filen är för stor för den här versionen av %1!")
            .arg(title);
    }
    return QString();
}

QString showRefusalMessage(const Document &doc, const Refusal &refusal, bool isSwedish)
{
    switch (refusal.code) {
    case RefusalCode::NoAnswers:
        return pickText(isSwedish, "There are no answers matching the selection criterias!",
                        "Det finns inga svar som stämmer överens med det urval du gjort!");
    case RefusalCode::TooSmall: return doc.text(doc.properties.selectionTooSmallText);
    case RefusalCode::Blocked: return selectionBlockedMessage(isSwedish);
    case RefusalCode::FlexTotalBlocked: return flexTotalBlockedMessage(isSwedish);
    case RefusalCode::SplitNotAllowed: return splitNotAllowedMessage(isSwedish);
    // The viewer offers only graphs the document has, and kel words this
    // one as a usage error: it is never shown to a user as a refusal.
    case RefusalCode::NoSuchGraph: break;
    }
    return QString();
}

QString flexTotalBlockedMessage(bool isSwedish)
{
    return pickText(isSwedish,
                    "The total cannot be used: it leaves too few respondents outside it! Include more options in the "
                    "total.",
                    "Totalen kan inte användas: den lämnar för få svarande utanför sig! Ta med fler alternativ i "
                    "totalen.");
}

QString buildingOverviewText(bool isSwedish)
{
    return pickText(isSwedish, "Building new overview...", "Skapar ny översikt...");
}

QString overviewBuiltText(bool isSwedish)
{
    return pickText(isSwedish, "New overview built!", "Ny översikt byggd!");
}

QString belowMinimumNotice(qint32 count, qint32 minimum, bool isSwedish)
{
    return pickText(isSwedish,
                    "Only the headers are shown: this selection has %1 respondents, and the survey shows answers "
                    "only for selections of at least %2.",
                    "Endast rubrikerna visas: urvalet har %1 svarande, och undersökningen visar svar bara för urval "
                    "med minst %2.")
        .arg(count)
        .arg(minimum);
}

QString detailWindowHint(bool isSwedish)
{
    return pickText(isSwedish, "Point at an answer in the overview to see its question and index values here.",
                    "Peka på ett svar i översikten för att se dess fråga och indexvärden här.");
}

QString indexExportText(IndexExportText which, bool isSwedish)
{
    switch (which) {
    case IndexExportText::Caption: return pickText(isSwedish, "Copy Indexes", "Kopiera index");
    case IndexExportText::Preparing: return pickText(isSwedish, "Preparing to copy...", "Förbereder kopiering...");
    case IndexExportText::Calculating: return pickText(isSwedish, "Calculating indexes...", "Ränkar ut index...");
    case IndexExportText::Copying:
        return pickText(isSwedish, "Copying indexes to clipboard...", "Kopierar index till urklipp...");
    case IndexExportText::Canceling: return pickText(isSwedish, "Canceling copy...", "Avbryter kopiering...");
    case IndexExportText::Copied:
        return pickText(isSwedish, "Indexes copied to clipboard!", "Index kopierade till urklipp!");
    case IndexExportText::Canceled:
        return pickText(isSwedish, "Copying of indexes was canceled!", "Kopieringen av index avbröts!");
    }
    return QString();
}

QString itemsInSelectionText(bool isSwedish, qint32 count, const QLocale &locale)
{
    return pickText(isSwedish, "Items in selection: ", "Antal i urval: ") + locale.toString(count);
}

QString commentShortenedNote(bool isSwedish)
{
    return pickText(isSwedish, "(Shortened: the comment has %1 characters, of which the first %2 are shown.)",
                    "(Förkortad: kommentaren har %1 tecken, av vilka de första %2 visas.)");
}

QString selectionBlockedMessage(bool isSwedish)
{
    return pickText(isSwedish,
                    "The selection cannot be shown: a category leaves too few respondents outside the selection!",
                    "Urvalet kan inte visas: en kategori lämnar för få svarande utanför urvalet!");
}

} // namespace kel
