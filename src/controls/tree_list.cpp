// The second column of the tree is edited by the toolkit's own delegate, kept from the first one.

#include "controls/tree_list.h"

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTreeWidgetItemIterator>

namespace {

class ValueDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget*
    createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return index.column() == 1 ? QStyledItemDelegate::createEditor(parent, option, index) : nullptr;
    }
};

} // namespace

CTreeListCtrl::CTreeListCtrl(QWidget* parent)
    : CSelTreeCtrl(parent)
{
    setHeaderHidden(false);
    setItemDelegate(new ValueDelegate(this));
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
    setAllColumnsShowFocus(true);
}

void CTreeListCtrl::SetColumns(const QStringList& headers, const QList<int>& widths)
{
    setColumnCount(int(headers.size()));
    setHeaderLabels(headers);
    header()->setStretchLastSection(false);
    for (int column = 0; column < int(widths.size()); ++column)
        setColumnWidth(column, widths[column]);
}

void CTreeListCtrl::SetItemValue(SelTreeItem& item, const QString& value)
{
    item.setText(1, value);
    item.setFlags(item.flags() | Qt::ItemIsEditable);
}

SelTreeItem* CTreeListCtrl::FindItem(quintptr data) const
{
    for (QTreeWidgetItemIterator walk(const_cast<CTreeListCtrl*>(this)); *walk; ++walk)
        if (auto* item = static_cast<SelTreeItem*>(*walk); GetItemData(item) == data)
            return item;
    return nullptr;
}

void CTreeListCtrl::OnTicked(SelTreeItem& item)
{
    for (int place = 0; place < item.childCount(); ++place)
        item.child(place)->setDisabled(GetSelState(&item) == kUnchecked);
}

void CTreeListCtrl::ShowWhatCounts()
{
    for (QTreeWidgetItemIterator walk(this); *walk; ++walk)
        OnTicked(static_cast<SelTreeItem&>(**walk));
}
