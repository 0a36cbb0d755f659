// Check states that go up and down a tree.
#include "controls/select_tree.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct Tree {
    CSelTreeCtrl tree;
    SelTreeItem* top = tree.AddItem(QStringLiteral("top"), nullptr, 1);
    SelTreeItem* group = tree.AddItem(QStringLiteral("group"), top, 1);
    SelTreeItem* plain = tree.AddItem(QStringLiteral("plain"), group, 0);
    SelTreeItem* a = tree.AddItem(QStringLiteral("a"), group, 1);
    SelTreeItem* b = tree.AddItem(QStringLiteral("b"), group, 1);
    std::vector<unsigned> states() const
    {
        std::vector<unsigned> all;
        for (const SelTreeItem* item : { top, group, plain, a, b })
            all.push_back(tree.GetSelState(item));
        return all;
    }
    void space(SelTreeItem* item)
    {
        tree.setCurrentItem(item);
        QTest::keyClick(&tree, Qt::Key_Space);
    }
};

using States = std::vector<unsigned>;

TEST(SelectTree, TicksGoUp)
{
    Tree tree;
    tree.space(tree.a);
    EXPECT_EQ(tree.states(), (States{ 2, 2, 0, 3, 1 }));
    tree.space(tree.b);
    EXPECT_EQ(tree.states(), (States{ 3, 3, 0, 3, 3 }));
    tree.space(tree.a);
    EXPECT_EQ(tree.states(), (States{ 2, 2, 0, 1, 3 }));
}

TEST(SelectTree, TicksGoDown)
{
    Tree tree;
    tree.space(tree.a);
    tree.space(tree.top); // partly ticked becomes ticked
    // The first child gets a check box even when it had none.
    EXPECT_EQ(tree.states(), (States{ 3, 3, 3, 3, 3 }));
    EXPECT_EQ(tree.tree.tickItem(QStringLiteral("top/group/b"), false), QString());
    EXPECT_EQ(tree.states(), (States{ 2, 2, 3, 3, 1 }));
}

TEST(SelectTree, ItemsWithoutBoxAreNotToggled)
{
    Tree tree;
    tree.space(tree.plain);
    EXPECT_EQ(tree.states(), (States{ 1, 1, 0, 1, 1 }));
    EXPECT_NE(tree.tree.tickItem(QStringLiteral("plain"), true), QString());
}

TEST(SelectTree, WhatIsTakenOutCountsNoMore)
{
    Tree tree;
    tree.space(tree.a);
    delete tree.b; // the one that was not ticked
    EXPECT_EQ(tree.tree.GetSelState(tree.group), 3u);
    EXPECT_EQ(tree.tree.GetSelState(tree.top), 3u);
    SelTreeItem* c = tree.tree.AddItem(QStringLiteral("c"), tree.group, 1);
    EXPECT_EQ(tree.tree.GetSelState(tree.group), 2u);
    tree.space(c);
    EXPECT_EQ(tree.tree.GetSelState(tree.group), 3u);
}

TEST(SelectTree, ADoubleClickOnABoxIsTwoClicks)
{
    Tree tree;
    tree.tree.expandAll();
    tree.tree.resize(300, 200);
    tree.tree.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&tree.tree));
    const QRect row = tree.tree.visualItemRect(tree.a); // begins with the box
    const QPoint box(row.left() + 8, row.center().y());
    QTest::mouseClick(tree.tree.viewport(), Qt::LeftButton, {}, box);
    ASSERT_EQ(tree.tree.GetSelState(tree.a), 3u);
    QMouseEvent second(
        QEvent::MouseButtonDblClick, box, tree.tree.viewport()->mapToGlobal(box), Qt::LeftButton,
        Qt::LeftButton, {});
    QApplication::sendEvent(tree.tree.viewport(), &second); // what comes in place of the second press
    QTest::mouseRelease(tree.tree.viewport(), Qt::LeftButton, {}, box);
    EXPECT_EQ(tree.tree.GetSelState(tree.a), 1u);
}

} // namespace
