// Which entities changed since the last query, and bringing a block's boxes up to date.

#include "db/spatial_index.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/raw_entity.h"
#include "db/table_style.h"
#include "db/tables.h"

#include <limits>

namespace {

// More changes than this part of the entities, and building anew is cheaper.
constexpr size_t kFewChanges = 8;
// Definitions nested deeper than this are damage; they count as changed.
constexpr int kDeepestDefinition = 64;
// An entity belongs to a block, an attribute or vertex to an entity, its dictionary to the attribute, …
constexpr int kLongestOwnership = 16;

KcGeExtents2d boxOf(const KcDbEntity& entity)
{
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    if (entity.isKindOf(KcDbXline::desc()) || entity.isKindOf(KcDbRay::desc()))
        return { { -kEndless, -kEndless }, { kEndless, kEndless } };
    const KcGeExtents3d box = entity.geomExtents();
    return box.isEmpty() ? KcGeExtents2d() : KcGeExtents2d { box.min.plan(), box.max.plan() };
}

/// The block that the entity draws; null when it draws none.
KcDbObjectId definitionOf(const KcDbEntity& entity)
{
    if (entity.isKindOf(KcDbBlockReference::desc()))
        return static_cast<const KcDbBlockReference&>(entity).blockTableRecord();
    if (entity.isKindOf(KcDbRawEntity::desc()))
        return static_cast<const KcDbRawEntity&>(entity).data().block;
    return {};
}

} // namespace

struct KcDbSpatialIndex::Block {
    // Positions in the block's list of entities are the numbers of their boxes: the list only grows, and whoever
    // makes it shrink says `forget`.
    std::shared_ptr<const std::vector<KcDbObjectId>> list;
    KcDbObjectId id;
    size_t known = 0; ///< positions examined so far
    KcDbBoxIndex boxes;
    std::vector<uint32_t> dependents; ///< positions of entities that draw other blocks
    std::unordered_set<const KcDbObjectStub*> changed;
    std::unordered_set<KcDbObjectId> changedDefinitions;
    /// Positions of the entities by id, made with the first change.
    std::unordered_map<const KcDbObjectStub*, uint32_t> positions;
    size_t positioned = 0;

    KcGeExtents2d measure(uint32_t position)
    {
        const KcDbRead<KcDbEntity> entity((*list)[position]);
        return entity && entity->ownerId() == id ? boxOf(*entity) : KcGeExtents2d();
    }
    void noteDependent(uint32_t position)
    {
        if (const KcDbRead<KcDbEntity> entity((*list)[position], true); entity && !definitionOf(*entity).isNull())
            dependents.push_back(position);
    }
    std::vector<KcDbObjectId> ids(const std::vector<uint32_t>& positions) const
    {
        std::vector<KcDbObjectId> result;
        result.reserve(positions.size());
        for (const uint32_t position : positions)
            result.push_back((*list)[position]);
        return result;
    }
};

KcDbSpatialIndex::KcDbSpatialIndex(KcDbDatabase& database)
    : m_database(database)
{
    m_database.addListener(this);
}

KcDbSpatialIndex::~KcDbSpatialIndex()
{
    m_database.removeListener(this);
}

void KcDbSpatialIndex::forget(KcDbObjectId block)
{
    m_blocks.erase(block);
}

void KcDbSpatialIndex::note(const KcDbObject& object)
{
    if (m_blocks.empty())
        return;
    // Styles say how large texts and tables are; they change rarely.
    if (object.isKindOf(KcDbTextStyleTableRecord::desc()) || object.isKindOf(KcDbTableStyle::desc())) {
        m_blocks.clear();
        return;
    }
    const KcDbObject* entity = &object;
    KcDbObjectId definition;
    if (object.isKindOf(KcDbBlockTableRecord::desc())) {
        definition = object.objectId();
    } else {
        for (int i = 0; i < kLongestOwnership && entity; ++i) {
            const KcDbObjectId owner = entity->ownerId();
            if (!owner.isValid())
                return;
            if (owner.stub()->object->isKindOf(KcDbBlockTableRecord::desc())) {
                definition = owner;
                break;
            }
            entity = owner.stub()->object;
        }
        if (definition.isNull())
            return;
    }
    for (auto it = m_blocks.begin(); it != m_blocks.end();) {
        Block& block = *it->second;
        block.changedDefinitions.insert(definition);
        // An entity that has left a block is noted there too: its owner says so when it is measured.
        block.changed.insert(entity->objectId().stub());
        if (block.changed.size() > block.known / kFewChanges + 1000)
            it = m_blocks.erase(it);
        else
            ++it;
    }
}

bool KcDbSpatialIndex::drawsChanged(
    KcDbObjectId definition, std::unordered_map<KcDbObjectId, bool>& known, int depth) const
{
    if (const auto found = known.find(definition); found != known.end())
        return found->second;
    if (depth > kDeepestDefinition)
        return true;
    known[definition] = false; // a block that contains itself draws nothing more for it
    const KcDbRead<KcDbBlockTableRecord> record(definition);
    if (!record)
        return false;
    for (const KcDbObjectId id : *record) {
        const KcDbRead<KcDbEntity> entity(id);
        const KcDbObjectId nested = entity ? definitionOf(*entity) : KcDbObjectId();
        if (!nested.isNull() && drawsChanged(nested, known, depth + 1))
            return known[definition] = true;
    }
    return false;
}

KcDbSpatialIndex::Block* KcDbSpatialIndex::upToDate(KcDbObjectId id)
{
    std::unique_ptr<Block>& block = m_blocks[id];
    if (block) {
        refresh(*block);
        return block.get();
    }
    const KcDbRead<KcDbBlockTableRecord> record(id);
    if (!record) {
        m_blocks.erase(id);
        return nullptr;
    }
    block = std::make_unique<Block>();
    block->id = id;
    block->list = record->listed();
    build(*block);
    return block.get();
}

void KcDbSpatialIndex::build(Block& block)
{
    std::vector<KcGeExtents2d> boxes(block.list->size());
    for (uint32_t i = 0; i < boxes.size(); ++i) {
        boxes[i] = block.measure(i);
        block.noteDependent(i);
    }
    block.known = boxes.size();
    block.boxes.build(boxes);
}

void KcDbSpatialIndex::refresh(Block& block)
{
    if (!block.changed.empty()) {
        for (; block.positioned < block.known; ++block.positioned)
            block.positions[(*block.list)[block.positioned].stub()] = uint32_t(block.positioned);
        for (const KcDbObjectStub* stub : block.changed)
            if (const auto found = block.positions.find(stub); found != block.positions.end())
                block.boxes.set(found->second, block.measure(found->second));
        block.changed.clear();
    }
    if (!block.changedDefinitions.empty()) {
        std::unordered_map<KcDbObjectId, bool> known;
        for (const KcDbObjectId definition : block.changedDefinitions)
            if (definition != block.id)
                known[definition] = true;
        if (!known.empty())
            for (const uint32_t position : block.dependents)
                if (const KcDbRead<KcDbEntity> entity((*block.list)[position]);
                    entity && drawsChanged(definitionOf(*entity), known, 0))
                    block.boxes.set(position, block.measure(position));
        block.changedDefinitions.clear();
    }
    for (; block.known < block.list->size(); ++block.known) {
        block.boxes.set(uint32_t(block.known), block.measure(uint32_t(block.known)));
        block.noteDependent(uint32_t(block.known));
    }
}

std::vector<KcDbObjectId> KcDbSpatialIndex::crossing(KcDbObjectId block, const KcGeExtents2d& box)
{
    const Block* found = upToDate(block);
    return found ? found->ids(found->boxes.crossing(box)) : std::vector<KcDbObjectId>();
}

std::vector<KcDbObjectId> KcDbSpatialIndex::window(KcDbObjectId block, const KcGeExtents2d& box)
{
    const Block* found = upToDate(block);
    return found ? found->ids(found->boxes.within(box)) : std::vector<KcDbObjectId>();
}

std::vector<KcDbObjectId> KcDbSpatialIndex::fence(KcDbObjectId block, const std::vector<KcGePoint2d>& points)
{
    const Block* found = upToDate(block);
    return found ? found->ids(found->boxes.fence(points)) : std::vector<KcDbObjectId>();
}

std::vector<KcDbSpatialIndex::Near>
KcDbSpatialIndex::nearest(KcDbObjectId block, KcGePoint2d point, size_t count)
{
    std::vector<Near> result;
    if (const Block* found = upToDate(block))
        for (const KcDbBoxIndex::Near& near : found->boxes.nearest(point, count))
            result.push_back({ (*found->list)[near.number], near.distance });
    return result;
}
