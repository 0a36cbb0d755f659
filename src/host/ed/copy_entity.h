// Copies of entities beside their originals.
#pragma once

#include "db/entity.h"

/// Copies an entity with its attributes or vertices into a block of its drawing, null being the one that
/// holds it, and transforms the copy. Extended data is copied; the extension dictionary, reactors and the
/// link of a hatch to its boundary stay with the original. Null when the entity cannot be opened or its kind
/// cannot be transformed.
KcDbObjectId kcedCopyEntity(KcDbObjectId entity, const KcGeMatrix3d& transform, KcDbObjectId into = {});

/// A copy in no drawing that can be changed without touching anything of one: what previews are made of. It
/// has no attributes. Of a polyline whose vertices are objects of the drawing it is a light one that looks
/// the same from above. Null when the entity cannot be opened.
std::unique_ptr<KcDbEntity> kcedDetachedCopy(KcDbObjectId entity);
