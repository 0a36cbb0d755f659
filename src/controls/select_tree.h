// Trees with check boxes of three states: ticking an item ticks what is below it, and every item above shows
// whether all, some or none of what is below it is ticked.
#pragma once

#include "ed/scriptable.h"

#include <QTreeWidget>

class CSelTreeCtrl;

/// An item keeps count of the states of its children, so that ticking does not look at all of them.
class SelTreeItem : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    /// Leaves the item above while its own state can still be read.
    ~SelTreeItem() override
    {
        if (QTreeWidgetItem* const above = parent())
            above->removeChild(this);
    }
    SelTreeItem* Parent() const { return static_cast<SelTreeItem*>(parent()); }
    SelTreeItem* Child(int index) const { return static_cast<SelTreeItem*>(child(index)); }
    /// A check state that a screen reader or a script sets ticks as a click does.
    void setData(int column, int role, const QVariant& value) override;

private:
    friend class CSelTreeCtrl;
    CSelTreeCtrl* Tree() const;
    unsigned m_state = 0;
    int m_childStates[4] = { 0, 0, 0, 0 };
    quintptr m_data = 0;
};

class CSelTreeCtrl : public QTreeWidget, public KcEdScriptableTree {
public:
    enum State : unsigned { kNoBox = 0, kUnchecked = 1, kPartial = 2, kChecked = 3 };
    /// The bits of an item state that hold the index of its state image.
    static constexpr unsigned kStateMask = 0xF000;

    explicit CSelTreeCtrl(QWidget* parent = nullptr);

    /// Adds an item as the last child of `parent` (null: the root), with a check state of 0 to 3; the items
    /// above follow it when it has a check box.
    SelTreeItem* AddItem(const QString& text, SelTreeItem* parent, unsigned state);
    SelTreeItem* AddItem(const QString& text, quintptr data, SelTreeItem* parent, unsigned state);
    unsigned GetSelState(const SelTreeItem* item) const { return item ? item->m_state : 0; }
    quintptr GetItemData(const SelTreeItem* item) const { return item ? item->m_data : 0; }
    /// Sets the state bits that `mask` has (the state image index is state >> 12). A state image goes up to
    /// the items above and, with `propagate`, down to those below. Zero when nothing was set.
    int SetItemState(SelTreeItem* item, unsigned state, unsigned mask, int propagate);
    /// The same for this item alone.
    int ChangeItemState(SelTreeItem* item, unsigned state, unsigned mask);
    /// The first child, whether it has a check box or not, its siblings that have one, and all below them.
    void TravelChild(SelTreeItem* item, unsigned index);
    /// What the items above show when `item` has that state.
    void TravelSiblingAndParent(SelTreeItem* item, unsigned index);

    std::vector<Item> items() const override;
    QString tickItem(const QString& path, bool on) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int start, int end) override;
    /// After the user ticked an item.
    virtual void OnTicked(SelTreeItem&) { }
    /// Whether the state of an item goes up to those above it and down to those below.
    virtual bool ticksTogether() const { return true; }

private:
    friend class SelTreeItem;
    void SetState(SelTreeItem& item, unsigned index);
    void Toggle(SelTreeItem& item);
    /// As clicks on the check box do, as many as it takes.
    void Tick(SelTreeItem& item, bool on);
    /// Whether the user may tick an item: it has a check box and is not greyed.
    static bool canTick(const SelTreeItem* item);
};

/// The same for the dialogs that choose symbols.
class CSelBldTreeCtrl : public CSelTreeCtrl {
public:
    using CSelTreeCtrl::CSelTreeCtrl;
};

/// A tree whose items are edited in place.
class CCustomTreeCtrl : public CSelTreeCtrl {
public:
    explicit CCustomTreeCtrl(QWidget* parent = nullptr);
    /// Lets the user edit an item's text.
    void SetEditable(SelTreeItem& item, bool on);
};
