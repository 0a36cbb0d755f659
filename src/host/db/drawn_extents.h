// Boxes of entities that know no shorter way to theirs than to draw themselves.
#pragma once

#include "db/entity.h"

/// The box of everything that an entity draws, in world coordinates, texts by their ink and definitions by
/// their own boxes; empty when it draws nothing. Lines without ends and clips do not count.
KcGeExtents3d kcdbDrawnExtents(const KcDbEntity& entity);
