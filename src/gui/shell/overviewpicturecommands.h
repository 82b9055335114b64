// SPDX-License-Identifier: GPL-3.0-or-later
// The overview's copy, save and print commands on the main window's menus
// and the sheet's popup menu. They work on the sheet as last built, never
// on a selection the navigator has not applied.
#pragma once

#include "engine/overview/sheetlayout.h"

#include <QMessageBox>
#include <QObject>

#include <functional>

class QClipboard;

namespace kel {

class MainWindow;

class OverviewCommands : public QObject
{
    Q_OBJECT
public:
    /// Connects itself to the window's menu items; owned by the window.
    explicit OverviewCommands(MainWindow &window);

    /// Message boxes and the save dialog go through these so that tests can
    /// answer them.
    using MessageHandler = std::function<void(QMessageBox::Icon, const QString &title, const QString &text)>;
    void setMessageHandler(MessageHandler handler) { mMessage = std::move(handler); }
    /// Returns the chosen path and the chosen filter text; an empty path is
    /// a cancel.
    using FileChooser = std::function<std::pair<QString, QString>(const QString &title, const QString &folder,
                                                                  const QString &defaultName,
                                                                  const QStringList &filters, int preselected)>;
    void setFileChooser(FileChooser chooser) { mChooseFile = std::move(chooser); }
    void setClipboard(QClipboard *clipboard) { mClipboard = clipboard; }

    void copyOverview();
    void copyHeadersAndTotals();
    void saveOverviewAs();
    void copyOverviewData();
    void copyThisRowsAnswers();
    void printOverview();
    void printFormat();

    /// The row the popup menu was opened over (-1: none).
    qint32 popupRow() const { return mPopupRow; }

private:
    void copyPicture(bool headersOnly);
    void message(QMessageBox::Icon icon, const QString &title, const QString &text);

    MainWindow &mWindow;
    MessageHandler mMessage;
    FileChooser mChooseFile;
    QClipboard *mClipboard = nullptr;
    qint32 mPopupRow = -1;
};

} // namespace kel
