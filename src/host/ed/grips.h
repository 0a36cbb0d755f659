// The points by which a selected entity can be taken hold of, and what dragging one of them does.
#pragma once

#include "db/entity.h"

/// In world coordinates: ends, middles, centres, vertices, quadrants, insertion points. Of an entity with
/// very many vertices only the first ones.
std::vector<KcGePoint3d> kcedGripPoints(const KcDbEntity& entity);

/// From where a typed distance counts when that grip is dragged, world coordinates: the centre for a grip
/// that changes a radius, else the grip itself. Nothing when there is no such grip.
std::optional<KcGePoint3d> kcedGripBase(const KcDbEntity& entity, size_t index);

/// What the entity becomes when the grip of that number is dragged to a point, world coordinates: ends and
/// vertices go there and the rest stays; a middle or centre moves the whole; a quadrant changes the radius;
/// the middle of a polyline's or arc's piece goes there and its ends stay. eInvalidInput when there is no
/// such grip or the entity cannot be so; it is unchanged then.
Kcad::ErrorStatus kcedMoveGrip(KcDbEntity& entity, size_t index, KcGePoint3d to);
