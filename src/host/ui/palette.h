// The colours of the drawing area, dark and light.
#pragma once

#include <QColor>

struct KcUiPalette {
    QColor background, cursor, text, grip, mark, window, crossing, band, snap, hotGrip, reachedGrip;
};

/// So near to a grip, in pixels to each side, the cursor takes hold of it.
constexpr double kcuiGripReach = 6.0;

const KcUiPalette& kcuiPalette(bool dark);
