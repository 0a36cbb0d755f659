// Finds the entities of a block by place. Built for a block when it is first asked, then kept up to date by what the
// drawing tells of changes, undo included; opening a drawing costs nothing.
#pragma once

#include "db/box_index.h"
#include "db/database.h"

#include <unordered_set>

/// One drawing's index; ask `KcDbDatabase::spatialIndex` for it. Queries go by the boxes of the entities
/// (`geomExtents`, seen along the Z axis), rounded outwards as `KcDbBoxIndex` says: they give candidates, none missing.
/// Entities without ends (infinite lines, rays) are found by every query but `window` and `nearest`; entities that draw
/// nothing by none. Ids come in drawing order unless said otherwise. An entity that is open for writing counts as it
/// was before.
class KcDbSpatialIndex : private KcDbListener {
public:
    explicit KcDbSpatialIndex(KcDbDatabase& database);
    ~KcDbSpatialIndex() override;
    KcDbSpatialIndex(const KcDbSpatialIndex&) = delete;
    KcDbSpatialIndex& operator=(const KcDbSpatialIndex&) = delete;

    /// Entities whose boxes share a point with the box, world coordinates. Nothing when there is no such block.
    std::vector<KcDbObjectId> crossing(KcDbObjectId block, const KcGeExtents2d& box);
    /// Entities whose boxes lie in the box.
    std::vector<KcDbObjectId> window(KcDbObjectId block, const KcGeExtents2d& box);
    /// Entities whose boxes are met by a run of lines.
    std::vector<KcDbObjectId> fence(KcDbObjectId block, const std::vector<KcGePoint2d>& points);
    struct Near {
        KcDbObjectId id;
        double distance = 0.0; ///< to the entity's box, never more than the true one; 0 inside
    };
    /// The entities whose boxes are nearest to a point, at most `count`, ascending by distance.
    std::vector<Near> nearest(KcDbObjectId block, KcGePoint2d point, size_t count);

    /// Forgets what is known of a block; the next query finds it out anew. For changes that nothing tells of.
    void forget(KcDbObjectId block);

private:
    struct Block;

    void objectCreated(const KcDbObject& object) override { note(object); }
    void objectModified(const KcDbObject& object) override { note(object); }
    void objectErased(const KcDbObject& object, bool) override { note(object); }
    void note(const KcDbObject& object);
    Block* upToDate(KcDbObjectId block);
    void build(Block& block);
    void refresh(Block& block);
    bool drawsChanged(KcDbObjectId definition, std::unordered_map<KcDbObjectId, bool>& known, int depth) const;

    KcDbDatabase& m_database;
    std::unordered_map<KcDbObjectId, std::unique_ptr<Block>> m_blocks;
};
