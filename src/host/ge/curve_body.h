// What copies of a curve share. For the sources of `KcGeCurve3d` only.
#pragma once

#include "ge/curve.h"

inline bool isFinitePoint(KcGePoint3d p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

/// Pieces of a plane; or the vertices of a polyline in space, a closed one's first repeated; or a spline in
/// space.
struct KcGeCurve3d::Body {
    bool isPlanar = false;
    bool isChain = false; ///< a polyline
    bool isClosed = false;
    Extent extent = Extent::Bounded;
    KcGeMatrix3d frame, toPlane;
    std::vector<KcGeSegment2d> pieces;
    std::vector<KcGePoint3d> spaceVertices;
    std::shared_ptr<const KcGeCarrier3d> carrier;
    double carrierFrom = 0.0, carrierTo = 1.0;
    double firstParam = 0.0, lastParam = 1.0, step = 1.0; ///< step: of the parameter, for each piece

    /// Nothing when there are no pieces, or one is not finite. Parameters count pieces.
    static std::shared_ptr<Body> planar(const KcGeMatrix3d& frame, std::vector<KcGeSegment2d> pieces);
    /// A line without ends: one piece of length 1. Nothing when the direction has no length.
    static std::shared_ptr<Body> endless(KcGePoint3d base, KcGeVector3d direction, Extent extent);
    void setRange(double start, double end);

    size_t size() const;
    /// True when the plane's coordinates are the world's, but for the elevation.
    bool isLevel() const
    {
        const KcGeVector3d x = frame.axis(0), y = frame.axis(1);
        return x == KcGeVector3d::kXAxis && y == KcGeVector3d::kYAxis && frame.entry(0, 3) == 0.0
            && frame.entry(1, 3) == 0.0; // exact: only then nothing need be converted
    }
    KcGePoint3d world(KcGePoint2d p) const;
    double splineParam(double t) const
    {
        return t == 1.0 ? carrierTo : carrierFrom + t * (carrierTo - carrierFrom);
    }

    // Of a piece, at a fraction of its parameter.
    KcGePoint3d pointAt(size_t piece, double t) const;
    KcGeVector3d first(size_t piece, double t) const;
    KcGeVector3d second(size_t piece, double t) const;
    double lengthTo(size_t piece, double t) const;
    double paramAtLength(size_t piece, double length) const;
    /// The point, and the box, in coordinates of the plane where there is one.
    double closest(size_t piece, KcGePoint3d point) const;
    KcGeExtents3d box(size_t piece) const;

    struct Place {
        size_t piece = 0;
        double t = 0.0;
    };
    std::optional<Place> placeOf(double param) const;
    double paramOf(size_t piece, double t) const;

    /// The length up to each piece, and that of all.
    const std::vector<double>& lengths() const;
    const KcGeBoxTree& tree() const;

    mutable std::once_flag lengthsOnce, treeOnce;
    mutable std::vector<double> cumulated;
    mutable KcGeBoxTree boxTree;
};
