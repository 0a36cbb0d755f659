// Heads of the lines of leaders and dimensions.
#pragma once

#include "db/object_id.h"
#include "ge/point.h"

#include <QString>

class KcDbDatabase;
class KcGiWorldDraw;

struct KcDbArrowHead {
    QString name; ///< of the block that shows it, or one of the usual names; empty: filled arrow
    double size = 0.0; ///< drawing units
};

/// Draws a head whose tip points along `direction`, in the plane of `normal`. A block of that name is drawn
/// where the drawing has one (its tip at the origin, its line along negative x, for size 1); else the usual
/// shape of that name, and the filled arrow for names that are none. Returns how far from the tip the line
/// may end: shapes that are hollow or filled cover that much of it. Nothing is drawn for a size or direction
/// of no length.
double kcdbDrawArrowHead(
    KcGiWorldDraw& draw, KcDbDatabase* database, const KcDbArrowHead& head, KcGePoint3d tip,
    KcGeVector3d direction, KcGeVector3d normal);
