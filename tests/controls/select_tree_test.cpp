// Check states that go up and down a tree.
#include "controls/select_tree.h"

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

} // namespace
