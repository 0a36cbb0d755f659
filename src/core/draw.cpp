// Adding entities and groups to drawings.

#include "core/draw.h"

#include "core/drawing_config.h"
#include "db/block_table_record.h"
#include "db/dictionary.h"
#include "db/polyline.h"
#include "db/table.h"
#include "db/tables.h"
#include "db/text.h"
#include "db/wipeout.h"
#include "ed/documents.h"

namespace {

// A new entity of the current drawing with its current properties; null without a drawing.
KcDbObjectId draw(std::unique_ptr<KcDbEntity> entity)
{
    KcDbDatabase* const database = kcedCurrentDatabase();
    if (!database || !entity)
        return {};
    entity->setDatabaseDefaults(*database);
    return AppendToModelSpace(std::move(entity), true, database);
}

} // namespace

KcDbObjectId AppendToModelSpace(std::unique_ptr<KcDbEntity> entity, bool /*close*/, KcDbDatabase* database)
{
    if (!database)
        database = kcedCurrentDatabase();
    if (!database || !entity)
        return {};
    const KcDbRead<KcDbBlockTableRecord> space(database->modelSpace());
    if (!space)
        return {};
    if (entity->layerId().isNull())
        entity->setLayer(database->currentLayer());
    if (!entity->isKindOf(KcDbTable::desc()))
        return space->appendEntity(std::move(entity));
    std::unique_ptr<KcDbTable> table(static_cast<KcDbTable*>(entity.release()));
    return KcDbTable::append(database->modelSpace(), std::move(table));
}

bool GetBlockTableRecordId(const QString& name, KcDbObjectId& id, KcDbDatabase* database)
{
    if (!database)
        database = kcedCurrentDatabase();
    id = database ? kcdbFindRecord(database->blockTable(), name) : KcDbObjectId();
    return !id.isNull();
}

KcDbObjectId NewCircle(KcGePoint3d centre, double radius)
{
    return draw(std::make_unique<KcDbCircle>(centre, radius));
}

KcDbObjectId DrawPolyline(const std::vector<KcGePoint3d>& points, bool closed)
{
    if (points.size() < 2)
        return {};
    auto polyline = std::make_unique<KcDbPolyline>();
    for (const KcGePoint3d point : points)
        polyline->addVertex(point.plan());
    polyline->data().elevation = points.front().z;
    polyline->setClosed(closed);
    return draw(std::move(polyline));
}

bool DrawText(const QString& text, KcGePoint3d point, double height, KcDbObjectId& id)
{
    id = {};
    if (!(height > 0.0))
        return false;
    auto entity = std::make_unique<KcDbText>();
    KcDbText::Data& data = entity->data();
    data.position = data.alignment = point;
    data.height = height;
    data.text = text;
    data.style = GetVdlCurrentTextStyle();
    if (const KcDbRead<KcDbTextStyleTableRecord> style(data.style); style) {
        data.widthFactor = style->data().widthFactor;
        data.oblique = style->data().obliqueAngle;
    }
    id = draw(std::move(entity));
    return !id.isNull();
}

bool DrawWipeout(KcGePoint3d first, KcGePoint3d second, KcGePoint3d third, KcDbObjectId& id)
{
    id = {};
    const KcGeVector3d a = second - first, b = third - second;
    if (!(a.crossProduct(b).length() > KcGeContext::gTol.equalPoint * (a.length() + b.length())))
        return false;
    id = draw(KcDbWipeout::fromCorners({ first, second, third, first + b }));
    return !id.isNull();
}

KcDbObjectId AddGroup(const std::vector<KcDbObjectId>& ids, const QString& name)
{
    const auto first = std::find_if(ids.begin(), ids.end(), [](KcDbObjectId id) { return id.isResident(); });
    if (first == ids.end() || name.isEmpty())
        return {};
    KcDbDatabase* const database = first->database();
    std::vector<KcDbObjectId> members;
    std::copy_if(first, ids.end(), std::back_inserter(members), [&](KcDbObjectId id) {
        return id.database() == database && KcDbRead<KcDbEntity>(id);
    });
    return KcDbGroup::create(*database, name, members);
}

KcDbObjectId CreateGroup(const QString& name, const std::vector<KcDbObjectId>& ids)
{
    return AddGroup(ids, name);
}
