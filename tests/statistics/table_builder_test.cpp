// Headings of statistics tables, for layouts with and without a heading above several columns, and how
// headings of other programs are understood.
#include "statistics/table_builder.h"

#include <gtest/gtest.h>

namespace {

TableColumn column(const char* name)
{
    return { QString::fromUtf8(name), QString::fromUtf8(name) + "!", {} };
}

TableColumn group(const char* name, std::vector<TableColumn> parts)
{
    return { QString::fromUtf8(name), QString::fromUtf8(name) + "!", std::move(parts) };
}

// The rows of headings: what each cell shows, "^" where it continues the one above, "<" the one to the left.
std::string headings(const KcDbTable& table)
{
    std::string text;
    for (int row = 0; row < table.numRows(); ++row) {
        text += row ? "/" : "";
        for (int col = 0; col < table.numColumns(); ++col) {
            int top = row, left = col;
            table.isMergedCell(row, col, &top, nullptr, &left);
            text += col ? " " : "";
            text += left < col ? "<" : top < row ? "^" : table.plainText(row, col).toStdString();
        }
    }
    return text;
}

std::string names(const KcDbTable& table)
{
    QStringList list;
    for (int col = 0; col < table.numColumns(); ++col)
        list += table.columnName(col);
    return list.join(' ').toStdString();
}

} // namespace

TEST(TableHeader, SpansWhatBelongsTogether)
{
    const struct {
        const char* name;
        std::vector<TableColumn> columns;
        const char* headings;
        const char* names;
    } rows[] = {
        { "single columns", { column("a"), column("b") }, "T </a! b!", "a b" },
        { "a heading above two in the middle",
          { column("a"), group("g", { column("p"), column("q") }), column("b") },
          "T < < </a! g! < b!/^ p! q! ^",
          "a p q b" },
        { "it stands first",
          { group("g", { column("p"), column("q") }), column("b") },
          "T < </g! < b!/p! q! ^",
          "p q b" },
        { "it stands above one", { column("a"), group("g", { column("p") }) }, "T </a! g!/^ p!", "a p" },
        { "two of them",
          { group("g", { column("p"), column("q") }), group("h", { column("r"), column("s") }) },
          "T < < </g! < h! </p! q! r! s!",
          "p q r s" },
        { "one column", { column("a") }, "T/a!", "a" },
    };
    for (const auto& row : rows) {
        KcDbTable table;
        buildTableHeader(table, { "T", row.columns }, 595, 1750);
        EXPECT_EQ(headings(table), row.headings) << row.name;
        EXPECT_EQ(names(table), row.names) << row.name;
        for (int r = 0; r < table.numRows(); ++r) {
            EXPECT_EQ(table.minimumRowHeight(r), 595) << row.name;
            EXPECT_EQ(table.rowType(r), r == 0 ? kTitleRow : kHeaderRow) << row.name << r;
            for (int c = 0; c < table.numColumns(); ++c)
                EXPECT_EQ(table.cellState(r, c), 2) << row.name;
        }
        for (int c = 0; c < table.numColumns(); ++c)
            EXPECT_EQ(table.columnWidth(c), 1750) << row.name;
        table.insertRows(table.numRows(), 595);
        EXPECT_EQ(findHeaderRows(table).count, table.numRows() - 1) << row.name;
        EXPECT_EQ(table.rowType(table.numRows() - 1), kDataRow) << row.name;
        EXPECT_EQ(table.cellState(table.numRows() - 1, 0), 0) << row.name;
    }
}

TEST(TableSettings, SizesFollowTextHeightAndScale)
{
    const TableSettings usual = tableSettingsFor(100, 3.5, 2);
    EXPECT_DOUBLE_EQ(usual.textHeight, 350);
    EXPECT_DOUBLE_EQ(usual.rowHeight, 595);
    EXPECT_DOUBLE_EQ(usual.columnWidth, 1750);
    const TableSettings large = tableSettingsFor(100, 5, 2);
    EXPECT_DOUBLE_EQ(large.rowHeight, 850);
    EXPECT_DOUBLE_EQ(large.columnWidth, 2500);
}

namespace {

// Fills a table with rows of texts, as another program may have made it: no column names, nothing merged but
// the title.
void fillPlainly(KcDbTable& table, const std::vector<QStringList>& rows)
{
    table.setSize(int(rows.size()), int(rows.front().size()));
    for (int row = 0; row < table.numRows(); ++row)
        for (int col = 0; col < table.numColumns(); ++col)
            table.setTextString(row, col, rows[size_t(row)][col]);
}

} // namespace

TEST(TableHeader, IsRecognisedByMergesOrRepeatedTexts)
{
    const struct {
        const char* name;
        std::vector<QStringList> rows;
        bool merged; ///< cell (2, 0) with the one above
        int count;
        bool repeats;
    } rows[] = {
        { "title only", { { "T", "" } }, false, 2, false },
        { "no data rows", { { "T", "" }, { "No", "Name" } }, false, 2, false },
        { "data below two rows", { { "T", "" }, { "No", "Name" }, { "1", "A" } }, false, 2, false },
        { "merged", { { "T", "" }, { "No", "Name" }, { "", "x" }, { "1", "A" } }, true, 3, false },
        { "repeated in another case",
          { { "T", "" }, { "No", "N" }, { "NO", "x" }, { "1", "A" } },
          false,
          3,
          true },
    };
    for (const auto& row : rows) {
        KcDbTable table;
        fillPlainly(table, row.rows);
        if (row.merged)
            table.mergeCells(1, 2, 0, 0);
        EXPECT_EQ(findHeaderRows(table).count, row.count) << row.name;
        EXPECT_EQ(findHeaderRows(table).repeatsTexts, row.repeats) << row.name;
    }
}

TEST(TableHeader, ColumnNamesComeFromHeadingsWhereThereAreNone)
{
    KcDbTable table;
    fillPlainly(table, { { "T", "", "" }, { "No", "Size", "" }, { "No", "H", "" } });
    table.setColumnName(1, "height");
    EXPECT_EQ(tableColumnName(table, 3, 0), "No");
    EXPECT_EQ(tableColumnName(table, 3, 1), "height");
    table.setTextString(1, 2, "Unit");
    EXPECT_EQ(tableColumnName(table, 3, 2), "Unit"); // from the row above
    EXPECT_EQ(tableColumnName(table, 2, 2), "Unit");
}

TEST(TableHeader, RepeatedTextsAreMergedAgain)
{
    KcDbTable table;
    fillPlainly(
        table,
        { { "T", "", "", "", "" }, { "No", "Size", "", "", "Unit" }, { "no", "H", "W", "D", "UNIT" } });
    mergeRepeatedHeadings(table);
    EXPECT_EQ(headings(table), "T    /No Size < < Unit/^ H W D ^");
}
