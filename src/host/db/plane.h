// How entities that live in a plane (object coordinates under a normal) pass through transforms of space.
#pragma once

#include "db/status.h"
#include "ge/ellipse.h"
#include "ge/matrix.h"

#include <optional>

/// The image of an entity's plane under an affine transform: its new normal, and the way from old to new
/// object coordinates. The normal keeps its side, so that a plan that is mirrored in its own plane keeps the
/// Z axis as its normal and becomes mirrored in object coordinates.
struct KcDbPlaneTransform {
    KcGeVector3d normal = KcGeVector3d::kZAxis;
    KcGeMatrix3d toNewPlane;

    /// Nothing when the plane's image is no plane.
    static std::optional<KcDbPlaneTransform> of(const KcGeMatrix3d& matrix, KcGeVector3d normal);

    KcGePoint3d point(KcGePoint3d p) const { return toNewPlane * p; }
    KcGePoint2d point(KcGePoint2d p) const
    {
        const KcGePoint3d image = toNewPlane * KcGePoint3d{ p.x, p.y, 0.0 };
        return image.plan();
    }
    KcGeVector2d vector(KcGeVector2d v) const
    {
        const KcGeVector3d image = toNewPlane * KcGeVector3d{ v.x, v.y, 0.0 };
        return { image.x, image.y };
    }
    KcGeVector2d direction(double angle) const { return vector({ std::cos(angle), std::sin(angle) }); }
    /// The new angle of a direction in the plane, in [0, 2π).
    double angle(double angle) const { return direction(angle).angle(); }
    double elevation(double z) const { return (toNewPlane * KcGePoint3d{ 0.0, 0.0, z }).z; }
    double thickness(double t) const { return (toNewPlane * KcGeVector3d{ 0.0, 0.0, t }).z; }
    bool mirrors() const;
    /// Factor of areas in the plane.
    double areaFactor() const;
    /// Mean factor of lengths: the one factor where the plane scales evenly.
    double scale() const { return std::sqrt(areaFactor()); }
    /// True when circles of the plane stay circles.
    bool isUniform() const;
};

/// Adds a point unless a coordinate is not finite.
void kcdbAddPoint(KcGeExtents3d& box, KcGePoint3d point);
/// Makes the box reach as far along the normal as an extruded entity does; `toWorld` leads from the plane.
KcGeExtents3d kcdbExtruded(const KcGeExtents3d& box, double thickness, const KcGeMatrix3d& toWorld);
/// A circular arc of a plane as an arc in the space to which `toWorld` leads; angles in radians, sweep
/// signed.
KcGeEllipArc3d kcdbArcInSpace(
    const KcGeMatrix3d& toWorld, KcGePoint3d center, double radius, double startAngle, double sweep);
/// The normal that a world entity's extrusion gets; unchanged when the transform takes it away.
KcGeVector3d kcdbTransformedNormal(const KcGeMatrix3d& matrix, KcGeVector3d normal);
