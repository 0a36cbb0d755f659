// Affine transforms of space and the coordinate systems that a plane's normal defines.
#pragma once

#include "ge/extents.h"
#include "ge/point.h"

/// An affine transform: three rows of a 3 × 4 matrix, applied to column vectors.
class KcGeMatrix3d {
public:
    /// The identity.
    KcGeMatrix3d() = default;

    static KcGeMatrix3d translation(KcGeVector3d v);
    /// Counter-clockwise about `axis` through `centre`; `angle` in radians.
    static KcGeMatrix3d rotation(double angle, KcGeVector3d axis = KcGeVector3d::kZAxis, KcGePoint3d centre = {});
    static KcGeMatrix3d scaling(double factor, KcGePoint3d centre = {});
    static KcGeMatrix3d scaling(KcGeVector3d factors);
    /// Reflection in the line through `point` along `direction`, seen along the Z axis.
    static KcGeMatrix3d mirroring(KcGePoint3d point, KcGeVector3d direction);
    /// From a system with the given origin and axes to the one in which they are expressed.
    static KcGeMatrix3d fromAxes(KcGePoint3d origin, KcGeVector3d x, KcGeVector3d y, KcGeVector3d z);
    /// From the object coordinate system of an entity with this normal to world coordinates, by the arbitrary axis
    /// algorithm of the published drawing exchange format. A normal without length counts as the Z axis.
    static KcGeMatrix3d planeToWorld(KcGeVector3d normal);
    static KcGeMatrix3d worldToPlane(KcGeVector3d normal);

    KcGeMatrix3d& setToTranslation(KcGeVector3d v) { return *this = translation(v); }
    KcGeMatrix3d& setToRotation(double angle, KcGeVector3d axis, KcGePoint3d centre)
    {
        return *this = rotation(angle, axis, centre);
    }

    /// First the right operand, then the left one.
    friend KcGeMatrix3d operator*(const KcGeMatrix3d& a, const KcGeMatrix3d& b);
    friend KcGePoint3d operator*(const KcGeMatrix3d& m, KcGePoint3d p)
    {
        return {m.m[0][0] * p.x + m.m[0][1] * p.y + m.m[0][2] * p.z + m.m[0][3],
            m.m[1][0] * p.x + m.m[1][1] * p.y + m.m[1][2] * p.z + m.m[1][3],
            m.m[2][0] * p.x + m.m[2][1] * p.y + m.m[2][2] * p.z + m.m[2][3]};
    }
    friend KcGeVector3d operator*(const KcGeMatrix3d& m, KcGeVector3d v)
    {
        return {m.m[0][0] * v.x + m.m[0][1] * v.y + m.m[0][2] * v.z,
            m.m[1][0] * v.x + m.m[1][1] * v.y + m.m[1][2] * v.z, m.m[2][0] * v.x + m.m[2][1] * v.y + m.m[2][2] * v.z};
    }
    friend bool operator==(const KcGeMatrix3d&, const KcGeMatrix3d&) = default;

    double entry(int row, int column) const { return m[row][column]; }
    KcGeVector3d axis(int column) const { return {m[0][column], m[1][column], m[2][column]}; }
    double determinant() const;
    /// The identity when this transform cannot be inverted; ask `determinant` first where that matters.
    KcGeMatrix3d inverse() const;
    /// Length of the image of a unit vector along X: the scale of a transform that scales evenly.
    double scale() const { return axis(0).length(); }
    /// True when lengths change by the same factor in every direction and right angles stay right.
    bool isUniform(const KcGeTol& tol = KcGeContext::gTol) const;
    /// The box of the transformed corners.
    KcGeExtents3d transformed(const KcGeExtents3d& box) const;

private:
    double m[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
};

/// True when the normal is the Z axis, so that object and world coordinates are the same.
inline bool isWorldPlane(KcGeVector3d normal)
{
    return normal.x == 0.0 && normal.y == 0.0 && normal.z > 0.0; // exact on purpose: the usual normal is written so
}
