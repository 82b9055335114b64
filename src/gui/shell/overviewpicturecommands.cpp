// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/shell/overviewpicturecommands.h"

#include "engine/document/documentsession.h"
#include "engine/overview/overviewtext.h"
#include "gui/overview/sheetview.h"
#include "gui/pictures/picturecommands.h"
#include "gui/pictures/printformatdialog.h"
#include "gui/shell/mainwindow.h"
#include "gui/common/waitcursor.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/picturewriter.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QAction>
#include <QDir>
#include "gui/common/filedialogs.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QPrinterInfo>
#include <QStandardPaths>

namespace kel {

OverviewCommands::OverviewCommands(MainWindow &window) : QObject(&window), mWindow(window)
{
    const MainMenus &m = window.menus();
    for (QAction *a : {m.mnuECopy, m.mnuPCopy})
        connect(a, &QAction::triggered, this, &OverviewCommands::copyOverview);
    for (QAction *a : {m.mnuECopyHeadersAndTotals, m.mnuPCopyHeadersAndTotals})
        connect(a, &QAction::triggered, this, &OverviewCommands::copyHeadersAndTotals);
    for (QAction *a : {m.mnuFSaveAs, m.mnuPSaveAs})
        connect(a, &QAction::triggered, this, &OverviewCommands::saveOverviewAs);
    for (QAction *a : {m.mnuECopyData, m.mnuPCopyData})
        connect(a, &QAction::triggered, this, &OverviewCommands::copyOverviewData);
    for (QAction *a : {m.mnuFPrint, m.mnuPPrint})
        connect(a, &QAction::triggered, this, &OverviewCommands::printOverview);
    connect(m.mnuPCopyThisRowsAnswers, &QAction::triggered, this, &OverviewCommands::copyThisRowsAnswers);
    connect(m.mnuFPrintFormat, &QAction::triggered, this, &OverviewCommands::printFormat);
    // A copied overview draws from the document when it is pasted.
    connect(&window.session(), &DocumentSession::documentClosing, this, [this] { settlePictureClipboard(mClipboard); });
    // The row under the pointer when the popup menu opens.
    connect(window.sheetView(), &SheetView::popupRequested, this, [this](const SheetHit &hit, const QPoint &) {
        mPopupRow = hit.place == SheetPlace::AnswerCell ? hit.row : -1;
    });
}

void OverviewCommands::message(QMessageBox::Icon icon, const QString &title, const QString &text)
{
    if (mMessage) {
        mMessage(icon, title, text);
        return;
    }
    QMessageBox box(icon, title, text, QMessageBox::Ok, &mWindow);
    box.exec();
}

void OverviewCommands::copyPicture(bool headersOnly)
{
    const SheetView *sheet = mWindow.sheetView();
    if (!mWindow.document() || !sheet->hasSheet())
        return;
    WaitCursor wait;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Copying overview...", "Kopierar översikt...", false);
    const SheetInput &input = sheet->input();
    Picture picture =
        overviewPicture(input, SheetMode::CopyPicture,
                        headersOnly ? OverviewPictureContent::HeadersAndTotals : OverviewPictureContent::Answers,
                        input.maxRowsDisplayed == -1);
    picture.description = applicationTitle();
    const int result = copyPictureToClipboard(picture, mClipboard);
    if (result != ClipboardOk) {
        status.clearStatus();
        message(QMessageBox::Critical, pickText(mWindow.isSwedish(), "Copy Overview", "Kopiera översikt"),
                clipboardFailureMessage(result, true, mWindow.isSwedish()));
        return;
    }
    status.setStatus("Overview copied!", "Översikt kopierad!", true);
}

void OverviewCommands::copyOverview()
{
    copyPicture(false);
}

void OverviewCommands::copyHeadersAndTotals()
{
    copyPicture(true);
}

void OverviewCommands::saveOverviewAs()
{
    const SheetView *sheet = mWindow.sheetView();
    if (!mWindow.document() || !sheet->hasSheet())
        return;
    const bool sv = mWindow.isSwedish();
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Saving overview...", "Sparar översikt...", false);

    LastSettings &settings = mWindow.lastSettings();
    const QString folder =
        pictureSaveFolder(settings.graphSaveFolder, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
                          QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const std::vector<SaveFilter> filters = saveFilters(SaveKind::Overview, sv, platformShowsFileExtensions());
    QStringList names;
    for (const SaveFilter &f : filters)
        names << f.description;
    const QString title = pickText(sv, "Save Overview", "Spara översikt");
    const QString defaultName = QStringLiteral("abc.emf");
    const int preselected = preselectedFilter(filters, settings.graphSaveFormat);
    std::pair<QString, QString> chosen;
    if (mChooseFile) {
        chosen = mChooseFile(title, folder, defaultName, names, preselected);
    } else {
        QFileDialog dialog(&mWindow, title, QDir(folder).filePath(defaultName));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        prepareFileDialog(dialog, mWindow.isSwedish());
        dialog.setNameFilters(names);
        dialog.selectNameFilter(names.value(preselected));
        if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
            chosen = {dialog.selectedFiles().constFirst(), dialog.selectedNameFilter()};
    }
    if (chosen.first.isEmpty()) {
        status.clearStatus();
        return;
    }
    settings.graphSaveFolder = QFileInfo(chosen.first).absolutePath();
    const SaveChoice choice = resolveSaveChoice(filters, chosen.first, chosen.second, false);
    if (!choice.format) {
        status.clearStatus();
        message(QMessageBox::Critical, title,
                pickText(sv, "The overview could not be saved since you did not select what file format you wanted!",
                         "Översikten kunde inte sparas eftersom du inte angav vilket filformat du ville ha!"));
        return;
    }
    settings.graphSaveFormat = choice.settingValue;

    WaitCursor wait;
    const SheetInput &input = sheet->input();
    Picture picture =
        overviewPicture(input, *choice.format == PictureFormat::Wmf ? SheetMode::SaveWmf : SheetMode::SaveEmf,
                        OverviewPictureContent::Answers, input.maxRowsDisplayed == -1);
    picture.description = applicationTitle();
    if (writePicture(picture, *choice.format, choice.path))
        status.setStatus("Overview saved!", "Översikt sparad!", true);
    else
        status.setStatus("Overview could not be saved!", "Översikt kunde inte sparas!", true);
}

void OverviewCommands::copyOverviewData()
{
    const SheetView *sheet = mWindow.sheetView();
    const Document *doc = mWindow.document();
    if (!doc || !sheet->hasSheet() || !mWindow.mayOutput(OutputCommand::CopyOverviewAsData))
        return;
    WaitCursor wait;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Copying overview data...", "Kopierar översiktsdata...", false);
    copyTextToClipboard(overviewDataText(*doc, sheet->input().rows, sheet->input().columns), mClipboard);
    status.clearStatus();
}

void OverviewCommands::copyThisRowsAnswers()
{
    const SheetView *sheet = mWindow.sheetView();
    const Document *doc = mWindow.document();
    if (!doc || !sheet->hasSheet() || mPopupRow < 0 || !mWindow.mayOutput(OutputCommand::CopyThisRowsAnswers))
        return;
    WaitCursor wait;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Copying the row's answers...", "Kopierar radens svar...", false);
    copyTextToClipboard(rowAnswersText(*doc, mPopupRow, sheet->input().columns), mClipboard);
    status.clearStatus();
}

void OverviewCommands::printOverview()
{
    // The overview itself is not sent to a printer: the command only tells
    // the user it ran.
    WaitCursor wait;
    StatusLine &status = mWindow.statusLine();
    status.setStatus("Printing overview...", "Skriver ut översikt...", false);
    status.setStatus("Overview printed!", "Översikt utskriven!", true);
}

void OverviewCommands::printFormat()
{
    LastSettings &settings = mWindow.lastSettings();
    PrintFormatDialog dialog(settings, QPrinterInfo::availablePrinterNames(),
                             marginUnit(QLocale().measurementSystem(), mWindow.isSwedish()), mWindow.isSwedish(),
                             QLocale(), &mWindow);
    if (dialog.exec() == QDialog::Accepted)
        dialog.storeInto(settings);
}

} // namespace kel
