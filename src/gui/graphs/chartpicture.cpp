// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/chartpicture.h"

#include "gui/graphs/chartbuilder.h"
#include "texts/language.h"

#include <QChart>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QPainter>

#include <memory>

namespace kel {

Picture chartPicture(const ChartDescription &chart, const QSize &size)
{
    Picture picture;
    picture.size = size;
    picture.description = applicationTitle();
    picture.paint = [chart, size](QPainter &painter) {
        QGraphicsScene scene;
        QChart *built = buildChart(chart);
        scene.addItem(built); // the scene owns it now
        const QRectF area(QPointF(0, 0), QSizeF(size));
        scene.setSceneRect(area);
        built->setGeometry(area);
        // The layout places the plot area, which the data labels follow;
        // without a view nobody asks for it before drawing. The category
        // labels chosen for that area ask for one more pass.
        for (int pass = 0; pass < 3 && built->layout() && !built->layout()->isActivated(); ++pass)
            built->layout()->activate();
        painter.save();
        painter.fillRect(area, Qt::white); // opaque, whatever the chart leaves
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, area, area);
        painter.restore();
    };
    return picture;
}

} // namespace kel
