// The tolerances of the region search, together, as multiples of the one that tells a point on a curve.
#pragma once

#include "ge/tolerance.h"

/// How near is near while loose curves are turned into regions. Lengths in drawing units.
struct KcGeRegionTolerances {
    /// A point this near to a curve lies on it. Two curves that pass each other without coming further apart or deeper
    /// than this touch once.
    double onCurve = KcGeContext::gTol.equalPoint;

    /// Ends, crossings and touches this near to each other become one node: two curves within `onCurve` of a third may
    /// meet it at points twice that apart, and rounding adds to it.
    double node() const { return 3.0 * onCurve; }
    /// Edges between the same two nodes are one when their middles are this near.
    double sameEdge() const { return node(); }
    /// Edges are sorted around a node by where they are at this distance from it: further than nodes can have moved
    /// ends sideways (30 times that), nearer than drawn details.
    double direction() const { return 30.0 * node(); }
    /// Sampled points that differ by less than this around a node tell no order; the edges are followed further.
    double sameDirection() const { return 2.0 * node(); }
    /// A face narrower than this on average is no region: its area is below the width times half its perimeter.
    double sliver() const { return 10.0 * node(); }
    /// Probes for what lies around an outline start this much beside its extreme point, to pass by nodes.
    double aside() const { return 0.37 * onCurve; }

    /// Coordinates carry about 16 digits: far from the origin of the numbers the tolerance follows their spacing.
    static constexpr double kSpacings = 16.0;
};
