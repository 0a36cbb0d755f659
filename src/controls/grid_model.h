// What a grid consists of: columns, rows, rows of a tree, cells. The grid (grid.h) changes them; they know
// nothing of painting and keys.
#pragma once

#include "controls/grid_types.h"

#include <QColor>

class CSGrid;
class CSGridCell;
class CSGridRow;
class CSGridTreeRow;
struct RowPiece;

class CSGridCol {
public:
    enum Style : unsigned {
        kReadOnly = 0x1,
        kComboEdit = 0x2,
        kComboSel = 0x4,
        kRightButton = 0x8,
        kRightSpin = 0x10,
        kCenter = 0x20,
        kCheckButton = 0x40,
        kAutoIncrement = 0x80
    };

    explicit CSGridCol(const TString& name = {})
        : m_name(name)
    {
    }

    /// Position among the grid's columns.
    int GetIndex() const { return m_index; }
    const TString& GetName() const { return m_name; }
    void SetName(const TString& name);
    CSGrid* GetGrid() const { return m_grid; }

    /// Horizontal extent in logical pixels.
    int GetLeft() const { return m_left; }
    int GetRight() const { return m_right; }
    int GetWidth() const { return m_right - m_left; }

    unsigned GetStyle() const { return m_style; }
    void SetStyle(unsigned style) { m_style = style; }

    /// True for every column of a read-only grid, too.
    bool IsReadOnly() const;
    bool IsComboEdit() const { return (m_style & kComboEdit) != 0; }
    bool IsComboSel() const { return (m_style & kComboSel) != 0; }
    bool IsRightButton() const { return (m_style & kRightButton) != 0; }
    bool IsRightSpin() const { return (m_style & kRightSpin) != 0; }
    bool IsCenter() const { return (m_style & kCenter) != 0; }
    bool IsCheckButton() const { return (m_style & kCheckButton) != 0; }
    bool IsAutoIncrement() const { return (m_style & kAutoIncrement) != 0; }

    void SetReadOnly(bool on) { SetBits(kReadOnly, on); }
    void SetComboEdit(bool on) { SetBits(kComboEdit, on); }
    void SetComboSel(bool on) { SetBits(kComboSel, on); }
    void SetRightButton(bool on) { SetBits(kRightButton, on); }
    void SetRightSpin(bool on) { SetBits(kRightSpin, on); }
    void SetCenter(bool on) { SetBits(kCenter, on); }
    void SetCheckButton(bool on) { SetBits(kCheckButton, on); }
    /// A numbered column is read-only.
    void SetAutoIncrement(bool on) { SetBits(kAutoIncrement | kReadOnly, on); }

    QColor GetBackColor() const { return m_backColour; }
    void SetBackColor(const QColor& colour) { m_backColour = colour; }
    QColor GetTextColor() const { return m_textColour; }
    void SetTextColor(const QColor& colour) { m_textColour = colour; }

private:
    friend class CSGrid;
    void SetBits(unsigned bits, bool on) { m_style = on ? m_style | bits : m_style & ~bits; }

    int m_index = 0;
    unsigned m_style = 0;
    TString m_name;
    int m_left = 0, m_right = 0;
    QColor m_backColour = QColor(0xFF, 0xFF, 0xFF);
    QColor m_textColour = QColor(0, 0, 0);
    CSGrid* m_grid = nullptr;
};

class CSGridCell {
public:
    enum Flag : unsigned { kReadOnly = 0x1, kRightButton = 0x2 };

    CSGridCell(CSGridRow* row, CSGridCol* column)
        : m_row(row)
        , m_column(column)
    {
    }

    const TString& GetText() const { return m_text; }
    /// Sets the text and has the cell drawn anew; nobody is asked.
    void SetText(const TString& text);
    CSGrid* GetGrid() const;
    CSGridRow* GetRow() const { return m_row; }
    CSGridCol* GetCol() const { return m_column; }

    /// By its own bit, its column's, its row's or the grid's.
    bool IsReadOnly() const;
    void SetReadOnly(bool on) { SetBits(kReadOnly, on); }
    /// A button at the right end, by the cell's own bit or its column's.
    bool IsRightButton() const { return (m_flags & kRightButton) != 0 || m_column->IsRightButton(); }
    void SetRightButton(bool on) { SetBits(kRightButton, on); }
    unsigned GetFlags() const { return m_flags; }
    void Refresh();

    explicit operator const TString&() const { return m_text; }
    explicit operator int() const { return int(m_text); }
    explicit operator double() const { return double(m_text); }
    friend bool operator<(const CSGridCell& a, const CSGridCell& b) { return a.m_text < b.m_text; }
    friend bool operator>(const CSGridCell& a, const CSGridCell& b) { return a.m_text > b.m_text; }

private:
    friend class CSGrid;
    friend class CSGridRow;
    void SetBits(unsigned bits, bool on) { m_flags = on ? m_flags | bits : m_flags & ~bits; }

    TString m_text;
    unsigned m_flags = 0;
    CSGridRow* m_row;
    CSGridCol* m_column;
};

class CSGridRow {
public:
    enum Flag : unsigned { kReadOnly = 0x1, kNoDelete = 0x2, kUnFolded = 0x4 };

    /// With an empty cell for every column that the grid has. The grid takes the row over by `AppendRow` or
    /// `InsertRow`.
    explicit CSGridRow(CSGrid* grid);
    CSGridRow(const CSGridRow&) = delete;
    CSGridRow& operator=(const CSGridRow&) = delete;

    virtual void InsertCol(int index);
    virtual void AppendCol();
    virtual void DelCol(int index);
    virtual void MoveCol(int from, int to);
    virtual ~CSGridRow();
    virtual int IsParentRow() const { return 0; }
    virtual int IsChildRow() const { return 0; }
    virtual int IsTreeRow() const { return 0; }
    virtual void Refresh();

    /// Position among the displayed rows; -1 while the row is not displayed.
    int GetIndex() const;
    CSGrid* GetGrid() const { return m_grid; }
    CSGridCell* GetCell(int column) const { return m_cells[column]; }
    CSGridCell* operator[](int column) const { return m_cells[column]; }
    int GetCellCount() const { return m_cells.GetCount(); }
    TString GetItemText(int column) const;
    void SetItemText(int column, const TString& text);

    unsigned GetFlags() const { return m_flags; }
    bool IsReadOnly() const;
    void SetReadOnly(bool on) { SetBits(kReadOnly, on); }
    bool IsDelUnable() const;
    void SetDelUnable(bool on) { SetBits(kNoDelete, on); }

    /// The row owns what is attached to it; may be null.
    void SetExtendData(CSRowData* data) { m_data.reset(data); }
    CSRowData* GetExtendData() const { return m_data.get(); }

    /// Texts and flags of the cells and of the row; the data attached are not copied.
    void CopyFrom(const CSGridRow& other);

protected:
    void SetBits(unsigned bits, bool on) { m_flags = on ? m_flags | bits : m_flags & ~bits; }

private:
    friend class CSGrid;
    friend class RowList;

    CSGrid* m_grid;
    RowPiece* m_piece = nullptr; // where it is displayed
    unsigned m_flags = 0;
    bool m_selected = false; // kept by the grid beside its list of selected rows
    TPtrList<CSGridCell> m_cells;
    std::unique_ptr<CSRowData> m_data;
};

class CSGridTreeRow : public CSGridRow {
public:
    /// A root row.
    explicit CSGridTreeRow(CSGrid* grid);
    /// A row to be put below a parent by `AppendChild` or `InsertChildRow`.
    explicit CSGridTreeRow(CSGridTreeRow* parent);
    ~CSGridTreeRow() override;

    void InsertCol(int index) override;
    void DelCol(int index) override;
    void MoveCol(int from, int to) override;
    int IsParentRow() const override { return m_children.IsEmpty() ? 0 : 1; }
    int IsChildRow() const override { return m_parent ? 1 : 0; }
    int IsTreeRow() const override { return 1; }

    CSGridTreeRow* GetParentRow() const { return m_parent; }
    CSGridTreeRow* GetRootRow();
    bool IsRootRow() const { return !m_parent; }
    int GetParentDepth() const;

    int GetChildNum() const { return m_children.GetCount(); }
    CSGridTreeRow* GetChildRow(int index) const { return m_children[index]; }
    CSGridTreeRow* GetLastChildRow() const { return m_children[GetChildNum() - 1]; }
    /// -1 when the row is not a child of this one.
    int GetChildIndex(const CSGridTreeRow* row) const { return m_children.IndexOf(row); }
    /// The display index that child `index` has, or had when this row and those before it were unfolded as
    /// they are flagged; -1 while this row is not displayed or there is no such child.
    int GetGlobalChildIndex(int index) const;
    /// Takes the row over and displays it where its parent is unfolded and displayed.
    void AppendChild(CSGridTreeRow* row) { InsertChildRow(GetChildNum(), row); }
    void InsertChildRow(int index, CSGridTreeRow* row);
    /// Deletes a child with all below it.
    void DeleteChildRow(int index);

    // The child cursor.
    void MoveToFirst() { m_cursor = 0; }
    void MoveToNext() { ++m_cursor; }
    void MoveToPre() { --m_cursor; }
    bool IsOut() const { return m_cursor < 0 || m_cursor >= GetChildNum(); }
    CSGridTreeRow* GetCurChildRow() const { return m_children[m_cursor]; }

    /// Display rows that the row with all below it takes: 1 when folded.
    int GetRowNum() const;
    /// Leaves below the row; 1 for a leaf.
    int GetDataRowCount() const;

    void Fold();
    void UnFold();
    void FoldAll();
    void UnFoldAll();
    bool IsFold() const { return (GetFlags() & kUnFolded) == 0; }
    void SetUnFoldFlag(bool on) { SetBits(kUnFolded, on); }
    bool IsVisible() const { return GetIndex() >= 0; }
    bool IsChildVisible() const { return !m_children.IsEmpty() && m_children[0]->IsVisible(); }

    /// Appends the leaves below the row (the row itself when it is one) to an archive: the texts of the first
    /// cells of its ancestors from the root down, each with "\" behind it, then the text of each cell. A text
    /// is its count of UTF-16 units (16 bits below 0xFFFF; else 0xFFFF and 32 bits) and the units, all little
    /// endian.
    void Serialize(QByteArray& archive) const;

    /// The row and all below it that are displayed when the row is, in display order.
    void CollectDisplayed(std::vector<CSGridRow*>& rows);
    /// The row and all below it, folded ones too.
    void CollectAll(std::vector<CSGridTreeRow*>& rows);

private:
    friend class CSGrid;

    CSGridTreeRow* m_parent = nullptr;
    int m_cursor = 0;
    TPtrList<CSGridTreeRow> m_children;
};
