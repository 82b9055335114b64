// SPDX-License-Identifier: GPL-3.0-or-later
// Every text the program shows exists in English and Swedish; which one is
// shown is decided once at start-up and handed around as a plain flag.
#pragma once

#include "engine/settings/settingsstore.h"

#include <QLocale>
#include <QString>

namespace kel {

/// Picks the English or the Swedish literal (both UTF-8).
inline QString pickText(bool isSwedish, const char *english, const char *swedish)
{
    return QString::fromUtf8(isSwedish ? swedish : english);
}

/// The application title as a QString, for building messages.
inline QString applicationTitle()
{
    return QString::fromUtf8(ApplicationTitle);
}

/// Name of the environment variable that overrides the interface language.
inline constexpr char LanguageEnvironmentVariable[] = "KELVIEWER_LANG";

/// True for Swedish in any country (Sweden, Finland, ...); Norwegian and
/// Danish are not Swedish.
bool isSwedishLocale(const QLocale &locale);

/// Reads an override value: "sv" -> 1, "en" -> 0, anything else -> -1 (no
/// override). Case and surrounding blanks are ignored; "sv_SE"/"en-GB" count.
int languageOverrideValue(const QString &value);

/// The once-per-run language choice. `optionValue` (from `--lang`) wins over
/// `environmentValue`; without a valid override the user-interface locale
/// decides.
bool chooseIsSwedish(const QLocale &uiLocale, const QString &environmentValue, const QString &optionValue);

/// The locale whose language the user chose for the interface: the first of
/// the system's user-interface languages, else the system locale.
QLocale userInterfaceLocale();

} // namespace kel
