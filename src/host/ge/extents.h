// Axis-parallel boxes: of points in space, grown point by point.
#pragma once

#include "ge/point.h"

#include <algorithm>
#include <limits>

/// A box of the plane, parallel to its axes. A box that holds no point is empty; its corners mean nothing then.
struct KcGeExtents2d {
    KcGePoint2d min {kNone, kNone};
    KcGePoint2d max {-kNone, -kNone};

    bool isEmpty() const { return !(min.x <= max.x && min.y <= max.y); }
    void addPoint(KcGePoint2d p)
    {
        min = {std::min(min.x, p.x), std::min(min.y, p.y)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y)};
    }
    void addExtents(const KcGeExtents2d& box)
    {
        if (box.isEmpty())
            return;
        addPoint(box.min);
        addPoint(box.max);
    }
    /// True when the other box lies in this one, edges included.
    bool contains(const KcGeExtents2d& box) const
    {
        return min.x <= box.min.x && box.max.x <= max.x && min.y <= box.min.y && box.max.y <= max.y;
    }
    bool contains(KcGePoint2d p) const { return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y; }
    bool overlaps(const KcGeExtents2d& box) const
    {
        return min.x <= box.max.x && box.min.x <= max.x && min.y <= box.max.y && box.min.y <= max.y;
    }

private:
    static constexpr double kNone = std::numeric_limits<double>::infinity();
};

/// A box parallel to the world axes. A box that holds no point is empty; its corners mean nothing then.
struct KcGeExtents3d {
    KcGePoint3d min {kNone, kNone, kNone};
    KcGePoint3d max {-kNone, -kNone, -kNone};

    bool isEmpty() const { return !(min.x <= max.x); }
    void addPoint(KcGePoint3d p)
    {
        min = {std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z)};
        max = {std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z)};
    }
    void addExtents(const KcGeExtents3d& box)
    {
        if (box.isEmpty())
            return;
        addPoint(box.min);
        addPoint(box.max);
    }
    KcGePoint3d center() const { return min + (max - min) * 0.5; }
    double width() const { return max.x - min.x; }
    double height() const { return max.y - min.y; }
    /// True when the boxes share at least a point, seen along the Z axis.
    bool overlapsInPlan(const KcGeExtents3d& box) const
    {
        return min.x <= box.max.x && box.min.x <= max.x && min.y <= box.max.y && box.min.y <= max.y;
    }
    bool containsInPlan(const KcGeExtents3d& box) const
    {
        return min.x <= box.min.x && box.max.x <= max.x && min.y <= box.min.y && box.max.y <= max.y;
    }
    bool containsInPlan(KcGePoint3d p) const { return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y; }

private:
    static constexpr double kNone = std::numeric_limits<double>::infinity();
};
