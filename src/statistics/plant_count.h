// Counting plants, from their symbols or from their labels, into records.
#pragma once

#include "db/database.h"
#include "statistics/plant_selection.h"
#include "statistics/records.h"

/// Counts block references by the name of their block. Records that are in the list already are counted on,
/// new names come after them in the order in which they are first seen. A list that was empty is sorted by
/// count at the end; from any other the records that nothing was counted for are removed. False when the user
/// stopped it: the records are of no use then.
bool countSymbols(const std::vector<KcDbObjectId>& references, DList<CTreeData>& records);

/// Counts what tree labels say, in the same way; labels of areas are left out. The records that were in the
/// list stay, even when nothing was counted for them.
bool countLabels(const std::vector<KcDbObjectId>& texts, DList<CTreeData>& records);

/// Counts a selection of either kind.
bool countPlants(const PlantSelection& plants, DList<CTreeData>& records);

/// The entries of one label as they are counted: each with its number, the first under its own name, further
/// ones under the species of the first and their own name.
struct LabelEntry {
    QString name;
    int count = 0;
};
std::vector<LabelEntry> entriesOfLabel(const QString& text);
