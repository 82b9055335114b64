// SPDX-License-Identifier: GPL-3.0-or-later
// Swedish for the texts of Qt's own dialogs (file dialogs, input boxes,
// message box buttons) that the Swedish catalogue shipped with Qt lacks.
// Installed after Qt's catalogue, so it is asked first.
#pragma once

#include <QTranslator>

#include <span>

namespace kel {

/// One of Qt's texts: the class that shows it (Qt's translation context),
/// its English source and the Swedish the program shows instead.
struct QtText {
    const char *context;
    const char *english;
    const char *swedish;
};

/// Every text the catalogue knows.
std::span<const QtText> qtSwedishTexts();

class QtSwedishCatalogue : public QTranslator
{
public:
    using QTranslator::QTranslator;
    QString translate(const char *context, const char *sourceText, const char *disambiguation = nullptr,
                      int n = -1) const override;
    bool isEmpty() const override { return false; }
};

} // namespace kel
