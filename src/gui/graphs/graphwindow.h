// SPDX-License-Identifier: GPL-3.0-or-later
// What both kinds of graph window share: the popup's copy, print, print
// preview, save and close items, enabled by the document's permissions and
// the settings that shape and keep the picture, the popup's keys, and the
// window kept wholly on the screen. A window says what its picture is; the base copies,
// prints and saves it.
#pragma once

#include "gui/pictures/picturecommands.h"
#include "render/pictures/picture.h"

#include <QWidget>

#include <functional>
#include <optional>

class QAction;
class QMenu;

namespace kel {

class StatusLine;
struct UserOptions;

/// What the document allows the window to do with its graph.
struct GraphPermissions {
    bool allowCopy = false;
    bool allowPrint = false;
    bool allowSavePicture = false;
};

/// Where the graph windows' copy, print and save find their settings (the
/// user's settings they point at may change while a window is open).
struct GraphPictureContext {
    const UserOptions *options = nullptr; ///< opaque, white space, copy format
    LastSettings *settings = nullptr;     ///< printer, save folder and format
    bool documentIsSwedish = false;       ///< the printed line's language
    /// Whether printing can work at all (a printer is installed): print and
    /// print preview follow the rule of the print format command.
    bool printerInstalled = false;
    /// Empty: the save dialog and the message box (tests answer instead).
    PictureFileChooser chooseFile;
    PictureErrorReporter reportError;
    /// Empty: the print preview dialog (tests look instead).
    std::function<void(const Picture &picture, const QString &footer)> showPreview;
};

/// Whether the print commands of a graph window can be chosen.
inline bool graphPrintingPossible(const GraphPictureContext &context, const GraphPermissions &permissions)
{
    return context.options && context.settings && context.printerInstalled && permissions.allowPrint;
}

/// The print preview of a graph window's picture, through the context's
/// hook when it has one.
void previewGraphPicture(QWidget *parent, const Picture &picture, const GraphPictureContext &context, bool isSwedish);

/// Moves a graph window that lies partly off the screens' available area
/// back onto it (its size is left alone).
void moveWhollyOnScreen(QWidget &window);

class GraphWindow : public QWidget
{
    Q_OBJECT
public:
    /// The picture copy, print and save make.
    virtual Picture picture() const = 0;

    /// DoCopy: the picture to the clipboard. False when it failed or the
    /// item cannot be chosen.
    bool doCopy();
    bool printGraph();
    bool previewGraph();
    bool saveGraph();

    QMenu *popupMenu() const { return mPopup; }
    QAction *mnuPCopy = nullptr;
    QAction *mnuPPrint = nullptr;
    QAction *mnuPPrintPreview = nullptr;
    QAction *mnuPSave = nullptr;
    QAction *mnuPClose = nullptr;

protected:
    GraphWindow(bool isSwedish, SaveKind saveKind, StatusLine *status, QWidget *parent);

    // The popup is built in the window's order from these; the picture
    // items stay disabled until the context and the permissions are known.
    QAction *addItem(const char *name, const char *english, const char *swedish);
    QAction *addBar(const char *name);
    void addCopyItem();
    void addPrintItems();
    void addSaveItem();
    void addCloseItem();

    void setPictureContext(StatusLine *status, const GraphPictureContext &context);
    void setPermissions(const GraphPermissions &permissions) { mPermissions = permissions; }
    /// Enables the picture items as the context, the permissions and
    /// `hasGraph` allow.
    void updatePictureItems(bool hasGraph = true);
    /// A chart copies in its "Graph Copy Format"; a basic graph in every
    /// format at once.
    virtual std::optional<qint32> copyFormat() const { return std::nullopt; }

    void showEvent(QShowEvent *event) override;
    /// The popup opens from the keyboard as from the right mouse button.
    void keyPressEvent(QKeyEvent *event) override;

    bool mIsSwedish;
    StatusLine *mStatus;
    GraphPermissions mPermissions;
    GraphPictureContext mContext;
    QMenu *mPopup;

private:
    SaveKind mSaveKind;
};

} // namespace kel
