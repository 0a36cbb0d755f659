// The region around a point, as what is visible there encloses it.
#pragma once

#include "db/database.h"
#include "ge/polygon.h"

struct KcEdRegionAt {
    QString reason; ///< why there is none, as a sentence; empty: there is one
    std::vector<KcGeSegment2d> outline; ///< counter-clockwise, pieces in order, seen along the Z axis
    std::vector<std::vector<KcGeSegment2d>> islands; ///< outlines of what lies in it; what touches is one
};
/// Curves of the current space and of the blocks it shows enclose; texts and hatches do not. The search
/// begins close to the point and widens until everything that could cut the region was looked at: the time
/// goes with what lies about the region, not with the drawing. A place with too much about it is told as
/// such.
KcEdRegionAt kcedRegionAt(const KcDbDatabase& database, KcGePoint2d point);
/// The vertices of an outline, ellipses and splines as runs of arcs, nearer than can be seen.
std::vector<KcGeBulgeVertex2d> kcedVerticesOf(const std::vector<KcGeSegment2d>& outline);
