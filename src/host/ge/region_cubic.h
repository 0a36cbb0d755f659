// Cubic polynomial curves held flat: nearly all splines of drawings consist of them.
#pragma once

#include "ge/point.h"

#include <array>
#include <vector>

namespace kcge {

/// The points c[0] + c[1]·t + c[2]·t² + c[3]·t³ for t from 0 to 1.
struct Cubic {
    std::array<KcGeVector2d, 4> c;

    KcGePoint2d at(double t) const { return KcGePoint2d() + (c[0] + (c[1] + (c[2] + c[3] * t) * t) * t); }
    KcGeVector2d derivative(double t) const { return c[1] + (c[2] * 2.0 + c[3] * (3.0 * t)) * t; }
    KcGeVector2d second(double t) const { return c[2] * 2.0 + c[3] * (6.0 * t); }

    /// The cubic through the points at 0, a third, two thirds and 1.
    static Cubic through(KcGePoint2d p0, KcGePoint2d p1, KcGePoint2d p2, KcGePoint2d p3);
    /// The control points of a stretch (L. Ramshaw's blossoms, 1987).
    std::array<KcGePoint2d, 4> controlPoints(double from, double to) const;
    /// The nearest point's parameter, for a curve without turning points.
    double closest(KcGePoint2d point) const;
    /// Half the integral of x·dy − y·dx, about a point; exact.
    double areaAbout(double from, double to, KcGePoint2d about) const;
};

/// Parameters at which a cubic crosses the line through a point in the direction of a unit vector, or touches it within
/// the tolerance; ascending.
std::vector<double> onLine(const Cubic& curve, KcGePoint2d point, KcGeVector2d unit, double tolerance);
/// The same for a circle.
std::vector<double> onCircle(const Cubic& curve, KcGePoint2d center, double radius, double tolerance);
struct CubicCrossing {
    double first, second;
};
/// Where two cubics without turning points cross. Stretches on which they coincide give nothing.
std::vector<CubicCrossing> crossings(const Cubic& a, const Cubic& b, double tolerance);

} // namespace kcge
