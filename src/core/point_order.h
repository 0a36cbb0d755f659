// The order in which labels take the points of what they label, such as the centres of trees. In user
// coordinates: seen along their Z axis, whatever the elevations.
#pragma once

#include "ge/point.h"

#include <vector>

/// The points from left to right; those at the same X from bottom to top.
void SortPointByX(const std::vector<KcGePoint3d>& points, std::vector<KcGePoint3d>& sorted);

/// A chain from the start, which may be one of the points: each time on to the nearest point that is left, of
/// several to the one given first. `path` receives every point once. The time grows with the square of their
/// number.
void Prim(KcGePoint3d start, const std::vector<KcGePoint3d>& points, std::vector<KcGePoint3d>& path);

/// Puts centres into the order in which they lie along a drawn path, each at the place of the path that is
/// nearest to it; those beyond an end by how far they lie beyond. Centres at the same place keep their order,
/// and so do all when the path has no points.
void GetArrangePnts(const std::vector<KcGePoint3d>& path, std::vector<KcGePoint3d>& centers);
