// Check states go down as they are and up by what the siblings have in common. Clicks on a check box come
// from the delegate, as changes of the item's data; the space bar works in any column.

#include "controls/select_tree.h"

#include <QAccessible>
#include <QKeyEvent>

namespace {

// A screen reader says the new state of an item that is on the screen, as it does of a check box.
void announce(CSelTreeCtrl& tree, const SelTreeItem& item)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleInterface* const whole = QAccessible::queryAccessibleInterface(&tree);
    const QPoint corner = tree.visualItemRect(&item).topLeft();
    const QPoint place = tree.viewport()->mapToGlobal(corner + QPoint(1, 1));
    if (QAccessibleInterface* const one = whole ? whole->childAt(place.x(), place.y()) : nullptr) {
        QAccessible::State changed;
        changed.checked = true;
        QAccessibleStateChangeEvent event(one, changed);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace

CSelTreeCtrl* SelTreeItem::Tree() const
{
    return static_cast<CSelTreeCtrl*>(treeWidget());
}

void SelTreeItem::setData(int column, int role, const QVariant& value)
{
    if (column == 0 && role == Qt::CheckStateRole && Tree())
        Tree()->Tick(*this, value.toInt() == Qt::Checked);
    else
        QTreeWidgetItem::setData(column, role, value);
}

CSelTreeCtrl::CSelTreeCtrl(QWidget* parent)
    : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setColumnCount(1);
}

SelTreeItem* CSelTreeCtrl::AddItem(const QString& text, SelTreeItem* parent, unsigned state)
{
    auto* item = new SelTreeItem;
    item->setText(0, text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    if (parent)
        parent->addChild(item);
    else
        addTopLevelItem(item);
    if (parent)
        ++parent->m_childStates[0];
    SetState(*item, std::min(state, unsigned(kChecked)));
    if (item->m_state != kNoBox && ticksTogether())
        TravelSiblingAndParent(item, item->m_state);
    return item;
}

SelTreeItem* CSelTreeCtrl::AddItem(const QString& text, quintptr data, SelTreeItem* parent, unsigned state)
{
    SelTreeItem* item = AddItem(text, parent, state);
    item->m_data = data;
    return item;
}

void CSelTreeCtrl::SetState(SelTreeItem& item, unsigned index)
{
    if (SelTreeItem* parent = item.Parent()) {
        --parent->m_childStates[item.m_state];
        ++parent->m_childStates[index];
    }
    item.m_state = index;
    static const Qt::CheckState shown[] = { Qt::Unchecked, Qt::Unchecked, Qt::PartiallyChecked, Qt::Checked };
    item.QTreeWidgetItem::setData(
        0, Qt::CheckStateRole, index == kNoBox ? QVariant() : QVariant(shown[index]));
    if (const auto flags = item.flags().setFlag(Qt::ItemIsUserCheckable, index != kNoBox);
        flags != item.flags())
        item.setFlags(flags);
}

int CSelTreeCtrl::ChangeItemState(SelTreeItem* item, unsigned state, unsigned mask)
{
    if (!item || !(mask & kStateMask))
        return 0;
    SetState(*item, std::min((state & kStateMask) >> 12, unsigned(kChecked)));
    return 1;
}

int CSelTreeCtrl::SetItemState(SelTreeItem* item, unsigned state, unsigned mask, int propagate)
{
    if (!ChangeItemState(item, state, mask))
        return 0;
    if (state < 0x1000)
        return 1;
    if (propagate)
        TravelChild(item, item->m_state);
    TravelSiblingAndParent(item, item->m_state);
    return 1;
}

void CSelTreeCtrl::TravelChild(SelTreeItem* item, unsigned index)
{
    for (int place = 0; place < item->childCount(); ++place) {
        SelTreeItem* child = item->Child(place);
        if (place == 0 || child->m_state != kNoBox)
            SetState(*child, index);
        TravelChild(child, index);
    }
}

void CSelTreeCtrl::TravelSiblingAndParent(SelTreeItem* item, unsigned index)
{
    for (SelTreeItem* parent = item->Parent(); parent; item = parent, parent = item->Parent()) {
        int boxes = 0;
        for (const unsigned state : { kUnchecked, kPartial, kChecked })
            boxes += parent->m_childStates[state];
        // The item itself counts as one that agrees.
        int agreeing = parent->m_childStates[index];
        if (item->m_state != kNoBox && item->m_state != index)
            ++agreeing;
        if (agreeing < boxes) {
            for (; parent; parent = parent->Parent())
                if (parent->m_state != kNoBox)
                    SetState(*parent, kPartial);
            return;
        }
        if (parent->m_state != kNoBox)
            SetState(*parent, index);
    }
}

void CSelTreeCtrl::Toggle(SelTreeItem& item)
{
    const unsigned index = item.m_state == kChecked ? kUnchecked : kChecked;
    SetState(item, index);
    if (ticksTogether()) {
        TravelChild(&item, index);
        TravelSiblingAndParent(&item, index);
    }
    OnTicked(item);
    announce(*this, item);
}

void CSelTreeCtrl::Tick(SelTreeItem& item, bool on)
{
    if (!canTick(&item))
        return;
    // A click on an item that is partly ticked ticks it; unticking that takes two.
    if (item.m_state == kPartial && !on)
        Toggle(item);
    if (item.m_state != unsigned(on ? kChecked : kUnchecked))
        Toggle(item);
}

bool CSelTreeCtrl::canTick(const SelTreeItem* item)
{
    return item && item->m_state != kNoBox && !item->isDisabled();
}

// What is taken out counts no more; the items above then show what the others have in common.
void CSelTreeCtrl::rowsAboutToBeRemoved(const QModelIndex& index, int start, int end)
{
    if (auto* parent = static_cast<SelTreeItem*>(itemFromIndex(index))) {
        for (int place = start; place <= end; ++place)
            --parent->m_childStates[parent->Child(place)->m_state];
        const auto& counts = parent->m_childStates;
        const int boxes = counts[kUnchecked] + counts[kPartial] + counts[kChecked];
        if (boxes > 0 && parent->m_state != kNoBox && ticksTogether()) {
            const unsigned state = counts[kChecked] == boxes ? kChecked
                : counts[kUnchecked] == boxes                ? kUnchecked
                                                             : kPartial;
            SetState(*parent, state);
            TravelSiblingAndParent(parent, state);
        }
    }
    QTreeWidget::rowsAboutToBeRemoved(index, start, end);
}

void CSelTreeCtrl::keyPressEvent(QKeyEvent* event)
{
    auto* item = static_cast<SelTreeItem*>(currentItem());
    if (event->key() != Qt::Key_Space || !canTick(item))
        return QTreeWidget::keyPressEvent(event);
    Toggle(*item);
    event->accept();
}

namespace {

template <class Visit> void walk(const QTreeWidgetItem& item, const QString& above, Visit&& visit)
{
    for (int index = 0; index < item.childCount(); ++index) {
        auto* child = static_cast<SelTreeItem*>(item.child(index));
        const QString path = above.isEmpty() ? child->text(0) : above + u'/' + child->text(0);
        visit(*child, path);
        walk(*child, path, visit);
    }
}

} // namespace

std::vector<KcEdScriptableTree::Item> CSelTreeCtrl::items() const
{
    std::vector<Item> all;
    walk(*invisibleRootItem(), {}, [&](SelTreeItem& item, const QString& path) {
        all.push_back({ path, int(item.m_state) });
    });
    return all;
}

QString CSelTreeCtrl::tickItem(const QString& name, bool on)
{
    std::vector<SelTreeItem*> byPath, byText;
    walk(*invisibleRootItem(), {}, [&](SelTreeItem& item, const QString& path) {
        if (path == name)
            byPath.push_back(&item);
        if (item.text(0) == name)
            byText.push_back(&item);
    });
    const std::vector<SelTreeItem*>& found = byPath.empty() ? byText : byPath;
    if (found.empty())
        return QStringLiteral("The tree has no such item.");
    if (found.size() > 1)
        return QStringLiteral("The item stands there more than once; name it by its path.");
    SelTreeItem& item = *found.front();
    if (item.m_state == kNoBox)
        return QStringLiteral("The item has no check box.");
    if (item.isDisabled())
        return QStringLiteral("The item is greyed: the one above it is not ticked.");
    Tick(item, on);
    return {};
}

CCustomTreeCtrl::CCustomTreeCtrl(QWidget* parent)
    : CSelTreeCtrl(parent)
{
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
}

void CCustomTreeCtrl::SetEditable(SelTreeItem& item, bool on)
{
    item.setFlags(item.flags().setFlag(Qt::ItemIsEditable, on));
}
