// The curves that are seen near a place, whether they lie in the space itself or in references to blocks.
#pragma once

#include "db/curve.h"
#include "ge/matrix.h"

#include <functional>

/// An entity as it is seen in a space.
struct KcEdSeenEntity {
    const KcDbEntity& entity;
    KcGeMatrix3d toWorld; ///< from the coordinates of its block
    KcDbObjectId top; ///< the entity of the space through which it is seen
};

/// Calls `visit` with the visible entities whose boxes touch a box of a space, what block references show
/// included, those drawn last first, until `visit` says false or `most` have been visited.
void kcedVisitSeen(
    const KcDbDatabase& database, KcDbObjectId space, const KcGeExtents2d& box, size_t most,
    const std::function<bool(const KcEdSeenEntity&)>& visit);

/// The pieces of a curve as seen along the Z axis.
std::vector<KcGeSegment2d> kcedSeenPieces(const KcDbCurve& curve, const KcGeMatrix3d& toWorld);
