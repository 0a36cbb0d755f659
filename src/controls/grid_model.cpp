// Columns, cells and plain rows of a grid.

#include "controls/grid_model.h"

#include "controls/grid.h"

void CSGridCol::SetName(const TString& name)
{
    m_name = name;
    if (m_grid)
        m_grid->RefreshHeader();
}

bool CSGridCol::IsReadOnly() const
{
    return (m_style & kReadOnly) != 0 || (m_grid && m_grid->IsReadOnly());
}

void CSGridCell::SetText(const TString& text)
{
    m_text = text;
    Refresh();
}

CSGrid* CSGridCell::GetGrid() const
{
    return m_row->GetGrid();
}

bool CSGridCell::IsReadOnly() const
{
    return (m_flags & kReadOnly) != 0 || m_column->IsReadOnly() || m_row->IsReadOnly();
}

void CSGridCell::Refresh()
{
    GetGrid()->RefreshCell(*this);
}

CSGridRow::CSGridRow(CSGrid* grid)
    : m_grid(grid)
{
    for (int index = 0; index < grid->GetColumnCount(); ++index)
        CSGridRow::InsertCol(index);
}

CSGridRow::~CSGridRow() = default;

void CSGridRow::InsertCol(int index)
{
    m_cells.Insert(index, std::make_unique<CSGridCell>(this, m_grid->GetCol(index)));
}

void CSGridRow::AppendCol()
{
    InsertCol(m_cells.GetCount());
}

void CSGridRow::DelCol(int index)
{
    m_cells.Take(index);
}

void CSGridRow::MoveCol(int from, int to)
{
    m_cells.Move(from, to);
}

void CSGridRow::Refresh()
{
    m_grid->RefreshRow(*this);
}

int CSGridRow::GetIndex() const
{
    return m_grid->IndexOf(this);
}

TString CSGridRow::GetItemText(int column) const
{
    const CSGridCell* cell = GetCell(column);
    return cell ? cell->GetText() : TString();
}

void CSGridRow::SetItemText(int column, const TString& text)
{
    if (CSGridCell* cell = GetCell(column))
        cell->SetText(text);
}

bool CSGridRow::IsReadOnly() const
{
    return (m_flags & kReadOnly) != 0 || m_grid->IsReadOnly();
}

bool CSGridRow::IsDelUnable() const
{
    return (m_flags & kNoDelete) != 0 || IsReadOnly();
}

void CSGridRow::CopyFrom(const CSGridRow& other)
{
    m_flags = other.m_flags;
    for (int index = 0; index < GetCellCount() && index < other.GetCellCount(); ++index) {
        GetCell(index)->m_text = other.GetCell(index)->m_text;
        GetCell(index)->m_flags = other.GetCell(index)->m_flags;
    }
    Refresh();
}
