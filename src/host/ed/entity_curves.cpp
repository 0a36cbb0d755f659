// Walking through what is seen near a place.

#include "ed/entity_curves.h"

#include "db/block_reference.h"
#include "db/spatial_index.h"
#include "ed/pick_geometry.h"

namespace {

constexpr int kDeepest = 16;

class Walk {
public:
    Walk(const KcDbDatabase& database, size_t most, const std::function<bool(const KcEdSeenEntity&)>& visit)
        : m_database(database)
        , m_left(most)
        , m_visit(visit)
    {
    }

    /// False when there was enough.
    bool block(
        KcDbObjectId block, const KcGeExtents2d& box, const KcGeMatrix3d& toWorld, KcDbObjectId top,
        int depth)
    {
        const auto ids = m_database.spatialIndex().crossing(block, box);
        for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
            const KcDbRead<KcDbEntity> entity(*id);
            if (!entity || !m_layers.isVisible(*entity))
                continue;
            if (m_left-- == 0)
                return m_left = 0, false;
            const KcDbObjectId through = top.isNull() ? *id : top;
            if (!m_visit({ *entity, toWorld, through }))
                return false;
            if (entity->isKindOf(KcDbBlockReference::desc()) && depth < kDeepest
                && !reference(static_cast<const KcDbBlockReference&>(*entity), box, toWorld, through, depth))
                return false;
        }
        return true;
    }

private:
    bool reference(
        const KcDbBlockReference& reference, const KcGeExtents2d& box, const KcGeMatrix3d& toWorld,
        KcDbObjectId top, int depth)
    {
        for (const KcDbObjectId id : reference.attributes())
            if (const KcDbRead<KcDbAttribute> attribute(id);
                attribute && !attribute->isInvisible() && !m_visit({ *attribute, toWorld, top }))
                return false;
        const KcGeMatrix3d place = reference.blockTransform();
        if (std::abs(place.determinant()) < 1e-30) // squeezed to nothing
            return true;
        // The box as the definition sees it. A tilted reference is seen through its whole depth.
        const KcGeExtents3d definition = KcDbBlockReference::definitionExtents(reference.blockTableRecord());
        if (definition.isEmpty())
            return true;
        const KcGeMatrix3d back = place.inverse();
        KcGeExtents3d seen;
        const bool level
            = place.axis(0).z == 0.0 && place.axis(1).z == 0.0; // exact: of a level plane they are
        if (level) {
            for (const KcGePoint2d corner : { box.min, box.max, KcGePoint2d{ box.min.x, box.max.y },
                                              KcGePoint2d{ box.max.x, box.min.y } })
                seen.addPoint(back * KcGePoint3d{ corner.x, corner.y, place.entry(2, 3) });
        } else {
            seen = definition;
        }
        KcGeExtents2d inBlock;
        inBlock.addPoint(seen.min.plan());
        inBlock.addPoint(seen.max.plan());
        return block(reference.blockTableRecord(), inBlock, toWorld * place, top, depth + 1);
    }

    const KcDbDatabase& m_database;
    KcEdPickGeometry m_layers{ 1.0 };
    size_t m_left;
    const std::function<bool(const KcEdSeenEntity&)>& m_visit;
};

} // namespace

void kcedVisitSeen(
    const KcDbDatabase& database, KcDbObjectId space, const KcGeExtents2d& box, size_t most,
    const std::function<bool(const KcEdSeenEntity&)>& visit)
{
    Walk(database, most, visit).block(space, box, {}, {}, 0);
}

std::vector<KcGeSegment2d> kcedSeenPieces(const KcDbCurve& curve, const KcGeMatrix3d& toWorld)
{
    const KcGeCurve3d geometry = curve.curve();
    std::vector<KcGeSegment2d> pieces = geometry.plan();
    if (toWorld != KcGeMatrix3d())
        for (KcGeSegment2d& piece : pieces)
            piece = piece.transformed(toWorld);
    return pieces;
}
