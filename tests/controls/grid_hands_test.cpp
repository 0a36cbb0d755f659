// Header, row selector, corner, keys, wheel, menus and tooltips, as the hand finds them.
#include "hand.h"

#include <QScrollBar>

namespace {

class Hands : public NotingGrid {
public:
    explicit Hands(int rows, int tree = 0)
        : NotingGrid(rows, tree)
    {
        display();
    }
    QString order() const
    {
        QString names;
        for (int column = 0; column < GetColumnCount(); ++column)
            names += headerText(column);
        return names;
    }
    GridHeader& header() { return hand::part<GridHeader>(*this); }
    QPoint head(int column) const
    {
        return { GetCol(column)->GetLeft() + GetCol(column)->GetWidth() / 2, 6 };
    }
    QPoint edge(int column) const { return { GetCol(column)->GetRight(), 6 }; }
    QPoint middle(int row, int column) const { return CellRect(row, column).center(); }

    int OnBeginMoveCol(int column) override { return column != stuck; }
    int OnMovingCol(int, int to) override { return to != forbidden; }
    void OnEndMoveCol(int from, int to) override { told += QStringLiteral("%1>%2").arg(from).arg(to); }
    void OnRClickCell(CSGridCell& cell, const QPoint&) override { told += cell.GetText(); }
    void OnRClickCol(CSGridCol& column, const QPoint&) override { told += u'|' + column.GetName(); }
    void OnRClickQuad(const QPoint&) override { told += QStringLiteral("corner"); }
    void OnDblClick(CSGridCell& cell) override { told += u'!' + cell.GetText(); }
    int OnRowTip(CSGridRow& row, TString& text) override
    {
        text = QString::number(row.GetIndex());
        return row.GetIndex() == 1;
    }
    int OnActiveQuadTip(TString& text) override
    {
        text = u"all";
        return 1;
    }
    int OnRowSelectChange(int old, int& proposed) override
    {
        return proposed != refused && CSGrid::OnRowSelectChange(old, proposed);
    }

    QStringList told;
    int stuck = -1, forbidden = -1, refused = -5;
};

using Rows = std::vector<long>;

} // namespace

TEST(GridHeader, ColumnsAreDraggedToTheirPlaces)
{
    Hands grid(2);
    hand::drag(grid.header(), { grid.head(0), grid.head(1), grid.head(2) });
    EXPECT_EQ(grid.order(), u"120");
    EXPECT_EQ(grid.GetItemText(0, 2), u"r0c0");
    EXPECT_EQ(grid.told, QStringList{ QStringLiteral("0>2") });
    EXPECT_EQ(grid.changes, 1);
    hand::drag(grid.header(), { grid.head(2), grid.head(1), grid.head(0) });
    EXPECT_EQ(grid.order(), u"012");
    grid.forbidden = 2;
    hand::drag(grid.header(), { grid.head(0), grid.head(1), grid.head(2) });
    grid.stuck = 1;
    hand::drag(grid.header(), { grid.head(1), grid.head(0), grid.head(0) });
    grid.SetColPosFix(1);
    hand::drag(grid.header(), { grid.head(0), grid.head(1), grid.head(1) });
    EXPECT_EQ(grid.order(), u"012");
    EXPECT_EQ(grid.changes, 2);
    // A press that slips is still a click.
    grid.SetColPosFix(0);
    hand::drag(grid.header(), { grid.head(0), grid.head(0) + QPoint(2, 0) });
    EXPECT_TRUE(grid.IsColSelected(0));
    QTest::mouseClick(&grid.header(), Qt::LeftButton, Qt::ControlModifier, grid.head(2));
    EXPECT_EQ(grid.GetColSelNum(), 2);
}

TEST(GridHeader, WidthsAreDraggedAndFitted)
{
    Hands grid(2);
    hand::drag(grid.header(), { grid.edge(0), grid.edge(0) + QPoint(10, 0), grid.edge(0) + QPoint(25, 0) });
    EXPECT_EQ(grid.GetCol(0)->GetWidth(), 115);
    EXPECT_EQ(grid.GetCol(1)->GetLeft(), 115);
    hand::drag(grid.header(), { grid.edge(0), { -300, 6 } }); // never away altogether
    EXPECT_GT(grid.GetCol(0)->GetWidth(), 0);
    EXPECT_LT(grid.GetCol(0)->GetWidth(), 10);
    QTest::mouseDClick(&grid.header(), Qt::LeftButton, {}, grid.edge(0));
    EXPECT_GE(grid.CellTextRect(0, 0).width(), grid.fontMetrics().horizontalAdvance(grid.GetItemText(0, 0)));
    EXPECT_LT(grid.GetCol(0)->GetWidth(), 90);
    // The text that is cut off by the width shows whole in a tooltip, and no more once it fits.
    grid.SetItemText(0, 1, QStringLiteral("广玉兰，胸径二十厘米，全冠移植"));
    EXPECT_EQ(hand::tip(*grid.viewport(), grid.middle(0, 1)), grid.GetItemText(0, 1));
    EXPECT_EQ(hand::tip(*grid.viewport(), grid.middle(1, 1)), u"");
    QTest::mouseDClick(&grid.header(), Qt::LeftButton, {}, grid.edge(1));
    EXPECT_EQ(hand::tip(*grid.viewport(), grid.middle(0, 1)), u"");
    grid.SetColFixWidth(1);
    const int fixed = grid.GetCol(0)->GetWidth();
    hand::drag(grid.header(), { grid.edge(0), grid.edge(0) + QPoint(10, 0), grid.edge(0) + QPoint(25, 0) });
    EXPECT_EQ(grid.GetCol(0)->GetWidth(), fixed);
}

TEST(GridHeader, SaysWhatIsCutOff)
{
    Hands grid(3);
    grid.GetCol(0)->SetName(QStringLiteral("一个很长很长的列标题，放不下"));
    EXPECT_EQ(hand::tip(grid.header(), grid.head(0)), grid.headerText(0));
    EXPECT_EQ(hand::tip(grid.header(), grid.head(1)), u"");
    EXPECT_EQ(hand::tip(hand::part<GridRowSelector>(grid), { 8, grid.GetRowHeight() + 4 }), u"1");
    EXPECT_EQ(hand::tip(hand::part<GridRowSelector>(grid), { 8, 4 }), u"");
    EXPECT_EQ(hand::tip(hand::part<GridCorner>(grid), { 4, 4 }), u"all");
}

TEST(GridHands, MenusTellWhatTheyWereAskedOn)
{
    Hands grid(3);
    hand::menu(*grid.viewport(), grid.middle(1, 2));
    EXPECT_EQ(grid.selection(), (Rows{ 1 }));
    grid.SelectRow(2);
    hand::menu(*grid.viewport(), grid.middle(2, 0)); // one of several selected stays one of them
    EXPECT_EQ(grid.selection(), (Rows{ 1, 2 }));
    hand::menu(*grid.viewport(), { 390, 4 }); // beside the columns
    hand::menu(grid.header(), grid.head(1));
    hand::menu(hand::part<GridCorner>(grid), { 4, 4 });
    EXPECT_EQ(grid.told, QStringList({ "r1c2", "r2c0", "|1", "corner" }));
    hand::menu(hand::part<GridRowSelector>(grid), { 8, 4 });
    EXPECT_EQ(grid.selection(), (Rows{ 0 }));
}

TEST(GridHands, TheCornerSelectsEverything)
{
    Hands grid(3);
    QTest::mouseClick(&hand::part<GridCorner>(grid), Qt::LeftButton);
    EXPECT_TRUE(grid.IsSelectAll());
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, { 390, 200 }); // beside the cells
    EXPECT_FALSE(grid.IsRowSelected());
    grid.SetSingleSelRow(1);
    QTest::mouseClick(&hand::part<GridCorner>(grid), Qt::LeftButton);
    hand::key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(grid.IsRowSelected());
    grid.SetReadOnly(1);
    grid.click(0, 0);
    grid.click(2, 0, Qt::ShiftModifier);
    EXPECT_EQ(grid.selection(), (Rows{ 2 }));
}

TEST(GridHands, KeysGoByPagesAndEnds)
{
    Hands grid(200);
    grid.SetReadOnly(1);
    grid.click(3, 0);
    const int page = grid.viewport()->height() / grid.GetRowHeight();
    hand::key(Qt::Key_PageDown);
    EXPECT_EQ(grid.GetSelectedItem(), 3 + page);
    hand::key(Qt::Key_PageUp);
    EXPECT_EQ(grid.GetSelectedItem(), 3);
    hand::key(Qt::Key_PageUp);
    EXPECT_EQ(grid.GetSelectedItem(), 0);
    hand::key(Qt::Key_End);
    EXPECT_EQ(grid.selection(), (Rows{ 199 }));
    EXPECT_EQ(grid.TopRow(), 200 - page);
    hand::key(Qt::Key_PageDown);
    hand::key(Qt::Key_Down);
    EXPECT_EQ(grid.selection(), (Rows{ 199 }));
    hand::key(Qt::Key_Up, Qt::ShiftModifier);
    hand::key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(grid.selection(), (Rows{ 197, 198, 199 }));
    hand::key(Qt::Key_Home);
    EXPECT_EQ(grid.selection(), (Rows{ 0 }));
    grid.refused = 1; // by the dialog
    hand::key(Qt::Key_Down);
    EXPECT_EQ(grid.GetSelectedItem(), 0);
    hand::key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(grid.GetSelCount(), 200);
}

TEST(GridHands, TheWheelMovesTheViewAlone)
{
    Hands grid(200);
    grid.SetReadOnly(1);
    grid.click(2, 0);
    hand::wheel(*grid.viewport(), -2);
    const int after = grid.TopRow();
    EXPECT_GT(after, 0);
    hand::wheel(hand::part<GridRowSelector>(grid), -2);
    EXPECT_EQ(grid.TopRow(), 2 * after);
    hand::wheel(*grid.viewport(), 100);
    EXPECT_EQ(grid.TopRow(), 0);
    EXPECT_EQ(grid.GetSelectedItem(), 2);
    // Keys sideways move the view where nothing is edited.
    grid.SetColWidth(0, 900);
    hand::key(Qt::Key_Right);
    EXPECT_GT(grid.horizontalScrollBar()->value(), 0);
}

TEST(GridHands, TypingFindsRows)
{
    Hands grid(12);
    grid.SetReadOnly(1);
    grid.SetItemText(7, 1, QStringLiteral("香樟"));
    grid.SetItemText(9, 1, QStringLiteral("Magnolia grandiflora"));
    grid.click(0, 1);
    hand::type(QStringLiteral("magnolia g"));
    EXPECT_EQ(grid.selection(), (Rows{ 9 }));
    hand::type(QStringLiteral("x")); // nothing reads so, and the selection stays
    EXPECT_EQ(grid.selection(), (Rows{ 9 }));
    QTest::qWait(1100);
    hand::compose(QStringLiteral("香"));
    EXPECT_EQ(grid.selection(), (Rows{ 7 }));
}

TEST(GridHands, ATreeFoldsByBoxAndKeys)
{
    Hands grid(0, 1);
    CSGridTreeRow* root = grid.CreateTreeItem(u"乔木", u"香樟");
    grid.CreateTreeItem(u"灌木", u"杜鹃");
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.FoldBoxRect(0).center());
    EXPECT_EQ(grid.GetRowCount(), 3);
    EXPECT_EQ(grid.selection(), (Rows{ 0 }));
    EXPECT_FALSE(grid.IsEditing());
    grid.mayFold = 0;
    hand::key(Qt::Key_Plus);
    EXPECT_EQ(grid.GetRowCount(), 4);
    hand::key(Qt::Key_Minus);
    EXPECT_EQ(grid.GetRowCount(), 4);
    EXPECT_FALSE(root->IsFold());
}

TEST(GridHands, TwoQuickClicksOnATickAreTwo)
{
    Hands grid(2);
    grid.GetCol(1)->SetCheckButton(true);
    grid.SetItemText(0, 1, u"0");
    grid.click(0, 1);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.middle(0, 1));
    EXPECT_EQ(grid.GetItemText(0, 1), u"0");
    EXPECT_EQ(grid.changes, 2);
    EXPECT_EQ(grid.told, QStringList{ QStringLiteral("!0") });
}

TEST(GridHands, TabAndEscapeAreTheDialogsWhileNothingIsEdited)
{
    QWidget window;
    QLineEdit before(&window);
    auto* grid = new NotingGrid(2);
    grid->setParent(&window);
    grid->setGeometry(0, 40, 300, 200);
    QLineEdit after(&window);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    grid->setFocus();
    hand::key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &after);
    grid->click(1, 0);
    hand::key(Qt::Key_Tab);
    EXPECT_EQ(grid->edited(), std::pair(1, 1));
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), grid);
    EXPECT_EQ(grid->selection(), (Rows{ 1 }));
}
