// The grid for screen readers: a table of cells, the one that the user is on being announced.

#include "controls/grid.h"

#include "controls/cell_editors.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace {

QAccessibleInterface* interfaceOf(CSGrid& grid)
{
    return QAccessible::queryAccessibleInterface(static_cast<QObject*>(&grid));
}

/// What is displayed at a row and a column, whichever row of the dialog that is at the time.
class AccessibleCell : public QAccessibleInterface, public QAccessibleTableCellInterface {
public:
    AccessibleCell(CSGrid& grid, int row, int column)
        : m_grid(&grid)
        , m_row(row)
        , m_column(column)
    {
    }

    bool isValid() const override { return found() != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return isValid() ? parent()->window() : nullptr; }
    QAccessibleInterface* parent() const override { return m_grid ? interfaceOf(*m_grid) : nullptr; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override
    {
        return isValid() && found()->GetCol()->IsCheckButton() ? QAccessible::CheckBox : QAccessible::Cell;
    }
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect cell = m_grid->CellRect(m_row, m_column);
        return { m_grid->viewport()->mapToGlobal(cell.topLeft()), cell.size() };
    }

    // A tick is named by its column; other cells by what they hold.
    QString text(QAccessible::Text kind) const override
    {
        const CSGridCell* const cell = found();
        if (!cell)
            return {};
        const bool ticks = cell->GetCol()->IsCheckButton();
        switch (kind) {
        case QAccessible::Name:
            return ticks ? m_grid->headerText(m_column) : QString(cell->GetText());
        case QAccessible::Description:
            return m_grid->headerText(m_column);
        case QAccessible::Value:
            return ticks ? QString() : QString(cell->GetText());
        default:
            return {};
        }
    }
    void setText(QAccessible::Text kind, const QString& text) override
    {
        if (kind == QAccessible::Value && isValid())
            (void)m_grid->editCell(m_row, m_column, text); // refused as it is refused to the user
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        const CSGridCell* const cell = found();
        if (!cell) {
            state.invalid = true;
            return state;
        }
        const int box = cell->GetCol()->IsCheckButton();
        state.checkable = box;
        state.checked = box && int(*cell) != 0;
        state.readOnly = cell->IsReadOnly();
        state.editable = !cell->IsReadOnly() && !box;
        state.selectable = true;
        state.selected = isSelected();
        state.focusable = true;
        state.focused = m_grid->hasFocus() && m_grid->GetCurrentCell() == cell;
        state.disabled = !m_grid->isEnabled();
        state.offscreen = !m_grid->viewport()->rect().intersects(m_grid->CellRect(m_row, m_column));
        if (const CSGridTreeRow* const tree = m_grid->GetTreeRow(m_row);
            tree && m_column == 0 && tree->IsParentRow()) {
            state.expandable = true;
            state.expanded = tree->IsChildVisible();
            state.collapsed = !tree->IsChildVisible();
        }
        return state;
    }

    bool isSelected() const override
    {
        return m_grid && (m_grid->IsRowSelected(m_row) || m_grid->IsColSelected(m_column));
    }
    QList<QAccessibleInterface*> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return m_column; }
    int rowIndex() const override { return m_row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

protected:
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface*>(this)
                                                       : nullptr;
    }

private:
    const CSGridCell* found() const { return m_grid ? m_grid->GetCell(m_row, m_column) : nullptr; }

    QPointer<CSGrid> m_grid;
    int m_row, m_column;
};

/// The grid by its name; its value is the row that the user is on with the names of its columns.
class AccessibleGrid : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    explicit AccessibleGrid(CSGrid& grid)
        : QAccessibleWidget(&grid, QAccessible::Table)
        , m_grid(grid)
    {
    }
    ~AccessibleGrid() override
    {
        for (const QAccessible::Id id : m_cells)
            QAccessible::deleteAccessibleInterface(id);
    }

    QString text(QAccessible::Text kind) const override
    {
        const CSGridRow* row = m_grid.GetRow(m_grid.GetSelectedItem());
        if (kind != QAccessible::Value || !row)
            return QAccessibleWidget::text(kind);
        QStringList parts;
        for (int column = 0; column < m_grid.GetColumnCount(); ++column)
            parts << m_grid.headerText(column) + u' ' + row->GetItemText(column);
        return parts.join(QStringLiteral(", "));
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiSelectable = !m_grid.SingleSelect();
        state.readOnly = m_grid.IsReadOnly();
        return state;
    }

    // The cells, row by row.
    int childCount() const override { return rowCount() * columnCount(); }
    QAccessibleInterface* child(int index) const override
    {
        return index < 0 || columnCount() == 0 ? nullptr : at(index / columnCount(), index % columnCount());
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        auto* const cell = const_cast<QAccessibleInterface*>(child)->tableCellInterface();
        return cell ? m_grid.ChildOfCell(cell->rowIndex(), cell->columnIndex()) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        int row = -1, column = -1;
        return m_grid.PtToCell(m_grid.viewport()->mapFromGlobal(QPoint(x, y)), row, column) ? at(row, column)
                                                                                            : nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        if (const CSCellCtrl* const editor = m_grid.GetEditor())
            return QAccessible::queryAccessibleInterface(editor->KeyWidget());
        const CSGridCell* const cell = m_grid.hasFocus() ? m_grid.GetCurrentCell() : nullptr;
        return cell ? at(cell->GetRow()->GetIndex(), cell->GetCol()->GetIndex()) : nullptr;
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override { return at(row, column); }
    int rowCount() const override { return m_grid.GetRowCount(); }
    int columnCount() const override { return m_grid.GetColumnCount(); }
    QString columnDescription(int column) const override { return m_grid.headerText(column); }
    QString rowDescription(int row) const override { return QString::number(row + 1); }

    int selectedCellCount() const override
    {
        return m_grid.GetSelCount() * columnCount() + m_grid.GetColSelNum() * rowCount();
    }
    QList<QAccessibleInterface*> selectedCells() const override
    {
        QList<QAccessibleInterface*> cells;
        for (const int row : m_grid.selectedRows())
            for (int column = 0; column < columnCount(); ++column)
                cells += at(row, column);
        for (const int column : selectedColumns())
            for (int row = 0; row < rowCount(); ++row)
                cells += at(row, column);
        return cells;
    }
    int selectedRowCount() const override { return m_grid.GetSelCount(); }
    int selectedColumnCount() const override { return m_grid.GetColSelNum(); }
    QList<int> selectedRows() const override
    {
        const std::vector<int> rows = m_grid.selectedRows();
        return { rows.begin(), rows.end() };
    }
    QList<int> selectedColumns() const override
    {
        std::vector<long> columns;
        m_grid.GetSelectedCols(columns);
        return { columns.begin(), columns.end() };
    }
    bool isRowSelected(int row) const override { return m_grid.IsRowSelected(row); }
    bool isColumnSelected(int column) const override { return m_grid.IsColSelected(column); }
    bool selectRow(int row) override { return m_grid.selectRow(row).isEmpty(); }
    bool selectColumn(int column) override { return m_grid.selectColumn(column).isEmpty(); }
    bool unselectRow(int row) override
    {
        const bool was = m_grid.IsRowSelected(row);
        m_grid.SelectRow(row, 0);
        return was;
    }
    bool unselectColumn(int column) override
    {
        const bool was = m_grid.IsColSelected(column);
        m_grid.SelectCol(column, 0);
        return was;
    }
    void modelChange(QAccessibleTableModelChangeEvent*) override { } // cells are found by their place

protected:
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

private:
    // Made when it is asked for: of many rows few are.
    QAccessibleInterface* at(int row, int column) const
    {
        if (!m_grid.GetCell(row, column))
            return nullptr;
        const auto place = std::pair(row, column);
        auto known = m_cells.find(place);
        if (known == m_cells.end())
            known = m_cells.insert(
                place, QAccessible::registerAccessibleInterface(new AccessibleCell(m_grid, row, column)));
        return QAccessible::accessibleInterface(*known);
    }

    CSGrid& m_grid;
    mutable QHash<std::pair<int, int>, QAccessible::Id> m_cells;
};

QAccessibleInterface* accessibleGrid(const QString&, QObject* object)
{
    auto* grid = dynamic_cast<CSGrid*>(object);
    return grid ? new AccessibleGrid(*grid) : nullptr;
}

} // namespace

// The toolkit asks the factory that came last first, and its own one comes with the application object.
void CSGrid::OfferAccessibility()
{
    QAccessible::removeFactory(accessibleGrid);
    QAccessible::installFactory(accessibleGrid);
}

CSGridCell* CSGrid::GetCurrentCell() const
{
    return GetCell(m_selectedItem, std::clamp(m_activeColumn, 0, std::max(0, GetColumnCount() - 1)));
}

int CSGrid::ChildOfCell(int row, int column) const
{
    return GetCell(row, column) ? row * GetColumnCount() + column : -1;
}

void CSGrid::NotifyAccessibility()
{
    const CSGridCell* const cell = GetCurrentCell();
    if (!QAccessible::isActive() || !cell || !hasFocus())
        return;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(ChildOfCell(m_selectedItem, cell->GetCol()->GetIndex()));
    QAccessible::updateAccessibility(&event);
}

void CSGrid::NotifyTick(const CSGridCell& cell)
{
    const int child = ChildOfCell(cell.GetRow()->GetIndex(), cell.GetCol()->GetIndex());
    if (!QAccessible::isActive() || child < 0)
        return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    event.setChild(child);
    QAccessible::updateAccessibility(&event);
}
