// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/basicgraphwindow.h"

#include "engine/settings/settingsstore.h"
#include "gui/common/waitcursor.h"
#include "gui/pictures/picturecommands.h"
#include "texts/graphtexts.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace kel {

namespace {

constexpr int Margin = BasicGraphMargin;
constexpr double TwipsPerInch = 1440.0;

} // namespace

BasicGraphWindow::BasicGraphWindow(bool isSwedish, StatusLine &status, QWidget *parent)
    : QWidget(parent, Qt::Window), mIsSwedish(isSwedish), mStatus(status), mPopup(new QMenu(this))
{
    setObjectName(QStringLiteral("frmBasicGraph"));
    setWindowTitle(QStringLiteral("Basic Graph"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    resize(620, 460);

    auto item = [&](const char *name, const char *english, const char *swedish) {
        QAction *a = mPopup->addAction(pickText(isSwedish, english, swedish));
        a->setObjectName(QString::fromUtf8(name));
        return a;
    };
    auto bar = [&](const char *name) {
        QAction *a = mPopup->addSeparator();
        a->setObjectName(QString::fromUtf8(name));
        return a;
    };
    mnuPUsePercentage = item("mnuPUsePercentage", "&Use percentage", "Använd &procent");
    mnuPUsePercentage->setCheckable(true);
    mnuPBar1 = bar("mnuPBar1");
    mnuPCopy = item("mnuPCopy", "&Copy", "K&opiera");
    mnuPCopyValues = item("mnuPCopyValues", "Copy &values", "Kopiera &värden");
    mnuPCopyLegends = item("mnuPCopyLegends", "Copy l&egends", "Kopiera &förklaringar");
    mnuPPrint = item("mnuPPrint", "&Print", "Skriv &ut");
    mnuPSave = item("mnuPSave", "&Save As...", "&Spara som...");
    mnuPBar3 = bar("mnuPBar3");
    mnuPSetAsDefaultSize = item("mnuPSetAsDefaultSize", "Set as &Default Size", "Sätt som stan&dardstorlek");
    bar("mnuPBar2");
    mnuPClose = item("mnuPClose", "C&lose", "S&täng");
    // Until the window knows its settings and the document's permissions
    // the picture commands cannot be chosen.
    for (QAction *a : {mnuPCopy, mnuPPrint, mnuPSave})
        a->setEnabled(false);
    connect(mnuPCopy, &QAction::triggered, this, &BasicGraphWindow::doCopy);
    connect(mnuPPrint, &QAction::triggered, this, &BasicGraphWindow::printGraph);
    connect(mnuPSave, &QAction::triggered, this, &BasicGraphWindow::saveGraph);

    connect(mnuPUsePercentage, &QAction::triggered, this, [this](bool on) {
        WaitCursor wait;
        setPercentage(on);
    });
    connect(mnuPCopyValues, &QAction::triggered, this, &BasicGraphWindow::copyValues);
    connect(mnuPCopyLegends, &QAction::triggered, this, &BasicGraphWindow::copyLegends);
    connect(mnuPSetAsDefaultSize, &QAction::triggered, this, &BasicGraphWindow::setAsDefaultSize);
    connect(mnuPClose, &QAction::triggered, this, &QWidget::close);
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
    mPermissions = permissions;
    mPercentage = false;
    mnuPUsePercentage->setChecked(false);

    const bool histogram = description.graphKind == HistogramGraph;
    mnuPUsePercentage->setVisible(histogram);
    mnuPBar1->setVisible(histogram);
    mnuPSetAsDefaultSize->setVisible(!histogram);
    mnuPBar3->setVisible(!histogram);
    mnuPCopyValues->setEnabled(permissions.allowCopy);
    mnuPCopyLegends->setEnabled(permissions.allowCopy);
    updatePictureItems();

    if (description.graphKind == FractionGraph)
        resize(basicGraphWindowSize(*mRenderer, defaults.windowWidthTwips, defaults.barWidth, logicalDpiX()));
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
    const QRect area = rect().adjusted(Margin, Margin, -Margin, -Margin);
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
    QWidget::keyPressEvent(event);
}

void BasicGraphWindow::copyValues()
{
    if (!mPermissions.allowCopy)
        return;
    WaitCursor wait;
    mStatus.setStatus("Copying the graph values to the clipboard...", "Kopierar grafens värden till urklipp...", false);
    QGuiApplication::clipboard()->setText(basicGraphValuesText(description(), mPercentage));
    mStatus.setStatus("The graph values has been copied to the clipboard!",
                      "Grafens värden har kopierats till urklipp!", true);
}

void BasicGraphWindow::copyLegends()
{
    if (!mPermissions.allowCopy)
        return;
    WaitCursor wait;
    mStatus.setStatus("Copying the graph legends to the clipboard...", "Kopierar grafens förklaringar till urklipp...",
                      false);
    QGuiApplication::clipboard()->setText(basicGraphLegendsText(description()));
    mStatus.setStatus("The graph legends has been copied to the clipboard!",
                      "Grafens förklaringar har kopierats till urklipp!", true);
}

std::optional<FractionGraphDefaultSize> BasicGraphWindow::currentDefaultSize() const
{
    if (!mRenderer || description().groups.empty())
        return std::nullopt;
    const BasicGraphUnits &u = mRenderer->units();
    const int inner = std::max(1, width() - 2 * Margin);
    const double free = height() - mRenderer->titleBlockHeight() - mRenderer->selectionBlockHeight(inner)
        - mRenderer->legendBlockHeight(inner) - u.textHeight() - u.gapY() - u.borderHeight() - 2 * Margin;
    FractionGraphDefaultSize size;
    // The width the window is opened with, so that storing and reopening
    // keeps it (the frame is the window manager's).
    size.windowWidthTwips = qint32(std::nearbyint(width() * TwipsPerInch / logicalDpiX()));
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
    mContext = context;
    updatePictureItems();
}

void BasicGraphWindow::updatePictureItems()
{
    const bool ready = mContext.options && mContext.settings && mRenderer;
    mnuPCopy->setEnabled(ready && mPermissions.allowCopy);
    mnuPPrint->setEnabled(ready && mPermissions.allowPrint);
    mnuPSave->setEnabled(ready && mPermissions.allowSavePicture);
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
    Picture picture =
        basicGraphPicture(size(), options, [renderer, percentage](QPainter &painter, const QRect &area, int scale) {
            drawScaledBasicGraph(painter, renderer, area, scale, percentage);
        });
    picture.description = applicationTitle();
    return picture;
}

bool BasicGraphWindow::doCopy()
{
    if (!mnuPCopy->isEnabled())
        return false;
    return copyGraphPicture(picture(), statusReporter(mStatus));
}

bool BasicGraphWindow::printGraph()
{
    if (!mnuPPrint->isEnabled())
        return false;
    return printGraphPicture(picture(), *mContext.settings, graphPrintFooter(mContext.documentIsSwedish),
                             statusReporter(mStatus));
}

bool BasicGraphWindow::saveGraph()
{
    if (!mnuPSave->isEnabled())
        return false;
    return saveGraphPicture(this, picture(), SaveKind::BasicGraph, mIsSwedish, *mContext.settings,
                            statusReporter(mStatus), mContext.chooseFile, mContext.reportError);
}

} // namespace kel
