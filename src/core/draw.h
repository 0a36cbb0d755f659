// Putting things into a drawing: entities, definitions by name, groups. A null database is the current
// drawing; without one nothing is drawn, and ids are null.
#pragma once

#include "db/entity.h"

#include <memory>
#include <vector>

/// Takes an entity into model space and gives its id. Tables come with their graphics. An entity without a
/// layer goes to the drawing's current one. `close` says that nobody goes on with the open entity; entities
/// are always closed here, it has no effect.
KcDbObjectId
AppendToModelSpace(std::unique_ptr<KcDbEntity> entity, bool close = true, KcDbDatabase* database = nullptr);

/// The definition of a block, by its name without regard to case. False when there is none.
bool GetBlockTableRecordId(const QString& name, KcDbObjectId& id, KcDbDatabase* database = nullptr);

// Into model space of the current drawing, with its current layer, colour and line type. World coordinates.

KcDbObjectId NewCircle(KcGePoint3d centre, double radius);
/// A lightweight polyline at the height of the first point; null for less than two points.
KcDbObjectId DrawPolyline(const std::vector<KcGePoint3d>& points, bool closed = false);
/// A single-line text in the product's text style, its base line beginning at the point.
bool DrawText(const QString& text, KcGePoint3d point, double height, KcDbObjectId& id);
/// A wipeout over the parallelogram with three corners in sequence. False when they have no area.
bool DrawWipeout(KcGePoint3d first, KcGePoint3d second, KcGePoint3d third, KcDbObjectId& id);

/// Makes a group of entities of one drawing; "*U" makes an anonymous one. Null when nothing can be opened.
KcDbObjectId AddGroup(const std::vector<KcDbObjectId>& ids, const QString& name);
KcDbObjectId CreateGroup(const QString& name, const std::vector<KcDbObjectId>& ids);
