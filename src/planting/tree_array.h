// Tree arrays: the circles that fill a cloud outline.
#pragma once

#include "planting/cloud.h"

/// The trees of an array; plan coordinates, drawing units.
struct TreeArray {
    /// One at the centre of every arc of the outline, the one that closes it left out.
    std::vector<KcGePoint2d> boundary;
    /// The rows inside; none for fewer than three arcs.
    std::vector<KcGePoint2d> inside;
    double spacing = 0.0; ///< from the first tree to the second
    double radius = 0.0; ///< of every circle: a tenth of the second arc's
};

/// More trees than this are a slip of the hand.
inline constexpr double kMostArrayTrees = 500'000;

/// Fills the polygon of the arcs' centres with rows parallel to the line of the first two, spaced by their
/// distance; row by row shifted at 60 degrees, first to the one side of that line and then to the other. In a
/// row, trees stand at whole spacings from the row's end on the polygon that lies in the direction from the
/// first arc to the second, as long as they are inside and keep a fifth of the spacing from the polygon.
/// Empty when there is no arc to begin with, when the first two arcs have one centre, and when there would be
/// more than `kMostArrayTrees`.
std::optional<TreeArray> treeArrayIn(const CloudOutline& outline);
