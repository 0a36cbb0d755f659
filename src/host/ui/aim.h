// Where the cursor means: the point under it, drawn onto a snap point, an axis or a tracking line.
#pragma once

#include "ed/documents.h"
#include "ed/object_snap.h"
#include "ed/prompt.h"

struct KcUiAim {
    KcGePoint3d point; ///< user coordinates; what a click gives
    /// The direction of the tracking line from the base through the point, radians; none: no line is shown.
    std::optional<double> track;
    std::optional<KcEdSnap> snap; ///< what the cursor was drawn to; it shows a marker
};

/// @param world under the cursor, world coordinates
/// @param pixel size of one in drawing units
/// @param prompt what waits; null when nothing does, then nothing draws the cursor to itself
KcUiAim kcuiAim(KcApDocument& document, const KcEdPrompt* prompt, KcGePoint2d world, double pixel);
