// The picture by which the product is known.
#pragma once

#include <QIcon>
#include <QPixmap>

/// A tree seen from above, `size` units wide on a display with that many pixels a unit.
QPixmap productIcon(int size, qreal pixelRatio);
/// The same in the sizes that title bars and task lists show.
QIcon productIcon();
