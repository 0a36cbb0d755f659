// What a screen reader finds in a grid, and what it is told while the user moves on.
#include "hand.h"

#include <QAccessible>

namespace {

QStringList heard;

void hear(QAccessibleEvent* event)
{
    const bool focus = event->type() == QAccessible::Focus;
    if (QAccessibleInterface* const spoken = event->accessibleInterface();
        spoken && (focus || event->type() == QAccessible::StateChanged))
        heard += (focus ? QString() : QStringLiteral("state ")) + spoken->text(QAccessible::Name);
}

class Reader : public ::testing::Test {
protected:
    Reader()
    {
        grid.setAccessibleName(QStringLiteral("plants"));
        grid.GetCol(0)->SetName(u"名称");
        grid.GetCol(2)->SetName(u"显示");
        grid.GetCol(2)->SetCheckButton(true);
        grid.SetItemText(1, 2, u"1");
        grid.display();
        whole = QAccessible::queryAccessibleInterface(&grid);
    }
    QAccessibleInterface* at(int row, int column) const
    {
        return whole->tableInterface()->cellAt(row, column);
    }

    NotingGrid grid{ 3 };
    QAccessibleInterface* whole = nullptr;
};

TEST_F(Reader, FindsCellsByRowAndColumn)
{
    ASSERT_TRUE(whole && whole->tableInterface());
    EXPECT_EQ(whole->role(), QAccessible::Table);
    EXPECT_EQ(whole->text(QAccessible::Name), u"plants");
    EXPECT_EQ(whole->tableInterface()->rowCount(), 3);
    EXPECT_EQ(whole->tableInterface()->columnCount(), 3);
    EXPECT_EQ(whole->tableInterface()->columnDescription(0), u"名称");
    ASSERT_TRUE(at(1, 0));
    EXPECT_EQ(at(3, 0), nullptr);
    EXPECT_EQ(at(1, 0), at(1, 0));
    EXPECT_EQ(at(1, 0)->text(QAccessible::Name), u"r1c0");
    EXPECT_EQ(at(1, 0)->text(QAccessible::Description), u"名称");
    EXPECT_EQ(at(1, 0)->tableCellInterface()->table(), whole);
    EXPECT_EQ(whole->child(whole->indexOfChild(at(2, 1))), at(2, 1));
    const QPoint middle = grid.viewport()->mapToGlobal(grid.CellRect(2, 1).center());
    EXPECT_EQ(whole->childAt(middle.x(), middle.y()), at(2, 1));
    EXPECT_TRUE(at(2, 1)->rect().contains(middle));
    // A tick is told by its column and state.
    EXPECT_EQ(at(1, 2)->role(), QAccessible::CheckBox);
    EXPECT_EQ(at(1, 2)->text(QAccessible::Name), u"显示");
    EXPECT_TRUE(at(1, 2)->state().checked);
    EXPECT_FALSE(at(0, 2)->state().checked);
    EXPECT_FALSE(at(1, 0)->state().checkable);
}

TEST_F(Reader, FindsWhereTheUserIs)
{
    grid.click(1, 1);
    EXPECT_EQ(whole->focusChild(), QAccessible::queryAccessibleInterface(QApplication::focusWidget()));
    EXPECT_EQ(whole->focusChild()->text(QAccessible::Name), u"1");
    hand::key(Qt::Key_Escape);
    EXPECT_EQ(whole->focusChild(), at(1, 1));
    EXPECT_TRUE(at(1, 1)->state().focused);
    EXPECT_EQ(whole->tableInterface()->selectedRows(), QList<int>{ 1 });
    EXPECT_TRUE(at(1, 0)->state().selected);
    EXPECT_EQ(whole->text(QAccessible::Value), u"名称 r1c0, 1 r1c1, 显示 1");
}

TEST_F(Reader, ChangesWhatTheUserMayChange)
{
    at(0, 1)->setText(QAccessible::Value, QStringLiteral("spoken"));
    EXPECT_EQ(grid.GetItemText(0, 1), u"spoken");
    EXPECT_EQ(grid.changes, 1);
    grid.GetCol(1)->SetReadOnly(true);
    at(1, 1)->setText(QAccessible::Value, QStringLiteral("spoken"));
    EXPECT_EQ(grid.GetItemText(1, 1), u"r1c1");
    EXPECT_TRUE(at(1, 1)->state().readOnly);
    EXPECT_TRUE(whole->tableInterface()->selectRow(2));
    EXPECT_TRUE(grid.IsRowSelected(2));
}

TEST_F(Reader, KeepsCellsThatGoAway)
{
    QAccessibleInterface* const last = at(2, 0);
    grid.DeleteRow(2);
    EXPECT_FALSE(last->isValid());
    EXPECT_TRUE(last->state().invalid);
    EXPECT_EQ(last->text(QAccessible::Name), u"");
    auto* gone = new NotingGrid(1);
    QAccessibleInterface* const table = QAccessible::queryAccessibleInterface(gone);
    const QAccessible::Id id = QAccessible::uniqueId(table->tableInterface()->cellAt(0, 0));
    delete gone;
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

TEST_F(Reader, IsToldOfTheCurrentCellAndOfTicks)
{
    // The platform connects to the reader in its own time.
    if (qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"))
        (void)QTest::qWaitFor([] { return QAccessible::isActive(); });
    if (!QAccessible::isActive())
        GTEST_SKIP() << "no screen reader may listen on this platform; "
                        "run it with xcb and QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1";
    grid.SetReadOnly(1);
    const auto before = QAccessible::installUpdateHandler(hear);
    heard.clear();
    grid.click(0, 1);
    hand::key(Qt::Key_Down);
    hand::key(Qt::Key_End);
    grid.SetReadOnly(0);
    grid.click(0, 2);
    QAccessible::installUpdateHandler(before);
    EXPECT_EQ(heard, QStringList({ "r0c1", "r1c1", "r2c1", "显示", "state 显示" }));
}

} // namespace
