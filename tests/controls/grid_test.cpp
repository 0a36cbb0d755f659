// Rows, columns, selections, trees and editing of the grid, by its operations and by keys and mouse.
#include "support.h"

#include <random>

namespace {

using Rows = std::vector<long>;

TEST(GridModel, BeginsEmpty)
{
    CSGrid grid;
    EXPECT_EQ(grid.GetRowHeight(), 15);
    EXPECT_EQ(grid.GetCurIndex(), -1);
    EXPECT_EQ(grid.GetSelectedItem(), -1);
    EXPECT_TRUE(grid.IsEOF());
    EXPECT_EQ(grid.GetRow(0), nullptr);
}

TEST(GridModel, InsertedColumnMovesTheLaterOnes)
{
    CSGrid grid;
    grid.AppendColumn(u"a", 90);
    grid.AppendColumn(u"b", 120);
    grid.AppendRow();
    grid.SetItemText(0, 1, u"kept");
    grid.InsertColumn(1, TString(u"new"), 80);
    EXPECT_EQ(grid.GetCol(1)->GetLeft(), 90);
    EXPECT_EQ(grid.GetCol(1)->GetRight(), 170);
    EXPECT_EQ(grid.GetCol(2)->GetLeft(), 170);
    EXPECT_EQ(grid.GetCol(2)->GetRight(), 290);
    EXPECT_EQ(grid.GetItemText(0, 2), u"kept");
}

TEST(GridModel, InsertedRowShiftsTheSelection)
{
    NotingGrid grid(5);
    grid.SelectRow(3);
    grid.SelectRow(2);
    grid.InsertRow(0);
    EXPECT_EQ(grid.selection(), (Rows{ 3, 4 }));
    EXPECT_TRUE(grid.IsSelectContinous());
    EXPECT_EQ(grid.GetCurIndex(), 0);
}

TEST(GridModel, DeletingKeepsWhatMayNotGo)
{
    NotingGrid grid(5);
    grid.GetRow(3)->SetDelUnable(true);
    for (const int row : { 1, 2, 3 })
        grid.SelectRow(row);
    grid.mayDelete = 0;
    grid.DoDelete();
    EXPECT_EQ(grid.GetRowCount(), 5);
    grid.mayDelete = 1;
    grid.DoDelete();
    ASSERT_EQ(grid.GetRowCount(), 3);
    EXPECT_EQ(grid.GetItemText(1, 0), u"r3c0");
    EXPECT_EQ(grid.selection(), (Rows{ 1 }));
    EXPECT_EQ(grid.GetSelectedItem(), 1);
    EXPECT_EQ(grid.changes, 1);
}

TEST(GridModel, RowsKeepTheirOrderThroughRandomChanges)
{
    std::mt19937 random(7);
    NotingGrid grid;
    std::vector<CSGridRow*> expected;
    for (int step = 0; step < 6000; ++step) {
        const int count = int(expected.size());
        const int at = int(random() % unsigned(count + 1));
        if (count == 0 || random() % 3 != 0) {
            grid.InsertRow(at);
            expected.insert(expected.begin() + at, grid.GetRow(at));
        } else if (random() % 3 == 0 && at < count) {
            grid.DeleteRow(at);
            expected.erase(expected.begin() + at);
        } else if (at < count) {
            const int to = int(random() % unsigned(count));
            grid.MoveRow(at, to);
            CSGridRow* row = expected[size_t(at)];
            expected.erase(expected.begin() + at);
            expected.insert(expected.begin() + to, row);
        }
    }
    ASSERT_EQ(grid.GetRowCount(), int(expected.size()));
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        ASSERT_EQ(grid.GetRow(row), expected[size_t(row)]);
        ASSERT_EQ(expected[size_t(row)]->GetIndex(), row);
    }
}

TEST(GridModel, NumberedColumn)
{
    NotingGrid grid(3);
    grid.GetCol(0)->SetAutoIncrement(true);
    EXPECT_TRUE(grid.GetCell(1, 0)->IsReadOnly());
    grid.UpdateAutoIncrementCol();
    EXPECT_EQ(grid.GetItemText(2, 0), u"3");
}

TEST(GridModel, StylesThatHide)
{
    NotingGrid grid;
    grid.SetHeaderCtrl(1);
    EXPECT_FALSE(grid.HasHeaderCtrl());
    grid.SetRowSelector(0);
    EXPECT_TRUE(grid.HasRowSelector());
    grid.SetStyleFlag(CSGrid::kReadOnly, 0);
    EXPECT_TRUE(grid.IsReadOnly() && grid.IsColPosFix());
}

struct Tree {
    NotingGrid grid{ 0, 1 };
    CSGridTreeRow* root = nullptr;
    Tree()
    {
        grid.AppendRow();
        root = grid.GetTreeRow(0);
        root->SetItemText(0, u"root");
        root->SetUnFoldFlag(true);
        for (int child = 0; child < 2; ++child) {
            auto* row = new CSGridTreeRow(root);
            row->SetItemText(0, u"child");
            row->SetUnFoldFlag(true);
            root->AppendChild(row);
            for (int leaf = 0; leaf < 3; ++leaf)
                row->AppendChild(new CSGridTreeRow(row));
        }
        grid.AppendRow();
    }
};

TEST(GridTree, FoldsAndComesBackAsItWas)
{
    Tree tree;
    ASSERT_EQ(tree.grid.GetRowCount(), 10);
    EXPECT_EQ(tree.root->GetRowNum(), 9);
    EXPECT_EQ(tree.root->GetDataRowCount(), 6);
    tree.grid.SelectRow(4);
    tree.grid.SelectRow(9);
    tree.root->GetChildRow(0)->Fold();
    EXPECT_EQ(tree.grid.selection(), (Rows{ 6 }));
    tree.grid.mayFold = 0;
    tree.root->Fold();
    EXPECT_EQ(tree.grid.GetRowCount(), 7);
    tree.grid.mayFold = 1;
    tree.root->Fold();
    EXPECT_EQ(tree.grid.GetRowCount(), 2);
    EXPECT_EQ(tree.root->GetChildRow(1)->GetIndex(), -1);
    tree.root->UnFold();
    EXPECT_EQ(tree.grid.GetRowCount(), 7);
    tree.grid.UnFoldAll();
    EXPECT_EQ(tree.grid.GetRowCount(), 10);
    EXPECT_EQ(tree.root->GetChildRow(1)->GetIndex(), 5);
}

TEST(GridTree, DeletesChildrenAndRoots)
{
    Tree tree;
    tree.grid.DeleteRow(1);
    EXPECT_EQ(tree.grid.GetRowCount(), 6);
    EXPECT_EQ(tree.root->GetChildNum(), 1);
    tree.grid.mayFold = 0; // deleting does not ask for folding
    tree.grid.DeleteRow(0);
    EXPECT_EQ(tree.grid.GetRowCount(), 1);
}

TEST(GridTree, WritesPathAndCells)
{
    Tree tree;
    QByteArray archive;
    tree.root->GetChildRow(0)->GetChildRow(0)->Serialize(archive);
    // "root\child\" is 11 units; then three empty cells.
    ASSERT_EQ(archive.size(), 2 + 22 + 3 * 2);
    EXPECT_EQ(archive[0], 11);
    EXPECT_EQ(archive[2], 'r');
    EXPECT_EQ(archive.right(6), QByteArray(6, '\0'));
}

TEST(GridEditing, KeysLeadFromCellToCell)
{
    NotingGrid grid(3);
    grid.display();
    grid.GetCol(1)->SetReadOnly(true);
    grid.click(0, 0);
    ASSERT_EQ(grid.edited(), std::pair(0, 0));
    grid.type(QStringLiteral("new"));
    grid.key(Qt::Key_Right);
    EXPECT_EQ(grid.GetItemText(0, 0), u"new");
    EXPECT_EQ(grid.edited(), std::pair(0, 2));
    grid.key(Qt::Key_Home);
    grid.key(Qt::Key_Right); // moves the caret
    EXPECT_EQ(grid.edited(), std::pair(0, 2));
    grid.key(Qt::Key_Down);
    grid.key(Qt::Key_Return);
    EXPECT_EQ(grid.edited(), std::pair(2, 2));
    grid.key(Qt::Key_Tab); // past the end to the top
    EXPECT_EQ(grid.edited(), std::pair(0, 0));
    grid.key(Qt::Key_Home);
    grid.key(Qt::Key_Left);
    EXPECT_EQ(grid.edited(), std::pair(2, 2));
    grid.type(QStringLiteral("typed"));
    grid.key(Qt::Key_Escape);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(grid.GetItemText(2, 2), u"typed");
    EXPECT_EQ(grid.selection(), (Rows{ 2 }));
}

TEST(GridEditing, RefusedTextIsNotWritten)
{
    NotingGrid grid(2);
    grid.display();
    grid.mayModify = 0;
    grid.click(0, 0);
    grid.type(QStringLiteral("x"));
    grid.EndEdit();
    EXPECT_EQ(grid.GetItemText(0, 0), u"r0c0");
}

TEST(GridEditing, NoCellToGoTo)
{
    NotingGrid grid(2);
    grid.display();
    grid.EditCell(0, 0);
    for (int column = 0; column < 3; ++column)
        grid.GetCol(column)->SetReadOnly(true);
    grid.key(Qt::Key_Tab);
    EXPECT_EQ(grid.edited(), std::pair(0, 0));
}

TEST(GridEditing, CheckCellToggles)
{
    NotingGrid grid(2);
    grid.display();
    grid.GetCol(1)->SetCheckButton(true);
    grid.click(0, 1);
    EXPECT_EQ(grid.GetItemText(0, 1), u"1");
    grid.click(0, 1);
    EXPECT_EQ(grid.GetItemText(0, 1), u"0");
    EXPECT_FALSE(grid.IsEditing());
}

TEST(GridEditing, WritesIntoEverySelectedRow)
{
    NotingGrid grid(8);
    grid.display();
    grid.SetStyle(CSGrid::kEditSelectedRows);
    for (const int row : { 2, 4, 7 })
        grid.SelectRow(row);
    grid.click(4, 1);
    grid.type(QStringLiteral("all"));
    grid.key(Qt::Key_Escape);
    for (int row = 0; row < 8; ++row)
        EXPECT_EQ(grid.GetItemText(row, 1) == u"all", row == 2 || row == 4 || row == 7) << row;
}

TEST(GridInput, KeysWithoutEdit)
{
    NotingGrid grid(50);
    grid.display();
    grid.SetReadOnly(1);
    grid.click(1, 0);
    EXPECT_EQ(grid.selection(), (Rows{ 1 }));
    grid.key(Qt::Key_Down);
    EXPECT_EQ(grid.selection(), (Rows{ 2 }));
    grid.click(4, 0, Qt::ShiftModifier);
    EXPECT_EQ(grid.selection(), (Rows{ 2, 3, 4 }));
    grid.key(Qt::Key_End);
    EXPECT_EQ(grid.selection(), (Rows{ 49 }));
    EXPECT_GT(grid.TopRow(), 20);
    QTest::keyClick(&grid, Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(grid.IsSelectAll());
    QTest::keyClicks(&grid, QStringLiteral("r1"));
    EXPECT_EQ(grid.GetSelectedItem(), 1);
}

TEST(GridCommands, BlocksAsText)
{
    NotingGrid grid(3);
    grid.GetCol(1)->SetReadOnly(true);
    grid.PasteText(1, 0, QStringLiteral("a\tb\t\"two\nlines\"\r\nc"));
    EXPECT_EQ(grid.GetItemText(1, 0), u"a");
    EXPECT_EQ(grid.GetItemText(1, 1), u"r1c1");
    EXPECT_EQ(grid.GetItemText(1, 2), u"two\nlines");
    EXPECT_EQ(grid.GetItemText(2, 0), u"c");
    grid.SelectRow(1);
    EXPECT_EQ(grid.SelectedText(), u"a\tr1c1\t\"two\nlines\"\n");
    grid.ClipSelect();
    grid.Paste(3);
    ASSERT_EQ(grid.GetRowCount(), 4);
    EXPECT_EQ(grid.GetItemText(3, 0), u"a");
}

} // namespace

// A leaf has no box to fold it by; its top left corner is a place like any other.
TEST(GridInput, AClickInTheCornerOfALeafFoldsNothing)
{
    for (const int tree : { 0, 1 }) {
        NotingGrid grid(3, tree);
        grid.display();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, { 1, 1 }); // (0, 0) would mean the middle
        EXPECT_EQ(grid.GetSelectedItem(), 0);
        EXPECT_EQ(grid.GetRowCount(), 3);
    }
}
