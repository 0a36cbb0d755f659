// Entities as geometry, geometry as entities, and entities turned round.

#include "db/curves.h"
#include "db/leader.h"
#include "db/plane.h"
#include "db/polyline.h"

namespace {

KcGeMatrix3d frameAt(KcGeVector3d normal, double elevation)
{
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(normal);
    return elevation == 0.0 ? plane
                            : plane * KcGeMatrix3d::translation({ 0.0, 0.0, elevation }); // exact: as usual
}

/// A polyline of vertices that each have a place and a bulge, in a plane.
template <class Vertices, class PointOf, class BulgeOf>
KcGeCurve3d
polylineCurve(const KcGeMatrix3d& frame, const Vertices& vertices, bool closed, PointOf point, BulgeOf bulge)
{
    const size_t n = vertices.size();
    if (n == 0)
        return {};
    if (n == 1)
        return KcGeCurve3d::chain(
            frame, { KcGeSegment2d::line(point(vertices[0]), point(vertices[0])) }, false);
    std::vector<KcGeSegment2d> pieces;
    pieces.reserve(n);
    for (size_t i = 0; i < (closed ? n : n - 1); ++i)
        pieces.push_back(
            KcGeSegment2d::bulge(point(vertices[i]), point(vertices[(i + 1) % n]), bulge(vertices[i])));
    return KcGeCurve3d::chain(frame, std::move(pieces), closed);
}

} // namespace

// Entities as geometry.

KcGeCurve3d KcDbLine::makeCurve() const
{
    return KcGeCurve3d::line(m_data.start, m_data.end);
}

KcGeCurve3d KcDbCircle::makeCurve() const
{
    if (!(m_data.radius >= 0.0))
        return {};
    const KcGeCircArc2d circle(m_data.center.plan(), m_data.radius, 0.0, kTwoPi);
    return KcGeCurve3d::single(
        frameAt(m_data.normal, m_data.center.z), KcGeSegment2d::arc(circle), 0.0, kTwoPi);
}

KcGeCurve3d KcDbArc::makeCurve() const
{
    const double sweep = sweepBetween(m_data.startAngle, m_data.endAngle);
    if (!(m_data.radius >= 0.0) || !(sweep > 0.0))
        return {};
    const KcGeCircArc2d arc(m_data.center.plan(), m_data.radius, m_data.startAngle, sweep);
    return KcGeCurve3d::single(
        frameAt(m_data.normal, m_data.center.z), KcGeSegment2d::arc(arc), m_data.startAngle,
        m_data.startAngle + sweep);
}

KcGeCurve3d KcDbEllipse::makeCurve() const
{
    KcGeEllipArc3d arc;
    arc.center = m_data.center;
    arc.u = m_data.majorAxis;
    arc.v = KcGeMatrix3d::planeToWorld(m_data.normal).axis(2).crossProduct(m_data.majorAxis)
        * m_data.radiusRatio;
    arc.start = m_data.startParam;
    arc.sweep = sweepBetween(m_data.startParam, m_data.endParam);
    if (!(arc.sweep > 0.0))
        return {};
    return KcGeCurve3d::ellipse(arc);
}

KcGeCurve3d KcDbSpline::makeCurve() const
{
    return KcGeCurve3d::spline(nurbs());
}

KcGeCurve3d KcDbXline::makeCurve() const
{
    return KcGeCurve3d::infiniteLine(m_data.basePoint, m_data.unitDir);
}

KcGeCurve3d KcDbRay::makeCurve() const
{
    return KcGeCurve3d::ray(m_data.basePoint, m_data.unitDir);
}

KcGeCurve3d KcDbPolyline::makeCurve() const
{
    return polylineCurve(
        frameAt(m_data.normal, m_data.elevation), m_data.vertices, isClosed(),
        [](const Vertex& v) {
            return KcGePoint2d{ v.x, v.y };
        },
        [](const Vertex& v) { return v.bulge; });
}

KcGeCurve3d KcDb2dPolyline::makeCurve() const
{
    if (isMesh())
        return {};
    const std::vector<KcDbVertex::Data> vertices = drawnVertices();
    if (!is3d())
        return polylineCurve(
            frameAt(m_data.normal, m_data.elevation), vertices, isClosed(),
            [](const KcDbVertex::Data& v) { return v.position.plan(); },
            [](const KcDbVertex::Data& v) { return v.bulge; });
    std::vector<KcGePoint3d> points;
    for (const KcDbVertex::Data& vertex : vertices)
        points.push_back(vertex.position);
    return KcGeCurve3d::polyline(std::move(points), isClosed());
}

KcGeCurve3d KcDbLeader::makeCurve() const
{
    return KcGeCurve3d::polyline(m_data.vertices, false);
}

// Geometry as entities.

namespace {

std::unique_ptr<KcDbCurve> polylineEntity(const KcGeCurve3d& curve)
{
    auto entity = std::make_unique<KcDbPolyline>();
    KcDbPolyline::Data& data = entity->data();
    data.normal = *curve.normal();
    const KcGeMatrix3d toPlane = KcGeMatrix3d::worldToPlane(data.normal) * *curve.frame();
    data.elevation = (toPlane * KcGePoint3d()).z;
    const bool same
        = toPlane.axis(0) == KcGeVector3d::kXAxis && (toPlane * KcGePoint3d()).plan() == KcGePoint2d();
    for (const KcGeSegment2d& piece : curve.pieces()) {
        if (!piece.isSimple())
            return nullptr;
        const KcGeSegment2d placed = same ? piece : piece.transformed(toPlane);
        // A bulge cannot say a full circle.
        const bool full = placed.isArc() && placed.asArc()->isFullCircle();
        for (const KcGeSegment2d& part : full ? placed.split({ 0.5 }) : std::vector{ placed })
            entity->addVertex(part.startPoint(), part.bulge());
    }
    if (curve.isClosed())
        entity->setClosed(true);
    else
        entity->addVertex(
            (toPlane
             * KcGePoint3d{ curve.pieces().back().endPoint().x, curve.pieces().back().endPoint().y, 0.0 })
                .plan());
    return entity;
}

std::unique_ptr<KcDbCurve> roundEntity(const KcGeCurve3d& curve, const KcGeSegment2d& piece)
{
    const KcGeVector3d normal = *curve.normal();
    const KcGeMatrix3d toPlane = KcGeMatrix3d::worldToPlane(normal) * *curve.frame();
    const KcGeSegment2d placed = piece.transformed(toPlane);
    const KcGeCircArc2d arc = placed.asArc() ? *placed.asArc() : *piece.asArc();
    const KcGePoint3d center{ arc.center().x, arc.center().y, (toPlane * KcGePoint3d()).z };
    if (arc.isFullCircle()) {
        auto circle = std::make_unique<KcDbCircle>();
        circle->data().center = center;
        circle->data().radius = arc.radius();
        circle->data().normal = normal;
        return circle;
    }
    auto entity = std::make_unique<KcDbArc>();
    entity->data().center = center;
    entity->data().radius = arc.radius();
    entity->data().startAngle = normalizedAngle(arc.isClockwise() ? arc.endAngle() : arc.startAngle());
    entity->data().endAngle = normalizedAngle(arc.isClockwise() ? arc.startAngle() : arc.endAngle());
    entity->data().normal = normal;
    return entity;
}

std::unique_ptr<KcDbCurve> ellipseEntity(const KcGeCurve3d& curve, const KcGeSegment2d& piece)
{
    const KcGeEllipArc3d arc = piece.asEllipse()->transformed(*curve.frame()).principal();
    auto entity = std::make_unique<KcDbEllipse>();
    KcDbEllipse::Data& data = entity->data();
    data.center = arc.center;
    data.majorAxis = arc.u;
    data.radiusRatio = arc.u.length() > 0.0 ? arc.v.length() / arc.u.length() : 1.0;
    data.normal = *curve.normal();
    // Entities run counter-clockwise about their normal.
    const bool backwards = (arc.u.crossProduct(arc.v).dotProduct(data.normal) < 0.0) != (arc.sweep < 0.0);
    const bool full = std::abs(arc.sweep) >= kTwoPi * (1.0 - KcGeContext::gTol.equalVector);
    if (backwards)
        data.normal = -data.normal;
    const double start = arc.sweep < 0.0 ? -arc.start : arc.start;
    data.startParam = full ? 0.0 : normalizedAngle(start);
    data.endParam = full ? kTwoPi : data.startParam + std::abs(arc.sweep);
    return entity;
}

std::unique_ptr<KcDbCurve> splineEntity(const KcGeNurbsCurve3d& curve, bool closed)
{
    constexpr int kClosed = 1, kRational = 4, kPlanar = 8;
    auto entity = std::make_unique<KcDbSpline>();
    KcDbSpline::Data& data = entity->data();
    data.degree = curve.degree;
    data.knots = curve.knots;
    data.controlPoints = curve.controlPoints;
    data.weights = curve.weights;
    data.flags = (closed ? kClosed : 0) | (curve.weights.empty() ? 0 : kRational);
    const KcGeCurve3d shape = KcGeCurve3d::spline(curve);
    if (const auto normal = shape.normal()) {
        data.flags |= kPlanar;
        data.normal = *normal;
    }
    return entity;
}

} // namespace

std::unique_ptr<KcDbCurve> kcdbCurveFrom(const KcGeCurve3d& curve)
{
    if (curve.isEmpty())
        return nullptr;
    if (!curve.isBounded()) {
        const KcGePoint3d base = *curve.pointAtParam(0.0);
        const KcGeVector3d direction = curve.firstDeriv(0.0)->normal();
        const auto fill = [&](auto entity) -> std::unique_ptr<KcDbCurve> {
            entity->data().basePoint = base;
            entity->data().unitDir = direction;
            return entity;
        };
        return curve.hasStart() ? fill(std::make_unique<KcDbRay>()) : fill(std::make_unique<KcDbXline>());
    }
    if (curve.isPolyline()) {
        if (curve.isPlanar())
            return polylineEntity(curve);
        // The vertices of such a polyline would have to be in a drawing; a spline of degree 1 has the same
        // points.
        KcGeNurbsCurve3d lines;
        lines.degree = 1;
        lines.controlPoints = curve.vertices();
        if (curve.isClosed())
            lines.controlPoints.push_back(lines.controlPoints.front());
        lines.knots.push_back(0.0);
        for (size_t i = 0; i < lines.controlPoints.size(); ++i)
            lines.knots.push_back(double(i));
        lines.knots.push_back(lines.knots.back());
        return splineEntity(lines, curve.isClosed());
    }
    if (const auto spline = curve.asSpline())
        return splineEntity(*spline, curve.isClosed());
    const KcGeSegment2d& piece = curve.pieces()[0];
    switch (piece.kind()) {
    case KcGeSegment2d::Kind::Arc:
        return roundEntity(curve, piece);
    case KcGeSegment2d::Kind::Ellipse:
        return ellipseEntity(curve, piece);
    default:
        return std::make_unique<KcDbLine>(*curve.startPoint(), *curve.endPoint());
    }
}

// Entities turned round.

Kcad::ErrorStatus KcDbLine::reverseCurve()
{
    std::swap(m_data.start, m_data.end);
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbXline::reverseCurve()
{
    m_data.unitDir = -m_data.unitDir;
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbEllipse::reverseCurve()
{
    // About the opposite normal anomalies run the other way.
    const double sweep = sweepBetween(m_data.startParam, m_data.endParam);
    m_data.normal = -KcGeMatrix3d::planeToWorld(m_data.normal).axis(2);
    m_data.startParam = sweep >= kTwoPi ? 0.0 : normalizedAngle(-(m_data.startParam + sweep));
    m_data.endParam = m_data.startParam + sweep;
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbSpline::reverseCurve()
{
    KcGeNurbsCurve3d given;
    given.degree = m_data.degree;
    given.knots = m_data.knots;
    given.controlPoints = m_data.controlPoints;
    given.weights = m_data.weights;
    if (given.isValid()) {
        const KcGeNurbsCurve3d reversed = given.reversed();
        m_data.knots = reversed.knots;
        m_data.controlPoints = reversed.controlPoints;
        m_data.weights = reversed.weights;
    } else if (m_data.fitPoints.empty()) {
        return Kcad::eDegenerateGeometry;
    }
    std::vector<KcGePoint3d>& fit = m_data.fitPoints;
    constexpr int kClosed = 1;
    // A closed one that does not repeat its start keeps it in the first place.
    const bool keepsFirst = (m_data.flags & kClosed) && !fit.empty() && fit.front() != fit.back();
    std::reverse(fit.begin() + (keepsFirst ? 1 : 0), fit.end());
    std::swap(m_data.hasStartTangent, m_data.hasEndTangent);
    std::swap(m_data.startTangent, m_data.endTangent);
    m_data.startTangent = -m_data.startTangent;
    m_data.endTangent = -m_data.endTangent;
    return Kcad::eOk;
}

namespace {

/// Puts vertices in reverse order, those of a closed polyline behind the first. Bulges and widths belong to
/// the way from their vertex to the next: they are one place off then, and seen from the other side.
template <class Vertex> void turnRound(std::vector<Vertex>& vertices, bool closed)
{
    const size_t n = vertices.size();
    if (n == 0)
        return;
    std::reverse(vertices.begin() + (closed ? 1 : 0), vertices.end());
    const Vertex first = vertices[0];
    for (size_t i = 0; i < n; ++i) {
        const Vertex from = i + 1 < n ? vertices[i + 1] : first;
        vertices[i].bulge = -from.bulge;
        vertices[i].startWidth = from.endWidth;
        vertices[i].endWidth = from.startWidth;
    }
}

} // namespace

Kcad::ErrorStatus KcDbPolyline::reverseCurve()
{
    turnRound(m_data.vertices, isClosed());
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDb2dPolyline::reverseCurve()
{
    if (isMesh())
        return Kcad::eNotApplicable;
    // Vertices of the curve and of the frame that it was fitted to are each turned round among themselves.
    for (const bool drawn : { true, false }) {
        std::vector<KcDbObjectId> ids;
        std::vector<KcDbVertex::Data> values;
        for (const KcDbObjectId id : m_data.vertices)
            if (const KcDbRead<KcDbVertex> vertex(id); vertex && isDrawn(*vertex) == drawn) {
                ids.push_back(id);
                values.push_back(vertex->data());
            }
        turnRound(values, isClosed());
        for (size_t i = 0; i < ids.size(); ++i)
            KcDbWrite<KcDbVertex>(ids[i])->data() = values[i];
    }
    std::swap(m_data.startWidth, m_data.endWidth);
    return Kcad::eOk;
}
