// The rows and columns that are selected: ascending lists of indices, and a mark on each selected row.

#include "controls/grid.h"

bool CSGrid::IsRowSelected(int index) const
{
    const CSGridRow* row = GetRow(index);
    return row && row->m_selected;
}

bool CSGrid::IsColSelected(int index) const
{
    return std::binary_search(m_selectedCols.begin(), m_selectedCols.end(), long(index));
}

void CSGrid::SelectRow(int index, int select)
{
    CSGridRow* row = GetRow(index);
    if (!row)
        return;
    if (!select) {
        if (row->m_selected) {
            row->m_selected = false;
            m_selectedRows.erase(std::lower_bound(m_selectedRows.begin(), m_selectedRows.end(), index));
            RefreshRow(*row);
        }
        return;
    }
    EndEdit();
    m_selectedCols.clear();
    if (!row->m_selected) {
        row->m_selected = true;
        m_selectedRows.insert(
            std::lower_bound(m_selectedRows.begin(), m_selectedRows.end(), index), long(index));
    }
    Repaint();
    EnsureVisible(index);
}

void CSGrid::SelectCol(int index, int select)
{
    if (!AssertValidCol(index))
        return;
    if (!select) {
        std::erase(m_selectedCols, long(index));
    } else {
        EndEdit();
        ClearRowSelection();
        if (!IsColSelected(index))
            m_selectedCols.insert(
                std::lower_bound(m_selectedCols.begin(), m_selectedCols.end(), index), long(index));
    }
    Repaint();
}

void CSGrid::SelectAll()
{
    EndEdit();
    m_selectedCols.clear();
    m_selectedRows.resize(size_t(GetRowCount()));
    for (size_t index = 0; index < m_selectedRows.size(); ++index) {
        m_selectedRows[index] = long(index);
        GetRow(int(index))->m_selected = true;
    }
    Repaint();
}

void CSGrid::ClearRowSelection()
{
    for (const long index : m_selectedRows)
        if (CSGridRow* row = GetRow(int(index)))
            row->m_selected = false;
    m_selectedRows.clear();
}

void CSGrid::UnSelect()
{
    ClearRowSelection();
    m_selectedCols.clear();
    Repaint();
}

bool CSGrid::IsSelectContinous() const
{
    const std::vector<long>& list = m_selectedCols.empty() ? m_selectedRows : m_selectedCols;
    return !list.empty() && list.back() - list.front() + 1 == long(list.size());
}

CSGridRow* CSGrid::GetSelectedRowPtr() const
{
    return m_selectedRows.empty() ? nullptr : GetRow(int(m_selectedRows.front()));
}

void CSGrid::SetSelectedItem(int index)
{
    m_selectedItem = index;
    m_cursor = index;
    NotifyAccessibility();
}

void CSGrid::ShiftSelection(int from, int by)
{
    for (auto index = std::lower_bound(m_selectedRows.begin(), m_selectedRows.end(), long(from));
         index != m_selectedRows.end(); ++index)
        *index += by;
}

// The selected item stays the row that it is when rows before it appear or go.
void CSGrid::MoveSelectedItem(int from, int by)
{
    if (m_selectedItem >= from)
        m_selectedItem += by;
    if (m_selectionAnchor >= from)
        m_selectionAnchor += by;
}

void CSGrid::ForgetRows(int first, int count)
{
    const auto from = std::lower_bound(m_selectedRows.begin(), m_selectedRows.end(), long(first));
    const auto to = std::lower_bound(from, m_selectedRows.end(), long(first) + count);
    for (auto index = from; index != to; ++index)
        GetRow(int(*index))->m_selected = false;
    if (m_editedCell) {
        const int edited = m_editedCell->GetRow()->GetIndex();
        if (edited >= first && edited < first + count)
            m_editedCell = nullptr;
    }
    for (auto index = m_selectedRows.erase(from, to); index != m_selectedRows.end(); ++index)
        *index -= count;
}

void CSGrid::SelectOnly(int row)
{
    UnSelect();
    SelectRow(row, 1);
    m_selectionAnchor = row;
}

// As in other lists: with Ctrl a row more or less, with Shift all from the one clicked before.
void CSGrid::ClickRow(int row, Qt::KeyboardModifiers modifiers)
{
    if (SingleSelect() || !(modifiers & (Qt::ControlModifier | Qt::ShiftModifier)))
        return SelectOnly(row);
    EndEdit();
    if (modifiers & Qt::ControlModifier) {
        SelectRow(row, !IsRowSelected(row));
        m_selectionAnchor = row;
        return;
    }
    UnSelect();
    const auto [first, last] = std::minmax(AssertValidRow(m_selectionAnchor) ? m_selectionAnchor : row, row);
    for (int index = first; index <= last; ++index) {
        GetRow(index)->m_selected = true;
        m_selectedRows.push_back(index);
    }
    SelectRow(row, 1);
}
