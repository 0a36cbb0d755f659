// Drawing entities that are kept as the file holds them, kind by kind, from their groups.
#pragma once

#include "db/group_values.h"
#include "db/raw_entity.h"

class KcGiWorldDraw;

/// Lines, arrows and the measured text of a dimension whose block is missing or empty.
void kcdbDrawDimension(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups);
/// Lines, landings, arrow heads and the text or block of a multileader.
void kcdbDrawMultileader(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups);
/// The parallel lines of a multiline with their joints and caps.
void kcdbDrawMultiline(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups);
/// The framed cells of a tolerance.
void kcdbDrawTolerance(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups);
/// The frame and the file's name of a picture, an underlay or an embedded document.
void kcdbDrawPicture(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups);

/// The name of a file fitted into a frame; the frame is a parallelogram from `origin`.
void kcdbDrawFrame(
    KcGiWorldDraw& draw, KcGePoint3d origin, KcGeVector3d right, KcGeVector3d up, const QString& name);
