// SPDX-License-Identifier: GPL-3.0-or-later
// The language of the texts the document's author wrote. Words the program
// adds inside those texts (graph names, chart labels, totals, the flex total)
// follow it, whatever the interface's language.
#pragma once

#include "engine/document/document.h"

namespace kel {

/// True when the document's language code is "sv".
inline bool documentIsSwedish(const Document &doc)
{
    return doc.properties.languageCode == QLatin1String("sv");
}

} // namespace kel
