// The index colours by the rule that they follow, so that no table of 255 rows is needed.

#include "gi/colour_table.h"

#include <algorithm>
#include <cmath>

namespace {

// From 10 on: 24 hues of ten colours, 15 degrees apart. Of each ten, even places are full, odd ones half
// saturated, and each pair of places is darker than the one before. The five values are the published ones.
constexpr int kValues[] = { 255, 165, 127, 76, 38 };

QRgb fromHue(double hue, int value, bool full)
{
    // The channel that is lowest goes to 0, or to half the value.
    const double low = full ? 0.0 : value / 2.0;
    const auto channel = [&](double shift) {
        const double h = std::fmod(hue + shift, 360.0) / 60.0;
        const double share = h < 1.0 ? h : h < 3.0 ? 1.0 : h < 4.0 ? 4.0 - h : 0.0;
        return int(low + (value - low) * share);
    };
    return qRgb(channel(120.0), channel(0.0), channel(240.0));
}

} // namespace

QRgb kcgiIndexColor(int index)
{
    static constexpr QRgb kFirst[] = {
        0xffffffff, 0xffff0000, 0xffffff00, 0xff00ff00, 0xff00ffff,
        0xff0000ff, 0xffff00ff, 0xffffffff, 0xff808080, 0xffc0c0c0,
    };
    static constexpr int kGreys[] = { 51, 80, 105, 130, 190, 255 };
    if (index < 0 || index > 255)
        return kFirst[0];
    if (index < 10)
        return kFirst[index];
    if (index >= 250)
        return qRgb(kGreys[index - 250], kGreys[index - 250], kGreys[index - 250]);
    const int place = index % 10;
    return fromHue((index / 10 - 1) * 15.0, kValues[place / 2], place % 2 == 0);
}
