// Tables: rows and columns of cells with texts or blocks, merged areas, sizes and looks; drawn by an
// anonymous block.
#pragma once

#include "db/block_reference.h"
#include "db/table_style.h"

#include <functional>

/// What a cell or the rows of one type say differently from the table style; absent: as the style says.
struct KcDbTableLook {
    std::optional<KcDbObjectId> textStyle;
    std::optional<double> textHeight; ///< drawing units
    std::optional<int> alignment; ///< 1 top left, 2 top centre, … 9 bottom right
    std::optional<KcCmColor> contentColor;
    std::optional<KcCmColor> backgroundColor;
    std::optional<bool> filled;
};

/// One grid line, as far as a cell or table says anything about it.
struct KcDbGridOverride {
    std::optional<KcCmColor> color;
    std::optional<int> lineWeight;
    std::optional<bool> visible;
    bool isSet() const { return color || lineWeight || visible; }
};

struct KcDbTableCell {
    enum Type { kText = 1, kBlock = 2 };
    enum Edge { kTop, kRight, kBottom, kLeft };
    struct Attribute {
        KcDbObjectId definition;
        QString text;
    };

    Type type = kText;
    QString text; ///< with format codes of multiline texts; paragraphs end with \P
    KcDbObjectId field; ///< a text computed by another program; gone once the text is set
    KcDbObjectId block;
    double blockScale = 1.0; ///< used when `autoFit` is off
    bool autoFit = false;
    double rotation = 0.0; ///< radians
    std::vector<Attribute> attributes; ///< texts of the block's attributes
    KcDbTableLook look;
    std::array<KcDbGridOverride, 4> edges; ///< by `Edge`
    int state = 0; ///< 0 free, 1 format locked, 2 content locked, 3 both

    // What only the file's form of a table has; goes with the content that it describes.
    int virtualEdges = 0; ///< group 178
    int extendedFlags = 0; ///< group 92
    int otherFlags = 0,
        otherOverrides = 0; ///< bits of groups 172 and 177 or 91 that differ from what is said above
    KcDbValueList
        fileValue; ///< the groups of the value, from 2007 on: numbers, dates and formats of other programs
    KcDbValueList others; ///< groups that no member above holds
};

/// A rectangle of cells that are one; rows and columns count from 0, both ends included.
struct KcDbCellRange {
    int minRow = 0, maxRow = 0, minColumn = 0, maxColumn = 0;
    bool contains(int row, int column) const
    {
        return row >= minRow && row <= maxRow && column >= minColumn && column <= maxColumn;
    }
    friend bool operator==(const KcDbCellRange&, const KcDbCellRange&) = default;
};

struct KcDbTableData {
    struct Row {
        double height = 0.0; ///< as set
        double drawnHeight = 0.0; ///< the height that the content made the row take; 0: not computed yet
        std::optional<KcDbRowType> type; ///< when not by its place
    };
    struct Column {
        double width = 0.0;
        QString name;
    };
    struct RowLook {
        KcDbTableLook look;
        std::array<KcDbGridOverride, 6> grid; ///< in the order of `KcDbGridLine`
    };

    std::vector<Row> rows;
    std::vector<Column> columns;
    std::vector<KcDbTableCell> cells; ///< row by row
    std::vector<KcDbCellRange> merges; ///< none overlaps another
    KcDbObjectId style;
    KcGeVector3d direction{ 1, 0, 0 }; ///< of the rows, world coordinates
    int valueFlags = 22; ///< group 90 of the file
    std::optional<bool> upward, titleSuppressed, headerSuppressed;
    std::optional<double> horizontalMargin, verticalMargin;
    std::array<RowLook, 3> rowLooks; ///< data, title, header
    double defaultRowHeight = 0.0, defaultColumnWidth = 0.0; ///< of rows and columns that `setSize` adds
    std::array<int, 4> otherOverrides{}; ///< bits of groups 93 to 96 that are not said above
    KcDbValueList others; ///< overriding groups that no member above holds
};

/// A table. Rows and columns count from 0. Positions outside the table are refused by setters with
/// eInvalidInput and answered by getters with what an empty cell has. Changes show after
/// `recomputeTableBlock`.
class KcDbTable : public KcDbBlockReference {
    KCRX_DECLARE(KcDbTable)
public:
    KcDbTable() = default;

    const KcDbTableData& table() const { return m_table; }
    /// For readers; other code uses the operations below, which keep the parts in step.
    KcDbTableData& tableForReading() { return m_table; }

    /// Takes a table into a block of a drawing and makes its graphics. The way to add tables: `appendEntity`
    /// alone leaves a table without graphics until `recomputeTableBlock`.
    static KcDbObjectId append(KcDbObjectId block, std::unique_ptr<KcDbTable> table);

    // Size.

    int numRows() const { return int(m_table.rows.size()); }
    int numColumns() const { return int(m_table.columns.size()); }
    /// Rows and columns that go take their cells with them; new ones get the default sizes. At least one of
    /// each.
    Kcad::ErrorStatus setSize(int rows, int columns);
    /// The height with which the row is drawn: as set, or more when its content needs it.
    double rowHeight(int row) const;
    /// The height as set.
    double minimumRowHeight(int row) const;
    Kcad::ErrorStatus setRowHeight(int row, double height);
    /// Of all rows there are and of those that `setSize` will add.
    void setRowHeight(double height);
    double columnWidth(int column) const;
    Kcad::ErrorStatus setColumnWidth(int column, double width);
    void setColumnWidth(double width);
    double width() const;
    double height() const;

    /// Inserts rows before row `at` (0 to the number of rows). A merged area that spans the place grows.
    Kcad::ErrorStatus insertRows(int at, double height, int count = 1);
    Kcad::ErrorStatus insertColumns(int at, double width, int count = 1);
    /// The table keeps at least one row and column. Merged areas shrink, and end when one cell is left.
    Kcad::ErrorStatus deleteRows(int at, int count = 1);
    Kcad::ErrorStatus deleteColumns(int at, int count = 1);

    QString columnName(int column) const;
    Kcad::ErrorStatus setColumnName(int column, const QString& name);

    // Merged areas.

    /// True when the cell is part of a merged area, whose corners go to the arguments that are given. The
    /// corners of an unmerged cell are the cell itself.
    bool isMergedCell(
        int row, int column, int* minRow = nullptr, int* maxRow = nullptr, int* minColumn = nullptr,
        int* maxColumn = nullptr) const;
    /// Makes one area of the cells; areas inside it are taken in. eInvalidInput for a single cell and when an
    /// area would be cut.
    Kcad::ErrorStatus mergeCells(int minRow, int maxRow, int minColumn, int maxColumn);
    /// Ends every merged area that touches the cells.
    Kcad::ErrorStatus unmergeCells(int minRow, int maxRow, int minColumn, int maxColumn);

    // Content.

    const KcDbTableCell& cell(int row, int column) const;
    /// The text as held, format codes included.
    QString textString(int row, int column) const;
    /// The text without format codes; paragraphs are separated by line feeds.
    QString plainText(int row, int column) const;
    /// Makes the cell a text cell. Line feeds become paragraphs.
    Kcad::ErrorStatus setTextString(int row, int column, const QString& text);
    /// Null for a text cell.
    KcDbObjectId blockTableRecordId(int row, int column) const;
    /// Makes the cell a block cell. With `autoFit` the block is scaled to fill the cell inside its margins.
    /// Layouts are refused; a null block empties the cell.
    Kcad::ErrorStatus setBlockTableRecordId(int row, int column, KcDbObjectId block, bool autoFit = true);
    Kcad::ErrorStatus setBlockScale(int row, int column, double scale);
    Kcad::ErrorStatus setRotation(int row, int column, double angle);
    /// 2 content locked, 0 free. Kept for the programs that ask; the operations here change locked cells too.
    int cellState(int row, int column) const;
    Kcad::ErrorStatus setCellState(int row, int column, int state);

    // Looks.

    KcDbObjectId tableStyle() const { return m_table.style; }
    void setTableStyle(KcDbObjectId style);
    /// By the row's place: title, header, data, as far as these are not suppressed; or as set.
    KcDbRowType rowType(int row) const;
    /// Nothing: by place again.
    Kcad::ErrorStatus setRowType(int row, std::optional<KcDbRowType> type);
    bool isTitleSuppressed() const;
    bool isHeaderSuppressed() const;
    void suppressTitle(bool suppressed);
    void suppressHeader(bool suppressed);

    // As drawn: the cell's own value, else that of its row type in the table, else the style's.
    double textHeight(int row, int column) const;
    KcDbObjectId textStyle(int row, int column) const;
    int alignment(int row, int column) const;
    KcCmColor contentColor(int row, int column) const;
    /// Nothing when the cell has no background.
    std::optional<KcCmColor> backgroundColor(int row, int column) const;
    KcDbGridLook gridLook(int row, int column, KcDbTableCell::Edge edge) const;

    // Of all rows of the types (a sum of bits), cells with values of their own apart.
    void setTextHeight(double height, int rowTypes);
    void setTextStyle(KcDbObjectId style, int rowTypes);
    void setAlignment(int alignment, int rowTypes);
    void setContentColor(const KcCmColor& color, int rowTypes);
    void setBackgroundColor(std::optional<KcCmColor> color, int rowTypes);
    void setGridLook(const KcDbGridLook& look, int gridLines, int rowTypes);
    // Of one cell.
    Kcad::ErrorStatus setTextHeight(int row, int column, double height);
    Kcad::ErrorStatus setTextStyle(int row, int column, KcDbObjectId style);
    Kcad::ErrorStatus setAlignment(int row, int column, int alignment);
    Kcad::ErrorStatus setContentColor(int row, int column, const KcCmColor& color);
    Kcad::ErrorStatus setBackgroundColor(int row, int column, std::optional<KcCmColor> color);
    Kcad::ErrorStatus setGridLook(int row, int column, KcDbTableCell::Edge edge, const KcDbGridLook& look);

    double horizontalMargin() const;
    double verticalMargin() const;
    void setMargins(double horizontal, double vertical);

    // Place.

    KcGeVector3d direction() const { return m_table.direction; }
    /// Turns the rows into this direction, world coordinates, about the table's position. A vector without
    /// length is ignored.
    void setDirection(KcGeVector3d direction);
    bool isUpward() const;
    void setUpward(bool upward);

    // Graphics.

    /// Computes row heights from the content and draws the table anew into its anonymous block. Needed after
    /// changes to a table of a drawing. The table must be open for writing. eNotInDatabase for a table in no
    /// drawing, whose row heights are computed nevertheless.
    Kcad::ErrorStatus recomputeTableBlock();
    /// The cell, or the merged area that it belongs to, in the coordinates of the table: x along the rows
    /// from the position, y upward from it.
    KcGeExtents3d cellBox(int row, int column) const;

    /// The rectangle of the cells, in world coordinates.
    KcGeExtents3d geomExtents() const override;
    KcGeExtents3d extentsUnder(const KcGeMatrix3d& matrix) const override;
    /// By its block; a table whose block is missing or empty draws its cells itself.
    void worldDraw(KcGiWorldDraw& draw) const override;
    /// Moves, turns and scales evenly; mirroring moves the table to the mirrored place and leaves it
    /// readable. eCannotScaleNonUniformly for anything else.
    Kcad::ErrorStatus transformBy(const KcGeMatrix3d& matrix) override;

protected:
    KcDbTable(const KcDbTable& other);

private:
    bool isCell(int row, int column) const
    {
        return row >= 0 && row < numRows() && column >= 0 && column < numColumns();
    }
    KcDbTableCell* at(int row, int column);
    template <class Change> Kcad::ErrorStatus changeCell(int row, int column, Change change);
    template <class Change> Kcad::ErrorStatus changeLook(int row, int column, Change change);
    template <class Change> void changeRows(int rowTypes, Change change);
    const KcDbTableStyle::Data& styleData() const;
    const KcDbTableData::RowLook& rowLook(int row) const;
    std::optional<KcDbCellRange> mergeAt(int row, int column) const;
    void beforeChange();
    void readRecord() const;
    void writeRecord();
    KcDbValueList recordValues() const;

    // table_graphics.cpp
    void computeHeights();
    double neededHeight(int row, int column, double width) const;
    KcDbObjectId ownBlock();
    struct Offsets {
        std::vector<double> x, y; ///< of the grid lines, in the coordinates of the table
    };
    Offsets offsets() const;
    KcGeExtents3d cellBox(const Offsets& lines, int row, int column) const;
    /// Takes what a table consists of, in the coordinates of the table; references with their attributes.
    using Take
        = std::function<void(std::unique_ptr<KcDbEntity>, std::vector<std::unique_ptr<KcDbAttribute>>)>;
    /// Every part, in drawing order, with the heights that are known.
    void parts(const KcDbDatabase& drawing, const Take& take) const;
    void gridParts(KcDbObjectId layer, const Offsets& lines, KcDbObjectId linetype, const Take& take) const;
    void cellParts(KcDbObjectId layer, const KcGeExtents3d& box, int row, int column, const Take& take) const;
    /// False when the block that shows the table is missing or empty, as in files of programs that make none.
    bool isDrawn() const;

    KcDbTableData m_table;
    KcDbObjectId m_blockOwner; ///< the table for which the anonymous block was made; null: this one
    mutable bool m_recordRead
        = false; ///< names, states and row types of the extension record are in `m_table`
};

template <class Change> Kcad::ErrorStatus KcDbTable::changeCell(int row, int column, Change change)
{
    if (!isCell(row, column))
        return Kcad::eInvalidInput;
    beforeChange();
    change(*at(row, column));
    return Kcad::eOk;
}
