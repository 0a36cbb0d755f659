// Editing a cell in its place: when an editor opens, what is written when it closes, where keys lead it.

#include "controls/grid.h"

#include "controls/cell_editors.h"

#include <QApplication>
#include <QWidget>

namespace {

// Hiding an editor moves the focus, which would end the edit once more.
bool ending = false;

} // namespace

CSGrid::CellWatch::CellWatch(const CSGrid& grid, CSGridCell& cell)
    : m_grid(grid)
    , m_cell(&cell)
    , m_row(cell.GetRow()->GetIndex())
    , m_changes(grid.Changes())
{
}

CSGridCell* CSGrid::CellWatch::cell() const
{
    if (m_grid.Changes() == m_changes)
        return m_cell;
    for (const CSGridRow* row : m_grid.m_rows.all())
        for (int column = 0; column < row->GetCellCount(); ++column)
            if (row->GetCell(column) == m_cell)
                return m_cell;
    return nullptr;
}

int CSGrid::CellWatch::row() const
{
    const CSGridCell* const found = cell();
    return found ? found->GetRow()->GetIndex() : std::min(m_row, m_grid.GetRowCount() - 1);
}

void CSGrid::EditCell(int row, int column)
{
    if (!GetCell(row, column))
        return;
    EndEdit();
    // Several rows stay selected only where the edit is to apply to all of them.
    if (!(IsFlagSet(kEditSelectedRows) && GetSelCount() > 1 && IsRowSelected(row)))
        UnSelect();
    CSGridCell* cell = GetCell(row, column);
    if (!cell || !OnEdit(*cell))
        return;
    CloseEditor();
    EnsureVisible(row, column);
    m_activeColumn = column;
    std::unique_ptr<CSCellCtrl> editor = OnGetEditCtrl(*cell);
    if (!editor)
        return;
    editor->Create(CellTextRect(row, column), viewport());
    m_editor = std::move(editor);
    m_editedCell = cell;
    m_editor->GetWnd()->installEventFilter(this);
    if (m_editor->KeyWidget() != m_editor->GetWnd())
        m_editor->KeyWidget()->installEventFilter(this);
    m_editor->GetWnd()->setAccessibleName(cell->GetCol()->GetName());
    m_editor->GetWnd()->show();
    m_editor->GetWnd()->setFocus();
    m_editor->SelectText();
    Repaint();
}

void CSGrid::CommitText(CSGridCell& cell, const TString& text)
{
    if (IsFlagSet(kEditSelectedRows) && GetSelCount() > 1) {
        const int column = cell.GetCol()->GetIndex();
        for (const long row : m_selectedRows)
            SetItemText(int(row), column, text);
    } else {
        cell.SetText(text);
    }
    OnDataChanged();
}

void CSGrid::EndEdit()
{
    if (ending || !m_editedCell)
        return;
    ending = true;
    struct Reset {
        ~Reset() { ending = false; }
    } reset;
    if (m_editor && m_editor->IsModified()) {
        TString text;
        m_editor->GetNewText(text);
        if (OnModified(*m_editedCell, text) && m_editedCell)
            CommitText(*m_editedCell, text);
    }
    CloseEditor();
    Repaint();
}

void CSGrid::CloseEditor()
{
    m_editedCell = nullptr;
    const std::unique_ptr<CSCellCtrl> editor = std::move(m_editor);
    if (!editor || !editor->GetWnd())
        return;
    const bool focused = FocusIsInside() && QApplication::focusWidget() != this;
    editor->GetWnd()->removeEventFilter(this);
    editor->KeyWidget()->removeEventFilter(this);
    if (focused)
        setFocus();
    editor->Destroy();
}

bool CSGrid::FocusIsInside() const
{
    // The list that an editor opens is a window of its own, but no other place.
    const auto inside = [this](const QWidget* widget) {
        for (; widget && widget != this; widget = widget->parentWidget())
            if (widget->isWindow() && widget->windowType() != Qt::Popup)
                return false;
        return widget != nullptr;
    };
    return inside(QApplication::focusWidget()) || inside(QApplication::activePopupWidget());
}

std::unique_ptr<CSCellCtrl> CSGrid::OnGetEditCtrl(CSGridCell& cell)
{
    const CSGridCol& column = *cell.GetCol();
    if (column.IsComboEdit() || column.IsComboSel()) {
        QStringList choices;
        OnCellComboString(cell, choices);
        return std::make_unique<CSCellCombo>(cell, choices, column.IsComboEdit());
    }
    if (cell.IsRightButton())
        return std::make_unique<CSCellButtonEdit>(cell);
    if (column.IsRightSpin())
        return std::make_unique<CSCellSpinEdit>(cell);
    return std::make_unique<CSCellEdit>(cell);
}

int CSGrid::OnBeforeEdit(CSGridCell& cell)
{
    if (!cell.GetCol()->IsCheckButton())
        return 1;
    cell.SetText(int(cell) != 0 ? u"0" : u"1");
    NotifyTick(cell);
    OnDataChanged();
    return 0;
}

int CSGrid::OnRowSelectChange(int, int& newIndex)
{
    return newIndex >= -1 && newIndex < GetRowCount();
}

int CSGrid::OnEditMoveUp(int& row, int&)
{
    const CSGridRow* target = GetRow(row);
    if (!target || target->IsParentRow())
        return 0;
    return OnRowSelectChange(m_selectedItem, row);
}

int CSGrid::OnEditMoveDown(int& row, int& column)
{
    return CSGrid::OnEditMoveUp(row, column);
}

// The next cell in reading order, or the one before; past either end it goes on at the other.
bool CSGrid::StepEdit(int& row, int& column, int step) const
{
    if (IsEmpty() || GetColumnCount() == 0)
        return false;
    column += step;
    if (column >= GetColumnCount()) {
        column = 0;
        row = row + 1 < GetRowCount() ? row + 1 : 0;
    } else if (column < 0) {
        column = GetColumnCount() - 1;
        row = row > 0 ? row - 1 : GetRowCount() - 1;
    }
    return true;
}

int CSGrid::MoveEditSideways(int& row, int& column, int step)
{
    // Asking toggles a check box, and keys that pass over one must not: those are passed over like read-only
    // cells. One round at most.
    for (qint64 left = qint64(GetRowCount()) * GetColumnCount(); left > 0; --left) {
        CSGridCell* cell = GetCell(row, column);
        if (cell && !cell->IsReadOnly() && !cell->GetCol()->IsCheckButton() && OnBeforeEdit(*cell))
            return 1;
        if (!StepEdit(row, column, step))
            return 0;
    }
    return 0;
}

int CSGrid::OnEditMoveRight(int& row, int& column)
{
    return MoveEditSideways(row, column, 1);
}

int CSGrid::OnEditMoveLeft(int& row, int& column)
{
    return MoveEditSideways(row, column, -1);
}

int CSGrid::OnKeyArrow(int key)
{
    if (!IsEditing()) {
        if (key != Qt::Key_Down && key != Qt::Key_Up)
            return 0;
        // From beyond the end the way up leads to the last row.
        const int proposed = std::min(m_selectedItem, GetRowCount()) + (key == Qt::Key_Down ? 1 : -1);
        return AssertValidRow(proposed) ? MoveSelectionTo(proposed) : 1;
    }
    int row = m_editedCell->GetRow()->GetIndex();
    int column = m_editedCell->GetCol()->GetIndex();
    int allowed = 0;
    switch (key) {
    case Qt::Key_Up:
        --row;
        allowed = OnEditMoveUp(row, column);
        break;
    case Qt::Key_Down:
        ++row;
        allowed = OnEditMoveDown(row, column);
        break;
    case Qt::Key_Right:
    case Qt::Key_Tab:
        if (key == Qt::Key_Right && !m_editor->IsRightEnd())
            return 0;
        StepEdit(row, column, 1);
        allowed = OnEditMoveRight(row, column);
        break;
    case Qt::Key_Left:
    case Qt::Key_Backtab:
        if (key == Qt::Key_Left && !m_editor->IsLeftEnd())
            return 0;
        StepEdit(row, column, -1);
        allowed = OnEditMoveLeft(row, column);
        break;
    default:
        return 0;
    }
    if (allowed) {
        SetSelectedItem(row);
        EditCell(row, column);
    }
    return 1;
}

int CSGrid::OnKeyReturn()
{
    if (!IsEditing())
        return 1;
    int row = m_editedCell->GetRow()->GetIndex();
    int column = m_editedCell->GetCol()->GetIndex();
    int below = row + 1;
    if (OnEditMoveDown(below, column)) {
        SetSelectedItem(below);
        EditCell(below, column);
        return 1;
    }
    const CellWatch watch(*this, *m_editedCell);
    EndEdit();
    SelectOnly(watch.row());
    return 1;
}

int CSGrid::OnKeyEscape()
{
    if (IsEditing()) {
        const CellWatch watch(*this, *m_editedCell);
        EndEdit();
        SelectOnly(watch.row());
        return 1;
    }
    int none = -1;
    if (OnRowSelectChange(m_selectedItem, none)) {
        UnSelect();
        SetSelectedItem(-1);
    }
    return 1;
}

int CSGrid::OnKeyDelete()
{
    if (IsEditing())
        return 0;
    DoDelete();
    return 1;
}

int CSGrid::OnPressKey(int key, Qt::KeyboardModifiers modifiers)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return OnKeyReturn();
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
        // Alt opens lists, Shift and Ctrl select and jump in the text.
        if (IsEditing() && (modifiers & (Qt::AltModifier | Qt::ShiftModifier | Qt::ControlModifier)))
            return 0;
        return OnKeyArrow(key);
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return OnKeyArrow(key);
    case Qt::Key_Delete:
        return OnKeyDelete();
    case Qt::Key_Escape:
        return OnKeyEscape();
    default:
        return 0;
    }
}

// The button usually opens a dialog; meanwhile the edit may end by the loss of focus.
void CSGrid::PressCellButton(CSGridCell& cell)
{
    TString text = cell.GetText();
    if (m_editor && m_editedCell == &cell)
        m_editor->GetNewText(text);
    const CellWatch watch(*this, cell);
    if (!OnCellButtonDown(cell, text) || !watch.cell())
        return;
    if (m_editor && m_editedCell == &cell) {
        m_editor->SetNewText(text);
        m_editor->SetModified(true);
        m_editor->GetWnd()->setFocus();
    } else {
        cell.SetText(text);
        OnDataChanged();
    }
}
