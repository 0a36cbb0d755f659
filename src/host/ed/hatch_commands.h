// Host commands that fill and mask areas.
#pragma once

/// HATCH: asks for pattern, scale and angle, remembers them, and fills the selected outlines with one associative
/// hatch in the current space.
void kcedHatch();
/// WIPEOUT: masks a polygon of picked points or along a polyline, or shows and hides the frames of all.
void kcedWipeout();
