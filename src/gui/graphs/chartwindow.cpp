// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/chartwindow.h"

#include "engine/settings/settingsstore.h"
#include "gui/graphs/chartbuilder.h"
#include "gui/graphs/chartpicture.h"
#include "gui/pictures/picturecommands.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QLocale>
#include <QChart>
#include <QChartView>
#include <QMenu>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace kel {

ChartWindow::ChartWindow(bool isSwedish, QWidget *parent)
    : GraphWindow(isSwedish, SaveKind::Chart, nullptr, parent), mView(new QChartView(this))
{
    setObjectName(QStringLiteral("frmGraph"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mView);
    mView->setObjectName(QStringLiteral("gphMain"));
    mView->setRenderHint(QPainter::Antialiasing);
    mView->viewport()->installEventFilter(this);
    resize(680, 480);

    addCopyItem();
    addPrintItems();
    addSaveItem();
    mPopup->addSeparator();
    addCloseItem();
}

void ChartWindow::setUpChart(const ChartDescription &chart)
{
    mDescription = chart;
    QChart *old = mView->chart();
    mView->setChart(buildChart(chart));
    delete old;
    setWindowTitle(chart.caption);
    // The chart is drawn; a screen reader reads its values: per series its
    // name, then one line per point.
    QStringList lines;
    for (const ChartSeries &series : chart.series) {
        if (!series.name.isEmpty())
            lines << series.name;
        for (const ChartPoint &point : series.points)
            lines << point.label + QLatin1Char('\t') + QLocale().toString(point.value);
    }
    setAccessibleDescription(lines.join(QLatin1Char('\n')));
}

QChart *ChartWindow::chart() const
{
    return mView->chart();
}

Picture ChartWindow::picture() const
{
    return chartPicture(mDescription, mView->size());
}

void ChartWindow::setPictureContext(StatusLine &status, const GraphPictureContext &context,
                                    const GraphPermissions &permissions)
{
    GraphWindow::setPictureContext(&status, context);
    setPermissions(permissions);
    updatePictureItems();
}

std::optional<qint32> ChartWindow::copyFormat() const
{
    return mContext.options ? std::optional<qint32>(mContext.options->graphCopyFormat) : std::nullopt;
}

bool ChartWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == mView->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const Qt::KeyboardModifiers held =
            mouse->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        if (mouse->button() == Qt::RightButton && held == Qt::NoModifier) {
            mPopup->popup(mouse->globalPosition().toPoint());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace kel
