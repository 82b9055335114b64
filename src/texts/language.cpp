// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/language.h"

#include <QStringList>

namespace kel {

bool isSwedishLocale(const QLocale &locale)
{
    return locale.language() == QLocale::Swedish;
}

int languageOverrideValue(const QString &value)
{
    const QString v = value.trimmed().toLower();
    if (v.isEmpty())
        return -1;
    // Accept full locale names too: people paste their LANG value.
    const QString language = v.left(2);
    if (v.size() > 2 && v.at(2) != QLatin1Char('_') && v.at(2) != QLatin1Char('-') && v.at(2) != QLatin1Char('.'))
        return -1;
    if (language == QLatin1String("sv"))
        return 1;
    if (language == QLatin1String("en"))
        return 0;
    return -1;
}

bool chooseIsSwedish(const QLocale &uiLocale, const QString &environmentValue, const QString &optionValue)
{
    const int fromOption = languageOverrideValue(optionValue);
    if (fromOption >= 0)
        return fromOption == 1;
    const int fromEnvironment = languageOverrideValue(environmentValue);
    if (fromEnvironment >= 0)
        return fromEnvironment == 1;
    return isSwedishLocale(uiLocale);
}

QLocale userInterfaceLocale()
{
    const QLocale system = QLocale::system();
    const QStringList languages = system.uiLanguages();
    if (!languages.isEmpty())
        return QLocale(languages.first());
    return system;
}

} // namespace kel
