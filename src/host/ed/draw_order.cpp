// Draw order as commands ask for it.

#include "ed/draw_order.h"

#include "db/block_table_record.h"
#include "db/draw_order.h"
#include "ed/view.h"

#include <unordered_set>

Kcad::ErrorStatus
kcedDrawOrderInherit(KcDbObjectId of, const std::vector<KcDbObjectId>& ids, KcEdDrawOrder where)
{
    const KcDbRead<KcDbEntity> reference(of);
    if (!reference)
        return reference.status();
    const KcDbObjectId block = reference->ownerId();
    std::unordered_set<KcDbObjectId> moved(ids.begin(), ids.end());
    moved.erase(of);
    std::vector<KcDbObjectId> group, order = kcdbInDrawingOrder(*KcDbRead<KcDbBlockTableRecord>(block));
    const size_t before = order.size();
    std::copy_if(order.begin(), order.end(), std::back_inserter(group), [&](KcDbObjectId id) {
        return moved.contains(id);
    });
    std::erase_if(order, [&](KcDbObjectId id) { return moved.contains(id); });
    if (before - order.size() != moved.size())
        return Kcad::eInvalidInput;
    auto at = std::find(order.begin(), order.end(), of);
    if (where == KcEdDrawOrder::JustInFront)
        ++at;
    order.insert(at, group.begin(), group.end());
    const Kcad::ErrorStatus status = kcdbSetDrawingOrder(block, order);
    kcedUpdateDisplay();
    return status;
}
