// A grid on the screen with three columns and rows of known texts, which notes what it is told.
#pragma once

#include "controls/cell_editors.h"
#include "controls/grid.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

inline std::ostream& operator<<(std::ostream& stream, const QString& text)
{
    return stream << text.toStdString();
}

class NotingGrid : public CSGrid {
public:
    explicit NotingGrid(int rows = 0, int tree = 0)
        : CSGrid(tree)
    {
        for (int column = 0; column < 3; ++column)
            AppendColumn(QString::number(column), 90);
        for (int row = 0; row < rows; ++row) {
            AppendRow();
            for (int column = 0; column < 3; ++column)
                SetItemText(row, column, QStringLiteral("r%1c%2").arg(row).arg(column));
        }
    }

    void display()
    {
        resize(400, 300);
        show();
        activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(this));
        setFocus();
    }
    void click(int row, int column, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(viewport(), Qt::LeftButton, modifiers, CellRect(row, column).center());
    }
    /// To the editor, or else to the grid.
    void key(Qt::Key key) { QTest::keyClick(GetEditor() ? GetEditor()->KeyWidget() : this, key); }
    void type(const QString& text) { QTest::keyClicks(GetEditor()->KeyWidget(), text); }
    std::pair<int, int> edited() const
    {
        if (!GetEditedCell())
            return { -1, -1 };
        return { GetEditedCell()->GetRow()->GetIndex(), GetEditedCell()->GetCol()->GetIndex() };
    }
    std::vector<long> selection() const
    {
        std::vector<long> rows;
        GetSelectedRows(rows);
        return rows;
    }

    int OnDeleteRow() override { return mayDelete; }
    int OnFoldRow(CSGridTreeRow&) override { return mayFold; }
    int OnModified(CSGridCell&, TString&) override { return mayModify; }
    void OnDataChanged() override { ++changes; }

    int mayDelete = 1, mayFold = 1, mayModify = 1, changes = 0;
};
