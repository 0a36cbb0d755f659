// Boxes and transforms of the simple drawn entities.

#include "db/curves.h"

#include "db/plane.h"
#include "ge/ellipse.h"
#include "ge/spline.h"

KCRX_DEFINE(KcDbLine, KcDbCurve, "AcDbLine")
KCRX_DEFINE(KcDbCircle, KcDbCurve, "AcDbCircle")
KCRX_DEFINE(KcDbArc, KcDbCurve, "AcDbArc")
KCRX_DEFINE(KcDbEllipse, KcDbCurve, "AcDbEllipse")
KCRX_DEFINE(KcDbSpline, KcDbCurve, "AcDbSpline")
KCRX_DEFINE(KcDbXline, KcDbCurve, "AcDbXline")
KCRX_DEFINE(KcDbRay, KcDbCurve, "AcDbRay")
KCRX_DEFINE(KcDbPoint, KcDbEntity, "AcDbPoint")
// Both are published as "AcDbTrace"; the base has the name under which programs know the filled
// quadrilateral.
KCRX_DEFINE(KcDbSolid, KcDbEntity, "AcDbSolid")
KCRX_DEFINE(KcDbTrace, KcDbSolid, "AcDbTrace")
KCRX_DEFINE(KcDbFace, KcDbEntity, "AcDbFace")

// Lines.

KcGeExtents3d KcDbLine::extentsUnder(const KcGeMatrix3d& matrix) const
{
    KcGeExtents3d box;
    kcdbAddPoint(box, matrix * m_data.start);
    kcdbAddPoint(box, matrix * m_data.end);
    return kcdbExtruded(box, m_data.thickness, matrix * KcGeMatrix3d::planeToWorld(m_data.normal));
}

Kcad::ErrorStatus KcDbLine::transformBy(const KcGeMatrix3d& matrix)
{
    m_data.start = matrix * m_data.start;
    m_data.end = matrix * m_data.end;
    if (const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal)) {
        m_data.thickness = plane->thickness(m_data.thickness);
        m_data.normal = plane->normal;
    }
    return Kcad::eOk;
}

// Circles and arcs.

namespace {

/// What circles and arcs share. eCannotScaleNonUniformly, with nothing changed, when the circle would become
/// an ellipse.
template <class Data>
Kcad::ErrorStatus transformRound(Data& data, const std::optional<KcDbPlaneTransform>& plane)
{
    if (!plane)
        return Kcad::eInvalidInput;
    if (!plane->isUniform())
        return Kcad::eCannotScaleNonUniformly;
    data.center = plane->point(data.center);
    data.radius *= plane->scale();
    data.thickness = plane->thickness(data.thickness);
    data.normal = plane->normal;
    return Kcad::eOk;
}

} // namespace

KcGeExtents3d KcDbCircle::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(m_data.normal);
    return kcdbExtruded(
        kcdbArcInSpace(toWorld, m_data.center, m_data.radius, 0.0, kTwoPi).extents(), m_data.thickness,
        toWorld);
}

Kcad::ErrorStatus KcDbCircle::transformBy(const KcGeMatrix3d& matrix)
{
    return transformRound(m_data, KcDbPlaneTransform::of(matrix, m_data.normal));
}

KcGeExtents3d KcDbArc::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(m_data.normal);
    const double sweep = sweepBetween(m_data.startAngle, m_data.endAngle);
    return kcdbExtruded(
        kcdbArcInSpace(toWorld, m_data.center, m_data.radius, m_data.startAngle, sweep).extents(),
        m_data.thickness, toWorld);
}

Kcad::ErrorStatus KcDbArc::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    const Kcad::ErrorStatus status = transformRound(m_data, plane);
    if (status != Kcad::eOk)
        return status;
    const double sweep = sweepBetween(m_data.startAngle, m_data.endAngle);
    // Arcs run counter-clockwise always: the image of the end is the start after mirroring.
    m_data.startAngle = plane->angle(plane->mirrors() ? m_data.endAngle : m_data.startAngle);
    m_data.endAngle = m_data.startAngle + sweep;
    if (m_data.endAngle > kTwoPi)
        m_data.endAngle -= kTwoPi;
    return Kcad::eOk;
}

// Ellipses.

namespace {

KcGeEllipArc3d ellipseInSpace(const KcDbEllipse::Data& data)
{
    KcGeEllipArc3d arc;
    arc.center = data.center;
    arc.u = data.majorAxis;
    arc.v = KcGeMatrix3d::planeToWorld(data.normal).axis(2).crossProduct(data.majorAxis) * data.radiusRatio;
    arc.start = data.startParam;
    arc.sweep = sweepBetween(data.startParam, data.endParam);
    return arc;
}

} // namespace

KcGeExtents3d KcDbEllipse::extentsUnder(const KcGeMatrix3d& matrix) const
{
    return ellipseInSpace(m_data).transformed(matrix).extents();
}

Kcad::ErrorStatus KcDbEllipse::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    const KcGeEllipArc3d image = ellipseInSpace(m_data).transformed(matrix).principal();
    const double major = image.u.length();
    if (!(major > 0.0) || !std::isfinite(major))
        return Kcad::eInvalidInput;
    const bool full = std::abs(image.sweep) >= kTwoPi;
    m_data.center = image.center;
    m_data.majorAxis = image.u;
    m_data.radiusRatio = image.v.length() / major;
    m_data.normal = plane->normal;
    double start = image.start;
    // Seen along the new normal the image may run clockwise; ellipses are written counter-clockwise.
    if (image.u.crossProduct(image.v).dotProduct(plane->normal) < 0.0)
        start = -(image.start + image.sweep);
    m_data.startParam = full ? 0.0 : normalizedAngle(start);
    m_data.endParam = m_data.startParam + image.sweep;
    return Kcad::eOk;
}

// Splines.

KcGeNurbsCurve3d KcDbSpline::nurbs() const
{
    KcGeNurbsCurve3d curve;
    curve.degree = m_data.degree;
    curve.knots = m_data.knots;
    curve.controlPoints = m_data.controlPoints;
    curve.weights = m_data.weights;
    if (curve.isValid())
        return curve;
    KcGeNurbsCurve3d::EndConditions ends;
    ends.closed = m_data.flags & 1;
    if (m_data.hasStartTangent)
        ends.startTangent = m_data.startTangent;
    if (m_data.hasEndTangent)
        ends.endTangent = m_data.endTangent;
    return KcGeNurbsCurve3d::throughPoints(m_data.fitPoints, ends).value_or(KcGeNurbsCurve3d());
}

KcGeExtents3d KcDbSpline::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeNurbsCurve3d image = nurbs().transformed(matrix);
    if (image.isValid())
        return image.extents();
    // An incomplete curve draws nothing; its points are what can be shown of it.
    KcGeExtents3d box;
    for (const KcGePoint3d p : m_data.controlPoints.empty() ? m_data.fitPoints : m_data.controlPoints)
        kcdbAddPoint(box, matrix * p);
    return box;
}

Kcad::ErrorStatus KcDbSpline::transformBy(const KcGeMatrix3d& matrix)
{
    m_data.normal = kcdbTransformedNormal(matrix, m_data.normal);
    for (KcGePoint3d& p : m_data.controlPoints)
        p = matrix * p;
    for (KcGePoint3d& p : m_data.fitPoints)
        p = matrix * p;
    m_data.startTangent = (matrix * m_data.startTangent).normal();
    m_data.endTangent = (matrix * m_data.endTangent).normal();
    return Kcad::eOk;
}

KcGePoint3d KcDbSpline::pointAt(double knot) const
{
    const KcGeNurbsCurve3d shape = nurbs();
    if (shape.isValid())
        return shape.pointAt(knot);
    if (!m_data.controlPoints.empty())
        return m_data.controlPoints.front();
    return m_data.fitPoints.empty() ? KcGePoint3d() : m_data.fitPoints.front();
}

// Infinite lines.

namespace {

Kcad::ErrorStatus transformInfinite(KcDbXline::Data& data, const KcGeMatrix3d& matrix)
{
    const KcGeVector3d direction = matrix * data.unitDir;
    if (!(direction.length() > 0.0))
        return Kcad::eInvalidInput;
    data.basePoint = matrix * data.basePoint;
    data.unitDir = direction.normal();
    return Kcad::eOk;
}

} // namespace

KcGeExtents3d KcDbXline::extentsUnder(const KcGeMatrix3d&) const
{
    return {}; // without ends it has no box
}

Kcad::ErrorStatus KcDbXline::transformBy(const KcGeMatrix3d& matrix)
{
    return transformInfinite(m_data, matrix);
}

KcGeExtents3d KcDbRay::extentsUnder(const KcGeMatrix3d&) const
{
    return {};
}

Kcad::ErrorStatus KcDbRay::transformBy(const KcGeMatrix3d& matrix)
{
    return transformInfinite(m_data, matrix);
}

// Points, filled quadrilaterals, faces.

KcGeExtents3d KcDbPoint::extentsUnder(const KcGeMatrix3d& matrix) const
{
    KcGeExtents3d box;
    kcdbAddPoint(box, matrix * m_data.position);
    return kcdbExtruded(box, m_data.thickness, matrix * KcGeMatrix3d::planeToWorld(m_data.normal));
}

Kcad::ErrorStatus KcDbPoint::transformBy(const KcGeMatrix3d& matrix)
{
    m_data.position = matrix * m_data.position;
    if (const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal)) {
        m_data.thickness = plane->thickness(m_data.thickness);
        m_data.xAngle = plane->angle(m_data.xAngle);
        m_data.normal = plane->normal;
    }
    return Kcad::eOk;
}

KcGeExtents3d KcDbSolid::extentsUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(m_data.normal);
    KcGeExtents3d box;
    for (const KcGePoint3d corner : m_data.corners)
        kcdbAddPoint(box, toWorld * corner);
    return kcdbExtruded(box, m_data.thickness, toWorld);
}

Kcad::ErrorStatus KcDbSolid::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    for (KcGePoint3d& corner : m_data.corners)
        corner = plane->point(corner);
    m_data.thickness = plane->thickness(m_data.thickness);
    m_data.normal = plane->normal;
    return Kcad::eOk;
}

KcGeExtents3d KcDbFace::extentsUnder(const KcGeMatrix3d& matrix) const
{
    KcGeExtents3d box;
    for (const KcGePoint3d corner : m_data.corners)
        kcdbAddPoint(box, matrix * corner);
    return box;
}

Kcad::ErrorStatus KcDbFace::transformBy(const KcGeMatrix3d& matrix)
{
    for (KcGePoint3d& corner : m_data.corners)
        corner = matrix * corner;
    return Kcad::eOk;
}
