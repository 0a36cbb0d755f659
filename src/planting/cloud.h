// Cloud outlines: closed polylines of arcs, the usual symbol of a group of trees.
#pragma once

#include "core/entity.h"
#include "ge/arc.h"
#include "ge/segment.h"

#include <optional>
#include <vector>

/// An outline as it is seen in the plan.
struct CloudOutline {
    /// In the outline's order and direction: clockwise arcs run clockwise. The last one leads back to the
    /// start.
    std::vector<KcGeSegment2d> segments;
    double elevation = 0.0;

    /// The arcs among all segments, or among those before the one that closes the outline.
    std::vector<KcGeCircArc2d> arcs(bool withClosing) const;
};

/// Asks for a cloud outline. Empty, having said so, for anything but a closed lightweight polyline in a level
/// plane with an arc; and when the user cancels.
std::optional<CloudOutline> askCloudOutline();
/// The outline of an entity; empty as above, but nothing is said.
std::optional<CloudOutline> cloudOutlineOf(KcDbObjectId id);

/// Replaces entities by an anonymous block whose base point is the given one, on the layer for a keyword of
/// the layer standard. The entities take what the layer has: they come to lie on layer "0" with the layer's
/// colour. Null when there is nothing to put into a block.
KcDbObjectId
groupOnLayer(const std::vector<KcDbObjectId>& entities, KcGePoint3d base, const QString& layerKey);
