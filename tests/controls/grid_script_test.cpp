// Lines of a script reach the cells of a grid in a dialog, by the way that mouse and keys go.
#include "../ed/session.h"
#include "hand.h"

#include "ed/dialogs.h"

#include <QDialog>
#include <QVBoxLayout>

namespace {

class Plants : public QDialog {
public:
    class Grid : public CSGrid {
    public:
        Grid()
        {
            for (const char16_t* name : { u"序号", u"名称", u"类别", u"显示", u"数量" })
                AppendColumn(TString(name), 80);
            GetCol(0)->SetAutoIncrement(true);
            GetCol(2)->SetComboSel(true);
            GetCol(3)->SetCheckButton(true);
            GetCol(4)->SetRightSpin(true);
            for (int row = 0; row < 3; ++row)
                AppendRow();
            UpdateAutoIncrementCol();
        }
        void OnCellComboString(CSGridCell&, QStringList& choices) override
        {
            choices = { QStringLiteral("乔木"), QStringLiteral("灌木") };
        }
        int OnModified(CSGridCell&, TString& text) override { return text != u"bad"; }
        int OnRowSelectChange(int old, int& row) override
        {
            return row != 2 && CSGrid::OnRowSelectChange(old, row);
        }
    };

    Plants()
    {
        setWindowTitle(QStringLiteral("苗木"));
        (new QVBoxLayout(this))->addWidget(&grid);
        grid.setObjectName(QStringLiteral("list"));
    }
    Grid grid;
};

} // namespace

TEST(GridScript, LinesEditCells)
{
    ed_test::Session session;
    Plants dialog;
    const QStringList lines{ "!cell 0 名称 香樟 A",     "!cell 0 类别 乔木", "!cell 0 显示 1", "!cell 0 4 12",
                             "!cell @list 1 名称 桂花", "!cell 1 名称",      "!column 类别",   "!row 1" };
    EXPECT_EQ(session.run([&] { kcedRunDialog(dialog); }, lines + QStringList{ "!ok" }), 0) << session.errors;
    QStringList first;
    for (int column = 0; column < 5; ++column)
        first += dialog.grid.GetItemText(0, column);
    EXPECT_EQ(first, QStringList({ "1", "香樟 A", "乔木", "1", "12" }));
    EXPECT_EQ(dialog.grid.GetItemText(1, 1), u"");
    EXPECT_EQ(dialog.grid.selectedRows(), std::vector<int>{ 1 });
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST(GridScript, RefusedLinesSayWhy)
{
    const struct {
        QString line, sentence;
    } rows[] = {
        { "!cell 0 序号 7", "The cell cannot be edited." },
        { "!cell 0 类别 松", "The list has no such choice." },
        { "!cell 0 显示 yes", "A check cell takes 0 and 1." },
        { "!cell 2 名称 x", "The row cannot be chosen now." },
        { "!cell 3 名称 x", "There is no row 3" },
        { "!cell 0 备注 x", "There is no column 备注" },
        { "!cell 0 数量 many", "The cell takes a number" },
        { "!cell 0 名称 bad", "The cell did not take" },
        { "!row 2", "The row cannot be chosen now." },
    };
    ed_test::Session session;
    Plants dialog;
    QStringList lines;
    for (const auto& row : rows)
        lines += row.line;
    EXPECT_EQ(
        session.run([&] { kcedRunDialog(dialog); }, lines + QStringList{ "!ok" }), int(std::size(rows)));
    for (const auto& row : rows)
        EXPECT_TRUE(session.errors.contains(row.sentence)) << row.line << " not in " << session.errors;
    for (int column = 1; column < 5; ++column)
        EXPECT_EQ(dialog.grid.GetItemText(0, column), u"") << column;
}
