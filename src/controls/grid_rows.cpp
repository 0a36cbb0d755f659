// What changes the rows and columns of a grid.

#include "controls/grid.h"

#include "controls/cell_editors.h"
#include "controls/grid_parts.h"

namespace {
constexpr int kLeastWidth = 4;
}

CSGrid::CSGrid(int treeGrid, long)
    : m_treeGrid(treeGrid)
{
    OfferAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFrameShape(QFrame::StyledPanel);
    viewport()->setMouseTracking(true);
    viewport()->setBackgroundRole(QPalette::NoRole);
    m_header = std::make_unique<GridHeader>(*this);
    m_rowSelector = std::make_unique<GridRowSelector>(*this);
    m_corner = std::make_unique<GridCorner>(*this);
    CreateFont(m_textHeight);
    LayOutChildren();
}

CSGrid::~CSGrid()
{
    CloseEditor();
    // Deleting a parent deletes its children, which must not be asked any more.
    std::vector<CSGridRow*> owned = m_rows.all();
    std::erase_if(owned, [](const CSGridRow* row) { return row->IsChildRow() != 0; });
    for (CSGridRow* row : owned)
        delete row;
}

void CSGrid::Create(QWidget* parent, const QString& name, unsigned style)
{
    setParent(parent);
    setObjectName(name);
    SetStyle(style);
}

void CSGrid::Create(const QRect& place, unsigned style, QWidget* parent)
{
    setParent(parent);
    setGeometry(place);
    SetStyle(style);
}

void CSGrid::CreateFont(int textHeight)
{
    m_textHeight = std::max(textHeight, 1);
    QFont font = this->font();
    font.setPixelSize(m_textHeight);
    setFont(font);
    LayOutChildren();
    RecalcLayout();
}

void CSGrid::SetStyle(unsigned style)
{
    EndEdit();
    m_style = style;
    if (HasHeaderCtrl() != bool(m_header))
        m_header = HasHeaderCtrl() ? std::make_unique<GridHeader>(*this) : nullptr;
    if (HasRowSelector() != bool(m_rowSelector))
        m_rowSelector = HasRowSelector() ? std::make_unique<GridRowSelector>(*this) : nullptr;
    const bool corner = HasHeaderCtrl() && HasRowSelector();
    if (corner != bool(m_corner))
        m_corner = corner ? std::make_unique<GridCorner>(*this) : nullptr;
    LayOutChildren();
    RecalcLayout();
}

void CSGrid::SetStyleFlag(unsigned bits, int on)
{
    SetStyle(on ? m_style & ~bits : m_style | bits);
}

int CSGrid::GetLogicalRight() const
{
    const CSGridCol* last = GetCol(GetColumnCount() - 1);
    return last ? last->m_right : 0;
}

// Columns are inserted and moved by the widths that were set.
void CSGrid::TakeStretchBack()
{
    if (CSGridCol* last = GetCol(GetColumnCount() - 1))
        last->m_right -= m_stretch;
    m_stretch = 0;
}

void CSGrid::RenumberColumns()
{
    int left = 0;
    for (int index = 0; index < GetColumnCount(); ++index) {
        CSGridCol& column = *GetCol(index);
        const int width = column.GetWidth();
        column.m_index = index;
        column.m_left = left;
        column.m_right = left += width;
    }
}

void CSGrid::InsertColumn(int index, const TString& name, int width)
{
    InsertColumn(index, new CSGridCol(name), width);
}

void CSGrid::InsertColumn(int index, CSGridCol* given, int width)
{
    std::unique_ptr<CSGridCol> column(given ? given : new CSGridCol);
    if (index < 0 || index > GetColumnCount())
        return;
    EndEdit();
    TakeStretchBack();
    column->m_grid = this;
    column->m_left = 0;
    column->m_right = std::max(width, kLeastWidth);
    ++m_columnChanges;
    m_columns.Insert(index, std::move(column));
    RenumberColumns();
    for (m_cursor = 0; m_cursor < GetRowCount(); ++m_cursor)
        if (CSGridRow* row = GetRow(m_cursor); !row->IsChildRow())
            row->InsertCol(index);
    OnInsertCol(index);
    RecalcLayout();
}

void CSGrid::DeleteColumn(int index)
{
    if (!AssertValidCol(index))
        return;
    EndEdit();
    if (m_editedCell && m_editedCell->GetCol()->GetIndex() == index)
        m_editedCell = nullptr; // by what was told of the edit's end
    TakeStretchBack();
    for (m_cursor = 0; m_cursor < GetRowCount(); ++m_cursor)
        if (CSGridRow* row = GetRow(m_cursor); !row->IsChildRow())
            row->DelCol(index);
    ++m_columnChanges;
    m_columns.Take(index);
    RenumberColumns();
    std::erase(m_selectedCols, index);
    for (long& selected : m_selectedCols)
        selected -= selected > index ? 1 : 0;
    RecalcLayout();
}

void CSGrid::MoveCol(int from, int to)
{
    if (from == to || !AssertValidCol(from) || !AssertValidCol(to))
        return;
    EndEdit();
    TakeStretchBack();
    ++m_columnChanges;
    m_columns.Move(from, to);
    RenumberColumns();
    for (long& selected : m_selectedCols) {
        if (selected == from)
            selected = to;
        else if (from < to && selected > from && selected <= to)
            --selected;
        else if (to < from && selected >= to && selected < from)
            ++selected;
    }
    std::sort(m_selectedCols.begin(), m_selectedCols.end());
    for (m_cursor = 0; m_cursor < GetRowCount(); ++m_cursor)
        if (CSGridRow* row = GetRow(m_cursor); !row->IsChildRow())
            row->MoveCol(from, to);
    RecalcLayout();
}

void CSGrid::SetColWidth(int column, int width)
{
    if (!AssertValidCol(column))
        return;
    TakeStretchBack();
    GetCol(column)->m_right = GetCol(column)->m_left + std::max(width, kLeastWidth);
    RenumberColumns();
    RecalcLayout();
}

std::unique_ptr<CSGridRow> CSGrid::NewRow()
{
    if (m_treeGrid)
        return std::make_unique<CSGridTreeRow>(this);
    return std::make_unique<CSGridRow>(this);
}

CSGridTreeRow* CSGrid::GetTreeRow(int index) const
{
    CSGridRow* row = GetRow(index);
    return row && row->IsTreeRow() ? static_cast<CSGridTreeRow*>(row) : nullptr;
}

CSGridCell* CSGrid::GetCell(int row, int column) const
{
    const CSGridRow* found = GetRow(row);
    return found ? found->GetCell(column) : nullptr;
}

TString CSGrid::GetItemText(int row, int column) const
{
    const CSGridCell* cell = GetCell(row, column);
    return cell ? cell->GetText() : TString();
}

void CSGrid::SetItemText(int row, int column, const TString& text)
{
    if (CSGridCell* cell = GetCell(row, column))
        cell->SetText(text);
}

void CSGrid::AppendRow(CSGridRow* row)
{
    EndEdit();
    m_rows.insert(GetRowCount(), row ? row : NewRow().release());
    m_cursor = GetRowCount() - 1;
    RecalcLayout();
}

void CSGrid::InsertRow(int index, CSGridRow* row)
{
    std::unique_ptr<CSGridRow> inserted(row);
    if (index < 0 || index > GetRowCount())
        return;
    EndEdit();
    if (!inserted)
        inserted = NewRow();
    m_rows.insert(index, inserted.release());
    m_cursor = std::min(index, GetRowCount() - 1);
    ShiftSelection(index, 1);
    RecalcLayout();
}

void CSGrid::MoveRow(int from, int to)
{
    if (from == to || !AssertValidRow(from) || !AssertValidRow(to))
        return;
    EndEdit();
    m_rows.insert(to, m_rows.take(from));
    m_cursor = GetRowCount();
    // The marks follow the list, which keeps its indices.
    if (!m_selectedRows.empty()) {
        const auto [low, high] = std::minmax(from, to);
        for (int index = low; index <= high; ++index)
            GetRow(index)->m_selected
                = std::binary_search(m_selectedRows.begin(), m_selectedRows.end(), long(index));
    }
    Repaint();
}

void CSGrid::DeleteRow(int index)
{
    CSGridRow* row = GetRow(index);
    if (!row)
        return;
    EndEdit();
    if (CSGridTreeRow* treeRow = GetTreeRow(index); treeRow && treeRow->GetParentRow()) {
        CSGridTreeRow* parent = treeRow->GetParentRow();
        parent->DeleteChildRow(parent->GetChildIndex(treeRow));
    } else {
        // What is below must go, whoever would keep it unfolded.
        if (treeRow)
            HideRows(*treeRow, false);
        ForgetRows(index, 1);
        m_rows.take(index);
        delete row;
    }
    m_cursor = GetRowCount();
    RecalcLayout();
}

void CSGrid::DeleteAll()
{
    EndEdit();
    ForgetRows(0, GetRowCount());
    m_selectedCols.clear();
    const std::vector<CSGridRow*> rows = m_rows.all();
    std::vector<CSGridRow*> owned;
    for (CSGridRow* row : rows)
        if (!row->IsChildRow())
            owned.push_back(row);
    m_rows.clear();
    for (CSGridRow* row : owned)
        delete row;
    m_cursor = m_selectedItem = m_selectionAnchor = -1;
    RecalcLayout();
}

void CSGrid::DisplayRows(int index, const std::vector<CSGridRow*>& rows)
{
    const int cursor = m_cursor;
    m_rows.insert(index, rows);
    ShiftSelection(index, int(rows.size()));
    MoveSelectedItem(index, int(rows.size()));
    m_cursor = cursor;
    RecalcLayout();
}

void CSGrid::HideRows(CSGridTreeRow& row, bool itself)
{
    const int cursor = m_cursor;
    std::vector<CSGridTreeRow*> below;
    row.CollectAll(below);
    if (!itself)
        below.erase(below.begin());
    std::erase_if(below, [](const CSGridTreeRow* one) { return !one->m_piece; });
    if (below.empty())
        return;
    // They follow each other unless a dialog has moved single rows.
    const int first = below.front()->GetIndex();
    const int count = int(below.size());
    const CSGridRow* const item = GetRow(m_selectedItem);
    const bool hidesItem = std::find(below.begin(), below.end(), item) != below.end();
    if (below.back()->GetIndex() == first + count - 1) {
        ForgetRows(first, count);
        m_rows.takeRange(first, count);
    } else {
        for (CSGridTreeRow* one : below) {
            const int index = one->GetIndex();
            ForgetRows(index, 1);
            m_rows.take(index);
        }
    }
    // An item that went is replaced by the row that was folded over it, or by the one in its place.
    if (hidesItem)
        m_selectedItem = itself ? std::min(first, GetRowCount() - 1) : row.GetIndex();
    else if (item)
        m_selectedItem = item->GetIndex();
    m_selectionAnchor = std::min(m_selectionAnchor, GetRowCount() - 1);
    m_cursor = cursor;
    RecalcLayout();
}

std::vector<CSGridTreeRow*> CSGrid::RootRows() const
{
    std::vector<CSGridTreeRow*> roots;
    for (CSGridRow* row : m_rows.all())
        if (row->IsTreeRow() && !row->IsChildRow())
            roots.push_back(static_cast<CSGridTreeRow*>(row));
    return roots;
}

void CSGrid::RebuildDisplay(const std::vector<CSGridTreeRow*>& roots)
{
    std::vector<CSGridRow*> selected;
    selected.reserve(m_selectedRows.size());
    for (const long index : m_selectedRows)
        selected.push_back(GetRow(int(index)));
    CSGridRow* item = GetRow(m_selectedItem);
    std::vector<CSGridRow*> rows;
    for (CSGridTreeRow* root : roots)
        root->CollectDisplayed(rows);
    m_rows.assign(rows);
    while (item && !item->m_piece && item->IsChildRow())
        item = static_cast<CSGridTreeRow*>(item)->GetParentRow();
    m_selectedItem = item ? item->GetIndex() : -1;
    m_selectionAnchor = m_selectedItem;
    // The marks tell which of the rows displayed now are selected, in their order.
    for (CSGridRow* row : selected)
        row->m_selected = row->m_piece != nullptr;
    m_selectedRows.clear();
    for (size_t index = 0; index < rows.size(); ++index)
        if (rows[index]->m_selected)
            m_selectedRows.push_back(long(index));
    RecalcLayout();
}

void CSGrid::FoldAll()
{
    EndEdit();
    const std::vector<CSGridTreeRow*> roots = RootRows();
    std::vector<CSGridTreeRow*> all;
    for (CSGridTreeRow* root : roots)
        root->CollectAll(all);
    for (CSGridTreeRow* row : all)
        if (!row->IsParentRow() || row->IsFold() || OnFoldRow(*row))
            row->SetUnFoldFlag(false);
    RebuildDisplay(roots);
}

void CSGrid::UnFoldAll()
{
    EndEdit();
    const std::vector<CSGridTreeRow*> roots = RootRows();
    std::vector<CSGridTreeRow*> all;
    for (CSGridTreeRow* root : roots)
        root->CollectAll(all);
    for (CSGridTreeRow* row : all)
        if (!row->IsParentRow() || !row->IsFold() || OnUnFoldRow(*row))
            row->SetUnFoldFlag(true);
    RebuildDisplay(roots);
}
