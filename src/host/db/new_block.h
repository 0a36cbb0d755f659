// Making block definitions.
#pragma once

#include "db/block_table_record.h"

#include <QString>

/// Adds an empty block definition with its begin and end marks. A name of an asterisk and letters ("*U",
/// "*T") makes an anonymous one, numbered above every block of that kind that the drawing ever had, erased
/// ones included, so that undo never meets its name taken. Null when another block has the name, or it is
/// empty.
KcDbObjectId kcdbNewBlock(KcDbDatabase& drawing, const QString& name);
