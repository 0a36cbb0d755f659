// What the tests of tables share: drawings with a table, and what a table's block holds.
#pragma once

#include "db/curves.h"
#include "db/database.h"
#include "db/table.h"

#include <gtest/gtest.h>

#include <memory>

namespace table_test {

/// A table of the given size with rows of 10 and columns of 40 units, in no drawing.
inline std::unique_ptr<KcDbTable> makeTable(int rows, int columns)
{
    auto table = std::make_unique<KcDbTable>();
    table->setRowHeight(10.0);
    table->setColumnWidth(40.0);
    table->setSize(rows, columns);
    return table;
}

inline KcDbObjectId addTable(KcDbDatabase& drawing, std::unique_ptr<KcDbTable> table)
{
    return KcDbTable::append(drawing.modelSpace(), std::move(table));
}

/// Ids of the entities of one class in the block that draws the table.
template <class T> std::vector<KcDbObjectId> drawn(KcDbObjectId table)
{
    std::vector<KcDbObjectId> result;
    const KcDbRead<KcDbTable> open(table);
    const KcDbRead<KcDbBlockTableRecord> block(open->blockTableRecord());
    if (block)
        for (KcDbObjectId id : *block)
            if (KcDbRead<T>(id))
                result.push_back(id);
    return result;
}

template <class T> size_t countDrawn(KcDbObjectId table)
{
    return drawn<T>(table).size();
}

} // namespace table_test
