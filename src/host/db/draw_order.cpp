// The table of drawing order is kept as the file holds it: pairs of an entity and the handle that it is
// sorted by.

#include "db/draw_order.h"

#include "db/block_table_record.h"
#include "db/database.h"
#include "db/dictionary.h"
#include "db/open.h"

#include <algorithm>
#include <unordered_map>

namespace {

using Places = std::unordered_map<KcDbObjectId, KcDbHandle>;

Places placesOf(KcDbObjectId block)
{
    Places places;
    const KcDbRead<KcDbBlockTableRecord> record(block);
    const KcDbRead<KcDbDictionary> extensions(record ? record->extensionDictionary() : KcDbObjectId());
    if (!extensions || !block.database()->file())
        return places;
    const KcDbRead<KcDbObject> table(extensions->getAt(QStringLiteral("ACAD_SORTENTS")));
    if (!table)
        return places;
    constexpr int kEntity = 331, kPlace = 5;
    KcDbObjectId entity;
    for (const KcDbTypedValue& value : block.database()->file()->values(*table)) {
        if (value.code == kEntity) {
            entity = value.id();
        } else if (value.code == kPlace && !entity.isNull()) { // the first one is the table's own handle
            places[entity] = value.id().handle();
            entity = {};
        }
    }
    return places;
}

void sort(const Places& places, std::vector<KcDbObjectId>& ids)
{
    std::vector<std::pair<KcDbHandle, KcDbObjectId>> keyed;
    keyed.reserve(ids.size());
    for (const KcDbObjectId id : ids) {
        const auto place = places.find(id);
        keyed.emplace_back(place == places.end() ? id.handle() : place->second, id);
    }
    std::stable_sort(
        keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (size_t i = 0; i < ids.size(); ++i)
        ids[i] = keyed[i].second;
}

} // namespace

bool kcdbSortForDrawing(KcDbObjectId block, std::vector<KcDbObjectId>& ids)
{
    const Places places = placesOf(block);
    if (!places.empty())
        sort(places, ids);
    return !places.empty();
}

std::vector<KcDbObjectId> kcdbInDrawingOrder(const KcDbBlockTableRecord& block)
{
    std::vector<KcDbObjectId> ids = block.entityIds();
    kcdbSortForDrawing(block.objectId(), ids);
    return ids;
}
