// Small services for statistics tables. The names of a table's items are in table_info.h.
#pragma once

#include "core/table_info.h"
#include "db/table.h"

/// Sets the text of a cell; plain text, in which format codes are kept as the characters they are written
/// with. False outside the table.
bool SetTableTextString(int row, int column, const QString& text, KcDbTable& table);

/// Widens the columns that are narrower than a width, in drawing units; wider ones stay. The number widened.
int UpdateTableHeaderWidth(KcDbTable& table, double columnWidth);
