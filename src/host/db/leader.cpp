// Leaders: vertices, box and transform.

#include "db/leader.h"

#include "db/plane.h"
#include "ge/spline.h"

KCRX_DEFINE(KcDbLeader, KcDbCurve, "AcDbLeader")

KcGeExtents3d KcDbLeader::extentsUnder(const KcGeMatrix3d& matrix) const
{
    // The path; an arrow head lies along it, and its half width is less than the tip's distance from the
    // text.
    KcGeExtents3d box;
    std::vector<KcGePoint3d> points = m_data.vertices;
    if (const auto end = hookLineEnd())
        points.push_back(*end);
    for (KcGePoint3d& p : points)
        p = matrix * p;
    if (m_data.isSplined)
        if (const auto curve = KcGeNurbsCurve3d::throughPoints(points, {}))
            return curve->extents();
    for (const KcGePoint3d p : points)
        kcdbAddPoint(box, p);
    return box;
}

Kcad::ErrorStatus KcDbLeader::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    for (KcGePoint3d& p : m_data.vertices)
        p = matrix * p;
    m_data.normal = plane->normal;
    if (const KcGeVector3d horizontal = matrix * m_data.horizontal; horizontal.length() > 0.0)
        m_data.horizontal = horizontal.normal();
    m_data.blockOffset = matrix * m_data.blockOffset;
    m_data.annotationOffset = matrix * m_data.annotationOffset;
    m_data.textHeight *= plane->scale();
    m_data.textWidth *= plane->scale();
    return Kcad::eOk;
}

void KcDbLeader::insertVertex(size_t index, KcGePoint3d point)
{
    index = std::min(index, m_data.vertices.size());
    m_data.vertices.insert(m_data.vertices.begin() + long(index), point);
}

Kcad::ErrorStatus KcDbLeader::removeLastVertex()
{
    if (m_data.vertices.size() <= 2)
        return Kcad::eInvalidInput;
    m_data.vertices.pop_back();
    return Kcad::eOk;
}
