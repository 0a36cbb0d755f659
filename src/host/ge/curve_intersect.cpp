// Common points of whole curves: the plane in which to look for them, or the line in which their planes meet.

#include "ge/curve_intersect.h"

namespace {

/// Unit normals and directions that differ by less than this sine are parallel.
constexpr double kParallel = 1e2 * KcGeContext::gTol.equalVector;

bool isStraight(const KcGeCurve3d& curve)
{
    return curve.numPieces() == 1 && curve.isPlanar() && curve.pieces().front().isLine();
}

struct Line {
    KcGePoint3d start;
    KcGeVector3d along; ///< to the end; of a line without ends, of length 1
};

Line lineOf(const KcGeCurve3d& curve)
{
    const KcGeMatrix3d frame = *curve.frame();
    const KcGeSegment2d& piece = curve.pieces().front();
    const KcGePoint2d s = piece.startPoint(), e = piece.endPoint();
    const KcGePoint3d start = frame * KcGePoint3d{ s.x, s.y, 0.0 };
    return { start, frame * KcGePoint3d{ e.x, e.y, 0.0 } - start };
}

bool areParallel(KcGeVector3d a, KcGeVector3d b)
{
    return a.normal().crossProduct(b.normal()).length() <= kParallel;
}

bool isPerpendicular(KcGeVector3d a, KcGeVector3d b)
{
    return std::abs(a.normal().dotProduct(b.normal())) <= kParallel;
}

void addOnce(std::vector<KcGePoint3d>& points, KcGePoint3d p, double tolerance)
{
    for (const KcGePoint3d q : points)
        if (q.distanceTo(p) <= tolerance)
            return;
    points.push_back(p);
}

/// True when a parameter of a piece lies on the curve as far as it reaches: rays have one end.
bool isReached(const KcGeCurve3d& curve, double t, bool extended)
{
    return curve.isBounded() || extended || !curve.hasStart() || t >= 0.0;
}

/// Looked at along the Z axis of a system; the points get the first curve's height in it.
std::vector<KcGePoint3d> meetInPlane(
    const KcGeCurve3d& first, const KcGeCurve3d& second, const KcGeMatrix3d& system,
    const KcGeIntersectOptions& options)
{
    const KcGeMatrix3d inverse = system.inverse();
    const auto seen = [&](const KcGeCurve3d& curve) {
        std::vector<KcGeSegment2d> pieces = curve.pieces();
        for (KcGeSegment2d& piece : pieces)
            piece = piece.transformed(inverse * *curve.frame());
        return pieces;
    };
    const std::vector<KcGeSegment2d> a = seen(first), b = seen(second);
    KcGeIntersectOptions reach = options;
    reach.extendFirst = options.extendFirst || !first.isBounded();
    reach.extendSecond = options.extendSecond || !second.isBounded();
    const KcGePoint2d s = first.pieces().front().startPoint();
    const double height = (inverse * (*first.frame() * KcGePoint3d{ s.x, s.y, 0.0 })).z;
    const KcGeChainIntersections2d found = intersectChains(a, b, reach);
    std::vector<KcGePoint3d> points;
    const auto add = [&](KcGePoint2d p, double t, double u) {
        if (isReached(first, t, options.extendFirst) && isReached(second, u, options.extendSecond))
            points.push_back(system * KcGePoint3d{ p.x, p.y, height });
    };
    for (const KcGeChainCrossing2d& c : found.points)
        add(c.point, c.first, c.second);
    for (const KcGeChainOverlap2d& o : found.overlaps) {
        add(o.start, o.firstFrom, o.secondFrom);
        if (!o.start.isEqualTo(o.end))
            add(o.end, o.firstTo, o.secondTo);
    }
    return points;
}

bool isOn(const KcGeCurve3d& curve, KcGePoint3d p, bool extended, double tolerance)
{
    const auto nearest = extended ? curve.closestExtended(p) : curve.closest(p);
    return nearest && nearest->distance <= tolerance;
}

/// Where a plane cuts a line; nothing when they are parallel.
std::optional<KcGePoint3d> pierce(const Line& line, KcGePoint3d origin, KcGeVector3d normal)
{
    const double slope = line.along.dotProduct(normal);
    if (slope == 0.0) // exact: what is nearly parallel was told before
        return std::nullopt;
    return line.start + line.along * ((origin - line.start).dotProduct(normal) / slope);
}

KcGePoint3d originOf(const KcGeMatrix3d& frame)
{
    return frame * KcGePoint3d{};
}

/// Candidates on the line in which two planes meet.
std::vector<KcGePoint3d>
meetOnCommonLine(const KcGeCurve3d& first, const KcGeCurve3d& second, const KcGeIntersectOptions& options)
{
    const KcGeMatrix3d a = *first.frame(), b = *second.frame();
    const KcGeVector3d m = a.axis(2), n = b.axis(2), along = m.crossProduct(n).normal();
    // From a point of the first plane, down its steepest way to the second plane.
    const auto base = pierce({ originOf(a), along.crossProduct(m) }, originOf(b), n);
    if (!base)
        return {};
    const KcGeIntersectOptions reach{ options.extendFirst, false, options.tolerance };
    std::vector<KcGePoint3d> points;
    for (const KcGePoint3d p : intersectCurves(first, KcGeCurve3d::infiniteLine(*base, along), reach))
        if (isOn(second, p, options.extendSecond, options.tolerance))
            addOnce(points, p, options.tolerance);
    return points;
}

std::vector<KcGePoint3d>
meetLines(const KcGeCurve3d& first, const KcGeCurve3d& second, const KcGeIntersectOptions& options)
{
    const Line a = lineOf(first), b = lineOf(second);
    if (isPerpendicular(a.along, KcGeVector3d::kZAxis) && isPerpendicular(b.along, KcGeVector3d::kZAxis))
        return meetInPlane(first, second, {}, options);
    KcGeVector3d x = a.along.normal(), normal = a.along.crossProduct(b.along);
    if (areParallel(a.along, b.along))
        normal = a.along.crossProduct(b.start - a.start);
    if (!(normal.length() > 0.0)) // on one line: any plane through it
        normal = x.crossProduct(std::abs(x.z) < 0.5 ? KcGeVector3d::kZAxis : KcGeVector3d::kXAxis);
    normal = normal.normal();
    if (std::abs((b.start - a.start).dotProduct(normal)) > options.tolerance)
        return {};
    return meetInPlane(
        first, second, KcGeMatrix3d::fromAxes(a.start, x, normal.crossProduct(x), normal), options);
}

/// A curve of space as straight pieces; splines by chords within the tolerance.
std::vector<KcGeCurve3d> straightPieces(const KcGeCurve3d& curve, double tolerance)
{
    const std::vector<KcGePoint3d> points
        = curve.asSpline() ? curve.chords(tolerance / 2.0) : curve.vertices();
    std::vector<KcGeCurve3d> pieces;
    for (size_t i = 0; i + 1 < points.size(); ++i)
        if (!(points[i] == points[i + 1])) // exact: a speck has no direction
            pieces.push_back(KcGeCurve3d::line(points[i], points[i + 1]));
    if (curve.isClosed() && points.size() > 2 && !points.front().isEqualTo(points.back()))
        pieces.push_back(KcGeCurve3d::line(points.back(), points.front()));
    return pieces;
}

} // namespace

std::vector<KcGePoint3d>
intersectCurves(const KcGeCurve3d& first, const KcGeCurve3d& second, const KcGeIntersectOptions& options)
{
    if (first.isEmpty() || second.isEmpty())
        return {};
    if (!first.isPlanar() || !second.isPlanar()) {
        const bool splitFirst = !first.isPlanar();
        const KcGeCurve3d& split = splitFirst ? first : second;
        const std::vector<KcGeCurve3d> pieces = straightPieces(split, options.tolerance);
        const bool extend = (splitFirst ? options.extendFirst : options.extendSecond) && !split.isClosed()
            && !split.asSpline();
        std::vector<KcGePoint3d> points;
        for (size_t i = 0; i < pieces.size(); ++i) {
            const bool isEnd = i == 0 || i + 1 == pieces.size();
            KcGeIntersectOptions reach = options;
            (splitFirst ? reach.extendFirst : reach.extendSecond) = extend && isEnd;
            const auto found = splitFirst ? intersectCurves(pieces[i], second, reach)
                                          : intersectCurves(first, pieces[i], reach);
            for (const KcGePoint3d p : found) {
                // Outwards only, where an end goes on.
                const Line line = lineOf(pieces[i]);
                const double t = (p - line.start).dotProduct(line.along) / line.along.dotProduct(line.along);
                const bool outwards = (t >= 0.0 || i == 0) && (t <= 1.0 || i + 1 == pieces.size());
                if (outwards || !(extend && isEnd))
                    addOnce(points, p, 2.0 * options.tolerance);
            }
        }
        return points;
    }
    const bool straightFirst = isStraight(first), straightSecond = isStraight(second);
    if (straightFirst && straightSecond)
        return meetLines(first, second, options);
    if (straightFirst || straightSecond) {
        const Line line = lineOf(straightFirst ? first : second);
        const KcGeMatrix3d frame = *(straightFirst ? second : first).frame();
        if (isPerpendicular(line.along, frame.axis(2)))
            return meetInPlane(first, second, frame, options);
        const auto p = pierce(line, originOf(frame), frame.axis(2));
        const bool meet = p && isOn(first, *p, options.extendFirst, options.tolerance)
            && isOn(second, *p, options.extendSecond, options.tolerance);
        return meet ? std::vector{ *p } : std::vector<KcGePoint3d>{};
    }
    if (areParallel(first.frame()->axis(2), second.frame()->axis(2)))
        return meetInPlane(first, second, *first.frame(), options);
    return meetOnCommonLine(first, second, options);
}
