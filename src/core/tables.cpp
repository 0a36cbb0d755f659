// Cell texts and column widths of statistics tables.

#include "core/tables.h"

#include "core/plain_text.h"

bool SetTableTextString(int row, int column, const QString& text, KcDbTable& table)
{
    return table.setTextString(row, column, multilineContents(text)) == Kcad::eOk;
}

int UpdateTableHeaderWidth(KcDbTable& table, double columnWidth)
{
    int widened = 0;
    for (int column = 0; column < table.numColumns(); ++column)
        if (table.columnWidth(column) < columnWidth && table.setColumnWidth(column, columnWidth) == Kcad::eOk)
            ++widened;
    return widened;
}
