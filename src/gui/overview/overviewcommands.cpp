// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/overview/overviewcommands.h"

#include "engine/overview/comments.h"
#include "engine/overview/overviewtext.h"
#include "gui/common/filedialogs.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/overview/minioverviewwindow.h"
#include "gui/overview/sheetview.h"
#include "gui/overview/textpopup.h"
#include "gui/pictures/picturecommands.h"
#include "gui/pictures/printformatdialog.h"
#include "render/overview/overviewpicture.h"
#include "render/pictures/picturewriter.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPrinterInfo>
#include <QScreen>
#include <QStandardPaths>

namespace kel {

namespace {

// A new mini-overview goes beside the others: three abreast on the screen
// of the main window, the next three a little lower, all below the main
// window's menu bar so that the next copy can still be made.
void placeNewMiniOverview(const QWidget &main, MiniOverviewWindow &mini, int slot)
{
    const QScreen *screen = main.screen() ? main.screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    const int columnWidth = area.width() / 3;
    const int top = std::max(area.top(), main.geometry().top()) + area.height() / 10;
    const QSize size = mini.preferredSize(QSize(columnWidth - 16, area.bottom() - top - 120));
    mini.resize(size);
    mini.move(area.left() + (slot % 3) * columnWidth + 8, top + (slot / 3) * 40);
}

} // namespace

OverviewCommands::OverviewCommands(const CommandContext &context, const SheetView &sheet, QObject *parent)
    : QObject(parent), mContext(context), mSheet(sheet)
{
    // A copied overview draws from the document when it is pasted.
    connect(&context.session.documents(), &DocumentSession::documentClosing, this,
            [this] { settlePictureClipboard(mClipboard); });
}

bool OverviewCommands::hasSheet() const
{
    return mContext.session.document() && mContext.session.hasSheet();
}

void OverviewCommands::copyPicture(bool headersOnly)
{
    if (!hasSheet())
        return;
    WaitCursor wait;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Copying overview...", "Kopierar översikt...", false);
    const SheetInput &input = mSheet.input();
    Picture picture =
        overviewPicture(input, SheetMode::CopyPicture,
                        headersOnly ? OverviewPictureContent::HeadersAndTotals : OverviewPictureContent::Answers,
                        input.maxRowsDisplayed == -1);
    picture.description = applicationTitle();
    const int result = copyPictureToClipboard(picture, mClipboard);
    if (result != ClipboardOk) {
        status.clearStatus();
        mContext.host.showMessage(QMessageBox::Critical,
                                  pickText(mContext.settings.isSwedish, "Copy Overview", "Kopiera översikt"),
                                  clipboardFailureMessage(result, true, mContext.settings.isSwedish));
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
    if (!hasSheet())
        return;
    const bool sv = mContext.settings.isSwedish;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Saving overview...", "Sparar översikt...", false);

    LastSettings &settings = mContext.settings.last;
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
        QFileDialog dialog(mContext.host.dialogParent(), title, QDir(folder).filePath(defaultName));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        prepareFileDialog(dialog, mContext.settings.isSwedish);
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
        mContext.host.showMessage(
            QMessageBox::Critical, title,
            pickText(sv, "The overview could not be saved since you did not select what file format you wanted!",
                     "Översikten kunde inte sparas eftersom du inte angav vilket filformat du ville ha!"));
        return;
    }
    settings.graphSaveFormat = choice.settingValue;

    WaitCursor wait;
    const SheetInput &input = mSheet.input();
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
    const Document *doc = mContext.session.document();
    if (!hasSheet() || !mContext.session.mayOutput(OutputCommand::CopyOverviewAsData))
        return;
    WaitCursor wait;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Copying overview data...", "Kopierar översiktsdata...", false);
    copyTextToClipboard(overviewDataText(*doc, mContext.session.shownSheet().rows, doc->overviewColumns), mClipboard);
    status.clearStatus();
}

void OverviewCommands::copyThisRowsAnswers()
{
    const Document *doc = mContext.session.document();
    const qint32 row = mContext.session.popupAnswerRow();
    if (!hasSheet() || row < 0 || !mContext.session.mayOutput(OutputCommand::CopyThisRowsAnswers))
        return;
    WaitCursor wait;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Copying the row's answers...", "Kopierar radens svar...", false);
    copyTextToClipboard(rowAnswersText(*doc, row, doc->overviewColumns), mClipboard);
    status.clearStatus();
}

void OverviewCommands::printOverview()
{
    // The overview itself is not sent to a printer: the command only tells
    // the user it ran.
    WaitCursor wait;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Printing overview...", "Skriver ut översikt...", false);
    status.setStatus("Overview printed!", "Översikt utskriven!", true);
}

void OverviewCommands::printFormat()
{
    LastSettings &settings = mContext.settings.last;
    PrintFormatDialog dialog(settings, QPrinterInfo::availablePrinterNames(),
                             marginUnit(QLocale().measurementSystem(), mContext.settings.isSwedish),
                             mContext.settings.isSwedish, QLocale(), mContext.host.dialogParent());
    if (dialog.exec() == QDialog::Accepted)
        dialog.storeInto(settings);
}

bool OverviewCommands::copyToMiniOverview()
{
    ViewerSession &session = mContext.session;
    if (!hasSheet())
        return false;
    const bool rows = session.mayOutput(OutputCommand::CopyToMiniOverview);
    WaitCursor wait;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Copying overview to mini-overview...", "Kopierar översikt till miniöversikt...", false);

    WindowSlotTable &table = session.windowSlots(SlotTable::MiniOverviews);
    const int slot = choosePoolSlot(table);
    const bool fresh = !table[std::size_t(slot)].inUse || !table[std::size_t(slot)].window;
    QWidget *main = mContext.host.dialogParent();
    const bool swedish = mContext.settings.isSwedish;
    auto *mini = qobject_cast<MiniOverviewWindow *>(
        takePooledWindow(table, [main, swedish] { return new MiniOverviewWindow(swedish, main); }));
    SheetInput input = mSheet.input();
    input.maxRowsDisplayed = rows ? -1 : 0;
    if (!mini || !mini->initializeData(std::move(input))) {
        status.setStatus("Overview could not be copied to mini-overview!",
                         "Översikt kunde inte kopieras till miniöversikt!", true);
        return false;
    }
    if (fresh)
        placeNewMiniOverview(*main, *mini, slot);
    mini->show();
    mini->raise();
    status.setStatus("Overview copied to mini-overview!", "Översikt kopierad till miniöversikt!", true);
    return true;
}

void OverviewCommands::showComments(const CommentsDocument &comments, const QString &caption)
{
    if (comments.isEmpty())
        return;
    const bool sv = mContext.settings.isSwedish;
    QWidget *main = mContext.host.dialogParent();
    auto *popup = new TextPopup(sv, main);
    popup->setAttribute(Qt::WA_DeleteOnClose);
    popup->setWindowTitle(caption);
    popup->setHtml(commentsHtml(comments, commentShortenedNote(sv)));
    // Over the middle of the main window, where the user is looking.
    popup->move(main->geometry().center() - popup->rect().center());
    popup->show();
    popup->raise();
    popup->activateWindow();
}

void OverviewCommands::showPopupComments(CommentsOf which)
{
    const Document *doc = mContext.session.document();
    const bool ofRow = which == CommentsOf::Row;
    if (!doc || !mContext.session.mayOutput(ofRow ? OutputCommand::RowsComments : OutputCommand::ColumnsComments))
        return;
    const bool sv = mContext.settings.isSwedish;
    StatusLine &status = mContext.host.statusLine();
    const SheetHit &hit = mContext.session.popupHit();
    if (ofRow) {
        status.setStatus("Shows row's comments...", "Visar radens kommentarer...", false);
        showComments(rowComments(*doc, hit.row, doc->overviewColumns),
                     pickText(sv, "Show Row's Comments", "Visa radens kommentarer"));
    } else {
        status.setStatus("Shows column's comments...", "Visar kolumnens kommentarer...", false);
        showComments(columnComments(*doc, hit.question, mContext.session.shownSheet().rows),
                     pickText(sv, "Show Column's Comments", "Visa kolumnens kommentarer"));
    }
    status.clearStatus();
}

void OverviewCommands::showAllComments()
{
    const Document *doc = mContext.session.document();
    if (!doc || !mContext.session.mayOutput(OutputCommand::AllComments))
        return;
    const bool sv = mContext.settings.isSwedish;
    StatusLine &status = mContext.host.statusLine();
    status.setStatus("Showing comments...", "Visar kommentarer...", false);
    const CommentsDocument comments = allComments(*doc, mContext.session.shownSheet().rows);
    if (comments.isEmpty())
        mContext.host.showMessage(QMessageBox::Warning, pickText(sv, "Show Comments", "Visa kommentarer"),
                                  pickText(sv, "Could not find any comments!", "Kunde inte hitta några kommentarer!"));
    else
        showComments(comments, pickText(sv, "All Comments", "Alla kommentarer"));
    status.clearStatus();
}

} // namespace kel
