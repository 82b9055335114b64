// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/document/openresult.h"

#include "texts/language.h"

namespace kel {

QString openResultMessage(OpenResult result, bool isSwedish)
{
    const QString title = QString::fromUtf8(ApplicationTitle);
    switch (result) {
    case OpenResult::Ok:
        return QString();
    case OpenResult::CannotOpen:
        return pickText(isSwedish, "Can not open the file!", "Kan inte öppna filen!");
    case OpenResult::NotKel:
        return pickText(isSwedish, "This is not a KEL file!", "Det här är inte en KEL-fil!");
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
    case OpenResult::Damaged:
        return pickText(isSwedish, "This KEL file is damaged!", "Den här KEL-filen är skadad!");
    case OpenResult::TooBig:
        return pickText(isSwedish, "This KEL file is to big for this version of %1!",
                        "Den här KEL-filen är för stor för den här versionen av %1!")
            .arg(title);
    }
    return QString();
}

} // namespace kel
