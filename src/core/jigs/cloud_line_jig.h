// Drawing a cloud outline: the usual symbol of a group of trees.
#pragma once

#include "db/polyline.h"
#include "ed/jig.h"

/// The closed polyline of outward arcs, counter-clockwise, that follows the polygon through these points
/// (world coordinates): arcs of one length along it, as near to `chord` as it allows, at least three. Null
/// for less than three points, for a polygon without area, and where more than `kMostCloudArcs` arcs would be
/// needed.
std::unique_ptr<KcDbPolyline> cloudOutline(std::vector<KcGePoint3d> points, double chord);
inline constexpr int kMostCloudArcs = 20000;

class CCloudLineJig {
public:
    /// @param chord of the arcs, drawing units
    explicit CCloudLineJig(double chord)
        : m_chord(chord)
    {
    }
    /// Asks for the corners of the outline until Enter or the start point, and draws it in the current layer.
    /// Null when the user cancels.
    KcDbObjectId CreateCloudLine();

private:
    double m_chord;
};
