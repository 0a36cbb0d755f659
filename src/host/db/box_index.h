// A dynamic R-tree over numbered boxes of the plane, small in memory: what the spatial index of a drawing stands on.
#pragma once

#include "ge/extents.h"

#include <cstdint>
#include <memory>
#include <vector>

/// Boxes numbered 0 … n − 1. They are held in single precision about an origin of their own, rounded outwards: a query
/// never misses a box, and may give one that lies off by that rounding (1e-7 of the distance to the origin).
class KcDbBoxIndex {
public:
    KcDbBoxIndex();
    ~KcDbBoxIndex();
    KcDbBoxIndex(KcDbBoxIndex&&) noexcept;
    KcDbBoxIndex& operator=(KcDbBoxIndex&&) noexcept;

    /// Replaces everything. Empty boxes are found by no query; boxes with an infinite side, or with one that is no
    /// number, by each but `nearest`.
    void build(const std::vector<KcGeExtents2d>& boxes);
    /// Sets the box of a number, which may be new: numbers in between get empty boxes.
    void set(uint32_t number, const KcGeExtents2d& box);
    size_t size() const;

    /// Numbers of the boxes that share a point with the box, ascending.
    std::vector<uint32_t> crossing(const KcGeExtents2d& box) const;
    /// Numbers of the boxes that lie in the box, edges included, ascending.
    std::vector<uint32_t> within(const KcGeExtents2d& box) const;
    /// Numbers of the boxes that a run of lines meets, ascending.
    std::vector<uint32_t> fence(const std::vector<KcGePoint2d>& points) const;
    struct Near {
        uint32_t number = 0;
        double distance = 0.0; ///< from the point to the box, never more than the true one; 0 inside
    };
    /// The boxes nearest to a point, at most `count`, ascending by distance.
    std::vector<Near> nearest(KcGePoint2d point, size_t count) const;

private:
    struct Tree;
    std::unique_ptr<Tree> m_tree;
};
