// How the cells of a table look: what a cell says, else its row type in this table, else the table style.

#include "db/table.h"

namespace {

// The bits of the file's flags that tell which of the looks above them are given: once a look is set here
// they are right again, whatever the file said.
void trustLooks(KcDbTableCell& cell)
{
    constexpr int kLookBits = 0x3ffff;
    cell.otherOverrides &= ~kLookBits;
    cell.otherFlags &= ~0xf;
}

} // namespace

template <class Change> Kcad::ErrorStatus KcDbTable::changeLook(int row, int column, Change change)
{
    return changeCell(row, column, [&](KcDbTableCell& cell) {
        trustLooks(cell);
        change(cell);
    });
}

template <class Change> void KcDbTable::changeRows(int rowTypes, Change change)
{
    beforeChange();
    m_table.otherOverrides[0] = 0;
    for (const KcDbRowType type : { kDataRow, kTitleRow, kHeaderRow })
        if (rowTypes & type)
            change(m_table.rowLooks[KcDbTableStyle::indexOf(type)]);
}

void KcDbTable::setTableStyle(KcDbObjectId style)
{
    beforeChange();
    m_table.style = style;
}

const KcDbTableStyle::Data& KcDbTable::styleData() const
{
    static const KcDbTableStyle usual;
    const KcDbRead<KcDbTableStyle> style(m_table.style);
    return style ? style->data() : usual.data();
}

KcDbRowType KcDbTable::rowType(int row) const
{
    readRecord();
    if (row >= 0 && row < numRows() && m_table.rows[row].type)
        return *m_table.rows[row].type;
    const int title = isTitleSuppressed() ? 0 : 1;
    if (row < title)
        return kTitleRow;
    return row == title && !isHeaderSuppressed() ? kHeaderRow : kDataRow;
}

Kcad::ErrorStatus KcDbTable::setRowType(int row, std::optional<KcDbRowType> type)
{
    if (row < 0 || row >= numRows()
        || (type && *type != kDataRow && *type != kTitleRow && *type != kHeaderRow))
        return Kcad::eInvalidInput;
    beforeChange();
    m_table.rows[row].type = type;
    writeRecord();
    return Kcad::eOk;
}

bool KcDbTable::isTitleSuppressed() const
{
    return m_table.titleSuppressed.value_or(styleData().titleSuppressed);
}

bool KcDbTable::isHeaderSuppressed() const
{
    return m_table.headerSuppressed.value_or(styleData().headerSuppressed);
}

void KcDbTable::suppressTitle(bool suppressed)
{
    beforeChange();
    m_table.titleSuppressed = suppressed;
}

void KcDbTable::suppressHeader(bool suppressed)
{
    beforeChange();
    m_table.headerSuppressed = suppressed;
}

const KcDbTableData::RowLook& KcDbTable::rowLook(int row) const
{
    return m_table.rowLooks[KcDbTableStyle::indexOf(rowType(row))];
}

double KcDbTable::textHeight(int row, int column) const
{
    if (const auto& own = cell(row, column).look.textHeight)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.textHeight.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].textHeight);
}

KcDbObjectId KcDbTable::textStyle(int row, int column) const
{
    if (const auto& own = cell(row, column).look.textStyle)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.textStyle.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].textStyle);
}

int KcDbTable::alignment(int row, int column) const
{
    if (const auto& own = cell(row, column).look.alignment)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.alignment.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].alignment);
}

KcCmColor KcDbTable::contentColor(int row, int column) const
{
    if (const auto& own = cell(row, column).look.contentColor)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.contentColor.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].textColor);
}

std::optional<KcCmColor> KcDbTable::backgroundColor(int row, int column) const
{
    const KcDbTableLook& own = cell(row, column).look;
    const KcDbTableLook& rows = rowLook(row).look;
    const KcDbTableStyle::RowFormat& format = styleData().rows[KcDbTableStyle::indexOf(rowType(row))];
    const bool filled = own.filled.value_or(rows.filled.value_or(format.filled));
    if (!filled)
        return {};
    return own.backgroundColor.value_or(rows.backgroundColor.value_or(format.fillColor));
}

KcDbGridLook KcDbTable::gridLook(int row, int column, KcDbTableCell::Edge edge) const
{
    // Which row lies above and below on paper depends on the direction in which rows follow one another.
    const int above = isUpward() ? row + 1 : row - 1, below = isUpward() ? row - 1 : row + 1;
    const auto sameType
        = [&](int other) { return other >= 0 && other < numRows() && rowType(other) == rowType(row); };
    int line = 0;
    switch (edge) {
    case KcDbTableCell::kTop:
        line = sameType(above) ? 1 : 0;
        break;
    case KcDbTableCell::kBottom:
        line = sameType(below) ? 1 : 2;
        break;
    case KcDbTableCell::kLeft:
        line = column == 0 ? 3 : 4;
        break;
    case KcDbTableCell::kRight:
        line = column == numColumns() - 1 ? 5 : 4;
        break;
    }
    KcDbGridLook look = styleData().rows[KcDbTableStyle::indexOf(rowType(row))].grid[line];
    for (const KcDbGridOverride* own : { &rowLook(row).grid[line], &cell(row, column).edges[edge] }) {
        look.color = own->color.value_or(look.color);
        look.lineWeight = own->lineWeight.value_or(look.lineWeight);
        look.visible = own->visible.value_or(look.visible);
    }
    return look;
}

void KcDbTable::setTextHeight(double height, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.textHeight = height; });
}

void KcDbTable::setTextStyle(KcDbObjectId style, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.textStyle = style; });
}

void KcDbTable::setAlignment(int alignment, int rowTypes)
{
    changeRows(
        rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.alignment = std::clamp(alignment, 1, 9); });
}

void KcDbTable::setContentColor(const KcCmColor& color, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.contentColor = color; });
}

void KcDbTable::setBackgroundColor(std::optional<KcCmColor> color, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) {
        rows.look.filled = color.has_value();
        rows.look.backgroundColor = color;
    });
}

void KcDbTable::setGridLook(const KcDbGridLook& look, int gridLines, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) {
        for (size_t i = 0; i < rows.grid.size(); ++i)
            if (gridLines & (1 << i))
                rows.grid[i] = { look.color, look.lineWeight, look.visible };
    });
}

Kcad::ErrorStatus KcDbTable::setTextHeight(int row, int column, double height)
{
    if (!(height > 0.0))
        return Kcad::eInvalidInput;
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.textHeight = height; });
}

Kcad::ErrorStatus KcDbTable::setTextStyle(int row, int column, KcDbObjectId style)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.textStyle = style; });
}

Kcad::ErrorStatus KcDbTable::setAlignment(int row, int column, int alignment)
{
    if (alignment < 1 || alignment > 9)
        return Kcad::eInvalidInput;
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.alignment = alignment; });
}

Kcad::ErrorStatus KcDbTable::setContentColor(int row, int column, const KcCmColor& color)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.contentColor = color; });
}

Kcad::ErrorStatus KcDbTable::setBackgroundColor(int row, int column, std::optional<KcCmColor> color)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) {
        cell.look.filled = color.has_value();
        cell.look.backgroundColor = color;
    });
}

Kcad::ErrorStatus
KcDbTable::setGridLook(int row, int column, KcDbTableCell::Edge edge, const KcDbGridLook& look)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) {
        cell.edges[edge] = { look.color, look.lineWeight, look.visible };
    });
}

double KcDbTable::horizontalMargin() const
{
    return m_table.horizontalMargin.value_or(styleData().horizontalMargin);
}

double KcDbTable::verticalMargin() const
{
    return m_table.verticalMargin.value_or(styleData().verticalMargin);
}

void KcDbTable::setMargins(double horizontal, double vertical)
{
    beforeChange();
    m_table.horizontalMargin = horizontal;
    m_table.verticalMargin = vertical;
}
