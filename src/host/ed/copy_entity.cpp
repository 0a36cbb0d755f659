// Copying entities and what they own.

#include "ed/copy_entity.h"

#include "db/block_reference.h"
#include "db/block_table_record.h"
#include "db/database.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/raw_entity.h"
#include "db/table.h"
#include "db/text.h"

namespace {

template <class T> T* as(KcDbObject& object)
{
    return object.isKindOf(T::desc()) ? static_cast<T*>(&object) : nullptr;
}

// A copy that nothing else refers to.
std::unique_ptr<KcDbObject> detachedCopy(const KcDbObject& original)
{
    std::unique_ptr<KcDbObject> copy = original.copy();
    copy->setExtensionDictionary({});
    const std::vector<KcDbObjectId> reactors = copy->reactors();
    for (const KcDbObjectId reactor : reactors)
        copy->removePersistentReactor(reactor);
    // The texts of further columns are texts of their own: a copy that named them would share them.
    if (auto* text = as<KcDbMText>(*copy))
        text->forgetOtherColumns();
    if (auto* hatch = as<KcDbHatch>(*copy)) {
        hatch->data().associative = false;
        for (KcDbHatch::Loop& loop : hatch->data().loops)
            loop.sources.clear();
    }
    if (auto* leader = as<KcDbLeader>(*copy)) {
        leader->data().annotation = {};
        leader->data().annotationType = 3;
    }
    return copy;
}

void copyAttributes(KcDbObjectId to, const std::vector<KcDbObjectId>& attributes)
{
    KcDbWrite<KcDbBlockReference> reference(to);
    for (const KcDbObjectId id : attributes)
        if (const KcDbRead<KcDbAttribute> attribute(id); attribute)
            reference->appendAttribute(std::unique_ptr<KcDbAttribute>(
                static_cast<KcDbAttribute*>(detachedCopy(*attribute).release())));
}

void copyVertices(KcDbObjectId to, const std::vector<KcDbObjectId>& vertices)
{
    KcDbWrite<KcDb2dPolyline> polyline(to);
    KcDbDatabase& database = *to.database();
    for (const KcDbObjectId id : vertices)
        if (const KcDbRead<KcDbVertex> vertex(id); vertex)
            polyline->data().vertices.push_back(database.addObject(detachedCopy(*vertex), to));
    auto end = std::make_unique<KcDbSequenceEnd>();
    end->setLayer(polyline->layerId());
    polyline->data().sequenceEnd = database.addObject(std::move(end), to);
}

/// The drawn vertices in one object; as seen from above, where they lie in no plane.
std::unique_ptr<KcDbEntity> lightPolyline(const KcDb2dPolyline& polyline)
{
    const KcDb2dPolyline::Data& d = polyline.data();
    auto light = std::make_unique<KcDbPolyline>();
    for (const KcDbVertex::Data& v : polyline.drawnVertices())
        light->data().vertices.push_back({ v.position.x, v.position.y, v.bulge,
                                           v.startWidth < 0.0 ? d.startWidth : v.startWidth,
                                           v.endWidth < 0.0 ? d.endWidth : v.endWidth });
    if (!polyline.is3d() && !polyline.isMesh()) {
        light->data().elevation = d.elevation;
        light->data().thickness = d.thickness;
        light->data().normal = d.normal;
    }
    light->setClosed(polyline.isClosed());
    light->setPropertiesFrom(polyline);
    return light;
}

} // namespace

KcDbObjectId kcedCopyEntity(KcDbObjectId entity, const KcGeMatrix3d& transform, KcDbObjectId into)
{
    std::unique_ptr<KcDbEntity> copy;
    std::vector<KcDbObjectId> attributes, vertices;
    {
        const KcDbRead<KcDbEntity> original(entity);
        if (!original || original->isKindOf(KcDbRawEntity::desc()))
            return {};
        if (into.isNull())
            into = original->ownerId();
        copy.reset(static_cast<KcDbEntity*>(detachedCopy(*original).release()));
    }
    if (auto* reference = as<KcDbBlockReference>(*copy); reference && reference->data().array) {
        attributes = std::exchange(reference->data().array->attributes, {});
        reference->data().array->sequenceEnd = {};
    }
    if (auto* polyline = as<KcDb2dPolyline>(*copy)) {
        vertices = std::exchange(polyline->data().vertices, {});
        polyline->data().sequenceEnd = {};
    }

    const KcDbRead<KcDbBlockTableRecord> block(into);
    if (!block)
        return {};
    const KcDbObjectId id = block->appendEntity(std::move(copy));
    if (!attributes.empty())
        copyAttributes(id, attributes);
    if (!vertices.empty())
        copyVertices(id, vertices);
    KcDbWrite<KcDbEntity> placed(id);
    if (placed->transformBy(transform) != Kcad::eOk) {
        placed->erase();
        return {};
    }
    if (auto* table = as<KcDbTable>(*placed))
        table->recomputeTableBlock();
    return id;
}

std::unique_ptr<KcDbEntity> kcedDetachedCopy(KcDbObjectId id)
{
    const KcDbRead<KcDbEntity> entity(id);
    if (!entity)
        return {};
    if (entity->isKindOf(KcDb2dPolyline::desc()))
        return lightPolyline(static_cast<const KcDb2dPolyline&>(*entity));
    std::unique_ptr<KcDbEntity> copy(static_cast<KcDbEntity*>(entity->copy().release()));
    // The attributes are the drawing's own, and would move with the copy.
    if (copy->isKindOf(KcDbBlockReference::desc()))
        if (auto& array = static_cast<KcDbBlockReference&>(*copy).data().array; array)
            array->attributes.clear();
    return copy;
}
