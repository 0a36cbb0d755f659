// Hatches: boxes and areas of their loops, transforms of loops and pattern.

#include "db/hatch.h"

#include "db/plane.h"
#include "ge/arc.h"
#include "ge/ellipse.h"
#include "ge/spline.h"

KCRX_DEFINE(KcDbHatch, KcDbEntity, "AcDbHatch")

namespace {

constexpr int kPolylineLoop = 2;

/// The signed sweep of an edge whose angles are measured in the direction in which it runs.
double edgeSweep(double start, double end, bool counterClockwise)
{
    const double sweep = sweepBetween(start, end);
    return counterClockwise ? sweep : -sweep;
}

KcGePoint3d raised(KcGePoint2d p)
{
    return { p.x, p.y, 0.0 };
}

/// An arc or ellipse edge in the plane of the hatch.
KcGeEllipArc3d ellipticArc(const KcDbHatch::ArcEdge& edge)
{
    KcGeEllipArc3d arc;
    arc.center = raised(edge.center);
    arc.u = { edge.radius, 0, 0 };
    arc.v = { 0, edge.radius, 0 };
    arc.start = edge.counterClockwise ? edge.startAngle : -edge.startAngle;
    arc.sweep = edgeSweep(edge.startAngle, edge.endAngle, edge.counterClockwise);
    return arc;
}

KcGeEllipArc3d ellipticArc(const KcDbHatch::EllipseEdge& edge)
{
    KcGeEllipArc3d arc;
    arc.center = raised(edge.center);
    arc.u = { edge.majorAxis.x, edge.majorAxis.y, 0 };
    const KcGeVector2d minor = edge.majorAxis.perpVector() * edge.radiusRatio;
    arc.v = { minor.x, minor.y, 0 };
    // The file gives angles from the major axis as seen from the centre.
    const double start = anomalyOfAngle(edge.startAngle, edge.radiusRatio);
    const double end = anomalyOfAngle(edge.endAngle, edge.radiusRatio);
    arc.start = edge.counterClockwise ? start : -start;
    arc.sweep = edgeSweep(start, end, edge.counterClockwise);
    return arc;
}

KcDbHatch::EllipseEdge edgeOf(const KcGeEllipArc3d& image)
{
    const KcGeEllipArc3d arc = image.principal();
    KcDbHatch::EllipseEdge edge;
    edge.center = arc.center.plan();
    edge.majorAxis = { arc.u.x, arc.u.y };
    const double major = edge.majorAxis.length();
    edge.radiusRatio = major > 0.0 ? std::hypot(arc.v.x, arc.v.y) / major : 1.0;
    // The edge's own minor axis lies to the left of the major one; an arc about the other runs the other way
    // round.
    const bool left = edge.majorAxis.crossProduct({ arc.v.x, arc.v.y }) >= 0.0;
    edge.counterClockwise = (arc.sweep >= 0.0) == left;
    double start = left ? arc.start : -arc.start;
    if (!edge.counterClockwise)
        start = -start;
    start = normalizedAngle(start);
    edge.startAngle = angleOfAnomaly(start, edge.radiusRatio);
    edge.endAngle = angleOfAnomaly(start + std::abs(arc.sweep), edge.radiusRatio);
    return edge;
}

/// The curve of a spline edge; not valid when its values make none.
KcGeNurbsCurve3d curveOf(const KcDbHatch::SplineEdge& edge)
{
    KcGeNurbsCurve3d curve;
    curve.degree = edge.degree;
    curve.knots = edge.knots;
    for (const KcGePoint2d p : edge.controlPoints)
        curve.controlPoints.push_back(raised(p));
    if (edge.rational)
        curve.weights = edge.weights;
    if (curve.isValid())
        return curve;
    std::vector<KcGePoint3d> points;
    for (const KcGePoint2d p : edge.fitPoints)
        points.push_back(raised(p));
    KcGeNurbsCurve3d::EndConditions ends;
    if (edge.hasTangents) {
        ends.startTangent = KcGeVector3d{ edge.startTangent.x, edge.startTangent.y, 0 };
        ends.endTangent = KcGeVector3d{ edge.endTangent.x, edge.endTangent.y, 0 };
    }
    return KcGeNurbsCurve3d::throughPoints(points, ends).value_or(KcGeNurbsCurve3d());
}

// Areas.

/// One edge as the area needs it: its ends, its share in the signed area, chords that follow it.
struct Path {
    KcGePoint2d start, end;
    double area = 0.0; ///< half the integral of x·dy − y·dx about the hatch's own origin
    std::vector<KcGePoint2d> chords; ///< from start to end; used for tests of inclusion only
};

constexpr int kChordsOfTurn = 128;

void addChords(Path& path, const KcGeEllipArc3d& arc)
{
    const int n = std::max(1, int(std::ceil(std::abs(arc.sweep) / kTwoPi * kChordsOfTurn)));
    for (int i = 0; i <= n; ++i)
        path.chords.push_back(arc.pointAt(arc.start + arc.sweep * i / n).plan());
    path.start = path.chords.front();
    path.end = path.chords.back();
}

Path pathOfArc(const KcGeEllipArc3d& arc)
{
    Path path;
    addChords(path, arc);
    // The chord's triangle with the origin, and the segment over the chord: half of |u × v|·(sweep − sin
    // sweep).
    const double cross = arc.u.x * arc.v.y - arc.u.y * arc.v.x;
    path.area = path.start.asVector().crossProduct(path.end.asVector()) / 2.0
        + cross / 2.0 * (arc.sweep - std::sin(arc.sweep));
    return path;
}

Path pathOf(const KcDbHatch::LineEdge& edge)
{
    return { edge.start,
             edge.end,
             edge.start.asVector().crossProduct(edge.end.asVector()) / 2.0,
             { edge.start, edge.end } };
}

Path pathOf(const KcDbHatch::ArcEdge& edge)
{
    return pathOfArc(ellipticArc(edge));
}

Path pathOf(const KcDbHatch::EllipseEdge& edge)
{
    return pathOfArc(ellipticArc(edge));
}

Path pathOf(const KcDbHatch::SplineEdge& edge)
{
    Path path;
    const KcGeNurbsCurve3d curve = curveOf(edge);
    if (!curve.isValid()) {
        path.area = std::numeric_limits<double>::quiet_NaN();
        return path;
    }
    const KcGeExtents3d box = curve.extents();
    for (const KcGePoint3d p : curve.chords(std::max(box.width(), box.height()) / kChordsOfTurn))
        path.chords.push_back(p.plan());
    path.start = path.chords.front();
    path.end = path.chords.back();
    path.area = curve.planArea();
    return path;
}

Path reversed(Path path)
{
    std::swap(path.start, path.end);
    path.area = -path.area;
    std::reverse(path.chords.begin(), path.chords.end());
    return path;
}

/// A closed outline.
struct Contour {
    double area = 0.0; ///< positive
    KcGeExtents2d box;
    std::vector<KcGePoint2d>
        chords; ///< the last one is the first one again or lies within the joining tolerance
};

bool joins(KcGePoint2d a, KcGePoint2d b)
{
    return a.distanceTo(b) <= KcGeContext::kJoinedEnds;
}

/// Chains edges to closed outlines. Edges may stand in any order and direction. Nothing when an outline stays
/// open.
std::optional<std::vector<Contour>> chain(std::vector<Path> paths)
{
    std::vector<Contour> contours;
    size_t next = 0;
    while (next < paths.size()) {
        const auto startsOrEnds
            = [](const Path& path, KcGePoint2d p) { return joins(path.start, p) || joins(path.end, p); };
        Path first = paths[next++];
        // The first edge may stand the wrong way round: its follower tells.
        if (next < paths.size() && !joins(first.start, first.end) && !startsOrEnds(paths[next], first.end)
            && startsOrEnds(paths[next], first.start))
            first = reversed(std::move(first));
        Contour contour;
        contour.area = first.area;
        contour.chords = first.chords;
        KcGePoint2d end = first.end;
        while (!joins(end, first.start)) {
            size_t found = next;
            while (found < paths.size() && !startsOrEnds(paths[found], end))
                ++found;
            if (found >= paths.size())
                return std::nullopt;
            Path path = std::move(paths[found]);
            if (found != next)
                paths[found] = std::move(paths[next]);
            ++next;
            if (!joins(path.start, end))
                path = reversed(std::move(path));
            // The gap that the tolerance bridges is a straight piece of the outline.
            contour.area += end.asVector().crossProduct(path.start.asVector()) / 2.0 + path.area;
            contour.chords.insert(contour.chords.end(), path.chords.begin(), path.chords.end());
            end = path.end;
        }
        contour.area = std::abs(contour.area + end.asVector().crossProduct(first.start.asVector()) / 2.0);
        if (!std::isfinite(contour.area))
            return std::nullopt;
        for (const KcGePoint2d p : contour.chords)
            contour.box.addPoint(p);
        contours.push_back(std::move(contour));
    }
    return contours;
}

/// Even-odd test against the chords of an outline.
bool isInside(KcGePoint2d p, const std::vector<KcGePoint2d>& outline)
{
    bool inside = false;
    for (size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const KcGePoint2d a = outline[i], b = outline[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y)))
            inside = !inside;
    }
    return inside;
}

/// True when most of an outline lies inside another: outlines of one hatch may touch, and chords cut corners.
bool liesInside(const Contour& inner, const Contour& outer)
{
    if (!outer.box.overlaps(inner.box))
        return false;
    constexpr size_t kProbes = 32;
    const size_t step = std::max<size_t>(1, inner.chords.size() / kProbes);
    int votes = 0;
    for (size_t i = 0; i + 1 < inner.chords.size(); i += step) {
        const KcGePoint2d middle = inner.chords[i] + (inner.chords[i + 1] - inner.chords[i]) * 0.5;
        votes += isInside(middle, outer.chords) ? 1 : -1;
    }
    return votes > 0;
}

/// The edges of a loop about another origin, which keeps the digits of a plan far from the drawing's.
std::vector<Path> pathsOf(const KcDbHatch::Loop& loop, KcGeVector2d shift)
{
    std::vector<Path> paths;
    if (loop.isPolyline()) {
        const size_t n = loop.vertices.size();
        for (size_t i = 0; i < n && n > 1; ++i) {
            const KcDbPolyline::Vertex &from = loop.vertices[i], &to = loop.vertices[(i + 1) % n];
            if (i + 1 == n && !loop.closed)
                break;
            const KcGePoint2d start = KcGePoint2d{ from.x, from.y } - shift,
                              end = KcGePoint2d{ to.x, to.y } - shift;
            if (start == end)
                continue;
            if (const auto arc = KcGeCircArc2d::fromBulge(start, end, from.bulge)) {
                Path path = pathOfArc(kcdbArcInSpace(
                    {}, raised(arc->center()), arc->radius(), arc->startAngle(), arc->sweep()));
                // The vertices themselves, not the points computed from the arc, and the flat arc's exact
                // area.
                path.start = start;
                path.end = end;
                path.area = start.asVector().crossProduct(end.asVector()) / 2.0
                    + bulgeSegmentArea(start, end, from.bulge);
                paths.push_back(std::move(path));
            } else {
                paths.push_back(pathOf(KcDbHatch::LineEdge{ start, end }));
            }
        }
        return paths;
    }
    for (KcDbHatch::Edge edge : loop.edges) {
        std::visit(
            [&](auto& e) {
                using E = std::decay_t<decltype(e)>;
                if constexpr (std::is_same_v<E, KcDbHatch::LineEdge>) {
                    e.start = e.start - shift;
                    e.end = e.end - shift;
                    if (e.start == e.end)
                        return;
                } else if constexpr (std::is_same_v<E, KcDbHatch::SplineEdge>) {
                    for (KcGePoint2d& p : e.controlPoints)
                        p = p - shift;
                    for (KcGePoint2d& p : e.fitPoints)
                        p = p - shift;
                } else {
                    e.center = e.center - shift;
                }
                paths.push_back(pathOf(e));
            },
            edge);
    }
    return paths;
}

std::optional<KcGePoint2d> anyPoint(const KcDbHatch::Loop& loop)
{
    if (loop.isPolyline())
        return loop.vertices.empty() ? std::nullopt
                                     : std::optional(KcGePoint2d{ loop.vertices[0].x, loop.vertices[0].y });
    if (loop.edges.empty())
        return std::nullopt;
    return std::visit(
        [](const auto& e) -> std::optional<KcGePoint2d> {
            using E = std::decay_t<decltype(e)>;
            if constexpr (std::is_same_v<E, KcDbHatch::LineEdge>)
                return e.start;
            else if constexpr (std::is_same_v<E, KcDbHatch::SplineEdge>)
                return e.controlPoints.empty() ? std::nullopt : std::optional(e.controlPoints.front());
            else
                return e.center;
        },
        loop.edges.front());
}

} // namespace

std::optional<double> KcDbHatch::getArea() const
{
    std::vector<Contour> contours;
    KcGeVector2d shift;
    for (const Loop& loop : m_data.loops)
        if (const auto p = anyPoint(loop)) {
            shift = p->asVector();
            break;
        }
    for (const Loop& loop : m_data.loops) {
        auto closed = chain(pathsOf(loop, shift));
        if (!closed || closed->empty())
            return std::nullopt;
        for (Contour& contour : *closed) {
            if (!(contour.area > 0.0))
                return std::nullopt;
            contours.push_back(std::move(contour));
        }
    }
    if (contours.empty())
        return std::nullopt;
    // Larger ones first: an outline can only lie in one that stands before it.
    std::stable_sort(
        contours.begin(), contours.end(), [](const Contour& a, const Contour& b) { return a.area > b.area; });
    double area = 0.0;
    for (size_t i = 0; i < contours.size(); ++i) {
        int depth = 0;
        for (size_t j = 0; j < i; ++j)
            depth += liesInside(contours[i], contours[j]) ? 1 : 0;
        area += depth % 2 ? -contours[i].area : contours[i].area;
    }
    if (!(area > 0.0) || !std::isfinite(area))
        return std::nullopt;
    return area;
}

std::vector<KcDbObjectId> KcDbHatch::getAssocObjIds() const
{
    std::vector<KcDbObjectId> result;
    for (const Loop& loop : m_data.loops)
        for (const KcDbObjectId id : loop.sources)
            if (!id.isNull() && std::find(result.begin(), result.end(), id) == result.end())
                result.push_back(id);
    return result;
}

// Boxes and transforms.

KcGeExtents3d KcDbHatch::extentsUnder(const KcGeMatrix3d& matrix) const
{
    KcGeExtents3d box;
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(m_data.normal)
        * KcGeMatrix3d::translation({ 0, 0, m_data.elevation });
    const auto add = [&](KcGePoint2d p) { kcdbAddPoint(box, toWorld * raised(p)); };
    for (const Loop& loop : m_data.loops) {
        if (loop.isPolyline()) {
            const size_t n = loop.vertices.size();
            for (size_t i = 0; i < n; ++i) {
                const KcDbPolyline::Vertex &from = loop.vertices[i], &to = loop.vertices[(i + 1) % n];
                add({ from.x, from.y });
                if (i + 1 == n && !loop.closed)
                    break;
                if (const auto arc = KcGeCircArc2d::fromBulge({ from.x, from.y }, { to.x, to.y }, from.bulge))
                    box.addExtents(
                        kcdbArcInSpace(
                            toWorld, raised(arc->center()), arc->radius(), arc->startAngle(), arc->sweep())
                            .extents());
            }
            continue;
        }
        for (const Edge& edge : loop.edges) {
            if (const auto* line = std::get_if<LineEdge>(&edge)) {
                add(line->start);
                add(line->end);
            } else if (const auto* arc = std::get_if<ArcEdge>(&edge)) {
                box.addExtents(ellipticArc(*arc).transformed(toWorld).extents());
            } else if (const auto* ellipse = std::get_if<EllipseEdge>(&edge)) {
                box.addExtents(ellipticArc(*ellipse).transformed(toWorld).extents());
            } else if (const auto* spline = std::get_if<SplineEdge>(&edge)) {
                const KcGeNurbsCurve3d image = curveOf(*spline).transformed(toWorld);
                if (image.isValid())
                    box.addExtents(image.extents());
                else
                    for (const KcGePoint2d p :
                         spline->controlPoints.empty() ? spline->fitPoints : spline->controlPoints)
                        add(p);
            }
        }
    }
    return box;
}

namespace {

void transformEdge(KcDbHatch::LineEdge& edge, const KcDbPlaneTransform& plane)
{
    edge.start = plane.point(edge.start);
    edge.end = plane.point(edge.end);
}

void transformEdge(KcDbHatch::ArcEdge& edge, const KcDbPlaneTransform& plane)
{
    KcGeEllipArc3d arc = ellipticArc(edge);
    const double start = plane.angle(arc.start);
    const double sweep = plane.mirrors() ? -arc.sweep : arc.sweep;
    edge.center = plane.point(edge.center);
    edge.radius *= plane.scale();
    edge.counterClockwise = sweep >= 0.0;
    edge.startAngle = normalizedAngle(edge.counterClockwise ? start : -start);
    edge.endAngle = edge.startAngle + std::abs(sweep);
}

void transformEdge(KcDbHatch::EllipseEdge& edge, const KcDbPlaneTransform& plane)
{
    edge = edgeOf(ellipticArc(edge).transformed(plane.toNewPlane));
}

void transformEdge(KcDbHatch::SplineEdge& edge, const KcDbPlaneTransform& plane)
{
    for (KcGePoint2d& p : edge.controlPoints)
        p = plane.point(p);
    for (KcGePoint2d& p : edge.fitPoints)
        p = plane.point(p);
    edge.startTangent = plane.vector(edge.startTangent);
    edge.endTangent = plane.vector(edge.endTangent);
}

/// Rewrites arcs as ellipse edges, so that the loop can be scaled unevenly.
void makeElliptic(KcDbHatch::Loop& loop)
{
    if (loop.isPolyline()) {
        const bool bent
            = std::any_of(loop.vertices.begin(), loop.vertices.end(), [](const KcDbPolyline::Vertex& v) {
                  return std::abs(v.bulge) >= KcGeCircArc2d::kFlatBulge;
              });
        if (!bent)
            return;
        const size_t n = loop.vertices.size();
        for (size_t i = 0; i < n; ++i) {
            const KcDbPolyline::Vertex &from = loop.vertices[i], &to = loop.vertices[(i + 1) % n];
            if (i + 1 == n && !loop.closed)
                break;
            const KcGePoint2d start{ from.x, from.y }, end{ to.x, to.y };
            if (const auto arc = KcGeCircArc2d::fromBulge(start, end, from.bulge))
                loop.edges.push_back(edgeOf(kcdbArcInSpace(
                    {}, raised(arc->center()), arc->radius(), arc->startAngle(), arc->sweep())));
            else if (start != end)
                loop.edges.push_back(KcDbHatch::LineEdge{ start, end });
        }
        loop.vertices.clear();
        loop.type &= ~kPolylineLoop;
        return;
    }
    for (KcDbHatch::Edge& edge : loop.edges)
        if (const auto* arc = std::get_if<KcDbHatch::ArcEdge>(&edge))
            edge = edgeOf(ellipticArc(*arc));
}

} // namespace

Kcad::ErrorStatus KcDbHatch::transformBy(const KcGeMatrix3d& matrix)
{
    // The loops' coordinates count from the plane's elevation; a sheared plane moves sideways as it rises.
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    KcDbPlaneTransform raisedPlane = *plane;
    raisedPlane.toNewPlane = plane->toNewPlane * KcGeMatrix3d::translation({ 0, 0, m_data.elevation });
    const bool uniform = plane->isUniform();
    for (Loop& loop : m_data.loops) {
        if (!uniform)
            makeElliptic(loop);
        for (KcDbPolyline::Vertex& v : loop.vertices) {
            const KcGePoint2d p = raisedPlane.point(KcGePoint2d{ v.x, v.y });
            v.x = p.x;
            v.y = p.y;
            if (plane->mirrors())
                v.bulge = -v.bulge;
        }
        for (Edge& edge : loop.edges)
            std::visit([&](auto& e) { transformEdge(e, raisedPlane); }, edge);
    }
    for (KcGePoint2d& seed : m_data.seeds)
        seed = raisedPlane.point(seed);
    for (PatternLine& line : m_data.lines) {
        const double stretch = plane->direction(line.angle).length();
        line.base = raisedPlane.point(line.base);
        line.offset = plane->vector(line.offset);
        line.angle = plane->angle(line.angle);
        for (double& dash : line.dashes)
            dash *= stretch;
    }
    m_data.patternAngle = plane->angle(m_data.patternAngle);
    m_data.patternScale *= plane->scale();
    m_data.pixelSize *= plane->scale();
    m_data.elevation = plane->elevation(m_data.elevation);
    m_data.normal = plane->normal;
    return Kcad::eOk;
}
