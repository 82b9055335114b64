// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer target for the reader of documents' rich text (their own comment
// is RTF written by another tool, so it is untrusted). The input is taken as
// UTF-8, as the document reader hands texts over; both outputs are made.
#include "engine/document/rtftext.h"

#include <QString>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString html = kel::rtfToHtml(text);
    const QString plain = kel::rtfToPlainText(text);
    // Every paragraph and line break of the plain text is one of the HTML:
    // nothing of the text itself can pass for markup.
    if (html.count(QStringLiteral("<p ")) + html.count(QStringLiteral("<br/>")) != plain.count(QLatin1Char('\n')))
        __builtin_trap();
    return 0;
}
