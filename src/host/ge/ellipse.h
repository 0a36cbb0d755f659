// Arcs of ellipses in space. Circles and their arcs, seen through any affine transform, are special cases.
#pragma once

#include "ge/extents.h"
#include "ge/matrix.h"
#include "ge/point.h"

/// The counter-clockwise sweep from one angle to another, in (0, 2π]: equal angles, or angles whole turns
/// apart, give a full turn. Angles in radians; 0 when one is no number.
double sweepBetween(double startAngle, double endAngle);

/// The points center + u·cos t + v·sin t for t from `start` through a signed `sweep`. The half axes `u` and
/// `v` may be any two conjugate ones; they need not be perpendicular. Radians, drawing units.
struct KcGeEllipArc3d {
    KcGePoint3d center;
    KcGeVector3d u{ 1, 0, 0 };
    KcGeVector3d v{ 0, 1, 0 };
    double start = 0.0;
    double sweep = kTwoPi;

    /// The point at an eccentric anomaly.
    KcGePoint3d pointAt(double anomaly) const
    {
        return center + u * std::cos(anomaly) + v * std::sin(anomaly);
    }
    /// The derivative after the anomaly.
    KcGeVector3d derivativeAt(double anomaly) const { return v * std::cos(anomaly) - u * std::sin(anomaly); }
    KcGePoint3d startPoint() const { return pointAt(start); }
    KcGePoint3d endPoint() const { return pointAt(start + sweep); }
    /// The exact box; empty when a value is not finite.
    KcGeExtents3d extents() const;
    /// The image under an affine transform, with the same anomalies.
    KcGeEllipArc3d transformed(const KcGeMatrix3d& matrix) const
    {
        return { matrix * center, matrix * u, matrix * v, start, sweep };
    }
    /// The same points in the same order with perpendicular half axes, the longer one first; anomalies shift.
    KcGeEllipArc3d principal() const;
};

/// Eccentric anomaly of the point that lies at an angle from the major axis, seen from the centre; whole
/// turns stay.
double anomalyOfAngle(double angle, double radiusRatio);
/// Angle from the major axis of the point at an eccentric anomaly; whole turns stay.
double angleOfAnomaly(double anomaly, double radiusRatio);
