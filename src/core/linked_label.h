// Drawing a label with its leader: the one body behind the labels of trees, tree arrays, areas and lengths.
#pragma once

#include "db/object_id.h"
#include "ge/point.h"

#include <QString>

#include <vector>

/// A label before it is drawn. Points are world coordinates; left, right, up and down are those of the user
/// coordinate system.
struct LinkedLabel {
    std::vector<KcGePoint3d> leader; ///< up to where the shoulder begins; at least one point
    bool rightward = true; ///< the side to which the shoulder runs
    double shoulder = 0.0; ///< its least length; it is longer where the text needs it
    QString text; ///< above the shoulder
    QString secondText; ///< below it; empty: none
    QString code; ///< value of the tag SFEntityType of the main text
    int dimensionType = 0; ///< how the places are marked, as in `setDimtype`; kept with tree labels
    std::vector<KcGePoint3d> places; ///< what is marked
    std::vector<KcDbObjectId> counted; ///< what the label is linked to
    QString plantLayer; ///< the layer of what is labelled, from which the label's own is found
};

/// Width of the main text as it will be drawn, drawing units; what decides how long the shoulder must be.
double labelTextWidth(const QString& text);

/// Draws a label into model space of the current drawing: leader without arrow head and with a level
/// shoulder, texts of the set height over and under it in the product's text style, masked where the drawing
/// wants it, marks, all tagged, on the label layer, in one anonymous group (unless bDimGrouping is off) and
/// linked. The entities drawn, the main text first and the leader second; none when there is no drawing or no
/// leader point.
std::vector<KcDbObjectId> drawLinkedLabel(const LinkedLabel& label);

/// Draws marks at places of trees and gives their ids: dimension type 0 none, 1 a dot at the last one, 2 dots
/// at all, 3 circles at all, 4 circles with dots. `size` is the height of the label's text; `count` says how
/// many of the places are trees.
std::vector<KcDbObjectId>
setDimtype(const std::vector<KcGePoint3d>& centres, double size, int count, int dimensionType);

/// Draws a label along the path of a leader as the user drew it, the start first. A last segment that is
/// level, or nearly so when bAutoAlign is on, is the shoulder; otherwise the shoulder begins at the last
/// point and goes on to the same side. Places are marked for tree labels only. The entities drawn, as above.
/// The ids are not used.
std::vector<KcDbObjectId> Dimensions(
    const std::vector<KcGePoint3d>& points, const std::vector<KcGePoint3d>& leaderPoints,
    const QString& label, const std::vector<KcDbObjectId>& linked, const QString& secondText,
    const QString& code, KcDbObjectId reserved1, const QString& layer, KcDbObjectId reserved2);
