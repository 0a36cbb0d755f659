// The colours of the drawing area, dark and light.
#pragma once

#include <QColor>

struct KcUiPalette {
    QColor background, cursor, text, grip, mark, window, crossing, band, snap;
};

const KcUiPalette& kcuiPalette(bool dark);
