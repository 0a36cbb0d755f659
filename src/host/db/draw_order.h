// What lies above what: the drawing order of a block's entities.
#pragma once

#include "db/object_id.h"

#include <vector>

class KcDbBlockTableRecord;

/// The entities of a block, those drawn first in front. They are drawn as they are listed, unless the drawing
/// has a table of drawing order for the block: it gives some entities the place of another handle, and then
/// all are drawn in the order of their handles.
std::vector<KcDbObjectId> kcdbInDrawingOrder(const KcDbBlockTableRecord& block);
/// Sorts some of a block's entities, which come as the block lists them, in the same way. False when the
/// block has no table, so that nothing was to be done.
bool kcdbSortForDrawing(KcDbObjectId block, std::vector<KcDbObjectId>& ids);
