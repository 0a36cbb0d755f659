// Hatch lines: families of parallel dashed lines, cut to the area that they fill.
#pragma once

#include "ge/fill_area.h"

#include <functional>
#include <optional>

/// One family of parallel pattern lines as it is drawn: line k starts its dashes at base + k·offset.
struct KcGeHatchFamily {
    double angle = 0.0; ///< radians
    KcGePoint2d base; ///< drawing units
    KcGeVector2d offset; ///< from one line to the next
    std::vector<double> dashes; ///< pen down where positive, up where negative, a dot where 0; empty: no gaps
    friend bool operator==(const KcGeHatchFamily&, const KcGeHatchFamily&) = default;

    /// Distance from line to line; 0 when the offset leads along the lines.
    double spacing() const;
    /// Length after which the dashes repeat; 0 for lines without gaps.
    double period() const;
    /// The same family enlarged about the origin, turned about it and moved.
    KcGeHatchFamily placed(double scale, double angle, KcGeVector2d shift) const;
};

/// What keeps a drawing of hatch lines bounded.
struct KcGeHatchLimits {
    /// Only what touches this box is wanted, in drawing coordinates.
    std::optional<KcGeExtents2d> window;
    /// The smallest length that can be seen, in drawing units: dashes are not told apart when a whole period
    /// is shorter, and a family of closer lines is not drawn at all. 0: everything can be seen.
    double smallest = 0.0;
    size_t mostSpans = 2'000'000;
};

/// What was drawn of a family.
enum class KcGeHatchDrawn {
    Whole,
    Solid, ///< nothing: the lines stand closer than can be seen, the area looks evenly toned
    NoGaps, ///< all lines, without the gaps of their dashes
    Thinned, ///< some lines only, at equal distances
    Nothing, ///< the family has no direction or distance that could be drawn
};

/// Called with the ends of one dash; of a dot they are equal.
using KcGeHatchSpan = std::function<void(KcGePoint2d, KcGePoint2d)>;

/// Cuts a family of lines to an area. Dashes keep the phase that the family's base gives them, however far
/// that lies away. Spans along a line come in its direction and do not overlap.
KcGeHatchDrawn kcgeHatchLines(
    const KcGeFillArea& area, KcGeHatchStyle style, const KcGeHatchFamily& family,
    const KcGeHatchLimits& limits, const KcGeHatchSpan& span);

/// The share of an evenly toned area that the lines of a family cover, 0 to 1, when each is `width` wide.
double kcgeHatchCoverage(const KcGeHatchFamily& family, double width);
