// Polylines, lightweight and old-style ones in the plane or in space.
#pragma once

#include "core/entity.h"

class CPolyline : public CEntity {
public:
    /// Polylines; meshes are none.
    bool Initialize(KcDbObjectId id, const KcDbDatabase* database = nullptr) override;
    /// Closed as marked, or because the last vertex lies on the first.
    bool GetClosed() const;
    /// True when no segment is an arc.
    bool IsOnlyLines() const;
    /// The vertices in world coordinates, control points of splined old-style ones left out.
    std::vector<KcGePoint3d> GetVertices() const;
};
