// How the parts of a label's text are put together.
#pragma once

#include <QString>

/// Puts a number with its unit into the form of the label style: 0 "(4株)", 1 " 4株", 2 "-4株"; others leave
/// it as it is. The label is the name followed by it.
void SetDimStyle(QString& text, int style);
/// A count with its unit in that form; the unit by its index: 0 none, 1 "株", 2 "丛".
QString SetTreeDim(int count, int style, int unit);
/// The unit of areas by its index: 0 "m²", 1 none, 2 "m2", 3 "M2"; empty for any other.
QString SetAreaDim(int unit);
