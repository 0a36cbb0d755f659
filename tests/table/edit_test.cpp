// Rows, columns and merged areas under edits; what goes along with them.
#include "support.h"

#include "db/dictionary.h"

using table_test::addTable;
using table_test::makeTable;

namespace {

using Edit = std::function<Kcad::ErrorStatus(KcDbTable&)>;

std::string describe(const std::vector<KcDbCellRange>& merges)
{
    std::string text;
    for (const KcDbCellRange& m : merges)
        text += "[" + std::to_string(m.minRow) + "-" + std::to_string(m.maxRow) + ","
            + std::to_string(m.minColumn) + "-" + std::to_string(m.maxColumn) + "]";
    return text;
}

/// The cells' texts, "a b/c d" for two rows of two columns; empty cells as dots.
std::string texts(const KcDbTable& table)
{
    std::string all;
    for (int row = 0; row < table.numRows(); ++row) {
        for (int column = 0; column < table.numColumns(); ++column) {
            const QString text = table.textString(row, column);
            all += (column ? " " : row ? "/" : "") + (text.isEmpty() ? std::string(".") : text.toStdString());
        }
    }
    return all;
}

} // namespace

// Merged areas must follow inserted and deleted rows and columns, wherever these lie.
TEST(TableEdit, MergedAreasFollowEdits)
{
    // Start: 5 rows, 5 columns, rows 1 to 3 of columns 1 to 3 merged.
    const struct {
        const char* name;
        Edit edit;
        Kcad::ErrorStatus status;
        const char* merges;
    } rows[] = {
        { "row above", [](KcDbTable& t) { return t.insertRows(1, 10); }, Kcad::eOk, "[2-4,1-3]" },
        { "row inside", [](KcDbTable& t) { return t.insertRows(2, 10, 2); }, Kcad::eOk, "[1-5,1-3]" },
        { "row right below", [](KcDbTable& t) { return t.insertRows(4, 10); }, Kcad::eOk, "[1-3,1-3]" },
        { "row at the end", [](KcDbTable& t) { return t.insertRows(5, 10); }, Kcad::eOk, "[1-3,1-3]" },
        { "row beyond the end", [](KcDbTable& t) { return t.insertRows(6, 10); }, Kcad::eInvalidInput,
          "[1-3,1-3]" },
        { "column left", [](KcDbTable& t) { return t.insertColumns(0, 40); }, Kcad::eOk, "[1-3,2-4]" },
        { "column inside", [](KcDbTable& t) { return t.insertColumns(3, 40); }, Kcad::eOk, "[1-3,1-4]" },
        { "delete above", [](KcDbTable& t) { return t.deleteRows(0); }, Kcad::eOk, "[0-2,1-3]" },
        { "delete first of area", [](KcDbTable& t) { return t.deleteRows(1); }, Kcad::eOk, "[1-2,1-3]" },
        { "delete last of area", [](KcDbTable& t) { return t.deleteRows(3); }, Kcad::eOk, "[1-2,1-3]" },
        { "delete over upper end", [](KcDbTable& t) { return t.deleteRows(0, 2); }, Kcad::eOk, "[0-1,1-3]" },
        { "delete over lower end", [](KcDbTable& t) { return t.deleteRows(3, 2); }, Kcad::eOk, "[1-2,1-3]" },
        { "delete whole area", [](KcDbTable& t) { return t.deleteRows(1, 3); }, Kcad::eOk, "" },
        { "delete more than it", [](KcDbTable& t) { return t.deleteRows(0, 4); }, Kcad::eOk, "" },
        { "delete all rows", [](KcDbTable& t) { return t.deleteRows(0, 5); }, Kcad::eInvalidInput,
          "[1-3,1-3]" },
        { "delete columns to one", [](KcDbTable& t) { return t.deleteColumns(2, 2); }, Kcad::eOk,
          "[1-3,1-1]" },
        { "down to one cell",
          [](KcDbTable& t) {
              t.deleteColumns(2, 2);
              return t.deleteRows(1, 2);
          },
          Kcad::eOk, "" },
        { "merge around it", [](KcDbTable& t) { return t.mergeCells(0, 4, 0, 4); }, Kcad::eOk, "[0-4,0-4]" },
        { "merge across it", [](KcDbTable& t) { return t.mergeCells(0, 1, 0, 4); }, Kcad::eInvalidInput,
          "[1-3,1-3]" },
        { "merge beside it", [](KcDbTable& t) { return t.mergeCells(0, 0, 0, 4); }, Kcad::eOk,
          "[1-3,1-3][0-0,0-4]" },
        { "merge one cell", [](KcDbTable& t) { return t.mergeCells(0, 0, 0, 0); }, Kcad::eInvalidInput,
          "[1-3,1-3]" },
        { "unmerge elsewhere", [](KcDbTable& t) { return t.unmergeCells(0, 0, 0, 4); }, Kcad::eOk,
          "[1-3,1-3]" },
        { "unmerge by a corner", [](KcDbTable& t) { return t.unmergeCells(3, 4, 3, 4); }, Kcad::eOk, "" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto table = makeTable(5, 5);
        ASSERT_EQ(table->mergeCells(1, 3, 1, 3), Kcad::eOk);
        EXPECT_EQ(row.edit(*table), row.status);
        EXPECT_EQ(describe(table->table().merges), row.merges);
        EXPECT_EQ(table->table().cells.size(), size_t(table->numRows()) * table->numColumns());
    }
}

TEST(TableEdit, UnmergedCellAnswersFalse)
{
    const auto table = makeTable(3, 3);
    table->mergeCells(0, 0, 0, 2);
    int minRow = -1, maxRow = -1, minColumn = -1, maxColumn = -1;
    EXPECT_TRUE(table->isMergedCell(0, 1, &minRow, &maxRow, &minColumn, &maxColumn));
    EXPECT_EQ((std::array{ minRow, maxRow, minColumn, maxColumn }), (std::array{ 0, 0, 0, 2 }));
    EXPECT_FALSE(table->isMergedCell(1, 1, &minRow, &maxRow, &minColumn, &maxColumn));
    EXPECT_EQ((std::array{ minRow, maxRow, minColumn, maxColumn }), (std::array{ 1, 1, 1, 1 }));
    EXPECT_FALSE(table->isMergedCell(1, 1));
}

// Cells, names and states must move with their rows and columns.
TEST(TableEdit, ContentMovesWithRowsAndColumns)
{
    const struct {
        const char* name;
        Edit edit;
        const char* texts;
        const char* names;
    } rows[] = {
        { "row between", [](KcDbTable& t) { return t.insertRows(1, 10); }, "a b c/. . ./d e f", "x y z" },
        { "column first", [](KcDbTable& t) { return t.insertColumns(0, 40); }, ". a b c/. d e f", " x y z" },
        { "two columns inside", [](KcDbTable& t) { return t.insertColumns(2, 40, 2); }, "a b . . c/d e . . f",
          "x y   z" },
        { "column goes", [](KcDbTable& t) { return t.deleteColumns(1); }, "a c/d f", "x z" },
        { "row goes", [](KcDbTable& t) { return t.deleteRows(0); }, "d e f", "x y z" },
        { "smaller", [](KcDbTable& t) { return t.setSize(1, 2); }, "a b", "x y" },
        { "larger", [](KcDbTable& t) { return t.setSize(3, 4); }, "a b c ./d e f ./. . . .", "x y z " },
        { "no row", [](KcDbTable& t) { return t.setSize(0, 4); }, "a b c/d e f", "x y z" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto table = makeTable(2, 3);
        for (int i = 0; i < 6; ++i)
            table->setTextString(i / 3, i % 3, QString(QChar('a' + i)));
        for (int i = 0; i < 3; ++i)
            table->setColumnName(i, QString(QChar('x' + i)));
        table->setCellState(1, 2, 2);
        row.edit(*table);
        EXPECT_EQ(texts(*table), row.texts);
        QStringList names;
        for (int i = 0; i < table->numColumns(); ++i)
            names.push_back(table->columnName(i));
        EXPECT_EQ(names.join(' ').toStdString(), row.names);
        for (int r = 0; r < table->numRows(); ++r)
            for (int c = 0; c < table->numColumns(); ++c)
                EXPECT_EQ(table->cellState(r, c), table->textString(r, c) == "f" ? 2 : 0) << r << ' ' << c;
    }
}

TEST(TableEdit, PlacesOutsideAreRefused)
{
    const auto table = makeTable(2, 2);
    EXPECT_EQ(table->setTextString(2, 0, "x"), Kcad::eInvalidInput);
    EXPECT_EQ(table->setTextString(0, -1, "x"), Kcad::eInvalidInput);
    EXPECT_EQ(table->setCellState(5, 5, 2), Kcad::eInvalidInput);
    EXPECT_EQ(table->setColumnName(2, "x"), Kcad::eInvalidInput);
    EXPECT_EQ(table->setRowHeight(0, -1.0), Kcad::eInvalidInput);
    EXPECT_EQ(table->textString(7, 7), QString());
    EXPECT_EQ(table->rowHeight(-1), 0.0);
}

// Three header rows: a row's type comes from its place until it is set.
TEST(TableEdit, RowTypes)
{
    const auto table = makeTable(5, 2);
    const auto types = [&] {
        std::string all;
        for (int row = 0; row < table->numRows(); ++row)
            all += table->rowType(row) == kTitleRow ? 'T' : table->rowType(row) == kHeaderRow ? 'H' : 'd';
        return all;
    };
    EXPECT_EQ(types(), "THddd");
    table->setRowType(2, kHeaderRow);
    EXPECT_EQ(types(), "THHdd");
    table->insertRows(1, 10);
    EXPECT_EQ(types(), "THdHdd"); // the set type moves, the others stay with their places
    table->suppressTitle(true);
    EXPECT_EQ(types(), "HddHdd");
    table->suppressHeader(true);
    EXPECT_EQ(types(), "dddHdd");
    table->setTextHeight(7.0, kHeaderRow);
    table->setTextHeight(3, 1, 9.0);
    EXPECT_EQ(table->textHeight(3, 0), 7.0);
    EXPECT_EQ(table->textHeight(3, 1), 9.0);
    EXPECT_EQ(table->textHeight(4, 0), 0.18); // as the usual style has it
}

// Names and states are kept in the drawing for programs that the table's own form does not tell them, and
// undo takes them back together with the table.
TEST(TableEdit, RecordFollowsTheTable)
{
    KcDbDatabase drawing;
    auto made = makeTable(3, 2);
    made->setColumnName(1, QStringLiteral("数量"));
    made->setCellState(0, 1, 2);
    const KcDbObjectId id = addTable(drawing, std::move(made));
    const auto record = [&]() -> KcDbValueList {
        const KcDbRead<KcDbTable> table(id);
        const KcDbRead<KcDbDictionary> dictionary(table->extensionDictionary());
        if (!dictionary)
            return {};
        const KcDbRead<KcDbXrecord> open(dictionary->getAt("VDL_TABLE"));
        return open ? open->values() : KcDbValueList();
    };
    const KcDbValueList before = record();
    const auto find = [](const KcDbValueList& list, int code) {
        const auto at
            = std::find_if(list.begin(), list.end(), [&](const KcDbTypedValue& v) { return v.code == code; });
        return at == list.end() ? KcDbTypedValue{ code, int64_t(-1) } : *at;
    };
    EXPECT_EQ(find(before, 90).integer(), 1);
    EXPECT_EQ(find(before, 1).text(), QStringLiteral("数量"));

    drawing.undo().beginStep("edit");
    {
        KcDbWrite<KcDbTable> table(id);
        table->insertColumns(0, 40.0);
        table->insertRows(0, 10.0);
    }
    drawing.undo().endStep();
    EXPECT_EQ(find(record(), 90).integer(), 2);
    EXPECT_EQ(find(record(), 91).integer(), 1);
    EXPECT_EQ(find(record(), 71).integer(), 4);

    drawing.undo().undo();
    EXPECT_EQ(record(), before);
    EXPECT_EQ(KcDbRead<KcDbTable>(id)->columnName(1), QStringLiteral("数量"));

    {
        KcDbWrite<KcDbTable> table(id);
        table->setColumnName(1, {});
        table->setCellState(0, 1, 0);
    }
    EXPECT_TRUE(record().empty());
}
