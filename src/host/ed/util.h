// Small services for commands: printing, polar points, distances.
#pragma once

#include "ge/point.h"

#include <QString>

/// Prints on the command line in the manner of printf, in the C locale: %s takes UTF-8, %ls what
/// `QString::utf16` gives.
void kcutPrintf(const char* format, ...);
/// Prints a text as it is.
void kcutPrintf(const QString& text);

/// The point at a distance from another in a direction, radians counter-clockwise from the X axis; UCS in,
/// UCS out.
KcGePoint3d kcutPolar(KcGePoint3d point, double angle, double distance);
double kcutDistance(KcGePoint3d p, KcGePoint3d q);
