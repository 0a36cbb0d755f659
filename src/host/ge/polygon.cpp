// Closed outlines: areas, point tests, vertices that can be spared.

#include "ge/polygon.h"

namespace {

bool isFinite(KcGePoint2d p)
{
    return std::isfinite(p.x) && std::isfinite(p.y);
}

/// Twice the signed area of the triangle start, end, p: positive when p lies to the left.
double side(KcGePoint2d start, KcGePoint2d end, KcGePoint2d p)
{
    return (end - start).crossProduct(p - start);
}

/// True when a ray from the point along +X crosses the straight way between two points. Points level with
/// the ray count as below it, points on the way as beyond it: as if the point were moved a trifle along +X,
/// and by a trifle of that along +Y.
bool rayCrosses(KcGePoint2d start, KcGePoint2d end, KcGePoint2d p)
{
    if ((start.y > p.y) == (end.y > p.y))
        return false;
    const double left = side(start, end, p);
    return end.y > start.y ? left > 0.0 : left < 0.0;
}

/// The side of the way on which the point lies after those moves.
bool liesLeft(KcGePoint2d start, KcGePoint2d end, KcGePoint2d p)
{
    const double left = side(start, end, p);
    if (left != 0.0) // exact: only points on the line need the rule
        return left > 0.0;
    if (start.y != end.y)
        return end.y < start.y;
    return end.x > start.x;
}

/// True when the point lies between the arc and its chord.
bool isInArcSegment(const KcGeSegment2d& piece, const KcGeCircArc2d& arc, KcGePoint2d p)
{
    if (p.distanceTo(arc.center()) >= arc.radius())
        return false;
    if (arc.isFullCircle())
        return true;
    // A counter-clockwise arc lies to the right of its chord.
    return liesLeft(piece.startPoint(), piece.endPoint(), p) == arc.isClockwise();
}

/// The same for a stretch that rises or falls steadily: what lies between it and its chord lies in the box of
/// its ends.
bool isBeyondSteady(const KcGeSegment2d& piece, double low, double high, KcGePoint2d p)
{
    const KcGePoint2d start = piece.pointAt(low), end = piece.pointAt(high);
    KcGeExtents2d box;
    box.addPoint(start);
    box.addPoint(end);
    if (!box.contains(p) || start.y == end.y)
        return false;
    const bool rises = end.y > start.y;
    double below = rises ? low : high, above = rises ? high : low;
    constexpr int kHalvings = 60; // the resolution of doubles
    for (int i = 0; i < kHalvings; ++i) {
        const double middle = (below + above) / 2.0;
        (piece.pointAt(middle).y > p.y ? above : below) = middle;
    }
    const bool leftOfCurve = p.x < piece.pointAt((below + above) / 2.0).x;
    const bool leftOfChord = liesLeft(start, end, p) == rises;
    return leftOfCurve != leftOfChord;
}

/// Number of crossings of the ray with a piece, odd or even.
bool crossesOddly(const KcGeSegment2d& piece, KcGePoint2d p)
{
    const bool chord = rayCrosses(piece.startPoint(), piece.endPoint(), p);
    if (piece.isLine())
        return chord;
    if (const KcGeCircArc2d* arc = piece.asArc())
        return chord != isInArcSegment(piece, *arc, p);
    bool odd = false;
    double from = 0.0;
    std::vector<double> params = piece.monotoneParams();
    params.push_back(1.0);
    for (const double to : params) {
        odd ^= rayCrosses(piece.pointAt(from), piece.pointAt(to), p) != isBeyondSteady(piece, from, to, p);
        from = to;
    }
    return odd;
}

bool isNear(const KcGeExtents2d& box, KcGePoint2d p, double tolerance)
{
    return p.x >= box.min.x - tolerance && p.x <= box.max.x + tolerance && p.y >= box.min.y - tolerance
        && p.y <= box.max.y + tolerance;
}

} // namespace

KcGePointRelation
relationToOutline(std::span<const KcGeSegment2d> outline, KcGePoint2d point, double tolerance)
{
    const bool usable = isFinite(point) && !outline.empty()
        && std::all_of(outline.begin(), outline.end(), [](const KcGeSegment2d& s) { return s.isFinite(); });
    if (!usable)
        return KcGePointRelation::Unknown;
    const KcGeTol tol{ tolerance, tolerance };
    bool odd = false, onPiece = false;
    KcGePoint2d before = outline.back().endPoint();
    for (const KcGeSegment2d& piece : outline) {
        const KcGePoint2d start = piece.startPoint();
        if (point.isEqualTo(start, tol) || point.isEqualTo(piece.endPoint(), tol))
            return KcGePointRelation::OnVertex;
        if (!(before == start)) { // exact: any gap counts, else the parity of crossings would be wrong
            odd ^= rayCrosses(before, start, point);
            onPiece = onPiece || KcGeSegment2d::line(before, start).closest(point).distance <= tolerance;
        }
        onPiece = onPiece
            || (isNear(piece.extents(), point, tolerance) && piece.closest(point).distance <= tolerance);
        odd ^= crossesOddly(piece, point);
        before = piece.endPoint();
    }
    if (onPiece)
        return KcGePointRelation::OnOutline;
    if (odd)
        return KcGePointRelation::Inside;
    // One line there and back, or a speck, is no outline.
    const auto isStraight = [](const KcGeSegment2d& s) { return s.isLine(); };
    if (outline.size() < 3 && std::all_of(outline.begin(), outline.end(), isStraight))
        return KcGePointRelation::Unknown;
    return KcGePointRelation::Outside;
}

std::vector<KcGeSegment2d> segmentsOfVertices(std::span<const KcGeBulgeVertex2d> vertices, bool closed)
{
    std::vector<KcGeSegment2d> result;
    const size_t count = vertices.size();
    if (count < 2)
        return result;
    result.reserve(count);
    for (size_t i = 0; i + (closed ? 0 : 1) < count; ++i) {
        const KcGePoint2d start = vertices[i].point, end = vertices[(i + 1) % count].point;
        if (!(start == end)) // exact: what has any length is a piece
            result.push_back(KcGeSegment2d::bulge(start, end, vertices[i].bulge));
    }
    return result;
}

std::vector<KcGeBulgeVertex2d> verticesOfSegments(std::span<const KcGeSegment2d> chain, bool closed)
{
    std::vector<KcGeBulgeVertex2d> result;
    for (const KcGeSegment2d& piece : chain) {
        const KcGeCircArc2d* arc = piece.asArc();
        if (arc && arc->isFullCircle()) {
            const double half = arc->isClockwise() ? -1.0 : 1.0;
            result.push_back({ piece.startPoint(), half });
            result.push_back({ piece.midPoint(), half });
        } else {
            result.push_back({ piece.startPoint(), piece.bulge() });
        }
    }
    if (!closed && !chain.empty())
        result.push_back({ chain.back().endPoint(), 0.0 });
    return result;
}

double KcGePolygon2d::area() const
{
    double twice = 0.0, bulges = 0.0;
    const size_t count = m_vertices.size();
    for (size_t i = 0; i < count; ++i) {
        const KcGePoint2d start = m_vertices[i].point, end = m_vertices[(i + 1) % count].point;
        const KcGePoint2d origin
            = m_vertices.front().point; // near: far from the drawing's origin digits are lost
        twice += (start - origin).crossProduct(end - origin);
        bulges += bulgeSegmentArea(start, end, m_vertices[i].bulge);
    }
    return twice / 2.0 + bulges;
}

double KcGePolygon2d::perimeter() const
{
    double sum = 0.0;
    for (size_t i = 0; i < m_vertices.size(); ++i)
        sum += bulgeSegmentLength(
            m_vertices[i].point, m_vertices[(i + 1) % m_vertices.size()].point, m_vertices[i].bulge);
    return sum;
}

KcGeExtents2d KcGePolygon2d::extents() const
{
    KcGeExtents2d box;
    for (size_t i = 0; i < m_vertices.size(); ++i)
        box.addExtents(bulgeSegmentExtents(
            m_vertices[i].point, m_vertices[(i + 1) % m_vertices.size()].point, m_vertices[i].bulge));
    return box;
}

KcGePolygon2d KcGePolygon2d::reversed() const
{
    KcGePolygon2d result;
    const size_t count = m_vertices.size();
    for (size_t i = 0; i < count; ++i) {
        const size_t at = (count - i) % count;
        result.append(m_vertices[at].point, -m_vertices[(at + count - 1) % count].bulge);
    }
    return result;
}

KcGePointRelation KcGePolygon2d::relation(KcGePoint2d point, double tolerance) const
{
    const bool finite = std::all_of(m_vertices.begin(), m_vertices.end(), [](const KcGeBulgeVertex2d& v) {
        return isFinite(v.point) && !std::isnan(v.bulge);
    });
    return finite ? relationToOutline(segments(), point, tolerance) : KcGePointRelation::Unknown;
}

void KcGePolygon2d::compress(double tolerance)
{
    // Vertices without a way to the next one.
    std::vector<KcGeBulgeVertex2d> kept;
    const KcGeTol tol{ tolerance, tolerance };
    for (const KcGeBulgeVertex2d& v : m_vertices) {
        if (!kept.empty() && kept.back().point.isEqualTo(v.point, tol))
            kept.back().bulge = v.bulge;
        else
            kept.push_back(v);
    }
    while (kept.size() > 1 && kept.back().point.isEqualTo(kept.front().point, tol))
        kept.pop_back();
    m_vertices = kept;
    const size_t count = m_vertices.size();
    if (count < 3)
        return;

    // Begin at a vertex that stays: an end of an arc, or the corner farthest from any point, which is no
    // vertex of a straight run.
    const auto isStraight = [&](size_t i) {
        const size_t next = (i + 1) % count;
        return !KcGeCircArc2d::fromBulge(m_vertices[i].point, m_vertices[next].point, m_vertices[i].bulge);
    };
    size_t first = 0;
    double farthest = -1.0;
    for (size_t i = 0; i < count; ++i) {
        if (!isStraight(i)) {
            first = i;
            break;
        }
        const double distance = m_vertices[i].point.distanceTo(m_vertices[0].point);
        if (distance > farthest) {
            farthest = distance;
            first = i;
        }
    }
    std::rotate(m_vertices.begin(), m_vertices.begin() + long(first), m_vertices.end());

    // From each vertex that stays, the directions under which all vertices passed over lie within the
    // tolerance narrow down to a wedge; the run goes on while the next vertex lies in it, and farther away.
    std::vector<KcGeBulgeVertex2d> result{ m_vertices.front() };
    KcGeVector2d axis;
    double low = -kPi, high = kPi, reached = 0.0;
    const auto begin = [&] {
        axis = {};
        low = -kPi;
        high = kPi;
        reached = 0.0;
    };
    begin();
    for (size_t i = 1; i <= count; ++i) {
        const size_t at = i % count;
        const KcGeVector2d way = m_vertices[at].point - result.back().point;
        const double distance = way.length();
        if (!isStraight(i - 1)) {
            if (at != 0)
                result.push_back(m_vertices[at]);
            begin();
            continue;
        }
        const double angle
            = axis.length() > 0.0 ? std::atan2(axis.crossProduct(way), axis.dotProduct(way)) : 0.0;
        if (reached > 0.0 && !(angle >= low && angle <= high && distance > reached)) {
            result.push_back(m_vertices[i - 1]);
            begin();
            --i; // the same vertex again, seen from the one just kept
            continue;
        }
        if (!(axis.length() > 0.0))
            axis = way;
        const double reach = distance > tolerance ? std::asin(tolerance / distance) : kPi;
        low = std::max(low, angle - reach);
        high = std::min(high, angle + reach);
        reached = distance;
        if (at != 0 && !isStraight(at)) {
            result.push_back(m_vertices[at]);
            begin();
        }
    }
    m_vertices = std::move(result);
}
