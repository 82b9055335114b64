// SPDX-License-Identifier: GPL-3.0-or-later
// frmBasicGraph: a pooled window that shows one question or block graph,
// drawn by the basic graph renderer. It keeps its own copy of the
// description, so later graphs never change it.
#pragma once

#include "gui/graphs/graphwindow.h"
#include "render/graphs/basicgraphrenderer.h"
#include "render/pictures/picture.h"

#include <QWidget>

#include <functional>
#include <optional>

class QAction;
class QMenu;
class QScrollBar;

namespace kel {

class StatusLine;
struct UserOptions;

/// The stored default size of fraction graph windows.
struct FractionGraphDefaultSize {
    qint32 windowWidthTwips = 9300; ///< "Question Graph Window Width"
    qint32 barWidth = 46;           ///< "Question Graph Bar Width", pixels per group
};

/// The first size of a histogram window: `start` (the stored default size),
/// grown step by step in both directions up to `available` until `fits`
/// says the graph's layout fits. When nothing up to `available` fits, the
/// whole available area.
QSize grownGraphWindowSize(QSize start, QSize available, const std::function<bool(QSize)> &fits);

/// A fraction graph window's first size and the height its graph is drawn
/// at: the rules' size when it fits in `available`; else the window takes
/// at most the available width and height while the graph keeps the rules'
/// height and scrolls.
struct FractionWindowFit {
    QSize window;
    int graphHeight = 0;
};
FractionWindowFit fittedFractionWindow(QSize formula, QSize available, int scrollBarWidth);

class BasicGraphWindow : public GraphWindow
{
    Q_OBJECT
public:
    BasicGraphWindow(bool isSwedish, StatusLine &status, QWidget *parent = nullptr);
    ~BasicGraphWindow() override;

    /// Takes a copy of `description`, turns percentage mode off, shows the
    /// menu items of its kind and, for fraction graphs, sizes the window from
    /// `defaults`. Returns false when nothing could be set up.
    bool setUpGraph(const BasicGraphDescription &description, const GraphPermissions &permissions,
                    const FractionGraphDefaultSize &defaults);

    /// Called by Set as Default Size with the values to store.
    void setDefaultSizeHandler(std::function<void(const FractionGraphDefaultSize &)> handler)
    {
        mStoreDefaultSize = std::move(handler);
    }

    const BasicGraphDescription &description() const;
    bool percentage() const { return mPercentage; }
    void setPercentage(bool on);
    /// The default size that Set as Default Size would store now.
    std::optional<FractionGraphDefaultSize> currentDefaultSize() const;
    /// Whether the last paint found the graph too big for the window.
    bool graphTooBig() const { return mTooBig; }
    /// The size the graph is drawn at: the window's, or taller when a
    /// fraction graph taller than the screen scrolls inside the window.
    QSize graphSize() const;
    /// The screen area (less the window frame) the window must fit in;
    /// tests may set their own.
    void setAvailableArea(const QSize &area) { mAvailable = area; }
    QSize availableArea() const;
    /// The vertical scroll bar of a graph that scrolls.
    QScrollBar *scrollBar() const { return mScroll; }

    /// Copy, print and save need the settings that shape and keep the
    /// picture, and the document's language for the printed line; until they
    /// are given those items stay disabled.
    void setPictureContext(const GraphPictureContext &context);
    /// The graph as copy and save make it: at twice the window's size (four
    /// times for the office option), the margin and background as the
    /// settings say. It keeps its own copy of the graph.
    Picture picture() const override;
    Picture picture(const BasicGraphPictureOptions &options) const;

    QAction *mnuPUsePercentage = nullptr;
    QAction *mnuPBar1 = nullptr;
    QAction *mnuPCopyValues = nullptr;
    QAction *mnuPCopyLegends = nullptr;
    QAction *mnuPBar3 = nullptr;
    QAction *mnuPSetAsDefaultSize = nullptr;

    void copyValues();
    void copyLegends();
    void setAsDefaultSize();
    void updateAccessibleText();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    BasicGraphUnits screenUnits() const;
    bool layoutFits(const QSize &windowSize) const;
    void updateScrollBar();

    std::optional<BasicGraphRenderer> mRenderer;
    bool mPercentage = false;
    bool mTooBig = false;
    std::function<void(const FractionGraphDefaultSize &)> mStoreDefaultSize;
    int mGraphHeight = 0; ///< > height(): the graph scrolls; else the window's height
    QSize mAvailable;
    QScrollBar *mScroll;
};

} // namespace kel
