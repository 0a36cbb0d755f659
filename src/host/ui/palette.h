// The colours of the drawing area, dark and light.
#pragma once

#include <QColor>

struct KcUiPalette {
    QColor background, grip, hotGrip, reachedGrip;
    QColor mark; ///< of what is selected
    QColor window, crossing; ///< selection rectangles
    QColor snap; ///< markers and tracking lines
};

/// So near to a grip, in pixels to each side, the cursor takes hold of it.
constexpr double kcuiGripReach = 6.0;

const KcUiPalette& kcuiPalette(bool dark);
