// Shared by the files that find intersections; of no use to others.
#pragma once

#include "ge/intersect.h"

namespace kcge_detail {

/// A pair of parameters at which two pieces meet, before such pairs are merged.
struct Meeting {
    double first = 0.0, second = 0.0;
};

/// Meetings of two finite pieces of which at least one is no line or arc. Stretches of the first piece that
/// are known to be overlaps are left out.
std::vector<Meeting> meetingsOfCurves(
    const KcGeSegment2d& first, const KcGeSegment2d& second, const std::vector<KcGeOverlap2d>& overlaps,
    double tolerance);

/// True when the first piece stays within the tolerance of the second between the two parameters, as far as
/// samples tell.
bool staysNear(
    const KcGeSegment2d& first, double from, double to, const KcGeSegment2d& second, double tolerance);

} // namespace kcge_detail
