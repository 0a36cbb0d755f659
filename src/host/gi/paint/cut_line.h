// Cutting lines to the part of a device that is seen.
#pragma once

#include <QPointF>
#include <QRectF>

#include <algorithm>

/// Cuts a line to a box; false when nothing of it is inside (Liang and Barsky, "A new concept and method for
/// line clipping", 1984).
inline bool kcgiCutLine(QPointF& a, QPointF& b, const QRectF& box)
{
    double from = 0.0, to = 1.0;
    const QPointF way = b - a;
    const double p[] = { -way.x(), way.x(), -way.y(), way.y() };
    const double q[] = { a.x() - box.left(), box.right() - a.x(), a.y() - box.top(), box.bottom() - a.y() };
    for (int edge = 0; edge < 4; ++edge) {
        if (p[edge] == 0.0) { // parallel to the edge
            if (q[edge] < 0.0)
                return false;
            continue;
        }
        const double t = q[edge] / p[edge];
        if (p[edge] < 0.0)
            from = std::max(from, t);
        else
            to = std::min(to, t);
    }
    if (from > to)
        return false;
    b = a + way * to;
    a = a + way * from;
    return true;
}
