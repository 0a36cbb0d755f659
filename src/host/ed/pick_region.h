// Whether what can be picked of an entity lies in, or touches, a polygon or a fence.
#pragma once

#include "ed/pick_geometry.h"
#include "ge/extents.h"

class KcEdPickRegion {
public:
    enum class Kind { Window, Crossing, Fence };
    /// Corners of a polygon, or points of a fence; world coordinates seen along the Z axis.
    KcEdPickRegion(Kind kind, std::vector<KcGePoint2d> points);

    /// What a touch was: lines come before filled insides when one entity is picked.
    enum class Touch { None, Inside, Line };
    Touch touches(const KcEdPickPieces& pieces) const;
    /// True when the entity belongs to the region. Boxes decide where they can.
    bool selects(const KcDbEntity& entity, KcEdPickGeometry& geometry) const;

    const KcGeExtents3d& box() const { return m_box; }

private:
    bool contains(KcGePoint2d p) const;
    bool crosses(KcGePoint2d a, KcGePoint2d b) const;
    bool crosses(const KcGeSegment2d& curve) const;
    bool holds(const KcGeSegment2d& curve) const;
    bool holds(const KcEdPickPieces& pieces) const;

    Kind m_kind;
    std::vector<KcGePoint2d> m_points;
    bool m_isRectangle = false; ///< parallel to the axes
    KcGeExtents3d m_box;
};
