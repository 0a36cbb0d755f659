// Outlines of entities, and points against them.

#include "core/polygon.h"

#include "db/open.h"

static_assert(
    int(XPointRelation::Outside) == 0 && int(XPointRelation::OnVertex) == 1
    && int(XPointRelation::OnOutline) == 2 && int(XPointRelation::Inside) == 3
    && int(XPointRelation::Unknown) == 4);

XPointRelation XCircle::PtRelation(XPoint point) const
{
    const double distance = point.distanceTo(center);
    if (!(radius > 0.0) || !std::isfinite(distance) || !std::isfinite(radius))
        return XPointRelation::Unknown;
    if (std::abs(distance - radius) <= KcGeContext::gTol.equalPoint)
        return XPointRelation::OnOutline;
    return distance < radius ? XPointRelation::Inside : XPointRelation::Outside;
}

XPoly2D::XPoly2D(const KcDbEntity& entity)
{
    if (!entity.isKindOf(KcDbCurve::desc()))
        return;
    const KcGeCurve3d curve = static_cast<const KcDbCurve&>(entity).curve();
    if (curve.isEmpty() || !curve.isBounded())
        return;
    m_closed = curve.isClosed();
    m_pieces = curve.plan();
    const auto isSimple = [](const XCurveSegment& s) { return s.isSimple(); };
    if (std::all_of(m_pieces.begin(), m_pieces.end(), isSimple)) {
        m_nodes = verticesOfSegments(m_pieces, m_closed);
        m_pieces.clear();
    }
}

bool XPoly2D::Initialize(KcDbObjectId id)
{
    *this = XPoly2D();
    if (const KcDbRead<KcDbEntity> entity(id); entity)
        *this = XPoly2D(*entity);
    return !IsEmpty();
}

void XPoly2D::AppendNode(XPoint point, double bulge)
{
    // What came as pieces goes on in nodes, its curves as the arcs that a polyline would have.
    if (!m_pieces.empty()) {
        std::vector<XCurveSegment> simple;
        for (const XCurveSegment& piece : m_pieces)
            for (const XCurveSegment& s : piece.simpleSegments(1e2 * KcGeContext::gTol.equalPoint))
                simple.push_back(s);
        m_nodes = verticesOfSegments(simple, m_closed);
        m_pieces.clear();
    }
    m_nodes.push_back({ point, bulge });
}

void XPoly2D::Compress(double tolerance)
{
    if (m_nodes.size() < 2)
        return;
    if (m_closed) {
        KcGePolygon2d polygon(std::move(m_nodes));
        polygon.compress(tolerance);
        m_nodes = polygon.vertices();
        return;
    }
    const auto repeats = [tolerance](const KcGeBulgeVertex2d& v, const KcGeBulgeVertex2d& next) {
        return v.point.isEqualTo(next.point, { tolerance, tolerance });
    };
    // The later of two equal nodes knows the piece that follows.
    std::vector<KcGeBulgeVertex2d> kept;
    for (const KcGeBulgeVertex2d& node : m_nodes) {
        if (!kept.empty() && repeats(kept.back(), node))
            kept.back().bulge = node.bulge;
        else
            kept.push_back(node);
    }
    m_nodes = std::move(kept);
}

std::vector<XCurveSegment> XPoly2D::GetSegments() const
{
    return m_pieces.empty() ? segmentsOfVertices(m_nodes, m_closed) : m_pieces;
}

double XPoly2D::GetArea() const
{
    return std::abs(outlineArea(GetSegments()));
}

XPointRelation XPoly2D::PtRelation(XPoint point, double tolerance) const
{
    for (const KcGeBulgeVertex2d& node : m_nodes)
        if (!std::isfinite(node.point.x) || !std::isfinite(node.point.y) || std::isnan(node.bulge))
            return XPointRelation::Unknown;
    return relationToOutline(GetSegments(), point, tolerance);
}

std::unique_ptr<KcDbPolyline> PolyConvert(const XPoly2D& polygon, double tolerance)
{
    std::vector<KcGeBulgeVertex2d> nodes = polygon.GetNodes();
    if (nodes.empty()) {
        std::vector<XCurveSegment> simple;
        for (const XCurveSegment& piece : polygon.GetSegments())
            for (const XCurveSegment& s : piece.simpleSegments(tolerance))
                simple.push_back(s);
        nodes = verticesOfSegments(simple, polygon.IsClosed());
    }
    if (nodes.size() < 2)
        return nullptr;
    auto polyline = std::make_unique<KcDbPolyline>();
    for (const KcGeBulgeVertex2d& node : nodes)
        polyline->addVertex(node.point, node.bulge);
    polyline->setClosed(polygon.IsClosed());
    return polyline;
}

void ExplodePoly2D(const XPoly2D& polygon, std::vector<XCurveSegment>& segments)
{
    const std::vector<XCurveSegment> pieces = polygon.GetSegments();
    segments.insert(segments.end(), pieces.begin(), pieces.end());
}

int PtRelationToPoly(const KcDbCurve& curve, KcGePoint3d point)
{
    const std::vector<XCurveSegment> pieces = XPoly2D(curve).GetSegments();
    const XPoint p = point.plan();
    const bool usable = std::isfinite(p.x) && std::isfinite(p.y)
        && std::all_of(pieces.begin(), pieces.end(), [](const XCurveSegment& s) { return s.isFinite(); });
    if (!usable)
        return -1;
    // Of an open curve the line that would close it is no part.
    for (const XCurveSegment& s : pieces)
        if (s.closest(p).distance <= KcGeContext::gTol.equalPoint)
            return 0;
    return relationToOutline(pieces, p) == XPointRelation::Inside ? 1 : -1;
}

bool CheckPointOnRegion(KcGePoint3d point, const KcDbCurve& region)
{
    return PtRelationToPoly(region, point) >= 0;
}

bool CheckPointOnRegion(KcGePoint3d point, KcDbObjectId region)
{
    const KcDbRead<KcDbEntity> entity(region);
    return entity && entity->isKindOf(KcDbCurve::desc())
        && CheckPointOnRegion(point, static_cast<const KcDbCurve&>(*entity));
}
