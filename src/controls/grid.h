// The grid of the list dialogs: columns, rows that may form a tree, selections of rows and of columns,
// editing in place. A dialog derives its grid, sets the columns up in the constructor and overrides the
// notifications that it wants to hear of or to refuse. docs/grid.md shows how.
//
// grid_rows.cpp changes rows and columns, grid_selection.cpp selects, grid_commands.cpp has what users do to
// rows, grid_paint.cpp paints and measures, grid_edit.cpp edits in cells, grid_input.cpp takes keys and
// mouse, grid_clipboard.cpp copies and pastes, grid_accessible.cpp speaks to screen readers.
#pragma once

#include "controls/grid_model.h"
#include "controls/row_list.h"
#include "ed/scriptable.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QPoint>
#include <QRect>

class CSCellCtrl;
class GridHeader;
class GridRowSelector;
class GridCorner;
class QPainter;
class QSpinBox;

class CSGrid : public QAbstractScrollArea, public KcEdScriptableGrid {
public:
    enum Style : unsigned {
        kReadOnly = 0x1,
        kNoRowSelector = 0x2,
        kNoHeader = 0x8,
        kColFixWidth = 0x20,
        kColPosFix = 0x40,
        kRowPosFix = 0x80,
        kNoTreeLine = 0x100,
        kSingleSelRow = 0x200,
        kAutoFillRight = 0x400,
        kEditSelectedRows = 0x800 ///< an edit applies to every selected row
    };

    /// With `treeGrid` every row that the grid makes is a tree row. The second value is not used.
    explicit CSGrid(int treeGrid = 0, long reserved = 0);
    ~CSGrid() override;

    /// Puts the grid into a dialog under a name for scripts.
    void Create(QWidget* parent, const QString& name, unsigned style);
    void Create(const QRect& place, unsigned style, QWidget* parent);
    /// Stretches the last column where that is wanted and sets the scroll bars.
    virtual void RecalcLayout();
    /// Text of that height in pixels; rows become as high and the row space more.
    void CreateFont(int textHeight);
    int GetTextHeight() const { return m_textHeight; }
    int GetRowSpace() const { return m_rowSpace; }
    int GetRowHeight() const { return m_textHeight + m_rowSpace; }

    // Style

    unsigned GetStyle() const { return m_style; }
    void SetStyle(unsigned style);
    /// The other way round: zero sets the bits, anything else clears them.
    void SetStyleFlag(unsigned bits, int on);
    bool IsFlagSet(unsigned bits) const { return (m_style & bits) != 0; }
    void SetReadOnly(int on) { SetBits(kReadOnly, on); }
    bool IsReadOnly() const { return IsFlagSet(kReadOnly); }
    /// Non-zero takes the row selector away, zero shows it.
    void SetRowSelector(int off) { SetBits(kNoRowSelector, off); }
    bool HasRowSelector() const { return !IsFlagSet(kNoRowSelector); }
    /// Non-zero takes the header away, zero shows it.
    void SetHeaderCtrl(int off) { SetBits(kNoHeader, off); }
    bool HasHeaderCtrl() const { return !IsFlagSet(kNoHeader); }
    void SetColFixWidth(int on) { SetBits(kColFixWidth, on); }
    bool IsColFixWidth() const { return IsFlagSet(kColFixWidth); }
    void SetColPosFix(int on) { SetBits(kColPosFix, on); }
    bool IsColPosFix() const { return IsFlagSet(kColPosFix | kReadOnly); }
    void SetRowPosFix(int on) { SetBits(kRowPosFix, on); }
    bool IsRowPosFix() const { return IsFlagSet(kRowPosFix | kReadOnly); }
    /// Non-zero takes the lines of the tree away.
    void SetTreeLine(int off) { SetBits(kNoTreeLine, off); }
    bool TreeLine() const { return !IsFlagSet(kNoTreeLine); }
    void SetSingleSelRow(int on) { SetBits(kSingleSelRow, on); }
    bool SingleSelect() const { return IsFlagSet(kSingleSelRow); }
    void SetAutoFillRight(int on) { SetBits(kAutoFillRight, on); }
    bool AutoFillRight() const { return IsFlagSet(kAutoFillRight); }
    bool IsTreeGrid() const { return m_treeGrid; }

    // Columns; an index that does not exist is ignored, or yields null.

    void AppendColumn(const TString& name, int width) { InsertColumn(GetColumnCount(), name, width); }
    void AppendColumn(CSGridCol* column, int width) { InsertColumn(GetColumnCount(), column, width); }
    void InsertColumn(int index, const TString& name, int width);
    /// Takes the column over; null: one without a name.
    void InsertColumn(int index, CSGridCol* column, int width);
    void DeleteColumn(int index);
    void MoveCol(int from, int to);
    void SetColWidth(int column, int width);
    CSGridCol* GetCol(int index) const { return m_columns[index]; }
    int GetColumnCount() const { return m_columns.GetCount(); }
    bool AssertValidCol(int index) const { return index >= 0 && index < GetColumnCount(); }
    /// Right edge of the last column in logical pixels; 0 without columns.
    int GetLogicalRight() const;
    /// As wide as the header and the texts that are in view need.
    void FitColWidth(int column);

    // Rows: those displayed, in display order.

    void AppendRow(CSGridRow* row = nullptr);
    void InsertRow(int index, CSGridRow* row = nullptr);
    void DeleteRow(int index);
    void DeleteAll();
    void MoveRow(int from, int to);
    CSGridRow* GetRow(int index) const { return m_rows.at(index); }
    CSGridRow* operator[](int index) const { return m_rows.at(index); }
    CSGridRow* GetRowPtr(int index) const { return m_rows.at(index); }
    /// Null for a row that is none of a tree, too.
    CSGridTreeRow* GetTreeRow(int index) const;
    int GetRowCount() const { return m_rows.count(); }
    bool IsEmpty() const { return m_rows.count() == 0; }
    bool AssertValidRow(int index) const { return index >= 0 && index < GetRowCount(); }
    CSGridCell* GetCell(int row, int column) const;
    TString GetItemText(int row, int column) const;
    void SetItemText(int row, int column, const TString& text);
    int IndexOf(const CSGridRow* row) const { return m_rows.indexOf(row); }

    // The cursor

    void MoveFirst() { m_cursor = 0; }
    void MoveLast() { m_cursor = GetRowCount() - 1; }
    void MoveNext() { ++m_cursor; }
    void MovePrev() { --m_cursor; }
    void MoveTo(int index) { m_cursor = index; }
    bool IsEOF() const { return !AssertValidRow(m_cursor); }
    int GetCurIndex() const { return m_cursor; }
    CSGridRow* GetCurrentRow() const { return m_rows.at(m_cursor); }

    // Selection: of rows or of columns

    void SelectRow(int index, int select = 1);
    void SelectCol(int index, int select = 1);
    void SelectAll();
    void UnSelect();
    bool IsRowSelected() const { return !m_selectedRows.empty(); }
    bool IsRowSelected(int index) const;
    bool IsColSelected() const { return !m_selectedCols.empty(); }
    bool IsColSelected(int index) const;
    int GetSelCount() const { return int(m_selectedRows.size()); }
    int GetColSelNum() const { return int(m_selectedCols.size()); }
    bool IsSelectAll() const { return GetSelCount() == GetRowCount(); }
    /// Whether what is selected, columns before rows, stands in one piece.
    bool IsSelectContinous() const;
    void GetSelectedRows(std::vector<long>& list) const { list = m_selectedRows; }
    void GetSelectedCols(std::vector<long>& list) const { list = m_selectedCols; }
    /// The first one selected; null without.
    CSGridRow* GetSelectedRowPtr() const;
    int GetSelectedItem() const { return m_selectedItem; }
    /// The cursor goes there, too.
    void SetSelectedItem(int index);
    /// Of the selected item, in the column clicked last; null where nothing is selected.
    CSGridCell* GetCurrentCell() const;

    // What users do to rows

    virtual void DoDelete();
    /// Inserts an empty row after the selected one (the last one where none is selected) and selects it.
    void InsertRowAfter();
    void InsertCopyAfter();
    /// Appends an empty row and selects it.
    void DoAppendRow();
    /// Appends an empty child to the selected row.
    void AppendChildRow();
    /// Appends an empty root row.
    void AppendTree();
    /// Inserts an empty root row after the tree that the selected row belongs to.
    void DoInsertTreeAfter();
    /// Copies the selected row with all below it, right after it.
    void DoCopySubtree();
    /// A root row with one leaf below it, open; the texts are those of their first cells. Null in a plain
    /// grid.
    CSGridTreeRow* CreateTreeItem(const TString& text1, const TString& text2);
    /// Copies the selected rows for `Paste`, and as tab-separated text to the clipboard.
    void ClipSelect();
    /// Inserts copies of the rows copied last before row `index`.
    void Paste(int index);
    const TPtrList<CSGridRow>& GetRowPaste() const { return m_rowPaste; }
    /// The selected columns, or else the selected rows, as lines of tab-separated texts.
    QString SelectedText() const;
    /// Writes tab-separated texts into the cells from one on, as edits: read-only cells are passed over,
    /// `OnEdit` and `OnModified` are asked for each. Nothing is written when the texts reach beyond the last
    /// row or column. Empty, or a sentence saying what was not written.
    QString PasteText(int row, int column, const QString& text);
    void UpdateAutoIncrementCol();
    /// Selects the first row, from `from` on and then from the top, whose cell reads like the text, letter
    /// case apart; rows below folded ones are unfolded. `whole` false: begins like it. Its index, or -1.
    int FindAndSelect(const TString& text, int column, int from = 0, bool whole = true);
    bool FindAndSel(const TString& text, int column) { return FindAndSelect(text, column) >= 0; }
    /// Folds every row, or unfolds it, in one step for the display; each is asked for.
    void FoldAll();
    void UnFoldAll();
    bool IsAllSelectedRowsFolded() const;

    // Editing in a cell

    void EditCell(int row, int column);
    void EndEdit();
    bool IsEditing() const { return m_editor != nullptr; }
    CSGridCell* GetEditedCell() const { return m_editedCell; }
    CSCellCtrl* GetEditor() const { return m_editor.get(); }

    // Places, in the viewport

    /// False outside rows and columns; `row` and `column` are then -1 where there is none.
    bool PtToCell(const QPoint& point, int& row, int& column, bool* onButton = nullptr) const;
    QRect CellRect(int row, int column) const;
    /// Where the text stands: without lines, tree and button.
    QRect CellTextRect(int row, int column) const;
    QRect FoldBoxRect(int row) const;
    int TopRow() const;
    /// Rows that are in view, counting one cut by the lower edge.
    int VisibleRows() const;
    void EnsureVisible(int row, int column = -1);

    void RefreshCell(CSGridCell& cell);
    void RefreshRow(CSGridRow& row);
    void RefreshHeader();
    void Repaint();

    // Keys; non-zero when the key was used.

    virtual int OnPressKey(int key, Qt::KeyboardModifiers modifiers = {});
    virtual int OnKeyReturn();
    virtual int OnKeyDelete();
    virtual int OnKeyEscape();
    virtual int OnKeyArrow(int key);

    // Scripts

    int displayedRows() const override { return GetRowCount(); }
    int displayedColumns() const override { return GetColumnCount(); }
    QString headerText(int column) const override;
    QString cellText(int row, int column) const override { return GetItemText(row, column); }
    QString editCell(int row, int column, const QString& value) override;
    QString selectRow(int row) override;
    QString selectColumn(int column) override;
    std::vector<int> selectedRows() const override;

    // Screen readers

    /// The number by which they know a cell; -1 for none.
    int ChildOfCell(int row, int column) const;

    QSize sizeHint() const override;

    // Notifications. Those that give an int are asked before something happens: 0 refuses it.

    virtual int OnBeginMoveCol(int) { return 1; }
    virtual int OnBeginMoveRow(int) { return 1; }
    virtual int OnDeleteCol() { return 1; }
    virtual int OnDeleteRow() { return 1; }
    virtual int OnEdit(CSGridCell&) { return 1; }
    virtual int OnFoldRow(CSGridTreeRow&) { return 1; }
    virtual int OnUnFoldRow(CSGridTreeRow&) { return 1; }
    virtual int OnInsertChild(CSGridTreeRow*, int, CSGridTreeRow*&) { return 1; }
    virtual int OnInsertRow(int, CSGridRow*&) { return 1; }
    /// The text may be changed.
    virtual int OnModified(CSGridCell&, TString&) { return 1; }
    virtual int OnMovingCol(int, int) { return 1; }
    virtual int OnMovingRow(int, int) { return 1; }
    /// Before a cell or row is painted; 0 leaves it without its texts.
    virtual int OnRefresh(CSGridCell&) { return 1; }
    virtual int OnRefresh(CSGridRow&) { return 1; }
    /// Proposes the selected item (-1: none); the proposal may be changed.
    virtual int OnRowSelectChange(int oldIndex, int& newIndex);
    /// Whether an editor is to be opened by the user. The base toggles check boxes.
    virtual int OnBeforeEdit(CSGridCell& cell);
    virtual int OnEditMoveUp(int& row, int& column);
    virtual int OnEditMoveDown(int& row, int& column);
    virtual int OnEditMoveRight(int& row, int& column);
    virtual int OnEditMoveLeft(int& row, int& column);

    /// The button at the cell's right end; non-zero takes the changed text over.
    virtual int OnCellButtonDown(CSGridCell&, TString&) { return 0; }
    // Non-zero shows the text; else a text that is cut off is shown whole.
    virtual int OnCellTip(CSGridCell&, TString&) { return 0; }
    virtual int OnCellButtonTip(CSGridCell&, TString&) { return 0; }
    virtual int OnColTip(CSGridCol&, TString&) { return 0; }
    virtual int OnRowTip(CSGridRow&, TString&) { return 0; }
    virtual int OnActiveQuadTip(TString&) { return 0; }

    virtual void OnDataChanged() { }
    virtual void OnInsertCol(int) { }
    virtual void OnEndDeleteCol() { }
    virtual void OnEndDeleteRow() { }
    virtual void OnEndMoveCol(int, int) { }
    virtual void OnEndMoveRow(int, int) { }
    virtual void OnEndPaste() { }
    virtual void OnEndClip() { }
    virtual void OnDblClick(CSGridCell&) { }
    virtual void OnRClickCell(CSGridCell&, const QPoint&) { }
    virtual void OnRClickCol(CSGridCol&, const QPoint&) { }
    virtual void OnRClickQuad(const QPoint&) { }
    /// Selects the row where it is not selected.
    virtual void OnRClickRow(CSGridRow& row, const QPoint& globalPoint);
    virtual void OnCellComboString(CSGridCell&, QStringList&) { }
    virtual void OnCellComboSelChange(CSGridCell&, int, const QString&) { }
    virtual void OnInitCellSpin(CSGridCell&, QSpinBox&) { }
    /// After the user's own row was inserted.
    virtual void OnInsertRow(CSGridRow&) { }
    virtual void OnBeforeRefresh() { }
    /// Dragging a header or row ends there; the base moves it.
    virtual void OnMoveCol(int from, int to) { MoveCol(from, to); }
    virtual void OnMoveRow(int from, int to) { MoveRow(from, to); }
    /// A click on a header; the base selects the column.
    virtual void OnHeadClick(int column, Qt::KeyboardModifiers modifiers);
    virtual QColor GetLineColor() const { return QColor(0x00, 0x80, 0x80); }
    /// The editor for a cell, by the styles of its column; null: no editing.
    virtual std::unique_ptr<CSCellCtrl> OnGetEditCtrl(CSGridCell& cell);
    /// Draws the inside of a cell in place of its text; false draws the text.
    virtual bool OnDrawCell(QPainter&, CSGridCell&, const QRect&) { return false; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    friend class CSGridTreeRow;
    friend class GridHeader;
    friend class GridRowSelector;
    friend class GridCorner;

    void SetBits(unsigned bits, int on) { SetStyle(on ? m_style | bits : m_style & ~bits); }
    std::unique_ptr<CSGridRow> NewRow();
    void TakeStretchBack();
    void RenumberColumns();
    void LayOutChildren();
    bool IsUnknownRow(const CSGridRow* row) const { return row && row->GetGrid() == this && !row->m_piece; }

    // Display of tree rows
    void DisplayRows(int index, const std::vector<CSGridRow*>& rows);
    /// Takes what is displayed below the row out of the display, and the row itself.
    void HideRows(CSGridTreeRow& row, bool itself);
    void RebuildDisplay(const std::vector<CSGridTreeRow*>& roots);
    std::vector<CSGridTreeRow*> RootRows() const;

    // Selection
    void ShiftSelection(int from, int by);
    /// Before rows leave the display: they are selected and edited no more.
    void ForgetRows(int first, int count);
    void ClearRowSelection();
    void MoveSelectedItem(int from, int by);
    void SelectOnly(int row);
    void ClickRow(int row, Qt::KeyboardModifiers modifiers);
    void CopySubtree(const CSGridTreeRow& from, CSGridTreeRow& to);
    void SelectNewRow(CSGridRow* row);

    // Painting
    void DrawRow(QPainter& painter, int index);
    void DrawCell(QPainter& painter, CSGridCell& cell, int rowIndex, const QRect& rect);
    void DrawTree(QPainter& painter, CSGridTreeRow& row, const QRect& cell);
    int TreeIndent(const CSGridRow& row) const;
    bool ShowTip(const QPoint& point, const QPoint& globalPoint);

    // Editing
    /// Remembers a cell across notifications, whose code may delete rows and columns.
    class CellWatch {
    public:
        CellWatch(const CSGrid& grid, CSGridCell& cell);
        /// Null when the cell is displayed no more.
        CSGridCell* cell() const;
        /// The row in which the cell stands; where it is gone, the one that stands in its place, or -1.
        int row() const;

    private:
        const CSGrid& m_grid;
        CSGridCell* m_cell;
        int m_row;
        unsigned m_changes;
    };
    unsigned Changes() const { return m_rows.changes() + m_columnChanges; }
    void CommitText(CSGridCell& cell, const TString& text);
    void PlaceEditor();
    void CloseEditor();
    bool FocusIsInside() const;
    void PressCellButton(CSGridCell& cell);
    bool StepEdit(int& row, int& column, int step) const;
    int MoveEditSideways(int& row, int& column, int step);

    // Input
    void PressCell(QMouseEvent& event);
    int MoveSelectionTo(int row);
    bool TypeAhead(const QString& text);
    int PageRows() const;
    void PasteFromClipboard();
    bool TakesText(CSGridCell& cell, const TString& text);
    /// Tells a screen reader which cell the user is on, or that a tick changed.
    void NotifyAccessibility();
    void NotifyTick(const CSGridCell& cell);
    static void OfferAccessibility();

    int m_treeGrid;
    unsigned m_style = 0;
    int m_textHeight = 12, m_rowSpace = 3;
    TPtrList<CSGridCol> m_columns;
    RowList m_rows;
    int m_cursor = -1, m_selectedItem = -1, m_activeColumn = 0, m_selectionAnchor = -1;
    int m_stretch = 0; // of the last column beyond the width that was set
    std::vector<long> m_selectedRows, m_selectedCols;
    TPtrList<CSGridRow> m_rowPaste;
    std::unique_ptr<CSCellCtrl> m_editor;
    CSGridCell* m_editedCell = nullptr;
    bool m_active = false;
    unsigned m_columnChanges = 0; // grows when columns come, go or move
    /// True while a key goes on with the word that type-ahead looks for.
    bool IsTyping() const;
    QString m_typed;
    QElapsedTimer m_typedAt;
    std::unique_ptr<GridHeader> m_header;
    std::unique_ptr<GridRowSelector> m_rowSelector;
    std::unique_ptr<GridCorner> m_corner;
};
