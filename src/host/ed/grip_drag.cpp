// The preview and the result come from the same function.

#include "ed/grip_drag.h"

#include "db/tables.h"
#include "ed/console.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"
#include "ed/grips.h"
#include "ed/jig.h"

namespace {

bool isOnLockedLayer(KcDbObjectId id)
{
    const KcDbRead<KcDbEntity> entity(id);
    if (!entity)
        return true;
    const KcDbRead<KcDbLayerTableRecord> layer(entity->layerId());
    return layer && layer->isLocked();
}

} // namespace

void kcedDragGrips(KcApDocument& document, const std::vector<KcEdGrip>& grips, KcGePoint3d from)
{
    KcDbDatabase& database = document.database();
    std::vector<KcEdGrip> moved;
    for (const KcEdGrip& grip : grips)
        if (!isOnLockedLayer(grip.entity))
            moved.push_back(grip);
    if (moved.size() < grips.size())
        kcedSay(QStringLiteral("%1 on a locked layer").arg(grips.size() - moved.size()));
    if (moved.empty())
        return;

    const KcGeMatrix3d ucs = database.ucsToWorld();
    KcEdDrag drag;
    drag.prompt = QStringLiteral("\nSpecify the place of the grip: ");
    drag.base = ucs.inverse() * from;
    drag.preview = [&](KcGePoint3d cursor) {
        KcEdPreview preview;
        for (const KcEdGrip& grip : moved)
            if (auto copy = kcedDetachedCopy(grip.entity);
                copy && kcedMoveGrip(*copy, grip.index, ucs * cursor) == Kcad::eOk)
                preview.push_back(std::move(copy));
        return preview;
    };
    const KcEdDragged to = kcedDrag(drag);
    if (to.status != KcEdDragged::Status::Normal)
        return;
    const KcApUndoStep step(database, QStringLiteral("GRIP"));
    size_t refused = 0;
    for (const KcEdGrip& grip : moved)
        if (KcDbWrite<KcDbEntity> entity(grip.entity);
            !entity || kcedMoveGrip(*entity, grip.index, ucs * to.point) != Kcad::eOk)
            ++refused;
    if (refused > 0)
        kcedSay(QStringLiteral("%1 could not be changed that way").arg(refused));
}
