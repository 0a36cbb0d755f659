// The picture by which the product is known.
#pragma once

#include <QPixmap>

/// A tree seen from above, `size` units wide on a display with that many pixels a unit.
QPixmap productIcon(int size, qreal pixelRatio);
