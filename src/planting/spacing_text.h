// How the spacing of a tree array is written in its label.
#pragma once

#include <QString>

/// "株距3000" for a spacing within 0.0001 of a whole number, "株距2999.50" for any other.
QString spacingText(double spacing);
