// What users do to rows: deleting, inserting, copying, pasting, finding.

#include "controls/grid.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

namespace {

// A text with a tab, a line end or a quote stands in quotes, as spreadsheets have it.
QString quoted(const QString& text)
{
    if (!text.contains(u'\t') && !text.contains(u'\n') && !text.contains(u'\r') && !text.startsWith(u'"'))
        return text;
    return u'"' + QString(text).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

std::vector<QStringList> tabSeparated(const QString& text)
{
    std::vector<QStringList> lines;
    QStringList line;
    QString field;
    bool inQuotes = false, any = false;
    const auto endLine = [&] {
        line << std::exchange(field, {});
        lines.push_back(std::exchange(line, {}));
        any = false;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (inQuotes) {
            if (c != u'"')
                field += c;
            else if (i + 1 < text.size() && text[i + 1] == u'"')
                field += text[++i];
            else
                inQuotes = false;
            continue;
        }
        if (c == u'"' && field.isEmpty()) {
            inQuotes = any = true;
        } else if (c == u'\t') {
            line << std::exchange(field, {});
            any = true;
        } else if (c == u'\n') {
            endLine();
        } else if (c != u'\r') {
            field += c;
            any = true;
        }
    }
    if (any)
        endLine();
    return lines;
}

} // namespace

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

QString CSGrid::SelectedText() const
{
    QStringList lines;
    const auto line = [&](int row, auto&& wanted) {
        QStringList fields;
        for (int column = 0; column < GetColumnCount(); ++column)
            if (wanted(column))
                fields << quoted(GetItemText(row, column));
        lines << fields.join(u'\t');
    };
    if (IsColSelected())
        for (int row = 0; row < GetRowCount(); ++row)
            line(row, [&](int column) { return IsColSelected(column); });
    else
        for (const long row : m_selectedRows)
            line(int(row), [](int) { return true; });
    return lines.join(u'\n') + (lines.isEmpty() ? QString() : QStringLiteral("\n"));
}

void CSGrid::ClipSelect()
{
    if (!IsRowSelected() && !IsColSelected())
        return;
    EndEdit();
    m_rowPaste.RemoveAll();
    for (const long index : m_selectedRows) {
        auto copy = std::make_unique<CSGridRow>(this);
        copy->CopyFrom(*GetRow(int(index)));
        m_rowPaste.Append(std::move(copy));
    }
    QApplication::clipboard()->setText(SelectedText());
    OnEndClip();
}

void CSGrid::Paste(int index)
{
    if (IsReadOnly() || m_rowPaste.IsEmpty() || index < 0 || index > GetRowCount())
        return;
    EndEdit();
    // Between the rows of a tree there is no place for a root row.
    if (const CSGridRow* at = GetRow(index); at && at->IsChildRow())
        return;
    int pasted = 0;
    for (int source = 0; source < m_rowPaste.GetCount(); ++source) {
        std::unique_ptr<CSGridRow> made = NewRow();
        made->CopyFrom(*m_rowPaste[source]);
        CSGridRow* row = made.get();
        if (!OnInsertRow(index + pasted, row))
            continue;
        InsertRow(index + pasted, row == made.get() ? made.release() : row);
        OnInsertRow(*row);
        ++pasted;
    }
    if (pasted == 0)
        return;
    UnSelect();
    for (int row = index; row < index + pasted; ++row)
        SelectRow(row, 1);
    SetSelectedItem(index);
    OnEndPaste();
    OnDataChanged();
}

void CSGrid::PasteText(int row, int column, const QString& text)
{
    EndEdit();
    const std::vector<QStringList> lines = tabSeparated(text);
    bool changed = false, lost = false;
    for (size_t line = 0; line < lines.size(); ++line) {
        const int at = row + int(line);
        lost |= !AssertValidRow(at);
        for (int field = 0; field < int(lines[line].size()); ++field) {
            CSGridCell* cell = GetCell(at, column + field);
            TString value = lines[line][field];
            if (!cell || cell->IsReadOnly() || !OnModified(*cell, value))
                continue;
            cell->SetText(value);
            changed = true;
        }
    }
    if (lost || (!lines.empty() && !changed))
        QApplication::beep();
    if (changed) {
        OnEndPaste();
        OnDataChanged();
    }
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
