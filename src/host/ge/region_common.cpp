// Where two pieces of the region search meet. Lines and arcs are worked out here, they are what drawings are made of;
// ellipses and splines that are no cubics leave it to the general intersection.

#include "ge/intersect.h"
#include "ge/region_pieces.h"

namespace kcge {

using Kind = RegionPiece::Kind;

void RegionPieces::common(
    const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, std::vector<Common>& result) const
{
    if (a.kind == Kind::Smooth || b.kind == Kind::Smooth)
        return general(a, b, ofB, result);
    endsOn(a, b, ofB, false, result);
    endsOn(b, a, *this, true, result);
    if (a.kind == Kind::Cubic && b.kind == Kind::Cubic)
        cubicCubic(a, b, ofB, result);
    else if (a.kind == Kind::Cubic)
        b.kind == Kind::Line ? cubicLine(a, b, *this, false, result) : cubicArc(a, b, *this, false, result);
    else if (b.kind == Kind::Cubic)
        a.kind == Kind::Line ? cubicLine(b, a, ofB, true, result) : cubicArc(b, a, ofB, true, result);
    else if (a.kind == Kind::Line && b.kind == Kind::Line)
        lineLine(a, b, result);
    else if (a.kind == Kind::Line)
        lineArc(a, b, false, result);
    else if (b.kind == Kind::Line)
        lineArc(b, a, true, result);
    else
        arcArc(a, b, result);
}

// Ends of a on b. Overlaps need nothing else: both pieces are cut at each other's ends.
void RegionPieces::endsOn(const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, bool swapped,
    std::vector<Common>& result) const
{
    for (const double end : { 0.0, 1.0 }) {
        const KcGePoint2d point = end == 0.0 ? a.start : a.end;
        if (point.isEqualTo(b.start, { m_tolerance, 0 }) || point.isEqualTo(b.end, { m_tolerance, 0 }))
            continue;
        double t = 0.0;
        if (b.kind == Kind::Line) {
            const KcGeVector2d along = b.end - b.start, to = point - b.start;
            const double square = along.dotProduct(along);
            const double off = along.crossProduct(to);
            t = to.dotProduct(along) / square;
            if (!(off * off <= m_tolerance * m_tolerance * square) || t <= 0.0 || t >= 1.0)
                continue;
        } else if (b.kind == Kind::Arc) {
            const double off = point.distanceTo(b.center) - b.radius;
            if (!(std::abs(off) <= m_tolerance) || !isOnArc(b, point, t))
                continue;
        } else {
            const double reach = m_tolerance;
            if (point.x < std::min(b.start.x, b.end.x) - reach || point.x > std::max(b.start.x, b.end.x) + reach
                || point.y < std::min(b.start.y, b.end.y) - reach || point.y > std::max(b.start.y, b.end.y) + reach)
                continue;
            double distance = 0.0;
            t = ofB.closest(b, point, distance);
            if (!(distance <= m_tolerance))
                continue;
        }
        result.push_back(swapped ? Common{ t, end } : Common{ end, t });
    }
}

void RegionPieces::cubicLine(const RegionPiece& cubic, const RegionPiece& line, const RegionPieces& ofCubic,
    bool swapped, std::vector<Common>& result) const
{
    const KcGeVector2d along = line.end - line.start;
    const double length = along.length();
    const KcGeVector2d unit = along / length;
    for (const double t : onLine(ofCubic.m_cubics[cubic.smooth], line.start, unit, m_tolerance)) {
        const double s = (ofCubic.at(cubic, t) - line.start).dotProduct(unit) / length;
        if (s >= 0.0 && s <= 1.0)
            result.push_back(swapped ? Common{ s, t } : Common{ t, s });
    }
}

void RegionPieces::cubicArc(const RegionPiece& cubic, const RegionPiece& arc, const RegionPieces& ofCubic,
    bool swapped, std::vector<Common>& result) const
{
    for (const double t : onCircle(ofCubic.m_cubics[cubic.smooth], arc.center, arc.radius, m_tolerance)) {
        double s = 0.0;
        if (isOnArc(arc, ofCubic.at(cubic, t), s))
            result.push_back(swapped ? Common{ s, t } : Common{ t, s });
    }
}

void RegionPieces::cubicCubic(
    const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, std::vector<Common>& result) const
{
    const auto near = [&](KcGePoint2d p, KcGePoint2d q) { return p.isEqualTo(q, { m_tolerance, 0 }); };
    if ((near(a.start, b.start) && near(a.end, b.end)) || (near(a.start, b.end) && near(a.end, b.start))) {
        // Most pairs like this are copies, for which nothing has to be cut.
        bool copies = true;
        for (const double t : { 0.2, 0.5, 0.8 }) {
            double distance = 0.0;
            ofB.closest(b, at(a, t), distance);
            copies = copies && distance <= m_tolerance;
        }
        if (copies)
            return;
    }
    for (const CubicCrossing& c : crossings(m_cubics[a.smooth], ofB.m_cubics[b.smooth], m_tolerance))
        result.push_back({ c.first, c.second });
}

/// For a point on the circle: whether the arc reaches it, and where. An arc up to half a turn lies to the right of the
/// way from its start to its end.
bool RegionPieces::isOnArc(const RegionPiece& arc, KcGePoint2d point, double& t) const
{
    const KcGeVector2d chord = arc.end - arc.start;
    if (chord.crossProduct(point - arc.start) > m_tolerance * chord.length())
        return false;
    const KcGeVector2d out = point - arc.center;
    double angle = std::atan2(out.y, out.x) - arc.startAngle;
    angle -= kTwoPi * std::floor(angle / kTwoPi);
    if (angle > (arc.sweep + kTwoPi) / 2.0) // nearer to the start than to the end
        angle = 0.0;
    t = std::min(angle / arc.sweep, 1.0);
    return true;
}

void RegionPieces::lineLine(const RegionPiece& a, const RegionPiece& b, std::vector<Common>& result) const
{
    const KcGeVector2d u = a.end - a.start, v = b.end - b.start, w = b.start - a.start;
    const double det = u.crossProduct(v);
    const double t = w.crossProduct(v) / det, s = w.crossProduct(u) / det;
    if (!(t >= 0.0 && t <= 1.0 && s >= 0.0 && s <= 1.0)) // true for parallels, where both are no numbers
        return;
    // Of lines that lie on each other the quotients may tell two different points: nothing then crosses.
    if ((a.start + u * t).isEqualTo(b.start + v * s, { m_tolerance, 0 }))
        result.push_back({ t, s });
}

void RegionPieces::lineArc(
    const RegionPiece& line, const RegionPiece& arc, bool swapped, std::vector<Common>& result) const
{
    const KcGeVector2d along = line.end - line.start;
    const double length = along.length();
    const KcGeVector2d unit = along / length;
    const double foot = (arc.center - line.start).dotProduct(unit);
    const double off = std::abs(unit.crossProduct(arc.center - line.start));
    if (off > arc.radius + m_tolerance)
        return;
    const double half = off < arc.radius - m_tolerance ? std::sqrt((arc.radius - off) * (arc.radius + off)) : 0.0;
    for (const double way : { foot - half, foot + half }) {
        double t = 0.0;
        if (way >= 0.0 && way <= length && isOnArc(arc, line.start + unit * way, t))
            result.push_back(swapped ? Common{ t, way / length } : Common{ way / length, t });
        if (half == 0.0) // exact: one touch
            break;
    }
}

void RegionPieces::arcArc(const RegionPiece& a, const RegionPiece& b, std::vector<Common>& result) const
{
    const KcGeVector2d between = b.center - a.center;
    const double d = between.length();
    const double sum = a.radius + b.radius, difference = std::abs(a.radius - b.radius);
    if (d > sum + m_tolerance || d < difference - m_tolerance)
        return;
    if (d + difference < 2.0 * m_tolerance) // one circle: the ends say it all
        return;
    const KcGeVector2d unit = between / d;
    // From the first centre to the chord through both crossings.
    double foot = (d * d + (a.radius - b.radius) * sum) / (2.0 * d);
    double half = 0.0;
    if (d < sum - m_tolerance && d > difference + m_tolerance)
        half = std::sqrt(std::max(0.0, (a.radius - foot) * (a.radius + foot)));
    else
        foot = foot < 0.0 ? -a.radius : a.radius;
    for (const double side : { half, -half }) {
        const KcGePoint2d point = a.center + unit * foot + unit.perpVector() * side;
        double t = 0.0, s = 0.0;
        if (isOnArc(a, point, t) && isOnArc(b, point, s))
            result.push_back({ t, s });
        if (half == 0.0) // exact: one touch
            break;
    }
}

void RegionPieces::general(
    const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, std::vector<Common>& result) const
{
    KcGeIntersectOptions options;
    options.tolerance = m_tolerance;
    const KcGeIntersections2d found = intersect(segment(a), ofB.segment(b), options);
    for (const KcGeCrossing2d& point : found.points)
        result.push_back({ std::clamp(point.first, 0.0, 1.0), std::clamp(point.second, 0.0, 1.0) });
    for (const KcGeOverlap2d& overlap : found.overlaps) {
        result.push_back({ overlap.firstFrom, overlap.secondFrom });
        result.push_back({ overlap.firstTo, overlap.secondTo });
    }
}

} // namespace kcge
