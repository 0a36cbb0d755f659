// The values of entities by group code, as selection filters compare them.
#pragma once

#include "db/entity.h"

/// The value that an entity has under a group code; nothing when it has none. Names are texts; points are in
/// world coordinates, angles in radians.
std::optional<KcDbTypedValue::Value> kcedFilterValue(const KcDbEntity& entity, int code);
/// The name of an entity's line type, "BYLAYER" where none is given.
QString kcedLinetypeName(const KcDbEntity& entity);
/// True for entities of a paper space layout.
bool kcedIsInPaperSpace(const KcDbEntity& entity);
