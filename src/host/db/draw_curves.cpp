// How curves, points and filled triangles are drawn.

#include "db/curves.h"
#include "db/plane.h"
#include "gi/sink/world_draw.h"

namespace {

KcGeEllipArc3d planeArc(KcGePoint3d center, double radius, KcGeVector3d normal, double start, double sweep)
{
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(normal);
    return { plane * center, plane.axis(0) * radius, plane.axis(1) * radius, start, sweep };
}

void strokeArc(KcGiWorldDraw& draw, const KcGeEllipArc3d& arc)
{
    KcGiPath path;
    path.arc(arc);
    if (std::abs(arc.sweep) >= kTwoPi)
        path.close();
    draw.stroke(path);
}

} // namespace

void KcDbLine::worldDraw(KcGiWorldDraw& draw) const
{
    draw.line(m_data.start, m_data.end);
}

void KcDbCircle::worldDraw(KcGiWorldDraw& draw) const
{
    strokeArc(draw, planeArc(m_data.center, m_data.radius, m_data.normal, 0.0, kTwoPi));
}

void KcDbArc::worldDraw(KcGiWorldDraw& draw) const
{
    strokeArc(
        draw,
        planeArc(
            m_data.center, m_data.radius, m_data.normal, m_data.startAngle,
            sweepBetween(m_data.startAngle, m_data.endAngle)));
}

void KcDbEllipse::worldDraw(KcGiWorldDraw& draw) const
{
    const KcGeVector3d minor = m_data.normal.normal().crossProduct(m_data.majorAxis) * m_data.radiusRatio;
    strokeArc(
        draw,
        { m_data.center, m_data.majorAxis, minor, m_data.startParam,
          sweepBetween(m_data.startParam, m_data.endParam) });
}

void KcDbSpline::worldDraw(KcGiWorldDraw& draw) const
{
    const KcGeNurbsCurve3d spline = nurbs();
    if (!spline.isValid())
        return draw.leftOut(QStringLiteral("a spline without a curve"));
    KcGiPath path;
    path.spline(spline);
    draw.stroke(path);
}

void KcDbXline::worldDraw(KcGiWorldDraw& draw) const
{
    draw.infiniteLine(m_data.basePoint, m_data.unitDir, true);
}

void KcDbRay::worldDraw(KcGiWorldDraw& draw) const
{
    draw.infiniteLine(m_data.basePoint, m_data.unitDir, false);
}

void KcDbPoint::worldDraw(KcGiWorldDraw& draw) const
{
    draw.point(m_data.position, m_data.xAngle);
}

void KcDbSolid::worldDraw(KcGiWorldDraw& draw) const
{
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(m_data.normal);
    KcGiPath path;
    path.polyline(
        { plane * m_data.corners[0], plane * m_data.corners[1], plane * m_data.corners[3],
          plane * m_data.corners[2] },
        true);
    draw.fill(path);
}

void KcDbFace::worldDraw(KcGiWorldDraw& draw) const
{
    for (int edge = 0; edge < 4; ++edge)
        if (!(m_data.hiddenEdges & (1 << edge)))
            draw.line(m_data.corners[edge], m_data.corners[(edge + 1) % 4]);
}
