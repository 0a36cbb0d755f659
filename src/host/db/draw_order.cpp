// The table of drawing order: pairs of an entity and the handle that it is sorted by.

#include "db/draw_order.h"

#include "db/block_table_record.h"
#include "db/database.h"
#include "db/dictionary.h"
#include "db/open.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

KCRX_DEFINE(KcDbSortentsTable, KcDbObject, "AcDbSortentsTable")

namespace {

using Places = std::unordered_map<KcDbObjectId, KcDbHandle>;

const QString kKey = QStringLiteral("ACAD_SORTENTS");

KcDbObjectId tableOf(KcDbObjectId block)
{
    const KcDbRead<KcDbBlockTableRecord> record(block);
    const KcDbRead<KcDbDictionary> extensions(record ? record->extensionDictionary() : KcDbObjectId());
    return extensions ? extensions->getAt(kKey) : KcDbObjectId();
}

Places placesOf(KcDbObjectId block)
{
    Places places;
    if (const KcDbRead<KcDbSortentsTable> table(tableOf(block)); table)
        for (const KcDbSortentsTable::Entry& entry : table->data().entries)
            places[entry.entity] = entry.place;
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

Kcad::ErrorStatus kcdbSetDrawingOrder(KcDbObjectId block, const std::vector<KcDbObjectId>& order)
{
    std::vector<KcDbObjectId> all;
    if (const KcDbRead<KcDbBlockTableRecord> record(block); record)
        all = kcdbInDrawingOrder(*record);
    const std::unordered_set<KcDbObjectId> given(order.begin(), order.end());
    const size_t before = all.size();
    std::erase_if(all, [&](KcDbObjectId id) { return given.contains(id); });
    if (given.size() != order.size() || before - all.size() != order.size())
        return Kcad::eInvalidInput;
    all.insert(all.end(), order.begin(), order.end());

    // The entities' own handles, ascending, are the places; who has its own needs no entry.
    std::vector<KcDbHandle> places;
    places.reserve(all.size());
    for (const KcDbObjectId id : all)
        places.push_back(id.handle());
    std::sort(places.begin(), places.end());
    std::vector<KcDbSortentsTable::Entry> entries;
    for (size_t i = 0; i < all.size(); ++i)
        if (places[i] != all[i].handle())
            entries.push_back({ all[i], places[i] });

    KcDbObjectId id = tableOf(block);
    if (!KcDbRead<KcDbSortentsTable>(id)) {
        if (entries.empty())
            return Kcad::eOk;
        const KcDbObjectId extensions = KcDbWrite<KcDbObject>(block)->createExtensionDictionary();
        auto table = std::make_unique<KcDbSortentsTable>();
        table->data().block = block;
        id = KcDbWrite<KcDbDictionary>(extensions)->setAt(kKey, std::move(table));
    }
    KcDbWrite<KcDbSortentsTable>(id)->data().entries = std::move(entries);
    return Kcad::eOk;
}
