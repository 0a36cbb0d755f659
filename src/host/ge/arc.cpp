// Circular arcs and bulge segments.

#include "ge/arc.h"

#include "ge/ellipse.h"

KcGeCircArc2d::KcGeCircArc2d(KcGePoint2d center, double radius, double startAngle, double sweep)
    : m_center(center)
    , m_radius(radius)
    , m_startAngle(startAngle)
    , m_sweep(std::clamp(sweep, -kTwoPi, kTwoPi))
{
}

KcGeCircArc2d
KcGeCircArc2d::betweenAngles(KcGePoint2d center, double radius, double startAngle, double endAngle)
{
    return { center, radius, startAngle, sweepBetween(startAngle, endAngle) };
}

std::optional<KcGeCircArc2d> KcGeCircArc2d::fromBulge(KcGePoint2d start, KcGePoint2d end, double bulge)
{
    const double size = std::abs(bulge);
    if (!(size >= kFlatBulge && size <= 1.0 / kFlatBulge))
        return std::nullopt;
    const KcGeVector2d chord = end - start;
    // With the included angle 4·atan(b), the sagitta is b·c/2 and the radius c·(1 + b²)/(4·|b|).
    const KcGePoint2d middle = start + chord * 0.5;
    const KcGePoint2d center = middle + chord.perpVector() * ((1.0 - bulge * bulge) / (4.0 * bulge));
    const double radius = chord.length() * (1.0 + bulge * bulge) / (4.0 * size);
    if (!(radius > 0.0) || !std::isfinite(radius) || !std::isfinite(center.x) || !std::isfinite(center.y))
        return std::nullopt;
    return KcGeCircArc2d(center, radius, (start - center).angle(), 4.0 * std::atan(bulge));
}

std::optional<KcGeCircArc2d>
KcGeCircArc2d::fromChord(KcGePoint2d start, KcGePoint2d end, double includedAngle)
{
    if (!(std::abs(includedAngle) < kTwoPi))
        return std::nullopt;
    return fromBulge(start, end, std::tan(includedAngle / 4.0));
}

std::optional<KcGeCircArc2d>
KcGeCircArc2d::fromRadius(KcGePoint2d start, KcGePoint2d end, double radius, bool counterClockwise)
{
    const double chord = start.distanceTo(end);
    if (!(radius > 0.0) || !(chord > 0.0))
        return std::nullopt;
    // A chord longer than the diameter by no more than the tolerance is the diameter itself.
    if (chord > 2.0 * radius + KcGeContext::gTol.equalPoint)
        return std::nullopt;
    const double angle = 2.0 * std::asin(std::min(1.0, chord / (2.0 * radius)));
    return fromChord(start, end, counterClockwise ? angle : -angle);
}

std::optional<KcGeCircArc2d>
KcGeCircArc2d::throughPoints(KcGePoint2d start, KcGePoint2d between, KcGePoint2d end)
{
    // The angle at the point between the ends, as a peripheral angle, is the supplement of half the included
    // angle.
    const KcGeVector2d toStart = start - between, toEnd = end - between;
    const double cross = toStart.crossProduct(toEnd), dot = toStart.dotProduct(toEnd);
    if (cross == 0.0 || start == end) // exact: the flat bulge is refused below
        return std::nullopt;
    const double peripheral = std::atan2(std::abs(cross), dot);
    const double included = kTwoPi - 2.0 * peripheral;
    // Counter-clockwise when the way from start over the middle to the end turns left.
    return fromChord(start, end, cross < 0.0 ? included : -included);
}

bool KcGeCircArc2d::isFullCircle() const
{
    return std::abs(m_sweep) >= kTwoPi * (1.0 - KcGeContext::gTol.equalVector);
}

KcGePoint2d KcGeCircArc2d::pointAtAngle(double angle) const
{
    return { m_center.x + m_radius * std::cos(angle), m_center.y + m_radius * std::sin(angle) };
}

bool KcGeCircArc2d::containsAngle(double angle) const
{
    const double turned = m_sweep < 0.0 ? m_startAngle - angle : angle - m_startAngle;
    const double within = normalizedAngle(turned);
    const double slack = KcGeContext::gTol.equalVector;
    return within <= std::abs(m_sweep) + slack || within >= kTwoPi - slack;
}

double KcGeCircArc2d::bulge() const
{
    if (isFullCircle())
        return m_sweep < 0.0 ? -std::numeric_limits<double>::infinity()
                             : std::numeric_limits<double>::infinity();
    return std::tan(m_sweep / 4.0);
}

KcGeExtents2d KcGeCircArc2d::extents() const
{
    KcGeEllipArc3d arc;
    arc.center = { m_center.x, m_center.y, 0.0 };
    arc.u = { m_radius, 0.0, 0.0 };
    arc.v = { 0.0, m_radius, 0.0 };
    arc.start = m_startAngle;
    arc.sweep = m_sweep;
    const KcGeExtents3d box = arc.extents();
    KcGeExtents2d result;
    if (!box.isEmpty()) {
        result.addPoint(box.min.plan());
        result.addPoint(box.max.plan());
    }
    return result;
}

double KcGeCircArc2d::segmentArea() const
{
    return m_radius * m_radius / 2.0 * (m_sweep - std::sin(m_sweep));
}

double bulgeSegmentArea(KcGePoint2d start, KcGePoint2d end, double bulge)
{
    const auto arc = KcGeCircArc2d::fromBulge(start, end, bulge);
    if (!arc)
        return 0.0;
    // Flat arcs: angle and sine nearly cancel; the series of the same formula in the bulge does not.
    constexpr double kSeries = 1e-2; // the first term left out is b⁷/315 of the squared chord
    if (std::abs(bulge) < kSeries) {
        const double chord = start.distanceTo(end), b2 = bulge * bulge;
        return chord * chord * bulge * (1.0 / 3.0 + b2 * (1.0 / 15.0 - b2 / 105.0));
    }
    return arc->segmentArea();
}

double bulgeSegmentLength(KcGePoint2d start, KcGePoint2d end, double bulge)
{
    const auto arc = KcGeCircArc2d::fromBulge(start, end, bulge);
    return arc ? arc->length() : start.distanceTo(end);
}

KcGeExtents2d bulgeSegmentExtents(KcGePoint2d start, KcGePoint2d end, double bulge)
{
    KcGeExtents2d box;
    if (const auto arc = KcGeCircArc2d::fromBulge(start, end, bulge))
        box = arc->extents();
    for (const KcGePoint2d p : { start, end })
        if (std::isfinite(p.x) && std::isfinite(p.y))
            box.addPoint(p);
    return box;
}
