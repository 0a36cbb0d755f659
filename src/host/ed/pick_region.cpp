// Tests of pieces against polygons and fences.

#include "ed/pick_region.h"

#include "ge/intersect.h"

namespace {

double side(KcGePoint2d a, KcGePoint2d b, KcGePoint2d p)
{
    return (b - a).crossProduct(p - a);
}

bool isBetween(KcGePoint2d a, KcGePoint2d b, KcGePoint2d p)
{
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y
        && p.y <= std::max(a.y, b.y);
}

// Exact signs on purpose: touching counts, and a tolerance would depend on the size of the drawing.
bool segmentsMeet(KcGePoint2d a, KcGePoint2d b, KcGePoint2d c, KcGePoint2d d)
{
    const double s1 = side(a, b, c), s2 = side(a, b, d), s3 = side(c, d, a), s4 = side(c, d, b);
    if (((s1 > 0 && s2 < 0) || (s1 < 0 && s2 > 0)) && ((s3 > 0 && s4 < 0) || (s3 < 0 && s4 > 0)))
        return true;
    return (s1 == 0 && isBetween(a, b, c)) || (s2 == 0 && isBetween(a, b, d))
        || (s3 == 0 && isBetween(c, d, a)) || (s4 == 0 && isBetween(c, d, b));
}

// How often a ray from p to the right crosses the outline, modulo 2.
bool isInside(const std::vector<KcGePoint2d>& outline, KcGePoint2d p)
{
    bool inside = false;
    for (size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const KcGePoint2d a = outline[i], b = outline[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            inside = !inside;
    }
    return inside;
}

} // namespace

KcEdPickRegion::KcEdPickRegion(Kind kind, std::vector<KcGePoint2d> points)
    : m_kind(kind)
    , m_points(std::move(points))
{
    for (const KcGePoint2d p : m_points)
        m_box.addPoint({ p.x, p.y, 0.0 });
    m_isRectangle = m_kind != Kind::Fence && m_points.size() == 4;
    for (const KcGePoint2d p : m_points)
        m_isRectangle = m_isRectangle && (p.x == m_box.min.x || p.x == m_box.max.x)
            && (p.y == m_box.min.y || p.y == m_box.max.y);
}

bool KcEdPickRegion::contains(KcGePoint2d p) const
{
    if (m_kind == Kind::Fence)
        return false;
    if (m_isRectangle)
        return m_box.containsInPlan(KcGePoint3d{ p.x, p.y, 0.0 });
    return isInside(m_points, p);
}

bool KcEdPickRegion::crosses(KcGePoint2d a, KcGePoint2d b) const
{
    KcGeExtents3d box;
    box.addPoint({ a.x, a.y, 0.0 });
    box.addPoint({ b.x, b.y, 0.0 });
    if (!box.overlapsInPlan(m_box))
        return false;
    for (size_t i = 0; i + 1 < m_points.size(); ++i)
        if (segmentsMeet(a, b, m_points[i], m_points[i + 1]))
            return true;
    return m_kind != Kind::Fence && m_points.size() > 2
        && segmentsMeet(a, b, m_points.back(), m_points.front());
}

bool KcEdPickRegion::crosses(const KcGeSegment2d& curve) const
{
    const KcGeExtents2d box = curve.extents();
    KcGeExtents3d around;
    around.addPoint({ box.min.x, box.min.y, 0.0 });
    around.addPoint({ box.max.x, box.max.y, 0.0 });
    if (!around.overlapsInPlan(m_box))
        return false;
    const auto meets = [&](KcGePoint2d a, KcGePoint2d b) {
        return !intersect(curve, KcGeSegment2d::line(a, b)).isEmpty();
    };
    for (size_t i = 0; i + 1 < m_points.size(); ++i)
        if (meets(m_points[i], m_points[i + 1]))
            return true;
    return m_kind != Kind::Fence && m_points.size() > 2 && meets(m_points.back(), m_points.front());
}

bool KcEdPickRegion::holds(const KcGeSegment2d& curve) const
{
    if (!m_isRectangle)
        return contains(curve.startPoint()) && !crosses(curve);
    const KcGeExtents2d box = curve.extents();
    return contains(box.min) && contains(box.max);
}

KcEdPickRegion::Touch KcEdPickRegion::touches(const KcEdPickPieces& pieces) const
{
    bool filledHoldsRegion = false;
    for (const KcEdPickPiece& piece : pieces) {
        if (piece.curve && (contains(piece.curve->startPoint()) || crosses(*piece.curve)))
            return Touch::Line;
        if (piece.points.empty())
            continue;
        if (contains(piece.points.front()))
            return Touch::Line;
        if (piece.points.size() == 1 && crosses(piece.points[0], piece.points[0]))
            return Touch::Line;
        for (size_t i = 0; i + 1 < piece.points.size(); ++i)
            if (crosses(piece.points[i], piece.points[i + 1]))
                return Touch::Line;
        if (piece.filled && !m_points.empty() && isInside(piece.points, m_points.front()))
            filledHoldsRegion = !filledHoldsRegion;
    }
    return filledHoldsRegion ? Touch::Inside : Touch::None;
}

bool KcEdPickRegion::holds(const KcEdPickPieces& pieces) const
{
    bool any = false;
    for (const KcEdPickPiece& piece : pieces) {
        if (piece.curve) {
            if (!holds(*piece.curve))
                return false;
            any = true;
        }
        for (size_t i = 0; i < piece.points.size(); ++i) {
            if (!contains(piece.points[i]))
                return false;
            // A rectangle is convex: its points decide. Any other polygon may be left between two of them.
            if (!m_isRectangle && i > 0 && crosses(piece.points[i - 1], piece.points[i]))
                return false;
            any = true;
        }
    }
    return any;
}

bool KcEdPickRegion::selects(const KcDbEntity& entity, KcEdPickGeometry& geometry) const
{
    if (!KcEdPickGeometry::isEndless(entity)) {
        const KcGeExtents3d box = entity.geomExtents();
        if (box.isEmpty() || !box.overlapsInPlan(m_box))
            return false;
        if (m_isRectangle && m_box.containsInPlan(box))
            return true;
        if (m_kind == Kind::Window && !m_box.containsInPlan(box))
            return false;
    }
    const KcEdPickPieces pieces = geometry.pieces(entity);
    return m_kind == Kind::Window ? holds(pieces) : touches(pieces) != Touch::None;
}
