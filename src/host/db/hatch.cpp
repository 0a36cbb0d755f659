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

} // namespace

KcDbHatch::EllipseEdge kcdbEllipseEdge(const KcGeEllipArc3d& image)
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

namespace {

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

} // namespace

std::vector<KcGeSegment2d> kcdbPiecesOf(const KcDbHatch::Loop& loop)
{
    std::vector<KcGeSegment2d> pieces;
    const size_t n = loop.vertices.size();
    for (size_t i = 0; i < n && n > 1; ++i) {
        const KcDbPolyline::Vertex &from = loop.vertices[i], &to = loop.vertices[(i + 1) % n];
        if (i + 1 == n && !loop.closed)
            break;
        pieces.push_back(KcGeSegment2d::bulge({ from.x, from.y }, { to.x, to.y }, from.bulge));
    }
    for (const KcDbHatch::Edge& edge : loop.edges)
        std::visit(
            [&](const auto& e) {
                using E = std::decay_t<decltype(e)>;
                if constexpr (std::is_same_v<E, KcDbHatch::LineEdge>) {
                    pieces.push_back(KcGeSegment2d::line(e.start, e.end));
                } else if constexpr (std::is_same_v<E, KcDbHatch::SplineEdge>) {
                    if (const auto spline = KcGeSegment2d::spline(curveOf(e)))
                        pieces.push_back(*spline);
                } else {
                    const KcGeEllipArc3d arc = ellipticArc(e);
                    pieces.push_back(KcGeSegment2d::ellipse(
                        arc.center.plan(), { arc.u.x, arc.u.y }, { arc.v.x, arc.v.y }, arc.start, arc.sweep));
                }
            },
            edge);
    return pieces;
}

KcGeFillArea KcDbHatch::fillArea() const
{
    std::vector<std::vector<KcGeSegment2d>> loops;
    for (const Loop& loop : m_data.loops)
        loops.push_back(kcdbPiecesOf(loop));
    return KcGeFillArea(loops);
}

KcGeHatchStyle KcDbHatch::fillStyle() const
{
    return m_data.style == 1 ? KcGeHatchStyle::Outer
        : m_data.style == 2  ? KcGeHatchStyle::Ignore
                             : KcGeHatchStyle::Normal;
}

std::optional<double> KcDbHatch::getArea() const
{
    const KcGeFillArea area = fillArea();
    const double value = area.area(fillStyle());
    return area.isSound() && value > 0.0 ? std::optional(value) : std::nullopt;
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
    edge = kcdbEllipseEdge(ellipticArc(edge).transformed(plane.toNewPlane));
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
                loop.edges.push_back(kcdbEllipseEdge(kcdbArcInSpace(
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
            edge = kcdbEllipseEdge(ellipticArc(*arc));
}

} // namespace

void kcdbTransformLoop(KcDbHatch::Loop& loop, const KcDbPlaneTransform& plane)
{
    if (!plane.isUniform())
        makeElliptic(loop);
    for (KcDbPolyline::Vertex& v : loop.vertices) {
        const KcGePoint2d p = plane.point(KcGePoint2d{ v.x, v.y });
        v.x = p.x;
        v.y = p.y;
        if (plane.mirrors())
            v.bulge = -v.bulge;
    }
    for (KcDbHatch::Edge& edge : loop.edges)
        std::visit([&](auto& e) { transformEdge(e, plane); }, edge);
}

Kcad::ErrorStatus KcDbHatch::transformBy(const KcGeMatrix3d& matrix)
{
    // The loops' coordinates count from the plane's elevation; a sheared plane moves sideways as it rises.
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    KcDbPlaneTransform raisedPlane = *plane;
    raisedPlane.toNewPlane = plane->toNewPlane * KcGeMatrix3d::translation({ 0, 0, m_data.elevation });
    const KcGePoint2d origin = raisedPlane.point(originPoint());
    // Curves that were moved before it in the same step have taken the hatch's loops along already.
    const bool arrived = followsChangedCurve();
    for (Loop& loop : m_data.loops)
        if (!arrived || loop.sources.empty())
            kcdbTransformLoop(loop, raisedPlane);
    for (KcGePoint2d& seed : m_data.seeds)
        seed = raisedPlane.point(seed);
    if (m_data.gradient.filled)
        m_data.gradient.angle = plane->angle(m_data.gradient.angle);
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
    moveOrigin(origin);
    return Kcad::eOk;
}
