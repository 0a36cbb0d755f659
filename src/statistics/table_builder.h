// Making statistics tables: sizes from the drawing settings, columns from the layout document as the drawing
// shows them, the product's table style and layer.
#pragma once

#include "db/table.h"

#include <memory>
#include <vector>

/// How tables are drawn, and the table that is being made. Lengths in drawing units.
struct TableSettings {
    std::unique_ptr<KcDbTable> table; ///< not in the drawing yet
    double drawingScale = 100;
    double textHeight = 350; ///< of the texts in the table: paper height times scale
    double rowHeight = 595;
    double columnWidth = 1750;
    int areaUnit = 2; ///< 0 m², 1 none, 2 m2, 3 M2
    int paged = 0;
};

/// The settings for a drawing scale and a text height on paper.
TableSettings tableSettingsFor(double drawingScale, double paperTextHeight, int areaUnit);
/// What the settings file says; what it lacks is as above.
TableSettings readTableSettings();

/// The table style of the product, made when the drawing lacks it; null when it cannot be made.
KcDbObjectId tableStyleId(KcDbDatabase& database);

/// One column, or a heading above several.
struct TableColumn {
    QString name; ///< by which the program knows the column
    QString heading;
    std::vector<TableColumn> parts; ///< columns below the heading; empty: a column of its own
};

/// The columns of a table that the layout document lists and the drawing shows.
struct TableLayout {
    QString title;
    std::vector<TableColumn> columns;
};

/// Title and headings: makes the table as wide as the layout and two rows high, three when a heading stands
/// above several columns. Cells of these rows are locked and merged; a heading above several columns spans
/// these, any other spans both rows of headings.
void buildTableHeader(KcDbTable& table, const TableLayout& layout, double rowHeight, double columnWidth);

/// Makes `settings.table`, with its headings, for a table of the layout document. False, having told the user
/// why, when the document or the drawing does not know it.
bool createTable(TableSettings& settings, const QString& tableName);

/// The rows that title and headings take, of a table that may come from another program: 3 when the cell (2,
/// 0) is merged with the one above or repeats its text, or when the row is known to hold headings; else 2.
struct TableHeaderRows {
    int count = 2;
    bool repeatsTexts = false; ///< the second row of headings repeats texts instead of being merged
};
TableHeaderRows findHeaderRows(const KcDbTable& table);

/// The name of a column; where it has none, its heading in the last row of headings, or in the one above.
QString tableColumnName(const KcDbTable& table, int headerRows, int column);

/// Merges the headings of a table in which both rows of headings repeat the texts that span them: columns
/// whose texts agree over both rows, the others, from the first to the last of them, in the upper one.
void mergeRepeatedHeadings(KcDbTable& table);

/// Widens the columns in which a word of a data row, which cannot be broken, is longer than the cell is wide;
/// all others stay.
void widenForLongWords(KcDbTable& table, int firstDataRow);
