// Entities in words: their values as JSON, for inspection and for tests.
#pragma once

#include "db/entity.h"

#include <QJsonObject>

/// Handle, type, layer, colour, owner, the values of the entity's kind (object coordinates as the file holds
/// them, angles in radians), its texts, attributes and tags.
QJsonObject kcedDumpEntity(const KcDbEntity& entity);
