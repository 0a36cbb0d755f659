// Where the symbols of a row along a path stand.
#pragma once

#include "ge/curve.h"

#include <vector>

/// How a path is divided.
struct ArrayDivision {
    bool byDistance = true; ///< a fixed spacing; else a number of positions at equal steps
    double spacing = 0.0; ///< drawing units, above 0
    int count = 0; ///< positions along the whole path, both ends included; 1: its start alone
    bool fromEnd = false; ///< of a fixed spacing: measured from the path's end
};

/// A place on the path. The angle is that of the path's own direction, radians counter-clockwise from the X
/// axis, also when distances are measured from the end.
struct ArrayPlace {
    KcGePoint3d point;
    double angle = 0.0;
};

/// The step from one position to the next; the spacing itself, or the path's length divided. A single
/// position has no step: 0.
double arrayStep(double length, const ArrayDivision& division);
/// The places in their order. They end with the path, or where one falls on an earlier one: that is where a
/// closed path has come round. A last place that misses the path's end by no more than the tolerance stands
/// on it. Empty for a path that has no length to divide.
std::vector<ArrayPlace> arrayPlaces(const KcGeCurve3d& path, const ArrayDivision& division);
