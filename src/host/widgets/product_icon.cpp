// Draws the product's icon at any size.

#include "widgets/product_icon.h"

#include <QPainter>
#include <QPainterPath>

#include <numbers>

QPixmap productIcon(int size, qreal pixelRatio)
{
    QPixmap picture(QSize(size, size) * pixelRatio);
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(size / 2.0, size / 2.0);
    painter.scale(size / 100.0, size / 100.0);

    constexpr int lobes = 9;
    QPainterPath crown;
    for (int i = 0; i <= lobes; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / lobes;
        const double between = angle - std::numbers::pi / lobes;
        const QPointF end(40.0 * std::cos(angle), 40.0 * std::sin(angle));
        if (i == 0)
            crown.moveTo(end);
        else
            crown.quadTo(QPointF(58.0 * std::cos(between), 58.0 * std::sin(between)), end);
    }
    painter.setPen(QPen(QColor(36, 92, 48), 3));
    painter.setBrush(QColor(104, 168, 92));
    painter.drawPath(crown);
    painter.setPen(QPen(QColor(36, 92, 48), 2.5, Qt::SolidLine, Qt::RoundCap));
    for (int i = 0; i < lobes; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / lobes;
        painter.drawLine(
            QPointF(9.0 * std::cos(angle), 9.0 * std::sin(angle)),
            QPointF(36.0 * std::cos(angle), 36.0 * std::sin(angle)));
    }
    painter.setBrush(QColor(120, 84, 52));
    painter.drawEllipse(QPointF(), 6, 6);
    return picture;
}

QIcon productIcon()
{
    QIcon icon;
    for (const int size : { 16, 24, 32, 48, 64, 128 })
        icon.addPixmap(productIcon(size, 1.0));
    return icon;
}
