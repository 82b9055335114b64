// SPDX-License-Identifier: GPL-3.0-or-later
// Manual check of the overview sheet: `sheetpreview FILE [--mode N] [--png OUT]`
// opens a KEL document, takes every row in its original order and shows the
// sheet view in a window (hovered cells and right clicks are printed), or
// writes the drawn sheet of mode N (0, 1 or 5) to OUT and exits.
#include "engine/document/documentreader.h"
#include "gui/overview/sheetview.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("KEL document"));
    parser.addOption({QStringLiteral("mode"), QStringLiteral("drawing mode for --png"), QStringLiteral("N"), QStringLiteral("0")});
    parser.addOption({QStringLiteral("png"), QStringLiteral("write the sheet picture and exit"), QStringLiteral("OUT")});
    parser.addHelpOption();
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    kel::ReadResult read = kel::readDocumentFile(parser.positionalArguments().first());
    if (!read.document) {
        std::fprintf(stderr, "cannot open: %s\n", qPrintable(read.detail));
        return 1;
    }
    const kel::Document &doc = *read.document;
    kel::SheetInput input;
    input.document = &doc;
    input.columns = doc.overviewColumns;
    for (qint32 r = 0; r < doc.rowCount(); ++r)
        input.rows.push_back(r);
    input.selectionText = doc.text(doc.properties.totalText);
    input.totalIndex = kel::sheetTotalIndex(doc, input.columns, input.rows);

    if (parser.isSet(QStringLiteral("png"))) {
        input.mode = kel::SheetMode(parser.value(QStringLiteral("mode")).toInt());
        kel::SheetTextOffsets offsets;
        const QImage image = kel::renderSheetImage(input, offsets);
        return image.save(parser.value(QStringLiteral("png"))) ? 0 : 1;
    }

    kel::SheetView view;
    view.setWindowTitle(parser.positionalArguments().first());
    view.setHoverEnabled(doc.properties.pointsScale > 0);
    QObject::connect(&view, &kel::SheetView::cellHovered, [](const kel::SheetHit &hit) {
        std::printf("hover place %d column %d line %d row %d question %d\n", int(hit.place), hit.column, hit.line,
                    hit.row, hit.question);
        std::fflush(stdout);
    });
    QObject::connect(&view, &kel::SheetView::popupRequested, [](const kel::SheetHit &hit, const QPoint &) {
        std::printf("popup place %d row %d question %d\n", int(hit.place), hit.row, hit.question);
        std::fflush(stdout);
    });
    view.resize(1200, 760);
    view.show();
    view.setSheet(input);
    return app.exec();
}
