// What users do to rows: deleting, inserting, copying, finding.

#include "controls/grid.h"

void CSGrid::DoDelete()
{
    if (IsRowSelected()) {
        for (const long index : std::vector<long>(m_selectedRows))
            if (GetRow(int(index))->IsDelUnable())
                GetRow(int(index))->m_selected = false;
        std::erase_if(m_selectedRows, [&](long index) { return !GetRow(int(index))->m_selected; });
        Repaint();
        if (!IsRowSelected() || !OnDeleteRow())
            return;
        const int lowest = int(m_selectedRows.front());
        const int previous = m_selectedItem;
        // The list is put aside: each deletion would move the rest of it.
        const std::vector<long> rows = m_selectedRows;
        ClearRowSelection();
        for (auto index = rows.rbegin(); index != rows.rend(); ++index)
            DeleteRow(int(*index));
        OnEndDeleteRow();
        OnDataChanged();
        int now = std::min(lowest, GetRowCount() - 1);
        if (now >= 0)
            SelectOnly(now);
        SetSelectedItem(now);
        OnRowSelectChange(previous, now);
    } else if (IsColSelected() && !IsReadOnly() && OnDeleteCol()) {
        const std::vector<long> columns = std::exchange(m_selectedCols, {});
        for (auto index = columns.rbegin(); index != columns.rend(); ++index)
            DeleteColumn(int(*index));
        OnEndDeleteCol();
        OnDataChanged();
    }
}

void CSGrid::SelectNewRow(CSGridRow* row)
{
    const int index = row->GetIndex();
    if (index >= 0) {
        SelectOnly(index);
        SetSelectedItem(index);
    }
    OnDataChanged();
}

void CSGrid::InsertRowAfter()
{
    EndEdit();
    const CSGridRow* selected = GetSelectedRowPtr();
    if (selected && selected->IsTreeRow() && selected->IsChildRow()) {
        auto* parent = static_cast<const CSGridTreeRow*>(selected)->GetParentRow();
        const int place = parent->GetChildIndex(static_cast<const CSGridTreeRow*>(selected)) + 1;
        auto child = std::make_unique<CSGridTreeRow>(parent);
        CSGridTreeRow* row = child.get();
        if (!OnInsertChild(parent, place, row))
            return;
        parent->InsertChildRow(place, row == child.get() ? child.release() : row);
        return SelectNewRow(row);
    }
    if (m_treeGrid && selected)
        return DoInsertTreeAfter();
    const int index = selected ? int(m_selectedRows.back()) + 1 : GetRowCount();
    std::unique_ptr<CSGridRow> made = NewRow();
    CSGridRow* row = made.get();
    if (!OnInsertRow(index, row))
        return;
    InsertRow(index, row == made.get() ? made.release() : row);
    OnInsertRow(*row);
    SelectNewRow(row);
}

void CSGrid::InsertCopyAfter()
{
    if (GetSelCount() != 1)
        return;
    EndEdit();
    const int index = int(m_selectedRows.front());
    CSGridRow* source = GetRow(index);
    CSGridRow* copy = nullptr;
    if (CSGridTreeRow* tree = GetTreeRow(index)) {
        if (tree->IsParentRow())
            return;
        if (CSGridTreeRow* parent = tree->GetParentRow()) {
            auto made = std::make_unique<CSGridTreeRow>(parent);
            made->CopyFrom(*tree);
            CSGridTreeRow* child = made.get();
            const int place = parent->GetChildIndex(tree) + 1;
            if (!OnInsertChild(parent, place, child))
                return;
            parent->InsertChildRow(place, child == made.get() ? made.release() : child);
            return SelectNewRow(child);
        }
    }
    copy = NewRow().release();
    copy->CopyFrom(*source);
    InsertRow(index + 1, copy);
    SelectRow(index, 0);
    SelectRow(copy->GetIndex(), 1);
    OnInsertRow(*copy);
    SelectNewRow(copy);
}

void CSGrid::DoAppendRow()
{
    EndEdit();
    std::unique_ptr<CSGridRow> made = NewRow();
    CSGridRow* row = made.get();
    if (!OnInsertRow(GetRowCount(), row))
        return;
    AppendRow(row == made.get() ? made.release() : row);
    OnInsertRow(*row);
    SelectNewRow(row);
}

void CSGrid::AppendChildRow()
{
    CSGridTreeRow* parent = m_selectedRows.empty() ? nullptr : GetTreeRow(int(m_selectedRows.front()));
    if (!parent)
        return;
    auto made = std::make_unique<CSGridTreeRow>(parent);
    CSGridTreeRow* child = made.get();
    if (!OnInsertChild(parent, parent->GetChildNum(), child))
        return;
    parent->AppendChild(child == made.get() ? made.release() : child);
    if (!child->IsVisible())
        parent->UnFold();
    SelectNewRow(child);
}

void CSGrid::AppendTree()
{
    if (m_treeGrid)
        DoAppendRow();
}

void CSGrid::DoInsertTreeAfter()
{
    CSGridTreeRow* selected = m_selectedRows.empty() ? nullptr : GetTreeRow(int(m_selectedRows.front()));
    if (!selected)
        return AppendTree();
    EndEdit();
    CSGridTreeRow* root = selected->GetRootRow();
    std::vector<CSGridRow*> shown;
    root->CollectDisplayed(shown);
    const int index = root->GetIndex() + int(shown.size());
    std::unique_ptr<CSGridRow> made = NewRow();
    CSGridRow* row = made.get();
    if (!OnInsertRow(index, row))
        return;
    InsertRow(index, row == made.get() ? made.release() : row);
    OnInsertRow(*row);
    SelectNewRow(row);
}

void CSGrid::CopySubtree(const CSGridTreeRow& from, CSGridTreeRow& to)
{
    to.CopyFrom(from);
    for (int child = 0; child < from.GetChildNum(); ++child) {
        auto* copy = new CSGridTreeRow(&to);
        CopySubtree(*from.GetChildRow(child), *copy);
        to.AppendChild(copy);
    }
}

void CSGrid::DoCopySubtree()
{
    CSGridTreeRow* source = GetSelCount() == 1 ? GetTreeRow(int(m_selectedRows.front())) : nullptr;
    if (!source)
        return;
    EndEdit();
    CSGridTreeRow* parent = source->GetParentRow();
    auto made = parent ? std::make_unique<CSGridTreeRow>(parent) : std::make_unique<CSGridTreeRow>(this);
    CSGridTreeRow* copy = made.get();
    CopySubtree(*source, *copy);
    if (parent) {
        const int place = parent->GetChildIndex(source) + 1;
        if (!OnInsertChild(parent, place, copy))
            return;
        parent->InsertChildRow(place, copy == made.get() ? made.release() : copy);
        return SelectNewRow(copy);
    }
    std::vector<CSGridRow*> shown;
    source->CollectDisplayed(shown);
    const int index = source->GetIndex() + int(shown.size());
    CSGridRow* row = copy;
    if (!OnInsertRow(index, row))
        return;
    InsertRow(index, row == made.get() ? made.release() : row);
    std::vector<CSGridRow*> below;
    static_cast<CSGridTreeRow*>(row)->CollectDisplayed(below);
    below.erase(below.begin());
    DisplayRows(index + 1, below);
    OnInsertRow(*row);
    SelectNewRow(row);
}

CSGridTreeRow* CSGrid::CreateTreeItem(const TString& text1, const TString& text2)
{
    if (!m_treeGrid)
        return nullptr;
    auto* root = new CSGridTreeRow(this);
    root->SetItemText(0, text1);
    root->SetUnFoldFlag(true);
    AppendRow(root);
    auto* leaf = new CSGridTreeRow(root);
    leaf->SetItemText(0, text2);
    root->AppendChild(leaf);
    return root;
}

void CSGrid::UpdateAutoIncrementCol()
{
    const CSGridCol* column = GetCol(0);
    if (!column || !column->IsAutoIncrement())
        return;
    for (int index = 0; index < GetRowCount(); ++index)
        GetCell(index, 0)->m_text = QString::number(index + 1);
    Repaint();
}

int CSGrid::FindAndSelect(const TString& text, int column, int from, bool whole)
{
    if (!AssertValidCol(column))
        return -1;
    std::vector<CSGridRow*> rows;
    size_t start = 0;
    if (m_treeGrid) {
        std::vector<CSGridTreeRow*> all;
        for (CSGridTreeRow* root : RootRows())
            root->CollectAll(all);
        rows.assign(all.begin(), all.end());
        start = size_t(std::find(rows.begin(), rows.end(), GetRow(from)) - rows.begin());
    } else {
        rows = m_rows.all();
        start = size_t(std::max(from, 0));
    }
    for (size_t step = 0; step < rows.size(); ++step) {
        CSGridRow* row = rows[(start + step) % rows.size()];
        const TString found = row->GetItemText(column);
        if (whole ? found.compare(text, Qt::CaseInsensitive) != 0
                  : !found.startsWith(text, Qt::CaseInsensitive))
            continue;
        // A fold may be kept shut; then the row cannot be shown.
        if (row->IsTreeRow() && !row->m_piece) {
            std::vector<CSGridTreeRow*> above;
            for (auto* up = static_cast<CSGridTreeRow*>(row)->GetParentRow(); up; up = up->GetParentRow())
                above.push_back(up);
            for (auto up = above.rbegin(); up != above.rend(); ++up)
                (*up)->UnFold();
        }
        const int index = row->GetIndex();
        if (index < 0)
            continue;
        SelectOnly(index);
        SetSelectedItem(index);
        return index;
    }
    return -1;
}

bool CSGrid::IsAllSelectedRowsFolded() const
{
    return std::all_of(m_selectedRows.begin(), m_selectedRows.end(), [&](long index) {
        const CSGridTreeRow* row = GetTreeRow(int(index));
        return !row || !row->IsParentRow() || !row->IsChildVisible();
    });
}
