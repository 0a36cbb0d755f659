// The grid for scripts, by the way that mouse and keys go.

#include "controls/grid.h"

#include "controls/cell_editors.h"

#include <QComboBox>
#include <QSpinBox>

QString CSGrid::headerText(int column) const
{
    const CSGridCol* found = GetCol(column);
    return found ? QString(found->GetName()) : QString();
}

QString CSGrid::editCell(int row, int column, const QString& value)
{
    CSGridCell* cell = GetCell(row, column);
    if (!cell)
        return QStringLiteral("The grid has no such cell.");
    int proposed = row;
    if (!OnRowSelectChange(m_selectedItem, proposed) || proposed != row)
        return QStringLiteral("The row cannot be chosen now.");
    SetSelectedItem(row);
    m_activeColumn = column;
    if (cell->IsReadOnly())
        return QStringLiteral("The cell cannot be edited.");
    if (cell->GetCol()->IsCheckButton()) {
        if (value != u"0" && value != u"1")
            return QStringLiteral("A check cell takes 0 and 1.");
        if ((int(*cell) != 0) != (value == u"1"))
            OnBeforeEdit(*cell);
        return (int(*cell) != 0) == (value == u"1") ? QString()
                                                    : QStringLiteral("The tick cannot be changed.");
    }
    if (!OnBeforeEdit(*cell))
        return QStringLiteral("The cell cannot be edited.");
    EditCell(row, column);
    if (!m_editor || m_editedCell != cell)
        return QStringLiteral("The cell cannot be edited.");
    if (auto* combo = dynamic_cast<CSCellCombo*>(m_editor.get())) {
        const int index = combo->Combo()->findText(value);
        if (index < 0 && cell->GetCol()->IsComboSel()) {
            EndEdit();
            return QStringLiteral("The list has no such choice.");
        }
        if (index >= 0) {
            combo->Combo()->setCurrentIndex(index);
            OnCellComboSelChange(*cell, index, value);
        }
    }
    if (!m_editor || m_editedCell != cell)
        return {};
    m_editor->SetNewText(value);
    m_editor->SetModified(true);
    if (const auto* spin = qobject_cast<QSpinBox*>(m_editor->GetWnd())) {
        TString number;
        m_editor->GetNewText(number);
        if (number != value.trimmed()) {
            m_editor->SetModified(false);
            EndEdit();
            return QStringLiteral("The cell takes a number from %1 to %2.")
                .arg(spin->minimum())
                .arg(spin->maximum());
        }
    }
    const TString before = cell->GetText();
    EndEdit();
    // The dialog may change a text as it takes it, and the row may be gone by then.
    if (GetCell(row, column) == cell && cell->GetText() == before && before != value)
        return QStringLiteral("The cell did not take the text.");
    return {};
}

QString CSGrid::selectRow(int row)
{
    if (!AssertValidRow(row))
        return QStringLiteral("The grid has no such row.");
    MoveSelectionTo(row);
    return IsRowSelected(row) ? QString() : QStringLiteral("The row cannot be chosen now.");
}

QString CSGrid::selectColumn(int column)
{
    if (!AssertValidCol(column))
        return QStringLiteral("The grid has no such column.");
    OnHeadClick(column, {});
    return {};
}

std::vector<int> CSGrid::selectedRows() const
{
    return { m_selectedRows.begin(), m_selectedRows.end() };
}
