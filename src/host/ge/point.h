// Points and vectors of the plane and of space: small value types, lengths in drawing units, angles in radians.
#pragma once

#include "ge/tolerance.h"

#include <cmath>

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kTwoPi = 2.0 * kPi;

/// The angle brought into [0, 2π).
inline double normalizedAngle(double angle)
{
    angle = std::fmod(angle, kTwoPi);
    if (angle < 0.0)
        angle += kTwoPi;
    return angle < kTwoPi ? angle : 0.0;
}

struct KcGeVector2d {
    double x = 0.0;
    double y = 0.0;

    friend constexpr KcGeVector2d operator+(KcGeVector2d a, KcGeVector2d b) { return {a.x + b.x, a.y + b.y}; }
    friend constexpr KcGeVector2d operator-(KcGeVector2d a, KcGeVector2d b) { return {a.x - b.x, a.y - b.y}; }
    friend constexpr KcGeVector2d operator*(KcGeVector2d v, double f) { return {v.x * f, v.y * f}; }
    friend constexpr KcGeVector2d operator*(double f, KcGeVector2d v) { return v * f; }
    friend constexpr KcGeVector2d operator/(KcGeVector2d v, double f) { return {v.x / f, v.y / f}; }
    constexpr KcGeVector2d operator-() const { return {-x, -y}; }
    friend constexpr bool operator==(const KcGeVector2d&, const KcGeVector2d&) = default;

    constexpr double dotProduct(KcGeVector2d v) const { return x * v.x + y * v.y; }
    /// Positive when `v` lies to the left of this vector.
    constexpr double crossProduct(KcGeVector2d v) const { return x * v.y - y * v.x; }
    double length() const { return std::hypot(x, y); }
    /// Direction counter-clockwise from the X axis, in [0, 2π).
    double angle() const { return normalizedAngle(std::atan2(y, x)); }
    /// This vector with length 1; unchanged when it has no length.
    KcGeVector2d normal() const
    {
        const double l = length();
        return l > 0.0 ? *this / l : *this;
    }
    /// A quarter turn counter-clockwise.
    constexpr KcGeVector2d perpVector() const { return {-y, x}; }
    KcGeVector2d rotateBy(double angle) const
    {
        const double c = std::cos(angle), s = std::sin(angle);
        return {x * c - y * s, x * s + y * c};
    }
};

struct KcGePoint2d {
    double x = 0.0;
    double y = 0.0;

    friend constexpr KcGePoint2d operator+(KcGePoint2d p, KcGeVector2d v) { return {p.x + v.x, p.y + v.y}; }
    friend constexpr KcGePoint2d operator-(KcGePoint2d p, KcGeVector2d v) { return {p.x - v.x, p.y - v.y}; }
    friend constexpr KcGeVector2d operator-(KcGePoint2d p, KcGePoint2d q) { return {p.x - q.x, p.y - q.y}; }
    friend constexpr bool operator==(const KcGePoint2d&, const KcGePoint2d&) = default;

    constexpr KcGeVector2d asVector() const { return {x, y}; }
    double distanceTo(KcGePoint2d p) const { return (*this - p).length(); }
    bool isEqualTo(KcGePoint2d p, const KcGeTol& tol = KcGeContext::gTol) const
    {
        return distanceTo(p) <= tol.equalPoint;
    }
};

struct KcGeVector3d {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    static const KcGeVector3d kXAxis;
    static const KcGeVector3d kYAxis;
    static const KcGeVector3d kZAxis;

    friend constexpr KcGeVector3d operator+(KcGeVector3d a, KcGeVector3d b)
    {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr KcGeVector3d operator-(KcGeVector3d a, KcGeVector3d b)
    {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr KcGeVector3d operator*(KcGeVector3d v, double f) { return {v.x * f, v.y * f, v.z * f}; }
    friend constexpr KcGeVector3d operator*(double f, KcGeVector3d v) { return v * f; }
    friend constexpr KcGeVector3d operator/(KcGeVector3d v, double f) { return {v.x / f, v.y / f, v.z / f}; }
    constexpr KcGeVector3d operator-() const { return {-x, -y, -z}; }
    friend constexpr bool operator==(const KcGeVector3d&, const KcGeVector3d&) = default;

    constexpr double dotProduct(KcGeVector3d v) const { return x * v.x + y * v.y + z * v.z; }
    constexpr KcGeVector3d crossProduct(KcGeVector3d v) const
    {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    double length() const { return std::hypot(x, y, z); }
    /// This vector with length 1; unchanged when it has no length.
    KcGeVector3d normal() const
    {
        const double l = length();
        return l > 0.0 ? *this / l : *this;
    }
    bool isEqualTo(KcGeVector3d v, const KcGeTol& tol = KcGeContext::gTol) const
    {
        return (*this - v).length() <= tol.equalVector;
    }
    /// Angle from this vector to `v`, counter-clockwise seen against `reference`, in [0, 2π).
    double angleTo(KcGeVector3d v, KcGeVector3d reference) const;
    /// Angle between this vector and `v`, in [0, π].
    double angleTo(KcGeVector3d v) const;
};

inline constexpr KcGeVector3d KcGeVector3d::kXAxis {1.0, 0.0, 0.0};
inline constexpr KcGeVector3d KcGeVector3d::kYAxis {0.0, 1.0, 0.0};
inline constexpr KcGeVector3d KcGeVector3d::kZAxis {0.0, 0.0, 1.0};

struct KcGePoint3d {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    friend constexpr KcGePoint3d operator+(KcGePoint3d p, KcGeVector3d v) { return {p.x + v.x, p.y + v.y, p.z + v.z}; }
    friend constexpr KcGePoint3d operator-(KcGePoint3d p, KcGeVector3d v) { return {p.x - v.x, p.y - v.y, p.z - v.z}; }
    friend constexpr KcGeVector3d operator-(KcGePoint3d p, KcGePoint3d q) { return {p.x - q.x, p.y - q.y, p.z - q.z}; }
    friend constexpr bool operator==(const KcGePoint3d&, const KcGePoint3d&) = default;

    constexpr KcGeVector3d asVector() const { return {x, y, z}; }
    /// The point seen along the Z axis.
    constexpr KcGePoint2d plan() const { return {x, y}; }
    double distanceTo(KcGePoint3d p) const { return (*this - p).length(); }
    bool isEqualTo(KcGePoint3d p, const KcGeTol& tol = KcGeContext::gTol) const
    {
        return distanceTo(p) <= tol.equalPoint;
    }
};
