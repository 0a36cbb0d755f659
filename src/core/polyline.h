// Polylines, lightweight and old-style ones in the plane or in space.
#pragma once

#include "core/entity.h"
#include "db/polyline.h"

/// The vertices in world coordinates; control points of splined old-style polylines are left out.
std::vector<KcGePoint3d> polylineVertices(const KcDbPolyline& polyline);
std::vector<KcGePoint3d> polylineVertices(const KcDb2dPolyline& polyline);

class CPolyline : public CEntity {
public:
    /// Polylines; meshes are none.
    bool Initialize(KcDbObjectId id, const KcDbDatabase* database = nullptr) override;
    /// Closed as marked, or because the last vertex lies on the first.
    bool GetClosed() const;
    /// True when no segment is an arc.
    bool IsOnlyLines() const;
    /// The segments as lines and arcs, which belong to no drawing; arcs run counter-clockwise.
    std::vector<std::unique_ptr<KcDbCurve>> Explode() const;
    /// As `polylineVertices`.
    std::vector<KcGePoint3d> GetVertices() const;
};
