// Where whole curves meet in space.
#pragma once

#include "ge/curve.h"
#include "ge/intersect.h"

/// The points that two curves have in common, in world coordinates, each once, in no particular order; of a
/// stretch that both share, its two ends.
///
/// Curves whose planes are parallel are looked at along the planes' normal, whatever their elevations; the
/// points lie on the first one. A line counts as lying in any plane that it is parallel to; two lines are
/// looked at along the Z axis when both are level. All others must really meet. An extended curve goes on
/// beyond its ends as `KcGeIntersectOptions` says, and lines without ends need not be extended.
std::vector<KcGePoint3d> intersectCurves(
    const KcGeCurve3d& first, const KcGeCurve3d& second, const KcGeIntersectOptions& options = {});
