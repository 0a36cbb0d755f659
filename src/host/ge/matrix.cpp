// Affine transforms, and the angles between vectors that are measured with them.

#include "ge/matrix.h"

double KcGeVector3d::angleTo(KcGeVector3d v) const
{
    return std::atan2(crossProduct(v).length(), dotProduct(v));
}

double KcGeVector3d::angleTo(KcGeVector3d v, KcGeVector3d reference) const
{
    const KcGeVector3d cross = crossProduct(v);
    const double angle = std::atan2(cross.length(), dotProduct(v));
    return cross.dotProduct(reference) < 0.0 ? normalizedAngle(-angle) : angle;
}

KcGeMatrix3d KcGeMatrix3d::fromAxes(KcGePoint3d origin, KcGeVector3d x, KcGeVector3d y, KcGeVector3d z)
{
    KcGeMatrix3d r;
    const KcGeVector3d columns[4] = {x, y, z, origin.asVector()};
    for (int c = 0; c < 4; ++c) {
        r.m[0][c] = columns[c].x;
        r.m[1][c] = columns[c].y;
        r.m[2][c] = columns[c].z;
    }
    return r;
}

KcGeMatrix3d KcGeMatrix3d::translation(KcGeVector3d v)
{
    return fromAxes(KcGePoint3d {} + v, KcGeVector3d::kXAxis, KcGeVector3d::kYAxis, KcGeVector3d::kZAxis);
}

KcGeMatrix3d KcGeMatrix3d::rotation(double angle, KcGeVector3d axis, KcGePoint3d centre)
{
    // Rodrigues' rotation formula.
    const KcGeVector3d k = axis.normal();
    const double c = std::cos(angle), s = std::sin(angle);
    const auto turned = [&](KcGeVector3d v) { return v * c + k.crossProduct(v) * s + k * (k.dotProduct(v) * (1.0 - c)); };
    KcGeMatrix3d r = fromAxes(
        {}, turned(KcGeVector3d::kXAxis), turned(KcGeVector3d::kYAxis), turned(KcGeVector3d::kZAxis));
    const KcGeVector3d shift = centre - r * centre;
    return translation(shift) * r;
}

KcGeMatrix3d KcGeMatrix3d::scaling(KcGeVector3d f)
{
    return fromAxes({}, {f.x, 0, 0}, {0, f.y, 0}, {0, 0, f.z});
}

KcGeMatrix3d KcGeMatrix3d::scaling(double factor, KcGePoint3d centre)
{
    const KcGeMatrix3d r = scaling(KcGeVector3d {factor, factor, factor});
    return translation(centre - r * centre) * r;
}

KcGeMatrix3d KcGeMatrix3d::mirroring(KcGePoint3d point, KcGeVector3d direction)
{
    const KcGeVector3d d = KcGeVector3d {direction.x, direction.y, 0.0}.normal();
    const double c = d.x * d.x - d.y * d.y, s = 2.0 * d.x * d.y;
    const KcGeMatrix3d r = fromAxes({}, {c, s, 0}, {s, -c, 0}, KcGeVector3d::kZAxis);
    return translation(point - r * point) * r;
}

KcGeMatrix3d KcGeMatrix3d::planeToWorld(KcGeVector3d normal)
{
    const double length = normal.length();
    if (isWorldPlane(normal) || !(length > 0.0) || !std::isfinite(length))
        return {};
    const KcGeVector3d z = normal / length;
    constexpr double kNearPole = 1.0 / 64.0;
    const bool nearPole = std::abs(z.x) < kNearPole && std::abs(z.y) < kNearPole;
    const KcGeVector3d x = (nearPole ? KcGeVector3d::kYAxis : KcGeVector3d::kZAxis).crossProduct(z).normal();
    return fromAxes({}, x, z.crossProduct(x), z);
}

KcGeMatrix3d KcGeMatrix3d::worldToPlane(KcGeVector3d normal)
{
    const KcGeMatrix3d toWorld = planeToWorld(normal);
    const KcGeVector3d x = toWorld.axis(0), y = toWorld.axis(1), z = toWorld.axis(2);
    return fromAxes({}, {x.x, y.x, z.x}, {x.y, y.y, z.y}, {x.z, y.z, z.z});
}

KcGeMatrix3d operator*(const KcGeMatrix3d& a, const KcGeMatrix3d& b)
{
    return KcGeMatrix3d::fromAxes(
        a * KcGePoint3d {b.m[0][3], b.m[1][3], b.m[2][3]}, a * b.axis(0), a * b.axis(1), a * b.axis(2));
}

double KcGeMatrix3d::determinant() const
{
    return axis(0).crossProduct(axis(1)).dotProduct(axis(2));
}

KcGeMatrix3d KcGeMatrix3d::inverse() const
{
    const double d = determinant();
    if (d == 0.0 || !std::isfinite(d)) // exact: only a transform without inverse gives 0
        return {};
    const KcGeVector3d x = axis(0), y = axis(1), z = axis(2);
    // Rows of the inverse are the cross products of the columns over the determinant.
    const KcGeVector3d r0 = y.crossProduct(z) / d, r1 = z.crossProduct(x) / d, r2 = x.crossProduct(y) / d;
    const KcGeVector3d t = axis(3);
    return fromAxes(
        {-r0.dotProduct(t), -r1.dotProduct(t), -r2.dotProduct(t)}, {r0.x, r1.x, r2.x}, {r0.y, r1.y, r2.y},
        {r0.z, r1.z, r2.z});
}

bool KcGeMatrix3d::isUniform(const KcGeTol& tol) const
{
    const double s = scale();
    const double slack = tol.equalVector * s;
    return std::abs(axis(1).length() - s) <= slack && std::abs(axis(2).length() - s) <= slack
        && std::abs(axis(0).dotProduct(axis(1))) <= slack * s && std::abs(axis(1).dotProduct(axis(2))) <= slack * s
        && std::abs(axis(0).dotProduct(axis(2))) <= slack * s;
}

KcGeExtents3d KcGeMatrix3d::transformed(const KcGeExtents3d& box) const
{
    KcGeExtents3d result;
    if (box.isEmpty())
        return result;
    // Each coordinate of a corner is a sum with one of two values for each axis, so that the least and the greatest sums
    // are those of the least and greatest values.
    const double low[3] = {box.min.x, box.min.y, box.min.z}, high[3] = {box.max.x, box.max.y, box.max.z};
    double least[3], most[3];
    for (int row = 0; row < 3; ++row) {
        double from = 0.0, to = 0.0;
        for (int column = 0; column < 3; ++column) {
            const double a = m[row][column] * low[column], b = m[row][column] * high[column];
            from += std::min(a, b);
            to += std::max(a, b);
        }
        least[row] = from + m[row][3];
        most[row] = to + m[row][3];
    }
    result.min = {least[0], least[1], least[2]};
    result.max = {most[0], most[1], most[2]};
    return result;
}
