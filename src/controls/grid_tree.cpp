// Rows of a tree: children, folding, writing.

#include "controls/grid.h"

#include <QtEndian>

namespace {

void appendNumber(QByteArray& archive, auto number)
{
    char bytes[sizeof number];
    qToLittleEndian(number, bytes);
    archive.append(bytes, sizeof number);
}

void appendText(QByteArray& archive, const QString& text)
{
    if (text.size() < 0xFFFF) {
        appendNumber(archive, quint16(text.size()));
    } else {
        appendNumber(archive, quint16(0xFFFF));
        appendNumber(archive, quint32(text.size()));
    }
    for (const QChar unit : text)
        appendNumber(archive, unit.unicode());
}

} // namespace

CSGridTreeRow::CSGridTreeRow(CSGrid* grid)
    : CSGridRow(grid)
{
}

CSGridTreeRow::CSGridTreeRow(CSGridTreeRow* parent)
    : CSGridRow(parent->GetGrid())
    , m_parent(parent)
{
}

CSGridTreeRow::~CSGridTreeRow() = default;

void CSGridTreeRow::InsertCol(int index)
{
    CSGridRow::InsertCol(index);
    for (int child = 0; child < GetChildNum(); ++child)
        GetChildRow(child)->InsertCol(index);
}

void CSGridTreeRow::DelCol(int index)
{
    CSGridRow::DelCol(index);
    for (int child = 0; child < GetChildNum(); ++child)
        GetChildRow(child)->DelCol(index);
}

void CSGridTreeRow::MoveCol(int from, int to)
{
    CSGridRow::MoveCol(from, to);
    for (int child = 0; child < GetChildNum(); ++child)
        GetChildRow(child)->MoveCol(from, to);
}

CSGridTreeRow* CSGridTreeRow::GetRootRow()
{
    CSGridTreeRow* row = this;
    while (row->m_parent)
        row = row->m_parent;
    return row;
}

int CSGridTreeRow::GetParentDepth() const
{
    return m_parent ? m_parent->GetParentDepth() + 1 : 0;
}

int CSGridTreeRow::GetGlobalChildIndex(int index) const
{
    if (index < 0 || index >= GetChildNum() || !IsVisible())
        return -1;
    int place = GetIndex() + 1;
    for (int before = 0; before < index; ++before)
        place += GetChildRow(before)->GetRowNum();
    return place;
}

void CSGridTreeRow::InsertChildRow(int index, CSGridTreeRow* row)
{
    GetGrid()->EndEdit();
    // Shown at once below a parent whose children are shown; the first child below one that is flagged open.
    const bool shown = IsVisible() && (IsChildVisible() || (m_children.IsEmpty() && !IsFold()));
    index = std::clamp(index, 0, GetChildNum());
    // The end of the children is found from the last one, so that filling a parent is not quadratic.
    const int place = index == GetChildNum() && index > 0 && shown
        ? GetLastChildRow()->GetIndex() + GetLastChildRow()->GetRowNum()
        : GetIndex() + 1;
    row->m_parent = this;
    m_children.Insert(index, std::unique_ptr<CSGridTreeRow>(row));
    if (!shown)
        return GetGrid()->Repaint();
    std::vector<CSGridRow*> rows;
    row->CollectDisplayed(rows);
    GetGrid()->DisplayRows(index == GetChildNum() - 1 ? place : GetGlobalChildIndex(index), rows);
}

void CSGridTreeRow::DeleteChildRow(int index)
{
    CSGridTreeRow* row = GetChildRow(index);
    if (!row)
        return;
    GetGrid()->EndEdit();
    GetGrid()->HideRows(*row, true);
    m_children.Take(index);
    if (m_children.IsEmpty())
        SetUnFoldFlag(false);
    GetGrid()->Repaint();
}

int CSGridTreeRow::GetRowNum() const
{
    int rows = 1;
    if (!IsFold())
        for (int child = 0; child < GetChildNum(); ++child)
            rows += GetChildRow(child)->GetRowNum();
    return rows;
}

int CSGridTreeRow::GetDataRowCount() const
{
    if (m_children.IsEmpty())
        return 1;
    int leaves = 0;
    for (int child = 0; child < GetChildNum(); ++child)
        leaves += GetChildRow(child)->GetDataRowCount();
    return leaves;
}

void CSGridTreeRow::Fold()
{
    if (!m_children.IsEmpty()) {
        if (!GetGrid()->OnFoldRow(*this))
            return;
        GetGrid()->EndEdit();
        if (IsChildVisible())
            GetGrid()->HideRows(*this, false);
    }
    SetUnFoldFlag(false);
}

void CSGridTreeRow::UnFold()
{
    if (!m_children.IsEmpty()) {
        if (!GetGrid()->OnUnFoldRow(*this))
            return;
        GetGrid()->EndEdit();
        if (IsVisible() && !IsChildVisible()) {
            std::vector<CSGridRow*> rows;
            for (int child = 0; child < GetChildNum(); ++child)
                GetChildRow(child)->CollectDisplayed(rows);
            GetGrid()->DisplayRows(GetIndex() + 1, rows);
        }
    }
    SetUnFoldFlag(true);
}

void CSGridTreeRow::FoldAll()
{
    Fold();
    for (int child = 0; child < GetChildNum(); ++child)
        GetChildRow(child)->FoldAll();
}

void CSGridTreeRow::UnFoldAll()
{
    // From the leaves up: what is flagged open appears in one piece.
    for (int child = 0; child < GetChildNum(); ++child)
        GetChildRow(child)->UnFoldAll();
    UnFold();
}

void CSGridTreeRow::CollectDisplayed(std::vector<CSGridRow*>& rows)
{
    rows.push_back(this);
    if (!IsFold())
        for (int child = 0; child < GetChildNum(); ++child)
            GetChildRow(child)->CollectDisplayed(rows);
}

void CSGridTreeRow::CollectAll(std::vector<CSGridTreeRow*>& rows)
{
    rows.push_back(this);
    for (int child = 0; child < GetChildNum(); ++child)
        GetChildRow(child)->CollectAll(rows);
}

void CSGridTreeRow::Serialize(QByteArray& archive) const
{
    if (IsParentRow()) {
        for (int child = 0; child < GetChildNum(); ++child)
            GetChildRow(child)->Serialize(archive);
        return;
    }
    QString path;
    for (const CSGridTreeRow* row = m_parent; row; row = row->m_parent)
        path.prepend(row->GetItemText(0) + u'\\');
    appendText(archive, path);
    for (int cell = 0; cell < GetCellCount(); ++cell)
        appendText(archive, GetItemText(cell));
}
