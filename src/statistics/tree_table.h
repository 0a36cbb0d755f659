// The tree quantity table: one row a plant with serial number, legend, name, count, unit and plant data.
#pragma once

#include "statistics/plant_selection.h"
#include "statistics/records.h"
#include "statistics/table_builder.h"

/// Name of the table in the layout document.
inline const QString treeTableName = QStringLiteral("乔灌数量统计表");

/// Fixed columns of the table; the others go by their names.
enum TreeTableColumn { kSerialColumn = 0, kLegendColumn = 1, kNameColumn = 2, kFirstDataColumn = 3 };

/// Appends a row for each record, in the order of the list, which is then cleared. Records with a count of 0
/// get no row. The unit is the record's note, 株 where it has none.
void fillTreeTable(KcDbTable& table, DList<CTreeData>& records, double rowHeight);

/// Counts a table anew: its rows keep their order and units, plants that are not counted any more go, new
/// ones come after the others. The table must be open for writing; its graphics are drawn anew by the caller.
void updateTreeTable(KcDbTable& table, const PlantSelection& plants, const TableSettings& settings);
