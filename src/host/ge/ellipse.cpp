// Arcs of ellipses in space: exact boxes and principal axes.

#include "ge/ellipse.h"

double sweepBetween(double startAngle, double endAngle)
{
    if (!std::isfinite(startAngle) || !std::isfinite(endAngle))
        return 0.0;
    const double sweep = normalizedAngle(endAngle - startAngle);
    // Angles that were converted from degrees may miss a whole turn by rounding.
    const double slack = KcGeContext::gTol.equalVector;
    return sweep <= slack || sweep >= kTwoPi - slack ? kTwoPi : sweep;
}

KcGeExtents3d KcGeEllipArc3d::extents() const
{
    KcGeExtents3d box;
    const auto add = [&](double anomaly) {
        const KcGePoint3d p = pointAt(anomaly);
        if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z))
            box.addPoint(p);
    };
    if (!std::isfinite(start) || !std::isfinite(sweep))
        return box;
    add(start);
    add(start + sweep);
    // Each coordinate, c + a·cos t + b·sin t, is extreme where t is the direction of (a, b), and opposite to
    // it.
    const double parts[3][2] = { { u.x, v.x }, { u.y, v.y }, { u.z, v.z } };
    for (const auto& [a, b] : parts) {
        if ((a == 0.0 && b == 0.0) || !std::isfinite(a)
            || !std::isfinite(b)) // exact: the coordinate is constant
            continue;
        for (const double extreme : { std::atan2(b, a), std::atan2(-b, -a) }) {
            const double turned = normalizedAngle(sweep < 0.0 ? start - extreme : extreme - start);
            if (turned <= std::abs(sweep))
                add(extreme);
        }
    }
    return box;
}

KcGeEllipArc3d KcGeEllipArc3d::principal() const
{
    // Rytz's construction as a formula: the squared length of u·cos t + v·sin t is extreme at this anomaly.
    const double shift = 0.5 * std::atan2(2.0 * u.dotProduct(v), u.dotProduct(u) - v.dotProduct(v));
    if (!std::isfinite(shift))
        return *this;
    KcGeEllipArc3d result = *this;
    result.u = derivativeAt(shift - kPi / 2.0);
    result.v = derivativeAt(shift);
    result.start = start - shift;
    return result;
}

namespace {

/// Keeps the quadrant and the whole turns of an angle while its tangent is multiplied.
double scaledTangent(double angle, double factor)
{
    if (!std::isfinite(angle) || !(factor > 0.0) || !std::isfinite(factor))
        return std::isfinite(angle) ? angle : 0.0;
    const double turns = std::round(angle / kTwoPi) * kTwoPi;
    const double rest = angle - turns;
    return turns + std::atan2(std::sin(rest) * factor, std::cos(rest));
}

} // namespace

double anomalyOfAngle(double angle, double radiusRatio)
{
    return scaledTangent(angle, 1.0 / radiusRatio);
}

double angleOfAnomaly(double anomaly, double radiusRatio)
{
    return scaledTangent(anomaly, radiusRatio);
}
