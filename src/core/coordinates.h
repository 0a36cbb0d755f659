// Points and directions between world coordinates and the current user coordinate system of the current
// drawing. Without a drawing both are the same.
#pragma once

#include "ge/matrix.h"

#include <vector>

/// The raw triple of a point in prompts and selections.
using KcAdsPoint = double[3];

KcGePoint3d SetWcsPointToUcs(KcGePoint3d point);
KcGePoint3d SetUcsPointToWcs(KcGePoint3d point);
void SetWcsPointsToUcs(std::vector<KcGePoint3d>& points);
void SetUcsPointsToWcs(std::vector<KcGePoint3d>& points);
KcGeVector3d SetUcsVectorToWcs(KcGeVector3d vector);
KcGeVector3d SetWcsVectorToUcs(KcGeVector3d vector);
/// Angles of directions in the plan, radians counter-clockwise from the X axis, in [0, 2π).
double SetWcsAngle2Ucs(double angle);
double SetUcsAngle2Wcs(double angle);

void GetAdsPoint(KcGePoint3d point, KcAdsPoint& result);
KcGePoint3d GetPointFromAdsPoint(const KcAdsPoint& point);

KcGePoint3d GetMidPoint(KcGePoint3d p, KcGePoint3d q);
/// From `p` to `q`.
KcGeVector3d GetVector(KcGePoint3d p, KcGePoint3d q);
/// Moves the points by (dx, dy).
void SetOffset(double dx, double dy, std::vector<KcGePoint3d>& points);
