// Keys, mouse and focus of the grid.

#include "controls/grid.h"

#include "controls/cell_editors.h"
#include "controls/grid_parts.h"

#include <QApplication>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

namespace {
constexpr qint64 kTypingPause = 1000; // ms after which typing begins a new word
}

int CSGrid::MoveSelectionTo(int row)
{
    if (!AssertValidRow(row) || !OnRowSelectChange(m_selectedItem, row) || !AssertValidRow(row))
        return 1;
    SelectOnly(row);
    SetSelectedItem(row);
    return 1;
}

void CSGrid::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        PressCell(*event);
    else if (event->button() == Qt::RightButton)
        setFocus();
}

void CSGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    PressCell(*event);
    int row = -1, column = -1;
    if (PtToCell(event->pos(), row, column))
        OnDblClick(*GetCell(row, column));
}

bool CSGrid::IsTyping() const
{
    return !m_typed.isEmpty() && m_typedAt.isValid() && m_typedAt.elapsed() < kTypingPause;
}

void CSGrid::PressCell(QMouseEvent& event)
{
    if (!FocusIsInside())
        setFocus();
    int row = -1, column = -1;
    bool onButton = false;
    if (!PtToCell(event.pos(), row, column, &onButton)) {
        EndEdit();
        UnSelect();
        return;
    }
    const QRect box = FoldBoxRect(row); // empty for rows without children
    const bool onBox = column == 0 && !box.isEmpty() && box.adjusted(-2, -2, 2, 2).contains(event.pos());
    // What was typed counts before anything else is asked; it may change what the row is.
    const CellWatch pressed(*this, *GetCell(row, column));
    if (m_editedCell && m_editedCell != GetCell(row, column))
        EndEdit();
    row = pressed.cell() ? pressed.row() : -1;
    if (row < 0 || !OnRowSelectChange(m_selectedItem, row) || !AssertValidRow(row))
        return;
    SetSelectedItem(row);
    m_activeColumn = column;
    if (onBox) {
        CSGridTreeRow* tree = GetTreeRow(row);
        if (tree->IsChildVisible())
            tree->Fold();
        else
            tree->UnFold();
        SelectOnly(tree->GetIndex());
        return;
    }
    if (event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier))
        return ClickRow(row, event.modifiers());
    CSGridCell* cell = GetCell(row, column);
    const CellWatch watch(*this, *cell); // notifications may delete the row
    const bool ticks = cell->GetCol()->IsCheckButton() && !cell->IsReadOnly();
    if (!cell->IsReadOnly() && OnBeforeEdit(*cell)) {
        if (watch.cell() && m_editedCell != cell)
            EditCell(watch.row(), cell->GetCol()->GetIndex());
    } else if (!ticks) {
        SelectOnly(watch.row());
    }
    if (onButton && watch.cell())
        PressCellButton(*cell);
}

void CSGrid::contextMenuEvent(QContextMenuEvent* event)
{
    int row = -1, column = -1;
    if (PtToCell(viewport()->mapFromGlobal(event->globalPos()), row, column)) {
        EndEdit();
        OnRClickRow(*GetRow(row), event->globalPos());
        if (CSGridCell* cell = GetCell(row, column))
            OnRClickCell(*cell, event->globalPos());
    }
}

void CSGrid::OnRClickRow(CSGridRow& row, const QPoint&)
{
    if (IsRowSelected(row.GetIndex()))
        return;
    MoveSelectionTo(row.GetIndex());
}

void CSGrid::OnHeadClick(int column, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ControlModifier)
        return SelectCol(column, !IsColSelected(column));
    UnSelect();
    SelectCol(column, 1);
}

void CSGrid::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const int last = GetRowCount() - 1;
    const int current = std::max(m_selectedItem, 0);
    // The dialog's own: the next control, and closing.
    if (key == Qt::Key_Tab || key == Qt::Key_Backtab || key == Qt::Key_Escape)
        return event->ignore();
    if (event->matches(QKeySequence::SelectAll)) {
        if (!SingleSelect())
            SelectAll();
    } else if (event->matches(QKeySequence::Copy)) {
        ClipSelect();
    } else if (event->matches(QKeySequence::Paste)) {
        PasteFromClipboard();
    } else if ((event->modifiers() & Qt::ShiftModifier) && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        const int next = std::clamp(m_selectedItem + (key == Qt::Key_Down ? 1 : -1), 0, std::max(last, 0));
        int proposed = next;
        if (AssertValidRow(next) && OnRowSelectChange(m_selectedItem, proposed) && AssertValidRow(proposed)) {
            ClickRow(proposed, Qt::ShiftModifier);
            SetSelectedItem(proposed);
        }
    } else if (OnPressKey(key, event->modifiers())) {
    } else if (key == Qt::Key_Home) {
        MoveSelectionTo(0);
    } else if (key == Qt::Key_End) {
        MoveSelectionTo(last);
    } else if (key == Qt::Key_PageUp) {
        MoveSelectionTo(std::max(0, current - PageRows()));
    } else if (key == Qt::Key_PageDown) {
        MoveSelectionTo(std::min(last, current + PageRows()));
    } else if (key == Qt::Key_Left || key == Qt::Key_Right) {
        QScrollBar* bar = horizontalScrollBar();
        bar->setValue(bar->value() + (key == Qt::Key_Left ? -1 : 1) * bar->singleStep());
    } else if (CSGridTreeRow* row = GetTreeRow(m_selectedItem); row && key == Qt::Key_Plus) {
        row->UnFold();
    } else if (row && key == Qt::Key_Minus) {
        row->Fold();
    } else if (key == Qt::Key_F2 || (key == Qt::Key_Space && !IsTyping())) {
        // F2 edits the cell clicked last or the first that can be; the blank ticks.
        int column = m_activeColumn;
        CSGridCell* cell = GetCell(m_selectedItem, column);
        for (column = 0; cell && cell->IsReadOnly() && column < GetColumnCount(); ++column)
            cell = GetCell(m_selectedItem, column);
        const bool wanted
            = cell && !cell->IsReadOnly() && (key == Qt::Key_F2 || cell->GetCol()->IsCheckButton());
        if (wanted && OnBeforeEdit(*cell))
            EditCell(m_selectedItem, cell->GetCol()->GetIndex());
    } else if (!TypeAhead(event->text())) {
        return event->ignore();
    }
    event->accept();
}

// Letters typed one after the other find the next row that begins with them, in the column clicked last.
bool CSGrid::TypeAhead(const QString& text)
{
    if (text.isEmpty() || !text[0].isPrint() || IsEmpty() || GetColumnCount() == 0)
        return false;
    const bool goesOn = IsTyping();
    const int from = std::max(m_selectedItem, 0) + (goesOn || m_selectedItem < 0 ? 0 : 1);
    m_typed = goesOn ? m_typed + text : text;
    m_typedAt.start();
    const int column = std::clamp(m_activeColumn, 0, GetColumnCount() - 1);
    for (int step = 0; step < GetRowCount(); ++step) {
        const int row = (from + step) % GetRowCount();
        if (!GetItemText(row, column).startsWith(m_typed, Qt::CaseInsensitive))
            continue;
        MoveSelectionTo(row);
        break;
    }
    return true;
}

// Names are found by what an input method gives, too.
void CSGrid::inputMethodEvent(QInputMethodEvent* event)
{
    if (TypeAhead(event->commitString()))
        event->accept();
    else
        event->ignore();
}

void CSGrid::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    m_active = true;
    NotifyAccessibility();
    Repaint();
}

void CSGrid::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    m_active = FocusIsInside();
    Repaint();
}

bool CSGrid::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        return ShowTip(help->pos(), help->globalPos());
    }
    return QAbstractScrollArea::viewportEvent(event);
}

// What the editor hears first: keys that may lead to another cell, and the loss of the focus.
bool CSGrid::eventFilter(QObject* object, QEvent* event)
{
    if (!m_editor)
        return QAbstractScrollArea::eventFilter(object, event);
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (OnPressKey(key->key(), key->modifiers()))
            return true;
        return QAbstractScrollArea::eventFilter(object, event);
    }
    if (event->type() == QEvent::FocusOut
        && static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason && !FocusIsInside()) {
        EndEdit();
        m_active = false;
        Repaint();
    }
    return QAbstractScrollArea::eventFilter(object, event);
}
