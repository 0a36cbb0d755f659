// The 255 index colours of drawings.
#pragma once

#include <QRgb>

/// The colour of an index from 1 to 255, opaque. 7 is white here; what draws turns it black on light
/// backgrounds. Any other index gives white.
QRgb kcgiIndexColor(int index);
