// SPDX-License-Identifier: GPL-3.0-or-later
// Every text the program shows exists in English and Swedish; which one is
// shown is decided once at start-up and handed around as a plain flag.
#pragma once

#include <QString>

namespace kel {

inline constexpr char ApplicationTitle[] = "KEL Viewer";

/// Picks the English or the Swedish literal (both UTF-8).
inline QString pickText(bool isSwedish, const char *english, const char *swedish)
{
    return QString::fromUtf8(isSwedish ? swedish : english);
}

} // namespace kel
