// What the grid does when rows and columns go away under a selection, an edit or a drag.
#include "support.h"

#include "controls/grid_parts.h"

#include <QScrollBar>

namespace {

// Two trees of two leaves: rows 0 to 2 and 3 to 5 when open.
struct Trees : NotingGrid {
    Trees()
        : NotingGrid(0, 1)
    {
        for (const char16_t* name : { u"one", u"two" }) {
            CSGridTreeRow* root = CreateTreeItem(TString(name), u"leaf");
            root->AppendChild(new CSGridTreeRow(root));
        }
    }
};

TEST(GridChanges, TheSelectedItemStaysItsRowWhenRowsAreFolded)
{
    Trees grid;
    ASSERT_EQ(grid.GetRowCount(), 6);
    grid.display();
    grid.SelectRow(5);
    grid.SetSelectedItem(5);
    const CSGridRow* last = grid.GetRow(5);
    grid.GetTreeRow(0)->Fold();
    ASSERT_EQ(grid.GetRowCount(), 4);
    EXPECT_EQ(grid.GetRow(grid.GetSelectedItem()), last);
    grid.GetTreeRow(1)->Fold(); // over the item itself
    EXPECT_EQ(grid.GetSelectedItem(), 1);
    grid.key(Qt::Key_Up);
    EXPECT_EQ(grid.selection(), (std::vector<long>{ 0 }));
    grid.UnFoldAll();
    grid.SetSelectedItem(5);
    grid.FoldAll();
    EXPECT_EQ(grid.GetSelectedItem(), 1);
    // An item that a dialog left past the end is no dead end either.
    grid.SetSelectedItem(40);
    grid.key(Qt::Key_Down);
    grid.SetSelectedItem(40);
    grid.key(Qt::Key_Up);
    EXPECT_LT(grid.GetSelectedItem(), 2);
}

TEST(GridChanges, SelectedColumnsMoveWithTheColumns)
{
    NotingGrid grid(1);
    grid.AppendColumn(u"3", 90);
    grid.SelectCol(0);
    grid.SelectCol(2);
    grid.MoveCol(0, 3); // 1 2 3 0
    EXPECT_TRUE(grid.IsColSelected(1));
    EXPECT_TRUE(grid.IsColSelected(3));
    EXPECT_EQ(grid.GetColSelNum(), 2);
    grid.MoveCol(3, 0);
    EXPECT_TRUE(grid.IsColSelected(0));
    EXPECT_TRUE(grid.IsColSelected(2));
}

// Deletes rows whenever it is told of something.
struct Deleting : NotingGrid {
    using NotingGrid::NotingGrid;
    int OnModified(CSGridCell&, TString&) override
    {
        remove();
        return 1;
    }
    int OnCellButtonDown(CSGridCell&, TString&) override
    {
        remove();
        return 1;
    }
    void remove()
    {
        while (GetRowCount() > left)
            DeleteRow(GetRowCount() - 1);
    }
    int left = 1;
};

TEST(GridChanges, NotificationsMayDeleteTheRowAtHand)
{
    for (const Qt::Key key : { Qt::Key_Escape, Qt::Key_Return }) {
        Deleting grid(3);
        grid.display();
        grid.EditCell(2, 1);
        grid.type(QStringLiteral("x"));
        grid.key(key);
        EXPECT_FALSE(grid.IsEditing());
        EXPECT_EQ(grid.GetRowCount(), 1);
        EXPECT_EQ(grid.selection(), (std::vector<long>{ 0 }));
    }
    Deleting grid(3);
    grid.GetCol(1)->SetRightButton(true);
    grid.display();
    const QRect cell = grid.CellRect(2, 1);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 4, cell.center().y()));
    EXPECT_EQ(grid.GetRowCount(), 1);
    // A click elsewhere ends an edit whose end deletes the row clicked at.
    Deleting other(3);
    other.display();
    other.EditCell(0, 1);
    other.type(QStringLiteral("x"));
    other.click(2, 1);
    EXPECT_EQ(other.GetRowCount(), 1);
    EXPECT_FALSE(other.IsEditing());
}

struct Dragging : NotingGrid {
    using NotingGrid::NotingGrid;
    QWidget& selector()
    {
        QWidget* found = nullptr;
        for (QWidget* child : findChildren<QWidget*>())
            if (dynamic_cast<GridRowSelector*>(child))
                found = child;
        return *found;
    }
    QPoint at(int row) { return { 8, (row - TopRow()) * GetRowHeight() + 6 }; }
    void drag(const std::vector<QPoint>& way, bool release = true)
    {
        QTest::mousePress(&selector(), Qt::LeftButton, {}, way.front());
        for (size_t i = 1; i < way.size(); ++i) {
            QMouseEvent move(
                QEvent::MouseMove, way[i], selector().mapToGlobal(way[i]), Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(&selector(), &move);
        }
        if (release)
            QTest::mouseRelease(&selector(), Qt::LeftButton, {}, way.back());
    }
    int OnRowSelectChange(int old, int& proposed) override
    {
        if (elsewhere)
            proposed = *elsewhere;
        return CSGrid::OnRowSelectChange(old, proposed);
    }
    std::optional<int> elsewhere;
};

TEST(GridChanges, RowsAreDraggedBothWaysAndBeyondTheView)
{
    Dragging grid(60);
    grid.display();
    grid.drag({ grid.at(1), grid.at(2), grid.at(4) });
    EXPECT_EQ(grid.GetItemText(4, 0), u"r1c0");
    grid.drag({ grid.at(4), grid.at(3), grid.at(1) });
    EXPECT_EQ(grid.GetItemText(1, 0), u"r1c0");

    // Above the first row in view the list comes down, a row a move; another button ends nothing.
    grid.EnsureVisible(59);
    const int top = grid.TopRow();
    ASSERT_GT(top, 3);
    grid.drag({ grid.at(top + 2), grid.at(top + 1), { 8, -5 }, { 8, -6 } }, false);
    EXPECT_EQ(grid.TopRow(), top - 2);
    QTest::mouseClick(&grid.selector(), Qt::RightButton, {}, { 8, 6 });
    QTest::mouseRelease(&grid.selector(), Qt::LeftButton, {}, { 8, 6 });
    EXPECT_EQ(grid.GetItemText(top - 2, 0), QStringLiteral("r%1c0").arg(top + 2));

    // A dialog may choose to have no row selected instead.
    grid.elsewhere = -1;
    QTest::mouseClick(&grid.selector(), Qt::LeftButton, {}, grid.at(grid.TopRow()));
    EXPECT_EQ(grid.GetSelectedItem(), -1);
    EXPECT_FALSE(grid.IsRowSelected());
}

} // namespace
