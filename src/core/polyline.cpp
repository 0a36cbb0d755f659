// Polylines of every make, asked the same questions.

#include "core/polyline.h"

#include "db/polyline.h"

std::vector<KcGePoint3d> polylineVertices(const KcDbPolyline& polyline)
{
    std::vector<KcGePoint3d> points;
    points.reserve(polyline.numVerts());
    for (size_t i = 0; i < polyline.numVerts(); ++i)
        points.push_back(polyline.worldPointAt(i));
    return points;
}

std::vector<KcGePoint3d> polylineVertices(const KcDb2dPolyline& polyline)
{
    const KcGeMatrix3d toWorld = KcGeMatrix3d::planeToWorld(polyline.data().normal);
    std::vector<KcGePoint3d> points;
    for (const KcDbVertex::Data& vertex : polyline.drawnVertices()) {
        const KcGePoint3d p = vertex.position;
        points.push_back(polyline.is3d() ? p : toWorld * KcGePoint3d{ p.x, p.y, polyline.data().elevation });
    }
    return points;
}

bool CPolyline::Initialize(KcDbObjectId id, const KcDbDatabase* database)
{
    const KcDbRead<KcDb2dPolyline> old(id);
    const bool fits = KcDbRead<KcDbPolyline>(id) || (old && !old->isMesh());
    return CEntity::Initialize(fits ? id : KcDbObjectId(), database);
}

bool CPolyline::GetClosed() const
{
    const KcDbRead<KcDbPolyline> light(m_id);
    const KcDbRead<KcDb2dPolyline> old(m_id);
    if ((light && light->isClosed()) || (old && old->isClosed()))
        return true;
    const std::vector<KcGePoint3d> points = GetVertices();
    // Two vertices on one place are a speck, not an outline.
    return points.size() > 2 && points.front().distanceTo(points.back()) < KcGeContext::kClosingVertex;
}

bool CPolyline::IsOnlyLines() const
{
    if (const KcDbRead<KcDbPolyline> light(m_id); light)
        return std::none_of(
            light->data().vertices.begin(), light->data().vertices.end(),
            [](const KcDbPolyline::Vertex& vertex) { return vertex.bulge != 0.0; }); // exact: as written
    const KcDbRead<KcDb2dPolyline> old(m_id);
    if (!old)
        return false;
    for (const KcDbObjectId id : old->data().vertices)
        if (const KcDbRead<KcDbVertex> vertex(id); vertex && vertex->data().bulge != 0.0)
            return false;
    return true;
}

std::vector<std::unique_ptr<KcDbCurve>> CPolyline::Explode() const
{
    KcDbCurve::Curves pieces;
    if (const KcDbRead<KcDbCurve> curve(m_id); curve)
        curve->explode(pieces);
    return pieces;
}

std::vector<KcGePoint3d> CPolyline::GetVertices() const
{
    if (const KcDbRead<KcDbPolyline> light(m_id); light)
        return polylineVertices(*light);
    if (const KcDbRead<KcDb2dPolyline> old(m_id); old)
        return polylineVertices(*old);
    return {};
}
