// Polylines: boxes with arcs and widths counted, areas, transforms.

#include "db/polyline.h"

#include "db/plane.h"
#include "ge/arc.h"

KCRX_DEFINE(KcDbPolyline, KcDbCurve, "AcDbPolyline")
KCRX_DEFINE(KcDbVertex, KcDbEntity, "AcDb2dVertex")
KCRX_DEFINE(KcDbSequenceEnd, KcDbEntity, "AcDbSequenceEnd")
KCRX_DEFINE(KcDb2dPolyline, KcDbCurve, "AcDb2dPolyline")

namespace {

/// A width that draws something; what files hold for "none" counts as 0.
double usableWidth(double width)
{
    return width > 0.0 && std::isfinite(width) ? width : 0.0;
}

/// Adds what a polyline draws from one vertex to the next: the line or arc, and the band that its widths make
/// of it. The mitres at joints are left out. An arc that tapers counts with its larger width.
void addSegment(
    KcGeExtents3d& box, const KcGeMatrix3d& toWorld, double elevation, const KcDbPolyline::Vertex& from,
    const KcDbPolyline::Vertex& to, double startWidth, double endWidth)
{
    const KcGePoint2d start{ from.x, from.y }, end{ to.x, to.y };
    const auto add = [&](KcGePoint2d p) { kcdbAddPoint(box, toWorld * KcGePoint3d{ p.x, p.y, elevation }); };
    add(start);
    add(end);
    startWidth = usableWidth(startWidth);
    endWidth = usableWidth(endWidth);
    const double width = std::max(startWidth, endWidth);
    if (const auto arc = KcGeCircArc2d::fromBulge(start, end, from.bulge)) {
        const KcGePoint3d center{ arc->center().x, arc->center().y, elevation };
        const auto addArc = [&](double radius) {
            box.addExtents(
                kcdbArcInSpace(toWorld, center, radius, arc->startAngle(), arc->sweep()).extents());
        };
        addArc(arc->radius());
        if (width > 0.0) {
            addArc(arc->radius() + width / 2.0);
            addArc(std::max(0.0, arc->radius() - width / 2.0));
        }
        return;
    }
    if (width > 0.0) {
        const KcGeVector2d across = (end - start).normal().perpVector();
        for (const double side : { -0.5, 0.5 }) {
            add(start + across * (side * startWidth));
            add(end + across * (side * endWidth));
        }
    }
}

bool isBent(double bulge)
{
    return std::abs(bulge) >= KcGeCircArc2d::kFlatBulge;
}

} // namespace

KcGeExtents3d KcDbPolyline::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(m_data.normal);
    const std::vector<Vertex>& vertices = m_data.vertices;
    KcGeExtents3d box;
    if (vertices.size() == 1)
        kcdbAddPoint(box, toWorld * KcGePoint3d{ vertices[0].x, vertices[0].y, m_data.elevation });
    const size_t segments = vertices.size() < 2 ? 0 : vertices.size() - (isClosed() ? 0 : 1);
    for (size_t i = 0; i < segments; ++i) {
        const Vertex& from = vertices[i];
        const bool constant = m_data.constantWidth > 0.0;
        addSegment(
            box, toWorld, m_data.elevation, from, vertices[(i + 1) % vertices.size()],
            constant ? m_data.constantWidth : from.startWidth,
            constant ? m_data.constantWidth : from.endWidth);
    }
    return kcdbExtruded(box, m_data.thickness, toWorld);
}

Kcad::ErrorStatus KcDbPolyline::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    const bool bent = std::any_of(
        m_data.vertices.begin(), m_data.vertices.end(), [](const Vertex& v) { return isBent(v.bulge); });
    if (bent && !plane->isUniform())
        return Kcad::eCannotScaleNonUniformly;
    const double scale = plane->scale();
    const double bulgeSign = plane->mirrors() ? -1.0 : 1.0;
    for (Vertex& v : m_data.vertices) {
        const KcGePoint3d p = plane->point(KcGePoint3d{ v.x, v.y, m_data.elevation });
        v.x = p.x;
        v.y = p.y;
        v.bulge *= bulgeSign;
        v.startWidth *= scale;
        v.endWidth *= scale;
    }
    m_data.elevation = plane->elevation(m_data.elevation);
    m_data.thickness = plane->thickness(m_data.thickness);
    m_data.constantWidth *= scale;
    m_data.normal = plane->normal;
    return Kcad::eOk;
}

KcGePoint3d KcDbPolyline::worldPointAt(size_t index) const
{
    const Vertex& v = m_data.vertices[index];
    return KcGeMatrix3d::planeToWorld(m_data.normal) * KcGePoint3d{ v.x, v.y, m_data.elevation };
}

double KcDbPolyline::area() const
{
    if (m_data.vertices.size() < 2)
        return 0.0;
    // About the first vertex, so that a plan far from the origin keeps its digits.
    const KcGePoint2d origin = getPointAt(0);
    const size_t n = m_data.vertices.size();
    double area = 0.0;
    for (size_t i = 0; i < n; ++i) {
        const KcGePoint2d p = getPointAt(i), q = getPointAt((i + 1) % n);
        area += (p - origin).crossProduct(q - origin) / 2.0;
        if (i + 1 < n || isClosed())
            area += bulgeSegmentArea(p, q, m_data.vertices[i].bulge);
    }
    return std::isfinite(area) ? area : 0.0;
}

// Old-style polylines.

KcGeExtents3d KcDbVertex::extentsUnder(const KcGeMatrix3d&) const
{
    return {}; // the polyline draws; only it knows the plane of its vertices
}

Kcad::ErrorStatus KcDbVertex::transformBy(const KcGeMatrix3d& matrix)
{
    m_data.position = matrix * m_data.position;
    return Kcad::eOk;
}

namespace {

constexpr int kFrameControlPoint = 16, kVertexOfMesh = 64, kFaceRecord = 128;
constexpr int kSplineFit = 4;

} // namespace

bool KcDb2dPolyline::isDrawn(const KcDbVertex& vertex) const
{
    const int flags = vertex.data().flags;
    if ((flags & kFaceRecord) && !(flags & kVertexOfMesh))
        return false;
    return !((m_data.flags & kSplineFit) && (flags & kFrameControlPoint));
}

std::vector<KcDbVertex::Data> KcDb2dPolyline::drawnVertices() const
{
    std::vector<KcDbVertex::Data> drawn;
    drawn.reserve(m_data.vertices.size());
    for (const KcDbObjectId id : m_data.vertices)
        if (const KcDbRead<KcDbVertex> vertex(id); vertex && isDrawn(*vertex))
            drawn.push_back(vertex->data());
    return drawn;
}

KcGeExtents3d KcDb2dPolyline::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const std::vector<KcDbVertex::Data> drawn = drawnVertices();
    KcGeExtents3d box;
    if (is3d() || isMesh()) {
        for (const KcDbVertex::Data& vertex : drawn)
            kcdbAddPoint(box, matrix * vertex.position);
        return box;
    }
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(m_data.normal);
    const size_t n = drawn.size();
    if (n == 1)
        kcdbAddPoint(
            box, toWorld * KcGePoint3d{ drawn[0].position.x, drawn[0].position.y, m_data.elevation });
    const size_t segments = n < 2 ? 0 : n - (isClosed() ? 0 : 1);
    for (size_t i = 0; i < segments; ++i) {
        const KcDbVertex::Data &from = drawn[i], &to = drawn[(i + 1) % n];
        addSegment(
            box, toWorld, m_data.elevation, { from.position.x, from.position.y, from.bulge },
            { to.position.x, to.position.y }, from.startWidth < 0.0 ? m_data.startWidth : from.startWidth,
            from.endWidth < 0.0 ? m_data.endWidth : from.endWidth);
    }
    return kcdbExtruded(box, m_data.thickness, toWorld);
}

Kcad::ErrorStatus KcDb2dPolyline::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    const bool inPlane = !is3d() && !isMesh();
    if (inPlane && !plane->isUniform())
        for (const KcDbObjectId id : m_data.vertices)
            if (KcDbRead<KcDbVertex> vertex(id); vertex && isBent(vertex->data().bulge))
                return Kcad::eCannotScaleNonUniformly;
    const double scale = plane->scale();
    for (const KcDbObjectId id : m_data.vertices) {
        KcDbWrite<KcDbVertex> vertex(id);
        if (!vertex)
            continue;
        KcDbVertex::Data& data = vertex->data();
        if (!inPlane) {
            vertex->transformBy(matrix);
            continue;
        }
        const KcGePoint3d p = plane->point(KcGePoint3d{ data.position.x, data.position.y, m_data.elevation });
        data.position = p;
        if (plane->mirrors())
            data.bulge = -data.bulge;
        data.tangent = plane->angle(data.tangent);
        if (data.startWidth >= 0.0)
            data.startWidth *= scale;
        if (data.endWidth >= 0.0)
            data.endWidth *= scale;
    }
    m_data.elevation = plane->elevation(m_data.elevation);
    m_data.thickness = plane->thickness(m_data.thickness);
    m_data.startWidth *= scale;
    m_data.endWidth *= scale;
    m_data.normal = plane->normal;
    return Kcad::eOk;
}

std::vector<KcDbObjectId> KcDb2dPolyline::subObjects() const
{
    std::vector<KcDbObjectId> result = m_data.vertices;
    if (!m_data.sequenceEnd.isNull())
        result.push_back(m_data.sequenceEnd);
    return result;
}
