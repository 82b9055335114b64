// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/graphtexts.h"

#include "texts/language.h"

namespace kel {

TextPair basicGraphStartText(BasicGraphCommand command)
{
    switch (command) {
    case BasicGraphCommand::PopupBlockHistogram:
    case BasicGraphCommand::ViewBlockHistogram: return {"Generating block histogram...", "Skapar blockhistogram..."};
    case BasicGraphCommand::PopupBlockFraction:
        return {"Generating block fraction graph...", "Skapar blockfraktionsgraf..."};
    case BasicGraphCommand::QuestionHistogram: return {"Generating question histogram...", "Skapar frågehistogram..."};
    case BasicGraphCommand::QuestionFraction:
        return {"Generating question fraction graph...", "Skapar frågefraktionsgraf..."};
    case BasicGraphCommand::QuestionFractionSplitDialog:
        // The Swedish text of this one path has always read so.
        return {"Generating question fraction graph...", "Skapar frågefarktionsgraf..."};
    case BasicGraphCommand::ViewBlockFraction:
        return {"Generating block fraction bar graph...", "Skapar blockfraktionsdiagram..."};
    }
    return {};
}

TextPair basicGraphSuccessText(BasicGraphCommand command)
{
    switch (command) {
    case BasicGraphCommand::PopupBlockHistogram:
    case BasicGraphCommand::ViewBlockHistogram: return {"Block histogram generated!", "Blockhistogram skapat!"};
    case BasicGraphCommand::PopupBlockFraction:
        return {"Block fraction graph generated!", "Blockfraktionsgraf skapad!"};
    case BasicGraphCommand::QuestionHistogram: return {"Question histogram generated!", "Frågehistogram skapat!"};
    case BasicGraphCommand::QuestionFraction:
    case BasicGraphCommand::QuestionFractionSplitDialog:
        return {"Question fraction graph generated!", "Frågefraktionsgraf skapad!"};
    case BasicGraphCommand::ViewBlockFraction:
        return {"Block fraction bar graph generated!", "Blockfraktionsdiagram skapad!"};
    }
    return {};
}

TextPair basicGraphFailureText(BasicGraphCommand command)
{
    switch (command) {
    case BasicGraphCommand::PopupBlockHistogram:
        return {"Block histogram generation failed!", "Blockhistogram kunde inte skapas!"};
    case BasicGraphCommand::PopupBlockFraction:
        return {"Block fraction graph generation failed!", "Blockfraktionsgraf kunde inte skapas!"};
    default: break;
    }
    return {};
}

QString blockWithoutQuestionsMessage(bool isSwedish)
{
    return pickText(isSwedish, "The block did not contain any questions!", "Blocket innehöll inga frågor!");
}

QString splitNotAllowedMessage(bool isSwedish)
{
    return pickText(isSwedish,
                    "The graph cannot be split by this question: some of its groups are smaller than the "
                    "document allows!",
                    "Grafen kan inte fördelas på den här frågan: några av grupperna är mindre än dokumentet "
                    "tillåter!");
}

QString graphTooBigMessage(bool isSwedish)
{
    return pickText(isSwedish, "The graph is to big for the window!", "Grafen får inte plats i fönstret!");
}

QString pictureCopyFailureMessage(PictureCopyFailure failure, bool overview, bool isSwedish)
{
    switch (failure) {
    case PictureCopyFailure::TooLarge:
        return overview ? pickText(isSwedish,
                                   "The overview is too large to be copied to the clipboard as a picture. Save it "
                                   "as a picture file with Save Overview As..., or copy its answers with Copy "
                                   "Overview as Data.",
                                   "Översikten är för stor för att kopieras till urklipp som bild. Spara den som "
                                   "bildfil med Spara översikt som..., eller kopiera svaren med Kopiera översikt "
                                   "som data.")
                        : pickText(isSwedish,
                                   "The graph is too large to be copied to the clipboard as a picture. Make the "
                                   "window smaller, or save the graph as a picture file with Save As....",
                                   "Grafen är för stor för att kopieras till urklipp som bild. Gör fönstret mindre, "
                                   "eller spara grafen som bildfil med Spara som....");
    case PictureCopyFailure::NotMade:
        return overview ? pickText(isSwedish, "The overview has nothing to copy as a picture.",
                                   "Översikten har ingenting att kopiera som bild.")
                        : pickText(isSwedish, "The graph has nothing to copy as a picture.",
                                   "Grafen har ingenting att kopiera som bild.");
    case PictureCopyFailure::Refused: break;
    }
    return pickText(isSwedish,
                    "The clipboard did not accept the picture; another program may be holding it. Try again in a "
                    "moment.",
                    "Urklipp tog inte emot bilden; ett annat program kanske håller det. Försök igen om en stund.");
}

} // namespace kel
