// The tree quantity table: one row a plant with serial number, legend, name, count, unit and plant data.
#pragma once

#include "statistics/plant_selection.h"
#include "statistics/records.h"
#include "statistics/table_builder.h"

/// Name of the table in the layout document.
inline const QString treeTableName = QStringLiteral("乔灌数量统计表");

/// Appends a row for each record, in the order of the list, which is then cleared. Records with a count of 0
/// get no row. The unit is the record's note, 株 where it has none. Columns go by their names; of a table
/// that has none, the first three are serial number, legend and name where the headings do not say otherwise.
void fillTreeTable(KcDbTable& table, DList<CTreeData>& records, double rowHeight);

/// Counts a table anew, into an empty list: its rows keep their order and units, plants that are not counted
/// any more go, new ones come after the others. A table that does not show the names is counted as a new one
/// would be. False when the user stopped it.
bool recountTreeTable(const KcDbTable& table, const PlantSelection& plants, DList<CTreeData>& records);

/// Puts records in the place of a table's rows, and its form to the settings. The list is cleared; the table's
/// graphics are drawn anew by the caller.
void updateTreeTable(KcDbTable& table, DList<CTreeData>& records, const TableSettings& settings);
