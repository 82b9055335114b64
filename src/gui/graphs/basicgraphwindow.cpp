// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/basicgraphwindow.h"

#include "engine/settings/settingsstore.h"
#include "gui/common/placement.h"
#include "gui/common/waitcursor.h"
#include "gui/pictures/picturecommands.h"
#include "texts/graphtexts.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHash>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QImage>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>

#include <cmath>

namespace kel {

namespace {

constexpr int Margin = BasicGraphMargin;
constexpr double TwipsPerInch = 1440.0;
/// The size a histogram window starts from.
constexpr QSize DefaultGraphWindowSize(620, 460);
/// What the window manager's frame takes, before the window has one.
constexpr QSize FrameAllowance(16, 48);

} // namespace

QSize grownGraphWindowSize(QSize start, QSize available, const std::function<bool(QSize)> &fits)
{
    available = available.expandedTo(QSize(200, 120));
    QSize size = start.boundedTo(available);
    if (fits(size))
        return size;
    const int stepX = std::max(1, start.width() / 8);
    const int stepY = std::max(1, start.height() / 8);
    const int widthSteps = (available.width() - size.width() + stepX - 1) / stepX;
    const int heightSteps = (available.height() - size.height() + stepY - 1) / stepY;
    // The fewest steps first and, among as many, the wider before the
    // taller: a graph that only needs width does not get a taller window.
    for (int n = 1; n <= widthSteps + heightSteps; ++n) {
        for (int i = std::min(n, widthSteps); i >= 0 && n - i <= heightSteps; --i) {
            const QSize tried(std::min(available.width(), size.width() + i * stepX),
                              std::min(available.height(), size.height() + (n - i) * stepY));
            if (fits(tried))
                return tried;
        }
    }
    return available;
}

FractionWindowFit fittedFractionWindow(QSize formula, QSize available, int scrollBarWidth)
{
    FractionWindowFit fit;
    fit.graphHeight = formula.height();
    if (formula.height() <= available.height()) {
        fit.window = QSize(std::min(formula.width(), std::max(available.width(), 1)), formula.height());
        return fit;
    }
    // The graph keeps its height and scrolls; the bar comes beside it.
    fit.window = QSize(std::min(formula.width() + scrollBarWidth, std::max(available.width(), 1)),
                       std::max(available.height(), 1));
    return fit;
}

BasicGraphWindow::BasicGraphWindow(bool isSwedish, StatusLine &status, QWidget *parent)
    : GraphWindow(isSwedish, SaveKind::BasicGraph, &status, parent)
{
    setObjectName(QStringLiteral("frmBasicGraph"));
    setWindowTitle(QStringLiteral("Basic Graph"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    resize(DefaultGraphWindowSize);
    mScroll = new QScrollBar(Qt::Vertical, this);
    mScroll->setObjectName(QStringLiteral("vsbGraph"));
    mScroll->hide();
    connect(mScroll, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));

    mnuPUsePercentage = addItem("mnuPUsePercentage", "&Use percentage", "Använd &procent");
    mnuPUsePercentage->setCheckable(true);
    mnuPBar1 = addBar("mnuPBar1");
    addCopyItem();
    mnuPCopyValues = addItem("mnuPCopyValues", "Copy &values", "Kopiera &värden");
    mnuPCopyLegends = addItem("mnuPCopyLegends", "Copy l&egends", "Kopiera &förklaringar");
    addPrintItems();
    addSaveItem();
    mnuPBar3 = addBar("mnuPBar3");
    mnuPSetAsDefaultSize = addItem("mnuPSetAsDefaultSize", "Set as &Default Size", "Sätt som stan&dardstorlek");
    addBar("mnuPBar2");
    addCloseItem();

    connect(mnuPUsePercentage, &QAction::triggered, this, [this](bool on) {
        WaitCursor wait;
        setPercentage(on);
    });
    connect(mnuPCopyValues, &QAction::triggered, this, &BasicGraphWindow::copyValues);
    connect(mnuPCopyLegends, &QAction::triggered, this, &BasicGraphWindow::copyLegends);
    connect(mnuPSetAsDefaultSize, &QAction::triggered, this, &BasicGraphWindow::setAsDefaultSize);
}

BasicGraphWindow::~BasicGraphWindow() = default;

BasicGraphUnits BasicGraphWindow::screenUnits() const
{
    return BasicGraphUnits{graphScaleFactor(logicalDpiX()), graphScaleFactor(logicalDpiY())};
}

const BasicGraphDescription &BasicGraphWindow::description() const
{
    static const BasicGraphDescription empty;
    return mRenderer ? mRenderer->description() : empty;
}

bool BasicGraphWindow::setUpGraph(const BasicGraphDescription &description, const GraphPermissions &permissions,
                                  const FractionGraphDefaultSize &defaults)
{
    mRenderer.emplace(description, screenUnits());
    setPermissions(permissions);
    mPercentage = false;
    mnuPUsePercentage->setChecked(false);

    const bool histogram = description.graphKind == HistogramGraph;
    mnuPUsePercentage->setVisible(histogram);
    mnuPBar1->setVisible(histogram);
    mnuPSetAsDefaultSize->setVisible(!histogram);
    mnuPBar3->setVisible(!histogram);
    mnuPCopyValues->setEnabled(permissions.allowCopy);
    mnuPCopyLegends->setEnabled(permissions.allowCopy);
    updatePictureItems(true);

    // Opened drawn and wholly on the screen: a histogram grows from the
    // default size until its layout fits; a fraction graph keeps the size
    // its bars ask for and scrolls when that is taller than the screen.
    const QSize available = availableArea();
    mGraphHeight = 0;
    if (description.graphKind == FractionGraph) {
        const QSize formula =
            basicGraphWindowSize(*mRenderer, defaults.windowWidthTwips, defaults.barWidth, logicalDpiX());
        const FractionWindowFit fit = fittedFractionWindow(formula, available, mScroll->sizeHint().width());
        mGraphHeight = fit.graphHeight > fit.window.height() ? fit.graphHeight : 0;
        resize(fit.window);
    } else {
        resize(
            grownGraphWindowSize(DefaultGraphWindowSize, available, [this](QSize size) { return layoutFits(size); }));
    }
    mScroll->setValue(0);
    updateScrollBar();
    updateAccessibleText();
    update();
    return true;
}

void BasicGraphWindow::updateAccessibleText()
{
    // The graph is drawn; a screen reader reads the values it shows, as
    // Copy Values words them.
    setAccessibleDescription(mRenderer ? basicGraphValuesText(description(), mPercentage) : QString());
}

QSize BasicGraphWindow::availableArea() const
{
    if (mAvailable.isValid())
        return mAvailable;
    const QScreen *shown = screen();
    if (!shown)
        return DefaultGraphWindowSize;
    // A window that has been shown knows its frame.
    const QSize frame = frameGeometry().size() - geometry().size();
    const QSize allowance = frame.width() > 0 || frame.height() > 0 ? frame : FrameAllowance;
    return (shown->availableGeometry().size() - allowance).expandedTo(QSize(200, 120));
}

bool BasicGraphWindow::layoutFits(const QSize &windowSize) const
{
    if (!mRenderer)
        return true;
    // The renderer finds out before it draws anything; a one-pixel surface
    // at the window's resolution is enough to ask it.
    QImage probe(1, 1, QImage::Format_ARGB32_Premultiplied);
    probe.setDotsPerMeterX(qRound(logicalDpiX() / 0.0254));
    probe.setDotsPerMeterY(qRound(logicalDpiY() / 0.0254));
    QPainter painter(&probe);
    const QRect area = QRect(QPoint(0, 0), windowSize).adjusted(Margin, Margin, -Margin, -Margin);
    return mRenderer->draw(painter, area, 0, false) && mRenderer->draw(painter, area, 0, true);
}

QSize BasicGraphWindow::graphSize() const
{
    if (mGraphHeight > height())
        return QSize(std::max(1, width() - mScroll->sizeHint().width()), mGraphHeight);
    return size();
}

void BasicGraphWindow::updateScrollBar()
{
    const bool scrolls = mGraphHeight > height();
    mScroll->setVisible(scrolls);
    if (!scrolls) {
        mScroll->setValue(0);
        return;
    }
    const int barWidth = mScroll->sizeHint().width();
    mScroll->setGeometry(width() - barWidth, 0, barWidth, height());
    mScroll->setRange(0, mGraphHeight - height());
    mScroll->setPageStep(height());
    mScroll->setSingleStep(std::max(1, screenUnits().textHeight()));
}

void BasicGraphWindow::resizeEvent(QResizeEvent *event)
{
    // Once the window is as tall as the graph, the graph follows the window
    // again, as any graph whose window the user sizes.
    if (mGraphHeight > 0 && height() >= mGraphHeight)
        mGraphHeight = 0;
    updateScrollBar();
    QWidget::resizeEvent(event);
}

void BasicGraphWindow::wheelEvent(QWheelEvent *event)
{
    if (!mScroll->isHidden()) {
        QCoreApplication::sendEvent(mScroll, event);
        return;
    }
    QWidget::wheelEvent(event);
}

void BasicGraphWindow::setPercentage(bool on)
{
    mPercentage = on && description().graphKind == HistogramGraph;
    mnuPUsePercentage->setChecked(mPercentage);
    updateAccessibleText();
    update();
}

void BasicGraphWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    // The decorative edge lines along the client area.
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (!mRenderer)
        return;
    const QRect graph(QPoint(0, -mScroll->value()), graphSize());
    const QRect area = graph.adjusted(Margin, Margin, -Margin, -Margin);
    mTooBig = !mRenderer->draw(painter, area, 0, mPercentage);
    if (mTooBig) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignCenter, graphTooBigMessage(mIsSwedish));
    }
}

void BasicGraphWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton
        && (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier)) == 0) {
        mPopup->popup(event->globalPosition().toPoint());
        return;
    }
    QWidget::mouseReleaseEvent(event);
}

void BasicGraphWindow::keyPressEvent(QKeyEvent *event)
{
    if (!mScroll->isHidden() && event->modifiers() == Qt::NoModifier) {
        // The keyboard scrolls a graph taller than its window.
        const QHash<int, QAbstractSlider::SliderAction> keys{{Qt::Key_Up, QAbstractSlider::SliderSingleStepSub},
                                                             {Qt::Key_Down, QAbstractSlider::SliderSingleStepAdd},
                                                             {Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
                                                             {Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd},
                                                             {Qt::Key_Home, QAbstractSlider::SliderToMinimum},
                                                             {Qt::Key_End, QAbstractSlider::SliderToMaximum}};
        const auto action = keys.find(event->key());
        if (action != keys.end()) {
            mScroll->triggerAction(*action);
            event->accept();
            return;
        }
    }
    if (event->modifiers() == Qt::ControlModifier) {
        // Each key only with the document's permission, and only while its
        // item can be chosen.
        QAction *action = nullptr;
        if (event->key() == Qt::Key_C && mPermissions.allowCopy)
            action = mnuPCopy;
        else if (event->key() == Qt::Key_P && mPermissions.allowPrint)
            action = mnuPPrint;
        else if (event->key() == Qt::Key_S && mPermissions.allowSavePicture)
            action = mnuPSave;
        if (action) {
            if (action->isEnabled())
                action->trigger();
            event->accept();
            return;
        }
    }
    GraphWindow::keyPressEvent(event); // the popup's keys
}

void BasicGraphWindow::copyValues()
{
    if (!mPermissions.allowCopy)
        return;
    WaitCursor wait;
    mStatus->setStatus("Copying the graph values to the clipboard...", "Kopierar grafens värden till urklipp...",
                       false);
    QGuiApplication::clipboard()->setText(basicGraphValuesText(description(), mPercentage));
    mStatus->setStatus("The graph values has been copied to the clipboard!",
                       "Grafens värden har kopierats till urklipp!", true);
}

void BasicGraphWindow::copyLegends()
{
    if (!mPermissions.allowCopy)
        return;
    WaitCursor wait;
    mStatus->setStatus("Copying the graph legends to the clipboard...", "Kopierar grafens förklaringar till urklipp...",
                       false);
    QGuiApplication::clipboard()->setText(basicGraphLegendsText(description()));
    mStatus->setStatus("The graph legends has been copied to the clipboard!",
                       "Grafens förklaringar har kopierats till urklipp!", true);
}

std::optional<FractionGraphDefaultSize> BasicGraphWindow::currentDefaultSize() const
{
    if (!mRenderer || description().groups.empty())
        return std::nullopt;
    const BasicGraphUnits &u = mRenderer->units();
    const QSize graph = graphSize();
    const int inner = std::max(1, graph.width() - 2 * Margin);
    const double free = graph.height() - mRenderer->titleBlockHeight() - mRenderer->selectionBlockHeight(inner)
        - mRenderer->legendBlockHeight(inner) - u.textHeight() - u.gapY() - u.borderHeight() - 2 * Margin;
    FractionGraphDefaultSize size;
    // The width the window is opened with, so that storing and reopening
    // keeps it (the frame is the window manager's).
    size.windowWidthTwips = qint32(std::nearbyint(graph.width() * TwipsPerInch / logicalDpiX()));
    size.barWidth = qint32(std::nearbyint(free / double(description().groups.size())));
    return size;
}

void BasicGraphWindow::setAsDefaultSize()
{
    const std::optional<FractionGraphDefaultSize> size = currentDefaultSize();
    if (size && mStoreDefaultSize)
        mStoreDefaultSize(*size);
}

void BasicGraphWindow::setPictureContext(const GraphPictureContext &context)
{
    GraphWindow::setPictureContext(nullptr, context);
    updatePictureItems(mRenderer.has_value());
}

Picture BasicGraphWindow::picture() const
{
    BasicGraphPictureOptions options;
    if (mContext.options) {
        options.opaque = mContext.options->graphCopySaveOpaque;
        options.whiteSpace = mContext.options->graphCopySaveWhiteSpace;
        options.toOffice = mContext.options->graphCopyToMsOffice;
    }
    return picture(options);
}

Picture BasicGraphWindow::picture(const BasicGraphPictureOptions &options) const
{
    if (!mRenderer)
        return Picture{};
    // The clipboard draws later, when another program asks: the picture
    // must not depend on this window still showing the same graph.
    const BasicGraphRenderer renderer = *mRenderer;
    const bool percentage = mPercentage;
    Picture picture = basicGraphPicture(graphSize(), options,
                                        [renderer, percentage](QPainter &painter, const QRect &area, int scale) {
                                            drawScaledBasicGraph(painter, renderer, area, scale, percentage);
                                        });
    picture.description = applicationTitle();
    return picture;
}

} // namespace kel
