// Placing entities in front of others.
#pragma once

#include "db/object.h"

enum class KcEdDrawOrder { JustBehind, JustInFront };

/// Moves entities in the draw order of their block so that they lie just behind or just in front of another
/// one of it, keeping their own order; the drawing keeps this. eInvalidInput when one lies in another block.
Kcad::ErrorStatus
kcedDrawOrderInherit(KcDbObjectId of, const std::vector<KcDbObjectId>& ids, KcEdDrawOrder where);
