// Conversions by the user coordinate system of the current drawing.

#include "core/coordinates.h"

#include "ed/documents.h"

namespace {

KcGeMatrix3d ucsToWorld()
{
    const KcDbDatabase* database = kcedCurrentDatabase();
    return database ? database->ucsToWorld() : KcGeMatrix3d();
}

double turned(double angle, const KcGeMatrix3d& matrix)
{
    const KcGeVector3d direction = matrix * KcGeVector3d{ std::cos(angle), std::sin(angle), 0.0 };
    return KcGeVector2d{ direction.x, direction.y }.angle();
}

} // namespace

KcGePoint3d SetWcsPointToUcs(KcGePoint3d point)
{
    return ucsToWorld().inverse() * point;
}

KcGePoint3d SetUcsPointToWcs(KcGePoint3d point)
{
    return ucsToWorld() * point;
}

void SetWcsPointsToUcs(std::vector<KcGePoint3d>& points)
{
    const KcGeMatrix3d toUcs = ucsToWorld().inverse();
    for (KcGePoint3d& point : points)
        point = toUcs * point;
}

void SetUcsPointsToWcs(std::vector<KcGePoint3d>& points)
{
    const KcGeMatrix3d toWorld = ucsToWorld();
    for (KcGePoint3d& point : points)
        point = toWorld * point;
}

KcGeVector3d SetUcsVectorToWcs(KcGeVector3d vector)
{
    return ucsToWorld() * vector;
}

KcGeVector3d SetWcsVectorToUcs(KcGeVector3d vector)
{
    return ucsToWorld().inverse() * vector;
}

double SetWcsAngle2Ucs(double angle)
{
    return turned(angle, ucsToWorld().inverse());
}

double SetUcsAngle2Wcs(double angle)
{
    return turned(angle, ucsToWorld());
}

void GetAdsPoint(KcGePoint3d point, KcAdsPoint& result)
{
    result[0] = point.x;
    result[1] = point.y;
    result[2] = point.z;
}

KcGePoint3d GetPointFromAdsPoint(const KcAdsPoint& point)
{
    return { point[0], point[1], point[2] };
}

KcGePoint3d GetMidPoint(KcGePoint3d p, KcGePoint3d q)
{
    return p + (q - p) * 0.5;
}

KcGeVector3d GetVector(KcGePoint3d p, KcGePoint3d q)
{
    return q - p;
}

void SetOffset(double dx, double dy, std::vector<KcGePoint3d>& points)
{
    for (KcGePoint3d& point : points)
        point = point + KcGeVector3d{ dx, dy, 0.0 };
}
