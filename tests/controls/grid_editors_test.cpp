// Each kind of editor with mouse and keys, and what ends an edit.
#include "hand.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QSpinBox>

namespace {

class Editors : public ::testing::Test {
protected:
    class Grid : public NotingGrid {
    public:
        using NotingGrid::NotingGrid;
        void OnCellComboString(CSGridCell&, QStringList& choices) override
        {
            choices = { QStringLiteral("乔木"), QStringLiteral("灌木"), QStringLiteral("地被") };
        }
        void OnCellComboSelChange(CSGridCell&, int index, const QString& text) override
        {
            told += QString::number(index) + text;
        }
        void OnInitCellSpin(CSGridCell&, QSpinBox& spin) override { spin.setRange(1, 9); }
        int OnCellButtonDown(CSGridCell& cell, TString& text) override
        {
            told += cell.GetText() + u'>' + text;
            text = answer;
            return takesAnswer;
        }
        // As the dialogs do that choose a colour in place of an editor.
        int OnBeforeEdit(CSGridCell& cell) override
        {
            if (cell.GetCol()->GetIndex() != pickedColumn)
                return CSGrid::OnBeforeEdit(cell);
            cell.SetText(u"红");
            OnDataChanged();
            return 0;
        }
        QPoint button(int row, int column) const
        {
            const QRect cell = CellRect(row, column);
            return { cell.right() - 4, cell.center().y() };
        }

        QStringList told;
        TString answer = u"answered";
        int takesAnswer = 1, pickedColumn = -1;
    };

    Editors()
    {
        window.resize(420, 340);
        other.setGeometry(0, 310, 100, 24);
        grid.setParent(&window);
        grid.setGeometry(0, 0, 400, 300);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        grid.setFocus();
    }

    QString text(int row = 1, int column = 1) const { return grid.GetItemText(row, column); }

    QWidget window;
    Grid grid{ 4 };
    QLineEdit other{ &window };
};

TEST_F(Editors, AListIsChosenFromByKeys)
{
    grid.GetCol(1)->SetComboSel(true);
    grid.SetItemText(1, 1, u"灌木");
    grid.click(1, 1);
    auto* combo = qobject_cast<QComboBox*>(QApplication::focusWidget());
    ASSERT_TRUE(combo);
    EXPECT_EQ(combo->currentText(), u"灌木");
    EXPECT_FALSE(combo->isEditable());
    hand::key(Qt::Key_Down, Qt::AltModifier); // opens the list instead of leading to the row below
    EXPECT_EQ(grid.edited(), std::pair(1, 1));
    ASSERT_TRUE(combo->view()->isVisible());
    QTest::keyClick(combo->view(), Qt::Key_Down);
    QTest::keyClick(combo->view(), Qt::Key_Return);
    EXPECT_EQ(grid.told, QStringList{ QStringLiteral("2地被") });
    EXPECT_TRUE(grid.IsEditing());
    hand::key(Qt::Key_Down);
    EXPECT_EQ(text(), u"地被");
    EXPECT_EQ(grid.edited(), std::pair(2, 1));
    // A text that is no choice stays when nothing is chosen.
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(text(2), u"r2c1");
    EXPECT_EQ(grid.changes, 1);
}

TEST_F(Editors, AListWithTypingTakesOtherTextsToo)
{
    grid.GetCol(1)->SetComboEdit(true);
    grid.GetCol(1)->SetComboSel(true);
    grid.click(1, 1);
    auto* combo = qobject_cast<QComboBox*>(QApplication::focusWidget());
    ASSERT_TRUE(combo && combo->lineEdit());
    EXPECT_EQ(combo->lineEdit()->selectedText(), u"r1c1");
    hand::type(QStringLiteral("new"));
    hand::key(Qt::Key_Tab);
    EXPECT_EQ(text(), u"new");
    EXPECT_EQ(grid.edited(), std::pair(1, 2));
    hand::key(Qt::Key_Left); // the plain editor begins with its text chosen, the caret at its end
    EXPECT_EQ(grid.edited(), std::pair(1, 2));
    hand::key(Qt::Key_Home);
    hand::key(Qt::Key_Left);
    EXPECT_EQ(grid.edited(), std::pair(1, 1));
}

TEST_F(Editors, NumbersAreTypedOrSteppedWithinTheirRange)
{
    grid.GetCol(1)->SetRightSpin(true);
    grid.SetItemText(1, 1, u"4");
    grid.click(1, 1);
    hand::type(QStringLiteral("7"));
    hand::key(Qt::Key_Return);
    EXPECT_EQ(text(), u"7");
    EXPECT_EQ(grid.edited(), std::pair(2, 1));
    hand::key(Qt::Key_Up); // leads to the row above, as in every editor
    ASSERT_EQ(grid.edited(), std::pair(1, 1));
    auto* spin = qobject_cast<QSpinBox*>(grid.GetEditor()->GetWnd());
    ASSERT_TRUE(spin);
    spin->stepUp();
    spin->stepUp();
    spin->stepUp(); // 9 is the most
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(text(), u"9");
    // Looking at a number does not change a cell that is out of the range.
    grid.SetItemText(3, 1, u"400");
    grid.click(3, 1);
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(text(3), u"400");
}

TEST_F(Editors, AButtonHearsWhatIsTypedAndAnswers)
{
    grid.GetCell(1, 1)->SetRightButton(true); // this cell alone
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.button(0, 1));
    EXPECT_TRUE(grid.told.isEmpty());
    grid.click(1, 1);
    hand::type(QStringLiteral("typed"));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.button(1, 1));
    EXPECT_EQ(grid.told, QStringList{ QStringLiteral("r1c1>typed") });
    ASSERT_TRUE(grid.IsEditing());
    EXPECT_EQ(QApplication::focusWidget(), grid.GetEditor()->GetWnd());
    EXPECT_EQ(text(), u"r1c1");
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(text(), u"answered");
    grid.takesAnswer = 0;
    grid.answer = u"not this";
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.button(1, 1));
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(text(), u"answered");
    // A read-only cell opens no editor, but its button goes on working.
    grid.takesAnswer = 1;
    grid.GetCell(1, 1)->SetReadOnly(true);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.button(1, 1));
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(text(), u"not this");
}

TEST_F(Editors, ACellMayBeAnsweredWithoutAnEditor)
{
    grid.pickedColumn = 1;
    grid.click(1, 1);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(text(), u"红");
    EXPECT_EQ(grid.selection(), (std::vector<long>{ 1 }));
    // F2 goes to the cell that was clicked last.
    grid.SetItemText(1, 1, u"x");
    hand::key(Qt::Key_F2);
    EXPECT_EQ(text(), u"红");
}

TEST_F(Editors, LosingTheFocusKeepsWhatWasTyped)
{
    grid.click(1, 1);
    hand::type(QStringLiteral("kept"));
    other.setFocus();
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(text(), u"kept");
    EXPECT_EQ(QApplication::focusWidget(), &other);
    // The menu of the editor takes the focus for a while and ends nothing.
    grid.click(1, 1);
    hand::type(QStringLiteral("more"));
    QFocusEvent popup(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(QApplication::focusWidget(), &popup);
    EXPECT_TRUE(grid.IsEditing());
    // The header and the row selector belong to the grid, and end the edit by what they do.
    QTest::mouseClick(&hand::part<GridRowSelector>(grid), Qt::LeftButton, {}, { 8, 6 });
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(text(), u"more");
}

TEST_F(Editors, ScrollingTakesTheEditorAlong)
{
    for (int row = 0; row < 60; ++row)
        grid.AppendRow();
    grid.click(1, 1);
    const QPoint before = grid.GetEditor()->GetWnd()->pos();
    hand::wheel(*grid.viewport(), -1);
    ASSERT_GT(grid.TopRow(), 0);
    EXPECT_EQ(grid.GetEditor()->GetWnd()->pos(), before - QPoint(0, grid.TopRow() * grid.GetRowHeight()));
    EXPECT_TRUE(grid.IsEditing());
}

// Several rows stay selected only where the edit is for all of them.
TEST_F(Editors, AnEditElsewhereIsForItsCellAlone)
{
    grid.SetStyle(CSGrid::kEditSelectedRows);
    grid.SelectRow(0);
    grid.SelectRow(1);
    grid.click(3, 1);
    hand::type(QStringLiteral("x"));
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(text(3), u"x");
    EXPECT_EQ(text(0), u"r0c1");
    grid.SelectRow(0);
    grid.SelectRow(3);
    grid.click(3, 1);
    hand::type(QStringLiteral("y"));
    hand::key(Qt::Key_Up); // to a row that is not selected
    EXPECT_EQ(text(0), u"y");
    EXPECT_EQ(text(3), u"y");
    EXPECT_EQ(grid.edited(), std::pair(2, 1));
    EXPECT_FALSE(grid.IsRowSelected());
}

} // namespace
