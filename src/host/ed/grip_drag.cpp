// The preview and the result come from the same function.

#include "ed/grip_drag.h"

#include "db/tables.h"
#include "ed/console.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"
#include "ed/grips.h"
#include "ed/jig.h"

#include <unordered_set>

namespace {

bool isOnLockedLayer(KcDbObjectId id)
{
    const KcDbRead<KcDbEntity> entity(id);
    if (!entity)
        return true;
    const KcDbRead<KcDbLayerTableRecord> layer(entity->layerId());
    return layer && layer->isLocked();
}

/// An entity and those of its grips that move.
struct Held {
    KcDbObjectId id;
    std::vector<size_t> indices;
};

/// Every grip from where it is now; the others stay where they were.
bool moveGrips(KcDbEntity& entity, const Held& held, KcGePoint3d from, KcGePoint3d to)
{
    const std::vector<KcGePoint3d> before = kcedGripPoints(entity);
    bool done = true;
    for (const size_t index : held.indices) {
        if (index >= before.size())
            return false;
        // What is held itself goes to the very point.
        const KcGePoint3d goal = before[index].isEqualTo(from) ? to : before[index] + (to - from);
        done = kcedMoveGrip(entity, index, goal) == Kcad::eOk && done;
    }
    return done;
}

} // namespace

void kcedDragGrips(KcApDocument& document, const std::vector<KcEdGrip>& grips, KcGePoint3d from)
{
    KcDbDatabase& database = document.database();
    std::vector<Held> moved;
    std::unordered_set<KcDbObjectId> locked;
    for (const KcEdGrip& grip : grips) {
        const auto known
            = std::find_if(moved.begin(), moved.end(), [&](const Held& h) { return h.id == grip.entity; });
        if (known != moved.end())
            known->indices.push_back(grip.index);
        else if (isOnLockedLayer(grip.entity))
            locked.insert(grip.entity);
        else
            moved.push_back({ grip.entity, { grip.index } });
    }
    if (!locked.empty())
        kcedSay(QStringLiteral("%1 on a locked layer").arg(locked.size()));
    if (moved.empty())
        return;

    const KcGeMatrix3d ucs = database.ucsToWorld();
    KcEdDrag drag;
    drag.prompt = QStringLiteral("\nSpecify the place of the grip: ");
    KcGePoint3d base = from;
    if (moved.size() == 1 && moved.front().indices.size() == 1)
        if (const KcDbRead<KcDbEntity> entity(moved.front().id); entity)
            base = kcedGripBase(*entity, moved.front().indices.front()).value_or(from);
    drag.base = ucs.inverse() * base;
    document.lastPoint = *drag.base; // "@3,0" goes from where the grip was
    drag.preview = [&](KcGePoint3d cursor) {
        KcEdPreview preview;
        for (const Held& held : moved)
            if (auto copy = kcedDetachedCopy(held.id); copy && moveGrips(*copy, held, from, ucs * cursor))
                preview.push_back(std::move(copy));
        return preview;
    };
    const KcEdDragged to = kcedDrag(drag);
    if (to.status != KcEdDragged::Status::Normal)
        return;
    const KcApUndoStep step(database, QStringLiteral("GRIP"));
    size_t refused = 0;
    for (const Held& held : moved)
        if (KcDbWrite<KcDbEntity> entity(held.id); !entity || !moveGrips(*entity, held, from, ucs * to.point))
            ++refused;
    if (refused > 0)
        kcedSay(QStringLiteral("%1 could not be changed that way").arg(refused));
}
