// Blocks of cells to and from a spreadsheet: what is said when they do not fit, and that nothing is lost.
#include "hand.h"

#include "platform/message_box.h"

namespace {

class Clipboard : public ::testing::Test {
protected:
    class Grid : public NotingGrid {
    public:
        using NotingGrid::NotingGrid;
        void OnCellComboString(CSGridCell&, QStringList& choices) override
        {
            choices = { QStringLiteral("乔木"), QStringLiteral("灌木") };
        }
        int OnModified(CSGridCell&, TString& text) override
        {
            text = text.trimmed();
            return text != u"bad";
        }
        int OnEdit(CSGridCell& cell) override { return cell.GetText() != u"locked"; }
    };

    Clipboard()
    {
        m_handler = platform::setMessageBoxHandler([this](const platform::MessageBoxRequest& request) {
            said += request.text;
            return platform::MessageBoxAnswer::Ok;
        });
        grid.display();
    }
    ~Clipboard() override { platform::setMessageBoxHandler(m_handler); }

    void put(const QString& text)
    {
        said.clear();
        QApplication::clipboard()->setText(text);
        grid.setFocus();
        hand::key(Qt::Key_V, Qt::ControlModifier);
    }
    // The whole grid, row by row.
    QString all() const
    {
        QStringList rows;
        for (int row = 0; row < grid.GetRowCount(); ++row)
            rows += grid.GetItemText(row, 0) + u' ' + grid.GetItemText(row, 1) + u' '
                + grid.GetItemText(row, 2);
        return rows.join(u'/');
    }

    Grid grid{ 3 };
    QString said;

private:
    platform::MessageBoxHandler m_handler;
};

TEST_F(Clipboard, RowsGoOutAsASpreadsheetTakesThem)
{
    grid.SetItemText(1, 0, QStringLiteral("香樟 \"A\""));
    grid.SetItemText(1, 1, QStringLiteral("\"quoted\" at its start"));
    grid.SetItemText(1, 2, QStringLiteral("two\tfields"));
    grid.SelectRow(1);
    grid.SelectRow(2);
    hand::key(Qt::Key_C, Qt::ControlModifier);
    const QString text = QApplication::clipboard()->text();
    EXPECT_EQ(
        text,
        QStringLiteral("香樟 \"A\"\t\"\"\"quoted\"\" at its start\"\t\"two\tfields\"\nr2c0\tr2c1\tr2c2\n"));
    // And come back as they were.
    grid.UnSelect();
    grid.SelectRow(0);
    const QString before = grid.GetItemText(1, 2);
    hand::key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(said, u"");
    EXPECT_EQ(grid.GetItemText(0, 0), u"香樟 \"A\"");
    EXPECT_EQ(grid.GetItemText(0, 2), before);
    EXPECT_EQ(grid.GetItemText(1, 0), u"r2c0");
}

TEST_F(Clipboard, ColumnsGoOutAlone)
{
    grid.SelectCol(0);
    grid.SelectCol(2);
    hand::key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"r0c0\tr0c2\nr1c0\tr1c2\nr2c0\tr2c2\n");
    grid.UnSelect();
    grid.SelectCol(1);
    put(QStringLiteral("a\nb\nc\n"));
    EXPECT_EQ(all(), u"r0c0 a r0c2/r1c0 b r1c2/r2c0 c r2c2");
}

TEST_F(Clipboard, WhatReachesBeyondTheEndIsSaidAndNothingIsWritten)
{
    const QString before = all();
    grid.SelectRow(1);
    put(QStringLiteral("a\tb\tc\nd\te\tf\ng\th\ti\n"));
    EXPECT_TRUE(said.contains("3 × 3") && said.contains("2 × 3") && said.contains("Nothing was pasted"))
        << said;
    EXPECT_EQ(all(), before);
    EXPECT_EQ(grid.changes, 0);
    EXPECT_EQ(QApplication::clipboard()->text(), u"a\tb\tc\nd\te\tf\ng\th\ti\n");
    put(QStringLiteral("a\tb\tc\td\n"));
    EXPECT_TRUE(said.contains("1 × 4")) << said;
    EXPECT_EQ(all(), before);
    // Empty fields and lines at the end, as spreadsheets append them, need no place.
    put(QStringLiteral("a\tb\tc\t\t\nd\te\tf\n\t\t\n\n"));
    EXPECT_EQ(said, u"");
    EXPECT_EQ(all(), u"r0c0 r0c1 r0c2/a b c/d e f");
    EXPECT_EQ(grid.changes, 1);
    put(QString());
    EXPECT_TRUE(said.contains("no text")) << said;
    grid.DeleteAll();
    put(QStringLiteral("a"));
    EXPECT_TRUE(said.contains("0 × 3")) << said;
}

TEST_F(Clipboard, CellsTakeWhatTheirEditorsWouldTake)
{
    grid.GetCol(1)->SetComboSel(true);
    grid.GetCol(2)->SetCheckButton(true);
    grid.SetItemText(1, 0, u"locked");
    grid.SelectRow(0);
    put(QStringLiteral(" a \t乔木\t1\nb\t松\tyes\nbad\t灌木\t0\n"));
    EXPECT_EQ(all(), u"a 乔木 1/locked r1c1 r1c2/r2c0 灌木 0");
    EXPECT_TRUE(said.contains("5 were taken and 4 were not")) << said;
    grid.SetReadOnly(1);
    put(QStringLiteral("z\n"));
    EXPECT_TRUE(said.contains("cannot be edited")) << said;
    EXPECT_EQ(grid.GetItemText(0, 0), u"a");
}

} // namespace
