// The points by which a selected entity can be taken hold of.
#pragma once

#include "db/entity.h"

/// In world coordinates: ends, middles, centres, vertices, insertion points. Of an entity with very many
/// vertices only the first ones.
std::vector<KcGePoint3d> kcedGripPoints(const KcDbEntity& entity);
