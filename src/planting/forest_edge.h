// The edge of a coniferous forest: spikes along the arcs of a cloud outline.
#pragma once

#include "planting/cloud.h"

/// The corners of the zigzag, plan coordinates: along each arc a foot every tenth of its radius and a spike a
/// fifth of the radius long half-way to the next foot, pointing away from the arc's centre; every fourth
/// spike but the first is twice as long. Feet are counted from the arc's start, counter-clockwise; an arc
/// that the outline runs through the other way gives its corners from its far end back. Straight segments
/// give none. Empty also when there would be more than `kMostForestCorners`.
std::vector<KcGePoint2d> forestEdge(const CloudOutline& outline);
inline constexpr size_t kMostForestCorners = 2'000'000;
