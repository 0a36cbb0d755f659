// Curves converted and cut for the commands.
#pragma once

#include "db/polyline.h"

/// By this much, in drawing units, arcs may leave the ellipse or spline that they stand for.
inline constexpr double kArcsForCurve = 1e2 * KcGeContext::gTol.equalPoint;
/// By this much chords may leave what they stand for.
inline constexpr double kChordsForCurve = 1e4 * KcGeContext::gTol.equalPoint;

/// A lightweight polyline along a curve of any kind, seen along the Z axis: vertices in world coordinates,
/// normal +Z, at the elevation of the curve's start. It belongs to no drawing and takes layer, colour and
/// line type from the curve; a polyline's widths stay behind. Closed where the curve is; with `close` also
/// where it is not. Arcs keep their bulges and ellipses and splines become arcs (`kArcsForCurve`); without
/// `keepArcs` all become chords
/// (`kChordsForCurve`). Null for curves without ends, and those that have no shape.
std::unique_ptr<KcDbPolyline> Curve2Polyline(const KcDbCurve& curve, bool close, bool keepArcs);

/// The parts of a curve between points, in its order; a closed curve falls into as many as there are points.
/// Points are taken to the nearest place of the curve; one further away than ends that are joined
/// (`KcGeContext::kJoinedEnds`) does not cut. Empty for curves without ends, and those that have no shape.
std::vector<std::unique_ptr<KcDbCurve>>
SplitCurve(const KcDbCurve& curve, const std::vector<KcGePoint3d>& points);
