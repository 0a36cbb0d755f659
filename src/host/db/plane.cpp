// Images of planes under affine transforms.

#include "db/plane.h"

std::optional<KcDbPlaneTransform> KcDbPlaneTransform::of(const KcGeMatrix3d& matrix, KcGeVector3d normal)
{
    const KcGeMatrix3d toWorld = matrix * KcGeMatrix3d::planeToWorld(normal);
    const KcGeVector3d cross = toWorld.axis(0).crossProduct(toWorld.axis(1));
    const double length = cross.length();
    if (!(length > 0.0) || !std::isfinite(length))
        return std::nullopt;
    KcDbPlaneTransform result;
    result.normal = cross * ((matrix.determinant() < 0.0 ? -1.0 : 1.0) / length);
    // A plan stays a plan: the last bits of a normal would cost every point its exact place.
    if ((result.normal - KcGeVector3d::kZAxis).length() <= KcGeContext::gTol.equalVector)
        result.normal = KcGeVector3d::kZAxis;
    result.toNewPlane = KcGeMatrix3d::worldToPlane(result.normal) * toWorld;
    return result;
}

bool KcDbPlaneTransform::mirrors() const
{
    return vector({ 1, 0 }).crossProduct(vector({ 0, 1 })) < 0.0;
}

double KcDbPlaneTransform::areaFactor() const
{
    return std::abs(vector({ 1, 0 }).crossProduct(vector({ 0, 1 })));
}

bool KcDbPlaneTransform::isUniform() const
{
    const KcGeVector2d x = vector({ 1, 0 }), y = vector({ 0, 1 });
    const double sx = x.length(), sy = y.length();
    const double slack = KcGeContext::gTol.equalVector * std::max(sx, sy);
    return std::abs(sx - sy) <= slack && std::abs(x.dotProduct(y)) <= slack * std::max(sx, sy);
}

void kcdbAddPoint(KcGeExtents3d& box, KcGePoint3d p)
{
    if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z))
        box.addPoint(p);
}

KcGeExtents3d kcdbExtruded(const KcGeExtents3d& box, double thickness, const KcGeMatrix3d& toWorld)
{
    KcGeExtents3d result = box;
    if (thickness == 0.0 || !std::isfinite(thickness)
        || box.isEmpty()) // exact: the usual value is written so
        return result;
    const KcGeVector3d shift = toWorld * KcGeVector3d{ 0.0, 0.0, thickness };
    kcdbAddPoint(result, box.min + shift);
    kcdbAddPoint(result, box.max + shift);
    return result;
}

KcGeEllipArc3d kcdbArcInSpace(
    const KcGeMatrix3d& toWorld, KcGePoint3d center, double radius, double startAngle, double sweep)
{
    return { toWorld * center, toWorld * KcGeVector3d{ radius, 0, 0 }, toWorld * KcGeVector3d{ 0, radius, 0 },
             startAngle, sweep };
}

KcGeVector3d kcdbTransformedNormal(const KcGeMatrix3d& matrix, KcGeVector3d normal)
{
    const auto plane = KcDbPlaneTransform::of(matrix, normal);
    return plane ? plane->normal : normal;
}
