// Between the drawing and the pixels of the window that shows it.
#pragma once

#include "ed/view.h"

#include <QPointF>

/// A view shown in a window of some size. Pixels are the widget's own, y downward.
struct KcUiScreenMap {
    KcEdView view;
    QSizeF size{ 1, 1 };

    double pixelsPerUnit() const { return size.height() / view.height; }
    QPointF toPixel(KcGePoint2d p) const
    {
        const double scale = pixelsPerUnit();
        return { size.width() / 2 + (p.x - view.center.x) * scale,
                 size.height() / 2 - (p.y - view.center.y) * scale };
    }
    KcGePoint2d toModel(QPointF pixel) const
    {
        const double unit = view.height / size.height();
        return { view.center.x + (pixel.x() - size.width() / 2) * unit,
                 view.center.y - (pixel.y() - size.height() / 2) * unit };
    }
    /// The same window after zooming by a factor (more than 1: closer) about a pixel, which keeps its place
    /// in the drawing.
    KcEdView zoomed(double factor, QPointF about) const
    {
        const KcGePoint2d fixed = toModel(about);
        return { { fixed.x + (view.center.x - fixed.x) / factor,
                   fixed.y + (view.center.y - fixed.y) / factor },
                 view.height / factor };
    }
    /// The view after the drawing was dragged by some pixels.
    KcEdView panned(QPointF pixels) const
    {
        const double unit = view.height / size.height();
        return { { view.center.x - pixels.x() * unit, view.center.y + pixels.y() * unit }, view.height };
    }
};
