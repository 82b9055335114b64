// SPDX-License-Identifier: GPL-3.0-or-later
// The file properties view: what the open document says about itself. It
// only shows; nothing in it changes the document.
#pragma once

#include "texts/propertiestexts.h"

#include <QDialog>

class QGroupBox;
class QLabel;
class QTextEdit;

namespace kel {

class PropertiesView : public QDialog
{
    Q_OBJECT
public:
    PropertiesView(const Document &doc, bool isSwedish, const QLocale &locale, QWidget *parent = nullptr);

    const PropertiesTexts &texts() const { return mTexts; }

private:
    PropertiesTexts mTexts;
};

} // namespace kel
