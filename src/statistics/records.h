// What the counting commands gather before they fill a table: one record for each plant or ground cover name.
#pragma once

#include "db/object_id.h"
#include "statistics/list.h"

#include <QStringList>

/// One row of a tree quantity table.
struct CTreeData {
    QString name; ///< block name of the symbol, or the name read from a label
    KcDbObjectId block; ///< a reference that shows the plant, or the definition of that name; may be null
    int count = 0;
    int order = 0; ///< 1-based position in which the record was first made
    QString note;
};

/// One row of an area table.
struct CAreaData {
    QString name;
    double area = 0; ///< in the drawing's units squared
    int count = 0; ///< number of areas summed
    int order = 0; ///< 1-based position in which the record was first made
    QString note;
};

/// Sorts ascending by count; records of equal count keep their order.
void sortByCount(DList<CTreeData>& records);

/// Sorts by the place of the name in a list of names; names that are not in it come last and keep their
/// order.
void sortByNames(DList<CAreaData>& records, const QStringList& names);

/// Removes the records that have no block or a count below 1.
void removeEmptyRecords(DList<CTreeData>& records);

/// Removes the records that have no name or a count below 1.
void removeEmptyRecords(DList<CAreaData>& records);
