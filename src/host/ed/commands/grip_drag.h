// Dragging selected entities by their grips.
#pragma once

#include "db/object_id.h"
#include "ge/point.h"

#include <vector>

class KcApDocument;

/// The grip of that number of an entity; see `kcedGripPoints`.
struct KcEdGrip {
    KcDbObjectId entity;
    size_t index = 0;

    friend bool operator==(const KcEdGrip& a, const KcEdGrip& b)
    {
        return a.entity == b.entity && a.index == b.index;
    }
};

/// Asks where the point that is held shall go, world coordinates, showing what would become of the entities
/// whose grips go as far, and moves them: one undo step. Enter goes on to moving, turning, scaling and
/// mirroring the whole selection about that point; the keyword Copy leaves the originals and asks again until
/// Enter. Entities on locked layers stay, and that is said; a cancel changes nothing. For when no command
/// runs.
void kcedDragGrips(KcApDocument& document, const std::vector<KcEdGrip>& grips, KcGePoint3d from);
