// Rational B-spline curves in space: evaluation, box, chords, and curves through given points.
#pragma once

#include "ge/extents.h"
#include "ge/matrix.h"
#include "ge/point.h"

#include <optional>
#include <vector>

/// A control point times its weight, and the weight.
struct KcGeWeightedPoint3d {
    double x = 0.0, y = 0.0, z = 0.0, w = 1.0;
    KcGePoint3d point() const { return { x / w, y / w, z / w }; }
};

/// A non-uniform rational B-spline. Curves read from files may be damaged: ask `isValid` first; the other
/// functions expect a valid curve.
struct KcGeNurbsCurve3d {
    /// Higher degrees than this are taken for damage.
    static constexpr int kMaxDegree = 25;

    int degree = 3;
    std::vector<double> knots; ///< ascending, as many as control points plus degree plus one
    std::vector<KcGePoint3d> controlPoints;
    std::vector<double> weights; ///< positive; empty: all 1

    /// True when counts fit, knots ascend, all values are finite, weights positive, and the curve has a
    /// length in knots.
    bool isValid() const;
    /// The knot values between which the curve is defined.
    double startParam() const { return knots[size_t(degree)]; }
    double endParam() const { return knots[controlPoints.size()]; }
    /// De Boor's algorithm; values outside the range are brought to its ends.
    KcGePoint3d pointAt(double knot) const;
    KcGeVector3d derivativeAt(double knot) const;
    /// The knot values at which the curve's polynomials meet, ends included, each once.
    std::vector<double> breaks() const;

    /// The box, not wider than the curve by more than the tolerance on any side.
    KcGeExtents3d extents(double tolerance = KcGeContext::gTol.equalPoint) const;
    /// Points on the curve, from start to end, whose chords stay within `sagitta` of it.
    std::vector<KcGePoint3d> chords(double sagitta) const;
    /// Half the integral of x·dy − y·dx along the curve: its share in the signed area of an outline that it
    /// is part of, seen along the Z axis.
    double planArea() const;

    /// The control points of the polynomials between `breaks`, as many as the degree plus one for each.
    std::vector<KcGeWeightedPoint3d> bezierPoints() const;
    /// The stretch between two knot values of the range, the first below the second, with the same
    /// parameters.
    KcGeNurbsCurve3d between(double low, double high) const;
    /// The same points from end to start over the same range of knots.
    KcGeNurbsCurve3d reversed() const;
    /// This curve and another of the same degree that begins where it ends, as one; the other's knots are
    /// shifted behind this one's. Both must reach their outermost control points, as the results of `between`
    /// do.
    KcGeNurbsCurve3d joinedWith(const KcGeNurbsCurve3d& next) const;

    /// The image under an affine transform.
    KcGeNurbsCurve3d transformed(const KcGeMatrix3d& matrix) const;

    struct EndConditions {
        std::optional<KcGeVector3d> startTangent, endTangent; ///< directions; none: no curvature at that end
        bool closed = false; ///< smooth where the ends meet; tangents do not count then
    };
    /// The cubic spline with continuous curvature through points, spaced by their distances. Points that
    /// repeat their predecessor are passed over. Nothing when fewer than two different points are left.
    static std::optional<KcGeNurbsCurve3d>
    throughPoints(const std::vector<KcGePoint3d>& points, const EndConditions& ends);
};
