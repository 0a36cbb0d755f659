// Object snaps: the points of the drawing that the cursor is drawn to.
#pragma once

#include "db/database.h"

/// Bits of the variable OSMODE.
enum KcEdSnapMode {
    kcedSnapEnd = 1,
    kcedSnapMiddle = 2,
    kcedSnapCenter = 4,
    kcedSnapNode = 8,
    kcedSnapQuadrant = 16,
    kcedSnapIntersection = 32,
    kcedSnapInsertion = 64,
    kcedSnapPerpendicular = 128,
    kcedSnapTangent = 256,
    kcedSnapNearest = 512,
    kcedSnapAll = 1023,
    kcedSnapSuppressed = 16384, ///< the modes stay, but nothing is drawn to
};

struct KcEdSnapRequest {
    KcGePoint3d cursor; ///< world coordinates
    double aperture = 0.0; ///< how far the cursor may be off, drawing units
    int modes = 0; ///< bits of `KcEdSnapMode`
    std::optional<KcGePoint3d>
        base; ///< of the prompt, world coordinates; what is perpendicular or tangent goes to it
};
struct KcEdSnap {
    KcGePoint3d point; ///< world coordinates
    KcEdSnapMode mode = kcedSnapEnd;
    KcDbObjectId entity; ///< of the current space
};
/// The best point near the cursor, seen along the Z axis: of points within the aperture the nearest; else the
/// centre or insertion point of what passes there, or where a perpendicular or tangent of it lies; else the
/// nearest point of it. What lies in block references counts. Invisible things do not. Where very much lies
/// under the cursor, what is drawn last is looked at. Nothing when there is nothing.
std::optional<KcEdSnap> kcedObjectSnap(const KcDbDatabase& database, const KcEdSnapRequest& request);

/// "END,MID": the modes of OSMODE; "NON" for none.
QString kcedSnapModeNames(int modes);
/// "Endpoint or Midpoint", for the user; "No snap" for none.
QString kcedSnapModesInWords(int modes);
/// Modes by the first three letters of their names or more, with commas; nothing when a word names none.
std::optional<int> kcedSnapModesOf(const QString& names);
